#!/usr/bin/python3
"""exporters.py [N...]: runs every exporter on models of N variables (100 1000 10000 100000).

Prints the least processor time of several rounds, the time for each byte written, the peak memory, also as a multiple
of the document's size, the growth from one N to the next, and the exporter's own time as a multiple of that of
read_model, which only reads the document and formats its numbers. Peaks below some 20 MB are those of the process that
starts the program. SCOREWRIGHT names the program (build/scorewright); read_model must be beside it.

Exits with status 1 if an exporter exceeds the memory that the manual states, or the limit for its own time."""

import os
import random
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests"))
import support  # noqa: E402

PROGRAM = os.environ.get("SCOREWRIGHT", str(ROOT / "build" / "scorewright"))
READING = str(Path(PROGRAM).with_name("read_model"))
OPTIONS = {
    "sas": ["-a", "model.ModelXml", "out"],
    "sql": ["-s", "configuration.xml"],
    "vba": ["-e", "model.ModelXml", "out"],
    "python": ["-p", "model.ModelXml", "out", "Model"],
    "html": ["-h", "model.ModelXml", "", "out"],
    "etl": ["-s", "etl.xml"],
}
# Peak memory as a multiple of a UTF-16 document, as the manual states it for large documents.
STATED = {"sas": 5, "sql": 5, "vba": 5, "python": 5, "html": 7, "etl": 7}
LARGE = 10e6
MOST_OWN_TIME = 1.5
# A script with a temporary table.
CONFIGURATION = """<Model2SQL inputFile="model.ModelXml" outputFile="out" inputTable="rows" predictionTable="risk"
 dbType="mysql"/>"""


def model(count):
    """A document: two thirds numeric variables of 20 bounds, one third categorical ones of 12 values."""
    rnd = random.Random(count)
    models = []
    for k in range(1, count + 1):
        if k % 3:
            bounds = sorted(rnd.uniform(-1000, 1000) for _ in range(20))
            models.append(support.numeric(k, f"months on book {k}", bounds, [rnd.uniform(-2, 2) for _ in range(22)]))
        else:
            values = [f"skilled worker {i}" for i in range(12)]
            models.append(support.categorical(k, f"kind of work {k}", values, [rnd.uniform(-2, 2) for _ in range(13)]))
    terms = [(k, rnd.uniform(-1, 1)) for k in range(1, count + 1)]
    rnd.shuffle(terms)
    table = [(3 - i / 10, 0.9 - i / 100) for i in range(60)]
    fields = {f"months_on_book_{k}": [-1.0, 99.0] for k in range(10, count + 1, 30)}
    return support.document(models, terms, 0.5, table=table, missing=fields).replace("><", ">\n<")


def run(folder, arguments, expected=0, program=PROGRAM):
    """Returns processor time in seconds and peak memory in bytes."""
    child = os.fork()
    if child == 0:
        os.chdir(folder)
        os.dup2(os.open(os.devnull, os.O_WRONLY), 1)
        os.execv(program, [program, *arguments])
    _, status, usage = os.wait4(child, 0)
    if os.waitstatus_to_exitcode(status) != expected:
        sys.exit(f"{arguments} ended with {os.waitstatus_to_exitcode(status)}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024


def main():
    counts = [int(argument) for argument in sys.argv[1:]] or [100, 1000, 10000, 100000]
    before = {}
    excess = []
    start = min(run(".", [], expected=1)[0] for _ in range(50))
    print(f"The program takes {start * 1e3:.1f} ms to start.")
    print("exporter       N  doc MB  out MB   cpu ms  ns/byte  peak MB  peak/doc  growth  own/read")
    for count in counts:
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            document = folder / "model.ModelXml"
            document.write_bytes(b"\xff\xfe" + model(count).encode("utf-16-le"))
            (folder / "configuration.xml").write_text(CONFIGURATION)
            (folder / "etl.xml").write_text(CONFIGURATION.replace("/>", ' kestruneScript="1"/>'))
            size = document.stat().st_size
            rounds = range(3 if count > 10000 else 10)
            reading = min(run(folder, ["model.ModelXml"], program=READING)[0] for _ in rounds)
            print(f"{'reading':8} {count:7} {size / 1e6:7.2f} {'':7} {reading * 1e3:8.1f}")
            for exporter, arguments in OPTIONS.items():
                figures = [run(folder, arguments) for _ in rounds]
                time, memory = min(f[0] for f in figures), max(f[1] for f in figures)
                written = (folder / "out").stat().st_size
                growth = f"{time / before[exporter]:7.2f}" if exporter in before else " " * 7
                own = time / reading - 1
                before[exporter] = time
                print(f"{exporter:8} {count:7} {size / 1e6:7.2f} {written / 1e6:7.2f} {time * 1e3:8.1f} "
                      f"{time * 1e9 / written:8.2f} {memory / 1e6:8.1f} {memory / size:9.2f} {growth} {own:9.2f}", flush=True)
                if size > LARGE and memory > STATED[exporter] * size:
                    excess.append(f"{exporter}, {count} variables: peak/doc {memory / size:.2f}, {STATED[exporter]} stated")
                if size > LARGE and own > MOST_OWN_TIME:
                    excess.append(f"{exporter}, {count} variables: own/read {own:.2f}, {MOST_OWN_TIME} allowed")
    if excess:
        sys.exit("\n".join(excess))


if __name__ == "__main__":
    main()
