// The document for an ETL engine: a script, and the connection to run it on.
#pragma once

#include "model/text_buffer.h"

#include <QString>

struct EtlConnection {
    QString link;
    QString login;
    QString password; // written as plain text
};

void putEtlDocument(TextBuffer &out, const EtlConnection &connection, bool hasReaderMode,
                    QStringView script);
