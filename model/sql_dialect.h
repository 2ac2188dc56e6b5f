// How the dialects of SQL differ. Code tests a member of SqlDialect, never a dialect's name.
#pragma once

#include "model/text_buffer.h"

#include <QString>

#include <span>

// The texts around an expression; empty if the dialect does not wrap it.
struct SqlWrapper {
    QStringView opening;
    QStringView closing;
};

enum class SqlQuoting { QuotationMarks, UpperCase, Brackets };

struct SqlDialect {
    QStringView name;
    // How its scripts are written.
    SqlWrapper scoreCast;  // around the CASE of a variable and of the probability
    SqlWrapper columnCast; // around a numeric column in a comparison
    SqlWrapper textTrim;   // around a categorical column in a comparison
    SqlQuoting quoting;
    int identifierLength;    // longest table name in UTF-16 units, without quotes and schema
    int digits;              // significant digits of numbers
    bool hasProbability;     // else the score itself is the prediction
    bool distributes;        // adds a clause to "create table"
    bool makesIndex;         // on the new prediction table
    bool collectsStatistics; // on the temporary table
    bool hasReaderMode;      // an attribute of the ETL reader
    // How its databases read scripts.
    bool readsBackslashes;   // as escapes; elsewhere, the ' of \' ends the literal
    bool needsAnsiQuotes;    // the mode in which quotation marks enclose names, not literals
    bool needsCommentBlank;  // after the dashes of a comment
    bool mayReadBackslashes; // at least one of its databases does
    bool padsTexts;          // ignores trailing blanks in comparisons
};

// All dialects. The last, without a name, is the general one.
std::span<const SqlDialect> sqlDialects();

// The dialect of that name, ignoring case; the general one for any other name.
const SqlDialect &findSqlDialect(QStringView name);

// The name, quoted if it contains a quotation mark, a blank or "-", or is "key".
QString sqlIdentifier(const SqlDialect &dialect, QStringView name);

// The name, truncated to the dialect's longest table name, and then quoted as necessary.
QString sqlTableName(const SqlDialect &dialect, QStringView name);

// The longest key that fits in the tables of a script, in characters.
inline constexpr int longestSqlKey = 20;

// Numbers of a smaller magnitude are written as 0.
inline constexpr double smallestSqlNumber = 1e-12;

// The number with the dialect's digits.
NumberText sqlNumber(const SqlDialect &dialect, double number);

struct WrappedName {
    SqlWrapper wrapper;
    QStringView name;
};
void put(TextBuffer &out, const WrappedName &wrapped);
