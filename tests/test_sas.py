"""The SAS script. No SAS is available to run it, so the golden files are the evidence."""

import unittest

from support import DOCUMENTS, ProgramTest, categorical, document, numeric

LOGISTIC = "   Bad_Payer_x_proba=1/(1+exp(-Bad_Payer_x_score);"


class SasTest(ProgramTest):
    def lines(self, *models, **more):
        """The lines from the recodings on."""
        return self.convert("-a", document(models, [], 0, **more)).partition("set <input_dataset>;")[2].split("\n")

    def test_golden_scripts(self):
        for name, text in DOCUMENTS.items():
            with self.subTest(name):
                self.assert_golden(f"{name}.sas", self.convert("-a", text))

    def test_values_are_quoted_unless_all_are_digits_and_stops(self):
        for values, quote in [(["1", "2.5", ""], ""), (["1", "-1"], '"'), (["1e5"], '"'), (["٣"], '"')]:
            lines = self.lines(categorical(1, "c", values, [0] * 9))
            for value in values:
                self.assertIn(f"   else if trim(left(c))={quote}{value}{quote} then R0_c=0;", lines)

    def test_boolean_lists_of_any_length(self):
        lines = self.lines(categorical(1, "c", [str(i) for i in range(1, 17)], [0, 5, 1 / 3], tname="bb64"))
        for i in range(1, 17):
            self.assertIn(f'   else if trim(left(c))="{i}" then R0_c={5 if i <= 5 else 0.333333};', lines)

    def test_comparisons_are_case_sensitive(self):
        self.assertIn("   else if trim(left(c))=1 then R0_c=5;", self.lines(categorical(1, "c", ["1"], [0, 5], "BB64")))
        for method, is_logistic in {"so": True, "Softmax": False, "sO": False, "s": False, "": False}.items():
            self.assertEqual(LOGISTIC in self.lines(method=method), is_logistic)
        self.assertNotIn(LOGISTIC, self.lines(method="softmax", table=[(1, 1)]))

    def test_names_and_their_data_fields(self):
        odd = self.lines(numeric(1, "x(1)'b-c.d e", [1], [1, 2, 3]))
        self.assertIn("   if (x(1)'b-c_d_e=.) then R0_x(1)'b-c_d_e=1;", odd)
        # The first field of a name counts, and an absent name equals an empty one.
        nameless = numeric(1, "", [1], [1, 2, 3]).replace('field=""', "")
        text = document([nameless, numeric(2, "a", [1], [1, 2, 3])], [], 0, missing={"": [7, 8], "A": [5, 6], "a": [3, 4]})
        script = self.convert("-a", text.replace('name="A"', 'name="x" name="A"'))
        self.assertIn("\n|| (==7)) then R0_=1;\n", script)
        self.assertIn("\n|| (a==5)) then R1_a=1;\n", script)


if __name__ == "__main__":
    unittest.main()
