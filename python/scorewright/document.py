"""The document's XML."""

import base64
from pathlib import Path
from xml.etree import ElementTree

import numpy as np

from .values import doubles, integers, require

# The characters that SQL, SAS, Python and VBA turn into "_" in names, as the program does (model/target_rules.cpp).
REPLACED = ("", " .", " .'-", " .'-\"%()/")


def clean(name, replaced):
    return "".join("_" if c in replaced else c for c in name)


def names(column):
    """The names of a column in SQL, SAS, Python and VBA."""
    return [clean(column, characters) for characters in REPLACED]


def with_sixth(values):
    """Five values and one that no cell has; of digits and full stops if all are, as SAS compares these as numbers."""
    texts = [value for value, _ in values]
    unused = "(other)" if "(other)" not in texts else "(none of these)"
    return [*values, (unused if "".join(texts).strip("0123456789.") else "9" * (max(map(len, texts)) + 1), "Other")]


def write(path, card, table):
    def add(parent, name, text=None, /, **attributes):
        node = ElementTree.SubElement(parent, name, attributes)
        node.text = text
        return node

    root = ElementTree.Element("QRV_Model")
    add(root, "Header", version="4.2.1")
    add(add(root, "MetaData", tkind=card.kind), "Target", card.target)

    dictionary = add(root, "DataDictionary")
    for column in dict.fromkeys(r.column for r in card.recodings):
        for name in dict.fromkeys(names(column)):
            field = add(dictionary, "DataField", name=name)
            if len(card.missing.get(column, [])):
                add(field, "Missing", doubles(card.missing[column]))

    models = add(root, "UnivModels")
    for r in card.recodings:
        model = add(models, "Model", name=f"V{r.number}", field=r.column, displayName=" ".join(r.label.split()),
                    type=r.type)
        five = len(r.values) == 5 and not r.boolean
        if r.type == "MapValues":
            model.set("tname", "bb64" if r.boolean else "str")
        else:
            add(model, "x", doubles(r.bounds))
        add(model, "y", doubles([*r.scores, r.scores[0]] if five else r.scores))
        modalities = add(model, "Modalities") if r.type == "MapValues" else None
        for value, label in with_sixth(r.values) if five else r.values:
            add(modalities, "Mod", val=value, label=label)

    regression = add(root, "RegressionModel")
    add(regression, "indexes", integers(card.coefficients))
    add(regression, "betas", doubles([*card.coefficients.values(), card.constant]))
    if table:
        mapping = add(root, "ProbabilityMapping")
        add(mapping, "x", doubles(table[0]))
        add(mapping, "y", doubles(table[1]))

    ElementTree.indent(root)
    text = '<?xml version="1.0" encoding="UTF-16"?>\n' + ElementTree.tostring(root, encoding="unicode") + "\n"
    Path(path).write_bytes(("\ufeff" + text).encode("utf-16-le"))


def attribute(node, name):
    require(name in node.keys(), f"an element {node.tag} has no attribute {name}")
    return node.get(name)


def child(node, name):
    return next((child for child in node if child.tag.lower() == name), ElementTree.Element(name))


def numbers(node, name, code="<f8", is_cut=False):
    """The array of that name. is_cut: whether what is behind the last whole number is left out, as the program does."""
    data = base64.b64decode((child(node, name).text or "") + "==" * is_cut)
    return np.frombuffer(data[:len(data) // 8 * 8] if is_cut else data, code).tolist()


def parse(path):
    """The document's root. Raises ParseError or ValueError for what is not XML."""
    data = Path(path).read_bytes()
    encoding = "utf-16" if data[:2] == b"\xff\xfe" else "utf-8-sig" if data[:1] == b"\xef" else "cp1252"
    return ElementTree.fromstring(data.decode("utf-16-le" if data[1:2] == b"\0" else encoding))


def fill(card, root):
    """Fills an empty scorecard from a document's root."""
    meta, regression = child(root, "metadata"), child(root, "regressionmodel")
    require(len(regression) and "normalizationMethod" not in regression.keys(), "no regression, or a logistic form")
    card.target, card.kind = child(meta, "target").text or "", meta.get("tkind", "T")
    for model in child(root, "univmodels"):
        values = [(attribute(mod, "val"), mod.get("label", "")) for mod in child(model, "modalities")]
        card.add(attribute(model, "field"), model.get("type"), numbers(model, "y"), numbers(model, "x"), values,
                 model.get("tname") == "bb64", label=model.get("displayName"), number=int(attribute(model, "name")[1:]))
    *coefficients, card.constant = numbers(regression, "betas")
    indexes = numbers(regression, "indexes", "<i4")
    require(len(indexes) == len(coefficients), f"{len(indexes)} indexes and {len(coefficients)} coefficients")
    card.coefficients = dict(zip(indexes, coefficients))
    fields = {field.get("name", "").lower(): numbers(field, "missing") for field in child(root, "datadictionary")}
    for column in {r.column for r in card.recodings if r.type != "MapValues"}:
        card.missing[column] = next((fields[n.lower()] for n in names(column) if fields.get(n.lower())), [])
    mapping = child(root, "probabilitymapping")
    card.table = (numbers(mapping, "x"), numbers(mapping, "y")) if len(mapping) else None


def read(path, card):
    """Fills an empty scorecard. Only errors of the document are reported as such."""
    try:
        fill(card, parse(path))
    except (ElementTree.ParseError, ValueError) as error:
        raise ValueError(f"{path}: {error}") from None
    return card
