#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Shows that the tests find faults: breaks a copy of the source in one place at a time and expects
the test suite to fail.

    scripts/check_mutations.py [--list] [NUMBER ...]

The copy and its build are in build/mutations. A mutation counts only when its text is in its file
exactly once and the mutated copy compiles. The exit status is 1 when one does not count or is not
noticed. Each takes a partial build and the tests up to the first failure: about half an hour for all
on two cores.
"""

import argparse
import shutil
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
COPY = ROOT / "build" / "mutations"

# What breaks, file, text, what replaces it, tests that run first (a pattern of their names).
# Chosen from all folders: offsets, limits, conditions, signs, skipped checks.
MUTATIONS = [
    ("a buffer that is full to the limit is not written out first",
     "server/core/channel.h", "fill + payloadBytes >= kFlushThreshold",
     "fill + payloadBytes > kFlushThreshold"),
    ("31 labels go into a record",
     "server/core/label_chunks.h", "kLabelsPerRecord = 30", "kLabelsPerRecord = 31"),
    ("what a command has buffered is not written at its end",
     "server/core/channel.cpp",
     "port::writeAll(outputFd, outputBuffer.bytes, outputBuffer.fill);",
     "static_cast<void>(outputFd);"),
    ("a database that changed, but not in size, stays open with its old content",
     "registry/open_database.cpp", "a.modificationTime == b.modificationTime && ", ""),
    ("an upgraded copy that is older than its original is taken",
     "registry/upgrade_check.cpp", "return !copy.exists ||", "return !copy.exists &&"),
    ("sections are numbered from 0",
     "model/section_names.cpp", "std::int32_t smallestFree = 1;", "std::int32_t smallestFree = 0;"),
    ("coordinates are taken from two numbers a node",
     "model/mesh.cpp", "coordinates + 3 * static_cast", "coordinates + 2 * static_cast"),
    ("a vector has the value type of a tensor",
     "server/core/result_codes.h", "return value_type::kVector;", "return value_type::kTensorOf6;"),
    ("the second local direction has a wrong sign",
     "results/value_records.cpp", "2 * (q[2] * q[1] - q[0] * q[3])",
     "2 * (q[2] * q[1] + q[0] * q[3])"),
    ("the bottom of an element is its last point but one",
     "results/section_point_choice.cpp", "points[top_ ? n - 1 : 0]", "points[top_ ? n - 2 : 0]"),
    ("values at element nodes are listed as at integration points",
     "catalogue/field_descriptor.cpp", "kIntegrationPoint:\n      return 4;",
     "kIntegrationPoint:\n      return 8;"),
    ("a complex step of the frequency domain has no conjugate flag",
     "catalogue/history.cpp", "(domain == 1 || domain == 2)", "(domain == 1)"),
    ("a stale catalogue cache is replayed",
     "catalogue/cache_file.cpp",
     "if (time != key.databaseStatus.modificationTime)", "if (time < 0)"),
    ("a region of an instance takes its neighbours too",
     "regions/region_resolver.cpp", "if (share.instance != name) return false;",
     "if (share.instance == name) return false;"),
    ("the client takes the third label for the integration point",
     "client/field_values.cpp", "{0x18, {false, true, true}}", "{0x18, {true, false, true}}"),
    ("the client reads beyond a record's end",
     "client/records/cursor.h", "if (n > left_) failShort", "if (n > left_ + 4) failShort"),
    ("biased nodes are spread the other way round",
     "importer/deck/read_generation.cpp", "const double q = 1 / bias;", "const double q = bias;"),
    ("results at layers of a composite are taken from the element of the first layer",
     "importer/results/result_mesh.cpp", "layered->second + i : label", "layered->second : label"),
    ("extrapolation takes a wrong Gauss point",
     "odb/src/numerics/extrapolation.cpp", "{{-kGauss2, 0, 0}, {kGauss2, 0, 0}}",
     "{{-kGauss3, 0, 0}, {kGauss3, 0, 0}}"),
    ("Mises stress takes too little of the shear",
     "odb/src/numerics/tensor.cpp", "+ 3 * shear);", "+ 2 * shear);"),
    ("companion files of the cache outlive a server whose parent has ended",
     "server/parent_watchdog.cpp", "  removeCacheCompanions();\n", ""),
]


def run(command, log, **options):
    log.write(f"$ {' '.join(map(str, command))}\n".encode())
    log.flush()
    return subprocess.run(list(map(str, command)), stdout=log, stderr=subprocess.STDOUT, check=False,
                          **options).returncode == 0


def copyTree():
    COPY.mkdir(parents=True, exist_ok=True)
    files = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                           stdout=subprocess.PIPE, text=True).stdout.splitlines()
    for name in files:
        source, target = ROOT / name, COPY / name
        if not source.is_file():
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        if not target.exists() or source.read_bytes() != target.read_bytes():
            shutil.copy(source, target)


def outcome(number, mutation, log):
    what, name, before, after = mutation
    path = COPY / name
    text = path.read_text(encoding="utf-8") if path.exists() else ""
    if text.count(before) != 1 or before == after:
        return "does not apply"
    log.write(f"\n== {number}: {what}\n".encode())
    path.write_text(text.replace(before, after), encoding="utf-8")
    try:
        if not run(["cmake", "--build", "build/release"], log, cwd=COPY):
            return "does not compile"
        noticed = not run(["ctest", "--test-dir", "build/release", "-j", "2", "--timeout", "300",
                           "--stop-on-failure", "--output-on-failure"], log, cwd=COPY)
        return "noticed" if noticed else "NOT NOTICED"
    finally:
        path.write_text(text, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--list", action="store_true", help="print the mutations, do nothing")
    parser.add_argument("numbers", nargs="*", type=int, help="only these")
    options = parser.parse_args()
    chosen = [(i, m) for i, m in enumerate(MUTATIONS, 1)
              if not options.numbers or i in options.numbers]
    if options.list:
        for number, (what, name, _, _) in chosen:
            print(f"{number:3} {name}: {what}")
        return 0
    copyTree()
    nNoticed = 0
    with open(COPY / "mutations.log", "wb") as log:
        if not (run(["cmake", "--preset", "release"], log, cwd=COPY)
                and run(["cmake", "--build", "build/release"], log, cwd=COPY)):
            print(f"the unchanged copy does not build, see {log.name}", file=sys.stderr)
            return 1
        for number, mutation in chosen:
            result = outcome(number, mutation, log)
            nNoticed += result == "noticed"
            print(f"{number:3} {result:16} {mutation[1]}: {mutation[0]}", flush=True)
    print(f"{nNoticed} of {len(chosen)} noticed")
    return 0 if nNoticed == len(chosen) else 1


if __name__ == "__main__":
    sys.exit(main())
