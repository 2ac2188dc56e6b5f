#include "check/rows/rows.h"

#include "check/rows/csv_writer.h"
#include "model/sql_dialect.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <unordered_map>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

constexpr std::size_t scoreSteps = 60;
constexpr std::size_t noPosition = static_cast<std::size_t>(-1);

// --- Cells

// Cache entry: a cell with its scores and findings.
struct JudgedCell {
    std::int64_t rows = 0; // that are not counted yet
    std::int64_t firstRow = 0;
    std::vector<Recoded> recoded; // by each recoding of the column; empty in an unused entry
    std::string raw;
    CellFacts facts;
    CellFindings findings;
};

// Columns repeat their values, so that most cells were judged before. The cache is direct-mapped:
// each column has the same number of entries, a power of two.
std::size_t entriesOf(const RowOptions &options, std::size_t columns) {
    constexpr std::size_t most = 2048;
    const std::size_t share = options.cachedCells / std::max<std::size_t>(columns, 1);
    return std::bit_floor(std::clamp<std::size_t>(share, 1, most));
}

// Of the size, the first bytes and the last: enough for the entry of a short text.
std::size_t hashOf(std::string_view bytes) {
    std::uint64_t first = 0;
    std::uint64_t last = 0;
    if (bytes.size() >= sizeof first) {
        std::memcpy(&first, bytes.data(), sizeof first);
        std::memcpy(&last, bytes.data() + bytes.size() - sizeof last, sizeof last);
    } else {
        for (const char c : bytes) first = first << 8U | static_cast<unsigned char>(c);
    }
    return ((first ^ last << 1U ^ bytes.size()) * 0x9E3779B97F4A7C15U) >> 48U;
}

// How often unlisted texts of a column occur. If there are very many, rare ones are dropped, and
// each text may have occurred up to `more` times more.
struct TextCounts {
    std::unordered_map<std::string, std::int64_t> rows = {};
    std::int64_t more = 0;
};

// --- Rows

// A finding that depends on the score or on another column.
struct RowTest {
    std::size_t finding; // its index
    FindingId id;
    std::size_t recoding;
    Deviations deviations;
};

struct RowTests {
    std::vector<RowTest> ofNames; // of columns that become the same
    std::vector<RowTest> ofScores;
    std::size_t ofKey = noPosition;
};

RowTests testsOf(const RowOptions &options, std::span<const Finding> findings) {
    RowTests tests;
    for (std::size_t i = 0; i < findings.size(); ++i) {
        const Finding &finding = findings[i];
        if (!finding.countsRows()) continue;
        const auto recoding = static_cast<std::size_t>(std::max(finding.recoding, 0));
        RowTest test = {i, finding.id, recoding, {{finding.id}, Target::Sas, options.sql}};
        if (finding.id == KeyLength) {
            tests.ofKey = i;
        } else if (finding.recoding < 0) {
            tests.ofScores.push_back(test); // all targets do the same
        } else if (finding.id == NamesAlike) {
            for (const Target target : listTargets(finding.targets)) {
                test.deviations.target = target;
                tests.ofNames.push_back(test);
            }
        }
    }
    return tests;
}

// Receives the cells of the model's columns and of the key.
struct RowScorer {
    const Scorecard &card;
    std::vector<Finding> &findings;
    const RowOptions &options;
    RowCounts &counts;
    Comparison comparison = {card, options, testsOfColumns(card, findings)};
    CsvReader reader = {};
    DecimalMark mark = DecimalMark::Point;
    std::size_t keyAt = noPosition;
    CsvWriter out = {};
    RowTests tests = testsOf(options, findings);
    std::vector<TextCounts> unlisted = std::vector<TextCounts>(card.columns.size());
    std::size_t entries = entriesOf(options, card.columns.size());
    std::vector<JudgedCell> judged = std::vector<JudgedCell>(card.columns.size() * entries);
    std::vector<JudgedCell *> row = std::vector<JudgedCell *>(card.columns.size());
    std::string key = {};
    std::vector<Recoded> recoded = std::vector<Recoded>(card.recodings.size());
    std::vector<const CellFacts *> cells = std::vector<const CellFacts *>(card.columns.size());

    void takeCell(std::size_t place, std::string_view bytes);
    void endRow();
};

void countUnlisted(TextCounts &texts, const JudgedCell &judged) {
    constexpr std::size_t most = 1000;
    texts.rows[std::string(judged.facts.cell.text)] += judged.rows;
    if (texts.rows.size() <= most) return;
    std::int64_t least = judged.rows;
    for (const auto &[text, rows] : texts.rows) least = std::min(least, rows);
    texts.more += least;
    for (auto &[text, rows] : texts.rows) rows -= least;
    std::erase_if(texts.rows, [](const auto &text) { return text.second == 0; });
}

// Adds the rows of a cell to the counts.
void countCell(RowScorer &scorer, std::size_t column, JudgedCell &judged) {
    if (judged.rows == 0) return;
    for (std::size_t i = 0; i < judged.recoded.size(); ++i) {
        const std::size_t recoding = scorer.card.recodingsOf[column][i];
        scorer.counts.positions[recoding][judged.recoded[i].position] += judged.rows;
    }
    for (const std::size_t index : judged.findings.together) {
        scorer.findings[index].togetherRows += judged.rows;
    }
    for (const std::size_t index : judged.findings.alone) {
        Finding &finding = scorer.findings[index];
        if (finding.rows == 0) finding.firstRow = judged.firstRow;
        finding.firstRow = std::min(finding.firstRow, judged.firstRow);
        finding.rows += judged.rows;
        if (finding.id == NotListed) countUnlisted(scorer.unlisted[column], judged);
    }
    judged.rows = 0;
}

// Cache miss: judges the cell and replaces the entry's old one. Out of line to keep the hit short.
[[gnu::noinline]] void judge(RowScorer &scorer, std::size_t column, JudgedCell &judged,
                             std::string_view bytes) {
    countCell(scorer, column, judged);
    judged.raw = bytes;
    judged.firstRow = scorer.reader.row + 1;
    judged.facts.cell = cellOf(judged.raw, scorer.options.missing, scorer.mark);
    judged.recoded.clear();
    for (const std::size_t i : scorer.card.recodingsOf[column]) {
        judged.recoded.push_back(recode(scorer.card.recodings[i], judged.facts.cell));
    }
    const ColumnTests &tests = scorer.comparison.tests[column];
    const RowOptions &options = scorer.options;
    const std::vector<const Cell *> cells(judged.recoded.size(), &judged.facts.cell);
    judged.findings = findingsOf(scorer.card, tests, column, cells, judged.recoded, options.sql);
    if (options.results.isEmpty()) return;
    judged.facts.choices =
        choicesOf(scorer.card, tests, column, cells, judged.recoded, options.deviations());
    judged.facts.beside = changesBeside(scorer.card, column, judged.facts.cell);
}

void RowScorer::takeCell(std::size_t place, std::string_view bytes) {
    if (place == row.size()) {
        key = bytes;
        return;
    }
    JudgedCell &cell = judged[place * entries + (hashOf(bytes) & (entries - 1))];
    row[place] = &cell;
    const bool isHit = !cell.recoded.empty() && std::string_view(cell.raw) == bytes;
    if (!isHit) judge(*this, place, cell, bytes);
    ++cell.rows;
}

void affect(RowScorer &scorer, std::size_t index) {
    Finding &finding = scorer.findings[index];
    if (finding.rows++ == 0) finding.firstRow = scorer.reader.row;
}

// Whether the finding may affect rows with this score: a quick test.
bool mayAffectScore(const Scorecard &card, FindingId id, double score) {
    const std::span<const double> x = card.table.x;
    switch (id) {
    case BoundDigits: {
        constexpr double share = 1e-13; // of a number, which 15 digits may lose
        return hasPointBeside(card, score, share * std::abs(score));
    }
    case LogisticOverflow: {
        constexpr double highest = -700;
        return score < highest;
    }
    case LowestSegment:
    case LowestPoint:
    case LowestNan:
        return x.size() < 2 || score <= x[x.size() - 2];
    default:
        return true;
    }
}

bool isAffected(const Scorecard &card, const RowTest &test, const Prediction &prediction) {
    if (!mayAffectScore(card, test.id, prediction.score)) return false;
    const double other = probabilityOf(card, prediction.score, test.deviations);
    constexpr double rounding = 1e-9; // of the probability where the table has no jump
    const bool isRounded =
        test.id == BoundDigits && std::abs(other - prediction.probability) <= rounding;
    return !isRounded && differ({0, other}, {0, prediction.probability});
}

// Counts the findings that depend on more than one cell.
void countFindings(RowScorer &scorer, const Prediction &prediction) {
    std::size_t last = scorer.findings.size(); // finding that is counted
    for (const RowTest &test : scorer.tests.ofNames) {
        const Recoding &recoding = scorer.card.recodings[test.recoding];
        const auto target = static_cast<std::size_t>(test.deviations.target);
        const Cell &cell = scorer.row[recoding.lastAlike[target]]->facts.cell;
        const bool isOther = differ(recode(recoding, cell), scorer.recoded[test.recoding]);
        if (!isOther || last == test.finding) continue;
        last = test.finding;
        affect(scorer, last);
    }
    for (const RowTest &test : scorer.tests.ofScores) {
        if (isAffected(scorer.card, test, prediction)) affect(scorer, test.finding);
    }
}

void countKey(RowScorer &scorer, std::string_view key) {
    constexpr qsizetype longest = longestSqlKey;
    if (scorer.tests.ofKey == noPosition || key.size() <= longest) return;
    if (QString::fromUtf8(key).size() > longest) affect(scorer, scorer.tests.ofKey);
}

void countScore(RowCounts &counts, double score) {
    const auto [least, most] = counts.range;
    const double step = (score - least) / (most - least) * scoreSteps;
    if (!(step >= 0)) return; // NaN, or a model of one score
    const auto last = static_cast<double>(scoreSteps - 1);
    ++counts.scores[static_cast<std::size_t>(std::min(step, last))];
}

void putRow(RowScorer &scorer, std::string_view key, const Prediction &prediction) {
    CsvWriter &out = scorer.out;
    putKey(out, scorer.options, key, scorer.reader.row);
    out.put(prediction.score);
    out.put(prediction.probability);
    out.endRow();
}

void RowScorer::endRow() {
    for (std::size_t i = 0; i < recoded.size(); ++i) {
        recoded[i] = row[card.recodings[i].column]->recoded[card.recodings[i].rank];
    }
    const double score = scoreOf(card, recoded);
    const Prediction prediction = {score, probabilityOf(card, score)};
    countFindings(*this, prediction);
    const std::string_view cell = keyAt < row.size() ? row[keyAt]->raw : key;
    countKey(*this, trimmed(cell));
    countScore(counts, score);
    if (out.isOpen()) putRow(*this, cell, prediction);
    if (options.results.isEmpty()) return;
    for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = &row[i]->facts;
    compareRow(comparison, {reader.row, trimmed(cell), cells, recoded, prediction});
}

// Opens the files, the results before anything is written. Returns an error message; empty on
// success.
QString start(RowScorer &scorer) {
    const RowOptions &options = scorer.options;
    QString problem;
    scorer.reader.shownAs = u"rows";
    scorer.reader.hashesBytes = options.hashesFiles;
    if (!options.results.isEmpty()) problem = openResults(scorer.comparison, scorer.findings);
    if (!problem.isEmpty()) return problem;
    std::vector<QString> wanted = scorer.card.columns;
    if (!options.key.isEmpty()) {
        const auto at = std::ranges::find(wanted, options.key);
        scorer.keyAt = static_cast<std::size_t>(at - wanted.begin());
        if (at == wanted.end()) wanted.push_back(options.key);
    }
    problem = scorer.reader.open(options.file, options.delimiters(), wanted);
    if (!problem.isEmpty()) return problem;
    const char delimiter = scorer.reader.delimiter;
    if (options.hasDecimalComma) {
        // Between commas, a decimal comma needs quotation marks: full stops are read too.
        scorer.mark = delimiter == ',' ? DecimalMark::Either : DecimalMark::Comma;
    }
    problem = openDifferences(scorer.comparison, delimiter);
    if (!problem.isEmpty()) return problem;
    return openOutput(scorer.out, options.scores, delimiter, options, {"score", "probability"});
}

FileRead readBy(const CsvReader &reader) {
    return {reader.bytesRead, reader.row, reader.sha256()};
}

// Adds the most frequent unlisted text to the place of the finding.
void nameUnlisted(RowScorer &scorer) {
    for (Finding &finding : scorer.findings) {
        if (finding.id != NotListed || finding.rows == 0) continue;
        const auto recoding = static_cast<std::size_t>(finding.recoding);
        const TextCounts &texts = scorer.unlisted[scorer.card.recodings[recoding].column];
        const auto most = std::ranges::max_element(texts.rows, {}, [](const auto &text) {
            return std::pair(text.second, std::string_view(text.first));
        });
        if (most == texts.rows.end()) continue;
        finding.place += u", most often '%1' in %2%3"_s.arg(
            shownText(most->first), texts.more > 0 ? u"at least "_s : QString(),
            rowsText(most->second));
    }
}

} // namespace

QString scoreRows(const Scorecard &card, std::vector<Finding> &findings, const RowOptions &options,
                  RowCounts &counts, ComparisonResult &compared) {
    RowScorer scorer = {card, findings, options, counts};
    QString problem = start(scorer);
    if (!problem.isEmpty()) return problem;
    counts.scores.assign(scoreSteps, 0);
    counts.range = scoreRange(card);
    for (const Recoding &recoding : card.recodings) {
        counts.positions.emplace_back(recoding.y.size());
    }
    while (scorer.reader.read(scorer)) continue;
    for (std::size_t i = 0; i < scorer.judged.size(); ++i) {
        countCell(scorer, i / scorer.entries, scorer.judged[i]);
    }
    nameUnlisted(scorer);
    counts.rows = scorer.reader.row;
    counts.rowsRead = readBy(scorer.reader);
    counts.uneven = scorer.reader.uneven;
    counts.firstUneven = scorer.reader.firstUneven;
    problem = scorer.out.close();
    if (!problem.isEmpty()) return problem;
    if (!scorer.reader.problem.isEmpty() || options.results.isEmpty()) {
        return scorer.reader.problem;
    }
    problem = finishComparison(scorer.comparison, counts.positions, scorer.reader);
    counts.resultsRead = readBy(scorer.comparison.reader);
    compared = std::move(scorer.comparison.result);
    return problem;
}
