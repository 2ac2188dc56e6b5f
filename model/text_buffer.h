// The output of an exporter while it grows in memory, and the one way of appending to it:
//
//     put(out, u"   else ", name, u"=", score, u";\n");
//
// appends its pieces from left to right. A piece is a UTF-16 literal or any other text, a double
// (written as a model number), an integer, a NumberText, or a text with its quotes escaped.
#pragma once

#include "model/number_text.h"

#include <QStringView>

#include <concepts>
#include <cstdlib>
#include <cstring>
#include <memory>

class TextBuffer {
public:
    TextBuffer() = default;
    // A buffer that is expected to take about so many units. Room is promised for them, but it is
    // not touched before it is used.
    explicit TextBuffer(qsizetype expected);

    QStringView text() const { return {units.get(), used}; }

    // Makes room for `count` more units and returns where they go; the caller fills all of them.
    char16_t *extend(qsizetype count) {
        if (count > capacity - used) enlarge(count);
        char16_t *const room = units.get() + used;
        used += count;
        return room;
    }

private:
    struct Free {
        void operator()(char16_t *memory) const { std::free(memory); }
    };

    bool resize(qsizetype newCapacity);
    void enlarge(qsizetype count);

    std::unique_ptr<char16_t[], Free> units;
    qsizetype used = 0;
    qsizetype capacity = 0;
};

// A text in which every `quote` gets a backslash before it when it is appended.
struct EscapedText {
    QStringView text;
    char16_t quote;
};

// The escape of string literals; nothing else in the text is changed.
inline EscapedText escapeQuotes(QStringView text) {
    return {text, u'"'};
}

template <std::size_t size>
void append(TextBuffer &out, const char16_t (&literal)[size]) {
    std::memcpy(out.extend(size - 1), literal, (size - 1) * sizeof(char16_t));
}
inline void append(TextBuffer &out, QStringView text) {
    if (!text.isEmpty()) {
        std::memcpy(out.extend(text.size()), text.utf16(),
                    static_cast<std::size_t>(text.size()) * sizeof(char16_t));
    }
}
void append(TextBuffer &out, const NumberText &number);
void append(TextBuffer &out, const EscapedText &escaped);
inline void append(TextBuffer &out, double number) {
    append(out, modelNumber(number));
}
template <std::signed_integral Integer>
void append(TextBuffer &out, Integer number) {
    append(out, integerText(number));
}

template <typename... Pieces>
void put(TextBuffer &out, const Pieces &...pieces) {
    (append(out, pieces), ...);
}
