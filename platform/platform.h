// What differs between operating systems below the exporters. Each system has one source file.
#pragma once

#include <QByteArrayView>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

enum class FileUse { Read, Write };
// Opens a file for reading, or creates or empties it for writing; null if it cannot be opened. Only
// regular files, character devices and, on Linux, pipes with content can be opened for reading; a
// pipe is read to its end at once. Bytes are not translated, line ends included.
std::FILE *openFile(const QString &fileName, FileUse use);

// Whether both names are of one regular file, however they are written or linked.
bool isSameFile(const QString &a, const QString &b);

// The size in bytes of a file that was opened for reading; 0 for a device.
std::int64_t fileSize(std::FILE *file);

// Whether the bytes of a file are UTF-16LE text, with or without byte-order mark. Without one, each
// system guesses in its own way; all of them recognise text in Western languages.
bool isUtf16Text(QByteArrayView bytes);

// Converts text from the system's 8-bit code page, at most one unit for each byte: `text` has room
// for bytes.size() units. Returns the end of the converted text, or null if the bytes cannot be
// converted.
char16_t *decodeAnsi(QByteArrayView bytes, char16_t *text);

struct ReleaseMemory {
    void operator()(std::byte *block) const;
};
// A block of memory, aligned for every type. A large block is in large pages if the system has
// them, because the first access to a page costs more than filling it. Only pages that are touched
// use memory.
using MemoryBlock = std::unique_ptr<std::byte[], ReleaseMemory>;
// A block of `bytes` bytes, at least one. Null when out of memory.
MemoryBlock allocateBlock(std::size_t bytes);

// Writes to standard output. A file or a pipe gets UTF-8 and plain line feeds on every system; a
// console shows every character.
void printText(QStringView text);
// The same without a buffer that outlives the call. Returns false unless all of the text was
// written.
bool printAtOnce(QStringView text);
// The same to standard error.
void printError(QStringView text);
// Whether standard error is a terminal.
bool isErrorTerminal();
