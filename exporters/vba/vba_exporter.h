// Excel VBA module.
#pragma once

#include <QString>

// Writes a module with a worksheet function that scores a row of a table and a macro that colours
// the cells outside the bounds of the numeric columns, as UTF-16LE with byte-order mark. Returns 0;
// 6 or 7 for an output that cannot be opened or written; 8 for a document that cannot be loaded,
// with an array that is too short or with an unusable regression. Always prints one message;
// modifies the output only if it returns 0 or 7.
int exportToVba(const QString &modelFile, const QString &moduleFile);
