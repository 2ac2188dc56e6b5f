// How targets and servers read cells and write numbers, where they depart from the model.
#pragma once

#include <string_view>

// --- Blanks

std::string_view withoutEndBlanks(std::string_view text); // spaces
std::string_view withoutSpaces(std::string_view text);    // at both ends; tabs stay
// At both ends: spaces of all kinds or, with control characters, all blanks that Python knows. The
// text is UTF-8.
std::string_view withoutUnicodeBlanks(std::string_view text, bool withControls);

// --- Numbers

// The number, rounded to `digits` significant digits.
double withDigits(double number, int digits);
// The number with the fewest digits from `least` to `most`, near their middle; NaN if there is
// none.
double shortestBetween(double least, double most);
// The number, rounded to 32 bits; unchanged if it is too large for them.
double inSinglePrecision(double number);

// Reads the number of a field of a page: decimal, or hexadecimal, octal or binary after 0x, 0o or
// 0b. False for any other text.
bool readHtmlNumber(std::string_view text, double &number);

// How a system with these language settings reads numbers in texts.
struct NumberHabits {
    bool hasDecimalComma = false; // else commas separate thousands
    bool dividesPercent = false;  // 5% is 0.05, else 5
};
// Reads a number as Excel VBA does: with commas, per cent, parentheses or a sign at its end, or
// hexadecimal after &H. False for any other text.
bool readVbaNumber(std::string_view text, NumberHabits habits, double &number);

// The number that the text begins with; 0 without one.
double leadingNumber(std::string_view text);

// Whether a spreadsheet may hold a truth value in a cell with this text.
bool isTruthText(std::string_view text);
