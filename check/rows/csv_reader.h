// Reads a CSV file: a header line, quoted cells with line ends in them, UTF-8 with or without mark.
// Memory does not grow with the rows; a cell may take 64 MiB.
#pragma once

#include "check/rows/progress.h"
#include "check/rows/utf8_check.h"
#include "model/output_file.h"

#include <QCryptographicHash>
#include <QStringList>

#include <csv.h>

#include <cstdint>
#include <exception>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class CsvReader {
public:
    CsvReader() = default;
    CsvReader(const CsvReader &) = delete;
    CsvReader &operator=(const CsvReader &) = delete;
    ~CsvReader();

    // Opens the file, reads its header line and chooses the columns with these titles; the index of
    // a name is the place of its cells. Blanks around a title count only if the name has them too.
    // Each name needs a column of its own. The delimiter is the one that yields most of these
    // titles or, among equals, most cells. Returns an error message; empty on success.
    QString open(const QString &fileName, std::string_view delimiters,
                 std::span<const QString> names);

    // Reads the next block. For each row, calls takeCell(place, cell) of the taker for each chosen
    // column, and then endRow(). Cells beyond the end of a short row are empty; empty lines are
    // skipped. Returns false after the last block, or if the rest cannot be read (see problem).
    template <typename Taker>
    bool read(Taker &taker);

    QStringList titlesOfFile() const; // without blanks around them

    QByteArray sha256() const { return hash.result(); } // of the bytes so far

    // Set before the file is opened.
    QStringView shownAs; // what progress calls the file; empty: no progress
    bool hashesBytes = false;

    char delimiter = ','; // that was found
    std::int64_t bytesRead = 0;
    std::int64_t row = 0;    // number of rows read
    std::int64_t uneven = 0; // rows with fewer or more cells than there are titles
    std::int64_t firstUneven = 0;
    QString problem; // why the file was not read to its end; empty on success

private:
    using CellCall = void (*)(void *bytes, std::size_t size, void *call);
    using RowCall = void (*)(int terminator, void *call);

    // Keeps exceptions from passing through C.
    template <typename Work>
    void guard(const Work &work) noexcept {
        if (isOutOfMemory) return;
        try {
            work();
        } catch (const std::exception &) {
            isOutOfMemory = true;
        }
    }
    void fill();
    char findDelimiter(std::string_view delimiters, std::span<const QString> names) const;
    QString choose(std::span<const QString> names);
    QString describeAbsent(std::span<const QString> absent) const;
    // Parses at most `most` bytes of the block.
    bool parse(std::size_t most, CellCall takeCell, RowCall endRow, void *call);

    static constexpr std::size_t notChosen = static_cast<std::size_t>(-1);

    QString name;
    OutputFile file;
    Progress progress;
    QCryptographicHash hash{QCryptographicHash::Sha256};
    csv_parser parser{};
    bool hasHeader = false;
    bool isAtEnd = false;
    bool isOutOfMemory = false;
    Utf8Check utf8;
    std::vector<char> block;
    std::string_view unread; // of the block
    std::vector<std::string> titles;
    std::vector<std::size_t> placeOf; // of each column
    std::size_t column = 0;           // of the next cell
};

// A text of the data, shortened and on one line for a message.
QString shownText(std::string_view text);

template <typename Taker>
bool CsvReader::read(Taker &taker) {
    struct Call {
        CsvReader &reader;
        Taker &taker;

        void hand(std::string_view cell) {
            const std::size_t at = reader.column++;
            if (at >= reader.placeOf.size() || reader.placeOf[at] == notChosen) return;
            reader.guard([&] { taker.takeCell(reader.placeOf[at], cell); });
        }
        void endRow() {
            if (reader.column != reader.placeOf.size() && reader.uneven++ == 0) {
                reader.firstUneven = reader.row + 1;
            }
            while (reader.column < reader.placeOf.size()) hand({});
            reader.column = 0;
            ++reader.row;
            reader.guard([&] { taker.endRow(); });
        }
    } call{*this, taker};
    const auto takeCell = [](void *bytes, std::size_t size, void *to) {
        static_cast<Call *>(to)->hand({static_cast<const char *>(bytes), size});
    };
    const auto endRow = [](int /*terminator*/, void *to) { static_cast<Call *>(to)->endRow(); };
    return parse(block.size(), takeCell, endRow, &call);
}
