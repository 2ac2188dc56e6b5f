"""The findings of scorewright-check in models, configurations, canvases and rows: for each, the smallest case that has
it and the nearest ones that do not."""

import math
import re
import unittest

from engines import CheckedTest
from sql_program import configuration
from support import CODES, NO_YES, TABLE, TESTS, boolean, categorical, model, numeric

CANVAS = '[QRV_SCRIPT][QRV_ANSWER 0][QRV_DYN_SCALE][QRV_GRAPHICS]<form name="QRVform">[QRV_ALL_QUESTIONS]</form>'
ONE_BY_ONE = CANVAS.replace("[QRV_ALL_QUESTIONS]", "[QRV_QUESTION 1][QRV_QUESTION 2]")
INFINITY = math.inf


class Case:
    """The inputs: a document, a canvas, rows in one line with "|" for line ends, settings of SQL."""

    def __init__(self, text=model(), canvas=CANVAS, rows=None, key=None, **settings):
        self.text, self.key = text, key
        self.files = {"sql": configuration(**settings) if settings else None, "canvas": canvas, "rows": rows}


def n(bounds=(1, 2), scores=(0, 1, 2, 3), name="n", **more):
    return numeric(1, name, bounds, scores, **more)


def c(*values, number=2, name="c", scores=None):
    return categorical(number, name, values, scores or range(len(values) + 1))


def of(*changes, rows=None, key=None, **more):
    return Case(model(*changes, **more), rows=rows, key=key)


def sql(text=model(), rows=None, key=None, dbType="oracle", **settings):
    return Case(text, rows=rows, key=key, dbType=dbType, **settings)


def canvas(old="", new="", text=model()):
    return Case(text, CANVAS.replace(old, new))


LOGISTIC, OF_TABLE = of(method="softmax"), of(method="softmax", table=TABLE)
FLAGS = boolean(NO_YES)
BESIDE = n(scores=[0, math.nextafter(1 / 7, 0), 2, 3])  # above 1/7 as generated code shows it
SUMS = [(1, 1), (2, 1), (2, 1)]  # which targets add up differently
LONG = "n,c,k|1,a,short|1,a,012345678901234567890|1,a," + 21 * "é" + "|1,a," + 20 * "é"

# For each finding: a case with it in one place; if it counts rows, their number and the first of them; and near misses.
FINDINGS = {
    "lowest-segment": (of(table=TABLE, constant=-2, rows="n,c|0,b|1,|,a|,"), (2, 2), of(table=[(2, 0.9), (-1e-9, 0.5), (-2, 0.1)]),
                       of(table=[(2, 0.9), (0, 0.5), (0, 0.1)])),
    "lowest-point": (of(table=[(2, 0.9), (0, 0.5)], constant=-1, rows="n,c|,|,a|0,|1,b"), (2, 2), of(table=[(-1e-9, 0.5)])),
    "recoding-without-coefficient": (of(terms=[(1, 1)]), None, of(terms=[(1, 1), (2, 0)])),
    "coefficient-without-recoding": (of(terms=[*SUMS[:2], (3, 1)]), None, of(None, c("a", number=3), terms=[(1, 1), (3, 1)])),
    "equal-coefficients": (of(terms=SUMS), None, of(terms=[*SUMS[:2], (3, 1)])),
    "equal-numbers": (of(None, c("a", number=1), terms=[(1, 1)]), None, of(None, c("a", number=1), terms=[])),
    "single-bound": (of(n([1], [0, 1, 2]), rows="n,c|0,a|1,a|1.0,b|,a|2,a"), (2, 2), of(n([1, 1]))),
    "bound-digits": (of(n([0, 1 / 7]), rows="n,c|0.142857142857142,a|0.14285714285714285,a|0.1428571428571429,a"), (1, 2),
                     of(n([0, 0.1 + 0.7])), sql(model(n([0, 0.1234567890123456])))),
    "other-blanks": (of(rows="n,c|1, a |1,\ta|1,a\u00a0"), (2, 2), of(rows="n,c|1, a|\t1,a"), sql(dbType="teradata", rows="n,c|1,a|")),
    "nan-cell": (of(rows="n,c|1,a|nan,a|-inf,a|1e999,a"), (3, 2), of(rows="n,c|1e308,a|ten,a|,nan")),
    "not-listed": (of(None, None, c("a", "b", number=3), rows="n,c|1, a |1,?|1,x|1,|?,x"), (3, 2), of(rows="n,c|?,|7, b"), of(None, c("z"), c("a", number=3), rows="n,c|1,z|1,a")),
    "missing-codes-line": (of(missing=CODES), None, of(missing={"m": [9]})),
    "missing-codes-digits": (of(missing={"n": [1234567]}, rows="n,c|123457,a|1234567,a|1234570,a|1234571,a"), (2, 2),
                             of(missing={"n": [123456]})),
    "missing-codes-name": (of(n(name="a b-c"), missing={"a_b-c": [9], "a b-c": [8], "a_b_c": [7]}, rows="a b-c,c|9,a|8,a|7,a|6,a"),
                           (3, 1), of(n(name="a b-c"), missing=dict.fromkeys(["a_b-c", "a b-c", "a_b_c"], [9]))),
    "boolean-digits": (of(None, boolean(NO_YES, (0.1234567, 1.1234567, 2)), rows="n,c|1,?|1,no|1,yes"), (1, 2),
                       of(None, boolean(NO_YES, (0.1234567, 1.12345, 2, 1.1234567))), of(None, c("no", scores=[0, 1.1234567]))),
    "values-as-numbers": (of(None, c("1", "2.5"), rows="n,c|1,1|1,1.0|1,1.0000001|1,2.50"), (2, 2), of(None, c("1", "-2")),
                          of(None, boolean(list("111112"))), of(None, c())),
    "empty-number": (of(None, c("1", "")), None, of(None, c("1", ".")), of(None, c("a", "")), of(None, boolean([*"11111", ""]))),
    "quote-in-value": (of(None, c('5"')), None, of(None, c("5''"))),
    "long-name": (of(n(name=29 * "n")), None, of(n(name=28 * "n"))),
    "logistic-parenthesis": (LOGISTIC, None, OF_TABLE),
    "logistic-overflow": (of(n(scores=[0, -710, -709, 3]), method="softmax", rows="n,c|1,|0,"), (1, 2),
                          of(n(scores=[0, -709, 2, 3]), method="softmax", rows="n,c|1,|0,")),
    "no-terms": (of(terms=[]), None, of(terms=[(1, 0)])),
    "label-ends-comment": (of(n(label="a */ b")), None, of(n(label="a * / b"))),
    "unsupported-type": (of(n(kind="Rank")), None, of(n(kind="Discretize"))),
    "name-characters": (of(n(name="x(1)")), None, of(n(name="x_1")), of(n(name=32 * "n"))),
    "names-alike": (of(n(name="a b"), c("3", name="a.b"), rows="a b,a.b|3,3|1,3|3,1|3,4"), (2, 2), of(n(name="a b"), c("3", name="a(b"))),
    "no-probability": (sql(model(table=TABLE), dbType="default"), None, sql(dbType="default"), sql(model(table=TABLE), dbType="")),
    "sql-name": (sql(keyName="Order"), None, sql(keyName="Orders", schemaName="a.b", inputTable="c.d")),
    "quoted-name": (of(n(name="a b")), None, sql(model(n(name="a b"))), sql(model(n(name='a"b')), dbType="sqlserver")),
    "apostrophe-in-value": (of(None, c("it's")), None, sql(model(None, c("it's")), dbType="mysql")),
    "backslash-escape": (of(None, c("a\\c", "b", "x\\%"), rows="n,c|1,b|1,a\\c|1,ac|1,x%|1,x\\%"), (2, 2), sql(model(None, c("a\\b"))),
                         of(None, boolean([*NO_YES, "\\"]))),
    "boolean-numbers": (of(None, FLAGS, rows="n,c|1,0|1,2|1,no|1,1|1,x"), (3, 3), sql(model(None, FLAGS), boolsAreNumbers="0"),
                        of(None, c("no", "1"))),
    "boolean-blanks": (sql(model(None, FLAGS), "n,c|1,yes|1, yes|1, ?", boolsAreNumbers="0"), (1, 2), sql(model(None, FLAGS)),
                       sql(boolsAreNumbers="0")),
    "text-blanks": (sql(dbType="teradata", rows="n,c|1,a|1, a|1, x|1,b "), (2, 2), sql(), sql(model(None, FLAGS), dbType="teradata")),
    "capitals": (of(None, c("a", "ä"), rows="n,c|1,a|1,A|1,Ab|1,Ä"), (2, 2), of(None, c("A", "Ab", "Ä"), rows="n,c|1,A|1,Ab|1,Ä"),
                 of(None, FLAGS, rows="n,c|1,YES"), of(None, c("a", "b", "a"), rows="n,c|1,a")),
    "accents": (of(None, c("Zürich"), rows="n,c|1,Zürich|1,ZÜRICH|1,zurich"), (1, 3), of(None, c("Zürich"), rows="n,c|1,zürich")),
    "single-precision": (sql(dbType="duckdb"), None, sql(dbType="sqlite"), sql(dbType="mysql")),
    "rows-added": (sql(), None, sql(createPredictionTable="1")),
    "second-run": (sql(createPredictionTable="1"), None, sql(createPredictionTable="0")),
    "key-length": (of(rows=LONG, key="k"), (2, 2), of(rows="n,c,k|1,a, 01234567890123456789 |1,a," + 20 * "é", key="k"),
                   sql(rows=LONG, key="k"), sql(model(table=TABLE), LONG, "k", createTmpTable="0"), sql(model(table=TABLE), LONG, "k", useTmpTable="0")),
    "table-name-quoted": (sql(dbType="mysql", createPredictionTable="1", predictionTable="a b"), None,
                          *(sql(dbType=name, createPredictionTable=creates, predictionTable=table) for name, creates, table in
                            [("oracle", "1", "a b"), ("mysql", "0", "a b"), ("mysql", "1", "a_b")])),
    "distribute-id": (sql(model(table=TABLE), dbType="teradata_aster", keyName="k"), None,
                      *(sql(model(table=TABLE), **{"dbType": "teradata_aster", "keyName": "k", **change}) for change in
                        [{"keyName": "id"}, {"createTmpTable": "0"}, {"useTmpTable": "0"}, {"dbType": "teradata"}]),
                      sql(dbType="teradata_aster", keyName="k")),
    "comment-dashes": (sql(model(table=TABLE), dbType="mysql"), None, sql(dbType="mysql"), sql(model(table=TABLE)),
                       *(sql(model(table=TABLE), dbType="mysql", **{flag: "0"}) for flag in ["createTmpTable", "useTmpTable"])),
    "debug-recoding": (sql(debugRecoding="1"), None, sql(debugRecoding="0")),
    "debug-columns-alike": (sql(model(None, c("a", name="n")), debugRecoding="1"), None, sql(model(None, c("a", name="n"))),
                            sql(model(None, c("a", name="N")), debugRecoding="1")),
    "small-number": (of(constant=-9.9e-13), None, of(constant=1e-12), of(constant=-1),
                     of(n(scores=[0, 1e-13, 2, 3]), terms=[(1, 1e6), (2, 1)])),
    "logistic-absent": (LOGISTIC, None, OF_TABLE),
    "quote-in-title": (of(n(name='a"')), None, of(n(name="a''"))),
    "code-page": (of(None, c("a", "zł")), None, of(n(name="Ÿ€"), c("à\u00a0", "\x7f"))),
    "true-false": (of(None, c("TRUE"), rows="n,c|1,FALSE|1,true|1,TRUE|1,True|1,truth"), (3, 2), of(None, c("true", "TRUE."))),
    "missing-codes-parenthesis": (of(missing=CODES), None, of(n(name="a-b"), missing={"a-b": [9]})),
    "no-categories": (of(None, numeric(2, "m", [1, 2], [0, 1, 2, 3])), None, of(None, FLAGS)),
    "logistic-last-row": (LOGISTIC, None, OF_TABLE),
    "backslash-in-value": (of(None, c("a\\0", "q\\q\\n", "b\\q"), rows="n,c|1,b\\q|1,a\\0|1,q\\q\\n"), (2, 2), of(None, c("a/0"))),
    "five-categories": (of(None, c(*"abcde"), rows="n,c|1,x|1,a|1,e"), (2, 2), of(None, c(*"abcd")), of(None, c(*"abcdef")),
                        of(None, boolean([*"aaaae"]))),
    "lowest-nan": (of(kind="T", table=TABLE, constant=-2, rows="n,c|,a|,|0,"), (1, 2), of(kind="T", table=TABLE, constant=-1.9),
                   of(table=TABLE, constant=-2)),
    "table-unread": (of(table=TABLE), None, of(kind="T", table=TABLE)),
    "missing-codes-unread": (of(missing=CODES, rows="n,c|1,a|9,a|9.0,a"), (2, 2), of(missing={"m": [9]})),
    "empty-field": (of(rows="n,c|1,a|,a| ,b"), (2, 2), of(rows="n,c|0,|ten,a")),
    "not-a-number": (of(None, None, numeric(3, "n", [1, 2], [0, 1, 2, 3]), rows="n,c|1,a|ten,b|+-1,b|1e,a"), (3, 2), of(rows="n,c|,ten|-1e1,ten|nan,a|-inf,a|+1,a")),
    "page-error": (of(kind="X"), None, of(kind="c"), of(kind="t", table=TABLE)),
    "canvas-scale": (canvas("[QRV_GRAPHICS]"), None, canvas("[QRV_DYN_SCALE]")),
    "bar-scale": (of(kind="T", table=TABLE[:2]), None, of(kind="T", table=TABLE[:3]), of(table=TABLE[:2])),
    "constant-misplaced": (of(terms=SUMS), None, of(terms=[(2, 1), (2, 1)])),
    "percent-sign": (Case(canvas=None), None, Case(model(kind="T", table=TABLE), canvas=None)),
    "shared-values": (of(c("b", "a", number=1), c("a", "b"), rows="c|x|a|b"), (2, 2),
                      of(c("a", "b", number=1), c("a", "b", scores=[3, 4, 5]))),
    "array-too-long": (of(n(scores=[0, 1, 2, 3, 4]), rows="n,c|1,a|3,a|2,a|ten,a"), (2, 2), of(n([1, 2, 3], [0, 1, 2, 3, 4]))),
    "unknown-setting": (sql(dbTpye="mysql"), None, sql(USETMPTABLE="1")),
    "unknown-dialect": (sql(dbType="MariaDB"), None, sql(dbType="SQLServer"), sql(dbType=""), sql(dbType="sqlite")),
    "flag-text": (sql(useTmpTable="yes"), None, sql(useTmpTable="", boolsAreNumbers="1", debugRecoding="0", odbcLogin="yes")),
    "table-name-cut": (sql(model(table=TABLE), predictionTable=56 * "t"), None, sql(model(table=TABLE), predictionTable=55 * "t"),
                       sql(model(table=TABLE), predictionTable=64 * "t", useTmpTable="0"), sql(predictionTable=64 * "t")),
    "empty-name": (sql(prediction=""), None, sql(prediction=None, schemaName="")),
    "password-in-clear": (sql(kestruneScript="1", odbcPassword="p"), None, sql(odbcPassword="p"), sql(kestruneScript="1", odbcPassword="")),
    "canvas-not-read": (Case(canvas="QRVform 9"), None, Case(canvas="QRVform 10")),
    "canvas-tag-missing": (canvas("[QRV_ANSWER 0]"), None, Case(canvas=ONE_BY_ONE)),
    "canvas-number": (canvas("0]", f"{2 ** 64}]"), None, canvas("0]", " +0 ]")),
    "canvas-question": (Case(canvas=ONE_BY_ONE.replace("2]", "1]")), None, Case(canvas=ONE_BY_ONE), canvas()),
    "canvas-answer": (Case(canvas=CANVAS + "[QRV_ANSWER 0]"), None, canvas()),
    "canvas-form": (canvas("QRVform", "QRVForm"), None, canvas()),
    "canvas-colours": (canvas("[QRV_SCRIPT]", "<!DocType html>[QRV_SCRIPT]"), None, canvas(),
                       canvas("[QRV_SCRIPT]", "<!doctype html>QRVSpecifiedHistogramColor[QRV_SCRIPT]")),
    "document-cut": (Case(model().removesuffix("</QRV_Model>")), None, Case(model() + "\n<!-- end -->")),
    "bounds-not-rising": (of(n([1, 1])), None, of(n([1, math.nextafter(1, 2)]))),
    "table-not-falling": (of(table=[(1, 0.5), (2, 0.5), (0, 0.1)]), None, of(table=[(1, 0.5), (1, 0.5), (0, 0.1)])),
    "probability-range": (of(table=[(2, 1), (1, 0.5), (0, -1e-9)]), None, of(table=[(2, 1), (1, 0.5), (0, 0)])),
    "probability-order": (of(table=[(3, 0.5), (2, 0.6), (1, 0.1), (0, 0)]), None, of(table=[(3, 0.5), (2, 0.5), (1, 0.6), (0, 0.6)])),
    "table-absent": (of(kind="T"), None, of(kind="T", method="softmax")),
    "not-finite": (of(constant=INFINITY), None, of(constant=1e308)),
    "value-twice": (of(None, c("a", "b", "a"), rows="n,c|1,b|1,a|1,x"), (1, 2), of(None, c("a", "A")),
                    of(None, boolean(["a"] * 5 + ["b"] * 2))),
    "empty-value": (of(None, c("", "b"), rows="n,c|1,b|1,|1, "), (2, 2), of(None, c(" ", "b"))),
    "value-blanks": (of(None, c("a "), rows="n,c|1,b|1,a|1,a |1,A"), (2, 2), of(None, c("a b"))),
}

# Other causes of findings, with the targets that they are reported for and the rows as above; a single number counts the
# rows that they affect only together with others.
EVERY = "sas sql vba python html"
CAUSES = [
    # The score of another sum may go below that of the model, and a negative coefficient turns the range of scores.
    ("lowest-segment", "sql vba python", None, of(terms=SUMS, table=[(2, 0.9), (-1, 0.5), (-2, 0.1)])),
    ("lowest-segment", "sql vba python", None, of(terms=[(1, -1), (2, 1)], table=[(2, 0.9), (-2, 0.5), (-4, 0.1)])),
    ("lowest-segment", "vba python", None, sql(model(table=TABLE), dbType="default")),
    ("single-bound", EVERY, None, of(n([1], [0, 1, 2]))),
    ("missing-codes-unread", "html", (1, 2), of(n(scores=[math.nan, math.nan, 2, 3]), missing=CODES, rows="n,c|,a|9,a")),
    ("name-characters", "sas", None, of(n(name="é"))),
    ("name-characters", "sas python", None, of(n(name="1x"))),
    ("code-page", "vba", None, of(n(name="ж"))),
    *(("name-characters", "sas", None, of(target=target)) for target in ["y-1", 27 * "y"]),
    ("name-characters", "sas", None, of(n(name=33 * "n"))),
    ("name-characters", "sas vba python", None, of(n(name="R&D"))),
    ("name-characters", "sas python", None, of(n(name=31 * "n" + "&"))),
    ("empty-number", "sas", None, of(None, c("1", "1.2.3"))),
    # The codes of another name are rounded, and an empty field equals a code of 0.
    ("missing-codes-digits", "vba python", None, of(n(name="O'B"), missing={"O_B": [1234567]})),
    ("bound-digits", EVERY, (1, 2), of(BESIDE, table=[(3, 0.9), (1 / 7, 0.6), (1 / 7, 0.2), (-9, 0)], rows="n,c|1,|0,")),
    ("bound-digits", "sql", None, sql(model(n([1, 123456789.0123456])), dbType="teradata")),
    ("bound-digits", EVERY, None, of(BESIDE, table=[(3, 0.9), (1 / 7, 0.6), (0.14, 0.1)], rows="n,c|0,")),
    ("other-blanks", "sas vba python", (1, 1), sql(dbType="teradata", rows="n,c|1,\ta")),
    ("value-twice", "sas sql vba", (1, 2), of(None, None, c("a", "b", "a", number=3), rows="n,c|1,b|1,a")),
    ("empty-field", "html", 1, of(missing={"n": [0]}, rows="n,c|,a")),
    ("boolean-blanks", "sql", None, sql(model(None, FLAGS), "n,c|1,yes ", dbType="mysql", boolsAreNumbers="0")),
    ("quoted-name", "sql", None, sql(model(n(name="a b")), dbType="mysql")),
    ("backslash-escape", "sql", None, sql(model(None, c("a\\b")), dbType="mysql")),
    ("names-alike", "sas", None, of(None, c("a", name="N"))),
    ("sql-name", "sql", None, sql(keyName="1k")),
    ("sql-name", "sql", None, sql(keyName="a.b")),
    ("quoted-name", "sql", None, sql(model(n(name='a"b')))),
    ("capitals", "sql", (1, 1), sql(model(None, FLAGS), "n,c|1,YES", boolsAreNumbers="0")),
    ("small-number", "sql", None, of(n(scores=[0, 1e-7, 2, 3]), terms=[(1, 1e-6), (2, 1)])),
    ("logistic-absent", "sql vba", None, of(kind="T", method="softmax")),
    ("true-false", "vba", (2, 1), of(None, boolean(["False"] * 5 + ["TRUE"]), rows="n,c|1,FALSE|1,TRUE|1,False|1,True")),
    ("page-error", "html", None, of(kind="T")),
    ("page-error", "html", None, of(kind="X", table=TABLE)),
    ("canvas-scale", "html", None, canvas("[QRV_DYN_SCALE]", text=model(kind="T", table=TABLE))),
    # HTML shows five values as a list but reads them as buttons; numbers have a field.
    ("shared-values", "html", (1, 2), of(c(*"abcd", number=1), c(*"abcde"), rows="c|x|a")),
    ("shared-values", "html", (1, 1), of(c(*"12345", number=1, name="n"), numeric(2, "n", [1, 2], [0, 1, 2, 3]), rows="n|2")),
    ("shared-values", "html", (1, 2), of(boolean([*"nnnnny"], number=1), boolean([*"00000y"]), rows="c|y|n")),
    ("shared-values", "html", (1, 3), of(c("no", "yes", number=1), FLAGS, rows="c|no|yes|NO")),
    ("shared-values", "html", None, of(categorical(1, "c", NO_YES, range(7)), FLAGS)),
    ("table-name-cut", "sql", None, sql(predictionTable=65 * "t")),
    ("canvas-tag-missing", "html", None, canvas("[QRV_ALL_QUESTIONS]")),
    ("canvas-number", "html", None, canvas("0]", "]")),
    ("canvas-question", "html", None, Case(canvas=ONE_BY_ONE.replace("2]", "3]"))),
    ("canvas-question", "html", None, Case(canvas=ONE_BY_ONE.replace("[QRV_QUESTION 2]", ""))),
    ("canvas-answer", "html", None, canvas("0]", "7]")),
    ("bounds-not-rising", EVERY, None, of(n([math.nan, 1]))),
    *(("not-finite", EVERY, None, of(*change, **more)) for change, more in [
        ([], {"missing": {"n": [INFINITY]}}), ([n([1, math.nan])], {}), ([None, c("a", scores=[0, math.nan])], {}),
        ([], {"terms": [(1, INFINITY), (2, 1)]}), ([], {"table": [(INFINITY, 0.5), (-1, 0.1)]})]),
]


def rows_of(finding):
    return (finding["rows"], finding["firstRow"]) if finding.get("rows") else finding.get("together")


class FindingsTest(CheckedTest):
    def found(self, case):
        self.write("m.ModelXml", case.text)
        arguments = ["--key", case.key] if case.key else []
        for name, content in case.files.items():
            if content is not None:
                content = content.replace("|", "\n") + "\n" if name == "rows" else content
                arguments += [f"--{name}", self.write(name, content, "utf-8")]
        return self.report("m.ModelXml", *arguments)["findings"]

    def test_tables(self):
        """Each finding is tested here, and one table of the manual describes it in the words of the report."""
        source = (TESTS.parent / "check/findings/findings.cpp").read_text()
        kinds = re.findall(r'^    {\w+, u"([\w-]+)", .*?,\n +u"((?:[^"\\]|\\.)*)",\s+u"((?:[^"\\]|\\.)*)", u"([\w-]+\.md)"},$',
                           source, re.M | re.S)
        described = []
        for page in (TESTS.parent / "docs").glob("*.md"):
            for what, remedy, name in re.findall(r"^\| ([^|\n]+) \| [^|\n]+ \| ([^|\n]+) \| `([\w-]+)` \|$", page.read_text(), re.M):
                described.append((name, *(re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", text).replace("`", "") for text in (what, remedy)),
                                  page.name))
        unescaped = [(name, *(re.sub(r"\\(.)", r"\1", text) for text in texts), page) for name, *texts, page in kinds]
        for kind in unescaped:
            self.assertIn(kind, described)
        self.assertEqual(sorted(FINDINGS), sorted(name for name, *_ in described))

    def found_of(self, name, case):
        return [finding for finding in self.found(case) if finding["name"] == name]

    def test_findings(self):
        for name, (case, rows, *near_misses) in FINDINGS.items():
            with self.subTest(name):
                self.assertEqual([rows_of(finding) for finding in self.found_of(name, case)], [rows])
            for number, near_miss in enumerate(near_misses, start=1):
                with self.subTest(name, near_miss=number):
                    self.assertEqual(self.found_of(name, near_miss), [])

    def test_causes(self):
        for number, (name, targets, rows, case) in enumerate(CAUSES):
            with self.subTest(name, number=number):
                finding, *_ = self.found_of(name, case)
                self.assertEqual((" ".join(finding["targets"]), rows_of(finding)), (targets, rows))

    def test_places(self):
        """The most frequent unlisted text, and rows that findings affect only together."""
        for name, text, rows, place in [("not-listed", model(), "1,~|1,x|1,z|1,z|1,z|1,x", "recoding V2 (column c), most often 'z' in 3 rows"),
                                        ("table-not-falling", model(table=[(0.1, 0.5), (0.1 + 2**-56, 0.1)]), "",
                                         "table, point 2 (score 0.10000000000000002)")]:
            self.assertEqual(self.found_of(name, Case(text, rows="n,c|" + rows))[0]["place"], place)
        self.found(of(missing={"n": [0]}, rows="n,c|,a"))
        self.assertIn("(column n): 0 rows; 1 row only together with other findings\n", self.check("m.ModelXml", "--rows", "rows")[1])

    def test_models_without_findings(self):
        for case, names in [(Case(), []), (of(kind="T", table=[(3, 0.9), (-1, 0.5), (-2, 0.1)]), []),
                            (Case(canvas=ONE_BY_ONE, rows="n,c,k|1,a,1", key="k"), []), (sql(), ["rows-added"])]:
            self.assertEqual([finding["name"] for finding in self.found(case)], names)

    def test_order(self):
        """Findings are reported in the order of the manual."""
        text = model(n([2, 1], name="1 x", label="*/"), c("TRUE", " ", '"'), constant=INFINITY)
        names = [finding["name"] for finding in self.found(sql(text, dbTpye=""))]
        self.assertEqual(sorted(names, key=list(FINDINGS).index), names)
        self.assertGreater(len(set(names)), 8)


if __name__ == "__main__":
    unittest.main()
