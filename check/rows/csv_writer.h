// Writes CSV files of numbers and texts, in blocks.
#pragma once

#include "model/output_file.h"

#include <QString>

#include <cstdint>
#include <string>
#include <string_view>

class CsvWriter {
public:
    // Returns an error message; empty on success.
    QString open(const QString &fileName, char delimiter);
    bool isOpen() const { return file.stream != nullptr; }

    // The next cell of a row; quoted if required. NaN is an empty cell.
    void put(std::string_view cell);
    void put(double number);
    void put(std::int64_t number);
    void endRow();

    // Returns an error message; empty on success, or if it was not opened.
    QString close();

private:
    void putDelimiter();
    template <typename Number>
    void putNumber(Number number);
    void flush();

    QString name;
    char delimiter = ',';
    bool isInRow = false;
    OutputFile file;
    std::string text; // not written yet
};
