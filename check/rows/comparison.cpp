#include "check/rows/comparison.h"

#include "check/rows/explanation.h"
#include "check/rows/suspicion.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <unordered_map>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr double singleProbability = 1e-6; // that 32 bits hold
constexpr std::size_t mostWorst = 10;
constexpr std::int64_t mostNamed = 5;

// The deviations that no cell decides.
FindingSet alwaysOf(const Comparison &c, std::span<const Finding> findings) {
    FindingSet always;
    for (const Finding &finding : findings) {
        const Targets simulated = finding.targets & kindOf(finding.id).simulated;
        const bool isOfCell = finding.countsRows() && finding.recoding >= 0;
        if ((simulated & only(c.options.target)) != 0 && !isOfCell) always.add(finding.id);
    }
    return always;
}

// --- Reading results

ResultRow rowOf(std::string_view key) {
    std::uint32_t check = 2166136261U;
    for (const char c : key) check = (check ^ static_cast<unsigned char>(c)) * 16777619U;
    return {.hash = std::hash<std::string_view>()(key), .check = check, .numbers = {}};
}

void keepKey(Comparison &c, ResultRow &row, std::string_view key) {
    row.keyAt = c.keys.size();
    row.keySize = static_cast<std::uint32_t>(key.size()); // of a cell, which has 64 MiB at most
    c.keys += key;
}

std::string_view keyOf(const Comparison &c, const ResultRow &row) {
    return std::string_view(c.keys).substr(row.keyAt, row.keySize);
}

std::pair<std::uint64_t, std::uint32_t> identityOf(const ResultRow &row) {
    return {row.hash, row.check};
}

// Sorts the rows by keys, and marks those whose key occurred before.
void countRepeated(Comparison &c, std::deque<ResultRow> &rows, const QString &place) {
    std::ranges::sort(rows, {},
                      [](const ResultRow &row) { return std::pair(identityOf(row), row.row); });
    for (std::size_t i = 1; i < rows.size(); ++i) {
        if (identityOf(rows[i]) != identityOf(rows[i - 1])) continue;
        rows[i].isSeen = true; // the first of them is the one that counts
        count(c.result.repeated, place.arg(rows[i].row));
    }
}

// Reads the next row of results; false after the last.
bool takeNext(Comparison &c, ResultRow &found) {
    while (c.entries.empty()) {
        if (!c.reader.read(c)) return false;
    }
    found = c.entries.front();
    c.entries.pop_front();
    return true;
}

// The key of a row, or its number. An empty key must not look like a numeric one.
QString describe(const Comparison &c, std::string_view key, std::int64_t row) {
    if (c.options.key.isEmpty()) return QString::number(row);
    return key.empty() ? u"row %1, which has no key"_s.arg(row) : shownText(key);
}

bool find(Comparison &c, const RowFacts &facts, ResultRow &found) {
    if (c.options.key.isEmpty()) return takeNext(c, found);
    const ResultRow wanted = rowOf(facts.key);
    const auto at = std::ranges::lower_bound(c.entries, identityOf(wanted), {}, identityOf);
    if (at == c.entries.end() || identityOf(*at) != identityOf(wanted)) {
        c.absent.push_back(wanted);
        c.absent.back().row = facts.row;
        keepKey(c, c.absent.back(), facts.key);
        return false;
    }
    if (at->isSeen) count(c.result.repeated, describe(c, facts.key, facts.row));
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
    for (const CellFacts *const known : facts.cells) cells.emplace_back(known->cell.raw);
    const std::vector<Recoded> recoded(facts.recoded.begin(), facts.recoded.end());
    worst.insert(
        at, {facts.row, std::string(facts.key), facts.expected, found, difference, recoded, cells});
    if (worst.size() > mostWorst) worst.pop_back();
}

void countUnreadable(Comparison &c, const Cell &cell) {
    constexpr std::size_t longest = 60;
    const Unreadable kind = kindOfText(trimmed(cell.raw));
    UnreadableCells &cells = c.result.unreadable[static_cast<std::size_t>(kind)];
    if (cells.cells++ > 0) return;
    cells.first = cell.raw.substr(0, longest);
    cells.row = c.reader.row + 1;
}

// Writes a row of differences; NaN is an empty cell.
void putDifference(Comparison &c, std::string_view key, std::int64_t row,
                   const Prediction &expected, const Prediction &found, std::string_view reason) {
    if (!c.out.isOpen()) return;
    putKey(c.out, c.options, key, row);
    for (const Prediction &numbers : {expected, found}) {
        c.out.put(numbers.score);
        c.out.put(numbers.probability);
    }
    c.out.put(reason);
    c.out.endRow();
}

// Keeps the row for the causes, which are looked for after the last row.
void keepUnexplained(Comparison &c, const RowFacts &facts, const Prediction &numbers,
                     bool isReadable) {
    DifferingRow row = {facts.expected, numbers, facts.row};
    row.isLastDigit =
        isReadable && isRightByLastDigit(c, facts.cells, facts.expected.score, numbers);
    keepRow(c, facts.recoded, &row);
    ++c.result.unexplained;
    keepWorst(c, facts, numbers);
    if (isReadable) suspect(c, facts, row);
}

// Counts keys that are the same number in another format in rows and results.
void findKeyTexts(Comparison &c) {
    std::unordered_map<double, const ResultRow *> extra;
    const auto numberOf = [&](const ResultRow &row) {
        constexpr double mostExact = 0x1p53; // above, different keys are the same double
        double number = noNumber;
        const bool isNumber = readNumber(keyOf(c, row), number);
        return isNumber && std::abs(number) < mostExact ? number : noNumber;
    };
    for (const ResultRow &row : c.entries) {
        const double number = row.isSeen || c.absent.empty() ? noNumber : numberOf(row);
        if (!std::isnan(number)) extra.emplace(number, &row);
    }
    Cause cause = {.kind = Cause::Kind::KeyText};
    for (const ResultRow &row : c.absent) {
        const auto found = extra.find(numberOf(row));
        if (found == extra.end() || cause.rows++ > 0) continue;
        for (const ResultRow *const key : {&row, found->second}) {
            cause.texts.push_back(shownText(keyOf(c, *key)));
        }
    }
    if (cause.rows > 0) c.result.causes.insert(c.result.causes.begin(), cause);
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

// In 64 bits, only another order of the sum counts; in 32 bits, each number and each sum loses half
// of its last bit.
double slackOf(const Comparison &c, std::span<const Recoded> recoded, const Deviations &deviations,
               double grown) {
    constexpr double otherOrder = 1e-12;
    constexpr double halfBit = 0x1p-24;
    const SumSize size = sumSizeOf(c.card, recoded, deviations);
    if (!deviations.has(FindingId::SinglePrecision)) return otherOrder * (size.largest + grown);
    return halfBit * static_cast<double>(size.terms + 1) * (size.total + grown);
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
        const ResultRow row = rowOf(trimmed(bytes));
        unfinished.hash = row.hash;
        unfinished.check = row.check;
        keepKey(*this, unfinished, trimmed(bytes));
        return;
    }
    // Either mark is safe: a misread result is not the expected one.
    const DecimalMark mark = options.hasDecimalComma ? DecimalMark::Either : DecimalMark::Point;
    const Cell cell = cellOf(bytes, options.missing, mark);
    const bool isScore = place == (hasKey ? 1 : 0) && options.hasScore();
    (isScore ? unfinished.numbers.score : unfinished.numbers.probability) =
        cell.isNumber ? cell.number : noNumber;
    if (!cell.isNumber || std::isnan(cell.number)) countUnreadable(*this, cell);
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
    for (const Recoding &recoding : c.card.recodings) {
        c.positionRows.emplace_back(recoding.y.size());
    }
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
    QString problem = c.reader.open(c.options.results, c.options.delimiters(), wanted);
    if (!problem.isEmpty() || c.options.key.isEmpty()) return problem;
    while (c.reader.read(c)) continue;
    countRepeated(c, c.entries, u"row %1 of the results"_s);
    return c.reader.problem;
}

QString openDifferences(Comparison &c, char delimiter) {
    return openOutput(c.out, c.options.differences, delimiter, c.options,
                      {"score", "probability", "result_score", "result_probability", "reason"});
}

QString openOutput(CsvWriter &out, const QString &fileName, char delimiter,
                   const RowOptions &options, std::initializer_list<std::string_view> titles) {
    if (fileName.isEmpty()) return {};
    QString problem = out.open(fileName, delimiter);
    if (!problem.isEmpty()) return problem;
    out.put(options.key.isEmpty() ? "row" : options.key.toStdString());
    for (const std::string_view title : titles) out.put(title);
    out.endRow();
    return {};
}

void putKey(CsvWriter &out, const RowOptions &options, std::string_view key, std::int64_t row) {
    if (options.key.isEmpty()) {
        out.put(row);
    } else {
        out.put(key);
    }
}

void compareRow(Comparison &c, const RowFacts &facts) {
    ResultRow found;
    if (!find(c, facts, found)) {
        count(c.result.missing, describe(c, facts.key, facts.row));
        keepRow(c, facts.recoded, nullptr);
        putDifference(c, facts.key, facts.row, facts.expected, {}, {});
        return;
    }
    ++c.result.rows;
    // An empty cell is right where the model gives NaN, and is never NaN that a target shows.
    const Prediction &numbers = found.numbers;
    if (c.options.hasScore()) c.result.scores.add(facts.expected.score, numbers.score);
    if (c.options.hasProbability()) {
        c.result.probabilities.add(facts.expected.probability, numbers.probability);
    }
    const bool isReadable = found.cells == ResultCells::Numbers;
    const bool mayBeMissing = found.cells == ResultCells::Empty && c.options.target == Target::Sas;
    if (found.cells != ResultCells::NoNumber &&
        (matches(c, facts.expected, numbers) ||
         fits(c, facts.recoded, c.options.deviations(), numbers))) {
        ++c.result.equal;
        keepEqual(c, facts.recoded, {facts.expected.score, numbers.probability});
        return;
    }
    const bool isExplainable = isReadable || mayBeMissing;
    const QString reason = isExplainable ? explain(c, facts, numbers) : QString();
    putDifference(c, facts.key, facts.row, facts.expected, numbers, reason.toStdString());
    if (!reason.isEmpty()) {
        keepRow(c, facts.recoded, nullptr);
    } else {
        keepUnexplained(c, facts, numbers, isReadable);
    }
}

QString finishComparison(Comparison &c, std::span<const std::vector<std::int64_t>> positions,
                         const CsvReader &rows) {
    std::ranges::sort(c.entries, {}, &ResultRow::row);
    findKeyTexts(c);
    ResultRow row;
    while (takeNext(c, row)) {
        if (row.isSeen) continue;
        const std::string_view key = keyOf(c, row);
        count(c.result.extra, describe(c, key, row.row));
        putDifference(c, key, row.row, {}, row.numbers, {});
    }
    countRepeated(c, c.absent, u"row %1"_s);
    finishSuspicion(c);
    std::ranges::move(causesOf(c, positions, rows), std::back_inserter(c.result.causes));
    constexpr std::size_t samples = 3; // are enough if one cause makes all rows right
    const bool isOne = std::ranges::any_of(
        c.result.causes, [&](const Cause &cause) { return cause.rows == c.result.unexplained; });
    if (isOne && c.result.worst.size() > samples) c.result.worst.resize(samples);
    const QString problem = c.out.close();
    return problem.isEmpty() ? c.reader.problem : problem;
}
