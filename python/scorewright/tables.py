"""Probability tables: decreasing scores and their probabilities, two lists of one length."""

from __future__ import annotations

from collections.abc import Sequence
from typing import Any, Union

import numpy as np

from .document import require

Numbers = Union[Sequence[float], "np.ndarray[Any, Any]"]
Table = tuple[Numbers, Numbers]


def logistic(score):
    return np.exp(-np.logaddexp(0, -score))


def ended(scores, probabilities, lowest):
    """The table, continued with its last probability until its two last table points are below the lowest score: some
    targets give the probability 0 between them."""
    while len(scores) < 2 or not lowest > scores[-2]:
        scores.append(float(np.floor(min(lowest, scores[-1])) - 1))
        probabilities.append(probabilities[-1])
    return scores, probabilities


def logistic_table(largest_error: float | None = None, lowest: float = -1e6, highest: float = 1e6, *,
                   relative_error: float = 0.001, offset: float = 0.0,
                   factor: float = -1.0) -> tuple[list[float], list[float]]:
    """Returns the table of the probability p of a score, which is offset + factor * log((1 - p) / p).

    largest_error: tolerance for p (1e-7 to 0.2). By default, relative_error (1e-6 to 0.2) is the tolerance relative to
    the smaller of p and 1 - p, or 1e-12 if that is more. The table has as few table points as possible, and one or two
    more below the lowest score. lowest, highest: its finite scores. offset, factor: by default, scores are the log-odds
    of p. A positive factor means that a higher score is a lower risk; if d points double the odds, it is d / log(2)."""
    error, relative = (1e-12, relative_error) if largest_error is None else (largest_error, 0.0)
    require(1e-6 <= relative <= 0.2 or relative == 0 and 1e-7 <= error <= 0.2,
            f"largest_error must be 1e-7 to 0.2, relative_error 1e-6 to 0.2: {largest_error}, {relative_error}")
    require(-np.inf < lowest <= highest < np.inf, f"scores must be finite, lowest <= highest: {lowest}, {highest}")
    require(factor and np.isfinite([offset, factor]).all(), f"offset {offset} or factor {factor} is not finite, or 0")
    ends = sorted([(offset - lowest) / factor, (offset - highest) / factor])
    # Generated code writes at least 15 digits of each score.
    points = sorted((float(f"{offset - factor * odds:.15g}"), float(p))
                    for odds, p in logistic_points(error, relative, *ends))
    return ended([score for score, _ in points[::-1]], [p for _, p in points[::-1]], lowest)


def logistic_points(error, relative, lowest, highest):
    """Increasing log-odds with probabilities; the lines between them stay within the larger of the two errors."""
    error, relative = 0.999 * error, 0.999 * relative  # the rest allows for rounding, and for scores between the steps

    def band(x):
        return np.maximum(error, relative * logistic(-abs(x)))

    if logistic(highest) - logistic(lowest) <= 2 * min(band(lowest), band(highest)):
        return [(lowest, (logistic(highest) + logistic(lowest)) / 2)]
    start, step = max(lowest - 0.01, -np.log(1 / (2 * error) - 1)), np.sqrt(max(0.04 * error, 0.002 * relative))
    points = [(start, logistic(start) - band(start))]
    # Each line starts on one edge of the band around the curve, and ends on the other, where it would leave the band.
    while points[-1][0] <= highest and points[-1][1] < 1 - error:
        (start, value), size, reached, x = points[-1], 128, 128, [lowest]
        while reached == size and x[-1] <= highest:
            size *= 2
            x = start + step * np.arange(1, size + 1)
            least = np.maximum.accumulate((logistic(x) - band(x) - value) / (x - start))
            most = np.minimum.accumulate((logistic(x) + band(x) - value) / (x - start))
            reached = np.count_nonzero(least <= most)
        length, slope = x[reached - 1] - start, (least if logistic(x[reached - 1]) < 0.5 else most)[reached - 1]
        length = min(length, (1 - error - value) / slope)
        points.append((start + length, value + slope * length))
    return points
