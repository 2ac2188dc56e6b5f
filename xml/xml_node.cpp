// The document counts the handles to all of its elements; the last one releases the block. Lookups
// scan the arrays of one element.
#include "xml/xml_node.h"

#include "xml/base64.h"
#include "xml/xml_document.h"

#include <QHashFunctions>

#include <algorithm>
#include <cassert>
#include <climits>
#include <cstring>
#include <utility>

namespace {

constexpr const char *messages[] = {
    "No error",
    "Warning: Unmatched end tag",
    "Warning: No XML tag found",
    "Error: No XML data",
    "Error: Missing start tag name",
    "Error: Missing end tag name",
    "Error: Unmatched end tag",
    "Error: Unmatched clear tag end",
    "Error: Unexpected token found",
    "Error: No elements found",
    "Error: File not found",
    "Error: First Tag not found",
    "Error: Unknown character entity",
    "Error: Character code above 255 is forbidden in MultiByte char mode.",
    "Error: unable to convert between WideChar and MultiByte chars",
    "Error: unable to open file for writing",
    "Error: cannot write into file",
    "Warning: Base64-string length is not a multiple of 4",
    "Error: Base64-string contains an illegal character",
    "Warning: Base64-string is truncated",
    "Error: Base64 decode output buffer is too small",
};

constexpr char16_t foldAscii(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + (u'a' - u'A')) : c;
}

// FNV-1a with a seed that differs from run to run, so that nobody can craft a document whose names
// all collide. Qt's own hash uses wide vector registers, which slow down the code that follows.
template <typename Fold>
std::size_t hashUnits(QStringView text, Fold fold) {
    static const std::size_t seed = QHashSeed::globalSeed();
    std::size_t hash = 14695981039346656037U ^ seed;
    for (const QChar c : text) hash = (hash ^ fold(c.unicode())) * 1099511628211U;
    return hash;
}

// Where a resumable search starts; never negative.
int startAt(const int *index) {
    return index ? std::max(*index, 0) : 0;
}

} // namespace

const char *xmlErrorMessage(XmlError error) {
    const auto code = static_cast<std::size_t>(error);
    return code < std::size(messages) ? messages[code] : "Unknown";
}

const char *xmlLibraryVersion() {
    return "v2.44";
}

bool equalsIgnoringCase(QStringView a, QStringView b) {
    if (a.size() != b.size() || a.isNull() != b.isNull()) return false;
    const char16_t *x = a.utf16();
    const char16_t *y = b.utf16();
    for (qsizetype i = 0; i < a.size(); ++i) {
        if (x[i] != y[i] && foldAscii(x[i]) != foldAscii(y[i])) return false;
    }
    return true;
}

std::size_t hashText(QStringView text) {
    return hashUnits(text, [](char16_t c) { return c; });
}

std::size_t hashIgnoringCase(QStringView text) {
    return hashUnits(text, foldAscii);
}

XmlNode::XmlNode(XmlDocument *owner, XmlElement *node) : document(owner), element(node) {
    ++document->handles;
}

XmlNode::XmlNode(const XmlNode &other) : document(other.document), element(other.element) {
    if (document) ++document->handles;
}

XmlNode::XmlNode(XmlNode &&other) noexcept
    : document(std::exchange(other.document, nullptr)),
      element(std::exchange(other.element, nullptr)) {}

XmlNode &XmlNode::operator=(XmlNode other) noexcept {
    std::swap(document, other.document);
    std::swap(element, other.element);
    return *this;
}

XmlNode::~XmlNode() {
    if (document && --document->handles == 0) delete document;
}

XmlNode XmlNode::childNode(QStringView name, int *index) const {
    for (int i = startAt(index); i < childCount(); ++i) {
        if (equalsIgnoringCase(element->children[i]->name, name)) {
            if (index) *index = i + 1;
            return {document, element->children[i]};
        }
    }
    return {};
}

XmlNode XmlNode::childNode(QStringView name, int i) const {
    if (i < 0) {
        for (int last = childCount() - 1; last >= 0; --last) {
            if (equalsIgnoringCase(element->children[last]->name, name)) return childAt(last);
        }
        return {};
    }
    int index = 0;
    while (i > 0 && !childNode(name, &index).isEmpty()) --i;
    return childNode(name, &index);
}

XmlNode XmlNode::childNodeWithAttribute(QStringView name, QStringView attributeName,
                                        QStringView attributeValue, int *index) const {
    int next = startAt(index);
    for (XmlNode child = childNode(name, &next); !child.isEmpty(); child = childNode(name, &next)) {
        const XmlElement &found = *child.element;
        const bool matches =
            std::any_of(found.attributes, found.attributes + found.attributeCount,
                        [&](const XmlAttribute &attribute) {
                            return equalsIgnoringCase(attribute.name, attributeName) &&
                                   (attributeValue.isNull() ||
                                    equalsIgnoringCase(attribute.value, attributeValue));
                        });
        if (matches) {
            if (index) *index = next;
            return child;
        }
    }
    return {};
}

QStringView XmlNode::attribute(QStringView name, int *index) const {
    for (int i = startAt(index); i < attributeCount(); ++i) {
        if (equalsIgnoringCase(element->attributes[i].name, name)) {
            if (index) *index = i + 1;
            return element->attributes[i].value;
        }
    }
    return {};
}

QStringView XmlNode::attributeName(int i) const {
    return i >= 0 && i < attributeCount() ? element->attributes[i].name : QStringView();
}

bool XmlNode::isAttributeSet(QStringView name) const {
    int index = 0;
    attribute(name, &index);
    return index > 0;
}

QStringView XmlNode::text(int i) const {
    if (i < 0 || i >= textCount() || (i == 0 && element->isDecoded)) return {};
    return element->texts[i];
}

// Numbers need less than half the memory of their text, which leaves room to align them. Every text
// is part of the document's own block, so overwriting it is safe.
std::span<const double> XmlNode::decodeNumbers(Base64Decoder &decoder, std::size_t *whole) const {
    if (textCount() == 0) return {};
    QStringView &text = element->texts[0];
    constexpr qsizetype unitsPerNumber = sizeof(double) / sizeof(char16_t);
    if (!element->isDecoded) {
        qsizetype size = 0;
        XmlError warning = XmlError::NoError;
        const unsigned char *const bytes = base64Decode(decoder, text, &size, &warning);
        const qsizetype count = bytes ? size / qsizetype(sizeof(double)) : 0;
        if (count == 0) return {};
        if (whole) {
            const bool isTruncated = warning == XmlError::Base64Truncated;
            *whole = static_cast<std::size_t>(isTruncated ? base64BytesBeforePadding(text) : size) /
                     sizeof(double);
        }
        const std::size_t needed = static_cast<std::size_t>(count) * sizeof(double);
        auto room = static_cast<std::size_t>(text.size()) * sizeof(char16_t);
        void *place = const_cast<char16_t *>(text.utf16());
        place = std::align(alignof(double), needed, place, room);
        std::memcpy(place, bytes, needed);
        forbidAccess(static_cast<std::byte *>(place) + needed, text.utf16() + text.size());
        text = {static_cast<char16_t *>(place), count * unitsPerNumber};
        element->isDecoded = true;
    }
    return {reinterpret_cast<const double *>(text.utf16()),
            static_cast<std::size_t>(text.size() / unitsPerNumber)};
}

XmlClear XmlNode::clear(int i) const {
    return i >= 0 && i < clearCount() ? element->clears[i] : XmlClear();
}

QStringView XmlNode::name() const {
    return element ? element->name : QStringView();
}

bool XmlNode::isDeclaration() const {
    return element && element->isDeclaration;
}

XmlNode XmlNode::parent() const {
    return element && element->parent ? XmlNode(document, element->parent) : XmlNode();
}

XmlNode XmlNode::childAt(int i) const {
    return i >= 0 && i < childCount() ? XmlNode(document, element->children[i]) : XmlNode();
}

int XmlNode::childCount(QStringView name) const {
    int count = 0;
    for (int i = 0; i < childCount(); ++i) {
        if (equalsIgnoringCase(element->children[i]->name, name)) ++count;
    }
    return count;
}

int XmlNode::childCount() const {
    return element ? element->childCount : 0;
}

int XmlNode::textCount() const {
    return element ? element->textCount : 0;
}

int XmlNode::clearCount() const {
    return element ? element->clearCount : 0;
}

int XmlNode::attributeCount() const {
    return element ? element->attributeCount : 0;
}

qsizetype XmlNode::sourceLength() const {
    return document ? document->length : 0;
}

void *XmlNode::allocateBytes(std::size_t bytes, std::size_t alignment) const {
    assert(document);
    return document->allocate(bytes, alignment);
}

int xmlToInt(QStringView value, int defaultValue) {
    if (value.isEmpty()) return defaultValue;
    const auto isWhite = [](QChar c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); };
    while (!value.isEmpty() && isWhite(value.front())) value = value.sliced(1);
    const bool isNegative = value.startsWith(u'-');
    if (isNegative || value.startsWith(u'+')) value = value.sliced(1);
    long long number = 0;
    for (const QChar c : value) {
        if (c < u'0' || c > u'9') break;
        number = std::min<long long>(number * 10 + (c.unicode() - u'0'), 1LL << 32);
    }
    return static_cast<int>(std::clamp<long long>(isNegative ? -number : number, INT_MIN, INT_MAX));
}

bool xmlToBool(QStringView value, bool defaultValue) {
    return value.isEmpty() ? defaultValue : (xmlToInt(value, 0) & 0xFF) != 0;
}

QStringView xmlToText(QStringView value, QStringView defaultValue) {
    return value.isNull() ? defaultValue : value;
}

QStringView xmlNonEmpty(QStringView text) {
    return text.isEmpty() || (text.front().unicode() & 0xFF) == 0 ? QStringView() : text;
}

QStringView XmlEscapeBuffer::escape(QStringView text) {
    buffer.resize(0);
    for (const QChar c : text) {
        const auto *entity = std::find_if(std::begin(xmlEntities), std::end(xmlEntities),
                                          [c](const XmlEntity &e) { return c == e.character; });
        if (entity == std::end(xmlEntities)) {
            buffer += c;
        } else {
            buffer += entity->text;
        }
    }
    return buffer.isEmpty() ? QStringView(u"") : QStringView(buffer);
}

void XmlEscapeBuffer::release() {
    buffer = QString();
}
