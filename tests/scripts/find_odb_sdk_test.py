#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Shows that cmake/FindOdbSdk.cmake finds an SDK in each layout and says what is missing.

The SDK is a stand-in of empty files.
"""

import os
import subprocess
import sys
import tempfile
import unittest

ROOT = sys.argv.pop(1)

NEW = ["ABQSMAOdbDdbOdb", "ABQSMAOdbApi", "ABQSMAOdbCore", "ABQSMAOdbCoreGeom"]
OLD = ["ABQDDB_Odb", "ABQDDB_ODB_API", "ABQDDB_Core", "ABQDDB_GeometricAttributes"]

LOOK = """cmake_minimum_required(VERSION 3.25)
project(look LANGUAGES NONE)
set(CMAKE_MODULE_PATH {root}/cmake)
{settings}
find_package(OdbSdk REQUIRED)
foreach(property INTERFACE_INCLUDE_DIRECTORIES INTERFACE_COMPILE_DEFINITIONS
                 INTERFACE_LINK_LIBRARIES)
  get_target_property(value OdbSdk::OdbSdk ${{property}})
  message(STATUS "${{property}}=${{value}}")
endforeach()
"""

def write(path, text=""):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


class FindOdbSdk(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.top = os.path.realpath(self.folder.name)
        self.sdk = os.path.join(self.top, "sdk")

    def makeSdk(self, names, include="code/include", lib="code/lib", pattern="lib{}.so"):
        write(os.path.join(self.sdk, include, "odb_API.h"))
        for name in names:
            write(os.path.join(self.sdk, lib, pattern.format(name)))

    def configure(self, settings="", **variables):
        source = os.path.join(self.top, "project")
        write(os.path.join(source, "CMakeLists.txt"), LOOK.format(root=ROOT, settings=settings))
        variables.setdefault("ODB_SDK_ROOT", self.sdk)
        done = subprocess.run(["cmake", "-G", "Ninja", "-S", source, "-B", f"{self.top}/build",
                               *(f"-D{name}={value}" for name, value in variables.items())],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        status, output = done.returncode, done.stdout
        properties = dict(line[3:].split("=", 1) for line in output.splitlines()
                          if line.startswith("-- INTERFACE_"))
        names = [os.path.basename(path)
                 for path in properties.get("INTERFACE_LINK_LIBRARIES", "").split(";")]
        return status, output, properties, names

    def testBothFamiliesOfLibraryNamesAreFound(self):
        for names in (NEW, OLD):
            self.makeSdk(names)
            status, output, properties, found = self.configure()
            self.assertEqual(0, status, output)
            self.assertEqual([f"lib{name}.so" for name in names], found)
            self.assertEqual(os.path.join(self.sdk, "code/include"),
                             properties["INTERFACE_INCLUDE_DIRECTORIES"])
            self.assertEqual("TYPENAME=typename;_LINUX_SOURCE;ABQ_LINUX;ABQ_LNX86_64",
                             properties["INTERFACE_COMPILE_DEFINITIONS"])
            self.sdk = os.path.join(self.top, "old_sdk")

    def testOptionalLibrariesAreLinkedWhenTheyAreThere(self):
        self.makeSdk(NEW + ["standardB", "ABQSMABasShared", "ABQSMAUnrelated"])
        _, output, _, found = self.configure()
        self.assertEqual({f"lib{name}.so" for name in NEW + ["standardB", "ABQSMABasShared"]},
                         set(found), output)
        _, output, _, found = self.configure(ODB_SDK_ALL_LIBRARIES="ON")
        self.assertIn("libABQSMAUnrelated.so", found, output)

    def testTheRelocatedCopyAndTheProductsRootAreUnderstood(self):
        self.makeSdk(NEW, include="include", lib="lib")
        status, output, _, _ = self.configure()
        self.assertEqual(0, status, output)
        self.sdk = os.path.join(self.top, "product")
        self.makeSdk(NEW, include="linux_a64/code/include", lib="linux_a64/code/lib")
        os.makedirs(os.path.join(self.sdk, "SMAOdb", "PublicInterfaces"))
        status, output, properties, _ = self.configure()
        self.assertEqual(0, status, output)
        self.assertEqual([os.path.join(self.sdk, "linux_a64/code/include"), self.sdk],
                         properties["INTERFACE_INCLUDE_DIRECTORIES"].split(";"))

    def testWindowsGetsItsOwnNamesAndDefinitions(self):
        self.makeSdk(NEW, pattern="{}.lib")
        status, output, properties, found = self.configure(
            CMAKE_SYSTEM_NAME="Windows",
            settings="set(CMAKE_FIND_LIBRARY_PREFIXES \"\")\nset(CMAKE_FIND_LIBRARY_SUFFIXES .lib)")
        self.assertEqual(0, status, output)
        self.assertEqual([f"{name}.lib" for name in NEW], found)
        self.assertEqual("HKS_NT;ABQ_WIN86_64;__STDC_LIMIT_MACROS",
                         properties["INTERFACE_COMPILE_DEFINITIONS"])

    def testWhatIsMissingIsNamed(self):
        def output(**variables):
            status, text, _, _ = self.configure(**variables)
            self.assertNotEqual(0, status)
            return text
        self.assertIn("-DODB_SDK_ROOT=DIR", output(ODB_SDK_ROOT=""))
        self.makeSdk(NEW[:3])
        self.assertIn("ABQSMAOdbCoreGeom", output())
        self.assertNotIn("ABQSMAOdbApi or", output())
        self.sdk = os.path.join(self.top, "without_headers")
        self.makeSdk(NEW, include="elsewhere")
        self.assertIn("OdbSdk_INCLUDE_DIR", output())


if __name__ == "__main__":
    unittest.main()
