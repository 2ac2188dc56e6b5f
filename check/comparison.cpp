#include "check/comparison.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

constexpr std::size_t mostWorst = 10;
constexpr std::size_t mostNamed = 5;
constexpr std::int64_t mostBlamed = 1000; // rows that are looked into for a column at fault
constexpr std::size_t mostExchanged = 64; // columns, of which all pairs are tried

constexpr std::size_t noColumn = static_cast<std::size_t>(-1);

void name(std::vector<std::string> &names, std::string_view key) {
    if (names.size() < mostNamed) names.emplace_back(key);
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
        const bool concerns = finding.targets.test(static_cast<std::size_t>(options.target));
        if (!concerns || !deviates(finding.id, options.target)) continue;
        if (std::ranges::find(known, finding.id) == known.end()) known.push_back(finding.id);
        if (!finding.byRows) deviating.add(finding.id);
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
            .isSeen = 0,
            .found = {},
            .row = 0};
}

double Comparison::numberIn(std::size_t column) const {
    double number = noNumber;
    if (column == noColumn) return number;
    const Cell cell = cellOf(results.cell(column), options.missing);
    return readNumber(cell.text, number) ? number : noNumber;
}

Prediction Comparison::foundIn() const {
    return {.score = numberIn(columns[1]), .probability = numberIn(columns[2])};
}

QString Comparison::open() {
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
        entry.found = foundIn();
        entry.row = results.row();
        entries.push_back(entry);
    }
    const auto identity = [](const Entry &entry) { return std::pair(entry.hash, entry.check); };
    std::ranges::sort(entries, [&](const Entry &a, const Entry &b) {
        return std::tuple(a.hash, a.check, a.row) < std::tuple(b.hash, b.check, b.row);
    });
    for (std::size_t i = 1; i < entries.size(); ++i) {
        if (identity(entries[i]) != identity(entries[i - 1])) continue;
        entries[i].isSeen = 1; // the first of them is the one that counts
        ++result.repeated;
        name(result.firstRepeated, "row " + std::to_string(entries[i].row) + " of the results");
    }
    return results.problem();
}

bool Comparison::find(const RowFacts &facts, Prediction &found) {
    if (options.key.isEmpty()) {
        if (!results.next()) return false;
        found = foundIn();
        return true;
    }
    const Entry wanted = entryOf(facts.key);
    const auto at = std::ranges::lower_bound(
        entries, std::pair(wanted.hash, wanted.check), {},
        [](const Entry &entry) { return std::pair(entry.hash, entry.check); });
    if (at == entries.end() || at->hash != wanted.hash || at->check != wanted.check) return false;
    if (at->isSeen) {
        ++result.repeated;
        name(result.firstRepeated, facts.key);
    }
    at->isSeen = 1;
    found = at->found;
    return true;
}

// --- Comparing

bool Comparison::isNear(double expected, double found) const {
    if (std::isnan(expected) || std::isnan(found)) return std::isnan(expected) && std::isnan(found);
    if (expected == found) return true;
    return std::abs(expected - found) <= options.tolerance * std::max(1.0, std::abs(expected));
}

bool Comparison::matches(const Prediction &expected, const Prediction &found) const {
    return (columns[1] == noColumn || isNear(expected.score, found.score)) &&
           (columns[2] == noColumn || isNear(expected.probability, found.probability));
}

bool Comparison::isExplainedBy(const RowFacts &facts, const Prediction &found,
                               std::initializer_list<FindingId> ids) {
    const Deviations deviations = {FindingSet(ids), options.target};
    if (!matches(evaluate(card, facts.cells, scratch, deviations), found)) return false;
    for (const FindingId id : ids) {
        Explained &explained = result.explained[id];
        if (explained.rows++ == 0) explained.firstRow = facts.row;
    }
    ++result.explainedRows;
    return true;
}

// One deviation is tried before two of them, and then all that there are.
bool Comparison::explain(const RowFacts &facts, const Prediction &found) {
    std::vector<FindingId> possible;
    Deviations all = {{}, options.target};
    for (const FindingId id : known) {
        if (!facts.touched.has(id) && !deviating.has(id)) continue;
        possible.push_back(id);
        all.findings.add(id);
    }
    for (const FindingId id : possible) {
        if (isExplainedBy(facts, found, {id})) return true;
    }
    for (std::size_t i = 0; i < possible.size(); ++i) {
        for (std::size_t j = i + 1; j < possible.size(); ++j) {
            if (isExplainedBy(facts, found, {possible[i], possible[j]})) return true;
        }
    }
    if (possible.size() < 3 || !matches(evaluate(card, facts.cells, scratch, all), found)) {
        return false;
    }
    for (const FindingId id : possible) {
        Explained &explained = result.explained[id];
        if (explained.rows++ == 0) explained.firstRow = facts.row;
    }
    ++result.explainedRows;
    return true;
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

// Tries whether the row would be right if one column had been read as missing or as some other
// value, or if two columns had been exchanged.
void Comparison::blame(const RowFacts &facts, const Prediction &found) {
    FindingSet table;
    for (const FindingId id :
         {LowestSegment, LowestPoint, LowestNan, NoProbability, LogisticAbsent, LogisticLastRow}) {
        if (std::ranges::find(known, id) != known.end()) table.add(id);
    }
    const Deviations deviations = {table, options.target};
    const auto isRight = [&](double score) {
        return matches({score, probabilityOf(card, score)}, found) ||
               matches({score, probabilityOf(card, score, deviations)}, found);
    };
    const auto pointsOf = [&](std::size_t i, double score) {
        return card.recodings[i].coefficient * (score - facts.recoded[i].score);
    };
    QStringList possible;
    for (std::size_t column = 0; column < recodingsOf.size(); ++column) {
        double asMissing = facts.expected.score;
        bool isOther = false;
        for (const std::size_t i : recodingsOf[column]) {
            const std::span<const double> y = card.recodings[i].y;
            asMissing += pointsOf(i, y[0]);
            isOther = isOther || std::ranges::any_of(y, [&](double score) {
                          return isRight(facts.expected.score + pointsOf(i, score));
                      });
        }
        const QString &field = card.columns[column];
        if (isRight(asMissing)) {
            possible.append(u"%1 read as missing"_s.arg(field));
        } else if (isOther) {
            possible.append(u"%1 read as another value"_s.arg(field));
        }
    }
    const std::size_t tried = recodingsOf.size() > mostExchanged ? 0 : recodingsOf.size();
    for (std::size_t a = 0; a < tried; ++a) {
        for (std::size_t b = a + 1; b < tried; ++b) {
            double score = facts.expected.score;
            for (const auto &[to, from] : {std::pair(a, b), std::pair(b, a)}) {
                for (const std::size_t i : recodingsOf[to]) {
                    score += pointsOf(i, recode(card.recodings[i], facts.cells[from], {}).score);
                }
            }
            if (score != facts.expected.score && isRight(score)) {
                possible.append(u"%1 and %2 exchanged"_s.arg(card.columns[a], card.columns[b]));
            }
        }
    }
    const bool hasBoth = columns[1] != noColumn && columns[2] != noColumn;
    if (hasBoth && matches(facts.expected, {found.probability, found.score})) {
        possible = {u"score and probability exchanged in the results"_s};
    }
    // What fits everything tells nothing.
    if (possible.size() > 3) return;
    for (const QString &fault : possible) ++faults[fault];
}

void Comparison::compare(const RowFacts &facts) {
    Prediction found;
    if (!find(facts, found)) {
        ++result.missing;
        name(result.firstMissing, describe(facts));
        return;
    }
    ++result.rows;
    if (matches(facts.expected, found)) {
        ++result.equal;
    } else if (!explain(facts, found)) {
        if (++result.unexplained <= mostBlamed) blame(facts, found);
        keepWorst(facts, found);
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
    result.blamed.assign(faults.begin(), faults.end());
    std::ranges::stable_sort(result.blamed, std::greater(),
                             [](const auto &fault) { return fault.second; });
    return results.problem();
}
