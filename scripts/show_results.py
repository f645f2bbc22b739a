#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Shows what a solved database holds, through the server and its reference client.

    show_results.py BIN DATABASE PICTURE

Prints the catalogue, the range of the last frame's stress and where it lies, and one history; draws
the deformed model, coloured by the Mises stress (or, without stress, by the displacement), into the
PNG file PICTURE. BIN is the folder of the programs. Ends with status 1 when the client fails.

A node has the greatest Mises stress of the elements around it, on the top side of shells; between
the nodes of a face the colour is interpolated. So the end of the colour scale is the greatest of the
values that the server sends."""
import json
import math
import os
import subprocess
import sys

# Corner nodes of the faces, by the number of corners of a solid; nodes are counted from 0 in the
# element's own order.
SOLID_FACES = {
    8: [(0, 3, 2, 1), (4, 5, 6, 7), (0, 1, 5, 4), (1, 2, 6, 5), (2, 3, 7, 6), (3, 0, 4, 7)],
    6: [(0, 2, 1), (3, 4, 5), (0, 1, 4, 3), (1, 2, 5, 4), (2, 0, 3, 5)],
    4: [(0, 2, 1), (0, 1, 3), (1, 2, 3), (2, 0, 3)],
}
SOLID_CORNERS = {4: 4, 10: 4, 6: 6, 15: 6, 8: 8, 20: 8, 27: 8}
FLAT_CORNERS = {3: 3, 6: 3, 4: 4, 8: 4, 9: 4}
FLAT_TYPES = ("S", "M3D", "CPS", "CPE", "CAX", "STRI")
# The edges with a node in their middle, in the order of those nodes, which follow the corners.
SOLID_EDGES = {
    8: [(0, 1), (1, 2), (2, 3), (3, 0), (4, 5), (5, 6), (6, 7), (7, 4), (0, 4), (1, 5), (2, 6),
        (3, 7)],
    6: [(0, 1), (1, 2), (2, 0), (3, 4), (4, 5), (5, 3), (0, 3), (1, 4), (2, 5)],
    4: [(0, 1), (1, 2), (2, 0), (0, 3), (1, 3), (2, 3)],
}


def client(folder, *arguments):
    """The standard output of odb_client; its errors end the program."""
    program = os.path.join(folder, "odb_client")
    done = subprocess.run([program, *arguments], stdout=subprocess.PIPE, text=True, check=False)
    if done.returncode != 0:
        sys.exit(1)
    return done.stdout


def rows(folder, *arguments):
    text = client(folder, *arguments, "--format", "jsonl")
    return [json.loads(line) for line in text.splitlines()]


def face_with_middles(nodes, face, corners, edges):
    """Labels of a face's corners and, where the element has them, of the nodes between."""
    labels = [nodes[i] for i in face]
    if len(nodes) >= corners + len(edges):
        places = {frozenset(edge): corners + i for i, edge in enumerate(edges)}
        labels += [nodes[places[frozenset((a, b))]] for a, b in zip(face, face[1:] + face[:1])]
    return tuple(labels), len(face)


def faces_of(element):
    """The faces of a solid, or a flat element itself: node labels and the number of corners."""
    nodes = element["nodes"]
    kind = element["type"].strip()
    if kind.startswith(FLAT_TYPES) and len(nodes) in FLAT_CORNERS and not kind.startswith("SPRING"):
        n = FLAT_CORNERS[len(nodes)]
        face = tuple(range(n))
        return [face_with_middles(nodes, face, n, list(zip(face, face[1:] + face[:1])))]
    if len(nodes) in SOLID_CORNERS and kind.startswith(("C3D", "DC3D", "AC3D", "SC")):
        n = SOLID_CORNERS[len(nodes)]
        return [face_with_middles(nodes, face, n, SOLID_EDGES[n]) for face in SOLID_FACES[n]]
    return []


def outer_faces(elements):
    seen = {}
    for element in elements:
        for labels, corners in faces_of(element):
            seen.setdefault(frozenset(labels[:corners]), []).append((labels, corners))
    return [faces[0] for faces in seen.values() if len(faces) == 1]


def weights(nodes, corners, r, s):
    """The shape functions of a face at (r, s): from -1 to 1 of a quadrilateral, from 0 to 1 of a
    triangle; linear, or quadratic with nodes between the corners."""
    if corners == 3:
        area = (1 - r - s, r, s)
        if nodes == 3:
            return area
        return [a * (2 * a - 1) for a in area] + [4 * area[i] * area[(i + 1) % 3] for i in range(3)]
    ends = ((-1, -1), (1, -1), (1, 1), (-1, 1))
    linear = [(1 + a * r) * (1 + b * s) / 4 for a, b in ends]
    if nodes == 4:
        return linear
    middles = [(1 - r * r) * (1 - s) / 2, (1 + r) * (1 - s * s) / 2, (1 - r * r) * (1 + s) / 2,
               (1 - r) * (1 - s * s) / 2]
    return [linear[i] - (middles[i] + middles[i - 1]) / 2 for i in range(4)] + middles


def patches(corners, n):
    """A face cut into small ones, n along each edge: lists of (r, s)."""
    if corners == 4:
        at = [-1 + 2 * i / n for i in range(n + 1)]
        return [[(at[i], at[j]), (at[i + 1], at[j]), (at[i + 1], at[j + 1]), (at[i], at[j + 1])]
                for i in range(n) for j in range(n)]
    cut = []
    for i in range(n):
        for j in range(n - i):
            cut.append([(i / n, j / n), ((i + 1) / n, j / n), (i / n, (j + 1) / n)])
            if j < n - i - 1:
                cut.append([((i + 1) / n, j / n), ((i + 1) / n, (j + 1) / n), (i / n, (j + 1) / n)])
    return cut


def mises(c):
    """Mises stress of the components 11, 22, 33, 12, 13, 23."""
    c = list(c) + [0.0] * (6 - len(c))
    normal = (c[0] - c[1]) ** 2 + (c[1] - c[2]) ** 2 + (c[2] - c[0]) ** 2
    return math.sqrt(0.5 * normal + 3 * (c[3] ** 2 + c[4] ** 2 + c[5] ** 2))


def values(folder, database, step, frame, field, *options):
    return rows(folder, "values", database, "--step", str(step), "--frame", str(frame), "--field",
                field, "--table", "value", *options)


def nodal_stress(folder, database, step, frame):
    """The greatest Mises stress around each node, and what it is called."""
    heat = {}
    what = "Mises stress"
    for row in values(folder, database, step, frame, "S", "--position", "element-node", "--letter",
                      "t"):
        label = row["node_or_face"]
        heat[label] = max(heat.get(label, 0.0), mises(row["components"]))
        if row["section_point"] >= 0:
            what = "Mises stress, top side of shells"
    return heat, what


def draw(folder, database, step, frame, fields, picture, title):
    # Here, so that the rest can be used without it.
    import matplotlib
    matplotlib.use("Agg")
    from matplotlib import cm, colors, pyplot
    from mpl_toolkits.mplot3d.art3d import Poly3DCollection

    records = rows(folder, "send", database, "g {}")
    instances = sum(record["kind"] == "name" for record in records)
    if instances:
        print("several instances: no picture")
        return
    nodes = {r["label"]: (r["coordinates"] + [0.0])[:3] for r in records if r["kind"] == "node"}
    faces = outer_faces([r for r in records if r["kind"] == "element"])
    if not faces:
        print("no solids or shells: no picture")
        return
    moves = {}
    if "U" in fields:
        for row in values(folder, database, step, frame, "U"):
            moves[row["node_or_face"]] = (row["components"] + [0.0, 0.0])[:3]
    largest = max((math.hypot(*u) for u in moves.values()), default=0.0)
    low = [min(x[i] for x in nodes.values()) for i in range(3)]
    high = [max(x[i] for x in nodes.values()) for i in range(3)]
    size = math.dist(low, high)
    scale = 0.08 * size / largest if largest > 0 else 0.0
    if "S" in fields:
        heat, what = nodal_stress(folder, database, step, frame)
    else:
        heat, what = {label: math.hypot(*u) for label, u in moves.items()}, "displacement"
    hottest = max(heat, key=heat.get, default=None)
    top = heat.get(hottest, 0.0)
    bottom = min(heat.values(), default=0.0)
    norm = colors.Normalize(bottom, top if top > bottom else bottom + 1)
    n = 4 if len(faces) < 1000 else 2 if len(faces) < 10000 else 1

    def place(label):
        u = moves.get(label, (0.0, 0.0, 0.0))
        return [x + scale * d for x, d in zip(nodes[label], u)]

    def between(shape, columns):
        return [sum(w * x for w, x in zip(shape, column)) for column in columns]

    # Painted from the back to the front, each by its middle: pieces of edges are moved towards the
    # viewer, by about the size of the patches beside them, to come after these.
    shapes, shades, edges = [], [], []
    elevation, azimuth = math.radians(30), math.radians(-60)
    to_viewer = (math.cos(elevation) * math.cos(azimuth), math.cos(elevation) * math.sin(azimuth),
                 math.sin(elevation))
    for labels, corners in faces:
        places = list(zip(*(place(label) for label in labels)))
        heats = [[heat.get(label, bottom) for label in labels]]
        for patch in patches(corners, n):
            cut = [weights(len(labels), corners, r, s) for r, s in patch]
            shapes.append([between(shape, places) for shape in cut])
            shades.append(sum(between(shape, heats)[0] for shape in cut) / len(cut))
        ring = [place(label) for i in range(corners) for label in labels[i::corners]]
        pieces = max(1, n * corners // len(ring))
        for a, b in zip(ring, ring[1:] + ring[:1]):
            shift = math.dist(a, b) / pieces
            cuts = [[x + (y - x) * i / pieces + shift * v for x, y, v in zip(a, b, to_viewer)]
                    for i in range(pieces + 1)]
            edges += [[c, d, c] for c, d in zip(cuts, cuts[1:])]

    figure = pyplot.figure(figsize=(9, 7))
    axes = figure.add_subplot(projection="3d", proj_type="ortho")
    axes.view_init(math.degrees(elevation), math.degrees(azimuth))
    black = [(0, 0, 0, 1)] * len(edges)
    paint = list(map(tuple, cm.jet(norm(shades))))
    axes.add_collection3d(Poly3DCollection(shapes + edges, facecolors=paint + black,
                                           edgecolors=paint + black, linewidths=0.4))
    margin = 0.1 * size
    axes.set_xlim(low[0] - margin, high[0] + margin)
    axes.set_ylim(low[1] - margin, high[1] + margin)
    axes.set_zlim(low[2] - margin, high[2] + margin)
    axes.set_box_aspect([h - l + 2 * margin for l, h in zip(low, high)])
    axes.set_xlabel("x")
    axes.set_ylabel("y")
    axes.set_zlabel("z")
    greatest = f"greatest {what}: {top:.6g} at node {hottest}"
    axes.set_title(f"{title}\nstep {step}, frame {frame}; displacements x {scale:.3g}\n{greatest}")
    figure.colorbar(cm.ScalarMappable(norm, cm.jet), ax=axes, shrink=0.6, label=what)
    figure.savefig(picture, dpi=110)
    print(greatest)
    print(f"picture: {picture}")


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    folder, database, picture = sys.argv[1:]
    print(client(folder, "catalogue", database))
    listings = rows(folder, "catalogue", database)
    frames = [row for row in listings if row["table"] == "frame"]
    if not frames:
        print("no results")
        return
    step = max(row["step"] for row in frames)
    frame = max(row["frame"] for row in frames if row["step"] == step)
    fields = {row["field"] for row in listings if row["table"] == "field" and row["step"] == step}
    title = listings[0]["title"]
    if "S" in fields:
        print(client(folder, "values", database, "--step", str(step), "--frame", str(frame),
                     "--field", "S", "--show", "range"))
    regions = [row for row in rows(folder, "history", database) if row["table"] == "region"]
    if regions:
        print(client(folder, "history", database, "--region", regions[0]["region"]))
    draw(folder, database, step, frame, fields, picture, title)


if __name__ == "__main__":
    main()
