// Python class that scores a pandas data frame.
#pragma once

#include <QString>

// Writes a module with one class, as UTF-8 with byte-order mark. An empty class name is replaced by
// one derived from the path of the model file. Returns 0 without a message; 6 or 7 for an output
// that cannot be opened or written; 8 for a document that cannot be loaded, whose arrays are too
// short or whose regression cannot be used. Touches the output only for 0 and 7.
int exportToPython(const QString &modelFile, const QString &moduleFile, const QString &className);
