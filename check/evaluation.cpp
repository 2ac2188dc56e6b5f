#include "check/evaluation.h"

#include "check/csv_reader.h"
#include "model/number_text.h"

#include <algorithm>
#include <charconv>

namespace {

using enum FindingId;

// --- Numbers

// Whole numbers of few digits are most of what tables hold.
bool readDigits(std::string_view text, double &number) {
    constexpr std::size_t mostDigits = 15;
    if (text.empty() || text.size() > mostDigits) return false;
    std::int64_t value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return false;
        value = 10 * value + (c - '0');
    }
    number = static_cast<double>(value);
    return true;
}

// Of a number that no double is near to: whether it is too large, and not too small.
bool isLarge(std::string_view text) {
    const std::size_t mark = std::min(text.find_first_of("eE"), text.size());
    const std::string_view digits = text.substr(0, mark);
    std::int64_t exponent = 0;
    if (mark < text.size()) {
        const bool hasPlus = text[mark + 1] == '+';
        exponent = std::int64_t(1) << 60; // what is longer than that stays so
        if (text[mark + 1] == '-') exponent = -exponent;
        std::from_chars(text.data() + mark + 1 + hasPlus, text.data() + text.size(), exponent);
    }
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const std::size_t first = digits.find_first_of("123456789");
    return static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) + exponent > 0;
}

// --- Recodings

// A set that is known to be empty costs nothing where most rows pass.
struct NoDeviations {
    static constexpr bool has(FindingId /*id*/) { return false; }
};

template <typename D>
bool isCode(const Recoding &recoding, double value, const D &deviations) {
    if (deviations.has(MissingCodesUnread)) return false;
    std::span<const double> codes = recoding.codes;
    if constexpr (!std::is_same_v<D, NoDeviations>) {
        const Codes &found = recoding.codesOfTarget[static_cast<std::size_t>(deviations.target)];
        const bool isFound = deviations.has(MissingCodesName);
        codes = deviations.has(MissingCodesDigits)
                    ? std::span<const double>(isFound ? found.rounded : recoding.sixDigitCodes)
                    : (isFound ? found.exact : recoding.codes);
    }
    return std::ranges::find(codes, value) != codes.end();
}

// How many of the rising bounds are below the value. Halves without branches: which half it is
// cannot be foreseen.
std::size_t boundsBelow(std::span<const double> bounds, double value) {
    const double *first = bounds.data();
    for (std::size_t count = bounds.size(); count > 1;) {
        const std::size_t half = count / 2;
        first += first[half - 1] < value ? half : 0;
        count -= half;
    }
    return static_cast<std::size_t>(first - bounds.data()) + (*first < value ? 1 : 0);
}

// HTML takes the last score, however many there are.
template <typename D>
std::size_t positionAbove(const Recoding &recoding, const D &deviations) {
    return deviations.has(ArrayTooLong) ? recoding.y.size() - 1 : recoding.x.size() + 1;
}

template <typename D>
std::size_t intervalOf(const Recoding &recoding, double value, const D &deviations) {
    const std::span<const double> x = recoding.x;
    if (std::isnan(value) || isCode(recoding, value, deviations)) return 0;
    if (value < x.front()) return 1;
    if (value > x.back()) return positionAbove(recoding, deviations);
    // The first bound belongs to the interval above it; a single one has none.
    if (x.size() == 1) return deviations.has(SingleBound) ? positionAbove(recoding, deviations) : 0;
    const auto inner = x.subspan(1);
    if (recoding.isRising) return boundsBelow(inner, value) + 2;
    const auto isUpTo = [&](double bound) { return value <= bound; };
    const auto found = std::find_if(inner.begin(), inner.end(), isUpTo);
    if (found == inner.end()) return 0;
    return static_cast<std::size_t>(found - inner.begin()) + 2;
}

template <typename D>
std::size_t recodeNumber(const Recoding &recoding, std::string_view text, const D &deviations) {
    double value = noNumber;
    if (!text.empty() && !readNumber(text, value)) {
        return deviations.has(NotANumber) ? positionAbove(recoding, deviations) : 0;
    }
    return intervalOf(recoding, value, deviations);
}

// Null where the text is not listed. A short list is searched faster than a hash is made.
const ListedValue *findValue(const Recoding &recoding, std::string_view text) {
    constexpr std::size_t shortList = 8;
    if (recoding.values.size() <= shortList) {
        for (const auto &[value, places] : recoding.shortList) {
            if (value == text) return &places;
        }
        return nullptr;
    }
    const auto found = recoding.values.find(text);
    return found == recoding.values.end() ? nullptr : &found->second;
}

template <typename D>
std::uint32_t listedPosition(const Recoding &recoding, std::string_view text, const D &deviations) {
    if (deviations.has(Capitals)) { // the first that is alike counts
        const QString small =
            QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toLower();
        const auto folded = recoding.folded.find(small.toStdString());
        return folded == recoding.folded.end() ? 0 : folded->second;
    }
    const ListedValue *const listed = findValue(recoding, text);
    if (!listed) return 0;
    return deviations.has(ValueTwice) ? listed->first : listed->last;
}

std::uint32_t equalNumber(const Recoding &recoding, std::string_view text) {
    double number = 0;
    if (!readNumber(text, number)) return 0;
    const auto found = recoding.numbers.find(number);
    return found == recoding.numbers.end() ? 0 : found->second;
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

template <typename D>
std::uint32_t recodeText(const Recoding &recoding, const Cell &cell, const D &deviations) {
    std::string_view text = cell.text;
    if (text.empty()) {
        const ListedValue *const listed =
            deviations.has(EmptyValue) ? findValue(recoding, text) : nullptr;
        return listed ? listed->last : 0;
    }
    if (deviations.has(recoding.isBoolean ? BooleanBlanks : TextBlanks)) text = cell.raw;
    if (deviations.has(TrueFalse)) {
        if (text == "TRUE" || text == "FALSE") return 0;
        const std::string_view asListed = text == "True" ? "TRUE" : text == "False" ? "FALSE" : "";
        if (!recoding.isBoolean && !asListed.empty() && findValue(recoding, asListed)) {
            text = asListed;
        }
    }
    if (deviations.has(FiveCategories) && !recoding.isBoolean && recoding.listed.size() == 5) {
        return 0;
    }
    if (deviations.has(ValuesAsNumbers)) return equalNumber(recoding, text);
    if (deviations.has(Backslash) && isEscaped(text)) return 0;
    double flag = 0;
    if (deviations.has(BooleanNumbers) && recoding.isBoolean && recoding.y.size() > 2 &&
        readNumber(text, flag)) {
        return flag == 0 ? 1 : flag == 1 ? 2 : 0;
    }
    return listedPosition(recoding, text, deviations);
}

// The position in the list that HTML asks for. What is shown as a list, and read as buttons, is
// unknown.
template <typename D>
Recoded recodeAsked(const Recoding &recoding, const Cell &cell, const D &deviations) {
    const bool isRead = recoding.asked->listed.size() < 5 || recoding.listed.size() > 5;
    const std::uint32_t position = isRead ? recodeText(*recoding.asked, cell, deviations) : 0;
    return {position, position < recoding.y.size() ? recoding.y[position] : noNumber};
}

template <typename D>
Recoded recodeCell(const Recoding &recoding, const Cell &cell, const D &deviations) {
    if (deviations.has(SharedValues) && recoding.asked != &recoding &&
        recoding.variable->isCategorical && recoding.asked->variable->isCategorical &&
        !recoding.isBoolean && !recoding.asked->isBoolean) {
        return recodeAsked(recoding, cell, deviations);
    }
    const std::size_t position = recoding.variable->isCategorical
                                     ? recodeText(recoding, cell, deviations)
                                     : recodeNumber(recoding, cell.text, deviations);
    const bool isRounded = deviations.has(BooleanDigits) && recoding.isBoolean && position > 0;
    return {static_cast<std::uint32_t>(position),
            isRounded ? recoding.sixDigitScores[position] : recoding.y[position]};
}

const std::vector<ScoreTerm> &termsOf(const Scorecard &card, const Deviations &deviations) {
    if (deviations.has(EqualCoefficients) || deviations.has(EqualNumbers)) {
        return deviations.target == Target::Html ? card.firstTerms : card.lastTerms;
    }
    return deviations.has(CoefficientWithoutRecoding) ? card.factorTerms : card.terms;
}

} // namespace

bool readNumber(std::string_view text, double &number) {
    if (readDigits(text, number)) return true;
    if (text.starts_with('+') && text.size() > 1 && text[1] != '-') text.remove_prefix(1);
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (stop != end || text.empty()) return false;
    if (error == std::errc::result_out_of_range) { // which leaves the number as it was
        number = isLarge(text) ? std::numeric_limits<double>::infinity() : 0;
        if (text.starts_with('-')) number = -number;
        return true;
    }
    return error == std::errc();
}

double sixDigits(double number) {
    const NumberText text = generalNumber(number, 6);
    double rounded = number;
    std::from_chars(text.characters, text.characters + text.size, rounded);
    return rounded;
}

Recoded recode(const Recoding &recoding, const Cell &cell, const Deviations &deviations) {
    return recodeCell(recoding, cell, deviations);
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

double probabilityOf(const Scorecard &card, double score, const Deviations &deviations) {
    for (const FindingId id : {NoProbability, LogisticAbsent, TableUnread}) {
        if (deviations.has(id)) return score;
    }
    if (!card.table.exists) {
        if (!card.isLogistic) return noNumber;
        // Of the last row, it is what the model says.
        return deviations.has(LogisticLastRow) ? 0 : 1 / (1 + std::exp(-score));
    }
    const std::pmr::vector<double> &x = card.table.x;
    const std::pmr::vector<double> &y = card.table.y;
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

Prediction evaluate(const Scorecard &card, std::span<const Cell> cells, std::span<Recoded> recoded,
                    const Deviations &deviations) {
    const bool isPlain = deviations.findings.isEmpty();
    const bool mixesColumns = deviations.has(NamesAlike);
    const auto target = static_cast<std::size_t>(deviations.target);
    for (std::size_t i = 0; i < card.recodings.size(); ++i) {
        const Recoding &recoding = card.recodings[i];
        const Cell &cell = cells[mixesColumns ? recoding.lastAlike[target] : recoding.column];
        recoded[i] = isPlain ? recodeCell(recoding, cell, NoDeviations())
                             : recodeCell(recoding, cell, deviations);
    }
    Prediction prediction;
    prediction.score = scoreOf(card, recoded, deviations);
    prediction.probability = probabilityOf(card, prediction.score, deviations);
    return prediction;
}
