// Finds what results hold in place of the model's numbers: a part of looking at all rows together.
#pragma once

#include "check/rows/comparison.h"

inline constexpr std::size_t mostCauses = 3;
inline constexpr std::int64_t leastRows = 3; // that speak for an amount, a factor or a rounding
inline constexpr double leastShare = 0.1;    // of the rows, that a cause makes right

// Within which a cause makes a row right; not below 1e-9.
double toleranceOf(const Comparison &c);
// The shortest decimal number of the range; its middle if none has less than 16 digits.
double shortestIn(const ScoreRange &range);
// What the result's score is off by. No amount where its probability is not of its score, any
// amount where a probability alone does not tell.
ScoreRange amountOf(const Comparison &c, const DifferingRow &row);
// What both ranges have.
ScoreRange common(const ScoreRange &a, const ScoreRange &b);
// The score or the probability.
double numberOf(const Prediction &prediction, bool isScore);
// Whether it needs no number that was measured.
bool isPlain(const Cause &cause);
// Whether so many rows are enough of all.
bool speaksFor(std::int64_t rows, std::size_t of, double share = leastShare);
// What makes most rows right, then most of the rest, and so on.
std::vector<Cause> mapsOf(const Comparison &c);
