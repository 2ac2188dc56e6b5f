#include "check/rows/number_maps.h"

#include "check/evaluation/target_texts.h"
#include "check/rows/suspicion.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

using Form = NumberMap::Form;
using Rounding = NumberMap::Rounding;

constexpr std::size_t mostSampled = 64; // rows, to try candidates with
constexpr std::size_t mostMeasured = 8; // of these, to measure

bool isClose(double expected, double found, double tolerance) {
    return std::isfinite(expected) && std::isfinite(found) &&
           std::abs(expected - found) <= tolerance * std::max(1.0, std::abs(expected));
}

double snapped(double number, double relative) {
    const double slack = std::abs(number) * relative;
    return shortestBetween(number - slack, number + slack);
}

// The decimals and the significant digits of the shortest text of a number.
std::pair<int, int> placesOf(double number) {
    char text[32];
    const char *const end =
        std::to_chars(text, std::end(text), number, std::chars_format::scientific).ptr;
    const std::string_view shown(text, static_cast<std::size_t>(end - text));
    const std::size_t exponentAt = shown.find('e');
    int exponent = 0;
    const std::string_view power =
        shown.substr(exponentAt + (shown[exponentAt + 1] == '+' ? 2 : 1));
    std::from_chars(power.data(), power.data() + power.size(), exponent);
    const auto digits = static_cast<int>(std::ranges::count_if(
        shown.substr(0, exponentAt), [](char d) { return d >= '0' && d <= '9'; }));
    return {std::max(0, digits - 1 - exponent), digits};
}

bool isRounded(double exact, double found, double step) {
    const double steps = found / step;
    return std::abs(found - exact) <= step / 2 * (1 + 1e-9) + 1e-12 &&
           std::abs(steps - std::round(steps)) <= 1e-3;
}

bool fitsRounded(const NumberMap &map, double exact, double found, double tolerance) {
    switch (map.rounding) {
    case Rounding::None:
        return isClose(exact, found, tolerance);
    case Rounding::Decimals:
        return isRounded(exact, found, std::pow(10.0, -map.places));
    case Rounding::Digits: {
        if (exact == 0) return found == 0;
        const double magnitude = std::floor(std::log10(std::abs(exact))) + 1;
        return isRounded(exact, found, std::pow(10.0, magnitude - map.places));
    }
    case Rounding::Single:
        // A number with more digits than 32 bits hold was not rounded to 32 bits.
        return inSinglePrecision(exact) == inSinglePrecision(found) &&
               (inSinglePrecision(found) == found || placesOf(found).second <= 9);
    }
    return false;
}

bool fits(const Comparison &c, const NumberMap &map, const Prediction &model, bool isScore,
          double found) {
    const double own = isScore ? model.score : model.probability;
    const double other = isScore ? model.probability : model.score;
    double exact = map.add + map.times * own;
    if (map.form == Form::Other) exact = other;
    if (map.form == Form::Logistic) exact = 1 / (1 + std::exp(-map.times * model.score));
    if (map.form == Form::Through) exact = probabilityOf(c.card, map.add + map.times * model.score);
    return fitsRounded(map, exact, found, toleranceOf(c));
}

struct Sample {
    const Comparison &c;
    std::vector<const DifferingRow *> rows = {};
    std::vector<NumberMap> scores = {};
    std::vector<NumberMap> probabilities = {};
};

// The roundings that the measured numbers of results may show.
std::vector<NumberMap> roundingsOf(const Sample &sample, bool isScore) {
    constexpr int mostDigits = 12; // that a rounded number shows
    int decimals = -1;
    int digits = 0;
    bool isSingle = true;
    for (std::size_t i = 0; i < std::min(sample.rows.size(), mostMeasured); ++i) {
        const double found = numberOf(sample.rows[i]->found, isScore);
        if (!std::isfinite(found)) continue;
        isSingle = isSingle && inSinglePrecision(found) == found;
        const auto [places, significant] = placesOf(found);
        if (significant > mostDigits) continue;
        decimals = std::max(decimals, places);
        digits = std::max(digits, significant);
    }
    std::vector<NumberMap> roundings;
    if (decimals >= 0) {
        roundings.push_back({.rounding = Rounding::Decimals, .places = decimals, .rank = 2});
        roundings.push_back({.rounding = Rounding::Digits, .places = digits, .rank = 3});
    }
    if (isSingle || digits >= 7) {
        // Of numbers with few digits, 32 bits hold most.
        roundings.push_back({.rounding = Rounding::Single, .rank = isSingle ? 2 : 4});
    }
    return roundings;
}

// Adds each form plain and rounded.
void addForms(const Sample &sample, bool isScore, std::span<const NumberMap> forms,
              std::vector<NumberMap> &maps) {
    const std::vector<NumberMap> roundings = roundingsOf(sample, isScore);
    for (const NumberMap &form : forms) {
        maps.push_back(form);
        for (const NumberMap &rounding : roundings) {
            NumberMap map = form;
            map.rounding = rounding.rounding;
            map.places = rounding.places;
            map.rank += rounding.rank;
            maps.push_back(map);
        }
    }
}

// Adds the amounts, factors and straight lines that lead from the model's number to that of a
// result.
void addMeasured(const Sample &sample, bool isScore, std::vector<NumberMap> &maps) {
    constexpr double rounding = 1e-10;
    const std::size_t count = std::min(sample.rows.size(), mostMeasured);
    for (std::size_t i = 0; i < count; ++i) {
        const double expected = numberOf(sample.rows[i]->expected, isScore);
        const double found = numberOf(sample.rows[i]->found, isScore);
        if (!std::isfinite(expected) || !std::isfinite(found)) continue;
        const double slack = rounding * std::max({1.0, std::abs(expected), std::abs(found)});
        maps.push_back({.add = found, .times = 0, .rank = 2});
        maps.push_back({.add = shortestBetween(found - expected - slack, found - expected + slack),
                        .rank = 4});
        if (expected != 0) {
            maps.push_back({.times = snapped(found / expected, rounding), .rank = 5});
        }
        const DifferingRow &next = *sample.rows[(i + 1) % count];
        const double run = numberOf(next.expected, isScore) - expected;
        const double times = snapped((numberOf(next.found, isScore) - found) / run, rounding);
        if (run == 0 || !std::isfinite(times)) continue;
        const double add = found - times * expected;
        const double about =
            rounding * std::max({1.0, std::abs(found), std::abs(times * expected)});
        maps.push_back(
            {.add = shortestBetween(add - about, add + about), .times = times, .rank = 8});
    }
}

// The scores that may have the result's probability; a single one where the model is logistic.
ScoreRange possibleScores(const Comparison &c, const Prediction &found) {
    const double tolerance = toleranceOf(c);
    const double p = found.probability;
    if (c.card.table.exists || !(p > tolerance && p < 1 - tolerance)) {
        return scoresWithProbability(c.card, p, tolerance, c.options.deviations());
    }
    const auto inverse = [](double q) { return std::log(q / (1 - q)); };
    return {inverse(p - tolerance), inverse(p + tolerance)};
}

// Amounts by which probabilities alone show that their scores are off.
void addAmountsOfProbabilities(Sample &sample) {
    for (std::size_t i = 0; i < std::min(sample.rows.size(), mostMeasured); ++i) {
        ScoreRange amount = amountOf(sample.c, *sample.rows[i]);
        for (const DifferingRow *const row : sample.rows) {
            const ScoreRange both = overlap(amount, amountOf(sample.c, *row));
            if (both.least <= both.most) amount = both;
        }
        if (!std::isfinite(amount.least) || !std::isfinite(amount.most)) continue;
        sample.probabilities.push_back(
            {.form = Form::Through, .add = shortestBetween(amount.least, amount.most), .rank = 4});
    }
}

void findMaps(Sample &sample) {
    const RowOptions &options = sample.c.options;
    constexpr NumberMap same = {};
    constexpr NumberMap scoreForms[] = {
        same, {.times = -1, .rank = 1}, {.form = Form::Other, .rank = 1}};
    constexpr NumberMap probabilityForms[] = {same,
                                              {.times = 100, .rank = 1},
                                              {.times = 0.01, .rank = 1},
                                              {.add = 1, .times = -1, .rank = 1},
                                              {.form = Form::Other, .rank = 1},
                                              {.form = Form::Through, .times = -1, .rank = 1},
                                              {.form = Form::Logistic, .rank = 1},
                                              {.form = Form::Logistic, .times = -1, .rank = 2}};
    const auto keepFitting = [&](std::vector<NumberMap> &maps, bool isScore) {
        std::erase_if(maps, [&](const NumberMap &map) {
            const auto isRight = [&](const DifferingRow *row) {
                return fits(sample.c, map, row->expected, isScore, numberOf(row->found, isScore));
            };
            return !isEnough(std::ranges::count_if(sample.rows, isRight), sample.rows.size());
        });
    };
    if (options.hasScore()) {
        addForms(sample, true, scoreForms, sample.scores);
        addMeasured(sample, true, sample.scores);
        keepFitting(sample.scores, true);
    }
    if (options.hasProbability()) {
        addForms(sample, false, probabilityForms, sample.probabilities);
        addMeasured(sample, false, sample.probabilities);
        for (NumberMap map : sample.scores) {
            if (map.form != Form::Linear || map.rounding != Rounding::None || map.isSame())
                continue;
            map.form = Form::Through;
            map.rank = 0; // the probability follows the score
            sample.probabilities.push_back(map);
        }
        if (!options.hasScore()) addAmountsOfProbabilities(sample);
        keepFitting(sample.probabilities, false);
    }
    for (auto *const maps : {&sample.scores, &sample.probabilities}) {
        if (maps->empty()) maps->push_back({}); // is not compared, or fits nothing
    }
}

bool isRight(const Comparison &c, const Cause &cause, const DifferingRow &row) {
    return (!c.options.hasScore() || fits(c, cause.score, row.expected, true, row.found.score)) &&
           (!c.options.hasProbability() ||
            fits(c, cause.probability, row.expected, false, row.found.probability));
}

// How many rows the maps must make right: more than they were measured from.
std::int64_t neededFor(const Cause &cause) {
    const bool isLine = cause.score.rank >= 8 || cause.probability.rank >= 8;
    return isPlain(cause) ? 1 : isLine ? leastRows + 1 : leastRows;
}

// Whether rows of enough different numbers are right. Any two lie on a line, and many failures
// write 0 or 1.
bool isEvident(const Sample &sample, const Cause &cause) {
    std::vector<double> numbers;
    for (const DifferingRow *const row : sample.rows) {
        const bool isScore = !cause.score.isSame() && sample.c.options.hasScore();
        const double found = numberOf(row->found, isScore);
        if (!isRight(sample.c, cause, *row) || (isPlain(cause) && (found == 0 || found == 1))) {
            continue;
        }
        numbers.push_back(numberOf(row->expected, isScore));
    }
    std::ranges::sort(numbers);
    const auto distinct = std::unique(numbers.begin(), numbers.end()) - numbers.begin();
    return distinct >= (isPlain(cause) ? 1 : neededFor(cause) - 1);
}

// The maps of score and probability that make most of the sample right.
Cause bestMaps(const Sample &sample) {
    Cause best;
    int leastRank = 0;
    for (const NumberMap &score : sample.scores) {
        for (const NumberMap &probability : sample.probabilities) {
            if (score.isSame() && probability.isSame()) continue; // the rows differ
            Cause cause = {.score = score, .probability = probability};
            cause.rows = std::ranges::count_if(sample.rows, [&](const DifferingRow *row) {
                return isRight(sample.c, cause, *row);
            });
            const int rank = score.rank + probability.rank;
            if (cause.rows < best.rows || (cause.rows == best.rows && rank >= leastRank)) continue;
            if (!isEvident(sample, cause)) continue;
            best = cause;
            leastRank = rank;
        }
    }
    return best;
}

} // namespace

double toleranceOf(const Comparison &c) {
    return std::max(c.options.tolerance, 1e-9);
}

ScoreRange amountOf(const Comparison &c, const DifferingRow &row) {
    constexpr ScoreRange none = {HUGE_VAL, -HUGE_VAL};
    if (!std::isfinite(row.expected.score)) return none;
    if (!c.options.hasScore()) {
        const ScoreRange range = possibleScores(c, row.found);
        return {range.least - row.expected.score, range.most - row.expected.score};
    }
    const double amount = row.found.score - row.expected.score;
    const double slack = toleranceOf(c) * std::max(1.0, std::abs(row.expected.score));
    const auto isProbable = [&] {
        return wouldBeRight(c, row.found.score, row.found) ||
               (hasPointBeside(c.card, row.found.score, slack) &&
                hasProbabilityNear(c.card, row.found.score, slack, row.found.probability,
                                   toleranceOf(c), c.options.deviations()));
    };
    if (!std::isfinite(amount) || (c.options.hasProbability() && !isProbable())) return none;
    return {amount - slack, amount + slack};
}

ScoreRange overlap(const ScoreRange &a, const ScoreRange &b) {
    return {std::max(a.least, b.least), std::min(a.most, b.most)};
}

bool isPlain(const Cause &cause) {
    return cause.score.rank < 2 && cause.probability.rank < 2;
}

bool isEnough(std::int64_t rows, std::size_t of, double share) {
    return static_cast<double>(rows) >= share * static_cast<double>(of);
}

std::vector<Cause> mapsOf(const Comparison &c) {
    std::vector<Cause> causes;
    std::vector<const DifferingRow *> rest;
    rest.reserve(c.differing.size());
    for (const DifferingRow &row : c.differing) rest.push_back(&row);
    while (!rest.empty() && causes.size() < mostCauses) {
        Sample sample = {c};
        const std::size_t count = std::min(rest.size(), mostSampled);
        // Rows from all parts of the file, also the first few, which are measured.
        constexpr std::size_t stride = 67; // a prime above mostSampled
        for (std::size_t i = 0; i < count; ++i) {
            sample.rows.push_back(rest[i * stride % count * rest.size() / count]);
        }
        findMaps(sample);
        Cause cause = bestMaps(sample);
        if (cause.rows == 0) break;
        const std::size_t before = rest.size();
        std::erase_if(rest, [&](const DifferingRow *row) { return isRight(c, cause, *row); });
        cause.rows = static_cast<std::int64_t>(before - rest.size());
        // Within a large tolerance, measured numbers make some rows right by chance.
        const bool isDoubtful = !isPlain(cause) && toleranceOf(c) > 1e-9;
        const double share = isDoubtful ? 0.5 : leastShare;
        if (cause.rows < neededFor(cause) || !isEnough(cause.rows, before, share)) break;
        if (!isEnough(cause.rows, c.differing.size())) break;
        causes.push_back(cause);
    }
    return causes;
}

double numberOf(const Prediction &prediction, bool isScore) {
    return isScore ? prediction.score : prediction.probability;
}
