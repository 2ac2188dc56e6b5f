// Compares the results of a deployment with the model and explains the differences.
#pragma once

#include "check/rows/causes.h"
#include "check/rows/cell_effects.h"
#include "check/rows/csv_reader.h"
#include "check/rows/csv_writer.h"
#include "check/rows/differences.h"

#include <QStringList>

#include <deque>
#include <map>
#include <tuple>

// Options of a run over rows.
struct RowOptions {
    QString file;
    QString key;           // column; may be empty: rows are joined by position
    QString scores;        // file to be written; may be empty
    QString differences;   // file to be written: the rows that depart from the model; may be empty
    char delimiter = '\0'; // of both files; 0: found in each
    bool hasDecimalComma = false;     // in both files
    std::vector<std::string> missing; // texts that count as missing, as an empty cell does
    QString results;                  // file of a deployment; may be empty
    Target target = Target::Sas;      // of the results
    QString score;                    // their columns, one of which may be empty
    QString probability;
    double tolerance = 1e-9;           // relative to the expected number where that is above 1
    SqlReading sql = {};               // of the configuration that the results were made with
    bool hashesFiles = false;          // for the evidence of a report
    std::size_t cachedCells = 1 << 16; // entries of the cell cache, allocated before the first row

    // Possible delimiters, the likeliest first.
    std::string_view delimiters() const {
        if (delimiter != '\0') return {&delimiter, 1};
        return hasDecimalComma ? ";\t|," : ",;\t|";
    }
    bool hasScore() const { return !score.isEmpty(); }
    bool hasProbability() const { return !probability.isEmpty(); }
    Deviations deviations(const FindingSet &findings = {}) const { return {findings, target, sql}; }
};

// A row without explanation, as it is shown.
struct ComparedRow {
    std::int64_t row = 0; // from 1
    std::string key;
    Prediction expected;
    Prediction found;
    double difference = 0; // of the scores, or of the probabilities where there is no score
    std::vector<Recoded> recoded;
    std::vector<std::string> cells; // one for each column of the scorecard
};

// Rows of one kind, and the keys or numbers of the first of them.
struct RowSample {
    std::int64_t rows = 0;
    QStringList first = {};
};

// What would make rows right: a column read as missing or as another value, or two exchanged.
struct Suspicion {
    enum class Kind : std::uint8_t { Missing, OtherValue, Exchanged };
    Kind kind = Kind::Missing;
    std::size_t column = 0;
    std::size_t other = 0; // with which it is exchanged

    bool operator==(const Suspicion &) const = default;
    bool operator<(const Suspicion &than) const {
        return std::tie(kind, column, other) < std::tie(than.kind, than.column, than.other);
    }
};

// The same in words, and how many it makes right of those it was tried with.
struct Suspected {
    QString text;
    std::int64_t rows = 0;
    std::int64_t of = 0;
};

struct ComparisonResult {
    std::int64_t rows = 0; // in both files
    std::int64_t equal = 0;
    std::int64_t explainedRows = 0;
    std::map<FindingId, std::int64_t> explained; // a row that several explain counts for each
    // By what explains a row, such as "a+b or c": the smallest sets of findings.
    std::map<QString, RowSample> reasons;
    std::int64_t unexplained = 0;
    RowSample missing;              // without a result
    RowSample extra;                // in the results only
    RowSample repeated;             // whose key occurred before, in either file
    std::vector<ComparedRow> worst; // of the unexplained rows, the largest differences first
    // What would make unexplained rows right, and how many; the most likely first.
    std::vector<Suspected> suspected;
    std::int64_t suspects = 0; // unexplained rows that were tested for that
    std::vector<Cause> causes = {};
    Differences scores, probabilities;
    std::array<UnreadableCells, unreadableKinds> unreadable;
};

// A row as the model scores it.
struct RowFacts {
    std::int64_t row = 0;
    std::string_view key;
    std::span<const CellFacts *const> cells; // by columns
    std::span<const Recoded> recoded;
    Prediction expected;
};

// What the cells of a result hold; the worse of them. A number may be NaN.
enum class ResultCells : std::uint16_t { Numbers, Empty, NoNumber };

// 56 bytes and its key for each row of results that is kept. 96 bits of hash distinguish keys.
struct ResultRow {
    std::uint64_t hash = 0;
    std::uint32_t check = 0;
    std::uint32_t keySize = 0;
    std::size_t keyAt = 0; // among the keys of the comparison
    bool isSeen = false;
    ResultCells cells = ResultCells::Numbers;
    Prediction numbers;
    std::int64_t row = 0;
};

// The state of a comparison: open it, pass each row, and finish it.
struct Comparison {
    const Scorecard &card;
    const RowOptions &options;
    std::vector<ColumnTests> tests;
    ComparisonResult result = {};

    CsvReader reader = {};
    ResultRow unfinished = {};          // being read
    std::deque<ResultRow> entries = {}; // with a key all of them by hash, else those of a block
    std::deque<ResultRow> absent = {};  // keys of rows without a result
    std::string keys = {};              // of both, concatenated
    CsvWriter out = {};                 // of the differences
    std::deque<DifferingRow> differing = {};                  // rows without explanation
    std::vector<std::vector<PositionRows>> positionRows = {}; // by recodings
    EqualSample equal = {};
    FindingSet always = {};     // deviations that no cell decides
    bool hasAlikeNames = false; // columns of the target whose names become the same
    std::vector<std::vector<double>> pointsOfColumns = {}; // of all cells; from the first use
    std::map<Suspicion, std::int64_t> suspicions = {};     // rows that each makes right
    std::vector<Suspicion> leading = {};                   // those that all rows are tested for

    // Receive the cells of results, in the order of key, score and probability.
    void takeCell(std::size_t place, std::string_view bytes);
    void endRow();
};

// Opens the results; with a key, reads them. The findings are those of the document for the target.
// Returns an error message; empty on success.
QString openResults(Comparison &comparison, std::span<const Finding> findings);
// Opens the file of differences if one is asked for. Returns an error message; empty on success.
QString openDifferences(Comparison &comparison, char delimiter);
// Opens an output with a row for each row, and writes its titles: that of the key, and these.
// Without a file name, does nothing. Returns an error message; empty on success.
QString openOutput(CsvWriter &out, const QString &fileName, char delimiter,
                   const RowOptions &options, std::initializer_list<std::string_view> titles);
// Writes the first cell of such a row.
void putKey(CsvWriter &out, const RowOptions &options, std::string_view key, std::int64_t row);
void compareRow(Comparison &comparison, const RowFacts &facts);
// To be called after the last row, with the rows by recodings and positions. Returns an error
// message; empty on success.
QString finishComparison(Comparison &comparison,
                         std::span<const std::vector<std::int64_t>> positions,
                         const CsvReader &rows);

// --- Pieces of a comparison

void count(RowSample &sample, const QString &key);
// Whether the numbers differ by no more than the tolerance.
bool isNear(const Comparison &comparison, double expected, double found);
bool matches(const Comparison &comparison, const Prediction &expected, const Prediction &found);
// Whether the result is that of the recoded row under the deviations. Beyond the tolerance, a score
// may have the rounding error of another order of its sum, and the probability is then that of any
// score within it.
bool fits(const Comparison &comparison, std::span<const Recoded> recoded,
          const Deviations &deviations, const Prediction &found);
// The rounding error of the score of the recoded row, or of one whose terms are larger by at most
// `grown` together.
double slackOf(const Comparison &comparison, std::span<const Recoded> recoded,
               const Deviations &deviations, double grown = 0);
// The least and the highest score with which fits() may hold, but for rounding.
ScoreRange scoresOf(const Comparison &comparison, const Deviations &deviations,
                    const Prediction &found);
