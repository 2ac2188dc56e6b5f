// Reads a whole file into the block of its document. UTF-16 is parsed in place. Other encodings are
// decoded to the start of the block; the tree then overwrites the encoded bytes.
#include "platform/platform.h"
#include "xml/xml_document.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::size_t zeroBytes = 4; // end the text even if the bytes end within a unit

struct FileBytes {
    MemoryBlock block;
    std::size_t blockSize = 0;
    std::size_t start = 0; // of the bytes in the block
    std::size_t size = 0;  // of the bytes
    XmlError error = XmlError::NoError;

    QByteArrayView bytes() const { return {block.get() + start, static_cast<qsizetype>(size)}; }
};

// One UTF-16 unit for each byte, a final zero unit, and slack for the decoder (64 bytes).
std::size_t roomForText(std::size_t bytes) {
    return bytes * sizeof(char16_t) + 64;
}

// Allocates a block for the text and the tree or, if memory is short, for the text alone; the tree
// then goes to the heap. False if even the text does not fit.
bool allocateBlockFor(FileBytes &file) {
    const std::size_t room = roomForText(file.size);
    const std::size_t least = file.start + file.size + zeroBytes;
    for (const std::size_t size : {room + zeroBytes + expectedArena(file.size), least}) {
        file.blockSize = size;
        file.block = allocateBlock(size);
        if (file.block) return true;
    }
    return false;
}

// Reads a file of `file.size` bytes. If it has a UTF-16 mark, the bytes are the text itself and go
// to the start of the block, which saves touching one large page. Other bytes go after the room for
// their decoded text.
void readBytes(std::FILE *input, FileBytes &file) {
    constexpr std::size_t largest = PTRDIFF_MAX / 8; // the sums below do not overflow
    if (file.size > largest) {
        file.error = XmlError::WideCharConversionError;
        return;
    }
    std::array<char, 2> mark{};
    const std::size_t markSize =
        std::fread(mark.data(), 1, std::min(mark.size(), file.size), input);
    file.start = QByteArrayView(mark) == "\xFF\xFE" ? 0 : roomForText(file.size);
    if (!allocateBlockFor(file)) {
        file.error = XmlError::WideCharConversionError;
        return;
    }
    std::byte *const bytes = file.block.get() + file.start;
    std::memcpy(bytes, mark.data(), markSize);
    file.size = markSize + std::fread(bytes + markSize, 1, file.size - markSize, input);
    if (std::ferror(input)) file.error = XmlError::FileNotFound; // not a partial document
    std::fill_n(bytes + file.size, zeroBytes, std::byte());
}

FileBytes readFile(const QString &fileName) {
    FileBytes file;
    std::FILE *const input = openFile(fileName, FileUse::Read);
    if (!input) {
        file.error = XmlError::FileNotFound;
        return file;
    }
    file.size = static_cast<std::size_t>(fileSize(input));
    if (file.size == 0) {
        file.error = XmlError::NoXmlData;
    } else {
        readBytes(input, file);
    }
    std::fclose(input);
    return file;
}

// Decodes 8-bit text up to the first zero byte; `text` has room for one unit per byte and some
// slack. Null if the bytes cannot be converted.
QStringView decodeNarrow(QByteArrayView bytes, char16_t *text) {
    const bool isUtf8 = bytes.startsWith("\xEF\xBB\xBF");
    if (isUtf8) bytes = bytes.sliced(3);
    bytes.truncate(
        static_cast<qsizetype>(qstrnlen(bytes.data(), static_cast<size_t>(bytes.size()))));
    char16_t *end = nullptr;
    if (isUtf8) {
        // Without these flags, the decoder drops a second mark and a truncated sequence at the end.
        QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom |
                                                      QStringDecoder::Flag::Stateless);
        end = reinterpret_cast<char16_t *>(
            utf8.appendToBuffer(reinterpret_cast<QChar *>(text), bytes));
    } else {
        end = decodeAnsi(bytes, text);
    }
    if (!end) return {};
    *end = u'\0';
    // A code page may produce a zero unit; a view made from a pointer alone ends there.
    return isUtf8 ? QStringView(text, end) : QStringView(text);
}

// The parts of the block.
struct Source {
    QStringView text;
    std::span<std::byte> arena;
};

Source utf16Source(const FileBytes &file) {
    const QByteArrayView bytes = file.bytes();
    // Existing documents rely on EF FF being skipped like a byte-order mark.
    const bool isMarked = bytes.startsWith("\xEF\xFF") || bytes.startsWith("\xFF\xFE");
    const std::span block(file.block.get(), file.blockSize);
    const auto *const text = reinterpret_cast<const char16_t *>(block.data() + file.start);
    // A view made from a pointer alone ends before the first zero unit.
    return {QStringView(text + (isMarked ? 1 : 0)),
            block.subspan(file.start + file.size + zeroBytes)};
}

// The text is null if the bytes cannot be converted or if there is no room to decode them.
Source narrowSource(FileBytes &file) {
    const std::span block(file.block.get(), file.blockSize);
    if (file.start == 0) { // starts with the mark, but the system does not recognise UTF-16
        file.start = roomForText(file.size);
        if (file.start + file.size + zeroBytes > file.blockSize) return {};
        std::memmove(block.data() + file.start, block.data(), file.size);
    }
    auto *const text = reinterpret_cast<char16_t *>(block.data());
    return {decodeNarrow(file.bytes(), text), block.subspan(file.start)};
}

} // namespace

XmlNode XmlNode::parseFile(const QString &fileName, QStringView tag, XmlParseResult *results) {
    FileBytes file = readFile(fileName);
    Source source{};
    if (file.error == XmlError::NoError) {
        source = isUtf16Text(file.bytes()) ? utf16Source(file) : narrowSource(file);
        if (source.text.isNull()) file.error = XmlError::WideCharConversionError;
    }
    if (file.error != XmlError::NoError) {
        if (results) *results = {file.error};
        return {};
    }
    return parseXml(std::make_unique<XmlDocument>(std::move(file.block), source.text, source.arena),
                    tag, results);
}
