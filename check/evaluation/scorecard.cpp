#include "check/evaluation/scorecard.h"

#include "check/evaluation/cell.h"
#include "model/number_text.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace {

// The characters that become "_" in names of the data dictionary when a document is saved.
constexpr QStringView replacedInDictionary = u" .";

// False if any number is NaN.
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
    recoding.codes = codesOf(cleanName(field, replacedInDictionary));
    for (const Target target : listTargets(allTargets)) {
        recoding.codesOfTarget[static_cast<std::size_t>(target)] =
            codesOf(cleanedFor(target, field));
    }
}

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<signed char>(c) >= 0; });
}

// Most texts are ASCII and need no conversion.
std::string foldedCase(std::string_view text) {
    if (!isAscii(text)) return QString::fromUtf8(text).toLower().toStdString();
    std::string folded(text);
    for (char &c : folded) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    return folded;
}

std::string withoutAccents(std::string_view text) {
    if (isAscii(text)) return foldedCase(text);
    QString plain = QString::fromUtf8(text).normalized(QString::NormalizationForm_D).toLower();
    plain.removeIf([](QChar c) { return c.category() == QChar::Mark_NonSpacing; });
    return plain.toStdString();
}

// The text of a literal; \xFF, which equals nothing, for an escape that is not supported.
std::string unescaped(std::string_view literal, Reading reading) {
    const bool isPython = reading == Reading::PythonText;
    const std::string_view escapes = isPython ? "\\'\"abfnrtv\n" : "'\"bnrtZ0\\";
    const std::string_view meanings = isPython ? "\\'\"\a\b\f\n\r\t\v" : "'\"\b\n\r\t\x1A";
    std::string text;
    for (std::size_t i = 0; i < literal.size(); ++i) {
        // A backslash at the end keeps the code from running at all.
        if (literal[i] != '\\' || i + 1 == literal.size()) {
            text += literal[i];
            continue;
        }
        const char c = literal[++i];
        const std::size_t at = escapes.find(c);
        if (at < meanings.size()) {
            text += meanings[at];
        } else if (isPython && (at != std::string_view::npos || c == '\n')) {
            continue; // continues the line
        } else if (isPython && std::string_view("01234567xNuU").find(c) != std::string_view::npos) {
            return "\xFF";
        } else if (!isPython && c == '0') {
            text += '\0';
        } else if (isPython || c == '%' || c == '_') {
            text += {'\\', c};
        } else {
            text += c;
        }
    }
    return text;
}

// The same key for all texts that are equal in this reading.
std::string keyOf(std::string_view text, Reading reading) {
    switch (reading) {
    case Reading::AnyCase:
        return foldedCase(text);
    case Reading::AnyAccent:
        return withoutAccents(text);
    case Reading::AsNumber: {
        double number = 0;
        const bool isNumber = readNumber(text, number) && std::isfinite(number);
        return isNumber ? QByteArray::number(number + 0.0, 'g', 17).toStdString() : ".";
    }
    case Reading::Padded:
        return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
    case Reading::Exact:
    case Reading::PythonText:
    case Reading::MySqlText:
        break;
    }
    return std::string(text);
}

// The readings of this list in which a target may depart from the model.
std::vector<Reading> readingsOf(const Recoding &recoding) {
    std::vector<Reading> list = {Reading::Exact, Reading::AnyCase, Reading::AnyAccent};
    if (recoding.isOfNumbers) list.push_back(Reading::AsNumber);
    if (recoding.holdsEndBlank) list.push_back(Reading::Padded);
    if (recoding.holdsBackslash) {
        list.insert(list.end(), {Reading::PythonText, Reading::MySqlText});
    }
    return list;
}

void readCategorical(Recoding &recoding) {
    const CategoricalRecoding arrays = categorical(*recoding.variable);
    recoding.y = arrays.y;
    recoding.isBoolean = arrays.isBoolean;
    recoding.listed = arrays.values;
    const auto any = [&](auto test) { return std::ranges::any_of(arrays.values, test); };
    recoding.isOfNumbers = !arrays.isBoolean && sasComparesNumbers(arrays.values);
    recoding.holdsBackslash = any([](QStringView value) { return value.contains(u'\\'); });
    recoding.holdsEndBlank = any([](QStringView value) { return value.endsWith(u' '); });
    const std::vector<Reading> used = readingsOf(recoding);
    for (std::uint32_t place = 1; place <= arrays.values.size(); ++place) {
        const std::string text = arrays.values[place - 1].toUtf8().toStdString();
        for (const Reading reading : used) {
            const bool isLiteral = reading >= Reading::PythonText;
            std::string key = isLiteral ? unescaped(text, reading) : keyOf(text, reading);
            ListedValue &places =
                recoding.values[static_cast<std::size_t>(reading)][std::move(key)];
            if (places.first == 0) places.first = place;
            places.last = place;
        }
    }
}

void readRecodingsOf(Scorecard &card) {
    TextTable<QStringView, std::size_t> columns;
    card.recodings.resize(card.variables.size());
    for (const Variable &variable : card.variables) {
        Recoding &recoding = card.recodings[variable.index];
        recoding.variable = &variable;
        const std::size_t next = card.columns.size();
        recoding.column = columns.try_emplace(variable.field, next).first->second;
        if (recoding.column == next) {
            card.columns.push_back(variable.field.toString());
            card.recodingsOf.emplace_back();
        }
        recoding.rank = card.recodingsOf[recoding.column].size();
        card.recodingsOf[recoding.column].push_back(variable.index);
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
        return last[target == Target::Sas ? name.toLower() : name]; // SAS ignores case
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
    for (const auto &[coefficient, number, index] : card.regression.terms) {
        if (!first.contains(number)) first[number] = coefficient;
        last[number] = coefficient;
        factor *= coefficient;
        if (index < 0) continue; // without a name in the code, it multiplies the next term
        const auto recoding = static_cast<std::size_t>(index);
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
    // 16 digits may be too few to distinguish two numbers of the model, and too many to show 65.6.
    constexpr int most = 17;
    int digits = 15;
    NumberText text = generalNumber(number, digits);
    for (double shown = 0; digits < most && readNumber(text.view(), shown) && shown != number;) {
        text = generalNumber(number, ++digits);
    }
    return QString::fromLatin1(text.characters, text.size);
}

QString cleanedFor(Target target, QStringView field) {
    return cleanName(field, replacedCharacters(target));
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
