// Finds what explains a row that departs from the model.
#pragma once

#include "check/rows/comparison.h"

// Looks for the smallest sets of findings under which the row has this result; a finding may hold
// for one column and not for another. Counts the row in the comparison, for each finding of these
// sets. Returns their names, such as "a+b or c"; empty where nothing explains it.
QString explain(Comparison &comparison, const RowFacts &facts, const Prediction &found);
