#include "check/rows/differences.h"

#include <QByteArrayView>

#include <algorithm>
#include <bit>
#include <cmath>

namespace {

// The bins of doubles from 2^-64 to 2^64 by the bits of their exponents, and 8 more.
constexpr int droppedBits = 44;
constexpr std::uint64_t lowestBin = std::bit_cast<std::uint64_t>(0x1p-64) >> droppedBits;
constexpr std::uint64_t highestBin = std::bit_cast<std::uint64_t>(0x1p64) >> droppedBits;

std::size_t binOf(double difference) {
    const std::uint64_t bin = std::bit_cast<std::uint64_t>(difference) >> droppedBits;
    return static_cast<std::size_t>(std::clamp(bin, lowestBin, highestBin) - lowestBin);
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

void Differences::add(double expected, double found) {
    const double difference = std::abs(found - expected);
    if (!std::isfinite(difference)) return;
    if (bins.empty()) bins.resize(highestBin - lowestBin + 1);
    Bin &bin = bins[binOf(difference)];
    if (bin.rows++ == 0) bin.first = difference;
    ++rows;
    largest = std::max(largest, difference);
    for (std::size_t i = 0; i < steps.size(); ++i) within[i] += difference <= steps[i] ? 1 : 0;
}

double Differences::median() const {
    std::int64_t below = 0;
    for (const Bin &bin : bins) {
        below += bin.rows;
        if (bin.rows > 0 && 2 * below >= rows) return bin.first;
    }
    return 0;
}

std::array<std::int64_t, Differences::powers> Differences::histogram() const {
    std::array<std::int64_t, powers> counts{};
    for (const Bin &bin : bins) {
        if (bin.rows == 0) continue;
        const double power = bin.first > 0 ? std::floor(std::log10(bin.first)) : leastPower;
        const double place = std::clamp<double>(power - leastPower, 0, powers - 1);
        counts[static_cast<std::size_t>(place)] += bin.rows;
    }
    return counts;
}

Unreadable kindOfText(std::string_view text) {
    if (text.empty()) return Unreadable::Empty;
    constexpr std::string_view nulls[] = {"null", "none", "na", "n/a", "\\n", ".", "-", "?"};
    const auto is = [&](std::string_view name) {
        return QByteArrayView(text).compare(QByteArrayView(name), Qt::CaseInsensitive) == 0;
    };
    if (std::ranges::any_of(nulls, is)) return Unreadable::Null;
    if (is("nan") || is("-nan") || is("+nan") || is("#num!")) return Unreadable::NaN;
    if (text.back() == '%' && text.size() > 1) return Unreadable::PerCent;
    const auto separators =
        std::ranges::count_if(text, [](char c) { return c == '.' || c == ','; });
    if (text.size() > 1 && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
    text = text.substr(0, std::max<std::size_t>(text.find_last_of("eE"), 1));
    const bool isNumber =
        isDigit(text.front()) && isDigit(text.back()) && std::ranges::all_of(text, [](char c) {
            return isDigit(c) || std::string_view(".,'  ").find(c) != std::string_view::npos;
        });
    if (!isNumber) return Unreadable::Other;
    const bool hasOneComma = separators == 1 && text.find(',') != std::string_view::npos;
    return hasOneComma ? Unreadable::DecimalComma : Unreadable::Thousands;
}
