// Reads a CSV file row by row: a header line, quoted cells with line ends in them, UTF-8 with or
// without mark. Memory does not grow with the rows; a cell may take 64 MiB.
#pragma once

#include "model/output_file.h"

#include <QString>

#include <csv.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class CsvReader {
    struct Span {
        std::size_t at = 0;
        std::size_t size = 0;
    };

public:
    CsvReader() = default;
    CsvReader(const CsvReader &) = delete;
    CsvReader &operator=(const CsvReader &) = delete;
    ~CsvReader();

    // Opens the file and reads its header line. Returns what is wrong, or an empty text.
    QString open(const QString &fileName, char delimiter);
    // The titles of the columns, with the blanks around them.
    std::span<const std::string> header() const { return titles; }

    // The columns that each row is to give, by their positions in the header. No row was read yet.
    void choose(std::span<const std::size_t> columns);

    // Goes to the next row; false at the end, or where the rest cannot be read (see problem).
    // Lines without any cell are passed over.
    bool next();
    // The i-th of the chosen cells of the row, empty where the row is too short; valid until the
    // next call.
    std::string_view cell(std::size_t i) const {
        const Span &span = batch[(given - 1) * width + i];
        return {text.data() + span.at, span.size};
    }
    // The row's number, from 1.
    std::int64_t row() const { return number; }
    // How many rows have fewer or more cells than there are titles, and the first of them.
    std::int64_t unevenRows() const { return uneven; }
    std::int64_t firstUnevenRow() const { return firstUneven; }
    // What kept the file from being read to its end; else empty.
    const QString &problem() const { return trouble; }

private:
    static void takeCell(void *bytes, std::size_t size, void *reader);
    static void endRow(int terminator, void *reader);
    template <typename Work>
    void guarded(const Work &work) noexcept;
    void addCell(std::string_view cell);
    void addRow();
    void startBatch();
    std::string_view startOfFile(std::string_view bytes);
    bool readBlock();
    void finish();

    static constexpr std::size_t notChosen = static_cast<std::size_t>(-1);

    QString name;
    QString trouble;
    std::unique_ptr<std::FILE, OutputFile::Close> file;
    csv_parser parser{};
    bool isParsing = false;
    bool isAtStart = true;
    bool isAtEnd = false;
    bool isOutOfMemory = false;
    bool hasHeader = false;
    std::vector<char> block;
    std::vector<std::string> titles;
    std::vector<std::size_t> places; // of each column, where its cell goes in a row
    std::size_t width = 0;           // chosen columns

    // The rows of one block. The last may go on in the next block.
    std::string text;
    std::size_t used = 0; // of the text
    std::vector<Span> batch;
    std::size_t column = 0; // of the next cell
    std::size_t finished = 0;
    std::size_t given = 0;
    std::int64_t number = 0;
    std::int64_t uneven = 0;
    std::int64_t firstUneven = 0;
};

// The cell without the blanks around it.
inline std::string_view trimmed(std::string_view cell) {
    const auto isBlank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!cell.empty() && isBlank(cell.front())) cell.remove_prefix(1);
    while (!cell.empty() && isBlank(cell.back())) cell.remove_suffix(1);
    return cell;
}
