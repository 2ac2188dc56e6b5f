// A small, tolerant XML reader: UTF-16 text becomes a tree of elements that is walked through
// handles. Its interface and its error codes are fixed; the program does not use all of them.
//
// The reader does not validate. It accepts unquoted attribute values, attributes without values and
// documents that end early; most irregularities are warnings, and the tree is still returned. It
// never prints and never ends the process: it reports through XmlParseResult, empty nodes and null
// texts.
//
// A document owns the memory of its whole tree and lives as long as any handle to one of its
// elements. Neither parsing nor releasing recurses, so nesting is bounded by memory only.
//
// Texts are QStringViews into the document. A null view means "absent", an empty one "present but
// empty"; the two are never confused. Views are valid as long as a handle to the tree is held.
// All name comparisons fold the case of ASCII letters and of nothing else.
#pragma once

#include <QString>
#include <QStringView>

#include <iterator>
#include <memory>
#include <memory_resource>
#include <span>

// The outcome of a parse or of a Base64 decoding. UnmatchedEndTagWarning, NoXmlTagFound,
// Base64LengthNotMultipleOf4 and Base64Truncated are warnings: there is a result all the same.
enum class XmlError {
    NoError = 0,
    UnmatchedEndTagWarning = 1,
    NoXmlTagFound = 2,
    NoXmlData = 3,
    MissingStartTagName = 4,
    MissingEndTagName = 5,
    UnmatchedEndTag = 6,
    UnmatchedClearTagEnd = 7,
    UnexpectedToken = 8,
    NoElementsFound = 9,
    FileNotFound = 10,
    FirstTagNotFound = 11,
    UnknownCharacterEntity = 12,
    CharacterCodeAbove255 = 13,
    WideCharConversionError = 14,
    CannotOpenFileForWriting = 15,
    CannotWriteIntoFile = 16,
    Base64LengthNotMultipleOf4 = 17,
    Base64IllegalCharacter = 18,
    Base64Truncated = 19,
    Base64OutputBufferTooSmall = 20,
};

// Line and column count from 1, in UTF-16 units; both are 0 when the error has no position.
struct XmlParseResult {
    XmlError error = XmlError::NoError;
    int line = 0;
    int column = 0;
};

// The fixed English text of a code; "Unknown" for a value that is none.
const char *xmlErrorMessage(XmlError error);

// The version of the library: "v2.44".
const char *xmlLibraryVersion();

// A section that is kept as it stands: CDATA, DOCTYPE, a comment or PRE.
struct XmlClear {
    QStringView content; // null when the section is empty
    QStringView opening; // the marker before it
    QStringView closing; // the marker after it
};

struct XmlDocument;
struct XmlElement;
class XmlChildren;

// A handle to one element of a tree, or the empty node, which is what every failed lookup returns.
// Every operation on the empty node gives the empty node, a null view, 0 or false.
class XmlNode {
public:
    XmlNode() = default;
    XmlNode(const XmlNode &other);
    XmlNode(XmlNode &&other) noexcept;
    XmlNode &operator=(XmlNode other) noexcept;
    ~XmlNode();

    // Parses `text` up to its first zero unit. With a `tag`, the result is the element of that
    // name: the root or the first child of that name; FirstTagNotFound where there is none. Without
    // one, it is the only top-level element, or the unnamed element of all that stands at the top.
    // A null text is NoElementsFound. Fatal errors give the empty node.
    static XmlNode parseText(QStringView text, QStringView tag = {},
                             XmlParseResult *results = nullptr);

    // The same for a whole file: UTF-16LE text with or without byte-order mark, UTF-8 with one, or
    // text in the system's 8-bit code page. FileNotFound for anything that cannot be
    // opened, folders and pipes among it, NoXmlData for 0 bytes and for devices,
    // WideCharConversionError when the text does not fit in memory.
    static XmlNode parseFile(const QString &fileName, QStringView tag = {},
                             XmlParseResult *results = nullptr);

    bool isEmpty() const { return element == nullptr; }

    // The first child called `name` at or after position `*index` (0 when index is null); index is
    // then set to the position after it. Without a match `*index` stays as it is.
    XmlNode childNode(QStringView name, int *index = nullptr) const;

    // All children called `name`, in order, at a cost that is linear in the number of children:
    //     for (const XmlNode &value : modalities.children(u"Mod"))
    XmlChildren children(QStringView name) const;

    // The (i+1)-th child called `name`, the last one for i < 0. Costs a scan: not for loops.
    XmlNode childNode(QStringView name, int i) const;

    // The first child called `name` at or after `*index` that has an attribute called
    // `attributeName` whose value equals `attributeValue` without regard to ASCII case, or that has
    // such an attribute at all when `attributeValue` is null. Costs a scan: not for loops.
    XmlNode childNodeWithAttribute(QStringView name, QStringView attributeName,
                                   QStringView attributeValue, int *index = nullptr) const;

    // The value of the first attribute called `name` at or after `*index`, which is then set to the
    // position after it; null when there is none or when it was written without a value.
    QStringView attribute(QStringView name, int *index = nullptr) const;
    bool isAttributeSet(QStringView name) const;
    // The name of the i-th attribute, or null.
    QStringView attributeName(int i) const;

    // The i-th text piece (from 0) in document order, or null.
    QStringView text(int i = 0) const;
    // The memory where the first text piece stands, to be written to: views of that text are no
    // longer valid, and it is absent from then on. The memory is aligned to units.
    std::span<char16_t> takeText() const;
    // The i-th section that is kept as it stands; its views are null when there is none.
    XmlClear clear(int i) const;

    QStringView name() const;
    bool isDeclaration() const;
    XmlNode parent() const;
    XmlNode childAt(int i) const;

    int childCount(QStringView name) const;
    int childCount() const;
    int textCount() const;
    int clearCount() const;
    int attributeCount() const;

    // The length of the text that the whole tree was read from, in units.
    qsizetype sourceLength() const;
    // Memory for what is read from the tree. It lives as long as the tree, and what is given back
    // is used again only after that. That of the empty node is the system's.
    std::pmr::memory_resource *memory() const;

private:
    XmlNode(XmlDocument *owner, XmlElement *node);
    friend XmlNode parseXml(std::unique_ptr<XmlDocument> owned, QStringView tag,
                            XmlParseResult *results);

    XmlDocument *document = nullptr;
    XmlElement *element = nullptr;
};

// What XmlNode::children returns. It holds the parent.
class XmlChildren {
public:
    class Iterator {
    public:
        Iterator(const XmlNode &owner, QStringView childName) : parent(&owner), name(childName) {
            ++*this;
        }
        const XmlNode &operator*() const { return child; }
        Iterator &operator++() {
            child = parent->childNode(name, &index);
            return *this;
        }
        bool operator!=(std::default_sentinel_t /*end*/) const { return !child.isEmpty(); }

    private:
        const XmlNode *parent;
        QStringView name;
        int index = 0;
        XmlNode child;
    };

    XmlChildren(XmlNode owner, QStringView childName) : parent(std::move(owner)), name(childName) {}
    Iterator begin() const { return {parent, name}; }
    static std::default_sentinel_t end() { return {}; }

private:
    XmlNode parent;
    QStringView name;
};

inline XmlChildren XmlNode::children(QStringView name) const {
    return {*this, name};
}

// Equality of two texts without regard to the case of ASCII letters. A null text equals null only.
bool equalsIgnoringCase(QStringView a, QStringView b);

// Hashes for tables of names, with and without regard to the case of ASCII letters. They hold for
// one run of the program.
std::size_t hashText(QStringView text);
std::size_t hashIgnoringCase(QStringView text);

// The number that `value` begins with: white space, a sign and ASCII digits, saturating at 32 bits;
// 0 without digits, `defaultValue` for a null or empty value.
int xmlToInt(QStringView value, int defaultValue);
// The same number's low 8 bits as a truth value, so that 256 is false.
bool xmlToBool(QStringView value, bool defaultValue);
// `value` unless it is null.
QStringView xmlToText(QStringView value, QStringView defaultValue);
// Null when the first byte of the text is zero, so also when its first unit is a multiple of 256.
QStringView xmlNonEmpty(QStringView text);

// A reusable buffer for text with & < > " ' written as entities.
class XmlEscapeBuffer {
public:
    // The returned text is empty for a null one, never null, and valid until the next call.
    QStringView escape(QStringView text);
    void release();

private:
    QString buffer;
};
