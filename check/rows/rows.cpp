#include "check/rows/rows.h"

#include "model/sql_dialect.h"
#include "platform/platform.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

constexpr std::size_t scoreSteps = 60;
constexpr std::size_t noPosition = static_cast<std::size_t>(-1);

// --- Scores as CSV

struct ScoreFile {
    OutputFile file;
    std::vector<char> text;
    std::size_t used = 0;
};

void flush(ScoreFile &out) {
    const std::size_t size = std::exchange(out.used, 0);
    if (size > 0) std::fwrite(out.text.data(), 1, size, out.file.stream.get());
}

// Where so many characters may be put; what was used of them is to be counted.
char *roomFor(ScoreFile &out, std::size_t size) {
    constexpr std::size_t block = 1 << 16;
    if (out.used + size > out.text.size()) {
        flush(out);
        out.text.resize(std::max({size, block, out.text.size()}));
    }
    return out.text.data() + out.used;
}

void put(ScoreFile &out, std::string_view text) {
    text.copy(roomFor(out, text.size()), text.size());
    out.used += text.size();
}

constexpr std::ptrdiff_t longestNumber = 32;

// Nothing for what is no number. Digits are made where they stay: copying fresh ones is slow.
template <typename Number>
char *numberAt(char *at, Number number) {
    const bool isNumber = !std::isnan(static_cast<double>(number));
    return isNumber ? std::to_chars(at, at + longestNumber, number).ptr : at;
}

void putCell(ScoreFile &out, std::string_view cell, char delimiter) {
    const char special[] = {'"', '\n', '\r', delimiter};
    if (cell.find_first_of({special, sizeof special}) == std::string_view::npos) {
        put(out, cell);
        return;
    }
    QByteArray quoted(cell.data(), std::ssize(cell));
    quoted = '"' + quoted.replace('"', "\"\"") + '"';
    put(out, {quoted.data(), static_cast<std::size_t>(quoted.size())});
}

// --- Findings that affect a row

// What tells whether a cell is affected by a finding: it is recoded otherwise.
struct RowTest {
    std::size_t finding; // its position
    std::size_t recoding;
    Deviations deviations;
};

struct RowTests {
    std::vector<std::vector<RowTest>> ofColumns;
    std::vector<RowTest> ofRows;   // what another column decides
    std::vector<RowTest> ofScores; // what the score decides
    std::size_t ofKey = noPosition;
};

RowTests testsOf(const Scorecard &card, std::span<const Finding> findings) {
    RowTests tests;
    tests.ofColumns.resize(card.columns.size());
    for (std::size_t i = 0; i < findings.size(); ++i) {
        const Finding &finding = findings[i];
        if (!finding.countsRows()) continue;
        const auto recoding = static_cast<std::size_t>(std::max(finding.recoding, 0));
        // Most do the same in all targets.
        const bool isOfTarget = finding.id == MissingCodesName || finding.id == NamesAlike;
        for (const Target target : listTargets(finding.targets)) {
            RowTest test = {i, recoding, {{finding.id}, target}};
            // What else is taken as above all bounds takes the last of a long array too.
            if (finding.id == ArrayTooLong) test.deviations.findings.add(NotANumber);
            if (finding.id == KeyLength) {
                tests.ofKey = i;
            } else if (finding.recoding < 0) {
                tests.ofScores.push_back(test);
            } else if (finding.id == NamesAlike) {
                tests.ofRows.push_back(test);
            } else {
                tests.ofColumns[card.recodings[recoding].column].push_back(test);
            }
            if (!isOfTarget) break;
        }
    }
    return tests;
}

// --- Cells

// The first characters of a cell, and how many it has.
struct CellStart {
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::size_t size = noPosition;

    bool operator==(const CellStart &) const = default;
};

std::uint64_t wordAt(std::string_view cell, std::size_t at) {
    std::uint64_t word = 0;
    if (cell.size() <= at) return word;
    std::memcpy(&word, cell.data() + at, sizeof word);
    const std::size_t size = cell.size() - at;
    return size < sizeof word ? word & ((std::uint64_t(1) << (8 * size)) - 1) : word;
}

// A cell with all that the model and the findings make of it.
struct JudgedCell {
    CellStart start;
    std::int64_t rows = 0; // since it was judged
    std::int64_t firstRow = 0;
    std::vector<Recoded> recoded; // by each recoding of the column
    std::string raw;
    Cell cell;
    std::vector<std::size_t> affected; // findings, by their positions
};

// Columns repeat their values, so that most cells were judged before. Each cell has one place among
// those of its column, which are a power of two.
std::size_t placesOf(std::size_t columns) {
    constexpr std::size_t most = 1 << 16;
    return std::bit_floor(
        std::clamp<std::size_t>(most / std::max<std::size_t>(columns, 1), 1, 2048));
}

// --- Rows

// Takes the columns of the model and that of the key.
struct RowScorer {
    const Scorecard &card;
    std::vector<Finding> &findings;
    const RowOptions &options;
    RowCounts &counts;
    Comparison comparison = {card, options};
    CsvReader reader = {};
    std::size_t keyAt = noPosition;
    ScoreFile out = {};
    RowTests tests = testsOf(card, findings);
    std::size_t places = placesOf(card.columns.size());
    std::vector<JudgedCell> judged = std::vector<JudgedCell>(card.columns.size() * places);
    std::vector<JudgedCell *> row = std::vector<JudgedCell *>(card.columns.size());
    std::string key = {};
    std::vector<Recoded> recoded = std::vector<Recoded>(card.recodings.size());
    std::vector<Cell> cells = {};

    void takeCell(std::size_t place, std::string_view bytes);
    void endRow();
};

// Adds the rows of a cell to the counts.
void countCell(RowScorer &scorer, std::size_t column, JudgedCell &judged) {
    if (judged.rows == 0) return;
    for (std::size_t i = 0; i < judged.recoded.size(); ++i) {
        const std::size_t recoding = scorer.card.recodingsOf[column][i];
        scorer.counts.positions[recoding][judged.recoded[i].position] += judged.rows;
    }
    for (const std::size_t position : judged.affected) {
        Finding &finding = scorer.findings[position];
        if (finding.rows == 0) finding.firstRow = judged.firstRow;
        finding.firstRow = std::min(finding.firstRow, judged.firstRow);
        finding.rows += judged.rows;
    }
    judged.rows = 0;
}

// Takes the place of another cell. Kept apart, so that a cell that was judged needs few registers.
[[gnu::noinline]] void judge(RowScorer &scorer, std::size_t column, JudgedCell &judged,
                             const CellStart &start, std::string_view bytes) {
    countCell(scorer, column, judged);
    judged.start = start;
    judged.raw = bytes;
    judged.firstRow = scorer.reader.row + 1;
    judged.cell = cellOf(judged.raw, scorer.options.missing);
    judged.recoded.clear();
    for (const std::size_t i : scorer.card.recodingsOf[column]) {
        judged.recoded.push_back(recode(scorer.card.recodings[i], judged.cell));
    }
    judged.affected.clear();
    for (const RowTest &test : scorer.tests.ofColumns[column]) {
        if (!judged.affected.empty() && judged.affected.back() == test.finding) continue;
        const Recoding &recoding = scorer.card.recodings[test.recoding];
        const Recoded &meant = judged.recoded[recoding.rank];
        // A text of the document is none of the numbers, also where it happens to score the same.
        const bool isListedText =
            test.deviations.has(BooleanNumbers) && meant.position > 0 && !judged.cell.isNumber;
        if (isListedText || differ(recode(recoding, judged.cell, test.deviations), meant)) {
            judged.affected.push_back(test.finding);
        }
    }
}

void RowScorer::takeCell(std::size_t place, std::string_view bytes) {
    if (place == row.size()) {
        key = bytes;
        return;
    }
    const CellStart start = {wordAt(bytes, 0), wordAt(bytes, 8), bytes.size()};
    const std::uint64_t mixed = (start.first ^ start.second) * 0x9E3779B97F4A7C15U;
    JudgedCell &cell = judged[place * places + ((mixed >> 48U) & (places - 1))];
    row[place] = &cell;
    const bool isOther = cell.start != start || (start.size > readableBytes && cell.raw != bytes);
    if (isOther) judge(*this, place, cell, start, bytes);
    ++cell.rows;
}

void affect(RowScorer &scorer, std::size_t position, FindingSet &affected) {
    Finding &finding = scorer.findings[position];
    if (finding.rows++ == 0) finding.firstRow = scorer.reader.row;
    affected.add(finding.id);
}

// Counts what no cell alone decides.
void countFindings(RowScorer &scorer, const Prediction &prediction, FindingSet &affected) {
    std::size_t last = scorer.findings.size(); // finding that is counted
    for (const RowTest &test : scorer.tests.ofRows) {
        const Recoding &recoding = scorer.card.recodings[test.recoding];
        const auto target = static_cast<std::size_t>(test.deviations.target);
        const Cell &cell = scorer.row[recoding.lastAlike[target]]->cell;
        const bool isAffected = differ(recode(recoding, cell), scorer.recoded[test.recoding]);
        if (!isAffected || last == test.finding) continue;
        last = test.finding;
        affect(scorer, last, affected);
    }
    // What targets do otherwise is at the lower end of the table.
    const auto &x = scorer.card.table.x;
    if (x.size() > 1 && prediction.score > x[x.size() - 2]) return;
    for (const RowTest &test : scorer.tests.ofScores) {
        const double other = probabilityOf(scorer.card, prediction.score, test.deviations);
        if (differ({0, other}, {0, prediction.probability})) affect(scorer, test.finding, affected);
    }
}

void countKey(RowScorer &scorer, std::string_view key, FindingSet &affected) {
    constexpr qsizetype longest = longestSqlKey;
    if (scorer.tests.ofKey == noPosition || key.size() <= longest) return;
    if (QString::fromUtf8(key).size() > longest) affect(scorer, scorer.tests.ofKey, affected);
}

void countScore(RowCounts &counts, double score) {
    const auto [least, most] = counts.range;
    const double step = (score - least) / (most - least) * scoreSteps;
    if (!(step >= 0)) return; // no number, or a model of one score
    const auto last = static_cast<double>(scoreSteps - 1);
    ++counts.scores[static_cast<std::size_t>(std::min(step, last))];
}

void putRow(RowScorer &scorer, std::string_view key, const Prediction &prediction) {
    ScoreFile &out = scorer.out;
    const bool hasKey = scorer.keyAt != noPosition;
    if (hasKey) putCell(out, key, scorer.options.delimiter);
    char *at = roomFor(out, 4 * longestNumber);
    if (!hasKey) at = numberAt(at, scorer.reader.row);
    for (const double number : {prediction.score, prediction.probability}) {
        *at++ = scorer.options.delimiter;
        at = numberAt(at, number);
    }
    *at++ = '\n';
    out.used = static_cast<std::size_t>(at - out.text.data());
}

void RowScorer::endRow() {
    for (std::size_t i = 0; i < recoded.size(); ++i) {
        recoded[i] = row[card.recodings[i].column]->recoded[card.recodings[i].rank];
    }
    const double score = scoreOf(card, recoded);
    const Prediction prediction = {score, probabilityOf(card, score)};
    FindingSet affected;
    countFindings(*this, prediction, affected);
    const std::string_view cell = keyAt < row.size() ? row[keyAt]->raw : key;
    countKey(*this, trimmed(cell), affected);
    countScore(counts, score);
    if (out.file.stream) putRow(*this, cell, prediction);
    if (options.results.isEmpty()) return;
    cells.clear();
    for (const JudgedCell *const judgedCell : row) {
        cells.push_back(judgedCell->cell);
        for (const std::size_t position : judgedCell->affected) affected.add(findings[position].id);
    }
    compareRow(comparison, {reader.row, trimmed(cell), cells, recoded, prediction, affected});
}

// Opens the files, the results before anything is written. Returns what is wrong, or an empty text.
QString start(RowScorer &scorer) {
    const RowOptions &options = scorer.options;
    QString problem;
    if (!options.results.isEmpty()) problem = openResults(scorer.comparison, scorer.findings);
    if (problem.isEmpty()) problem = scorer.reader.open(options.file, options.delimiter);
    if (!problem.isEmpty()) return problem;
    std::vector<QString> wanted = scorer.card.columns;
    if (!options.key.isEmpty()) {
        const auto at = std::ranges::find(wanted, options.key);
        scorer.keyAt = static_cast<std::size_t>(at - wanted.begin());
        if (at == wanted.end()) wanted.push_back(options.key);
    }
    problem = scorer.reader.choose(wanted);
    if (!problem.isEmpty()) return problem;
    if (options.scores.isEmpty()) return {};
    scorer.out.file.stream.reset(openFile(options.scores, FileUse::Write));
    if (!scorer.out.file.stream) {
        return u"Cannot open file '%1' for writing."_s.arg(options.scores);
    }
    ScoreFile &out = scorer.out;
    putCell(out, options.key.isEmpty() ? "row" : options.key.toStdString(), options.delimiter);
    put(out, std::string{options.delimiter} + "score" + options.delimiter + "probability\n");
    return {};
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
        countCell(scorer, i / scorer.places, scorer.judged[i]);
    }
    counts.rows = scorer.reader.row;
    counts.uneven = scorer.reader.uneven;
    counts.firstUneven = scorer.reader.firstUneven;
    if (scorer.out.file.stream) {
        flush(scorer.out);
        if (!isClosed(scorer.out.file)) return u"Cannot write to file '%1'."_s.arg(options.scores);
    }
    if (!scorer.reader.problem.isEmpty() || options.results.isEmpty()) {
        return scorer.reader.problem;
    }
    problem = finishComparison(scorer.comparison);
    compared = std::move(scorer.comparison.result);
    return problem;
}
