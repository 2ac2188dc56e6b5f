"""Bounds that fall in generated code where they fell in the library that fitted them."""

from typing import Any

import numpy as np

from .document import require

SMALLEST = 1e-12  # what is nearer to 0 is written as 0 in SQL


def shown(number, direction, digits=16):
    """The number itself, or the next one in a direction (-inf or inf) that is read back as itself from its text of so
    many significant digits; at 15 or 16 digits fewer than a hundred steps lead there."""
    while True:
        if 0 < abs(number) < SMALLEST:
            number = 0.0 if (number < 0) == (direction > 0) else np.copysign(SMALLEST, direction)
        if not np.isfinite(number) or float(f"{number:.{digits}g}") == number:
            return float(number)
        number = np.nextafter(number, direction)


def parting(bounds, closed, values, digits, column):
    """For each bound the shortest number between the values on its two sides, nearest to the bound or to the middle. It
    is not next to a value, which would fall on the other side if its last digit were read wrongly."""
    values, parted = np.unique(np.asarray(values, float)), [-np.inf]
    values = values[np.isfinite(values)]
    for bound, following in zip(bounds, [*bounds[1:], np.inf]):
        place = np.searchsorted(values, bound, closed)
        low = max(values[place - 1] if place else bound - max(1, abs(bound)), parted[-1])
        high = min(values[place] if place < len(values) else bound + max(1, abs(bound)), following)
        room = min((high - low) / 4, 1e-14 * max(abs(low), abs(high)))
        tried = (float(f"{number:.{k}g}") for k in range(1, digits + 1) for number in (bound, low + (high - low) / 2))
        found: Any = next((n for n in tried if low + room < n < high - room and not 0 < abs(n) < SMALLEST), None)
        require(found is not None, f"column {column!r}: no number of {digits} digits parts {low!r} and {high!r}")
        parted.append(found)
    return parted[1:]


def document_bounds(bounds, scores, closed, digits=16, values=None, column=None):
    """Bounds and interval scores by the document's rule, for n bounds and n + 1 scores by the rule of closed.

    The document's intervals are open on the left and closed on the right, but its first bound belongs to the interval
    above it, where there is one. So bounds closed on the left become the next lower number that their text tells, those
    closed on the right the number itself or the next higher one, and a bound more comes first, with one score on both
    sides. Only a first bound closed on the left stays if its text tells it. With values, the bounds part these as they
    do, and move freely between them."""
    if closed == "document":
        return bounds, scores
    if values is not None:
        moved = parting(bounds, closed, values, digits, column)
    else:
        moved = [shown(bound, np.inf, digits) if closed == "right" else
                 shown(np.nextafter(bound, -np.inf), -np.inf, digits) for bound in bounds]
        if closed == "right" or shown(bounds[0], np.inf, digits) != bounds[0]:
            first = 0.0 if moved[0] > 0 else shown(moved[0] - max(1, abs(moved[0])), -np.inf, digits)
            return [first, *moved], [scores[0], *scores]
        moved[0] = bounds[0]
    if len(moved) > 1:
        return moved, scores
    # The value of a single bound would count as missing.
    return [*moved, shown(moved[0] + max(1, abs(moved[0])), np.inf, digits)], [*scores, scores[-1]]
