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

// A labelled place on an axis.
struct Tick {
    double value = 0;
    bool isMinor = false; // the axis is also complete without it
};
// Up to `most` steps of 1, 2 or 5 times a power of ten, of at least 1 on an axis of counts. Empty
// for a scale without extent or of infinite extent.
std::vector<Tick> ticksOf(const Scale &scale, int most, bool isCount = false);

struct ModelSection {
    QString file = {}, version = {}, target = {}, kind = {};
    std::int64_t columns = 0;
    double constant = 0;
    bool isLogistic = false, hasTable = false, hasProbability = false;
    std::vector<RecodingSection> recodings = {};
    QString notation = {};              // of intervals whose bounds are shown shorter; else empty
    Scale points = {};                  // of all positions, and 0
    std::vector<Prediction> table = {}; // its points
    Scale scores = {};                  // of the table and the rows
    std::vector<Prediction> curve = {}; // probabilities within 0 and 1, by score
};

// Findings of one kind.
struct FindingGroup {
    const FindingKind *kind = nullptr;
    Targets targets = 0; // of all of them
    std::vector<const Finding *> findings = {};
};

// What a job acts on. Unexplained: rows of the comparison are without explanation, missing, extra
// or repeated. Findings: some are open.
enum class Verdict : std::uint8_t { Clean, Findings, Unexplained };

// How many rows of a comparison are of one sort; `more` names some of them.
struct CountLine {
    QString label;
    std::int64_t rows = 0;
    QString more;
};

// What rows without explanation look like as a whole.
struct CauseLine {
    QString name; // in JSON
    QString text;
    std::int64_t rows = 0; // that it makes right; 0 of a hint
};

// One recoding's part in the score of a row.
struct Contribution {
    QString recoding; // its title
    QString column;
    QString cell;
    QString values; // of the position that the cell reaches
    double points = 0;
};

// Positions that no row reaches although a cell can. The others are proven by the rows.
struct Unreached {
    std::int64_t of = 0; // how many a cell can reach
    QStringList places = {};
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
    const RowOptions *options = nullptr; // given with the rows
    const ComparisonResult *comparison = nullptr;
    FindingSet accepted = {};
    const Evidence *evidence = nullptr;
};

struct Report {
    Found found;
    ModelSection model = {};
    Verdict verdict = Verdict::Clean;
    QString sentence = {}; // of the verdict
    std::vector<FindingGroup> open = {}, accepted = {}, untouched = {};
    Unreached unreached = {}; // if rows were scored
    std::vector<CauseLine> causes = {};
    std::vector<CountLine> counts = {}; // of rows that are not as the model says; none is 0
    std::vector<std::vector<Contribution>> contributions = {}; // of each worst row, by size
    QString notation = {}; // the same sentence as the model's, for rows and contributions
};

// A report that is not whole has of the model its file alone: putModel() and putPage() need the
// rest, which takes memory for each position.
Report buildReport(const Scorecard &card, const Found &found, bool isWhole);

// --- Printers

// The model as a person reads a scorecard.
void putModel(TextBuffer &out, const ModelSection &model);
// The sentence of the verdict, in a line.
void putVerdict(TextBuffer &out, const Report &report);
// The verdict, findings, rows and comparison.
void putText(TextBuffer &out, const Report &report);
void putJson(TextBuffer &out, const Report &report);
// A page that needs no other file.
void putPage(TextBuffer &out, const Report &report);

// --- What the report is built with

QString titleOf(const Recoding &recoding); // name and column
// The values that reach a position. Sets the notation, where a bound is not shown as the document
// has it, unless it is set.
QString valuesAt(const Recoding &recoding, std::size_t position, QString &notation);
CauseLine causeLine(const Cause &cause, const Scorecard &card, const RowOptions &options,
                    QString &notation);

// --- What printers share

QString nameOf(Verdict verdict); // "clean", "findings" or "unexplained"
// The names of the findings, each once, with the number of their places where it is above 1.
QString namesOf(std::span<const FindingGroup> groups);

// 6 significant digits; "none" for NaN.
QString shortNumber(double number);
// The same, but with as many digits as distinguish it from `other`.
QString numberBeside(double number, double other);
// How many positions no row reaches, and the first of them, one in each line.
QString unreachedTitle(const Unreached &unreached);
QStringList unreachedLines(const Unreached &unreached);
// "results look like ...: 7 rows of 9 without explanation"
QString causeText(const Report &report, const CauseLine &cause);
// How the steps of Differences are written.
inline constexpr QStringView differenceSteps[] = {u"1e-9", u"1e-6", u"1e-4", u"1e-2"};
// Of each column that is compared: its differences as a line, and its cells that are no numbers.
QStringList summaryOf(const Report &report);
// The tool that wrote the document, by its version.
QString writerText(const ModelSection &model);
// The target that the results are of.
QString comparedTarget(const Report &report);
// The place of a finding, with its rows if rows were scored.
QString placeText(const Report &report, const Finding &finding);
