#include "check/rows/csv_writer.h"

#include "check/evaluation/cell.h"
#include "platform/platform.h"

#include <charconv>
#include <cmath>
#include <utility>

using namespace Qt::Literals::StringLiterals;

QString CsvWriter::open(const QString &fileName, char delimiterOfCells) {
    name = fileName;
    delimiter = delimiterOfCells;
    file.stream.reset(openFile(fileName, FileUse::Write));
    return isOpen() ? QString() : u"Cannot open file '%1' for writing."_s.arg(fileName);
}

void CsvWriter::flush() {
    if (!text.empty()) std::fwrite(text.data(), 1, text.size(), file.stream.get());
    text.clear();
}

void CsvWriter::putDelimiter() {
    if (std::exchange(isInRow, true)) text += delimiter;
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
    text += cell;
}

template <typename Number>
void CsvWriter::putNumber(Number number) {
    constexpr std::size_t longest = 32;
    const std::size_t at = text.size();
    text.resize(at + longest);
    const char *const end = std::to_chars(&text[at], &text[at] + longest, number).ptr;
    text.resize(static_cast<std::size_t>(end - text.data()));
}

void CsvWriter::put(double number) {
    putDelimiter();
    if (!std::isnan(number)) putNumber(number);
}

void CsvWriter::put(std::int64_t number) {
    putDelimiter();
    putNumber(number);
}

void CsvWriter::endRow() {
    constexpr std::size_t block = 1 << 16;
    text += '\n';
    isInRow = false;
    if (text.size() >= block) flush();
}

QString CsvWriter::close() {
    if (!isOpen()) return {};
    flush();
    return isClosed(file) ? QString() : u"Cannot write to file '%1'."_s.arg(name);
}
