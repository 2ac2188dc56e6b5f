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

Cell cellOf(std::string_view raw, std::span<const std::string> missing) {
    Cell cell = {.raw = raw, .text = trimmed(raw)};
    if (std::ranges::find(missing, cell.text) != missing.end()) cell.text = {};
    cell.isNumber = readNumber(cell.text, cell.number);
    return cell;
}
