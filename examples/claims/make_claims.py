#!/usr/bin/python3
"""Writes claims.ModelXml and claims.csv, an invented motor insurance tariff and policies for it.

The policies contain missing codes, empty cells, values on a bound and unlisted values."""

import csv
import sys
from functools import partial
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.append(str(HERE.parents[1] / "python"))  # in the source tree; an installed package needs no path
from scorewright import Scorecard  # noqa: E402

POLICIES = 200

MISSING = {"vehicle age": [-1, 99], "annual.km": [-999.5, 1e10, 1.5e-07]}  # missing codes


def tariff():
    card = Scorecard("claim cost", "C", constant=742.5, missing=MISSING)
    numeric = partial(card.add_numeric, closed="document")
    numeric("driver age", [21, 25, 35, 50, 68], [410.25, 262.5, 118.75, 118.75, 60, 145.125], missing=35.5,
            label="Age of the driver (years)", type="NormContinuous")
    numeric("vehicle age", [2, 6, 12], [95.5, 41.25, 0, -38.75], missing=20, label="Age of the vehicle (years)")
    # Of two recodings of a column, the HTML page shows the range and label of the second.
    numeric("annual.km", [30000, 60000], [0, 1, 1.5], number=7, label="Drives for a living")
    card.add_categorical("region", {"11": 180, "24": 95.25, "53": -20.5, "75": -66}, other=12.5, number=4,
                         label="Region", labels={"11": "Capital", "24": "Coast", "53": "Hills", "75": "Plains"})
    card.add_categorical("use", {"private": 0, "farmer's": 155.5, "driver's school": 340.75}, other=70,
                         label="Use of the vehicle",
                         labels={"private": "Private", "farmer's": "Farm", "driver's school": "Driving school"})
    numeric("bonus", [50], [90.25, -75.125], missing=48.5, label="Bonus level")
    numeric("annual.km", [5000, 12000, 20000, 30000, 45000.5], [-120.5, -42.25, 38.75, 38.75, 38.75, 310], missing=55.5,
            number=3, label="Distance driven in a year (km)", type="NormContinuous")
    card.add_boolean("garage", 64.5, -38.25, missing=12, number=8, label="Kept in a garage")
    card.coefficients = {3: 1.05, 1: 0.92, 7: 64.5, 5: 1.1, 2: 0.875, 6: -0.4, 4: 1, 8: 1.2}
    return card


# The lengths share no factor, so that no combination of cells occurs twice.
CELLS = {
    "driver age": ["18", "21", "23", "25", "31", "", "35", "42.5", "50", "61", "68", "74", "20.999"],
    "vehicle age": ["0", "2", "-1", "4", "6", "99", "9", "12", "15", "", "1"],
    "annual.km": ["3200", "5000", "-999.5", "9800.5", "12000", "10000000000", "16000", "20000", "0.00000015", "27500",
                  "30000", "", "45000.5", "45001", "60000", "72000", "1.5e-06"],
    "region": ["11", "24", "", "53", "75", "99", " 24 "],
    "use": ["private", "farmer's", "driver's school", "", "taxi"],
    "bonus": ["40", "50", "63", "49.5", "", "50.000001", "95", "50"],
    "garage": ["1", "0", ""],
}


def main():
    tariff().write(HERE / "claims.ModelXml")
    with open(HERE / "claims.csv", "w", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(["policy", *CELLS])
        for i in range(POLICIES):
            writer.writerow([1001 + i, *(cells[i % len(cells)] for cells in CELLS.values())])


if __name__ == "__main__":
    main()
