#include "check/scorecard.h"

#include "check/evaluation.h"

#include <QHash>

#include <algorithm>

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
    for (std::size_t t = 0; t < targetCount; ++t) {
        recoding.codesOfTarget[t] = codesOf(cleanedFor(static_cast<Target>(t), field));
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
        ListedValue &places = recoding.values[value.toUtf8().toStdString()];
        if (places.first == 0) places.first = position;
        places.last = position;
        recoding.folded.try_emplace(value.toString().toLower().toStdString(), position);
    }
    for (const auto &[value, places] : recoding.values) {
        recoding.shortList.emplace_back(value, places);
    }
    if (!recoding.isBoolean) return;
    for (const double score : recoding.y) recoding.sixDigitScores.push_back(sixDigits(score));
}

void readRecodingsOf(Scorecard &card) {
    QHash<QStringView, std::size_t> columns;
    QHash<QString, std::size_t> lastAlike;
    card.recodings.resize(card.variables.size());
    for (const Variable &variable : card.variables) {
        Recoding &recoding = card.recodings[variable.position];
        recoding.variable = &variable;
        const std::size_t next = card.columns.size();
        recoding.column = columns.value(variable.field, next);
        if (recoding.column == next) {
            columns.insert(variable.field, next);
            card.columns.push_back(variable.field.toString());
        }
        lastAlike[cleanedFor(Target::Python, variable.field)] = recoding.column;
        if (variable.isCategorical) {
            readCategorical(recoding, card);
        } else {
            readNumeric(recoding, card);
        }
    }
    for (Recoding &recoding : card.recodings) {
        recoding.lastAlike = lastAlike[cleanedFor(Target::Python, recoding.variable->field)];
    }
    for (const RegressionTerm &term : card.regression.terms) {
        if (term.position < 0) continue;
        card.recodings[static_cast<std::size_t>(term.position)].coefficient += term.coefficient;
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
    std::vector<double> betas;
    readNumbers(card.document, card.document.root.childNode(u"RegressionModel"), u"betas", 0,
                betas);
    if (card.variables.size() < betas.size()) card.htmlConstant = betas[card.variables.size()];
    readRecodingsOf(card);
    return card;
}
