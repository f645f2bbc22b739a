#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Shows that cmake/FindOdbSdk.cmake finds an SDK in each layout and says what is missing.

The SDK is a stand-in: empty files for the configure-time cases, and four small shared libraries of
the right names for the case that compiles, links and runs a program against the target.
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

LINK = """cmake_minimum_required(VERSION 3.25)
project(link LANGUAGES CXX)
set(CMAKE_MODULE_PATH {root}/cmake)
find_package(OdbSdk REQUIRED)
add_executable(uses_sdk main.cpp)
target_link_libraries(uses_sdk PRIVATE OdbSdk::OdbSdk)
"""

SDK_PROJECT = """cmake_minimum_required(VERSION 3.25)
project(sdk LANGUAGES CXX)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY {lib})
foreach(name {names})
  file(WRITE ${{CMAKE_BINARY_DIR}}/${{name}}.cpp "int from_${{name}}() {{ return 1; }}\\n")
  add_library(${{name}} SHARED ${{CMAKE_BINARY_DIR}}/${{name}}.cpp)
endforeach()
"""

MAIN = """#include <odb_API.h>
#if !defined(ABQ_LINUX) || !defined(ABQ_LNX86_64) || !defined(_LINUX_SOURCE)
#error definitions are missing
#endif
template <class T> int sizeOfValue(TYPENAME T::value_type*) {{ return sizeof(T); }}
{declarations}
int main() {{ return {calls} - kSdkHeader; }}
"""


def write(path, text=""):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def run(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          check=False)
    return done.returncode, done.stdout


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

    def configure(self, text=LOOK, settings="", **variables):
        source = os.path.join(self.top, "project")
        write(os.path.join(source, "CMakeLists.txt"), text.format(root=ROOT, settings=settings))
        variables.setdefault("ODB_SDK_ROOT", self.sdk)
        options = [f"-D{name}={value}" for name, value in variables.items()]
        status, output = run("cmake", "-G", "Ninja", "-S", source, "-B", os.path.join(self.top, "build"),
                             *options)
        properties = dict(line[3:].split("=", 1) for line in output.splitlines()
                          if line.startswith("-- INTERFACE_"))
        names = [os.path.basename(path)
                 for path in properties.get("INTERFACE_LINK_LIBRARIES", "").split(";")]
        return status, output, properties, names

    def testBothFamiliesOfLibraryNamesAreFound(self):
        for names in (NEW, OLD):
            with self.subTest(names=names):
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
        status, output, _, _ = self.configure(ODB_SDK_ROOT="")
        self.assertNotEqual(0, status)
        self.assertIn("-DODB_SDK_ROOT=DIR", output)
        self.makeSdk(NEW[:3])
        status, output, _, _ = self.configure()
        self.assertNotEqual(0, status)
        self.assertIn("ABQSMAOdbCoreGeom", output)
        self.assertNotIn("ABQSMAOdbApi or", output)
        self.sdk = os.path.join(self.top, "without_headers")
        self.makeSdk(NEW, include="elsewhere")
        status, output, _, _ = self.configure()
        self.assertNotEqual(0, status)
        self.assertIn("OdbSdk_INCLUDE_DIR", output)

    def testAProgramCompilesLinksAndRunsAgainstTheTarget(self):
        write(os.path.join(self.sdk, "code/include/odb_API.h"), "enum { kSdkHeader = 4 };\n")
        maker = os.path.join(self.top, "maker")
        write(os.path.join(maker, "CMakeLists.txt"),
              SDK_PROJECT.format(lib=os.path.join(self.sdk, "code/lib"), names=" ".join(NEW)))
        made = os.path.join(self.top, "made")
        for command in (["cmake", "-G", "Ninja", "-S", maker, "-B", made], ["cmake", "--build", made]):
            status, output = run(*command)
            self.assertEqual(0, status, output)
        write(os.path.join(self.top, "project", "main.cpp"), MAIN.format(
            declarations="".join(f"int from_{name}();\n" for name in NEW),
            calls=" + ".join(f"from_{name}()" for name in NEW)))
        status, output, _, _ = self.configure(text=LINK)
        self.assertEqual(0, status, output)
        status, output = run("cmake", "--build", os.path.join(self.top, "build"))
        self.assertEqual(0, status, output)
        self.assertEqual(0, run(os.path.join(self.top, "build", "uses_sdk"))[0])


if __name__ == "__main__":
    unittest.main()
