// SAS data-step script.
#pragma once

#include <QString>

// Writes a script that recodes each input column, computes the score and maps it to a probability,
// as UTF-16LE with byte-order mark. Returns 0; 1 for a variable of an unsupported type; 6 or 7 for
// an output that cannot be opened or written; 8 for a document that cannot be loaded, with an array
// that is too short or with a regression that does not match its variables. Always prints one
// message; modifies the output only if it returns 0 or 7.
int exportToSas(const QString &modelFile, const QString &scriptFile);
