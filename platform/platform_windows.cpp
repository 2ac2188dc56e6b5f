// Windows. The system answers for itself: what is UTF-16, what the code page is, what a console
// shows.
#include "platform/platform.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

#include <io.h>
#include <windows.h>

namespace {

bool showOnConsole(HANDLE console, QStringView text) {
    constexpr qsizetype most = 8192; // units; a call with very many may show nothing
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

// Nothing here waits: a pipe that nobody serves cannot be opened. One that is served can, and
// would be read for as long as its other end likes.
std::FILE *openFile(const QString &fileName, FileUse use) {
    const bool isInput = use == FileUse::Read;
    std::FILE *const file = _wfopen(fileName.toStdWString().c_str(), isInput ? L"rb" : L"wb");
    if (!file || !isInput) return file;
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
    if (GetFileType(handle) != FILE_TYPE_PIPE) return file;
    std::fclose(file);
    return nullptr;
}

std::int64_t fileSize(std::FILE *file) {
    return std::max<std::int64_t>(_filelengthi64(_fileno(file)), 0);
}

// The test that users' files have always gone by, with its known errors: it takes some short texts
// of 8 bits for UTF-16, and looks at the beginning of long ones only.
bool isUtf16Text(QByteArrayView bytes) {
    const auto size = std::min<qsizetype>(bytes.size(), INT_MAX - 1);
    return IsTextUnicode(bytes.data(), static_cast<int>(size), nullptr);
}

char16_t *decodeAnsi(QByteArrayView bytes, char16_t *text) {
    if (bytes.isEmpty()) return text;
    if (bytes.size() > INT_MAX) return nullptr;
    const auto size = static_cast<int>(bytes.size());
    // Where UTF-8 has been made the system's code page, characters cannot be asked for composed.
    const DWORD flags = GetACP() == CP_UTF8 ? 0 : MB_PRECOMPOSED;
    auto *const wide = reinterpret_cast<wchar_t *>(text);
    const int units = MultiByteToWideChar(CP_ACP, flags, bytes.data(), size, wide, size);
    return units > 0 ? text + units : nullptr;
}

// Large pages are for accounts with a right of their own.
MemoryBlock allocateBlock(std::size_t bytes) {
    return MemoryBlock(static_cast<std::byte *>(std::malloc(bytes)));
}

void ReleaseMemory::operator()(std::byte *block) const {
    std::free(block);
}

// Past the runtime library, which would turn line feeds into two characters and show a console
// only what its 8-bit code page has. False unless all of the text was written.
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
