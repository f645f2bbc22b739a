#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Shows that scripts/check_format.sh finds a badly laid out file, and that --fix repairs it."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = sys.argv.pop(1)


def runCheck(tree, *options):
    command = [os.path.join(ROOT, "scripts", "check_format.sh"), *options, tree]
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          check=False)


class CheckFormat(unittest.TestCase):
    def testABadlyLaidOutFileIsNamedAndFixed(self):
        with tempfile.TemporaryDirectory() as tree:
            shutil.copy(os.path.join(ROOT, ".clang-format"), tree)
            os.mkdir(os.path.join(tree, "base"))
            for name, text in (("good.h", "int good();\n"), ("bad.cpp", "int   bad( ) ;\n")):
                with open(os.path.join(tree, "base", name), "w", encoding="utf-8") as file:
                    file.write(text)
            done = runCheck(tree)
            self.assertEqual(1, done.returncode, done.stdout)
            self.assertIn("base/bad.cpp:1", done.stdout)
            self.assertNotIn("good.h", done.stdout)
            self.assertEqual(0, runCheck(tree, "--fix").returncode)
            done = runCheck(tree)
            self.assertEqual(0, done.returncode, done.stdout)
            self.assertIn("2 files", done.stdout)

    def testATreeWithoutCodeIsAFailure(self):
        with tempfile.TemporaryDirectory() as tree:
            self.assertEqual(1, runCheck(tree).returncode)


if __name__ == "__main__":
    unittest.main()
