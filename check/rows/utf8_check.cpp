#include "check/rows/utf8_check.h"

#include <cstdint>
#include <cstring>

namespace {

// The first bytes, eight at a time, that are ASCII.
std::size_t asciiBytes(std::string_view bytes) {
    constexpr std::uint64_t highBits = 0x8080808080808080;
    std::size_t at = 0;
    for (; at + sizeof(std::uint64_t) <= bytes.size(); at += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at, sizeof word);
        if ((word & highBits) != 0) break;
    }
    return at;
}

} // namespace

std::size_t Utf8Check::take(std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        if (pending == 0) at += asciiBytes(bytes.substr(at));
        if (at == bytes.size()) break;
        const auto byte = static_cast<unsigned char>(bytes[at]);
        if (pending > 0) {
            if (byte < least || byte > most) return at;
            --pending;
            least = 0x80;
            most = 0xBF;
        } else if (byte >= 0x80) {
            if (byte < 0xC2 || byte > 0xF4) return at;
            pending = byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
            least = byte == 0xE0 ? 0xA0 : byte == 0xF0 ? 0x90 : 0x80;
            most = byte == 0xED ? 0x9F : byte == 0xF4 ? 0x8F : 0xBF; // no surrogates
        }
    }
    return bytes.size();
}
