"""Repairs each FILE of generated code in place, by its ending. A file may be repaired again.

.sas       the test of missing codes, the logistic form's open parenthesis, a model without terms
.py        the test of missing codes, an empty __init__, the logistic form, backslashes in values, the class's name
.sql .xml  apostrophes and backslashes in values, an alias that is written in two ways"""

import argparse
import codecs
import json
import math
import re
from collections.abc import Callable
from pathlib import Path
from typing import Any, NamedTuple, Optional
from xml.etree.ElementTree import Element, ParseError

from . import document
from .values import require


class Model(NamedTuple):
    """The recodings of a document, in its order, and the missing codes of its data fields by their folded names."""
    recodings: list[Element]
    codes: dict[bytes, list[float]]

    def missing(self, position: str, replaced: str) -> tuple[str, list[str]]:
        """The column of the recoding at a position, the characters of replaced turned into "_", and its codes."""
        require(int(position) < len(self.recodings), f"R{position} is no recoding of the model")
        name = document.clean(self.recodings[int(position)].get("field", ""), replaced)
        return name, [f"{code:.16g}" for code in self.codes.get(folded(name), []) if math.isfinite(code)]


def folded(name: str) -> bytes:
    """Equal for names that differ in the case of ASCII letters alone."""
    return name.encode("utf-8", "surrogatepass").lower()


def repair_lists(text: str, model: Model, head: str, opening: Callable[[re.Match[str], bool], Optional[str]], end: str,
                 forms: Callable[[str], list[str]]) -> str:
    """The text with each value of each list in the last of its forms.

    head: the pattern of a list's beginning. opening: gets its match and whether the list is a boolean, and returns what
    precedes each value, or None where no values are written. end: the pattern of what follows a value."""
    parts, at = [], 0
    for recoding in model.recodings:
        if recoding.get("type") != "MapValues":
            continue
        start: Any = re.compile(head).search(text, at)
        column = f"column {recoding.get('field')!r}"
        require(start, f"{column} has no list here")
        before: Any = opening(start, recoding.get("tname") == "bb64")
        parts.append(text[at:start.end()])
        at = start.end()
        for value in document.child(recoding, "modalities") if before is not None else []:
            known = [before + form for form in forms(value.get("val", ""))]
            ends = (re.compile(end).match(text, at + len(form)) for form in known if text.startswith(form, at))
            found: Any = next(filter(None, ends), None)
            require(found, f"{column} has other values than in the model")
            parts += known[-1], found[0]
            at = found.end()
    return "".join([*parts, text[at:]])


def repair_sas(text: str, model: Model) -> str:
    def missing_test(match: re.Match[str]) -> str:
        name, codes = model.missing(match[2], " .")
        return f"   if ({' or '.join([f'missing({name})', *(f'{name}={code}' for code in codes)])}) then {match[1]};"

    text = re.sub(r"^(?:\|\| .*\))?\) then (R(\d+)_.*);$", missing_test, text, flags=re.M)
    text = re.sub(r"^(   .*proba=1/\(1\+exp\(-.*score\));$", r"\1);", text, flags=re.M)
    return re.sub(r"^(   .*score= [^\s;]+)\n\n", r"\1;\n\n", text, flags=re.M)


def repair_python(text: str, model: Model) -> str:
    def missing_test(match: re.Match[str]) -> str:
        codes = reversed(model.missing(match[2], " .'-")[1])
        return f"            if (isnan(data){''.join(f'or (data=={code})' for code in codes)}):\n{match[1]}"

    text = re.sub(r"^ {12}if \(isnan\(data\)(?:or \(data==\S+\))*\)?:\n( {16}R(\d+)_)", missing_test, text, flags=re.M)
    text = re.sub(r"^(    def __init__\(self\):\n)(?=\s*def)", r"\1        pass\n", text, flags=re.M)
    text = re.sub(r"^ {8}(#computing the prob.*\n) {8}(dfOut)", r"            \1            \2", text, flags=re.M)
    text = re.sub(r"^(class QORVModel_)/?(.*):$", lambda m: m[1] + re.sub(r"\W", "_", m[2]) + ":", text, flags=re.M)
    return repair_lists(text, model, r'(?m)^        self\.dict_R.*? = \{"":[^,}]*', lambda *_: ",", ":[^,}]*",
                        lambda value: ['"' + value.replace('"', '\\"') + '"', json.dumps(value, ensure_ascii=False)])


def repair_sql(text: str, model: Model, is_escaped: bool, is_xml: bool) -> str:
    """is_escaped: a backslash escapes in the database's texts. is_xml: the script stands in an ETL document."""
    def forms(value: str) -> list[str]:
        value = value.replace("&", "&amp;").replace("<", "&lt;") if is_xml else value
        known = [value.replace("'", "\\'"), value.replace("'", "''"), value.replace("\\", "\\\\").replace("'", "\\'")]
        return [f"'{form}'" for form in (known if is_escaped else [known[0], known[2], known[1]])]

    head = r"CASE WHEN \( ((?s:.)*?) IS NULL(?: OR ((?s:.)*?)='')?\) THEN .*\n"
    return repair_lists(re.sub(r"\bqorv_tmp(?=\.score\b)", "Qorv_TMP", text), model, head, lambda match, is_boolean:
                        match[2] and f"   WHEN {match[2 - is_boolean]}=", r" THEN .*\n", forms)


def repaired(data: bytes, ending: str, model: Model, is_escaped: bool) -> bytes:
    """A file's bytes as they should be, in their own encoding. Raises ValueError."""
    mark = next(filter(data.startswith, [codecs.BOM_UTF16_LE, codecs.BOM_UTF8]), b"")
    encoding = "utf-16-le" if mark == codecs.BOM_UTF16_LE else "utf-8"
    text = data[len(mark):].decode(encoding, "surrogatepass")
    require(ending in (".sas", ".py", ".sql", ".xml"), "the name of generated code ends in .sas, .py, .sql or .xml")
    text = repair_sas(text, model) if ending == ".sas" else repair_python(text, model) if ending == ".py" else \
        repair_sql(text, model, is_escaped, ending == ".xml")
    return mark + text.encode(encoding, "surrogatepass")


def main() -> None:
    layout = argparse.RawDescriptionHelpFormatter
    parser = argparse.ArgumentParser("scorewright.repair", description=__doc__, formatter_class=layout)
    parser.add_argument("--backslash-escapes", action="store_true", help="write SQL for databases in whose texts "
                        "a backslash escapes, such as MySQL and MariaDB; by default, for all others")
    parser.add_argument("model", metavar="MODEL", help="the document that the files were made of")
    parser.add_argument("files", metavar="FILE", nargs="+", type=Path)
    options, file = parser.parse_args(), None
    try:
        root = document.parse(options.model)
        fields = reversed(document.child(root, "datadictionary"))  # of several with one name the first counts
        codes = {folded(field.get("name", "")): document.numbers(field, "missing", is_cut=True) for field in fields}
        model = Model([node for node in document.child(root, "univmodels") if node.tag.lower() == "model"], codes)
        for file in options.files:
            file.write_bytes(repaired(file.read_bytes(), file.suffix.lower(), model, options.backslash_escapes))
    except (OSError, ParseError, ValueError) as error:
        parser.exit(1, f"{error}\n" if isinstance(error, OSError) else f"{file or options.model}: {error}\n")


if __name__ == "__main__":
    main()
