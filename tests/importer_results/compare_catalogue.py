#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Imports solved decks, asks a server for every listing of the result catalogue, and compares each
entry with what the frames hold: classes, position masks, invariants, tensor kinds, section point and
complex flags are worked out here from the blocks that dump_database prints. Each listing is asked for
twice with a cache file: the replay must be the same.

    compare_catalogue.py PROGRAM_FOLDER DECK.inp ...

Exit status: 1 something differs or there was nothing to compare, 2 a deck was not imported.
"""
import collections
import json
import os
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True  # the sources stay as they are

from compare_database import ELEMENT_NODAL, INTEGRATION_POINT, NODAL, import_deck, single  # noqa: E402

WHOLE_ELEMENT = 8
POSITION_BITS = {ELEMENT_NODAL: 8, INTEGRATION_POINT: 4, WHOLE_ELEMENT: 16}
# What a field of so many components is: its bit in the mask of kinds, its invariants (magnitude;
# Mises, Tresca, pressure, third invariant and the three principal values).
KINDS = {1: (1, ()), 3: (16, (1,)), 6: (2, (2, 3, 4, 5, 6, 7, 8))}
LISTINGS = "dDsSvV"

Field = collections.namedtuple("Field", "name width complex positions points")
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
            field = Field(words[1], set(), set(), set(), collections.defaultdict(set))
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


def ask(client, database, folder):
    """The records of each command line, in the order in which they came."""
    lines = []
    for listing in LISTINGS:
        cache = os.path.join(folder, "cache_" + listing)
        if os.path.exists(cache):
            os.remove(cache)
        for _ in range(2):
            lines += ["T " + cache, "f%s %s" % (listing, database)]
    done = subprocess.run([client, "send", database, *lines, "--format", "jsonl"],
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    if done.returncode:
        raise RuntimeError(done.stderr.decode(errors="replace").strip())
    return [json.loads(line) for line in done.stdout.decode().splitlines()]


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


def compare(programs, deck, folder, total):
    """What differs."""
    importer, dump, client = (os.path.join(programs, name)
                              for name in ("odb_import", "dump_database", "odb_client"))
    database = os.path.join(folder, "listed.odb")
    _, _, error = import_deck(importer, deck, database)
    if error is not None:
        return None
    text = subprocess.run([dump, database], stdout=subprocess.PIPE, check=False).stdout.decode()
    steps = read_frames([line for line in text.split("\n") if line])
    replies = replies_of(ask(client, database, folder))
    if len(replies) != 2 * len(LISTINGS):
        return ["%d replies for %d listings" % (len(replies), 2 * len(LISTINGS))]
    problems = []
    for i, listing in enumerate(LISTINGS):
        expected = list(expected_entries(steps, listing))
        for reply, how in zip(replies[2 * i:2 * i + 2], ("computed", "replayed")):
            total["entries " + how] += len(reply)
            if len(reply) != len(expected):
                problems.append("f%s %s: %d entries, %d expected" % (listing, how, len(reply),
                                                                     len(expected)))
            for ours, theirs in zip(expected, reply):
                if ours != theirs:
                    problems.append("f%s %s: %s, expected %s" % (listing, how, theirs, ours))
                    break
    return problems


def main():
    programs, *decks = sys.argv[1:]
    total = collections.Counter()
    bad = refused = 0
    with tempfile.TemporaryDirectory() as folder:
        for deck in decks:
            problems = compare(programs, deck, folder, total)
            if problems is None:
                refused += 1
                continue
            bad += bool(problems)
            for problem in problems[:3]:
                print("%s: %s" % (deck, problem))
    print("catalogue: %d decks, %d refused, %d differ; compared: %s" % (
        len(decks), refused, bad, ", ".join("%d %s" % (n, k) for k, n in sorted(total.items()))))
    if bad or not total["entries computed"]:
        return 1
    return 2 if refused else 0


if __name__ == "__main__":
    sys.exit(main())
