// Python class that scores a pandas DataFrame.
#pragma once

#include <QString>

// Writes a module with one class, as UTF-8 with byte-order mark. Derives an empty class name from
// the path of the model file. Returns 0 without a message; 6 or 7 for an output that cannot be
// opened or written; 8 for a document that cannot be loaded, with an array that is too short or
// with an unusable regression. Modifies the output only if it returns 0 or 7.
int exportToPython(const QString &modelFile, const QString &moduleFile, const QString &className);
