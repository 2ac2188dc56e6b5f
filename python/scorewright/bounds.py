"""Bounds that separate cells in generated code as they do in the library that fitted them."""

import numpy as np

from .document import require

SMALLEST = 1e-12  # SQL writes numbers closer to 0 as 0


def shown(number, direction, digits):
    """The nearest number in a direction (-inf or inf), itself included, that N significant digits restore exactly. At
    15 or 16 digits it is fewer than a hundred steps away."""
    if 0 < abs(number) < SMALLEST:
        number = 0.0 if (number < 0) == (direction > 0) else np.copysign(SMALLEST, direction)
    while float(f"{number:.{digits}g}") != number:
        number = np.nextafter(number, direction)
    return float(number)


def separators(bounds, closed, values, digits, column):
    """For each bound, the shortest number between the values on its two sides that is nearest to the bound or to the
    middle. It keeps clear of both values: a cell whose last digit is misread stays on its side."""
    values = np.unique(np.asarray(values, float))
    values, moved = values[np.isfinite(values)], [-np.inf]
    for bound, following in zip(bounds, [*bounds[1:], np.inf]):
        place, margin = np.searchsorted(values, bound, closed), max(1, abs(bound))
        low = max(values[place - 1] if place else bound - margin, moved[-1])
        high = min(values[place] if place < len(values) else bound + margin, following)
        room = min((high - low) / 4, 1e-14 * max(abs(low), abs(high)))
        tried = (float(f"{number:.{k}g}") for k in range(1, digits + 1) for number in (bound, low + (high - low) / 2))
        found = next((n for n in tried if low + room < n < high - room and not 0 < abs(n) < SMALLEST), np.nan)
        require(not np.isnan(found), f"column {column!r}: no number of {digits} digits separates {low!r} and {high!r}")
        moved.append(found)
    return moved[1:]


def document_bounds(bounds, scores, closed, digits, values, column):
    """The n bounds and n + 1 scores of bins that are closed on the "left" or "right", for a document.

    The document's bins are closed on the right, but its first bound belongs to the bin above it, if there is one. So a
    bound closed on the left becomes the next lower number that its digits restore, one closed on the right that number
    or the next higher one, and a bound is added before the first, with one score on both sides. A first bound closed
    on the left stays if its digits restore it. With values, each bound moves freely between two of them."""
    if closed == "document":
        return bounds, scores
    if values is not None:
        moved = separators(bounds, closed, values, digits, column)
    else:
        moved = [shown(bound, np.inf, digits) if closed == "right" else
                 shown(np.nextafter(bound, -np.inf), -np.inf, digits) for bound in bounds]
        if closed == "right" or shown(bounds[0], np.inf, digits) != bounds[0]:
            first = 0.0 if moved[0] > 0 else shown(moved[0] - max(1, abs(moved[0])), -np.inf, digits)
            return [first, *moved], [scores[0], *scores]
        moved[0] = bounds[0]
    if len(moved) == 1:  # the value of a single bound would score as missing
        return [*moved, shown(moved[0] + max(1, abs(moved[0])), np.inf, digits)], [*scores, scores[-1]]
    return moved, scores
