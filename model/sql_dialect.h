// What sets one database engine's SQL apart, and the texts that depend on it. Who needs to know
// what a dialect does asks for it by a member of SqlDialect, never by the dialect's name.
#pragma once

#include "model/text_buffer.h"

#include <QString>

#include <span>

// The texts before and behind an expression; both are empty if a dialect does not wrap it.
struct SqlWrapper {
    QStringView opening;
    QStringView closing;
};

enum class SqlQuoting { QuotationMarks, UpperCase, Brackets };

struct SqlDialect {
    QStringView name;
    // What its scripts look like.
    SqlWrapper scoreCast;  // around the CASE of a variable and of the probability
    SqlWrapper columnCast; // around a numeric column in a comparison
    SqlWrapper textTrim;   // around a categorical column in a comparison
    SqlQuoting quoting;
    int identifierLength;    // longest table name in UTF-16 units, without quotes and schema
    int digits;              // significant digits of numbers
    bool hasProbability;     // else the score itself is the prediction
    bool distributes;        // clause after "create table"
    bool makesIndex;         // of the new prediction table
    bool collectsStatistics; // of the temporary table
    bool hasReaderMode;      // attribute of the ETL reader
    // How its databases read them.
    bool readsBackslashes;   // as escapes in texts, where others end the text at \'
    bool needsAnsiQuotes;    // a mode in which quotation marks surround names, not texts
    bool needsCommentBlank;  // after the dashes, else the line is no comment
    bool mayReadBackslashes; // one of the databases that run its scripts does
    bool padsTexts;          // blanks at the end of a text do not count
};

// All dialects. The last, which has no name, stands for all other names.
std::span<const SqlDialect> sqlDialects();

// The dialect of that name, in any case; a general one for any other name.
const SqlDialect &findSqlDialect(QStringView name);

// The name as a script shows it: quoted if it contains a quotation mark, a blank or "-", or is
// "key".
QString sqlIdentifier(const SqlDialect &dialect, QStringView name);

// The name, cut to the length that the dialect allows for a table, and then quoted.
QString sqlTableName(const SqlDialect &dialect, QStringView name);

// Longest key in the tables that a script creates, in characters.
inline constexpr int longestSqlKey = 20;

// Numbers nearer to 0 than this are written as 0.
inline constexpr double smallestSqlNumber = 1e-12;

// The number with the dialect's digits.
NumberText sqlNumber(const SqlDialect &dialect, double number);

// A name between the texts of a wrapper; put() appends it.
struct WrappedName {
    SqlWrapper wrapper;
    QStringView name;
};
void put(TextBuffer &out, const WrappedName &wrapped);
