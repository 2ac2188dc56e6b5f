// How far results are from the model, and what their cells hold that are not numbers.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The absolute differences between results and model in one column.
class Differences {
public:
    static constexpr std::array<double, 4> steps = {1e-9, 1e-6, 1e-4, 1e-2};
    static constexpr int leastPower = -17; // of ten, of the histogram
    static constexpr std::size_t powers = 22;

    // Pairs with NaN or infinity are ignored.
    void add(double expected, double found);

    std::int64_t rows = 0;
    double largest = 0;
    std::array<std::int64_t, steps.size()> within{}; // rows up to each step

    // A difference with as many rows below it as above it, to within 0.4 % of itself; 0 without
    // rows.
    double median() const;
    // Rows by the power of ten of their difference; the first holds all that are smaller too, and
    // the last all that are larger.
    std::array<std::int64_t, powers> histogram() const;

private:
    // Rows whose differences agree in their first 8 bits, and the first of these differences.
    struct Bin {
        std::int64_t rows = 0;
        double first = 0;
    };
    std::vector<Bin> bins;
};

// What a cell of the results holds instead of a number.
enum class Unreadable : std::uint8_t { Empty, Null, NaN, DecimalComma, Thousands, PerCent, Other };
inline constexpr std::size_t unreadableKinds = 7;
Unreadable kindOfText(std::string_view text);

struct UnreadableCells {
    std::int64_t cells = 0;
    std::string first; // verbatim
    std::int64_t row = 0;
};
