#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Compiles the two parents that README.md shows and runs them on a server: what readers copy works.

usage: readme_examples_test.py SOURCE_DIR BUILD_DIR
"""
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

source, build = Path(sys.argv[1]), Path(sys.argv[2])
server = str(build / "bin" / "odb_server")
readme = (source / "README.md").read_text(encoding="utf-8")
flags = ["-Wall", "-Wextra", "-Werror"]
if "fsanitize" in (build / "build.ninja").read_text(encoding="utf-8"):
    flags.append("-fsanitize=address,undefined")


def block(language):
    found = re.findall(r"^```%s\n(.*?)^```$" % language, readme, re.S | re.M)
    assert len(found) == 1, f"README.md has {len(found)} blocks of {language}"
    return found[0]


def run(command):
    result = subprocess.run(command, capture_output=True, text=True, timeout=60, check=False,
                            env={**os.environ, "ODB_SERVER": server})
    assert result.returncode == 0, f"{command}: {result.returncode}\n{result.stdout}{result.stderr}"
    return result.stdout


with tempfile.TemporaryDirectory() as folder:
    by_hand = Path(folder, "by_hand.c")
    by_hand.write_text(block("c"), encoding="utf-8")
    run(["cc", *flags, str(by_hand), "-o", f"{folder}/by_hand"])
    assert "process id starts with byte" in run([f"{folder}/by_hand", server])

    with_library = Path(folder, "with_library.cpp")
    with_library.write_text(block("cpp"), encoding="utf-8")
    libraries = [str(build / name) for name in
                 ("client/libodbs_client.a", "port/libodbs_port.a", "base/libodbs_base.a")]
    run(["c++", "-std=c++17", *flags, f"-I{source}", str(with_library), *libraries, "-pthread",
         "-o", f"{folder}/with_library"])
    run([str(build / "bin" / "client_write_rod"), f"{folder}/rod.odb"])
    output = run([f"{folder}/with_library", f"{folder}/rod.odb"])
    assert "2 nodes, 1 elements" in output, output
    assert output.count("a record of tag 34") == 2, output
print("both examples of README.md compile and answer")
