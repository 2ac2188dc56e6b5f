#include "check/rows/comparison.h"

#include "check/rows/explanation.h"
#include "check/rows/suspicion.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr double singleProbability = 1e-6; // that 32 bits hold
constexpr std::size_t mostWorst = 10;
constexpr std::int64_t mostNamed = 5;
constexpr std::int64_t mostSuspected = 1000; // rows that are looked into for a column at fault

// The deviations that are not up to the cells.
std::vector<FindingId> alwaysOf(const Comparison &c, std::span<const Finding> findings) {
    std::vector<FindingId> always;
    for (const Finding &finding : findings) {
        const Targets simulated = finding.targets & kindOf(finding.id).simulated;
        if ((simulated & only(c.options.target)) == 0) continue;
        const bool isOfCell = finding.countsRows() && finding.recoding >= 0;
        const bool isKnown = std::ranges::find(always, finding.id) != always.end();
        if (!isOfCell && !isKnown) always.push_back(finding.id);
    }
    return always;
}

// --- Reading results

ResultRow rowOf(std::string_view key) {
    std::uint32_t check = 2166136261U;
    for (const char c : key) check = (check ^ static_cast<unsigned char>(c)) * 16777619U;
    return {.hash = std::hash<std::string_view>()(key), .check = check, .numbers = {}};
}

std::pair<std::uint64_t, std::uint32_t> identityOf(const ResultRow &row) {
    return {row.hash, row.check};
}

// Marks rows whose key occurred before, and sorts all of them by keys.
void countRepeated(Comparison &c, std::deque<ResultRow> &rows, const QString &place) {
    std::ranges::sort(rows, {},
                      [](const ResultRow &row) { return std::pair(identityOf(row), row.row); });
    for (std::size_t i = 1; i < rows.size(); ++i) {
        if (identityOf(rows[i]) != identityOf(rows[i - 1])) continue;
        rows[i].isSeen = true; // the first of them is the one that counts
        count(c.result.repeated, place.arg(rows[i].row));
    }
}

// Takes the next row of results; false after the last.
bool takeNext(Comparison &c, ResultRow &found) {
    while (c.entries.empty()) {
        if (!c.reader.read(c)) return false;
    }
    found = c.entries.front();
    c.entries.pop_front();
    return true;
}

QString describe(const RowFacts &facts) {
    return facts.key.empty() ? QString::number(facts.row) : QString::fromUtf8(facts.key);
}

bool find(Comparison &c, const RowFacts &facts, ResultRow &found) {
    if (c.options.key.isEmpty()) return takeNext(c, found);
    const ResultRow wanted = rowOf(facts.key);
    const auto at = std::ranges::lower_bound(c.entries, identityOf(wanted), {}, identityOf);
    if (at == c.entries.end() || identityOf(*at) != identityOf(wanted)) {
        c.absent.push_back(wanted);
        c.absent.back().row = facts.row;
        return false;
    }
    if (at->isSeen) count(c.result.repeated, describe(facts));
    at->isSeen = true;
    found = *at;
    return true;
}

// --- Comparing

void keepWorst(Comparison &c, const RowFacts &facts, const Prediction &found) {
    const bool isByScore = c.options.hasScore() && !(c.options.hasProbability() &&
                                                     isNear(c, facts.expected.score, found.score));
    double difference = isByScore ? found.score - facts.expected.score
                                  : found.probability - facts.expected.probability;
    if (std::isnan(difference)) difference = std::numeric_limits<double>::infinity();
    std::vector<ComparedRow> &worst = c.result.worst;
    const auto at = std::ranges::find_if(worst, [&](const ComparedRow &row) {
        return std::abs(row.difference) < std::abs(difference);
    });
    if (at == worst.end() && worst.size() >= mostWorst) return;
    std::vector<std::string> cells;
    for (const Cell &cell : facts.cells) cells.emplace_back(cell.raw);
    const std::vector<Recoded> recoded(facts.recoded.begin(), facts.recoded.end());
    worst.insert(
        at, {facts.row, std::string(facts.key), facts.expected, found, difference, recoded, cells});
    if (worst.size() > mostWorst) worst.pop_back();
}

} // namespace

void count(RowSample &sample, const QString &key) {
    if (++sample.rows <= mostNamed) sample.first.append(key);
}

bool isNear(const Comparison &c, double expected, double found) {
    if (std::isnan(expected) || std::isnan(found)) return std::isnan(expected) && std::isnan(found);
    if (expected == found) return true;
    return std::isfinite(expected) &&
           std::abs(expected - found) <= c.options.tolerance * std::max(1.0, std::abs(expected));
}

bool matches(const Comparison &c, const Prediction &expected, const Prediction &found) {
    return (!c.options.hasScore() || isNear(c, expected.score, found.score)) &&
           (!c.options.hasProbability() || isNear(c, expected.probability, found.probability));
}

// Sums are exact but for their order; in 32 bits, each number and each sum loses half of its last
// bit.
double slackOf(const Comparison &c, std::span<const Recoded> recoded,
               const Deviations &deviations) {
    constexpr double otherOrder = 1e-12;
    constexpr double halfBit = 0x1p-24;
    const SumSize size = sumSizeOf(c.card, recoded, deviations);
    if (!deviations.has(FindingId::SinglePrecision)) return otherOrder * size.largest;
    return halfBit * static_cast<double>(size.terms + 1) * size.total;
}

ScoreRange scoresOf(const Comparison &c, const Deviations &deviations, const Prediction &found) {
    const bool isSingle = deviations.has(FindingId::SinglePrecision);
    if (!c.options.hasScore()) {
        const double tolerance =
            isSingle ? std::max(c.options.tolerance, singleProbability) : c.options.tolerance;
        return scoresWithProbability(c.card, found.probability, tolerance, deviations);
    }
    if (!std::isfinite(found.score)) return {-HUGE_VAL, HUGE_VAL};
    // Twice the tolerance, which is relative to the score that is expected, and what sums of
    // differences may be off by.
    constexpr double rounding = 1e-9;
    const double slack =
        (2 * c.options.tolerance + rounding) * std::max(1.0, std::abs(found.score));
    return {found.score - slack, found.score + slack};
}

bool fits(const Comparison &c, std::span<const Recoded> recoded, const Deviations &deviations,
          const Prediction &found) {
    const bool isSingle = deviations.has(FindingId::SinglePrecision);
    const double score = scoreOf(c.card, recoded, deviations);
    const bool isScore = !c.options.hasScore() || isNear(c, score, found.score);
    if (!isScore && !isSingle) return false;
    if (isScore && (!c.options.hasProbability() ||
                    isNear(c, probabilityOf(c.card, score, deviations), found.probability))) {
        return true;
    }
    const double slack = slackOf(c, recoded, deviations);
    if (!isScore && !(std::abs(score - found.score) <= slack)) return false;
    if (!c.options.hasProbability()) return true;
    const double tolerance =
        isSingle ? std::max(c.options.tolerance, singleProbability) : c.options.tolerance;
    return hasProbabilityNear(c.card, score, slack, found.probability, tolerance, deviations);
}

void Comparison::takeCell(std::size_t place, std::string_view bytes) {
    const bool hasKey = !options.key.isEmpty();
    if (hasKey && place == 0) {
        const ResultRow key = rowOf(trimmed(bytes));
        unfinished.hash = key.hash;
        unfinished.check = key.check;
        return;
    }
    // A result that is read wrongly cannot happen to be the one that is expected.
    const DecimalMark mark = options.hasDecimalComma ? DecimalMark::Either : DecimalMark::Point;
    const Cell cell = cellOf(bytes, options.missing, mark);
    const bool isScore = place == (hasKey ? 1 : 0) && options.hasScore();
    (isScore ? unfinished.numbers.score : unfinished.numbers.probability) =
        cell.isNumber ? cell.number : noNumber;
    if (cell.isNumber) return;
    const ResultCells holds = cell.text.empty() ? ResultCells::Empty : ResultCells::NoNumber;
    unfinished.cells = std::max(unfinished.cells, holds);
}

void Comparison::endRow() {
    unfinished.row = reader.row;
    entries.push_back(std::exchange(unfinished, {}));
}

QString openResults(Comparison &c, std::span<const Finding> findings) {
    c.always = alwaysOf(c, findings);
    c.tests = testsOfColumns(c.card, findings);
    c.hasAlikeNames = std::ranges::any_of(findings, [&](const Finding &finding) {
        return finding.id == FindingId::NamesAlike &&
               (finding.targets & only(c.options.target)) != 0;
    });
    if (c.options.hasProbability() && !c.card.hasProbability()) {
        return u"The model has no probability; use --score."_s;
    }
    QStringList wanted = {c.options.key, c.options.score, c.options.probability};
    wanted.removeAll(QString());
    c.reader.hashesBytes = c.options.hashesFiles;
    // Without a key, both files are read together.
    if (!c.options.key.isEmpty()) c.reader.shownAs = u"results";
    const QString problem = c.reader.open(c.options.results, c.options.delimiters(), wanted);
    if (!problem.isEmpty() || c.options.key.isEmpty()) return problem;
    while (c.reader.read(c)) continue;
    countRepeated(c, c.entries, u"row %1 of the results"_s);
    return c.reader.problem;
}

void compareRow(Comparison &c, const RowFacts &facts) {
    ResultRow found;
    if (!find(c, facts, found)) {
        count(c.result.missing, describe(facts));
        return;
    }
    ++c.result.rows;
    // An empty cell is right where the model gives NaN, and is never NaN that a target shows.
    const Prediction &numbers = found.numbers;
    const bool isReadable = found.cells == ResultCells::Numbers;
    const bool mayBeMissing = found.cells == ResultCells::Empty && c.options.target == Target::Sas;
    const Deviations none = {{}, c.options.target, c.options.sql};
    if (found.cells != ResultCells::NoNumber &&
        (matches(c, facts.expected, numbers) || fits(c, facts.recoded, none, numbers))) {
        ++c.result.equal;
    } else if (!(isReadable || mayBeMissing) || !explain(c, facts, numbers)) {
        if (++c.result.unexplained <= mostSuspected && isReadable) suspect(c, facts, numbers);
        keepWorst(c, facts, numbers);
    }
}

QString finishComparison(Comparison &c) {
    const auto isExtra = [&](const ResultRow &row) {
        if (!row.isSeen) count(c.result.extra, QString::number(row.row));
    };
    std::ranges::sort(c.entries, {}, &ResultRow::row);
    std::ranges::for_each(std::exchange(c.entries, {}), isExtra);
    ResultRow row;
    while (takeNext(c, row)) isExtra(row);
    countRepeated(c, c.absent, u"row %1"_s);
    c.result.suspected.assign(c.suspectCounts.begin(), c.suspectCounts.end());
    std::ranges::stable_sort(c.result.suspected, std::greater(),
                             [](const auto &fault) { return fault.second; });
    return c.reader.problem;
}
