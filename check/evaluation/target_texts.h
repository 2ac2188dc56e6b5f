// How targets and servers read the text of a cell where they read it differently from the model,
// and how they show numbers.
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
// The number, rounded to 32 bits; one that is too large for them is returned unchanged.
double inSinglePrecision(double number);

// The number that a field of a page holds: decimal, or hexadecimal, octal or binary behind 0x, 0o
// or 0b. False for any other text.
bool readHtmlNumber(std::string_view text, double &number);

// How a system reads numbers in texts, which its language settings decide.
struct NumberHabits {
    bool hasDecimalComma = false; // else commas part thousands
    bool dividesPercent = false;  // 5% is 0.05, else 5
};
// The number that Excel VBA takes a text for which the model takes for none: with commas, per cent,
// parentheses or a sign behind it, hexadecimal behind &H. False for any other text.
bool readVbaNumber(std::string_view text, NumberHabits habits, double &number);

// The number that the text begins with; 0 without one.
double leadingNumber(std::string_view text);

// Whether a spreadsheet may hold a truth value where the text of the cell is this one.
bool isTruthText(std::string_view text);
