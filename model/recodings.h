// The variables of a model, and how each of them is recoded as a number.
#pragma once

#include "model/model_document.h"

#include <QString>

#include <span>
#include <unordered_map>
#include <vector>

// One recoding of the model and the input column that it reads. All views are into the document's
// block, which `node` keeps alive, also in copies.
struct Variable {
    XmlNode node;               // its element "Model"
    QStringView name;           // such as "V17"
    QStringView field;          // the input column; empty if absent
    QStringView label;          // the display name
    QStringView type;           // the kind of recoding, such as "MapValues"
    QStringView cleanField;     // the field, cleaned for the target language
    std::size_t index = 0;      // in document order, from 0
    QStringView recodingName;   // "R", the index, "_" and the clean field; at most 31 units
    int number = -1;            // by which the regression refers to it: xmlToInt of `name` without
                                // its first character, 17 for "V17"; -1 for a shorter name
    bool isCategorical = false; // has a list of values, else bins
    bool isBoolean = false;     // a list of spellings of false and true
    std::span<const double> x;  // the bounds; maybe none
    std::span<const double> y;  // the scores; maybe too few
    std::span<const QStringView> values; // the list, in document order; empty if absent
};

// The variables of a document, in document order. The list lies in the document's block and keeps
// it alive. It can be moved but not copied; a moved-from list is empty.
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
    const Variable &operator[](std::size_t index) const { return list[index]; }

private:
    friend Variables readVariables(ModelDocument &document, QStringView replaced);

    XmlNode owner; // any handle to the document
    std::span<Variable> list;
};

// Reads all variables. Their clean fields have "_" in place of each character of `replaced`. The
// numbers of x and y are decoded over their own text in the tree; a second call, even with other
// characters to replace, returns the same numbers.
Variables readVariables(ModelDocument &document, QStringView replaced);

// The missing codes of a numeric column, in the order in which all targets test them: the
// document's last one first. Targets distinguish an empty list from no list.
struct MissingCodes {
    bool isListed = false;
    std::vector<double> codes{};
};

// Missing codes by the name of the data field, ignoring the case of ASCII letters. If several
// fields have the same name, the first counts. The names are views into the document, which `owner`
// keeps alive.
struct MissingDictionary {
    struct Hash {
        std::size_t operator()(QStringView name) const { return hashIgnoringCase(name); }
    };
    struct Equal {
        bool operator()(QStringView a, QStringView b) const { return equalsIgnoringCase(a, b); }
    };
    using Indexes = std::unordered_map<QStringView, std::size_t, Hash, Equal>;
    XmlNode owner{};
    std::vector<MissingCodes> lists{}; // each once; the first stands for fields without a list
    Indexes indexes{};                 // in `lists`, by the names of fields with a list

    // The index in `lists` of the field's list; 0 without a list.
    std::size_t find(QStringView field) const;
};
MissingDictionary readMissingDictionary(ModelDocument &document);

// The recoding of a numeric column: y[0] for a missing value, y[1] below x[0], y[i + 1] up to x[i],
// y[x.size() + 1] above x.back(). There is at least one bound; surplus scores are unused. The
// Variables and the Recodings must outlive it.
struct NumericRecoding {
    std::span<const double> x;
    std::span<const double> y;
    const MissingCodes &missing;

    double scoreMissing() const { return y[0]; }
    double scoreBelow() const { return y[1]; }
    double scoreAbove() const { return y[x.size() + 1]; }
};

// Calls write(bound, score) for the upper bound and the score of each bin between the first bound
// and the last, in order. Skips a bin whose right neighbour has the same score, since the
// neighbour's test covers both.
template <typename Write>
void forEachInnerBin(const NumericRecoding &recoding, Write write) {
    const std::span<const double> y = recoding.y;
    const std::size_t last = recoding.x.size() - 1;
    for (std::size_t i = 1; i <= last; ++i) {
        if (i < last && y[i + 1] == y[i + 2]) continue;
        write(recoding.x[i], y[i + 1]);
    }
}

// The recoding of a list of values: y[0] for missing and unlisted values, and a score for each
// listed one. In a boolean column, the first five values are spellings of false and share y[1]; all
// others are spellings of true and share y[2].
struct CategoricalRecoding {
    std::span<const QStringView> values;
    std::span<const double> y;
    bool isBoolean;

    // The position of values[index], which is the index of its score in y.
    std::size_t positionOf(std::size_t index) const {
        return !isBoolean ? index + 1 : index < 5 ? 1 : 2;
    }
    double score(std::size_t index) const { return y[positionOf(index)]; }
};
CategoricalRecoding categorical(const Variable &variable);

// Whether a boolean column needs only the scores of its listed values, or those of false and true
// in any case.
enum class BooleanScores { OfValues, Both };
// Records a problem if an array of a variable is too short; its recoding must not be used then.
void requireRecodings(ModelDocument &document, std::span<const Variable> variables,
                      BooleanScores booleanScores = BooleanScores::OfValues);

// The missing codes of numeric columns.
struct Recodings {
    std::vector<std::size_t> missingLists;  // for each variable, an index into missingCodes
    std::vector<MissingCodes> missingCodes; // each list once; the first stands for no list

    NumericRecoding numeric(const Variable &variable) const;
};
// Also calls requireRecodings.
Recodings readRecodings(ModelDocument &document, std::span<const Variable> variables,
                        BooleanScores booleanScores = BooleanScores::OfValues);
