// A model made ready for scoring rows of text: as the model means it, and with what the targets
// need to do otherwise.
#pragma once

#include "check/findings/findings.h"
#include "model/recodings.h"
#include "model/regression.h"

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>

// Where a value stands among the scores of its list, 0 where it is not listed. A value that is
// listed twice has two places.
struct ListedValue {
    std::uint32_t first = 0;
    std::uint32_t last = 0; // which is what counts
};

// What makes texts equal.
enum class Reading { Exact, AnyCase, AsNumber };
inline constexpr std::size_t readings = 3;

struct Recoding {
    const Variable *variable = nullptr;
    std::size_t column = 0; // among the columns of the scorecard
    std::size_t rank = 0;   // among the recodings of the column
    // The last column whose name becomes the same in each target.
    std::array<std::size_t, targetCount> lastAlike{};
    const Recoding *asked = nullptr; // the last one of the column, whose values HTML asks for
    std::span<const double> x;       // bounds of a numeric column
    std::span<const double> y;       // a score for each position
    bool isRising = true;            // the bounds
    bool isBoolean = false;
    std::span<const QStringView> listed; // the values of a list, as the document has them
    std::array<std::unordered_map<std::string, ListedValue>, readings> values;
    std::span<const double> codes;                                  // that count as missing
    std::array<std::span<const double>, targetCount> codesOfTarget; // that each target finds
    double coefficient = 0;                                         // the sum of those of its terms

    ListedValue find(std::string_view text, Reading reading = Reading::Exact) const;
};

struct ScoreTerm {
    double coefficient;
    std::size_t recoding;
};

struct Scorecard {
    ModelDocument document;
    Variables variables;
    MissingDictionary dictionary;
    std::vector<QString> columns; // the fields, each once, in the order of the document
    std::vector<Recoding> recodings;
    std::vector<std::vector<std::size_t>> recodingsOf; // each column
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

// The kind of the target: T for a probability, C for any other number.
QStringView kindOfTarget(const Scorecard &card);
bool isOfKind(const Scorecard &card, QStringView kind);

// A number as the generated code shows it.
QString numberText(double number);

// The name under which the target looks for missing codes.
QString cleanedFor(Target target, QStringView field);

// Reads the model. The document's problem tells whether it can be used.
Scorecard readScorecard(const QString &fileName);
