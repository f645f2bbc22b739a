#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Shows what a solved database holds, through the server and its reference client.

    show_results.py BIN DATABASE PICTURE

Prints the catalogue, the range of the last frame's stress and where it lies, and one history; draws
the deformed model, coloured by the Mises stress (or, without stress, by the displacement), into the
PNG file PICTURE. BIN is the folder of the programs. Ends with status 1 when the client fails."""
import json
import math
import os
import subprocess
import sys

import matplotlib

matplotlib.use("Agg")
from matplotlib import cm, colors, pyplot  # noqa: E402
from mpl_toolkits.mplot3d.art3d import Poly3DCollection  # noqa: E402

# Corner nodes of the faces, by the number of corners of a solid; nodes are counted from 0 in the
# element's own order. Further nodes of a solid lie on its edges and are left out.
SOLID_FACES = {
    8: [(0, 3, 2, 1), (4, 5, 6, 7), (0, 1, 5, 4), (1, 2, 6, 5), (2, 3, 7, 6), (3, 0, 4, 7)],
    6: [(0, 2, 1), (3, 4, 5), (0, 1, 4, 3), (1, 2, 5, 4), (2, 0, 3, 5)],
    4: [(0, 2, 1), (0, 1, 3), (1, 2, 3), (2, 0, 3)],
}
SOLID_CORNERS = {4: 4, 10: 4, 6: 6, 15: 6, 8: 8, 20: 8, 27: 8}
FLAT_CORNERS = {3: 3, 6: 3, 4: 4, 8: 4, 9: 4}
FLAT_TYPES = ("S", "M3D", "CPS", "CPE", "CAX", "STRI")


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


def faces_of(element):
    """Tuples of node labels: the faces of a solid, or a flat element itself."""
    nodes = element["nodes"]
    kind = element["type"].strip()
    if kind.startswith(FLAT_TYPES) and len(nodes) in FLAT_CORNERS and not kind.startswith("SPRING"):
        return [tuple(nodes[: FLAT_CORNERS[len(nodes)]])]
    if len(nodes) in SOLID_CORNERS and kind.startswith(("C3D", "DC3D", "AC3D", "SC")):
        return [tuple(nodes[i] for i in face) for face in SOLID_FACES[SOLID_CORNERS[len(nodes)]]]
    return []


def outer_faces(elements):
    seen = {}
    for element in elements:
        for face in faces_of(element):
            seen.setdefault(frozenset(face), []).append(face)
    return [faces[0] for faces in seen.values() if len(faces) == 1]


def mises(c):
    """Mises stress of the components 11, 22, 33, 12, 13, 23."""
    c = list(c) + [0.0] * (6 - len(c))
    normal = (c[0] - c[1]) ** 2 + (c[1] - c[2]) ** 2 + (c[2] - c[0]) ** 2
    return math.sqrt(0.5 * normal + 3 * (c[3] ** 2 + c[4] ** 2 + c[5] ** 2))


def values(folder, database, step, frame, field, position):
    found = rows(folder, "values", database, "--step", str(step), "--frame", str(frame), "--field",
                 field, "--position", position, "--letter", "m", "--show", "values")
    return [row for row in found if row["table"] == "value"]


def nodal_colours(folder, database, step, frame, fields):
    """A number per node label, and what it is."""
    if "S" in fields:
        sums = {}
        for row in values(folder, database, step, frame, "S", "stored"):
            if row["node_or_face"] > 0:
                entry = sums.setdefault(row["node_or_face"], [0.0, 0])
                entry[0] += mises(row["components"])
                entry[1] += 1
        if sums:
            return {label: total / n for label, (total, n) in sums.items()}, "Mises stress"
    return None, "displacement"


def draw(folder, database, step, frame, fields, picture, title):
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
        for row in values(folder, database, step, frame, "U", "stored"):
            moves[row["node_or_face"]] = (row["components"] + [0.0, 0.0])[:3]
    largest = max((math.hypot(*u) for u in moves.values()), default=0.0)
    low = [min(x[i] for x in nodes.values()) for i in range(3)]
    high = [max(x[i] for x in nodes.values()) for i in range(3)]
    size = math.dist(low, high)
    scale = 0.08 * size / largest if largest > 0 else 0.0
    heat, what = nodal_colours(folder, database, step, frame, fields)
    if heat is None:
        heat = {label: math.hypot(*u) for label, u in moves.items()}
    shade = [sum(heat.get(n, 0.0) for n in face) / len(face) for face in faces]
    norm = colors.Normalize(min(shade), max(shade) if max(shade) > min(shade) else min(shade) + 1)

    def place(label):
        u = moves.get(label, (0.0, 0.0, 0.0))
        return [x + scale * d for x, d in zip(nodes[label], u)]

    figure = pyplot.figure(figsize=(9, 7))
    axes = figure.add_subplot(projection="3d")
    axes.add_collection3d(Poly3DCollection(
        [[place(n) for n in face] for face in faces], facecolors=cm.jet(norm(shade)),
        edgecolors="black", linewidths=0.4))
    margin = 0.1 * size
    axes.set_xlim(low[0] - margin, high[0] + margin)
    axes.set_ylim(low[1] - margin, high[1] + margin)
    axes.set_zlim(low[2] - margin, high[2] + margin)
    axes.set_box_aspect([max(h - l, 0.05 * size) for l, h in zip(low, high)])
    axes.set_xlabel("x")
    axes.set_ylabel("y")
    axes.set_zlabel("z")
    axes.set_title(f"{title}\nstep {step}, frame {frame}; displacements x {scale:.3g}")
    figure.colorbar(cm.ScalarMappable(norm, cm.jet), ax=axes, shrink=0.6, label=what)
    figure.savefig(picture, dpi=110)
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
                     "--field", "S", "--letter", "m", "--show", "range"))
    regions = [row for row in rows(folder, "history", database) if row["table"] == "region"]
    if regions:
        print(client(folder, "history", database, "--region", regions[0]["region"]))
    draw(folder, database, step, frame, fields, picture, title)


if __name__ == "__main__":
    main()
