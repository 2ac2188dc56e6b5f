"""Tables of bins, as scorecard libraries return them."""

import ast
import re
from collections.abc import Mapping
from typing import Any

import numpy as np
import pandas as pd

from .document import require

NUMBER = r"\s*([-+]?(?:inf|[\d.]+(?:e[-+]?\d+)?))\s*"
INTERVAL = re.compile(rf"([\[(]){NUMBER}[,~]{NUMBER}([\])])", re.I)
ITEM = re.compile(r"""'(?:[^'\\]|\\.)*'|"(?:[^"\\]|\\.)*"|[-+.\w]+""")
WORDS = {"missing": "missing", "nan": "missing", "special": "special", "else": "else"}


def frame_of(table, titles):
    """The columns of titles by their keys, with rows numbered from 1. Keys of a dictionary are variables; titles of a
    frame match in any case."""
    if isinstance(table, Mapping):
        parts = [pd.DataFrame({titles["bin"]: [*part], titles["score"]: [*part.values()]}) if isinstance(part, Mapping)
                 else part for part in table.values()]
        table = pd.concat([part.assign(**{titles["variable"]: key}) for key, part in zip(table, parts)])
    found = {str(title).casefold(): table[title].to_numpy() for title in table}
    if {"lower", "upper"} <= {*found} and titles["bin"].casefold() not in found:
        ends = zip(pd.Series(found["lower"]).fillna(-np.inf), pd.Series(found["upper"]).fillna(np.inf))
        found[titles["bin"].casefold()] = ["missing" if a == -b == -np.inf else f"[{a}, {b})" for a, b in ends]
    for title in titles.values():
        require(not title or title.casefold() in found, f"the table has no column {title!r}, only {[*table]}")
    columns = {key: found[title.casefold()] if title else 1.0 for key, title in titles.items()}
    frame = pd.DataFrame(columns, range(1, len(table) + 1))
    return frame.assign(**frame[["score", "coefficient"]].apply(pd.to_numeric, errors="coerce"))


def pieces(text, separator):
    """The kind and content of each piece of a bin: a value, a word, or an interval with its ends and closed sides."""
    if not isinstance(text, str):
        is_missing = np.ndim(text) == 0 and pd.isna(text)
        return [("word", "missing")] if is_missing else [("value", value) for value in np.atleast_1d(text)]
    text = text.strip()
    if match := INTERVAL.fullmatch(text):
        ends = {match[1]: float(match[2]), match[4]: float(match[3])}
        sides = {"left" if bracket in "[)" else "right" for bracket, end in ends.items() if np.isfinite(end)}
        return [("interval", (*ends.values(), frozenset(sides)))]
    if separator in text:
        return [piece for part in text.split(separator) for piece in pieces(part, separator)]
    if text.startswith("["):
        items = [ast.literal_eval(item) for item in ITEM.findall(text[1:-1])]
        require(ITEM.sub("", text[1:]).strip(", \r\n\t") == "]" and ... not in items, text)
        return [("value", item) for item in items]
    require(text and text[0] != "(" and "\u222a" not in text, text)  # the union of two-dimensional bins
    return [("word", WORDS[text.casefold()]) if text.casefold() in WORDS else ("value", text)]


def add(card, variable, rows, bounds, special, separator):
    """Adds the bins of a variable: columns bin, score and coefficient, indexed by row number."""
    if str(variable).casefold() == "basepoints":
        card.constant += rows.score.sum()
        return
    found: dict[str, dict[Any, float]] = {"interval": {}, "value": {}, "word": {}}
    column = f"column {variable!r}"
    for row, text, score in zip(rows.index, rows.bin, rows.score):
        try:
            for kind, content in pieces(text, separator):
                known = found[kind]
                require(content not in known or kind == "word" and known[content] == score, text)
                known[content] = score
        except (SyntaxError, TypeError, ValueError):
            raise ValueError(f"row {row}, {column}: cannot read the bin {text!r}") from None
    intervals, values, words = found.values()
    missing, coefficient = words.get("missing", 0.0), rows.coefficient.iloc[0]
    require((rows.coefficient == coefficient).all(), f"{column} has several coefficients")
    advice = "Give each a bin of its own; without codes, pass" if intervals else "Name them in"
    require(words.get("special", missing) == missing or special is not None and not (intervals and len(special)),
            f"{column}: special codes do not score as missing. {advice} special={{{variable!r}: []}}")
    if not intervals:
        values.update(dict.fromkeys(special or [], words.get("special", missing)))
        other = words.get("else", missing)
        require("missing" not in words or other == missing, f"{column}: missing and unlisted cells must score alike")
        card.add_categorical(variable, values, other=other, coefficient=coefficient)
        return
    card.missing.update({variable: [*special]} if special else {})
    (lowers, uppers, sides), scores = zip(*sorted(intervals)), [intervals[key] for key in sorted(intervals)]
    closed = frozenset().union(*sides)
    require(not values and (lowers[0], *uppers) == (-np.inf, *lowers[1:], np.inf) and len(closed) < 2,
            f"{column}: bins must run from -inf to inf without a gap, all closed on one side: {[*rows.bin]}")
    inner = lowers[1:] if bounds is None else bounds
    require(len(inner) == len(lowers) - 1, f"{column} has {len(lowers) - 1} bounds in the table, not {len(inner)}")
    side = "".join(closed) or "left"
    card.add_numeric(variable, inner, scores, missing=missing, closed=side, coefficient=coefficient)
