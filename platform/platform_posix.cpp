// Linux. File names and console output are UTF-8. 8-bit documents come from Western machines.
#include "platform/platform.h"

#include <QStringEncoder>

#include <array>
#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool writeWhole(int file, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t written = write(file, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (written < 0) return false;
        bytes = bytes.sliced(written);
    }
    return true;
}

// Copies a pipe to a file in memory, which has a size, and closes the pipe. The first read does not
// block, because without a process at the other end it would wait forever; later reads wait for the
// writer. Returns -1 if there is nothing to read.
int readPipe(int pipe) {
    const int file = memfd_create("pipe", MFD_CLOEXEC);
    std::array<char, 1 << 16> buffer{};
    ssize_t size = read(pipe, buffer.data(), buffer.size());
    const bool hasWriter = size < 0 && errno == EAGAIN;
    fcntl(pipe, F_SETFL, fcntl(pipe, F_GETFL) & ~O_NONBLOCK);
    if (hasWriter) size = read(pipe, buffer.data(), buffer.size());
    bool isCopied = file >= 0 && size > 0;
    while (isCopied && size > 0) {
        isCopied = writeWhole(file, {buffer.data(), size});
        size = read(pipe, buffer.data(), buffer.size());
    }
    close(pipe);
    if (isCopied && size == 0 && lseek(file, 0, SEEK_SET) == 0) return file;
    if (file >= 0) close(file);
    return -1;
}

} // namespace

// Does not wait for a process to open a pipe's other end; fails instead.
std::FILE *openFile(const QString &fileName, FileUse use) {
    const QByteArray path = fileName.toUtf8();
    if (QString::fromUtf8(path) != fileName)
        return nullptr; // half a surrogate pair would select another file
    const bool isInput = use == FileUse::Read;
    const int flags = isInput ? O_RDONLY : O_WRONLY | O_CREAT | O_TRUNC;
    int file = open(path.constData(), flags | O_NONBLOCK | O_CLOEXEC, 0666);
    struct stat status {};
    bool isKnown = file >= 0 && fstat(file, &status) == 0;
    if (isKnown && isInput && S_ISFIFO(status.st_mode)) {
        file = readPipe(file);
        isKnown = file >= 0 && fstat(file, &status) == 0;
    }
    if (file < 0) return nullptr;
    std::FILE *stream = nullptr;
    if (isKnown && (!isInput || S_ISREG(status.st_mode) || S_ISCHR(status.st_mode))) {
        fcntl(file, F_SETFL, fcntl(file, F_GETFL) & ~O_NONBLOCK);
        stream = fdopen(file, isInput ? "rb" : "wb");
        // Outputs are written in large blocks, which buffering would only split.
        if (stream && !isInput) std::setvbuf(stream, nullptr, _IONBF, 0);
    }
    if (!stream) close(file);
    return stream;
}

bool isSameFile(const QString &a, const QString &b) {
    struct stat one {};
    struct stat other {};
    return stat(a.toUtf8().constData(), &one) == 0 && stat(b.toUtf8().constData(), &other) == 0 &&
           S_ISREG(one.st_mode) && one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

std::int64_t fileSize(std::FILE *file) {
    struct stat status {};
    return fstat(fileno(file), &status) == 0 ? status.st_size : 0;
}

// Most units of Western UTF-16 text have a zero high byte; 8-bit text has no zeros.
bool isUtf16Text(QByteArrayView bytes) {
    if (bytes.startsWith("\xFF\xFE")) return true;
    if (bytes.startsWith("\xFE\xFF") || bytes.startsWith("\xEF\xBB\xBF")) return false;
    if (bytes.size() % 2 != 0) return false;
    qsizetype narrow = 0;
    for (qsizetype i = 0; i < bytes.size(); i += 2) narrow += bytes[i] != 0 && bytes[i + 1] == 0;
    return narrow > bytes.size() / 4;
}

// Windows-1252, the code page of the machines that write 8-bit model documents. Its five unused
// bytes become the control characters of the same value.
char16_t *decodeAnsi(QByteArrayView bytes, char16_t *text) {
    static constexpr char16_t from80to9F[] = {
        0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        *text++ = value >= 0x80 && value <= 0x9F ? from80to9F[value - 0x80] : value;
    }
    return text;
}

// Large pages avoid most of a large document's page faults.
MemoryBlock allocateBlock(std::size_t bytes) {
#ifdef MADV_HUGEPAGE
    constexpr std::size_t largePage = 1 << 21;
    if (bytes >= largePage) {
        const std::size_t whole = (bytes + largePage - 1) / largePage * largePage;
        void *const block = std::aligned_alloc(largePage, whole);
        if (block) madvise(block, whole, MADV_HUGEPAGE);
        return MemoryBlock(static_cast<std::byte *>(block));
    }
#endif
    return MemoryBlock(static_cast<std::byte *>(std::malloc(bytes)));
}

void ReleaseMemory::operator()(std::byte *block) const {
    std::free(block);
}

void printText(QStringView text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
}

bool printAtOnce(QStringView text) {
    printText(text);
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

void printError(QStringView text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
}

bool isErrorTerminal() {
    return isatty(STDERR_FILENO) == 1;
}
