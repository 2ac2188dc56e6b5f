// Formats numbers of the usual size by one exact multiplication.
//
// A double is m times a power of two, where m has at most 53 bits. If it is written without an
// exponent (from 0.0001 up to 1e15), multiplying it by 10^s, with s from 1 to 19, moves the digits
// in front of the point. 10^s is 5^s times a power of two, and m times 5^s has at most 53 + 45
// bits: 128 bits hold it exactly, and a right shift yields the digits. As no bit was lost before
// the shift, the bits that it drops decide exactly whether to round up, down or, at a tie, to even.
#pragma once

// Writes to `text` what printf("%.*g", digits, value) writes in the C locale, and returns the
// number of characters, at most 24. Writes in blocks, so `text` must have room for 40.
// Returns 0 if the fast path does not apply; the caller then uses std::to_chars. It applies to
// magnitudes from 1e-4 to below 10^(digits - 1) that do not round up to a power of ten, and to 2 to
// 16 digits, if the compiler has 128-bit integers.
int exactDigits(double value, int digits, char *text);
