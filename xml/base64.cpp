// Most texts are plain groups of four digits, which one pass decodes. The rest after the first
// irregularity is scanned first, since a text with an illegal character has no result.
#include "xml/base64.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "groups are read and written as words");

namespace {

// Classes of characters; values below 64 are digits.
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

// The size in bytes that the text's length implies. Padding before trailing white space counts as
// data; decode() then reports a truncation.
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

// The class of the next character other than white space.
unsigned char nextClass(const char16_t *&at, const char16_t *end) {
    while (at < end && classOf(*at) == space) ++at;
    return at < end ? classOf(*at++) : textEnd;
}

unsigned char byte(int value) {
    return static_cast<unsigned char>(value);
}

// Four digits encode three bytes. places[n] maps the n-th digit to its bits within the three bytes,
// and any other character to a bit above them.
constexpr std::uint32_t noDigit = 1U << 24;
constexpr std::array<std::array<std::uint32_t, 256>, 4> makePlaces() {
    std::array<std::array<std::uint32_t, 256>, 4> places{};
    for (std::size_t c = 0; c < 256; ++c) {
        const std::uint32_t digit = classes[c];
        const bool isDigit = digit < padding;
        places[0][c] = isDigit ? digit << 2 : noDigit;
        places[1][c] = isDigit ? digit >> 4 | (digit & 15) << 12 : noDigit;
        places[2][c] = isDigit ? digit >> 2 << 8 | (digit & 3) << 22 : noDigit;
        places[3][c] = isDigit ? digit << 16 : noDigit;
    }
    return places;
}
constexpr auto places = makePlaces();

// Decodes groups of four digits up to the first irregular one, and moves `at` and `out` past
// them. Writes four bytes per group, the last of them zero. Four tables are faster than one table
// and shifts (benchmarks/costs.md: "one Base64 table").
void decodeGroups(const char16_t *&at, const char16_t *end, unsigned char *&out) {
    constexpr std::uint64_t highBytes = 0xFF00FF00FF00FF00;
    for (; end - at >= 4; at += 4, out += 3) {
        std::uint64_t units = 0;
        std::memcpy(&units, at, sizeof units);
        const std::uint32_t group = places[0][units & 0xFF] | places[1][units >> 16 & 0xFF] |
                                    places[2][units >> 32 & 0xFF] | places[3][units >> 48 & 0xFF];
        if (group >= noDigit || (units & highBytes) != 0) return;
        std::memcpy(out, &group, sizeof group);
    }
}

// Fills the `size` bytes at `out` from a text without illegal characters; returns the error or
// warning. May write a zero after them, for which the buffer has room.
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

qsizetype base64BytesBeforePadding(QStringView text) {
    qsizetype digits = 0;
    for (const QChar c : text) {
        const unsigned char kind = classOf(c.unicode());
        if (kind == padding || kind == textEnd) break;
        digits += kind < padding;
    }
    return digits * 3 / 4;
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
