// Decodes Base64 (RFC 4648, standard alphabet) from UTF-16 text to bytes. Skips white space and
// reports other irregularities as XmlError codes 17 to 20.
#pragma once

#include "xml/xml_node.h"

#include <memory>

// The caller's buffer for decoded bytes, reused by each call.
struct Base64Decoder {
    std::unique_ptr<unsigned char[]> buffer;
    qsizetype capacity = 0; // in bytes

    void release();
};

// Decodes `text` up to its first zero unit. The bytes are valid until the next call with the same
// decoder; *outSize receives their count. Returns null if the text is empty (size 0) or cannot be
// decoded (*error is Base64IllegalCharacter or Base64OutputBufferTooSmall). A null text returns an
// empty, non-null result. The warnings Base64LengthNotMultipleOf4 and Base64Truncated come with a
// result, in which the bytes after a truncation are zero.
const unsigned char *base64Decode(Base64Decoder &decoder, QStringView text,
                                  qsizetype *outSize = nullptr, XmlError *error = nullptr);

// The count of bytes before the truncation, for a text that base64Decode reports as truncated.
qsizetype base64BytesBeforePadding(QStringView text);
