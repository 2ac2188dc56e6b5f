// Numbers as the generated code shows them.
#pragma once

#include <cstdint>
#include <string_view>

// The text of one number; ASCII.
struct NumberText {
    char characters[40] = {};
    int size = 0;

    std::string_view view() const { return {characters, static_cast<std::size_t>(size)}; }
};

// What printf("%.*g", digits, value) writes in the C locale, for 1 to 17 digits. Negative zero
// keeps its sign.
NumberText generalNumber(double value, int digits);

// Model numbers (scores, bounds, coefficients, probabilities): 16 significant digits.
NumberText modelNumber(double value);

// Counts and indexes.
NumberText integerText(std::int64_t value);

// The default format of a text stream: 6 significant digits and an exponent of at least three
// digits, as in 1e+006.
NumberText streamNumber(double value);
