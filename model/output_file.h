// Writing a finished output, and the messages and exit statuses that all exporters share.
#pragma once

#include "model/text_buffer.h"

#include <QString>

// The exit statuses of more than one exporter.
enum ExitStatus {
    exitSuccess = 0,
    exitCannotOpenOutput = 6,
    exitCannotWriteOutput = 7,
    exitUnusableModel = 8,
};

enum class OutputEncoding {
    Utf16, // little-endian, with mark
    Utf8,  // with mark
};

// Creates or replaces the file and writes the mark and the text. Prints a message and returns
// exitCannotOpenOutput or exitCannotWriteOutput when the file cannot be opened or takes no mark;
// the writing of the text is not tested. Silent on success.
int writeOutputFile(const QString &fileName, QStringView text, OutputEncoding encoding);

// The same in UTF-16, and a message of success.
int writeScript(const QString &fileName, QStringView text);

// Creates or replaces the file and writes the text in UTF-8 without mark. Prints nothing: a file
// that cannot be opened is left alone.
void writePage(const QString &fileName, QStringView text);
