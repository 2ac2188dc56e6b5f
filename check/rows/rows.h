// Scores the rows of a file, counts those that each finding affects, and compares each.
#pragma once

#include "check/rows/comparison.h"

// What was read of a file.
struct FileRead {
    std::int64_t bytes = 0;
    std::int64_t rows = -1; // below 0: not a file of rows
    QByteArray sha256 = {}; // of the bytes, if hashes were asked for
};

// Totals of all rows.
struct RowCounts {
    std::int64_t rows = 0;
    std::int64_t uneven = 0; // rows with fewer or more cells than there are titles
    std::int64_t firstUneven = 0;
    std::vector<std::vector<std::int64_t>> positions; // of each recoding, rows by position
    // Rows by score, in steps of the same width through the range.
    std::vector<std::int64_t> scores;
    ScoreRange range{};
    FileRead rowsRead, resultsRead;

    // The lowest score of the step.
    double stepAt(std::size_t step) const {
        const double share = static_cast<double>(step) / static_cast<double>(scores.size());
        return range.least + share * (range.most - range.least);
    }
};

// Counts the rows in the findings, and compares them if results are given. Returns an error
// message; empty on success.
QString scoreRows(const Scorecard &card, std::vector<Finding> &findings, const RowOptions &options,
                  RowCounts &counts, ComparisonResult &compared);
