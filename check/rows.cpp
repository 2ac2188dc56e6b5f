#include "check/rows.h"

#include "model/output_file.h"
#include "platform/platform.h"

#include <algorithm>
#include <charconv>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

constexpr std::size_t scoreSteps = 60;

// --- Scores as CSV

// Numbers become text where they are to stand.
class ScoreFile {
public:
    bool open(const QString &fileName) {
        file.reset(openFile(fileName, FileUse::Write));
        return file != nullptr;
    }
    bool isOpen() const { return file != nullptr; }
    void put(char c) {
        *reserve(1) = c;
        ++used;
    }
    void put(std::string_view piece) {
        piece.copy(reserve(piece.size()), piece.size());
        used += piece.size();
    }
    // Nothing for what is no number.
    template <typename Number>
    void put(Number number) {
        if (std::isnan(static_cast<double>(number))) return;
        constexpr std::size_t longest = 32;
        char *const at = reserve(longest);
        used += static_cast<std::size_t>(std::to_chars(at, at + longest, number).ptr - at);
    }
    void putCell(std::string_view cell, char delimiter) {
        const std::string special = {'"', '\n', '\r', delimiter};
        if (cell.find_first_of(special) == std::string_view::npos) {
            put(cell);
            return;
        }
        put('"');
        for (const char c : cell) {
            if (c == '"') put(c);
            put(c);
        }
        put('"');
    }
    // What follows the cell of the key.
    template <typename Score>
    void putRow(const Score &score, const Score &probability, char delimiter) {
        put(delimiter);
        put(score);
        put(delimiter);
        put(probability);
        put('\n');
    }
    // Whether the device took everything.
    bool close() {
        flush();
        return std::fclose(file.release()) == 0 && isWritten;
    }

private:
    void flush() {
        if (used > 0)
            isWritten = std::fwrite(text.data(), 1, used, file.get()) == used && isWritten;
        used = 0;
    }
    char *reserve(std::size_t size) {
        constexpr std::size_t block = 1 << 16;
        if (used + size > text.size()) {
            flush();
            if (text.size() < size) text.resize(std::max(size, block));
        }
        return text.data() + used;
    }

    std::unique_ptr<std::FILE, OutputFile::Close> file;
    std::vector<char> text;
    std::size_t used = 0;
    bool isWritten = true;
};

// --- The findings that a row is touched by

struct Counter {
    const Scorecard &card;
    std::vector<Finding> &findings;
    std::vector<std::size_t> ofRecodings; // findings, by their positions
    std::vector<std::size_t> ofTable;     // those that the score decides
    std::size_t ofKey = static_cast<std::size_t>(-1);
};

Counter makeCounter(const Scorecard &card, std::vector<Finding> &findings) {
    Counter counter{.card = card, .findings = findings, .ofRecodings = {}, .ofTable = {}};
    for (std::size_t i = 0; i < findings.size(); ++i) {
        if (!findings[i].byRows) continue;
        if (findings[i].recoding >= 0) {
            counter.ofRecodings.push_back(i);
        } else if (findings[i].id == KeyLength) {
            counter.ofKey = i;
        } else {
            counter.ofTable.push_back(i);
        }
    }
    return counter;
}

void touch(Finding &finding, std::int64_t row, FindingSet &touched) {
    if (finding.rows++ == 0) finding.firstRow = row;
    touched.add(finding.id);
}

bool differs(double a, double b) {
    return a != b && !(std::isnan(a) && std::isnan(b));
}

// Whether the cell could be touched at all: most findings are about few cells.
bool mayTouch(FindingId id, const Recoding &recoding, const Cell &cell, const Recoded &recoded) {
    switch (id) {
    case BooleanBlanks:
    case TextBlanks:
        return cell.raw.size() != cell.text.size();
    case Capitals:
        return !cell.text.empty() &&
               (recoded.position == 0 || recoding.folded.size() < recoding.values.size());
    case NotANumber:
        return recoded.position == 0 && !cell.text.empty();
    case EmptyValue:
        return cell.text.empty();
    case TrueFalse:
        return cell.text.size() == 4 || cell.text.size() == 5;
    case SingleBound:
        return recoded.position == 0;
    default:
        return true;
    }
}

bool isTouched(const Recoding &recoding, const Finding &finding, std::span<const Cell> cells,
               const Recoded &recoded) {
    const bool isOther = finding.id == NamesAlike; // the cell that counts
    if (!isOther && !mayTouch(finding.id, recoding, cells[recoding.column], recoded)) return false;
    if (finding.id == FiveCategories) return recoded.position != 0;
    if (finding.id == BooleanDigits) {
        return recoded.position != 0 && recoding.sixDigitScores[recoded.position] != recoded.score;
    }
    const auto differsFor = [&](Target target) {
        Deviations deviations = {{finding.id}, target};
        // What else is taken as above all bounds takes the last of a long array too.
        if (finding.id == ArrayTooLong) deviations.findings.add(NotANumber);
        const std::size_t alike = recoding.lastAlike[static_cast<std::size_t>(target)];
        const Cell &cell = cells[isOther ? alike : recoding.column];
        const Recoded other = recode(recoding, cell, deviations);
        return other.position != recoded.position || differs(other.score, recoded.score);
    };
    for (std::size_t t = 0; t < targetCount; ++t) {
        if (finding.targets.test(t) && differsFor(static_cast<Target>(t))) return true;
    }
    return false;
}

void countRow(Counter &counter, std::int64_t row, std::span<const Cell> cells,
              std::span<const Recoded> recoded, const Prediction &prediction, FindingSet &touched) {
    for (const std::size_t index : counter.ofRecodings) {
        Finding &finding = counter.findings[index];
        const auto at = static_cast<std::size_t>(finding.recoding);
        const Recoding &recoding = counter.card.recodings[at];
        if (isTouched(recoding, finding, cells, recoded[at])) touch(finding, row, touched);
    }
    // What targets do otherwise is at the lower end of the table.
    const std::pmr::vector<double> &x = counter.card.table.x;
    if (x.size() > 1 && prediction.score > x[x.size() - 2]) return;
    for (const std::size_t index : counter.ofTable) {
        Finding &finding = counter.findings[index];
        const double other =
            probabilityOf(counter.card, prediction.score, {{finding.id}, Target::Sas});
        if (differs(other, prediction.probability)) touch(finding, row, touched);
    }
}

void countKey(Counter &counter, std::int64_t row, std::string_view key, FindingSet &touched) {
    constexpr qsizetype longest = 20;
    if (counter.ofKey >= counter.findings.size() || key.size() <= longest) return;
    const auto size = QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size())).size();
    if (size > longest) touch(counter.findings[counter.ofKey], row, touched);
}

// --- Counts for reports

void findScoreRange(const Scorecard &card, RowCounts &counts) {
    counts.lowestScore = counts.highestScore = card.regression.constant;
    for (const Recoding &recoding : card.recodings) {
        const auto [least, most] = std::ranges::minmax(recoding.y);
        const double a = recoding.coefficient * least;
        const double b = recoding.coefficient * most;
        counts.lowestScore += std::min(a, b);
        counts.highestScore += std::max(a, b);
    }
}

void countScore(RowCounts &counts, double score) {
    const double width = counts.highestScore - counts.lowestScore;
    const double step = (score - counts.lowestScore) / width * scoreSteps;
    if (!(step >= 0)) return; // no number, or a model of one score
    const auto last = static_cast<double>(scoreSteps - 1);
    ++counts.scores[static_cast<std::size_t>(std::min(step, last))];
}

// The columns of the model, and that of the key, which may be one of them.
QString chooseColumns(CsvReader &reader, const Scorecard &card, const RowOptions &options,
                      std::size_t &keyAt) {
    QString problem;
    std::vector<QString> wanted = card.columns;
    if (!options.key.isEmpty()) wanted.push_back(options.key);
    std::vector<std::size_t> chosen = findColumns(reader, wanted, options.file, problem);
    if (!problem.isEmpty()) return problem;
    if (!options.key.isEmpty()) {
        keyAt = static_cast<std::size_t>(std::ranges::find(chosen, chosen.back()) - chosen.begin());
        if (keyAt < card.columns.size()) chosen.pop_back();
    }
    reader.choose(chosen);
    return {};
}

void startCounts(const Scorecard &card, RowCounts &counts) {
    counts.scores.assign(scoreSteps, 0);
    findScoreRange(card, counts);
    for (const Recoding &recoding : card.recodings) {
        counts.positions.emplace_back(recoding.y.size());
    }
}

} // namespace

QString scoreRows(const Scorecard &card, std::vector<Finding> &findings, const RowOptions &options,
                  Comparison *comparison, RowCounts &counts) {
    CsvReader reader;
    QString problem = reader.open(options.file, options.delimiter);
    if (!problem.isEmpty()) return problem;
    const bool hasKey = !options.key.isEmpty();
    std::size_t keyAt = 0;
    problem = chooseColumns(reader, card, options, keyAt);
    if (!problem.isEmpty()) return problem;
    ScoreFile out;
    if (!options.scores.isEmpty()) {
        if (!out.open(options.scores)) {
            return u"Cannot open file '%1' for writing."_s.arg(options.scores);
        }
        out.putCell(hasKey ? options.key.toStdString() : "row", options.delimiter);
        out.putRow<std::string_view>("score", "probability", options.delimiter);
    }
    startCounts(card, counts);
    Counter counter = makeCounter(card, findings);
    std::vector<Cell> cells(card.columns.size());
    std::vector<Recoded> recoded(card.recodings.size());
    while (reader.next()) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            cells[i] = cellOf(reader.cell(i), options.missing);
        }
        const Prediction prediction = evaluate(card, cells, recoded);
        FindingSet touched;
        countRow(counter, reader.row(), cells, recoded, prediction, touched);
        const std::string_view key = hasKey ? trimmed(reader.cell(keyAt)) : std::string_view();
        countKey(counter, reader.row(), key, touched);
        for (std::size_t i = 0; i < recoded.size(); ++i) ++counts.positions[i][recoded[i].position];
        countScore(counts, prediction.score);
        if (comparison) {
            comparison->compare({reader.row(), key, cells, recoded, prediction, touched});
        }
        if (!out.isOpen()) continue;
        if (hasKey) {
            out.putCell(reader.cell(keyAt), options.delimiter);
        } else {
            out.put(reader.row());
        }
        out.putRow(prediction.score, prediction.probability, options.delimiter);
    }
    counts.rows = reader.row();
    counts.uneven = reader.unevenRows();
    counts.firstUneven = reader.firstUnevenRow();
    if (out.isOpen() && !out.close()) return u"Cannot write to file '%1'."_s.arg(options.scores);
    if (!reader.problem().isEmpty()) return reader.problem();
    return comparison ? comparison->finish() : QString();
}
