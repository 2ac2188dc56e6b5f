"""The Excel VBA module: its text, and its predictions and cell colours in LibreOffice Calc."""

import re
import subprocess
import sys
import unittest

import spreadsheet
from engines import CLAIMS, CREDIT, LOWEST, CheckedTest
from support import DOCUMENTS, TESTS, categorical, document, doubles, numeric, terms_document

BELOW, ABOVE, WITHIN = "FFB78B", "EE9EFF", "FFFFFF"
EMPTY = "9E12FF"  # of RGB(158, 274, 255); Excel reads 274 as 255 and shows 9EFFFF

# What only this target treats specially: the characters of a name, titles and values with quotes, truth values; a
# missing code of seven digits, of which six are written; a table of two points; and surplus scores and probabilities.
WORKSHEET = document(
    [
        numeric(1, "a\"b%c'd-e(f)g/h.i j", [1, 2], [5, 6, 7, 8], label="{recoding}"),
        numeric(2, "a b", [1, 2], [1, 2, 3, 4, 9]),
        categorical(3, "flag", ["TRUE", "FALSE", "true", 'a "TRUE"', ""], [0.5, 1, 2, 3, 4, 5]),
        categorical(4, "bool", ["FALSE", *"2345", "TRUE", *"789ABCDE", '15"'], [0.5, 1, 1 / 3], tname="bb64"),
    ],
    [(1, 1), (9, 2), (3, 3)], -0.0, table=[(2, 0.75), (1, 0.5)],
    missing={"a_b_c_d_e_f_g_h_i_j": [-1, 1234567], "a b": [3]},
).replace(' version="4.2.1"', "").replace(doubles([0.75, 0.5]), doubles([0.75, 0.5, 0.25]))


def cell(text):
    """A cell of a data file as typed into a sheet."""
    try:
        return float(text)
    except ValueError:
        return text or None


class VbaTest(CheckedTest):
    @classmethod
    def setUpClass(cls):
        cls.desktop = spreadsheet.start(cls)

    def run_module(self, module, titles, rows, **more):
        return spreadsheet.run(self.desktop, module, titles, rows, **more)

    def test_golden_modules(self):
        for name, text in {"kinds": DOCUMENTS["kinds"], "worksheet": WORKSHEET}.items():
            with self.subTest(name):
                self.assert_golden(f"{name}.bas", self.convert("-e", text))

    def test_example_rows(self):
        for example, name, explained in [(CREDIT, "probability", LOWEST), (CLAIMS, "score", {})]:
            titles = ["no column of the model", *reversed(example.model.fields)]
            rows = [[cell(row.get(title, "")) for title in titles] for row in example.rows]
            result = self.run_module(self.convert("-e", example.text), titles, rows)
            self.assert_explained("vba", example.rows, name, enumerate(result.scores), explained)

    def test_colours_of_cells(self):
        """Of two variables of a column, the later one colours it."""
        for example in [CREDIT, CLAIMS]:
            cells = {v.field: 5 * [None] if v.categorical else
                     [v.bounds[0] - 1, v.bounds[0], v.bounds[-1], v.bounds[-1] + 1, None] for v in example.model.variables}
            colours = [5 * [None] if values[0] is None else [BELOW, WITHIN, WITHIN, ABOVE, EMPTY]
                       for values in cells.values()]
            result = self.run_module(self.convert("-e", example.text), list(cells), list(zip(*cells.values())))
            self.assertEqual(result[1:], (0, [list(row) for row in zip(*colours)], []))

    def test_statements_of_24_lines(self):
        module = self.convert("-e", terms_document(71))
        terms = module[module.index("  score = 0.5"):module.index("\n\n  QorvPrediction_1 = score\n")]
        self.assertEqual([part.count("* R") for part in terms.split("\n score  = score _\n")], [22, 24, 24, 1])
        columns = range(1, 72)
        result = self.run_module(module, [f"c{k}" for k in columns], [[k + d for k in columns] for d in [-1, 1]])
        total = sum(k * k / 8 for k in columns)
        self.assertEqual(result.scores, (0.5 + total, 0.5 - total))

    def test_the_manual_converts_a_module_to_ascii(self):
        page = (TESTS.parent / "docs" / "vba.md").read_text()
        script = re.search(r"<!-- file: ascii.py -->\n```python\n(.*?)```", page, re.S)[1]
        title, values = "Größe ж", ["zł", "𝄞", "plain"]
        self.convert("-e", document([categorical(1, title, values, [0, 1, 2, 4])], [(1, 1)], 0.5))
        subprocess.run([sys.executable, "-c", script, "out", "pasted"], cwd=self.folder, check=True)
        module = self.read("pasted")
        self.assertTrue(module.isascii())
        self.assertEqual(self.run_module(module, [title], [[v] for v in [*values, "z?"]]).scores, (1.5, 2.5, 4.5, 0.5))

    def test_truth_values_and_texts(self):
        """The truth values TRUE and FALSE show as True and False; texts are compared verbatim, and boolean recodings keep
        their spellings. A text in a numeric column counts as missing and stops the macro."""
        model = document([categorical(1, "flag", ["TRUE", "FALSE", "true"], [0, 1, 2, 3]),
                          numeric(3, "n", [1], [0, 0, 0]),
                          categorical(2, "bool", ["FALSE"] * 5 + ["TRUE"], [0, 10, 20], tname="bb64")],
                         [(1, 1), (2, 1), (3, 1)], 0, table=[(21, 0.9), (12, 0.5), (3, 0.25), (0, 0.1)])
        rows = [[True, "TRUE", 0], [False, "FALSE", "text"], ["TRUE", True, 0], [" true ", False, 0]]
        result = self.run_module(self.convert("-e", model), ["flag", "bool", "n"], rows)
        # The scores, 21, 12, 0 and 3, are at the points of the table.
        self.assertEqual([round(score, 12) for score in result.scores], [0.9, 0.5, 0, 0])
        self.assertEqual(result.failure, 13)
        self.assertEqual([colour for *_, colour in result.colours], [BELOW, None, None, None])

    def test_quotes_keep_the_module_from_compiling(self):
        """A backslash before a quote in a title or value does not escape it."""
        for title, value in [('a "b"', "5 pipe"), ("a b", '5" pipe')]:
            model = document([numeric(1, title, [1], [1, 2, 3]), categorical(2, "c", [value], [10, 20])], [(1, 1)], 0)
            with self.subTest(title), self.assertRaises(SyntaxError):
                self.run_module(self.convert("-e", model), ["a b", "c"], [[2, "5 pipe"]])

    def test_sheets_and_titles_that_are_not_found(self):
        models = [numeric(1, "a", [1], [1, 2, 3]), numeric(2, "b", [1], [1, 2, 3])]
        module = self.convert("-e", document(models, [(1, 1), (2, 10)], 0))
        result = self.run_module(module, ["a", "b"], [[0, 2]], last_title=1)  # the search covers one more column
        self.assertEqual(result, ((32,), 0, [[BELOW, ABOVE]], []))
        for titles, sheet, message in [
            (["a", "b"], "Other", "The sheet 'Other' could not be found in document"),
            (["b", "c", "d"], "Data", "The variable 'a' could not be found on title row"),
        ]:
            result = self.run_module(module, titles, [[1] * len(titles)], sheet=sheet)
            self.assertFalse(result.scores[0])
            self.assertEqual(result[1:], (0, [[None] * len(titles)], 2 * ["QorvPrediction Error: " + message]))


if __name__ == "__main__":
    unittest.main()
