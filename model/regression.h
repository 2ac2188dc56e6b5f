// From the recodings of a row to its score, and from there to its probability.
#pragma once

#include "model/recodings.h"

#include <QHashFunctions>

#include <memory_resource>
#include <span>
#include <unordered_map>
#include <vector>

// The hash of a variable's number, with a seed that differs from run to run, so that no document
// can be made of numbers that all collide.
struct HashOfNumber {
    std::size_t operator()(int number) const { return qHash(number, QHashSeed::globalSeed()); }
};
// A table by the numbers of variables. An insertion into Qt's own would end the program where
// memory runs out.
template <typename Value>
using NumberTable = std::pmr::unordered_map<int, Value, HashOfNumber>;

// The score is the constant plus, for each term, its coefficient times the recoding of its
// variable.
struct RegressionTerm {
    double coefficient;
    int number;   // of the variable
    int position; // of the last variable with that number; -1 when there is none
};
struct Regression {
    std::vector<RegressionTerm> terms;
    double constant = 0;
};
// A constant that is left out reads as 0 and need not exist.
enum class ConstantTerm { Read, LeftOut };
Regression readRegression(ModelDocument &document, std::span<const Variable> variables,
                          ConstantTerm constantTerm = ConstantTerm::Read);

// The name of the recoding that a term multiplies; empty when there is no such variable.
QStringView recodingName(std::span<const Variable> variables, const RegressionTerm &term);

// Notes a problem when a term has no variable.
void requireVariables(ModelDocument &document, const Regression &regression);

// The coefficient of each variable: that of the last term with the variable's number. Notes a
// problem when a variable has no term; its coefficient is then 0.
std::vector<double> variableCoefficients(ModelDocument &document,
                                         std::span<const Variable> variables,
                                         const Regression &regression);

// Score points in decreasing order and the probabilities there. Where the document has a table, it
// has at least one point.
struct ProbabilityTable {
    bool exists = false;
    std::pmr::vector<double> x;
    std::pmr::vector<double> y; // at least as many as x
};
ProbabilityTable readProbabilityTable(ModelDocument &document);

// Scores above `threshold` (and not above that of the segment before) have the probability
// intercept + score * slope.
struct ProbabilitySegment {
    double threshold;
    double slope;
    double intercept;
};
// The segment between points i and i - 1 of the table, whose scores differ.
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
