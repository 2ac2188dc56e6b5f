// Rows for a deployment that has no data yet: they reach every position that a cell can reach.
#pragma once

#include "check/evaluation/evaluation.h"

// What a cell tries.
enum class Trial : std::uint8_t {
    Code,    // a missing code
    Bound,   // a bound itself
    Below,   // the next number below a bound
    Above,   // the next number above a bound
    Between, // any number within a bin
    Value,   // of a list
    Unlisted,
    Empty,
};

// A cell of a column.
struct Try {
    Trial trial = Trial::Empty;
    double number = noNumber; // in the cell
    double bound = noNumber;  // beside it
    QStringView value = {};   // of a list; valid as long as the scorecard
};

// Cells that reach all positions of a column, about four for each.
std::vector<Try> triesOf(const Scorecard &card, std::size_t column);

// What the cell holds.
std::string textOf(const Try &cell);

// Of each recoding of the column, the positions that a cell can reach. `missing` are texts that
// count as missing.
std::vector<std::vector<bool>> reachablePositions(const Scorecard &card, std::size_t column,
                                                  std::span<const std::string> missing);

// Writes rows that try all cells of all columns, and rows from the least score to the highest, as
// CSV in UTF-8. A row tries one column, or several in a wide model, so that the file does not grow
// with the square of the columns. Returns an error message; empty on success.
QString writeProbe(const Scorecard &card, const QString &fileName);
