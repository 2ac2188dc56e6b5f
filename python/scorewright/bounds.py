"""Bounds that fall in generated code where they fell in the library that fitted them."""

import numpy as np

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


def document_bounds(bounds, scores, closed, digits=16):
    """Bounds and interval scores by the document's rule, for n bounds and n + 1 scores by the rule of closed.

    The document's intervals are open on the left and closed on the right, but its first bound belongs to the interval
    above it, where there is one. So bounds closed on the right get a first bound more, with one score on both sides; of
    those closed on the left, the first stays, and each other becomes the next lower number that its text tells from it.
    A bound that its text does not tell moves likewise, never across its own value."""
    if closed == "document":
        return bounds, scores
    if closed == "right":
        bounds = [shown(bound, np.inf, digits) for bound in bounds]
        first = 0.0 if bounds[0] > 0 else shown(bounds[0] - max(1, abs(bounds[0])), -np.inf, digits)
        return [first, *bounds], [scores[0], *scores]
    moved = [shown(np.nextafter(bound, -np.inf) if i else bound, -np.inf, digits) for i, bound in enumerate(bounds)]
    if len(moved) > 1:
        return moved, scores
    # The value of a single bound would count as missing.
    return [*moved, shown(moved[0] + max(1, abs(moved[0])), np.inf, digits)], [*scores, scores[-1]]
