// What differs between operating systems below the exporters. Each system has one file of its own.
#pragma once

#include <QByteArrayView>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

enum class FileUse { Read, Write };
// Opens a file for reading, or creates or empties it for writing; null when it cannot be opened.
// Only regular files and character devices can be opened for reading. Nothing is translated, line
// ends neither.
std::FILE *openFile(const QString &fileName, FileUse use);

// The size in bytes of a file that was opened for reading; 0 for a device.
std::int64_t fileSize(std::FILE *file);

// Whether the bytes of a file are UTF-16LE text, with its byte-order mark or without. Without one
// it is a guess, which each system makes in its own way; every system recognises text in Western
// languages.
bool isUtf16Text(QByteArrayView bytes);

// Text in the system's 8-bit code page, at most a unit for a byte: `text` has room for bytes.size()
// units. Returns the end of what was written, or null when the bytes cannot be converted.
char16_t *decodeAnsi(QByteArrayView bytes, char16_t *text);

struct ReleaseMemory {
    void operator()(std::byte *block) const;
};
// A block of memory, aligned for every type, in large pages where it is large and the system has
// them: a page that is touched for the first time costs more than filling it. Only pages that are
// touched take memory.
using MemoryBlock = std::unique_ptr<std::byte[], ReleaseMemory>;
// A block of so many bytes, at least one. Null when memory is short.
MemoryBlock allocateBlock(std::size_t bytes);

// Writes to standard output. A file or a pipe gets UTF-8 on every system, and line feeds as they
// stand; a console shows every character.
void printText(QStringView text);
// The same without a buffer that outlives the call. Returns false unless all of the text was
// written.
bool printAtOnce(QStringView text);
// The same to standard error.
void printError(QStringView text);
