"""Probe rows: what they reach, compared with the independent scorer and the Python class."""

import csv
import math
import re
import unittest

import pandas

from engines import CLAIMS, CREDIT, CheckedTest
import score as scorer
from support import CODES, NO_YES, TABLE, boolean, categorical, model, numeric
from test_python import load


class ProbeTest(CheckedTest):
    def probe(self, text, key="probe"):
        """The probe rows for a document, which must reach all reachable positions, and the number of these."""
        self.write("m.ModelXml", text)
        self.assertEqual(self.check("--probe", "probe.csv", "m.ModelXml"), (0, "", ""))
        with open(self.folder / "probe.csv", newline="", encoding="utf-8") as file:
            titles, *rows = csv.reader(file)
        found = self.report("m.ModelXml", "--rows", "probe.csv", "--key", key, "--scores", "scores.csv")
        self.assertEqual((found["rows"], found["uneven"], found["unreached"]["places"]), (len(rows), 0, []))
        return [dict(zip(titles, row)) for row in rows], found["unreached"]["of"]

    def assert_all_tried(self, variables, rows):
        for variable in variables:
            cells = {row[variable.field] for row in rows}
            wanted = {""} | set(variable.positions if variable.categorical else ())
            self.assertLessEqual(wanted, cells)
            if variable.categorical:
                self.assertIn(0, {variable.category(cell) for cell in cells - {""}}, "an unlisted value")
                continue
            bounds = {math.nextafter(bound, way) for bound in variable.bounds for way in (-math.inf, bound, math.inf)}
            self.assertLessEqual(bounds | set(variable.missing), {float(cell or "nan") for cell in cells})
            self.assertFalse([cell for cell in cells if "e" in cell])

    def test_examples(self):
        """The manual gives the counts of rows and positions. Each segment of the table has a row."""
        for example, rows_and_positions in [(CREDIT, (359, 110)), (CLAIMS, (98, 38))]:
            with self.subTest(example.path.name):
                rows, positions = self.probe(example.path.read_bytes().decode("utf-16"))
                self.assertEqual((len(rows), positions), rows_and_positions)
                reference = scorer.load(example.path)
                self.assert_all_tried(reference.variables, rows)
                scores = [reference.score(row) for row in rows]
                points = [x for x, _ in reference.table if min(scores) < x < max(scores)]
                self.assertEqual({sum(x < score for x in points) for score in scores}, set(range(len(points) + 1)))
                module = re.sub(r"( if \(isnan\(data\)or .*):", r"\1):", self.convert("-p", example.text, "out", "M"))
                texts = [v.field for v in reference.variables if v.categorical]
                frame = pandas.read_csv(self.folder / "probe.csv", float_precision="round_trip", dtype=dict.fromkeys(texts, str))
                results = load(module, "M").apply(frame.fillna(dict.fromkeys(texts, "")))
                results.set_index(frame["probe"]).to_csv(self.folder / "results.csv")
                accepted = "not-listed,missing-codes-parenthesis,missing-codes-digits,single-bound"
                status, printed, _ = self.check(example.path, "--rows", "probe.csv", "--key", "probe", "--compare", "results.csv",
                                                "--target", "python", "--score", results.columns[0], "--quiet", "--accept", accepted)
                self.assertEqual((status, printed.split(" rows")[0]), (0, f"{len(rows)} of {len(rows)}"))

    def test_odd_documents(self):
        """Titles that the model already uses, cells that need quotes, and neighbouring bounds."""
        long = 70 * "long " + "x"
        odd = categorical(3, 'a,"b"\n;', [" a", 'say "hi", you', "x\ny", "unlisted", "", long, "a", "a"], range(9))
        rows, positions = self.probe(model(numeric(1, "Tries ", [0, 1e-5], range(4)), categorical(2, "PROBE", ["NA"], [0, 1]), odd,
                                           numeric(4, "PROBE", [5], [0, 1, 2]), table=TABLE), "probe_")
        # Blanks and the empty value are unreachable; of a value listed twice, the last place counts.
        self.assertEqual((list(rows[0]), positions), (["probe_", "Tries ", "PROBE", 'a,"b"\n;', "tries_"], 4 + 2 + 6 + 3))
        self.assertEqual([row["Tries "] for row in rows[:8]], ["-1", "-" + "0." + 29 * "0" + "1", "0", "0." + 29 * "0" + "1", "0.000005",
                                                            "0.000009999999999999999", "0.00001", "0.000010000000000000003"])
        tries = [row["tries_"] for row in rows]
        self.assertIn("a,\"b\" ; = 'unlisted_', unlisted", tries)
        self.assertIn(f"a,\"b\" ; = '{long[:60]}…'", tries)
        self.assertEqual((tries[2], len(set(tries))), ("Tries  at the bound 0", len(tries)))
        for bounds, expected in [([math.nan], 1), ([math.inf], 2), ([-math.inf, math.inf], 2), ([1e308, 1.7976931348623157e308], 3),
                                 ([1, 1 + 2**-52], 4), ([1, 1], 4), ([3, 1, 2], 3), ([5e-324, 1e300], 4), ([9, 9.5, 20], 5)]:
            with self.subTest(bounds):
                rows, positions = self.probe(model(numeric(1, "n", bounds, range(len(bounds) + 2)), missing=CODES))
                self.assertEqual(positions, expected + 3)
                self.assertTrue([row for row in rows if row["tries"] == "n = 9, a missing code"])

    def test_wide_models(self):
        """One row for each cell of each column would be 16 times as large; long lists share their rows."""
        columns = [numeric(k, f"c{k}", [1, 2, 3], [0, k, 1, 2, 3]) if k % 100 else
                   categorical(k, f"c{k}", map(str, range(300)), range(301)) for k in range(1, 1001)]
        rows, positions = self.probe(model(*columns, table=[(x, x / 9e6) for x in range(500000, -9, -1000)]))
        self.assertEqual(positions, 990 * 5 + 10 * 301)
        self.assertLess(len(rows) * len(rows[0]), 2 * 2**20)
        self.assertLess(max(len(row["tries"]) for row in rows), 400)
        self.assertEqual(rows[0]["tries"].count(";"), 8)

    def test_positions_without_rows(self):
        """Unreachable positions do not count, nor does a value that --missing declares missing."""
        self.write("m.ModelXml", model(numeric(1, "n", range(20), range(23)), categorical(2, "c", ["a", "NA", "b "], range(5)),
                                       boolean(NO_YES, number=3, name="yn")))
        self.write("rows.csv", "n,c,yn\n7,a,no\n-1,,\n", "utf-8")
        call = ["m.ModelXml", "--rows", "rows.csv", "--target", "vba"]
        found = self.report(*call, "--missing", "NA", "--report", "page.html")["unreached"]
        self.assertEqual((found["positions"], found["of"], found["places"][:2], found["places"][-1]),
                         (21, 28 - 1, ["V1 n: missing", "V1 n: [0, 1]"], "V3 yn: true: 'yes'"))
        self.assertIn("Positions that no row reaches: 21 of 27<br>", (self.folder / "page.html").read_text())
        self.assertIn("V2 c: 'NA'", self.report(*call)["unreached"]["places"])
        printed = self.check(*call)[1]
        self.assertIn("\nPositions that no row reaches: 22 of 28\n  - V1 n: missing\n", printed)
        self.assertIn("\n  - and 12 more\n", printed)

    def test_calls(self):
        self.write("m.ModelXml", model(table=TABLE))
        self.assertEqual(self.check("m.ModelXml", "--probe", "new", "--target", "vba")[0::2], (1, ""))
        for name, message in [("m.ModelXml", "Output 'm.ModelXml' would overwrite an input or another output.\n"), ("none/new", "Cannot open file 'none/new' for writing.\n"),
                              ("/dev/full", "Cannot write to file '/dev/full'.\n")]:
            status, printed, reported = self.check("m.ModelXml", "--probe", name)
            self.assertEqual((status, printed, reported[:len(message)]), (2, "", message))


if __name__ == "__main__":
    unittest.main()
