"""What no input and no device may do: crash, hang, take memory without bound, or spoil an output that was there."""

import math
import struct
import time
import unittest
from base64 import b64encode
from pathlib import Path

from support import DOCUMENTS, PROGRAM, ProgramTest, categorical, document, doubles, integers, not_on_windows, numeric

EXPORTS = {"-a": ["m", "out"], "-e": ["m", "out"], "-p": ["m", "out", "Name"], "-h": ["m", "", "out"], "-s": ["config"]}
CONFIGURATION = ('<Model2SQL inputFile="m" outputFile="out" inputTable="i" predictionTable="p" dbType="mysql"'
                 ' kestruneScript="1"/>')
MANY = 1_000_000


class FaultsTest(ProgramTest):
    def export(self, data, options=EXPORTS, seconds=60, statuses=(0, 1, 8)):
        """Runs exporters on a document, and checks that an output is whole or as it was. No document in UTF-8 takes
        more than 60 times its size; what the program itself takes is added."""
        data = data if isinstance(data, bytes) else data.encode("utf-8-sig")
        (self.folder / "m").write_bytes(data)
        self.write("config", CONFIGURATION)
        for option in options:
            (self.folder / "out").write_text("as it was")
            start = time.monotonic()
            status, printed = self.run_program(option, *EXPORTS[option], memory=60 * len(data) + (100 << 20))
            self.assertLess(time.monotonic() - start, seconds)
            self.assertIn(status, statuses, printed)
            if status != 0:
                self.assertEqual((self.folder / "out").read_text(), "as it was")
                self.assertLessEqual(printed.count("\n"), 2 if status == 1 else 1)

    def test_documents_cut_at_every_byte(self):
        data = DOCUMENTS["logistic"].encode("utf-8-sig")
        for size in range(len(data)):
            self.export(data[:size], ["-a"])
        for size in range(0, len(data), 7):
            self.export(data[:size], EXPORTS, statuses=(0, 1, 3, 8))

    def test_large_shapes(self):
        models = numeric(1, "a", [1], [1, 2, 3])
        shell = document([models], [(1, 1)], 0).replace("<DataDictionary>", "<DataDictionary>{}")
        for text in [shell.replace("{}", "<a>" * MANY + "</a>" * MANY), shell.replace("{}", "<a/>" * MANY),
                     shell.replace("{}", "<a>" * MANY), shell.replace('"a"', '"' + "&lt;" * MANY + '"'),
                     shell.replace("4.2.1", "x" * 200_000_000), shell.replace("{}", " " * 50_000_000),
                     shell.replace("{}", "&amp;" * MANY), shell.replace("{}", "t<!---->" * MANY),
                     shell.replace("{}", "<DataField name='a' name='b'/>" * MANY)]:
            self.export(text, ["-a", "-s"], statuses=(0,))

    def test_what_many_share_is_read_once(self):
        shared = "AAAA" * 500_000 + "!"
        text = document([numeric(k, "a", [1], [1, 2, 3]) for k in range(20_000)], [(k, 1) for k in range(20_000)], 0)
        self.export(text.replace("</DataDictionary>", f'<DataField name="a"><Missing>{shared}</Missing></DataField>'
                                                      "</DataDictionary>"), ["-a", "-e", "-p", "-s"], seconds=20)

    def test_numbers_that_are_none(self):
        for value in [math.nan, -math.nan, math.inf, -math.inf, 1e308, -1e308]:
            self.export(document([numeric(1, "a", [value] * 3, [value] * 5), categorical(2, "b", ["x"], [value] * 2)],
                                 [(1, value), (2, value)], value, table=[(value, value)] * 4, missing={"a": [value] * 2})
                        .replace('type="Norm', 'ordinal="1" nocc="" type="Norm'), statuses=(0,))

    def test_arrays_that_do_not_divide(self):
        for size in range(0, 40):
            array = b64encode(struct.pack("<5d", 1, 2, 3, 4, 5)[:size]).decode()
            text = document([numeric(1, "a", [1, 2, 3], [1, 2, 3, 4, 5])], [(1, 1)], 0, table=[(1, 1), (0, 0)])
            for original in [doubles([1, 2, 3]), doubles([1, 2, 3, 4, 5]), integers([1]), doubles([1, 0])]:
                self.export(text.replace(original, array), ["-a", "-h"], statuses=(0, 1, 3, 8))

    @not_on_windows("wine itself needs more memory than any limit here allows")
    def test_memory_that_runs_out(self):
        if b"__asan_init" in Path(PROGRAM).read_bytes():
            self.skipTest("the address sanitizer reserves more memory than any limit here allows")
        self.write("config", CONFIGURATION.replace('kestruneScript="1"', ""))
        one = numeric(1, "a", [1], [1, 2, 3])
        for text in [document([numeric(1, "x y" * 1_500_000, [1], [1, 2, 3])], [(1, 1)], 0),
                     document([one], [(1, 1)], 0, table=[(-point, 0.5) for point in range(400_000)]),
                     document([one], [(1, 1)], 0, target="y" * 4_000_000)]:
            self.write("m", text)
            for option in ["-a", "-e", "-p", "-s"]:
                statuses = []
                while 0 not in statuses:
                    (self.folder / "out").write_text("as it was")
                    memory = (60 + 2 * len(statuses)) << 20
                    statuses.append(self.run_program(option, *EXPORTS[option], memory=memory)[0])
                    if statuses[-1] != 0:
                        self.assertEqual((self.folder / "out").read_text(), "as it was")
                self.assertEqual(set(statuses), {0, 8}, statuses)

    def test_files_that_cannot_be_used(self):
        self.write("m", DOCUMENTS["logistic"])
        self.write("config", CONFIGURATION.replace('"out"', '"/dev/full"'))
        for option, operands in EXPORTS.items():
            if option == "-h":  # a page that cannot be written is no failure
                continue
            full = [operand.replace("out", "/dev/full") for operand in operands]
            self.assertEqual(self.run_program(option, *full), (7, "Cannot write to file '/dev/full'.\n"))
        self.assertEqual(self.run_program("-h", "m", "", "/dev/full"), (0, ""))
        self.assertEqual(self.run_program("-h", "m", "/dev/zero", "out")[0], 0)


if __name__ == "__main__":
    unittest.main()
