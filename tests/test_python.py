"""The Python class: its text, and its scores in pandas compared with the model."""

import re
import unittest

import pandas

from engines import CLAIMS, CREDIT, LOWEST, CheckedTest
from support import DOCUMENTS, FOR_WINDOWS, categorical, document, numeric


def load(module, class_name):
    exec(compile(module, "generated", "exec"), names := {})
    return names[f"QORVModel_{class_name}"]()


def frame(example):
    categories = {v.field for v in example.model.variables if v.categorical}
    return pandas.DataFrame({field: [row[field] if field in categories else float(row[field] or "nan")
                                     for row in example.rows] for field in example.model.fields})


class PythonTest(CheckedTest):
    def test_golden_modules(self):
        for name, text in DOCUMENTS.items():
            with self.subTest(name):
                self.assert_golden(f"{name}.py.txt", self.convert("-p", text))

    def test_class_names(self):
        paths = {"m": "m", "./m": "/m", f"{self.folder}/m": "/m", "../" + self.folder.name + "/m": "/m"}
        if not FOR_WINDOWS:  # which does not allow these names
            paths |= {"C:\\models\\credit.v2.ModelXml": "/credit.v2", ".ModelXml": "", "a.b\\c": "/c"}
        for path, name in paths.items():
            (self.folder / path).write_text(DOCUMENTS["logistic"])
            self.assertEqual(self.run_program("-p", path, "out", ""), (0, ""))
            self.assertIn(f"\nclass QORVModel_{name}:\n", self.read("out"))

    def test_applicants(self):
        result = load(self.convert("-p", CREDIT.text, "out", "Credit"), "Credit").apply(frame(CREDIT))
        self.assertEqual(list(result), ["Status_bad_score", "Status_bad_proba"])
        self.assert_explained("python", CREDIT.rows, "score probability", result.itertuples(), LOWEST)

    def test_claims(self):
        module = self.convert("-p", CLAIMS.text, "out", "Claims")
        with self.assertRaises(SyntaxError):  # missing codes leave a parenthesis open
            load(module, "Claims")
        result = load(re.sub(r"( if \(isnan\(data\)or .*):", r"\1):", module), "Claims").apply(frame(CLAIMS))
        self.assertEqual(list(result), ["claim_cost_prediction"])
        self.assert_explained("python", CLAIMS.rows, "score", result.itertuples(), {})

    def test_names_and_types(self):
        text = document([numeric(1, "x(1)'b-c.d e", [1], [1, 2, 3]),
                         categorical(2, "c", [str(i) for i in range(16)], [0, 1, 2], "bb64"),
                         numeric(3, "n", [1], [1, 2, 3], kind="mapvalues")], [], 0)
        module = self.convert("-p", text)
        self.assertIn("        x(1)_b_c_d_e_Idx=colNames.index('''x(1)'b-c.d e''')\n", module)
        self.assertIn(',"13":2,"14":2,"15":2,}\n', module)
        self.assertIn("#based on the mapvalues column of display name 'Label'\n            data = float(", module)

    def test_logistic_lines_fill_the_last_row_only(self):
        model = load(self.convert("-p", DOCUMENTS["logistic"], "out", "M"), "M")
        result = model.apply(pandas.DataFrame({"a": [0.5, 0.5], "b": ["x", "x"]}))
        self.assertEqual((list(result.score), list(result.proba.round(12))), ([2.5, 2.5], [0, 0.924141819979]))
        tabled = self.convert("-p", document([], [], 0, table=[(1, 1)], method="softmax"))
        self.assertNotIn("exp(-", tabled)  # a table takes precedence

    def test_modules_that_do_not_compile(self):
        for text, name in [(document([numeric(1, "a", [1], [1, 2, 3])], [(1, 1)], 0), "NoCategories"),
                           (DOCUMENTS["logistic"], "/derived")]:
            with self.subTest(name), self.assertRaises(SyntaxError):
                load(self.convert("-p", text, "out", name), name)


if __name__ == "__main__":
    unittest.main()
