// The model document as the exporters read it: one walk over the univariate models, the arrays of
// each, the regression and the probability table. The tree stays the model; what is read here are
// views into it and decoded arrays.
//
// Reading does not stop at an array that is too short: the first shortage is noted in the document,
// the missing values read as 0, and the exporter goes on and asks once, when it has read all that
// it needs and before it writes anything, whether there was a problem.
#pragma once

#include "xml/base64.h"
#include "xml/xml_node.h"

#include <QString>

#include <span>
#include <vector>

struct ModelDocument {
    QString fileName;
    XmlNode root;          // the element "QRV_Model"
    QString problem;       // the first reason why the document cannot be converted; else empty
    Base64Decoder decoder; // reused for all arrays
};

// The element of that name at the top of a parsed file. Without XML declaration, the parser returns
// that element itself instead of one that holds it.
XmlNode rootElement(const XmlNode &parsed, QStringView name);

// Loads a model document. Without a readable file, an acceptable document or a "QRV_Model" in it
// the root is empty and the problem says why.
ModelDocument loadModel(const QString &fileName);

// The size that an output of this document seldom exceeds, in UTF-16 units.
qsizetype expectedOutput(const ModelDocument &document);

// Takes down why the document cannot be converted, unless another reason came first.
void noteProblem(ModelDocument &document, const QString &problem);

// Prints the document's problem as one line and returns exitUnusableModel.
int reportProblem(const ModelDocument &document);

// --- Arrays

// Reads the child `array` of `owner`, which holds 64-bit numbers; an absent one is empty. One of
// less than `needed` values is a problem, and is filled up.
void readNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                 std::size_t needed, std::vector<double> &values);

// The same for 32-bit integers, of which any number will do.
void readIntegers(ModelDocument &document, const XmlNode &owner, QStringView array,
                  std::vector<int> &values);

// --- Names

// The text with each of the characters of `replaced` turned into "_".
QString cleanName(QStringView text, QStringView replaced);

// The name of the target column, cleaned, and "_"; empty without a target.
QString targetPrefix(const ModelDocument &document, QStringView replaced);

// --- Univariate models

// One univariate recoding. Views and nodes are valid as long as the document.
struct UnivModel {
    XmlNode node;
    QStringView field;        // the input column; empty when absent
    QString cleanField;       // the field, cleaned for the target language
    std::size_t position = 0; // in document order, from 0
    QString recodingName;     // "R", its position from 0, "_" and the clean field; at most 31 units
    int number = -1;          // of the "name" attribute without its first character; -1 without any
    bool isCategorical = false; // a list of values, else intervals
};

// All univariate models in document order, their fields cleaned of the characters of `replaced`.
std::vector<UnivModel> readUnivModels(const ModelDocument &document, QStringView replaced);

// The numbers that stand for a missing value of a numeric column, the last first, which is how all
// targets test them. A list that is there may hold none.
struct MissingCodes {
    bool isListed = false;
    std::vector<double> codes;
};

// The recoding of a numeric column: y[0] for a missing value, y[1] below x[0], y[i + 1] up to x[i],
// y[x.size() + 1] above x.back(). There is at least one bound; scores beyond these are not used.
struct NumericRecoding {
    std::span<const double> x;
    std::span<const double> y;
    const MissingCodes &missing;
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
// values of a boolean column are spellings of false at positions 1 to 5 and of true from 6 on; they
// share y[1] and y[2].
struct CategoricalRecoding {
    std::span<const QStringView> values; // in document order; empty where absent
    std::span<const double> y;
    bool isBoolean;

    // The score of the value at `position`, which counts from 1.
    double score(std::size_t position) const {
        return y[!isBoolean ? position : position <= 5 ? 1 : 2];
    }
};

// The recodings of all univariate models. Their numbers and values stand one after the other.
struct Recodings {
    struct Record {
        std::size_t firstNumber = 0; // the bounds, and after them the scores
        std::size_t bounds = 0;
        std::size_t scores = 0;
        std::size_t firstValue = 0;
        std::size_t values = 0;
        bool isBoolean = false;
        std::size_t missingList = 0;
    };
    std::vector<Record> records; // of each model
    std::vector<double> numbers;
    std::vector<QStringView> values;
    std::vector<MissingCodes> missingCodes; // each list once; the first is that of a field without

    NumericRecoding numeric(const UnivModel &model) const;
    CategoricalRecoding categorical(const UnivModel &model) const;
};
// Whether a boolean column needs only the scores that its values take, or both even without values.
enum class BooleanScores { OfValues, Both };
Recodings readRecodings(ModelDocument &document, const std::vector<UnivModel> &models,
                        BooleanScores booleanScores = BooleanScores::OfValues);

// --- Score and probability

// The score is the constant plus, for each term, its coefficient times the recoding of its model.
struct RegressionTerm {
    double coefficient;
    int index; // the number that the document gives for the model
    int model; // position among the univariate models; -1 when none has that number
};
struct Regression {
    std::vector<RegressionTerm> terms;
    double constant = 0;
};
// Of several models with one number the last gets the term. A constant that is left out reads as 0
// and need not exist.
enum class ConstantTerm { Read, LeftOut };
Regression readRegression(ModelDocument &document, std::span<const UnivModel> models,
                          ConstantTerm constantTerm = ConstantTerm::Read);

// The name of the recoding that a term multiplies; empty when there is no such model.
QStringView recodingName(std::span<const UnivModel> models, const RegressionTerm &term);

// Notes a problem when a term has no model.
void requireModels(ModelDocument &document, const Regression &regression);

// The coefficient of each model: that of the last term with the model's number, which models of one
// number share. Notes a problem when a model has no term; its coefficient is 0.
std::vector<double> modelCoefficients(ModelDocument &document, std::span<const UnivModel> models,
                                      const Regression &regression);

// Score points in decreasing order and the probabilities there. Where the document has a table, it
// has at least one point.
struct ProbabilityTable {
    bool exists = false;
    std::vector<double> x;
    std::vector<double> y; // at least as many as x
};
ProbabilityTable readProbabilityTable(ModelDocument &document);

// Scores above `threshold` (and not above that of the segment before) have the probability
// intercept + score * slope.
struct ProbabilitySegment {
    double threshold;
    double slope;
    double intercept;
};
// The segment from point i of the table, which has another score, up to the point before it.
ProbabilitySegment probabilitySegment(const ProbabilityTable &table, std::size_t i);
// Calls write(segment) for the segments down to the last point of the table, or to the last but
// one; there is none between two points with one score.
enum class LastSegment { Written, LeftOut };
template <typename Write>
void forEachSegment(const ProbabilityTable &table, LastSegment lastSegment, Write write) {
    const std::size_t end = table.x.size() - (lastSegment == LastSegment::Written ? 0 : 1);
    for (std::size_t i = 1; i < end; ++i) {
        if (table.x[i] != table.x[i - 1]) write(probabilitySegment(table, i));
    }
}

// Whether the score becomes a probability by the logistic function, where there is no table.
bool hasLogisticProbability(const ModelDocument &document);
