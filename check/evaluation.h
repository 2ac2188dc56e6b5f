// The score and the probability of a row: as the model means them, or with what a target does
// otherwise. There is one evaluation; what a target does otherwise is a set of named deviations.
#pragma once

#include "check/scorecard.h"

#include <cmath>
#include <limits>

inline constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

// What a target is taken to do otherwise than the model means.
struct Deviations {
    FindingSet findings; // those that tell what it does
    Target target = Target::Sas;

    bool has(FindingId id) const { return findings.has(id); }
};

// One cell, cut to what the model looks at.
struct Cell {
    std::string_view raw;
    std::string_view text; // without blanks around it; empty where it means nothing
};

// What a recoding makes of a cell: the score at a position of its array, 0 for missing values.
struct Recoded {
    std::uint32_t position = 0;
    double score = 0;
};

// The score of a row, and its probability; NaN where the model gives none.
struct Prediction {
    double score = noNumber;
    double probability = noNumber;
};

// The number that a text holds: decimal, with an exponent or not, and nothing else. False for any
// other text. NaN counts as a number that is missing.
bool readNumber(std::string_view text, double &number);

// The same number with 6 significant digits.
double sixDigits(double number);

Recoded recode(const Recoding &recoding, const Cell &cell, const Deviations &deviations);

// The cells of a row, one for each column; `recoded` has one entry for each recoding and is filled.
Prediction evaluate(const Scorecard &card, std::span<const Cell> cells, std::span<Recoded> recoded,
                    const Deviations &deviations = {});

// The score of recodings that were made already.
double scoreOf(const Scorecard &card, std::span<const Recoded> recoded,
               const Deviations &deviations = {});
double probabilityOf(const Scorecard &card, double score, const Deviations &deviations = {});
