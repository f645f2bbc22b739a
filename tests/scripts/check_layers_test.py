#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Shows that scripts/check_layers.py finds each kind of fault and accepts what is allowed.

Each case is a small source tree in a temporary folder; the check runs as a program, as users run it.
"""

import os
import subprocess
import sys
import tempfile
import unittest

ROOT = sys.argv.pop(1)
LICENCE = "// SPDX-License-Identifier: BSD-3-Clause\n"


def runCheck(files, licence=LICENCE):
    """Writes the files (C++ ones below a licence line), returns exit status and output."""
    with tempfile.TemporaryDirectory() as tree:
        for path, text in files.items():
            full = os.path.join(tree, path)
            os.makedirs(os.path.dirname(full), exist_ok=True)
            with open(full, "w", encoding="utf-8") as file:
                file.write((licence if path.endswith((".h", ".cpp")) else "") + text)
        done = subprocess.run([sys.executable, os.path.join(ROOT, "scripts", "check_layers.py"), tree],
                              stdout=subprocess.PIPE, text=True, check=False)
        return done.returncode, done.stdout


ALLOWED = {
    "base/text.cpp": '#include "base/text.h"\n#include <string>\n',
    "port/port_posix.cpp": '#include <sys/wait.h>\n#include "base/bytes.h"\n',
    "odb/include/odb_API.h": '#include <odb_Enum.h>\n#include "odb_Enum.h"\n',
    "odb/include/odb_Enum.h": "#include <odb_engine/handle.h>\n",
    "odb/include/odb_engine/handle.h": '#include "base/bytes.h"\n#include <nex_Exception.h>\n',
    "odb/include/nex_Exception.h": "",
    "server/sdk_embedded.h": "#include <odb_embedded.h>\n",
    "server/sdk_value_slices.h": "#include <odb_engine/handle.h>\n",
    "odb/src/file.cpp": '#include <hdf5.h>\n#include <odb_API.h>\n#include "port/port.h"\n'
                        '#include "odb/src/layout.h"\n',
    "server/record.cpp": '#include "server/channel.h"\n#include <odb_API.h>\n',
    "server/odb_server.cpp": '#include "catalogue/descriptor.h"\n#include "registry/registry.h"\n',
    "registry/opening.cpp": '#include "server/server_state.h"\n',
    "catalogue/cache_file.cpp": "#include <zlib.h>\n",
    "model/stream.cpp": '// #include "results/field.h"\n/*\n#include <windows.h>\n*/\n',
    "client/connection.cpp": '#include "client/decoder.h"\n#include "port/port.h"\n',
    "importer/deck.cpp": '#include <odb_API.h>\n#include "base/text.h"\n',
    "tests/odb/file_test.cpp": '#include <gtest/gtest.h>\n#include "odb/src/layout.h"\n',
}

# path, text, line of the fault, words of the message
FAULTS = [
    ("base/text.cpp", '#include "port/port.h"\n', 2, "base must not include port; allowed: base"),
    ("port/port.h", "\n#include <windows.h>\n", 3, "platform headers"),
    ("server/channel.cpp", "#include <unistd.h>\n", 2, "platform headers"),
    ("tests/server/pipe_test.cpp", "#include <sys/wait.h>\n", 2, "platform headers"),
    ("port/port_posix.cpp", '#include "server/channel.h"\n', 2, "port must not include server core"),
    ("odb/include/odb_Set.h", '#include "odb/src/layout.h"\n', 2, "must not include odb/src"),
    ("odb/include/odb_Set.h", "#include <hdf5.h>\n", 2, "HDF5"),
    ("odb/src/file.cpp", '#include "server/record.h"\n', 2, "must not include server core"),
    ("results/field.cpp", '#include "odb/src/layout.h"\n', 2, "must not include odb/src"),
    ("results/field.cpp", "#include <odb_engine/handle.h>\n", 2, "is included by files"),
    ("server/sdk_vendor.h", "#include <odb_embedded.h>\n", 2, "is included by files"),
    ("importer/deck.cpp", "#include <odb_engine/handle.h>\n", 2, "must not include odb engine"),
    ("registry/opening.cpp", "#include <odb_embedded.h>\n", 2, "odb_embedded.h is included by"),
    ("results/field.cpp", "#include <H5Fpublic.h>\n", 2, "HDF5"),
    ("catalogue/history.cpp", "#include <zlib.h>\n", 2, "zlib"),
    ("server/record.cpp", '#include "registry/registry.h"\n', 2, "must not include registry"),
    ("server/channel.h", '#include "server/command_table.h"\n', 2, "must not include server shell"),
    ("registry/opening.cpp", '#include "model/stream.h"\n', 2, "must not include model"),
    ("model/stream.cpp", '#include "results/field.h"\n', 2, "model must not include results"),
    ("regions/request.cpp", '#  include "catalogue/cache.h"\n', 2, "must not include catalogue"),
    ("client/decoder.cpp", "#include <odb_API.h>\n", 2, "client must not include odb/include"),
    ("client/decoder.cpp", '#include "server/record.h"\n', 2, "must not include server core"),
    ("importer/deck.cpp", '#include "registry/registry.h"\n', 2, "must not include registry"),
    ("samples/covariance/main.cpp", '#include "importer/deck.h"\n', 2, "must not include importer"),
    ("base/text.cpp", '#include "tests/support.h"\n', 2, "base must not include tests"),
    ("base/text.cpp", '#include "bytes.h"\n', 2, "from the repository's root"),
    ("model/stream.cpp", '#include "../results/field.h"\n', 2, "without .."),
    ("model/stream.cpp", "#include HEADER\n", 2, "a literal file name"),
    ("model/stream.cpp", '#include "sys/wait.h"\n', 2, "platform headers"),
    ("server/record.cpp", "#include <gtest/gtest.h>\n", 2, "GoogleTest"),
    ("extras/new.cpp", "\n", 1, "not in the table"),
    ("model/stream.cpp", "\n" * 600, 600, "split the file"),
    ("scripts/tool.py", "#!/usr/bin/env python3\nprint(1)\n", 1, "SPDX"),
    ("scripts/tool", "#!/bin/sh\necho\n", 1, "SPDX"),
    ("cmake/FindThing.cmake", "set(a 1)\n", 1, "SPDX"),
    ("model/CMakeLists.txt", "set(a 1)\n", 1, "SPDX"),
]


class CheckLayers(unittest.TestCase):
    def testWhatTheTableAllowsIsAccepted(self):
        status, output = runCheck(ALLOWED)
        self.assertEqual(0, status, output)
        self.assertIn(f"{len(ALLOWED)} files, 0 problems", output)

    def testEachFaultIsFoundWithItsLineAndWhatIsAllowed(self):
        for path, text, line, words in FAULTS:
            with self.subTest(path=path, text=text[:40]):
                status, output = runCheck({**ALLOWED, path: text})
                self.assertEqual(1, status, output)
                self.assertIn(f"{path}:{line}: ", output)
                self.assertIn(words, output)
                self.assertIn(" 1 problems", output)

    def testASourceWithoutItsLicenceLineIsFound(self):
        status, output = runCheck({"base/a.cpp": "int a;\n"}, licence="")
        self.assertEqual(1, status)
        self.assertIn("base/a.cpp:1: int a;", output)

    def testATreeWithoutSourcesIsAFailure(self):
        with tempfile.TemporaryDirectory() as tree:
            done = subprocess.run([sys.executable, os.path.join(ROOT, "scripts", "check_layers.py"),
                                   tree], stdout=subprocess.PIPE, check=False)
            self.assertEqual(1, done.returncode)


if __name__ == "__main__":
    unittest.main()
