#!/usr/bin/python3
"""score_with_dask.py MODULE [PARTITIONS]: scores all applicants as score_applicants.py does, in partitions (default 4)
that run in one process per processor."""

import sys

import dask.dataframe as dd
import pandas as pd

from score_applicants import HERE, load


# The class numbers the rows of each partition from 0.
def score_partition(part, model):
    return model.apply(part).set_axis(part.index)


def score(applicants, model):
    meta = {"Status_bad_score": float, "Status_bad_proba": float}
    return applicants.map_partitions(score_partition, model, meta=meta)


def main():
    partitions = int(sys.argv[2]) if len(sys.argv) > 2 else 4
    applicants = pd.read_csv(HERE / "applicants.csv", float_precision="round_trip")
    applicants = dd.from_pandas(applicants, npartitions=partitions)
    applicants = applicants.fillna({"Home": "", "Marital": "", "Records": "", "Job": ""})
    result = score(applicants, load(sys.argv[1]))
    scored = applicants[["Status", "Age", "Amount"]].join(result).compute(scheduler="processes")
    print(scored.round(3).to_string(max_rows=8))
    mean = round(scored.Status_bad_score.mean(), 6)
    print(f"\n{len(scored)} applicants, scored in {result.npartitions} partitions, mean score {mean}")


if __name__ == "__main__":
    main()
