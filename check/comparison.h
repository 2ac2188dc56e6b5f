// Holds the results of a deployment against the model, and tells what explains the difference.
#pragma once

#include "check/csv_reader.h"
#include "check/evaluation.h"

#include <deque>
#include <map>

struct ComparisonOptions {
    QString file;
    char delimiter = ',';
    std::vector<std::string> missing; // texts that mean nothing
    QString key;   // the column of both files; empty: rows are joined by position
    QString score; // columns of the results; one of them may be empty
    QString probability;
    double tolerance = 1e-9; // relative to the expected number where that is above 1
    Target target = Target::Sas;
};

// What a cell says, or what the model says.
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
    std::map<FindingId, Explained> explained; // a row that two explain counts for both
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

// What the deviations of the target can explain in a row.
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
    // 40 bytes for each row of the results. Keys are told apart by 96 bits of hash.
    struct Entry {
        std::uint64_t hash;
        std::uint32_t check;
        std::uint32_t isSeen;
        Prediction found;
        std::int64_t row;
    };
    static Entry entryOf(std::string_view key);

    QString readEntries();
    double numberIn(std::size_t column) const;
    Prediction foundIn() const;
    bool find(const RowFacts &facts, Prediction &found);
    bool isNear(double expected, double found) const;
    bool matches(const Prediction &expected, const Prediction &found) const;
    bool explain(const RowFacts &facts, const Prediction &found);
    bool isExplainedBy(const RowFacts &facts, const Prediction &found,
                       std::initializer_list<FindingId> ids);
    void keepWorst(const RowFacts &facts, const Prediction &found);
    void blame(const RowFacts &facts, const Prediction &found);

    const Scorecard &card;
    ComparisonOptions options;
    CsvReader results;
    std::deque<Entry> entries;
    FindingSet deviating;             // of the document, told by no row
    std::vector<FindingId> known;     // all deviations that may explain a row
    std::vector<std::size_t> columns; // of key, score and probability among the chosen ones
    std::vector<std::vector<std::size_t>> recodingsOf; // of each column
    std::vector<Recoded> scratch;
    std::map<QString, std::int64_t> faults; // by what they are
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
