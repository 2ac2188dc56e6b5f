"""The reports of scorewright-check, as text, JSON and page: golden files of a comparison with all kinds of results."""

import datetime
import hashlib
import math
import os
import re
import unittest
from decimal import Decimal
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
                # Unexplained; misreading one or two columns would give the first four.
                ("wrong0", "2,a&b,no,", "-0.875,0.325"),
                *((f"wrong{i}", "2,<script>,no,", result) for i, result in enumerate(2 * ["-1.125,0.275"] + ["-1.375,0.225"], 1)),
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
        self.assertEqual((status, message), (3, ""))
        self.assert_golden("check.txt", printed)

    def test_json(self):
        printed = self.check(*self.call, "--json")[1]
        self.assert_golden("check.json", printed.replace(f'"version": "{self.version}"', '"version": "VERSION"'))

    def test_page(self):
        """Except for its style. The page needs no other file."""
        self.check(*self.call, "--report", "report.html")
        page = (self.folder / "report.html").read_text("utf-8")
        self.assert_golden("check.html", page[page.index("<main>"):].replace(f"check {self.version}:", "check VERSION:"))
        self.assertNotRegex(page, r"<script|https?:|url\(|@import|src=|\bnan\b|\binf\b")

    def test_evidence(self):
        """The bytes that were read, and the time."""
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
        """The targets of findings of one kind, one uneven row, a point of the curve that is NaN."""
        models = [numeric(1, "1x", [1, 2], [0, 1, 2, 3]), categorical(2, "é", ["a"], [0, 1])]
        self.write("m.ModelXml", document(models, [(1, 1), (2, 1)], 0, table=[(3, 0.9), (float("nan"), 0.5), (0, 0.1)]))
        self.write("rows.csv", "1x,é\n1\n", "utf-8")
        printed = self.check("m.ModelXml", "--rows", "rows.csv", "--report", "report.html")[1]
        self.assertIn("name-characters [sas, python] docs/manual.md\n", printed)
        self.assertIn("\n1 row with fewer or more cells than the header line, first row 1\n", printed)
        self.assertNotIn(" 0.00,", (self.folder / "report.html").read_text("utf-8").split("<polyline")[1])

    def bins(self, bounds):
        """The bins between these bounds as --show prints them, and the line that explains them."""
        self.write("m.ModelXml", document([numeric(1, "n", bounds, range(len(bounds) + 2))], [(1, 1)], 0))
        printed = self.check("m.ModelXml", "--show")[1]
        return re.findall(r"^  ([(\[].*[)\]])  ", printed, re.M), re.findall(r"^The bound shown as (.*?) in the document:", printed, re.M)

    def test_bins(self):
        """A bound that was closed on the left, and its near misses: the first, a digit further, digits too many."""
        before = lambda number: math.nextafter(number, -math.inf)
        for bounds, shown, explained in [
                ([12, 23.99999999999999, before(36)], "(-∞, 12) [12, 24) [24, 36) [36, ∞)", "24) is 23.99999999999999]"),
                ([-24, -10.00000000000001, 0.09999999999999999, before(10), before(65.6)],
                 "(-∞, -24) [-24, -10) [-10, 0.1) [0.1, 10) [10, 65.6) [65.6, ∞)", "-10) is -10.00000000000001]"),
                ([-2e-9, before(1e-9), 123456789012.9999, 1.999999999999999e+20],
                 "(-∞, -2e-09) [-2e-09, 1e-09) [1e-09, 123456789013) [123456789013, 2e+20) [2e+20, ∞)", None),
                ([23.99999999999999, 35.99999999999998, 65.6], "(-∞, 23.99999999999999) [23.99999999999999, "
                 "35.99999999999998] (35.99999999999998, 65.6] (65.6, ∞)", ""),
                ([-1, 0, 24.00000000000001, 1234567890123.999],
                 "(-∞, -1) [-1, 0] (0, 24.00000000000001] (24.00000000000001, 1234567890123.999] (1234567890123.999, ∞)", ""),
                ([12, 23.99999999999999, before(before(24)), 24],
                 "(-∞, 12) [12, 23.99999999999999] (23.99999999999999, 24) [24, 24] (24, ∞)", None),
                ([23.99999999999999], "(-∞, 23.99999999999999) (23.99999999999999, ∞)", "")]:
            printed, reasons = self.bins(bounds)
            self.assertEqual(" ".join(printed), shown)
            if explained is not None:
                self.assertEqual(reasons, [explained][:bool(explained)])

    def test_members_of_bins(self):
        """A printed bin contains the numbers of up to 16 digits that the model's bin contains, however far a bound is
        below a short number: by some doubles, by the double of a decimal, or not."""
        number = lambda text: float(text.replace("∞", "inf"))
        for steps in (0, 1, 2, 3, 9):
            bounds = [-1e300]
            for short in sorted(sign * k * 10.0 ** e for sign in (-1, 1) for e in (-7, -1, 0, 5, 17) for k in (1, 1.7, 6.56, 7.3, 9.2)):
                below = short - steps * math.ulp(short)
                bounds.append(float(f"{below:.16g}") if len(bounds) % 2 else below)
            intervals = [re.fullmatch(r"(.)(.*), (.*)(.)", text).groups() for text in self.bins(bounds)[0]]
            self.assertEqual(len(intervals), len(bounds) + 1)
            for i, bound in enumerate(bounds[1:], 1):
                for value in {float(f"{bound + k * math.ulp(bound):.16g}") for k in range(-12, 13)}:
                    left, low, high, right = intervals[i]
                    self.assertEqual(value < number(high) or right == "]" and value == number(high), value <= bound, intervals[i])
                    left, low, high, right = intervals[i + 1]
                    self.assertEqual(value > number(low) or left == "[" and value == number(low), value > bound, intervals[i + 1])

    def axis(self, side, text):
        found = re.findall(rf'<i class="{side}[ a-z]*" style="[a-z]*:([\d.]+)%"><b>(.*?)</b>', text)
        return [float(place) for place, _ in found], [Decimal(number) for _, number in found]

    def test_axes(self):
        """A few round numbers, evenly spaced, at their places; counts are whole, and only they are on the left."""
        for low, high in [(-101, 1500.5), (0.1, 0.7), (65.55, 65.65), (1e15, 1e15 + 40), (-3e-300, 2e-300), (1e300, 1.1e300)]:
            self.write("m.ModelXml", document([numeric(1, "n", [1], [0, 0, 0])], [], low, table=[(high, 0.9), (low, 0.1)]))
            self.check("m.ModelXml", "--report", "report.html")
            places, numbers = self.axis("below", (self.folder / "report.html").read_text("utf-8"))
            steps = {b - a for a, b in zip(numbers, numbers[1:])}
            self.assertTrue(3 <= len(numbers) <= 11 and len(steps) == 1, numbers)
            step = steps.pop()
            self.assertIn(step.normalize().as_tuple().digits, [(1,), (2,), (5,)])
            self.assertEqual({number % step for number in numbers}, {0})
            for place, number in zip(places, numbers):
                share = (float(number) - low) / (high - low)
                self.assertAlmostEqual(place, 100 * (share + 0.05) / 1.1, delta=0.1)
        self.write("m.ModelXml", document([numeric(1, "n", [1, 2], [0, 1, 2, 3])], [(1, 1)], 0, kind="C"))
        self.write("rows.csv", "n\n1\n1\n0\n", "utf-8")
        self.check("m.ModelXml", "--rows", "rows.csv", "--report", "report.html")
        self.assertEqual(self.axis("left", (self.folder / "report.html").read_text("utf-8")), ([0, 50, 100], [0, 1, 2]))


if __name__ == "__main__":
    unittest.main()
