// The memory of one document; internal to the library. ARCHITECTURE.md draws its block.
#pragma once

#include "platform/platform.h"
#include "xml/xml_node.h"

#include <memory>
#include <memory_resource>
#include <span>

// Builds with the address sanitizer detect overruns by inaccessible gaps of `gapSize` bytes between
// the pieces of a block. Other builds have no gaps.
inline constexpr bool hasMemoryGaps = SCOREWRIGHT_SANITIZE;
inline constexpr std::size_t gapSize = hasMemoryGaps ? 16 : 0;

struct XmlAttribute {
    QStringView name;
    QStringView value; // null if absent
};

// One element, whose arrays are complete once it is closed. Arrays and decoded texts are pieces of
// the document's block; all other texts are views into its source.
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
    bool isDecoded = false; // texts[0] then holds its decoded numbers
};

// One block of memory holds a document: its text, and an arena for the pieces of its tree and those
// that readers allocate. The last handle releases all of it at once; no piece is released alone.
struct XmlDocument {
    // Takes ownership of the block, which contains the text and then the arena. The text ends with
    // a zero unit and contains no other.
    XmlDocument(MemoryBlock owned, QStringView text, std::span<std::byte> arena);

    // An uninitialised piece of the arena. What does not fit is allocated on the heap, but also
    // released with the document.
    void *allocate(std::size_t bytes, std::size_t alignment) {
        if constexpr (hasMemoryGaps) return allocateBeforeGap(bytes, alignment);
        return pieces.allocate(bytes, alignment);
    }

    MemoryBlock block;
    const char16_t *source;
    qsizetype length; // in units, without the zero unit
    int handles = 0;  // to all elements

private:
    void *allocateBeforeGap(std::size_t bytes, std::size_t alignment);

    std::pmr::monotonic_buffer_resource pieces;
};

// Makes [begin, end) inaccessible in a build with memory gaps; does nothing in others.
void forbidAccess(const void *begin, const void *end);

// Estimated bytes for the tree and arrays parsed from `units` UTF-16 units; seldom exceeded.
constexpr std::size_t expectedArena(std::size_t units) {
    return 3 * units + 4096;
}

// Parses the document's source and takes ownership of the document: the last handle releases it. If
// the result is the empty node, it is released immediately.
XmlNode parseXml(std::unique_ptr<XmlDocument> owned, QStringView tag, XmlParseResult *results);

// The named character entities, in order of comparison.
struct XmlEntity {
    QStringView text;
    char16_t character;
};
inline constexpr XmlEntity xmlEntities[] = {
    {u"&amp;", u'&'}, {u"&lt;", u'<'}, {u"&gt;", u'>'}, {u"&quot;", u'"'}, {u"&apos;", u'\''},
};

// Reads the entity at the start of `rest` and removes it from `rest`. False if there is none.
bool readXmlEntity(QStringView &rest, char16_t &character);
