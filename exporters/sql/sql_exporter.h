// SQL script, driven by a configuration file.
#pragma once

#include <QString>

// Writes the configured script, or an ETL document that contains it, as UTF-16LE with byte-order
// mark. Returns 0; 1, 2, 3, 5 or 10 for an unusable configuration; 6 or 7 for an output that cannot
// be opened or written; 8 for a model document that cannot be loaded, with an array that is too
// short or with a regression that does not match its variables. Always prints one message; modifies
// the output only if it returns 0 or 7.
int exportToSql(const QString &configurationFile);
