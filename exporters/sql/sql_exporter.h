// SQL script, driven by a configuration file.
#pragma once

#include <QString>

// Writes the script that the configuration asks for, or an ETL document around it, as UTF-16LE with
// byte-order mark. Returns 0; 1, 2, 3, 5 or 10 for a configuration that cannot be used; 6 or 7 for
// an output that cannot be opened or written; 8 for a model document that cannot be loaded, whose
// arrays are too short or whose regression does not fit its variables. Prints one message in each
// case and touches the output only for 0 and 7.
int exportToSql(const QString &configurationFile);
