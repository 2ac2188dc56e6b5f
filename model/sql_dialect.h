// What sets one database engine's SQL apart, and the texts that depend on it.
#pragma once

#include "model/text_buffer.h"

#include <QString>

#include <span>

// A text is written between the two; both are empty where a dialect does not wrap it.
struct SqlWrapper {
    QStringView opening;
    QStringView closing;
};

enum class SqlQuoting { QuotationMarks, UpperCase, Brackets };

struct SqlDialect {
    QStringView name;
    SqlWrapper scoreCast;  // around the CASE of a variable and of the probability
    SqlWrapper columnCast; // around a numeric column that is compared
    SqlWrapper textTrim;   // around a categorical column that is compared
    SqlQuoting quoting;
    int identifierLength;    // the most UTF-16 units of a table name, quotes and schema not counted
    int digits;              // significant digits of numbers
    bool hasProbability;     // else the score itself is the prediction
    bool distributes;        // clause after "create table"
    bool makesIndex;         // of the new prediction table
    bool collectsStatistics; // of the temporary table
    bool hasReaderMode;      // attribute of the ETL reader
};

// All dialects. The last, which has no name, stands for all other names.
std::span<const SqlDialect> sqlDialects();

// The dialect of that name, whose case does not matter; a general one for any other name.
const SqlDialect &findSqlDialect(QStringView name);

// The name as it is written into a script: quoted where it holds a quotation mark, a blank or "-",
// or is "key".
QString sqlIdentifier(const SqlDialect &dialect, QStringView name);

// The name, cut to the length that the dialect allows for a table, and then quoted.
QString sqlTableName(const SqlDialect &dialect, QStringView name);

// The number with the dialect's digits; "0" for one that is nearer to 0 than 1e-12.
NumberText sqlNumber(const SqlDialect &dialect, double number);

// A name with what is written around it: a piece of output.
struct WrappedName {
    SqlWrapper wrapper;
    QStringView name;
};
void put(TextBuffer &out, const WrappedName &wrapped);
