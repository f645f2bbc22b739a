#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Runs what README.md shows, so that what readers copy works: the command lines, on the samples, and
the two parents, compiled, on a server.

usage: readme_examples_test.py SOURCE_DIR BUILD_DIR
"""
import os
import re
import shlex
import subprocess
import sys
import tempfile
from pathlib import Path

source, build = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
server = str(build / "bin" / "odb_server")
readme = (source / "README.md").read_text(encoding="utf-8")
flags = ["-Wall", "-Wextra", "-Werror"]
if "fsanitize" in (build / "build.ninja").read_text(encoding="utf-8"):
    flags.append("-fsanitize=address,undefined")


def block(language):
    found = re.findall(r"^```%s\n(.*?)^```$" % language, readme, re.S | re.M)
    assert len(found) == 1, f"README.md has {len(found)} blocks of {language}"
    return found[0]


def run(command, folder=None):
    result = subprocess.run(command, capture_output=True, text=True, timeout=60, check=False,
                            cwd=folder, env={**os.environ, "ODB_SERVER": server})
    assert result.returncode == 0, f"{command}: {result.returncode}\n{result.stdout}{result.stderr}"
    return result.stdout


with tempfile.TemporaryDirectory() as folder:
    for solved in (source / "samples" / "bar_modes").iterdir():
        Path(folder, solved.name).write_bytes(solved.read_bytes())
    sample = str(source / "samples" / "contact_block" / "contact_block")
    run([str(build / "bin" / "odb_import"), "-q", f"{sample}.inp", "--results", f"{sample}.frd", "--data",
         f"{sample}.dat", "-o", f"{folder}/job.odb"])
    lines = re.findall(r"^    (odb_(?:client|import|modal_covariance) .*)$", readme, re.M)
    assert len(lines) > 5, lines
    for line in lines:
        program, *arguments = shlex.split(line, comments=True)
        output = run([str(build / "bin" / program), *arguments], folder)
        assert output or program != "odb_client", line

    by_hand = Path(folder, "by_hand.c")
    by_hand.write_text(block("c"), encoding="utf-8")
    run(["cc", *flags, str(by_hand), "-o", f"{folder}/by_hand"])
    assert "process id starts with byte" in run([f"{folder}/by_hand", server])

    with_library = Path(folder, "with_library.cpp")
    with_library.write_text(block("cpp"), encoding="utf-8")
    libraries = [str(build / name) for name in
                 ("client/libodbs_client.a", "client/records/libodbs_client_records.a",
                  "port/libodbs_port.a", "base/libodbs_base.a")]
    run(["c++", "-std=c++17", *flags, f"-I{source}", str(with_library), *libraries, "-pthread",
         "-o", f"{folder}/with_library"])
    output = run([f"{folder}/with_library", f"{folder}/job.odb"])
    assert "96 nodes, 36 elements" in output, output
    assert output.count("a record of tag 34") == 2, output
print(f"{len(lines)} command lines and both programs of README.md answer")
