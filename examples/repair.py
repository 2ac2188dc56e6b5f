#!/usr/bin/python3
"""repair.py DOCUMENT SCRIPT...: repairs what in generated code wants a hand with each release, by the script's ending.

.sas  the test for missing values of a column with missing codes, which lacks its beginning and the last code
.py   the same test, which lacks a parenthesis
.sql  apostrophes in values, for engines that read '' where the script has \\' (SQLite, PostgreSQL by default)

A script may be repaired twice. DOCUMENT is the model document that the scripts were made of."""

import codecs
import re
import sys
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[1] / "python"))  # in the source; else it is found without
from scorewright import Scorecard  # noqa: E402


def repair_sas(text, card):
    def test(match):
        codes = card.missing[card.recodings[int(match[2])].column]
        tests = [f"missing({match[4]})", *(f"{match[4]}={code:.16g}" for code in codes)]
        return f"   if ({' or '.join(tests)}) then {match[1]};\n{match[3]}{match[4]}<"

    # The line after it tests the same column.
    return re.sub(r"^(?:\|\| .*\)|)\) then (R(\d+)_.*);\n(   else if \()(.*?)<", test, text, flags=re.M)


def repair_python(text, card):
    return re.sub(r"^( *if \(isnan\(data\)(?:or \(data==[^()]*\))+):$", r"\1):", text, flags=re.M)


def repair_sql(text, card):
    return text.replace("\\'", "''")


def main():
    card = Scorecard.read(sys.argv[1])
    for script in map(Path, sys.argv[2:]):
        data = script.read_bytes()
        in_utf_8 = data.startswith(codecs.BOM_UTF8)
        mark, encoding = (codecs.BOM_UTF8, "utf-8") if in_utf_8 else (codecs.BOM_UTF16_LE, "utf-16-le")
        repair = {".sas": repair_sas, ".py": repair_python, ".sql": repair_sql}[script.suffix]
        script.write_bytes(mark + repair(data.removeprefix(mark).decode(encoding), card).encode(encoding))


if __name__ == "__main__":
    main()
