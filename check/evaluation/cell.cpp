#include "check/evaluation/cell.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

bool readNumber(std::string_view text, double &number) {
    if (text.starts_with('+') && text.size() > 1 && text[1] != '-') text.remove_prefix(1);
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (stop != end || text.empty()) return false;
    if (error == std::errc::result_out_of_range) { // too large, or too near to 0
        number = std::strtod(std::string(text).c_str(), nullptr);
        return true;
    }
    return error == std::errc();
}

// A text with a full stop is not a number here: the stop may separate thousands.
static bool readDecimalComma(std::string_view text, double &number) {
    std::string plain(text);
    std::ranges::replace(plain, ',', '.');
    return text.find('.') == std::string_view::npos && readNumber(plain, number);
}

Cell cellOf(std::string_view raw, std::span<const std::string> missing, DecimalMark mark) {
    Cell cell = {.raw = raw, .text = trimmed(raw)};
    if (std::ranges::find(missing, cell.text) != missing.end()) cell.text = {};
    cell.isNumber = mark != DecimalMark::Comma && readNumber(cell.text, cell.number);
    if (mark != DecimalMark::Point && !cell.isNumber) {
        cell.isNumber = readDecimalComma(cell.text, cell.number);
    }
    return cell;
}
