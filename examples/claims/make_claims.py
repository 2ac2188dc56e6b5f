#!/usr/bin/python3
"""Writes claims.ModelXml and claims.csv, a made-up motor insurance tariff and made-up policies for it.

The weights are invented, nothing is fitted. The policies are there to reach every corner of the model: codes that
mean "unknown", empty cells, values on a cut point, categories the model has never seen."""

import csv
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent))
import model_document  # noqa: E402
from model_document import Variable  # noqa: E402

POLICIES = 200

# Numbers that say "not known" in the columns they come from.
MISSING = {"vehicle age": [-1, 99], "annual.km": [-999.5, 1e10, 1.5e-07]}

VARIABLES = [
    Variable(1, "driver age", "Age of the driver (years)", "NormContinuous",
             [35.5, 410.25, 262.5, 118.75, 118.75, 60, 145.125], cuts=[21, 25, 35, 50, 68]),
    Variable(2, "vehicle age", "Age of the vehicle (years)", "Discretize",
             [20, 95.5, 41.25, 0, -38.75], cuts=[2, 6, 12]),
    Variable(3, "annual.km", "Distance driven in a year (km)", "NormContinuous",
             [55.5, -120.5, -42.25, 38.75, 38.75, 38.75, 310], cuts=[5000, 12000, 20000, 30000, 45000.5]),
    Variable(4, "region", "Region", "MapValues", [12.5, 180, 95.25, -20.5, -66], value_kind="str",
             modalities=[("11", "Capital"), ("24", "Coast"), ("53", "Hills"), ("75", "Plains")]),
    Variable(5, "use", "Use of the vehicle", "MapValues", [70, 0, 155.5, 340.75], value_kind="str",
             modalities=[("private", "Private"), ("farmer's", "Farm"), ("driver's school", "Driving school")]),
    Variable(6, "bonus", "Bonus level", "Discretize", [48.5, 90.25, -75.125], cuts=[50]),
    Variable(7, "annual.km", "Drives for a living", "Discretize", [0, 0, 1, 1.5], cuts=[30000, 60000]),
]
TERMS = [(3, 1.05), (1, 0.92), (7, 64.5), (5, 1.1), (2, 0.875), (6, -0.4), (4, 1)]
CONSTANT = 742.5

# The lengths share no factor, so that the columns meet in ever new combinations.
CELLS = {
    "driver age": ["18", "21", "23", "25", "31", "", "35", "42.5", "50", "61", "68", "74", "20.999"],
    "vehicle age": ["0", "2", "-1", "4", "6", "99", "9", "12", "15", "", "1"],
    "annual.km": ["3200", "5000", "-999.5", "9800.5", "12000", "10000000000", "16000", "20000", "0.00000015", "27500",
                  "30000", "", "45000.5", "45001", "60000", "72000", "1.5e-06"],
    "region": ["11", "24", "", "53", "75", "99", " 24 "],
    "use": ["private", "farmer's", "driver's school", "", "taxi"],
    "bonus": ["40", "50", "63", "49.5", "", "50.000001", "95", "50"],
}


def main():
    model_document.write(HERE / "claims.ModelXml", "C", "claim cost", VARIABLES, TERMS, CONSTANT, missing=MISSING)
    with open(HERE / "claims.csv", "w", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(["policy", *CELLS])
        for i in range(POLICIES):
            writer.writerow([1001 + i, *(cells[i % len(cells)] for cells in CELLS.values())])


if __name__ == "__main__":
    main()
