"""The command line: options, messages, exit statuses and effects on the output file."""

import os
import unittest

from support import DOCUMENTS, ProgramTest, categorical, document, doubles, integers, not_on_windows, numeric

USAGE = """USAGE:
to SAS   : scorewright -a <.ModelXml file> <SAS script file>
to SQL   : scorewright -s <Config SQL file convertion>
to VBA   : scorewright -e <.ModelXml file> <Excel VBA code file>
to Python: scorewright -p <.ModelXml file> <Python code file> [<Python Class>]
to Html  : scorewright -h <.ModelXml file> [[<HTML canvas file>] <HTML output file>]
"""
PLAIN = DOCUMENTS["logistic"]


class ProgramLineTest(ProgramTest):
    def test_usage(self):
        self.write("m", PLAIN)
        for arguments in [[], ["-a"], ["-a", "m"], ["-p", "m"], ["-e", "m"], ["-A", "m", "out"], ["/a", "m", "out"],
                          ["", "m", "out"], ["-as", "m", "out"], ["m", "-a", "out"]]:
            with self.subTest(arguments):
                self.assertEqual(self.run_program(*arguments), (1, USAGE))
        self.assertFalse((self.folder / "out").exists())
        # Further arguments are ignored.
        self.assertEqual(self.run_program("-a", "m", "out", "x", b"\xff"), (0, "Conversion successful!\n"))
        self.assertEqual(self.run_program("-p", "m", "out", "Name", "x"), (0, ""))
        self.assertIn("class QORVModel_Name:", self.read("out"))

    def test_names_beyond_ascii(self):
        name = self.write("modèle €.ModelXml", PLAIN)
        self.assertEqual(self.run_program("-a", name, "straße 𝄞.sas")[0], 0)
        self.assertIn(f"Source model file: {name} *\n", self.read("straße 𝄞.sas"))

    @not_on_windows("arguments are UTF-16 there")
    def test_arguments_in_invalid_utf_8(self):
        name = self.write("m", PLAIN)
        self.assertEqual(self.run_program("-a", b"m\xff", "out"), (1, "Argument 2 is not valid UTF-8.\n"))
        self.assertEqual(self.run_program("-a", name, b"out\xc3"), (1, "Argument 3 is not valid UTF-8.\n"))
        self.assertEqual(self.run_program(b"-a\xc3", name, "out"), (1, USAGE))

    def test_outputs_that_cannot_be_written(self):
        self.write("m", PLAIN)
        (self.folder / "folder").mkdir()
        for option in ["-a", "-e", "-p"]:
            for output in ["no/such/folder", "folder", ""]:
                self.assertEqual(self.run_program(option, "m", output),
                                 (6, f"Cannot open file '{output}' for writing.\n"))
            self.assertEqual(self.run_program(option, "m", "/dev/full"), (7, "Cannot write to file '/dev/full'.\n"))

    def test_unusable_documents_leave_the_output_untouched(self):
        model = numeric(3, "the field", [1, 2], [1, 2, 3, 4])
        good = document([model], [(3, 1)], 0, table=[(1, 1), (0, 0)])
        boolean = categorical(1, "b", ["no"] * 6, [0, 1], tname="bb64")
        cases = {
            None: "Error: File not found.\n",
            "": "Error: No XML data.\n",
            "<QRV_Model><a>&b;</a></QRV_Model>": "Error: Unknown character entity at line 1, column 20.\n",
            "<a/>": "no element 'QRV_Model' found.\n",
            good.replace("<y>", "<z>", 1): "Error: Unmatched end tag at line 1, column ",
            good.replace("<x>", "<w/><x>*", 1): "model 'V3' (field 'the field'): array 'x' has 0 values, 1 needed.\n",
            document([numeric(1, "f\ng", [1, 2], [1, 2, 3])], [(1, 1)], 0):
                "model 'V1' (field 'f g'): array 'y' has 3 values, 4 needed.\n",
            document([categorical(1, "f", ["a", "b"], [1, 2]), model], [], 0).replace("<x>", "<x>*"):
                "model 'V1' (field 'f'): array 'y' has 2 values, 3 needed.\n",
            document([boolean], [(1, 1)], 0): "model 'V1' (field 'b'): array 'y' has 2 values, 3 needed.\n",
            good.replace("betas>", "gammas>"): "RegressionModel: array 'betas' has 0 values, 2 needed.\n",
            good.replace("indexes>", "lists>"): "RegressionModel: array 'indexes' is absent or holds no number.\n",
            good.replace("<indexes>", "<indexes>*"): "RegressionModel: array 'indexes' is absent or holds no number.\n",
            good.replace("<y>", "<y>*").replace("<y>*", "<y>", 1):
                "ProbabilityMapping: array 'y' has 0 values, 2 needed.\n",
            document([model], [(3, 1)], 0, table=[]): "ProbabilityMapping: array 'x' has 0 values, 1 needed.\n",
            # Padding within a text ends it.
            good.replace(doubles([1, 2]), doubles([1]) + doubles([2])):
                "model 'V3' (field 'the field'): array 'x' ends early: 1 of 2 numbers.\n",
            good.replace(doubles([1, 0]), "\n" + doubles([1]) + doubles([0, 0]) + " ", 1):
                "RegressionModel: array 'betas' ends early: 1 of 3 numbers.\n",
            good.replace(integers([3]), integers([3]) + integers([3]), 1):
                "RegressionModel: array 'indexes' ends early: 1 of 2 numbers.\n",
        }
        self.write("out", "as it was")
        os.mkfifo(self.folder / "pipe")
        for name, problem in {"/dev/null": "No XML data", "/dev/zero": "No XML data", "pipe": "File not found",
                              "/": "File not found"}.items():
            self.assertEqual(self.run_program("-a", name, "out"), (8, f"Cannot convert model '{name}': Error: {problem}.\n"))
        for text, problem in cases.items():
            name = "none" if text is None else self.write("m", text, "utf-8")
            for option in ["-a", "-e", "-p"]:
                with self.subTest(problem, option=option):
                    status, printed = self.run_program(option, name, "out")
                    self.assertEqual((status, printed.count("\n")), (8, 1))
                    self.assertTrue(printed.startswith(f"Cannot convert model '{name}': {problem}"), printed)
        # White space after the padding is accepted, though the length of the text then implies more numbers.
        self.convert("-a", good.replace("=</", "=\n</"), "spaced")
        # The unusable document is reported even if the output could not be written.
        self.assertEqual(self.run_program("-a", "m", "no/such/folder")[0], 8)
        self.assertEqual(self.read("out"), "as it was")

    def test_outputs_that_are_inputs(self):
        self.write("m", PLAIN)
        (self.folder / "link").symlink_to("m")
        os.link(self.folder / "m", self.folder / "twin")
        (self.folder / "folder").mkdir()
        for name in ["m", "./folder/../m", "link", "twin"]:
            for option in ["-a", "-e", "-p"]:
                self.assertEqual(self.run_program(option, "m", name),
                                 (8, "Cannot convert model 'm': the output would overwrite it.\n"))
            settings = f'<Model2SQL inputFile="{name}" outputFile="%s" inputTable="i" predictionTable="p"/>'
            self.write("c", settings % "m")
            self.assertEqual(self.run_program("-s", "c"), (8, f"Cannot convert model '{name}': the output would overwrite it.\n"))
            self.write("c", settings % "./c")
            self.assertEqual(self.run_program("-s", "./c"), (8, f"Cannot convert model '{name}': the output would overwrite the "
                                                             "configuration './c'.\n"))
            self.assertEqual(self.read("c"), settings % "./c")
        self.assertEqual(self.read("m"), PLAIN)
        self.write("folder/m", PLAIN)  # the same content, but another file
        self.assertEqual(self.run_program("-a", "m", "folder/m")[0], 0)

    @not_on_windows("pipes are rejected there")
    def test_inputs_from_a_pipe(self):
        self.write("m", PLAIN)
        long = PLAIN + " " * 200_000  # more than a pipe holds
        for text in [PLAIN, long]:
            self.assertEqual(self.run_program("-a", "/dev/stdin", "out", stdin=text.encode("utf-16")), (0, "Conversion successful!\n"))
            self.assertTrue(self.read("out").endswith("/* run; */\n"))
        for text in ["", "<a/>"]:
            self.assertEqual(self.run_program("-a", "/dev/stdin", "out", stdin=text.encode())[0], 8)
        canvas = "[QRV_SCRIPT][QRV_ANSWER 0][QRV_ALL_QUESTIONS]" + long
        self.assertEqual(self.run_program("-h", "m", "/dev/stdin", "page", stdin=canvas.encode()), (0, ""))
        self.assertTrue((self.folder / "page").read_text().endswith(long))
        settings = '<Model2SQL inputFile="m" outputFile="out" inputTable="i" predictionTable="p"/>'
        self.assertEqual(self.run_program("-s", "/dev/stdin", stdin=settings.encode()), (0, "Conversion successful!\n"))

    def test_unused_parts_may_be_absent(self):
        boolean = document([categorical(1, "b", ["no"] * 5, [0, 1], tname="bb64"),
                            categorical(2, "c", [], [0], tname="bb64")], [], 0)
        for text in [boolean.replace("QRV_Model", "qrv_MODEL").replace('<?xml version="1.0"?>', ""),
                     boolean.replace("</QRV_Model>", "")]:
            for option in ["-a", "-e", "-p"]:
                self.convert(option, text)

    def test_what_only_sas_rejects(self):
        self.write("out", "as it was")
        unsupported = numeric(2, "f", [1], [1], kind="normcontinuous")  # also has too short an array
        self.write("m", document([numeric(1, "e", [1], [1, 2, 3]), unsupported], [(1, 1), (9, 1)], 0))
        self.assertEqual(self.run_program("-a", "m", "out"),
                         (1, "Unsupported recoding (from RANK)!\nPlease update Qorv to the latest version.\n"))
        self.write("m", document([numeric(1, "e", [1], [1, 2, 3])], [(1, 1), (9, 1)], 0))
        self.assertEqual(self.run_program("-a", "m", "out"),
                         (8, "Cannot convert model 'm': RegressionModel: array 'indexes' holds 9, which is the number "
                             "of no model.\n"))
        self.assertEqual(self.read("out"), "as it was")
        self.assertEqual(self.run_program("-p", "m", "out"), (0, ""))
        self.assertIn("s=dfOutScore[line]=0 + 1 * R0_e + 1 * \n", self.read("out"))
        self.assertEqual(self.run_program("-e", "m", "out"), (0, "Conversion successful!\n"))
        self.assertIn("        + 1* R0_e _\n        + 1* \n\n", self.read("out"))

    def test_numbers_of_models(self):
        """Without a second character, the number is -1; without digits, 0. Of several models, the last counts."""
        names = ["V", "", "Vx", "V0", "V-1", "V 7z"]
        models = [numeric(k, f"f{k}", [1], [1, 2, 3]).replace(f'"V{k}"', f'"{n}"') for k, n in enumerate(names)]
        models.append(numeric(6, "f6", [1], [1, 2, 3]).replace('name="V6"', ""))
        script = self.convert("-a", document(models, [(-1, 1), (0, 2), (7, 3)], 0))
        self.assertIn("+ 1* R6_f6\n        + 2* R3_f3\n        + 3* R5_f5;\n", script)

    def test_characters(self):
        model = document([categorical(1, "x" * 27 + "𝄞", ["a"], [1, 2])], [], 0)  # "R0_" and 27 of 31 units leave one
        self.assertIn("R0_" + "x" * 27 + "\ud834=1;\n", self.convert("-a", model))
        self.assertIn("R0_" + "x" * 27 + "? = 1\n", self.convert("-p", model))

    @not_on_windows("the code page is the system's there")
    def test_the_code_page(self):
        undefined = {0x81, 0x8d, 0x8f, 0x90, 0x9d}
        label = bytes(range(0x80, 0x100))
        text = document([numeric(1, "a", [1], [1, 2, 3])], [], 0).encode().replace(b"Label", label)
        (self.folder / "m").write_bytes(text)
        self.run_program("-p", "m", "out")
        shown = "".join(chr(byte) if byte in undefined else bytes([byte]).decode("cp1252") for byte in label)
        self.assertIn(shown, self.read("out"))


if __name__ == "__main__":
    unittest.main()
