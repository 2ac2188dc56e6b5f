#include "check/rows/suspicion.h"

#include "check/rows/probe.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::size_t mostTried = 1 << 20;   // values of one column, by the recodings that read it
constexpr std::int64_t mostSuspected = 1000; // rows that are tested for all suspicions
constexpr std::size_t mostExchanged = 64;    // columns, of which all pairs are tried

// The points of all values and bins of the column.
std::vector<double> possiblePoints(const Scorecard &card, std::size_t column) {
    std::vector<Try> tries = triesOf(card, column);
    tries.resize(std::min(tries.size(), mostTried / card.recodingsOf[column].size()));
    std::vector<double> points;
    points.reserve(tries.size());
    for (const Try &cell : tries) points.push_back(pointsOf(card, column, cellOf(textOf(cell))));
    // Some may be NaN, which has no order.
    std::ranges::sort(points, {},
                      [](double number) { return std::bit_cast<std::uint64_t>(number); });
    points.erase(std::unique(points.begin(), points.end()), points.end());
    return points;
}

using Kind = Suspicion::Kind;

bool isRight(const Comparison &c, const Suspicion &suspicion, const RowFacts &facts,
             const Prediction &found) {
    const std::size_t a = suspicion.column;
    const std::size_t b = suspicion.other;
    const Kind kind = suspicion.kind;
    const auto points = [&](std::size_t column, std::size_t cell) {
        return pointsOf(c.card, column, facts.cells[cell]->cell);
    };
    const double score = facts.expected.score;
    const double others = score - points(a, a);
    if (kind == Kind::Missing) return wouldBeRight(c, others + pointsOf(c.card, a, {}), found);
    if (kind == Kind::OtherValue) {
        return std::ranges::any_of(c.pointsOfColumns[a], [&](double other) {
            return wouldBeRight(c, others + other, found);
        });
    }
    const double change = points(a, b) - points(a, a) + points(b, a) - points(b, b);
    return change != 0 && wouldBeRight(c, score + change, found);
}

// Counts all that would make the row right.
void suspectAll(Comparison &c, const RowFacts &facts, const DifferingRow &row) {
    std::vector<Suspicion> missing;
    std::vector<Suspicion> others;
    const std::size_t columns = c.card.columns.size();
    const auto isFound = [&](const Suspicion &suspicion, std::vector<Suspicion> &list) {
        const bool isOne = isRight(c, suspicion, facts, row.found);
        if (isOne) list.push_back(suspicion);
        return isOne;
    };
    for (std::size_t i = 0; i < columns; ++i) {
        // The double beside a cell is another value, but a likelier cause.
        const bool isOther = !isFound({Kind::Missing, i}, missing) && !row.isLastDigit;
        if (isOther) isFound({Kind::OtherValue, i}, others);
    }
    for (std::size_t a = 0; columns <= mostExchanged && a < columns; ++a) {
        for (std::size_t b = a + 1; b < columns; ++b) isFound({Kind::Exchanged, a, b}, others);
    }
    // More than three causes are no evidence for any. A column is rarely right as missing by
    // chance, so the two lists count apart.
    for (const std::vector<Suspicion> &list : {missing, others}) {
        if (list.size() > 3) continue;
        for (const Suspicion &suspicion : list) ++c.suspicions[suspicion];
    }
}

QString textOf(const Scorecard &card, const Suspicion &suspicion) {
    const auto &[kind, a, b] = suspicion;
    const QString &column = card.columns[a];
    if (kind == Kind::Missing) return u"%1 read as missing"_s.arg(column);
    if (kind == Kind::OtherValue) return u"%1 read as another value"_s.arg(column);
    return u"%1 and %2 exchanged"_s.arg(column, card.columns[b]);
}

} // namespace

bool wouldBeRight(const Comparison &c, double score, const Prediction &found) {
    if (c.options.hasScore() && !isNear(c, score, found.score)) return false;
    if (!c.options.hasProbability()) return true;
    return std::ranges::any_of(std::array{FindingSet(), c.always}, [&](const FindingSet &findings) {
        const Deviations deviations = c.options.deviations(findings);
        return isNear(c, probabilityOf(c.card, score, deviations), found.probability);
    });
}

void suspect(Comparison &c, const RowFacts &facts, const DifferingRow &row) {
    const std::int64_t before = c.result.suspects++;
    if (before < mostSuspected) {
        for (std::size_t i = c.pointsOfColumns.size(); i < c.card.columns.size(); ++i) {
            c.pointsOfColumns.push_back(possiblePoints(c.card, i));
        }
        suspectAll(c, facts, row);
        return;
    }
    if (before == mostSuspected) {
        for (const auto &[suspicion, rows] : c.suspicions) {
            const bool isQuick = suspicion.kind != Kind::OtherValue;
            if (isQuick && 10 * rows >= 9 * mostSuspected) c.leading.push_back(suspicion);
        }
    }
    for (const Suspicion &suspicion : c.leading) {
        c.suspicions[suspicion] += isRight(c, suspicion, facts, row.found) ? 1 : 0;
    }
}

void finishSuspicion(Comparison &c) {
    for (const auto &[suspicion, rows] : c.suspicions) {
        const bool isLeading = std::ranges::find(c.leading, suspicion) != c.leading.end();
        const std::int64_t of =
            isLeading ? c.result.suspects : std::min(c.result.suspects, mostSuspected);
        c.result.suspected.push_back({textOf(c.card, suspicion), rows, of});
    }
    std::ranges::stable_sort(c.result.suspected, std::greater(), &Suspected::rows);
}
