#include "check/rows/causes.h"

#include "check/evaluation/target_texts.h"
#include "check/rows/number_maps.h"
#include "check/rows/suspicion.h"

#include <QSet>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

// --- Positions

// Of each position, the share of its equal rows that its amount would make unequal. In a comparison
// of scores, which has no sample, that is every row.
std::vector<double> sharesAgainst(const Comparison &c, std::size_t recoding,
                                  std::span<const double> amounts) {
    std::vector<double> shares(amounts.size(), c.options.hasScore() ? 1 : 0);
    std::vector<std::int64_t> sampled(amounts.size());
    for (const EqualSample::Row &row : c.equal.rows) {
        const std::uint32_t i = row.positions[recoding];
        if (std::isnan(amounts[i])) continue;
        const double probability = probabilityOf(c.card, row.score + amounts[i]);
        const double isAgainst = isNear(c, probability, row.probability) ? 0 : 1;
        shares[i] += (isAgainst - shares[i]) / static_cast<double>(++sampled[i]);
    }
    return shares;
}

// The amount by which rows of each position differ; NaN if there is none.
std::vector<double> amountsOf(std::span<const PositionRows> positions) {
    std::vector<double> amounts;
    amounts.reserve(positions.size());
    for (const PositionRows &rows : positions) {
        const auto [least, most] = rows.amount;
        const bool isMoved = (least > 0 || most < 0) && std::isfinite(most - least);
        amounts.push_back(rows.agree > 0 && isMoved ? shortestBetween(least, most) : noNumber);
    }
    return amounts;
}

// The amounts by which the positions of a recoding differ, each in nearly all of its rows. A
// probability alone may be equal although its score is off.
Cause fitOf(const Comparison &c, std::size_t recoding, std::span<const std::int64_t> all) {
    const std::span<const PositionRows> positions = c.positionRows[recoding];
    const std::vector<double> amounts = amountsOf(positions);
    const std::vector<double> against = sharesAgainst(c, recoding, amounts);
    Cause fit = {.kind = Cause::Kind::Points, .recoding = recoding};
    std::size_t reached = 0;
    ScoreRange shared = {-HUGE_VAL, HUGE_VAL};
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const PositionRows &rows = positions[i];
        reached += all[i] > rows.others ? 1 : 0;
        if (std::isnan(amounts[i])) continue;
        const auto equal = static_cast<double>(all[i] - rows.others - rows.differing);
        const double compared = static_cast<double>(rows.differing) + against[i] * equal;
        if (10 * static_cast<double>(rows.agree) < 9 * compared) continue;
        fit.rows += rows.agree;
        fit.amounts.emplace_back(i, amounts[i]);
        shared = overlap(shared, rows.amount);
    }
    // The same amount everywhere is no evidence for the recoding. A wrong score may have the right
    // probability.
    const bool isShared =
        fit.amounts.size() == reached || (fit.amounts.size() > 1 && !c.options.hasScore());
    if (isShared && shared.least <= shared.most) fit.rows = 0;
    return fit;
}

// The coefficient that explains the amounts of all reached positions; NaN if none does.
double coefficientOf(const Comparison &c, const Cause &fit, std::span<const std::int64_t> all) {
    const Recoding &recoding = c.card.recodings[fit.recoding];
    const std::span<const PositionRows> positions = c.positionRows[fit.recoding];
    ScoreRange change = {-HUGE_VAL, HUGE_VAL};
    std::size_t next = 0; // of the amounts
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const double y = recoding.y[i];
        const bool isMoved = next < fit.amounts.size() && fit.amounts[next].first == i;
        if (all[i] > positions[i].others && isMoved != (y != 0)) return noNumber;
        if (!isMoved) continue;
        const ScoreRange &amount = positions[i].amount;
        const auto [a, b] = std::minmax({amount.least / y, amount.most / y});
        change = overlap(change, {a, b});
        ++next;
    }
    if (!(change.least <= change.most) || next < 2) return noNumber;
    return shortestBetween(recoding.coefficient + change.least, recoding.coefficient + change.most);
}

std::vector<Cause> pointsOf(const Comparison &c,
                            std::span<const std::vector<std::int64_t>> positions) {
    std::vector<Cause> causes;
    for (std::size_t i = 0; i < c.positionRows.size(); ++i) {
        Cause cause = fitOf(c, i, positions[i]);
        const auto evidence = cause.rows - std::ssize(cause.amounts);
        const bool isLikely = 2 * cause.rows > std::ssize(c.differing);
        if (evidence < leastRows - 1 || !isLikely) continue;
        cause.coefficient = coefficientOf(c, cause, positions[i]);
        if (!std::isnan(cause.coefficient)) cause.kind = Cause::Kind::Coefficient;
        causes.push_back(cause);
    }
    // Those that assume least come first.
    std::ranges::stable_sort(causes, {}, [](const Cause &cause) {
        const bool isPoints = cause.kind == Cause::Kind::Points;
        return std::pair(-cause.rows, isPoints ? cause.amounts.size() : 1);
    });
    return causes;
}

// --- Order

// How many rows would be right if the results of one row were those of the next, or the reverse.
Cause shiftOf(const Comparison &c, bool isLess) {
    Cause cause = {.kind = isLess ? Cause::Kind::NextRow : Cause::Kind::RowBefore};
    for (std::size_t i = 0; i + 1 < c.differing.size(); ++i) {
        const DifferingRow &row = c.differing[i];
        const DifferingRow &next = c.differing[i + 1];
        if (next.row != row.row + 1) continue;
        const DifferingRow &from = isLess ? row : next;
        if (!matches(c, (isLess ? next : row).expected, from.found)) continue;
        if (cause.rows++ == 0) cause.row = row.row;
    }
    return cause;
}

Cause orderOf(const Comparison &c) {
    Cause cause = {.kind = Cause::Kind::Order};
    const bool isScore = c.options.hasScore();
    const auto less = [&](const Prediction &a, const Prediction &b) {
        return numberOf(a, isScore) < numberOf(b, isScore);
    };
    std::vector<Prediction> expected;
    std::vector<Prediction> found;
    for (const DifferingRow &row : c.differing) {
        if (!std::isnan(numberOf(row.expected, isScore))) expected.push_back(row.expected);
        if (!std::isnan(numberOf(row.found, isScore))) found.push_back(row.found);
    }
    std::ranges::sort(expected, less);
    std::ranges::sort(found, less);
    const auto pairsAt = [&](double share) {
        std::int64_t pairs = 0;
        for (std::size_t i = 0, j = 0; i < expected.size() && j < found.size();) {
            const auto near = [&](double x) { return x + share * std::max(1.0, std::abs(x)); };
            const Prediction moved = {near(found[j].score), near(found[j].probability)};
            if (matches(c, expected[i], moved)) {
                ++pairs;
                ++i;
                ++j;
            } else {
                ++(less(expected[i], moved) ? i : j);
            }
        }
        return pairs;
    };
    cause.rows = pairsAt(0);
    // Within a large tolerance, all numbers have a partner.
    if (4 * pairsAt(2 * c.options.tolerance) > 3 * cause.rows) cause.rows = 0;
    return cause;
}

// Titles that both files have, except those of the model and of the results' numbers.
QStringList keysOf(const Comparison &c, const CsvReader &rows) {
    constexpr qsizetype most = 3;
    const QStringList titles = c.reader.titlesOfFile();
    QSet<QString> possible(titles.begin(), titles.end());
    possible -= {c.options.score, c.options.probability, QString()};
    for (const QString &column : c.card.columns) possible.remove(column);
    QStringList keys = rows.titlesOfFile();
    keys.removeIf([&](const QString &title) { return !possible.contains(title); });
    return keys.first(std::min(most, keys.size()));
}

std::vector<Cause> joinsOf(const Comparison &c) {
    std::vector<Cause> causes;
    if (!c.options.key.isEmpty()) return causes;
    const std::int64_t needed = std::max<std::int64_t>(2, std::ssize(c.differing) * 9 / 10);
    for (const Cause &cause : {shiftOf(c, true), shiftOf(c, false), orderOf(c)}) {
        if (cause.rows >= needed && causes.empty()) causes.push_back(cause);
    }
    return causes;
}

// --- Cells

bool isRightBeside(const Comparison &c, std::span<const std::vector<double> *const> columns,
                   double score, const Prediction &found) {
    if (columns.empty()) return wouldBeRight(c, score, found);
    return isRightBeside(c, columns.subspan(1), score, found) ||
           std::ranges::any_of(*columns[0], [&](double change) {
               return isRightBeside(c, columns.subspan(1), score + change, found);
           });
}

} // namespace

void keepEqual(Comparison &c, std::span<const Recoded> recoded, const Prediction &numbers) {
    constexpr std::size_t mostRows = 1000;
    constexpr std::size_t mostPositions = 1 << 20; // in all of them
    if (c.options.hasScore() || c.result.equal % c.equal.spacing != 0) return;
    std::vector<EqualSample::Row> &rows = c.equal.rows;
    EqualSample::Row row = {numbers.score, numbers.probability};
    for (const Recoded &cell : recoded) row.positions.push_back(cell.position);
    rows.push_back(std::move(row));
    if (rows.size() < std::min(mostRows, mostPositions / std::max<std::size_t>(recoded.size(), 1)))
        return;
    c.equal.spacing *= 2;
    std::erase_if(rows, [isEven = true](const EqualSample::Row &) mutable {
        return !std::exchange(isEven, !isEven);
    });
}

void keepRow(Comparison &c, std::span<const Recoded> recoded, const DifferingRow *row) {
    const bool isKept = row && c.differing.size() < mostLookedAt;
    if (isKept) c.differing.push_back(*row);
    const ScoreRange amount = isKept ? amountOf(c, *row) : ScoreRange{HUGE_VAL, -HUGE_VAL};
    const bool isAmount = amount.least <= amount.most;
    for (std::size_t i = 0; i < recoded.size(); ++i) {
        PositionRows &rows = c.positionRows[i][recoded[i].position];
        ++(isKept ? rows.differing : rows.others);
        const ScoreRange both = isAmount ? overlap(rows.amount, amount) : amount;
        if (both.least <= both.most) {
            rows.amount = both;
            ++rows.agree;
            ++rows.votes;
        } else if (isAmount && rows.votes-- == 0) {
            rows.amount = amount;
            rows.agree = 1;
            rows.votes = 1;
        }
    }
}

std::vector<double> changesBeside(const Scorecard &card, std::size_t column, const Cell &cell) {
    std::vector<double> changes;
    if (!cell.isNumber || !std::isfinite(cell.number)) return changes;
    for (const double to : {-HUGE_VAL, HUGE_VAL}) {
        Cell beside = cell;
        beside.number = std::nextafter(cell.number, to);
        const double change = pointsOf(card, column, beside) - pointsOf(card, column, cell);
        if (change != 0) changes.push_back(change);
    }
    return changes;
}

bool isRightByLastDigit(const Comparison &c, std::span<const CellFacts *const> cells, double score,
                        const Prediction &found) {
    constexpr std::size_t mostBeside = 6; // columns, of whose cells all combinations are tried
    std::array<const std::vector<double> *, mostBeside> columns{};
    std::size_t count = 0;
    double reach = 0;
    for (const CellFacts *const cell : cells) {
        if (cell->beside.empty() || count == mostBeside) continue;
        columns[count++] = &cell->beside;
        for (const double change : cell->beside) reach += std::abs(change);
    }
    const double slack = toleranceOf(c) * std::max(1.0, std::abs(score) + reach);
    const bool isOutOfReach =
        c.options.hasScore() && std::abs(found.score - score) > reach + 2 * slack;
    return count > 0 && !isOutOfReach &&
           isRightBeside(c, std::span(columns).first(count), score, found);
}

std::vector<Cause> causesOf(const Comparison &c,
                            std::span<const std::vector<std::int64_t>> positions,
                            const CsvReader &rows) {
    std::vector<Cause> causes = mapsOf(c);
    std::vector<Cause> points = pointsOf(c, positions);
    // If some rows are equal, an amount is more likely that of a value.
    const bool pointsFirst =
        !points.empty() && c.result.equal > 0 &&
        (causes.empty() || (!isPlain(causes[0]) && points[0].rows >= causes[0].rows));
    if (pointsFirst) {
        causes = std::move(points);
    } else if (causes.empty() || causes[0].rows < std::ssize(c.differing)) {
        std::ranges::move(points, std::back_inserter(causes));
    }
    const auto lastDigits = std::ranges::count_if(c.differing, &DifferingRow::isLastDigit);
    if (lastDigits > 0 && isEnough(lastDigits, c.differing.size())) {
        causes.insert(causes.begin(), {.kind = Cause::Kind::LastDigit, .rows = lastDigits});
    }
    const auto isWhole = [&](const Cause &cause) { return cause.rows == std::ssize(c.differing); };
    if (std::ranges::none_of(causes, isWhole)) {
        std::ranges::move(joinsOf(c), std::back_inserter(causes));
    }
    std::ranges::stable_sort(causes, std::greater(), &Cause::rows);
    // Other causes make some of the same rows right by chance.
    std::erase_if(causes, [most = causes.empty() ? 0 : causes[0].rows](const Cause &cause) {
        return 2 * cause.rows < most;
    });
    if (causes.size() > mostCauses) causes.resize(mostCauses);
    const bool isJoin = std::ranges::any_of(
        causes, [](const Cause &cause) { return cause.kind >= Cause::Kind::NextRow; });
    const bool isUneven = c.result.missing.rows > 0 || c.result.extra.rows > 0;
    const bool isOpen = causes.empty() && !c.differing.empty();
    const bool mayNeedKey = c.options.key.isEmpty() && (isJoin || isUneven || isOpen);
    const QStringList keys = mayNeedKey ? keysOf(c, rows) : QStringList();
    if (!keys.empty()) causes.push_back({.kind = Cause::Kind::KeyColumn, .texts = keys});
    return causes;
}
