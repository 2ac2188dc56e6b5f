"""What is written into a document: arrays, as Base64 of little-endian doubles and 4-byte integers; cells as texts."""

import base64
import numbers
from collections.abc import Iterable

import numpy as np


def require(condition, message):
    if not condition:
        raise ValueError(message)


def doubles(values: Iterable[float]) -> str:
    """The text of any number of floats."""
    return base64.b64encode(np.asarray(list(values), "<f8").tobytes()).decode("ascii")


def integers(values: Iterable[int]) -> str:
    """The text of any number of integers from -2**31 to 2**31 - 1."""
    return base64.b64encode(np.asarray(list(values), "<i4").tobytes()).decode("ascii")


def cell_text(cell):
    """The text that a cell of a list is compared as: without blanks around it, whole numbers without decimals."""
    whole = isinstance(cell, numbers.Real) and not isinstance(cell, bool) and cell == cell // 1
    return str(int(cell) if whole else cell).strip()
