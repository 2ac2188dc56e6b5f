// What the program returns.
#pragma once

// The exit statuses of more than one exporter.
enum ExitStatus {
    exitSuccess = 0,
    exitCannotOpenOutput = 6,
    exitCannotWriteOutput = 7,
    exitUnusableModel = 8,
};
