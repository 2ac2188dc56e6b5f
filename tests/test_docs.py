"""Compares the README and the manual with the program. The language of a fenced block and the comment before it
determine the check:

```console                  what follows "$ " is run, and prints the lines below it
<!-- from: credit.sas -->   that file contains the block's lines, together
<!-- file: score.py -->     the block is written to that file
<!-- not run: reason -->    nothing checks it
```sh                       is not run

Each page has its own folder with examples/ in it. Blocks are checked in order, excerpts after all others. "…" matches
any text of a line and, on a line of its own, any lines."""

import glob
import os
import re
import shutil
import subprocess
import unittest
from pathlib import Path

from engines import CHECK
from support import EXAMPLES, PROGRAM, TESTS, ProgramTest
from test_sql_engines import mariadb

ROOT = TESTS.parent
MANUAL = ROOT / "docs"
PAGES = [ROOT / "README.md", *sorted(MANUAL.glob("*.md"))]
UNRUN_PAGES = [*(ROOT / name for name in ["ARCHITECTURE.md", "CONTRIBUTING.md", "CHANGELOG.md", "SECURITY.md"]),
               *EXAMPLES.glob("*/README.md")]
FOLDERS = "app|benchmarks|check|cmake|docs|examples|exporters|model|platform|python|scripts|tests|xml"
BLOCK = re.compile(r"(?:<!-- (?P<mark>[^\n]*) -->\n)?^```(?P<language>\w*)\n(?P<text>.*?)^```$", re.M | re.S)


def pattern(text):
    """The regular expression for a text whose ellipses match anything."""
    return "".join("(?:.*\n)*?" if line == "…" else re.escape(line).replace("…", ".*") + "\n"
                   for line in text.splitlines())


def decoded(path):
    data = path.read_bytes()
    return data.decode("utf-16" if data.startswith(b"\xff\xfe") else "utf-8-sig")


class PagesTest(ProgramTest):
    def setUp(self):
        super().setUp()
        # The manual describes the installed program.
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

    def check_block(self, folder, mark, language, text):
        kind, _, name = (mark or "").partition(": ")
        if kind == "from":
            self.assertTrue(re.search(f"(?m)^{pattern(text)}", decoded(folder / name)), f"not in {name}:\n{text}")
        elif kind == "file":
            (folder / name).write_text(text, "utf-8")
        elif kind == "" and language == "console":
            self.check_console(folder, text)
        else:
            self.assertTrue(kind == "not run" or (kind, language) == ("", "sh"), (mark, language))

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

    def test_set_up_in_servers(self):
        """Runs the page's example for SQLite by the clients' calls in its table, on servers with default settings."""
        page = (MANUAL / "sql-engines.md").read_text()
        for name, text in re.findall(r"<!-- file: (\S+) -->\n```\w+\n(.*?)```", page, re.S):
            self.write(name, text, "utf-8")
        self.write("mean.sql", "select count(*), cast(avg(risk) as decimal(9, 6)) from applicant_risk;", "utf-8")
        (self.folder / "examples").symlink_to(EXAMPLES)
        socket = mariadb(self)("select @@socket")[0][0]
        script = f'mariadb() {{ /usr/bin/mariadb --no-defaults --socket={socket} "$@"; }}\n'
        script += "createdb bank; mariadb -e 'create database bank'\n"
        for client, dialect in [("PostgreSQL", "postgresql"), ("MariaDB", "mysql")]:
            script += f"sed -i 's/postgresql/{dialect}/' nightly.xml; scorewright -s nightly.xml\n"
            script += re.search(r"^\$ (iconv .* > utf8\.sql)$", page, re.M)[1] + "\n"
            call = re.search(rf"^\| {client} \| `(.*)` \|$", page, re.M)[1]
            for name in [f"load.{client.lower()}.sql", "table.sql", "utf8.sql", "utf8.sql", "mean.sql"]:
                script += call.replace("utf8.sql", name) + "\n"
        run = subprocess.run(["pg_virtualenv", "-t", "bash", "-euo", "pipefail", "-c", script], cwd=self.folder,
                             env=self.environment, capture_output=True, encoding="utf-8")
        self.assertEqual(re.findall(r"4454\W+(0\.\d+)", run.stdout), ["0.282581"] * 2, run.stderr)

    def test_examples(self):
        """The installed scripts and package reproduce the example documents."""
        for script in ["credit/fit_credit.py", "claims/make_claims.py"]:
            path = self.installed / "examples" / script
            document = path.with_name(path.parent.name + ".ModelXml")
            document.unlink()
            subprocess.run(["/usr/bin/python3", "-B", path], env=self.environment, check=True, stdout=subprocess.DEVNULL)
            self.assertEqual(document.read_bytes(), (EXAMPLES / path.parent.name / document.name).read_bytes())

    def test_completion(self):
        """Each program's completion file completes partial calls."""
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
        listed = subprocess.run([CHECK, "--help"], capture_output=True, encoding="utf-8").stdout
        completed = (self.folder / "share/bash-completion/completions/scorewright-check").read_text()
        self.assertLessEqual({*re.findall(r"^ .*?(--[a-z]+)", listed, re.M)}, {*re.findall("--[a-z]+", completed)})

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
        """Each is generated from the page of its name; SCOREWRIGHT_GOLDEN=write overwrites it."""
        for source in MANUAL.glob("*.1.md"):
            page = source.with_suffix("")
            made = subprocess.run(["lowdown", "-s", "-Tman", "--nroff-nolinks", "--out-no-smarty", "-M",
                                   f"title={page.stem.upper()}", "-M", "section=1", source],
                                  capture_output=True, check=True, encoding="utf-8").stdout
            # Options must show the hyphens to type, and ASCII terminals lack the ellipsis.
            made = re.sub(r"(?<=\\fB)-+", lambda dashes: r"\-" * len(dashes[0]), made).replace("…", r"\&...")
            # The first line requests tbl; messages are neither hyphenated nor justified.
            made = made.replace('.\\" -*-', "'\\\" t -*-", 1).replace('" ""\n', '" ""\n.nh\n.ad l\n', 1)
            made = made.replace("lb lb lb\nl l l.", "lb lb lb\nl lw(3.7i) lw(1.6i).")  # wide enough for the longest word
            self.assertTrue((self.folder / "share/man/man1" / page.name).exists())
            if os.environ.get("SCOREWRIGHT_GOLDEN") == "write":
                page.write_text(made, "utf-8")
            self.assertEqual(page.read_text("utf-8"), made)


if __name__ == "__main__":
    unittest.main()
