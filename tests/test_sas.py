"""The SAS script. Nothing here runs SAS, so the golden files carry the proof."""

import unittest

from support import DOCUMENTS, ProgramTest


class SasTest(ProgramTest):
    def test_golden_scripts(self):
        for name, document in DOCUMENTS.items():
            with self.subTest(name):
                self.assert_golden(f"{name}.sas", self.convert("-a", document))


if __name__ == "__main__":
    unittest.main()
