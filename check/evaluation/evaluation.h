// The score and the probability of a row: as the model defines them, or as a target departs from
// it. There is one evaluation; where a target departs from the model is a set of named deviations.
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
    FindingSet findings; // those that report what it does
    Target target = Target::Sas;
    SqlReading sql = {};
    int variant = 0; // of findings that servers show in several ways; from 0; see variantsOf()

    bool has(FindingId id) const { return findings.has(id); }
};

// In how many ways a deviation may show: 1, unless servers, workbooks or languages differ in it.
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

// What the column adds to the score if it has this cell.
double pointsOf(const Scorecard &card, std::size_t column, const Cell &cell);

// Whether the deviation can change what becomes of the cell, alone or together with others. True
// for some cells that it leaves alone: a quick test before recode() is asked.
bool concerns(FindingId id, const Recoding &recoding, const Cell &cell,
              const Deviations &deviations);

// The score of a recoded row.
double scoreOf(const Scorecard &card, std::span<const Recoded> recoded,
               const Deviations &deviations = {});

// The size of the sum behind a score, which limits what rounding may do to it.
struct SumSize {
    double largest = 0; // term, or the constant
    double total = 0;   // of all terms and the constant, without their signs
    std::size_t terms = 0;
};
SumSize sumSizeOf(const Scorecard &card, std::span<const Recoded> recoded,
                  const Deviations &deviations);

double probabilityOf(const Scorecard &card, double score, const Deviations &deviations = {});

// Whether a score within `slack` of this one has a probability within `tolerance` of the given one;
// the table may jump or be steep in between. NaN equals NaN.
bool hasProbabilityNear(const Scorecard &card, double score, double slack, double probability,
                        double tolerance, const Deviations &deviations);

// Whether the table has a point within this distance of the score.
bool hasPointBeside(const Scorecard &card, double score, double distance);

// Scores from the least to the highest; none where the least is above.
struct ScoreRange {
    double least;
    double most;
};
// What a row can have: of the same sum, rounded in the same order.
ScoreRange scoreRange(const Scorecard &card);

// Outside of these scores, none has a probability within the tolerance of this one.
ScoreRange scoresWithProbability(const Scorecard &card, double probability, double tolerance,
                                 const Deviations &deviations);
