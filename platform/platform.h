// What depends on the operating system. Each system has one source file.
#pragma once

#include <QByteArrayView>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

enum class FileUse { Read, Write };
// Opens a file for reading, or creates or empties it for writing; null on failure. Only regular
// files, character devices and, on Linux, pipes with content can be opened for reading; a pipe is
// read to its end immediately. Bytes, line ends included, are not translated.
std::FILE *openFile(const QString &fileName, FileUse use);

// Whether both names refer to the same regular file, directly or through links.
bool isSameFile(const QString &a, const QString &b);

// The size in bytes of a file that was opened for reading; 0 for a device.
std::int64_t fileSize(std::FILE *file);

// Whether the bytes of a file are UTF-16LE text, with or without byte-order mark. Without a mark,
// each system guesses in its own way; all recognise text in Western languages.
bool isUtf16Text(QByteArrayView bytes);

// Converts text from the system's 8-bit code page; `text` has room for one unit per byte. Returns
// the end of the converted text, or null if the bytes cannot be converted.
char16_t *decodeAnsi(QByteArrayView bytes, char16_t *text);

struct ReleaseMemory {
    void operator()(std::byte *block) const;
};
// A block of memory, aligned for every type. Large blocks use large pages if available, because the
// first access to a page costs more than filling it. Untouched pages use no memory.
using MemoryBlock = std::unique_ptr<std::byte[], ReleaseMemory>;
// `bytes` is at least 1. Null when out of memory.
MemoryBlock allocateBlock(std::size_t bytes);

// Writes to standard output: UTF-8 with plain line feeds to a file or pipe on every system; a
// console shows every character.
void printText(QStringView text);
// The same, but flushed. Returns false unless all of the text was written.
bool printAtOnce(QStringView text);
// Writes to standard error.
void printError(QStringView text);
bool isErrorTerminal();
