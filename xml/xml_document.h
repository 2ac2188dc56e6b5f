// The memory of one parsed tree; for the library's own files only.
#pragma once

#include "xml/xml_node.h"

#include <memory>
#include <memory_resource>

struct XmlAttribute {
    QStringView name;
    QStringView value; // null when the attribute was written without one
};

// One element. The arrays have exactly the counted entries once the element is finished; they and
// all decoded texts stand in the document's blocks, all other texts are views into its source.
struct XmlElement {
    QStringView name; // null for the unnamed top element only
    XmlElement *parent = nullptr;
    XmlElement **children = nullptr;
    QStringView *texts = nullptr;
    XmlClear *clears = nullptr;
    XmlAttribute *attributes = nullptr;
    int childCount = 0;
    int textCount = 0;
    int clearCount = 0;
    int attributeCount = 0;
    bool isDeclaration = false;
};

struct XmlDocument {
    // Takes over a text that ends in a zero unit, of which the first `skipped` units are left out.
    XmlDocument(std::unique_ptr<char16_t[]> text, qsizetype skipped);

    std::unique_ptr<char16_t[]> buffer;
    const char16_t *source;
    qsizetype length; // units before the first zero unit
    // A tree is seldom larger than its text, so the first block holds all of most trees.
    std::unique_ptr<std::byte[]> firstBlock;
    std::pmr::monotonic_buffer_resource blocks;
    int handles = 0; // of all elements together
};

// Parses the document's source and takes the document over: it is released with the last handle,
// or at once when the result is the empty node.
XmlNode parseXml(std::unique_ptr<XmlDocument> owned, QStringView tag, XmlParseResult *results);

// The named character entities, in the order in which they are tried.
struct XmlEntity {
    QStringView text;
    char16_t character;
};
inline constexpr XmlEntity xmlEntities[] = {
    {u"&amp;", u'&'}, {u"&lt;", u'<'}, {u"&gt;", u'>'}, {u"&quot;", u'"'}, {u"&apos;", u'\''},
};

// Reads the entity that `rest` begins with and drops it from there. False when it is none.
bool readXmlEntity(QStringView &rest, char16_t &character);
