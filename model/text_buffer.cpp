#include "model/text_buffer.h"

#include <algorithm>
#include <new>

// Large blocks are moved by remapping their pages, so growing costs no copy and touches nothing.
void TextBuffer::enlarge(qsizetype count) {
    constexpr qsizetype smallest = 1 << 15;
    const qsizetype wanted = std::max({smallest, 2 * capacity, used + count});
    void *const moved =
        std::realloc(units.get(), static_cast<std::size_t>(wanted) * sizeof(char16_t));
    if (!moved) throw std::bad_alloc();
    static_cast<void>(units.release());
    units.reset(static_cast<char16_t *>(moved));
    capacity = wanted;
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
