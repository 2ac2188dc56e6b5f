// The file that an exporter writes its output to.
#pragma once

#include <QStringView>

#include <cstdio>
#include <memory>

enum class OutputEncoding { Utf16, Utf8 }; // UTF-16 is little-endian

// A file that is open for writing; without a stream there is no file.
struct OutputFile {
    struct Close {
        void operator()(std::FILE *opened) const { std::fclose(opened); }
    };
    std::unique_ptr<std::FILE, Close> stream;
    OutputEncoding encoding = OutputEncoding::Utf16;
};

// Whether the text ends in the first half of a surrogate pair, which cannot be converted without
// the second.
inline bool endsInHalfPair(QStringView text) {
    return !text.isEmpty() && text.back().isHighSurrogate();
}

// Appends the text to the file. Write errors are ignored here: an exporter's status is 0 even when
// the disk fills up, which is a documented contract.
void writeText(const OutputFile &file, QStringView text);

// Closes the file; false if anything could not be written.
bool isClosed(OutputFile &file);
