#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Imports solved decks and asks a server for every nodal field and every listing of the result
catalogue. Values are compared with those that dump_database prints; classes, position masks,
invariants, tensor kinds, section point and complex flags of the listings are worked out here from
the blocks that it prints. Each listing is asked for twice with a cache file: the replay must be the
same.

    compare_server.py PROGRAM_FOLDER DECK.inp ...

Exit status: 1 something differs or there was nothing to compare, 2 a deck was not imported.
"""
import collections
import json
import os
import subprocess
import sys

sys.dont_write_bytecode = True  # the sources stay as they are

from solver_files import dumped, equal, go_through, single  # noqa: E402

NODAL, ELEMENT_NODAL, INTEGRATION_POINT = 1, 2, 3
WHOLE_ELEMENT = 8
POSITION_BITS = {ELEMENT_NODAL: 8, INTEGRATION_POINT: 4, WHOLE_ELEMENT: 16}
# What a field of so many components is: its bit in the mask of kinds, its invariants (magnitude;
# Mises, Tresca, pressure, third invariant and the three principal values).
KINDS = {1: (1, ()), 3: (16, (1,)), 6: (2, (2, 3, 4, 5, 6, 7, 8))}
LISTINGS = "dDsSvV"

Field = collections.namedtuple("Field", "name width complex positions points nodal")
Frame = collections.namedtuple("Frame", "mode value frequency fields")


def read_frames(lines):
    """The frames of each step with their fields, in the database's order."""
    steps, field, width_of = [], None, None
    for line in lines:
        words = line.partition(" @ ")[0].split()  # without the local system of a value
        if words[0] == "step":
            steps.append([])
        elif words[0] == "frame":
            steps[-1].append(Frame(int(words[2]), float(words[3]), float(words[4]), []))
        elif words[0] == "field":
            field = Field(words[1], set(), set(), set(), collections.defaultdict(set), {})
            steps[-1][-1].fields.append(field)
        elif words[0] == "block":
            position, point, is_complex = int(words[1]), int(words[-2]), int(words[-1])
            field.complex.add(is_complex)
            field.positions.add(position)
            field.points[position].add(point)
            width_of = field.width, 1 + is_complex
        elif words[0] == "history":
            width_of = None
        elif width_of and steps and words[0].lstrip("-").isdigit():
            width_of[0].add((len(words) - 3) // width_of[1])
            if words[0] == "-1":
                field.nodal[int(words[1])] = [float(w) for w in words[3:]]
    return steps


def numbers_of(field, listing):
    """The numbers of a frame record that say what a field is; None where it is not listed."""
    (width,) = field.width
    (is_complex,) = field.complex
    kind, invariants = KINDS[width]
    if listing in "dD":
        if NODAL not in field.positions or width not in (1, 3):
            return None
        return {"complex": is_complex, "scalar": int(width == 1)}
    mask = sum(POSITION_BITS.get(position, 0) for position in field.positions)
    if mask == 0 or (listing in "vV" and width == 1):
        return None
    return {"complex": is_complex, "positions": mask,
            "invariants": sum(1 << code for code in invariants), "tensor_kinds": kind,
            "section_points": int(any(len(points) > 1 for points in field.points.values()))}


def expected_entries(steps, listing):
    """(step, frame, mode, value, frequency, name, numbers) of each entry, in the reply's order."""
    for number, frames in enumerate(steps, 1):
        for index, frame in enumerate(frames):
            fields = frame.fields
            if listing.islower():
                # The last frame stands for all; the first adds what the last lacks.
                fields = list(frames[-1].fields)
                listed = {f.name for f in fields if numbers_of(f, listing)}
                fields += [f for f in frames[0].fields if f.name not in listed]
            for field in fields:
                numbers = numbers_of(field, listing)
                if numbers:
                    yield (number, index, frame.mode, single(frame.value),
                           single(frame.frequency), field.name, numbers)


def ask(client, command, database, *words):
    """The records of a reply."""
    done = subprocess.run([client, command, database, *words, "--format", "jsonl"],
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    if done.returncode:
        raise RuntimeError(done.stderr.decode(errors="replace").strip())
    return [json.loads(line) for line in done.stdout.decode().splitlines()]


def listings(client, database):
    """The records of all listings in the order in which they come, each listing twice."""
    lines = []
    for listing in LISTINGS:
        cache = database + ".cache_" + listing
        if os.path.exists(cache):
            os.remove(cache)
        for _ in range(2):
            lines += ["T " + cache, "f%s %s" % (listing, database)]
    return ask(client, "send", database, *lines)


def nodal_problems(client, database, steps, counts):
    """Each nodal field of vectors or scalars in the first and last frame of each step."""
    for number, frames in enumerate(steps, 1):
        for index in sorted({0, len(frames) - 1} if frames else ()):
            for field in frames[index].fields:
                if not field.nodal or not field.width <= {1, 3}:
                    continue
                replies = ask(client, "nodal", database, "--step", str(number), "--frame",
                              str(index), "--field", field.name, "--table", "value")
                found = {r["node"]: r["components"] + r["conjugates"] for r in replies
                         if r["quantity"] == field.name}
                counts["nodal values"] += len(found)
                same = found.keys() == field.nodal.keys() and all(
                    equal(values, field.nodal[node]) for node, values in found.items())
                if not same:
                    yield "step %d frame %d: nodal %s differs" % (number, index, field.name)


def replies_of(records):
    """The replies to the listings, each the same as expected_entries, from records."""
    replies, step, field = [], None, None
    for record in records:
        if record["kind"] == "title":
            replies.append([])
        elif record["kind"] == "step":
            step = record["number"]
        elif record["kind"] == "field":
            field = record["name"]
        elif record["kind"] == "frame":
            numbers = {k: record[k] for k in ("complex", "scalar", "positions", "invariants",
                                              "tensor_kinds", "section_points") if k in record}
            replies[-1].append((step, record["frame"], record["mode"], single(record["value"]),
                                single(record["frequency"]), field, numbers))
    return replies


def catalogue_problems(client, database, steps, counts):
    replies = replies_of(listings(client, database))
    if len(replies) != 2 * len(LISTINGS):
        yield "%d replies for %d listings" % (len(replies), 2 * len(LISTINGS))
    for i, listing in enumerate(LISTINGS):
        expected = list(expected_entries(steps, listing))
        for reply, how in zip(replies[2 * i:2 * i + 2], ("computed", "replayed")):
            counts["entries " + how] += len(reply)
            if reply != expected:
                wrong = next((pair for pair in zip(reply, expected) if pair[0] != pair[1]), None)
                yield "f%s %s: %d entries, %d expected; the first wrong one: %s" % (
                    listing, how, len(reply), len(expected), wrong)


def main():
    programs, *decks = sys.argv[1:]
    client = os.path.join(programs, "odb_client")

    def compare(database, _deck, _frd, _dat, counts):
        steps = read_frames(dumped(programs, database))
        return [problem for part in (nodal_problems, catalogue_problems)
                for problem in part(client, database, steps, counts)]

    return go_through("server", programs, decks, compare)


if __name__ == "__main__":
    sys.exit(main())
