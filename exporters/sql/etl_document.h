// The document in which an ETL engine finds a script and the connection to run it on.
#pragma once

#include "model/text_buffer.h"

#include <QString>

struct EtlConnection {
    QString link;
    QString login;
    QString password; // written in clear
};

void putEtlDocument(TextBuffer &out, const EtlConnection &connection, bool hasReaderMode,
                    QStringView script);
