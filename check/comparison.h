// Holds the results of a deployment against the model, and tells what explains the difference.
#pragma once

#include "check/csv_reader.h"
#include "check/evaluation.h"

#include <deque>
#include <map>
#include <tuple>

struct CsvOptions {
    QString file;
    char delimiter = ',';
    std::vector<std::string> missing; // texts that mean nothing, as an empty cell does
    QString key;                      // column; may be empty: rows are joined by position
};

struct ComparisonOptions : CsvOptions {
    QString score; // columns of the results; one of them may be empty
    QString probability;
    double tolerance = 1e-9; // relative to the expected number where that is above 1
    Target target = Target::Sas;
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

struct Explained {
    std::int64_t rows = 0;
    std::int64_t firstRow = 0;
};

struct ComparisonResult {
    std::int64_t rows = 0; // in both files
    std::int64_t equal = 0;
    std::int64_t explainedRows = 0;
    std::map<FindingId, Explained> explained; // a row that several explain counts for each
    std::int64_t unexplained = 0;
    std::int64_t missing = 0;               // rows without a result
    std::int64_t extra = 0;                 // results without a row
    std::int64_t repeated = 0;              // keys that occurred before, in either file
    std::vector<std::string> firstMissing;  // the keys or numbers of some
    std::vector<std::int64_t> firstExtra;   // the numbers of some rows of the results
    std::vector<std::string> firstRepeated; // likewise keys
    std::vector<ComparedRow> worst; // of the unexplained rows, the largest differences first
    // What would explain unexplained rows, were it so, and how many; the most likely first.
    std::vector<std::pair<QString, std::int64_t>> blamed;
};

// A row as the model scores it.
struct RowFacts {
    std::int64_t row = 0;
    std::string_view key;
    std::span<const Cell> cells;
    std::span<const Recoded> recoded;
    Prediction expected;
    const FindingSet &touched; // findings by rows
};

class Comparison {
public:
    // The findings are those of the document for the target.
    Comparison(const Scorecard &scorecard, std::span<const Finding> findings,
               ComparisonOptions comparisonOptions);

    // Opens the results; with a key, reads them. Returns what is wrong, or an empty text.
    QString open();
    void compare(const RowFacts &facts);
    // To be called after the last row. Returns what kept the results from being read.
    QString finish();

    const ComparisonOptions &asked() const { return options; }
    ComparisonResult result;

private:
    // What the cells of a result hold; the worse of them. A number may be NaN.
    enum class Cells : std::uint16_t { Numbers, Empty, NoNumber };
    struct Found {
        Prediction numbers;
        Cells cells = Cells::Numbers;
    };
    // 40 bytes for each row of the results. Keys are told apart by 96 bits of hash.
    struct Entry {
        std::uint64_t hash;
        std::uint32_t check;
        bool isSeen;
        Cells cells;
        Prediction numbers;
        std::int64_t row;
    };
    static Entry entryOf(std::string_view key);

    QString readEntries();
    double numberIn(std::size_t column, Cells &cells) const;
    Found readFound() const;
    bool find(const RowFacts &facts, Found &found);
    bool isNear(double expected, double found) const;
    bool matches(const Prediction &expected, const Prediction &found) const;
    bool isBesideJump(const Prediction &expected, const Prediction &found,
                      const Deviations &deviations = {}) const;
    template <typename Test>
    bool explain(const RowFacts &facts, const Test &test);
    bool isExplained(const RowFacts &facts, const Prediction &found);
    void keepWorst(const RowFacts &facts, const Prediction &found);
    double pointsOf(std::size_t column, const Cell &cell) const;
    std::vector<double> possiblePoints(std::size_t column) const;
    bool wouldBeRight(double score, const Prediction &found) const;
    void blameColumns(const RowFacts &facts, const Prediction &found, QStringList &faults) const;
    void blamePairs(const RowFacts &facts, const Prediction &found, QStringList &faults) const;
    void blame(const RowFacts &facts, const Prediction &found);

    const Scorecard &card;
    ComparisonOptions options;
    CsvReader results;
    std::deque<Entry> entries;
    // Keys of rows without a result: hash, check and row, in 24 bytes.
    std::deque<std::tuple<std::uint64_t, std::uint32_t, std::int64_t>> absent;
    FindingSet deviating;             // of the document, or of a score that others may move
    std::vector<FindingId> known;     // all deviations that may explain a row
    Deviations ofTable;               // those that only the score decides
    std::vector<std::size_t> columns; // of key, score and probability among the chosen ones
    std::vector<std::vector<std::size_t>> recodingsOf; // of each column
    std::vector<std::vector<double>> pointsOfColumns;  // that cells may have; from the first blame
    std::vector<Recoded> scratch;
    std::map<QString, std::int64_t> faultCounts; // by what they are
};

// The positions of the named columns; `problem` tells of those that are not there, or twice.
std::vector<std::size_t> findColumns(const CsvReader &reader, const std::vector<QString> &names,
                                     const QString &file, QString &problem);
// The cell as the model looks at it.
inline Cell cellOf(std::string_view raw, std::span<const std::string> missing) {
    Cell cell = {raw, trimmed(raw)};
    for (const std::string &text : missing) {
        if (cell.text == text) cell.text = {};
    }
    return cell;
}
