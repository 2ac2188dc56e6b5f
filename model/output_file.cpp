#include "model/output_file.h"

#include "xml/platform.h"

#include <algorithm>
#include <bit>

using namespace Qt::Literals::StringLiterals;

static_assert(std::endian::native == std::endian::little, "UTF-16 texts are written as they stand");

namespace {

// Converts piece by piece: a second copy of the whole text would cost its memory once more.
void writeUtf8(std::FILE *file, QStringView text) {
    constexpr qsizetype most = 1 << 16;
    while (!text.isEmpty()) {
        qsizetype size = std::min(most, text.size());
        const bool cutsPair =
            size < text.size() && text[size - 1].isHighSurrogate() && text[size].isLowSurrogate();
        if (cutsPair) ++size;
        const QByteArray bytes = text.first(size).toUtf8();
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), file);
        text = text.sliced(size);
    }
}

} // namespace

int writeOutputFile(const QString &fileName, QStringView text, OutputEncoding encoding) {
    std::FILE *const file = openFile(fileName, FileUse::Write);
    if (!file) {
        printText(u"Cannot open file '%1' for writing.\n"_s.arg(fileName));
        return exitCannotOpenOutput;
    }
    // A buffer would hide that a full device does not take the mark.
    std::setvbuf(file, nullptr, _IONBF, 0);
    const QByteArrayView mark = encoding == OutputEncoding::Utf16 ? "\xFF\xFE" : "\xEF\xBB\xBF";
    const auto size = static_cast<std::size_t>(mark.size());
    if (std::fwrite(mark.data(), 1, size, file) != size) {
        printText(u"Cannot write to file '%1'.\n"_s.arg(fileName));
        std::fclose(file);
        return exitCannotWriteOutput;
    }
    if (encoding == OutputEncoding::Utf16) {
        std::fwrite(text.utf16(), sizeof(char16_t), static_cast<std::size_t>(text.size()), file);
    } else {
        writeUtf8(file, text);
    }
    std::fclose(file);
    return exitSuccess;
}

int writeScript(const QString &fileName, QStringView text) {
    const int status = writeOutputFile(fileName, text, OutputEncoding::Utf16);
    if (status == exitSuccess) printText(u"Conversion successful!\n");
    return status;
}

void writePage(const QString &fileName, QStringView text) {
    std::FILE *const file = openFile(fileName, FileUse::Write);
    if (!file) return;
    writeUtf8(file, text);
    std::fclose(file);
}
