# SPDX-License-Identifier: BSD-3-Clause
"""An own reading of the solver's result files (.frd) and print files (.dat), and what the comparing
scripts share: importing a deck with what was solved, and going through decks.

Nothing is shared with the importer: text is taken apart by regular expressions on whole blocks, not
by columns, and binary blocks by struct formats.
"""
import collections
import os
import re
import struct
import subprocess
import tempfile

NUMBER = re.compile(rb"[-+]?\d\.\d*(?:[EeDd][-+]?|[-+])\d+?(?=[-+]?\d\.|\s|$)|[-+]?(?:nan|inf)\b|[-+]?\d+\.\d+",
                    re.I)
ELEMENT_NODES = {1: 8, 2: 6, 3: 4, 4: 20, 5: 15, 6: 10, 7: 3, 8: 6, 9: 4, 10: 8, 11: 2, 12: 3}
DAT_HEADING = re.compile(
    r" *([A-Za-z].*?) ?(?:(?:for ?)?set ?(\S.*?)|for all contact elements) *(?:,? and ?time) *(\S+) *$")

Frame = collections.namedtuple("Frame", "step increment mode value fields")


def real(text):
    text = text.replace("D", "E").replace("d", "e")
    bare = re.fullmatch(r"([-+]?\d+\.\d*)([-+]\d+)", text)
    return float(bare[1] + "e" + bare[2] if bare else text)


def single(value):
    """`value` as the database keeps it."""
    try:
        return struct.unpack("f", struct.pack("f", value))[0]
    except OverflowError:
        return float("inf") if value > 0 else float("-inf")


def equal(a, b):
    return len(a) == len(b) and all(
        x == y or (x != x and y != y) for x, y in zip(map(single, a), map(single, b)))


class FrdFile:
    """The mesh and the frames of a .frd file: fields by block name, rows by node label."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self.data = file.read()
        self.at = 0
        self.nodes, self.elements, self.frames = {}, {}, []
        parameters = {}
        while self.at < len(self.data):
            head = self.line()
            key = head.split(None, 1)[0] if head.strip() else b""
            if key[:2] == b"1P":
                words = head.split()
                if words[0][2:] in (b"STEP", b"MODE"):
                    parameters[words[0][2:].decode()] = [int(w) for w in words[1:]]
            elif key == b"2C":
                self.nodes.update(self.rows(int(head[36:]), int(head[24:36].strip() or 0), 3))
            elif key == b"3C":
                self.elements.update(self.blocks_of_elements(int(head[36:])))
            elif key[:4] == b"100C":
                self.result(head, parameters)
                parameters = {}
            elif key == b"9999":
                break

    def line(self):
        end = self.data.find(b"\n", self.at)
        end = len(self.data) if end < 0 else end
        text = self.data[self.at:end].rstrip(b"\r")
        self.at = end + 1
        return text

    def take(self, layout):
        values = struct.unpack_from("<" + layout, self.data, self.at)
        self.at += struct.calcsize("<" + layout)
        return values

    def records(self):
        """The records -1 up to the line -3, which a newline precedes."""
        end = re.compile(rb"^ -3 *\r?$", re.M).search(self.data, self.at)
        text = self.data[self.at:end.start()].replace(b"\r", b"")
        self.at = self.data.find(b"\n", end.start()) + 1
        return re.split(rb"^ -1", text, flags=re.M)[1:]

    def rows(self, layout, count, width):
        """(label, numbers) of each node."""
        if layout >= 2:
            if count == 0 or self.data[self.at:self.at + 4] in (b"    ", b" 999"):
                return
            for _ in range(count):
                label, *values = self.take("i%d%s" % (width, "f" if layout == 2 else "d"))
                yield label, values
            return
        digits = 5 if layout == 0 else 10
        for record in self.records():
            rest = re.sub(rb"\n -2 {%d}" % digits, b"\n", record[digits:])
            found = [real(n.decode()) for n in NUMBER.findall(rest)]
            if len(found) != width:
                raise ValueError("%d numbers in %r, %d expected" % (len(found), record, width))
            yield int(record[:digits]), found

    def blocks_of_elements(self, layout):
        """(label, nodes) of each element."""
        if layout >= 2:
            while not re.match(rb"    | 999|  10", self.data[self.at:self.at + 4]):
                label, kind, _, _ = self.take("4i")
                yield label, list(self.take("%di" % ELEMENT_NODES[kind]))
            return
        digits = 5 if layout == 0 else 10
        for record in self.records():
            head, *tails = record.split(b"\n")
            yield int(head[:digits]), [int(v) for tail in tails
                                       for v in re.findall(rb".{%d}" % digits, tail[3:])]

    def result(self, head, parameters):
        value, count = real(head[12:24].decode().strip()), int(head[24:36])
        name, n = re.match(rb" -4  (.{8}) *(\d+)", self.line()).groups()
        components = [self.line() for _ in range(int(n))]
        width = sum((c[33:38].strip() or b"0") == b"0" for c in components)
        _, increment, step = parameters.get("STEP", [0, 0, 0])
        key = step, increment, parameters.get("MODE", [0])[0], value
        if not self.frames or self.frames[-1][:4] != key:
            self.frames.append(Frame(*key, {}))
        rows = self.rows(int(head[73:75] or 0), count, width)
        self.frames[-1].fields.setdefault(name.strip().decode(), {}).update(rows)


def printed_rows(path, wanted):
    """(what wanted() made of the heading, time, words) of the rows of a print file."""
    name, time = None, 0
    with open(path, encoding="utf-8", errors="replace") as file:
        for line in file:
            heading = DAT_HEADING.match(line.rstrip())
            words = line.split()
            if heading or (words and not re.match(r"\d+$", words[0])):
                name = wanted(heading)
                time = heading and float(heading[3])
            elif name and len(words) > 1:
                yield name, time, words


def printed_values(words):
    return [real(w) for w in words if w[0] in "-.0123456789"]


def import_deck(programs, deck, database):
    """Imports the deck and the results beside it. Their paths, None where there is none, and what the
    importer complained of when it failed."""
    found = [deck[:-4] + end for end in (".frd", ".dat")]
    frd, dat = [p if os.path.exists(p) and os.path.getsize(p) else None for p in found]
    command = [os.path.join(programs, "odb_import"), "-q", deck, "-o", database]
    command += ["--results", frd] if frd else []
    command += ["--data", dat] if dat else []
    done = subprocess.run(command, stderr=subprocess.PIPE, check=False)
    return frd, dat, done.stderr.decode(errors="replace").strip() if done.returncode else None


def dumped(programs, database):
    """The lines of dump_database."""
    done = subprocess.run([os.path.join(programs, "dump_database"), database],
                          stdout=subprocess.PIPE, check=True)
    return [line for line in done.stdout.decode().split("\n") if line]


def go_through(what, programs, decks, compare):
    """Imports each deck and calls compare(database, deck, frd, dat, counts), which returns what
    differs. Exit status: 1 something differs or nothing was compared, 2 a deck was not imported."""
    counts = collections.Counter()
    bad = refused = 0
    with tempfile.TemporaryDirectory() as folder:
        for deck in decks:
            database = os.path.join(folder, "compared.odb")
            frd, dat, error = import_deck(programs, deck, database)
            if error is not None:
                refused += 1
                print("%s: not imported: %s" % (deck, error))
                continue
            problems = compare(database, deck, frd, dat, counts)
            bad += bool(problems)
            for problem in problems[:3]:
                print("%s: %s" % (deck, problem))
    print("%s: %d decks, %d refused, %d differ; compared: %s" % (
        what, len(decks), refused, bad, ", ".join("%d %s" % (n, k) for k, n in sorted(counts.items()))))
    return 1 if bad or not counts else 2 if refused else 0
