// A file is read whole. UTF-16 text is parsed where it was read; any other is decoded into a buffer
// of its own first, and the bytes are released.
#include "platform/platform.h"
#include "xml/xml_document.h"

#include <QStringDecoder>

#include <algorithm>

namespace {

struct FileBytes {
    std::unique_ptr<char16_t[]> buffer; // the bytes, then at least four zero bytes
    qsizetype size = 0;                 // in bytes
    XmlError error = XmlError::NoError;

    QByteArrayView bytes() const { return {reinterpret_cast<const char *>(buffer.get()), size}; }
};

// A buffer of `units` units and a few zero units behind them; null when memory is short.
std::unique_ptr<char16_t[]> allocateText(qsizetype units) {
    constexpr qsizetype zeros = 3;
    std::unique_ptr<char16_t[]> text(
        new (std::nothrow) char16_t[static_cast<std::size_t>(units + zeros)]);
    if (!text) return text;
    preferLargePages(text.get(), static_cast<std::size_t>(units) * sizeof(char16_t));
    std::fill_n(text.get() + units, zeros, u'\0');
    return text;
}

FileBytes readFile(const QString &fileName) {
    FileBytes file;
    std::FILE *const input = openFile(fileName, FileUse::Read);
    if (!input) return {{}, 0, XmlError::FileNotFound};
    file.size = fileSize(input);
    if (file.size == 0) {
        file.error = XmlError::NoXmlData;
    } else if (file.buffer = allocateText(file.size / 2); !file.buffer) {
        file.error = XmlError::WideCharConversionError;
    } else {
        auto *const bytes = reinterpret_cast<char *>(file.buffer.get());
        const std::size_t read = std::fread(bytes, 1, static_cast<std::size_t>(file.size), input);
        file.size = static_cast<qsizetype>(read);
        std::fill_n(bytes + read, 4, '\0');
    }
    std::fclose(input);
    return file;
}

// The text of 8-bit bytes up to the first zero byte; null when memory is short or they are no text.
std::unique_ptr<char16_t[]> decodeNarrow(QByteArrayView bytes) {
    const bool isUtf8 = bytes.startsWith("\xEF\xBB\xBF");
    if (isUtf8) bytes = bytes.sliced(3);
    bytes.truncate(
        static_cast<qsizetype>(qstrnlen(bytes.data(), static_cast<size_t>(bytes.size()))));
    // Without these flags, a decoder drops a second mark, and a sequence that is cut off at the
    // end.
    QStringDecoder utf8(QStringDecoder::Utf8,
                        QStringDecoder::Flag::ConvertInitialBom | QStringDecoder::Flag::Stateless);
    auto text = allocateText(isUtf8 ? utf8.requiredSpace(bytes.size()) : bytes.size());
    if (text && isUtf8) {
        *utf8.appendToBuffer(reinterpret_cast<QChar *>(text.get()), bytes) = u'\0';
    } else if (text) {
        char16_t *const end = decodeAnsi(bytes, text.get());
        if (!end) return {};
        *end = u'\0';
    }
    return text;
}

} // namespace

XmlNode XmlNode::parseFile(const QString &fileName, QStringView tag, XmlParseResult *results) {
    FileBytes file = readFile(fileName);
    qsizetype skippedUnits = 0;
    if (file.error == XmlError::NoError) {
        if (!isUtf16Text(file.bytes())) {
            file.buffer = decodeNarrow(file.bytes());
            if (!file.buffer) file.error = XmlError::WideCharConversionError;
        } else if (file.bytes().startsWith("\xEF\xFF") || file.bytes().startsWith("\xFF\xFE")) {
            skippedUnits =
                1; // EF FF is dropped like a byte-order mark: existing documents rely on it
        }
    }
    if (file.error != XmlError::NoError) {
        if (results) *results = {file.error};
        return {};
    }
    return parseXml(std::make_unique<XmlDocument>(std::move(file.buffer), skippedUnits), tag,
                    results);
}
