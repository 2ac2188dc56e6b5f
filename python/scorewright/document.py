"""The XML of documents. Arrays are Base64 of little-endian doubles or 4-byte integers; cells are compared as text."""

import base64
import numbers
from collections.abc import Iterable
from pathlib import Path
from xml.etree.ElementTree import Element, SubElement, fromstring, indent, tostring

import numpy as np
import pandas as pd

SQL, SAS, PYTHON, VBA = range(4)
# The characters that each target replaces with "_" in names, as in model/target_rules.cpp.
REPLACED = ("", " .", " .'-", " .'-\"%()/")


def require(condition, message):
    """Returns the condition; raises ValueError if it is false."""
    if not condition:
        raise ValueError(message)
    return condition


def doubles(values: Iterable[float]) -> str:
    """Returns floats as the text of an array in a document."""
    return base64.b64encode(np.array([*values], "<f8").tobytes()).decode()


def integers(values: Iterable[int]) -> str:
    """Returns integers (-2**31 to 2**31 - 1) as the text of an array in a document."""
    return base64.b64encode(np.array([*values], "<i4").tobytes()).decode()


def cell_text(cell):
    """The text of a cell of a list: without surrounding blanks, whole numbers without decimals, "" if missing."""
    whole = isinstance(cell, numbers.Real) and not isinstance(cell, bool) and cell == cell // 1
    return "" if pd.isna(cell) else str(int(cell) if whole else cell).strip()


def names(column):
    """The column's name in the code of each target above."""
    return ["".join("_" if c in replaced else c for c in column) for replaced in REPLACED]


def with_sixth(recoding):
    """A list of five values, with a sixth that no cell has and that scores as unlisted; other recodings unchanged. SAS
    compares values as numbers if all consist of digits and full stops, so the sixth does then too."""
    texts = [value for value, _ in recoding.values]
    if len(texts) != 5 or recoding.boolean:
        return recoding
    unused = "(other)" if "(other)" not in texts else "(none of these)"
    sixth = unused if "".join(texts).strip("0123456789.") else "9" * (max(map(len, texts)) + 1)
    return recoding._replace(values=[*recoding.values, (sixth, "Other")], scores=[*recoding.scores, recoding.scores[0]])


def write(path, card, table):
    def add(parent, name, arrays=(), /, text=None, **attributes):
        node = SubElement(parent, name, attributes)
        node.text = text
        for child, values in arrays:
            if len(values):
                add(node, child, text=doubles(values))
        return node

    root = Element("QRV_Model")
    add(root, "Header", version="4.2.1")
    add(add(root, "MetaData", tkind=card.kind), "Target", text=card.target)
    dictionary, models = add(root, "DataDictionary"), add(root, "UnivModels")
    for column in dict.fromkeys(r.column for r in card.recodings):
        for name in dict.fromkeys(names(column)):
            add(dictionary, "DataField", [("Missing", card.missing.get(column, []))], name=name)
    for r in map(with_sixth, card.recodings):
        kind = {"tname": "bb64" if r.boolean else "str"} if r.type == "MapValues" else {}
        model = add(models, "Model", [("x", r.bounds), ("y", r.scores)], name=f"V{r.number}", field=r.column,
                    displayName=" ".join(r.label.split()), type=r.type, **kind)
        modalities = add(model, "Modalities") if r.values else None
        for value, label in r.values:
            add(modalities, "Mod", val=value, label=label)
    regression = add(root, "RegressionModel")
    add(regression, "indexes", text=integers(card.coefficients))
    add(regression, "betas", text=doubles([*card.coefficients.values(), card.constant]))
    if table:
        add(root, "ProbabilityMapping", zip("xy", table))

    indent(root)
    text = '<?xml version="1.0" encoding="UTF-16"?>\n' + tostring(root, encoding="unicode") + "\n"
    Path(path).write_bytes(("\ufeff" + text).encode("utf-16-le"))


def attribute(node, name):
    require(name in node.keys(), f"an element {node.tag} has no attribute {name}")
    return node.get(name)


def child(node, name):
    return next((child for child in node if child.tag.lower() == name), Element(name))


def array(node, name, code="<f8", is_cut=False):
    """The child's array. is_cut: ignore bytes after the last whole number, as the program does."""
    data = base64.b64decode((child(node, name).text or "") + "==" * is_cut)
    return np.frombuffer(data[:len(data) // 8 * 8] if is_cut else data, code).tolist()


def folded(name):
    """The name for comparison: only ASCII letters match in either case."""
    return name.encode("utf-8", "surrogatepass").lower()


def missing_codes(root, is_cut=False):
    """The missing codes of data fields by folded name; of several fields with one name the first counts."""
    fields = reversed(child(root, "datadictionary"))
    return {folded(field.get("name", "")): array(field, "missing", is_cut=is_cut) for field in fields}


def parse(path):
    """The document's root. Raises ParseError or ValueError if the file is not XML."""
    data = Path(path).read_bytes()
    encoding = "utf-16" if data[:2] == b"\xff\xfe" else "utf-8-sig" if data[:1] == b"\xef" else "cp1252"
    return fromstring(data.decode("utf-16-le" if data[1:2] == b"\0" else encoding))


def fill(card, root):
    """Fills an empty scorecard from a document's root."""
    meta, regression, table = (child(root, name) for name in ("metadata", "regressionmodel", "probabilitymapping"))
    require(len(regression) and "normalizationMethod" not in regression.keys(), "no regression, or a logistic form")
    card.target, card.kind = child(meta, "target").text or "", meta.get("tkind", "T")
    for model in child(root, "univmodels"):
        values = [(attribute(mod, "val"), mod.get("label", "")) for mod in child(model, "modalities")]
        card.add(attribute(model, "field"), model.get("type"), array(model, "y"), array(model, "x"), values,
                 model.get("tname") == "bb64", label=model.get("displayName"), number=int(attribute(model, "name")[1:]))
    *coefficients, card.constant = array(regression, "betas")
    indexes = array(regression, "indexes", "<i4")
    require(len(indexes) == len(coefficients), f"{len(indexes)} indexes, but {len(coefficients)} coefficients")
    card.coefficients, codes = dict(zip(indexes, coefficients)), missing_codes(root)
    for column in {r.column for r in card.recodings if r.type != "MapValues"}:
        card.missing[column] = next((codes[folded(n)] for n in names(column) if codes.get(folded(n))), [])
    card.table = (array(table, "x"), array(table, "y")) if len(table) else None
