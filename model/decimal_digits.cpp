#include "model/decimal_digits.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "digits are combined in words");

#ifdef __SIZEOF_INT128__

namespace {

__extension__ using Wide = unsigned __int128;
using Word = std::uint64_t;

constexpr int mostDigits = 16;
constexpr int leastExponent = -4; // decimal; smaller numbers are written with an exponent

template <std::size_t size>
constexpr std::array<Word, size> powersOf(Word base) {
    std::array<Word, size> powers{1};
    for (std::size_t i = 1; i < size; ++i) powers[i] = powers[i - 1] * base;
    return powers;
}
constexpr auto powersOfFive = powersOf<mostDigits - leastExponent>(5);
constexpr auto powersOfTen = powersOf<mostDigits + 1>(10);

// The smallest double of each decimal exponent, from leastExponent on. Powers of ten below 1 are
// inexact, but each constant is the smallest double not below its power.
constexpr double leastOfExponent[] = {1e-4, 1e-3, 1e-2, 1e-1, 1e0,  1e1,  1e2,  1e3,  1e4,  1e5,
                                      1e6,  1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// floor(log10(value)) for 1e-4 <= value < 1e15.
int decimalExponent(double value, int binaryExponent) {
    // The decimal exponent of the power of two below the value, or one less.
    const int estimate = (binaryExponent * 1233 >> 12) - leastExponent;
    return estimate + leastExponent + (value >= leastOfExponent[estimate + 1] ? 1 : 0);
}

// The eight digits of a number below 10^8, one per byte, the first in the lowest byte.
Word eightDigits(Word number) {
    const Word fours = number / 10000 | number % 10000 << 32;
    const Word hundreds = (fours * 10486 >> 20 & 0x7F0000007F);
    const Word twos = hundreds | (fours - 100 * hundreds) << 16;
    const Word tens = twos * 103 >> 10 & 0x000F000F000F000F;
    return tens | (twos - 10 * tens) << 8;
}

// Writes a number of 16 digits with a point after the first `exponent + 1` of them and without
// trailing zeros. Returns the number of characters.
int storeDigits(Word number, int exponent, char *text) {
    const Word first = eightDigits(number / 100000000);
    const Word last = eightDigits(number % 100000000);
    const int count = last != 0 ? 16 - std::countl_zero(last) / 8 : 8 - std::countl_zero(first) / 8;
    constexpr Word zeros = 0x3030303030303030;
    const Wide digits = Wide(last | zeros) << 64 | (first | zeros);
    // Below 1, the digits follow "0." and zeros. Both cases take the same steps, because a branch
    // would often be mispredicted.
    const int whole = std::max(exponent + 1, 0);
    const int start = exponent < 0 ? 1 - exponent : 0;
    const int point = exponent < 0 ? 1 : whole;
    const Wide fraction = digits >> 8 * whole;
    std::memcpy(text, "0.00000", 8);
    std::memcpy(text + start, &digits, sizeof digits);
    text[point] = '.';
    std::memcpy(text + std::max(start, whole + 1), &fraction, sizeof fraction);
    return count > whole ? std::max(start, 1) + count : whole;
}

} // namespace

// Much faster than std::to_chars (benchmarks/costs.md: "numbers by to_chars").
int exactDigits(double value, int digits, char *text) {
    constexpr Word hidden = Word(1) << 52; // the highest bit of m, which is not stored
    constexpr Word half = Word(1) << 63;
    const auto bits = std::bit_cast<Word>(value);
    const auto magnitude = std::bit_cast<double>(bits & ~(Word(1) << 63));
    if (digits < 2 || digits > mostDigits) return 0;
    const double end = leastOfExponent[digits - 1 - leastExponent];
    if (!(magnitude >= leastOfExponent[0] && magnitude < end)) return 0;

    const int binaryExponent = static_cast<int>(bits >> 52 & 0x7FF) - 1023;
    const int exponent = decimalExponent(magnitude, binaryExponent);
    const int scale = digits - 1 - exponent;
    const int shift = 52 - binaryExponent - scale; // 2 to 61
    const Wide product =
        Wide((bits & (hidden - 1)) | hidden) * powersOfFive[static_cast<std::size_t>(scale)];
    const auto low = static_cast<Word>(product);
    const Word down = static_cast<Word>(product >> 64) << (64 - shift) | low >> shift;
    const Word dropped = low << (64 - shift);
    const Word rounded = down + (dropped + (down & 1) > half ? 1 : 0);
    const Word number = rounded * powersOfTen[static_cast<std::size_t>(mostDigits - digits)];
    if (number == powersOfTen[mostDigits]) return 0; // rounded up to a power of ten
    *text = '-';
    const int sign = bits >> 63 ? 1 : 0;
    return sign + storeDigits(number, exponent, text + sign);
}

#else

int exactDigits(double, int, char *) {
    return 0;
}

#endif
