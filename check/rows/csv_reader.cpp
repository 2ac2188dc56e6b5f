#include "check/rows/csv_reader.h"

#include "check/evaluation/cell.h"
#include "platform/platform.h"

#include <QStringList>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <unordered_map>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::size_t blockSize = 1 << 16;
constexpr std::size_t largestCell = 1 << 26;

// An unclosed quotation mark makes one cell of the rest of the file. The library keeps a cell at
// the start of a block of at least 128 bytes.
void *resizeCell(void *cell, std::size_t size) {
    return size > largestCell ? nullptr : std::realloc(cell, size);
}

// Keeps blanks around cells, which some targets do not trim.
int isBlank(unsigned char /*character*/) {
    return 0;
}

// In UTF-16, one of the two bytes of an ASCII character is 0.
bool isUtf16(std::string_view bytes) {
    return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF") ||
           (bytes.size() > 1 && bytes.substr(0, 2).find('\0') != std::string_view::npos);
}

void prepare(csv_parser &parser, char delimiter) {
    if (csv_init(&parser, 0) != 0) throw std::bad_alloc();
    csv_set_delim(&parser, static_cast<unsigned char>(delimiter));
    csv_set_space_func(&parser, isBlank);
    csv_set_realloc_func(&parser, resizeCell);
}

// How many cells of the first line, as far as the block has it, are wanted, and how many there are.
// The wanted texts are sorted.
std::pair<std::size_t, std::size_t> countTitles(std::string_view block, char delimiter,
                                                std::span<const std::string> wanted) {
    struct Line {
        std::span<const std::string> wanted;
        std::pair<std::size_t, std::size_t> counts = {};
        bool isEnded = false;
    } line = {wanted};
    csv_parser parser{};
    prepare(parser, delimiter);
    const auto takeCell = [](void *bytes, std::size_t size, void *to) {
        Line &into = *static_cast<Line *>(to);
        if (into.isEnded) return;
        const std::string_view title = trimmed({static_cast<const char *>(bytes), size});
        if (std::ranges::binary_search(into.wanted, title)) ++into.counts.first;
        ++into.counts.second;
    };
    const auto endLine = [](int /*terminator*/, void *to) {
        static_cast<Line *>(to)->isEnded = true;
    };
    csv_parse(&parser, block.data(), block.size(), takeCell, endLine, &line);
    if (!line.isEnded) csv_fini(&parser, takeCell, endLine, &line);
    csv_free(&parser);
    return line.counts;
}

// What is left of a title without capitals and blanks.
QString plainTitle(const QString &title) {
    QString plain = title.toCaseFolded();
    plain.removeIf([](QChar c) { return c.isSpace(); });
    return plain;
}

QString quoted(const QString &text) {
    return u'\'' + text + u'\'';
}

} // namespace

QString shownText(std::string_view text) {
    constexpr qsizetype longest = 60;
    QString shown = QString::fromUtf8(text);
    if (shown.size() > longest) shown = shown.left(longest) + u'…';
    for (QChar &c : shown) {
        if (c.category() == QChar::Other_Control) c = u' ';
    }
    return shown;
}

CsvReader::~CsvReader() {
    csv_free(&parser);
}

QString CsvReader::open(const QString &fileName, std::string_view delimiters,
                        std::span<const QString> names) {
    name = fileName;
    file.stream.reset(openFile(fileName, FileUse::Read));
    if (!file.stream) return u"Cannot open file '%1'."_s.arg(fileName);
    if (!shownAs.isEmpty()) progress.begin(shownAs, fileSize(file.stream.get()));
    block.resize(blockSize);
    fill();
    if (isUtf16(unread)) return u"File '%1' is UTF-16; save it as UTF-8."_s.arg(name);
    if (unread.starts_with("\xEF\xBB\xBF")) unread.remove_prefix(3); // not part of the first title
    delimiter = findDelimiter(delimiters, names);
    prepare(parser, delimiter);
    const auto takeTitle = [](void *bytes, std::size_t size, void *reader) {
        CsvReader &r = *static_cast<CsvReader *>(reader);
        r.guard([&] { r.titles.emplace_back(static_cast<const char *>(bytes), size); });
    };
    const auto endTitles = [](int /*terminator*/, void *reader) {
        static_cast<CsvReader *>(reader)->hasHeader = true;
    };
    while (!hasHeader && parse(1, takeTitle, endTitles, this)) continue;
    if (!problem.isEmpty()) return problem;
    return titles.empty() ? u"File '%1' has no header line."_s.arg(fileName) : choose(names);
}

char CsvReader::findDelimiter(std::string_view delimiters, std::span<const QString> names) const {
    if (delimiters.size() == 1) return delimiters[0];
    std::vector<std::string> wanted;
    for (const QString &title : names) wanted.emplace_back(trimmed(title.toStdString()));
    std::ranges::sort(wanted);
    char best = delimiters[0];
    std::pair<std::size_t, std::size_t> most;
    for (const char candidate : delimiters) {
        const auto counts = countTitles(unread, candidate, wanted);
        if (counts > most) best = candidate;
        most = std::max(most, counts);
    }
    return best;
}

QString CsvReader::choose(std::span<const QString> names) {
    std::unordered_map<std::string_view, std::vector<std::size_t>> exact;
    std::unordered_map<std::string_view, std::vector<std::size_t>> plain;
    for (std::size_t i = 0; i < titles.size(); ++i) {
        exact[titles[i]].push_back(i);
        plain[trimmed(titles[i])].push_back(i);
    }
    const auto columnsOf = [&](const std::string &wanted) -> std::span<const std::size_t> {
        for (const auto *const of : {&exact, &plain}) {
            if (const auto found = of->find(wanted); found != of->end()) return found->second;
        }
        return {};
    };
    QString wrong;
    std::vector<QString> absent;
    placeOf.assign(titles.size(), notChosen);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::span<const std::size_t> columns = columnsOf(names[i].toStdString());
        if (columns.empty()) {
            absent.push_back(names[i]);
        } else if (columns.size() > 1) {
            wrong = u"File '%1' has two columns '%2'."_s.arg(name, names[i]);
        } else if (std::size_t &place = placeOf[columns[0]]; place != notChosen) {
            wrong =
                u"File '%1' has one column for '%2' and '%3'."_s.arg(name, names[place], names[i]);
        } else {
            place = i;
        }
    }
    return absent.empty() ? wrong : describeAbsent(absent);
}

QString CsvReader::describeAbsent(std::span<const QString> absent) const {
    constexpr qsizetype mostShown = 20;
    std::unordered_map<QString, QString> alike;
    QStringList there;
    for (const std::string &title : titles) {
        const QString shown = quoted(shownText(title));
        alike.try_emplace(plainTitle(QString::fromStdString(title)), shown);
        if (there.size() < mostShown) there.append(shown);
    }
    QStringList lacking;
    QString hints;
    for (const QString &title : absent) {
        lacking.append(quoted(title));
        const auto found = alike.find(plainTitle(title));
        if (found == alike.end()) continue;
        hints += u" %1 is present as %2."_s.arg(quoted(title), found->second);
    }
    const qsizetype more = std::ssize(titles) - there.size();
    return u"File '%1' lacks the column%2 %3.%4 Its titles are %5%6."_s.arg(
        name, absent.size() > 1 ? u"s"_s : QString(), lacking.join(u", "_s), hints,
        there.join(u", "_s), more > 0 ? u" and %1 more"_s.arg(more) : QString());
}

QStringList CsvReader::titlesOfFile() const {
    QStringList list;
    for (const std::string &title : titles) {
        const std::string_view plain = trimmed(title);
        list.append(QString::fromUtf8(plain.data(), std::ssize(plain)));
    }
    return list;
}

void CsvReader::fill() {
    if (!unread.empty()) return;
    unread = {block.data(), std::fread(block.data(), 1, block.size(), file.stream.get())};
    bytesRead += std::ssize(unread);
    if (hashesBytes) hash.addData(unread);
    progress.advance(bytesRead);
}

bool CsvReader::parse(std::size_t most, CellCall takeCell, RowCall endRow, void *call) {
    if (isAtEnd) return false;
    fill();
    std::string_view piece = unread.substr(0, most);
    unread.remove_prefix(piece.size());
    const bool isEnd = piece.empty();
    const std::size_t valid = utf8.take(piece);
    const bool isUtf8 = isEnd ? utf8.isComplete() : valid == piece.size();
    piece = piece.substr(0, valid);
    if (csv_parse(&parser, piece.data(), piece.size(), takeCell, endRow, call) != piece.size()) {
        problem = u"File '%1' has a cell of more than 64 MiB; is a quotation mark not closed?"_s;
    } else if (!isUtf8) {
        const QString place = hasHeader ? u"row %1"_s.arg(row + 1) : u"header line"_s;
        problem =
            u"%1, "_s + place + u": not valid UTF-8. Convert the file, for example with iconv."_s;
    } else if (isEnd) {
        isAtEnd = true;
        const bool isBroken = std::ferror(file.stream.get()) != 0;
        if (isBroken) problem = u"Cannot read file '%1'."_s;
        // Only at the end, since strict parsing rejects quotation marks within cells.
        csv_set_opts(&parser, CSV_STRICT | CSV_STRICT_FINI);
        if (csv_fini(&parser, takeCell, endRow, call) != 0 && !isBroken) {
            problem = u"File '%1' ends within quotation marks."_s;
        }
    }
    if (isOutOfMemory) throw std::bad_alloc();
    if (isAtEnd || !problem.isEmpty()) progress.end();
    if (problem.isEmpty()) return true;
    problem = problem.arg(name);
    isAtEnd = true;
    return false;
}
