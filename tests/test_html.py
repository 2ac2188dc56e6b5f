"""The HTML page: canvas tags, questions, messages and its text. test_browser.py tests its behaviour."""

import re
import time
import unittest

from support import DOCUMENTS, ProgramTest, categorical, doubles, document, integers, numeric

END = '<script type="text/javascript" ><!--\ncomputeIsReady=true;\nComputeModel();\n--></script>'
REQUIRED = "[QRV_SCRIPT][QRV_ALL_QUESTIONS][QRV_ANSWER 0]"
ONE = document([numeric(1, "a", [0, 1], [1, 2, 3, 4])], [(1, 1)], 0, table=[(1, 0.75), (0, 0.5), (-1, 0.25)])
TWO = document([numeric(1, "a", [0, 1], [1, 2, 3, 4]), numeric(2, "b", [0], [1, 2, 3])], [(1, 1), (2, 1)], 0)


def answer(number):
    return f'<div id="m{number}_total_proba" style="display:inline;">0</div>\n'


def submit(label):
    return ('<input type="button" onClick="finished=true; QRVform.submit();finished=false;" '
            f'value="{label}"/>\n')


class HtmlTest(ProgramTest):
    def page(self, model, canvas="", expected=(0, "")):
        """The text of the page; an empty canvas selects the built-in one."""
        name = model if model.endswith("Xml") else self.write("model.ModelXml", model)
        self.write("canvas", canvas, "utf-8")
        (self.folder / "page").unlink(missing_ok=True)
        self.assertEqual(self.run_program("-h", name, "canvas", "page"), expected)
        page = self.folder / "page"
        return page.read_bytes().decode("utf-8") if page.exists() else None

    def models(self, *documents):
        """A list of models; None is an absent file."""
        for i, text in enumerate(documents):
            if text is not None:
                self.write(f"{i}.ModelXml", text)
        entries = "".join(f'<Model file="{i}.ModelXml"/>' for i in range(len(documents)))
        return self.write("list.Xml", f'<?xml version="1.0"?><Models>{entries}</Models>')

    def test_golden_pages(self):
        # The constant is read after one coefficient per variable, though two variables share one.
        kinds, betas = DOCUMENTS["kinds"], [0.5, -1.25, 2, 1e-13, 1, -10, 1 / 3]
        page = self.page(kinds.replace(doubles(betas), doubles(betas + [1e18])))
        self.assert_golden("kinds.html", page)
        # A prediction, shared columns, and an absent model, at which the script ends.
        shared = document([numeric(9, "one", [-0.5, 99.2], [1, 2, 3, 4], label=""), categorical(8, "b", ["y"], [0, 1])],
                          [(8, -1), (9, 2)], 3, kind="t", table=[(1, 0.5), (-1, 0.25)])
        three = self.models(DOCUMENTS["missing"], shared, DOCUMENTS["logistic"].replace('"T"', '"t"'), None)
        listed = self.page(three, "ü" * 10 + REQUIRED + "[QRV_DYN_SCALE][QRV_GRAPHICS]\nend")
        known = set(page.split("\n"))  # the golden file contains only lines that the other page lacks
        self.assert_golden("list.html", "\n".join(line for line in listed.split("\n") if line not in known))

    def test_tags(self):
        def warning(at, what="model", tag="ANSWER"):
            return f"WARNING: no {what} number found in tag [QRV_{tag} on index {at}"

        none = "[qrv_submit][QRV_SUBMIT x][QRV_SUBMIT /x][QRV_SUBMIT\v][QRV_SUBMIT\f][QRV_SUBMIT\xa0]"
        cases = [
            (none, none, ""),
            ("[QRV_ANSWER 0 /][QRV_ANSWER\t\r\n+00][QRV_ANSWER 1][QRV_ANSWER -3][QRV_ANSWER -2147483648]",
             answer(0) * 3 + answer(-3) + answer(-2147483648), ""),
            ("[QRV_ANSWER][QRV_ANSWER 2147483648][QRV_ANSWER 1 2][QRV_ANSWER -]", answer(0) * 4,
             warning(0) + warning(12) + warning(35) + warning(51)),
            ("[QRV_ANSWER x/y]", "[QRV_ANSWER x/y]", warning(0)),
            ("[QRV_ANSWER -1/[QRV_ANSWER -2]", "[QRV_ANSWER -1/" + answer(-2), ""),
            ("[QRV_QUESTION a/b]", "[QRV_QUESTION a/b]", warning(0, "question", "QUESTION")),
            ("[QRV_STRING_SUBMIT]x[QRV_SUBMIT\r\n/]", "x" + submit(""), ""),
            # A label applies from the previous one of its kind on. Other white space is not a blank.
            ("[QRV_SUBMIT][QRV_STRING_SUBMIT \va\xa0][QRV_SUBMIT][QRV_STRING_SUBMIT b]",
             submit("\va\xa0") + submit("b"), ""),
            ("[QRV_STRING_SUBMIT [QRV_STRING_SUBMIT /x[QRV_SUBMIT]",
             "[QRV_STRING_SUBMIT [QRV_STRING_SUBMIT /x" + submit(""), ""),
        ]
        for canvas, expected, printed in cases:
            with self.subTest(canvas):
                page = self.page(ONE, canvas + "|" + REQUIRED, (0, printed))
                self.assertEqual(page.split("|")[0], expected)
        # Without a further "/" or "]", the value is the rest of the canvas.
        page = self.page(ONE, REQUIRED + "[QRV_SUBMIT][QRV_STRING_SUBMIT over and out ")
        self.assertTrue(page.endswith(submit("over and out") + END + "[QRV_STRING_SUBMIT over and out "))

    def test_canvases(self):
        built_in = self.page(ONE)
        self.assertIn("<title>Generated Model</title>\n<script", built_in)
        self.assertEqual(self.page(ONE, "ü[QRV_SCR"), built_in)  # nine units are too short for a canvas
        self.assertTrue(self.page(ONE, "\ufeff" + REQUIRED).startswith("<script"))  # the mark is not part of the canvas
        twice = self.page(ONE, REQUIRED * 2)
        self.assertEqual([len(re.findall(text, twice)) for text in ["var finished=", r"Question 1\)", "myEventListener\\("]],
                         [2, 2, 2 + 1 + 2])  # the second script lists both controls
        for canvas, printed in {"0123456789": "Required tag [QRV_SCRIPT] is missing!",
                                "[QRV_SCRIPT][QRV_ANSWER 1": "Required tag [QRV_ANSWER] is missing!",
                                "[QRV_SCRIPT][QRV_ANSWER 1]": "One of these tags ([QRV_ALL_QUESTIONS],[QRV_QUESTION]) is "
                                                              "missing!"}.items():
            self.assertIsNone(self.page(ONE, canvas, (3, printed)))

    def test_questions_one_by_one(self):
        shared = self.models(TWO, TWO.replace('"b"', '"c"'))  # four variables, three columns
        repeated = "Question {} has been asked multiple times. Ignoring this call!"
        none = "Question {} does not exist. Ignoring this call!"
        forgotten = "You have asked only {} out of {} question!\nYou forgot questions: {}\n"
        cases = [
            (TWO, [2, 1], 0, "", ["b", "a"]),
            (TWO, [1, 1, 2], 0, repeated.format(1), ["a", "b"]),
            # After all questions, another round starts.
            (TWO, [1, 2, 2, 1], 0, "", ["a", "b", "b", "a"]),
            (TWO, [1, 2, 2, 2], 2, repeated.format(2) + forgotten.format(1, 2, " 1\n"), None),
            (TWO, [1], 2, forgotten.format(1, 2, " 2\n"), None),
            (TWO, [3], 0, none.format(3), []),
            (TWO, [0, -7, 1, 2], 0, "", ["a", "b"]),
            (TWO, [0], 2, forgotten.format(0, 2, " 1\n 2\n"), None),
            (shared, [4, 3, 2, 1], 2, forgotten.format(3, 4, " 4\n"), None),
            (shared, [5], 0, none.format(5), []),
        ]
        for model, numbers, status, printed, asked in cases:
            with self.subTest(numbers):
                tags = "".join(f"[QRV_QUESTION {n}]" for n in numbers)
                page = self.page(model.replace("Label", ""), "[QRV_SCRIPT][QRV_ANSWER 0]<form>" + tags, (status, printed))
                if asked is None:
                    self.assertIsNone(page)
                    continue
                controls = page.split("<form>")[1]
                self.assertEqual(re.findall(r"^(?:</div>\n)?(\w) \n<div", controls, re.M) or [], asked)
                calls = re.findall(r'^myEventListener\("(\w+)"\);\n(?=--></script>|myEvent)', controls, re.M)
                # The last script lists all controls before it.
                self.assertEqual(calls[-len(asked):], [f"m0_V{'ab'.index(field) + 1}" for field in asked])

    def test_lists_of_models(self):
        def model(*fields):
            models = [numeric(k, field, [0], [1, 2, 3]) for k, field in enumerate(fields, start=1)]
            return document(models, [(k, 1) for k in range(1, len(fields) + 1)], 0)

        page = self.page(self.models(model("a", "b", "c", "a"), None, model("c", "a"), model(), model("d", "b")), REQUIRED)
        order = re.findall(r"^var (\w+)_score = 0;", page, re.M)
        self.assertEqual(order, ["m0_V4", "m2_V2", "m0_V1", "m0_V3", "m2_V1", "m4_V1", "m4_V2", "m0_V2"])
        lines = re.findall(r"^      (\w+)_score = enterDoubleField\(document.QRVform.(\w+),", page, re.M)
        a = [("m0_V4", "m0_V1"), ("m2_V2", "m0_V1"), ("m0_V1", "m0_V1")]
        self.assertEqual(lines[:6], a + a[1:] + a[2:])
        # An absent model, in a list or alone, is not reported.
        self.assertIn("var maxHistogram=0;", self.page("none.ModelXml"))

        empty = self.write("list.Xml", "<Models><model/></Models>")
        self.assertIn("m0_total_proba", self.page(empty))
        empty = self.write("list.Xml", "<Models><x/></Models>")
        self.assertIsNone(self.page(empty, "", (2, "Couldn't find tag 'Model' in XML-Models file 'list.Xml'!")))

    def test_output_paths(self):
        for name, output in [("a.ModelXml", "a.html"), ("b.MODELXMLx.modelxml", "b.htmlx.html"), ("plain", "plain")]:
            self.write(name, ONE)
            self.assertEqual(self.run_program("-h", name), (0, ""))
            self.assertTrue((self.folder / output).read_bytes().startswith(b"<html>\n"))
        self.write("canvas", REQUIRED)
        self.assertEqual(self.run_program("-h", "a.ModelXml", "canvas"), (0, ""))
        self.assertTrue((self.folder / "a.html").read_bytes().startswith(b"<script"))
        for arguments in [["a.ModelXml", "canvas", "no/such/folder"], ["a.ModelXml", "canvas", "/dev/full"], [""]]:
            self.assertEqual(self.run_program("-h", *arguments), (0, ""))

    def test_arrays(self):
        def shortened(name, *values):
            return re.sub(f"(.*<{name}>)[^<]*", lambda m: m[1] + doubles(values), ONE)

        def unusable(problem):
            return 8, f"Cannot convert model 'model.ModelXml': {problem}.\n"

        self.assertIsNone(self.page(shortened("betas", 1), "",
                                    unusable("RegressionModel: array 'betas' has 1 values, 2 needed")))
        self.assertIsNone(self.page(shortened("y", 1, 2), "",
                                    unusable("ProbabilityMapping: array 'y' has 2 values, 3 needed")))
        # A model of another kind needs no constant, and arrays may be empty.
        self.assertIn("\n\t\t+ m0_V1_score * 1\n\tvar", self.page(shortened("betas", 1).replace('"T"', '"X"')))
        self.assertIn("var histogramMaxProba=0.25;", self.page(shortened("x", 1, 2)))  # the third probability
        self.assertIn("mapScore[0]  = [];\nmapProba[0]  = [];\n\nvar", self.page(shortened("x")))
        self.assertIn("var m0_V1_boundAr = [];\n\n", self.page(ONE.replace("<x>", "<w>", 1).replace("</x>", "</w>", 1)))
        # The script ends at a probability table that lacks an array.
        for name in ["x", "y"]:
            model, _, mapping = ONE.partition("<ProbabilityMapping>")
            cut = self.page(model + "<ProbabilityMapping>" + mapping.replace(f"{name}>", "w>"))
            self.assertIn("var mapProba = new Array();\n\n\n</head>", cut)
        page = self.page(document([numeric(1, "", range(5), range(11), label="")], [(1, 2), (1, 3)], 0,
                                  table=[(1, 0), (0, 1.2345678e-7), (-1, 1.2345678e-7)], kind="c"))
        for text in ["_scoreAr = [0,1,2,3,4,\n\t\t5,6,7,8,9,\n\t\t10];\n\nvar", "_boundAr = [0,1,2,3,4];\n\n",
                     "var m0_probaTot = 0\n\t\t+ m0_V1_score * 2\n\t\t+ 3; //",  # the first of two coefficients
                     "var histogramMaxProba=1.23457e-007;", "Question 1) V1 \n<div"]:
            self.assertIn(text, page)
        for tag in ["MetaData", "betas"]:
            self.assertNotIn("_score * ", self.page(ONE.replace(tag, "x" + tag)))
        self.assertIsNone(self.page(TWO.replace(integers([1, 2]), integers([1, 3])), "",
                                    (3, "Couldn't find regression index of var V2 in model 1!\n")))

    def test_slider_ranges(self):
        def counted(bounds, *counts, ordinal="1"):
            node = numeric(1, "a", bounds, [0] * (len(bounds) + 2)).replace("<x></x>", "")
            return node.replace("<x>", f"<nocc>{integers(counts)}</nocc><x>").replace(
                "<y>", f"<nocc>{integers(counts)}</nocc><y>").replace("<Model ", f'<Model ordinal="{ordinal}" ')

        cases = [
            (counted([-0.5, 99.2], 1, ordinal="0"), (-1, 100, 50)),
            (counted([1, 2, 3, 4.5], 0, 2, 1, 7), (1, 5, 5)),
            (counted([1, 2.4, 3], 0, 2, 2), (1, 3, 2)),
            (counted([1, 2.4], -1, 0), (1, 3, 1)),
            (counted([1, 2], 0, 0, 0, 9), (1, 2, 2)),
            (counted([], 0, 0, 4), (0, 0, 2)),
            (counted([-1e300, 1e300], 1, ordinal=""), (-2**31, 2**31 - 1, 0)),
            (counted([float("nan")], 1), (0, 0, 0)),
        ]
        for node, expected in cases:
            with self.subTest(expected):
                page = self.page(document([node], [(1, 1)], 0))
                found = re.search(r'type="range" min="(.*)" max="(.*)" value="(.*)" id="range_m0_V1"', page)
                self.assertEqual(tuple(map(int, found.groups())), expected)

    def test_categories(self):
        def offered(values, counts=(), tname="str", labels=None):
            node = categorical(1, "a", values, [0] * 9, tname=tname)
            node = node.replace("<y>", f"<nocc>{integers(counts)}</nocc><y>")
            node = node if labels is None else re.sub(r' label="\w*"', "", node)
            page = self.page(document([node], [(1, 1)], 0), REQUIRED)
            reads = "enterModalFieldString(" if len(values) > 5 else "enterModalFieldRadioButton("
            self.assertIn(f"m0_V1_score = {reads}document.QRVform.m0_V1,m0_V1_scoreAr);\n", page)
            found = re.findall(r'VALUE="(\d)"( selected="selected")?>(.*)|value="(\d)" (CHECKED)? >(.*)<br>', page)
            return [(int(m[0] or m[3]), m[2] or m[5], bool(m[1] or m[4])) for m in found]

        self.assertEqual(offered(["b", "a", "c"], (1, 1, 5, 5)),
                         [(0, "unknown", False), (2, "A", True), (1, "B", False), (3, "C", False)])
        # Of two categories with one value, the page offers the last but counts both for the kind of list.
        self.assertEqual(offered(["b", "a", "b", "B", "é"], labels="none"), [
            (0, "----- unknown -----", True), (4, "B", False), (2, "a", False), (3, "b", False), (5, "é", False)])
        for kind, shown in {"bb64": [(2, "True", True), (1, "False", False)],
                            "BB64": [(1, "No", False), (2, "Yes", True)]}.items():
            self.assertEqual(offered(["no", "yes"], (0, 1, 2), kind), [(0, "unknown", False), *shown])
        self.assertEqual(len(offered("abcdef")), 7)

    def test_large_inputs(self):
        """Quadratic run time would take minutes here."""
        count = 100_000
        models = [numeric(k, f"c{k % 50_000}", [0], [0, 1, 2]) for k in range(count)]
        large = document(models, [(k, 1) for k in range(count)], 0)
        started = time.monotonic()
        self.assertIn(f"m0_V{count - 1}_score * 1\n", self.page(large))
        self.page(ONE, "[QRV_STRING_TRUE " * count + " " * 10**6 + "/" + REQUIRED)
        self.assertLess(time.monotonic() - started, 60)

    def test_columns_of_too_many_variables(self):
        def shared(count, name=""):
            models = [categorical(k, f"c{k % 2}", [], [0]) for k in range(count)]  # without lists, so no lines
            text = document(models, [(k, 1) for k in range(count)], 0).replace("<Modalities></Modalities>", "")
            return text.replace('"V0"', f'"V0{name}"')

        self.assertIn("</SCRIPT>", self.page(shared(5791)))
        for model, lines in [(shared(5792), 8389712), (shared(2000, "x" * 1000), 1001000)]:
            problem = f"the models share columns so often that the script would have {lines} score lines"
            self.assertIsNone(self.page(model, "", (8, f"Cannot convert model 'model.ModelXml': {problem}.\n")))


if __name__ == "__main__":
    unittest.main()
