#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Imports solved decks and compares what their databases hold with a reading of its own.

    compare_database.py ODB_IMPORT DUMP_DATABASE DECK.inp ...

Beside each deck its result file (.frd) and print file (.dat) are looked for. Compared are: every
frame's value, every nodal value and every value at the nodes of elements of nodes that keep their
label, every value at integration points of solids, and histories of nodes. Nothing is shared with
the importer; result files are read by compare_readers.py. Exit status: 1 something differs, 2 a deck
was not imported.
"""
import collections
import os
import re
import struct
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # the sources stay as they are

from compare_readers import DAT_HEADING, FrdFile, real  # noqa: E402

TENSOR = (0, 1, 2, 3, 5, 4)  # xx yy zz xy yz zx, as 11 22 33 12 13 23
VECTOR = (0, 1, 2)
# block: ((field, components, of elements), ...)
FIELDS = {
    "DISP": (("U", VECTOR, False),), "VELO": (("V", VECTOR, False),),
    "FORC": (("RF", VECTOR, False),), "NDTEMP": (("NT11", (0,), False),),
    "STRESS": (("S", TENSOR, True),), "TOSTRAIN": (("E", TENSOR, True),),
    "MESTRAIN": (("ME", TENSOR, True),), "PE": (("PEEQ", (0,), True),),
    "ENER": (("ENER", (0,), True),), "FLUX": (("HFL", VECTOR, True),),
    "ZZSTR": (("ZZS", TENSOR, True),), "RFL": (("RFL11", (0,), False),),
    "CONTACT": (("COPEN", (0,), False), ("CSLIP1", (1,), False), ("CSLIP2", (2,), False),
                ("CPRESS", (3,), False), ("CSHEAR1", (4,), False), ("CSHEAR2", (5,), False)),
    "CELS": (("CELS", (0,), False),),
}
IMAGINARY = {name[:7] + "I" if len(name) == 8 else name + "I": name for name in FIELDS}
NODAL, ELEMENT_NODAL, INTEGRATION_POINT = 1, 2, 3
POINTS = {"stresses": "S", "strains": "E", "mechanical strains": "ME",
          "equivalent plastic strain": "PEEQ", "internal energy density": "ENER",
          "heat flux": "HFL"}


def single(value):
    """`value` as the database keeps it."""
    try:
        return struct.unpack("f", struct.pack("f", value))[0]
    except OverflowError:
        return float("inf") if value > 0 else float("-inf")


def equal(a, b):
    return len(a) == len(b) and all(
        x == y or (x != x and y != y) for x, y in zip(map(single, a), map(single, b)))


Frame = collections.namedtuple("Frame", "step increment mode value fields")


def read_results(path):
    """The frames of a result file: fields by block name, rows by node label."""
    frames = []
    rows = None
    with open(path, "rb") as file:
        entries = iter(FrdFile(file.read()))
    nodes = set()
    kind = None
    for entry in entries:
        words = entry.split()
        if words[0] in ("nodes", "elements", "complete", "cut"):
            kind = words[0]
        elif words[0] == "result":
            kind = "result"
            value, step, increment, mode = (
                float(words[2]), int(words[8]), int(words[10]), int(words[12]))
            last = frames[-1] if frames else None
            if not last or last[:4] != (step, increment, mode, value):
                frames.append(Frame(step, increment, mode, value, {}))
            rows = frames[-1].fields.setdefault(words[1], {})
        elif kind == "nodes":
            nodes.add(int(words[0]))
        elif kind == "result":
            rows[int(words[0])] = [float(w) for w in words[1:]]
    return nodes, frames


def read_database(lines):
    """Steps of (frames, histories); a frame's fields are blocks of rows."""
    steps, rows, block = [], None, None
    for line in lines:
        words = line.split()
        if words[0] == "step":
            steps.append(([], {}))
        elif words[0] == "frame":
            steps[-1][0].append((int(words[1]), int(words[2]), float(words[3]), {}))
        elif words[0] == "field":
            block = steps[-1][0][-1][3].setdefault(words[1], [])
        elif words[0] == "block":
            rows = []
            # Nodal blocks have no element type.
            block.append((int(words[1]), words[2] if len(words) == 5 else "", int(words[-2]),
                          words[-1] == "1", rows))
        elif words[0] == "history":
            rows = steps[-1][1].setdefault(line[8:], [])
        else:
            rows.append(words)
    return steps


class Comparison:
    def __init__(self, name):
        self.name = name
        self.n = collections.Counter()
        self.problems = []

    def check(self, what, a, b, where):
        self.n[what] += 1
        if not equal(a, b):
            self.problems.append("%s %s: database %s, file %s" % (what, where, a, b))

    def field(self, where, blocks, columns, position, real_rows, imaginary_rows):
        for place, _, point, is_complex, rows in blocks:
            if place != position:
                continue
            for words in rows:
                node = int(words[1])
                if node not in real_rows or point >= 0:
                    self.n["values of expanded elements, not compared"] += 1
                    continue
                values = [float(w) for w in words[3:]]
                expected = [real_rows[node][c] for c in columns]
                if is_complex:
                    expected += [imaginary_rows[node][c] for c in columns]
                self.check("values", values, expected, "%s node %d" % (where, node))

    def frames(self, nodes, frames, steps):
        place = collections.Counter()
        start = {}
        for frame in frames:
            step = max(frame.step, 1)
            if step > len(steps):
                continue
            i = place[step]
            place[step] += 1
            written = steps[step - 1][0]
            if i >= len(written):
                self.problems.append("step %d lacks frame %d" % (step, i))
                continue
            _, mode, value, fields = written[i]
            where = "step %d frame %d" % (step, i)
            if frame.mode > 0 and mode > 0:
                self.check("modes", [mode], [frame.mode], where)
                self.check("frequencies", [value], [frame.value], where)
            else:
                # Step time: the differences count, whatever the step's beginning is.
                start.setdefault(step, frame.value - value)
                self.n["times"] += 1
                if abs(value + start[step] - frame.value) > 1e-5 * abs(frame.value):
                    self.problems.append("%s: value %r, file %r" % (where, value, frame.value))
            for block, rows in frame.fields.items():
                if block in IMAGINARY and IMAGINARY[block] in frame.fields:
                    continue
                imaginary = next((frame.fields[i] for i, r in IMAGINARY.items()
                                  if r == block and i in frame.fields), None)
                for name, columns, of_elements in FIELDS.get(block, ()):
                    if name not in fields:
                        if set(rows) & nodes & self.deck_nodes and not of_elements:
                            self.problems.append("%s lacks %s" % (where, name))
                        continue
                    self.field("%s %s" % (where, name), fields[name], columns,
                               ELEMENT_NODAL if of_elements else NODAL, rows, imaginary)

    def points(self, path, steps):
        """Values at integration points, wherever a frame of that value has them."""
        found = collections.defaultdict(list)
        for frames, _ in steps:
            for _, _, _, fields in frames:
                for name, blocks in fields.items():
                    for place, _, point, _, rows in blocks:
                        if place == INTEGRATION_POINT and point < 0:
                            for words in rows:
                                found[name, words[0], words[2]].append(
                                    [float(w) for w in words[3:]])
        types = {words[0]: kind for frames, _ in steps for frame in frames
                 for blocks in frame[3].values() for place, kind, _, _, rows in blocks
                 if place == INTEGRATION_POINT for words in rows}
        name = None
        with open(path, encoding="utf-8", errors="replace") as file:
            for line in file:
                heading = DAT_HEADING.match(line.rstrip())
                words = line.split()
                if heading or (words and not re.match(r"\d+$", words[0])):
                    name = heading and POINTS.get(heading[1].split(" (")[0])
                elif name and len(words) > 2:
                    if not types.get(words[0], "").startswith(("C3D", "DC3D")):
                        continue
                    values = [real(w.encode()) for w in words[2:8] if w[0] in "-.0123456789"]
                    candidates = found.get((name, words[0], words[1]), [])
                    self.n["values at integration points"] += 1
                    # Real and imaginary parts come in tables of their own.
                    halves = [c[i:i + len(values)] for c in candidates
                              for i in range(0, len(c), len(values))]
                    if not any(equal(h, values) for h in halves):
                        self.problems.append("%s of element %s point %s: %s is not in the database"
                                             % (name, words[0], words[1], values))


def compare(importer, dump, deck, folder):
    base = deck[:-4]
    frd, dat = base + ".frd", base + ".dat"
    database = os.path.join(folder, "compared.odb")
    command = [importer, "-q", deck, "-o", database]
    command += ["--results", frd] if os.path.exists(frd) and os.path.getsize(frd) else []
    command += ["--data", dat] if os.path.exists(dat) and os.path.getsize(dat) else []
    done = subprocess.run(command, stderr=subprocess.PIPE, check=False)
    if done.returncode:
        return None, done.stderr.decode(errors="replace").strip()
    text = subprocess.run([dump, database], stdout=subprocess.PIPE, check=False).stdout.decode()
    lines = [line for line in text.split("\n") if line]
    if lines and lines[-1].startswith("error"):
        return None, lines[-1]
    steps = read_database(lines)
    result = Comparison(deck)
    result.deck_nodes = deck_nodes(deck)
    if "--results" in command:
        nodes, frames = read_results(frd)
        result.frames(nodes, frames, steps)
    if "--data" in command:
        result.points(dat, steps)
    return result, None


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


def main():
    importer, dump, *decks = sys.argv[1:]
    total = collections.Counter()
    bad = refused = 0
    with tempfile.TemporaryDirectory() as folder:
        for deck in decks:
            result, error = compare(importer, dump, deck, folder)
            if error:
                refused += 1
                print("%s: not imported: %s" % (deck, error))
                continue
            total += result.n
            bad += bool(result.problems)
            for problem in result.problems[:3]:
                print("%s: %s" % (deck, problem))
    print("%d decks, %d refused, %d differ; compared: %s" % (
        len(decks), refused, bad, ", ".join("%d %s" % (n, k) for k, n in sorted(total.items()))))
    if bad or not total["values"]:
        return 1
    return 2 if refused else 0


if __name__ == "__main__":
    sys.exit(main())
