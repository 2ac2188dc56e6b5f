// The command line: one option selects one exporter.
#pragma once

#include <QString>

#include <functional>
#include <vector>

// Prints the banner, runs the exporter that the arguments select (the first is the program's path)
// and returns its exit status; prints the usage and returns 1 if they select none. A null argument
// stands for invalid UTF-8 and is rejected if an exporter needs it. When out of memory, also while
// reading arguments, prints a message and returns the status of an unusable model.
int runCommandLine(const std::function<std::vector<QString>()> &readArguments);
