// The report as strings and numbers. buildReport() fills it, and the printers, which do not know
// the model, print it. A new section is a member here, a function in build_report.cpp, and a few
// lines in each printer.
#pragma once

#include "check/rows/rows.h"
#include "model/text_buffer.h"

#include <algorithm>

struct PositionLine {
    QString values; // a bin in interval notation, or values of a list
    double score = 0;
    double points = 0;
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
    QString notation = {};              // explains bounds shown with fewer digits; else empty
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

// Unexplained: rows of the comparison are unexplained, missing, extra or repeated. Findings: some
// are open.
enum class Verdict : std::uint8_t { Clean, Findings, Unexplained };

// A number of rows of a comparison; `more` names some of them.
struct CountLine {
    QString label;
    std::int64_t rows = 0;
    QString more;
};

// What the unexplained rows have in common.
struct CauseLine {
    QString name; // in JSON
    QString text;
    std::int64_t rows = 0; // that it makes right; 0 for a hint
};

// The points of one recoding in the score of a row.
struct PointsLine {
    QString recoding; // its title
    QString column;
    QString cell;
    QString values; // of the position that the cell reaches
    double points = 0;
};

// Positions that no row reaches although a cell can: the rows do not test them.
struct Unreached {
    std::int64_t reachable = 0; // positions that a cell can reach
    QStringList places = {};
};

// What was checked, how and when.
struct Evidence {
    struct File {
        QString role;
        QString path;
        FileRead read; // without a hash if the file could not be read
    };
    QString version; // of this program
    QStringList arguments;
    QString time; // UTC, ISO 8601
    std::vector<File> files;
};

// What a report shows; must outlive it. Null: not requested.
struct Found {
    std::span<const Finding> findings = {}; // in the order of their kinds
    const RowCounts *counts = nullptr;
    const RowOptions *options = nullptr;
    const ComparisonResult *comparison = nullptr;
    FindingSet accepted = {};
    const Evidence *evidence = nullptr;
};

struct Report {
    Found found;
    ModelSection model = {};
    Verdict verdict = Verdict::Clean;
    QString sentence = {}; // of the verdict
    std::vector<FindingGroup> open = {}, accepted = {}, unaffecting = {};
    Unreached unreached = {}; // if rows were scored
    std::vector<CauseLine> causes = {};
    std::vector<CountLine> counts = {};                    // of compared rows, above 0
    std::vector<std::vector<PointsLine>> worstPoints = {}; // of each worst row, largest first
    QString notation = {};                                 // as the model's, for rows and points
};

// Only putModel() and putPage() require a whole report, which takes memory for each position. Other
// reports hold only the name of the model's file.
Report buildReport(const Scorecard &card, const Found &found, bool isWhole);

// --- Printers

void putModel(TextBuffer &out, const ModelSection &model);
// The sentence of the verdict as a line.
void putVerdict(TextBuffer &out, const Report &report);
// The verdict, findings, rows and comparison.
void putText(TextBuffer &out, const Report &report);
void putJson(TextBuffer &out, const Report &report);
// A page that needs no other file.
void putPage(TextBuffer &out, const Report &report);

// --- Pieces of buildReport()

QString titleOf(const Recoding &recoding); // name and column
// The values that reach a position. If it shows a bound with fewer digits than the document, sets
// `notation`, unless an earlier call did.
QString valuesAt(const Recoding &recoding, std::size_t position, QString &notation);
CauseLine causeLine(const Cause &cause, const Scorecard &card, const RowOptions &options,
                    QString &notation);

// --- Shared by printers

QString nameOf(Verdict verdict); // "clean", "findings" or "unexplained"
std::int64_t countPlaces(std::span<const FindingGroup> groups);
// The names of the findings, each with the number of its places if that is above 1.
QString namesOf(std::span<const FindingGroup> groups);

// 6 significant digits; "none" for NaN.
QString shortNumber(double number);
// The same, with as many more digits as distinguish it from `other`.
QString numberBeside(double number, double other);
// "score 1.5, probability 0.25" of the model, and of the result as far as it was compared;
// numberBeside() shows each number.
QString expectedText(const ComparedRow &row);
QString foundText(const Report &report, const ComparedRow &row);
// The number of positions that no row reaches, and the first of them, one per line.
QString unreachedTitle(const Unreached &unreached);
QStringList unreachedLines(const Unreached &unreached);
// "results look like ...: 7 of 9 unexplained rows"
QString causeText(const Report &report, const CauseLine &cause);
// Labels of the steps of Differences.
inline constexpr QStringView differenceSteps[] = {u"1e-9", u"1e-6", u"1e-4", u"1e-2"};
// One line for the differences of each compared column and for each kind of cell that is not a
// number.
QStringList summaryOf(const Report &report);
// The version of the tool that wrote the document, as the header claims it.
QString writerText(const ModelSection &model);
// The target of the results.
QString comparedTarget(const Report &report);
// The place of a finding, with its number of rows if rows were scored.
QString placeText(const Report &report, const Finding &finding);
