// Writing the output of an exporter, with the messages that all exporters share.
#pragma once

#include "model/exit_status.h"
#include "model/text_buffer.h"

#include <QString>

// Creates or empties the file, writes the byte-order mark of the encoding and hands the file to the
// buffer. Prints a message and returns exitCannotOpenOutput or exitCannotWriteOutput if the file
// cannot be opened or the mark cannot be written.
int openOutput(const QString &fileName, OutputEncoding encoding, TextBuffer &out);

// Creates or replaces the file with what write(out) appends. Returns the status of openOutput, and
// prints nothing on success. Exporters call this after they have read the whole model, since the
// file's old content is lost.
template <typename Write>
int writeOutput(const QString &fileName, OutputEncoding encoding, Write write) {
    TextBuffer out;
    const int status = openOutput(fileName, encoding, out);
    if (status != exitSuccess) return status;
    write(out);
    out.close();
    return exitSuccess;
}

void reportSuccess();

// writeOutput in UTF-16, followed by a message of success.
template <typename Write>
int writeScript(const QString &fileName, Write write) {
    const int status = writeOutput(fileName, OutputEncoding::Utf16, write);
    if (status == exitSuccess) reportSuccess();
    return status;
}

// Creates or replaces the file and writes the text in UTF-8 without byte-order mark. Prints
// nothing, not even if the file cannot be opened.
void writePage(const QString &fileName, QStringView text);
