"""From a fitted scorecard to the model document that the program scorewright turns into code.

A Scorecard holds the recodings of columns, the regression over them and the table from score to probability. It is
filled by hand, from a document (Scorecard.read), a table of bins (Scorecard.from_table) or a pipeline of scikit-learn
(Scorecard.from_sklearn); it scores data frames as generated code does and writes the document. What is wrong raises
ValueError, which names the column."""

from .document import doubles, integers
from .scorecard import Recoding, Scorecard
from .tables import logistic_table

__all__ = ["Recoding", "Scorecard", "doubles", "integers", "logistic_table"]
