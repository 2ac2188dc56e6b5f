// The score and the probability of a row: as the model defines them or, with a set of named
// deviations, as a target computes them.
#pragma once

#include "check/evaluation/cell.h"
#include "check/evaluation/scorecard.h"

// What the dialect of a script, or the server that runs it, adds to the deviations of SQL.
struct SqlReading {
    int digits = 16;        // of numbers in the script
    bool padsTexts = false; // blanks at the end of a text do not count
};

// How a target departs from the model.
struct Deviations {
    FindingSet findings; // those that report how
    Target target = Target::Sas;
    SqlReading sql = {};
    int variant = 0; // from 0; see variantsOf()

    bool has(FindingId id) const { return findings.has(id); }
};

// In how many ways servers, workbooks or languages show a deviation; mostly 1.
int variantsOf(FindingId id, Target target);

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

// What the column adds to the score with this cell.
double pointsOf(const Scorecard &card, std::size_t column, const Cell &cell);

// Whether the deviation may affect the cell, alone or together with others: a quick test, which is
// true for some cells that recode() shows to be unaffected.
bool mayAffect(FindingId id, const Recoding &recoding, const Cell &cell,
               const Deviations &deviations);

// The score of a recoded row.
double scoreOf(const Scorecard &card, std::span<const Recoded> recoded,
               const Deviations &deviations = {});

// The size of the sum of a score, which limits its rounding error.
struct SumSize {
    double largest = 0; // term, or the constant
    double total = 0;   // of all terms and the constant, without their signs
    std::size_t terms = 0;
};
SumSize sumSizeOf(const Scorecard &card, std::span<const Recoded> recoded,
                  const Deviations &deviations);

double probabilityOf(const Scorecard &card, double score, const Deviations &deviations = {});

// Whether a score within `slack` of this one has a probability within `tolerance` of the given one.
// NaN equals NaN.
bool hasProbabilityNear(const Scorecard &card, double score, double slack, double probability,
                        double tolerance, const Deviations &deviations);

// Whether the table has a point within this distance of the score.
bool hasPointBeside(const Scorecard &card, double score, double distance);

// Scores from the least to the highest; empty if the least is above.
struct ScoreRange {
    double least;
    double most;
};
// All scores that a row can have, summed and rounded in the same order.
ScoreRange scoreRange(const Scorecard &card);

// Outside of these scores, none has a probability within the tolerance of this one.
ScoreRange scoresWithProbability(const Scorecard &card, double probability, double tolerance,
                                 const Deviations &deviations);
