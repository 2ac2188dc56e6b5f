// What the fuzz targets share.
#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>

// What libFuzzer calls with each input; each target defines it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

// A file that is nowhere but in memory.
class MemoryFile {
public:
    MemoryFile();
    void write(const void *data, size_t size);
    QString path() const;

private:
    int file;
};

// The path of a file in memory that holds the bytes. Each call replaces the contents.
QString fileInMemory(const uint8_t *data, size_t size);

// The path of a model document of the corpus.
QString modelOfCorpus(const char *name);

// Sends what the program prints to nowhere.
void silenceOutput();

inline QString nowhere() {
    return QStringLiteral("/dev/null");
}
