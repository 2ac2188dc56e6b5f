#include "model/text_buffer.h"

#include "xml/platform.h"

#include <algorithm>
#include <new>

TextBuffer::TextBuffer(qsizetype expected) {
    // Memory that is never touched costs nothing; where there is none to promise, it can wait.
    static_cast<void>(resize(expected));
}

bool TextBuffer::resize(qsizetype newCapacity) {
    const auto bytes = static_cast<std::size_t>(newCapacity) * sizeof(char16_t);
    void *const moved = std::realloc(units.get(), bytes);
    if (!moved) return false;
    static_cast<void>(units.release());
    units.reset(static_cast<char16_t *>(moved));
    capacity = newCapacity;
    preferLargePages(moved, bytes);
    return true;
}

// Large blocks are moved by remapping their pages, so growing costs no copy and touches nothing.
void TextBuffer::enlarge(qsizetype count) {
    constexpr qsizetype smallest = 1 << 15;
    if (!resize(std::max({smallest, 2 * capacity, used + count}))) throw std::bad_alloc();
}

void append(TextBuffer &out, const NumberText &number) {
    std::copy_n(number.characters, number.size, out.extend(number.size));
}

void append(TextBuffer &out, const EscapedText &escaped) {
    QStringView rest = escaped.text;
    for (qsizetype at = rest.indexOf(escaped.quote); at >= 0; at = rest.indexOf(escaped.quote)) {
        put(out, rest.first(at), u"\\", rest.sliced(at, 1));
        rest = rest.sliced(at + 1);
    }
    put(out, rest);
}
