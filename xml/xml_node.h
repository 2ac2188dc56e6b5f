// A small, tolerant XML reader: parses UTF-16 text into a tree of elements, navigated by handles.
// Its interface and its error codes are fixed; the program does not use all of them.
//
// The reader does not validate. It accepts unquoted attribute values, attributes without values and
// documents that end early; most irregularities are warnings that still return the tree. It never
// prints and never ends the process: it reports errors through XmlParseResult, empty nodes and null
// texts.
//
// One block of memory holds a document: its text, its tree and data read from the tree. Handles
// share the block, and the last one releases it (ARCHITECTURE.md draws it). Neither parsing nor
// releasing recurses, so only memory limits nesting.
//
// Texts are QStringViews into the block. A null view means "absent", an empty one "present but
// empty". A view is valid as long as any handle to the document exists. All comparisons of names
// fold the case of ASCII letters only.
#pragma once

#include <QString>
#include <QStringView>

#include <iterator>
#include <memory>
#include <span>

// The outcome of parsing or of decoding Base64. UnmatchedEndTagWarning, NoXmlTagFound,
// Base64LengthNotMultipleOf4 and Base64Truncated are warnings: there is still a result.
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

// Line and column (in UTF-16 units) start at 1; both are 0 if the error has no position.
struct XmlParseResult {
    XmlError error = XmlError::NoError;
    int line = 0;
    int column = 0;
};

// The fixed English text of a code; "Unknown" for a value outside the enumeration.
const char *xmlErrorMessage(XmlError error);

// The version of the library: "v2.44".
const char *xmlLibraryVersion();

// A section kept verbatim: CDATA, DOCTYPE, a comment or PRE.
struct XmlClear {
    QStringView content; // null if the section is empty
    QStringView opening; // the marker before it
    QStringView closing; // the marker after it
};

struct Base64Decoder;
struct XmlDocument;
struct XmlElement;
class XmlChildren;

// A handle to one element of a document, or the empty node, which every failed lookup returns.
// Every operation on the empty node returns the empty node, a null view, 0 or false. A handle keeps
// the whole document alive; two threads must not use handles of one document at the same time.
class XmlNode {
public:
    XmlNode() = default;
    XmlNode(const XmlNode &other);
    XmlNode(XmlNode &&other) noexcept;
    XmlNode &operator=(XmlNode other) noexcept;
    ~XmlNode();

    // Parses `text` up to its first zero unit. With a `tag`, returns the element of that name: the
    // root or its first child of that name, else FirstTagNotFound. Without a tag, returns the only
    // top-level element, or an unnamed element that contains everything at the top. A null text is
    // NoElementsFound. Fatal errors return the empty node.
    static XmlNode parseText(QStringView text, QStringView tag = {},
                             XmlParseResult *results = nullptr);

    // The same for a whole file: UTF-16LE with or without byte-order mark, UTF-8 with one, or the
    // system's 8-bit code page. FileNotFound if openFile fails (as for a folder) or the file cannot
    // be read, NoXmlData for 0 bytes and for devices, WideCharConversionError if the text cannot be
    // decoded or does not fit in memory.
    static XmlNode parseFile(const QString &fileName, QStringView tag = {},
                             XmlParseResult *results = nullptr);

    bool isEmpty() const { return element == nullptr; }

    // The first child called `name` at or after `*index` (0 if index is null); sets `*index` to the
    // next index. Without a match, `*index` does not change.
    XmlNode childNode(QStringView name, int *index = nullptr) const;

    // All children called `name`, in order. Run time is linear in the number of children:
    //     for (const XmlNode &value : modalities.children(u"Mod"))
    XmlChildren children(QStringView name) const;

    // The i-th child called `name` (from 0), the last one for i < 0. Scans the children: not for
    // loops.
    XmlNode childNode(QStringView name, int i) const;

    // The first child called `name` at or after `*index` that has an attribute called
    // `attributeName` whose value equals `attributeValue`, ignoring ASCII case, or any attribute of
    // that name if `attributeValue` is null. Scans the children: not for loops.
    XmlNode childNodeWithAttribute(QStringView name, QStringView attributeName,
                                   QStringView attributeValue, int *index = nullptr) const;

    // The value of the first attribute called `name` at or after `*index`; sets `*index` to the
    // next index. Null if there is no such attribute or if it has no value.
    QStringView attribute(QStringView name, int *index = nullptr) const;
    bool isAttributeSet(QStringView name) const;
    // The name of the i-th attribute, or null.
    QStringView attributeName(int i) const;

    // The i-th text piece (from 0) in document order, or null.
    QStringView text(int i = 0) const;
    // The 64-bit numbers in the first text piece, which is Base64. The first call decodes them over
    // their own text: views of it become invalid, and text(0) is null afterwards, for every handle
    // to this element. Later calls return the same numbers. A text too short for one number returns
    // none and stays. If padding ends the text early, the remaining bytes are zero; the first call
    // sets *whole to the count of numbers before the padding.
    std::span<const double> decodeNumbers(Base64Decoder &decoder,
                                          std::size_t *whole = nullptr) const;
    // The i-th section kept verbatim; its views are null if absent.
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

    // The length of the document's text, in units.
    qsizetype sourceLength() const;
    // Uninitialised memory for `count` values in the document's block. It lives as long as the
    // document, which calls no destructors. Not for the empty node.
    template <typename T>
    T *allocate(std::size_t count) const {
        return static_cast<T *>(allocateBytes(count * sizeof(T), alignof(T)));
    }

private:
    XmlNode(XmlDocument *owner, XmlElement *node);
    void *allocateBytes(std::size_t bytes, std::size_t alignment) const;
    friend XmlNode parseXml(std::unique_ptr<XmlDocument> owned, QStringView tag,
                            XmlParseResult *results);

    XmlDocument *document = nullptr;
    XmlElement *element = nullptr;
};

// The result of XmlNode::children, which keeps a handle to the parent.
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

// Compares two texts ignoring the case of ASCII letters. A null text equals null only.
bool equalsIgnoringCase(QStringView a, QStringView b);

// Hashes for tables of names; the second ignores the case of ASCII letters. They differ from run to
// run.
std::size_t hashText(QStringView text);
std::size_t hashIgnoringCase(QStringView text);

// The number at the start of `value`: white space, a sign and ASCII digits, clamped to 32 bits; 0
// without digits, `defaultValue` for a null or empty value.
int xmlToInt(QStringView value, int defaultValue);
// Whether the low 8 bits of the same number are nonzero, so that 256 is false.
bool xmlToBool(QStringView value, bool defaultValue);
// `value`, or `defaultValue` if it is null.
QStringView xmlToText(QStringView value, QStringView defaultValue);
// The text; null if it is empty or the low byte of its first unit is zero.
QStringView xmlNonEmpty(QStringView text);

// A reusable buffer for text with & < > " ' escaped as entities.
class XmlEscapeBuffer {
public:
    // The result is empty for a null text, never null, and valid until the next call.
    QStringView escape(QStringView text);
    void release();

private:
    QString buffer;
};
