"""Writes scoring-model documents in the form in which modelling tools save them."""

import base64
import struct
from dataclasses import dataclass
from typing import Optional, Sequence
from xml.etree import ElementTree


@dataclass
class Variable:
    """One recoding of one column; scores[0] is that of a missing or unlisted value."""

    number: int
    field: str
    label: str
    kind: str  # "NormContinuous", "Discretize" or "MapValues"
    scores: Sequence[float]
    cuts: Sequence[float] = ()  # numeric kinds
    modalities: Sequence[tuple] = ()  # "MapValues": (value, label)
    value_kind: Optional[str] = None  # "str", "bb64"


def doubles(values):
    return base64.b64encode(struct.pack(f"<{len(values)}d", *values)).decode("ascii")


def integers(values):
    return base64.b64encode(struct.pack(f"<{len(values)}i", *values)).decode("ascii")


def clean_name(field):
    """The name under which the data dictionary lists a column."""
    return field.replace(" ", "_").replace(".", "_")


def write(path, target_kind, target, variables, terms, constant, table=None, missing=None):
    """terms: (variable number, coefficient); table: (score points, probabilities);
    missing: for each field, the numbers that stand for an absent value."""

    def add(parent, name, text=None, /, **attributes):
        node = ElementTree.SubElement(parent, name, attributes)
        node.text = text
        return node

    root = ElementTree.Element("QRV_Model")
    add(root, "Header", version="4.2.1")
    add(add(root, "MetaData", tkind=target_kind), "Target", target)

    dictionary = add(root, "DataDictionary")
    for field in dict.fromkeys(v.field for v in variables):
        entry = add(dictionary, "DataField", name=clean_name(field))
        if missing and field in missing:
            add(entry, "Missing", doubles(missing[field]))

    models = add(root, "UnivModels")
    for v in variables:
        model = add(models, "Model", name=f"V{v.number}", field=v.field, displayName=v.label, type=v.kind)
        if v.value_kind:
            model.set("tname", v.value_kind)
        if v.kind == "MapValues":
            add(model, "y", doubles(v.scores))
            modalities = add(model, "Modalities")
            for value, label in v.modalities:
                add(modalities, "Mod", val=value, label=label)
        else:
            add(model, "x", doubles(v.cuts))
            add(model, "y", doubles(v.scores))

    regression = add(root, "RegressionModel")
    add(regression, "indexes", integers([number for number, _ in terms]))
    add(regression, "betas", doubles([beta for _, beta in terms] + [constant]))

    if table:
        mapping = add(root, "ProbabilityMapping")
        add(mapping, "x", doubles(table[0]))
        add(mapping, "y", doubles(table[1]))

    ElementTree.indent(root)
    text = '<?xml version="1.0" encoding="UTF-16"?>\n' + ElementTree.tostring(root, encoding="unicode") + "\n"
    with open(path, "wb") as file:
        file.write(("\ufeff" + text).encode("utf-16-le"))
