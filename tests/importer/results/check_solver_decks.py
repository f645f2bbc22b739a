#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Solves the solver's own test decks and compares everything it writes: each deck's database with the
scripts' reading, and what a server sends of it, with every listing of the result catalogue.

    check_solver_decks.py PROGRAM_FOLDER [DECK_FOLDER]

PROGRAM_FOLDER has odb_import, odb_server, odb_client and dump_database. DECK_FOLDER
is that of the Debian package calculix-ccx-test by default; the solver itself is `ccx` (package
calculix-ccx). Takes some minutes, so that it is no part of the test suite.
"""
import glob
import gzip
import os
import subprocess
import sys
import tempfile

DECKS = "/usr/share/doc/calculix-ccx-test/examples/test"
MOST_SECONDS = 120


def unpack(source, folder):
    """Copies decks and what they include, unzipped."""
    for path in glob.glob(os.path.join(source, "*")):
        name = os.path.basename(path)
        if os.path.isdir(path) or ".ref" in name:
            continue
        opener = gzip.open if name.endswith(".gz") else open
        with opener(path, "rb") as packed:
            data = packed.read()
        with open(os.path.join(folder, name[:-3] if name.endswith(".gz") else name), "wb") as file:
            file.write(data)
    return sorted(glob.glob(os.path.join(folder, "*.inp")))


def solve(decks, folder):
    """Runs the solver on each deck. Decks that it refuses may leave results all the same."""
    failed = 0
    for deck in decks:
        name = os.path.basename(deck)[:-4]
        try:
            done = subprocess.run(["ccx", "-i", name], cwd=folder, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                  timeout=MOST_SECONDS, check=False)
            failed += done.returncode != 0
        except subprocess.TimeoutExpired:
            failed += 1
    print("%d decks, %d of which the solver did not finish" % (len(decks), failed), flush=True)


def main():
    programs = sys.argv[1]
    here = os.path.dirname(os.path.abspath(__file__))
    with tempfile.TemporaryDirectory() as folder:
        decks = unpack(sys.argv[2] if len(sys.argv) > 2 else DECKS, folder)
        if not decks:
            sys.exit("no decks")
        solve(decks, folder)
        results = [subprocess.run([sys.executable, os.path.join(here, script), programs] + decks,
                                  check=False).returncode
                   for script in ("compare_database.py", "compare_server.py")]
    # Decks that go on with another analysis have no mesh and are refused.
    return 1 if set(results) - {0, 2} else 0


if __name__ == "__main__":
    sys.exit(main())
