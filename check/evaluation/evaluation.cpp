#include "check/evaluation/evaluation.h"

#include <algorithm>
#include <cmath>

namespace {

using enum FindingId;

constexpr std::uint32_t noPlace = static_cast<std::uint32_t>(-1); // without a score

bool isCode(const Recoding &recoding, double value, const Deviations &deviations) {
    if (deviations.has(MissingCodesUnread)) return false;
    const std::span<const double> codes =
        deviations.has(MissingCodesName)
            ? recoding.codesOfTarget[static_cast<std::size_t>(deviations.target)]
            : recoding.codes;
    const bool isRounded = deviations.has(MissingCodesDigits);
    return std::ranges::any_of(
        codes, [&](double code) { return (isRounded ? sixDigits(code) : code) == value; });
}

std::size_t intervalOf(const Recoding &recoding, const Cell &cell, const Deviations &deviations) {
    const std::span<const double> x = recoding.x;
    // HTML takes the last score, however many there are.
    const std::size_t above = deviations.has(ArrayTooLong) ? recoding.y.size() - 1 : x.size() + 1;
    const bool isText = !cell.isNumber && !cell.text.empty();
    if (isText && deviations.has(NotANumber)) return above;
    const bool isZero = cell.text.empty() && deviations.has(EmptyField);
    const double value = cell.isNumber ? cell.number : isZero ? 0 : noNumber;
    if (std::isnan(value) || isCode(recoding, value, deviations)) return 0;
    if (value < x.front()) return 1;
    if (value > x.back()) return above;
    // The first bound belongs to the interval above it; a single one has none.
    if (x.size() == 1) return deviations.has(SingleBound) ? above : 0;
    const auto inner = x.subspan(1);
    const auto isUpTo = [value](double bound) { return value <= bound; };
    const auto found = recoding.isRising ? std::ranges::lower_bound(inner, value)
                                         : std::ranges::find_if(inner, isUpTo);
    return found == inner.end() ? 0 : static_cast<std::size_t>(found - inner.begin()) + 2;
}

// Whether Python reads one of the backslashes, and the character behind it, as another character.
bool isEscaped(std::string_view text) {
    constexpr std::string_view escapes = "\\'\"abfnrtv01234567xNuU";
    std::size_t at = text.find('\\');
    while (at < text.size() - 1 && escapes.find(text[at + 1]) == std::string_view::npos) {
        at = text.find('\\', at + 2);
    }
    return at < text.size() - 1;
}

// The value of the document that Excel VBA takes the text for. A truth value of a cell shows as
// True or False, and TRUE or FALSE of a list is written so too; a text TRUE is none of a list then.
std::string_view shownTruth(const Recoding &recoding, std::string_view text) {
    const bool isTrue = text == "TRUE" || text == "True";
    if (!isTrue && text != "FALSE" && text != "False") return text;
    const std::string_view upper = isTrue ? "TRUE" : "FALSE";
    const bool isListed = !recoding.isBoolean && recoding.find(upper).last > 0;
    if (!isListed) return isTrue ? "True" : "False";
    return text == upper ? std::string_view() : upper;
}

std::size_t placeOf(const Recoding &recoding, const Cell &cell, const Deviations &deviations) {
    const auto deviates = [&](FindingId id, bool concerns = true) {
        return concerns && deviations.has(id);
    };
    const bool isBoolean = recoding.isBoolean;
    std::string_view text = cell.text;
    if (text.empty()) return deviates(EmptyValue) ? recoding.find(text).last : 0;
    if (deviates(isBoolean ? BooleanBlanks : TextBlanks)) text = cell.raw;
    if (deviates(TrueFalse)) text = shownTruth(recoding, text);
    if (text.empty()) return 0;
    if (deviates(FiveCategories, !isBoolean && recoding.listed.size() == 5)) return 0;
    if (deviates(Backslash) && isEscaped(text)) return 0;
    if (deviates(BooleanNumbers, isBoolean && recoding.y.size() > 2)) {
        const double number = cell.isNumber ? cell.number : 0; // as in MySQL and MariaDB
        return number == 0 ? 1 : number == 1 ? 2 : 0;
    }
    if (deviates(ValuesAsNumbers)) return recoding.find(text, Reading::AsNumber).first;
    if (deviates(Capitals)) return recoding.find(text, Reading::AnyCase).first;
    const ListedValue listed = recoding.find(text);
    return deviates(ValueTwice) ? listed.first : listed.last;
}

// HTML asks for a column once, with a field or with the values of its last recoding. What is shown
// as a list and read as buttons is unknown, and so is a field that is read as buttons; read as a
// list, its number is taken for the position.
std::size_t answerOf(const Recoding &recoding, const Cell &cell, const Deviations &deviations) {
    const Recoding &asked = *recoding.asked;
    const bool readsList = recoding.listed.size() > 5;
    if (!asked.variable->isCategorical) {
        const double place = cell.isNumber ? cell.number : -1;
        const bool isPlace = place == std::floor(place) && place >= 0 && place < noPlace;
        return !readsList ? 0 : isPlace ? static_cast<std::size_t>(place) : noPlace;
    }
    const bool isList = !asked.isBoolean && asked.listed.size() > 4;
    return readsList || !isList ? placeOf(asked, cell, deviations) : 0;
}

const std::vector<ScoreTerm> &termsOf(const Scorecard &card, const Deviations &deviations) {
    if (deviations.has(EqualCoefficients) || deviations.has(EqualNumbers)) {
        return deviations.target == Target::Html ? card.firstTerms : card.lastTerms;
    }
    return deviations.has(CoefficientWithoutRecoding) ? card.factorTerms : card.terms;
}

} // namespace

bool differ(const Recoded &a, const Recoded &b) {
    return a.position != b.position ||
           (a.score != b.score && !(std::isnan(a.score) && std::isnan(b.score)));
}

Recoded recode(const Recoding &recoding, const Cell &cell, const Deviations &deviations) {
    const bool isAnswer = deviations.has(SharedValues) && recoding.asked != &recoding;
    const std::size_t position = !recoding.variable->isCategorical
                                     ? intervalOf(recoding, cell, deviations)
                                 : isAnswer ? answerOf(recoding, cell, deviations)
                                            : placeOf(recoding, cell, deviations);
    double score = position < recoding.y.size() ? recoding.y[position] : noNumber;
    if (deviations.has(BooleanDigits) && recoding.isBoolean && position > 0) {
        score = sixDigits(score);
    }
    return {static_cast<std::uint32_t>(position), score};
}

double scoreOf(const Scorecard &card, std::span<const Recoded> recoded,
               const Deviations &deviations) {
    if (deviations.has(DebugRecoding)) return 0;
    double score = deviations.has(ConstantMisplaced) ? card.htmlConstant : card.regression.constant;
    for (const ScoreTerm &term : termsOf(card, deviations)) {
        score += term.coefficient * recoded[term.recoding].score;
    }
    return score;
}

ScoreRange scoreRange(const Scorecard &card) {
    ScoreRange range = {card.regression.constant, card.regression.constant};
    for (const auto &[coefficient, recoding] : card.terms) {
        double least = HUGE_VAL;
        double most = -HUGE_VAL;
        for (const double score : card.recodings[recoding].y) { // what is no number changes neither
            least = std::min(least, coefficient * score);
            most = std::max(most, coefficient * score);
        }
        range.least += least;
        range.most += most;
    }
    return range;
}

double probabilityOf(const Scorecard &card, double score, const Deviations &deviations) {
    for (const FindingId id : {NoProbability, LogisticAbsent, TableUnread}) {
        if (deviations.has(id)) return score;
    }
    if (!card.table.exists) {
        if (!card.isLogistic) return noNumber;
        // Of the last row, it is what the model says.
        return deviations.has(LogisticLastRow) ? 0 : 1 / (1 + std::exp(-score));
    }
    const std::vector<double> &x = card.table.x;
    const std::vector<double> &y = card.table.y;
    const std::size_t last = x.size() - 1;
    if (score > x[0]) return y[0];
    if (score <= x[last]) {
        if (deviations.has(LowestNan)) return noNumber;
        return deviations.has(LowestPoint) && score == x[last] ? 0 : y[last];
    }
    const auto isBelow = [&](double point) { return score > point; };
    const auto found = card.isFalling
                           ? std::partition_point(x.begin() + 1, x.end(), std::not_fn(isBelow))
                           : std::find_if(x.begin() + 1, x.end(), isBelow);
    if (found == x.end()) return noNumber; // the score is no number
    const auto i = static_cast<std::size_t>(found - x.begin());
    if (i == last && deviations.has(LowestSegment)) return 0;
    return y[i] + (score - x[i]) * (y[i - 1] - y[i]) / (x[i - 1] - x[i]);
}

Prediction evaluate(const Scorecard &card, std::span<const Cell> cells,
                    const Deviations &deviations) {
    std::vector<Recoded> recoded;
    const bool mixesColumns = deviations.has(NamesAlike);
    const auto target = static_cast<std::size_t>(deviations.target);
    for (const Recoding &recoding : card.recodings) {
        const std::size_t column = mixesColumns ? recoding.lastAlike[target] : recoding.column;
        recoded.push_back(recode(recoding, cells[column], deviations));
    }
    const double score = scoreOf(card, recoded, deviations);
    return {score, probabilityOf(card, score, deviations)};
}
