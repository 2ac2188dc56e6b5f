// The command line: one option chooses one exporter.
#pragma once

#include <QString>

#include <vector>

// Prints the banner, runs the exporter that the arguments choose (arguments[0] is the program's
// path) and returns its exit status; prints the usage text and returns 1 when they choose none.
// Memory that runs out is told in a message, and gives the status of an unusable model.
// A null argument stands for one that is not text; it is refused where it would be used.
int runCommandLine(const std::vector<QString> &arguments);
