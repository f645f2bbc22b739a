#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Imports solved decks and compares what their databases hold with a reading of its own.

    compare_database.py PROGRAM_FOLDER DECK.inp ...

Beside each deck its result file (.frd) and print file (.dat) are looked for. Compared are: every
frame's value, every value at nodes, at nodes of elements and at integration points, the histories
of nodes and elements, and nodal fields with what the solver itself printed for the nodes. Result
files are read by solver_files.py, and expanded_mesh.py knows what the solver makes of shells and
beams. The deck's mesh and section points are taken as the database has them.
"""
import collections
import sys

sys.dont_write_bytecode = True  # the sources stay as they are

from expanded_mesh import DeckMesh, ExpandedMesh, minus, same_system, shell_axes, turned  # noqa: E402
from solver_files import FrdFile, dumped, equal, go_through, printed_rows, printed_values, single  # noqa: E402

TENSOR = (0, 1, 2, 3, 5, 4)  # xx yy zz xy yz zx, as 11 22 33 12 13 23
VECTOR = (0, 1, 2)
# block: ((field, components, of elements), ...)
FIELDS = {
    "DISP": (("U", VECTOR, False),), "VELO": (("V", VECTOR, False),),
    "FORC": (("RF", VECTOR, False),), "NDTEMP": (("NT11", (0,), False),),
    "STRESS": (("S", TENSOR, True),), "TOSTRAIN": (("E", TENSOR, True),),
    "MESTRAIN": (("ME", TENSOR, True),), "THSTRAIN": (("THE", TENSOR, True),), "PE": (("PEEQ", (0,), True),),
    "ENER": (("ENER", (0,), True),), "FLUX": (("HFL", VECTOR, True),),
    "ZZSTR": (("ZZS", TENSOR, True),), "RFL": (("RFL11", (0,), False),),
    "CONTACT": (("COPEN", (0,), False), ("CSLIP1", (1,), False), ("CSLIP2", (2,), False),
                ("CPRESS", (3,), False), ("CSHEAR1", (4,), False), ("CSHEAR2", (5,), False)),
    "CELS": (("CELS", (0,), False),),
}
STRAINS = ("E", "ME", "THE")  # kept with engineering shear
SECTION_FORCES = (("S", TENSOR, True), ("SF", (2, 1, 0), True), ("SM", (4, 5, 3), True))
ADDS_UP = ("RF", "RFL11", "CELS")
IMAGINARY = {name[:7] + "I" if len(name) == 8 else name + "I": name for name in FIELDS}
NODAL, ELEMENT_NODAL, INTEGRATION_POINT = 1, 2, 3
HISTORIES = {
    "displacements": ("Node ", "U", "123"), "forces": ("Node ", "RF", "123"),
    "velocities": ("Node ", "V", "123"), "temperatures": ("Node ", "NT11", ("",)),
    "heat generation": ("Node ", "RFL11", ("",)), "volume": ("Element ", "EVOL", ("",)),
    "internal energy": ("Element ", "ELSE", ("",)), "kinetic energy": ("Element ", "ELKE", ("",)),
}
POINTS = {"stresses": "S", "strains": "E", "mechanical strains": "ME",
          "equivalent plastic strain": "PEEQ", "internal energy density": "ENER",
          "heat flux": "HFL"}


# Where integration points are between the faces of an expanded element (-1 to 1).
GAUSS = {2: (-3 ** -0.5, 3 ** -0.5), 3: (-0.6 ** 0.5, 0, 0.6 ** 0.5)}


def lagrange(nodes, x):
    """Weights of values at `nodes` for the value at `x`."""
    weights = []
    for a in nodes:
        weights.append(1.0)
        for b in nodes:
            if a != b:
                weights[-1] *= (x - b) / (a - b)
    return weights


def printed_points(path):
    """(field, element, values of each point, last word) of the tables at integration points."""
    last, rows, note = None, [], ""
    for name, time, words in printed_rows(
            path, lambda h: h and POINTS.get(h[1].split(" (")[0])):
        if (name, time, words[0]) != last or words[1] == "1":
            if rows:
                yield last[0], int(last[2]), rows, note
            last, rows = (name, time, words[0]), []
        rows.append(printed_values(words[2:8]))
        note = words[-1]
    if rows:
        yield last[0], int(last[2]), rows, note


def printed_displacements(path):
    """(time, values by node)"""
    tables = collections.OrderedDict()
    for _, time, words in printed_rows(path, lambda h: h and h[1].startswith("displacements (vx")):
        tables.setdefault(time, {})[int(words[0])] = printed_values(words[1:4])
    return tables.items()


def stored(name, values):
    """The components that the database has of a value."""
    if name not in STRAINS:
        return values
    return [v * (2 if i % 6 > 2 else 1) for i, v in enumerate(values)]


def near(a, b, scale):
    """Equal but for the rounding of a sum of terms as large as `scale`."""
    return len(a) == len(b) and all(
        x == y or x != x and y != y or abs(x - y) <= 1e-6 * scale for x, y in zip(a, b))


def read_database(lines):
    """The mesh, and steps of (frames, histories); a frame's fields are blocks of rows."""
    mesh = DeckMesh()
    steps, rows, block = [], None, None
    for line in lines:
        words = line.split()
        if not steps and (mesh.take(words) or words[0] != "step"):
            continue
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
    return mesh, steps


class Comparison:
    def __init__(self, name):
        self.name = name
        self.expanded = None
        with open(name, encoding="utf-8", errors="replace") as deck:
            self.section_forces = "SECTIONFORCES" in deck.read().upper().replace(" ", "")
        self.n = collections.Counter()
        self.problems = []

    def check(self, what, a, b, where):
        self.n[what] += 1
        if not equal(a, b):
            self.problems.append("%s %s: database %s, file %s" % (what, where, a, b))

    def sources(self, position, adds_up, element, node, point):
        """[(node of the file, weight)] that a value should come from."""
        if position == NODAL:
            return self.expanded.at_node(node, adds_up)
        return self.expanded.at_element(element, node, point)

    def field(self, where, blocks, columns, position, real_rows, imaginary_rows):
        """One field; `where` ends with its name."""
        adds_up = where.split()[-1] in ADDS_UP
        for place, _, point, is_complex, rows in blocks:
            if place != position:
                continue
            for words in rows:
                element, node = int(words[0]), int(words[1])
                sources = self.sources(position, adds_up, element, node, point)
                if not sources or any(n not in real_rows for n, _ in sources):
                    self.problems.append("%s node %d: nothing in the file" % (where, node))
                    continue
                values = [float(w) for w in words[3:]]
                parts = [real_rows, imaginary_rows] if is_complex else [real_rows]
                expected = [[sum(w * part[n][c] for n, w in sources) for c in columns]
                            for part in parts]
                axes = None if position == NODAL else self.expanded.axes_at(element, node)
                expected = [v for values in expected for v in turned(values, axes)]
                expected = stored(where.split()[-1], expected)
                at = "%s element %d node %d point %d" % (where, element, node, point)
                if axes:
                    # Directions come from coordinates of six digits.
                    scale = 1e2 * max(abs(part[n][c]) for n, _ in sources
                                      for part in parts for c in columns)
                    self.n["values of beams and trusses"] += 1
                    if not near(values, expected, scale):
                        self.problems.append("%s: database %s, file %s" % (at, values, expected))
                elif len(sources) == 1 and sources[0][1] == 1:
                    kind = "values" if sources[0][0] == node else "values on sides of shells"
                    self.check(kind, values, expected, at)
                else:
                    scale = sum(abs(w * part[n][c]) for n, w in sources
                                for part in parts for c in columns)
                    self.n["sums" if adds_up else "means"] += 1
                    if not near(values, expected, scale):
                        self.problems.append("%s: database %s, file %s" % (at, values, expected))

    def frames(self, frames, steps):
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
                of_block = FIELDS.get(block, ())
                if self.section_forces and block == "STRESS":
                    of_block = SECTION_FORCES
                    self.sections(where, fields)
                for name, columns, of_elements in of_block:
                    if name not in fields:
                        if set(rows) & self.expanded.itself and not of_elements:
                            self.problems.append("%s lacks %s" % (where, name))
                        continue
                    self.field("%s %s" % (where, name), fields[name], columns,
                               ELEMENT_NODAL if of_elements else NODAL, rows, imaginary)

    def sections(self, where, fields):
        """Beams have section forces and moments, all else has stresses."""
        for name, _, _ in SECTION_FORCES:
            for position, kind, _, _, _ in fields.get(name, ()):
                if position == ELEMENT_NODAL and (kind[0] == "B") == (name == "S"):
                    self.problems.append("%s: %s at elements %s" % (where, name, kind))

    def points(self, path, steps):
        """Values at integration points, wherever a frame of that value has them."""
        found, systems = collections.defaultdict(list), {}
        for frames, _ in steps:
            for _, _, _, fields in frames:
                for name, blocks in fields.items():
                    for place, _, point, _, rows in blocks:
                        if place == INTEGRATION_POINT:
                            for words in rows:
                                bar = words.index("@") if "@" in words else len(words)
                                key = name, int(words[0]), point, int(words[2])
                                found[key].append([float(w) for w in words[3:bar]])
                                systems[key] = [float(w) for w in words[bar + 1:]]
        for name, element, rows, note in printed_points(path):
            if element not in self.mesh.elements:
                continue
            for point, at, values, scale in self.expected_points(element, rows):
                self.n["values at integration points" if point < 0 else
                       "values at section points"] += 1
                scale *= 2 if name in STRAINS else 1
                values = stored(name, values)
                candidates = found.get((name, element, point, at), [])
                # Real and imaginary parts come in tables of their own.
                halves = [c[i:i + len(values)] for c in candidates
                          for i in range(0, len(c), len(values))]
                if not any(near(h, values, scale) for h in halves):
                    self.problems.append("%s of element %d point %d, section point %d: %s is not in"
                                         " the database" % (name, element, at, point, values))
                if note.startswith("_shell_") and len(values) > 1:
                    self.n["local systems"] += 1
                    if not same_system(systems.get((name, element, point, at)),
                                       shell_axes(self.mesh, element)):
                        self.problems.append("%s of element %d: local system" % (name, element))

    def expected_points(self, label, rows):
        """(section point, integration point, values, scale) of the table's rows of an element."""
        element = self.mesh.elements[label]
        if element.kind.startswith(("C3D", "DC3D")):
            for i, row in enumerate(rows):
                yield -1, i + 1, row, 1e-1 * max(map(abs, row))
            return
        if element.kind[0] in "BT" and self.expanded and len(rows) in (8, 27, 50):
            yield from self.expected_lines(label, rows)
            return
        if element.kind[0] not in "SMCD" or element.kind[1] == "P":
            self.n["rows inside of beams, not compared"] += len(rows)
            return
        layers = self.mesh.layers(element.category) if element.kind[0] == "S" else 0
        in_layer = len(rows) // max(layers, 1)
        nodes = GAUSS[3 if in_layer % 9 == 0 else 2]
        each = in_layer // len(nodes)
        for layer in range(max(layers, 1)):
            for side in (-1, 1) if layers else (0,):
                weights = lagrange(nodes, side)
                numbers = [n for n, _, k in self.mesh.points[element.category]
                           if self.mesh.layer_and_side(element.category, n) == (layer, side)]
                for at in range(each):
                    of = [rows[layer * in_layer + k * each + at] for k in range(len(nodes))]
                    scale = max(abs(v) for row in of for v in row)
                    yield (numbers[0] if layers else -1), at + 1, [
                        sum(w * row[c] for w, row in zip(weights, of))
                        for c in range(len(of[0]))], scale

    def expected_lines(self, label, rows):
        """The same of a beam or truss: its corners, or its middle, at the points along the line."""
        element = self.mesh.elements[label]
        n = 3 if len(rows) == 27 else 2
        corners = self.mesh.corners[element.category] if element.kind[0] == "B" else {-1: (0, 0)}
        if not corners:
            self.n["rows inside of beams, not compared"] += len(rows)
        for number, (one, two) in corners.items():
            # From nodes 1 to 4 direction 2 falls, from 1 to 5 direction 1 rises.
            one, two = ((v > 0) - (v < 0) for v in (one, two))
            along2, along1 = lagrange(GAUSS[n], -two), lagrange(GAUSS[n], one)
            for i in range(n):
                axes = self.expanded.axes(label, GAUSS[n][i])
                if axes is None:
                    continue
                values = [sum(along2[j] * along1[k] * rows[i + n * j + n * n * k][c]
                              for j in range(n) for k in range(n)) for c in range(len(rows[0]))]
                yield number, i + 1, turned(values, axes), 1e2 * max(
                    abs(v) for row in rows for v in row)

    def printed_nodes(self, path, steps):
        """Displacements as the solver printed them, and as the database has them at that time."""
        total = 0
        fields = []
        for frames, _ in steps:
            for _, mode, value, found in frames:
                # Complex values come in tables of real and imaginary parts.
                if mode == 0 and "U" in found and not found["U"][0][3]:
                    fields.append((total + value, {int(w[1]): [float(x) for x in w[3:6]]
                                                   for b in found["U"] for w in b[4]}))
            total += frames[-1][2] if frames and not frames[-1][1] else 0
        for time, rows in printed_displacements(path):
            same = [u for t, u in fields if abs(t - time) <= 2e-6 * abs(time)]
            if len(same) != 1 or not set(rows) & set(same[0]):
                continue
            scale = self.largest_source
            for node in set(rows) & set(same[0]):
                self.n["printed displacements"] += 1
                if max(map(abs, minus(rows[node], same[0][node]))) > 1e-5 * scale:
                    self.problems.append("U of node %d at %g: database %s, printed %s" % (
                        node, time, same[0][node], rows[node]))


    def histories(self, path, steps):
        """Printed values of nodes and elements, each in a history of its own."""
        found = collections.defaultdict(set)
        for _, histories in steps:
            for name, rows in histories.items():
                region, output = name.split(" | ")
                for kind in ("Node ", "Element "):
                    if region.startswith(kind) and " face " not in region:
                        label = int(region.split(".")[1].split()[0])
                        for row in rows:
                            found[kind, label, output].update(single(float(v)) for v in row[1:])
        for (kind, name, components), time, words in printed_rows(
                path, lambda h: h and HISTORIES.get(h[1].split(" (")[0])):
            label = int(words[0])
            if label not in (self.mesh.nodes if kind == "Node " else self.mesh.elements):
                continue
            for component, value in zip(components, printed_values(words[1:])):
                self.n["values of histories"] += 1
                if value == value and single(value) not in found[kind, label, name + component]:
                    self.problems.append("%s%d at %g: %s%s %r is in no history" % (
                        kind, label, time, name, component, value))


def main():
    programs, *decks = sys.argv[1:]

    def compare(database, deck, frd, dat, counts):
        result = Comparison(deck)
        result.mesh, steps = read_database(dumped(programs, database))
        if frd:
            file = FrdFile(frd)
            result.expanded = ExpandedMesh(result.mesh, file.nodes, file.elements)
            result.problems += result.expanded.problems
            result.frames(file.frames, steps)
            result.largest_source = max((abs(v) for frame in file.frames
                                         for row in frame.fields.get("DISP", {}).values()
                                         for v in row[:3]), default=0)
        if dat:
            result.points(dat, steps)
            result.histories(dat, steps)
            if frd:
                result.printed_nodes(dat, steps)
        counts.update(result.n)
        return result.problems

    return go_through("databases", programs, decks, compare)


if __name__ == "__main__":
    sys.exit(main())
