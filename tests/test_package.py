"""The Python package: what it writes is run as the program's Python class, and held against what it was made from."""

import contextlib
import re
import shutil
import sqlite3
import subprocess
import unittest

import numpy as np
import pandas as pd
from sklearn.compose import make_column_transformer
from sklearn.impute import SimpleImputer
from sklearn.linear_model import LogisticRegression
from sklearn.pipeline import make_pipeline
from sklearn.preprocessing import KBinsDiscretizer, OneHotEncoder

from sql_program import SqlProgramTest, configuration
from support import EXAMPLES, TESTS
import score  # support has told where it is, and the next
from scorewright import Scorecard, logistic_table

APPLICANTS = pd.read_csv(EXAMPLES / "credit/applicants.csv", keep_default_na=False, na_values={"Income": "NA"})


def neighbours(bound):
    """A bound, the doubles beside it, and numbers of 16 digits beside it."""
    step = 10.0 ** (np.floor(np.log10(abs(bound) or 1)) - 15)
    short = [float(f"{bound + k * step:.16g}") for k in (-1, 1)]
    return [bound, np.nextafter(bound, -np.inf), np.nextafter(bound, np.inf), *short]


class PackageTest(SqlProgramTest):
    def generated(self, card):
        """An object of the class that the program makes of a scorecard."""
        card.write(self.folder / "card.ModelXml")
        self.assertEqual(self.run_program("-p", "card.ModelXml", "card.py", "Card"), (0, ""))
        names = {}
        exec(self.read("card.py"), names)
        return names["QORVModel_Card"]()

    def test_bounds(self):
        random = np.random.default_rng(1)
        short = [[0.3, 1.5, 18, 1000.25, 1e6], [-2.5, -0.1, 0, 0.1], [7], [0], [-3.25, 1e-7, 8.123456789012345]]
        for bounds in short + [sorted(random.normal(0, 10.0 ** k, 6)) for k in range(-2, 4)]:
            values = np.array(sorted({v for bound in bounds for v in neighbours(bound)} | {-1e300, 1e300, -np.inf}))
            frame = pd.DataFrame({"v": values, "c": ""}, index=values)
            for closed, side in [("left", "right"), ("right", "left")]:
                card = Scorecard()
                card.add_categorical("c", {"x": 1})
                card.add_numeric("v", bounds, np.arange(len(bounds) + 1) + 1, closed=closed, missing=-1)
                found = self.generated(card).apply(frame).prediction.to_numpy()
                self.assertEqual(card.score(frame).score.tolist(), found.tolist())
                right = found == 1 + np.searchsorted(bounds, values, side)
                told = np.array([float(f"{v:.16g}") == v and not 0 < abs(v) < 1e-12 for v in values])
                with self.subTest(bounds=bounds, closed=closed, wrong=values[~right]):
                    self.assertTrue(right[np.isin(values, bounds)].all())
                    if bounds in short:
                        self.assertTrue((right | (closed == "left") & ~told).all())

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
        rows, bad = APPLICANTS.copy(), APPLICANTS.Status == "bad"
        rows.loc[:9, "Home"] = None
        for strategy, drop, unknown in [("quantile", None, "ignore"), ("uniform", "first", "error"),
                                        ("kmeans", "if_binary", "ignore")]:
            binner = KBinsDiscretizer(6, encode="onehot", strategy=strategy)
            pipeline = make_pipeline(make_column_transformer(
                (binner, ["Age", "Amount"]), (OneHotEncoder(drop=drop, handle_unknown=unknown), ["Home", "Job"]),
                (make_pipeline(SimpleImputer(), binner), ["Income"])), LogisticRegression(max_iter=999))
            pipeline.fit(rows, bad)
            if unknown == "ignore":
                with self.assertRaisesRegex(ValueError, "'Home'.*unlisted_as_missing"):
                    Scorecard.from_sklearn(pipeline, target="bad")
            card = Scorecard.from_sklearn(pipeline, target="bad", largest_error=1e-4, unlisted_as_missing=True)
            result = card.score(rows)
            np.testing.assert_allclose(result.score, pipeline.decision_function(rows), rtol=0, atol=1e-12)
            np.testing.assert_allclose(result.probability, pipeline.predict_proba(rows)[:, 1], rtol=0, atol=1e-4)
            some = rows[::9]
            found = self.generated(card).apply(some.fillna({"Home": ""})).set_axis(some.index)
            np.testing.assert_allclose(found, result[::9], rtol=0, atol=1e-9)
        pipeline = make_pipeline(make_column_transformer(("passthrough", ["Age"])), LogisticRegression())
        with self.assertRaisesRegex(ValueError, "'Age'.*cannot be expressed"):
            Scorecard.from_sklearn(pipeline.fit(APPLICANTS, bad), target="bad")

    def test_documents(self):
        """Documents that are read score as the independent scorer does, also when they have been written again."""
        for path in EXAMPLES.glob("*/*.ModelXml"):
            text = pd.read_csv(next(path.parent.glob("*.csv")), dtype=str).fillna("")[:400]
            model, card = score.load(path), Scorecard.read(path)
            expected = [model.score(row) for row in text.to_dict("records")]
            card.write(self.folder / "again.ModelXml")
            for one in [card, Scorecard.read(self.folder / "again.ModelXml")]:
                self.assertEqual(one.score(text).score.tolist(), expected)

    def test_mends(self):
        card = Scorecard("y", table=([3, -1], [0.9, 0.2]), missing={"net income": [-1]})
        for column, values in [("city", "abcde"), ("code", "12345")]:
            card.add_categorical(column, dict(zip(values, range(5))), other=-2)
        card.add_numeric("net income", [10, 20], [0, 1, -3], closed="left", missing=2)
        card.write(self.folder / "model.ModelXml")
        self.assertEqual([Scorecard.read(self.folder / "model.ModelXml").recodings[i].values[5][0] for i in (0, 1)],
                         ["(other)", "99"])
        frame = pd.DataFrame({"city": list("abe ?"), "code": list("12 45"), "net income": [-1, 10, 20, 25, 5]})
        self.run_configuration(configuration(dbType="mysql", keyName="id", createPredictionTable="1"))
        with contextlib.closing(sqlite3.connect(":memory:")) as base:
            frame.to_sql("src", base, index_label="id")
            base.executescript(self.read("out"))
            found = [p for (p,) in base.execute("select Predictions from Preds order by cast(id as integer)")]
        result = card.score(frame)
        np.testing.assert_allclose(found, result.probability, atol=1e-12)
        self.assertEqual(result.score.tolist(), [2, 3, -1, -2, 2])

    def test_repairs(self):
        """What repair.py makes of the tariff's code scores as the model says, also when it is repaired again."""
        shutil.copy(EXAMPLES / "claims/claims.ModelXml", self.folder / "model.ModelXml")
        self.run_program("-a", "model.ModelXml", "m.sas")
        self.run_program("-p", "model.ModelXml", "m.py", "M")
        self.run_configuration(configuration(dbType="mysql", keyName="policy", outputFile="m.sql", inputTable="annual"))
        repaired = []
        for _ in range(2):
            scripts = ["m.sas", "m.py", "m.sql"]
            subprocess.run(["/usr/bin/python3", "-B", EXAMPLES / "repair.py", "model.ModelXml", *scripts],
                           cwd=self.folder, check=True)
            repaired.append([self.read(script) for script in scripts])
        self.assertEqual(*repaired)
        sas, module, sql = repaired[0]
        self.assertIn("   if (missing(vehicle_age) or vehicle_age=-1 or vehicle_age=99) then R1_vehicle_age=20;\n", sas)
        self.assertNotRegex(sas, r"(?m)^(\|\||\))")
        texts = ["region", "use", "garage"]
        policies = pd.read_csv(EXAMPLES / "claims/claims.csv", dtype=dict.fromkeys(texts, str))
        policies[texts] = policies[texts].fillna("")
        expected = Scorecard.read(self.folder / "model.ModelXml").score(policies).score
        exec(module, scope := {})
        np.testing.assert_allclose(scope["QORVModel_M"]().apply(policies).claim_cost_prediction, expected, atol=1e-9)
        with contextlib.closing(sqlite3.connect(":memory:")) as base:
            policies.rename(columns={"annual.km": "km"}).to_sql("annual", base)  # the name stands there without quotes
            base.executescript("create table Preds(policy, Predictions);" + sql)
            found = [p for (p,) in base.execute("select Predictions from Preds order by policy")]
        np.testing.assert_allclose(found, expected, atol=1e-9)

    def test_refusals(self):
        def numeric(card, bounds=(1, 2), scores=(1, 2, 3), column="x y", **options):
            card.add_numeric(column, bounds, scores, closed="left", **options)

        def write(card, **changes):
            vars(card).update(changes)
            card.write(self.folder / "never")

        close = [1.5, np.nextafter(1.5, 2), np.nextafter(np.nextafter(1.5, 2), 2)]
        for message, call in [
                ("'x y'.*increase", lambda card: numeric(card, (2, 1))),
                ("'x y'.*increase", lambda card: numeric(card, close, range(4))),
                ("'x y'.*n finite bounds and n . 1 scores", lambda card: numeric(card, scores=(1, 2))),
                ("'x y'.*finite", lambda card: numeric(card, (1, np.inf))),
                ("'x y'.*finite", lambda card: numeric(card, scores=(1, 2, np.nan))),
                ("'x y'.*number 1 is given twice", lambda card: numeric(card, number=1)),
                ("'x y' and 'X.Y'", lambda card: numeric(card, column="X.Y")),
                ("'c'.*twice", lambda card: card.add_categorical("c", {"1": 0, 1: 2})),
                ("'b'.*spellings", lambda card: card.add_boolean("b", 0, 1, spellings=(["n"], ["n"]))),
                ("table.*falling", lambda card: write(card, table=([1, 2], [0.5, 0.4]))),
                ("table.*as many", lambda card: write(card, table=([2, 1], [0.5]))),
                ("not finite", lambda card: write(card, constant=np.inf)),
                ("'x y'.*6 digits", lambda card: write(card, missing={"x y": [1234567]})),
                ("'x y'.*no number.*many", lambda card: card.score(pd.DataFrame({"x y": ["1", "many"]})))]:
            card = Scorecard("y")
            numeric(card)
            with self.subTest(message), self.assertRaisesRegex(ValueError, message):
                call(card)
        self.assertFalse((self.folder / "never").exists())

    def test_build(self):
        """The package has the program's version and builds without a network."""
        project = (TESTS.parent / "python/pyproject.toml").read_text()
        version = re.search('^version = "(.*)"', project, re.M)[1]
        self.assertIn(f"project(scorewright VERSION {version} ", (TESTS.parent / "CMakeLists.txt").read_text())
        shutil.copytree(TESTS.parent / "python", self.folder / "python")
        subprocess.run([*"/usr/bin/python3 -m pip install --no-index --no-deps --no-build-isolation --target".split(),
                        self.folder / "to", self.folder / "python"], check=True, capture_output=True)
        self.assertTrue((self.folder / "to/scorewright/scorecard.py").exists())


if __name__ == "__main__":
    unittest.main()
