// The memory of one parsed tree; for the library's own files only.
#pragma once

#include "platform/platform.h"
#include "xml/xml_node.h"

#include <memory>
#include <memory_resource>
#include <span>

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

// A document has one block of memory: its text, and beside it the room for the tree and for what is
// read from the tree. What does not fit there goes to the system's memory.
struct XmlDocument {
    // Takes over the block. The text, with a zero unit behind it and none in it, and the room stand
    // in it.
    XmlDocument(MemoryBlock owned, QStringView text, std::span<std::byte> room);

    MemoryBlock block;
    const char16_t *source;
    qsizetype length; // in units, without the zero unit
    std::pmr::monotonic_buffer_resource blocks;
    int handles = 0; // of all elements together
};

// The room that the tree of a text of so many units seldom exceeds, with its arrays, in bytes.
constexpr std::size_t expectedRoom(std::size_t units) {
    return 3 * units + 4096;
}

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
