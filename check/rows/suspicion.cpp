#include "check/rows/suspicion.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::size_t mostTried = 1 << 20; // values of one column, by the recodings that read it
constexpr std::size_t mostExchanged = 64;  // columns, of which all pairs are tried

// What the column adds to the score.
double pointsOf(const Scorecard &card, std::size_t column, const Cell &cell) {
    double points = 0;
    for (const std::size_t i : card.recodingsOf[column]) {
        points += card.recodings[i].coefficient * recode(card.recodings[i], cell).score;
    }
    return points;
}

// A cell feeds all recodings of its column: the points of all values, bounds and their neighbours.
std::vector<double> possiblePoints(const Scorecard &card, std::size_t column) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::size_t most = mostTried / card.recodingsOf[column].size();
    std::vector<double> points;
    const auto tryCell = [&](std::string_view text) {
        if (points.size() < most) points.push_back(pointsOf(card, column, cellOf(text)));
    };
    for (const std::size_t i : card.recodingsOf[column]) {
        for (const QStringView value : card.recodings[i].listed)
            tryCell(value.toUtf8().toStdString());
        for (const double bound : card.recodings[i].x) {
            for (const double to : {-infinity, bound, infinity}) {
                char text[32];
                const double number = std::nextafter(bound, to);
                tryCell({text, std::to_chars(text, std::end(text), number).ptr});
            }
        }
    }
    // Some may be NaN, which has no order.
    std::ranges::sort(points, {},
                      [](double number) { return std::bit_cast<std::uint64_t>(number); });
    points.erase(std::unique(points.begin(), points.end()), points.end());
    return points;
}

void suspectColumns(const Comparison &c, const RowFacts &facts, const Prediction &found,
                    QStringList &missing, QStringList &faults) {
    for (std::size_t i = 0; i < c.card.columns.size(); ++i) {
        const double others = facts.expected.score - pointsOf(c.card, i, facts.cells[i]->cell);
        const auto isRight = [&](double points) { return wouldBeRight(c, others + points, found); };
        if (isRight(pointsOf(c.card, i, {}))) {
            missing.append(u"%1 read as missing"_s.arg(c.card.columns[i]));
        } else if (std::ranges::any_of(c.pointsOfColumns[i], isRight)) {
            faults.append(u"%1 read as another value"_s.arg(c.card.columns[i]));
        }
    }
}

void suspectPairs(const Comparison &c, const RowFacts &facts, const Prediction &found,
                  QStringList &faults) {
    const std::vector<QString> &columns = c.card.columns;
    const auto points = [&](std::size_t column, std::size_t cell) {
        return pointsOf(c.card, column, facts.cells[cell]->cell);
    };
    if (columns.size() > mostExchanged) return;
    for (std::size_t a = 0; a < columns.size(); ++a) {
        for (std::size_t b = a + 1; b < columns.size(); ++b) {
            const double change = points(a, b) - points(a, a) + points(b, a) - points(b, b);
            if (change == 0 || !wouldBeRight(c, facts.expected.score + change, found)) continue;
            faults.append(u"%1 and %2 exchanged"_s.arg(columns[a], columns[b]));
        }
    }
}

} // namespace

bool wouldBeRight(const Comparison &c, double score, const Prediction &found) {
    if (c.options.hasScore() && !isNear(c, score, found.score)) return false;
    if (!c.options.hasProbability()) return true;
    Deviations always = {{}, c.options.target, c.options.sql};
    const auto isRight = [&] {
        return isNear(c, probabilityOf(c.card, score, always), found.probability);
    };
    if (isRight()) return true;
    for (const FindingId id : c.always) always.findings.add(id);
    return isRight();
}

void suspect(Comparison &c, const RowFacts &facts, const Prediction &found) {
    for (std::size_t i = c.pointsOfColumns.size(); i < c.card.columns.size(); ++i) {
        c.pointsOfColumns.push_back(possiblePoints(c.card, i));
    }
    QStringList missing;
    QStringList faults;
    suspectColumns(c, facts, found, missing, faults);
    suspectPairs(c, facts, found, faults);
    // More than three causes are no evidence for any. Few columns are right as missing by chance,
    // so that others speak against none of these.
    for (const QStringList &list : {missing, faults}) {
        if (list.size() > 3) continue;
        for (const QString &fault : list) ++c.suspectCounts[fault];
    }
}
