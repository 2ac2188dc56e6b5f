// Numbers as text, each eight bytes one number, beside those of the standard library.
#include "model/number_text.h"
#include "tests/fuzz/fuzz.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    for (; size >= sizeof(double); data += sizeof(double), size -= sizeof(double)) {
        double value = 0;
        std::memcpy(&value, data, sizeof value);
        for (int digits = 1; digits <= 17; ++digits) {
            char text[64];
            const auto end =
                std::to_chars(text, std::end(text), value, std::chars_format::general, digits);
            const std::string_view expected(text, static_cast<size_t>(end.ptr - text));
            if (generalNumber(value, digits).view() != expected) std::abort();
        }
    }
    return 0;
}
