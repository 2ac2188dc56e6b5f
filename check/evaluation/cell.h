// A cell of a row, and the numbers that texts hold.
#pragma once

#include <limits>
#include <span>
#include <string>
#include <string_view>

inline constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

// One cell, as the model reads it.
struct Cell {
    std::string_view raw;
    std::string_view text; // without blanks around it; empty if it is missing
    double number = 0;     // NaN is missing
    bool isNumber = false; // the text
};
// The decimal mark of numbers.
enum class DecimalMark { Point, Comma, Either };

// `missing`: texts that count as missing, as an empty cell does.
Cell cellOf(std::string_view raw, std::span<const std::string> missing = {},
            DecimalMark mark = DecimalMark::Point);

// Reads a decimal number, with or without an exponent. False for any other text.
bool readNumber(std::string_view text, double &number);

// The cell without the blanks around it.
inline std::string_view trimmed(std::string_view cell) {
    const auto isBlank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!cell.empty() && isBlank(cell.front())) cell.remove_prefix(1);
    while (!cell.empty() && isBlank(cell.back())) cell.remove_suffix(1);
    return cell;
}
