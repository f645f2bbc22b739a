#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Imports the solver's example decks and compares the databases with a plain reading of the decks.

    compare_decks.py ODB_IMPORT DUMP_DATABASE [FOLDER]

Nothing is shared with the importer, and nothing is quick or tolerant here. Compared are nodes,
elements, sets, sections with their materials and elements, elastic constants, densities and the
procedures of the steps. Exit status: 1 something differs, 77 the examples are not installed.
"""
import collections
import glob
import gzip
import os
import re
import struct
import subprocess
import sys
import tempfile

FOLDER = "/usr/share/doc/calculix-ccx-test/examples/test"
N_DECKS = 355
NO_MESH = "beamread.inp"  # continues another analysis
NODES = {"C3D8": 8, "C3D20": 20, "C3D4": 4, "C3D10": 10, "C3D6": 6, "C3D15": 15, "F3D8": 8, "CAX8": 8,
         "CAX6": 6, "CPS8": 8, "CPS4": 4, "CPE4": 4, "CPE8": 8, "S8": 8, "S6": 6, "B31": 2,
         "B32": 3, "T3D2": 2, "SPRINGA": 2, "DASHPOTA": 2, "GAPUNI": 2, "DCOUP3D": 1, "D": 3}
PROCEDURES = set(
    "STATIC VISCO DYNAMIC FREQUENCY COMPLEXFREQUENCY BUCKLE MODALDYNAMIC STEADYSTATEDYNAMICS CFD "
    "HEATTRANSFER COUPLEDTEMPERATURE-DISPLACEMENT UNCOUPLEDTEMPERATURE-DISPLACEMENT NOANALYSIS "
    "ELECTROMAGNETICS SUBSTRUCTUREGENERATE SENSITIVITY".split())


def real(text):
    return float(re.sub("[dD]", "E", text or "0"))


def single(text):
    return struct.unpack("f", struct.pack("f", real(text)))[0]


class Model:
    """Each kind of entry by its name; compared part by part."""

    def __init__(self):
        self.node, self.element = {}, {}
        self.nset, self.elset = collections.defaultdict(set), collections.defaultdict(set)
        self.section, self.elastic, self.density = {}, {}, {}
        self.procedures = []


def read_deck(text):
    model, left, cells_of = Model(), 0, None
    name, parameters, material, n_lines, in_step = "", {}, "", 0, False
    for line in re.sub("[ \t\r]", "", text).upper().split("\n"):
        if not line or line.startswith("**"):
            continue
        cells = line.split(",")
        if line[0] == "*":
            name = cells[0][1:]
            parameters = {k: v for k, _, v in (c.partition("=") for c in cells[1:])}
            left = n_lines = 0
            if name == "STEP":
                model.procedures.append("")
            in_step = name == "STEP" or (in_step and name != "ENDSTEP")
            if in_step and not model.procedures[-1] and name in PROCEDURES:
                model.procedures[-1] = name
            if name == "MATERIAL":
                material = parameters["NAME"]
            if name in ("SOLIDSECTION", "SHELLSECTION"):
                model.section[parameters["ELSET"]] = parameters.get("MATERIAL", "")
            if name in ("NSET", "ELSET"):
                model.__dict__[name.lower()][parameters[name]]
            continue
        n_lines += 1
        if name == "NODE":
            label = int(cells[0])
            model.node[label] = [single(c) for c in (cells[1:4] + ["0"] * 3)[:3]]
            if "NSET" in parameters:
                model.nset[parameters["NSET"]].add(label)
        elif name == "ELEMENT":
            if left == 0:
                kind = parameters["TYPE"]
                left = NODES.get(kind) or NODES[kind.rstrip("RI")]
                cells_of = []
                model.element[int(cells.pop(0))] = (kind, cells_of)
                if "ELSET" in parameters:
                    model.elset[parameters["ELSET"]].add(next(reversed(model.element)))
            taken = [int(c or 0) for c in cells if c or not line.endswith(",")][:left]
            left -= len(taken)
            cells_of.extend(n for n in taken if n)
        elif name in ("NSET", "ELSET"):
            sets = model.nset if name == "NSET" else model.elset
            members = sets[parameters[name]]
            if "GENERATE" in parameters:
                step = int(cells[2]) if len(cells) > 2 and cells[2] else 1
                members.update(range(int(cells[0]), int(cells[1]) + 1, max(step, 1)))
                continue
            for cell in filter(None, cells):
                members.update({int(cell)} if cell.isdigit() else set(sets[cell]))
        elif name in ("ELASTIC", "DENSITY") and n_lines == 1:
            values = [real(c) for c in cells if c]
            model.__dict__[name.lower()][material] = values if name == "ELASTIC" else values[:1]
    for sets, known in ((model.nset, model.node), (model.elset, model.element)):
        for members in sets.values():
            members.intersection_update(known)
    return model


def read_database(lines):
    model = Model()
    model.assigned = collections.defaultdict(set)
    for line in lines:
        kind, _, rest = line.partition(" ")
        key, _, values = rest.partition(" |")
        words = rest.split()
        if kind == "node":
            model.node[int(words[0])] = [single(w) for w in words[1:]]
        elif kind == "element":
            model.element[int(words[0])] = (words[1], [int(w) for w in key.split()[2:]])
        elif kind in ("nset", "elset", "assigned"):
            model.__dict__[kind][key].update(map(int, values.split()))
        elif kind == "section":
            model.section[key] = values.strip()
        elif kind in ("elastic", "density"):
            model.__dict__[kind][key] = [float(v) for v in values.split()]
        elif kind == "step":
            model.procedures.append(re.sub("[ *]|,.*", "", values))
    return model


def differences(deck, database):
    for what in ("node", "element"):
        if deck.__dict__[what] != database.__dict__[what]:
            yield what + "s"
    for what in ("nset", "elset", "elastic", "density"):
        for name, values in deck.__dict__[what].items():
            found = database.__dict__[what].get(name, set())
            if what in ("elastic", "density"):
                found = list(found)[:len(values)]
            if values != found:
                yield what + " " + name
    for elset, material in deck.section.items():
        name = "Section-" + elset
        if database.section.get(name, 0) not in (material, ""):
            yield "material of " + name
        if database.assigned[name] != deck.elset[elset]:
            yield "elements of " + name
    if deck.procedures != database.procedures:
        yield "procedures"


def main():
    importer, dump = sys.argv[1:3]
    decks = sorted(glob.glob((sys.argv[3:] or [FOLDER])[0] + "/*.inp*"))
    if not decks:
        return 77
    problems = [] if len(decks) == N_DECKS else ["%d decks" % len(decks)]
    with tempfile.TemporaryDirectory() as folder:
        deck, odb = os.path.join(folder, "deck.inp"), os.path.join(folder, "deck.odb")
        for path in decks:
            with (gzip.open if path.endswith(".gz") else open)(path, "rb") as file:
                data = file.read()
            with open(deck, "wb") as file:
                file.write(data)
            run = subprocess.run([importer, "-q", deck, "-o", odb], capture_output=True, text=True)
            name = os.path.basename(path).replace(".gz", "")
            if name == NO_MESH:
                if run.returncode != 1 or "the deck defines no nodes" not in run.stderr:
                    problems.append(name + " is accepted")
                continue
            text = subprocess.run([dump, odb], capture_output=True, text=True).stdout
            found = differences(read_deck(data.decode("latin-1")), read_database(text.split("\n")))
            problems += ["%s: %s differ" % (name, what) for what in list(found)[:3]]
    print("\n".join(problems) or "%d decks agree" % len(decks))
    return 1 if problems else 0


sys.exit(main())
