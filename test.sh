#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
#
# Installs what is missing, runs every check, then builds and tests each preset. A failing stage does
# not stop the others; the summary at the end names it, and the exit status is 1.
#
#   ./test.sh            checks, and release: the Linux build and its tests
#   ./test.sh --all      also asan (sanitizers) and windows (cross-built, under Wine)
#   ./test.sh PRESET...  checks and these presets

set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1

presets=(release)
case "${1:-}" in
  "") ;;
  --all) presets=(release asan windows) ;;
  -h | --help)
    sed -n '7,9s/^# *//p' "$0"
    exit 0
    ;;
  -*)
    sed -n '7,9s/^# *//p' "$0" >&2
    exit 2
    ;;
  *) presets=("$@") ;;
esac
setupOptions=(--native)
case " ${presets[*]} " in *" windows "*) setupOptions=() ;; esac

jobs=$(nproc)
summary=()
nFailed=0

# stage NAME COMMAND...: runs it, notes outcome and time.
stage() {
  local name=$1 begin=$SECONDS outcome=passed
  shift
  printf '\n== %s\n' "$name"
  if ! "$@"; then
    outcome=FAILED
    nFailed=$((nFailed + 1))
  fi
  summary+=("$(printf '%-8s %4d s  %s' "$outcome" $((SECONDS - begin)) "$name")")
  [ "$outcome" = passed ]
}

stage "setup" scripts/setup.sh ${setupOptions[@]+"${setupOptions[@]}"} || {
  echo "setup failed: nothing else can be tried" >&2
  exit 1
}
stage "layers, licence lines, file lengths" scripts/check_layers.py
stage "layout" scripts/check_format.sh
for preset in "${presets[@]}"; do
  stage "$preset: configure" cmake --preset "$preset" || continue
  stage "$preset: build" cmake --build --preset "$preset" -j "$jobs" -- -k 0 || continue
  # An empty test list is a failure: a build that lost its tests must not look green.
  stage "$preset: test" ctest --preset "$preset" -j "$jobs" --timeout 600 --no-tests=error
done

printf '\n== summary (%d s)\n' "$SECONDS"
printf '%s\n' "${summary[@]}"
if [ "$nFailed" -gt 0 ]; then
  echo "test.sh: $nFailed stages failed"
  exit 1
fi
echo "test.sh: all passed"
