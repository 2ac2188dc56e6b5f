#!/usr/bin/python3
"""Fits the example scorecard on applicants.csv and writes credit.ModelXml.

The score is the log-odds of a bad payer, so a higher score is a higher risk."""

import csv
import sys
from pathlib import Path

import numpy as np

HERE = Path(__file__).resolve().parent
sys.path.append(str(HERE.parents[1] / "python"))  # in the source tree; an installed package needs no path
from scorewright import Scorecard  # noqa: E402

# As many average applicants are added to each bin, to draw its bad rate towards the overall one.
PRIOR_APPLICANTS = 10
DECIMALS = 6  # the last bits of results differ between machines; the document must not

# (column, label, kind, trend of the risk, bounds); if a trend is given, bins that break it share one score.
NUMERIC = [
    ("Seniority", "Seniority in the job (years)", "NormContinuous", "falling", [1, 2, 3, 4, 6, 8, 10, 12, 15, 20]),
    ("Time", "Duration of the loan (months)", "Discretize", "rising", [18, 30, 42, 54]),
    ("Age", "Age (years)", "NormContinuous", None, [22, 25, 28, 32, 36, 40, 45, 50, 56]),
    ("Expenses", "Expenses (housing & living costs)", "NormContinuous", None, [40, 50, 65, 80, 100]),
    # Of two recodings of a column, the HTML page shows the range and label of the second.
    ("Income", "Income, three classes", "Discretize", None, [100, 200]),
    ("Income", "Income", "NormContinuous", "falling", [60, 80, 95, 110, 125, 140, 160, 185, 215, 280]),
    ("Assets", "Assets", "NormContinuous", "falling", [1, 2000, 3000, 4000, 5000, 6500, 10000, 18000]),
    ("Debt", "Debt", "Discretize", None, [1, 1000, 2500]),
    ("Amount", "Amount of the loan", "NormContinuous", "rising", [300, 500, 700, 850, 1000, 1150, 1300, 1500, 1800]),
    ("Price", "Price of the goods", "NormContinuous", None, [600, 850, 1050, 1250, 1450, 1650, 1900, 2300]),
]

CATEGORICAL = [
    ("Home", "Home", "list", {"rent": "Tenant", "owner": "Owner", "parents": "Lives with parents", "priv": "Private",
                              "other": "Other", "ignore": "Not stated"}),
    ("Marital", "Marital status", "list", {"married": "Married", "single": "Single", "separated": "Separated",
                                           "widow": "Widowed", "divorced": "Divorced", "other": "Other"}),
    ("Records", "Negative records on file", "boolean", {
        "no": "No", "NO": "No", "false": "No", "FALSE": "No", "0": "No",
        "yes": "Yes", "YES": "Yes", "true": "Yes", "TRUE": "Yes", "1": "Yes"}),
    ("Job", "Kind of job", "list", {"fixed": "Fixed", "freelance": "Freelance", "partime": "Part-time",
                                    "others": "Other"}),
]


def number_or_nan(cell):
    try:
        return float(cell)
    except ValueError:
        return float("nan")


def logit(p):
    return np.log(p / (1 - p))


def logistic(s):
    return 1 / (1 + np.exp(-s))


def rounded(values):
    return np.round(values, DECIMALS) + 0.0  # the sum turns -0 into 0


def rising(rates, weights):
    """The closest increasing sequence: pools neighbours that break the order."""
    pools = []
    for rate, weight in zip(rates, weights):
        pools.append((rate, weight, 1))
        while len(pools) > 1 and pools[-2][0] >= pools[-1][0]:
            (r1, w1, n1), (r2, w2, n2) = pools[-2:]
            pools[-2:] = [((r1 * w1 + r2 * w2) / (w1 + w2), w1 + w2, n1 + n2)]
    return np.concatenate([np.full(n, rate) for rate, _, n in pools])


def numeric_bins(values, bounds):
    """0 is missing, 1 below the first bound; else up to and including a bound, the first of which is in bin 2."""
    bins = np.searchsorted(bounds, values, side="left") + 1
    bins[values == bounds[0]] = 2
    bins[np.isnan(values)] = 0
    return bins


def weights_of_evidence(bins, count, bad, trend=None):
    size = np.bincount(bins, minlength=count) + PRIOR_APPLICANTS
    rate = (np.bincount(bins, weights=bad, minlength=count) + PRIOR_APPLICANTS * bad.mean()) / size
    if trend == "rising":
        rate[1:] = rising(rate[1:], size[1:])
    elif trend == "falling":
        rate[1:] = rising(rate[:0:-1], size[:0:-1])[::-1]
    return rounded(logit(rate) - logit(bad.mean()))


def logistic_regression(recodings, bad):
    design = np.column_stack([recodings, np.ones(len(bad))])
    beta = np.zeros(design.shape[1])
    for _ in range(50):
        p = logistic(design @ beta)
        step = np.linalg.solve(design.T @ (design * (p * (1 - p))[:, None]), design.T @ (bad - p))
        beta += step
        if np.abs(step).max() < 1e-12:
            break
    return rounded(beta)


def probability_table(score, bad):
    """The bad rates around 33 scores, made monotone. A few applicants score beyond either end."""
    points = np.linspace(-4.75, 3.25, 33)
    around = np.searchsorted((points[1:] + points[:-1]) / 2, score)
    weights = np.bincount(around, minlength=len(points)) + PRIOR_APPLICANTS
    rates = (np.bincount(around, weights=bad, minlength=len(points)) + PRIOR_APPLICANTS * logistic(points)) / weights
    return points[::-1].tolist(), rounded(rising(rates, weights))[::-1].tolist()


def area_under_curve(score, bad):
    values, inverse, counts = np.unique(score, return_inverse=True, return_counts=True)
    rank = (np.cumsum(counts) - (counts - 1) / 2)[inverse]
    positives = bad.sum()
    return (rank[bad == 1].sum() - positives * (positives + 1) / 2) / (positives * (len(bad) - positives))


def main():
    with open(HERE / "applicants.csv", newline="") as file:
        applicants = list(csv.DictReader(file))
    columns = list(applicants[0])
    bad = np.array([a["Status"] == "bad" for a in applicants], dtype=float)

    # Recodings are in the order of their columns; the second one of a column is numbered after all columns.
    card, recoded, extra = Scorecard("Status.bad"), [], len(columns)
    for field, label, kind, *rest in sorted(NUMERIC + CATEGORICAL, key=lambda recoding: columns.index(recoding[0])):
        number = columns.index(field)
        if number in card.coefficients:
            number, extra = extra, extra + 1
        if kind in ("NormContinuous", "Discretize"):
            trend, bounds = rest
            bins = numeric_bins(np.array([number_or_nan(a[field]) for a in applicants]), bounds)
            missing, *scores = all_scores = weights_of_evidence(bins, len(bounds) + 2, bad, trend)
            card.add_numeric(field, bounds, scores, missing=missing, closed="document", label=label, number=number,
                             type=kind)
        else:
            positions = {value: i for i, value in enumerate(rest[0], start=1)}
            if kind == "boolean":
                positions = {value: 1 if i <= 5 else 2 for value, i in positions.items()}
            bins = np.array([positions.get(a[field], 0) for a in applicants])
            other, *scores = all_scores = weights_of_evidence(bins, max(positions.values()) + 1, bad)
            if kind == "boolean":
                spellings = [[value for value, i in positions.items() if i == truth] for truth in (1, 2)]
                card.add_boolean(field, *scores, missing=other, spellings=spellings, label=label, labels=rest[0],
                                 number=number)
            else:
                card.add_categorical(field, dict(zip(rest[0], scores)), other=other, label=label, labels=rest[0],
                                     number=number)
        recoded.append(all_scores[bins])

    recodings = np.column_stack(recoded)
    beta = logistic_regression(recodings, bad)
    score = recodings @ beta[:-1] + beta[-1]

    # The variables with the largest effect come first in the sum.
    order = np.argsort(-np.abs(beta[:-1]) * recodings.std(axis=0), kind="stable")
    card.coefficients = {card.recodings[i].number: beta[i] for i in order}
    card.constant = beta[-1]
    card.table = probability_table(score, bad)
    card.write(HERE / "credit.ModelXml")

    for i in order:
        print(f"{card.recodings[i].label:40} V{card.recodings[i].number:<3} {beta[i]:9.6f}")
    print(f"{len(bad)} applicants, {int(bad.sum())} bad; area under the ROC curve {area_under_curve(score, bad):.4f}")


if __name__ == "__main__":
    main()
