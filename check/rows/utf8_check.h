// Checks that bytes that arrive in pieces are UTF-8.
#pragma once

#include <cstddef>
#include <string_view>

class Utf8Check {
public:
    // How many bytes of the next piece are valid: all, or those before the first error.
    std::size_t take(std::string_view bytes);
    // Whether the bytes so far end with a whole character.
    bool isComplete() const { return pending == 0; }

private:
    int pending = 0; // missing bytes of the current character
    // Range of its next byte, which excludes overlong forms and surrogates.
    unsigned char least = 0x80;
    unsigned char most = 0xBF;
};
