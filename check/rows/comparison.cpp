#include "check/rows/comparison.h"

#include <QStringList>

#include <algorithm>
#include <bit>
#include <charconv>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

constexpr std::size_t mostWorst = 10;
constexpr std::int64_t mostNamed = 5;
constexpr std::int64_t mostSuspected = 1000; // rows that are looked into for a column at fault
constexpr std::size_t mostTried = 1 << 20;   // values of one column, by the recodings that read it
constexpr std::size_t mostCombined = 8;   // findings of which all sets are tried; else up to three
constexpr std::size_t mostExchanged = 64; // columns, of which all pairs are tried

void count(RowSample &sample, const QString &key) {
    if (++sample.rows <= mostNamed) sample.first.append(key);
}

// HTML ignores missing codes and puts the only bound above: a code equal to that bound needs both
// deviations at once.
bool hasCodeOnBound(const Recoding &recoding) {
    const auto &codes = recoding.codes;
    return recoding.x.size() == 1 && std::ranges::find(codes, recoding.x.front()) != codes.end();
}

void findDeviations(Comparison &c, std::span<const Finding> findings) {
    c.always.target = c.options.target;
    for (const Finding &finding : findings) {
        const Targets deviates = finding.targets & kindOf(finding.id).simulated;
        if ((deviates & only(c.options.target)) == 0) continue;
        if (std::ranges::find(c.candidates, finding.id) == c.candidates.end())
            c.candidates.push_back(finding.id);
        // A finding decided by the score may apply only after another deviation has changed it.
        const auto recoding = static_cast<std::size_t>(std::max(finding.recoding, 0));
        const bool isOfCell = finding.countsRows() && finding.recoding >= 0;
        if (isOfCell && !hasCodeOnBound(c.card.recodings[recoding])) continue;
        c.always.findings.add(finding.id);
    }
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

// The next row of results; false when there is none.
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

// Whether the probability is that of a score within the tolerance: the table may jump in between.
bool isBesideJump(const Comparison &c, const Prediction &expected, const Prediction &found,
                  const Deviations &deviations = {}) {
    const double score = expected.score;
    const double slack = c.options.tolerance * std::max(1.0, std::abs(score));
    const auto isAt = [&](double other) {
        return matches(c, {score, probabilityOf(c.card, other, deviations)}, found);
    };
    const double lowest = c.card.table.exists ? c.card.table.x.back() : score;
    return isAt(score - slack) || isAt(score + slack) || (isNear(c, score, lowest) && isAt(lowest));
}

// Finds the smallest set of deviations that explains the row, or one for a score beside a jump.
bool explain(Comparison &c, const RowFacts &facts, const Prediction &found, bool isBeside) {
    std::vector<FindingId> possible;
    for (const FindingId id : c.candidates) {
        if (facts.affected.has(id) || c.always.has(id)) possible.push_back(id);
    }
    const std::size_t most = possible.size() > mostCombined ? 3 : possible.size();
    for (std::size_t size = 1; size <= most; ++size) {
        std::vector<char> isChosen(possible.size());
        std::fill_n(isChosen.begin(), size, 1);
        do {
            Deviations deviations = {{}, c.options.target};
            for (std::size_t i = 0; i < possible.size(); ++i) {
                if (isChosen[i]) deviations.findings.add(possible[i]);
            }
            const Prediction expected = evaluate(c.card, facts.cells, deviations);
            if (isBeside ? !isBesideJump(c, expected, found, deviations)
                         : !matches(c, expected, found)) {
                continue;
            }
            for (const FindingId id : possible) {
                if (deviations.has(id)) count(c.result.explained[id], QString::number(facts.row));
            }
            ++c.result.explainedRows;
            return true;
        } while (std::ranges::prev_permutation(isChosen).found);
    }
    return false;
}

bool isExplained(Comparison &c, const RowFacts &facts, const Prediction &found) {
    return explain(c, facts, found, false) ||
           (c.options.hasProbability() && explain(c, facts, found, true));
}

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

// --- What is at fault

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
    // Some may be no numbers, which have no order of their own.
    std::ranges::sort(points, {},
                      [](double number) { return std::bit_cast<std::uint64_t>(number); });
    points.erase(std::unique(points.begin(), points.end()), points.end());
    return points;
}

bool wouldBeRight(const Comparison &c, double score, const Prediction &found) {
    return matches(c, {score, probabilityOf(c.card, score)}, found) ||
           matches(c, {score, probabilityOf(c.card, score, c.always)}, found);
}

void suspectColumns(const Comparison &c, const RowFacts &facts, const Prediction &found,
                    QStringList &faults) {
    for (std::size_t i = 0; i < c.card.columns.size(); ++i) {
        const double others = facts.expected.score - pointsOf(c.card, i, facts.cells[i]);
        const auto isRight = [&](double points) { return wouldBeRight(c, others + points, found); };
        if (isRight(pointsOf(c.card, i, {}))) {
            faults.append(u"%1 read as missing"_s.arg(c.card.columns[i]));
        } else if (std::ranges::any_of(c.pointsOfColumns[i], isRight)) {
            faults.append(u"%1 read as another value"_s.arg(c.card.columns[i]));
        }
    }
}

void suspectPairs(const Comparison &c, const RowFacts &facts, const Prediction &found,
                  QStringList &faults) {
    const std::vector<QString> &columns = c.card.columns;
    const auto points = [&](std::size_t column, std::size_t cell) {
        return pointsOf(c.card, column, facts.cells[cell]);
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

// Tries whether the row would be right if one column had been read as missing or as some other
// value, or if two columns had been exchanged.
void suspect(Comparison &c, const RowFacts &facts, const Prediction &found) {
    for (std::size_t i = c.pointsOfColumns.size(); i < c.card.columns.size(); ++i) {
        c.pointsOfColumns.push_back(possiblePoints(c.card, i));
    }
    QStringList faults;
    if (c.options.hasScore() && c.options.hasProbability() &&
        matches(c, facts.expected, {found.probability, found.score})) {
        faults.append(u"score and probability exchanged in the results"_s);
    } else {
        suspectColumns(c, facts, found, faults);
        suspectPairs(c, facts, found, faults);
    }
    // What fits everything tells nothing.
    if (faults.size() > 3) return;
    for (const QString &fault : faults) ++c.faultCounts[fault];
}

} // namespace

void Comparison::takeCell(std::size_t place, std::string_view bytes) {
    const bool hasKey = !options.key.isEmpty();
    if (hasKey && place == 0) {
        const ResultRow key = rowOf(trimmed(bytes));
        unfinished.hash = key.hash;
        unfinished.check = key.check;
        return;
    }
    const Cell cell = cellOf(bytes, options.missing);
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
    findDeviations(c, findings);
    if (c.options.hasProbability() && !c.card.hasProbability()) {
        return u"The model has no probability; use --score."_s;
    }
    QString problem = c.reader.open(c.options.results, c.options.delimiter);
    if (!problem.isEmpty()) return problem;
    QStringList wanted = {c.options.key, c.options.score, c.options.probability};
    wanted.removeAll(QString());
    problem = c.reader.choose(wanted);
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
    // An empty cell is right where the model gives no number, and is never NaN that a target shows.
    const Prediction &numbers = found.numbers;
    const bool isReadable = found.cells == ResultCells::Numbers;
    if (found.cells != ResultCells::NoNumber &&
        (matches(c, facts.expected, numbers) || isBesideJump(c, facts.expected, numbers))) {
        ++c.result.equal;
    } else if (!isReadable || !isExplained(c, facts, numbers)) {
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
    c.result.suspected.assign(c.faultCounts.begin(), c.faultCounts.end());
    std::ranges::stable_sort(c.result.suspected, std::greater(),
                             [](const auto &fault) { return fault.second; });
    return c.reader.problem;
}
