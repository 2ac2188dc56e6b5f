// The file that an exporter writes its output to.
#pragma once

#include <QStringView>

#include <cstdio>
#include <memory>

enum class OutputEncoding { Utf16, Utf8 }; // UTF-16 is little-endian

// A file that is open for writing; no file if the stream is null.
struct OutputFile {
    struct Close {
        void operator()(std::FILE *opened) const { std::fclose(opened); }
    };
    std::unique_ptr<std::FILE, Close> stream;
    OutputEncoding encoding = OutputEncoding::Utf16;
};

// Whether the text ends in the first half of a surrogate pair, which cannot be converted alone.
inline bool endsInHalfPair(QStringView text) {
    return !text.isEmpty() && text.back().isHighSurrogate();
}

// Appends the text to the file. Ignores write errors: by documented contract, an exporter's status
// is 0 even if the disk fills up.
void writeText(const OutputFile &file, QStringView text);

// Closes the file; false if any write failed.
bool isClosed(OutputFile &file);
