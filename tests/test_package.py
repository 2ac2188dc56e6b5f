"""The Python package: what it writes is run as the program's Python class, and held against what it was made from."""

import re
import shutil
import string
import subprocess
import unittest
from unittest import mock

import numpy as np
import pandas as pd
from sklearn import compose, impute, linear_model, preprocessing
from sklearn.pipeline import make_pipeline

from sql_program import SqlProgramTest, configuration
from support import BANNER, EXAMPLES, TESTS, categorical, document, model, numeric
import score  # support has told where it is, and the next
from scorewright import Scorecard, doubles, logistic_table
from scorewright.document import names

APPLICANTS = pd.read_csv(EXAMPLES / "credit/applicants.csv", keep_default_na=False,
                         na_values={"Home": "NA", "Income": "NA"})


def neighbours(bound):
    """A bound, the doubles beside it, and numbers of 16 digits beside it."""
    step = 10.0 ** (np.floor(np.log10(abs(bound) or 1)) - 15)
    return {bound, *np.nextafter(bound, [-np.inf, np.inf]), *(float(f"{bound + k * step:.16g}") for k in (-1, 1))}


class PackageTest(SqlProgramTest):
    def scored(self, card, frame):
        """A frame's scores by the card, with which the program's class for it must agree."""
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
                told = np.array([float(f"{v:.16g}") == v and not 0 < abs(v) < 1e-12 for v in values])
                with self.subTest(bounds=bounds, closed=closed, wrong=values[~right]):
                    self.assertTrue(right[np.isin(values, bounds)].all())
                    self.assertFalse([b for b in card.recodings[1].bounds if 0 < abs(b) < 1e-12])  # SQL writes 0
                    self.assertTrue((right | (closed == "left") & ~told).all() or bounds not in short)

    def test_encodings(self):
        """A document is read in the encodings that the program reads, and its missing codes under any target's name."""
        text = document([numeric(1, "a b-c", [1, 2], [0, 1, 2, 3]), categorical(2, "c", ["é"], [0, 1])], [(1, 1), (2, 1)], 0)
        for name in ["a b-c", "a_b-c", "a_b_c", "A_B_C"]:
            named = text.replace("</DataDictionary>", f'<DataField name="{name}"><Missing>{doubles([9])}</Missing></DataField>'
                                 "</DataDictionary>")
            for encoding in ["utf-8-sig", "utf-16", "utf-16-le", "cp1252"]:
                with self.subTest(name=name, encoding=encoding):
                    card = Scorecard.read(self.folder / self.write("m.ModelXml", named, encoding))
                    self.assertEqual((card.recodings[1].values[0][0], card.missing), ("é", {"a b-c": [9]}))

    def test_logistic_table(self):
        for error in [0.1, 0.01, 1e-3, 1e-5]:
            for lowest, highest in [(-1e6, 1e6), (-3.1, 2.2), (3, 20)]:
                scores, probabilities = logistic_table(error, lowest, highest)
                s = np.linspace(max(lowest, -30), min(highest, 30), 100001)
                curve = 1 / (1 + np.exp(-s))
                self.assertLessEqual(abs(np.interp(s, scores[::-1], probabilities[::-1]) - curve).max(), error)
                self.assertLess(scores[-2], lowest)
                # A parabola of curvature c leaves a band of half-width e after sqrt(16 e / c).
                lines = np.sqrt(abs(curve * (1 - curve) * (1 - 2 * curve)) / 16 / error).mean() * (s[-1] - s[0])
                self.assertLessEqual(len(scores) - 3, lines + 1)

    def test_pipelines(self):
        rows, bad, regression = APPLICANTS, APPLICANTS.Status == "bad", linear_model.LogisticRegression(max_iter=999)
        for strategy, drop, unknown in [("quantile", None, "ignore"), ("uniform", "first", "error"),
                                        ("kmeans", "if_binary", "ignore")]:
            lists = preprocessing.OneHotEncoder(drop=drop, handle_unknown=unknown)
            bins = preprocessing.KBinsDiscretizer(6, encode="onehot", strategy=strategy)
            filled = make_pipeline(impute.SimpleImputer(strategy="median"), bins)
            columns = (bins, ["Age", "Amount"]), (lists, ["Home", "Job"]), (filled, ["Income"])
            transformer = compose.make_column_transformer(*columns)
            transformer.set_params(transformer_weights={"onehotencoder": 2.5, "pipeline": 0.5})
            pipeline = make_pipeline(transformer, regression).fit(rows, bad)
            if unknown == "ignore":
                with self.assertRaisesRegex(ValueError, "'Home'.*unlisted_as_missing"):
                    Scorecard.from_sklearn(pipeline, target="bad")
            card = Scorecard.from_sklearn(pipeline, target="bad", largest_error=1e-4, unlisted_as_missing=True)
            result = card.score(rows)
            np.testing.assert_allclose(result.score, pipeline.decision_function(rows), rtol=0, atol=1e-12)
            np.testing.assert_allclose(result.probability, pipeline.predict_proba(rows)[:, 1], rtol=0, atol=1e-4)
            pd.testing.assert_frame_equal(self.scored(card, rows[::9].fillna({"Home": ""})), result[::9])
        raw = make_pipeline(compose.make_column_transformer(("passthrough", ["Age"])), regression).fit(rows, bad)
        for refused, message in [(raw, "'Age'.*cannot be expressed"), (raw[:1], "fitted"), (regression, "fitted")]:
            with self.assertRaisesRegex(ValueError, message):
                Scorecard.from_sklearn(refused, target="bad")

    def test_documents(self):
        """Documents that are read score as the independent scorer does, also when they have been written again."""
        for path in EXAMPLES.glob("*/*.ModelXml"):
            text = pd.read_csv(next(path.parent.glob("*.csv")), dtype=str).fillna("")[:400]
            (card := Scorecard.read(path)).write(self.folder / "again.ModelXml")
            expected = [*map(score.load(path).score, text.to_dict("records"))]
            for one in [card, Scorecard.read(self.folder / "again.ModelXml")]:
                self.assertEqual([*one.score(text).score], expected)

    def test_names(self):
        """The package knows what each target makes of a name, and each finds the missing codes under its own."""
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
        missing; other errors are not blamed on it."""
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

    def test_mends(self):
        """Lists of five become lists of six, and no row has the lowest segment's 0."""
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
        """Of cells and labels, as they stand in a document."""
        (card := Scorecard("y")).add_categorical("c", {True: 1, 2.0: 2, " 2.5 ": 3}, label=" a\n\tb ")
        card.write(self.folder / "card.ModelXml")
        c, = Scorecard.read(self.folder / "card.ModelXml").recodings
        self.assertEqual(([value for value, _ in c.values], c.label), (["True", "2", "2.5"], "a b"))
        for cells, scores in [([True, 2, 2.0, "2", 2.5], [1, 2, 2, 2, 3]), ([1, "1", False], [0, 0, 0])]:
            result = card.score(pd.DataFrame({"c": pd.Series(cells, dtype=object)})).score
            self.assertEqual([*result], scores)

    def test_repairs(self):
        """What repair.py makes of the tariff's code scores as the model says, also when it is repaired again."""
        card = Scorecard.read(EXAMPLES / "claims/claims.ModelXml")
        card.write(self.folder / "model.ModelXml")
        self.run_program("-a", "model.ModelXml", "m.sas")
        self.run_program("-p", "model.ModelXml", "m.py", "M")
        self.run_configuration(configuration(outputFile="m.sql"))
        scripts, repaired = ["m.sas", "m.py", "m.sql"], []
        for _ in range(2):
            repair = ["/usr/bin/python3", "-B", EXAMPLES / "repair.py", "model.ModelXml", *scripts]
            subprocess.run(repair, cwd=self.folder, check=True)
            repaired.append([*map(self.read, scripts)])
        self.assertEqual(*repaired)
        sas, module, sql = repaired[0]
        self.assertNotRegex(sas, r"(?m)^(\|\||\))")
        self.assertRegex(sql, r"""(?s)\("vehicle age"=99\) OR .*='driver''s school'""")
        texts = dict.fromkeys(["region", "use", "garage"], "")
        policies = pd.read_csv(EXAMPLES / "claims/claims.csv", dtype=dict.fromkeys(texts, str)).fillna(texts)
        exec(module, names := {})
        found = names["QORVModel_M"]().apply(policies)
        np.testing.assert_allclose(found.claim_cost_prediction, card.score(policies).score, atol=1e-9)

    def test_refusals(self):
        def numeric(card, bounds=(1, 2), scores=(1, 2, 3), column="x y", number=None):
            card.add_numeric(column, bounds, scores, closed="left", number=number)

        close = [1.5, np.nextafter(1.5, 2), np.nextafter(np.nextafter(1.5, 2), 2)]
        for message, changes in [
                ("'x y'.*increase", lambda card: numeric(card, close, range(4))),
                ("'x y'.*n finite bounds and n . 1 scores", lambda card: numeric(card, scores=(1, 2))),
                ("'x y'.*finite", lambda card: numeric(card, scores=(1, 2, np.nan))),
                ("'x y'.*number 1 is given twice", lambda card: numeric(card, number=1)),
                ("'x y' and 'X.Y'", lambda card: numeric(card, column="X.Y")),
                ("'c'.*twice", lambda card: card.add_categorical("c", {"1": 0, 1: 2})),
                ("'b'.*spellings", lambda card: card.add_boolean("b", 0, 1, spellings=(["n"], ["n"]))),
                ("'c'.*blanks", lambda card: card.add("c", "MapValues", [0, 1], values=[(" a", "A")])),
                ("'x y' is missing", lambda card: card.score(pd.DataFrame({"x_y": [1]}))),
                ("error must be", lambda card: logistic_table(0.201)),
                ("error must be", lambda card: logistic_table(9e-8)),
                ("logistic form", lambda card: Scorecard.read(self.folder / self.write("m.ModelXml", model(method="softmax")))),
                ("'x y'.*no number.*many", lambda card: card.score(pd.DataFrame({"x y": ["1", "many"]}))),
                ("table.*falling", {"table": ([1, 2], [0.5, 0.4])}),
                ("table.*as many", {"table": ([2, 1], [0.5])}),
                ("not finite", {"constant": np.inf}),
                ("'x y'.*6 digits", {"missing": {"x y": [1234567]}})]:
            numeric(card := Scorecard("y"))
            with self.subTest(message), self.assertRaisesRegex(ValueError, message):
                changes(card) if callable(changes) else vars(card).update(changes)
                card.write(self.folder / "never")
        self.assertFalse((self.folder / "never").exists())

    def test_build(self):
        """The package builds without a network, in the program's version, of which Python drops leading zeros, and
        leaves nothing in its source."""
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
