#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
#
# From a fresh clone to a solved model on the screen: builds the programs, imports a deck and its
# results into a database, and asks the server with the reference client for the model, the result
# catalogue, the last frame's stress, a history, and what a picture of the deformed model needs.
# Without an argument it also shakes the base of a bar with known eigenmodes and asks for the largest
# root-mean-square stress.
#
#   ./run.sh [DECK]     DECK defaults to a sample; DECK's results are the .frd and .dat files of the
#                       same name beside it, if any. Database and picture go to build/run/.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

deck=${1:-$root/samples/contact_block/contact_block.inp}
deck=$(realpath -e "$deck")
name=$(basename "$deck")
database=$root/build/run/${name%.*}.odb

cd "$root"
scripts/setup.sh --native
cmake --preset release
cmake --build --preset release -j "$(nproc)" --target odb_server odb_client odb_import odb_modal_covariance

mkdir -p build/run
bin=build/release/bin
results=()
if [ -e "${deck%.*}.frd" ]; then
  results+=(--results "${deck%.*}.frd")
fi
if [ -e "${deck%.*}.dat" ]; then
  results+=(--data "${deck%.*}.dat")
fi
set -x
"$bin/odb_import" "$deck" ${results[@]+"${results[@]}"} -o "$database"
"$bin/odb_client" model "$database"
if [ ${#results[@]} -gt 0 ]; then
  /usr/bin/python3 scripts/show_results.py "$bin" "$database" "build/run/${name%.*}.png"
fi
if [ $# -eq 0 ]; then
  bar=samples/bar_modes/bar_modes
  "$bin/odb_import" --quiet "$bar.inp" --results "$bar.frd" --data "$bar.dat" -o build/run/bar_modes.odb
  "$bin/odb_modal_covariance" --psd 962361 --direction 3 build/run/bar_modes.odb
  "$bin/odb_client" values build/run/bar_modes.odb --step 2 --frame 19 --field "MATRIX RSqq" --show range
fi
