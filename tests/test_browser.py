"""The HTML pages in Debian's Chromium: what they show for the answers given is held against the independent scorer."""

import csv
import json
import math
import subprocess
import unittest
from pathlib import Path

from support import EXAMPLES, PROGRAM, TESTS, ProgramTest, categorical, document, numeric
import score as scorer

CREDIT = EXAMPLES / "credit" / "credit.ModelXml"
CLAIMS = EXAMPLES / "claims" / "claims.ModelXml"
DRIVER = "playwright-core@1.60.0"  # runs on the Node.js 18 of Debian 12, where 1.65 does not
TABLE = [(3, 0.9), (1, 0.6), (0, 0.5), (-2, 0.1)]
CANVAS = """[QRV_STRING_TRUE Yes]<p>[QRV_ANSWER 0] and [QRV_ANSWER 1] and [QRV_ANSWER 1]</p>
<div style="position:relative;height:90px">[QRV_GRAPHICS]</div>[QRV_DYN_SCALE]<form name="QRVform">[QRV_ALL_QUESTIONS]
[QRV_SUBMIT]</form><script>var QRVSpecifiedHistogramHeight = 80;</script>[QRV_SCRIPT]"""


def applicants(step):
    with open(EXAMPLES / "credit" / "applicants.csv", newline="") as file:
        return [{k: "" if v == "NA" else v for k, v in row.items()} for row in csv.DictReader(file)][::step]


def controls(models):
    """For each field the name of its control, which is that of the first variable found, and its last variable."""
    names, variables = {}, {}
    for position in range(max(len(m.variables) for m in models)):
        for i, m in enumerate(models):
            for v in m.variables[position:position + 1]:
                names.setdefault(v.field, f"m{i}_V{v.number}")
                variables[v.field] = v
    return {field: (names[field], variables[field]) for field in names}


def answers(models, row, sliders=False):
    """[control, value] for each field of a row; whole numbers within its range may be set by the slider."""
    given = []
    for field, (name, v) in controls(models).items():
        cell = row[field]
        if v.categorical:
            given.append([name, str(v.category(cell))])
        elif not cell:
            given.append([name, None])
        elif sliders and float(cell).is_integer() and v.cuts[0] <= float(cell) <= v.cuts[-1]:
            given.append([name, {"slider": cell}])
        else:
            given.append([name, cell])
    return given


class BrowserTest(ProgramTest):
    @classmethod
    def setUpClass(cls):
        cls.modules = Path(PROGRAM).resolve().parent / DRIVER
        if not (cls.modules / "node_modules" / "playwright-core").exists():
            subprocess.run(["npm", "install", "--no-save", "--no-audit", "--no-fund", "--silent",
                            "--prefix", cls.modules, DRIVER], check=True, timeout=120)

    def browse(self, *pages):
        """pages: (model, canvas or "", cases, visit); the results in the same order."""
        orders = []
        for i, (model, canvas, cases, *visit) in enumerate(pages):
            self.assertEqual(self.run_program("-h", str(model), str(canvas), f"{i}.html"), (0, ""))
            orders.append({"url": (self.folder / f"{i}.html").as_uri(), "cases": cases, "visit": sum(visit, [])})
        run = subprocess.run(["node", TESTS / "browser.mjs"], capture_output=True, encoding="utf-8", timeout=300,
                             input=json.dumps({"modules": str(self.modules), "pages": orders}))
        self.assertEqual(run.returncode, 0, run.stderr)
        results = json.loads(run.stdout)
        for result in results:
            self.assertEqual(result["errors"], [])
        return results

    def assert_shown(self, state, models, row, height=100, dynamic=False):
        """The numbers, to the decimals shown, and the heights of the bars."""
        values = []
        for model in models:
            score = model.score(row)
            lost = model.table and score <= model.table[-1][0]  # the page has no probability there
            values.append(math.nan if lost else model.prediction(row))
        for i in range(len(models)):
            wanted = values[i] * 100 if models[i].table else values[i]
            if math.isnan(wanted):
                self.assertEqual(state["shown"][i], "NaN")
            else:
                self.assertRegex(state["shown"][i], r"^-?\d+\.\d{3}$")
                self.assertAlmostEqual(float(state["shown"][i]), wanted, delta=0.0005 + 1e-9)
        known = [v for v in values if not math.isnan(v)]
        if all(m.table for m in models):
            scale = max(known, default=0.01) if dynamic else max(m.table[2][1] for m in models)
        else:
            scale = max(0, *known) - min(0, *known)
        if not any(map(math.isnan, values)):
            self.assertEqual(state["bars"], [f"{math.floor(height * v / scale + 0.5)}px" for v in values])

    def test_credit_page_scores_applicants(self):
        models = [scorer.load(CREDIT)]
        rows = applicants(12)
        cases = [answers(models, row, sliders=i % 2) for i, row in enumerate(rows)]
        own, built_in = self.browse((CREDIT, EXAMPLES / "credit" / "canvas.html", cases), (CREDIT, "", cases))
        for result, height in [(own, 240), (built_in, 100)]:
            self.assertGreater(len(result["states"]), 300)
            for row, case, state in zip(rows, cases, result["states"][1:]):
                self.assert_shown(state, models, row, height)
                for name, value in case:
                    if isinstance(value, dict):
                        self.assertEqual(state["sliders"][name], [value["slider"]] * 2)
        self.assertEqual(built_in["states"][0]["colours"], ["rgb(255, 0, 0)"])
        self.assertEqual(own["states"][0]["colours"], ["rgb(37, 99, 168)"])

    def test_two_models_share_columns(self):
        homes = ["rent", "owner", "parents", "priv", "other", "ignore"]
        (self.folder / "b.ModelXml").write_text(document([
            categorical(5, "Records", ["no", "0", "f", "false", "NO", "yes"], [0.25, -0.5, 1.5], tname="bb64"),
            numeric(2, "Income", [50, 125.5, 300], [0.5, 1, 0, -0.75, -1.5]),
            categorical(3, "Home", homes, [0.1, 0.5, -0.5, 0.2, 0.3, 0.4, 0]),
            numeric(4, "Extra", [-1, 1], [0.3, -1, 0, 1.25]),
        ], [(2, 1), (3, 0.5), (4, 2), (5, 1)], 0.125, table=TABLE), "utf-8-sig")
        (self.folder / "list.Xml").write_text(f'<Models><Model file="{CREDIT}"/><Model file="b.ModelXml"/></Models>')
        models = [scorer.load(CREDIT), scorer.load(self.folder / "b.ModelXml")]
        rows = [{**row, "Extra": ["", "-3.5", "-1", "0.25", "7"][i % 5]} for i, row in enumerate(applicants(20))]
        cases = [answers(models, row, sliders=i % 2) for i, row in enumerate(rows)]
        self.write("canvas", CANVAS, "utf-8")
        fixed, dynamic = self.browse(("list.Xml", "canvas", cases), ("list.Xml", "canvas", cases,
                                                                     [["click", "#scaleProba"]]))
        for row, one, other in zip(rows, fixed["states"][1:], dynamic["states"][1:]):
            self.assert_shown(one, models, row, 80)
            self.assert_shown(other, models, row, 80, dynamic=True)
            # Both places of the second answer have one name, so only the first of them is filled in.
            self.assertEqual(one["shown"], other["shown"][:2] + ["0"])
        self.assertEqual(fixed["states"][0]["colours"], ["rgb(255, 0, 0)", "rgb(0, 255, 0)"])

    def test_predictions(self):
        models = [scorer.load(CLAIMS)]
        for v in models[0].variables:
            v.missing = []  # the page does not know the codes
        with open(EXAMPLES / "claims" / "claims.csv", newline="") as file:
            rows = list(csv.DictReader(file))[:200]
        cases = [answers(models, row) for row in rows]
        for result in self.browse((CLAIMS, "", cases), (CLAIMS, EXAMPLES / "claims" / "canvas.html", cases)):
            for row, state in zip(rows, result["states"][1:], strict=True):
                # A lone bound counts as above itself.
                self.assert_shown(state, models, {**row, "bonus": "50.1" if row["bonus"] == "50" else row["bonus"]})

    def test_a_visitor_works_the_controls(self):
        """With mouse and keyboard, so the controls can be seen and reached."""
        model = scorer.load(CREDIT)
        row = dict(Seniority="3", Home="owner", Time="60", Age="", Marital="", Records="yes", Job="partime", Expenses="45",
                   Income="72.5", Assets="0", Debt="0", Amount="1000", Price="2400")
        visit = [["fill", f"#value_{name}", row[field]] for field, (name, v) in controls([model]).items()
                 if not v.categorical and row[field]]
        visit += [["check", "[name=unkown_m0_V4]"], ["selectOption", "[name=m0_V2]", "2"],
                  ["check", '[name=m0_V6][value="2"]'], ["check", '[name=m0_V7][value="3"]'],
                  ["focus", "#range_m0_V12"], ["press", "#range_m0_V12", "ArrowRight"],
                  ["press", "#range_m0_V12", "ArrowLeft"]]
        for result in self.browse((CREDIT, "", [], visit), (CREDIT, EXAMPLES / "credit" / "canvas.html", [], visit)):
            state = result["states"][0]
            self.assertAlmostEqual(float(state["shown"][0]), 100 * model.prediction(row), delta=0.0005 + 1e-9)
            # A slider goes as far as its range, and the field keeps what was typed.
            self.assertEqual(state["sliders"]["m0_V1"], ["3", "3"])
            self.assertEqual(state["sliders"]["m0_V3"], ["54", "60"])
            self.assertEqual(state["sliders"]["m0_V9"], ["73", "72.5"])  # of the income's two variables the last
            self.assertEqual(state["sliders"]["m0_V12"], ["1000", "1000"])

    def test_what_pages_do_not_do(self):
        def write(name, model, constant=0, **more):
            text = document([model], [(1, 1)], constant, **more)
            (self.folder / name).write_text(text, "utf-8-sig")
            return name, ""

        five = categorical(1, "a", list("abcde"), [0.5, 1, 1, 1, 1, 1])
        number = numeric(1, "a", [0, 9], [2, 1, 1, -3])
        pages = {
            "five categories are read as unknown": (*write("5", five, table=TABLE), [[["m0_V1", "3"]]]),
            "no probability at or below the last point": (*write("n", number, 1, table=TABLE), [[["m0_V1", "10"]]]),
            "an empty field is 0": (*write("e", number, table=TABLE), [[["m0_V1", ""]]]),
            "a lone bound is above itself": (*write("l", numeric(1, "a", [5], [0, 1, 3]), table=TABLE),
                                             [[["m0_V1", "5"]]]),
            "a list of missing codes is not read": (*write("m", number, table=TABLE, missing={"a": [5]}),
                                                    [[["m0_V1", "5"]]]),
        }
        results = self.browse(*pages.values())
        self.assertEqual({name: result["states"][-1]["shown"][0] for name, result in zip(pages, results)}, {
            "five categories are read as unknown": "55.000",
            "no probability at or below the last point": "NaN", "an empty field is 0": "60.000",
            "a lone bound is above itself": "90.000", "a list of missing codes is not read": "60.000"})
        # No table, a kind that is neither, and a canvas without the scale box.
        self.write("plain", CANVAS.replace("[QRV_DYN_SCALE]", ""), "utf-8")
        for result in self.browse((*write("t", number), []), (*write("x", number, kind="x", table=TABLE), []),
                                  (write("s", number, table=TABLE)[0], "plain", [])):
            self.assertIn("Error in Compute Model", result["text"])


if __name__ == "__main__":
    unittest.main()
