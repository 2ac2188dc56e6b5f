// The exit statuses that several exporters return.
#pragma once

enum ExitStatus {
    exitSuccess = 0,
    exitCannotOpenOutput = 6,
    exitCannotWriteOutput = 7,
    exitUnusableModel = 8,
};
