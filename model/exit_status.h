// The exit statuses of the program.
#pragma once

// Those that several exporters return.
enum ExitStatus {
    exitSuccess = 0,
    exitCannotOpenOutput = 6,
    exitCannotWriteOutput = 7,
    exitUnusableModel = 8,
};
