// Finds functions of the model's numbers that give those of the results.
#pragma once

#include "check/rows/comparison.h"

inline constexpr std::size_t mostCauses = 3;
inline constexpr std::int64_t leastRows = 3; // of evidence for an amount, a factor or a rounding
inline constexpr double leastShare = 0.1;    // of the rows, that a cause makes right

// The tolerance of --tolerance, but at least 1e-9.
double toleranceOf(const Comparison &c);
// What the result's score is off by. No amount if its probability is not that of its score; any
// amount if only a probability is compared and all scores have it.
ScoreRange amountOf(const Comparison &c, const DifferingRow &row);
// The overlap of both ranges.
ScoreRange overlap(const ScoreRange &a, const ScoreRange &b);
// The score or the probability.
double numberOf(const Prediction &prediction, bool isScore);
// Whether it uses no number that was measured in the results.
bool isPlain(const Cause &cause);
// Whether the rows are at least this share of all.
bool isEnough(std::int64_t rows, std::size_t of, double share = leastShare);
// What makes most rows right, then most of the rest, and so on.
std::vector<Cause> mapsOf(const Comparison &c);
