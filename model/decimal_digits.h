// The usual numbers of a model as decimal text, by one exact product.
//
// A number is m times a power of two, m of at most 53 bits. Of one that is written without
// exponent, from 0.0001 up to 1e15, the wanted digits stand before the point when it is multiplied
// by 10^s, where s is 1 to 19. 10^s is 5^s times a power of two: m times 5^s has at most 53 + 45
// bits, so that 128 bits hold it exactly, and what is left to do is a shift to the right. As no bit
// was lost before it, the bits that it drops tell exactly whether to round up, down or, at a tie,
// to even.
#pragma once

// Writes what printf("%.*g", digits, value) writes in the C locale to `text`, and returns the
// number of characters, which is at most 24. They are written in blocks, so `text` has room for 40.
// 0 where the text cannot be had in this way, which is not an error: for numbers below 1e-4 and
// from 10^(digits - 1) on, for zero and what is no number, for more than 16 digits and for less
// than 2, and always where the compiler has no integer of 128 bits.
int exactDigits(double value, int digits, char *text);
