#include "check/evaluation/evaluation.h"

#include "check/evaluation/target_texts.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace {

using enum FindingId;

constexpr double smallestSingle = 1e-37; // numbers nearer to 0 may be 0 in 32 bits
constexpr std::size_t noPlace = static_cast<std::uint32_t>(-1); // beyond all scores

// --- Bins

// A bound or a code of the document in the target: with fewer digits, or in 32 bits.
double shown(double number, const Deviations &deviations) {
    if (deviations.has(BoundDigits)) number = withDigits(number, deviations.sql.digits);
    const bool isSingle = deviations.has(SinglePrecision) && deviations.variant == 1;
    return isSingle ? inSinglePrecision(number) : number;
}

bool isCode(const Recoding &recoding, double value, const Deviations &deviations) {
    if (deviations.has(MissingCodesUnread)) return false;
    const std::span<const double> codes =
        deviations.has(MissingCodesName)
            ? recoding.codesOfTarget[static_cast<std::size_t>(deviations.target)]
            : recoding.codes;
    return std::ranges::any_of(codes, [&](double code) {
        const bool isRounded = deviations.has(MissingCodesDigits);
        return (isRounded ? withDigits(code, 6) : shown(code, deviations)) == value;
    });
}

// How a target reads a text in a numeric column, or a number that is not finite: NaN if the cell is
// missing, infinity if it is above all bounds.
double oddNumber(const Cell &cell, const Deviations &deviations) {
    const bool isHtml = deviations.target == Target::Html;
    const bool isText = !cell.isNumber;
    if (isText && deviations.has(NotANumber)) {
        double number = noNumber;
        if (isHtml) return readHtmlNumber(cell.text, number) ? number : HUGE_VAL;
        const NumberHabits habits = {(deviations.variant & 1) != 0, (deviations.variant & 2) != 0};
        const bool isVba = deviations.target == Target::Vba;
        if (isVba && readVbaNumber(cell.text, habits, number)) return number;
    }
    if (!isText && deviations.has(NanCell)) {
        if (isHtml && cell.text != "Infinity" && cell.text != "-Infinity") return HUGE_VAL;
        if (deviations.target == Target::Sql && std::isnan(cell.number)) return HUGE_VAL;
        if (deviations.target == Target::Vba) return noNumber;
    }
    return isText ? noNumber : cell.number;
}

double valueOf(const Cell &cell, const Deviations &deviations) {
    if (cell.text.empty()) return deviations.has(EmptyField) ? 0 : noNumber;
    const bool isPlain = cell.isNumber && std::isfinite(cell.number);
    const double value = isPlain ? cell.number : oddNumber(cell, deviations);
    return deviations.has(SinglePrecision) ? inSinglePrecision(value) : value;
}

std::size_t binOf(const Recoding &recoding, const Cell &cell, const Deviations &deviations) {
    const std::span<const double> x = recoding.x;
    // HTML uses the last score, even if the array is too long.
    const std::size_t above = deviations.has(ArrayTooLong) ? recoding.y.size() - 1 : x.size() + 1;
    const double value = valueOf(cell, deviations);
    if (std::isnan(value) || isCode(recoding, value, deviations)) return 0;
    const bool isShown = deviations.has(BoundDigits) || deviations.has(SinglePrecision);
    const auto bound = [&](double exact) { return isShown ? shown(exact, deviations) : exact; };
    if (value < bound(x.front())) return 1;
    if (value > bound(x.back())) return above;
    // The first bound belongs to the bin above it; a single one belongs to none.
    if (x.size() == 1) return deviations.has(SingleBound) ? above : 0;
    const auto inner = x.subspan(1);
    const auto isUpTo = [&](double exact) { return value <= bound(exact); };
    const auto found = recoding.isRising ? std::ranges::partition_point(inner, std::not_fn(isUpTo))
                                         : std::ranges::find_if(inner, isUpTo);
    return found == inner.end() ? 0 : static_cast<std::size_t>(found - inner.begin()) + 2;
}

// Whether two numbers are so near that fewer digits or bits may make them equal.
bool areNear(double a, double b, double share) {
    return std::abs(a - b) <= share * std::max(std::abs(a), std::abs(b)) + smallestSingle;
}

bool isNearBound(const Recoding &recoding, double value) {
    const auto isNear = [&](double bound) { return areNear(value, bound, 1e-6); };
    if (!recoding.isRising) return std::ranges::any_of(recoding.x, isNear);
    const auto above = std::ranges::lower_bound(recoding.x, value);
    return (above != recoding.x.end() && isNear(*above)) ||
           (above != recoding.x.begin() && isNear(*(above - 1)));
}

bool isNearCode(const Recoding &recoding, double value, Target target) {
    const auto isNear = [&](double code) { return areNear(value, code, 1e-5); };
    return std::ranges::any_of(recoding.codes, isNear) ||
           std::ranges::any_of(recoding.codesOfTarget[static_cast<std::size_t>(target)], isNear);
}

bool mayAffectNumeric(FindingId id, const Recoding &recoding, const Cell &cell, Target target) {
    const bool isEmpty = cell.text.empty();
    const bool isOdd = !isEmpty && (!cell.isNumber || !std::isfinite(cell.number));
    const double value = cell.isNumber ? cell.number : 0; // an empty field of HTML
    switch (id) {
    case EmptyField:
        return isEmpty;
    case NotANumber:
        return isOdd && !cell.isNumber;
    case NanCell:
        return isOdd && cell.isNumber;
    case MissingCodesUnread:
    case MissingCodesName:
    case MissingCodesDigits:
        return isOdd || isNearCode(recoding, value, target);
    case SingleBound:
        return isOdd || isNearBound(recoding, value);
    case BoundDigits:
    case SinglePrecision:
        return isOdd || isNearBound(recoding, value) || isNearCode(recoding, value, target);
    case ArrayTooLong:
        return isOdd || !(value < recoding.x.back());
    default:
        return true;
    }
}

// --- Lists

// The place of the first listed value that equals the text in this reading; 0 if it is that of the
// exact text.
std::uint32_t otherPlace(const Recoding &recoding, std::string_view text, Reading reading) {
    const std::uint32_t first = recoding.find(text, reading).first;
    return first == recoding.find(text).first ? 0 : first;
}

// Excel VBA reads a truth value of a cell as True or False, and writes TRUE and FALSE of a list in
// this spelling. `isTruth`: whether the cell holds a truth value, not a text.
std::uint32_t truthPlace(const Recoding &recoding, std::string_view text, bool isTruth) {
    const bool isTrue = (text[0] | 0x20) == 't';
    const std::string_view spelling = isTrue ? "True" : "False";
    const std::string_view upper = isTrue ? "TRUE" : "FALSE";
    if (isTruth) text = spelling;
    if (recoding.isBoolean) return recoding.find(text).first;
    if (text == upper) return 0;
    const std::uint32_t place = recoding.find(text).first;
    const std::uint32_t respelled = text == spelling ? recoding.find(upper).first : 0;
    return place == 0 || (respelled != 0 && respelled < place) ? respelled : place;
}

// How servers compare a text with the numbers 0 and 1: MySQL, MariaDB and a cast of
// SQLite read the number that it begins with; texts are compared as texts; a text that is not
// numeric equals neither.
std::size_t positionOfNumber(const Cell &cell, int variant) {
    if (cell.text.empty()) return variant == 3 ? 1 : 0;
    const auto of = [](double number) -> std::size_t {
        return number == 0 ? 1 : number == 1 ? 2 : 0;
    };
    if (variant == 1) return cell.raw == "0" ? 1 : cell.raw == "1" ? 2 : 0;
    if (variant == 2) return cell.isNumber ? of(cell.number) : 0;
    return of(cell.isNumber ? cell.number : leadingNumber(cell.text));
}

// Python removes all blanks of Unicode, SAS, Excel VBA and most servers spaces only, and DuckDB
// spaces of all kinds but no tabs.
std::string_view withoutBlanks(std::string_view text, Target target, int variant) {
    if (target == Target::Python) return withoutUnicodeBlanks(text, true);
    return variant == 1 ? withoutUnicodeBlanks(text, false) : withoutSpaces(text);
}

std::string_view comparedText(const Recoding &recoding, const Cell &cell,
                              const Deviations &deviations) {
    if (deviations.has(recoding.isBoolean ? BooleanBlanks : TextBlanks)) {
        // The script may run on another server than its dialect is for.
        const bool isPadded = deviations.sql.padsTexts && deviations.variant == 0;
        return isPadded ? withoutEndBlanks(cell.raw) : cell.raw;
    }
    return deviations.has(OtherBlanks)
               ? withoutBlanks(cell.raw, deviations.target, deviations.variant)
               : cell.text;
}

std::uint32_t placeOf(const Recoding &recoding, const Cell &cell, const Deviations &deviations) {
    if (cell.text.empty()) return deviations.has(EmptyValue) ? recoding.find({}).last : 0;
    const std::string_view text = comparedText(recoding, cell, deviations);
    if (deviations.has(TrueFalse) && isTruthText(text)) {
        return truthPlace(recoding, text, deviations.variant == 1);
    }
    if (deviations.has(FiveCategories) && !recoding.isBoolean &&
        htmlMisreadsList(recoding.listed.size())) {
        return 0;
    }
    if (deviations.has(Backslash) && recoding.holdsBackslash) {
        return recoding.find(text, Reading::PythonText).last;
    }
    if (deviations.has(BackslashEscape) && recoding.holdsBackslash) {
        return recoding.find(text, Reading::MySqlText).first;
    }
    if (deviations.has(ValuesAsNumbers) && recoding.isOfNumbers) {
        return recoding.find(text, Reading::AsNumber).first;
    }
    if (deviations.has(ValueBlanks) && recoding.holdsEndBlank) {
        if (const auto place = otherPlace(recoding, text, Reading::Padded)) return place;
    }
    if (deviations.has(Accents)) {
        const auto place = otherPlace(recoding, text, Reading::AnyAccent);
        if (place != 0 && place != recoding.find(text, Reading::AnyCase).first) return place;
    }
    if (deviations.has(Capitals)) {
        if (const auto place = otherPlace(recoding, text, Reading::AnyCase)) return place;
    }
    const ListedValue listed = recoding.find(text);
    return deviations.has(ValueTwice) ? listed.first : listed.last;
}

std::size_t positionOf(const Recoding &recoding, const Cell &cell, const Deviations &deviations) {
    const bool isNumber = recoding.isBoolean && recoding.y.size() > 2;
    if (isNumber && deviations.has(BooleanNumbers)) {
        return positionOfNumber(cell, deviations.variant);
    }
    return recoding.positionAt(placeOf(recoding, cell, deviations));
}

// HTML asks for a column once, with a field or with the values of its last recoding. A list or a
// field that is read as radio buttons is unlisted. If a field is read as a list, its number is the
// position.
std::size_t answerOf(const Recoding &recoding, const Cell &cell, const Deviations &deviations) {
    const Recoding &asked = *recoding.asked;
    const bool readsList = htmlReadsList(recoding.listed.size());
    if (!asked.variable->isCategorical) {
        const double place = cell.isNumber ? cell.number : -1;
        const bool isPlace = place == std::floor(place) && place >= 0 && place < noPlace;
        return !readsList ? 0 : isPlace ? static_cast<std::size_t>(place) : noPlace;
    }
    const bool isList = !asked.isBoolean && htmlShowsList(asked.listed.size());
    if (!readsList && isList) return 0;
    Deviations others = deviations; // decided above
    others.findings.remove(FiveCategories);
    return positionOf(asked, cell, others);
}

bool mayAffectList(FindingId id, const Recoding &recoding, const Cell &cell, Target target) {
    const std::string_view text = cell.text;
    switch (id) {
    case EmptyValue:
        return text.empty();
    case BooleanBlanks:
    case TextBlanks:
        return !text.empty() && cell.raw != text;
    case OtherBlanks:
        return !text.empty() && (withoutBlanks(cell.raw, target, 0) != text ||
                                 withoutBlanks(cell.raw, target, 1) != text);
    case TrueFalse:
        return isTruthText(text);
    case Capitals:
        return !text.empty() && recoding.find(text, Reading::AnyCase).first != 0;
    case Accents:
        return !text.empty() && recoding.find(text, Reading::AnyAccent).first != 0;
    case ValueTwice:
        return !text.empty();
    case Backslash:
    case BackslashEscape:
        return recoding.holdsBackslash;
    case ValueBlanks:
        return recoding.holdsEndBlank;
    case BoundDigits:
    case SinglePrecision:
        return false;
    default:
        return true;
    }
}

// --- Sums

const std::vector<ScoreTerm> &termsOf(const Scorecard &card, const Deviations &deviations) {
    if (deviations.has(EqualCoefficients) || deviations.has(EqualNumbers)) {
        return deviations.target == Target::Html ? card.firstTerms : card.lastTerms;
    }
    return deviations.has(CoefficientWithoutRecoding) ? card.factorTerms : card.terms;
}

// Where the target begins a segment of the table. The line within the segment is the exact one.
double pointShown(double point, const Deviations &deviations) {
    return deviations.has(BoundDigits) ? withDigits(point, deviations.sql.digits) : point;
}

// The table points within this distance of the score.
std::vector<double> pointsBeside(const Scorecard &card, double score, double distance) {
    std::span<const double> x = card.table.x;
    if (card.isFalling) {
        const auto first = std::ranges::lower_bound(x, score + distance, std::greater());
        const auto last = std::ranges::upper_bound(x, score - distance, std::greater());
        x = {first, std::max(first, last)};
    }
    std::vector<double> points;
    std::ranges::copy_if(x, std::back_inserter(points),
                         [&](double point) { return std::abs(point - score) <= distance; });
    return points;
}

double constantOf(const Scorecard &card, const Deviations &deviations) {
    return deviations.has(ConstantMisplaced) ? card.htmlConstant : card.regression.constant;
}

} // namespace

int variantsOf(FindingId id, Target target) {
    switch (id) {
    case BooleanNumbers:
        return 4;
    case NotANumber:
        return target == Target::Vba ? 4 : 1;
    case SinglePrecision:
    case BooleanBlanks:
    case TextBlanks:
    case TrueFalse:
        return 2;
    case OtherBlanks:
        return target == Target::Sql ? 2 : 1;
    default:
        return 1;
    }
}

bool differ(const Recoded &a, const Recoded &b) {
    return a.position != b.position ||
           (a.score != b.score && !(std::isnan(a.score) && std::isnan(b.score)));
}

Recoded recode(const Recoding &recoding, const Cell &cell, const Deviations &deviations) {
    const bool isAnswer = deviations.has(SharedValues) && recoding.asked != &recoding;
    const std::size_t position = !recoding.variable->isCategorical
                                     ? binOf(recoding, cell, deviations)
                                 : isAnswer ? answerOf(recoding, cell, deviations)
                                            : positionOf(recoding, cell, deviations);
    double score = position < recoding.y.size() ? recoding.y[position] : noNumber;
    if (deviations.has(BooleanDigits) && recoding.isBoolean && position > 0) {
        score = withDigits(score, 6);
    }
    return {static_cast<std::uint32_t>(position), score};
}

double pointsOf(const Scorecard &card, std::size_t column, const Cell &cell) {
    double points = 0;
    for (const std::size_t i : card.recodingsOf[column]) {
        const Recoding &recoding = card.recodings[i];
        if (recoding.coefficient == 0) continue; // the score may be infinite
        points += recoding.coefficient * recode(recoding, cell).score;
    }
    return points;
}

bool mayAffect(FindingId id, const Recoding &recoding, const Cell &cell,
               const Deviations &deviations) {
    return recoding.variable->isCategorical
               ? mayAffectList(id, recoding, cell, deviations.target)
               : mayAffectNumeric(id, recoding, cell, deviations.target);
}

double scoreOf(const Scorecard &card, std::span<const Recoded> recoded,
               const Deviations &deviations) {
    if (deviations.has(DebugRecoding)) return 0;
    double score = constantOf(card, deviations);
    for (const ScoreTerm &term : termsOf(card, deviations)) {
        score += term.coefficient * recoded[term.recoding].score;
    }
    return score;
}

SumSize sumSizeOf(const Scorecard &card, std::span<const Recoded> recoded,
                  const Deviations &deviations) {
    const double constant = std::abs(constantOf(card, deviations));
    SumSize size = {constant, constant, 1};
    for (const ScoreTerm &term : termsOf(card, deviations)) {
        const double part = std::abs(term.coefficient * recoded[term.recoding].score);
        if (!std::isfinite(part)) continue;
        size.largest = std::max(size.largest, part);
        size.total += part;
        ++size.terms;
    }
    return size;
}

ScoreRange scoreRange(const Scorecard &card) {
    ScoreRange range = {card.regression.constant, card.regression.constant};
    for (const auto &[coefficient, recoding] : card.terms) {
        double least = HUGE_VAL;
        double most = -HUGE_VAL;
        for (const double score : card.recodings[recoding].y) { // NaN changes neither
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
        // The last row has the probability of the model, which is no departure.
        if (deviations.has(LogisticLastRow)) return 0;
        const double power = std::exp(-score);
        return std::isinf(power) && deviations.has(LogisticOverflow) ? noNumber : 1 / (1 + power);
    }
    const std::span<const double> x = card.table.x;
    const std::span<const double> y = card.table.y;
    const std::size_t last = x.size() - 1;
    const auto isBelow = [&](double point) { return score > pointShown(point, deviations); };
    if (isBelow(x[0])) return y[0];
    const double lowest = pointShown(x[last], deviations);
    if (score <= lowest) {
        if (deviations.has(LowestNan)) return noNumber;
        return deviations.has(LowestPoint) && score == lowest ? 0 : y[last];
    }
    const auto found = card.isFalling
                           ? std::partition_point(x.begin() + 1, x.end(), std::not_fn(isBelow))
                           : std::find_if(x.begin() + 1, x.end(), isBelow);
    if (found == x.end()) return noNumber; // the score is NaN
    const auto i = static_cast<std::size_t>(found - x.begin());
    if (i == last && deviations.has(LowestSegment)) return 0;
    return y[i] + (score - x[i]) * (y[i - 1] - y[i]) / (x[i - 1] - x[i]);
}

bool hasPointBeside(const Scorecard &card, double score, double distance) {
    return !pointsBeside(card, score, distance).empty();
}

bool hasProbabilityNear(const Scorecard &card, double score, double slack, double probability,
                        double tolerance, const Deviations &deviations) {
    const auto isNear = [&](double p, double q) { return std::abs(p - q) <= tolerance; };
    const double exact = probabilityOf(card, score, deviations);
    if (std::isnan(probability) || std::isnan(exact)) {
        return std::isnan(probability) && std::isnan(exact);
    }
    if (!std::isfinite(score) || !std::isfinite(slack)) return isNear(exact, probability);
    std::vector<double> scores = {score - slack, score, score + slack};
    for (const double point : pointsBeside(card, score, slack)) {
        const double at = pointShown(point, deviations);
        scores.insert(scores.end(), {at, std::nextafter(at, HUGE_VAL)});
    }
    std::ranges::sort(scores);
    double before = noNumber;
    for (std::size_t i = 0; i < scores.size(); ++i) {
        const double p = probabilityOf(card, scores[i], deviations);
        if (isNear(p, probability)) return true;
        // The probability is monotonic between two scores, unless the first is a table point.
        const bool isJump = i > 0 && scores[i] == std::nextafter(scores[i - 1], HUGE_VAL);
        const auto [least, most] = std::minmax(before, p);
        if (!isJump && probability >= least && probability <= most) return true;
        before = p;
    }
    return false;
}

ScoreRange scoresWithProbability(const Scorecard &card, double probability, double tolerance,
                                 const Deviations &deviations) {
    const ScoreRange all = {-HUGE_VAL, HUGE_VAL};
    const double least = probability - tolerance;
    const double most = probability + tolerance;
    for (const FindingId id : {NoProbability, LogisticAbsent, TableUnread}) {
        const double slack = 2 * tolerance * std::max(1.0, std::abs(probability));
        if (deviations.has(id)) return {probability - slack, probability + slack};
    }
    if (!std::isfinite(probability) || !card.table.exists || !card.isFalling) return all;
    ScoreRange range = {HUGE_VAL, -HUGE_VAL};
    const auto add = [&](double a, double b) {
        range = {std::min({range.least, a, b}), std::max({range.most, a, b})};
    };
    const std::span<const double> x = card.table.x;
    const std::span<const double> y = card.table.y;
    const std::size_t last = x.size() - 1;
    const auto isNear = [&](double p) { return p >= least && p <= most; };
    if (isNear(y[0])) add(x[0], HUGE_VAL);
    if (isNear(y[last]) || isNear(0)) add(-HUGE_VAL, x[last > 0 ? last - 1 : last]);
    for (std::size_t i = 1; i <= last; ++i) {
        const double low = std::min(y[i], y[i - 1]);
        const double high = std::max(y[i], y[i - 1]);
        if (most < low || least > high) continue;
        const auto at = [&](double p) {
            return y[i] == y[i - 1] ? x[i]
                                    : x[i] + (std::clamp(p, low, high) - y[i]) * (x[i - 1] - x[i]) /
                                                 (y[i - 1] - y[i]);
        };
        add(at(least), at(most));
        if (y[i] == y[i - 1]) add(x[i], x[i - 1]);
    }
    // The rounding error of the interpolation.
    constexpr double rounding = 1e-9;
    const auto widen = [](double score) { return rounding * std::max(1.0, std::abs(score)); };
    if (std::isfinite(range.least)) range.least -= widen(range.least);
    if (std::isfinite(range.most)) range.most += widen(range.most);
    return range;
}
