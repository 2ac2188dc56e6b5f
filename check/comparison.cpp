#include "check/comparison.h"

#include <QStringList>

#include <algorithm>
#include <charconv>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

constexpr std::size_t mostWorst = 10;
constexpr std::size_t mostNamed = 5;
constexpr std::int64_t mostBlamed = 1000;  // rows that are looked into for a column at fault
constexpr std::size_t mostTried = 1 << 20; // values of one column, by the recodings that read it
constexpr std::size_t mostCombined = 8;    // findings of which all sets are tried; else up to three
constexpr std::size_t mostExchanged = 64;  // columns, of which all pairs are tried

constexpr std::size_t noColumn = static_cast<std::size_t>(-1);

void name(std::vector<std::string> &names, std::string_view key) {
    if (names.size() < mostNamed) names.emplace_back(key);
}

// It takes two deviations to move the score of such a code: it is not read, and its bound is above.
bool hasCodeOnBound(const Recoding &recoding) {
    return recoding.x.size() == 1 &&
           std::ranges::find(recoding.codes, recoding.x.front()) != recoding.codes.end();
}

std::string describe(const RowFacts &facts) {
    return facts.key.empty() ? std::to_string(facts.row) : std::string(facts.key);
}

} // namespace

std::vector<std::size_t> findColumns(const CsvReader &reader, const std::vector<QString> &names,
                                     const QString &file, QString &problem) {
    std::unordered_map<std::string_view, std::size_t> columns;
    std::unordered_map<std::string_view, int> counts;
    for (std::size_t i = 0; i < reader.header().size(); ++i) {
        columns[reader.header()[i]] = i;
        ++counts[reader.header()[i]];
    }
    // Blanks around a title are told apart only where a name has them too.
    for (std::size_t i = 0; i < reader.header().size(); ++i) {
        const std::string &title = reader.header()[i];
        const std::string_view plain = trimmed(title);
        columns.try_emplace(plain, i);
        if (plain != title) ++counts[plain];
    }
    std::vector<std::size_t> found;
    QStringList absent;
    for (const QString &wanted : names) {
        const std::string text = wanted.toStdString();
        const auto at = columns.find(text);
        if (at == columns.end()) {
            absent.append(u'\'' + wanted + u'\'');
            continue;
        }
        if (counts[text] > 1) problem = u"File '%1' has two columns '%2'."_s.arg(file, wanted);
        found.push_back(at->second);
    }
    if (!absent.isEmpty()) {
        problem = u"File '%1' lacks the column%2 %3."_s.arg(
            file, absent.size() > 1 ? u"s"_s : QString(), absent.join(u", "_s));
    }
    return found;
}

Comparison::Comparison(const Scorecard &scorecard, std::span<const Finding> findings,
                       ComparisonOptions comparisonOptions)
    : card(scorecard), options(std::move(comparisonOptions)), recodingsOf(card.columns.size()),
      scratch(card.recodings.size()) {
    for (const Finding &finding : findings) {
        const FindingKind &kind = kindOf(finding.id);
        if (!(finding.targets & kind.deviates).test(static_cast<std::size_t>(options.target)))
            continue;
        if (std::ranges::find(known, finding.id) == known.end()) known.push_back(finding.id);
        // What the score decides may be so only once another deviation has moved it.
        if (kind.rows == Rows::Untold || finding.recoding < 0 ||
            hasCodeOnBound(card.recodings[static_cast<std::size_t>(finding.recoding)])) {
            deviating.add(finding.id);
        }
    }
    ofTable.target = options.target;
    for (const FindingId id : {LowestSegment, LowestPoint, LowestNan, NoProbability, LogisticAbsent,
                               LogisticLastRow, TableUnread}) {
        if (deviating.has(id)) ofTable.findings.add(id);
    }
    for (std::size_t i = 0; i < card.recodings.size(); ++i) {
        recodingsOf[card.recodings[i].column].push_back(i);
    }
}

// --- Reading results

Comparison::Entry Comparison::entryOf(std::string_view key) {
    std::uint32_t check = 2166136261U;
    for (const char c : key) check = (check ^ static_cast<unsigned char>(c)) * 16777619U;
    return {.hash = std::hash<std::string_view>()(key),
            .check = check,
            .isSeen = false,
            .cells = {},
            .numbers = {},
            .row = 0};
}

double Comparison::numberIn(std::size_t column, Cells &cells) const {
    double number = noNumber;
    if (column == noColumn) return number;
    const Cell cell = cellOf(results.cell(column), options.missing);
    if (readNumber(cell.text, number)) return number;
    cells = std::max(cells, cell.text.empty() ? Cells::Empty : Cells::NoNumber);
    return noNumber;
}

Comparison::Found Comparison::readFound() const {
    Found found;
    found.numbers.score = numberIn(columns[1], found.cells);
    found.numbers.probability = numberIn(columns[2], found.cells);
    return found;
}

QString Comparison::open() {
    if (!options.probability.isEmpty() && !card.hasProbability()) {
        return u"The model has no probability; use --score."_s;
    }
    QString problem = results.open(options.file, options.delimiter);
    if (!problem.isEmpty()) return problem;
    std::vector<QString> wanted;
    columns.assign(3, noColumn);
    std::size_t i = 0;
    for (const QString &column : {options.key, options.score, options.probability}) {
        if (!column.isEmpty()) {
            columns[i] = wanted.size();
            wanted.push_back(column);
        }
        ++i;
    }
    const std::vector<std::size_t> chosen = findColumns(results, wanted, options.file, problem);
    if (!problem.isEmpty()) return problem;
    results.choose(chosen);
    return options.key.isEmpty() ? QString() : readEntries();
}

QString Comparison::readEntries() {
    while (results.next()) {
        Entry entry = entryOf(trimmed(results.cell(columns[0])));
        const Found found = readFound();
        entry.numbers = found.numbers;
        entry.cells = found.cells;
        entry.row = results.row();
        entries.push_back(entry);
    }
    const auto identity = [](const Entry &entry) { return std::pair(entry.hash, entry.check); };
    std::ranges::sort(entries, [&](const Entry &a, const Entry &b) {
        return std::tuple(a.hash, a.check, a.row) < std::tuple(b.hash, b.check, b.row);
    });
    for (std::size_t i = 1; i < entries.size(); ++i) {
        if (identity(entries[i]) != identity(entries[i - 1])) continue;
        entries[i].isSeen = true; // the first of them is the one that counts
        ++result.repeated;
        name(result.firstRepeated, "row " + std::to_string(entries[i].row) + " of the results");
    }
    return results.problem();
}

bool Comparison::find(const RowFacts &facts, Found &found) {
    if (options.key.isEmpty()) {
        if (!results.next()) return false;
        found = readFound();
        return true;
    }
    const Entry wanted = entryOf(facts.key);
    const auto at = std::ranges::lower_bound(
        entries, std::pair(wanted.hash, wanted.check), {},
        [](const Entry &entry) { return std::pair(entry.hash, entry.check); });
    if (at == entries.end() || at->hash != wanted.hash || at->check != wanted.check) {
        absent.emplace_back(wanted.hash, wanted.check, facts.row);
        return false;
    }
    if (at->isSeen) {
        ++result.repeated;
        name(result.firstRepeated, facts.key);
    }
    at->isSeen = true;
    found = {at->numbers, at->cells};
    return true;
}

// --- Comparing

bool Comparison::isNear(double expected, double found) const {
    if (std::isnan(expected) || std::isnan(found)) return std::isnan(expected) && std::isnan(found);
    if (expected == found) return true;
    return std::isfinite(expected) &&
           std::abs(expected - found) <= options.tolerance * std::max(1.0, std::abs(expected));
}

bool Comparison::matches(const Prediction &expected, const Prediction &found) const {
    return (columns[1] == noColumn || isNear(expected.score, found.score)) &&
           (columns[2] == noColumn || isNear(expected.probability, found.probability));
}

// Whether the probability is that of a score within the tolerance: the table may jump in between.
bool Comparison::isBesideJump(const Prediction &expected, const Prediction &found,
                              const Deviations &deviations) const {
    const double score = expected.score;
    const double slack = options.tolerance * std::max(1.0, std::abs(score));
    const auto isAt = [&](double other) {
        return matches({score, probabilityOf(card, other, deviations)}, found);
    };
    const double lowest = card.table.exists ? card.table.x.back() : score;
    return isAt(score - slack) || isAt(score + slack) || (isNear(score, lowest) && isAt(lowest));
}

// Finds the smallest set of deviations that explains the row by the test.
template <typename Test>
bool Comparison::explain(const RowFacts &facts, const Test &test) {
    std::vector<FindingId> possible;
    for (const FindingId id : known) {
        if (facts.touched.has(id) || deviating.has(id)) possible.push_back(id);
    }
    const std::size_t most = possible.size() > mostCombined ? 3 : possible.size();
    for (std::size_t size = 1; size <= most; ++size) {
        std::vector<char> isChosen(possible.size());
        std::fill_n(isChosen.begin(), size, 1);
        do {
            Deviations deviations = {{}, options.target};
            for (std::size_t i = 0; i < possible.size(); ++i) {
                if (isChosen[i]) deviations.findings.add(possible[i]);
            }
            if (!test(evaluate(card, facts.cells, scratch, deviations), deviations)) continue;
            for (std::size_t i = 0; i < possible.size(); ++i) {
                if (!isChosen[i]) continue;
                Explained &explained = result.explained[possible[i]];
                if (explained.rows++ == 0) explained.firstRow = facts.row;
            }
            ++result.explainedRows;
            return true;
        } while (std::ranges::prev_permutation(isChosen).found);
    }
    return false;
}

bool Comparison::isExplained(const RowFacts &facts, const Prediction &found) {
    const auto isExact = [&](const Prediction &expected, const Deviations &) {
        return matches(expected, found);
    };
    const auto isBeside = [&](const Prediction &expected, const Deviations &deviations) {
        return isBesideJump(expected, found, deviations);
    };
    return explain(facts, isExact) || (columns[2] != noColumn && explain(facts, isBeside));
}

void Comparison::keepWorst(const RowFacts &facts, const Prediction &found) {
    const bool hasScore = columns[1] != noColumn;
    double difference = hasScore ? found.score - facts.expected.score
                                 : found.probability - facts.expected.probability;
    if (hasScore && isNear(facts.expected.score, found.score) && columns[2] != noColumn) {
        difference = found.probability - facts.expected.probability;
    }
    difference = std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference;
    std::vector<ComparedRow> &worst = result.worst;
    const auto at = std::ranges::find_if(worst, [&](const ComparedRow &row) {
        return std::abs(row.difference) < std::abs(difference);
    });
    if (at == worst.end() && worst.size() >= mostWorst) return;
    ComparedRow row{.row = facts.row,
                    .key = std::string(facts.key),
                    .expected = facts.expected,
                    .found = found,
                    .difference = difference,
                    .recoded = {facts.recoded.begin(), facts.recoded.end()},
                    .cells = {}};
    for (const Cell &cell : facts.cells) row.cells.emplace_back(cell.raw);
    worst.insert(at, std::move(row));
    if (worst.size() > mostWorst) worst.pop_back();
}

// --- What is at fault

// What the column adds to the score.
double Comparison::pointsOf(std::size_t column, const Cell &cell) const {
    double points = 0;
    for (const std::size_t i : recodingsOf[column]) {
        points += card.recodings[i].coefficient * recode(card.recodings[i], cell, {}).score;
    }
    return points;
}

// A cell feeds all recodings of its column: the points of all values, bounds and their neighbours.
std::vector<double> Comparison::possiblePoints(std::size_t column) const {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::size_t most = mostTried / recodingsOf[column].size();
    std::vector<double> points;
    const auto tryCell = [&](std::string_view text) {
        if (points.size() < most) points.push_back(pointsOf(column, {text, text}));
    };
    for (const std::size_t i : recodingsOf[column]) {
        for (const auto &[value, places] : card.recodings[i].values) tryCell(value);
        for (const double bound : card.recodings[i].x) {
            for (const double to : {-infinity, bound, infinity}) {
                char text[32];
                const double number = std::nextafter(bound, to);
                tryCell({text, std::to_chars(text, std::end(text), number).ptr});
            }
        }
    }
    std::ranges::sort(points);
    points.erase(std::unique(points.begin(), points.end()), points.end());
    return points;
}

bool Comparison::wouldBeRight(double score, const Prediction &found) const {
    return matches({score, probabilityOf(card, score)}, found) ||
           matches({score, probabilityOf(card, score, ofTable)}, found);
}

void Comparison::blameColumns(const RowFacts &facts, const Prediction &found,
                              QStringList &faults) const {
    for (std::size_t column = 0; column < recodingsOf.size(); ++column) {
        const double others = facts.expected.score - pointsOf(column, facts.cells[column]);
        const auto isRight = [&](double points) { return wouldBeRight(others + points, found); };
        if (isRight(pointsOf(column, {}))) {
            faults.append(u"%1 read as missing"_s.arg(card.columns[column]));
        } else if (std::ranges::any_of(pointsOfColumns[column], isRight)) {
            faults.append(u"%1 read as another value"_s.arg(card.columns[column]));
        }
    }
}

void Comparison::blamePairs(const RowFacts &facts, const Prediction &found,
                            QStringList &faults) const {
    const std::size_t tried = recodingsOf.size() > mostExchanged ? 0 : recodingsOf.size();
    for (std::size_t a = 0; a < tried; ++a) {
        for (std::size_t b = a + 1; b < tried; ++b) {
            const Cell &ofA = facts.cells[a];
            const Cell &ofB = facts.cells[b];
            const double change =
                pointsOf(a, ofB) - pointsOf(a, ofA) + pointsOf(b, ofA) - pointsOf(b, ofB);
            if (change != 0 && wouldBeRight(facts.expected.score + change, found)) {
                faults.append(u"%1 and %2 exchanged"_s.arg(card.columns[a], card.columns[b]));
            }
        }
    }
}

// Tries whether the row would be right if one column had been read as missing or as some other
// value, or if two columns had been exchanged.
void Comparison::blame(const RowFacts &facts, const Prediction &found) {
    for (std::size_t i = pointsOfColumns.size(); i < recodingsOf.size(); ++i) {
        pointsOfColumns.push_back(possiblePoints(i));
    }
    QStringList faults;
    const bool hasBoth = columns[1] != noColumn && columns[2] != noColumn;
    if (hasBoth && matches(facts.expected, {found.probability, found.score})) {
        faults.append(u"score and probability exchanged in the results"_s);
    } else {
        blameColumns(facts, found, faults);
        blamePairs(facts, found, faults);
    }
    // What fits everything tells nothing.
    if (faults.size() > 3) return;
    for (const QString &fault : faults) ++faultCounts[fault];
}

void Comparison::compare(const RowFacts &facts) {
    Found found;
    if (!find(facts, found)) {
        ++result.missing;
        name(result.firstMissing, describe(facts));
        return;
    }
    ++result.rows;
    // An empty cell is right where the model gives no number, and is never NaN that a target shows.
    const Prediction &numbers = found.numbers;
    const bool isReadable = found.cells == Cells::Numbers;
    if (found.cells != Cells::NoNumber &&
        (matches(facts.expected, numbers) || isBesideJump(facts.expected, numbers))) {
        ++result.equal;
    } else if (!isReadable || !isExplained(facts, numbers)) {
        if (++result.unexplained <= mostBlamed && isReadable) blame(facts, numbers);
        keepWorst(facts, numbers);
    }
}

QString Comparison::finish() {
    const auto isExtra = [&](std::int64_t row) {
        ++result.extra;
        if (result.firstExtra.size() < mostNamed) result.firstExtra.push_back(row);
    };
    if (options.key.isEmpty()) {
        while (results.next()) isExtra(results.row());
    }
    for (const Entry &entry : entries) {
        if (!entry.isSeen) isExtra(entry.row);
    }
    std::ranges::sort(result.firstExtra);
    std::ranges::sort(absent);
    for (std::size_t i = 1; i < absent.size(); ++i) {
        const auto &[hash, check, row] = absent[i];
        if (std::tie(hash, check) !=
            std::tie(std::get<0>(absent[i - 1]), std::get<1>(absent[i - 1]))) {
            continue;
        }
        ++result.repeated;
        name(result.firstRepeated, "row " + std::to_string(row));
    }
    result.blamed.assign(faultCounts.begin(), faultCounts.end());
    std::ranges::stable_sort(result.blamed, std::greater(),
                             [](const auto &fault) { return fault.second; });
    return results.problem();
}
