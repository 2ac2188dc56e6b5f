// What a document is made of before it is parsed: its text, the memory of its tree, its entities.
#include "xml/xml_document.h"

#include "platform/platform.h"

#include <algorithm>

namespace {

std::size_t firstBlockSize(qsizetype length) {
    return static_cast<std::size_t>(length) * sizeof(char16_t) + 4096;
}

int digitValue(char16_t c, int base) {
    if (c >= u'0' && c <= u'9') return c - u'0';
    if (base == 16 && c >= u'A' && c <= u'F') return c - u'A' + 10;
    if (base == 16 && c >= u'a' && c <= u'f') return c - u'a' + 10;
    return -1;
}

} // namespace

XmlDocument::XmlDocument(std::unique_ptr<char16_t[]> text, qsizetype skipped)
    : buffer(std::move(text)), source(buffer.get() + skipped), length(QStringView(source).size()),
      firstBlock(new std::byte[firstBlockSize(length)]),
      blocks(firstBlock.get(), firstBlockSize(length)) {
    preferLargePages(firstBlock.get(), firstBlockSize(length));
}

bool readXmlEntity(QStringView &rest, char16_t &character) {
    if (rest.size() > 2 && rest[1] == u'#') {
        const bool isHexadecimal = rest[2] == u'x' || rest[2] == u'X';
        const int base = isHexadecimal ? 16 : 10;
        unsigned value = 0;
        for (qsizetype i = isHexadecimal ? 3 : 2; i < rest.size(); ++i) {
            if (rest[i] == u';') {
                character = static_cast<char16_t>(value); // modulo 65536
                rest = rest.sliced(i + 1);
                return true;
            }
            const int digit = digitValue(rest[i].unicode(), base);
            if (digit < 0) return false;
            value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
        }
        return false;
    }
    for (const XmlEntity &entity : xmlEntities) {
        const qsizetype size = entity.text.size();
        if (rest.size() >= size && equalsIgnoringCase(rest.first(size), entity.text)) {
            character = entity.character;
            rest = rest.sliced(size);
            return true;
        }
    }
    return false;
}

XmlNode XmlNode::parseText(QStringView text, QStringView tag, XmlParseResult *results) {
    if (text.isNull()) {
        if (results) *results = {XmlError::NoElementsFound};
        return {};
    }
    const auto size = static_cast<std::size_t>(text.size());
    auto buffer = std::make_unique<char16_t[]>(size + 1);
    std::copy_n(text.utf16(), size, buffer.get());
    return parseXml(std::make_unique<XmlDocument>(std::move(buffer), 0), tag, results);
}
