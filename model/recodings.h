// The variables of a model, and how each of them becomes a number.
#pragma once

#include "model/model_document.h"

#include <QString>

#include <span>
#include <unordered_map>
#include <vector>

// One recoding of the model and the input column that it reads. Views and nodes are valid as long
// as the document.
struct Variable {
    XmlNode node;
    QStringView name;         // as the document calls the variable, such as "V17"
    QStringView field;        // the input column; empty when absent
    QStringView label;        // for people
    QStringView type;         // the kind of recoding, as the document calls it
    QStringView cleanField;   // the field, cleaned for the target language
    std::size_t position = 0; // in document order, from 0
    QStringView recodingName; // "R", the position, "_" and the clean field; at most 31 units
    int number = -1; // by which the regression calls it: what xmlToInt reads behind the first
                     // character of its name, 17 in "V17"; -1 for a shorter name
    bool isCategorical = false;          // a list of values, else intervals
    bool isBoolean = false;              // a list of spellings of false and true
    std::span<const double> x;           // the bounds, however many there are
    std::span<const double> y;           // the scores
    std::span<const QStringView> values; // of a list, in document order; empty where absent
};

// All variables in document order, their fields cleaned of the characters of `replaced`. They stand
// in the document's memory, which the list must not outlive, and take their arrays out of the tree:
// a document's variables are read once.
std::pmr::vector<Variable> readVariables(ModelDocument &document, QStringView replaced);

// The numbers that stand for a missing value of a numeric column, in the order in which all targets
// test them: the last of the document first. Targets tell an empty list from none.
struct MissingCodes {
    bool isListed = false;
    std::pmr::vector<double> codes{};
};

// The missing codes by the names of data fields, in which the case of ASCII letters does not
// matter. Of several fields with one name the first counts.
struct MissingDictionary {
    struct Hash {
        std::size_t operator()(QStringView name) const { return hashIgnoringCase(name); }
    };
    struct Equal {
        bool operator()(QStringView a, QStringView b) const { return equalsIgnoringCase(a, b); }
    };
    using Positions = std::pmr::unordered_map<QStringView, std::size_t, Hash, Equal>;
    std::vector<MissingCodes> lists{}; // each once; the first is that of a field without
    Positions positions{};             // of the names with a list

    // Where the list of the field stands.
    std::size_t find(QStringView field) const;
};
MissingDictionary readMissingDictionary(ModelDocument &document);

// The recoding of a numeric column: y[0] for a missing value, y[1] below x[0], y[i + 1] up to x[i],
// y[x.size() + 1] above x.back(). There is at least one bound; scores beyond these are not used.
struct NumericRecoding {
    std::span<const double> x;
    std::span<const double> y;
    const MissingCodes &missing;

    double scoreMissing() const { return y[0]; }
    double scoreBelow() const { return y[1]; }
    double scoreAbove() const { return y[x.size() + 1]; }
};

// Calls write(bound, score) for the intervals between the first bound and the last, in order.
// An interval whose right neighbour has the same score is left to that neighbour's test.
template <typename Write>
void forEachInnerInterval(const NumericRecoding &recoding, Write write) {
    const std::span<const double> y = recoding.y;
    const std::size_t last = recoding.x.size() - 1;
    for (std::size_t i = 1; i <= last; ++i) {
        if (i < last && y[i + 1] == y[i + 2]) continue;
        write(recoding.x[i], y[i + 1]);
    }
}

// The recoding of a list of values: y[0] for any other value, and a score for each value. The
// first five values of a boolean column are spellings of false and share y[1], all others are
// spellings of true and share y[2].
struct CategoricalRecoding {
    std::span<const QStringView> values;
    std::span<const double> y;
    bool isBoolean;

    // Where in y the score of the value at `position`, from 0, stands.
    std::size_t place(std::size_t position) const {
        return !isBoolean ? position + 1 : position < 5 ? 1 : 2;
    }
    double score(std::size_t position) const { return y[place(position)]; }
};
CategoricalRecoding categorical(const Variable &variable);

// Whether a boolean column needs only the scores that its values take, or both even without values.
enum class BooleanScores { OfValues, Both };
// Notes a problem when an array of a variable is too short; its recoding may then not be asked for.
void requireRecodings(ModelDocument &document, std::span<const Variable> variables,
                      BooleanScores booleanScores = BooleanScores::OfValues);

// Where a target finds the recodings of numeric columns.
struct Recodings {
    std::pmr::vector<std::size_t> missingLists; // of each variable, the position in missingCodes
    std::vector<MissingCodes> missingCodes;     // each list once; the first says that there is none

    NumericRecoding numeric(const Variable &variable) const;
};
// Does what requireRecodings does, too. The recodings are valid as long as variables and document.
Recodings readRecodings(ModelDocument &document, std::span<const Variable> variables,
                        BooleanScores booleanScores = BooleanScores::OfValues);
