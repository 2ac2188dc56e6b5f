"""Tables from score to probability: falling scores and their probabilities, two lists of one length."""

from __future__ import annotations

from collections.abc import Sequence
from typing import Any, Union

import numpy as np

from .values import require

Numbers = Union[Sequence[float], "np.ndarray[Any, Any]"]
Table = tuple[Numbers, Numbers]


def logistic(score):
    return np.exp(-np.logaddexp(0, -score))


def ended(scores, probabilities, lowest):
    """The table, continued downwards in its last probability until its two last points lie below the lowest score:
    between these two, some targets write the probability 0."""
    while len(scores) < 2 or not lowest > scores[-2]:
        scores.append(float(np.floor(min(lowest, scores[-1])) - 1))
        probabilities.append(probabilities[-1])
    return scores, probabilities


def logistic_table(largest_error: float, lowest: float = -1e6,
                   highest: float = 1e6) -> tuple[list[float], list[float]]:
    """The table of the probability 1 / (1 + exp(-score)), for scores from the lowest to the highest.

    Its straight lines stay within largest_error (of probability; 1e-7 to 0.2, or ValueError) of the curve, with as few
    points as that takes, and one or two more that end it below the lowest score. Scores must rise and be finite."""
    require(1e-7 <= largest_error <= 0.2, f"the largest error must be from 1e-7 to 0.2, and is {largest_error}")
    require(-np.inf < lowest <= highest < np.inf, f"no finite scores from lowest to highest: {lowest}, {highest}")
    error = largest_error * 0.999  # the rest is for what lies between the steps, and for rounding
    if logistic(highest) - logistic(lowest) <= 2 * error:
        return ended([lowest], [float(logistic(highest) + logistic(lowest)) / 2], lowest)
    start, step = max(lowest - 0.01, -np.log(1 / (2 * error) - 1)), np.sqrt(0.04 * error)
    points = [(start, logistic(start) - error)]
    # Each line begins at an edge of the band around the curve and goes as far as it can stay in it, to the other edge.
    while points[-1][0] <= highest and points[-1][1] < 1 - error:
        (start, value), size, reached, x = points[-1], 128, 128, [lowest]
        while reached == size and x[-1] <= highest:
            size *= 2
            x = start + step * np.arange(1, size + 1)
            least = np.maximum.accumulate((logistic(x) - error - value) / (x - start))
            most = np.minimum.accumulate((logistic(x) + error - value) / (x - start))
            reached = np.count_nonzero(least <= most)
        length, slope = x[reached - 1] - start, (least if logistic(x[reached - 1]) < 0.5 else most)[reached - 1]
        length = min(length, (1 - error - value) / slope)
        points.append((start + length, value + slope * length))
    scores, probabilities = np.transpose(points[::-1]).tolist()
    return ended(scores, probabilities, lowest)
