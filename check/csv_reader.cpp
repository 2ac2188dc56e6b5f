#include "check/csv_reader.h"

#include "platform/platform.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <utility>

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
int isBlank(unsigned char /*character*/) {
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

// The callbacks are called by C, through which no exception may pass.
template <typename Work>
void CsvReader::guarded(const Work &work) noexcept {
    if (isOutOfMemory) return;
    try {
        work();
    } catch (const std::exception &) {
        isOutOfMemory = true;
    }
}

void CsvReader::takeCell(void *bytes, std::size_t size, void *reader) {
    CsvReader &r = *static_cast<CsvReader *>(reader);
    r.guarded([&] { r.addCell({static_cast<const char *>(bytes), size}); });
}

void CsvReader::addCell(std::string_view cell) {
    if (!hasHeader) {
        titles.emplace_back(cell);
        return;
    }
    const std::size_t at = column++;
    if (at >= places.size() || places[at] == notChosen) return;
    const std::size_t size = cell.size();
    if (text.size() < used + size + shortCell) text.resize(2 * (used + size + shortCell));
    char *const to = text.data() + used;
    std::memcpy(to, cell.data(), shortCell);
    if (size > shortCell) std::memcpy(to, cell.data(), size);
    batch[batch.size() - width + places[at]] = {used, size};
    used += size;
}

void CsvReader::endRow(int /*terminator*/, void *reader) {
    CsvReader &r = *static_cast<CsvReader *>(reader);
    r.guarded([&r] { r.addRow(); });
}

void CsvReader::addRow() {
    if (!hasHeader) {
        hasHeader = true;
        width = titles.size();
        places.resize(width);
        for (std::size_t i = 0; i < width; ++i) places[i] = i;
    } else {
        ++finished;
        if (column != titles.size() && uneven++ == 0) {
            firstUneven = number + static_cast<std::int64_t>(finished);
        }
    }
    column = 0;
    batch.resize(batch.size() + width);
}

// Keeps the row that is not finished yet. A row that is longer than a block is moved once only.
void CsvReader::startBatch() {
    if (finished == 0) return;
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

// The file's mark is no part of its first title.
std::string_view CsvReader::startOfFile(std::string_view bytes) {
    // Titles begin with characters that are one byte, or two of which one is 0.
    const bool isUtf16 =
        bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF") ||
        (bytes.size() > 1 && bytes.substr(0, 2).find('\0') != std::string_view::npos);
    if (isUtf16) trouble = u"File '%1' is UTF-16; save it as UTF-8."_s.arg(name);
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    return bytes;
}

bool CsvReader::readBlock() {
    if (isAtEnd) return false;
    startBatch();
    const std::size_t size = std::fread(block.data(), 1, block.size(), file.get());
    std::string_view bytes(block.data(), size);
    if (std::exchange(isAtStart, false)) bytes = startOfFile(bytes);
    isAtEnd = size < block.size() || !trouble.isEmpty();
    if (!trouble.isEmpty()) return false;
    if (csv_parse(&parser, bytes.data(), bytes.size(), takeCell, endRow, this) != bytes.size()) {
        trouble =
            u"File '%1' has a cell of more than 64 MiB; is a quotation mark not closed?"_s.arg(
                name);
        isAtEnd = true;
    } else if (isAtEnd) {
        if (std::ferror(file.get())) trouble = u"Cannot read file '%1'."_s.arg(name);
        finish();
    }
    if (isOutOfMemory) throw std::bad_alloc();
    return trouble.isEmpty();
}

void CsvReader::finish() {
    // Only here, since strictness would refuse quotation marks within cells.
    csv_set_opts(&parser, CSV_STRICT | CSV_STRICT_FINI);
    if (csv_fini(&parser, takeCell, endRow, this) != 0) {
        trouble = u"File '%1' ends within quotation marks."_s.arg(name);
    }
}

bool CsvReader::next() {
    while (given == finished) {
        if (!readBlock()) return false;
    }
    ++given;
    ++number;
    return true;
}
