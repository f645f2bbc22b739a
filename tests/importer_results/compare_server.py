#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Imports solved decks with contact output and asks a server for their nodal results: every variable
that the result file has at nodes, in every frame, through `odb_client nodal`. Each value is compared
with a reading of the result file by compare_readers.py, which shares nothing with the programs.

    compare_server.py PROGRAM_FOLDER DECK.inp ...

Decks whose result file (.frd) has no block CONTACT are passed over. Exit status: 1 something
differs or there was nothing to compare, 2 a deck was not imported.
"""
import collections
import json
import os
import re
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # the sources stay as they are

from compare_database import FIELDS, IMAGINARY, equal, import_deck, read_results  # noqa: E402


def ask(client, database, step, frame, field):
    """The values of a reply as (quantity, node, components, conjugates), or what went wrong."""
    done = subprocess.run([client, "nodal", database, "--step", str(step), "--frame", str(frame),
                           "--field", field, "--format", "jsonl", "--table", "value"],
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    if done.returncode:
        return None, done.stderr.decode(errors="replace").strip()
    rows = map(json.loads, done.stdout.decode().splitlines())
    return [(row["quantity"], row["node"], row["components"], row["conjugates"]) for row in rows], None


class Comparison:
    def __init__(self, client, database, nodes, solved):
        self.client, self.database = client, database
        self.nodes, self.solved = nodes, solved  # labels in the deck and in the result file's mesh
        self.n = collections.Counter()
        self.problems = []

    def field(self, step, frame, name, columns, rows, imaginary):
        where = "step %d frame %d %s" % (step, frame, name)
        values, error = ask(self.client, self.database, step, frame, name)
        unseen = set(rows)
        missing = unseen & self.nodes
        if error:
            if missing:
                self.problems.append("%s: %s" % (where, error))
            return
        self.n[name] += 1
        for quantity, node, *parts in values:
            if quantity != name:
                self.problems.append("%s: %s of node %d came along" % (where, quantity, node))
            if node not in rows:
                self.n["means of expanded elements, not compared"] += 1
                if node in self.solved:
                    self.problems.append("%s: node %d has no value in the file" % (where, node))
                continue
            unseen.discard(node)
            self.n["values"] += 1
            for part, of in zip(parts, (rows, imaginary)):
                expected = [of[node][c] for c in columns] if of else []
                if not equal(part, expected):
                    self.problems.append("%s node %d: server %s, file %s"
                                         % (where, node, part, expected))
        if missing & unseen:
            self.problems.append("%s: node %d does not come" % (where, min(missing & unseen)))
        self.n["values of nodes of the solver's own"] += len(unseen)

    def frames(self, frames):
        place = collections.Counter()
        for frame in frames:
            step = max(frame.step, 1)
            i, place[step] = place[step], place[step] + 1
            self.n["frames"] += 1
            for block, rows in frame.fields.items():
                if IMAGINARY.get(block) in frame.fields:
                    continue
                imaginary = next((frame.fields[i] for i, r in IMAGINARY.items()
                                  if r == block and i in frame.fields), None)
                for name, columns, of_elements in FIELDS.get(block, ()):
                    if not of_elements:
                        self.field(step, i, name, columns, rows, imaginary)


def deck_nodes(path):
    """Labels in the deck's *NODE blocks."""
    nodes, inside = set(), False
    with open(path, encoding="utf-8", errors="replace") as file:
        for line in file:
            if line.startswith("*") and not line.startswith("**"):
                inside = re.match(r"\*NODE *(,|$)", line.strip(), re.I) is not None
            elif inside and re.match(r" *\d+ *,", line):
                nodes.add(int(line.split(",")[0]))
    return nodes


def has_contact(deck):
    try:
        with open(deck[:-4] + ".frd", "rb") as file:
            return b" -4  CONTACT " in file.read()
    except FileNotFoundError:
        return False


def main():
    programs, *decks = sys.argv[1:]
    importer, client = (os.path.join(programs, name) for name in ("odb_import", "odb_client"))
    decks = [deck for deck in decks if has_contact(deck)]
    total = collections.Counter()
    bad = refused = 0
    with tempfile.TemporaryDirectory() as folder:
        for number, deck in enumerate(decks):
            database = os.path.join(folder, "%d.odb" % number)
            frd, _, error = import_deck(importer, deck, database)
            if error is not None:
                refused += 1
                print("%s: not imported: %s" % (deck, error))
                continue
            solved, _, frames = read_results(frd)
            result = Comparison(client, database, deck_nodes(deck), solved)
            result.frames(frames)
            total += result.n
            bad += bool(result.problems)
            for problem in result.problems[:3]:
                print("%s: %s" % (deck, problem))
    print("server: %d decks with contact, %d refused, %d differ; compared: %s" % (
        len(decks), refused, bad, ", ".join("%d %s" % (n, k) for k, n in sorted(total.items()))))
    if bad or not total["values"] or not total["CPRESS"]:
        return 1
    return 2 if refused else 0


if __name__ == "__main__":
    sys.exit(main())
