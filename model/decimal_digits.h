// Numbers of the usual size as decimal text, by one exact multiplication.
//
// A double is m times a power of two, with m of at most 53 bits. If it is written without exponent
// (from 0.0001 up to 1e15), multiplying it by 10^s, with s from 1 to 19, moves the wanted digits
// before the point. 10^s is 5^s times a power of two, and m times 5^s has at most 53 + 45 bits: 128
// bits hold it exactly, and a shift to the right gives the digits. Since no bit was lost before the
// shift, the bits that it drops decide exactly whether to round up, down or, at a tie, to even.
#pragma once

// Writes what printf("%.*g", digits, value) writes in the C locale to `text`, and returns the
// number of characters, at most 24. It writes in blocks, so `text` must have room for 40.
// Returns 0 if this way does not apply; the caller then uses std::to_chars. It does not apply below
// 1e-4 and from 10^(digits - 1) on, to zero, NaN and infinity, to fewer than 2 and more than 16
// digits, and never if the compiler has no integer of 128 bits.
int exactDigits(double value, int digits, char *text);
