// A model made ready for scoring rows of text: as the model means it, and with what the targets
// need to do otherwise.
#pragma once

#include "check/findings.h"
#include "model/recodings.h"
#include "model/regression.h"

#include <array>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

// Where a value stands among the scores of its list. A value that is listed twice has two places.
struct ListedValue {
    std::uint32_t first = 0;
    std::uint32_t last = 0; // which is what counts
};

struct HashOfBytes {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
        return std::hash<std::string_view>()(text);
    }
};

// Missing codes, in full and with 6 significant digits.
struct Codes {
    std::span<const double> exact;
    std::vector<double> rounded;
};

struct Recoding {
    const Variable *variable = nullptr;
    std::size_t column = 0; // among the columns of the scorecard
    // The last column whose name becomes the same in each target.
    std::array<std::size_t, targetCount> lastAlike{};
    const Recoding *asked = nullptr; // the last one of the column, whose values HTML asks for
    std::span<const double> x;       // bounds of a numeric column
    std::span<const double> y;       // a score for each position
    bool isRising = true;            // the bounds
    bool isBoolean = false;
    std::vector<QStringView> listed; // the values of a list, as the document has them
    std::unordered_map<std::string, ListedValue, HashOfBytes, std::equal_to<>> values; // in UTF-8
    std::vector<std::pair<std::string_view, ListedValue>> shortList; // the same, for a few of them
    std::unordered_map<std::string, std::uint32_t> folded; // in small letters, the first of each
    std::unordered_map<double, std::uint32_t> numbers;     // likewise, of values that are numbers
    std::span<const double> codes;                         // that count as missing
    std::vector<double> sixDigitCodes;                     // the same, rounded
    std::array<Codes, targetCount> codesOfTarget;          // that each target finds
    std::vector<double> sixDigitScores;                    // of a boolean column
    double coefficient = 0;                                // the sum of those of its terms
};

struct ScoreTerm {
    double coefficient;
    std::size_t recoding;
};

struct Scorecard {
    ModelDocument document;
    std::pmr::vector<Variable> variables;
    Recodings arrays;
    MissingDictionary dictionary;
    std::vector<QString> columns; // the fields, each once, in the order of the document
    std::vector<Recoding> recodings;
    Regression regression;
    // What is added up: the terms that have a recoding; one of each recoding, with the first or the
    // last coefficient of its number; and with coefficients without a recoding as factors of the
    // next term.
    std::vector<ScoreTerm> terms, firstTerms, lastTerms, factorTerms;
    double htmlConstant = 0; // what stands behind as many coefficients as there are recodings
    ProbabilityTable table;
    bool isFalling = true; // the table's scores
    bool isLogistic = false;

    bool hasProbability() const { return table.exists || isLogistic; }
};

// The name under which the target looks for missing codes.
QString cleanedFor(Target target, QStringView field);

// Reads the model. The document's problem tells whether it can be used.
Scorecard readScorecard(const QString &fileName);
