"""The causes that scorewright-check reports for a deployment as a whole, and near misses of each."""

import csv
import json
import math
import struct
import unittest
from itertools import accumulate

from engines import CheckedTest
from support import categorical, document, numeric

TABLE = [(4, 1), (2.125, 0.61), (-1, 0.17), (-5, 0.02)]
RECODINGS = [numeric(1, "n", [1 / 3, 2, 5], [0.0625, -1.37, 0.51, 1.93, 2.71]), categorical(2, "c", ["a", "b"], [0.11, -0.71, 1.23]),
             numeric(3, "m", [10, 20], [0, 0.43, -0.29, 0.83])]
NUMBERS = {"n": ["", "0.25", f"{1 / 3}", "1.5", "3", "7"], "c": ["", "a", "b"], "m": ["", "5", "20", "30"]}
ROWS = [(n, c, m) for n in NUMBERS["n"] for c in NUMBERS["c"] for m in NUMBERS["m"]]


def probability(score):
    if score > TABLE[0][0]:
        return TABLE[0][1]
    for (x1, y1), (x0, y0) in zip(TABLE, TABLE[1:]):
        if score > x0:
            return y0 + (score - x0) * (y1 - y0) / (x1 - x0)
    return TABLE[-1][1]


def single(number):
    return struct.unpack("f", struct.pack("f", number))[0]


class CausesTest(CheckedTest):
    def setUp(self):
        super().setUp()
        self.write("m.ModelXml", document(RECODINGS, [(1, 1.1), (2, -0.9), (3, 0.7)], 0.37, table=TABLE, target="y"))
        self.write("rows.csv", "".join(f"{line}\n" for line in ["id,n,c,m", *(f"{i:03},{','.join(row)}" for i, row in enumerate(ROWS))]))
        self.check("m.ModelXml", "--rows", "rows.csv", "--scores", "scores.csv")
        with open(self.folder / "scores.csv", encoding="ascii") as file:
            self.meant = [(float(row["score"]), float(row["probability"])) for row in csv.DictReader(file)]

    def compare(self, results, *more, columns=("score", "probability"), keys=False):
        self.write("results.csv", "".join(f"{line}\n" for line in [
            ",".join(["id", "score", "probability"]), *(f"{i},{','.join(map(str, row))}" for i, row in enumerate(results))]))
        named = [f"--{column}={column}" for column in columns]
        return self.report("m.ModelXml", "--rows", "rows.csv", "--compare", "results.csv", "--target", "sas", *named, *more)["comparison"]

    def through(self, change):
        """Results whose score is changed, with the probability of that score."""
        return [(score, probability(score)) for score in map(change, *zip(*[(score, *row) for (score, _), row in zip(self.meant, ROWS)]))]

    def test_causes(self):
        """The first cause that is reported, with its rows and text; None without a cause."""
        meant = self.meant
        moved = [(score - 0.18 * (row[1] == "b"), p) for (score, p), row in zip(meant, ROWS)]
        both = ("score", "probability")
        for name, results, columns, expected in [
            ("a constant", self.through(lambda s, *_: s + 0.5), both, ("amount", 72, "the score plus 0.5; the probability of that score")),
            ("a constant, seen in probabilities", self.through(lambda s, *_: s - 0.25), ["probability"], ("amount", None, "the score minus 0.25; the prob")),
            ("different amounts everywhere", [(s + i / 7, p) for i, (s, p) in enumerate(meant)], both, None),
            ("two rows of one amount", [(s + 0.5 * (i in (7, 9)), p) for i, (s, p) in enumerate(meant)], both, None),
            ("a reversed sign", self.through(lambda s, *_: -s), both, ("factor", 72, "the score times -1; the probability of that score")),
            ("points", [(600 - 28.85 * s, p) for s, p in meant], both, ("linear", 72, "the score times -28.85 plus 600")),
            ("per cent", [(s, 100 * p) for s, p in meant], both, ("factor", 72, "the probability times 100")),
            ("per cent, rounded", [(s, round(100 * p, 1)) for s, p in meant], both, ("factor", 72, "the probability times 100, rounded to 1 decimal")),
            ("almost per cent", [(s, (100 + i / 9) * p) for i, (s, p) in enumerate(meant)], both, None),
            ("the other class", [(s, 1 - p) for s, p in meant], both, ("complement", 72, "1 minus the probability")),
            ("exchanged columns", [(p, s) for s, p in meant], both, ("exchanged", 72, "score and probability exchanged")),
            ("the other column", [(p, s) for s, p in meant], ["score"], ("other-number", 72, "the probability in place of the score")),
            ("no table", [(s, 1 / (1 + math.exp(-s))) for s, _ in meant], both, ("logistic", 72, "the logistic function of the score in place of the table")),
            ("decimals", [(round(s, 3), round(p, 2)) for s, p in meant], both, ("decimals", None, "the score, rounded to 3 decimals; the probability, rounded to 2")),
            ("digits", [(float(f"{s:.3g}"), p) for s, p in meant], ["score"], ("digits", None, "the score, rounded to 3 digits")),
            ("truncated decimals, some as if rounded", [(math.floor(s * 100) / 100, p) for s, p in meant], ["score"],
             ("decimals", sum(1e-8 < s - math.floor(s * 100) / 100 < 0.00500001 for s, _ in meant), "the score, rounded to 2 decimals")),
            ("32 bits", [(single(s), single(p)) for s, p in meant], both, ("single-precision", None, "the score, rounded to 32 bits; ")),
            ("one value", moved, ["score"], ("points", 24, "changed points of V2 c: -0.18 for 'b'")),
            ("two values by one amount", [(s + 0.18 * (row[1] != "a"), p) for (s, p), row in zip(meant, ROWS)], ["score"],
             ("points", 48, "changed points of V2 c: +0.18 for missing or unlisted, +0.18 for 'b'")),
            ("one value, and two rows of something else", [(s + (i < 2) / 3, p) for i, (s, p) in enumerate(moved)], ["score"],
             ("points", 24, "changed points of V2 c: -0.18 for 'b'")),
            ("not all rows of a value", moved[:60] + meant[60:], ["score"], ("amount", 20, "the score minus 0.18")),
            ("one bin, seen in probabilities", self.through(lambda s, n, c, m: s + 0.21 * (m == "20")), ["probability"],
             ("points", None, "changed points of V3 m: +0.21 for [10, 20]")),
            ("some rows of a bin, seen in probabilities", self.through(lambda s, n, c, m: s + 0.21 * (m == "20" and c == "b")), ["probability"],
             ("amount", None, "the score plus 0.21")),
            ("one value, with unrelated probabilities", [(s, i * 37 % 101 / 101 if row[1] == "b" else p) for i, ((s, p), row) in enumerate(zip(moved, ROWS))], both, None),
            ("one number everywhere", [(0.5, p) for _, p in meant], ["score"], ("constant", None, "0.5 in place of the score")),
            ("two numbers, which lie on a line", [(2.5 * s + 1 if row[0] in NUMBERS["n"][2:4] and row[1:] in [("a", "5"), ("a", "20")] else s, p)
                                                  for (s, p), row in zip(meant, ROWS)], ["score"], None),
            ("more digits than 32 bits hold", [(round(s + i * 37 % 101 * 9e-10, 11), p) for i, (s, p) in enumerate(meant)], ["score"], None),
            ("a constant, with which all rows are above the table", self.through(lambda s, *_: s + 40), both, ("amount", 72, "the score plus 40; the probability of ")),
            ("one value, but for two of its rows", [(s + (i in (20, 44)) / 3, p) for i, (s, p) in enumerate(moved)], ["score"],
             ("points", 22, "changed points of V2 c: -0.18 for 'b'")),
            ("one value, beyond the table", self.through(lambda s, n, c, m: s - 100 * (c == "b")), ["probability"], ("constant", None, "0.02 in place of the prob")),
            ("another order of every other row", [meant[(i + 2) % 72] if i % 2 else row for i, row in enumerate(meant)], both, ("other-order", None, "those of the rows in ")),
            ("a single result of 0, where 1 is right", [(s, 0 if i == p == 1 else p) for i, (s, p) in zip(accumulate(p == 1 for _, p in meant), meant)], ["probability"], None),
            ("a coefficient", [(s + 0.2 * {"": 0.0625, "0.25": -1.37, "1.5": 0.51, "3": 1.93, "7": 2.71}.get(row[0], 0.51), p)
                               for (s, p), row in zip(meant, ROWS)], ["score"], ("coefficient", 72, "a coefficient of 1.3 for V1 n")),
            ("another order", meant[::-1], both, ("other-order", None, "those of the rows in another order")),
            ("one row fewer", meant[:20] + meant[21:], both, ("next-row", None, "those of the next row, from row 21 on")),
            ("one row more", [*meant[:20], (9, 0.5), *meant[20:]], both, ("row-before", None, "those of the row before, from row 21 on")),
            ("the last digit of a bound", [(s + 1.1 * (-1.37 - 0.51) * (row[0] == f"{1 / 3}"), p) for (s, p), row in zip(meant, ROWS)],
             ["score"], ("last-digit", 12, "cells at a bound read on its other side (last digit misread, or < for <=)")),
        ]:
            with self.subTest(name):
                found = self.compare(results, columns=columns)
                reported = next((cause for cause in found["causes"] if not cause["cause"].startswith("key-")), None)
                self.assertEqual(reported and reported["cause"], expected and expected[0], found["causes"])
                if expected:
                    self.assertTrue(reported["detail"].startswith(expected[2]), reported)
                    self.assertIn(reported["rows"], [expected[1], *[found["unexplained"], found["unexplained"] - 1, found["unexplained"] - 2] * (expected[1] is None)])

    def test_tolerance(self):
        """Within a large tolerance, some numbers match with any amount, and nearly all in another order."""
        noise = [(s + (0.02 + i * 29 % 72 / 400) * (-1) ** i, p) for i, (s, p) in enumerate(self.meant)]
        self.assertEqual([cause["cause"] for cause in self.compare(noise, "--tolerance", "0.02", columns=["score"])["causes"]], ["key-column"])
        noise = [(s + (0.45 + i * 29 % 72 / 1000) * (-1) ** i, p) for i, (s, p) in enumerate(self.meant)]
        self.assertNotIn("other-order", [cause["cause"] for cause in self.compare(noise, "--tolerance", "0.4", columns=["score"])["causes"]])
        moved = self.compare([(round(s + 0.5, 2), p) for s, p in self.meant], "--tolerance", "0.02", columns=["score"])["causes"][0]
        self.assertEqual((moved["cause"], moved["rows"]), ("amount", 72))

    def test_keys(self):
        """Keys in another format, a column that may be the key, and keys of results without a row."""
        found = self.compare(self.meant, "--key", "id")
        self.assertEqual((found["missing"], found["extra"]), (72, 72))
        self.assertEqual([(cause["cause"], cause["rows"]) for cause in found["causes"]], [("key-text", 72)])
        self.assertEqual(found["causes"][0]["detail"], "key '000' of the rows is '0' in the results; write both in one format")
        printed = self.check("m.ModelXml", "--rows", "rows.csv", "--compare", "results.csv", "--target", "sas", "--score", "score", "--key", "id")[1]
        self.assertIn("in the results only: 72 rows: 0, 1, 2, 3, 4, …\n", printed)
        long = [f"{2 ** 53 + i}" for i in range(0, 144, 2)]
        self.write("long.csv", "".join(f"{line}\n" for line in ["id,n,c,m", *(f"{key},{','.join(row)}" for key, row in zip(long, ROWS))]))
        self.write("results.csv", "id,score\n" + "".join(f"{int(key) + 1},0.5\n" for key in long))
        found = self.report("m.ModelXml", "--rows", "long.csv", "--compare", "results.csv", "--target", "sas", "--score", "score", "--key", "id")["comparison"]
        self.assertEqual((found["missing"], found["causes"]), (72, []))
        for results in [self.meant[:10] + self.meant[11:], [(s + i * i, p) for i, (s, p) in enumerate(self.meant)]]:
            found = self.compare(results)
            self.assertIn({"cause": "key-column", "rows": 0, "detail": "both files have a column 'id'; to join by it, use --key"}, found["causes"])
        self.write("keyless.csv", "id,n,c,m\n7,,,\n,,,\n")
        printed = self.check("m.ModelXml", "--rows", "keyless.csv", "--compare", "results.csv", "--target", "sas", "--score", "score", "--key", "id")[1]
        self.assertIn("without a result: 1 row: row 2, which has no key\n", printed)

    def test_summary(self):
        """Of 72 rows, 70 are within 1e-6: one is off by 0.25, and one is NaN."""
        results = [(s + 2e-7, p) for s, p in self.meant]
        results[3] = (results[3][0] + 0.25, results[3][1])
        results[5] = ('"1,5"', "n/a")
        found = self.compare(results, "--tolerance", "1e-6")
        self.assertAlmostEqual(found["differences"]["largest"]["score"], 0.25 + 2e-7, 12)
        self.assertAlmostEqual(found["differences"]["median"]["score"], 2e-7, 9)
        self.assertEqual(found["differences"]["within"]["score"], {"1e-9": 0, "1e-6": 70 / 71, "1e-4": 70 / 71, "1e-2": 70 / 71})
        self.assertEqual(found["unreadable"], [{"kind": "null", "cells": 1, "first": "n/a", "row": 6},
                                               {"kind": "decimal-comma", "cells": 1, "first": "1,5", "row": 6}])
        self.assertEqual(found["unexplained"], 2)
        for text, kind in [("", "empty"), ("NULL", "null"), ("NaN", "nan"), ("1,234.5", "thousands"), ("5 %", "per-cent"), ("-0,5", "decimal-comma"),
                           ("1 234.5", "thousands"), ("five", "other"), ("2024-01-31", "other"), ("-1,5E-3", "decimal-comma"), ("-", "null"), ("%", "other")]:
            results[5] = (f'"{text}"', 0.5)
            self.assertEqual([cells["kind"] for cells in self.compare(results)["unreadable"]], [kind], text)

    def test_differences(self):
        """The file contains exactly the rows that differ from the model, and can be joined again."""
        results = dict(enumerate(self.meant))
        results[7] = (results[7][0] + 1 / 3, results[7][1])
        results[30] = ("", "")
        del results[50]
        results[99] = (1, 0.5)
        self.write("keyed.csv", "id,score,probability\n" + "".join(f"{key:03},{s},{p}\n" for key, (s, p) in results.items()))
        status, printed, message = self.check("m.ModelXml", "--rows", "rows.csv", "--key", "id", "--compare", "keyed.csv", "--target", "sas",
                                              "--score", "score", "--probability", "probability", "--differences", "d.csv", "--quiet")
        self.assertEqual((status, message), (3, ""))
        self.assertEqual(printed, "69 of 71 rows as the model says, 2 unexplained, 1 without a result, 1 in the results only\n")
        meant = ["{},{}".format(*self.meant[row]) for row in (7, 30, 50)]
        self.assertEqual((self.folder / "d.csv").read_text("ascii").splitlines(), [
            "id,score,probability,result_score,result_probability,reason", f"007,{meant[0]},{results[7][0]},{results[7][1]},",
            f"030,{meant[1]},,,", f"050,{meant[2]},,,", "099,,,1,0.5,"])

        self.write("keyed.csv", "id,score\n" + "".join(f"{key:03},{s}\n" for key, (s, _) in enumerate(self.meant)) + "007,1\n")
        call = ["m.ModelXml", "--rows", "rows.csv", "--key", "id", "--compare", "keyed.csv", "--target", "sas", "--score", "score", "--quiet"]
        self.assertEqual(self.check(*call)[:2], (3, "72 of 72 rows as the model says, 1 with a duplicate key\n"))

    def test_acceptance(self):
        """Accepted findings and the rows that they explain do not affect the status; others set it to 1."""
        results = [(score, 0 if -5 < score <= -1 else p) for score, p in self.meant]  # as the target computes the lowest segment
        self.write("results.csv", "score,probability\n" + "".join(f"{s},{p}\n" for s, p in results))
        call = ["m.ModelXml", "--rows", "rows.csv", "--compare", "results.csv", "--target", "sql", "--score", "score", "--probability", "probability"]
        status, printed, _ = self.check(*call, "--quiet")
        explained = sum(-5 < score <= -1 for score, _ in self.meant)
        self.assertGreater(explained, 5)
        self.assertEqual((status, printed), (1, f"{72 - explained} of 72 rows as the model says, {explained} explained; 1 finding open\n"))
        status, printed, _ = self.check(*call, "--accept", "capitals,lowest-segment", "--json")
        found = json.loads(printed)
        self.assertEqual((status, found["verdict"]), (0, "clean"))
        self.assertEqual({finding["name"] for finding in found["findings"] if finding.get("accepted")}, {"lowest-segment"})
        status, printed, _ = self.check(*call, "--accept", "lowest-segment")
        self.assertIn("\naccepted: lowest-segment\n", printed)
        for names, message in [("lowest-segmnt", "Unknown finding 'lowest-segmnt'. Did you mean 'lowest-segment'?"), ("x", "Unknown finding 'x'. Use a name that the report prints.")]:
            self.assertEqual(self.check(*call, "--accept", names)[::2], (2, message + "\nscorewright-check --help lists the options.\n"))


if __name__ == "__main__":
    unittest.main()
