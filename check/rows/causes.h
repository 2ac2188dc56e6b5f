// Looks for causes that each make many of the rows without explanation right.
#pragma once

#include "check/rows/cell_effects.h"

#include <QStringList>

#include <vector>

struct Comparison;
class CsvReader;

// What results hold in place of a number of the model.
struct NumberMap {
    enum class Form : std::uint8_t {
        Linear,   // add + times * the number; by default the number itself
        Other,    // the other number: the probability in place of the score, or the reverse
        Logistic, // the logistic function of times * the score
        Through,  // the probability of the score add + times * the score
    };
    enum class Rounding : std::uint8_t { None, Decimals, Digits, Single };

    Form form = Form::Linear;
    double add = 0;
    double times = 1;
    Rounding rounding = Rounding::None;
    int places = 0; // decimals or digits
    int rank = 0;   // how much it assumes: of two that fit, the lower one is reported

    bool isSame() const {
        return form == Form::Linear && add == 0 && times == 1 && rounding == Rounding::None;
    }
};

struct Cause {
    enum class Kind : std::uint8_t {
        Numbers,     // `score` and `probability` map them
        Points,      // `amounts` are added at positions of a recoding
        Coefficient, // a recoding has this one
        LastDigit,   // numeric cells were read as the double below or above
        NextRow,     // from `row` on the results are those of the next row,
        RowBefore,   // or of the row before
        Order,       // the same numbers in another order
        KeyColumn,   // `texts` are titles of columns in both files that might be the key
        KeyText,     // `texts` are a key of the rows and the same number as the results write it
    };
    Kind kind = Kind::Numbers;
    std::int64_t rows = 0; // that it makes right, of those looked at
    NumberMap score = {}, probability = {};
    std::size_t recoding = 0;
    std::vector<std::pair<std::size_t, double>> amounts = {}; // by position
    double coefficient = 0;
    std::int64_t row = 0;
    QStringList texts = {};
};

inline constexpr std::int64_t mostLookedAt = 1 << 20; // rows without explanation, the first ones

// A row without explanation.
struct DifferingRow {
    Prediction expected;
    Prediction found;
    std::int64_t row = 0; // from 1
    bool isLastDigit = false;
};

// The rows of one position of a recoding that depart from the model.
struct PositionRows {
    std::int64_t others = 0;    // explained, or without a result
    std::int64_t differing = 0; // without explanation
    std::int64_t agree = 0;     // of these, that may differ by any amount within `amount`
    std::int64_t votes = 0;     // majority vote for `amount`
    ScoreRange amount = {-HUGE_VAL, HUGE_VAL};
};

// Rows as the model says, evenly spaced, of a comparison by probability alone.
struct EqualSample {
    struct Row {
        double score = 0;                          // of the model
        double probability = 0;                    // of the result
        std::vector<std::uint32_t> positions = {}; // by recodings
    };
    std::vector<Row> rows = {};
    std::int64_t spacing = 1;
};

// Samples a row that is as the model says; `numbers` are the model's score and the result's
// probability.
void keepEqual(Comparison &comparison, std::span<const Recoded> recoded, const Prediction &numbers);

// Counts a row by the positions of its cells; `row` is null if it is explained or has no result.
void keepRow(Comparison &comparison, std::span<const Recoded> recoded, const DifferingRow *row);

// By how much the next double below and above the number of the cell changes the score, if it does.
std::vector<double> changesBeside(const Scorecard &card, std::size_t column, const Cell &cell);

// Whether the row is right if some of its cells are read as the double below or above.
bool isRightByLastDigit(const Comparison &comparison, std::span<const CellFacts *const> cells,
                        double score, const Prediction &found);

// The causes that fit best, the most likely first. `positions` are all rows by recodings and
// positions, and `rows` is the reader of the rows.
std::vector<Cause> causesOf(const Comparison &comparison,
                            std::span<const std::vector<std::int64_t>> positions,
                            const CsvReader &rows);
