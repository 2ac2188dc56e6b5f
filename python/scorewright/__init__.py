"""Scorecards as model documents, which the program scorewright converts to code.

A Scorecard holds recodings of columns, the regression over them and the probability table. Fill it yourself, or create
it from a document (Scorecard.read), a table of bins (Scorecard.from_table) or a scikit-learn pipeline
(Scorecard.from_sklearn). It scores data frames as generated code does and writes the document. Invalid input raises
ValueError, which names the column."""

from .document import doubles, integers
from .scorecard import Recoding, Scorecard
from .tables import logistic_table

__all__ = ["Recoding", "Scorecard", "doubles", "integers", "logistic_table"]
