"""Tests of the Windows program only, run by wine; scripts/windows also runs the other tests on it."""

import os
import pty
import unittest

from support import DOCUMENTS, PROGRAM, ProgramTest, categorical, document

PLAIN = DOCUMENTS["logistic"]


class WindowsTest(ProgramTest):
    def test_names_beyond_ascii(self):
        name, output = self.write("modèle 日本 😀.ModelXml", PLAIN), "straße 日本 😀"
        expected = self.convert("-p", PLAIN, "out", "Ünï 日本 😀").replace("model.ModelXml", name)
        self.assertEqual(self.run_program("-p", name, output, "Ünï 日本 😀"), (0, ""))
        self.assertEqual(self.read(output), expected)
        self.assertEqual(self.run_program("-a", "日本", "out"), (8, "Cannot convert model '日本': Error: File not found.\n"))
        self.write("c", f'<Model2SQL inputFile="{name}" outputFile="é 😀" inputTable="i" predictionTable="p"/>')
        self.assertEqual(self.run_program("-s", "c"), (0, "Conversion successful!\n"))
        self.assertIn("insert into p", self.read("é 😀"))

    def test_encodings_without_mark(self):
        text = document([categorical(1, "Größe €", ["é", "ÿ", "œ"], [1, 2, 3, 4])], [(1, 1)], 0)
        expected = self.convert("-p", text).replace("model.ModelXml", "m")
        for encoding in ["utf-16-le", "cp1252"]:
            self.assertEqual(self.run_program("-p", self.write("m", text, encoding), "out", "model"), (0, ""))
            self.assertEqual(self.read("out"), expected)

    def test_arguments_are_passed_verbatim(self):
        self.write("m", PLAIN)
        for name in ["*", "m?", 'a "b\\" c\\', " a ", "%PATH%", "é^&|<>"]:
            self.assertEqual(self.run_program("-p", "m", "out", name), (0, ""))
            self.assertIn(f"\nclass QORVModel_{name}:\n", self.read("out"))

    def test_vba(self):  # test_vba.py needs LibreOffice
        self.assert_golden("kinds.bas", self.convert("-e", DOCUMENTS["kinds"]))

    def test_a_console_shows_every_character(self):
        process, console = pty.fork()
        if process == 0:
            os.execv(PROGRAM, [PROGRAM, "-a", "é Ж 日本", "out"])
        shown = b""
        try:
            while data := os.read(console, 4096):
                shown += data
        except OSError:  # the program has ended
            pass
        self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(process, 0)[1]), 8)
        self.assertIn("Cannot convert model 'é Ж 日本': Error: File not found.".encode(), shown)

    def test_paths_of_windows(self):
        (self.folder / "a.b").mkdir()
        self.write("a.b/c", PLAIN)
        for path in ["a.b\\c", "Z:" + str(self.folder / "a.b" / "c").replace("/", "\\")]:
            self.assertEqual(self.run_program("-p", path, "a.b\\out"), (0, ""))
            self.assertIn("\nclass QORVModel_/c:\n", self.read("a.b/out"))


if __name__ == "__main__":
    unittest.main()
