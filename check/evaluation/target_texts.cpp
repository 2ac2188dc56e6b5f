#include "check/evaluation/target_texts.h"

#include "check/evaluation/cell.h"
#include "model/number_text.h"

#include <QString>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

// Reads a whole number in this base. False for any other text.
bool readWhole(std::string_view digits, int base, double &number) {
    number = 0;
    for (const char c : digits) {
        const int digit = c >= '0' && c <= '9'   ? c - '0'
                          : c >= 'a' && c <= 'f' ? c - 'a' + 10
                          : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                 : base;
        if (digit >= base) return false;
        number = number * base + digit;
    }
    return !digits.empty();
}

// Reads a number with a prefix, such as 0x10.
bool readPrefixed(std::string_view text, char mark, std::string_view kinds,
                  std::span<const int> bases, double &number) {
    if (text.size() < 3 || text[0] != mark) return false;
    const auto kind = kinds.find(static_cast<char>(text[1] | 0x20));
    return kind != std::string_view::npos && readWhole(text.substr(2), bases[kind], number);
}

} // namespace

std::string_view withoutEndBlanks(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view withoutSpaces(std::string_view text) {
    text = withoutEndBlanks(text);
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

std::string_view withoutUnicodeBlanks(std::string_view text, bool withControls) {
    // Python's blanks are Qt's, and four control characters.
    const QString all = QString::fromUtf8(text);
    const auto isBlank = [&](QChar c) {
        if (!withControls) return c.category() == QChar::Separator_Space;
        return c.isSpace() || (c >= u'\x1C' && c <= u'\x1F');
    };
    const auto *const first = std::find_if_not(all.begin(), all.end(), isBlank);
    const auto *last = all.end();
    while (last != first && isBlank(*(last - 1))) --last;
    const auto bytes = [](const QChar *from, const QChar *to) {
        return static_cast<std::size_t>(QStringView(from, to).toUtf8().size());
    };
    text.remove_prefix(bytes(all.begin(), first));
    return text.substr(0, bytes(first, last));
}

double withDigits(double number, int digits) {
    const NumberText text = generalNumber(number, digits);
    double rounded = number;
    std::from_chars(text.characters, text.characters + text.size, rounded);
    return rounded;
}

double shortestBetween(double least, double most) {
    const double middle = least / 2 + most / 2;
    constexpr int digits = 17; // which distinguish any two
    for (int i = 1; std::isfinite(middle) && i <= digits; ++i) {
        const double number = withDigits(middle, i);
        if (number >= least && number <= most) return number;
    }
    return std::numeric_limits<double>::quiet_NaN();
}

double inSinglePrecision(double number) {
    constexpr double largest = 3.4e38;
    return std::abs(number) < largest ? static_cast<double>(static_cast<float>(number)) : number;
}

bool readHtmlNumber(std::string_view text, double &number) {
    constexpr int bases[] = {16, 8, 2};
    return readPrefixed(text, '0', "xob", bases, number) || readNumber(text, number);
}

bool readVbaNumber(std::string_view text, NumberHabits habits, double &number) {
    constexpr int bases[] = {16, 8};
    if (readPrefixed(text, '&', "ho", bases, number)) return true;
    std::string plain;
    bool isPercent = false;
    bool isNegative = text.starts_with('(') && text.ends_with(')');
    if (isNegative) text = text.substr(1, text.size() - 2);
    if (text.size() > 1 && text.ends_with('-')) {
        isNegative = !isNegative;
        text.remove_suffix(1);
    }
    for (const char c : text) {
        if (c == '%' && !isPercent) {
            isPercent = true;
        } else if (c == ',') {
            if (habits.hasDecimalComma) plain += '.';
        } else {
            plain += c;
        }
    }
    if (!readNumber(plain, number) || !std::isfinite(number)) return false;
    if (isPercent && habits.dividesPercent) number /= 100;
    if (isNegative) number = -number;
    return true;
}

double leadingNumber(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return end != text.data() && error == std::errc() && std::isfinite(number) ? number : 0;
}

bool isTruthText(std::string_view text) {
    const auto is = [&](std::string_view word) {
        return std::ranges::equal(text, word, [](char a, char b) { return (a | 0x20) == b; });
    };
    return is("true") || is("false");
}
