// What the program found, as text, as JSON and as a page.
#pragma once

#include "check/rows/rows.h"
#include "model/text_buffer.h"

#include <QByteArray>

// All that a report tells of. What was not asked for is null.
struct Report {
    const Scorecard &card;
    std::span<const Finding> findings;
    const RowCounts *counts = nullptr;
    const RowOptions *compared = nullptr;
    const ComparisonResult *comparison = nullptr;
};

// The model as a person reads a scorecard.
void putModel(TextBuffer &out, const Scorecard &card);
// Findings, rows and comparison.
void putReport(TextBuffer &out, const Report &report);
QByteArray jsonReport(const Report &report);
// A page that needs no other file.
void putHtmlReport(TextBuffer &out, const Report &report);

// --- Pieces that the forms share

// The values that have the score at this position: an interval in the notation of brackets, or
// values of a list.
QString valuesAt(const Recoding &recoding, std::size_t position);
// 6 significant digits; "none" for what is no number.
QString shortNumber(double number);
QString titleOf(const Recoding &recoding);

// The findings of one kind, the targets of all of them, and their places with the rows.
struct FindingGroup {
    const FindingKind *kind;
    Targets targets;
    QStringList places;
};
std::vector<FindingGroup> groupsOf(const Report &report);

// How many rows of a comparison are of one sort; `more` names some of them.
struct ComparisonCount {
    QString label;
    std::int64_t rows;
    QString more;
};
// Those that are not 0, without the rows that are as the model says.
std::vector<ComparisonCount> countsOf(const ComparisonResult &result);

// One recoding's part in the score of a row.
struct Contribution {
    const Recoding *recoding;
    QString cell;
    QString values;
    double points;
};
// Those of all recodings that have a coefficient, the largest first.
std::vector<Contribution> contributionsOf(const Scorecard &card, const ComparedRow &row);
