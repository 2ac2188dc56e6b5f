// Windows. The system detects UTF-16, chooses the code page and writes to the console.
#include "platform/platform.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <filesystem>

#include <io.h>
#include <windows.h>

namespace {

bool showOnConsole(HANDLE console, QStringView text) {
    constexpr qsizetype most = 8192; // units; far more in one call may show nothing
    bool isShown = true;
    while (isShown && !text.isEmpty()) {
        qsizetype size = std::min(most, text.size());
        const bool cutsPair = size < text.size() && text[size - 1].isHighSurrogate();
        if (cutsPair) --size;
        DWORD shown = 0;
        const auto units = static_cast<DWORD>(size);
        isShown = WriteConsoleW(console, text.utf16(), units, &shown, nullptr) != 0;
        text = text.sliced(size);
    }
    return isShown;
}

} // namespace

// Never blocks: a pipe without a server cannot be opened; one with a server is rejected, because
// reading it might never end.
std::FILE *openFile(const QString &fileName, FileUse use) {
    const bool isInput = use == FileUse::Read;
    std::FILE *const file = _wfopen(fileName.toStdWString().c_str(), isInput ? L"rb" : L"wb");
    if (!file || !isInput) return file;
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
    if (GetFileType(handle) != FILE_TYPE_PIPE) return file;
    std::fclose(file);
    return nullptr;
}

bool isSameFile(const QString &a, const QString &b) {
    const std::filesystem::path one(a.toStdWString());
    std::error_code problem; // ignored: a nonexistent file is not the same file
    return std::filesystem::is_regular_file(one, problem) &&
           std::filesystem::equivalent(one, b.toStdWString(), problem);
}

std::int64_t fileSize(std::FILE *file) {
    return std::max<std::int64_t>(_filelengthi64(_fileno(file)), 0);
}

// The system's own test, for compatibility. It mistakes some short 8-bit texts for UTF-16 and
// examines only the beginning of long ones.
bool isUtf16Text(QByteArrayView bytes) {
    const auto size = std::min<qsizetype>(bytes.size(), INT_MAX - 1);
    return IsTextUnicode(bytes.data(), static_cast<int>(size), nullptr);
}

char16_t *decodeAnsi(QByteArrayView bytes, char16_t *text) {
    if (bytes.isEmpty()) return text;
    if (bytes.size() > INT_MAX) return nullptr;
    const auto size = static_cast<int>(bytes.size());
    // With UTF-8 as code page, the flag for composed characters would be an error.
    const DWORD flags = GetACP() == CP_UTF8 ? 0 : MB_PRECOMPOSED;
    auto *const wide = reinterpret_cast<wchar_t *>(text);
    const int units = MultiByteToWideChar(CP_ACP, flags, bytes.data(), size, wide, size);
    return units > 0 ? text + units : nullptr;
}

// Large pages require a privilege that most accounts lack.
MemoryBlock allocateBlock(std::size_t bytes) {
    return MemoryBlock(static_cast<std::byte *>(std::malloc(bytes)));
}

void ReleaseMemory::operator()(std::byte *block) const {
    std::free(block);
}

// Bypasses the runtime library, which would expand line feeds and show only the characters of the
// 8-bit code page on a console. False unless all of the text was written.
static bool print(HANDLE output, QStringView text) {
    DWORD mode = 0;
    if (GetConsoleMode(output, &mode)) return showOnConsole(output, text);
    const QByteArray bytes = text.toUtf8();
    const auto size = static_cast<DWORD>(bytes.size());
    DWORD written = 0;
    return WriteFile(output, bytes.constData(), size, &written, nullptr) != 0 && written == size;
}

void printText(QStringView text) {
    print(GetStdHandle(STD_OUTPUT_HANDLE), text);
}

bool printAtOnce(QStringView text) {
    return print(GetStdHandle(STD_OUTPUT_HANDLE), text);
}

void printError(QStringView text) {
    print(GetStdHandle(STD_ERROR_HANDLE), text);
}

bool isErrorTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}
