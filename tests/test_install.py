"""The installed tree: its program converts its examples, and its documents are all there."""

import subprocess
import unittest
from pathlib import Path

from support import EXAMPLES, PROGRAM, TESTS, ProgramTest

CONVERSIONS = [[option, f"examples/{model}/{model}.ModelXml", f"demo-output/{model}.{ending}"]
               for model in ["credit", "claims"] for option, ending in [("-a", "sas"), ("-e", "bas"), ("-p", "py")]]
CONVERSIONS += [["-s", f"examples/credit/credit.{name}.xml"] for name in ["mysql", "sqlserver", "default", "etl"]]
CONVERSIONS += [["-h", "examples/credit/credit.ModelXml", "examples/credit/canvas.html", "demo-output/credit.html"],
                ["-h", "examples/claims/claims.ModelXml", "examples/claims/canvas.html", "demo-output/claims.html"]]


class InstallTest(ProgramTest):
    def setUp(self):
        super().setUp()
        subprocess.run(["cmake", "--install", Path(PROGRAM).parent, "--prefix", self.folder], check=True,
                       stdout=subprocess.DEVNULL)
        self.documents = self.folder / "share/doc/scorewright"

    def outputs(self, program):
        """What all conversions of the demo give when they are run where the installed examples are."""
        output = self.documents / "demo-output"
        output.mkdir(exist_ok=True)
        for arguments in CONVERSIONS:
            with self.subTest(arguments):
                run = subprocess.run([program, *arguments], cwd=self.documents, capture_output=True)
                self.assertEqual((run.returncode, run.stderr), (0, b""), run.stdout)
        files = {path.name: path.read_bytes() for path in output.iterdir()}
        for path in output.iterdir():
            path.unlink()
        return files

    def test_demo(self):
        installed = self.outputs(self.folder / "bin/scorewright")
        self.assertEqual(len(installed), len(CONVERSIONS))
        self.assertEqual(installed, self.outputs(PROGRAM))

    def test_documents(self):
        for file in (TESTS.parent / "docs").iterdir():
            manual = self.folder / "share/man/man1" if file.suffix == ".1" else self.documents / "docs"
            self.assertEqual((manual / file.name).read_bytes(), file.read_bytes())
        for name in ["README.md", "ARCHITECTURE.md", "CONTRIBUTING.md", "CHANGELOG.md", "examples/credit/LICENSE"]:
            self.assertEqual((self.documents / name).read_bytes(), (TESTS.parent / name).read_bytes())
        # The installed scripts write the same documents anew, with the package that is installed beside them.
        environment = {"PYTHONPATH": self.folder / "lib/python3/dist-packages"}
        for name, script in [("credit", "fit_credit.py"), ("claims", "make_claims.py")]:
            document = self.documents / f"examples/{name}/{name}.ModelXml"
            document.unlink()
            subprocess.run(["/usr/bin/python3", "-B", document.with_name(script)], env=environment, check=True,
                           stdout=subprocess.DEVNULL)
            self.assertEqual(document.read_bytes(), (EXAMPLES / name / document.name).read_bytes())
        licence = (self.documents / "examples/credit/LICENSE").read_text()
        self.assertIn(licence, (self.documents / "copyright").read_text())


if __name__ == "__main__":
    unittest.main()
