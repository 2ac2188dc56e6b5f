// A buffer with a file holds little more than one block, which stays in the processor's cache. A
// buffer in memory doubles its capacity as it grows.
#include "model/text_buffer.h"

#include <algorithm>
#include <cassert>
#include <new>

namespace {

// The size of a write, in units.
constexpr qsizetype blockSize = 1 << 17;

} // namespace

TextBuffer::TextBuffer(qsizetype expected) {
    // Untouched memory costs nothing. If the allocation fails, the buffer grows later.
    static_cast<void>(resize(expected));
}

bool TextBuffer::resize(qsizetype newCapacity) {
    const auto bytes = static_cast<std::size_t>(newCapacity) * sizeof(char16_t);
    MemoryBlock larger = allocateBlock(bytes);
    if (!larger) return false;
    auto *const room = reinterpret_cast<char16_t *>(larger.get());
    std::copy_n(units, used, room);
    block = std::move(larger);
    units = room;
    capacity = newCapacity;
    return true;
}

// In UTF-16, each write ends at a block boundary of the file, so that the system handles each page
// once. In UTF-8, the first half of a surrogate pair waits for the second, since it cannot be
// converted alone.
void TextBuffer::writeBlock() {
    const bool isUtf16 = file.encoding == OutputEncoding::Utf16;
    const qsizetype kept = isUtf16 ? (position + used) % blockSize : endsInHalfPair(text()) ? 1 : 0;
    const qsizetype size = used - kept;
    writeText(file, text().first(size));
    std::copy_n(units + size, kept, units);
    position += size;
    used = kept;
}

void TextBuffer::enlarge(qsizetype count) {
    if (file.stream && used > 0) {
        writeBlock();
        if (count <= capacity - used) return;
    }
    // A block, and room for a piece that crosses its end.
    if (!resize(std::max({blockSize + longestPiece, 2 * capacity, used + count}))) {
        throw std::bad_alloc();
    }
}

void TextBuffer::close() {
    writeText(file, text());
    file = {};
    used = 0;
}

void put(TextBuffer &out, const NumberText &number) {
    // A loop of fixed length is vectorised (benchmarks/costs.md: "numbers by a loop").
    constexpr qsizetype block = 32;
    static_assert(block <= std::size(NumberText().characters));
    char16_t *const room = out.extend(block);
    for (qsizetype i = 0; i < block; ++i) {
        room[i] = static_cast<unsigned char>(number.characters[i]);
    }
    out.giveBack(block - number.size);
}

void put(TextBuffer &out, const EscapedText &escaped) {
    QStringView rest = escaped.text;
    for (qsizetype at = rest.indexOf(escaped.quote); at >= 0; at = rest.indexOf(escaped.quote)) {
        put(out, rest.first(at), u"\\", rest.sliced(at, 1));
        rest = rest.sliced(at + 1);
    }
    put(out, rest);
}

void fill(TextBuffer &out, QStringView text, std::initializer_list<Placeholder> placeholders) {
    for (qsizetype open = text.indexOf(u'$'); open >= 0; open = text.indexOf(u'$')) {
        const qsizetype close = text.indexOf(u'$', open + 1);
        const QStringView name = text.sliced(open + 1, close - open - 1);
        const auto *const found = std::ranges::find(placeholders, name, &Placeholder::name);
        assert(found != placeholders.end());
        put(out, text.first(open));
        std::visit([&](const auto &value) { put(out, value); }, found->value);
        text = text.sliced(close + 1);
    }
    put(out, text);
}
