# SPDX-License-Identifier: BSD-3-Clause
"""What the solver makes of shells, plane elements and beams, for compare_database.py.

Written from the chapter on element types of the CalculiX CrunchiX User's Manual, in the solver's
numbering of nodes (from 1), and checked by geometry: every solid found here has to lie around its
element, top above bottom. Nothing is shared with the importer.
"""
import collections
import re
from math import copysign

# Per node of an element: node below, node above, node between (0: none).
SURFACES = {
    (3, 6): ((1, 4, 0), (2, 5, 0), (3, 6, 0)),
    (4, 8): ((1, 5, 0), (2, 6, 0), (3, 7, 0), (4, 8, 0)),
    (6, 15): ((1, 4, 13), (2, 5, 14), (3, 6, 15), (7, 10, 0), (8, 11, 0), (9, 12, 0)),
    (8, 20): ((1, 5, 17), (2, 6, 18), (3, 7, 19), (4, 8, 20),
              (9, 13, 0), (10, 14, 0), (11, 15, 0), (12, 16, 0)),
}
# Per node of a beam: the nodes of its cross-section, those of the mean first.
BEAMS = {
    (2, 8): ((1, 4, 5, 8), (2, 3, 6, 7)),
    (3, 20): ((1, 4, 5, 8, 12, 16, 17, 20), (9, 11, 13, 15), (2, 3, 6, 7, 10, 14, 18, 19)),
}
# Of the first four, the signs of their places along the local directions 1 and 2, that is across
# the faces 1 2 6 5 and 4 3 7 8, and across 1 2 3 4 and 5 6 7 8.
CORNER_SIGNS = ((-1, 1), (-1, -1), (1, 1), (1, -1))
# Result files have the middle edges of quadratic solids before the upper ones.
FILE_ORDER = {20: list(range(12)) + [16, 17, 18, 19, 12, 13, 14, 15],
              15: list(range(9)) + [12, 13, 14, 9, 10, 11]}
FULL_CIRCLE = 180  # axisymmetric elements become wedges of 2 degrees


def minus(a, b):
    return [x - y for x, y in zip(a, b)]


def dot(a, b):
    return sum(x * y for x, y in zip(a, b))


def cross(a, b):
    return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]]


def middle(a, b):
    return [(x + y) / 2 for x, y in zip(a, b)]


def size(a):
    return dot(a, a) ** 0.5


def turned(values, axes):
    """A tensor (six values 11 22 33 12 13 23) or vector in other axes; a scalar as it is."""
    if axes is None or len(values) == 1:
        return values
    if len(values) == 3:
        return [dot(a, values) for a in axes]
    xx, yy, zz, xy, xz, yz = values
    full = ((xx, xy, xz), (xy, yy, yz), (xz, yz, zz))
    rows = [[dot(r, a) for r in full] for a in axes]
    return [dot(axes[i], rows[j]) for i, j in ((0, 0), (1, 1), (2, 2), (0, 1), (0, 2), (1, 2))]


def shell_axes(deck, label):
    """The system in which the solver prints stresses of a shell: global x projected on its middle."""
    x = [deck.nodes[n] for n in deck.elements[label].nodes]
    if len(x) == 8:
        u, v = minus(x[5], x[7]), minus(x[6], x[4])
    elif len(x) == 4:
        u, v = minus(middle(x[1], x[2]), middle(x[0], x[3])), minus(middle(x[2], x[3]), middle(*x[:2]))
    else:
        u, v = minus(x[1], x[0]), minus(x[2], x[0])
        if len(x) == 6:
            u = [a + 4 * b for a, b in zip(u, minus(x[4], x[5]))]
            v = [a + 4 * b for a, b in zip(v, minus(x[4], x[3]))]
    normal = cross(u, v)
    normal = [a / size(normal) for a in normal]
    axis = [0, 0, 1] if abs(normal[0]) > 0.99999848 else [1, 0, 0]  # cosine of 0.1 degrees
    second = cross(normal, axis)
    second = [a / size(second) for a in second]
    return [cross(second, normal), second, normal]


def same_system(quaternion, axes):
    """True when the rotation matrix of the quaternion has the axes as rows."""
    if not quaternion:
        return False
    x, y, z, w = quaternion
    rows = ((1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w)),
            (2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w)),
            (2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)))
    return all(abs(a - b) < 1e-5 for r, s in zip(rows, axes) for a, b in zip(r, s))


Element = collections.namedtuple("Element", "kind nodes category")


class DeckMesh:
    """The mesh as it is in the database: nodes, elements and section points."""

    def __init__(self):
        self.nodes, self.elements = {}, {}
        self.points = collections.defaultdict(list)  # by category: (number, fraction, layer)
        self.corners = collections.defaultdict(dict)  # by category and number: signs

    def take(self, words):
        """Takes a line of the dump; false when it is of another kind."""
        if words[0] == "node":
            self.nodes[int(words[1])] = [float(w) for w in words[2:]]
        elif words[0] == "element":
            bar = words.index("|")
            self.elements[int(words[1])] = Element(
                words[2], [int(w) for w in words[3:bar]], " ".join(words[bar + 1:]))
        elif words[0] == "point":
            text = " ".join(words)
            found = re.match(r"point (\d+) x1 = (\S+), x2 = (\S+) \| (.*)", text)
            if found:
                self.corners[found[4]][int(found[1])] = float(found[2]), float(found[3])
                return True
            found = re.match(r"point (\d+) fraction = (\S+), Layer = (\d+) \| (.*)", text)
            self.points[found[4]].append((int(found[1]), float(found[2]), int(found[3])))
        return words[0] in ("instance", "node", "element", "point")

    def layer_and_side(self, category, number):
        """Layer from 0, and -1 for its lowest, 1 for its highest section point."""
        points = self.points[category]
        fraction, layer = next((f, k) for n, f, k in points if n == number)
        others = [f for _, f, k in points if k == layer]
        return layer - 1, {min(others): -1, max(others): 1}.get(fraction, 0)

    def layers(self, category):
        return max([layer for _, _, layer in self.points[category]], default=0)


class ExpandedMesh:
    """Finds the solids of each element, and what nodes of the file stand for a node of the deck."""

    def __init__(self, deck, nodes, elements):
        self.deck, self.nodes = deck, nodes
        self.problems = []
        self.solids = {}  # of each expanded element: nodes in the solver's order, bottom layer first
        self.split = {}  # of an element and its node: the double that it has at a pre-tension section
        self.itself = set()
        self.mean = collections.defaultdict(list)
        self.sum = collections.defaultdict(set)
        self.round = any(e.kind.startswith("CAX") for e in deck.elements.values())
        self.circle = set()
        scale = max((abs(x) for xyz in deck.nodes.values() for x in xyz), default=1)
        for label, xyz in deck.nodes.items():
            if label in nodes and max(map(abs, minus(xyz, nodes[label]))) < 2e-5 * scale:
                self.itself.add(label)
        strange = {n: e for n, e in elements.items() if n not in deck.elements}
        for label, element in deck.elements.items():
            found = elements.get(label)
            if found and len(found) == len(element.nodes):
                self.itself.update(set(found) & set(element.nodes))
                for node in set(element.nodes) - set(found):
                    self.split[label, node] = [
                        n for n in found if n in nodes
                        and max(map(abs, minus(deck.nodes[node], nodes[n]))) < 2e-5 * scale]
            elif found and (len(element.nodes), len(found)) in {**SURFACES, **BEAMS}:
                self.expand(label, element, [found])
            elif not found and strange and element.kind.startswith("S"):
                layers = self.layers_of(element, strange)
                if layers:
                    self.expand(label, element, layers)

    @staticmethod
    def in_order(solid):
        order = FILE_ORDER.get(len(solid), range(len(solid)))
        return [solid[i] for i in order]

    def layers_of(self, element, strange):
        """The solids whose edges run through the element's nodes, from bottom to top."""
        found = []
        for solid in strange.values():
            table = SURFACES.get((len(element.nodes), len(solid)))
            if not table or any(n not in self.nodes for n in solid):
                continue
            ordered = self.in_order(solid)
            heights = []
            for node, (low, high, _) in zip(element.nodes, table):
                a, b = self.nodes[ordered[low - 1]], self.nodes[ordered[high - 1]]
                up = minus(b, a)
                off = minus(middle(a, b), self.deck.nodes[node])
                if size(cross(up, off)) > 1e-3 * size(up) * max(size(up), size(off)):
                    break
                heights.append(dot(off, up) / size(up))
            else:
                found.append((sum(heights), solid))
        return [solid for _, solid in sorted(found)]

    def expand(self, label, element, solids):
        solids = [self.in_order(solid) for solid in solids]
        if any(n not in self.nodes for solid in solids for n in solid):
            return  # a file that has been cut
        self.solids[label] = solids
        key = len(element.nodes), len(solids[0])
        if element.kind[0] in "BT":
            for node, section in zip(element.nodes, BEAMS[key]):
                at = [solids[0][n - 1] for n in section]
                self.mean[node].append([(n, 0.25) for n in at[:4]])
                self.sum[node].update(at)
            return
        x = [self.deck.nodes[n] for n in element.nodes]
        normal = cross(minus(x[1], x[0]), minus(x[2], x[0]))
        for node, (low, high, between) in zip(element.nodes, SURFACES[key]):
            shares = []
            heights = [size(minus(self.nodes[s[high - 1]], self.nodes[s[low - 1]])) for s in solids]
            for solid, height in zip(solids, heights):
                up = minus(self.nodes[solid[high - 1]], self.nodes[solid[low - 1]])
                if dot(up, normal) < 0:
                    self.problems.append("element %d: top and bottom are exchanged" % label)
                w = height / sum(heights) if sum(heights) else 1 / len(solids)
                if between:
                    shares += self.through(solid, (low, high, between), w)
                if len(solids) == 1:
                    self.sum[node].update(solid[n - 1] for n in (low, high, between) if n)
            # Edges of layers follow the whole element's shape functions: its faces count.
            self.mean[node].append(
                shares or [(solids[0][low - 1], 0.5), (solids[-1][high - 1], 0.5)])
            if self.round and element.kind[0] == "C":
                self.circle.add(node)

    @staticmethod
    def through(solid, place, weight):
        """The mean over the thickness: of the parabola through three nodes, or of a line."""
        low, high, between = place
        shares = [(low, 1), (between, 4), (high, 1)] if between else [(low, 1), (high, 1)]
        total = sum(s for _, s in shares)
        return [(solid[n - 1], weight * s / total) for n, s in shares]

    def axes(self, label, at):
        """Tangent and local directions 1 and 2 of a beam or truss, from the edges of its solid at
        `at`, -1 to 1 along it; None for other elements."""
        element, solids = self.deck.elements[label], self.solids.get(label)
        if element.kind[0] not in "BT" or not solids:
            return None
        x = [self.deck.nodes[n] for n in element.nodes]
        slopes = (-0.5, 0.5) if len(x) == 2 else (at - 0.5, -2 * at, at + 0.5)
        t = [sum(s * p[k] for s, p in zip(slopes, x)) for k in range(3)]
        corner = [self.nodes[solids[0][i]] for i in range(8)]
        # The edges turn with a curved line: those of both ends have their share.
        ends = (1 - at) / 2, (1 + at) / 2
        second = [a * p + b * q for a, b, p, q in zip(
            [ends[0]] * 3, [ends[1]] * 3, minus(corner[0], corner[3]), minus(corner[1], corner[2]))]
        first = cross(second, t)
        second = cross(t, first)
        return [[v / size(a) for v in a] for a in (t, first, second)]

    def axes_at(self, label, node):
        """The axes at a node of a beam or truss; None for other elements."""
        nodes = self.deck.elements[label].nodes
        return self.axes(label, 2 * nodes.index(node) / (len(nodes) - 1) - 1)

    def at_node(self, node, adds_up):
        """[(node of the file, weight)] of a node of the deck; empty: it should have no value."""
        if not adds_up:
            if node in self.itself:
                return [(node, 1)]
            parts = self.mean[node]
            return [(n, w / len(parts)) for part in parts for n, w in part]
        factor = FULL_CIRCLE if node in self.circle else 1
        own = [(node, 1)] if node in self.itself else []
        return own + [(n, factor) for n in self.sum[node]]

    def at_element(self, label, node, number):
        """The same of an element's value at a node, at section point `number` (-1: none)."""
        element = self.deck.elements[label]
        solids = self.solids.get(label)
        if not solids:
            return [(n, 1) for n in self.split.get((label, node), [node])]
        if element.kind[0] in "BT":
            section = BEAMS[len(element.nodes), len(solids[0])][element.nodes.index(node)][:4]
            if number < 0:
                return [(solids[0][n - 1], 0.25) for n in section]
            one, two = self.deck.corners[element.category][number]
            at = [solids[0][n - 1] for n in section]
            # Round and solid: nodes lie on the circle. Pipes: corners of the square around it.
            reach = abs(one) if self.is_pipe(solids[0]) else 1
            return [(n, (1 + a * copysign(reach, one)) * (1 + b * copysign(reach, two)) / 4)
                    for n, (a, b) in zip(at, CORNER_SIGNS) if reach < 1 or (a * one > 0 and b * two > 0)]
        place = SURFACES[len(element.nodes), len(solids[0])][element.nodes.index(node)]
        if number < 0:
            return self.through(solids[0], place, 1)
        layer, side = self.deck.layer_and_side(element.category, number)
        return [(solids[layer][place[side > 0] - 1], 1)] if side else []

    def is_pipe(self, solid):
        """Of a beam: the edges of its cross-section are straight."""
        if len(solid) < 20:
            return False
        a, b, edge = (self.nodes[solid[i]] for i in (0, 3, 11))
        return size(minus(edge, middle(a, b))) < 1e-3 * size(minus(a, b))
