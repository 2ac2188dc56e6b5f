// Writes UTF-16 straight from memory. Converts to UTF-8 piece by piece, which avoids a second copy
// of the whole text.
#include "model/output_file.h"

#include <algorithm>
#include <bit>

static_assert(std::endian::native == std::endian::little, "UTF-16 is written straight from memory");

namespace {

void writeUtf8(std::FILE *stream, QStringView text) {
    constexpr qsizetype most = 1 << 15;
    while (!text.isEmpty()) {
        QStringView piece = text.first(std::min(most, text.size()));
        if (piece.size() < text.size() && endsInHalfPair(piece)) piece.chop(1);
        const QByteArray bytes = piece.toUtf8();
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
        text = text.sliced(piece.size());
    }
}

} // namespace

void writeText(const OutputFile &file, QStringView text) {
    if (text.isEmpty()) return; // its pointer may be null
    if (file.encoding == OutputEncoding::Utf8) {
        writeUtf8(file.stream.get(), text);
    } else {
        std::fwrite(text.utf16(), sizeof(char16_t), static_cast<std::size_t>(text.size()),
                    file.stream.get());
    }
}

bool isClosed(OutputFile &file) {
    const bool isWritten = std::ferror(file.stream.get()) == 0;
    return std::fclose(file.stream.release()) == 0 && isWritten;
}
