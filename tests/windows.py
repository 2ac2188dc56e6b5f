"""The program for Windows, run by wine, beside this system's: both must print and write the same bytes.

scripts/windows runs it, with SCOREWRIGHT naming the one and SCOREWRIGHT_HERE the other."""

import os
import pty
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from support import DOCUMENTS, EXAMPLES, FOR_WINDOWS, PROGRAM, ProgramTest, categorical, document, numeric

HERE = os.environ["SCOREWRIGHT_HERE"]
PLAIN = DOCUMENTS["logistic"]
CONFIGURATION = '<Model2SQL inputFile="m" outputFile="out" inputTable="i" predictionTable="p"/>'


class WindowsTest(ProgramTest):
    def results(self, program, arguments):
        """What a program returns, prints and leaves in its folder, which begins as a copy of the test's."""
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            shutil.copytree(self.folder, folder, dirs_exist_ok=True)
            run = subprocess.run([program, *arguments], cwd=folder, capture_output=True, timeout=120)
            files = {str(path.relative_to(folder)): path.read_bytes() for path in folder.rglob("*") if path.is_file()}
            return (run.returncode, run.stdout, run.stderr), files

    def assert_same(self, arguments, status=0):
        with self.subTest(arguments):
            (expected, files), (found, others) = (self.results(program, arguments) for program in (HERE, PROGRAM))
            self.assertEqual(found, expected)
            if status is not None:
                self.assertEqual(found[0], status)
            self.assertEqual(found[2], b"")
            self.assertEqual(sorted(others), sorted(files))
            for name, data in files.items():
                self.assertTrue(others[name] == data, f"{name} differs")

    def test_examples(self):
        shutil.copytree(EXAMPLES, self.folder / "examples")
        (self.folder / "demo-output").mkdir()
        for model in ["credit", "claims"]:
            path = f"examples/{model}/{model}.ModelXml"
            for option in ["-a", "-e", "-p"]:
                self.assert_same([option, path, "out"])
            self.assert_same(["-h", path])
        self.assert_same(["-h", "examples/credit/credit.ModelXml", "examples/credit/canvas.html", "out"])
        configurations = sorted(EXAMPLES.glob("credit/*.xml"))
        self.assertGreater(len(configurations), 3)
        for path in configurations:
            self.assert_same(["-s", f"examples/credit/{path.name}"])

    def test_small_documents(self):
        self.write("config", CONFIGURATION)
        for text in DOCUMENTS.values():
            self.write("m", text)
            for option in ["-a", "-e", "-p"]:
                self.assert_same([option, "m", "out"])
            self.assert_same(["-h", "m", "", "out"], None)  # not all of them make a page

    def test_encodings(self):
        text = document([categorical(1, "Größe €", ["é", "ÿ", "œ"], [1, 2, 3, 4])], [(1, 1)], 0)
        for encoding in ["utf-16", "utf-16-le", "utf-8-sig", "utf-8", "cp1252"]:
            self.write("m", text, encoding)
            for option in ["-a", "-p"]:
                self.assert_same([option, "m", "out"])

    def test_names_beyond_ascii(self):
        self.write("modèle 日本 😀.ModelXml", PLAIN)
        self.assert_same(["-a", "modèle 日本 😀.ModelXml", "straße 日本 😀.sas"])
        self.assert_same(["-h", "modèle 日本 😀.ModelXml"])
        self.assert_same(["-p", "modèle 日本 😀.ModelXml", "out", "Ünï 日本 😀"])
        self.assert_same(["-a", "nicht da 日本 😀", "out"], 8)
        self.write("config", CONFIGURATION.replace('"m"', '"modèle 日本 😀.ModelXml"').replace('"out"', '"é 😀.sql"'))
        self.assert_same(["-s", "config"])

    def test_arguments_are_taken_as_they_stand(self):
        self.write("m", PLAIN)
        for name in ["*", "m?", 'a "b\\" c\\', "", " a ", "%PATH%", "é^&|<>"]:
            self.assert_same(["-p", "m", "out", name])

    def test_statuses(self):
        self.write("m", PLAIN)
        self.write("unsupported", document([numeric(1, "f", [1], [1], kind="other")], [(1, 1)], 0))
        self.write("canvas", "a canvas without any tag")
        for name, setting in [("2", "outputFile"), ("3", "inputTable"), ("5", "predictionTable")]:
            self.write(name, CONFIGURATION.replace(setting, "x"))
        for arguments, status in [([], 1), (["-x", "m"], 1), (["-a", "unsupported", "out"], 1), (["-s", "2"], 2),
                                  (["-s", "3"], 3), (["-s", "5"], 5), (["-h", "m", "canvas", "out"], 3),
                                  (["-a", "m", "no/folder"], 6), (["-a", "m", "/dev/full"], 7), (["-e", "none", "out"], 8),
                                  (["-p", "canvas", "out"], 8), (["-s", "none"], 10)]:
            self.assert_same(arguments, status)

    def test_standard_output_in_a_file(self):
        self.write("m", PLAIN)
        for program in [HERE, PROGRAM]:
            with open(self.folder / "printed", "wb") as file:
                subprocess.run([program, "-a", "m", "é/日本"], cwd=self.folder, stdout=file, timeout=60)
            printed = (self.folder / "printed").read_bytes()
            self.assertTrue(printed.endswith("=\nCannot open file 'é/日本' for writing.\n".encode()), printed)

    def test_a_console_shows_every_character(self):
        process, console = pty.fork()
        if process == 0:
            os.execv(PROGRAM, [PROGRAM, "-a", "é Ж 日本", "out"])
        shown = b""
        try:
            while data := os.read(console, 4096):
                shown += data
        except OSError:  # the other side is closed
            pass
        self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(process, 0)[1]), 8)
        self.assertIn("Cannot convert model 'é Ж 日本': Error: File not found.".encode(), shown)

    def test_paths_of_windows(self):
        self.assertTrue(FOR_WINDOWS)
        (self.folder / "a.b").mkdir()
        self.write("a.b/c", PLAIN)
        for path in ["a.b\\c", "Z:" + str(self.folder / "a.b" / "c").replace("/", "\\")]:
            self.assertEqual(self.run_program("-p", path, "a.b\\out"), (0, ""))
            self.assertIn("\nclass QORVModel_/c:\n", self.read("a.b/out"))


if __name__ == "__main__":
    unittest.main()
