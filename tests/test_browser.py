"""The HTML pages in Debian's Chromium: compares what they show for given answers with the model."""

import math
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.select import Select

from engines import CLAIMS, CREDIT, CheckedTest
from support import EXAMPLES, categorical, document, numeric
import score

TABLE = [(3, 0.9), (1, 0.6), (0, 0.5), (-2, 0.1)]
OWN_CANVAS = EXAMPLES / "credit" / "canvas.html"
CANVAS = """[QRV_STRING_TRUE Yes]<p>[QRV_ANSWER 0] and [QRV_ANSWER 1] and [QRV_ANSWER 1]</p>
<div style="position:relative;height:90px">[QRV_GRAPHICS]</div>[QRV_DYN_SCALE]<form name="QRVform">[QRV_ALL_QUESTIONS]
[QRV_SUBMIT]</form><script>var QRVSpecifiedHistogramHeight = 80;</script>[QRV_SCRIPT]"""
# Enters the answers of each case through the controls' own events; returns the numbers and bars shown after it.
WORK = """
const fire = (element, name) => element.dispatchEvent(new Event(name, { bubbles: true }));
const texts = (selector, read) => [...document.querySelectorAll(selector)].map(read);
return arguments[0].map(answers => {
  for (const [name, value, part] of answers) {
    const unknown = document.QRVform['unkown_' + name];
    if (unknown && unknown.checked !== (value === null)) unknown.click();
    const control = document.getElementById(part + name) ?? document.QRVform[name];
    if (value === null) continue;
    if (control.length && control.tagName !== 'SELECT') [...control].find(button => button.value === value).click();
    else fire(Object.assign(control, { value }), control.length ? 'change' : 'input');
  }
  return [texts('[id$=_total_proba]', e => e.innerHTML), texts('.histogramBar', e => e.style.height)];
});"""


def answers(models, row, slides=False):
    """[control, value or None, part of the control] for each field. The control has the name of the field's first
    variable and the kind of its last one. Whole numbers within its range may use the slider; an empty field is 0."""
    found = sorted((place, i, v) for i, m in enumerate(models) for place, v in enumerate(m.variables))
    names = {v.field: f"m{i}_V{v.number}" for _, i, v in reversed(found)}
    given = []
    for field, v in {v.field: v for _, _, v in found}.items():
        cell = row[field]
        slid = slides and not v.categorical and cell.isdecimal() and v.bounds[0] <= float(cell) <= v.bounds[-1]
        text = str(v.category(cell)) if v.categorical else "" if cell == "0" and not slid else cell or None
        given.append([names[field], text, "range_" if slid else "value_"])
    return given


def lowest(model, rows):
    """The number of rows without a probability on a page."""
    return sum(model.score(row) <= model.table[-1][0] for row in rows)


class BrowserTest(CheckedTest):
    @classmethod
    def setUpClass(cls):
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for argument in ["headless", "no-sandbox", "disable-gpu", "disable-background-networking", "disable-sync"]:
            options.add_argument("--" + argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        cls.driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        cls.addClassCleanup(cls.driver.quit)
        cls.driver.set_script_timeout(300)

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def open(self, model, canvas=""):
        self.assertEqual(self.run_program("-h", str(model), str(canvas), "page.html"), (0, ""))
        self.driver.get((self.folder / "page.html").as_uri())
        self.assertEqual(self.driver.get_log("browser"), [])

    def assert_shown(self, pages, rows, height=100, dynamic=False):
        """Enters the rows, and requires that the numbers shown are explained and the bars have their heights. `pages`:
        document, model and explained rows of each model on the page."""
        models = [model for _, model, _ in pages]
        cases = [answers(models, row, slides=i % 2) for i, row in enumerate(rows)]
        changes = [[a for a in case if a not in last] for last, case in zip([[], *cases], cases)]
        # Each control comes last now and then, so that its event alone must compute the result.
        changes = [case[i % 13:] + case[:i % 13] for i, case in enumerate(changes)]
        states = self.driver.execute_script(WORK, changes)
        numbers = [[float(text) / (100 if m.table else 1) for m, text in zip(models, texts)] for texts, _ in states]
        for (path, model, explained), found in zip(pages, zip(*numbers)):
            # Pages show three decimals; the tolerance is relative to the costs, which exceed 600.
            self.assert_explained("html", rows, "probability" if model.table else "score", enumerate(found), explained,
                                  path=path, tolerance=0.00051 / (100 if model.table else 600))
        third = max(model.table[2][1] for model in models) if models[0].table else None
        for parts, (_, bars) in zip(numbers, states):
            scale = third if third and not dynamic else max(parts + [0]) - min(parts + [0])
            for part, bar in [] if math.isnan(sum(parts)) else zip(parts, bars, strict=True):
                self.assertAlmostEqual(float(bar.removesuffix("px")), height * part / scale, delta=0.51)
        return [texts for texts, _ in states]

    def test_example_rows(self):
        self.open(self.write("m", CREDIT.text), OWN_CANVAS)
        # At first, all values are unknown; a slider reaches the values above the last bound.
        row = dict.fromkeys(CREDIT.rows[0], "")
        for row["Time"], key in [("", Keys.SHIFT), ("55", Keys.END), ("17", Keys.HOME)]:
            self.find("#range_m0_V3").send_keys(key)
            self.assertEqual(self.find("#m0_total_proba").text, f"{100 * CREDIT.model.prediction(row):.3f}")
        self.assert_shown([("m", CREDIT.model, {"lowest-nan": lowest(CREDIT.model, CREDIT.rows)})], CREDIT.rows, 240)
        self.open(CLAIMS.path, CLAIMS.path.with_name("canvas.html"))
        codes = {v.field: v.missing for v in CLAIMS.model.variables if not v.categorical}
        coded = sum(any(float(row[field] or "nan") in codes[field] for field in codes) for row in CLAIMS.rows)
        lone = sum(row["bonus"] == "50" for row in CLAIMS.rows)
        explained = {"missing-codes-unread": coded, "single-bound": lone}
        self.assert_shown([(CLAIMS.path, CLAIMS.model, explained)], CLAIMS.rows)

    def test_two_models_share_columns(self):
        homes = ["rent", "owner", "parents", "priv", "other", "ignore"]
        self.write("b.ModelXml", document([
            categorical(5, "Records", ["no", "0", "f", "false", "NO", "yes"], [0.25, -0.5, 1.5], tname="bb64"),
            numeric(2, "Income", [50, 125.5, 300], [0.5, 1, 0, -0.75, -1.5]),
            categorical(3, "Home", homes, [0.1, 0.5, -0.5, 0.2, 0.3, 0.4, 0]),
            numeric(4, "Extra", [-1, 1], [0.3, -1, 0, 1.25]),
            categorical(6, "Place", "abcde", [0.5, 1, 2, 3, 4, 5]),
        ], [(2, 1), (3, 0.5), (4, 2), (5, 1), (6, 1)], 0.125, table=TABLE))
        self.write("a.ModelXml", CREDIT.text)
        self.write("list.Xml", '<Models><Model file="a.ModelXml"/><Model file="b.ModelXml"/></Models>')
        model = score.load(self.folder / "b.ModelXml")
        rows = [{**row, "Extra": ["", "-3.5", "-1", "0.25", "7"][i % 5], "Place": "abcde"[i % 5]}
                for i, row in enumerate(CREDIT.rows[::20])]
        # A list of exactly five categories is always read as unknown.
        read = [{**row, "Place": ""} for row in rows]
        moved = sum(min(max(model.score(row), -2), 3) != min(max(model.score(other), -2), 3)
                    for row, other in zip(rows, read))
        pages = [("a.ModelXml", CREDIT.model, {"lowest-nan": lowest(CREDIT.model, rows)}),
                 ("b.ModelXml", model, {"lowest-nan": lowest(model, read), "five-categories": moved})]
        self.open("list.Xml", self.write("canvas", CANVAS, "utf-8"))
        for dynamic in [False, True]:
            shown = self.assert_shown(pages, rows, 80, dynamic)
            self.assertEqual({third for *_, third in shown}, {"0"})  # of two places with one name, the first is filled
            self.find("#scaleProba").click()
        bars = self.driver.find_elements(By.CLASS_NAME, "histogramBar")
        self.assertEqual([bar.value_of_css_property("background-color") for bar in bars],
                         ["rgba(255, 0, 0, 1)", "rgba(0, 255, 0, 1)"])

    def test_a_visitor_uses_the_controls(self):
        """With mouse and keyboard, so that the controls must be visible and reachable."""
        row = {**CREDIT.rows[0], "Age": "", "Marital": "", "Time": "60", "Income": "72.5", "Amount": "1000"}
        for canvas, highest in [("", "54"), (OWN_CANVAS, "55")]:
            self.open(CREDIT.path, canvas)
            for name, text, _ in answers([CREDIT.model], row):
                control = self.find(f"[name={name}]" if text is not None else f"[name=unkown_{name}]")
                if control.tag_name == "select":
                    Select(control).select_by_value(text)
                elif control.get_attribute("type") == "radio":
                    self.find(f"[name={name}][value='{text}']").click()
                elif text is None:
                    if canvas == "":  # the other canvas starts with unknown
                        control.click()
                else:
                    control.send_keys(Keys.CONTROL, "a", Keys.NULL, text or Keys.BACKSPACE)
            self.find("#range_m0_V12").send_keys(Keys.ARROW_RIGHT)
            self.assertAlmostEqual(float(self.find("#m0_total_proba").text),
                                   100 * CREDIT.model.prediction({**row, "Amount": "1001"}), delta=0.00051)
            # A slider clamps to its range and whole steps; the field keeps what was typed.
            parts = ["range_m0_V3", "value_m0_V3", "range_m0_V9", "value_m0_V9", "value_m0_V12"]
            self.assertEqual([self.find("#" + part).get_property("value") for part in parts],
                             [highest, "60", "73", "72.5", "1001"])

    def test_pages_that_show_an_error(self):
        plain = CANVAS.replace("[QRV_DYN_SCALE]", "")
        for table, kind, canvas in [(None, "T", CANVAS), (TABLE, "x", CANVAS), (TABLE, "T", plain)]:
            self.write("m", document([numeric(1, "a", [0, 9], [2, 1, 1, -3])], [(1, 1)], 0, table, kind=kind))
            self.open("m", self.write("c", canvas, "utf-8"))
            self.assertIn("Error in Compute Model", self.find("body").text)


if __name__ == "__main__":
    unittest.main()
