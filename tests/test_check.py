"""The companion program: what it scores, finds and explains, held against the independent scorer and against engines."""

import csv
import math
import re
import sqlite3
import unittest

import pandas

import engines
from engines import CheckedTest
import score as scorer
from sql_program import configuration
from support import CODES, EXAMPLES, NO_YES, TABLE, boolean, categorical, document, model, numeric

CREDIT = EXAMPLES / "credit" / "credit.ModelXml"
APPLICANTS = EXAMPLES / "credit" / "applicants.csv"
TEXTS = ["Home", "Marital", "Records", "Job"]
LOGISTIC = model(method="softmax")


class ScoresAndFindingsTest(CheckedTest):
    def assert_scores(self, path, rows, *more):
        """Equal to the last bit."""
        meant = scorer.load(path)
        with open(rows, newline="", encoding="utf-8") as file:
            expected = [(score := meant.score(row), meant.probability(score)) for row in csv.DictReader(file)]
        self.report(path, "--rows", rows, "--scores", "scores.csv", *more)
        with open(self.folder / "scores.csv", newline="", encoding="utf-8") as file:
            found = [tuple(float(cell) if cell else None for cell in row[-2:]) for row in list(csv.reader(file))[1:]]
        self.assertEqual(found, expected)

    def test_scores_are_those_of_the_scorer(self):
        self.assert_scores(CREDIT, APPLICANTS, "--missing", "NA")
        self.assert_scores(EXAMPLES / "claims" / "claims.ModelXml", EXAMPLES / "claims" / "claims.csv")
        for name in ["credit", "claims"]:
            path = EXAMPLES / name / f"{name}.ModelXml"
            meant = scorer.load(path)
            with open(next(path.parent.glob("*.csv")), newline="") as file:
                first = next(csv.DictReader(file))
            rows = []
            for variable in meant.variables:
                if variable.categorical:
                    cells = [*variable.positions, "unseen", "", " "] + [f"\t{v} " for v in variable.positions]
                else:
                    beside = [math.nextafter(cut, way) for cut in variable.cuts for way in (-math.inf, math.inf)]
                    cells = [repr(v) for v in [*variable.cuts, *beside, *variable.missing, 1e308, -0.0, 5e-324]]
                    cells += ["", "ten", "nan", "-inf", "+1", "1e400", "1e-400", f"0.{0:0400}1", f"1{0:0400}e-5", " 7 ", "007", ".5", "5.", "1e", "--1"]
                rows += [{**first, variable.field: cell} for cell in cells]
            with open(self.folder / "rows.csv", "w", newline="") as file:
                writer = csv.DictWriter(file, list(first))
                writer.writeheader()
                writer.writerows(rows)
            self.assert_scores(path, self.folder / "rows.csv")

    def test_kinds_of_models(self):
        """Several terms of a number, equal points, bounds and points out of order, the logistic form; more cells than
        are kept, and long ones."""
        rows = self.folder / "rows.csv"
        rows.write_text("n,c\n" + "".join(f"{n / 1000},{'abz'[n % 3:][:1]}\n{n / 9e3},\n" for n in range(-2000, 4000)))
        steep = [numeric(1, "n", [0, 1, 2, 3], [0, -2, -0.5, 0, 1, 3])]
        for text in [model(terms=[(1, 0.1), (2, 0.7), (1, 1 / 3)], constant=0.3), LOGISTIC,
                     model(*steep, table=[(3, 0.9), (2, 0.9), (2, 0.8), (1, 1 / 3), (-0.5, 0.25), (-2, 0.01)]),
                     model(*steep, table=[(1, 0.5)]), model(numeric(1, "n", [3, 1, 2], [0, 1, 2, 3, 4])),
                     model(None, categorical(1, "c", ["a", "a"], [0, 1, 5]), terms=[(1, 0.5)]),
                     model(None, boolean(["a"] * 5 + ["b"], (0.5, 1 / 3, 2 / 3)))]:
            self.write("m.ModelXml", text, "utf-8")
            self.assert_scores(self.folder / "m.ModelXml", rows)

    def test_findings_say_where(self):
        self.write("m.ModelXml", model(numeric(1, "n", [1], [0, 1, 2]), categorical(2, "c", "abcde", [0, 1, 2, 3, 4, 5]),
                                       categorical(3, "yn", NO_YES, [0, 1, 2], tname="bb64"), terms=[(1, 1), (2, 1), (3, 1)]))
        self.write("s.xml", configuration(dbTpye="mysql", dbType="sqlservr"))
        many = "".join(f"?;x{i} with a long text;0\n?;y{i};\n" for i in range(3000))
        self.write("rows.csv", "\ufeffc;n;yn\n\"a\nb\";1;yes\nA;1;no\nb;2;1\n?;x;maybe\n" + many + "\n;1;2;3\nz", "utf-8")
        report = self.report("m.ModelXml", "--sql", "s.xml", "--rows", "rows.csv", "--delimiter", ";", "--missing", "?")
        self.assertEqual((report["rows"], report["uneven"]), (6006, 2))
        found = {f["name"]: f for f in report["findings"]}
        self.assertEqual({name: (f["rows"], f["firstRow"]) for name, f in found.items() if f.get("rows")},
                         {"single-bound": (3, 1), "boolean-numbers": (4, 1), "capitals": (1, 2), "five-categories": (1, 3),
                          "empty-field": (1, 6006), "not-a-number": (6001, 4)})
        self.assertEqual([found[name]["place"] for name in ["unknown-setting", "unknown-dialect", "single-bound"]],
                         ["setting dbTpye; dbType is meant?", "setting dbType, 'sqlservr'; sqlserver is meant?",
                          "recoding V1 (column n)"])
        self.assertEqual(found["five-categories"]["targets"], ["html"])
        only = self.report("m.ModelXml", "--target", "html")["findings"]
        self.assertEqual([f["name"] for f in only], ["single-bound", "five-categories", "percent-sign"])

    def test_the_model_is_shown(self):
        self.write("m.ModelXml", model(numeric(1, "n", [1, 2.5], [0, 1, 2, 3]), boolean(NO_YES), terms=[(1, 0.5), (2, 1)],
                                       table=TABLE, missing={"n": [9, 99]}))
        status, printed, _ = self.check("m.ModelXml", "--show")
        self.assertEqual(status, 0)
        for line in ["missing codes: 9, 99", "(-∞, 1) 1 0.5", "[1, 2.5] 2 1", "(2.5, ∞) 3 1.5", "true: 'yes' 2 2",
                     "missing or not listed 0 0", "Constant 0", "-2 0.1"]:
            self.assertIn(f"\n{line}\n", re.sub(" +", " ", printed).replace("\n ", "\n"))

    def test_calls_that_are_refused(self):
        self.write("m.ModelXml", model())
        for name, text in {"rows.csv": "n,x,x\n1,1,1\n", "good.csv": "n , c\n1,a\n", "open.csv": 'n,c\n1,"a\n', "kept.html": "x", "twin.csv": " n\n1\n"}.items():
            self.write(name, text, "utf-8")
        self.write("twins.ModelXml", model(None, categorical(2, " n", ["a"], [0, 1])))
        self.write("short.ModelXml", model(numeric(1, "n", [1, 2], [0, 1])))
        compare = ["--rows", "rows.csv", "--compare", "rows.csv"]
        for status, message, arguments in [
            (2, "One model document is needed.", []), (2, "Unknown option 'colour'.", ["m.ModelXml", "--colour"]),
            (2, "There is no target 'r'.", ["m.ModelXml", "--target", "sql,r"]), (2, "--key wants --rows.", ["m.ModelXml", "--key", "n"]),
            (2, "File 'rows.csv' lacks the column 'c'.", ["m.ModelXml", "--rows", "rows.csv"]),
            (2, "Cannot open file 'none.csv'.", ["m.ModelXml", "--rows", "none.csv"]),
            (2, "--compare wants the one --target", ["m.ModelXml", *compare]),
            (2, "--show prints text", ["m.ModelXml", "--show", "--json"]),
            (2, "File './rows.csv' would be written over.", ["m.ModelXml", "--rows", "rows.csv", "--scores", "./rows.csv"]),
            (2, "Cannot write to file '/dev/full'.", ["m.ModelXml", "--rows", "good.csv", "--scores", "/dev/full"]),
            (2, "File 'open.csv' ends within quotation marks.", ["m.ModelXml", "--rows", "open.csv", "--report", "kept.html"]),
            (2, "--rows wants a file.", ["m.ModelXml", "--rows", ""]),
            (2, "The column 'x' is named twice.", ["m.ModelXml", *compare, "--target", "sql", "--score", "x", "--probability", "x"]),
            (2, "File 'rows.csv' has two columns 'x'.", ["m.ModelXml", *compare, "--target", "sql", "--score", "x"]),
            (2, "File 'twin.csv' has one column for 'n' and ' n'.", ["twins.ModelXml", "--rows", "twin.csv"]),
            (2, "The model has no probability; use --score.", ["m.ModelXml", *compare, "--target", "sql", "--probability", "n"]),
            (8, "Cannot convert model 'none': Error: File not found.", ["none"]),
            (8, "Cannot convert model 'short.ModelXml': model 'V1' (field 'n'): array 'y' has 2 values, 4 needed.", ["short.ModelXml"]),
            (8, "XML Parsing error inside file 'm.ModelXml'.", ["m.ModelXml", "--sql", "m.ModelXml"]),
        ]:
            with self.subTest(arguments):
                *found, told = self.check(*arguments)
                self.assertEqual((found, told[:len(message)]), ([status, ""], message))
        self.assertEqual((self.folder / "kept.html").read_text(), "x")


class DeploymentTest(CheckedTest):
    def compare(self, path, rows, results, target, *more):
        return self.report(path, "--rows", rows, "--missing", "NA", "--compare", results, "--target", target, *more)["comparison"]

    def test_faults_of_a_deployment(self):
        """In what the Python class says of all applicants, which test_python.py explains."""
        example = engines.CREDIT
        exec(self.convert("-p", example.text, "out", "M"), names := {})
        scoring = names["QORVModel_M"]()
        frame = pandas.read_csv(APPLICANTS).fillna(dict.fromkeys(TEXTS, ""))
        result = scoring.apply(frame)

        def compare(result):
            result.to_csv(self.folder / "results.csv", index=False)
            return self.compare("model.ModelXml", APPLICANTS, "results.csv", "python", "--score", "Status_bad_score",
                                "--probability", "Status_bad_proba")

        counted = self.report("model.ModelXml", "--rows", APPLICANTS, "--target", "python")["findings"]
        self.assertEqual([(f["name"], f["rows"]) for f in counted], [
            *engines.LOWEST.items(), ("lowest-point", 0), *(("not-a-number", n) for n in [381, 47, 18])])  # each column once

        changed = result.copy()
        changed.loc[17, "Status_bad_score"] += 0.5
        found = compare(changed)
        self.assertEqual((found["unexplained"], [row["row"] for row in found["worst"]]), (1, [18]))
        self.assertAlmostEqual(sum(part["points"] for part in found["worst"][0]["contributions"])
                               + example.model.constant, found["worst"][0]["model"]["score"])

        swapped = compare(result.rename(columns={"Status_bad_score": "Status_bad_proba", "Status_bad_proba": "Status_bad_score"}))
        self.assertIn("score and probability exchanged in the results", swapped["blamed"])

        # A deployment that reads one column in place of another, and one that has lost one.
        for fault, wrong in {"Time and Age exchanged": frame.rename(columns={"Time": "Age", "Age": "Time"}),
                             "Seniority read as missing": frame.assign(Seniority=float("nan"))}.items():
            found = compare(scoring.apply(wrong))
            self.assertGreater(found["unexplained"], 1000)
            self.assertEqual(max(found["blamed"], key=found["blamed"].get), fault)

    def test_joins(self):
        self.write("m.ModelXml", model())
        self.write("rows.csv", "k,n,c\nx,1,a\ny,2,b\nz,3,a\ny,1,a\nz,3,a\n")
        self.write("results.csv", "score,k\n4,z\n5,w\n3,x\n9,z\n")
        found = self.compare("m.ModelXml", "rows.csv", "results.csv", "python", "--score", "score", "--key", "k")
        self.assertEqual({name: found[name] for name in ["rows", "equal", "missing", "extra", "repeated", "unexplained"]},
                         {"rows": 3, "equal": 3, "missing": 2, "extra": 1, "repeated": 3, "unexplained": 0})
        found = self.compare("m.ModelXml", "rows.csv", "results.csv", "python", "--score", "score")  # by position
        self.assertEqual((found["rows"], found["missing"], found["extra"]), (4, 1, 0))

    def test_single_rows(self):
        """A result is explained by exactly these findings, or as the model says (None), or this is blamed."""
        five = categorical(2, "c", "abcde", [-5, 1, 1, 1, 1, 1])
        alike = [numeric(i, name, [1], [0, 0, 10**i]) for i, name in enumerate(["a b", "a.b", "a-b"], start=1)]
        listed = {values: model(None, categorical(2, "c", values.split(), [0, 1, 2]))
                  for values in ["Rent rent", "TRUE x", "True x", "1 2.5", "a\\n x"]}
        mixed = [categorical(1, "n", "abcdef", [0, 1, 2, 30, 4, 5, 6]), numeric(2, "n", [1, 2], [0, 1, 2, 3])]
        for target, text, cells, result, expected in [
            ("html", model(None, five, table=TABLE, kind="T"), ",a", "p\nNaN", ["five-categories", "lowest-nan"]),
            ("html", model(None, five, table=TABLE, kind="T"), ",a", "p\noops", []),
            ("html", model(numeric(1, "n", [1], [0, 1, 2, 4]), five, table=TABLE), "ten,a", "p\n-1",
             ["array-too-long", "five-categories", "not-a-number", "table-unread"]),
            ("html", model(numeric(1, "n", [1, 2], [0, 1, math.inf, 3])), "1,a", "s\n7", []),
            ("html", model(categorical(1, "c", ["b", "a"], [0, 1, 2])), "a", "s\n2", ["shared-values"]),
            ("html", model(numeric(1, "n", [9], [0, 1, 2]), missing=CODES), "9,a", "s\n3",
             ["missing-codes-unread", "single-bound"]),
            ("sql", listed["Rent rent"], ",rent", "s\n1", ["capitals"]),
            ("html", model(*mixed), "3", "s\n33", ["shared-values"]),
            ("html", model(), ",b", "s\n3", ["empty-field"]),
            ("vba", listed["TRUE x"], ",True", "s\n1", ["true-false"]),
            ("vba", listed["TRUE x"], ",TRUE", "s\n0", ["true-false"]),
            ("vba", listed["True x"], ",TRUE", "s\n1", ["true-false"]),
            ("sas", listed["1 2.5"], ",1.0", "s\n1", ["values-as-numbers"]),
            ("python", listed["a\\n x"], ",a\\n", "s\n0", ["backslash-in-value"]),
            ("sql", model(None, boolean(["1"] * 5 + ["yes"])), ",1", "s\n2", ["boolean-numbers"]),
            ("sql", model(None, boolean(NO_YES)), ",yes", "s\n1", ["boolean-numbers"]),
            ("sas", model(*alike, terms=[(1, 1), (2, 1), (3, 1)]), "0,2,2", "s\n1110", ["names-alike"]),
            ("sas", model(None, numeric(2, "N", [1, 2], [0, 1, 2, 3])), "0,3", "s\n6", ["names-alike"]),
            ("sas", model(table=[(3, 0.9), (1, 0.6), (1, 0.2), (0, 0.1)]), ",a", "p\n0.6", None),
            ("sas", model(None, numeric(2, "n", [1, 2], [0, 5, 7, 11])), "1", "s\n14", "n read as another value"),
        ]:
            with self.subTest(target=target, cells=cells, result=result):
                self.write("m.ModelXml", text)
                self.write("rows.csv", ",".join(dict.fromkeys(re.findall(r'field="([^"]*)"', text))) + f"\n{cells}\n")
                found = self.compare("m.ModelXml", "rows.csv", self.write("results.csv", result), target,
                                     "--probability" if result[0] == "p" else "--score", result[0])
                told = None if found["equal"] else next(iter(found["blamed"]), None) or sorted(found["explained"])
                self.assertEqual(told, expected)

    def test_sql_in_sqlite(self):
        """Codes that are not found, untrimmed booleans, texts and capitals, and the table's lower end in one model."""
        text = document([numeric(1, "a b", [0, 1, 2], [0.5, 1, 2, 3, 4]), boolean(NO_YES), numeric(3, "d", [1], [0, -4, 1])],
                        [(1, 1), (2, 0.25), (3, 1)], -1, table=TABLE, missing={"a_b": [-9]})
        rows = [(a, c, d) for a in ["-9", "", "0", "1.5", "3"] for c in ["yes", " yes", "NO", "No", ""] for d in ["0", "1", "2"]]
        self.write("rows.csv", "id,a b,c,d\n" + "".join(f"{i},{','.join(row)}\n" for i, row in enumerate(rows)), "utf-8")
        settings = configuration(dbType="sqlite", createPredictionTable="1", boolsAreNumbers="0", useTmpTable="0")
        self.write("model.ModelXml", text)
        self.assertEqual(self.run_program("-s", self.write("c.xml", settings))[0], 0)
        base = sqlite3.connect(":memory:")
        base.execute('create table src(id, "a b" real, c text, d real)')
        base.executemany("insert into src values(?, nullif(?, ''), ?, ?)", [(i, *row) for i, row in enumerate(rows)])
        base.executescript(self.read("out"))
        results = base.execute("select id, Predictions from Preds").fetchall()
        self.write("results.csv", "id,p\n" + "".join(f"{i},{p!r}\n" for i, p in results))
        found = self.compare("model.ModelXml", "rows.csv", "results.csv", "sql", "--key", "id", "--probability", "p",
                             "--sql", "c.xml")
        meant = scorer.load(self.folder / "model.ModelXml")
        expected = {i: meant.prediction({"a b": a, "c": c, "d": d}) for i, (a, c, d) in enumerate(rows)}
        different = sum(abs(p - expected[int(i)]) > 1e-9 for i, p in results)
        self.assertEqual((found["equal"], found["explainedRows"], found["unexplained"]), (75 - different, different, 0))
        self.assertEqual(set(found["explained"]), {"missing-codes-name", "boolean-blanks", "lowest-segment", "lowest-point"})

    def test_pages_and_reports(self):
        """The report needs no other file, and shows the texts of the document as texts."""
        self.write("m.ModelXml", model(None, categorical(2, "c", ["<script>", "b&b"], [-5, 1, 2]), kind="T", table=TABLE))
        self.write("rows.csv", "n,c\n1,b&b\n2,<script>\n")
        self.write("results.csv", "p\n0.1\n0.2\n")
        self.compare("m.ModelXml", "rows.csv", "results.csv", "html", "--probability", "p", "--report", "report.html")
        page = (self.folder / "report.html").read_text("utf-8")
        for part in ["lowest-nan", "&lt;script&gt;", "b&amp;b", "<svg", "without explanation", "Row 1"]:
            self.assertIn(part, page)
        self.assertNotRegex(page, r"<script|https?:|url\(|@import|src=|nan%|inf%")


if __name__ == "__main__":
    unittest.main()
