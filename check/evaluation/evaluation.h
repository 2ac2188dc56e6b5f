// The score and the probability of a row: as the model means them, or with what a target does
// otherwise. There is one evaluation; what a target does otherwise is a set of named deviations.
#pragma once

#include "check/evaluation/cell.h"
#include "check/evaluation/scorecard.h"

// What a target is taken to do otherwise than the model means.
struct Deviations {
    FindingSet findings; // those that tell what it does
    Target target = Target::Sas;

    bool has(FindingId id) const { return findings.has(id); }
};

// What a recoding makes of a cell: the score at a position of its array, 0 for missing values.
struct Recoded {
    std::uint32_t position = 0;
    double score = 0;
};
bool differ(const Recoded &a, const Recoded &b);

// The score of a row, and its probability; NaN where the model gives none.
struct Prediction {
    double score = noNumber;
    double probability = noNumber;
};

Recoded recode(const Recoding &recoding, const Cell &cell, const Deviations &deviations = {});

// What recodings come to.
double scoreOf(const Scorecard &card, std::span<const Recoded> recoded,
               const Deviations &deviations = {});
double probabilityOf(const Scorecard &card, double score, const Deviations &deviations = {});

// The least and the highest score that a row can have: of the same sum, rounded in the same order.
struct ScoreRange {
    double least;
    double most;
};
ScoreRange scoreRange(const Scorecard &card);

// What becomes of the cells of a row, one for each column.
Prediction evaluate(const Scorecard &card, std::span<const Cell> cells,
                    const Deviations &deviations);
