#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
#
# Says which C++ files differ from what clang-format makes of them; --fix rewrites them.
#
#   scripts/check_format.sh [--fix] [ROOT]

set -euo pipefail
mode=(--dry-run -Werror)
if [ "${1:-}" = --fix ]; then
  mode=(-i)
  shift
fi
root=${1:-$(dirname "${BASH_SOURCE[0]}")/..}
cd "$root"

mapfile -d '' files < <(find . \( -name .git -o -path ./build \) -prune -o \
  -type f \( -name '*.cpp' -o -name '*.h' \) -print0 | sort -z)
if [ ${#files[@]} -eq 0 ]; then
  echo "no C++ file below $root" >&2
  exit 1
fi
if ! printf '%s\0' "${files[@]}" | xargs -0 -n 16 -P "$(nproc)" clang-format --style=file "${mode[@]}"; then
  echo "check_format: run scripts/check_format.sh --fix" >&2
  exit 1
fi
echo "check_format: ${#files[@]} files"
