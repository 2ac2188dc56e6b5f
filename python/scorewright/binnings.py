"""Tables of bins, as scorecard libraries hand them out."""

import ast
import re
from collections.abc import Mapping, Sequence
from typing import Any, Optional

import numpy as np
import pandas as pd

from .values import require

NUMBER = r"\s*([-+]?(?:inf|[\d.]+(?:e[-+]?\d+)?))\s*"
INTERVAL = re.compile(rf"([\[(]){NUMBER}[,~]{NUMBER}([\])])", re.I)
ITEM = re.compile(r"""'(?:[^'\\]|\\.)*'|"(?:[^"\\]|\\.)*"|[-+.\w]+""")
WORDS = {"missing": "missing", "nan": "missing", "special": "special", "else": "else"}


def frame_of(table: Any, titles: Mapping[str, Any]) -> pd.DataFrame:
    """The columns of titles, by their keys. A dictionary's keys are variables; a frame's titles may be in any case."""
    if isinstance(table, Mapping):
        parts = [pd.DataFrame({titles["bin"]: [*part], titles["score"]: [*part.values()]}) if isinstance(part, Mapping)
                 else part for part in table.values()]
        return pd.concat([frame_of(p.assign(**{titles["variable"]: key}), titles) for key, p in zip(table, parts)])
    found = {str(title).casefold(): table[title].to_numpy() for title in table}
    if {"lower", "upper"} <= {*found} and titles["bin"].casefold() not in found:
        ends = zip(pd.Series(found["lower"]).fillna(-np.inf), pd.Series(found["upper"]).fillna(np.inf))
        found[titles["bin"].casefold()] = ["missing" if a == -b == -np.inf else f"[{a}, {b})" for a, b in ends]
    for title in titles.values():
        require(not title or title.casefold() in found, f"the table has no column {title!r}, only {[*table]}")
    return pd.DataFrame({key: found[title.casefold()] if title else 1.0 for key, title in titles.items()})


def pieces(text: Any, separator: str) -> list[tuple[Any, ...]]:
    """The intervals (lower end, upper end, sides that are closed), values and words of a bin, each behind its kind."""
    if not isinstance(text, str):
        return [("missing",)] if np.ndim(text) == 0 and pd.isna(text) else [("value", v) for v in np.atleast_1d(text)]
    text = text.strip()
    if match := INTERVAL.fullmatch(text):
        lower, upper = float(match[2]), float(match[3])
        sides = {"left" if match[1] == "[" else "right"} if np.isfinite(lower) else set()
        sides |= {"left" if match[4] == ")" else "right"} if np.isfinite(upper) else set()
        return [("interval", lower, upper, sides)]
    if separator in text:
        return [piece for part in text.split(separator) for piece in pieces(part, separator)]
    if text.startswith("["):
        items = [ast.literal_eval(item) for item in ITEM.findall(text[1:-1])]
        require(ITEM.sub("", text[1:]).strip(", \r\n\t") == "]" and ... not in items, text)
        return [("value", item) for item in items]
    require(text and text[0] != "(" and "\u222a" not in text, text)  # the union of two-dimensional bins
    return [(WORDS[text.casefold()],)] if text.casefold() in WORDS else [("value", text)]


def add(card: Any, variable: str, rows: pd.DataFrame, bounds: Optional[Sequence[float]],
        special: Optional[Sequence[Any]], separator: str) -> None:
    """Adds the bins of a variable: columns bin, score and coefficient, indexed by the rows' numbers."""
    intervals: list[Any] = []
    values: dict[Any, float] = {}
    words: dict[str, float] = {}
    column = f"column {variable!r}"
    for place, text, score in zip(rows.index, rows.bin, rows.score):
        try:
            for kind, *rest in pieces(text, separator):
                require(words.get(kind, score) == score and (kind != "value" or rest[0] not in values), text)
                intervals += [(*rest, score)] if kind == "interval" else []
                values.update({rest[0]: score} if kind == "value" else {})
                words.update({kind: score} if not rest else {})
        except (SyntaxError, TypeError, ValueError):
            raise ValueError(f"row {place}, {column}: the bin {text!r} cannot be read") from None
    missing, options = words.get("missing", 0.0), {"coefficient": rows.coefficient.iloc[0]}
    require((rows.coefficient == options["coefficient"]).all(), f"{column} has several coefficients")
    require(words.get("special", missing) == missing or special is not None and not (intervals and len(special)),
            f"{column}: special codes score other than missing cells; if there are none: special={{{variable!r}: []}}")
    if not intervals:
        values.update(dict.fromkeys(special or [], words.get("special", missing)))
        require("missing" not in words or words.get("else", missing) == missing,
                f"{column}: missing and unlisted cells score differently, which a document cannot hold")
        card.add_categorical(variable, values, other=words.get("else", missing), **options)
        return
    card.missing.update({variable: [*special]} if special else {})
    intervals.sort(key=lambda interval: interval[0])
    ends: Any = map(list, zip(*intervals))
    lowers, uppers, sides, scores = ends
    require(not values and lowers[0] == -np.inf and uppers == [*lowers[1:], np.inf] and len(set().union(*sides)) < 2,
            f"{column}: its bins are not intervals from -inf to inf without a gap, closed on one side: {[*rows.bin]}")
    inner = lowers[1:] if bounds is None else [*bounds]
    require(len(inner) == len(lowers) - 1, f"{column} has {len(lowers) - 1} bounds in the table, not {len(inner)}")
    card.add_numeric(variable, inner or [0.0], scores if inner else 2 * scores, missing=missing,
                     closed=next(iter(set().union(*sides)), "left"), **options)


def fill(card: Any, table: Any, titles: Mapping[str, Any], bounds: Mapping[str, Any],
         special: Mapping[str, Sequence[Any]], separator: str) -> None:
    """Fills an empty scorecard with the recodings of a table."""
    rows = frame_of(table, titles).astype({"score": float, "coefficient": float})
    for variable, group in rows.set_axis(range(1, len(rows) + 1)).groupby("variable", sort=False, dropna=False):
        if str(variable).casefold() == "basepoints":
            card.constant += group.score.sum()
        else:
            add(card, variable, group, bounds.get(variable), special.get(variable), separator)
