// Groups of four digits with nothing between them, which is nearly all of most texts, are decoded
// in one pass. What is left from the first irregularity on is measured before it is decoded, so
// that a text with an illegal character gives nothing.
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

unsigned char byte(int value) {
    return static_cast<unsigned char>(value);
}

// Decodes groups of four digits up to the first that is none, and moves on over them.
void decodeGroups(const char16_t *&at, const char16_t *end, unsigned char *&out) {
    for (; end - at >= 4; at += 4, out += 3) {
        if ((at[0] | at[1] | at[2] | at[3]) > 0xFF) return;
        const unsigned char a = classes[at[0]];
        const unsigned char b = classes[at[1]];
        const unsigned char c = classes[at[2]];
        const unsigned char d = classes[at[3]];
        if ((a | b | c | d) >= padding) return;
        out[0] = byte(a << 2 | b >> 4);
        out[1] = byte(b << 4 | c >> 2);
        out[2] = byte(c << 6 | d);
    }
}

// Fills the `size` bytes at `out` from text without illegal characters; the result is the error or
// warning met. No more than `size` bytes are written.
XmlError decode(QStringView text, unsigned char *out, qsizetype size) {
    const char16_t *at = text.utf16();
    const char16_t *const end = at + text.size();
    unsigned char *const outEnd = out + size;
    while (true) {
        decodeGroups(at, at + std::min(end - at, (outEnd - out) / 3 * 4), out);
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
    const bool isAbsent = text.isNull();
    const qsizetype most = text.size() / 4 * 3 + 3;
    if (most > decoder.capacity) {
        decoder.buffer = std::make_unique<unsigned char[]>(static_cast<std::size_t>(most));
        decoder.capacity = most;
    }
    unsigned char *const begin = decoder.buffer.get();
    unsigned char *out = begin;
    const char16_t *at = text.utf16();
    decodeGroups(at, at + text.size(), out);

    XmlError code = XmlError::NoError;
    text = text.sliced(at - text.utf16());
    text.truncate(std::find(text.begin(), text.end(), u'\0') - text.begin());
    const qsizetype left = decodedSize(text, code);
    const bool isIllegal = code == XmlError::Base64IllegalCharacter;
    const qsizetype size = isIllegal ? 0 : out - begin + left;
    if (size > 0) {
        std::fill_n(out, left, byte(0));
        const XmlError decoding = decode(text, out, left);
        if (decoding != XmlError::NoError) code = decoding;
    }
    if (outSize) *outSize = size;
    if (error) *error = code;
    if (isAbsent) return nothing;
    return size > 0 && code != XmlError::Base64OutputBufferTooSmall ? begin : nullptr;
}
