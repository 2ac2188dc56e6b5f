// The regression refers to a variable by its number, which is not its index and which several
// variables may share. Hash tables by number keep the search linear.
#include "model/regression.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

Regression readRegression(ModelDocument &document, std::span<const Variable> variables,
                          ConstantTerm constantTerm) {
    const XmlNode node = document.root.childNode(u"RegressionModel");
    const std::vector<int> indexes = readIntegers(document, node, u"indexes");
    const XmlNode list = node.childNode(u"indexes");
    if (list.isEmpty() || (indexes.empty() && !list.text().isNull())) {
        // An empty element is a regression without terms. An absent one, or a text too short for
        // one number, would silently reduce the score to the constant.
        noteProblem(document, u"RegressionModel: array 'indexes' is absent or holds no number"_s);
    }
    const bool hasConstant = constantTerm == ConstantTerm::Read;
    const std::vector<double> betas =
        readNumbers(document, node, u"betas", indexes.size() + (hasConstant ? 1 : 0));

    NumberTable<int> lastOfNumber;
    lastOfNumber.reserve(variables.size());
    for (int k = 0; k < static_cast<int>(variables.size()); ++k) {
        lastOfNumber[variables[static_cast<std::size_t>(k)].number] = k;
    }
    Regression regression;
    regression.terms.reserve(indexes.size());
    for (std::size_t j = 0; j < indexes.size(); ++j) {
        const auto last = lastOfNumber.find(indexes[j]);
        const int index = last == lastOfNumber.end() ? -1 : last->second;
        regression.terms.push_back({betas[j], indexes[j], index});
    }
    if (hasConstant) regression.constant = betas[indexes.size()];
    return regression;
}

QStringView recodingName(std::span<const Variable> variables, const RegressionTerm &term) {
    if (term.index < 0) return {};
    return variables[static_cast<std::size_t>(term.index)].recodingName;
}

void requireVariables(ModelDocument &document, const Regression &regression) {
    const auto unmatched = std::find_if(regression.terms.begin(), regression.terms.end(),
                                        [](const RegressionTerm &term) { return term.index < 0; });
    if (unmatched != regression.terms.end()) {
        noteProblem(document, u"RegressionModel: array 'indexes' holds %1, which is the number of "
                              "no model"_s.arg(unmatched->number));
    }
}

std::vector<double> variableCoefficients(ModelDocument &document,
                                         std::span<const Variable> variables,
                                         const Regression &regression) {
    NumberTable<double> ofNumber;
    ofNumber.reserve(regression.terms.size());
    for (const RegressionTerm &term : regression.terms) ofNumber[term.number] = term.coefficient;

    std::vector<double> coefficients;
    coefficients.reserve(variables.size());
    for (const Variable &variable : variables) {
        const auto found = ofNumber.find(variable.number);
        const bool isUsed = found != ofNumber.end();
        if (!isUsed && document.problem.isEmpty()) {
            noteProblem(document,
                        u"%1: its number is not in the array 'indexes' of RegressionModel"_s.arg(
                            describe(variable.node)));
        }
        coefficients.push_back(isUsed ? found->second : 0);
    }
    return coefficients;
}

ProbabilityTable readProbabilityTable(ModelDocument &document) {
    const XmlNode node = document.root.childNode(u"ProbabilityMapping");
    ProbabilityTable table;
    table.exists = !node.isEmpty();
    if (table.exists) {
        table.x = readNumbers(document, node, u"x", 1);
        table.y = readNumbers(document, node, u"y", table.x.size());
    }
    return table;
}

ProbabilitySegment probabilitySegment(const ProbabilityTable &table, std::size_t i) {
    const std::vector<double> &x = table.x;
    const std::vector<double> &y = table.y;
    const double slope = (y[i] - y[i - 1]) / (x[i] - x[i - 1]);
    const double product = x[i] * slope;
    return {x[i], slope, y[i] - product};
}

bool hasLogisticProbability(const ModelDocument &document) {
    return document.root.childNode(u"RegressionModel")
        .attribute(u"normalizationMethod")
        .startsWith(u"so");
}
