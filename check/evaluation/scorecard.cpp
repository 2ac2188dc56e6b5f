#include "check/evaluation/scorecard.h"

#include "check/evaluation/cell.h"
#include "model/number_text.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace {

// The names of the data dictionary are those that documents are saved with.
constexpr QStringView cleanedInDocuments = u" .";
constexpr std::array<QStringView, targetCount> cleanedCharacters = {u" .", u"", u"\"%'-() /.",
                                                                    u" .'-", u""};

// Without anything that is no number, for which no order holds.
template <typename Order>
bool isInOrder(std::span<const double> x, Order order) {
    return std::ranges::adjacent_find(x, std::not_fn(order)) == x.end();
}

void readNumeric(Recoding &recoding, const Scorecard &card) {
    recoding.x = recoding.variable->x;
    recoding.y = recoding.variable->y;
    recoding.isRising = isInOrder(recoding.x, std::less());
    const auto codesOf = [&](const QString &name) -> std::span<const double> {
        return card.dictionary.lists[card.dictionary.find(name)].codes;
    };
    const QStringView field = recoding.variable->field;
    recoding.codes = codesOf(cleanName(field, cleanedInDocuments));
    for (const Target target : listTargets(allTargets)) {
        recoding.codesOfTarget[static_cast<std::size_t>(target)] =
            codesOf(cleanedFor(target, field));
    }
}

// What is the same for all texts that the reading takes for equal.
std::string keyOf(std::string_view text, Reading reading) {
    double number = 0;
    if (reading == Reading::AnyCase) {
        return QString::fromUtf8(text).toLower().toStdString();
    }
    const bool isNumber = reading == Reading::AsNumber && readNumber(text, number);
    return isNumber ? QByteArray::number(number + 0.0, 'g', 17).toStdString() : std::string(text);
}

void readCategorical(Recoding &recoding) {
    const CategoricalRecoding arrays = categorical(*recoding.variable);
    recoding.y = arrays.y;
    recoding.isBoolean = arrays.isBoolean;
    recoding.listed = arrays.values;
    for (std::size_t i = 0; i < arrays.values.size(); ++i) {
        const auto position = static_cast<std::uint32_t>(arrays.place(i));
        const std::string text = arrays.values[i].toUtf8().toStdString();
        for (std::size_t reading = 0; reading < readings; ++reading) {
            const std::string key = keyOf(text, static_cast<Reading>(reading));
            ListedValue &places = recoding.values[reading][key];
            if (places.first == 0) places.first = position;
            places.last = position;
        }
    }
}

void readRecodingsOf(Scorecard &card) {
    TextTable<QStringView, std::size_t> columns;
    card.recodings.resize(card.variables.size());
    for (const Variable &variable : card.variables) {
        Recoding &recoding = card.recodings[variable.position];
        recoding.variable = &variable;
        const std::size_t next = card.columns.size();
        recoding.column = columns.try_emplace(variable.field, next).first->second;
        if (recoding.column == next) {
            card.columns.push_back(variable.field.toString());
            card.recodingsOf.emplace_back();
        }
        recoding.rank = card.recodingsOf[recoding.column].size();
        card.recodingsOf[recoding.column].push_back(variable.position);
        if (variable.isCategorical) {
            readCategorical(recoding);
        } else {
            readNumeric(recoding, card);
        }
    }
    for (Recoding &recoding : card.recodings) {
        recoding.asked = &card.recodings[card.recodingsOf[recoding.column].back()];
    }
}

void findAlike(Scorecard &card, Target target) {
    TextTable<QString, std::size_t> last;
    const auto columnOf = [&](const Recoding &recoding) -> std::size_t & {
        const QString name = cleanedFor(target, recoding.variable->field);
        return last[target == Target::Sas ? name.toLower() : name]; // SAS knows no capitals
    };
    for (const Recoding &recoding : card.recodings) columnOf(recoding) = recoding.column;
    for (Recoding &recoding : card.recodings) {
        recoding.lastAlike[static_cast<std::size_t>(target)] = columnOf(recoding);
    }
}

void readTerms(Scorecard &card) {
    NumberTable<double> first;
    NumberTable<double> last;
    double factor = 1;
    for (const auto &[coefficient, number, position] : card.regression.terms) {
        if (!first.contains(number)) first[number] = coefficient;
        last[number] = coefficient;
        factor *= coefficient;
        if (position < 0) continue; // written without a name, it multiplies what follows
        const auto recoding = static_cast<std::size_t>(position);
        card.recodings[recoding].coefficient += coefficient;
        card.terms.push_back({coefficient, recoding});
        card.factorTerms.push_back({std::exchange(factor, 1), recoding});
    }
    for (std::size_t i = 0; i < card.recodings.size(); ++i) {
        const int number = card.recodings[i].variable->number;
        if (!first.contains(number)) continue;
        card.firstTerms.push_back({first[number], i});
        card.lastTerms.push_back({last[number], i});
    }
}

} // namespace

ListedValue Recoding::find(std::string_view text, Reading reading) const {
    const auto &places = values[static_cast<std::size_t>(reading)];
    const auto found = places.find(keyOf(text, reading));
    return found == places.end() ? ListedValue() : found->second;
}

QStringView kindOfTarget(const Scorecard &card) {
    return card.document.root.childNode(u"MetaData").attribute(u"tkind");
}

bool isOfKind(const Scorecard &card, QStringView kind) {
    return equalsIgnoringCase(kindOfTarget(card), kind);
}

QString numberText(double number) {
    const NumberText text = modelNumber(number);
    return QString::fromLatin1(text.characters, text.size);
}

QString cleanedFor(Target target, QStringView field) {
    return cleanName(field, cleanedCharacters[static_cast<std::size_t>(target)]);
}

Scorecard readScorecard(const QString &fileName) {
    Scorecard card;
    card.document = loadModel(fileName);
    if (!card.document.problem.isEmpty()) return card;
    card.variables = readVariables(card.document, {});
    requireRecodings(card.document, card.variables);
    card.dictionary = readMissingDictionary(card.document);
    card.regression = readRegression(card.document, card.variables);
    card.table = readProbabilityTable(card.document);
    if (!card.document.problem.isEmpty()) return card;
    card.isFalling = isInOrder(card.table.x, std::greater_equal());
    card.isLogistic = !card.table.exists && hasLogisticProbability(card.document);
    const std::vector<double> betas =
        readNumbers(card.document, card.document.root.childNode(u"RegressionModel"), u"betas", 0);
    if (card.variables.size() < betas.size()) card.htmlConstant = betas[card.variables.size()];
    readRecodingsOf(card);
    for (const Target target : listTargets(allTargets)) findAlike(card, target);
    readTerms(card);
    return card;
}
