// The output of an exporter, and the two ways to append to it: put for values, fill for fixed texts
// with placeholders.
//
//     put(out, u"   else ", name, u"=", score, u";\n");
//
// appends its pieces from left to right. A piece is a UTF-16 literal or another text, a double
// (written as a model number), an integer, a NumberText, or an EscapedText.
//
// A buffer with a file writes block by block and needs the memory of one block; without a file, the
// whole text stays in memory.
#pragma once

#include "model/number_text.h"
#include "model/output_file.h"
#include "platform/platform.h"

#include <QStringView>

#include <algorithm>
#include <concepts>
#include <cstring>
#include <initializer_list>
#include <utility>
#include <variant>

class TextBuffer {
public:
    TextBuffer() = default;
    // A buffer in memory with room for `expected` units; grows if necessary.
    explicit TextBuffer(qsizetype expected);
    TextBuffer(const TextBuffer &) = delete;
    TextBuffer &operator=(const TextBuffer &) = delete;

    // The appended text that is not yet in a file.
    QStringView text() const { return {units, used}; }

    // Allocates one block unless the buffer already has memory.
    void reserveBlock() {
        if (capacity == 0) enlarge(1);
    }
    // Directs everything in the buffer, now and later, to the file.
    void writeTo(OutputFile opened) { file = std::move(opened); }
    // Writes the rest to the file and closes it.
    void close();

    // Appends `count` uninitialised units and returns the first; the caller fills all of them.
    char16_t *extend(qsizetype count) {
        if (count > capacity - used) enlarge(count);
        char16_t *const room = units + used;
        used += count;
        return room;
    }
    // Removes the last `count` of the units that extend() appended last.
    void giveBack(qsizetype count) { used -= count; }

private:
    bool resize(qsizetype newCapacity);
    void enlarge(qsizetype count);
    void writeBlock();

    OutputFile file;
    qsizetype position = 1; // of the first unit in a UTF-16 file; the byte-order mark is at 0
    MemoryBlock block;
    char16_t *units = nullptr; // in the block
    qsizetype used = 0;
    qsizetype capacity = 0;
};

// Appended with a backslash before every `quote`.
struct EscapedText {
    QStringView text;
    char16_t quote;
};

// Escapes the quotation marks of a string literal, and nothing else.
inline EscapedText escapeQuotes(QStringView text) {
    return {text, u'"'};
}

// In units. Longer texts are appended in pieces of this size, so that a buffer with a file never
// grows beyond its block.
constexpr qsizetype longestPiece = 1 << 14;

template <std::size_t size>
void put(TextBuffer &out, const char16_t (&literal)[size]) {
    static_assert(size <= longestPiece);
    std::memcpy(out.extend(size - 1), literal, (size - 1) * sizeof(char16_t));
}
inline void put(TextBuffer &out, QStringView text) {
    for (; !text.isEmpty(); text = text.sliced(std::min(longestPiece, text.size()))) {
        const qsizetype size = std::min(longestPiece, text.size());
        std::memcpy(out.extend(size), text.utf16(),
                    static_cast<std::size_t>(size) * sizeof(char16_t));
    }
}
void put(TextBuffer &out, const NumberText &number);
void put(TextBuffer &out, const EscapedText &escaped);
inline void put(TextBuffer &out, double number) {
    put(out, modelNumber(number));
}
template <std::signed_integral Integer>
void put(TextBuffer &out, Integer number) {
    put(out, integerText(number));
}

template <typename First, typename Second, typename... Rest>
void put(TextBuffer &out, const First &first, const Second &second, const Rest &...rest) {
    put(out, first);
    put(out, second);
    (put(out, rest), ...);
}

// The name of a placeholder, and the value that replaces it.
struct Placeholder {
    QStringView name;
    std::variant<QStringView, std::ptrdiff_t, double> value;
};

// Appends a fixed text with its placeholders replaced. A placeholder is a name between two "$" and
// must be one of `placeholders`, whose values are not searched for placeholders:
//
//     fill(out, u"Dim $recoding$ As Double\n", {{u"recoding", name}});
void fill(TextBuffer &out, QStringView text, std::initializer_list<Placeholder> placeholders);
