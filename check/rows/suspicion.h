// Suggests causes for a row that no finding explains.
#pragma once

#include "check/rows/comparison.h"

// Whether the score, with its probability of the model or of the target, is that of the result.
bool wouldBeRight(const Comparison &comparison, double score, const Prediction &found);

// Counts in the comparison what would make the row right: one column read as missing or as some
// other value, or two columns exchanged. Of many rows, those after the first 1,000 are tried only
// with what made nearly all of these right.
void suspect(Comparison &comparison, const RowFacts &facts, const DifferingRow &row);

// To be called after the last row.
void finishSuspicion(Comparison &comparison);
