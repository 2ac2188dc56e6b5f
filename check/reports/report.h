// What the program found, as texts and numbers. buildReport() fills the report once, and the
// printers walk it; none of them knows the model. A new section is a member here, a function in
// build_report.cpp, and a few lines in each printer.
#pragma once

#include "check/rows/rows.h"
#include "model/text_buffer.h"

#include <algorithm>

// The values with one score.
struct PositionLine {
    QString values; // an interval in the notation of brackets, or values of a list
    double score = 0;
    double points = 0;     // what the position adds to the score of a row
    std::int64_t rows = 0; // that reached it
};

struct RecodingSection {
    QString title; // name and column
    QString label, type;
    bool isCategorical = false, isBoolean = false;
    double coefficient = 0;
    QString codes; // missing codes; may be empty
    std::vector<PositionLine> positions = {};
};

// The ends of an axis.
struct Scale {
    double from = 0;
    double to = 0;

    double at(double share) const { return from + share * (to - from); }
    double shareOf(double value) const {
        return to > from ? (std::clamp(value, from, to) - from) / (to - from) : 0;
    }
};

struct ModelSection {
    QString file = {}, version = {}, target = {}, kind = {};
    std::int64_t columns = 0;
    double constant = 0;
    bool isLogistic = false, hasTable = false, hasProbability = false;
    std::vector<RecodingSection> recodings = {};
    Scale points = {};                  // of all positions, and 0
    std::vector<Prediction> table = {}; // its points
    Scale scores = {};                  // of the table and the rows
    std::vector<Prediction> curve = {}; // probabilities within 0 and 1, by score
};

// Findings of one kind.
struct FindingGroup {
    const FindingKind *kind = nullptr;
    Targets targets = 0; // of all of them
    std::span<const Finding> findings = {};
};

// How many rows of a comparison are of one sort; `more` names some of them.
struct CountLine {
    QString label;
    std::int64_t rows = 0;
    QString more;
};

// One recoding's part in the score of a row.
struct Contribution {
    QString recoding; // its title
    QString column;
    QString cell;
    QString values; // of the position that the cell reaches
    double points = 0;
};

// What was checked, with what and when.
struct Evidence {
    struct File {
        QString role;
        QString path;
        FileRead read; // without a hash if the file could not be read
    };
    QString version; // of this program
    QStringList arguments;
    QString time; // UTC, as ISO 8601 writes it
    std::vector<File> files;
};

// What there is to report; it must outlive the report. Null: not asked for.
struct Found {
    std::span<const Finding> findings = {}; // in the order of their kinds
    const RowCounts *counts = nullptr;
    const RowOptions *options = nullptr; // given with the comparison
    const ComparisonResult *comparison = nullptr;
    const Evidence *evidence = nullptr;
};

struct Report {
    Found found;
    ModelSection model = {};
    std::vector<FindingGroup> groups = {};
    std::vector<CountLine> counts = {}; // of rows that are not as the model says; none is 0
    std::vector<std::vector<Contribution>> contributions = {}; // of each worst row, by size
};

// A report that is not whole has of the model its file alone: putModel() and putPage() need the
// rest, which takes memory for each position.
Report buildReport(const Scorecard &card, const Found &found, bool isWhole);

// --- Printers

// The model as a person reads a scorecard.
void putModel(TextBuffer &out, const ModelSection &model);
// Findings, rows and comparison.
void putText(TextBuffer &out, const Report &report);
void putJson(TextBuffer &out, const Report &report);
// A page that needs no other file.
void putPage(TextBuffer &out, const Report &report);

// --- What printers share

// 6 significant digits; "none" for NaN.
QString shortNumber(double number);
// The same, but with as many digits as distinguish it from `other`.
QString numberBeside(double number, double other);
// The tool that wrote the document, by its version.
QString writerText(const ModelSection &model);
// The target that the results are of.
QString comparedTarget(const Report &report);
// The place of a finding, with its rows if rows were scored.
QString placeText(const Report &report, const Finding &finding);
