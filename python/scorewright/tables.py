"""Tables from score to probability: falling scores and their probabilities, two lists of one length."""

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
    """The table, continued in its last probability until its two last points, between which some targets write the
    probability 0, lie below the lowest score."""
    while len(scores) < 2 or not lowest > scores[-2]:
        scores.append(float(np.floor(min(lowest, scores[-1])) - 1))
        probabilities.append(probabilities[-1])
    return scores, probabilities


def logistic_table(largest_error: float | None = None, lowest: float = -1e6, highest: float = 1e6, *,
                   relative_error: float = 0.001, offset: float = 0.0,
                   factor: float = -1.0) -> tuple[list[float], list[float]]:
    """The table of the probability p of a score, offset + factor * log((1 - p) / p), for scores from the lowest to the
    highest. By default scores are log-odds of p. With a factor above 0 they are points, and a higher one is a lower
    risk; of a card whose odds double every d points it is d / log(2).

    Its straight lines stay within relative_error (1e-6 to 0.2) of the smaller of p and 1 - p, or 1e-12 where that is
    more; with a largest_error (1e-7 to 0.2), within that of p. It has as few points as that takes, and one or two more
    that end it below the lowest score. Scores must be finite. Raises ValueError."""
    error, relative = (1e-12, relative_error) if largest_error is None else (largest_error, 0.0)
    require(1e-6 <= relative <= 0.2 or relative == 0 and 1e-7 <= error <= 0.2,
            f"largest_error is from 1e-7 to 0.2, relative_error from 1e-6: {largest_error}, {relative_error}")
    require(-np.inf < lowest <= highest < np.inf, f"no finite scores from lowest to highest: {lowest}, {highest}")
    require(factor and np.isfinite([offset, factor]).all(), f"no scores of offset {offset} and factor {factor}")
    ends = sorted([(offset - lowest) / factor, (offset - highest) / factor])
    points = sorted((float(offset - factor * odds), float(p)) for odds, p in logistic_points(error, relative, *ends))
    return ended([score for score, _ in points[::-1]], [p for _, p in points[::-1]], lowest)


def logistic_points(error, relative, lowest, highest):
    """Pairs of rising log-odds and probabilities, whose lines stay within the larger of the errors."""
    error, relative = 0.999 * error, 0.999 * relative  # the rest is for what lies between the steps, and for rounding

    def band(x):
        return np.maximum(error, relative * logistic(-abs(x)))

    if logistic(highest) - logistic(lowest) <= 2 * min(band(lowest), band(highest)):
        return [(lowest, (logistic(highest) + logistic(lowest)) / 2)]
    start, step = max(lowest - 0.01, -np.log(1 / (2 * error) - 1)), np.sqrt(max(0.04 * error, 0.002 * relative))
    points = [(start, logistic(start) - band(start))]
    # Each line begins at an edge of the band around the curve and goes as far as it can stay in it, to the other edge.
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
