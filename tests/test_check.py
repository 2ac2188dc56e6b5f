"""The companion program: its scores, findings and explanations, compared with the independent scorer and engines."""

import csv
import math
import os
import re
import sqlite3
import subprocess
import termios
import time
import unittest
from pathlib import Path

import pandas

import engines
from engines import CheckedTest
import score as scorer
from sql_program import configuration
from support import CODES, EXAMPLES, NO_YES, TABLE, boolean, categorical, document, doubles, model, numeric

CREDIT = EXAMPLES / "credit" / "credit.ModelXml"
APPLICANTS = EXAMPLES / "credit" / "applicants.csv"
JUMP = [(3, 0.9), (1, 0.6), (1, 0.2), (0, 0.1)]
TEXTS = ["Home", "Marital", "Records", "Job"]
LOGISTIC = model(method="softmax")


class ScoresAndFindingsTest(CheckedTest):
    def assert_scores(self, path, rows, *more):
        """Equal to the last bit."""
        reference = scorer.load(path)
        with open(rows, newline="", encoding="utf-8") as file:
            expected = [(score := reference.score(row), reference.probability(score)) for row in csv.DictReader(file)]
        self.report(path, "--rows", rows, "--scores", "scores.csv", *more)
        with open(self.folder / "scores.csv", newline="", encoding="utf-8") as file:
            lines = list(csv.reader(file))[1:]
        found = [(line[0], *(float(cell) if cell else None for cell in line[1:])) for line in lines]
        wanted = [(str(number), *numbers) for number, numbers in enumerate(expected, start=1)]
        different = [pair for pair in zip(found, wanted) if pair[0] != pair[1]]
        self.assertEqual((len(found), different[:1]), (len(wanted), []))  # a difference of whole lists takes minutes

    def test_scores_match_the_scorer(self):
        self.assert_scores(CREDIT, APPLICANTS, "--missing", "NA")
        self.assert_scores(EXAMPLES / "claims" / "claims.ModelXml", EXAMPLES / "claims" / "claims.csv")
        for name in ["credit", "claims"]:
            path = EXAMPLES / name / f"{name}.ModelXml"
            reference = scorer.load(path)
            with open(next(path.parent.glob("*.csv")), newline="") as file:
                first = next(csv.DictReader(file))
            rows = []
            for variable in reference.variables:
                if variable.categorical:
                    cells = [*variable.positions, "unseen", "", " "] + [f"\t\v{v} \f" for v in variable.positions]
                else:
                    beside = [math.nextafter(bound, way) for bound in variable.bounds for way in (-math.inf, math.inf)]
                    cells = [repr(v) for v in [*variable.bounds, *beside, *variable.missing, 1e308, -0.0, 5e-324]]
                    cells += ["", "ten", "nan", "-inf", "+1", "1e400", "1e-400", f"0.{0:0400}1", f"1{0:0400}e-5"]
                    cells += [" 7 ", "007", ".5", "5.", "1e", "--1", "+-1", "+"]
                rows += [{**first, variable.field: cell} for cell in cells]
            with open(self.folder / "rows.csv", "w", newline="") as file:
                writer = csv.DictWriter(file, list(first))
                writer.writeheader()
                writer.writerows(rows)
            self.assert_scores(path, self.folder / "rows.csv")

    def test_kinds_of_models(self):
        """Several terms of a number, equal points, bounds and points out of order, the logistic form; more cells than
        are cached, and long ones that differ at their ends."""
        rows, long = self.folder / "rows.csv", [20 * "long" + end for end in "xy"]
        rows.write_text("n,c\n" + "".join(f"{n / 1000},{['a', 'b', 'z', ''][n % 4]}\n{n / 9e3},{long[n % 2]}\n"
                                         for n in range(-2000, 4000)))
        steep = [numeric(1, "n", [0, 1, 2, 3], [0, -2, -0.5, 0, 1, 3])]
        for text in [model(terms=[(1, 0.1), (2, 0.7), (1, 1 / 3)], constant=0.3), LOGISTIC,
                     model(*steep, table=[(3, 0.9), (2, 0.9), (2, 0.8), (1, 1 / 3), (-0.5, 0.25), (-2, 0.01)]),
                     model(*steep, table=[(1, 0.5)]), model(numeric(1, "n", [0, 2, 1, 3], range(6))),
                     model(None, categorical(1, "c", ["a", "a"], [0, 1, 5]), terms=[(1, 0.5)]),
                     model(None, boolean(["a"] * 5 + ["b"], (0.5, 1 / 3, 2 / 3))), model(None, categorical(2, "c", long, [0, 1, 2]))]:
            self.write("m.ModelXml", text, "utf-8")
            self.assert_scores(self.folder / "m.ModelXml", rows)

    def test_places_of_findings(self):
        self.write("m.ModelXml", model(numeric(1, "n", [1], [0, 1, 2]), categorical(2, "c", "abcde", [0, 1, 2, 3, 4, 5]),
                                       categorical(3, "yn", NO_YES, [0, 1, 2], tname="bb64"), terms=[(1, 1), (2, 1), (3, 1)]))
        self.write("s.xml", configuration(dbTpye="mysql", OUTPTFILE="x", colour="red", dbType="sqlservr"))
        many = "".join(f"?;x{i} with a long text;0\n?;y{i};\n" for i in range(3000))
        self.write("rows.csv", "\ufeffc;n;yn\n\"a\nb\";1;yes\nA;1;no\nb;2;1\n?;x;maybe\n" + many + "\n;1;2;3\nz", "utf-8")
        report = self.report("m.ModelXml", "--sql", "s.xml", "--rows", "rows.csv", "--delimiter", ";", "--missing", "?")
        self.assertEqual((report["rows"], report["uneven"]), (6006, 2))
        found = {f["name"]: f for f in report["findings"]}
        self.assertEqual({name: (f["rows"], f["firstRow"]) for name, f in found.items() if f.get("rows")},
                         {"single-bound": (3, 1), "boolean-numbers": (4, 1), "capitals": (1, 2), "not-listed": (3, 3), "five-categories": (1, 3),
                          "empty-field": (1, 6006), "not-a-number": (6001, 4)})
        names = ["unknown-setting", "unknown-dialect", "single-bound"]
        self.assertEqual([f["place"] for f in report["findings"] if f["name"] in names],
                         ["recoding V1 (column n)", "setting dbTpye; did you mean dbType?", "setting OUTPTFILE; did you mean outputFile?",
                          "setting colour", "setting dbType, 'sqlservr'; did you mean sqlserver?"])
        self.assertEqual(found["five-categories"]["targets"], ["html"])
        only = self.report("m.ModelXml", "--target", "html")["findings"]
        self.assertEqual([f["name"] for f in only], ["single-bound", "five-categories", "percent-sign"])

    def test_titles_and_keys(self):
        """A title matches with its blanks first; keys are copied to the scores verbatim."""
        self.write("m.ModelXml", model(None, categorical(2, " n", ["a"], [0, 1])))
        keys = ["a,b", 'a"b', "a\nb", "a\rb", "", " é "]
        with open(self.folder / "rows.csv", "w", newline="") as file:
            csv.writer(file, quoting=csv.QUOTE_ALL).writerows([["n", " n", " k "], *([1, "a", key] for key in keys)])
        self.report("m.ModelXml", "--rows", "rows.csv", "--scores", "scores.csv", "--key", "k")
        with open(self.folder / "scores.csv", newline="") as file:
            self.assertEqual(list(csv.reader(file)), [["k", "score", "probability"], *([key, "3", ""] for key in keys)])

    def test_file_formats(self):
        """The header line of each file determines its delimiter, though titles contain others. Decimal commas are read on
        request, in numeric columns only; full stops are then read too if the delimiter is a comma."""
        self.write("m.ModelXml", model(numeric(1, "n", [1, 2], [0, 10, 20, 30]), categorical(2, "c;, |", ["1,5"], [0, 1])))
        cells = [["n", "c;, |", "k"], ["1,5", "1,5", "x;y"], ["1.5", "1,5", ","], ["1.234,5", "1.5", "|"], ["7", "", "\t"]]
        plain, comma, either = ["1", "21", "0", "30"], ["21", "1", "0", "30"], ["21", "21", "0", "30"]
        for mark, more, scores in [(",", [], plain), (",", ["--decimal=,"], either), (";", [], plain), (";", ["--decimal=,"], comma),
                                   ("|", ["--decimal=."], plain), ("\t", ["--decimal=,"], comma)]:
            for results_mark, point in [(",", "."), (";", "."), *[(";", ",")] * ("--decimal=," in more)]:
                with self.subTest(mark=mark, more=more, results_mark=results_mark):
                    with open(self.folder / "rows.csv", "w", newline="") as file:
                        csv.writer(file, delimiter=mark).writerows(cells)
                    with open(self.folder / "results.csv", "w", newline="") as file:
                        csv.writer(file, delimiter=results_mark).writerows(
                            [["k", "the score, all; in all"], *([row[2], score + point + "0"] for row, score in zip(cells[1:], scores))])
                    found = self.report("m.ModelXml", "--rows", "rows.csv", "--key", "k", "--scores", "scores.csv", "--compare", "results.csv",
                                        "--score", "the score, all; in all", "--target", "sas", *more)
                    self.assertEqual(found["comparison"]["equal"], 4)
                    with open(self.folder / "scores.csv", newline="") as file:
                        self.assertEqual([row[1] for row in csv.reader(file, delimiter=mark)], ["score", *scores])
        self.write("rows.csv", "n\n7\n1,5\n", "utf-8")
        self.write("m.ModelXml", document([numeric(1, "n", [1, 2], [0, 10, 20, 30])], [(1, 1)], 0))
        for more, uneven in [([], 1), (["--decimal=,"], 0)]:
            self.assertEqual(self.report("m.ModelXml", "--rows", "rows.csv", *more)["uneven"], uneven)

    def test_progress(self):
        """While results arrive slowly, the terminal shows the progress of the rows, which is erased at the end."""
        self.write("m.ModelXml", model())
        self.write("rows.csv", "n,c\n" + 20000 * "1,a bc\n", "utf-8")
        result = 20000 * b"2.000\n"
        for is_terminal in [True, False]:
            (typed, source), (screen, error) = os.openpty(), os.openpty()
            settings = termios.tcgetattr(source)
            settings[3] &= ~termios.ECHO
            termios.tcsetattr(source, termios.TCSANOW, settings)
            run = subprocess.Popen([engines.CHECK, "m.ModelXml", "--rows", "rows.csv", "--compare", os.ttyname(source), "--target", "sas",
                                    "--score", "s"], cwd=self.folder, stdout=subprocess.DEVNULL,
                                   stderr=error if is_terminal else subprocess.PIPE)
            for text, pause in [(b"s\n" + result[:90000], 1.2), (result[90000:] + b"\x04\x04", 0)]:
                while text:
                    text = text[os.write(typed, text):]
                time.sleep(pause)
            self.assertIn(run.wait(60), (0, 1))
            if is_terminal:
                self.assertRegex(os.read(screen, 1000).decode(), r"^(\rReading the rows: \d+ %)+\r( +)\r$")
            else:
                self.assertEqual(run.stderr.read(), b"")
                run.stderr.close()
            for file in [typed, source, screen, error]:
                os.close(file)

    def test_status_and_output(self):
        """--show alone reports no findings and returns 0 for any model."""
        self.write("m.ModelXml", model(kind="T"))
        shown = self.check("m.ModelXml", "--show")
        found = self.check("m.ModelXml")
        self.assertEqual((shown[0], found[0]), (0, 1))
        self.assertIn("No probability: the result is the score.\n", shown[1])
        self.write("s.xml", configuration(dbType="oracle"))
        for more in [["--target", "sas"], ["--sql", "s.xml"], ["--canvas", "none"]]:
            found = self.check("m.ModelXml", *more)
            self.assertEqual(self.check("m.ModelXml", "--show", *more), (1, shown[1] + "\n" + found[1], ""))
        self.write("good.ModelXml", model())
        self.assertEqual(self.check("good.ModelXml", "--target", "sas"), (0, "No findings\n", ""))
        # A finding that affects no row does not count, unless the file has no rows.
        self.write("m.ModelXml", model(None, categorical(2, "c", ["True", "b"], [0, 1, 2])))
        for rows, status in [("n,c\n", 1), ("n,c\n1,b\n", 0)]:
            self.write("rows.csv", rows)
            self.assertEqual(self.check("m.ModelXml", "--target", "vba", "--rows", "rows.csv")[0], status)
        for written, meant in [("sqlservr", "sqlserver"), ("MSSQL", "sqlserver")]:
            self.write("s.xml", configuration(dbType=written))
            self.assertIn(f"'{written}'; did you mean {meant}?\n", self.check("good.ModelXml", "--sql", "s.xml")[1])

    def test_rejected_calls(self):
        self.write("m.ModelXml", model())
        for name, text in {"rows.csv": "n,x,x\n1,1,1\n", "good.csv": "n , c\n1,a\n", "open.csv": 'n,c\n1,"a\n',
                           "odd.csv": 'N \t"x\ny"\t' + "\t".join(99 * str(i % 10) for i in range(21)) + "\n", "kept.html": "x",
                           "twin.csv": " n\n1\n", "large.csv": 'n,c\n1,"' + (65 << 20) * "a"}.items():
            self.write(name, text, "utf-8")
        self.write("wide.csv", "\ufeffn,c\n", "utf-16-be")
        self.write("latin.csv", "n,c\n1,a\n2,é\n", "latin-1")
        (self.folder / "link.csv").symlink_to("good.csv")
        self.write("twins.ModelXml", model(None, categorical(2, " n", ["a"], [0, 1])))
        self.write("short.ModelXml", model(numeric(1, "n", [1, 2], [0, 1])))
        self.write("early.ModelXml", model().replace(doubles([0, 1, 2]), doubles([0]) + doubles([1, 2])))  # of two recodings
        compare = ["--rows", "rows.csv", "--compare", "rows.csv"]
        good = ["m.ModelXml", "--rows", "good.csv"]
        scored = [*good, "--compare", "good.csv", "--target", "sql", "--score", "n"]
        for status, message, arguments in [
            (2, "Give exactly one model document.\nscorewright-check --help lists the options.\n", []),
            (2, "Unknown option 'colour'.", ["m.ModelXml", "--colour"]),
            (2, "Unknown target 'r'. The targets are sas, sql, vba, python, html.", ["m.ModelXml", "--target", "sql,r", "--json"]),
            (2, "--key requires --rows.", ["m.ModelXml", "--key", "n", "--score", "s"]),
            (2, "File 'rows.csv' lacks the column 'c'. Its titles are 'n', 'x', 'x'.\n", ["m.ModelXml", "--rows", "rows.csv"]),
            (2, "File 'odd.csv' lacks the columns 'n', 'c'. 'n' is present as 'N '. Its titles are "
             + ", ".join(["'N '", "'x y'", *(f"'{60 * str(i % 10)}…'" for i in range(18))]) + " and 3 more.\n", ["m.ModelXml", "--rows", "odd.csv"]),
            (2, "--decimal requires a comma or a full stop.", [*good, "--decimal", ";"]),
            (2, "File 'kept.html' lacks the columns 'n', 'c'.", ["m.ModelXml", "--rows", "kept.html"]),
            (2, "Cannot open file 'none.csv'.", ["m.ModelXml", "--rows", "none.csv"]),
            (2, "--compare requires exactly one --target.", ["m.ModelXml", *compare]),
            (2, "Give only one of --show, --json and --quiet.", ["m.ModelXml", "--show", "--json"]),
            (2, "Output './rows.csv' would overwrite an input or another output.", ["m.ModelXml", "--rows", "rows.csv", "--scores", "./rows.csv"]),
            (2, "Output 'link.csv' would overwrite an input or another output.", [*good, "--scores", "link.csv"]),
            (2, "Output 'rows.csv' would overwrite an input or another output.", [*good, *compare[2:], "--target", "sql", "--score", "n", "--report", "rows.csv"]),
            (2, "Output 'new' would overwrite an input or another output.", [*good, "--scores", "new", "--report", "new"]),
            (2, "Cannot write to file '/dev/full'.", [*good, "--scores", "/dev/full", "--report", "/dev/full"]),
            *((2, "--tolerance requires a finite number of at least 0.", [*scored, "--tolerance", text])
              for text in ["inf", "nan", "-1", "x"]),
            *((2, "--delimiter requires one ASCII character", [*good, "--delimiter", text])
              for text in ["", ";;", "é", '"', "\n", "\r"]),
            (2, "File 'wide.csv' is UTF-16; save it as UTF-8.", ["m.ModelXml", "--rows", "wide.csv"]),
            (2, "latin.csv, row 2: not valid UTF-8. Convert the file, for example with iconv.", ["m.ModelXml", "--rows", "latin.csv"]),
            # The address sanitizer copies a cell each time that it grows.
            *[(2, "File 'large.csv' has a cell of more than 64 MiB; is a quotation mark not closed?", ["m.ModelXml", "--rows", "large.csv"])
              for _ in range(b"__asan_init" not in Path(engines.CHECK).read_bytes())],
            (2, "File 'open.csv' ends within quotation marks.", ["m.ModelXml", "--rows", "open.csv", "--report", "kept.html"]),
            (2, "--rows requires a file.", ["m.ModelXml", "--rows", ""]),
            (2, "Column 'x' is given twice. --key, --score and --probability require different columns.", ["m.ModelXml", *compare, "--target", "sql", "--score", "x", "--probability", "x"]),
            (2, "Column 'x' is given twice. --key, --score and --probability require different columns.", [*compare, "m.ModelXml", "--target", "sql", "--key", "x", "--probability", "x"]),
            (2, "Column 'n' is given twice. --key, --score and --probability require different columns.", [*scored, "--key", "n", "--probability", "c"]),
            (2, "File 'rows.csv' has two columns 'x'.", ["m.ModelXml", *compare, "--target", "sql", "--score", "x"]),
            (2, "File 'twin.csv' has one column for 'n' and ' n'.", ["twins.ModelXml", "--rows", "twin.csv"]),
            (2, "The model has no probability; use --score.", ["m.ModelXml", *compare, "--target", "sql", "--probability", "n"]),
            (8, "Cannot convert model 'none': Error: File not found.", ["none"]),
            (8, "Cannot convert model 'short.ModelXml': model 'V1' (field 'n'): array 'y' has 2 values, 4 needed.", ["short.ModelXml"]),
            (8, "Cannot convert model 'early.ModelXml': model 'V1' (field 'n'): array 'y' ends early: 1 of 4 numbers.", ["early.ModelXml"]),
            (8, "XML Parsing error inside file 'm.ModelXml'.", ["m.ModelXml", "--sql", "m.ModelXml"]),
        ]:
            with self.subTest(arguments):
                *found, reported = self.check(*arguments)
                self.assertEqual((found, reported[:len(message)]), ([status, ""], message))
        self.assertEqual((self.folder / "kept.html").read_text(), "x")
        for text in ["\xc0\x80", "\xf5\x80\x80\x80", "\xe0\x80\x80", "\xf0\x80\x80\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xc3",
                     "abcde\xff"]:
            self.write("rows.csv", "n,c\n1," + text, "latin-1")
            self.assertIn("rows.csv, row 1: not valid UTF-8", self.check("m.ModelXml", "--rows", "rows.csv")[2], text)
        self.write("rows.csv", "n,c\n1,\x7f\x80\u07ff\u0800\ud7ff\ue000\uffff\U00010000\U0010ffff", "utf-8")
        self.assertEqual(self.report("m.ModelXml", "--rows", "rows.csv")["rows"], 1)

    def test_outputs_that_cannot_be_written(self):
        """Inputs under another name, and a full device."""
        self.write("m.ModelXml", model())
        self.write("rows.csv", "n,c\n1,a\n", "utf-8")
        os.link(self.folder / "rows.csv", self.folder / "link.csv")
        os.link(self.folder / "m.ModelXml", self.folder / "link.ModelXml")
        for output in [["--scores", "link.csv"], ["--report", "link.ModelXml"], ["--scores", "new", "--report", "./new"]]:
            status, printed, message = self.check("m.ModelXml", "--rows", "rows.csv", *output)
            self.assertEqual((status, printed, message.splitlines()[0]), (2, "", f"Output '{output[-1]}' would overwrite an input or another output."))
        self.assertEqual((self.folder / "rows.csv").read_text(), "n,c\n1,a\n")
        with open("/dev/full", "w") as full:
            for option in ["--show", "--json", "--target=sql", "--help", "--version"]:
                run = subprocess.run([engines.CHECK, "m.ModelXml", option], cwd=self.folder, stdout=full, stderr=subprocess.PIPE)
                self.assertEqual((run.returncode, run.stderr), (2, b"Cannot write to standard output.\n"), option)
        for name, wrong in [("none/new", "Cannot open file 'none/new' for writing.\n"), ("/dev/full", "Cannot write to file '/dev/full'.\n")]:
            status, _, message = self.check("m.ModelXml", "--rows", "rows.csv", "--scores", "new", "--report", name)
            self.assertEqual((status, message), (2, wrong))


class DeploymentTest(CheckedTest):
    def compare(self, path, rows, results, target, *more):
        return self.report(path, "--rows", rows, "--missing", "NA", "--compare", results, "--target", target, *more)["comparison"]

    def test_faults_of_a_deployment(self):
        """Faults in the results of the Python class, which test_python.py explains without faults."""
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
            *engines.LOWEST.items(), ("lowest-point", 0), *(("not-listed", n) for n in [6, 1, 2]),
            *(("not-a-number", n) for n in [381, 47, 18])])  # each column once

        changed = result.copy()
        changed.loc[17, "Status_bad_score"] += 0.5
        found = compare(changed)
        self.assertEqual((found["unexplained"], [row["row"] for row in found["worst"]]), (1, [18]))
        self.assertAlmostEqual(sum(part["points"] for part in found["worst"][0]["contributions"])
                               + example.model.constant, found["worst"][0]["model"]["score"])

        # A deployment that exchanges two columns, and one that lacks a column.
        for fault, wrong in {"Time and Age exchanged": frame.rename(columns={"Time": "Age", "Age": "Time"}),
                             "Seniority read as missing": frame.assign(Seniority=float("nan"))}.items():
            found = compare(scoring.apply(wrong))
            self.assertGreater(found["unexplained"], 1000)
            self.assertEqual(found["blamed"][fault], found["unexplained"])

    def test_joins(self):
        self.write("m.ModelXml", model())
        self.write("rows.csv", "k,n,c\nx,1,a\ny,2,b\nz,3,a\ny,1,a\nz,3,a\n")
        self.write("results.csv", "score,k\n4,z\n5,w\n3,x\n9,z\n")
        found = self.compare("m.ModelXml", "rows.csv", "results.csv", "python", "--score", "score", "--key", "k")
        self.assertEqual({name: found[name] for name in ["rows", "equal", "missing", "extra", "repeated", "unexplained"]},
                         {"rows": 3, "equal": 3, "missing": 2, "extra": 1, "repeated": 3, "unexplained": 0})
        found = self.compare("m.ModelXml", "rows.csv", "results.csv", "python", "--score", "score")  # by position
        self.assertEqual((found["rows"], found["missing"], found["extra"]), (4, 1, 0))
        # Each alone is reported; report() checks the status.
        for name, more_rows, more_results in [("missing", "y,1,a\n", ""), ("extra", "", "y,3\n"), ("repeated", "x,1,a\n", ""),
                                              ("repeated", "", "x,3\n"), ("none", "", "")]:
            self.write("rows.csv", "k,n,c\nx,1,a\n" + more_rows)
            self.write("results.csv", "k,score\nx,3\n" + more_results)
            found = self.compare("m.ModelXml", "rows.csv", "results.csv", "python", "--score", "score", "--key", "k")
            self.assertEqual([side for side in ["missing", "extra", "repeated"] if found[side]], [name] * (name != "none"))

    def test_single_rows(self):
        """Exactly these findings explain a result, or it matches the model (None), or this text is the suspicion."""
        five, six = categorical(2, "c", "abcde", [-5, 1, 1, 1, 1, 1]), categorical(1, "n", "abcdef", [0, 1, 2, 30, 4, 5, 6])
        alike = [numeric(i, name, [1], [0, 0, 10**i]) for i, name in enumerate(["a b", "a.b", "a-b"], start=1)]
        same = [numeric(i, name, [1, 2], [0, 1, 2, 3]) for i, name in enumerate("wxyz", start=1)]
        listed = {values: model(None, categorical(2, "c", values.split(), [0, 1, 2]))
                  for values in ["Rent rent", "TRUE x", "True x", "1 2.5", "a\\n x"]}
        three, twice = [(1, 1), (2, 1), (3, 1)], numeric(2, "n", [1, 2], [0, 5, 7, 11])
        lost = numeric(1, "n", [1, 2], [0, 1, math.nan, 3])
        above = model(numeric(1, "n", [1, 2], [0, 1, 1e6, 3]))
        scale = model(numeric(1, "n", [-1.4, 0.03, 1.2, 8, 15.5], range(7)))
        single = model(numeric(1, "n", [0, 0.1], [0, 1, 2, 3]))
        x = [categorical(i, f"c{i}", "x", [0, 2**i]) for i in range(1, 15)]
        y = [categorical(i, f"c{i}", "xyx", [0, 2**i, 3, 1]) for i in range(4)]
        unequal = model(terms=[(1, 1), (2, 1), (2, 5)])
        jump = model(table=JUMP, constant=-(2**-53))
        self.write("c.xml", configuration(dbType="duckdb"))
        self.write("m.xml", configuration(dbType="mysql", boolsAreNumbers="0"))
        for name, target, text, cells, result, expected, *more in [
            ("NaN that the page shows", "html", model(None, five, table=TABLE, kind="T"), ",a", "p\nNaN",
             ["five-categories", "lowest-nan"]),
            ("a text for a probability", "html", model(None, five, table=TABLE, kind="T"), ",a", "p\noops", []),
            ("a text for a score of NaN", "sas", model(lost), "1,a", "s\noops", []),
            ("an empty cell for a score of NaN", "sas", model(lost), "1,a", 's\n""', None),
            ("four deviations at once", "html", model(numeric(1, "n", [1], [0, 1, 2, 4]), five, table=TABLE), "ten,a", "p\n-1",
             ["array-too-long", "five-categories", "not-a-number", "table-unread"]),
            ("a result for an infinite score", "html", model(numeric(1, "n", [1, 2], [0, 1, math.inf, 3])), "1,a", "s\n7", []),
            ("one value, two positions", "html", model(categorical(1, "c", ["b", "a"], [0, 1, 2])), "a", "s\n2", ["shared-values"]),
            ("a code on the only bound", "html", model(numeric(1, "n", [9], [0, 1, 2]), missing=CODES), "9,a", "s\n3",
             ["missing-codes-unread", "single-bound"]),
            ("a value in two spellings", "sql", listed["Rent rent"], ",rent", "s\n1", ["capitals"]),
            ("a number read as a position", "html", model(six, twice), "3", "s\n41", ["shared-values"]),
            ("a fraction is no position", "html", model(six, twice), "1.5", "s\nnan", ["shared-values"]),
            ("an empty value", "vba", model(None, categorical(2, "c", ["", "b"], [0, 5, 6])), "1,", "s\n7", ["empty-value"]),
            ("0 above the lowest segment", "python", model(table=TABLE), ",b", "p\n0", "c read as missing"),
            ("an empty field", "html", model(), ",b", "s\n3", ["empty-field"]),
            ("a list of five beside a boolean", "html", model(None, five, boolean([*"nnnny"], number=3, name="d"), terms=three),
             "1,a,y", "s\n-2", ["five-categories"]),
            ("a truth value of a list", "vba", listed["TRUE x"], ",True", "s\n1", ["true-false"]),
            ("a text TRUE", "vba", listed["TRUE x"], ",TRUE", "s\n0", ["true-false"]),
            ("a truth value shown as True", "vba", listed["True x"], ",TRUE", "s\n1", ["true-false"]),
            ("a truth value of a boolean", "vba", model(None, boolean(["FALSE"] * 5 + ["TRUE"])), ",TRUE", "s\n0", ["true-false"]),
            ("a number in another format", "sas", listed["1 2.5"], ",1.0", "s\n1", ["values-as-numbers"]),
            ("a backslash", "python", listed["a\\n x"], ",a\\n", "s\n0", ["backslash-in-value"]),
            ("a boolean's number", "sql", model(None, boolean(["1"] * 5 + ["yes"])), ",1", "s\n2", ["boolean-numbers"]),
            ("a boolean's text", "sql", model(None, boolean(NO_YES)), ",yes", "s\n1", ["boolean-numbers"]),
            ("a number beside a list", "sql", model(None, categorical(2, "c", "12", [0, 5, 6]), boolean(NO_YES, number=3, name="d"),
                                                    terms=three), "1,2,yes", "s\n9", ["boolean-numbers"]),
            ("the first of equal coefficients", "html", unequal, "1,b", "s\n9", ["constant-misplaced", "equal-coefficients"]),
            ("the last of equal coefficients", "sql", unequal, "1,b", "s\n12", ["equal-coefficients"]),
            ("the last of equal numbers", "sql", model(None, categorical(1, "c", "a", [0, 4]), terms=[(1, 1)]), "1,a", "s\n6",
             ["equal-numbers"]),
            ("a coefficient as a factor", "vba", model(terms=[(3, 2), (1, 1), (2, 1)]), "1,a", "s\n5", ["coefficient-without-recoding"]),
            ("a probability of the last row only", "python", LOGISTIC, ",a", "p\n0", ["logistic-last-row"]),
            ("a score for a probability", "vba", LOGISTIC, ",a", "p\n1", ["logistic-absent"]),
            ("three columns of one name", "sas", model(*alike, terms=three), "0,2,2", "s\n1110", ["names-alike"]),
            ("capitals of a name", "sas", model(None, numeric(2, "N", [1, 2], [0, 1, 2, 3])), "0,3", "s\n6", ["names-alike"]),
            ("above a jump of the table", "sas", jump, ",a", "p\n0.6", None),
            ("a tolerance relative to a large score", "sas", above, "1,a", "s\n1000900", None, "--tolerance", "1e-3"),
            ("beyond the tolerance", "sas", above, "1,a", "s\n1002000", [], "--tolerance", "1e-3"),
            ("a tolerance of 0", "sas", model(), "1,a", "s\n3.0000000000000004", [], "--tolerance", "0"),
            ("a text given as missing", "sas", model(None, categorical(2, "c", ["none"], [0, 5])), "1, none ", "s\n2", None,
             "--missing", "none"),
            ("above the last bound", "sas", model(None, twice), "1", "s\n14", "n read as another value"),
            ("below the first bound", "sas", model(None, twice), "1", "s\n6", "last-digit"),
            ("a number beside a bound of 17 digits", "python", model(numeric(1, "n", [0, 1 / 7], [0, 1, 2, 3])), f"{1 / 7},a", "s\n4",
             ["bound-digits"]),
            ("the other side of a jump within a large tolerance", "sas", model(table=JUMP, constant=-0.02), ",a", "p\n0.6", [],
             "--tolerance", "0.05"),
            ("a steep line beside a jump", "sas", model(table=[(1.0000001, 0.9), *JUMP[1:]]), ",a", "p\n0.6", None),
            ("a value listed twice, and no capitals", "sql", model(None, categorical(2, "c", "aAa", [0, 1, 2, 3])), ",a", "s\n1",
             ["value-twice"]),
            ("an empty field where 0 is a code", "html", model(missing={"n": [0]}), ",a", "s\n2", ["empty-field", "missing-codes-unread"]),
            ("a code of another name, rounded", "python", model(numeric(1, "O'B", [1, 2], [0, 1, 2, 3]), missing={"O_B": [1234567]}),
             "1234570,a", "s\n1", ["missing-codes-digits", "missing-codes-name"]),
            ("one of two columns corrected", "sql", model(None, categorical(2, "c", "x", [0, 1]), categorical(3, "d", "x", [0, 10]),
                                                               terms=three), ",X,X", "s\n10", ["capitals"]),
            ("either of two findings", "sql", model(None, categorical(2, "c", "xyx", [0, 1, 2, 3]), boolean(NO_YES, number=3, name="d"),
                                                    terms=[*three[:2], (3, 2)]), ",x,yes", "s\n5", ["boolean-numbers", "value-twice"]),
            ("a backslash of MySQL", "sql", model(None, categorical(2, "c", ["a\\c"], [0, 1])), ",ac", "s\n1", ["backslash-escape"]),
            ("another accent", "sql", model(None, categorical(2, "c", ["Zürich"], [0, 1])), ",ZURICH", "s\n1", ["accents"]),
            ("NaN above all bounds", "sql", model(), "nan,a", "s\n4", ["nan-cell"]),
            ("an empty text that is false", "sql", model(None, boolean(NO_YES)), "1,", "s\n3", ["boolean-numbers"]),
            ("a text that is neither", "sql", model(None, boolean(NO_YES, (4, 1, 2))), "1,yes", "s\n6", ["boolean-numbers"]),
            ("a text that Excel reads as 15", "vba", model(), '"1,5",a', "s\n4", ["not-a-number"]),
            ("per cent in Excel", "vba", model(), "50%,a", "s\n2", ["not-a-number"]),
            ("a hexadecimal number", "html", model(), "0x1,a", "s\n3", ["not-a-number"]),
            ("a blank that Python removes", "python", model(), "1,a\u00a0", "s\n3", ["other-blanks"]),
            ("a value with a blank at its end", "sas", model(None, categorical(2, "c", ["a "], [0, 1])), "1,a", "s\n3", ["value-blanks"]),
            ("a full stop that SAS reads as missing", "sas", model(None, categorical(2, "c", ["1", "."], [0, 1, 5])), "1,x", "s\n7",
             ["values-as-numbers"]),
            ("a list of texts beside numbers", "sas", model(categorical(1, "n", ["1"], [0, 4]), categorical(2, "c", ["1", "z"], [0, 1, 2])),
             "1.0,1.0", "s\n4", ["values-as-numbers"]),
            ("an overflow of SAS", "sas", model(method="softmax", constant=-800), ",a", 'p\n""', ["logistic-overflow"]),
            ("32 bits", "sql", model(numeric(1, "n", [1, 2], [0, 1 / 3, 2, 3])), "0,a", "s\n1.33333337", ["single-precision"], "--sql", "c.xml"),
            ("32 bits of a term that a bound makes larger", "sql", model(numeric(1, "n", [4.05], [0, -0.5, -45.04])), "4.05,a", "s\n-44.0400009",
             ["single-precision"], "--sql", "c.xml"),
            ("more than rounding to 32 bits", "sql", model(numeric(1, "n", [1, 2], [0, 1 / 3, 2, 3])), "0,a", "s\n1.333335", [], "--sql", "c.xml"),
            ("blanks at the end in MySQL", "sql", model(None, boolean(NO_YES)), "1, yes ", "s\n2", ["boolean-blanks"], "--sql", "m.xml"),
            *((f"{text} in {target}", target, scale, f'"{text}",a', f"s\n{score}", cause) for target, text, score, cause in [
                *(("vba", text, score, ["not-a-number"]) for text, score in [
                    ("&HF", 6), ("&O10", 5), ("(1,5)", 2), ("1-", 3), ("(1-)", 4), ("5%", 4), ("5%", 5), ("1,5", 5), ("1,5", 6)]),
                ("vba", "&O8", 5, "n read as another value"), ("vba", "5%%", 5, "n read as another value"),
                *(("html", text, score, ["not-a-number"]) for text, score in [("0XF", 6), ("0b11", 5), ("0b2", 7)]),
                ("html", "-inf", 7, ["nan-cell"]), *((target, "-Infinity", 7, "n read as another value") for target in ["html", "sql"])]),
            *((f"{cell} in 32 bits", "sql", single, f"{cell},a", f"s\n{score}", ["single-precision"], "--sql", "c.xml")
              for cell, score in [("0.1", 4), ("0.10000000001", 3)]),
            ("32 bits of a large score", "sql", model(numeric(1, "n", [1, 2], [0, 1e6 + 1 / 3, 2, 3])), "0,a", "s\n1000001.375",
             ["single-precision"], "--sql", "c.xml"),
            ("32 bits of a probability", "sql", model(table=TABLE), ",a", "p\n0.6000003", ["single-precision"], "--sql", "c.xml"),
            ("blanks at the end elsewhere", "sql", model(None, boolean(NO_YES)), "1,yes ", "s\n2", ["boolean-blanks"], "--sql", "m.xml"),
            ("a control character that Python removes", "python", model(), "1,\x1ca", "s\n3", ["other-blanks"]),
            ("a text that begins with 1", "sql", model(None, boolean(NO_YES)), "1,+1x", "s\n4", ["boolean-numbers"]),
            ("a list beside numbers of one column", "sql", model(categorical(1, "c", ["z", "yes"], [0, 5, 10]), boolean(NO_YES)), "yes", "s\n11",
             ["boolean-numbers"]),
            ("a truth value in two spellings", "vba", model(None, categorical(2, "c", ["TRUE", "True"], [0, 1, 2])), ",True", "s\n1", ["true-false"]),
            ("five values read as six", "html", model(categorical(1, "c", "abcdef", [0, 1, 2, 30, 4, 5, 6]), categorical(2, "c", "edcba", [-5, 1, 1, 1, 1, 1])),
             "d", "s\n-3", ["five-categories", "shared-values"]),
            ("no overflow", "sas", LOGISTIC, ",b", 'p\n""', []),
            ("between the sides of a jump", "sas", jump, ",a", "p\n0.4", []),
            ("a steep line", "sas", model(table=[(1.0000001, 0.9), *JUMP[1:]], constant=5e-8), ",a", "p\n0.750001", None),
            ("a text that is not 0", "sas", model(None, categorical(2, "c", "01", [0, 1, 2])), ",x", "s\n1", "c read as another value"),
            ("near a jump, but not by rounding", "sas", model(table=JUMP, constant=-1e-7), ",a", "p\n0.6", []),
            ("a backslash and a zero", "sql", model(None, categorical(2, "c", ["a\\0"], [0, 1])), ",a0", "s\n1", "c read as another value"),
            ("a boolean's digits", "sas", model(None, boolean(NO_YES, (0, 1, 1.1234567))), "1,yes", "s\n3.12346", ["boolean-digits"]),
            ("an empty cell is not NaN", "html", model(None, five, table=TABLE, kind="T"), ",a", 'p\n""', []),
            ("a cause that holds for all columns", "sql", model(*y[1:3], boolean(NO_YES, (0, 3, 2), number=3, name="d"), terms=three),
             "x,x,yes", "s\n5", ["boolean-numbers"]),
            ("a cause that does not depend on the server", "sql", model(categorical(1, "c1", "x", [0, 3]), y[2], terms=three[:2]), "X,x", "s\n4", ["value-twice"]),
            ("some of many columns", "sql", model(*x, terms=[(i, 1) for i in range(1, 15)]), ",".join(14 * "X"), "s\n18", ["capitals"]),
            ("another blank, and not another name", "python", model(categorical(1, "a b", "xy", [0, 1, 3]), categorical(2, "a.b", "x", [0, 10])),
             "\u00a0x,y", "s\n1", ["other-blanks"]),
            ("either of two findings of a cell", "python", model(numeric(1, "O'B", [1, 2], [0, 1, 2, 3]), missing={"O'B": [1234567]}),
             "1234567,a", "s\n4", ["missing-codes-digits", "missing-codes-name"]),
            ("one column read as missing, or one of four as another value", "sas", model(*same, numeric(5, "v", [1, 2], [3, 1, 2, 3]),
             terms=[(i, 1) for i in range(1, 6)]), "1,1,1,1,1", "s\n11", "v read as missing"),
            ("any of four columns", "sas", model(*same, terms=[*three, (4, 1)]), "1,1,1,1", "s\n9", []),
        ]:
            with self.subTest(name):
                self.write("m.ModelXml", text)
                self.write("rows.csv", ",".join(dict.fromkeys(re.findall(r'field="([^"]*)"', text))) + f"\n{cells}\n", "utf-8")
                found = self.compare("m.ModelXml", "rows.csv", self.write("results.csv", result), target,
                                     "--probability" if result[0] == "p" else "--score", result[0], *more)
                reported = None if found["equal"] else next(iter(found["blamed"]), None) or next((
                    cause["cause"] for cause in found["causes"]), None) or sorted(found["explained"])
                self.assertEqual(reported, expected)

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
        reference = scorer.load(self.folder / "model.ModelXml")
        expected = {i: reference.prediction({"a b": a, "c": c, "d": d}) for i, (a, c, d) in enumerate(rows)}
        different = sum(abs(p - expected[int(i)]) > 1e-9 for i, p in results)
        self.assertEqual((found["equal"], found["explainedRows"], found["unexplained"]), (75 - different, different, 0))
        self.assertEqual(set(found["explained"]), {"missing-codes-name", "boolean-blanks", "lowest-segment", "lowest-point"})


if __name__ == "__main__":
    unittest.main()
