#include "check/rows/explanation.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

constexpr std::size_t mostCombined = 8; // findings of which all sets are tried; else up to three
constexpr std::size_t mostTurned = 32;  // columns, of which all outcomes may be tried
constexpr std::int64_t budgetOfRow = 1 << 13; // outcomes and parts of them; a row takes some 0.1 ms

// Up to the server, its collation or what a workbook makes of a text.
constexpr FindingId uncertain[] = {Capitals, Accents, SinglePrecision, TrueFalse};

// What shows in the same way in all columns, since one server or one system made the results.
constexpr FindingId shared[] = {BooleanNumbers, BooleanBlanks, TextBlanks,
                                OtherBlanks,    NotANumber,    SinglePrecision};
constexpr unsigned allVariants = ~0U;

// How a set of findings explains a row: where all cells that it concerns deviate, or some of them.
enum class Fit { None, Partial, Whole };

// A column of the row whose cell the target may read differently.
struct OpenColumn {
    std::size_t column;
    std::vector<CellChoice> named = {}; // where the names of columns become the same
    std::span<const CellChoice> choices = {};
};

struct Search {
    const Comparison &c;
    const RowFacts &facts;
    const Prediction &found;
    std::vector<OpenColumn> open = {};
    std::vector<FindingId> possible = {};
    std::vector<Recoded> recoded = {}; // what is tried
    std::int64_t budget = budgetOfRow;
};

// What a column becomes where its recodings read the last of several columns.
std::vector<CellChoice> choicesByName(const Search &s, std::size_t column) {
    const auto target = static_cast<std::size_t>(s.c.options.target);
    std::vector<const Cell *> cells;
    std::vector<Recoded> meant;
    std::vector<Recoded> named;
    for (const std::size_t i : s.c.card.recodingsOf[column]) {
        const Recoding &recoding = s.c.card.recodings[i];
        cells.push_back(&s.facts.cells[recoding.lastAlike[target]]->cell);
        meant.push_back(s.facts.recoded[i]);
        named.push_back(recode(recoding, *cells.back()));
    }
    std::vector<CellChoice> choices = choicesOf(s.c.card, s.c.tests[column], column, cells, named,
                                                s.c.options.deviations());
    choices.push_back({{}, named, allVariants});
    for (CellChoice &choice : choices) choice.findings.add(NamesAlike);
    std::erase_if(choices, [&](const CellChoice &choice) {
        return std::ranges::equal(choice.recoded, meant, std::not_fn(differ));
    });
    return choices;
}

void openColumns(Search &s) {
    const Scorecard &card = s.c.card;
    const auto target = static_cast<std::size_t>(s.c.options.target);
    for (std::size_t i = 0; i < card.columns.size(); ++i) {
        OpenColumn column = {.column = i, .choices = s.facts.cells[i]->choices};
        const bool isNamed = s.c.hasAlikeNames &&
                             std::ranges::any_of(card.recodingsOf[i], [&](std::size_t recoding) {
                                 return card.recodings[recoding].lastAlike[target] != i;
                             });
        if (isNamed) {
            column.named = s.facts.cells[i]->choices;
            std::ranges::copy(choicesByName(s, i), std::back_inserter(column.named));
            column.choices = column.named;
        }
        if (!column.choices.empty()) s.open.push_back(std::move(column));
    }
}

void findPossible(Search &s) {
    FindingSet set = s.c.always;
    for (const OpenColumn &column : s.open) {
        for (const CellChoice &choice : column.choices) set.add(choice.findings);
    }
    for (std::size_t i = 0; i < findingCount; ++i) {
        if (set.has(static_cast<FindingId>(i))) s.possible.push_back(static_cast<FindingId>(i));
    }
}

void putChoice(Search &s, const OpenColumn &column, const CellChoice *choice) {
    for (const std::size_t i : s.c.card.recodingsOf[column.column]) {
        s.recoded[i] =
            choice ? choice->recoded[s.c.card.recodings[i].rank] : s.facts.recoded[i];
    }
}

// A column with the choices that a set of findings leaves it; null for what the model makes of it.
struct Wheel {
    const OpenColumn *column;
    std::vector<const CellChoice *> choices;
    std::vector<double> changes = {}; // of the score, by the choices
};

// The variant of each finding that is shared.
using Variants = std::array<int, std::size(shared)>;

bool isOf(const CellChoice &choice, const Variants &variants) {
    for (std::size_t i = 0; i < variants.size(); ++i) {
        const bool isShown = (choice.variants >> static_cast<unsigned>(variants[i]) & 1U) != 0;
        if (choice.findings.has(shared[i]) && !isShown) return false;
    }
    return true;
}

// Turns to the next variants of the findings of the set; false after the last.
bool turnVariants(Variants &variants, const FindingSet &set, Target target) {
    for (std::size_t i = 0; i < variants.size(); ++i) {
        if (!set.has(shared[i])) continue;
        variants[i] = (variants[i] + 1) % variantsOf(shared[i], target);
        if (variants[i] != 0) return true;
    }
    return false;
}

// The wheels of the set; none where the set has a finding that has no part in any of them.
std::vector<Wheel> wheelsOf(Search &s, const FindingSet &set, const Variants &variants) {
    std::vector<Wheel> wheels;
    FindingSet used = s.c.always;
    for (const OpenColumn &column : s.open) {
        Wheel wheel = {&column, {}};
        for (const CellChoice &choice : column.choices) {
            if (!choice.findings.isWithin(set) || !isOf(choice, variants)) continue;
            wheel.choices.push_back(&choice);
            used.add(choice.findings);
        }
        s.budget -= std::ssize(column.choices);
        if (wheel.choices.empty()) continue;
        // The largest sets first: most deployments show all that they do in all columns.
        std::ranges::reverse(wheel.choices);
        wheel.choices.push_back(nullptr);
        wheels.push_back(std::move(wheel));
    }
    if (!set.isWithin(used)) wheels.clear();
    return wheels;
}

// Tries the outcomes of the wheels whose score may have the result.
struct Hunt {
    Search &s;
    const Deviations &deviations;
    std::span<const Wheel> wheels;
    ScoreRange wanted;
    std::vector<ScoreRange> behind = {}; // what the wheels from each on may add to the score
    Fit best = Fit::None;
};

// What a choice adds to the score of the row as the model makes it.
double changeBy(Hunt &h, const Wheel &wheel, const CellChoice *choice, double score) {
    if (!choice) return 0;
    putChoice(h.s, *wheel.column, choice);
    const double change = scoreOf(h.s.c.card, h.s.recoded, h.deviations) - score;
    putChoice(h.s, *wheel.column, nullptr);
    return change;
}

void measure(Hunt &h, std::span<Wheel> wheels, double score) {
    h.behind.assign(wheels.size() + 1, {0, 0});
    for (std::size_t i = wheels.size(); i-- > 0;) {
        double least = 0;
        double most = 0;
        wheels[i].changes.clear();
        for (const CellChoice *const choice : wheels[i].choices) {
            const double change = changeBy(h, wheels[i], choice, score);
            wheels[i].changes.push_back(change);
            least = std::isfinite(change) ? std::min(least, change) : -HUGE_VAL;
            most = std::isfinite(change) ? std::max(most, change) : HUGE_VAL;
        }
        h.behind[i] = {h.behind[i + 1].least + least, h.behind[i + 1].most + most};
    }
}

// No deeper than mostTurned.
void tryOutcomes(Hunt &h, std::size_t i, double score, bool isWhole) {
    constexpr std::int64_t costOfFit = 16;
    h.s.budget -= 1;
    if (h.s.budget < 0 || h.best == Fit::Whole || score + h.behind[i].most < h.wanted.least ||
        score + h.behind[i].least > h.wanted.most) {
        return;
    }
    if (i == h.wheels.size()) {
        h.s.budget -= costOfFit;
        if (!fits(h.s.c, h.s.recoded, h.deviations, h.s.found)) return;
        h.best = isWhole ? Fit::Whole : Fit::Partial;
        return;
    }
    const Wheel &wheel = h.wheels[i];
    for (std::size_t k = 0; k < wheel.choices.size(); ++k) {
        putChoice(h.s, *wheel.column, wheel.choices[k]);
        tryOutcomes(h, i + 1, score + wheel.changes[k], isWhole && wheel.choices[k] != nullptr);
    }
    putChoice(h.s, *wheel.column, nullptr);
}

// How the result is that of some outcome of the columns. Of very many columns, those are left out
// in which only some of the last ones deviate.
Fit fitOf(Search &s, const Deviations &deviations, std::span<Wheel> wheels) {
    const std::size_t turned = std::min(wheels.size(), mostTurned);
    const std::span<Wheel> first = wheels.first(turned);
    const std::span<Wheel> last = wheels.subspan(turned);
    Hunt hunt = {s, deviations, first, scoresOf(s.c, deviations, s.found)};
    for (const bool deviates : {true, false}) {
        for (const Wheel &wheel : last) {
            putChoice(s, *wheel.column, deviates ? wheel.choices.front() : nullptr);
        }
        const double score = scoreOf(s.c.card, s.recoded, deviations);
        measure(hunt, first, score);
        // Larger terms, as the choices may have them, are rounded by more.
        const double grown = hunt.behind[0].most - hunt.behind[0].least;
        const double slack = slackOf(s.c, s.recoded, deviations, grown);
        hunt.wanted.least -= slack;
        hunt.wanted.most += slack;
        tryOutcomes(hunt, 0, score, deviates);
        if (last.empty() || hunt.best != Fit::None) break;
    }
    return hunt.best;
}

Fit fitOf(Search &s, const FindingSet &set) {
    const Deviations deviations = s.c.options.deviations(set);
    Fit best = Fit::None;
    Variants variants{};
    do {
        std::vector<Wheel> wheels = wheelsOf(s, set, variants);
        if (wheels.empty() && !set.isWithin(s.c.always)) continue;
        s.recoded.assign(s.facts.recoded.begin(), s.facts.recoded.end());
        best = std::max(best, fitOf(s, deviations, wheels));
    } while (best != Fit::Whole && turnVariants(variants, set, deviations.target));
    return best;
}

struct Reason {
    FindingSet set;
    Fit fit;
};

// The smallest sets that explain the row.
std::vector<Reason> reasonsOf(Search &s) {
    const std::size_t count = s.possible.size();
    const std::size_t most = count > mostCombined ? 3 : count;
    std::vector<Reason> reasons;
    for (std::size_t size = 1; size <= most && reasons.empty(); ++size) {
        std::vector<char> isChosen(count);
        std::fill_n(isChosen.begin(), size, 1);
        do {
            if (s.budget < 0) return reasons;
            FindingSet set;
            for (std::size_t i = 0; i < count; ++i) {
                if (isChosen[i]) set.add(s.possible[i]);
            }
            if (const Fit fit = fitOf(s, set); fit != Fit::None) reasons.push_back({set, fit});
        } while (std::ranges::prev_permutation(isChosen).found);
    }
    return reasons;
}

// Of sets of one size, those with the fewest findings that are up to the server, for which nothing
// speaks where another cause fits; and of these the ones that hold for all columns.
void keepLikeliest(std::vector<Reason> &reasons) {
    const auto rank = [](const Reason &reason) {
        const auto doubts =
            std::ranges::count_if(uncertain, [&](FindingId id) { return reason.set.has(id); });
        return std::pair(doubts, reason.fit == Fit::Partial);
    };
    if (reasons.empty()) return;
    const auto least = rank(*std::ranges::min_element(reasons, {}, rank));
    std::erase_if(reasons, [&](const Reason &reason) { return rank(reason) != least; });
}

} // namespace

QString explain(Comparison &c, const RowFacts &facts, const Prediction &found) {
    Search search = {c, facts, found};
    openColumns(search);
    findPossible(search);
    std::vector<Reason> reasons = reasonsOf(search);
    if (reasons.empty()) return {};
    keepLikeliest(reasons);
    QStringList names;
    FindingSet all;
    for (const Reason &reason : reasons) {
        names.append(namesOf(reason.set).join(u'+'));
        all.add(reason.set);
    }
    for (const FindingId id : search.possible) {
        if (all.has(id)) ++c.result.explained[id];
    }
    QString reason = names.join(u" or "_s);
    count(c.result.reasons[reason], QString::number(facts.row));
    ++c.result.explainedRows;
    return reason;
}
