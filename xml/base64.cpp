#include "xml/base64.h"

#include <algorithm>
#include <array>

namespace {

// The classes of characters; values below 64 are the digits.
constexpr unsigned char padding = 64;
constexpr unsigned char space = 65;
constexpr unsigned char textEnd = 66;
constexpr unsigned char illegal = 67;

constexpr std::array<unsigned char, 256> makeClasses() {
    std::array<unsigned char, 256> classes{};
    classes.fill(illegal);
    unsigned char value = 0;
    for (char c : {'A', 'a'}) {
        for (int i = 0; i < 26; ++i) classes[static_cast<unsigned char>(c + i)] = value++;
    }
    for (int i = 0; i < 10; ++i) classes[static_cast<unsigned char>('0' + i)] = value++;
    classes['+'] = 62;
    classes['/'] = 63;
    classes['='] = padding;
    for (char c : {'\t', '\n', '\r', ' '}) classes[static_cast<unsigned char>(c)] = space;
    classes[0] = textEnd;
    return classes;
}
constexpr std::array<unsigned char, 256> classes = makeClasses();

unsigned char classOf(char16_t c) {
    return c > 0xFF ? illegal : classes[c];
}

// The number of bytes that the text announces. The walk back over the padding stops at white space,
// so padding with a line end behind it counts as data and the decoding reports a truncation.
qsizetype decodedSize(QStringView text, XmlError &error) {
    qsizetype count = 0;
    for (const QChar c : text) {
        const unsigned char kind = classOf(c.unicode());
        if (kind == illegal) {
            error = XmlError::Base64IllegalCharacter;
            return 0;
        }
        count += kind <= padding;
    }
    if (count % 4 != 0) error = XmlError::Base64LengthNotMultipleOf4;
    while (text.endsWith(u'=')) {
        text.chop(1);
        --count;
    }
    return count * 3 / 4;
}

// The class of the next character that is no white space.
unsigned char nextClass(const char16_t *&at, const char16_t *end) {
    while (at < end && classOf(*at) == space) ++at;
    return at < end ? classOf(*at++) : textEnd;
}

// Fills the `size` bytes at `out` from text without illegal characters; the result is the error or
// warning met. No more than `size` bytes are written.
XmlError decode(QStringView text, unsigned char *out, qsizetype size) {
    const char16_t *at = text.utf16();
    const char16_t *const end = at + text.size();
    unsigned char *const outEnd = out + size;
    const auto byte = [](int value) { return static_cast<unsigned char>(value); };
    while (true) {
        while (end - at >= 4 && outEnd - out >= 3) { // four digits without anything between them
            const unsigned char a = classOf(at[0]);
            const unsigned char b = classOf(at[1]);
            const unsigned char c = classOf(at[2]);
            const unsigned char d = classOf(at[3]);
            if ((a | b | c | d) >= padding) break;
            out[0] = byte(a << 2 | b >> 4);
            out[1] = byte((b << 4 & 0xF0) | c >> 2);
            out[2] = byte((c << 6 & 0xC0) | d);
            at += 4;
            out += 3;
        }
        const unsigned char first = nextClass(at, end);
        if (first == textEnd) return XmlError::NoError;
        if (first == padding) {
            return out == outEnd ? XmlError::NoError : XmlError::Base64Truncated;
        }
        const unsigned char second = nextClass(at, end);
        if (second >= padding) return XmlError::Base64Truncated;
        if (out == outEnd) return XmlError::Base64OutputBufferTooSmall;
        *out++ = byte(first << 2 | second >> 4);

        unsigned char previous = second;
        for (const int shift : {4, 6}) {
            const unsigned char next = nextClass(at, end);
            if (next == textEnd) return XmlError::Base64Truncated;
            if (out == outEnd) {
                return next == padding ? XmlError::NoError : XmlError::Base64OutputBufferTooSmall;
            }
            if (next == padding) return XmlError::Base64Truncated;
            *out++ = byte(previous << shift | next >> (6 - shift));
            previous = next;
        }
    }
}

} // namespace

void Base64Decoder::release() {
    buffer.reset();
    capacity = 0;
}

const unsigned char *base64Decode(Base64Decoder &decoder, QStringView text, qsizetype *outSize,
                                  XmlError *error) {
    static constexpr unsigned char nothing[] = {0};
    XmlError code = XmlError::NoError;
    const bool isAbsent = text.isNull();
    if (const qsizetype zero = text.indexOf(u'\0'); zero >= 0) text.truncate(zero);
    const qsizetype size = decodedSize(text, code);
    if (size > 0) {
        if (size + 1 > decoder.capacity) {
            decoder.buffer = std::make_unique<unsigned char[]>(static_cast<std::size_t>(size) + 1);
            decoder.capacity = size + 1;
        }
        std::fill_n(decoder.buffer.get(), size + 1, static_cast<unsigned char>(0));
        const XmlError decoding = decode(text, decoder.buffer.get(), size);
        if (decoding != XmlError::NoError) code = decoding;
    }
    if (outSize) *outSize = size;
    if (error) *error = code;
    if (isAbsent) return nothing;
    const bool isUsable = size > 0 && code != XmlError::Base64IllegalCharacter &&
                          code != XmlError::Base64OutputBufferTooSmall;
    return isUsable ? decoder.buffer.get() : nullptr;
}
