#include "check/rows/probe.h"

#include "check/evaluation/target_texts.h"
#include "check/rows/csv_reader.h"
#include "check/rows/csv_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <numeric>

using namespace Qt::Literals::StringLiterals;

namespace {

// --- Cells

// The next number to one side. Engines differ in how they read denormal numbers; the one next to 0
// is a normal number in 32 bits too.
double beside(double bound, double way) {
    constexpr double nextToZero = 1e-30;
    const double next = std::nextafter(bound, way);
    return std::isnormal(next) || std::isinf(next) ? next : std::copysign(nextToZero, way);
}

// A number with few digits between two others; NaN if none lies there.
double between(double least, double most) {
    return shortestBetween(std::nextafter(least, HUGE_VAL), std::nextafter(most, -HUGE_VAL));
}

// Without exponent if that is not too long: programs differ in how they read exponents.
std::string digitsOf(double number) {
    constexpr double least = 1e-30;
    constexpr double most = 1e22;
    const double size = std::abs(number);
    const bool isPlain = size == 0 || (size >= least && size < most);
    const auto format = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
    char text[64];
    char *const end = std::to_chars(text, std::end(text), number + 0.0, format).ptr; // no -0
    return {text, end};
}

void addNumbers(std::vector<Try> &tries, std::span<const double> codes,
                std::vector<double> bounds) {
    std::erase_if(bounds, [](double bound) { return !std::isfinite(bound); });
    std::ranges::sort(bounds);
    bounds.erase(std::unique(bounds.begin(), bounds.end()), bounds.end());
    for (const double code : codes) tries.push_back({Trial::Code, code});
    const auto margin = [](double bound) { return 2 * std::max(1.0, std::abs(bound)); };
    double last = bounds.empty() ? -1 : bounds.front() - margin(bounds.front());
    for (const double bound : bounds) {
        tries.insert(tries.end(), {{Trial::Between, between(last, bound)},
                                   {Trial::Below, beside(bound, -HUGE_VAL), bound},
                                   {Trial::Bound, bound, bound},
                                   {Trial::Above, beside(bound, HUGE_VAL), bound}});
        last = bound;
    }
    tries.push_back({Trial::Between, between(last, last + margin(last))});
    std::erase_if(tries, [](const Try &cell) { return !std::isfinite(cell.number); });
    std::ranges::sort(tries, {}, [](const Try &a) { return std::pair(a.number, a.trial); });
    const auto isAgain = [](const Try &a, const Try &b) { return a.number == b.number; };
    tries.erase(std::unique(tries.begin(), tries.end(), isAgain), tries.end());
}

// --- From the least score to the highest

// A cell, and what it adds to the score.
struct Level {
    std::size_t cell = 0; // its index among the tries
    double points = 0;
};

struct ProbeColumn {
    std::vector<Try> tries;
    std::vector<Level> levels; // of all cells, each number of points once
    std::vector<Level> plain;  // of plain cells
    std::size_t usual = 0;     // the cell of rows that try another column
};

// No finding affects these cells, so that a row shows only what it tries.
bool isPlain(const Try &cell) {
    return cell.trial == Trial::Between || cell.trial == Trial::Value;
}

// What each cell of the column adds; NaN and infinity are left out.
std::vector<Level> levelsOf(const Scorecard &card, std::size_t column, std::span<const Try> tries) {
    std::vector<Level> levels;
    for (std::size_t i = 0; i < tries.size(); ++i) {
        const double points = pointsOf(card, column, cellOf(textOf(tries[i])));
        if (std::isfinite(points)) levels.push_back({i, points});
    }
    return levels;
}

// Sorted by points, each number of points once, if possible with a plain cell. Never empty.
std::vector<Level> ranked(std::vector<Level> levels, std::span<const Try> tries) {
    std::ranges::stable_sort(levels, {}, [&](const Level &level) {
        return std::pair(level.points, !isPlain(tries[level.cell]));
    });
    const auto isAgain = [](const Level &a, const Level &b) { return a.points == b.points; };
    levels.erase(std::unique(levels.begin(), levels.end(), isAgain), levels.end());
    if (levels.empty()) levels.push_back({tries.size() - 1});
    return levels;
}

struct Probe {
    const Scorecard &card;
    std::vector<ProbeColumn> columns;
    std::vector<std::size_t> order = {}; // of the columns: the widest range of points first
    CsvWriter file = {};
    std::int64_t rows = 0;
};

// One cell of each column.
struct Choice {
    std::vector<std::size_t> cells;
    double score = 0; // but for rounding
};

using LevelsOf = std::vector<Level> ProbeColumn::*;

// Cells whose score is near this one, and not above it if possible. Each column fills what those
// before it leave.
Choice choiceBelow(const Probe &probe, LevelsOf levelsOf, double score) {
    Choice choice = {std::vector<std::size_t>(probe.columns.size()),
                     probe.card.regression.constant};
    for (const ProbeColumn &column : probe.columns) {
        choice.score += (column.*levelsOf).front().points;
    }
    for (const std::size_t i : probe.order) {
        const std::vector<Level> &levels = probe.columns[i].*levelsOf;
        const double rest = choice.score - levels.front().points;
        auto above = std::ranges::upper_bound(levels, score - rest, {}, &Level::points);
        if (above != levels.begin()) --above;
        choice.cells[i] = above->cell;
        choice.score = rest + above->points;
    }
    return choice;
}

// A score with whose change the probability changes: the middle of the segment nearest to the
// middle of the table. NaN if the table has none.
double sensitiveScore(const Scorecard &card) {
    const std::span<const double> x = card.table.x;
    const std::span<const double> y = card.table.y;
    if (!card.table.exists) return card.isLogistic ? 0 : noNumber;
    const double middle = (x.front() + x.back()) / 2;
    const auto distance = [&](double score) { return std::abs(score - middle); };
    double nearest = noNumber;
    for (std::size_t i = 1; i < x.size(); ++i) {
        const double score = (x[i - 1] + x[i]) / 2;
        if (x[i - 1] == x[i] || y[i - 1] == y[i] || distance(score) >= distance(nearest)) continue;
        nearest = score;
    }
    return nearest;
}

Probe probeOf(const Scorecard &card) {
    Probe probe = {card, std::vector<ProbeColumn>(card.columns.size())};
    for (std::size_t i = 0; i < probe.columns.size(); ++i) {
        ProbeColumn &column = probe.columns[i];
        column.tries = triesOf(card, i);
        std::vector<Level> levels = levelsOf(card, i, column.tries);
        column.levels = ranked(levels, column.tries);
        std::erase_if(levels,
                      [&](const Level &level) { return !isPlain(column.tries[level.cell]); });
        column.plain = ranked(std::move(levels), column.tries);
        probe.order.push_back(i);
    }
    std::ranges::stable_sort(probe.order, std::greater(), [&](std::size_t i) {
        return probe.columns[i].levels.back().points - probe.columns[i].levels.front().points;
    });
    const auto choose = [&](double score) {
        return choiceBelow(probe, &ProbeColumn::plain, score);
    };
    double score = sensitiveScore(card);
    if (std::isnan(score)) score = (choose(-HUGE_VAL).score + choose(HUGE_VAL).score) / 2;
    const Choice usual = choose(score);
    for (std::size_t i = 0; i < usual.cells.size(); ++i) probe.columns[i].usual = usual.cells[i];
    return probe;
}

// How many table points are not below the score; 0 for all scores of a table that is out of order.
std::size_t segmentOf(const Scorecard &card, double score) {
    if (!card.isFalling) return 0;
    const auto isAbove = [&](double point) { return point >= score; };
    const auto found = std::ranges::partition_point(card.table.x, isAbove);
    return static_cast<std::size_t>(found - card.table.x.begin());
}

// A score in each segment of the table between these two, at most `most`.
std::vector<double> scoresBetween(const Scorecard &card, double lowest, double highest,
                                  std::size_t most) {
    std::vector<double> scores;
    const std::span<const double> x = card.table.x;
    for (std::size_t i = card.isFalling ? x.size() : 0; i-- > 1;) {
        const double from = std::max(x[i], lowest);
        const double to = std::min(x[i - 1], highest);
        if (from < to) scores.push_back((from + to) / 2);
    }
    if (scores.size() <= most) return scores;
    for (std::size_t i = 0; i < most; ++i) scores[i] = scores[i * scores.size() / most];
    scores.resize(most);
    return scores;
}

// --- What rows are for

QString trialText(const QString &field, const Try &cell) {
    const QString name = shownText(field.toStdString());
    switch (cell.trial) {
    case Trial::Code:
        return name + u" = "_s + shownText(textOf(cell)) + u", a missing code"_s;
    case Trial::Bound:
        return name + u" at the bound "_s + numberText(cell.bound);
    case Trial::Below:
        return name + u" just below "_s + numberText(cell.bound);
    case Trial::Above:
        return name + u" just above "_s + numberText(cell.bound);
    case Trial::Between:
        return name + u" = "_s + shownText(textOf(cell));
    case Trial::Value:
        return name + u" = '"_s + shownText(textOf(cell)) + u'\'';
    case Trial::Unlisted:
        return name + u" = '"_s + cell.value.toString() + u"', unlisted"_s;
    case Trial::Empty:
        break;
    }
    return name + u" empty"_s;
}

QString scoreText(const Scorecard &card, double score) {
    const std::span<const double> x = card.table.x;
    QString text = u"a score of about %1"_s.arg(QString::number(score, 'g', 4));
    if (x.empty() || !card.isFalling) return text;
    const std::size_t at = segmentOf(card, score);
    if (at == 0) return text + u", above the table"_s;
    if (at == x.size()) return text + u", below the table"_s;
    return text + u", from %1 to %2 in the table"_s.arg(numberText(x[at]), numberText(x[at - 1]));
}

// --- The file

// The name, changed until no column of the model has it, in whatever case.
QString freeTitle(const Scorecard &card, QString title) {
    const auto isTitle = [&](const QString &column) {
        return column.trimmed().compare(title, Qt::CaseInsensitive) == 0;
    };
    while (std::ranges::any_of(card.columns, isTitle)) title += u'_';
    return title;
}

// cellAt(i) is the index of the cell of column i among its tries.
template <typename CellAt>
void putRow(Probe &probe, const CellAt &cellAt, const QString &text) {
    probe.file.put(++probe.rows);
    for (std::size_t i = 0; i < probe.columns.size(); ++i) {
        probe.file.put(textOf(probe.columns[i].tries[cellAt(i)]));
    }
    probe.file.put(text.toStdString());
    probe.file.endRow();
}

// Row k tries the cell k of each column of the group.
void putGroup(Probe &probe, std::span<const std::size_t> group) {
    constexpr qsizetype mostNamed = 8;
    std::vector<std::size_t> tries(probe.columns.size()); // of the columns of the group
    for (const std::size_t i : group) tries[i] = probe.columns[i].tries.size();
    for (std::size_t k = 0;; ++k) {
        QStringList texts;
        qsizetype tried = 0;
        for (const std::size_t i : group) {
            if (k >= tries[i] || tried++ >= mostNamed) continue;
            texts.append(trialText(probe.card.columns[i], probe.columns[i].tries[k]));
        }
        if (tried == 0) return;
        if (tried > mostNamed) texts.append(u"and %1 more"_s.arg(tried - mostNamed));
        const auto cellAt = [&](std::size_t i) {
            return k < tries[i] ? k : probe.columns[i].usual;
        };
        putRow(probe, cellAt, texts.join(u"; "_s));
    }
}

// Rows from the least score to the highest, one in each segment of the table that they can reach.
void putPath(Probe &probe, std::size_t most) {
    const auto put = [&](const Choice &choice) {
        const auto cellAt = [&](std::size_t i) { return choice.cells[i]; };
        putRow(probe, cellAt, scoreText(probe.card, choice.score));
    };
    const Choice lowest = choiceBelow(probe, &ProbeColumn::levels, -HUGE_VAL);
    const Choice highest = choiceBelow(probe, &ProbeColumn::levels, HUGE_VAL);
    put(lowest);
    for (const double score : scoresBetween(probe.card, lowest.score, highest.score, most)) {
        for (const LevelsOf levels : {&ProbeColumn::plain, &ProbeColumn::levels}) {
            const Choice choice = choiceBelow(probe, levels, score);
            if (segmentOf(probe.card, choice.score) != segmentOf(probe.card, score)) continue;
            put(choice);
            break;
        }
    }
    put(highest);
}

void putRows(Probe &probe) {
    constexpr std::size_t mostCells = 1 << 20; // of rows that try one column each
    const auto sizeOf = [&](std::size_t i) { return probe.columns[i].tries.size(); };
    std::vector<std::size_t> order(probe.columns.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::size_t total = 0;
    std::size_t longest = 0;
    for (const std::size_t i : order) {
        total += sizeOf(i);
        longest = std::max(longest, sizeOf(i));
    }
    const std::size_t together = total * order.size() / mostCells + 1;
    // Columns with as many tries share their rows.
    if (together > 1) std::ranges::stable_sort(order, {}, sizeOf);
    for (std::size_t i = 0; i < order.size(); i += together) {
        const std::size_t size = std::min(together, order.size() - i);
        putGroup(probe, std::span(order).subspan(i, size));
    }
    putPath(probe, std::max(longest, mostCells / std::max<std::size_t>(order.size(), 1)));
}

} // namespace

std::vector<Try> triesOf(const Scorecard &card, std::size_t column) {
    std::vector<Try> tries;
    std::vector<Try> values;
    std::vector<double> bounds;
    std::vector<double> codes;
    TextTable<QStringView, bool> listed;
    bool hasNumbers = false;
    bool hasValues = false;
    for (const std::size_t i : card.recodingsOf[column]) {
        const Recoding &recoding = card.recodings[i];
        (recoding.variable->isCategorical ? hasValues : hasNumbers) = true;
        bounds.insert(bounds.end(), recoding.x.begin(), recoding.x.end());
        codes.insert(codes.end(), recoding.codes.begin(), recoding.codes.end());
        for (const QStringView value : recoding.listed) {
            if (value.isEmpty() || !listed.emplace(value, true).second) continue;
            values.push_back({.trial = Trial::Value, .value = value});
        }
    }
    if (hasNumbers) addNumbers(tries, codes, std::move(bounds));
    tries.insert(tries.end(), values.begin(), values.end());
    const QStringView unlisted = u"unlisted________";
    for (qsizetype size = 8; hasValues && size <= unlisted.size(); ++size) {
        if (listed.contains(unlisted.first(size))) continue;
        tries.push_back({.trial = Trial::Unlisted, .value = unlisted.first(size)});
        break;
    }
    tries.push_back({});
    return tries;
}

std::string textOf(const Try &cell) {
    return std::isnan(cell.number) ? cell.value.toUtf8().toStdString() : digitsOf(cell.number);
}

std::vector<std::vector<bool>> reachablePositions(const Scorecard &card, std::size_t column,
                                                  std::span<const std::string> missing) {
    std::vector<std::vector<bool>> reachable;
    for (const std::size_t i : card.recodingsOf[column]) {
        reachable.emplace_back(card.recodings[i].y.size());
    }
    for (const Try &cell : triesOf(card, column)) {
        const std::string text = textOf(cell);
        const Cell read = cellOf(text, missing);
        for (const std::size_t i : card.recodingsOf[column]) {
            const Recoding &recoding = card.recodings[i];
            reachable[recoding.rank][recode(recoding, read).position] = true;
        }
    }
    return reachable;
}

QString writeProbe(const Scorecard &card, const QString &fileName) {
    Probe probe = probeOf(card);
    QString problem = probe.file.open(fileName, ',');
    if (!problem.isEmpty()) return problem;
    probe.file.put(freeTitle(card, u"probe"_s).toStdString());
    for (const QString &column : card.columns) probe.file.put(column.toStdString());
    probe.file.put(freeTitle(card, u"tries"_s).toStdString());
    probe.file.endRow();
    putRows(probe);
    return probe.file.close();
}
