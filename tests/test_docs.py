"""The README and the manual, held against the program. A fenced block is checked by its language and the comment
before it:

```console                  what follows "$ " is run, and prints the lines below it
<!-- from: credit.sas -->   the block's lines stand together in that file
<!-- file: score.py -->     the block is written to that file
<!-- not run: reason -->    nothing checks it
```sh                       is not run: scripts of the repository, which must be there, and a few tools

Each page has a folder of its own with examples/ in it. Blocks are taken in order, excerpts after all others. "…" stands
for any text of a line and, on a line of its own, for any lines."""

import glob
import os
import re
import shlex
import shutil
import sqlite3
import subprocess
import unittest
from pathlib import Path

import pandas

from sql_program import SqlProgramTest, configuration
from support import EXAMPLES, PROGRAM, TESTS, ProgramTest, categorical, document, numeric

ROOT = TESTS.parent
MANUAL = ROOT / "docs"
PAGES = [ROOT / "README.md", *sorted(MANUAL.glob("*.md"))]
UNRUN_PAGES = [*(ROOT / name for name in ["ARCHITECTURE.md", "CONTRIBUTING.md", "CHANGELOG.md"]),
               *EXAMPLES.glob("*/README.md")]
FOLDERS = "app|benchmarks|check|cmake|docs|examples|exporters|model|python|scripts|tests|xml"
BLOCK = re.compile(r"(?:<!-- (?P<mark>[^\n]*) -->\n)?^```(?P<language>\w*)\n(?P<text>.*?)^```$", re.M | re.S)
TOOLS = {"apt", "cmake", "cp"}


def pattern(text):
    """The regular expression of a text whose ellipses stand for anything."""
    return "".join("(?:.*\n)*?" if line == "…" else re.escape(line).replace("…", ".*") + "\n"
                   for line in text.splitlines())


def decoded(path):
    data = path.read_bytes()
    return data.decode("utf-16" if data.startswith(b"\xff\xfe") else "utf-8-sig")


def rows(page, title):
    """The cells of the table whose first column has that title."""
    table = re.search(rf"^\| {title} \|.*\n\|[- |]+\n((?:\|.*\n)+)", (MANUAL / page).read_text(), re.M)[1]
    return [[cell.strip() for cell in line[1:-1].split("|")] for line in table.splitlines()]


def code(cell):
    """What stands in a cell as code."""
    return re.findall(r"`([^`]*)`", cell)


class PagesTest(ProgramTest):
    def setUp(self):
        super().setUp()
        # The installed tree is what the manual is read with.
        subprocess.run(["cmake", "--install", Path(PROGRAM).parent, "--prefix", self.folder], check=True,
                       stdout=subprocess.DEVNULL)
        self.installed = self.folder / "share" / "doc" / "scorewright"
        self.environment = {**os.environ, "PATH": f"{self.folder}/bin:/usr/bin:/bin", "LC_ALL": "C.UTF-8",
                            "PYTHONPATH": str(self.folder / "lib/python3/dist-packages")}

    def check_console(self, folder, text):
        self.assertTrue(text.startswith("$ "))
        for command, printed in re.findall(r"^\$ (.*\n)((?:(?!\$ ).*\n)*)", text, re.M):
            run = subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=folder, env=self.environment,
                                 encoding="utf-8", stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
            if not re.fullmatch(pattern(printed), run.stdout):
                self.assertEqual(run.stdout, printed, command)
            self.assertEqual(run.returncode, 0, command)

    def check_tools(self, _, text):
        for line in text.splitlines():
            tool = line.removeprefix("sudo ").split()[0]
            self.assertTrue(tool in TOOLS or os.access(ROOT / tool, os.X_OK), line)

    def check_block(self, folder, mark, language, text):
        kind, _, name = (mark or "").partition(": ")
        if kind == "from":
            self.assertIn(language, ["sas", "sql", "vba", "python", "html", "xml", "js"])
            self.assertTrue(re.search(f"(?m)^{pattern(text)}", decoded(folder / name)), f"not in {name}:\n{text}")
        elif kind == "file":
            (folder / name).write_text(text, "utf-8")
        elif kind == "not run":
            self.assertTrue(name)
        else:
            self.assertIn((mark, language), [(None, "console"), (None, "sh")])
            {"console": self.check_console, "sh": self.check_tools}[language](folder, text)

    def test_blocks(self):
        for page in PAGES:
            text = page.read_text()
            folder = self.folder / page.stem
            folder.mkdir()
            shutil.copytree(self.installed / "examples", folder / "examples")
            blocks = list(BLOCK.finditer(text))
            self.assertEqual(2 * len(blocks), len(re.findall("^ *```", text, re.M)), page)
            for block in sorted(blocks, key=lambda block: (block["mark"] or "").startswith("from: ")):
                with self.subTest(page=page.name, line=text.count("\n", 0, block.start()) + 1):
                    self.check_block(folder, *block.groups())

    def test_examples(self):
        """The installed scripts write the same documents anew, with the package that is installed beside them."""
        for script in ["credit/fit_credit.py", "claims/make_claims.py"]:
            path = self.installed / "examples" / script
            document = path.with_name(path.parent.name + ".ModelXml")
            document.unlink()
            subprocess.run(["/usr/bin/python3", "-B", path], env=self.environment, check=True, stdout=subprocess.DEVNULL)
            self.assertEqual(document.read_bytes(), (EXAMPLES / path.parent.name / document.name).read_bytes())

    def test_completion(self):
        """Each program's file completes what was typed of its call."""
        for name in ["m.ModelXml", "canvas.html", "rows.csv", "sql.xml"]:
            self.write(name, "")
        for call, offered in [("scorewright -", "-a -s -e -p -h"), ("scorewright -a m", "m.ModelXml"),
                              ("scorewright -h m.ModelXml c", "canvas.html"), ("scorewright -s s", "share sql.xml"),
                              ("scorewright-check m", "m.ModelXml"), ("scorewright-check m --rows r", "rows.csv"),
                              ("scorewright-check m --target sas,s", "sas,sas sas,sql"),
                              ("scorewright-check m --score", "--scores --score")]:
            program, (before, word) = call.split()[0], call.split()[-2:]
            script = (f"source share/bash-completion/completions/{program}; COMP_WORDS=({call}); COMP_CWORD={call.count(' ')};"
                      f"f=$(complete -p {program}); f=${{f#*-F }}; ${{f% *}} {program} {word} {before}; echo ${{COMPREPLY[*]}}")
            run = subprocess.run(["bash", "-c", script], cwd=self.folder, capture_output=True, encoding="utf-8")
            self.assertEqual((run.stdout, run.stderr), (offered + "\n", ""), call)

    def test_links_and_names(self):
        files = re.search(r"install\(FILES ([^$]*)", (ROOT / "cmake" / "Packaging.cmake").read_text())[1].split()
        for page in PAGES + UNRUN_PAGES:
            text = BLOCK.sub("", page.read_text())
            for target in re.findall(r'\]\(([^)]*)\)|src="([^"]*)"', text):
                name, _, anchor = "".join(target).partition("#")
                linked = page.parent / name if name else page
                with self.subTest(page=page.name, target=target):
                    self.assertTrue(linked.exists())
                    self.assertIn(linked.resolve().relative_to(ROOT).parts[0], [*files, "docs", "examples"])
                    titles = re.findall("^#+ (.*)", linked.read_text(), re.M) if anchor else [""]
                    self.assertIn(anchor, [re.sub(r"[^\w -]", "", title.lower()).replace(" ", "-") for title in titles])
            for name in re.findall(rf"`((?:{FOLDERS})/[^`\s<]*|[\w*]+\.(?:cpp|h))(?=[`\s])", text):
                with self.subTest(page=page.name, name=name):
                    self.assertTrue(glob.glob(f"{ROOT}/{name}") or glob.glob(f"{ROOT}/*/**/{name}", recursive=True))

    def test_man_pages(self):
        """Each is made of the page of its name; SCOREWRIGHT_GOLDEN=write makes them anew."""
        for source in MANUAL.glob("*.1.md"):
            page = source.with_suffix("")
            made = subprocess.run(["lowdown", "-s", "-Tman", "--nroff-nolinks", "-M", f"title={page.stem.upper()}", "-M",
                                   "section=1", source], capture_output=True, check=True, encoding="utf-8").stdout
            # The first line asks for tbl; messages are neither hyphenated nor stretched.
            made = made.replace('.\\" -*-', "'\\\" t -*-", 1).replace('" ""\n', '" ""\n.nh\n.ad l\n', 1)
            made = made.replace("lb lb lb\nl l l.", "lb lb lb\nl lw(3.7i) lw(1.6i).")  # wide enough for the longest word
            self.assertTrue((self.folder / "share/man/man1" / page.name).exists())
            if os.environ.get("SCOREWRIGHT_GOLDEN") == "write":
                page.write_text(made, "utf-8")
            self.assertEqual(page.read_text("utf-8"), made)


class TablesTest(SqlProgramTest):
    def test_messages(self):
        """The table holds what these calls print, and nothing else."""
        models = [numeric(1, "a", [0], [1, 2, 3]), numeric(2, "b", [0], [1, 2, 3])]
        one, two = document(models[:1], [(1, 1)], 0), document(models, [(1, 1), (2, 1)], 0)
        shared = [categorical(k, "c", [], [0]) for k in range(5000)]
        needed = "[QRV_SCRIPT][QRV_ANSWER 0]"
        files = {
            "one": one, "two": two, "empty": "", "entity": "<a>&b;</a>", "other": "<a/>", "list": "<Models><x/></Models>",
            "short": document([numeric(1, "a", [0], [1, 2])], [(1, 1)], 0), "rank": one.replace("NormContinuous", "rank"),
            "betas": one.replace("betas", "x"), "indexes": one.replace("indexes", "x"),
            "unknown": document(models[:1], [(1, 1), (7, 1)], 0), "unused": document(models, [(1, 1)], 0),
            "shared": document(shared, [(k, 1) for k in range(5000)], 0), "s.x": "<Model2SQL>",
            **{f"s.{name}": configuration(**{name: None})
               for name in ["inputFile", "outputFile", "inputTable", "predictionTable"]},
            **{f"s.{name}": configuration(inputFile=name) for name in ["one", "unused"]},
            "c.tags": "no tags at all", "c.none": needed,
            "c.answer": needed + "[QRV_ALL_QUESTIONS][QRV_ANSWER]", "c.x": needed + "[QRV_ALL_QUESTIONS][QRV_QUESTION a/b]",
            **{f"c.{numbers}": needed + "".join(f"[QRV_QUESTION {n}]" for n in numbers) for numbers in ["1", "112", "9"]},
        }
        for name, text in files.items():
            self.write(name, text)
        (self.folder / "empty").write_bytes(b"")
        calls = """-a;-a one out;-p one out;-a missing out;-a empty out;-a entity out;-a other out;-a short out;-a rank out;
            -a betas out;-a indexes out;-a unknown out;-a one no/folder;-a one /dev/full;-s s.inputFile;-s s.outputFile;
            -s s.inputTable;-s s.predictionTable;-s s.one;-s s.unused;-s s.x;-h list;-h unused;-h shared;-h one c.tags out;
            -h one c.none out;-h one c.answer out;-h two c.1 out;-h two c.112 out;-h two c.9 out;-h two c.x out"""
        table = rows("scorewright.1.md", "Status")
        told = {}
        for status, message, _ in table:
            text = re.escape("".join(code(message))).replace(r"\\n", "\n").replace("…", "(?s:.*)")
            told[int(status), message] = re.sub(r"<\w+>", ".+?", text)
        unseen = set(told)
        for call in [*calls.split(";"), b"-a \xff out"]:
            status, printed = self.run_program(*call.split())
            fits = {row for row in told if row[0] == status and re.fullmatch(told[row], printed)}
            self.assertTrue(fits, (call, status, printed))
            unseen -= fits
        self.assertEqual(unseen, {(8, "`The model does not fit in memory.\\n`")})
        self.assertIn("The model does not fit in memory.\\n", (ROOT / "app" / "driver.cpp").read_text())

        untold = ["missing - out", "empty - out", "entity - out", "other - out", "one - no/folder", "one - /dev/full"]
        self.assertEqual([self.run_program("-h", *call.split()) for call in untold], [(0, "")] * len(untold))
        self.assertEqual(["not told for HTML" in when for _, _, when in table].count(True), len(untold))
        canvas = self.write("c", needed + "[QRV_ALL_QUESTIONS][QRV_QUESTION]")
        self.assertRegex(str(self.run_program("-h", "one", canvas, "out")), "^.2, .WARNING.*asked only 0 out of 1 ")

    def test_differences(self):
        """What the manual says of SQL and Python is what their code computes of a cell."""
        def model(*models, terms=((1, 1),), **more):
            return document([*models, categorical(9, "c", ["x"], [0, 0])], [*terms, (9, 1)], 0, **more)

        def flat(score):
            return model(numeric(1, "a", [0], [9, score, score]), table=[(2, 0.9), (1, 0.5), (0, 0.1)])

        one, more = numeric(1, "a", [0], [9, 2, 3]), numeric(1, "a", [0], [90, 20, 30])
        table = rows("manual.md", r"\| SAS")
        for start, text, cell, meanings in [
            ("probability between", flat(0.5), 1, {"0": 0, "straight line": 0.3}),
            ("probability of", flat(0), 1, {"0": 0}), ("probability below", flat(-1), 1, {"that of the point": 0.1}),
            ("a value", model(one), 0, {"as missing": 9}), ("result", model(one), 1, {"score": 3}),
            ("one of", model(categorical(1, "a", "vwxyz", [9, 1, 2, 3, 4, 5])), "x", {"scored": 3, "as unknown": 9}),
            ("recoding", model(one, numeric(2, "a", [0], [5, 5, 5])), 1, {"not scored": 3}),
            ("coefficient", model(one, terms=[(7, 4), (1, 1)]), 1, {"multiplies the next term": 12}),
            ("several coefficients", model(one, terms=[(1, 1), (1, 2)]), 1, {"added": 9, "the last": 6}),
            ("several recodings", model(one, more), 1, {"added": 33, "the last": 30}), ("document", "<a/>", 1, {}),
        ]:
            self.write("model.ModelXml", text)
            results = ["refused", "refused"]
            if self.run_configuration(configuration(dbType="sqlite", createPredictionTable="1"))[0] != 8:
                base = sqlite3.connect(":memory:")
                base.executescript(f"create table src(id, a, c); insert into src values(1, '{cell}', 'x')")
                base.executescript(self.read("out"))
                results[0] = base.execute("select round(Predictions, 9) from Preds").fetchone()[0]
            if self.run_program("-p", "model.ModelXml", "out", "M")[0] != 8:
                exec(self.read("out"), names := {})
                frame = pandas.DataFrame({"a": [cell], "c": ["x"]})
                results[1] = round(names["QORVModel_M"]().apply(frame).iloc[0, -1], 9)
            [(_, _, in_sql, _, in_python, _)] = [row for row in table if row[0].startswith(start + " ")]
            self.assertEqual(results, [meanings.get(word, word) for word in [in_sql, in_python]], start)

    def test_xml_errors(self):
        for text, _, example in rows("model-document.md", "Text"):
            self.write("m", code(example)[0])
            self.write("c.xml", code(example)[0].replace("QRV_Model", "Model2SQL"))
            self.assertEqual(self.run_program("-s", "c.xml")[1].splitlines()[1], code(text)[0])
            if text.startswith("`Error"):
                self.assertIn(f": {code(text)[0]} at line 1, column ", self.run_program("-a", "m", "out")[1])

    def test_settings(self):
        """Each default is what the program takes when the setting is not there, and another value makes a difference."""
        others = {"dbType": "oracle", "createTmpTable": "0", "useTmpTable": "0", "boolsAreNumbers": "0"}
        table = rows("sql-configuration.md", "Attribute")
        source = (ROOT / "model" / "sql_configuration.cpp").read_text()
        self.assertCountEqual([code(row[0])[0] for row in table], re.findall(r'(?:text|flag)\(u"(\w+)"', source))
        (self.folder / "credit").symlink_to(EXAMPLES / "credit" / "credit.ModelXml")

        def script(**settings):
            given = {"inputFile": "credit", "dbType": "mysql", "kestruneScript": "1", **settings}
            status, _ = self.run_configuration(configuration(**given))
            return self.read("out") if status == 0 else status

        for name, default, _ in table:
            name = code(name)[0]
            with self.subTest(name):
                if default == "needed":
                    self.assertIn(script(**{name: None}), [1, 2, 3, 5])
                    continue
                value = "" if default == "none" else code(default)[0]
                self.assertEqual(script(**{name: None}), script(**{name: value}))
                self.assertNotEqual(script(**{name: None}), script(**{name: others.get(name, "1")}))

    def test_tags(self):
        table = [code(row[0])[0] for row in rows("canvas.md", "Tag")]
        source = (ROOT / "model" / "canvas_tags.cpp").read_text()
        self.assertEqual(sorted(re.match(r"\S*\w", tag)[0] for tag in table), sorted(re.findall(r'"(\[QRV_\w+)"', source)))
        self.write("one", document([numeric(1, "a", [0], [1, 2, 3])], [(1, 1)], 0))
        self.write("canvas", "".join(tag for tag in table if "ALL" not in tag))
        self.assertEqual(self.run_program("-h", "one", "canvas", "page"), (0, ""))
        self.assertNotIn("[QRV", (self.folder / "page").read_text())

    def test_calls_for_a_page(self):
        model = document([numeric(1, "a", [0], [1, 2, 3])], [(1, 1)], 0)
        for call, layout, page in rows("html.md", "Call"):
            self.write("m.ModelXml", model)
            self.write("canvas.html", "[QRV_SCRIPT][QRV_ALL_QUESTIONS][QRV_ANSWER 0]")
            self.assertEqual(self.run_program(*shlex.split(code(call)[0])[1:]), (0, ""))
            page = self.folder / code(page)[0]
            self.assertEqual("Generated Model" in page.read_text(), layout == "built in")
            page.unlink()

    def test_elements(self):
        """The manual names whatever the program reads of a model document or a list of them."""
        pages = "".join((MANUAL / page).read_text() for page in ["model-document.md", "html.md"])
        words = set(re.findall(r"\w+", " ".join(code(BLOCK.sub("", pages)))))
        for path in [*ROOT.glob("model/*.cpp"), *ROOT.glob("exporters/*/*.cpp")]:
            if path.name != "sql_configuration.cpp":
                self.assertLessEqual(set(re.findall(r'(?:childNode|attribute)\(u"(\w+)"', path.read_text())), words)


if __name__ == "__main__":
    unittest.main()
