#include "tests/fuzz/fuzz.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

QString fileInMemory(const uint8_t *data, size_t size) {
    static const int file = memfd_create("input", 0);
    const bool isWritten = ftruncate(file, 0) == 0 && lseek(file, 0, SEEK_SET) == 0 &&
                           write(file, data, size) == static_cast<ssize_t>(size);
    if (!isWritten) std::abort();
    return QString::fromLatin1("/proc/self/fd/%1").arg(file);
}

void silenceOutput() {
    static const bool isSilent = std::freopen("/dev/null", "w", stdout) != nullptr;
    if (!isSilent) std::abort();
}
