"""Scores a million rows with each program and target below, and prints the least processor time of each.

usage: check.py <folder of scorewright, scorewright-check and csv_floor> [rows]"""

import csv
import os
import resource
import subprocess
import sys
import tempfile
import time
from pathlib import Path

EXAMPLES = Path(__file__).resolve().parent.parent / "examples"
sys.path.insert(0, str(EXAMPLES))
import score as scorer  # noqa: E402

MODEL = EXAMPLES / "credit" / "credit.ModelXml"
TEXTS = {"Home", "Marital", "Records", "Job"}
RUNS = 5


def make_rows(path, count):
    head, *lines = (EXAMPLES / "credit" / "applicants.csv").read_text().splitlines(keepends=True)
    with open(path, "w") as file:
        file.write(head)
        for start in range(0, count, len(lines)):
            file.writelines(lines[:count - start])


def processor_time(command):
    def spent():
        usage = resource.getrusage(resource.RUSAGE_CHILDREN)
        return usage.ru_utime + usage.ru_stime

    before = spent()
    subprocess.run(command, check=False, stdout=subprocess.DEVNULL)
    return spent() - before


def score_with_scorer(rows):
    start = time.process_time()
    model = scorer.load(MODEL)
    with open(rows, newline="") as file:
        for row in csv.DictReader(file):
            model.probability(model.score(row))
    return time.process_time() - start


def score_with_class(programs, rows, folder):
    """Scores a hundredth of the rows, because the class is slow, and returns the time for all rows."""
    import pandas
    subprocess.run([programs / "scorewright", "-p", MODEL, folder / "credit.py", "M"], check=True, stdout=subprocess.DEVNULL)
    names = {}
    exec((folder / "credit.py").read_text("utf-8-sig"), names)
    with open(rows) as file:
        share = (sum(1 for _ in file) - 1) // 100
    frame = pandas.read_csv(rows, nrows=share).fillna(dict.fromkeys(TEXTS, ""))
    start = time.process_time()
    names["QORVModel_M"]().apply(frame)
    return 100 * (time.process_time() - start)


def score_with_postgres(programs, rows, folder):
    """Returns the elapsed time, because the server is another process."""
    (folder / "c.xml").write_text(
        f'<Model2SQL inputFile="{MODEL}" outputFile="{folder}/out" inputTable="src" predictionTable="preds"'
        ' dbType="postgresql" createPredictionTable="1" boolsAreNumbers="0"/>')
    subprocess.run([programs / "scorewright", "-s", folder / "c.xml"], check=True, stdout=subprocess.DEVNULL)
    with open(rows) as file:
        titles = file.readline().replace('"', "").strip().split(",")
    columns = ",".join(f"{t} {'text' if t in TEXTS | {'Status'} else 'float'}" for t in titles)
    psql = ["psql", "-XqAt", "-v", "ON_ERROR_STOP=1"]
    (folder / "load.sql").write_text(f"create table src({columns}, id serial);\n"
                                     f"\\copy src({','.join(titles)}) from '{rows}' csv header null 'NA'\n")
    subprocess.run([*psql, "-f", folder / "load.sql"], check=True, stdout=subprocess.DEVNULL)
    (folder / "script.sql").write_text((folder / "out").read_text("utf-16"), "utf-8")
    start = time.perf_counter()
    subprocess.run([*psql, "-f", folder / "script.sql"], check=True, stdout=subprocess.DEVNULL)
    return time.perf_counter() - start


def main():
    programs = Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        rows = folder / "rows.csv"
        make_rows(rows, int(sys.argv[2]) if len(sys.argv) > 2 else 1_000_000)
        check = [programs / "scorewright-check", MODEL, "--rows", rows, "--missing", "NA"]
        commands = {"libcsv alone": [programs / "csv_floor", rows], "scorewright-check": check,
                    "the same with --scores": [*check, "--scores", folder / "scores.csv"]}
        least = {label: min(processor_time(command) for _ in range(RUNS)) for label, command in commands.items()}
        least["examples/score.py"] = score_with_scorer(rows)
        least["generated Python class"] = score_with_class(programs, rows, folder)
        least["PostgreSQL, elapsed"] = score_with_postgres(programs, rows, folder)
        print(f"{rows.stat().st_size / 1e6:.0f} MB")
        for label, seconds in least.items():
            print(f"{label:24} {seconds:8.2f} s {seconds / least['libcsv alone']:8.1f}")


if __name__ == "__main__":
    if "PGVERSION" not in os.environ:  # starts a temporary server
        os.execvp("pg_virtualenv", ["pg_virtualenv", "-t", sys.executable, "-B", *sys.argv])
    main()
