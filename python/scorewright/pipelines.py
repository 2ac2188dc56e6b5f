"""Pipelines of scikit-learn, which is known here by the names of its classes alone."""

from typing import Any

import numpy as np
import pandas as pd

from .tables import logistic_table
from .values import cell_text, require


def name(estimator):
    return type(estimator).__name__


def add_numbers(card, column, edges, coefficients, filled):
    """Adds the bins of a column, whose coefficients come first; filled: what takes the place of a missing cell."""
    bounds, scores = (edges[1:-1], coefficients[:len(edges) - 1]) if len(edges) > 2 else ([0.0], coefficients[[0, 0]])
    missing = 0.0 if filled is None else scores[np.searchsorted(bounds, filled, "right")]
    card.add_numeric(column, bounds, scores, closed="left", missing=missing)
    return len(edges) - 1


def add_list(card, column, encoder, position, coefficients, filled, unlisted_as_missing):
    values = list(encoder.categories_[position])
    dropped = None if encoder.drop_idx_ is None else encoder.drop_idx_[position]
    scores = coefficients if dropped is None else np.insert(coefficients, dropped, 0)
    scored = {"" if pd.isna(value) else cell_text(value): score for value, score in zip(values, scores)}
    empty = {scored[value] for value in {"", "" if filled is None else cell_text(filled)} & set(scored)}
    unlisted = set() if encoder.handle_unknown == "error" or empty and unlisted_as_missing else {0.0}
    require(len(scored) == len(values), f"column {column!r}: two of its values are one text: {values}")
    require(len(empty | unlisted) < 2, f"column {column!r}: empty cells and unlisted values score differently in the "
            "pipeline; unlisted_as_missing=True lets both score like empty cells")
    scored.pop("", None)
    card.add_categorical(column, scored, other=max(empty | unlisted, default=0.0))
    return len(values) - (dropped is not None)


def fill(card, pipeline, largest_error, unlisted_as_missing):
    """Fills an empty scorecard."""
    steps: Any = [*getattr(pipeline, "named_steps", {}).values(), None, None]
    first, model, *others = steps
    require([name(first), name(model), len(others)] == ["ColumnTransformer", "LogisticRegression", 2] and
            len(getattr(model, "classes_", ())) == 2 and getattr(model, "multi_class", None) != "multinomial",
            f"a pipeline must be a fitted ColumnTransformer and LogisticRegression of two classes: {pipeline}")
    card.constant = float(model.intercept_[0])
    for key, transformer, columns in first.transformers_:
        if name(transformer) == "str" and transformer == "drop":
            continue
        *before, last = [step for _, step in getattr(transformer, "steps", [(key, transformer)])]
        known = name(last) == "KBinsDiscretizer" and last.encode != "ordinal" and last.dtype is None or \
            name(last) == "OneHotEncoder" and not getattr(last, "_infrequent_enabled", False)
        require(known and (not before or [name(step) for step in before] == ["SimpleImputer"] and
                           not before[0].add_indicator and pd.isna(before[0].missing_values)),
                f"columns {columns}: {transformer} cannot be expressed as recodings of columns")
        require(hasattr(transformer, "feature_names_in_"), f"columns {columns} had no names when they were fitted")
        betas = model.coef_[0][first.output_indices_[key]] * (first.transformer_weights or {}).get(key, 1)
        for position, column in enumerate(transformer.feature_names_in_):
            filled = before[0].statistics_[position] if before else None
            used = add_numbers(card, column, last.bin_edges_[position], betas, filled) if hasattr(last, "encode") else \
                add_list(card, column, last, position, betas, filled, unlisted_as_missing)
            betas = betas[used:]
    card.table = logistic_table(largest_error, *card.range())
    return card
