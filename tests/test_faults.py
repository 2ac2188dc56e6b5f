"""No input or device may cause a crash, a hang, unbounded memory or the loss of an existing output."""

import ctypes
import errno
import math
import platform
import struct
import tempfile
import time
import unittest
from base64 import b64encode
from pathlib import Path

from support import DOCUMENTS, PROGRAM, ProgramTest, categorical, document, doubles, integers, not_on_windows, numeric

EXPORTS = {"-a": ["m", "out"], "-e": ["m", "out"], "-p": ["m", "out", "Name"], "-h": ["m", "", "out"], "-s": ["config"]}
MANY = 1_000_000
READ_CALL = {"x86_64": 0, "aarch64": 63}


def fail_reads(least, most):
    """From now on, reads of `least` to `most` bytes fail in this process and its children."""
    load, equal, above, at_least, result = 0x20, 0x15, 0x25, 0x35, 0x06
    number, size = 0, 32  # of the system call, and of its buffer
    code = b"".join(struct.pack("HBBI", *step) for step in [
        (load, 0, 0, number), (equal, 0, 4, READ_CALL[platform.machine()]), (load, 0, 0, size), (at_least, 0, 2, least),
        (above, 1, 0, most), (result, 0, 0, 0x50000 | errno.EIO), (result, 0, 0, 0x7FFF0000)])
    steps = ctypes.create_string_buffer(code)
    program = ctypes.create_string_buffer(struct.pack("@HP", len(code) // 8, ctypes.addressof(steps)))
    library = ctypes.CDLL(None, use_errno=True)
    if library.prctl(38, 1, 0, 0, 0) or library.prctl(22, 2, program):  # no new privileges; this filter
        raise OSError(ctypes.get_errno(), "no filter for system calls")


class FaultsTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("config", '<Model2SQL inputFile="m" outputFile="out" inputTable="i" predictionTable="p"/>')

    def export(self, data, options=EXPORTS, statuses=(0, 1, 8), memory=None):
        """Runs exporters on a document, and requires that an output is complete or unchanged. The memory limit is 60 times
        the size of the document in UTF-8, plus what the program itself needs."""
        data = data if isinstance(data, bytes) else data.encode("utf-8-sig")
        (self.folder / "m").write_bytes(data)
        for option in options:
            (self.folder / "out").write_text("as it was")
            start = time.monotonic()
            status, printed = self.run_program(option, *EXPORTS[option], memory=memory or 60 * len(data) + (100 << 20))
            self.assertLess(time.monotonic() - start, 60)
            self.assertIn(status, statuses, printed)
            if status != 0:
                self.assertEqual((self.folder / "out").read_text(), "as it was")
        return status

    def test_truncated_documents(self):
        data = DOCUMENTS["logistic"].encode("utf-8-sig")
        for size in range(0, len(data), 3):
            self.export(data[:size], ["-a"])
        for size in range(0, len(data), 31):
            self.export(data[:size], statuses=(0, 1, 3, 8))

    def test_large_shapes(self):
        shell = document([numeric(1, "a", [1], [1, 2, 3])], [(1, 1)], 0).replace("<DataDictionary>", "<DataDictionary>{}")
        for shape in ["<a>" * MANY + "</a>" * MANY, "<a>" * MANY, "<a/>" * MANY, "&amp;" * MANY, "t<!---->" * MANY,
                      " " * 50_000_000, f"<a x='{'&lt;' * MANY}'/>", "<DataField name='a' name='b'/>" * MANY]:
            self.export(shell.replace("{}", shape), ["-a", "-s"], statuses=(0,))

    @not_on_windows("requires a filter for system calls")
    def test_read_errors(self):
        """A file with a read error is treated like an absent one."""
        configuration = (self.folder / "config").read_text("utf-8-sig")
        canvas = "[QRV_SCRIPT][QRV_ANSWER 0][QRV_ALL_QUESTIONS]"
        for text, *arguments in [*[(DOCUMENTS["logistic"], option, "x", "out") for option in ["-a", "-e", "-p"]],
                                 (DOCUMENTS["logistic"], "-h", "x", "", "out"), (canvas, "-h", "none", "x", "out"),
                                 (configuration, "-s", "x")]:
            # A document is read in two calls: the first block, for its mark, and the rest. A canvas is read in whole
            # blocks and a last block.
            sizes = (4096, 4096) if text == canvas else (1 << 17, 1 << 20)
            with self.subTest(arguments):
                (self.folder / "out").write_text("as it was")
                self.write("x", text + " " * 300_000)
                broken = self.run_program(*arguments, limit=lambda: fail_reads(*sizes)), (  # noqa: B023
                    self.folder / "out").read_bytes()
                (self.folder / "x").unlink()
                absent = self.run_program(*arguments), (self.folder / "out").read_bytes()
                self.assertEqual(broken, absent)

    @not_on_windows("a large sparse file requires /dev/shm")
    def test_sizes_that_overflow(self):
        with tempfile.NamedTemporaryFile(dir="/dev/shm") as file:
            for size in [(1 << 64) // 5 + 1000, (1 << 63) // 5 + 1000, 1 << 62]:
                file.truncate(size)
                self.assertEqual(self.run_program("-a", file.name, "out")[0], 8)

    def test_shared_arrays_are_decoded_once(self):
        text = document([numeric(k, "a", [1], [1, 2, 3]) for k in range(20_000)], [(k, 1) for k in range(20_000)], 0,
                        missing={"a": []})
        self.export(text.replace("</Missing>", "AAAA" * 500_000 + "!</Missing>"), ["-a", "-e", "-p", "-s"])

    def test_non_finite_numbers(self):
        for value in [math.nan, -math.nan, math.inf, -math.inf, 1e308, -1e308]:
            self.export(document([numeric(1, "a", [value] * 3, [value] * 5), categorical(2, "b", ["x"], [value] * 2)],
                                 [(1, value), (2, value)], value, table=[(value, value)] * 4, missing={"a": [value] * 2})
                        .replace('type="Norm', 'ordinal="1" nocc="" type="Norm'), statuses=(0,))

    def test_arrays_with_partial_numbers(self):
        text = document([numeric(1, "a", [1, 2, 3], [1, 2, 3, 4, 5])], [(1, 1)], 0, table=[(1, 1), (0, 0)])
        for size in range(0, 40, 3):
            array = b64encode(struct.pack("<5d", 1, 2, 3, 4, 5)[:size]).decode()
            for original in [doubles([1, 2, 3]), doubles([1, 2, 3, 4, 5]), integers([1]), doubles([1, 0])]:
                self.export(text.replace(original, array), ["-a", "-h"], statuses=(0, 1, 3, 8))

    @not_on_windows("wine itself needs more memory than these limits allow")
    def test_out_of_memory(self):
        if b"__asan_init" in Path(PROGRAM).read_bytes():
            self.skipTest("the address sanitizer reserves more memory than these limits allow")
        models = [numeric(k, f"c{k}", [1], [1, 2, 3]) for k in range(20_000)]
        text = document(models, [(1, 1)], 0)
        for option in ["-a", "-e", "-p"]:
            too_little, enough = 60 << 20, 300 << 20
            while enough - too_little > 1 << 14:
                memory = (too_little + enough) // 2
                if self.export(text, [option], (0, 8), memory) == 0:
                    enough = memory
                else:
                    too_little = memory
            self.assertGreater(too_little, 60 << 20)


if __name__ == "__main__":
    unittest.main()
