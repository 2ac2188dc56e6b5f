// The command line: one option chooses one exporter.
#pragma once

#include <QString>

#include <functional>
#include <vector>

// Prints the banner, runs the exporter that the arguments choose (the first is the program's path)
// and returns its exit status; prints the usage text and returns 1 when they choose none. A null
// argument stands for one that is not text; it is refused where it would be used.
// Memory that runs out, in reading the arguments too, is told in a message, and gives the status of
// an unusable model.
int runCommandLine(const std::function<std::vector<QString>()> &readArguments);
