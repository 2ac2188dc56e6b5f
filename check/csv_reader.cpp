#include "check/csv_reader.h"

#include "platform/platform.h"

#include <cstdlib>
#include <cstring>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::size_t blockSize = 1 << 16;
constexpr std::size_t largestCell = 1 << 26;

// A quotation mark that is never closed makes a cell of the rest of the file.
void *resizeCell(void *cell, std::size_t size) {
    return size > largestCell ? nullptr : std::realloc(cell, size);
}

// Most cells are shorter, and are copied without a look at their size: libcsv keeps a cell at the
// start of a block of at least 128 bytes, and the text has room for as many more.
constexpr std::size_t shortCell = 16;

// Blanks belong to their cells. The model leaves them out, but not every target does.
int isBlank(unsigned char) {
    return 0;
}

} // namespace

CsvReader::~CsvReader() {
    if (isParsing) csv_free(&parser);
}

QString CsvReader::open(const QString &fileName, char delimiter) {
    name = fileName;
    file.reset(openFile(fileName, FileUse::Read));
    if (!file) return u"Cannot open file '%1'."_s.arg(fileName);
    if (csv_init(&parser, 0) != 0) throw std::bad_alloc();
    isParsing = true;
    csv_set_delim(&parser, static_cast<unsigned char>(delimiter));
    csv_set_space_func(&parser, isBlank);
    csv_set_realloc_func(&parser, resizeCell);
    block.resize(blockSize);
    while (!hasHeader && readBlock()) continue;
    if (!trouble.isEmpty()) return trouble;
    return titles.empty() ? u"File '%1' has no header line."_s.arg(fileName) : QString();
}

void CsvReader::choose(std::span<const std::size_t> columns) {
    // What the first block holds beyond the header was taken with all of its columns.
    const std::vector<Span> all = std::move(batch);
    const std::size_t before = width;
    places.assign(titles.size(), notChosen);
    width = columns.size();
    for (std::size_t i = 0; i < columns.size(); ++i) places[columns[i]] = i;
    batch.clear();
    for (std::size_t row = 0; row * before < all.size(); ++row) {
        for (const std::size_t chosen : columns) batch.push_back(all[row * before + chosen]);
    }
}

void CsvReader::takeCell(void *bytes, std::size_t size, void *reader) {
    CsvReader &r = *static_cast<CsvReader *>(reader);
    const auto *const begin = static_cast<const char *>(bytes);
    if (!r.hasHeader) {
        r.titles.emplace_back(begin, size);
        return;
    }
    const std::size_t at = r.column++;
    if (at >= r.places.size() || r.places[at] == notChosen) return;
    if (r.text.size() < r.used + size + shortCell) r.text.resize(2 * (r.used + size + shortCell));
    char *const to = r.text.data() + r.used;
    std::memcpy(to, begin, shortCell);
    if (size > shortCell) std::memcpy(to, begin, size);
    r.batch[r.batch.size() - r.width + r.places[at]] = {r.used, size};
    r.used += size;
}

void CsvReader::endRow(int, void *reader) {
    CsvReader &r = *static_cast<CsvReader *>(reader);
    if (!r.hasHeader) {
        r.hasHeader = true;
        r.width = r.titles.size();
        r.places.resize(r.width);
        for (std::size_t i = 0; i < r.width; ++i) r.places[i] = i;
    } else {
        ++r.finished;
    }
    r.column = 0;
    r.batch.resize(r.batch.size() + r.width);
}

// Keeps the row that is not finished yet.
void CsvReader::startBatch() {
    if (!hasHeader) return;
    batch.erase(batch.begin(), batch.end() - static_cast<std::ptrdiff_t>(width));
    std::string kept;
    for (Span &cell : batch) {
        const std::size_t at = kept.size();
        kept.append(text, cell.at, cell.size);
        cell.at = at;
    }
    used = kept.size();
    if (text.size() < used) text.resize(used);
    std::memcpy(text.data(), kept.data(), used);
    finished = 0;
    given = 0;
}

bool CsvReader::readBlock() {
    if (isAtEnd) return false;
    startBatch();
    const bool isFirst = !hasHeader && titles.empty() && number == 0;
    std::size_t size = std::fread(block.data(), 1, block.size(), file.get());
    std::string_view bytes(block.data(), size);
    if (isFirst && bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    if (csv_parse(&parser, bytes.data(), bytes.size(), takeCell, endRow, this) != bytes.size()) {
        trouble =
            u"File '%1' has a cell of more than 64 MiB; is a quotation mark not closed?"_s.arg(
                name);
        isAtEnd = true;
        return false;
    }
    if (size < block.size()) {
        isAtEnd = true;
        if (std::ferror(file.get())) trouble = u"Cannot read file '%1'."_s.arg(name);
        csv_fini(&parser, takeCell, endRow, this);
    }
    return true;
}

bool CsvReader::next() {
    while (given == finished) {
        if (!readBlock()) return false;
    }
    ++given;
    ++number;
    return true;
}
