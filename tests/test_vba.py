"""The Excel VBA module: its text, and its predictions and cell colours in a spreadsheet.

The spreadsheet is LibreOffice Calc, which wants three things of the module rewritten: see spreadsheet.adapt."""

import csv
import unittest

from spreadsheet import Office, Workbook
from support import DOCUMENTS, EXAMPLES, ProgramTest, categorical, document, doubles, numeric, terms_document
import score as scorer

CREDIT = EXAMPLES / "credit"
CLAIMS = EXAMPLES / "claims"

BELOW, ABOVE, WITHIN = "FFB78B", "EE9EFF", "FFFFFF"
EMPTY = "9E12FF"  # of RGB(158, 274, 255); Excel takes 274 as 255 and colours 9EFFFF

# What only this target makes something of: the characters of a name, titles and values with quotes, truth values; a
# missing code of seven digits, of which six are written; a table of two points; and scores and probabilities to spare.
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
    """A cell of a data file as somebody would type it into a sheet."""
    for convert in (int, float):
        try:
            return convert(text)
        except ValueError:
            pass
    return None if text in ("", "NA") else text


def table(path):
    with open(path, newline="") as file:
        return [{title: cell(text) for title, text in row.items()} for row in csv.DictReader(file)]


def corners(model, rows):
    """The rows, each with one cell on or beside a cut, empty, on a list, unseen or with blanks around it."""
    changes = []
    for variable in model.variables:
        if variable.categorical:
            values = [*variable.positions, "unseen", f" {next(iter(variable.positions))} ", None]
        else:
            values = [*variable.missing, None, *(cut + d for cut in variable.cuts for d in (-0.001, 0, 0.001))]
        changes += [(variable.field, value) for value in values]
    return [{**rows[i % len(rows)], field: value} for i, (field, value) in enumerate(changes)]


class VbaTextTest(ProgramTest):
    def test_golden_modules(self):
        for name, text in {**DOCUMENTS, "worksheet": WORKSHEET}.items():
            with self.subTest(name):
                self.assert_golden(f"{name}.bas", self.convert("-e", text))

    def test_statements_of_24_lines(self):
        for count, sizes in {0: [0], 1: [1], 22: [22], 23: [22, 1], 46: [22, 24], 47: [22, 24, 1], 70: [22, 24, 24],
                             71: [22, 24, 24, 1]}.items():
            with self.subTest(count):
                module = self.convert("-e", terms_document(count))
                terms = module[module.index("  score = 0.5"):module.index("\n\n  QorvPrediction_1 = score\n")]
                statements = terms.split("\n score  = score _\n")
                self.assertEqual([statement.count("* R") for statement in statements], sizes)


class VbaSpreadsheetTest(ProgramTest):
    @classmethod
    def setUpClass(cls):
        cls.office = Office()
        cls.addClassCleanup(cls.office.stop)

    def workbook(self, module, titles, rows):
        workbook = Workbook(self.office, module, titles, rows)
        self.addCleanup(workbook.close)
        return workbook

    def export(self, path):
        self.assertEqual(self.run_program("-e", str(path), "out"), (0, "Conversion successful!\n"))
        return self.read("out")

    def check_example(self, path, rows):
        """Compares predictions and colours with what the model says, and wants every bin and value reached."""
        model = scorer.load(path)
        titles = ["no column of the model", *reversed(model.fields)]
        workbook = self.workbook(self.export(path), titles, [[row.get(title) for title in titles] for row in rows])
        reached = {variable.number: set() for variable in model.variables}
        for row, prediction in zip(rows, workbook.scores(), strict=True):
            texts = {title: "" if value is None else str(value) for title, value in row.items()}
            for variable in model.variables:
                recode = variable.category if variable.categorical else variable.interval
                reached[variable.number].add(recode(texts[variable.field]))
            expected = model.prediction(texts)
            self.assertAlmostEqual(prediction, expected, delta=1e-12 * max(1, abs(expected)), msg=texts)
        for variable in model.variables:
            self.assertEqual(reached[variable.number],
                             {0, *variable.positions.values()} if variable.categorical
                             else set(range(len(variable.scores))), variable.field)

        self.assertEqual(workbook.check(), "done")
        for row, colours in zip(rows, workbook.colours(), strict=True):
            expected = dict.fromkeys(titles)
            for variable in model.variables:  # of two variables of a column the later colours it
                value = row[variable.field]
                if not variable.categorical:
                    expected[variable.field] = (EMPTY if value is None else BELOW if value < variable.cuts[0] else
                                                ABOVE if value > variable.cuts[-1] else WITHIN)
            self.assertEqual(dict(zip(titles, colours)), expected)
        self.assertEqual(workbook.messages(), [])

    def test_applicants(self):
        model = scorer.load(CREDIT / "credit.ModelXml")
        applicants = table(CREDIT / "applicants.csv")

        def score(row):
            return model.score({title: "" if value is None else str(value) for title, value in row.items()})

        ranked = sorted(applicants, key=score)
        self.check_example(CREDIT / "credit.ModelXml", [*corners(model, applicants[::13]), *ranked[:3], *ranked[-3:]])

    def test_claims(self):
        rows = table(CLAIMS / "claims.csv")
        model = scorer.load(CLAIMS / "claims.ModelXml")
        self.check_example(CLAIMS / "claims.ModelXml", [*corners(model, rows), *rows])

    def test_many_terms(self):
        columns = range(1, 72)
        workbook = self.workbook(self.convert("-e", terms_document(71)), [f"c{k}" for k in columns],
                                 [[k - 1 for k in columns], [k + 1 for k in columns], [None for _ in columns]])
        total = sum(k * k / 8 for k in columns)
        self.assertEqual(workbook.scores(), [0.5 + total, 0.5 - total, 0.5])

    def test_scores_between_the_last_two_points_get_0(self):
        model = document([numeric(1, "a", [1, 2, 3, 4, 5], [-1, 0, 0.5, 1, 1.5, 2, 2.5])], [(1, 1)], 0,
                         table=[(2, 0.9), (1, 0.5), (0, 0.1)])
        workbook = self.workbook(self.convert("-e", model), ["a"], [[6], [5], [4], [3], [2], [0], [None]])
        self.assertEqual([round(v, 12) for v in workbook.scores()], [0.9, 0.9, 0.7, 0, 0, 0, 0.1])

    def test_truth_values(self):
        """The cell TRUE shows True, the cell FALSE False; a text stays as it is, and booleans keep their spellings."""
        model = document([categorical(1, "flag", ["TRUE", "FALSE", "true"], [0, 1, 2, 3]),
                          categorical(2, "bool", ["FALSE"] * 5 + ["TRUE"], [0, 10, 20], tname="bb64")],
                         [(1, 1), (2, 1)], 0)
        rows = [[True, "TRUE"], [False, "FALSE"], ["TRUE", True], ["true", False]]
        workbook = self.workbook(self.convert("-e", model), ["flag", "bool"], rows)
        self.assertEqual(workbook.scores(), [21, 12, 0, 3])

    def test_quotes_keep_the_module_from_compiling(self):
        """The backslash before a quote in a title or value does not keep it from ending the literal."""
        for title in ['a "b"', "a b"]:
            for value in ['5" pipe', "5 pipe"]:
                model = document([numeric(1, title, [1], [1, 2, 3]), categorical(2, "c", [value], [10, 20])],
                                 [(1, 1), (2, 1)], 0)
                workbook = self.workbook(self.convert("-e", model), ["a b", "c"], [[2, "5 pipe"]])
                if '"' in title + value:
                    self.assertRaises(SyntaxError, workbook.scores)
                else:
                    self.assertEqual(workbook.scores(), [23])

    def test_sheets_and_titles_that_are_not_found(self):
        model = document([numeric(1, "a", [1], [1, 2, 3]), numeric(2, "b", [1], [1, 2, 3])], [(1, 1), (2, 10)], 0)
        module = self.convert("-e", model)
        workbook = self.workbook(module, ["a", "b"], [[0, 2]])
        self.assertEqual(workbook.scores(), [32])
        self.assertEqual(workbook.scores(titles=1), [32])  # the search goes on for one column after the titles
        self.assertEqual(workbook.messages(), [])
        self.assertFalse(any(workbook.scores(sheet="Other")))
        self.assertEqual(workbook.check(sheet="Other"), "done")
        self.assertEqual(workbook.messages(), 2 * [
            "QorvPrediction Error: The sheet 'Other' could not be found in document"])
        workbook = self.workbook(module, ["b", "c", "d"], [[1, 1, 1]])
        self.assertFalse(any(workbook.scores()))
        self.assertEqual(workbook.check(), "done")
        self.assertEqual(workbook.messages(), 2 * [
            "QorvPrediction Error: The variable 'a' could not be found on title row"])
        self.assertEqual(workbook.colours(), [[None, None, None]])

    def test_a_text_among_numbers_stops_the_range_check(self):
        module = self.convert("-e", document([numeric(1, "a", [1], [1, 2, 3])], [(1, 1)], 0))
        workbook = self.workbook(module, ["a"], [[0], ["text"], [2]])
        self.assertEqual(workbook.scores(), [2, 1, 3])
        self.assertEqual(workbook.check(), "Error 13")
        self.assertEqual(workbook.colours(), [[BELOW], [None], [None]])


if __name__ == "__main__":
    unittest.main()
