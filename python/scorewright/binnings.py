"""Tables of bins, as scorecard libraries hand them out."""

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
    """The columns of titles by their keys, with rows numbered from 1. A dictionary's keys are variables; a frame's
    titles may be in any case."""
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
    numbers = {key: pd.to_numeric(columns[key], errors="coerce") for key in ("score", "coefficient")}
    return pd.DataFrame({**columns, **numbers}, range(1, len(table) + 1))


def pieces(text, separator):
    """The kind and content of each piece of a bin: a value, a word, or an interval, its ends and its closed sides."""
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
    """Adds the bins of a variable: columns bin, score and coefficient, indexed by the rows' numbers."""
    found: dict[str, dict[Any, float]] = {"interval": {}, "value": {}, "word": {}}
    column = f"column {variable!r}"
    if str(variable).casefold() == "basepoints":
        card.constant += rows.score.sum()
        return
    for place, text, score in zip(rows.index, rows.bin, rows.score):
        try:
            for kind, content in pieces(text, separator):
                known = found[kind]
                require(content not in known or kind == "word" and known[content] == score, text)
                known[content] = score
        except (SyntaxError, TypeError, ValueError):
            raise ValueError(f"row {place}, {column}: the bin {text!r} cannot be read") from None
    intervals, values, words = found.values()
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
    (lowers, uppers, sides), scores = zip(*sorted(intervals)), [intervals[key] for key in sorted(intervals)]
    closed = frozenset().union(*sides)
    require(not values and (lowers[0], *uppers) == (-np.inf, *lowers[1:], np.inf) and len(closed) < 2,
            f"{column}: its bins are not intervals from -inf to inf without a gap, closed on one side: {[*rows.bin]}")
    inner = lowers[1:] if bounds is None else bounds
    require(len(inner) == len(lowers) - 1, f"{column} has {len(lowers) - 1} bounds in the table, not {len(inner)}")
    card.add_numeric(variable, inner, scores, missing=missing, closed="".join(closed) or "left", **options)
