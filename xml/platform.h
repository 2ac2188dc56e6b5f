// What differs between operating systems below the exporters. Each system has one file of its own.
#pragma once

#include <QByteArrayView>
#include <QString>

#include <cstdio>

// Opens a file for reading, or creates or empties it for writing; null when it cannot be opened.
// Folders and pipes cannot be opened for reading.
enum class FileUse { Read, Write };
std::FILE *openFile(const QString &fileName, FileUse use);

// Whether the bytes of a file without another known mark are UTF-16LE text.
bool isUtf16Text(QByteArrayView bytes);

// Text in the system's 8-bit code page, a unit for a byte: `text` has room for bytes.size() units.
void decodeAnsi(QByteArrayView bytes, char16_t *text);

// Asks for large memory pages under a block that is going to be filled once: a page that is touched
// for the first time costs more than filling it. Does nothing for small blocks or where there are
// no large pages.
void preferLargePages(void *block, std::size_t bytes);

// Writes to standard output. On this system's console texts are UTF-8.
void printText(QStringView text);
