// Writes the output of an exporter, with the messages that all exporters share.
#pragma once

#include "model/exit_status.h"
#include "model/text_buffer.h"

#include <QString>

// Creates or empties the file, writes the byte-order mark of the encoding and directs the buffer to
// the file. Prints a message and returns exitCannotOpenOutput or exitCannotWriteOutput if the file
// cannot be opened or the mark cannot be written.
int openOutput(const QString &fileName, OutputEncoding encoding, TextBuffer &out);

// Creates or overwrites the file with what write(out) appends. Returns the status of openOutput and
// prints nothing on success. Exporters read the whole model first, because the old content is lost.
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

// writeOutput in UTF-16; prints a message on success.
template <typename Write>
int writeScript(const QString &fileName, Write write) {
    const int status = writeOutput(fileName, OutputEncoding::Utf16, write);
    if (status == exitSuccess) reportSuccess();
    return status;
}

// Creates or overwrites the file with the text in UTF-8 without byte-order mark. By contract, does
// not report a file that cannot be opened.
void writePage(const QString &fileName, QStringView text);
