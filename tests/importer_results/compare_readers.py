#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Reads result files (.frd) and print files (.dat) in its own way and compares every label, number
and name with what dump_results finds in them.

    compare_readers.py DUMP_RESULTS FILE_OR_FOLDER ...

Nothing is shared with the importer: text is taken apart by regular expressions on whole blocks, not
by columns, and binary blocks by struct formats.
"""
import itertools
import os
import re
import struct
import subprocess
import sys

NUMBER = re.compile(rb"[-+]?\d\.\d*(?:[EeDd][-+]?|[-+])\d+?(?=[-+]?\d\.|\s|$)|[-+]?(?:nan|inf)\b|[-+]?\d+\.\d+",
                    re.I)
ELEMENT_NODES = {1: 8, 2: 6, 3: 4, 4: 20, 5: 15, 6: 10, 7: 3, 8: 6, 9: 4, 10: 8, 11: 2, 12: 3}


def real(text):
    text = text.decode().replace("D", "E").replace("d", "e")
    bare = re.fullmatch(r"([-+]?\d+\.\d*)([-+]\d+)", text)
    return float(bare[1] + "e" + bare[2] if bare else text)


def numbers(text):
    return [real(n) for n in NUMBER.findall(text)]


def row(*parts):
    return "".join("%d " % p if isinstance(p, int) else "%.17g " % p for p in parts)


class FrdFile:
    """The blocks of a .frd file as lines of text."""

    def __init__(self, data):
        self.data = data
        self.at = 0
        self.parameters = {}

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

    def block(self):
        """The text up to the line -3, which a newline precedes."""
        end = re.compile(rb"^ -3 *\r?$", re.M).search(self.data, self.at)
        text = self.data[self.at:end.start()]
        self.at = self.data.find(b"\n", end.start()) + 1
        return text.replace(b"\r", b"")

    def rows(self, layout, count, width):
        if layout >= 2:
            if count == 0 or self.data[self.at:self.at + 4] in (b"    ", b" 999"):
                return
            for _ in range(count):
                yield row(*self.take("i%d%s" % (width, "f" if layout == 2 else "d")))
            return
        digits = 5 if layout == 0 else 10
        for record in re.split(rb"^ -1", self.block(), flags=re.M)[1:]:
            label = int(record[:digits])
            rest = re.sub(rb"\n -2 {%d}" % digits, b"\n", record[digits:])
            found = numbers(rest)
            if len(found) != width:
                raise ValueError("%d numbers in %r, %d expected" % (len(found), record, width))
            yield row(label, *found)

    def elements(self, layout):
        if layout >= 2:
            while not re.match(rb"    | 999|  10", self.data[self.at:self.at + 4]):
                head = self.take("4i")
                yield row(*head[:3]) + row(*self.take("%di" % ELEMENT_NODES[head[1]]))
            return
        digits = 5 if layout == 0 else 10
        for record in re.split(rb"^ -1", self.block(), flags=re.M)[1:]:
            head, *tails = record.split(b"\n")
            values = [int(head[:digits])] + [int(head[digits + i:digits + i + 5]) for i in (0, 5)]
            for tail in tails:
                values += [int(v) for v in re.findall(rb".{%d}" % digits, tail[3:])]
            yield row(*values)

    def result(self, head):
        value, count = real(head[12:24].strip()), int(head[24:36])
        kind, number, layout = int(head[56:58]), int(head[58:63]), int(head[73:75] or 0)
        name, n = re.match(rb" -4  (.{8}) *(\d+)", self.line()).groups()
        names = [self.line() for _ in range(int(n))]
        stored = [c[5:13].strip().decode() for c in names if (c[33:38].strip() or b"0") == b"0"]
        step = self.parameters.get("STEP", [0, 0, 0])
        mode = self.parameters.get("MODE", [0])[0]
        self.parameters = {}
        yield "result %s %.17g type %d number %d step %d increment %d mode %d components %s" % (
            name.strip().decode(), value, kind, number, step[2], step[1], mode, " ".join(stored))
        yield from self.rows(layout, count, len(stored))

    def __iter__(self):
        complete = False
        while self.at < len(self.data) and not complete:
            head = self.line()
            key = head.split(None, 1)[0] if head.strip() else b""
            if key[:2] == b"1P":
                words = head.split()
                if words[0][2:] in (b"STEP", b"MODE"):
                    self.parameters[words[0][2:].decode()] = [int(w) for w in words[1:]]
            elif key == b"2C":
                lines = list(self.rows(int(head[36:]), int(head[24:36].strip() or 0), 3))
                yield "nodes %d" % len(lines)
                yield from lines
            elif key == b"3C":
                lines = list(self.elements(int(head[36:])))
                yield "elements %d" % len(lines)
                yield from lines
            elif key[:4] == b"100C":
                yield from self.result(head)
            complete = key == b"9999"
        yield "complete" if complete else "cut"


DAT_HEADING = re.compile(
    r" *([A-Za-z].*?) ?(?:(?:for ?)?set ?(\S.*?)|for all contact elements) *(?:,? and ?time) *(\S+) *$")
DAT_KEYS = (("integ.pnt.", 2), ("element+face", 2), ("at the integration points", 3),
            ("surface stress vector", 3))


def dat_lines(data):
    """The tables with a time and with labels, and those of eigenvalues, as lines of text."""
    keys = None
    begun = False
    for text in data.decode(errors="replace").split("\n"):
        words = text.split()
        if re.search("E I G E N V A L U E   O U T|B U C K L I N G", text):
            keys, begun = 2, False
            yield "modes"
        elif found := DAT_HEADING.match(text):
            title = re.sub(r" ?\bfor$", "", found[1].strip())
            keys = next((n for part, n in DAT_KEYS if part in title), 1)
            if re.match("total (force|heat|int|kin|vol|body|mass|surf)|center of|statistics", title):
                keys = None
                continue
            yield 'table %s set "%s" time %.17g' % (title, found[2] or "", float(found[3]))
        elif keys is not None and words and re.fullmatch(r"\d+", words[0]):
            begun = True
            n = sum(1 for _ in itertools.takewhile(str.isdigit, words[:keys]))
            values = itertools.takewhile(
                lambda w: re.fullmatch(r"[-+]?(\d+\.\d*([ED]?[-+]\d+)?|nan|inf\w*)", w, re.I),
                words[n:])
            yield row(*[int(w) for w in words[:n]], *[real(v.encode()) for v in values])
        elif begun and words:
            keys = None


def compare(dump, path):
    """None when both readings agree, else what differs."""
    done = subprocess.run([dump, path], stdout=subprocess.PIPE, check=False)
    theirs = done.stdout.decode().rstrip("\n").split("\n")
    with open(path, "rb") as file:
        data = file.read()
    if theirs[-1].startswith("error "):
        return theirs[-1]
    ours = dat_lines(data) if ".dat" in os.path.basename(path) else FrdFile(data)
    n = 0
    for n, (a, b) in enumerate(itertools.zip_longest(theirs if theirs != [""] else [], ours), 1):
        if (a or "").strip() != (b or "").strip():
            return "entry %d: importer \"%s\", comparison \"%s\"" % (n, a, b)
    compare.entries += n
    return None


def main():
    dump, *places = sys.argv[1:]
    paths = []
    for place in places:
        inside = [os.path.join(folder, name) for folder, _, names in os.walk(place)
                  for name in names] if os.path.isdir(place) else [place]
        paths += sorted(p for p in inside if re.search(r"\.(frd|dat)(\.ref)?$", p))
    compare.entries = bad = 0
    for path in paths:
        difference = compare(dump, path) if os.path.getsize(path) else None
        if difference:
            bad += 1
            print("%s: %s" % (path, difference))
    print("%d files, %d entries compared, %d files differ" % (len(paths), compare.entries, bad))
    return 1 if bad or not compare.entries else 0


if __name__ == "__main__":
    sys.exit(main())
