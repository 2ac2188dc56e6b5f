"""The Python package: compares the Python classes generated from its documents with their sources."""

import re
import shutil
import sqlite3
import string
import subprocess
import unittest
from unittest import mock

import numpy as np
import pandas as pd
from sklearn import base, compose, datasets, impute, linear_model, naive_bayes, preprocessing
from sklearn.model_selection import GridSearchCV
from sklearn.pipeline import make_pipeline

from sql_program import SqlProgramTest, configuration
from support import BANNER, EXAMPLES, TESTS, categorical, document, model, numeric
import score  # support sets the path to it and to scorewright
from scorewright import Scorecard, doubles, logistic_table
from scorewright.document import names

APPLICANTS = pd.read_csv(EXAMPLES / "credit/applicants.csv", keep_default_na=False,
                         na_values={"Home": "NA", "Income": "NA"})


def neighbours(bound):
    """A bound, and the nearest doubles and numbers of 16 digits on both sides."""
    step = 10.0 ** (np.floor(np.log10(abs(bound) or 1)) - 15)
    return {bound, *np.nextafter(bound, [-np.inf, np.inf]), *(float(f"{bound + k * step:.16g}") for k in (-1, 1))}


class PackageTest(SqlProgramTest):
    def scored(self, card, frame):
        """The card's scores of a frame, which the generated Python class must match."""
        card.write(self.folder / "card.ModelXml")
        self.assertEqual(self.run_program("-p", "card.ModelXml", "card.py", "Card"), (0, ""))
        exec(self.read("card.py"), names := {})
        result = card.score(frame).dropna(axis="columns")
        np.testing.assert_allclose(names["QORVModel_Card"]().apply(frame), result, rtol=0, atol=1e-12)
        return result

    def test_bounds(self):
        random = np.random.default_rng(1)
        short = [[0.3, 1.5, 18, 1000.25, 1e6], [-2.5, -0.1, 0, 0.1], [7], [0], [-3.25, 1e-7, 8.123456789012345]]
        for bounds in short + [sorted(random.normal(0, 10.0 ** k, 6)) for k in range(-2, 4)]:
            values = np.array(sorted({-1e300, 1e300, -np.inf}.union(*map(neighbours, bounds))))
            frame = pd.DataFrame({"v": values, "c": ""})
            for closed, side in [("left", "right"), ("right", "left")]:
                (card := Scorecard()).add_categorical("c", {"x": 1})
                card.add_numeric("v", bounds, np.arange(len(bounds) + 1), closed=closed, missing=-1)
                right = self.scored(card, frame).score == np.searchsorted(bounds, values, side)
                is_exact = np.array([float(f"{v:.16g}") == v and not 0 < abs(v) < 1e-12 for v in values])
                with self.subTest(bounds=bounds, closed=closed, wrong=values[~right]):
                    self.assertTrue(right[np.isin(values, bounds)].all())
                    self.assertFalse([b for b in card.recodings[1].bounds if 0 < abs(b) < 1e-12])  # SQL writes 0
                    self.assertTrue((right | (~is_exact if closed == "left" else bounds not in short)).all())

    def test_encodings(self):
        """Scorecard.read accepts the program's encodings, and finds missing codes under each target's name."""
        text = document([numeric(1, "a b-c", [1, 2], [0, 1, 2, 3]), categorical(2, "c", ["é"], [0, 1])], [(1, 1), (2, 1)], 0)
        for name in ["a b-c", "a_b-c", "a_b_c", "A_B_C"]:
            named = text.replace("</DataDictionary>", f'<DataField name="{name}"><Missing>{doubles([9])}</Missing></DataField>'
                                 "</DataDictionary>")
            for encoding in ["utf-8-sig", "utf-16", "utf-16-le", "cp1252"]:
                with self.subTest(name=name, encoding=encoding):
                    card = Scorecard.read(self.folder / self.write("m.ModelXml", named, encoding))
                    self.assertEqual((card.recodings[1].values[0][0], card.missing), ("é", {"a b-c": [9]}))

    def test_logistic_table(self):
        for largest, relative in [(0.1, 0), (0.01, 0), (1e-3, 0), (1e-5, 0), (None, 0.1), (None, 1e-3), (None, 1e-5)]:
            for lowest, highest in [(-1e6, 1e6), (-3.1, 2.2), (3, 20), (-9, -4)]:
                s = np.linspace(max(lowest, -30), min(highest, 30), 100001)
                curve = 1 / (1 + np.exp(-s))
                error = largest or np.maximum(1e-12, relative / (1 + np.exp(abs(s))))
                for offset, factor in [(0, -1), (500, 72.5)]:
                    points = sorted(offset - factor * np.array([lowest, highest]))
                    scale = {} if factor < 0 else {"offset": offset, "factor": factor}
                    scores, probabilities = logistic_table(largest, *points, relative_error=relative, **scale)
                    found = np.interp(offset - factor * s, scores[::-1], probabilities[::-1])
                    self.assertLessEqual((abs(found - curve) / error).max(), 1)
                    self.assertTrue((np.diff(scores) < 0).all() and scores[-2] < points[0])
                    # A parabola of curvature c leaves a band of half-width e after sqrt(16 e / c).
                    lines = np.sqrt(abs(curve * (1 - curve) * (1 - 2 * curve)) / 16 / error).mean() * (s[-1] - s[0])
                    self.assertLessEqual(len(scores) - 3, 1.1 * lines + 1)

    def test_pipelines(self):
        regression = linear_model.LogisticRegression(max_iter=999)
        rows = APPLICANTS.assign(Records=APPLICANTS.Records == "yes", Old=APPLICANTS.Age > 50)
        classes = np.where(APPLICANTS.Status == "bad", "schlecht", "gut")
        for strategy, dtype, last, options in [
                ("quantile", None, regression, {"handle_unknown": "ignore"}),
                ("uniform", np.float32, linear_model.LogisticRegressionCV(Cs=2, cv=2), {"drop": "first"}),
                ("quantile", None, regression, {"min_frequency": 500, "handle_unknown": "infrequent_if_exist"}),
                ("kmeans", None, regression, {"max_categories": 3, "drop": "first", "handle_unknown": "ignore"})]:
            lists = preprocessing.OneHotEncoder(**options)
            bins = preprocessing.KBinsDiscretizer(6, encode="onehot", strategy=strategy, dtype=dtype)
            filled = make_pipeline(impute.SimpleImputer(strategy="median"), "passthrough", bins)
            columns = [(bins, ["Age", "Amount"]), (lists, ["Home", "Job", "Records"]), (filled, ["Income"]),
                       ("passthrough", ["Old"])]
            transformer = compose.make_column_transformer(*columns)
            transformer.set_params(transformer_weights={"onehotencoder": 2.5, "pipeline": 0.5})
            pipeline = make_pipeline(transformer, "passthrough", last).fit(rows, classes)
            if options == {"handle_unknown": "ignore"}:
                with self.assertRaisesRegex(ValueError, "'Home'.*unlisted_as_missing"):
                    Scorecard.from_sklearn(pipeline, target="schlecht", data=rows)
            card = Scorecard.from_sklearn(pipeline, target="schlecht", unlisted_as_missing=True, data=rows)
            result, right = card.score(rows), pipeline.predict_proba(rows)
            np.testing.assert_allclose(result.score, pipeline.decision_function(rows), rtol=0, atol=1e-12)
            self.assertLess((abs(result.probability - right[:, 1]) / right.min(axis=1)).max(), 1e-3)
            texts = rows[::9].fillna({"Home": ""}).astype({"Records": str, "Old": str})
            pd.testing.assert_frame_equal(self.scored(card, texts), result[::9])
        with self.assertRaisesRegex(ValueError, "pandas' type boolean"):
            card.score(rows.assign(Home=rows.Records.astype("boolean")))

        def fitted(step, columns=("Age",), last=regression, classes=classes, rows=rows):
            bins_of = compose.make_column_transformer((step, [*columns]))
            return make_pipeline(bins_of, base.clone(last)).fit(rows, classes)

        search = GridSearchCV(make_pipeline(regression), {})
        for rejected, message in [
                (fitted("passthrough"), "'Age'.*raw numbers"),
                (fitted(preprocessing.StandardScaler()), "'Age'.*StandardScaler"),
                (regression, "two steps"), (search, "best_estimator_"),
                (make_pipeline(compose.ColumnTransformer([]), linear_model.LogisticRegression()), "not fitted"),
                (fitted(bins, last=naive_bayes.BernoulliNB()), "BernoulliNB"),
                (fitted(bins, classes=rows.Job), "several"),
                (fitted(bins, [0], rows=rows[["Age"]].to_numpy()), "without names"),
                (fitted(bins, classes=classes[::-1] == "gut"), "True.*not of 'False'")]:
            with self.subTest(message), self.assertRaisesRegex(ValueError, message):
                Scorecard.from_sklearn(rejected, target="False")

    def test_bounds_between_values(self):
        """Values of 17 digits score as in the pipeline, even after pandas has misread their last digits."""
        rows, y = datasets.load_diabetes(return_X_y=True, as_frame=True)
        bins = preprocessing.KBinsDiscretizer(6, encode="onehot", strategy="quantile")
        columns = compose.make_column_transformer((bins, [*rows.drop(columns="sex")]))
        pipeline = make_pipeline(columns, linear_model.LogisticRegression()).fit(rows, y > 150)
        card = Scorecard.from_sklearn(pipeline, target="y", data=rows)
        card.add_categorical("c", {"x": 1})  # without a list, the class would need a repair
        rows.to_csv(self.folder / "rows.csv")
        read = pd.read_csv(self.folder / "rows.csv", index_col=0)
        self.assertTrue((read != rows).any(axis=None))
        for frame in rows, read:
            np.testing.assert_allclose(self.scored(card, frame.assign(c="")).score, pipeline.decision_function(rows))
        ages = [17, 17.2, 18.3, 40, np.nan]
        for closed, bounds, expected in [("left", [18, 40], [18, 30]), ("right", [17, 18.2], [17.1, 18])]:
            (card := Scorecard()).add_numeric("age", bounds, [1, 2, 3], closed=closed, data=ages)
            self.assertEqual(card.recodings[0].bounds, expected)
        with self.assertRaisesRegex(ValueError, "'age'.* separates 0.1 and 0.10000000000000002"):
            card.add_numeric("age", [0.1], [1, 2], closed="right", data=[0.1, np.nextafter(0.1, 1)])

    def test_tables(self):
        """One card, as each library prints it. Arrays lose their commas in a CSV file."""
        bins = ["(-inf, 25.50)", "[25.50, 40.00)", "[40.00, inf)", "Special", "Missing",
                np.array(["owner", "it's"], object), np.array(["rent"], object), "Special", "Missing"]
        points = [4, 1, -3, 0, 0, -5, 4, 0, 0]
        summary = pd.DataFrame({"Variable": ["age"] * 5 + ["home"] * 4, "Bin": bins, "Points": points})
        summary.to_csv(self.folder / "bins.csv", index=False)
        weights = summary.assign(WoE=np.divide(points, 2), Coefficient=2.0)
        card = {"basepoints": pd.DataFrame({"variable": "basepoints", "bin": [np.nan], "points": [-1]}),
                "age": pd.DataFrame({"variable": "age", "bin": ["[-inf,25.5)", "[25.5,40.0)", "[40.0,inf)"],
                                     "points": points[:3]}),
                "home": pd.DataFrame({"variable": "home", "bin": ["owner%,%it's", "missing%,%?", "rent"],
                                      "points": [-5, 0, 4]})}
        scores = {"age": {"[-inf ~ 25.5)": 4, "[25.5 ~ 40)": 1, "[40 ~ inf)": -3, "nan": 0},
                  "home": {"owner,it's": -5, "rent": 4, "else": 0}}
        named = pd.DataFrame([(key, *item) for key, part in scores.items() for item in part.items()], columns=[*"abc"])
        ends = pd.DataFrame({"LOWER": [-np.inf, 25.5, 40, None], "upper": [25.5, 40, None, None]})
        ends = ends.assign(variable="age", points=[4, 1, -3, 0])
        people = pd.DataFrame({"age": [25.4, 25.5, 40, None], "home": ["rent", "it's", "tent", None]})
        for table, options in [
                (summary, {"constant": -1}), (pd.read_csv(self.folder / "bins.csv"), {"constant": -1}),
                (weights, {"score": "WOE", "coefficient": "coefficient", "constant": -1}), (card, {}),
                (pd.concat(card), {}), (scores, {"constant": -1}),
                (named, {"variable": "a", "bin": "b", "score": "c", "separator": ",", "constant": -1})]:
            found = Scorecard.from_table(table, target="bad", offset=20, factor=-7, **options).score(people)
            self.assertEqual([*found.score], [7, -5, -4, -1])
            np.testing.assert_allclose(found.probability, 1 / (1 + np.exp((20 - found.score) / 7)), rtol=1e-3)
        self.assertEqual([*Scorecard.from_table(ends, target="bad").score(people).score], [4, 1, -3, 0])
        exact = Scorecard.from_table(summary, target="bad", bounds={"age": [25.504, 40]}, special={"home": ["?"]})
        self.assertEqual((exact.recodings[0].bounds[0], len(exact.recodings[1].values)), (25.504, 4))
        other = summary.assign(Points=[4, 1, -3, 0, 2, -5, 4, 0, 0])
        joined, cut = ["(-inf, inf) ∪ [1, 2)", *bins[1:]], [*bins[:5], "['a' ... 'b']", *bins[6:]]
        for message, table in [("row 1, column 'age'.*inf. ∪", summary.assign(Bin=joined)),
                               (r"row 6, column 'home'.*\.\.\.", summary.assign(Bin=cut)),
                               ("'age'.*without a gap", summary.drop(index=1)), ("special=.'age'", other),
                               ("no column 'bin'", summary.drop(columns="Bin"))]:
            with self.subTest(message), self.assertRaisesRegex(ValueError, message):
                Scorecard.from_table(table, target="bad")

    def test_documents(self):
        """Documents score as by the independent scorer, even after the package has rewritten them."""
        for path in EXAMPLES.glob("*/*.ModelXml"):
            text = pd.read_csv(next(path.parent.glob("*.csv")), dtype=str).fillna("")[:400]
            (card := Scorecard.read(path)).write(self.folder / "again.ModelXml")
            expected = [*map(score.load(path).score, text.to_dict("records"))]
            for one in [card, Scorecard.read(self.folder / "again.ModelXml")]:
                self.assertEqual([*one.score(text).score], expected)

    def test_names(self):
        """The package knows each target's form of a name, under which that target finds the missing codes."""
        column = "a 1" + string.punctuation
        card = Scorecard(missing={column: [77, 88]})
        card.add_numeric(column, [1, 2], [0, 1, 2], closed="left")
        card.write(self.folder / "model.ModelXml")
        self.assertEqual(self.run_configuration(configuration(dbType="sqlserver"))[0], 0)
        outputs = ["out", "m.sas", "m.py", "m.bas"]
        for option, output in zip("ape", outputs[1:]):
            self.run_program("-" + option, "model.ModelXml", output)
        for output, name in zip(outputs, names(column)):
            code = self.read(output)
            with self.subTest(output):
                self.assertIn(f"[{name}]" if output == "out" else f"  {name}  <->  R0_{name[:28]}", code)
                self.assertIn("=77", code.replace(" ", ""))

    def test_faulty_documents(self):
        """A document that lacks an attribute or the end of an array is reported by name, unless no score needs what is
        missing; other errors are not attributed to it."""
        text = (EXAMPLES / "claims/claims.ModelXml").read_bytes().decode("utf-16")
        path, reported = self.folder / "model.ModelXml", set()
        for place in re.finditer(r' (\w+)="[^"]*"|(?<=[\w=]{8})</(\w+)>', text):
            faulty = text[:place.start()] + text[place.end():] if place[1] else \
                text[:place.start() - 8] + text[place.start():]
            path.write_text(faulty, "utf-8-sig")
            try:
                Scorecard.read(path)
            except ValueError as error:
                self.assertRegex(str(error), f"^{re.escape(str(path))}: .")
                reported.add(place[1] or place[2])
        self.assertEqual(reported, {*"field name type tname val version x y indexes betas Missing".split()})
        with mock.patch.object(Scorecard, "add", side_effect=TypeError), self.assertRaises(TypeError):
            Scorecard.read(EXAMPLES / "claims/claims.ModelXml")

    def test_avoided_departures(self):
        """Lists of five become lists of six, and no row gets the lowest segment's 0."""
        card = Scorecard("y", table=([43, -1], [0.9, 0.2]))
        card.add_categorical("city", dict(zip("abcde", range(5))), other=-2)
        card.add_categorical("code", dict(zip([1.0, 2.0, 3.0, 4.0, 5.0], range(5))), other=-2)
        card.add_boolean("flag", 10, 20, missing=30, spellings=(["n"], ["y"]))
        columns = {"city": "abe ?", "code": "12 45", "flag": "nyyn?"}
        result = self.scored(card, pd.DataFrame({name: [*cells] for name, cells in columns.items()}, index=[*"vwxyz"]))
        self.assertEqual(result.score.to_dict(), {"v": 10, "w": 22, "x": 22, "y": 11, "z": 32})
        city, code, _ = Scorecard.read(self.folder / "card.ModelXml").recodings
        self.assertEqual((city.values[5][0], city.scores[6], code.values[5][0], code.scores[6]), ("(other)", -2, "99", -2))

    def test_texts(self):
        """Cells and labels are converted to the texts of a document."""
        (card := Scorecard("y")).add_categorical("c", {True: 1, 2.0: 2, " 2.5 ": 3}, label=" a\n\tb ")
        card.write(self.folder / "card.ModelXml")
        c, = Scorecard.read(self.folder / "card.ModelXml").recodings
        self.assertEqual(([value for value, _ in c.values], c.label), (["True", "2", "2.5"], "a b"))
        for cells, scores in [([True, 2, 2.0, "2", 2.5], [1, 2, 2, 2, 3]), ([1, "1", False], [0, 0, 0])]:
            result = card.score(pd.DataFrame({"c": pd.Series(cells, dtype=object)})).score
            self.assertEqual([*result], scores)

    def repaired(self, *options):
        """The repaired SAS, Python and SQL code of model.ModelXml, which a second repair must not change."""
        self.assertEqual(self.run_program("-a", "model.ModelXml", "m.sas")[0], 0)
        self.assertEqual(self.run_program("-p", "model.ModelXml", "m.py")[0], 0)
        settings = {"dbType": "mysql", "useTmpTable": "0", "createPredictionTable": "1", "boolsAreNumbers": "0"}
        self.assertEqual(self.run_configuration(configuration(outputFile="m.sql", **settings))[0], 0)
        scripts, texts = ["m.sas", "m.py", "m.sql"], []
        for _ in range(2):
            repair = ["/usr/bin/python3", "-B", EXAMPLES / "repair.py", *options, "model.ModelXml", *scripts]
            subprocess.run(repair, cwd=self.folder, check=True)
            texts.append([*map(self.read, scripts)])
        self.assertEqual(*texts)
        return texts[0]

    def test_repaired_tariff(self):
        card = Scorecard.read(EXAMPLES / "claims/claims.ModelXml")
        card.write(self.folder / "model.ModelXml")
        sas, module, sql = self.repaired()
        self.assertNotRegex(sas, r"(?m)^(\|\||\))")
        self.assertRegex(sql, r"""(?s)\("vehicle age"=99\) OR .*='driver''s school'""")
        texts = dict.fromkeys(["region", "use", "garage"], "")
        policies = pd.read_csv(EXAMPLES / "claims/claims.csv", dtype=dict.fromkeys(texts, str)).fillna(texts)
        exec(module, names := {})
        found = names["QORVModel_model"]().apply(policies)
        np.testing.assert_allclose(found.claim_cost_prediction, card.score(policies).score, atol=1e-9)

    def test_repaired_oddities(self):
        """A logistic form, an array that is too long, equal numbers, and values that a language escapes."""
        card = Scorecard("y", constant=0.5, missing={"n": [-1, 99.25]})
        values = ["it's", "tail\\", "a\\'b", "\\\\", "c\\n", 'say "no"', "\\\""]
        card.add_categorical("c", {value: i + 1 for i, value in enumerate(values)})
        card.add_numeric("n", [1, 2], [10, 20, 30], closed="document", missing=90)
        frame = pd.DataFrame({"c": values, "n": [0, 1.5, 3, -1, 99.25, np.nan, 2]})
        score = card.score(frame).score
        card.write(self.folder / "model.ModelXml")
        text = (self.folder / "model.ModelXml").read_text("utf-16")
        text = text.replace("<RegressionModel", "<RegressionModel normalizationMethod='softmax'")
        text = text.replace(doubles([90, 10, 20, 30]), doubles([90, 10, 20, 30, 40]))
        zero = re.search(r'(?s)<Model name="V2".*?<y>', text)[0].replace("V2", "V1") + doubles([0] * 4) + "</y></Model>"
        self.write("model.ModelXml", text.replace("<UnivModels>", "<UnivModels>" + zero), "utf-16")
        sas, module, sql = self.repaired()
        self.assertEqual(sas.count("if (missing(n) or n=-1 or n=99.25) then R"), 2)
        self.assertIn("y_proba=1/(1+exp(-y_score));", sas)
        exec(module, names := {})
        found = names["QORVModel_model"]().apply(frame)
        np.testing.assert_allclose(found, np.transpose([score, 1 / (1 + np.exp(-score))]), atol=1e-12)
        frame.assign(id=frame.index).to_sql("src", database := sqlite3.connect(":memory:"))
        database.executescript(sql)
        predictions = database.execute("select * from Preds order by cast(id as integer)").fetchall()
        self.assertEqual([value for _, value in predictions], [*score])
        self.assertIn(r"(c))='a\\\'b' THEN", self.repaired("--backslash-escapes")[2])

    def test_repaired_without_lists(self):
        card = Scorecard("y")
        card.add_numeric("n", [1, 2], [10, 20, 30], closed="document")
        card.write(self.folder / "model.ModelXml")
        exec(self.repaired()[1], names := {})
        self.assertEqual([*names["QORVModel_model"]().apply(pd.DataFrame({"n": [0, 3]})).y_prediction], [10, 30])
        repair = ["/usr/bin/python3", "-B", EXAMPLES / "repair.py", EXAMPLES / "claims/claims.ModelXml", "m.sql"]
        run = subprocess.run(repair, cwd=self.folder, capture_output=True, encoding="utf-8")
        self.assertEqual((run.returncode, run.stderr), (1, "m.sql: column 'region' has no list here. Pass the file's own model\n"))

    def test_rejected_input(self):
        def numeric(card, bounds=(1, 2), scores=(1, 2, 3), column="x y", number=None):
            card.add_numeric(column, bounds, scores, closed="left", number=number)

        close = [1.5, np.nextafter(1.5, 2), np.nextafter(np.nextafter(1.5, 2), 2)]
        for message, changes in [
                ("'x y'.*increase", lambda card: numeric(card, close, range(4))),
                ("'x y'.*n finite bounds and n . 1 scores", lambda card: numeric(card, scores=(1, 2))),
                ("'x y'.*finite", lambda card: numeric(card, scores=(1, 2, np.nan))),
                ("'x y'.*number 1 is used twice", lambda card: numeric(card, number=1)),
                ("'x y' and 'X.Y'", lambda card: numeric(card, column="X.Y")),
                ("'c'.*NaN cannot be a value", lambda card: card.add_categorical("c", {np.nan: 1})),
                ("'c' has no .*values", lambda card: card.add_categorical("c", {})),
                ("no name", lambda card: numeric(card, column="")),
                ("no recodings", {"recodings": []}),
                ("'c'.*twice", lambda card: card.add_categorical("c", {"1": 0, 1: 2})),
                ("'b'.*spellings", lambda card: card.add_boolean("b", 0, 1, spellings=(["n"], ["n"]))),
                ("'c'.*blanks", lambda card: card.add("c", "MapValues", [0, 1], values=[(" a", "A")])),
                ("'x y' is missing", lambda card: card.score(pd.DataFrame({"x_y": [1]}))),
                ("largest_error must", lambda card: logistic_table(0.201)),
                ("largest_error must", lambda card: logistic_table(9e-8)),
                ("logistic form", lambda card: Scorecard.read(self.folder / self.write("m.ModelXml", model(method="softmax")))),
                ("'x y'.*not numbers.*many", lambda card: card.score(pd.DataFrame({"x y": ["1", "many"]}))),
                ("table.*decreasing", {"table": ([1, 2], [0.5, 0.4])}),
                ("table.*as many", {"table": ([2, 1], [0.5])}),
                ("not finite", {"constant": np.inf}),
                ("'x y'.*6 digits", {"missing": {"x y": [1234567]}})]:
            numeric(card := Scorecard("y"))
            with self.subTest(message), self.assertRaisesRegex(ValueError, message):
                changes(card) if callable(changes) else vars(card).update(changes)
                card.write(self.folder / "never")
        self.assertFalse((self.folder / "never").exists())

    def test_build(self):
        """The package builds without a network, in the program's version without leading zeros, and leaves
        nothing in its source."""
        shutil.copytree(TESTS.parent / "python", self.folder / "python", ignore=shutil.ignore_patterns("__pycache__"))
        files = set(self.folder.rglob("*"))
        subprocess.run([*"/usr/bin/python3 -m pip install --no-index --no-deps --no-build-isolation --target".split(),
                        self.folder / "to", self.folder / "python"], check=True, capture_output=True)
        self.assertTrue((self.folder / "to/scorewright/py.typed").exists())
        version = ".".join(str(int(part)) for part in re.search(r"v([\d.]+)", BANNER)[1].split("."))
        self.assertIn(f"scorewright-{version}.dist-info", [path.name for path in (self.folder / "to").iterdir()])
        shutil.rmtree(self.folder / "to")
        self.assertEqual(set(self.folder.rglob("*")), files)


if __name__ == "__main__":
    unittest.main()
