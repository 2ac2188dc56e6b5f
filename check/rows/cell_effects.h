// Which findings affect a cell, and what it may become in a target.
#pragma once

#include "check/evaluation/evaluation.h"

#include <array>
#include <vector>

// What a cell becomes if a target departs from the model as these findings report.
struct CellChoice {
    FindingSet findings;
    std::vector<Recoded> recoded; // by the recodings of the column
    unsigned variants = 0;        // bits: the variants of these findings with this outcome
};

// A cell, and what else it may become.
struct CellFacts {
    Cell cell = {};
    std::vector<CellChoice> choices = {}; // in the target
    std::vector<double> beside = {};      // see changesBeside()
};

// A finding that counts the rows with affected cells.
struct CellTest {
    std::size_t finding; // its index
    FindingId id;
    Targets targets;
    std::size_t rank; // of its recoding in the column
};

// The findings about the cells of a column.
struct ColumnTests {
    std::vector<CellTest> tests;
    std::array<std::vector<FindingId>, targetCount> simulated; // in each target
};
std::vector<ColumnTests> testsOfColumns(const Scorecard &card, std::span<const Finding> findings);

// The indexes of the findings that affect a cell: alone, or only together with others.
struct CellFindings {
    std::vector<std::size_t> alone;
    std::vector<std::size_t> together;
};
// The cell that each recoding of a column reads: the same one, unless columns become the same.
using Cells = std::span<const Cell *const>;
// `meant` is what the model makes of the cell.
CellFindings findingsOf(const Scorecard &card, const ColumnTests &tests, std::size_t column,
                        Cells cells, std::span<const Recoded> meant, const SqlReading &sql);

// All that the cells may become in the target, other than meant: for each outcome the smallest sets
// of findings.
std::vector<CellChoice> choicesOf(const Scorecard &card, const ColumnTests &tests,
                                  std::size_t column, Cells cells, std::span<const Recoded> meant,
                                  const Deviations &target);
