"""The reports of scorewright-check, as text, JSON and page: golden files of a comparison in which everything happens."""

import datetime
import hashlib
import os
import unittest
from unittest import mock

from engines import CheckedTest
from sql_program import configuration
from support import NO_YES, boolean, categorical, document, numeric


class ReportsTest(CheckedTest):
    def setUp(self):
        super().setUp()
        models = [numeric(1, "n", [1, 2.5], [0.125, -1, 2, 3, 2.5], label="Years"),
                  categorical(2, "c", ["<script>", "a&b"], [0, 1, 2, 1.5], label=""),
                  boolean([*NO_YES, "yes", "YES"], (0, 0.5, -0.75), number=3, name="yn"),
                  categorical(4, "unused", ["x"], [0, float("nan")])]
        self.write("m.ModelXml", document(models, [(1, 0.5), (1, 0.5), (2, 0.25), (3, -1), (4, 0)], -1, target="y", missing={"n": [9, 99]},
                                          table=[(3, 1.25), (1, 0.6), (0, 0.5), (-2, 0.1)]))
        rows = [("twice", "1,a&b,no,", "1,0.6"), ("low", "0,?,n,", "-2.5,0.1"), ("short", "2,<script>", "1.25,0.68125"),
                ("code", "9,<script>,?,,too long", "-0.625,0"), *((f"code{i}", "9,<script>,?,", "-0.625,0") for i in range(5)),
                ("text", "ten,,YES,", "-1.375,0"), ("nan", "3,<script>,0,x", ","),
                ("best", "3,a&b,YES,", "3.25,1.25"),
                # Without explanation: the first four as one column or two would be read wrongly.
                *((f"wrong{i}", "2,<script>,no,", result) for i, result in enumerate(3 * ["-1.125,0.275"] + ["-1.375,0.225"])),
                *((f"far{i}", "2,<script>,no,", f"{0.75 + (-1) ** i * (1 + i / 16)},0.5") for i in range(12)),
                *((f"high{i}", "3,<script>,0,z", result) for i, result in enumerate(["1.75,0.84375", "oops,0.9", ","])),
                # More rows without a result than are named, and just as many results without a row.
                *((f"lost{i}", "1,a&b,no,", None) for i in range(6)), *((f"found{i}", None, "1,0.6") for i in range(5))]
        for name, titles, column in [("rows.csv", "k,n,c,yn,unused", 1), ("results.csv", "k,s,p", 2)]:
            lines = [f"{row[0]},{row[column]}" for row in rows + rows[:1] * (column == 1) if row[column] is not None]
            self.write(name, "\n".join([titles, *lines, ""]), "utf-8")
        self.call = ["m.ModelXml", "--rows", "rows.csv", "--key", "k", "--compare", "results.csv", "--score", "s",
                     "--probability", "p", "--target", "sql"]

        self.version = self.check("--version")[1].split()[1]
        time = mock.patch.dict(os.environ, SOURCE_DATE_EPOCH="1700000000")
        self.addCleanup(time.stop)
        time.start()

    def test_text(self):
        status, printed, message = self.check(*self.call, "--show")
        self.assertEqual((status, message), (1, ""))
        self.assert_golden("check.txt", printed)

    def test_json(self):
        printed = self.check(*self.call, "--json")[1]
        self.assert_golden("check.json", printed.replace(f'"version": "{self.version}"', '"version": "VERSION"'))

    def test_page(self):
        """But for its style. It needs no other file."""
        self.check(*self.call, "--report", "report.html")
        page = (self.folder / "report.html").read_text("utf-8")
        self.assert_golden("check.html", page[page.index("<main>"):].replace(f"check {self.version}:", "check VERSION:"))
        self.assertNotRegex(page, r"<script|https?:|url\(|@import|src=|\bnan\b|\binf\b")

    def test_evidence(self):
        """The bytes that were read, and when."""
        self.write("s.xml", configuration(dbType="mysql"))
        del os.environ["SOURCE_DATE_EPOCH"]
        begun = datetime.datetime.now(datetime.timezone.utc).replace(microsecond=0)
        found = self.report(*self.call, "--sql", "s.xml", "--canvas", "none", "--missing", "", "--missing", "a b")
        self.assertTrue(begun <= datetime.datetime.strptime(found["time"], "%Y-%m-%dT%H:%M:%S%z") <= begun + datetime.timedelta(minutes=1))
        self.assertEqual(found["options"]["missing"], ["", "a b"])
        expected = []
        for role, name, rows in [("document", "m.ModelXml", None), ("SQL configuration", "s.xml", None), ("canvas", "none", None),
                                 ("rows", "rows.csv", 38), ("results", "results.csv", 36)]:
            data = None if name == "none" else (self.folder / name).read_bytes()
            expected.append({"role": role, "path": name, "rows": rows, "bytes": data and len(data),
                             "sha256": data and hashlib.sha256(data).hexdigest()})
        self.assertEqual(found["files"], expected)

    def test_single_things(self):
        """The targets of findings of one kind, one row that is uneven, a point of the curve that is no number."""
        models = [numeric(1, "1x", [1, 2], [0, 1, 2, 3]), categorical(2, "é", ["a"], [0, 1])]
        self.write("m.ModelXml", document(models, [(1, 1), (2, 1)], 0, table=[(3, 0.9), (float("nan"), 0.5), (0, 0.1)]))
        self.write("rows.csv", "1x,é\n1\n", "utf-8")
        printed = self.check("m.ModelXml", "--rows", "rows.csv", "--report", "report.html")[1]
        self.assertIn("name-characters [sas, python] docs/python.md\n", printed)
        self.assertIn("1 row scored\n1 row with fewer or more cells than titles, first row 1\n", printed)
        self.assertNotIn(" 0.00,", (self.folder / "report.html").read_text("utf-8").split("<polyline")[1])


if __name__ == "__main__":
    unittest.main()
