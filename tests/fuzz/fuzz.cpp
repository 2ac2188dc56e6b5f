#include "tests/fuzz/fuzz.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

MemoryFile::MemoryFile() : file(memfd_create("input", 0)) {}

void MemoryFile::write(const void *data, size_t size) {
    const bool isWritten =
        ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == static_cast<ssize_t>(size);
    if (!isWritten) std::abort();
}

QString MemoryFile::path() const {
    return QString::fromLatin1("/proc/self/fd/%1").arg(file);
}

QString fileInMemory(const uint8_t *data, size_t size) {
    static MemoryFile file;
    file.write(data, size);
    return file.path();
}

QString modelOfCorpus(const char *name) {
    return QString::fromUtf8(FUZZ_CORPUS "/model/") + QString::fromUtf8(name);
}

void silenceOutput() {
    static const bool isSilent = std::freopen("/dev/null", "w", stdout) != nullptr;
    if (!isSilent) std::abort();
}
