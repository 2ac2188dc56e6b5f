#include "check/rows/csv_writer.h"

#include "check/evaluation/cell.h"
#include "platform/platform.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::size_t longestNumber = 32;

} // namespace

QString CsvWriter::open(const QString &fileName, char delimiterOfCells) {
    name = fileName;
    delimiter = delimiterOfCells;
    file.stream.reset(openFile(fileName, FileUse::Write));
    return isOpen() ? QString() : u"Cannot open file '%1' for writing."_s.arg(fileName);
}

void CsvWriter::flush() {
    const std::size_t size = std::exchange(used, 0);
    if (size > 0) std::fwrite(text.data(), 1, size, file.stream.get());
}

// Room for `size` characters; the caller adds what it used to `used`.
char *CsvWriter::roomFor(std::size_t size) {
    constexpr std::size_t block = 1 << 16;
    if (used + size > text.size()) {
        flush();
        text.resize(std::max({size, block, text.size()}));
    }
    return text.data() + used;
}

void CsvWriter::putDelimiter() {
    if (std::exchange(isInRow, true)) {
        *roomFor(1) = delimiter;
        ++used;
    }
}

void CsvWriter::put(std::string_view cell) {
    putDelimiter();
    const char special[] = {'"', '\n', '\r', delimiter};
    QByteArray quoted;
    const bool hasSpecial = cell.find_first_of({special, sizeof special}) != std::string_view::npos;
    if (hasSpecial || trimmed(cell) != cell) { // readers strip blanks that are not quoted
        quoted = QByteArray(cell.data(), std::ssize(cell)).replace('"', "\"\"");
        quoted = '"' + quoted + '"';
        cell = {quoted.data(), static_cast<std::size_t>(quoted.size())};
    }
    cell.copy(roomFor(cell.size()), cell.size());
    used += cell.size();
}

void CsvWriter::put(double number) {
    putDelimiter();
    char *const at = roomFor(longestNumber);
    if (!std::isnan(number)) {
        used += static_cast<std::size_t>(std::to_chars(at, at + longestNumber, number).ptr - at);
    }
}

void CsvWriter::put(std::int64_t number) {
    putDelimiter();
    char *const at = roomFor(longestNumber);
    used += static_cast<std::size_t>(std::to_chars(at, at + longestNumber, number).ptr - at);
}

void CsvWriter::endRow() {
    *roomFor(1) = '\n';
    ++used;
    isInRow = false;
}

QString CsvWriter::close() {
    if (!isOpen()) return {};
    flush();
    return isClosed(file) ? QString() : u"Cannot write to file '%1'."_s.arg(name);
}
