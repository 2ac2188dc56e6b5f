// The command line: one option chooses one exporter.
#pragma once

#include <QString>

#include <functional>
#include <vector>

// Prints the banner, runs the exporter that the arguments choose (the first is the program's path)
// and returns its exit status; prints the usage text and returns 1 if they choose none. A null
// argument is one that is not valid UTF-8; it is rejected where it would be used. If memory runs
// out, also while arguments are read, prints a message and returns the status of an unusable model.
int runCommandLine(const std::function<std::vector<QString>()> &readArguments);
