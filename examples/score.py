#!/usr/bin/python3
"""score.py MODEL ROWS.csv: prints the number, score and probability of each row as the model document defines them.
Empty cells and NA are missing. Some models have no probability.

The generated code is compared with this, so it shares nothing with the code that generates it."""

import base64
import csv
import math
import struct
import sys
from xml.etree import ElementTree


def load(path):
    return Model(ElementTree.parse(path).getroot())


def read_rows(path):
    """The rows of a file as texts; missing cells are ''."""
    with open(path, newline="") as file:
        return [{field: "" if cell == "NA" else cell for field, cell in row.items()} for row in csv.DictReader(file)]


def children(node, name):
    return [] if node is None else [c for c in node if c.tag.lower() == name.lower()]


def child(node, name):
    return next(iter(children(node, name)), None)


def array(node, name, code="d"):
    data = base64.b64decode("".join(c.text or "" for c in children(node, name)[:1]))
    return [value for (value,) in struct.iter_unpack("<" + code, data)]


class Variable:
    def __init__(self, node, dictionary):
        self.number = int(node.get("name")[1:])
        self.field = node.get("field")
        self.categorical = node.get("type") == "MapValues"
        self.scores = array(node, "y")
        if self.categorical:
            values = [mod.get("val") for mod in children(child(node, "Modalities"), "Mod")]
            boolean = node.get("tname") == "bb64"  # five spellings of false, then those of true
            self.positions = {v: (1 if i <= 5 else 2) if boolean else i for i, v in enumerate(values, start=1)}
        else:
            self.bounds = array(node, "x")
            listed = self.field.replace(" ", "_").replace(".", "_").lower()
            self.missing = array(next((e for e in dictionary if e.get("name").lower() == listed), None), "Missing")

    def recode(self, cell):
        return self.scores[self.category(cell) if self.categorical else self.bin(cell)]

    def category(self, cell):
        text = (cell or "").strip()
        return self.positions.get(text, 0) if text else 0

    def bin(self, cell):
        try:
            value = float(cell or "nan")
        except ValueError:
            return 0
        if math.isnan(value) or value in self.missing:
            return 0
        if value < self.bounds[0]:
            return 1
        if value > self.bounds[-1]:
            return len(self.bounds) + 1
        # The first bound belongs to the bin above it; a lone bound has none, so its own value counts as missing.
        return next((i + 1 for i in range(1, len(self.bounds)) if value <= self.bounds[i]), 0)


class Model:
    def __init__(self, root):
        dictionary = children(child(root, "DataDictionary"), "DataField")
        self.variables = [Variable(node, dictionary) for node in children(child(root, "UnivModels"), "Model")]
        self.fields = list(dict.fromkeys(v.field for v in self.variables))

        regression = child(root, "RegressionModel")
        by_number = {v.number: v for v in self.variables}  # of equal numbers, the last counts
        *betas, self.constant = array(regression, "betas")
        self.terms = [(b, by_number[n]) for b, n in zip(betas, array(regression, "indexes", "i"))]
        self.logistic = regression.get("normalizationMethod", "").startswith("so")

        mapping = child(root, "ProbabilityMapping")
        self.table = list(zip(array(mapping, "x"), array(mapping, "y")))

    def score(self, row):
        """row: the text of each field's cell, '' or None if it is empty."""
        total = self.constant
        for beta, variable in self.terms:  # in this order, so that even the last bit agrees
            total += beta * variable.recode(row[variable.field])
        return total

    def probability(self, score):
        """None if the model has no probability."""
        if self.table:
            segment = self.segment(score)
            if segment == "above":
                return self.table[0][1]
            if segment == "below" or score == self.table[-1][0]:
                return self.table[-1][1]
            (x1, y1), (x0, y0) = next(pair for pair in zip(self.table, self.table[1:]) if score > pair[1][0])
            return y0 + (score - x0) * (y1 - y0) / (x1 - x0)
        return 1 / (1 + math.exp(-score)) if self.logistic else None

    def prediction(self, row):
        score = self.score(row)
        return self.probability(score) if self.table or self.logistic else score

    def segment(self, score):
        """The place of the score in the table; 'last' is between its two lowest points, both included."""
        points = [x for x, _ in self.table]
        if score > points[0]:
            return "above"
        if score < points[-1]:
            return "below"
        return "last" if score <= points[-2:][0] else "inner"


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__.partition(":")[0])
    model = load(sys.argv[1])
    print("row,score,probability")
    for number, row in enumerate(read_rows(sys.argv[2]), start=1):
        score = model.score(row)
        probability = model.probability(score)
        print(number, score, "" if probability is None else probability, sep=",")


if __name__ == "__main__":
    main()
