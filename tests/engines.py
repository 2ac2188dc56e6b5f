"""Shared by the engine tests: the example rows, and comparing their results with the model by scorewright-check, whose
counts of deviations must match those of the independent scorer."""

import json
import re
import subprocess
from pathlib import Path

from support import EXAMPLES, PROGRAM, ProgramTest, mapping  # also sets the path to score.py
import score

CHECK = str(Path(PROGRAM).with_name("scorewright-check"))


class Example:
    """An example model and its rows, in which '' is a missing cell. `points` truncates its probability table."""

    def __init__(self, name, points=None):
        self.path = EXAMPLES / name / f"{name}.ModelXml"
        self.text = self.path.read_bytes().decode("utf-16")
        self.model = score.load(self.path)
        self.model.table = self.model.table[:points]
        if points:
            self.text = re.sub("(?s)<ProbabilityMapping>.*</ProbabilityMapping>", mapping(self.model.table), self.text)
        self.rows = score.read_rows(next(self.path.parent.glob("*.csv")))


CREDIT, CLAIMS = Example("credit", 29), Example("claims")
# The scores of 97 applicants are between the last two points of that table, and those of 210 below them.
LOWEST = {"lowest-segment": sum(CREDIT.model.segment(CREDIT.model.score(row)) == "last" for row in CREDIT.rows)}


class CheckedTest(ProgramTest):
    def check(self, *arguments):
        run = subprocess.run([CHECK, *map(str, arguments)], cwd=self.folder, capture_output=True,
                             encoding="utf-8", timeout=120)
        return run.returncode, run.stdout, run.stderr

    def report(self, path, *arguments):
        status, printed, message = self.check(path, "--json", *arguments)
        self.assertEqual((message, status in (0, 1, 3)), ("", True))
        found = json.loads(printed)
        compared = found.get("comparison", {})
        is_unexplained = any(compared.get(name) for name in ["unexplained", "missing", "extra", "repeated"])
        affecting = {finding["name"] for finding in found["findings"] if finding.get("rows", 1)} | {*compared.get("explained", {})}
        self.assertEqual(status, 3 if is_unexplained else 1 if affecting else 0)
        return found

    def assert_explained(self, target, rows, names, results, explained, *more, path="model.ModelXml", tolerance=1e-12):
        """Compares the results of a target, each a row's number and the named numbers, with the model. They may differ
        by the rounding of another order of arithmetic, and in as many rows as `explained` has for each deviation."""
        for name, table in {"rows": [["key", *rows[0]], *([i, *row.values()] for i, row in enumerate(rows))],
                            "results": [["key", *names.split()], *results]}.items():
            self.write(name, "".join(",".join(map(str, row)) + "\n" for row in table))
        columns = [f"--{name}={name}" for name in ["key", *names.split()]]
        found = self.report(path, "--rows", "rows", "--compare", "results", "--target", target, *columns,
                            "--tolerance", tolerance, *more)["comparison"]
        self.assertEqual([found[name] for name in ["rows", "explained", "unexplained", "missing", "extra", "repeated"]],
                         [len(rows), explained, 0, 0, 0, 0], found["worst"][:1])
