"""Repairs each FILE of generated code in place, by its extension. A second repair changes nothing.

.sas       the test of missing codes, the logistic form's open parenthesis, a model without terms
.py        the test of missing codes, an empty __init__, the logistic form, backslashes in values, the class name
.sql .xml  apostrophes and backslashes in values, an alias in two spellings"""

import argparse
import json
import math
import re
from functools import partial
from pathlib import Path
from typing import Any, NamedTuple
from xml.etree.ElementTree import Element, ParseError

from . import document
from .document import require


class Model(NamedTuple):
    """The recodings of a document, in its order, and the missing codes by folded name."""
    recodings: list[Element]
    codes: dict[bytes, list[float]]

    def missing(self, index, target):
        """The name of a recoding's column in a target's code, and its missing codes there."""
        require(int(index) < len(self.recodings), f"R{index} is not in the model. Pass the file's own")
        name = document.names(self.recodings[int(index)].get("field", ""))[target]
        return name, [f"{code:.16g}" for code in self.codes.get(document.folded(name), []) if math.isfinite(code)]


def repair_lists(text, model, head, opening, end, forms):
    """Writes each value of each list in the last of its forms.

    head, end: patterns of the beginning of a list, and of what follows a value. opening: returns what precedes each
    value, or None if no values are written, for the match of head and whether the list is a boolean."""
    parts, at = [], 0
    for recoding in model.recodings:
        if recoding.get("type") != "MapValues":
            continue
        column = f"column {recoding.get('field')!r}"
        start = require(re.compile(head).search(text, at), f"{column} has no list here. Pass the file's own model")
        before = opening(start, recoding.get("tname") == "bb64")
        parts.append(text[at:start.end()])
        at = start.end()
        for value in document.child(recoding, "modalities") if before is not None else []:
            known = [before + form for form in forms(value.get("val", ""))]
            line = re.compile(f"(?:{'|'.join(map(re.escape, known))})({end})")
            found = require(line.match(text, at), f"{column} has other values here. Pass the file's own model")
            parts += known[-1], found[1]
            at = found.end()
    return "".join([*parts, text[at:]])


def repair_sas(text, model):
    def missing_test(match):
        name, codes = model.missing(match[2], document.SAS)
        return f"   if ({' or '.join([f'missing({name})', *(f'{name}={code}' for code in codes)])}) then {match[1]};"

    text = re.sub(r"^(?:\|\| .*\))?\) then (R(\d+)_.*);$", missing_test, text, flags=re.M)
    text = re.sub(r"^(   .*proba=1/\(1\+exp\(-.*score\));$", r"\1);", text, flags=re.M)
    return re.sub(r"^(   .*score= [^\s;]+)\n\n", r"\1;\n\n", text, flags=re.M)


def repair_python(text, model):
    def missing_test(match):
        codes = reversed(model.missing(match[2], document.PYTHON)[1])
        return f"            if (isnan(data){''.join(f'or (data=={code})' for code in codes)}):\n{match[1]}"

    text = re.sub(r"^ {12}if \(isnan\(data\)(?:or \(data==\S+\))*\)?:\n( {16}R(\d+)_)", missing_test, text, flags=re.M)
    text = re.sub(r"^(    def __init__\(self\):\n)(?=\s*def)", r"\1        pass\n", text, flags=re.M)
    text = re.sub(r"^ {8}(#computing the prob.*\n) {8}(dfOut)", r"            \1            \2", text, flags=re.M)
    text = re.sub(r"^(class QORVModel_)/?(.*):$", lambda m: m[1] + re.sub(r"\W", "_", m[2]) + ":", text, flags=re.M)
    return repair_lists(text, model, r'(?m)^        self\.dict_R.*? = \{"":[^,}]*', lambda *_: ",", ":[^,}]*",
                        lambda value: ['"' + value.replace('"', '\\"') + '"', json.dumps(value, ensure_ascii=False)])


def repair_sql(text, model, is_escaped, is_xml=False):
    """is_escaped: the database treats a backslash in a text as an escape. is_xml: an ETL document holds the script."""
    def forms(value):
        value = value.replace("&", "&amp;").replace("<", "&lt;") if is_xml else value
        known = [value.replace("'", "\\'"), value.replace("'", "''"), value.replace("\\", "\\\\").replace("'", "\\'")]
        return [f"'{form}'" for form in (known if is_escaped else [known[0], known[2], known[1]])]

    head = r"CASE WHEN \( ((?s:.)*?) IS NULL(?: OR ((?s:.)*?)='')?\) THEN .*\n"
    return repair_lists(re.sub(r"\bqorv_tmp(?=\.score\b)", "Qorv_TMP", text), model, head, lambda match, is_boolean:
                        match[2] and f"   WHEN {match[2 - is_boolean]}=", r" THEN .*\n", forms)


def main() -> None:
    layout = argparse.RawDescriptionHelpFormatter
    parser = argparse.ArgumentParser("scorewright.repair", description=__doc__, formatter_class=layout)
    parser.add_argument("--backslash-escapes", action="store_true",
                        help="repair SQL for databases where a backslash escapes, such as MySQL and MariaDB")
    parser.add_argument("model", metavar="MODEL", help="the document that the files were generated from")
    parser.add_argument("files", metavar="FILE", nargs="+", type=Path)
    options, file = parser.parse_args(), None
    sql = partial(repair_sql, is_escaped=options.backslash_escapes)
    repairs: dict[str, Any] = {".sas": repair_sas, ".py": repair_python, ".sql": sql, ".xml": partial(sql, is_xml=True)}
    try:
        root = document.parse(options.model)
        recodings = [node for node in document.child(root, "univmodels") if node.tag.lower() == "model"]
        model = Model(recodings, document.missing_codes(root, is_cut=True))
        for file in options.files:
            require(file.suffix.lower() in repairs, "unknown extension: generated code ends in .sas, .py, .sql or .xml")
            data = file.read_bytes()
            encoding = "utf-16-le" if data[:2] == b"\xff\xfe" else "utf-8"
            text = repairs[file.suffix.lower()](data.decode(encoding, "surrogatepass"), model)
            file.write_bytes(text.encode(encoding, "surrogatepass"))
    except (OSError, ParseError, ValueError) as error:
        parser.exit(1, f"{error}\n" if isinstance(error, OSError) else f"{file or options.model}: {error}\n")


if __name__ == "__main__":
    main()
