// The command line of scorewright-check.
#pragma once

#include <QStringList>

#include <functional>

// Does what the arguments ask for (the first is the program's path). Results go to standard output
// and messages to standard error. Returns 0 when there is nothing to tell of, 1 with findings or
// differences, 2 for a wrong call, and 8 for a model or a configuration that cannot be used.
int runCheck(const std::function<QStringList()> &readArguments);
