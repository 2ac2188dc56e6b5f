// The score of a row from its recodings, and the probability from the score.
#pragma once

#include "model/hash_tables.h"
#include "model/recodings.h"

#include <span>
#include <vector>

// The score is the constant plus, for each term, its coefficient times the recoding of its
// variable.
struct RegressionTerm {
    double coefficient;
    int number; // of the variable
    int index;  // of the last variable with that number; -1 if no variable has it
};
struct Regression {
    std::vector<RegressionTerm> terms;
    double constant = 0;
};
// With LeftOut, the constant is 0 and the document need not contain it.
enum class ConstantTerm { Read, LeftOut };
Regression readRegression(ModelDocument &document, std::span<const Variable> variables,
                          ConstantTerm constantTerm = ConstantTerm::Read);

// The name of the recoding that a term multiplies; empty if the term has no variable.
QStringView recodingName(std::span<const Variable> variables, const RegressionTerm &term);

// Records a problem if a term has no variable; for targets whose code would not run without one.
void requireVariables(ModelDocument &document, const Regression &regression);

// The coefficient of each variable: that of the last term with the variable's number. Records a
// problem if a variable has no term; its coefficient is then 0.
std::vector<double> variableCoefficients(ModelDocument &document,
                                         std::span<const Variable> variables,
                                         const Regression &regression);

// The points of the probability table: scores in decreasing order and their probabilities. A table
// that exists has at least one point.
struct ProbabilityTable {
    bool exists = false;
    std::vector<double> x;
    std::vector<double> y; // at least as many as x
};
ProbabilityTable readProbabilityTable(ModelDocument &document);

// Scores above `threshold` and up to that of the previous segment have the probability
// intercept + score * slope.
struct ProbabilitySegment {
    double threshold;
    double slope;
    double intercept;
};
// The segment between points i and i - 1 of the table, whose scores differ.
ProbabilitySegment probabilitySegment(const ProbabilityTable &table, std::size_t i);
// Calls write(segment) for each segment from the highest score down, with or without the one that
// ends at the table's last point. Two points with the same score have no segment between them.
enum class LastSegment { Written, LeftOut };
template <typename Write>
void forEachSegment(const ProbabilityTable &table, LastSegment lastSegment, Write write) {
    const std::size_t end = table.x.size() - (lastSegment == LastSegment::Written ? 0 : 1);
    for (std::size_t i = 1; i < end; ++i) {
        if (table.x[i] != table.x[i - 1]) write(probabilitySegment(table, i));
    }
}

// Whether the logistic function of the score is the probability if there is no table.
bool hasLogisticProbability(const ModelDocument &document);
