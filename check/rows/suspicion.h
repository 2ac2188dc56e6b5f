// Tests what would make a single row without explanation right.
#pragma once

#include "check/rows/comparison.h"

// Whether the result has this score, with its probability in the model or in the target.
bool wouldBeRight(const Comparison &comparison, double score, const Prediction &found);

// Counts in the comparison what would make the row right: one column read as missing or as some
// other value, or two columns exchanged. Of many rows, those after the first 1,000 are tried only
// with what made nearly all of these right.
void suspect(Comparison &comparison, const RowFacts &facts, const DifferingRow &row);

// To be called after the last row.
void finishSuspicion(Comparison &comparison);
