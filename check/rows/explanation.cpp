#include "check/rows/explanation.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

constexpr std::size_t mostCombined = 8;       // findings; of more, sets of up to three are tried
constexpr std::size_t mostVaried = 32;        // columns, whose outcomes are combined
constexpr std::int64_t budgetOfRow = 1 << 13; // steps, which take some 0.1 ms

// What depends on the server, its collation or the workbook.
constexpr FindingId uncertain[] = {Capitals, Accents, SinglePrecision, TrueFalse};

// What shows in the same way in all columns, since one server made the results.
constexpr FindingId shared[] = {BooleanNumbers, BooleanBlanks, TextBlanks,
                                OtherBlanks,    NotANumber,    SinglePrecision};
constexpr unsigned allVariants = ~0U;

// How a set of findings explains a row: all cells that it affects deviate, or some of them.
enum class Fit { None, Partial, Whole };

// A column whose cell the target may read differently.
struct OpenColumn {
    std::size_t column;
    std::vector<CellChoice> named = {}; // if the names of columns become the same
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

// What a column becomes if its recodings read the last of the columns with the same name.
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
    std::vector<CellChoice> choices =
        choicesOf(s.c.card, s.c.tests[column], column, cells, named, s.c.options.deviations());
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
        s.recoded[i] = choice ? choice->recoded[s.c.card.recodings[i].rank] : s.facts.recoded[i];
    }
}

// A column with the choices that a set of findings allows; null: as in the model.
struct VariedColumn {
    const OpenColumn *open;
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

// The next combination of variants of the set; false after the last.
bool nextVariants(Variants &variants, const FindingSet &set, Target target) {
    for (std::size_t i = 0; i < variants.size(); ++i) {
        if (!set.has(shared[i])) continue;
        variants[i] = (variants[i] + 1) % variantsOf(shared[i], target);
        if (variants[i] != 0) return true;
    }
    return false;
}

// The columns that the set affects; none if a finding of the set affects none of them.
std::vector<VariedColumn> variedColumns(Search &s, const FindingSet &set,
                                        const Variants &variants) {
    std::vector<VariedColumn> columns;
    FindingSet used = s.c.always;
    for (const OpenColumn &column : s.open) {
        VariedColumn varied = {&column, {}};
        for (const CellChoice &choice : column.choices) {
            if (!choice.findings.isWithin(set) || !isOf(choice, variants)) continue;
            varied.choices.push_back(&choice);
            used.add(choice.findings);
        }
        s.budget -= std::ssize(column.choices);
        if (varied.choices.empty()) continue;
        // The largest sets first: in most deployments a finding holds in all columns.
        std::ranges::reverse(varied.choices);
        varied.choices.push_back(nullptr);
        columns.push_back(std::move(varied));
    }
    if (!set.isWithin(used)) columns.clear();
    return columns;
}

// Tries the combinations of choices whose score may have the result.
struct OutcomeSearch {
    Search &s;
    const Deviations &deviations;
    std::span<const VariedColumn> columns;
    ScoreRange wanted;
    std::vector<ScoreRange> behind = {}; // what the columns from each on may add to the score
    Fit best = Fit::None;
};

// What a choice adds to the score.
double changeBy(OutcomeSearch &h, const VariedColumn &column, const CellChoice *choice,
                double score) {
    if (!choice) return 0;
    putChoice(h.s, *column.open, choice);
    const double change = scoreOf(h.s.c.card, h.s.recoded, h.deviations) - score;
    putChoice(h.s, *column.open, nullptr);
    return change;
}

void measure(OutcomeSearch &h, std::span<VariedColumn> columns, double score) {
    h.behind.assign(columns.size() + 1, {0, 0});
    for (std::size_t i = columns.size(); i-- > 0;) {
        double least = 0;
        double most = 0;
        columns[i].changes.clear();
        for (const CellChoice *const choice : columns[i].choices) {
            const double change = changeBy(h, columns[i], choice, score);
            columns[i].changes.push_back(change);
            least = std::isfinite(change) ? std::min(least, change) : -HUGE_VAL;
            most = std::isfinite(change) ? std::max(most, change) : HUGE_VAL;
        }
        h.behind[i] = {h.behind[i + 1].least + least, h.behind[i + 1].most + most};
    }
}

// No deeper than mostVaried.
void tryOutcomes(OutcomeSearch &h, std::size_t i, double score, bool isWhole) {
    constexpr std::int64_t costOfFit = 16;
    h.s.budget -= 1;
    if (h.s.budget < 0 || h.best == Fit::Whole || score + h.behind[i].most < h.wanted.least ||
        score + h.behind[i].least > h.wanted.most) {
        return;
    }
    if (i == h.columns.size()) {
        h.s.budget -= costOfFit;
        if (!fits(h.s.c, h.s.recoded, h.deviations, h.s.found)) return;
        h.best = isWhole ? Fit::Whole : Fit::Partial;
        return;
    }
    const VariedColumn &column = h.columns[i];
    for (std::size_t k = 0; k < column.choices.size(); ++k) {
        putChoice(h.s, *column.open, column.choices[k]);
        tryOutcomes(h, i + 1, score + column.changes[k], isWhole && column.choices[k] != nullptr);
    }
    putChoice(h.s, *column.open, nullptr);
}

// How a combination of the columns' choices gives the result. In the columns beyond mostVaried, the
// set holds in all or in none.
Fit fitOf(Search &s, const Deviations &deviations, std::span<VariedColumn> columns) {
    const std::size_t varied = std::min(columns.size(), mostVaried);
    const std::span<VariedColumn> first = columns.first(varied);
    const std::span<VariedColumn> last = columns.subspan(varied);
    OutcomeSearch search = {s, deviations, first, scoresOf(s.c, deviations, s.found)};
    for (const bool deviates : {true, false}) {
        for (const VariedColumn &column : last) {
            putChoice(s, *column.open, deviates ? column.choices.front() : nullptr);
        }
        const double score = scoreOf(s.c.card, s.recoded, deviations);
        measure(search, first, score);
        // Larger terms, as the choices may have them, are rounded by more.
        const double grown = search.behind[0].most - search.behind[0].least;
        const double slack = slackOf(s.c, s.recoded, deviations, grown);
        search.wanted.least -= slack;
        search.wanted.most += slack;
        tryOutcomes(search, 0, score, deviates);
        if (last.empty() || search.best != Fit::None) break;
    }
    return search.best;
}

Fit fitOf(Search &s, const FindingSet &set) {
    const Deviations deviations = s.c.options.deviations(set);
    Fit best = Fit::None;
    Variants variants{};
    do {
        std::vector<VariedColumn> columns = variedColumns(s, set, variants);
        if (columns.empty() && !set.isWithin(s.c.always)) continue;
        s.recoded.assign(s.facts.recoded.begin(), s.facts.recoded.end());
        best = std::max(best, fitOf(s, deviations, columns));
    } while (best != Fit::Whole && nextVariants(variants, set, deviations.target));
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

// Of sets of one size, keeps those with the fewest findings that depend on the server, and of these
// the ones that hold for all columns.
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
