// SAS data-step script.
#pragma once

#include <QString>

// Writes a script that recodes each input column, sums the regression and maps the score to a
// probability, as UTF-16LE with byte-order mark. Returns 0; 1 for a variable of an unsupported
// type; 6 or 7 for an output that cannot be opened or written; 8 for a document that cannot be
// loaded, whose arrays are too short or whose regression does not fit its variables. Prints one
// message in each case and touches the output only for 0 and 7.
int exportToSas(const QString &modelFile, const QString &scriptFile);
