"""What the engine tests share: the example rows, and what the independent scorer says of them."""

import math

from support import EXAMPLES  # which is where Python then finds the next one
import score


class Example:
    """An example model and its rows, in which '' is a missing cell."""

    def __init__(self, name):
        self.path = EXAMPLES / name / f"{name}.ModelXml"
        self.text = self.path.read_bytes().decode("utf-16")
        self.model = score.load(self.path)
        self.rows = score.read_rows(next(self.path.parent.glob("*.csv")))

    def predictions(self, rows=None):
        """What the code must say of these rows, or of all. No score of them is at the last two points of the table or
        between these, where the targets differ."""
        return [self.model.prediction(row) for row in rows or self.rows]


CREDIT, CLAIMS = Example("credit"), Example("claims")


def assert_predictions(test, found, expected, tolerance=1e-12):
    """Equal to the last bits of the arithmetic, which databases and spreadsheets order as they like."""
    wrong = [(row, *pair) for row, pair in enumerate(zip(found, expected, strict=True))
             if not math.isclose(*pair, rel_tol=1e-12, abs_tol=tolerance)]
    test.assertEqual(wrong[:5], [])
