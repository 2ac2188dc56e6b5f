#!/usr/bin/python3
"""score_applicants.py MODULE [RESULTS]: scores all applicants with the class QORVModel_Credit of a generated module.
Prints some of the scores, or writes all to the CSV file RESULTS."""

import importlib.util
import sys
from pathlib import Path

import pandas as pd

HERE = Path(__file__).resolve().parent


def load(path):
    generated = importlib.util.spec_from_file_location("credit", path)
    module = importlib.util.module_from_spec(generated)
    generated.loader.exec_module(module)
    return module.QORVModel_Credit()


def main():
    applicants = pd.read_csv(HERE / "applicants.csv", float_precision="round_trip")
    applicants = applicants.fillna({"Home": "", "Marital": "", "Records": "", "Job": ""})
    result = load(sys.argv[1]).apply(applicants)
    if len(sys.argv) > 2:
        result.to_csv(sys.argv[2], index=False)
        return
    columns = ["Status", "Seniority", "Home", "Age", "Records", "Job", "Income", "Amount"]
    print(pd.concat([applicants[columns], result.round(3)], axis=1).head(8).to_string(index=False))
    risk = pd.qcut(result.Status_bad_proba, 5, labels=["lowest fifth", "2nd", "3rd", "4th", "highest fifth"])
    bad = applicants.Status.eq("bad").groupby(risk).mean().mul(100).round(1)
    print(f"\n{len(result)} applicants; share of bad payers in per cent, by fifths of the predicted probability:")
    print(bad.to_frame("bad payers").T.to_string())


if __name__ == "__main__":
    main()
