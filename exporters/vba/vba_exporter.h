// Excel VBA module.
#pragma once

#include <QString>

// Writes a module with a worksheet function that scores a row of a table and a macro that colours
// the cells outside the ranges of the numeric columns, as UTF-16LE with byte-order mark. Returns 0;
// 6 or 7 for an output that cannot be opened or written; 8 for a document that cannot be loaded,
// whose arrays are too short or whose regression cannot be used. Prints one message in each case
// and touches the output only for 0 and 7.
int exportToVba(const QString &modelFile, const QString &moduleFile);
