"""Shared by the tests of the program: running it, and small documents."""

import os
import resource
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from xml.sax.saxutils import quoteattr

TESTS = Path(__file__).resolve().parent
EXAMPLES = TESTS.parent / "examples"
PROGRAM = os.environ.get("SCOREWRIGHT", str(TESTS.parent / "build-release" / "scorewright"))
# scripts/windows puts a wrapper script of this name beside the program for Windows.
FOR_WINDOWS = Path(PROGRAM + ".exe").exists()
BANNER = "Qorv Model Exportation v1.07\n=============================\n"

sys.path[:0] = [str(TESTS.parent / "python"), str(EXAMPLES)]
from scorewright import doubles, integers  # noqa: E402


def not_on_windows(reason):
    return unittest.skipIf(FOR_WINDOWS, reason)


class ProgramTest(unittest.TestCase):
    """Runs the program in a folder of its own, so that messages contain short names."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def run_program(self, *arguments, memory=None, limit=None, stdin=None):
        """The exit status and the output after the banner. `stdin` goes through a pipe; `limit` is called in the child
        process. `memory` is a limit in bytes, not set under the address sanitizer and wine, which reserve more."""
        if memory is not None and not FOR_WINDOWS and b"__asan_init" not in Path(PROGRAM).read_bytes():
            limit = lambda: resource.setrlimit(resource.RLIMIT_AS, (memory, memory))  # noqa: E731
        run = subprocess.run([PROGRAM, *arguments], cwd=self.folder, capture_output=True, timeout=120, preexec_fn=limit,
                             input=stdin)
        self.assertEqual(run.stderr, b"")
        text = run.stdout.decode("utf-8")
        self.assertTrue(text.startswith(BANNER), text)
        return run.returncode, text[len(BANNER):]

    def write(self, name, text, encoding="utf-8-sig"):
        (self.folder / name).write_bytes(text.encode(encoding))
        return name

    def convert(self, option, document, output="out", *more):
        """Converts a document given as text; returns the output without its byte-order mark."""
        self.write("model.ModelXml", document)
        status, printed = self.run_program(option, "model.ModelXml", output, *more)
        self.assertEqual((status, printed), (0, "" if option == "-p" else "Conversion successful!\n"))
        return self.read(output)

    def read(self, name):
        data = (self.folder / name).read_bytes()
        if data.startswith(b"\xff\xfe"):
            return data[2:].decode("utf-16-le", "surrogatepass")
        self.assertEqual(data[:3], b"\xef\xbb\xbf")
        return data[3:].decode("utf-8")

    def assert_golden(self, name, text):
        """Golden files are in UTF-8 and reviewed by eye; SCOREWRIGHT_GOLDEN=write overwrites them."""
        path = TESTS / "golden" / name
        if os.environ.get("SCOREWRIGHT_GOLDEN") == "write":
            path.parent.mkdir(exist_ok=True)
            path.write_text(text, encoding="utf-8", newline="\n")
        self.assertEqual(path.read_text(encoding="utf-8"), text)


def numeric(number, field, x, y, kind="NormContinuous", label="Label"):
    return (f'<Model name="V{number}" field={quoteattr(field)} displayName={quoteattr(label)} type="{kind}">'
            f"<x>{doubles(x)}</x><y>{doubles(y)}</y></Model>")


def categorical(number, field, values, y, tname="str", label="Label"):
    mods = "".join(f"<Mod val={quoteattr(v)} label={quoteattr(v.title())}/>" for v in values)
    return (f'<Model name="V{number}" field={quoteattr(field)} displayName={quoteattr(label)} type="MapValues"'
            f' tname="{tname}"><y>{doubles(y)}</y><Modalities>{mods}</Modalities></Model>')


def mapping(table):
    return (f"<ProbabilityMapping><x>{doubles([x for x, _ in table])}</x><y>{doubles([y for _, y in table])}</y>"
            "</ProbabilityMapping>")


def document(models, terms, constant, table=None, target="Bad Payer.x", method=None, missing=None, kind="T"):
    """terms: (number, coefficient); table: (score, probability); missing: dictionary field -> codes."""
    fields = "".join(f'<DataField name={quoteattr(name)}><Missing>{doubles(codes)}</Missing></DataField>'
                     for name, codes in (missing or {}).items())
    return (f'<?xml version="1.0"?><QRV_Model><Header version="4.2.1"/><MetaData tkind="{kind}">'
            f"<Target>{target}</Target></MetaData><UnivModels>{''.join(models)}</UnivModels>"
            f"<RegressionModel{'' if method is None else f' normalizationMethod={quoteattr(method)}'}>"
            f"<indexes>{integers([n for n, _ in terms])}</indexes>"
            f"<betas>{doubles([beta for _, beta in terms] + [constant])}</betas></RegressionModel>"
            f"{'' if table is None else mapping(table)}<DataDictionary>{fields}</DataDictionary></QRV_Model>")


TABLE = [(3, 0.9), (1, 0.6), (0, 0.5), (-2, 0.1)]
NO_YES = ["no", "NO", "n", "N", "0", "yes"]
CODES = {"n": [9]}


def model(*changes, terms=((1, 1), (2, 1)), constant=0, kind="C", **more):
    """A plain model with a numeric column and a list; `changes` replace its recodings."""
    recodings = [numeric(1, "n", [1, 2], [0, 1, 2, 3]), categorical(2, "c", ["a", "b"], [0, 1, 2])]
    recodings[:len(changes)] = [change or given for change, given in zip(changes, recodings)]
    return document([*recodings, *changes[2:]], list(terms), constant, **{"target": "y", "kind": kind, **more})


def boolean(values, scores=(0, 1, 2), number=2, name="c"):
    return categorical(number, name, values, scores, tname="bb64")


def terms_document(count):
    """A regression of many terms over numeric columns of one bound each."""
    models = [numeric(k, f"c{k}", [k], [0, k, -k]) for k in range(1, count + 1)]
    return document(models, [(k, k / 8) for k in range(1, count + 1)], 0.5)


# Small documents with golden outputs of each exporter.
DOCUMENTS = {
    # Every kind of recoding and name; two recodings of number 4, the later of which has the term; a probability table
    # with two points of one score and a flat segment.
    "kinds": document(
        [
            numeric(1, "Age in.years", [18, 1e-05, 65.5], [0.1, -0.2, 1 / 3, 1 / 3, 0.5], label="Age (years)"),
            numeric(2, "rate", [2.5], [0, 1e18, -1e-05], kind="Discretize", label="R&D's rate"),
            categorical(3, "job-type", ["5\" pipe", "clerk", "it's", "1"], [0.25, -1, 2, 3, 4], label='The "job"'),
            categorical(4, "size", ["1", "2.5", "10"], [0, 1.5, -1.5, 0.1]),
            categorical(12, "records", ["no", "N", "0", "false", "f", "yes", "TRUE"], [0.7, -1 / 3, 1e-07], tname="bb64"),
            numeric(4, "Age in.years", [10, 20, 30, 40, 50], [0, 1, 2, 2, 2, 3, 4], label="Âge (ans) €"),
            categorical(7, "a field name that is longer than 31", ["straße"], [0, 2**60]),
        ],
        [(7, 0.5), (4, -1.25), (1, 2), (3, 1e-13), (2, 1), (12, -10)], 1 / 3,
        table=[(3, 0.9), (2, 0.9), (2, 0.8), (1, 1 / 3), (-0.5, 0.25), (-2, 0.01)]),
    # Missing codes, and no table: one code, several, a list that decodes to none, and none because the first of two
    # fields with one name counts.
    "missing": document(
        [
            numeric(1, "one", [1, 2], [5, 6, 7, 8]),
            numeric(2, "many codes", [1, 2], [-5, 6, 6, 6]),
            numeric(3, "nothing", [0], [1, 2, 3]),
            numeric(4, "none", [0, 0.5], [1, 2, 3, 4, 99]),  # one score too many
        ],
        [(1, 1), (2, 2), (3, 3), (4, 4)], -1,
        missing={"One": [-1], "many_codes": [-999.5, 1e6, 1.5e-07, 99], "many codes": [98, 97], "nothing": []},
        kind="C").replace("<Missing></Missing>", "<Missing>QQ==</Missing>").replace("</DataDictionary>", (
            f'<DataField name="NONE"/><DataField name="none"><Missing>{doubles([1])}</Missing></DataField>'
            "</DataDictionary>")),
    # The logistic form, no target column, and a coefficient after the constant.
    "logistic": document([numeric(1, "a", [0, 1], [0, 1, 2, 3]), categorical(2, "b", ["x"], [0, 1])],
                         [(2, 0.5), (1, 1)], 0, target="", method="softmax").replace(
                             doubles([0.5, 1, 0]), doubles([0.5, 1, 0, 7])),
    # No recodings.
    "none": document([], [], 0.125, table=[(1, 0.75)]),
}
