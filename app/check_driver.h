// The command line of scorewright-check.
#pragma once

#include <QStringList>

#include <functional>

// Runs the program; the first argument is its path. Results go to standard output and messages to
// standard error. Returns 0 without open findings, 1 with some, 3 for unexplained rows, 2 for a
// wrong call or a file that cannot be read or written, and 8 for an unusable model or
// configuration.
int runCheck(const std::function<QStringList()> &readArguments);
