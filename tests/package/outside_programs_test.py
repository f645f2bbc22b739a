#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Installs the project and builds programs outside of it: one for the database API by find_package,
one parent of a server by pkg-config, one by add_subdirectory. Runs them.

usage: outside_programs_test.py SOURCE_DIR BUILD_DIR
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

source, build = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
readme = (source / "README.md").read_text(encoding="utf-8")


def block(language):
    return re.findall(r"^```%s\n(.*?)^```$" % language, readme, re.S | re.M)[0]


def run(*command, folder=None, **variables):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, cwd=folder,
                          env={**os.environ, **variables}, check=False)
    assert done.returncode == 0, f"{command}: {done.returncode}\n{done.stdout}{done.stderr}"
    return done.stdout


def project(folder, lists, **sources):
    folder.mkdir()
    (folder / "CMakeLists.txt").write_text(lists, encoding="utf-8")
    for name, text in sources.items():
        (folder / f"{name}.cpp").write_text(text, encoding="utf-8")
    return folder


with tempfile.TemporaryDirectory() as temporary:
    place = Path(temporary)
    prefix = place / "installed"
    run("cmake", "--install", build, "--prefix", prefix)
    # Moved, so that nothing depends on where it was installed first.
    prefix = prefix.rename(place / "moved")

    api = (source / "tests/odb/api_write_program.cpp").read_text(encoding="utf-8")
    mine = project(place / "api", block("cmake"), my_program=api)
    run("cmake", "-S", mine, "-B", mine / "build", f"-DCMAKE_PREFIX_PATH={prefix}")
    run("cmake", "--build", mine / "build")
    run(mine / "build/my_program", place / "written.odb")

    parent = place / "parent.cpp"
    parent.write_text(block("cpp"), encoding="utf-8")
    flags = run("pkg-config", "--cflags", "--libs", "odbs-client",
                PKG_CONFIG_PATH=str(next(prefix.rglob("pkgconfig")))).split()
    run("c++", "-std=c++17", parent, *flags, "-o", prefix / "bin/parent")
    answer = run(prefix / "bin/parent", place / "written.odb")
    assert re.search(r"\d+ nodes, \d+ elements", answer), answer

    flags = run("pkg-config", "--cflags", "--libs", "odbs-odb",
                PKG_CONFIG_PATH=str(next(prefix.rglob("pkgconfig")))).split()
    main = (source / "tests/odb/api_read_program.cpp").read_text(encoding="utf-8")
    (place / "reader.cpp").write_text(main, encoding="utf-8")
    run("c++", "-std=c++17", place / "reader.cpp", *flags, "-o", place / "reader")
    run(place / "reader", place / "written.odb")

    whole = project(place / "whole", f"""cmake_minimum_required(VERSION 3.25)
project(whole CXX C)
add_subdirectory({source} odb_server)
add_executable(parent parent.cpp)
target_link_libraries(parent odbs::client)
""", parent=block("cpp"))
    launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
    run("cmake", "-S", whole, "-B", whole / "build", *launcher)
    run("cmake", "--build", whole / "build", "--target", "parent", "--parallel", "2")
    answer = run(whole / "build/parent", place / "written.odb", ODB_SERVER=str(prefix / "bin/odb_server"))
    assert re.search(r"\d+ nodes, \d+ elements", answer), answer
print("three programs outside of the tree build and run")
