// The variables of a model, and how each of them is recoded as a number.
#pragma once

#include "model/model_document.h"

#include <QString>

#include <span>
#include <unordered_map>
#include <vector>

// One recoding of the model and the input column that it reads. All views are into the document's
// block, which `node` keeps: a copy of a variable is valid by itself.
struct Variable {
    XmlNode node;             // its element "Model"
    QStringView name;         // such as "V17"
    QStringView field;        // the input column; empty when absent
    QStringView label;        // for people
    QStringView type;         // the kind of recoding, such as "MapValues"
    QStringView cleanField;   // the field, cleaned for the target language
    std::size_t position = 0; // in document order, from 0
    QStringView recodingName; // "R", the position, "_" and the clean field; at most 31 units
    int number = -1;          // the regression's name for it: what xmlToInt reads behind the first
                              // character of `name`, 17 in "V17"; -1 for a shorter name
    bool isCategorical = false;          // a list of values, else intervals
    bool isBoolean = false;              // a list of spellings of false and true
    std::span<const double> x;           // the bounds, however many there are
    std::span<const double> y;           // the scores
    std::span<const QStringView> values; // of a list, in document order; empty if absent
};

// The variables of a document, in document order. The list is a piece of the document's block,
// which it keeps. It can be moved but not copied, and a moved-from list is empty.
class Variables {
public:
    Variables() = default;
    Variables(Variables &&other) noexcept;
    Variables &operator=(Variables other) noexcept;
    ~Variables();

    const Variable *begin() const { return list.data(); }
    const Variable *end() const { return list.data() + list.size(); }
    std::size_t size() const { return list.size(); }
    bool empty() const { return list.empty(); }
    const Variable &operator[](std::size_t position) const { return list[position]; }

private:
    friend Variables readVariables(ModelDocument &document, QStringView replaced);

    XmlNode owner; // any handle to the document
    std::span<Variable> list;
};

// Reads all variables; their clean fields have "_" in place of each character of `replaced`. The
// numbers of x and y take the place of their text in the tree. A second call returns the same
// numbers, also with other characters to replace.
Variables readVariables(ModelDocument &document, QStringView replaced);

// The numbers that mean a missing value in a numeric column, in the order in which all targets test
// them: the last one of the document first. Targets distinguish an empty list from no list.
struct MissingCodes {
    bool isListed = false;
    std::vector<double> codes{};
};

// The missing codes by the names of data fields, ignoring the case of ASCII letters. If several
// fields have one name, the first counts. The names are views into the document, which `owner`
// keeps.
struct MissingDictionary {
    struct Hash {
        std::size_t operator()(QStringView name) const { return hashIgnoringCase(name); }
    };
    struct Equal {
        bool operator()(QStringView a, QStringView b) const { return equalsIgnoringCase(a, b); }
    };
    using Positions = std::unordered_map<QStringView, std::size_t, Hash, Equal>;
    XmlNode owner{};
    std::vector<MissingCodes> lists{}; // each once; the first means that there is no list
    Positions positions{};             // of the names with a list

    // The position in `lists` of the field's list.
    std::size_t find(QStringView field) const;
};
MissingDictionary readMissingDictionary(ModelDocument &document);

// The recoding of a numeric column: y[0] for a missing value, y[1] below x[0], y[i + 1] up to x[i],
// y[x.size() + 1] above x.back(). There is at least one bound; further scores are not used. Valid
// as long as the Variables and the Recodings.
struct NumericRecoding {
    std::span<const double> x;
    std::span<const double> y;
    const MissingCodes &missing;

    double scoreMissing() const { return y[0]; }
    double scoreBelow() const { return y[1]; }
    double scoreAbove() const { return y[x.size() + 1]; }
};

// Calls write(bound, score) for the intervals between the first bound and the last, in order. Skips
// an interval whose right neighbour has the same score, since the neighbour's test covers both.
template <typename Write>
void forEachInnerInterval(const NumericRecoding &recoding, Write write) {
    const std::span<const double> y = recoding.y;
    const std::size_t last = recoding.x.size() - 1;
    for (std::size_t i = 1; i <= last; ++i) {
        if (i < last && y[i + 1] == y[i + 2]) continue;
        write(recoding.x[i], y[i + 1]);
    }
}

// The recoding of a list of values: y[0] for any other value, and a score for each value. In a
// boolean column, the first five values are spellings of false and share y[1]; all others are
// spellings of true and share y[2].
struct CategoricalRecoding {
    std::span<const QStringView> values;
    std::span<const double> y;
    bool isBoolean;

    // The position in y of the score of the value at `position`, from 0.
    std::size_t place(std::size_t position) const {
        return !isBoolean ? position + 1 : position < 5 ? 1 : 2;
    }
    double score(std::size_t position) const { return y[place(position)]; }
};
CategoricalRecoding categorical(const Variable &variable);

// Whether a boolean column needs only the scores of its values, or both even without values.
enum class BooleanScores { OfValues, Both };
// Notes a problem if an array of a variable is too short; its recoding must not be used then.
void requireRecodings(ModelDocument &document, std::span<const Variable> variables,
                      BooleanScores booleanScores = BooleanScores::OfValues);

// The missing codes of numeric columns.
struct Recodings {
    std::vector<std::size_t> missingLists;  // of each variable, the position in missingCodes
    std::vector<MissingCodes> missingCodes; // each list once; the first means that there is no list

    NumericRecoding numeric(const Variable &variable) const;
};
// Calls requireRecodings, too.
Recodings readRecodings(ModelDocument &document, std::span<const Variable> variables,
                        BooleanScores booleanScores = BooleanScores::OfValues);
