#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
#
# From a fresh clone to a model on the screen: builds the programs, imports a deck into a database
# and asks the server for its model with the reference client.
#
#   ./run.sh [DECK]     DECK defaults to the sample; the database goes to build/run/

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

deck=${1:-$root/samples/plate_with_hole.inp}
deck=$(realpath -e "$deck")
name=$(basename "$deck")
database=$root/build/run/${name%.*}.odb

cd "$root"
scripts/setup.sh --native
cmake --preset release
cmake --build --preset release -j "$(nproc)" --target odb_server odb_client odb_import

mkdir -p build/run
bin=build/release/bin
set -x
"$bin/odb_import" "$deck" -o "$database"
"$bin/odb_client" model "$database"
