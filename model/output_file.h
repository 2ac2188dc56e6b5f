// A file that an exporter writes its output to.
#pragma once

#include <QStringView>

#include <cstdio>
#include <memory>

enum class OutputEncoding { Utf16, Utf8 }; // UTF-16 is little-endian

// A file that is open for writing. Without a stream there is none.
struct OutputFile {
    struct Close {
        void operator()(std::FILE *opened) const { std::fclose(opened); }
    };
    std::unique_ptr<std::FILE, Close> stream;
    OutputEncoding encoding = OutputEncoding::Utf16;
};

// Whether the text ends in the first half of a pair, which is only converted with the second.
inline bool endsInHalfPair(QStringView text) {
    return !text.isEmpty() && text.back().isHighSurrogate();
}

// Appends the text to the file. Whether the device takes the text is not tested.
void writeText(const OutputFile &file, QStringView text);

// Closes the file; false where the device did not take everything.
bool isClosed(OutputFile &file);
