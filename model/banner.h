// The comment at the head of a script or module.
#pragma once

#include "model/recodings.h"
#include "model/text_buffer.h"

// One target's banner: a fixed text with the placeholders version, file and count; the texts around
// the names of each variable; and a fixed text at the end.
struct BannerText {
    QStringView head;
    QStringView before;
    QStringView after;
    QStringView end;
};

// Writes the workbench's version, the file, the number of variables, and each column with the name
// of its recoding.
void putBanner(TextBuffer &out, const ModelDocument &document, std::span<const Variable> variables,
               const BannerText &banner);
