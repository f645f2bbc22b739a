#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""What all command line programs have in common, and what odb_client says about wrong requests, files
that are no databases, and output that nobody takes.

usage: command_lines_test.py SOURCE_DIR BIN_DIR
"""
import csv
import io
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SOURCE, BIN = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
sys.dont_write_bytecode = True  # the sources stay as they are
sys.path.insert(0, str(SOURCE / "scripts"))
import show_results  # noqa: E402
TOOLS = ["odb_server", "odb_client", "odb_import", "odb_modal_covariance"]
BENCHES = [path.name for path in BIN.glob("bench_*")]


def run(*words, **options):
    done = subprocess.run([str(BIN / words[0]), *map(str, words[1:])], capture_output=True, text=True,
                          timeout=60, check=False, **options)
    return done.returncode, done.stdout, done.stderr


class AllPrograms(unittest.TestCase):
    def testHelpAndVersionGoToStandardOutput(self):
        for tool in TOOLS + BENCHES:
            for option in ("-h", "--help"):
                status, out, err = run(tool, option)
                self.assertEqual((0, ""), (status, err), tool)
                self.assertIn(tool, out)
            self.assertRegex(run(tool, "--version")[1], rf"^{tool} \d+\.\d+\.\d+\n$")

    def testWrongCommandLinesEndWithStatus2(self):
        for tool in TOOLS[1:] + BENCHES:
            status, out, err = run(tool, "--colour", "red")
            self.assertEqual((2, ""), (status, out), tool)
            self.assertIn("there is no option --colour", err)
            self.assertIn(f"Try: {tool} --help", err)
        for line in ("odb_client", "odb_client dance", "odb_client model", "odb_client ping x",
                     "odb_client model a b", "odb_client send a", "odb_client ping --timeout soon",
                     "odb_client ping --timeout=-1", "odb_client ping --server",
                     "odb_client ping --format xml", "odb_client ping --field S",
                     "odb_client values a", "odb_client values a --field S --position here",
                     "odb_client values a --field S --step 0", "odb_client nodal a --field U --labels ,",
                     "odb_import", "odb_import a b", "odb_import a --quiet=yes",
                     "odb_modal_covariance a", "odb_modal_covariance --psd nan a"):
            status, out, err = run(*line.split())
            self.assertEqual((2, ""), (status, out), line)
            self.assertIn("--help", err, line)

    def testTheServerSaysWhatItWantsAndGoesOn(self):
        status, out, err = run("odb_server", "job.odb", stdin=subprocess.DEVNULL)
        self.assertEqual((0, ""), (status, out))
        self.assertIn("odb_client model FILE", err)

    def testOutputThatCannotBeWrittenIsAFailure(self):
        for tool in TOOLS:
            with open("/dev/full", "w", encoding="utf-8") as full:
                done = subprocess.run([BIN / tool, "--help"], stdout=full, stderr=subprocess.PIPE,
                                      text=True, timeout=60, check=False)
            self.assertEqual(1, done.returncode, tool)
            self.assertIn("cannot write the output: No space left on device", done.stderr)


class Client(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.plate = str(Path(cls.folder.name, "plate.odb"))
        sample = SOURCE / "samples" / "composite_plate" / "composite_plate"
        assert run("odb_import", f"{sample}.inp", "--results", f"{sample}.frd", "--data",
                   f"{sample}.dat", "-o", cls.plate)[0] == 0

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def testAReaderThatHasSeenEnoughEndsItSilently(self):
        with subprocess.Popen([BIN / "odb_client", "values", self.plate, "--field", "S"],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as client:
            client.stdout.read(1)
            client.stdout.close()
            self.assertEqual(b"", client.stderr.read())
            self.assertEqual(0, client.wait(60))

    def testEachMistakeHasItsOwnMessage(self):
        for request, message in (
                ("values --field S --step 9", "has no step 9; its steps are 1"),
                ("values --field S --frame 9", "step 1 has no frame 9 with fields"),
                ("values --field s", 'no field "s"; did you mean "S"?'),
                ("nodal --field UU", 'no field "UU"; did you mean "U"?'),
                ("values --field S --position 111", "no values at this position; --position stored"),
                ("values --field S --position 1 --letter s", "at section points 1, 3"),
                ("values --field S --position 1 --letter l --pick1 77", "at section points 1, 3"),
                ("values --field S --layers 9:9", 'nothing at "9" nor at "9"'),
                ("values --field S --region elements=PLAT", 'did you mean "PLATE"?'),
                ("values --field S --region layer:9=PLATE", 'section "PLATE" has nothing at 9'),
                ("values --field S --region nodes=CENTRE", "no values in the regions"),
                ("regions elements=NOSUCH", 'no element set "NOSUCH" (there are "PLATE")'),
                ("history --step 7", "has no step 7"),
                ("history --region Elements", "no history region"),
                ("model --table layr", 'did you mean "layer"?')):
            command, *options = request.split()
            status, out, err = run("odb_client", command, self.plate, *options)
            self.assertEqual(2 if "--table" in options else 1, status, request)
            self.assertIn(message, err)

    def testAFileThatIsNoDatabaseIsLookedAt(self):
        folder = Path(self.folder.name)
        database = Path(self.plate).read_bytes()
        cut = len(database) - 1
        for name, content, message in (
                ("missing/x.odb", None, "there is no folder"), ("missing.odb", None, "no such file"),
                ("", None, "it is a folder"), ("empty.odb", b"", "the file is empty"),
                ("text.odb", b"Not one.\n", "text file"), ("start.odb", b"\x89HD", "the file is cut"),
                ("cut.odb", database[:cut], f"it has {cut} of {cut + 1} bytes"),
                ("vendor.odb", b"\x01\x00binary" * 9, "built against the vendor's SDK"),
                ("broken.odb", database[:600] + bytes(len(database) - 600), "but damaged")):
            if content is not None:
                (folder / name).write_bytes(content)
            for command in ("model", "history", "sections"):
                status, out, err = run("odb_client", command, folder / name)
                self.assertEqual((1, ""), (status, out), name)
                self.assertIn(message, err)

    def testTablesShowWhatThereIs(self):
        for request, piece in (("catalogue", "integration point"), ("sets", "CENTRE"),
                               ("catalogue --listing nodal --frames every", "Spatial displacement"),
                               ("values --field U --show range", "node 40"), ("model", "S8R")):
            command, *options = request.split()
            self.assertIn(piece, run("odb_client", command, self.plate, *options)[1])

    def testThePicturesStressIsTheGreatestOfTheValues(self):
        values = run("odb_client", "values", self.plate, "--field", "S", "--position", "element-node",
                     "--format", "csv")[1]
        top = [show_results.mises([float(row[f"S{i}"]) for i in (11, 22, 33, 12, 13, 23)])
               for row in csv.DictReader(io.StringIO(values)) if row["section_point"] == "9"]
        heat, what = show_results.nodal_stress(BIN, self.plate, 1, 0)
        self.assertEqual((max(top), "Mises stress, top side of shells"), (max(heat.values()), what))

    def testCsvIsOneTableWithAColumnForEachComponent(self):
        def table(*words):
            status, out, err = run("odb_client", *words, "--format", "csv")
            self.assertEqual(0, status, err)
            rows = list(csv.DictReader(io.StringIO(out), strict=True))
            self.assertTrue(rows and all(None not in row for row in rows), words)  # no longer rows
            self.assertTrue(all(value is not None for row in rows for value in row.values()), words)
            return rows
        stress = table("values", self.plate, "--field", "S")
        self.assertEqual(648, len(stress))
        self.assertEqual(3.57739, float(stress[0]["S11"]))
        self.assertEqual(-0.594747, float(stress[0]["S23"]))
        self.assertEqual({"U1", "U2", "U3"}, {c for c in table("values", self.plate, "--field", "U")[0]
                                              if c.startswith("U")})
        self.assertIn("component_3", table("nodal", self.plate, "--field", "U")[0])
        self.assertEqual("90", table("model", self.plate)[0]["greatest_1"])
        self.assertEqual("140000", table("model", self.plate, "--table", "material")[0]["value_1"])
        for command in ("catalogue", "history", "sets", "sections"):
            table(command, self.plate)
        self.assertIn("value", table("history", self.plate, "--region", "all")[0])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
