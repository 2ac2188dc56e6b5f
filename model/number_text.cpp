// With a precision, std::to_chars writes what printf's %g writes, regardless of the locale.
#include "model/number_text.h"

#include "model/decimal_digits.h"

#include <charconv>
#include <iterator>

NumberText generalNumber(double value, int digits) {
    NumberText text;
    text.size = exactDigits(value, digits, text.characters);
    if (text.size > 0) return text;
    const auto result = std::to_chars(std::begin(text.characters), std::end(text.characters), value,
                                      std::chars_format::general, digits);
    text.size = static_cast<int>(result.ptr - text.characters);
    return text;
}

NumberText integerText(std::int64_t value) {
    NumberText text;
    const auto result =
        std::to_chars(std::begin(text.characters), std::end(text.characters), value);
    text.size = static_cast<int>(result.ptr - text.characters);
    return text;
}

NumberText modelNumber(double value) {
    return generalNumber(value, 16);
}

NumberText streamNumber(double value) {
    NumberText text = generalNumber(value, 6);
    const bool hasTwoDigitExponent = text.size > 4 && text.characters[text.size - 4] == 'e';
    if (hasTwoDigitExponent) {
        text.characters[text.size] = text.characters[text.size - 1];
        text.characters[text.size - 1] = text.characters[text.size - 2];
        text.characters[text.size - 2] = '0';
        ++text.size;
    }
    return text;
}
