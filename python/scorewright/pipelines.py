"""Pipelines of scikit-learn. They are recognised by class names, so that the package does not need scikit-learn."""

import numpy as np
import pandas as pd

from .document import cell_text, require
from .tables import logistic_table


def name(estimator):
    """The name of an estimator's class; empty for a step that passes columns through."""
    kind = type(estimator).__name__
    return "" if kind in ("NoneType", "str") or kind == "FunctionTransformer" and estimator.func is None else kind


def steps(pipeline):
    return [step for _, step in getattr(pipeline, "steps", [("", pipeline)]) if name(step)]


def double_bound(edge):
    """The least double that, rounded to 32 bits, is not below an edge."""
    above = np.float32(edge) if np.float32(edge) >= edge else np.nextafter(np.float32(edge), np.float32(np.inf))
    middle = (float(above) + float(np.nextafter(above, np.float32(-np.inf)))) / 2
    return middle if np.float32(middle) == above else np.nextafter(middle, np.inf)


def add_numbers(card, column, edges, dtype, coefficients, filled, data):
    """Adds a column's bins between edges. filled: replaces missing cells. Returns the number of bins."""
    bounds = [double_bound(edge) if dtype == np.float32 else edge for edge in edges[1:-1]]
    scores = coefficients[:len(edges) - 1]
    values = None if data is None else pd.to_numeric(data[column])
    if filled is not None and values is not None and values.dtype == np.float32:
        filled = np.float32(filled)  # as the imputer writes it into such a column
    missing = 0.0 if filled is None else scores[np.searchsorted(bounds, float(filled), "right")]
    card.add_numeric(column, bounds, scores, closed="left", missing=missing, data=values)
    return len(scores)


def add_list(card, column, encoder, index, coefficients, filled, unlisted_as_missing):
    """Adds the column at an index of an encoder. Returns the number of its coefficients, which come first."""
    values, rare = encoder.categories_[index], getattr(encoder, "infrequent_categories_", None)
    rare = [] if rare is None or rare[index] is None else rare[index]
    used = len(values) - len(rare[1:]) - (encoder.drop_idx_ is not None and encoder.drop_idx_[index] is not None)
    # Releases of scikit-learn disagree on what drop_idx_ counts, so the encoder encodes each value.
    rows = pd.DataFrame({i: values if i == index else [others[0]] * len(values)
                         for i, others in enumerate(encoder.categories_)})
    ones = encoder.transform(rows.set_axis(getattr(encoder, "feature_names_in_", rows.columns), axis=1))
    ones = np.asarray(ones.toarray() if hasattr(ones, "toarray") else ones)
    ones = ones[:, ones.shape[1] - len(coefficients):][:, :used]
    scored = dict(zip(map(cell_text, values), ones @ coefficients[:used]))
    require(len(scored) == len(values), f"column {column!r}: two of its values have the same text: {values}")
    empty = {scored[value] for value in {"", cell_text(filled)} & set(scored)}
    unlisted = {scored[cell_text(rare[0])] if len(rare) and encoder.handle_unknown == "infrequent_if_exist" else 0.0}
    if encoder.handle_unknown == "error" or empty and unlisted_as_missing:
        unlisted = set()
    require(len(empty | unlisted) < 2, f"column {column!r}: empty cells and unlisted values have different scores in "
            "the pipeline. Pass unlisted_as_missing=True to score both as empty cells")
    scored.pop("", None)
    other = max(empty | unlisted, default=0.0)
    if scored and all(isinstance(value, (bool, np.bool_)) or pd.isna(value) for value in values):
        card.add_boolean(column, scored.get("False", other), scored.get("True", other), missing=other)
    else:
        card.add_categorical(column, scored, other=other)
    return used


def fill(card, pipeline, largest_error, unlisted_as_missing, data):
    """Fills an empty scorecard."""
    require(not name(pipeline).endswith("SearchCV"), "this is a search: pass its best_estimator_")
    kinds = [*map(name, steps(pipeline))]
    require(kinds[:1] == ["ColumnTransformer"] and kinds[1:] in (["LogisticRegression"], ["LogisticRegressionCV"]),
            f"the pipeline must have two steps, a ColumnTransformer and a LogisticRegression, not {kinds}")
    first, model = steps(pipeline)
    require(hasattr(model, "classes_"), "the pipeline is not fitted")
    require(hasattr(first, "feature_names_in_"), "the pipeline was fitted on columns without names")
    require(len(model.classes_) == 2, f"the model must have two classes, not several: {model.classes_}")
    require(getattr(model, "multi_class", None) != "multinomial", "multi_class='multinomial' gives another probability")
    unlikely, target = model.classes_
    require(card.target != str(unlikely), f"the probability is that of {target!r}, not of {card.target!r}")
    card.constant, empty = float(model.intercept_[0]), pd.DataFrame(columns=first.feature_names_in_)
    for key, transformer, columns in first.transformers_:
        betas = model.coef_[0][first.output_indices_[key]] * (first.transformer_weights or {}).get(key, 1)
        if not len(betas):
            continue
        try:
            columns = [*empty.loc[:, columns]]
        except (KeyError, TypeError):
            columns = [*empty.iloc[:, columns]]
        *before, last = steps(transformer) or [None]
        if not last:
            require(data is not None and all(data[column].dtype == bool for column in columns),
                    f"columns {columns} are raw numbers: put them into bins (columns of bool: pass data=)")
            for column, beta in zip(columns, betas):
                card.add_boolean(column, 0.0, beta)
            continue
        is_binning = name(last) == "KBinsDiscretizer" and last.encode != "ordinal"
        is_filled = [*map(name, before)] == ["SimpleImputer"] and not before[0].add_indicator and \
            pd.isna(before[0].missing_values) and not pd.isna(before[0].statistics_).any()
        require((is_binning or name(last) == "OneHotEncoder") and (is_filled or not before),
                f"columns {columns}: a scorecard cannot express {transformer}")
        for index, column in enumerate(columns):
            filled = before[0].statistics_[index] if before else None
            used = add_numbers(card, column, last.bin_edges_[index], last.dtype, betas, filled, data) if is_binning \
                else add_list(card, column, last, index, betas, filled, unlisted_as_missing)
            betas = betas[used:]
    card.table = logistic_table(largest_error, *card.range())
    return card
