#include "check/scorecard.h"

#include "check/evaluation.h"

#include <QHash>

#include <algorithm>
#include <unordered_map>

namespace {

// The names of the data dictionary are those that documents are saved with.
constexpr QStringView cleanedInDocuments = u" .";
constexpr std::array<QStringView, targetCount> cleanedCharacters = {u" .", u"", u"\"%'-() /.",
                                                                    u" .'-", u""};

// Strictly, and without anything that is no number.
bool isRising(std::span<const double> x) {
    return std::adjacent_find(x.begin(), x.end(), [](double a, double b) { return !(a < b); }) ==
           x.end();
}

bool isFalling(std::span<const double> x) {
    return std::adjacent_find(x.begin(), x.end(), [](double a, double b) { return !(a >= b); }) ==
           x.end();
}

std::vector<double> rounded(std::span<const double> numbers) {
    std::vector<double> result;
    for (const double number : numbers) result.push_back(sixDigits(number));
    return result;
}

void readNumeric(Recoding &recoding, const Scorecard &card) {
    const NumericRecoding arrays = card.arrays.numeric(*recoding.variable);
    recoding.x = arrays.x;
    recoding.y = arrays.y;
    recoding.isRising = isRising(arrays.x);
    const auto codesOf = [&](QStringView name) -> std::span<const double> {
        return card.dictionary.lists[card.dictionary.find(name)].codes;
    };
    const QStringView field = recoding.variable->field;
    recoding.codes = codesOf(cleanName(field, cleanedInDocuments));
    recoding.sixDigitCodes = rounded(recoding.codes);
    for (std::size_t t = 0; t < targetCount; ++t) {
        const auto codes = codesOf(cleanedFor(static_cast<Target>(t), field));
        recoding.codesOfTarget[t] = {codes, rounded(codes)};
    }
}

void readCategorical(Recoding &recoding, const Scorecard &card) {
    const CategoricalRecoding arrays = card.arrays.categorical(*recoding.variable);
    recoding.y = arrays.y;
    recoding.isBoolean = arrays.isBoolean;
    recoding.listed.assign(arrays.values.begin(), arrays.values.end());
    for (std::size_t i = 0; i < recoding.listed.size(); ++i) {
        const auto position = static_cast<std::uint32_t>(!recoding.isBoolean ? i + 1
                                                         : i < 5             ? 1
                                                                             : 2);
        const QStringView value = recoding.listed[i];
        const std::string text = value.toUtf8().toStdString();
        ListedValue &places = recoding.values[text];
        if (places.first == 0) places.first = position;
        places.last = position;
        double number = 0;
        if (readNumber(text, number)) recoding.numbers.try_emplace(number, position);
        recoding.folded.try_emplace(value.toString().toLower().toStdString(), position);
    }
    for (const auto &[value, places] : recoding.values) {
        recoding.shortList.emplace_back(value, places);
    }
    if (recoding.isBoolean) recoding.sixDigitScores = rounded(recoding.y);
}

void readRecodingsOf(Scorecard &card) {
    QHash<QStringView, std::size_t> columns;
    std::array<QHash<QString, std::size_t>, targetCount> lastAlike;
    std::vector<const Recoding *> lastOfColumn;
    const auto nameIn = [](std::size_t t, const Recoding &recoding) {
        return cleanedFor(static_cast<Target>(t), recoding.variable->field);
    };
    card.recodings.resize(card.variables.size());
    for (const Variable &variable : card.variables) {
        Recoding &recoding = card.recodings[variable.position];
        recoding.variable = &variable;
        const std::size_t next = card.columns.size();
        recoding.column = columns.value(variable.field, next);
        if (recoding.column == next) {
            columns.insert(variable.field, next);
            card.columns.push_back(variable.field.toString());
            lastOfColumn.push_back(nullptr);
        }
        lastOfColumn[recoding.column] = &recoding;
        for (std::size_t t = 0; t < targetCount; ++t) {
            lastAlike[t][nameIn(t, recoding)] = recoding.column;
        }
        if (variable.isCategorical) {
            readCategorical(recoding, card);
        } else {
            readNumeric(recoding, card);
        }
    }
    for (Recoding &recoding : card.recodings) {
        recoding.asked = lastOfColumn[recoding.column];
        for (std::size_t t = 0; t < targetCount; ++t) {
            recoding.lastAlike[t] = lastAlike[t][nameIn(t, recoding)];
        }
    }
}

void readTerms(Scorecard &card) {
    std::unordered_map<int, std::pair<double, double>> coefficients; // first and last of a number
    double factor = 1;
    for (const RegressionTerm &term : card.regression.terms) {
        const double coefficient = term.coefficient;
        coefficients.try_emplace(term.number, coefficient, coefficient).first->second.second =
            coefficient;
        if (term.position < 0) { // written without a name, it multiplies what follows
            factor *= coefficient;
            continue;
        }
        const auto recoding = static_cast<std::size_t>(term.position);
        card.recodings[recoding].coefficient += coefficient;
        card.terms.push_back({coefficient, recoding});
        card.factorTerms.push_back({factor * coefficient, recoding});
        factor = 1;
    }
    for (std::size_t i = 0; i < card.recodings.size(); ++i) {
        const auto found = coefficients.find(card.recodings[i].variable->number);
        if (found == coefficients.end()) continue;
        card.firstTerms.push_back({found->second.first, i});
        card.lastTerms.push_back({found->second.second, i});
    }
}

} // namespace

QString cleanedFor(Target target, QStringView field) {
    return cleanName(field, cleanedCharacters[static_cast<std::size_t>(target)]);
}

Scorecard readScorecard(const QString &fileName) {
    Scorecard card;
    card.document = loadModel(fileName);
    if (!card.document.problem.isEmpty()) return card;
    card.variables = readVariables(card.document, {});
    card.arrays = readRecodings(card.document, card.variables);
    card.dictionary = readMissingDictionary(card.document);
    card.regression = readRegression(card.document, card.variables);
    card.table = readProbabilityTable(card.document);
    if (!card.document.problem.isEmpty()) return card;
    card.isFalling = isFalling(card.table.x);
    card.isLogistic = !card.table.exists && hasLogisticProbability(card.document);
    std::pmr::vector<double> betas;
    readNumbers(card.document, card.document.root.childNode(u"RegressionModel"), u"betas", 0,
                betas);
    if (card.variables.size() < betas.size()) card.htmlConstant = betas[card.variables.size()];
    readRecodingsOf(card);
    readTerms(card);
    return card;
}
