#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Shows that scripts/check_layers.py and scripts/check_format.sh find each kind of fault and accept what
is allowed. Each case is a small source tree in a temporary folder; the checks run as users run them.
"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = sys.argv.pop(1)
LICENCE = "// SPDX-License-Identifier: BSD-3-Clause\n"
OPENING = LICENCE + "// What the file owns.\n"


def runScript(name, *arguments):
    done = subprocess.run([os.path.join(ROOT, "scripts", name), *arguments], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, check=False)
    return done.returncode, done.stdout


def write(tree, files, opening=OPENING):
    """Writes the files, C++ ones below a licence line and a comment."""
    for path, text in files.items():
        full = os.path.join(tree, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as file:
            file.write((opening if path.endswith((".h", ".cpp")) else "") + text)


def checkLayers(files, opening=OPENING):
    with tempfile.TemporaryDirectory() as tree:
        write(tree, files, opening)
        return runScript("check_layers.py", tree)


ALLOWED = {
    "port/port_posix.cpp": '#include <sys/wait.h>\n#include "base/bytes.h"\n',
    "odb/include/odb_Enum.h": "#include <odb_engine/handle.h>\n",
    "odb/include/odb_engine/handle.h": "#include <nex_Exception.h>\n",
    "odb/include/forward/odb_Text.h": "#include <odb_Enum.h>\n",
    "odb/include/nex_Exception.h": "",
    "server/core/sdk_embedded.h": "#include <odb_embedded.h>\n",
    "server/core/sdk_value_slices.h": "#include <odb_engine/handle.h>\n",
    "odb/src/storage/file.cpp": '#include <hdf5.h>\n#include <odb_Text.h>\n#include "port/port.h"\n'
                                '#include "odb/src/storage/layout.h"\n',
    "odb/src/model/entity.cpp": '#include "odb/src/storage/layout.h"\n',
    "lookup/names.h": '#include "registry/registry.h"\n#include "server/core/record.h"\n',
    "client/cli/main.cpp": '#include "client/model.h"\n#include "client/records/cursor.h"\n',
    "server/core/record.cpp": '#include "server/core/channel.h"\n#include <odb_API.h>\n',
    "server/odb_server.cpp": '#include "catalogue/descriptor.h"\n#include "registry/registry.h"\n',
    "catalogue/cache_file.cpp": "#include <zlib.h>\n",
    "model/stream.cpp": '// #include "results/field.h"\n/*\n#include <windows.h>\n*/\n',
    "tests/odb/file_test.cpp": '#include <gtest/gtest.h>\n#include "odb/src/storage/layout.h"\n',
}

# path, text, line of the fault, words of the message
FAULTS = [
    ("base/text.cpp", '#include "port/port.h"\n', 3, "base must not include port; allowed: base"),
    ("port/port.h", "\n#include <windows.h>\n", 4, "platform headers"),
    ("odb/include/odb_Set.h", "#include <hdf5.h>\n", 3, "HDF5"),
    ("results/field.cpp", "#include <odb_engine/handle.h>\n", 3, "is included by files"),
    ("server/core/sdk_vendor.h", "#include <odb_embedded.h>\n", 3, "is included by files"),
    ("registry/opening.cpp", "#include <odb_embedded.h>\n", 3, "odb_embedded.h is included by"),
    ("results/field.cpp", "#include <H5Fpublic.h>\n", 3, "HDF5"),
    ("odb/src/model/entity.cpp", "#include <hdf5.h>\n", 3, "HDF5"),
    ("odb/src/storage/file.cpp", '#include "odb/src/model/entity.h"\n', 3, "must not include odb/src/model"),
    ("registry/opening.cpp", '#include "lookup/names.h"\n', 3, "registry must not include lookup"),
    ("client/records/cursor.cpp", '#include "client/model.h"\n', 3, "must not include client;"),
    ("importer/results/frd.cpp", "#include <odb_API.h>\n", 3, "must not include odb/include"),
    ("catalogue/history.cpp", "#include <zlib.h>\n", 3, "zlib"),
    ("server/core/record.cpp", '#include "registry/registry.h"\n', 3, "must not include registry"),
    ("server/core/channel.h", '#include "server/command_table.h"\n', 3, "must not include server;"),
    ("model/stream.cpp", '#include "results/field.h"\n', 3, "model must not include results"),
    ("regions/request.cpp", '#  include "catalogue/cache.h"\n', 3, "must not include catalogue"),
    ("client/decoder.cpp", "#include <odb_API.h>\n", 3, "client must not include odb/include"),
    ("base/text.cpp", '#include "tests/support.h"\n', 3, "base must not include tests"),
    ("base/text.cpp", '#include "bytes.h"\n', 3, "from the repository's root"),
    ("model/stream.cpp", '#include "../results/field.h"\n', 3, "without .."),
    ("model/stream.cpp", "#include HEADER\n", 3, "a literal file name"),
    ("server/core/record.cpp", "#include <gtest/gtest.h>\n", 3, "GoogleTest"),
    ("model/stream.cpp", "#include <map>\n\n#include <odb_API.h>\n", 5, "come before <map>"),
    ("extras/new.cpp", "\n", 1, "not in the table"),
    ("model/stream.cpp", "\n" * 500, 500, "split the file"),
    ("scripts/tool.py", "#!/usr/bin/env python3\nprint(1)\n", 1, "SPDX"),
    ("cmake/FindThing.cmake", "set(a 1)\n", 1, "SPDX"),
]


class Checks(unittest.TestCase):
    def testWhatTheTableAllowsIsAccepted(self):
        status, output = checkLayers(ALLOWED)
        self.assertEqual(0, status, output)
        self.assertIn(f"{len(ALLOWED)} files, 0 problems", output)

    def testEachFaultIsFoundWithItsLineAndWhatIsAllowed(self):
        for path, text, line, words in FAULTS:
            status, output = checkLayers({**ALLOWED, path: text})
            self.assertEqual(1, status, output)
            self.assertIn(f"{path}:{line}: ", output)
            self.assertIn(words, output)
            self.assertIn(" 1 problems", output)

    def testASourceWithoutItsLicenceLineIsFound(self):
        status, output = checkLayers({"base/a.cpp": "int a;\n"}, opening="")
        self.assertEqual(1, status)
        self.assertIn("base/a.cpp:1: int a;", output)

    def testASourceWithoutItsOpeningCommentIsFound(self):
        status, output = checkLayers({"base/a.cpp": "int a;\n"}, opening=LICENCE)
        self.assertEqual(1, status)
        self.assertIn("base/a.cpp:2: int a;", output)

    def testATreeWithoutSourcesIsAFailure(self):
        self.assertEqual(1, checkLayers({})[0])
        with tempfile.TemporaryDirectory() as tree:
            self.assertEqual(1, runScript("check_format.sh", tree)[0])

    def testABadlyLaidOutFileIsNamedAndFixed(self):
        with tempfile.TemporaryDirectory() as tree:
            shutil.copy(os.path.join(ROOT, ".clang-format"), tree)
            write(tree, {"base/good.h": "int good();\n", "base/bad.cpp": "int   bad( ) ;\n"})
            status, output = runScript("check_format.sh", tree)
            self.assertEqual(1, status, output)
            self.assertIn("base/bad.cpp:3", output)
            self.assertNotIn("good.h", output)
            self.assertEqual(0, runScript("check_format.sh", "--fix", tree)[0])
            status, output = runScript("check_format.sh", tree)
            self.assertEqual(0, status, output)
            self.assertIn("2 files", output)


if __name__ == "__main__":
    unittest.main()
