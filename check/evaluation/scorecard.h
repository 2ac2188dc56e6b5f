// A model prepared for scoring rows of text: exactly as the model defines it, and with what is
// needed to reproduce the departures of each target.
#pragma once

#include "check/findings/findings.h"
#include "model/recodings.h"
#include "model/regression.h"

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>

// The place of a value in its list, from 1; 0 if it is unlisted. A value that is listed twice has
// two places.
struct ListedValue {
    std::uint32_t first = 0;
    std::uint32_t last = 0; // which counts
};

// What makes a text equal to a listed value.
enum class Reading {
    Exact,
    AnyCase,
    AnyAccent,  // nor any case
    AsNumber,   // texts that are not numbers are all equal
    Padded,     // blanks at the end do not count
    PythonText, // the value is written as a literal of Python
    MySqlText,  // or of MySQL
};
inline constexpr std::size_t readings = 7;

struct Recoding {
    const Variable *variable = nullptr;
    std::size_t column = 0; // among the columns of the scorecard
    std::size_t rank = 0;   // among the recodings of the column
    // The last column with the same name in the code of each target.
    std::array<std::size_t, targetCount> lastAlike{};
    const Recoding *asked = nullptr; // the last one of the column, whose values HTML asks for
    std::span<const double> x;       // bounds of a numeric column
    std::span<const double> y;       // a score for each position
    bool isRising = true;            // the bounds
    bool isBoolean = false;
    bool isOfNumbers = false; // all values are digits and full stops, which SAS compares as numbers
    bool holdsBackslash = false;         // one of the values
    bool holdsEndBlank = false;          // one of the values ends with a blank
    std::span<const QStringView> listed; // the values of a list, as the document has them
    std::array<std::unordered_map<std::string, ListedValue>, readings> values;
    std::span<const double> codes;                                  // that count as missing
    std::array<std::span<const double>, targetCount> codesOfTarget; // that each target finds
    double coefficient = 0;                                         // the sum of those of its terms

    ListedValue find(std::string_view text, Reading reading = Reading::Exact) const;
    // The position in `y` of the value at a place; 0 for place 0.
    std::uint32_t positionAt(std::uint32_t place) const {
        return !isBoolean || place == 0 ? place : place <= 5 ? 1 : 2;
    }
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
    // The terms of the sum: those that have a recoding; one for each recoding, with the first or
    // the last coefficient of its number; and those that have a recoding, multiplied by the
    // coefficients without a recoding before them.
    std::vector<ScoreTerm> terms, firstTerms, lastTerms, factorTerms;
    double htmlConstant = 0; // the number after one coefficient for each recoding
    ProbabilityTable table;
    bool isFalling = true; // the table's scores
    bool isLogistic = false;

    bool hasProbability() const { return table.exists || isLogistic; }
};

// The kind of the target: T for a probability, C for any other number.
QStringView kindOfTarget(const Scorecard &card);
bool isOfKind(const Scorecard &card, QStringView kind);

// A number with 15 digits, or with more if that distinguishes it from all others.
QString numberText(double number);

// The name under which the target looks for missing codes.
QString cleanedFor(Target target, QStringView field);

// Reads the model. It can be used if its document has no problem.
Scorecard readScorecard(const QString &fileName);
