"""The scorecard: recodings of columns, the regression over them and the probability table."""

from __future__ import annotations

import os
from collections.abc import Mapping, Sequence
from typing import Any, NamedTuple
from xml.etree.ElementTree import ParseError

import numpy as np
import pandas as pd

from . import binnings, document, pipelines
from .bounds import document_bounds
from .document import cell_text, require
from .tables import Numbers, Table, ended, logistic_table

SPELLINGS = ("false", "False", "FALSE", "0", "no"), ("true", "True", "TRUE", "1", "yes")


class Recoding(NamedTuple):
    """A column's recoding as a document holds it, by type.

    Of numbers ("NormContinuous" or "Discretize", treated alike): n bounds and n + 2 scores, of missing cells, below the
    first bound, from there up to and including the second, and so on, and above the last. Of a list ("MapValues"): n
    pairs of value and label, and n + 1 scores, the first of empty and unlisted cells. Of a boolean (a list whose first
    five values spell false): three scores, of unknown, false and true."""

    number: int
    column: str
    type: str
    scores: list[float]
    bounds: list[float]
    values: list[tuple[str, str]]
    boolean: bool
    label: str


def check(recoding):
    column, values = f"column {recoding.column!r}", [value for value, _ in recoding.values]
    is_list, scores, bounds = recoding.type == "MapValues", recoding.scores, recoding.bounds
    count = 3 if recoding.boolean else len(values) + 1 if is_list else len(bounds) + 2
    require(len(scores) == count, f"{column} has {len(scores)} scores instead of {count}")
    require(recoding.column, "a column has no name")
    require(values if is_list else bounds, f"{column} has no bounds or values")
    require(np.isfinite([*scores, *bounds]).all(), f"{column}: a score or bound is not finite")
    require(is_list or np.all(np.diff(bounds) > 0), f"{column}: bounds must increase in generated code: {bounds}")
    require(all(v and v == v.strip() for v in values), f"{column}: a value is empty or has blanks around it: {values}")
    require(recoding.boolean or len(set(values)) == len(values), f"{column}: a value is listed twice: {values}")


def recode(recoding, cells, missing):
    """The scores of a series' cells. missing: the missing codes of a column of numbers."""
    if recoding.type == "MapValues":
        require(recoding.boolean or cells.dtype != "boolean", f"column {recoding.column!r} has pandas' type boolean, "
                "which scikit-learn encodes as 1 and 0. Convert it to bool, and fit again")
        listed = {v: 1 + (i >= 5 if recoding.boolean else i) for i, (v, _) in enumerate(recoding.values)}
        codes, cells = pd.factorize(cells)
        return np.take(recoding.scores, np.array([listed.get(cell_text(cell), 0) for cell in cells] + [0])[codes])
    values = pd.to_numeric(cells, errors="coerce").astype("Float64").to_numpy(float, na_value=np.nan)
    others = cells[np.isnan(values) & cells.notna() & cells.ne("")]
    require(others.empty, f"column {recoding.column!r}: cells are not numbers: {others.unique()[:3]}")
    positions = np.searchsorted(recoding.bounds, values) + 1
    positions[values == recoding.bounds[0]] = 2 if len(recoding.bounds) > 1 else 0
    positions[np.isnan(values) | np.isin(values, missing)] = 0
    return np.take(recoding.scores, positions)


class Scorecard:
    """A scoring model. Its score is the constant plus each recoding's score times its coefficient.

    target: name of the target column. kind: "T" for a probability, "C" for a continuous target. table: decreasing
    scores and their probabilities, two sequences of one length. missing: missing codes by column. digits: significant
    digits of bounds, 16, or 15 for Teradata. You may change these, the list recodings and the dictionary coefficients
    (by recoding number, in the order of the sum) until you use the card."""

    def __init__(self, target: str = "", kind: str = "T", *, constant: float = 0.0, table: Table | None = None,
                 missing: Mapping[str, Numbers] | None = None, digits: int = 16) -> None:
        require(isinstance(target, str), f"target must be the name of the target column, not {target!r}")
        self.target, self.kind, self.constant, self.table = target, kind, constant, table
        self.missing, self.digits = dict(missing or {}), digits
        self.recodings: list[Recoding] = []
        self.coefficients: dict[int, float] = {}
        self._names: dict[str, str] = {}

    def add(self, column: str, type: str, scores: Numbers, bounds: Numbers = (),
            values: Sequence[tuple[str, str]] = (), boolean: bool = False, *, coefficient: float = 1,
            label: str | None = None, number: int | None = None) -> int:
        """Adds a Recoding. Returns its number, by default the last one's plus 1."""
        number = number if number is not None else self.recodings[-1].number + 1 if self.recodings else 1
        require(number not in self.coefficients, f"column {column!r}: the number {number} is used twice")
        recoding = Recoding(number, column, type, [*map(float, scores)], [*bounds], [*values], boolean, label or column)
        check(recoding)
        owner = self._names.setdefault(document.names(column)[document.VBA].casefold(), column)
        require(owner == column, f"columns {owner!r} and {column!r} have the same name in generated code. Rename one")
        self.recodings.append(recoding)
        self.coefficients[number] = float(coefficient)
        return number

    def add_numeric(self, column: str, bounds: Numbers, scores: Numbers, *, closed: str, missing: float = 0.0,
                    data: Numbers | None = None, type: str = "Discretize", **options: Any) -> int:
        """Adds bins of numbers. Returns the recoding's number.

        bounds: n increasing floats. scores: n + 1 floats, from below the first bound to above the last. closed: the
        side on which a bin includes its bound, "left" or "right", for which bounds are moved, or "document", which
        keeps them. missing: score of missing cells. data: values that the bounds were fitted on; each bound becomes a
        short number between two of them. options, here and below: coefficient (1), label (the column), number."""
        require(closed in ("left", "right", "document"),
                f"column {column!r}: closed must be 'left', 'right' or 'document', not {closed!r}")
        require(len(scores) == len(bounds) + 1 and np.isfinite(bounds).all(),
                f"column {column!r} must have n finite bounds and n + 1 scores: {bounds}, {scores}")
        if not len(bounds):
            bounds, scores, closed = [0.0], [*scores, *scores], "left"  # between equal scores, any bound is right
        bounds, scores = document_bounds([*map(float, bounds)], [*scores], closed, self.digits, data, column)
        return self.add(column, type, [missing, *scores], bounds, **options)

    def add_categorical(self, column: str, scores: Mapping[Any, float], *, other: float = 0.0,
                        labels: Mapping[Any, str] | None = None, **options: Any) -> int:
        """Adds a list. Returns the recoding's number.

        scores: the score of each value; whole numbers are listed without decimals. other: score of empty and unlisted
        cells. labels: labels of values, by default the values."""
        require(not pd.isna([*scores]).any(), f"column {column!r}: NaN cannot be a value. Pass its score as other")
        values = [(cell_text(value), (labels or {}).get(value, cell_text(value))) for value in scores]
        return self.add(column, "MapValues", [other, *scores.values()], (), values, **options)

    def add_boolean(self, column: str, false: float, true: float, *, missing: float = 0.0,
                    spellings: tuple[Sequence[str], Sequence[str]] = SPELLINGS, labels: Mapping[str, str] | None = None,
                    **options: Any) -> int:
        """Adds a boolean. Returns the recoding's number.

        false, true, missing: the scores. spellings: 1 to 5 values that mean false, and 1 to 9 that mean true. labels:
        labels of these values, by default the values."""
        no, yes = [*spellings[0]], [*spellings[1]]
        require(0 < len(no) < 6 and 0 < len(yes) < 10 and not {*no} & {*yes},
                f"column {column!r}: spellings must be 1 to 5 for false and 1 to 9 others for true, not {spellings}")
        values = [(value, (labels or {}).get(value, value)) for value in no + no[-1:] * (5 - len(no)) + yes]
        return self.add(column, "MapValues", [missing, false, true], (), values, True, **options)

    def range(self) -> tuple[float, float]:
        """Returns the lowest and the highest score that a row can have."""
        ends = [np.multiply(self.coefficients[r.number], r.scores) for r in self.recodings]
        return self.constant + sum(map(min, ends)), self.constant + sum(map(max, ends))

    def checked_table(self) -> tuple[list[float], list[float]] | None:
        """Checks the card. Returns the table as write ends it, below the lowest score."""
        require(self.recodings, "the card has no recodings")
        numbers = sorted(r.number for r in self.recodings)
        require(sorted(self.coefficients) == numbers, f"recodings {numbers} have coefficients {self.coefficients}")
        require(np.isfinite([*self.coefficients.values(), *self.range()]).all(), "a coefficient or score is not finite")
        columns = {r.column for r in self.recodings if r.type != "MapValues"}
        for column, codes in self.missing.items():
            require(column in columns, f"column {column!r} has missing codes, but no recoding of numbers")
            require(all(float(f"{code:.6g}") == code for code in codes) and np.isfinite(codes).all(),
                    f"column {column!r}: generated code rounds missing codes to 6 digits, which changes one of {codes}")
        if self.table is None:
            return None
        scores, probabilities = ([float(value) for value in values] for values in self.table)
        require(0 < len(scores) == len(probabilities) and np.isfinite(scores).all() and np.all(np.diff(scores) < 0) and
                all(0 <= p <= 1 for p in probabilities),
                f"the table must have decreasing scores and as many probabilities from 0 to 1: {self.table}")
        return ended(scores, probabilities, self.range()[0])

    def score(self, frame: pd.DataFrame) -> pd.DataFrame:
        """Returns the columns score and probability (NaN without table) for a frame, with its index."""
        table, recodings = self.checked_table(), {recoding.number: recoding for recoding in self.recodings}
        score = np.full(len(frame), float(self.constant))
        for number, coefficient in self.coefficients.items():
            column = recodings[number].column
            require(column in frame, f"column {column!r} is missing")
            score += coefficient * recode(recodings[number], frame[column], self.missing.get(column, []))
        probability = np.interp(score, table[0][::-1], table[1][::-1]) if table else np.nan
        return pd.DataFrame({"score": score, "probability": probability}, index=frame.index)

    def write(self, path: str | os.PathLike[str]) -> None:
        """Writes the document, with additions that change no score: table points below all scores, each name under
        which a target looks for missing codes, a sixth value in a list of five."""
        document.write(path, self, self.checked_table())

    @classmethod
    def read(cls, path: str | os.PathLike[str]) -> Scorecard:
        """Returns the scorecard of a document, without its key and the counts that preset the page's controls."""
        card = cls()
        try:
            document.fill(card, document.parse(path))
        except (ParseError, ValueError) as error:  # any other is a fault of the package
            raise ValueError(f"{path}: {error}") from None
        return card

    @classmethod
    def from_table(cls, table: Any, *, target: str, score: str = "points", variable: str = "variable", bin: str = "bin",
                   coefficient: str | None = None, constant: float = 0.0, bounds: Mapping[str, Numbers] | None = None,
                   special: Mapping[str, Sequence[Any]] | None = None, separator: str | None = None,
                   offset: float = 0.0, factor: float = -1.0, digits: int = 16) -> Scorecard:
        """Returns the scorecard of a table with a row for each bin.

        table: a frame, or a dictionary from variables to frames or to dictionaries from bins to scores. score,
        variable, bin, coefficient: titles of columns. A bin is an interval such as [25, 40), values (an array, or texts
        joined by separator: "%,%", or "," in dictionaries of bins), or missing, special or else. Columns lower and
        upper may replace it, for bins closed on the left. Unlisted values without a row score as missing cells, and
        these, without a row, 0. bounds: exact bounds by variable, as printed ones are rounded. special: special codes
        by variable. offset, factor: as in logistic_table."""
        nested = isinstance(table, Mapping) and all(isinstance(part, Mapping) for part in table.values())
        card = cls(target, constant=constant, digits=digits)
        titles = {"variable": variable, "bin": bin, "score": score, "coefficient": coefficient}
        for name, rows in binnings.frame_of(table, titles).groupby("variable", sort=False, dropna=False):
            binnings.add(card, name, rows, (bounds or {}).get(name), (special or {}).get(name),
                         separator or ("," if nested else "%,%"))
        card.table = logistic_table(None, *card.range(), offset=offset, factor=factor)
        return card

    @classmethod
    def from_sklearn(cls, pipeline: Any, *, target: str, largest_error: float | None = None,
                     unlisted_as_missing: bool = False, data: pd.DataFrame | None = None,
                     digits: int = 16) -> Scorecard:
        """Returns the scorecard of a fitted scikit-learn pipeline, with its decision_function as score.

        pipeline: a ColumnTransformer of KBinsDiscretizer (one-hot) and OneHotEncoder, also after a SimpleImputer, then
        a LogisticRegression or LogisticRegressionCV of two classes; the probability is that of the second. Cells that
        it gives no score add 0. unlisted_as_missing: score unlisted values as empty cells. data: the frame that the
        pipeline was fitted on; bounds become short numbers between its values, and columns of bool may pass
        through. largest_error: as in logistic_table."""
        return pipelines.fill(cls(target, digits=digits), pipeline, largest_error, unlisted_as_missing, data)
