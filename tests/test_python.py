"""The Python class: its text, and its scores in pandas held against the independent scorer."""

import csv
import importlib.util
import unittest

import pandas

from support import DOCUMENTS, EXAMPLES, ProgramTest, categorical, document, not_on_windows, numeric
import score as scorer

CREDIT = EXAMPLES / "credit" / "credit.ModelXml"
APPLICANTS = EXAMPLES / "credit" / "applicants.csv"


class PythonTest(ProgramTest):
    def load(self, class_name):
        path = self.folder / "out"
        loader = importlib.machinery.SourceFileLoader("generated", str(path))
        module = importlib.util.module_from_spec(importlib.util.spec_from_loader("generated", loader))
        loader.exec_module(module)
        return getattr(module, f"QORVModel_{class_name}")()

    def export(self, text, class_name="Test"):
        self.convert("-p", text, "out", class_name)
        return self.load(class_name)

    def test_golden_modules(self):
        for name, text in DOCUMENTS.items():
            with self.subTest(name):
                self.assert_golden(f"{name}.py.txt", self.convert("-p", text))

    def test_class_names(self):
        self.write("m", DOCUMENTS["logistic"])
        for path, name in [("m", "m"), ("./m", "/m"), (f"{self.folder}/m", "/m"), ("../" + self.folder.name + "/m", "/m")]:
            self.assertEqual(self.run_program("-p", path, "out", ""), (0, ""))
            self.assertIn(f"\nclass QORVModel_{name}:\n", self.read("out"))

    @not_on_windows("files cannot have such names there")
    def test_class_names_of_paths_from_windows(self):
        for path, name in [("C:\\models\\credit.v2.ModelXml", "/credit.v2"), (".ModelXml", ""), ("a.b\\c", "/c")]:
            self.write(path, DOCUMENTS["logistic"])
            self.assertEqual(self.run_program("-p", path, "out"), (0, ""))
            self.assertIn(f"\nclass QORVModel_{name}:\n", self.read("out"))

    def test_all_applicants_score_as_the_model_says(self):
        self.assertEqual(self.run_program("-p", str(CREDIT), "out", "Credit"), (0, ""))
        frame = pandas.read_csv(APPLICANTS).fillna({"Home": "", "Marital": "", "Records": "", "Job": ""})
        result = self.load("Credit").apply(frame)
        self.assertEqual(list(result), ["Status_bad_score", "Status_bad_proba"])
        model = scorer.load(CREDIT)
        with open(APPLICANTS, newline="") as file:
            rows = list(csv.DictReader(file))
        self.assertEqual(len(rows), len(result))
        for row, score, probability in zip(rows, result.Status_bad_score, result.Status_bad_proba):
            expected = model.score(row)
            self.assertAlmostEqual(score, expected, delta=1e-12)
            self.assertAlmostEqual(probability, model.probability(expected), delta=1e-12)

    def test_cells_on_and_beside_the_cuts(self):
        text = document([numeric(1, "a", [0, 1, 2], [10, 20, 30, 40, 50]), numeric(2, "b", [5], [1, 2, 3]),
                         categorical(3, "c", ["no"] * 5 + ["yes", "Y"], [0, 100, 200], tname="bb64")],
                        [(1, 1), (2, 0.01), (3, 10)], 0, target="")
        frame = pandas.DataFrame({"c": [" yes ", "no", "", "?", "Y", "no", "no"],
                                  "a": [-1, 0, 1, 1.5, 2, 2.5, float("nan")],
                                  "b": [4, 5, 6, float("nan"), 4, 4, 4]})
        result = self.export(text).apply(frame)
        self.assertEqual(list(result), ["prediction"])
        self.assertEqual([round(v, 9) for v in result.prediction],
                         [2020.02, 1030.01, 30.03, 40.01, 2040.02, 1050.02, 1010.02])
        with self.assertRaises(AttributeError):  # a categorical cell that is no text
            self.export(text).apply(frame.assign(c=1))

    def test_names_and_types(self):
        text = document([numeric(1, "x(1)'b-c.d e", [1], [1, 2, 3]), categorical(2, "c", [str(i) for i in range(16)], [0, 1, 2], "bb64"),
                         numeric(3, "n", [1], [1, 2, 3], kind="mapvalues")], [], 0)
        module = self.convert("-p", text)
        self.assertIn("        x(1)_b_c_d_e_Idx=colNames.index('''x(1)'b-c.d e''')\n", module)
        self.assertIn(',"13":2,"14":2,"15":2,}\n', module)
        self.assertIn("#based on the mapvalues column of display name 'Label'\n            data = float(", module)

    def test_logistic_lines_fill_the_last_row_only(self):
        result = self.export(DOCUMENTS["logistic"]).apply(pandas.DataFrame({"a": [0.5, 0.5], "b": ["x", "x"]}))
        self.assertEqual(list(result.score), [2.5, 2.5])
        self.assertEqual([round(v, 12) for v in result.proba], [0, 0.924141819979])

    def test_texts_that_do_not_compile(self):
        for text, class_name in [(document([numeric(1, "a", [1], [1, 2, 3])], [(1, 1)], 0), "NoCategories"),
                                 (DOCUMENTS["missing"], "MissingList"), (DOCUMENTS["logistic"], "/derived")]:
            with self.subTest(class_name), self.assertRaises(SyntaxError):
                self.export(text, class_name)


if __name__ == "__main__":
    unittest.main()
