#include "check/rows/cell_effects.h"

#include <algorithm>

namespace {

using enum FindingId;

constexpr std::size_t mostCombined = 10; // findings of one cell, whose sets are all tried

using Outcome = std::vector<Recoded>;

// What the cells of a column become, by sets of findings: the bits of a mask are their indexes.
struct Outcomes {
    std::vector<FindingId> ids;
    std::vector<Outcome> ofMask = {};

    FindingSet setOf(std::size_t mask) const {
        FindingSet set;
        for (std::size_t i = 0; i < ids.size(); ++i) {
            if ((mask >> i & 1) != 0) set.add(ids[i]);
        }
        return set;
    }
};

// The findings that may affect one of the cells: none for most, which then cost no memory.
std::vector<FindingId> affecting(const Scorecard &card, const ColumnTests &tests,
                                 std::size_t column, Cells cells, const Deviations &target) {
    std::vector<FindingId> ids;
    for (const FindingId id : tests.simulated[static_cast<std::size_t>(target.target)]) {
        const auto mayAffectIt = [&](std::size_t i) {
            return mayAffect(id, card.recodings[i], *cells[card.recodings[i].rank], target);
        };
        const bool isPossible = std::ranges::any_of(card.recodingsOf[column], mayAffectIt);
        if (isPossible && ids.size() < mostCombined) ids.push_back(id);
    }
    return ids;
}

Outcomes outcomesOf(const Scorecard &card, std::size_t column, Cells cells,
                    std::vector<FindingId> ids, Deviations deviations) {
    Outcomes outcomes = {.ids = std::move(ids)};
    outcomes.ofMask.resize(std::size_t(1) << outcomes.ids.size());
    for (std::size_t mask = 0; mask < outcomes.ofMask.size(); ++mask) {
        deviations.findings = outcomes.setOf(mask);
        for (const std::size_t i : card.recodingsOf[column]) {
            const Recoding &recoding = card.recodings[i];
            outcomes.ofMask[mask].push_back(recode(recoding, *cells[recoding.rank], deviations));
        }
    }
    return outcomes;
}

std::size_t bitOf(const Outcomes &outcomes, FindingId id) {
    const auto at = std::ranges::find(outcomes.ids, id);
    return at == outcomes.ids.end() ? 0 : std::size_t(1) << (at - outcomes.ids.begin());
}

bool affectsAlone(const Outcomes &outcomes, FindingId id, std::size_t rank) {
    std::size_t mask = bitOf(outcomes, id);
    // A text that HTML reads as above all bounds reaches the last score of a long array too.
    if (id == ArrayTooLong) mask |= bitOf(outcomes, NotANumber);
    return differ(outcomes.ofMask[mask][rank], outcomes.ofMask[0][rank]);
}

bool affects(const Outcomes &outcomes, FindingId id, std::size_t rank) {
    const std::size_t bit = bitOf(outcomes, id);
    if (bit == 0) return false;
    for (std::size_t mask = 0; mask < outcomes.ofMask.size(); ++mask) {
        if ((mask & bit) != 0) continue;
        if (differ(outcomes.ofMask[mask][rank], outcomes.ofMask[mask | bit][rank])) return true;
    }
    return false;
}

// Whether a finding affects the cell whatever a target makes of it.
bool isAffectedAnyhow(const Scorecard &card, std::size_t column, const CellTest &test,
                      const Cell &cell, std::span<const Recoded> meant) {
    const auto isUnlisted = [&](std::size_t i) {
        const Recoding &recoding = card.recodings[i];
        return !recoding.variable->isCategorical || meant[recoding.rank].position == 0;
    };
    switch (test.id) {
    case NotANumber:
        return !cell.text.empty() && !cell.isNumber;
    case NotListed:
        return !cell.text.empty() && std::ranges::all_of(card.recodingsOf[column], isUnlisted);
    case BooleanNumbers:
        // A text equals neither number, even if it scores the same.
        return !cell.text.empty() && !cell.isNumber;
    default:
        return false;
    }
}

void makeUnique(std::vector<std::size_t> &findings) {
    std::ranges::sort(findings);
    findings.erase(std::unique(findings.begin(), findings.end()), findings.end());
}

int mostVariants(std::span<const FindingId> ids, Target target) {
    int most = 1;
    for (const FindingId id : ids) most = std::max(most, variantsOf(id, target));
    return most;
}

// Adds an outcome, unless a smaller set has it in the same variant.
void addChoice(std::vector<CellChoice> &choices, const FindingSet &set, const Outcome &outcome,
               unsigned variant) {
    for (CellChoice &choice : choices) {
        const bool isSmaller = choice.findings.isWithin(set);
        if (!isSmaller || !std::ranges::equal(choice.recoded, outcome, std::not_fn(differ)))
            continue;
        const bool isSame = set.isWithin(choice.findings);
        if (isSame) choice.variants |= variant;
        if ((choice.variants & variant) != 0) return;
    }
    choices.push_back({set, outcome, variant});
}

} // namespace

std::vector<ColumnTests> testsOfColumns(const Scorecard &card, std::span<const Finding> findings) {
    std::vector<ColumnTests> columns(card.columns.size());
    const auto addSimulated = [](ColumnTests &column, FindingId id, Targets targets) {
        for (const Target target : listTargets(targets & kindOf(id).simulated)) {
            std::vector<FindingId> &ids = column.simulated[static_cast<std::size_t>(target)];
            if (std::ranges::find(ids, id) == ids.end()) ids.push_back(id);
        }
    };
    for (std::size_t i = 0; i < findings.size(); ++i) {
        const Finding &finding = findings[i];
        if (finding.id == SinglePrecision) {
            for (ColumnTests &column : columns) addSimulated(column, finding.id, finding.targets);
        }
        if (finding.recoding < 0 || !finding.countsRows() || finding.id == NamesAlike) continue;
        const Recoding &recoding = card.recodings[static_cast<std::size_t>(finding.recoding)];
        ColumnTests &column = columns[recoding.column];
        column.tests.push_back({i, finding.id, finding.targets, recoding.rank});
        addSimulated(column, finding.id, finding.targets);
    }
    return columns;
}

CellFindings findingsOf(const Scorecard &card, const ColumnTests &tests, std::size_t column,
                        Cells cells, std::span<const Recoded> meant, const SqlReading &sql) {
    CellFindings found;
    if (tests.tests.empty()) return found;
    for (const CellTest &test : tests.tests) {
        const bool isAffected = isAffectedAnyhow(card, column, test, *cells[0], meant);
        if (isAffected) found.alone.push_back(test.finding);
    }
    for (std::size_t i = 0; i < targetCount; ++i) {
        if (tests.simulated[i].empty()) continue;
        const auto target = static_cast<Target>(i);
        Deviations deviations = {{}, target, sql};
        std::vector<FindingId> ids = affecting(card, tests, column, cells, deviations);
        if (ids.empty()) continue;
        // Servers compare texts differently; the dialect's own counts.
        const int variants = target == Target::Sql ? 1 : mostVariants(ids, target);
        for (int variant = 0; variant < variants; ++variant) {
            deviations.variant = variant;
            const Outcomes outcomes = outcomesOf(card, column, cells, ids, deviations);
            for (const CellTest &test : tests.tests) {
                if ((test.targets & only(target)) == 0) continue;
                if (affectsAlone(outcomes, test.id, test.rank)) {
                    found.alone.push_back(test.finding);
                } else if (affects(outcomes, test.id, test.rank)) {
                    found.together.push_back(test.finding);
                }
            }
        }
    }
    makeUnique(found.alone);
    makeUnique(found.together);
    std::erase_if(found.together, [&](std::size_t finding) {
        return std::ranges::binary_search(found.alone, finding);
    });
    return found;
}

std::vector<CellChoice> choicesOf(const Scorecard &card, const ColumnTests &tests,
                                  std::size_t column, Cells cells, std::span<const Recoded> meant,
                                  const Deviations &target) {
    std::vector<CellChoice> choices;
    const std::vector<FindingId> ids = affecting(card, tests, column, cells, target);
    if (ids.empty()) return choices;
    Deviations deviations = target;
    for (int variant = 0; variant < mostVariants(ids, target.target); ++variant) {
        deviations.variant = variant;
        const unsigned bit = 1U << static_cast<unsigned>(variant);
        const Outcomes outcomes = outcomesOf(card, column, cells, ids, deviations);
        for (std::size_t mask = 1; mask < outcomes.ofMask.size(); ++mask) {
            const Outcome &outcome = outcomes.ofMask[mask];
            if (std::ranges::equal(outcome, meant, std::not_fn(differ))) continue;
            addChoice(choices, outcomes.setOf(mask), outcome, bit);
        }
    }
    return choices;
}
