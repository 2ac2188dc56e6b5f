// Opening and finishing the output file of an exporter, and the messages and exit statuses that all
// exporters share.
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

// Creates or empties the file and writes the mark of the encoding. Prints a message and returns
// exitCannotOpenOutput or exitCannotWriteOutput when the file cannot be opened or takes no mark.
// An exporter calls this when nothing can go wrong with the model any more: what was in the file is
// lost.
int openOutputFile(const QString &fileName, OutputEncoding encoding, OutputFile &file);

// Closes a script and prints the message of success.
int finishScript(TextBuffer &script);

// Creates or replaces the file and writes the text in UTF-8 without mark. Prints nothing: a file
// that cannot be opened is left alone.
void writePage(const QString &fileName, QStringView text);
