#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Shows that the programs built for Windows run alone: they import from the system's own DLLs only.

    windows_dlls_test.py FOLDER    the folder with odb_server.exe and the others
"""

import glob
import os
import subprocess
import sys
import tempfile
import unittest

FOLDER = sys.argv.pop(1)
TRIPLE = "x86_64-w64-mingw32"

# What every Windows installation has.
SYSTEM = {"advapi32.dll", "kernel32.dll", "mpr.dll", "msvcrt.dll", "psapi.dll", "shell32.dll",
          "shlwapi.dll", "user32.dll", "ws2_32.dll"}


def importedDlls(program):
    listing = subprocess.run([TRIPLE + "-objdump", "-p", program], stdout=subprocess.PIPE, text=True,
                             check=True).stdout
    return {line.split(":")[1].strip().lower() for line in listing.splitlines() if "DLL Name:" in line}


class WindowsDlls(unittest.TestCase):
    def testTheProgramsNeedOnlyTheSystemsDlls(self):
        programs = glob.glob(os.path.join(FOLDER, "odb_*.exe"))
        self.assertTrue(programs, "no program in " + FOLDER)
        for program in programs:
            dlls = importedDlls(program)
            self.assertIn("kernel32.dll", dlls, program)
            self.assertEqual(set(), dlls - SYSTEM, program)

    def testAForeignDllWouldBeSeen(self):
        with tempfile.TemporaryDirectory() as folder:
            program = os.path.join(folder, "a.exe")
            subprocess.run([TRIPLE + "-gcc-posix", "-x", "c", "-", "-o", program, "-l:libz.dll.a"],
                           input="#include <zlib.h>\nint main(void) { return !zlibVersion(); }\n",
                           text=True, check=True)
            self.assertEqual({"zlib1.dll"}, importedDlls(program) - SYSTEM)


if __name__ == "__main__":
    unittest.main()
