// The memory of one document; for the library's own files only. ARCHITECTURE.md draws its block.
#pragma once

#include "platform/platform.h"
#include "xml/xml_node.h"

#include <memory>
#include <memory_resource>
#include <span>

// Builds with the address sanitizer set the pieces of a block apart by gaps of `gapSize` bytes that
// no access may touch. Other builds have no gaps.
inline constexpr bool hasMemoryGaps = SCOREWRIGHT_SANITIZE;
inline constexpr std::size_t gapSize = hasMemoryGaps ? 16 : 0;

struct XmlAttribute {
    QStringView name;
    QStringView value; // null if the attribute was written without one
};

// One element. Once it is closed, each array has exactly the counted entries. The arrays and all
// decoded texts are pieces of the document's block; all other texts are views into its source.
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
    bool isDecoded = false; // texts[0] is then the memory of the numbers that it held
};

// One block of memory holds a document: its text, the pieces of its tree, and the pieces that
// readers ask for. The last handle releases all of it at once; no piece is released alone.
struct XmlDocument {
    // Takes over the block. The text ends with a zero unit and holds no other. The text and the
    // room, which is free for pieces, are parts of the block; the room comes last.
    XmlDocument(MemoryBlock owned, QStringView text, std::span<std::byte> room);

    // A piece of the room, uninitialised. What does not fit is allocated on the heap, and released
    // with the document as well.
    void *allocate(std::size_t bytes, std::size_t alignment) {
        if constexpr (hasMemoryGaps) return allocateBeforeGap(bytes, alignment);
        return pieces.allocate(bytes, alignment);
    }

    MemoryBlock block;
    const char16_t *source;
    qsizetype length; // in units, without the zero unit
    int handles = 0;  // to all elements together

private:
    void *allocateBeforeGap(std::size_t bytes, std::size_t alignment);

    std::pmr::monotonic_buffer_resource pieces;
};

// Forbids access to the bytes of [begin, end) in a build with memory gaps; does nothing in others.
void forbidAccess(const void *begin, const void *end);

// Estimated bytes for the tree and arrays parsed from `units` UTF-16 units; seldom exceeded.
constexpr std::size_t expectedRoom(std::size_t units) {
    return 3 * units + 4096;
}

// Parses the document's source and takes over the document: the last handle releases it; if the
// result is the empty node, it is released at once.
XmlNode parseXml(std::unique_ptr<XmlDocument> owned, QStringView tag, XmlParseResult *results);

// The named character entities, in the order in which they are compared.
struct XmlEntity {
    QStringView text;
    char16_t character;
};
inline constexpr XmlEntity xmlEntities[] = {
    {u"&amp;", u'&'}, {u"&lt;", u'<'}, {u"&gt;", u'>'}, {u"&quot;", u'"'}, {u"&apos;", u'\''},
};

// Reads the entity at the beginning of `rest` and removes it from there. False if `rest` does not
// begin with an entity.
bool readXmlEntity(QStringView &rest, char16_t &character);
