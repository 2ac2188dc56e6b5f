// A file that an exporter writes its output to.
#pragma once

#include <QStringView>

#include <cstdio>
#include <memory>

enum class OutputEncoding { Utf16, Utf8 }; // UTF-16 is little-endian

// A file that is open for writing; none if there is no stream.
struct OutputFile {
    struct Close {
        void operator()(std::FILE *opened) const { std::fclose(opened); }
    };
    std::unique_ptr<std::FILE, Close> stream;
    OutputEncoding encoding = OutputEncoding::Utf16;
};

// Whether the text ends in the first half of a surrogate pair, which can only be converted together
// with the second.
inline bool endsInHalfPair(QStringView text) {
    return !text.isEmpty() && text.back().isHighSurrogate();
}

// Appends the text to the file. Write errors show only in isClosed(). Exporters do not ask for
// them: by contract the status is 0 even if the disk is full.
void writeText(const OutputFile &file, QStringView text);

// Closes the file. False if not everything could be written.
bool isClosed(OutputFile &file);
