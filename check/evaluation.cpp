#include "check/evaluation.h"

#include "check/csv_reader.h"
#include "model/number_text.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>

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

// --- Recodings

// A set that is known to be empty costs nothing where most rows pass.
struct NoDeviations {
    static constexpr bool has(FindingId) { return false; }
};

template <typename D>
bool isCode(const Recoding &recoding, double value, const D &deviations) {
    if (deviations.has(MissingCodesUnread)) return false;
    std::span<const double> codes = recoding.codes;
    if constexpr (!std::is_same_v<D, NoDeviations>) {
        if (deviations.has(MissingCodesName)) {
            codes = recoding.codesOfTarget[static_cast<std::size_t>(deviations.target)];
        }
    }
    if (!deviations.has(MissingCodesDigits)) return std::ranges::find(codes, value) != codes.end();
    return std::ranges::find(codes, value, sixDigits) != codes.end();
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

template <typename D>
std::size_t intervalOf(const Recoding &recoding, double value, const D &deviations) {
    const std::span<const double> x = recoding.x;
    if (std::isnan(value) || isCode(recoding, value, deviations)) return 0;
    if (value < x.front()) return 1;
    if (value > x.back()) return x.size() + 1;
    // The first bound belongs to the interval above it; a single one has none.
    if (x.size() == 1) return deviations.has(SingleBound) ? 2 : 0;
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
        return deviations.has(NotANumber) ? recoding.x.size() + 1 : 0;
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
    const ListedValue *const listed = findValue(recoding, text);
    if (listed) return deviations.has(ValueTwice) ? listed->first : listed->last;
    if (!deviations.has(Capitals)) return 0;
    const QString small =
        QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toLower();
    const auto folded = recoding.folded.find(small.toStdString());
    return folded == recoding.folded.end() ? 0 : folded->second;
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
    if (deviations.has(TrueFalse) && (text == "TRUE" || text == "FALSE")) return 0;
    if (deviations.has(FiveCategories) && !recoding.isBoolean && recoding.listed.size() == 5) {
        return 0;
    }
    const std::uint32_t position = listedPosition(recoding, text, deviations);
    double flag = 0;
    if (position == 0 && deviations.has(BooleanNumbers) && recoding.isBoolean &&
        recoding.y.size() > 2 && readNumber(text, flag)) {
        return flag == 0 ? 1 : flag == 1 ? 2 : 0;
    }
    return position;
}

template <typename D>
Recoded recodeCell(const Recoding &recoding, const Cell &cell, const D &deviations) {
    const std::size_t position = recoding.variable->isCategorical
                                     ? recodeText(recoding, cell, deviations)
                                     : recodeNumber(recoding, cell.text, deviations);
    const bool isRounded = deviations.has(BooleanDigits) && recoding.isBoolean && position > 0;
    return {static_cast<std::uint32_t>(position),
            isRounded ? recoding.sixDigitScores[position] : recoding.y[position]};
}

// --- Score

struct Term {
    double coefficient;
    std::size_t recoding;
};

// The terms that SQL and HTML make: one of each recoding, with the last or the first of the
// coefficients of its number.
std::vector<Term> termsOfRecodings(const Scorecard &card, bool takesLast) {
    std::unordered_map<int, double> coefficients;
    for (const RegressionTerm &term : card.regression.terms) {
        const auto [found, isNew] = coefficients.try_emplace(term.number, term.coefficient);
        if (takesLast && !isNew) found->second = term.coefficient;
    }
    std::vector<Term> terms;
    for (std::size_t i = 0; i < card.recodings.size(); ++i) {
        const auto found = coefficients.find(card.recodings[i].variable->number);
        if (found != coefficients.end()) terms.push_back({found->second, i});
    }
    return terms;
}

// A coefficient without a recoding is written without a name, and multiplies what follows.
std::vector<Term> termsWithFactors(const Scorecard &card) {
    std::vector<Term> terms;
    double factor = 1;
    for (const RegressionTerm &term : card.regression.terms) {
        if (term.position < 0) {
            factor *= term.coefficient;
        } else {
            terms.push_back({factor * term.coefficient, static_cast<std::size_t>(term.position)});
            factor = 1;
        }
    }
    return terms;
}

} // namespace

bool deviates(FindingId id, Target target) {
    switch (id) {
    case LowestSegment:
    case LowestPoint:
    case MissingCodesDigits:
    case MissingCodesName:
    case BooleanDigits:
    case NamesAlike:
    case NoProbability:
    case BooleanNumbers:
    case BooleanBlanks:
    case TextBlanks:
    case Capitals:
    case DebugRecoding:
    case LogisticAbsent:
    case TrueFalse:
    case LogisticLastRow:
    case FiveCategories:
    case LowestNan:
    case MissingCodesUnread:
    case EqualCoefficients:
    case ConstantMisplaced:
    case ValueTwice:
    case EmptyValue:
        return kindOf(id).targets.test(static_cast<std::size_t>(target));
    case SingleBound:
    case NotANumber:
        return target == Target::Html;
    case CoefficientWithoutRecoding:
        return target == Target::Vba || target == Target::Python;
    case EqualNumbers:
        return target == Target::Sql;
    default:
        return false;
    }
}

bool readNumber(std::string_view text, double &number) {
    if (readDigits(text, number)) return true;
    if (text.starts_with('+') && text.size() > 1 && text[1] != '-') text.remove_prefix(1);
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (stop != end || text.empty()) return false;
    if (error == std::errc::result_out_of_range) { // which leaves the number as it was
        const bool isSmall = text.find("e-") != text.npos || text.find("E-") != text.npos;
        number = isSmall ? 0 : std::numeric_limits<double>::infinity();
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
    const auto add = [&](double coefficient, std::size_t i) {
        score += coefficient * recoded[i].score;
    };
    if (deviations.has(EqualCoefficients) || deviations.has(EqualNumbers)) {
        const bool takesLast = deviations.target != Target::Html;
        for (const Term &term : termsOfRecodings(card, takesLast)) {
            add(term.coefficient, term.recoding);
        }
    } else if (deviations.has(CoefficientWithoutRecoding)) {
        for (const Term &term : termsWithFactors(card)) add(term.coefficient, term.recoding);
    } else {
        for (const RegressionTerm &term : card.regression.terms) {
            if (term.position >= 0) add(term.coefficient, static_cast<std::size_t>(term.position));
        }
    }
    return score;
}

double probabilityOf(const Scorecard &card, double score, const Deviations &deviations) {
    if (deviations.has(NoProbability) || deviations.has(LogisticAbsent)) return score;
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

Prediction evaluate(const Scorecard &card, std::span<const Cell> cells, std::span<Recoded> recoded,
                    const Deviations &deviations) {
    const bool isPlain = deviations.findings.isEmpty();
    const bool mixesColumns = deviations.has(NamesAlike);
    for (std::size_t i = 0; i < card.recodings.size(); ++i) {
        const Recoding &recoding = card.recodings[i];
        const Cell &cell = cells[mixesColumns ? recoding.lastAlike : recoding.column];
        recoded[i] = isPlain ? recodeCell(recoding, cell, NoDeviations())
                             : recodeCell(recoding, cell, deviations);
    }
    Prediction prediction;
    prediction.score = scoreOf(card, recoded, deviations);
    prediction.probability = probabilityOf(card, prediction.score, deviations);
    return prediction;
}
