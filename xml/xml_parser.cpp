// readContent proceeds from one "<" to the next. Between them is text; each "<" opens an element
// (readElement), closes one (readEndTag) or opens a section kept verbatim (readClear). The parser
// has its own stack of open elements, because a deeply nested document would exhaust the process's.
//
// The open elements share one list of children, one of texts and one of verbatim sections. The
// innermost element owns the last entries of each list. When it closes, they move to arrays in the
// document's block.
#include "xml/xml_document.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

struct ClearTag {
    QStringView opening;
    QStringView closing;
};
constexpr ClearTag clearTags[] = {
    {u"<![CDATA[", u"]]>"},
    {u"<!DOCTYPE", u">"},
    {u"<!--", u"-->"},
    {u"<PRE>", u"</PRE>"},
};
constexpr const ClearTag *doctypeTag = &clearTags[1];
constexpr const ClearTag *commentTag = &clearTags[2];
constexpr QStringView doctypeSubsetEnd = u"]>";

enum class TokenKind {
    End,
    Text,
    Quoted,
    Equals,
    TagStart,
    Declaration,
    EndTagStart,
    TagClose,
    ShortEnd,
    Clear
};

struct Token {
    TokenKind kind = TokenKind::End;
    QStringView text;
    const ClearTag *clearTag = nullptr;
};

enum class PieceKind { None, Child, Text, Clear, Comment };

// An open element, and where its entries in the parser's lists start.
struct OpenElement {
    XmlElement *element;
    std::size_t firstChild;
    std::size_t firstText;
    std::size_t firstClear;
    PieceKind last = PieceKind::None;
    PieceKind beforeLast = PieceKind::None;
};

struct Parser {
    XmlDocument &document;
    const char16_t *source;
    qsizetype length;
    qsizetype at = 0;
    qsizetype runStart = 0; // of the text that ends at the next "<"
    XmlError error = XmlError::NoError;
    qsizetype warningAt = 0;

    std::vector<OpenElement> open{};
    std::vector<XmlElement *> children{};
    std::vector<QStringView> texts{};
    std::vector<XmlClear> clears{};
    std::vector<XmlAttribute> attributes{};

    // The last text that was joined from several, and its capacity in units.
    char16_t *joined = nullptr;
    qsizetype joinedCapacity = 0;
};

bool isSpace(char16_t c) {
    return c <= u' ' && (c == u' ' || c == u'\n' || c == u'\t' || c == u'\r');
}

// The first unit `c`, an ASCII character, in [at, end); else `end`. memchr searches for its byte
// with vector instructions (benchmarks/costs.md: "search in units").
const char16_t *findUnit(const char16_t *at, const char16_t *end, char16_t c) {
    while (at < end) {
        const auto *const begin = reinterpret_cast<const char *>(at);
        const auto bytes = static_cast<std::size_t>(end - at) * sizeof(char16_t);
        const auto *const found = static_cast<const char *>(std::memchr(begin, c, bytes));
        if (!found) break;
        at += (found - begin) / 2;
        if (*at == c) return at;
        ++at;
    }
    return end;
}

bool fail(Parser &p, XmlError error) {
    p.error = error;
    return false;
}

void warnUnmatchedEndTag(Parser &p) {
    p.error = XmlError::UnmatchedEndTagWarning;
    p.warningAt = p.at;
}

template <typename T>
T *allocate(Parser &p, std::size_t count) {
    constexpr std::size_t size = sizeof(T); // NOLINT(bugprone-sizeof-expression): lists of pointers
    return static_cast<T *>(p.document.allocate(count * size, alignof(T)));
}

// Moves the entries from `first` on to an array of the document; returns their count.
template <typename T>
int store(Parser &p, std::vector<T> &list, std::size_t first, T *&stored) {
    const std::size_t count = list.size() - first;
    if (count > 0) {
        stored = allocate<T>(p, count);
        std::uninitialized_copy_n(list.begin() + static_cast<std::ptrdiff_t>(first), count, stored);
        list.resize(first);
    }
    return static_cast<int>(count);
}

// --- Tokens

// The text token that starts at `start`; its first unit is already read.
Token textToken(Parser &p, qsizetype start) {
    while (true) {
        while (p.source[p.at] > u'>') ++p.at; // no unit above '>' ends a text
        const char16_t c = p.source[p.at];
        if (isSpace(c)) {
            const Token token{TokenKind::Text, QStringView(p.source + start, p.at - start)};
            ++p.at;
            return token;
        }
        if (c == 0 || c == u'<' || c == u'>' || c == u'=' ||
            (c == u'/' && p.source[p.at + 1] == u'>')) {
            return {TokenKind::Text, QStringView(p.source + start, p.at - start)};
        }
        ++p.at;
    }
}

Token markupToken(Parser &p) {
    const QStringView rest(p.source + p.at, p.length - p.at);
    if (rest.size() > 1 && (rest[1] == u'!' || rest[1] == u'P')) {
        for (const ClearTag &tag : clearTags) {
            if (rest.startsWith(tag.opening)) {
                p.at += tag.opening.size();
                return {TokenKind::Clear, tag.opening, &tag};
            }
        }
    }
    const char16_t next = p.source[p.at + 1];
    const qsizetype size = next == u'/' || next == u'?' ? 2 : 1;
    p.at += size;
    const TokenKind kind = next == u'/'   ? TokenKind::EndTagStart
                           : next == u'?' ? TokenKind::Declaration
                                          : TokenKind::TagStart;
    return {kind, rest.first(size)};
}

Token nextToken(Parser &p) {
    while (isSpace(p.source[p.at])) ++p.at;
    const qsizetype start = p.at;
    const char16_t c = p.source[start];
    const auto single = [&](TokenKind kind) {
        ++p.at;
        return Token{kind, QStringView(p.source + start, 1)};
    };
    switch (c) {
    case 0:
        return {TokenKind::End, {}};
    case u'<':
        return markupToken(p);
    case u'=':
        return single(TokenKind::Equals);
    case u'>':
        return single(TokenKind::TagClose);
    case u'/':
        if (p.source[start + 1] == u'>') {
            p.at += 2;
            return {TokenKind::ShortEnd, QStringView(p.source + start, 2)};
        }
        break;
    case u'"':
    case u'\'': {
        qsizetype end = start + 1;
        while (p.source[end] != c && p.source[end] != 0 && p.source[end] != u'<') ++end;
        if (p.source[end] == c) {
            p.at = end + 1;
            return {TokenKind::Quoted, QStringView(p.source + start, p.at - start)};
        }
        break;
    }
    default:
        break;
    }
    ++p.at;
    return textToken(p, start);
}

// --- Texts

// Replaces the entities of a text. Without entities, the result is a view into the source.
bool decodeEntities(Parser &p, QStringView raw, QStringView &decoded) {
    const auto findEntity = [&raw] {
        return findUnit(raw.utf16(), raw.utf16() + raw.size(), u'&') - raw.utf16();
    };
    qsizetype ampersand = findEntity();
    decoded = raw;
    if (ampersand == raw.size()) return true;

    auto *const begin = allocate<char16_t>(p, static_cast<std::size_t>(raw.size()));
    char16_t *out = begin;
    while (ampersand < raw.size()) {
        out = std::copy_n(raw.utf16(), ampersand, out);
        raw = raw.sliced(ampersand);
        if (!readXmlEntity(raw, *out)) return fail(p, XmlError::UnknownCharacterEntity);
        ++out;
        ampersand = findEntity();
    }
    out = std::copy_n(raw.utf16(), raw.size(), out);
    decoded = QStringView(begin, std::find(begin, out, u'\0'));
    return true;
}

void addPiece(Parser &p, PieceKind kind) {
    OpenElement &element = p.open.back();
    element.beforeLast = element.last;
    element.last = kind;
}

// Appends to the last text. Doubling its capacity keeps joining many pieces linear.
void joinText(Parser &p, QStringView more) {
    QStringView &text = p.texts.back();
    const qsizetype size = text.size() + more.size();
    if (text.utf16() != p.joined || size > p.joinedCapacity) {
        p.joinedCapacity = 2 * size;
        p.joined = allocate<char16_t>(p, static_cast<std::size_t>(p.joinedCapacity));
        std::copy_n(text.utf16(), text.size(), p.joined);
    }
    std::copy_n(more.utf16(), more.size(), p.joined + text.size());
    text = QStringView(p.joined, size);
}

// Adds the text before `end` to the innermost element. If only a comment separates it from the
// previous text, drops the comment and joins the two texts.
bool flushText(Parser &p, qsizetype end) {
    qsizetype start = p.runStart;
    while (start < end && isSpace(p.source[start])) ++start;
    while (start < end && isSpace(p.source[end - 1])) --end;
    if (start == end) return true;

    QStringView text;
    if (!decodeEntities(p, QStringView(p.source + start, end - start), text)) return false;
    OpenElement &element = p.open.back();
    if (element.last == PieceKind::Comment && element.beforeLast == PieceKind::Text) {
        p.clears.pop_back();
        joinText(p, text);
        element.last = PieceKind::Text;
    } else {
        p.texts.push_back(text);
        addPiece(p, PieceKind::Text);
    }
    return true;
}

// --- Elements

void openElement(Parser &p, QStringView name, bool isDeclaration) {
    auto *const element = new (allocate<XmlElement>(p, 1)) XmlElement;
    element->name = name;
    element->isDeclaration = isDeclaration;
    if (!p.open.empty()) {
        element->parent = p.open.back().element;
        p.children.push_back(element);
        addPiece(p, PieceKind::Child);
    }
    p.open.push_back({element, p.children.size(), p.texts.size(), p.clears.size()});
}

void closeElement(Parser &p) {
    const OpenElement &open = p.open.back();
    XmlElement &element = *open.element;
    element.childCount = store(p, p.children, open.firstChild, element.children);
    element.textCount = store(p, p.texts, open.firstText, element.texts);
    element.clearCount = store(p, p.clears, open.firstClear, element.clears);
    p.open.pop_back();
}

// Reads an attribute of the usual form, name="value" without entities or markup, in one pass; reads
// nothing if it has another form. Reading tokens gives the same result, but is slower
// (benchmarks/costs.md: "attributes by tokens").
bool readUsualAttribute(Parser &p) {
    const char16_t *at = p.source + p.at;
    while (isSpace(*at)) ++at;
    const char16_t *const name = at;
    while ((*at >= u'a' && *at <= u'z') || (*at >= u'A' && *at <= u'Z')) ++at;
    if (at == name || at[0] != u'=' || at[1] != u'"') return false;
    const char16_t *const value = at + 2;
    const char16_t *end = value;
    while (*end > u'<' || (*end != u'"' && *end != u'&' && *end != u'<' && *end != 0)) ++end;
    if (*end != u'"') return false;
    p.attributes.push_back({QStringView(name, at), QStringView(value, end)});
    p.at = end + 1 - p.source;
    return true;
}

enum class StartTag { Open, Empty, Unfinished, Failed };

// Reads the attributes of the innermost element and the end of its start tag.
StartTag readAttributes(Parser &p) {
    const XmlElement &element = *p.open.back().element;
    // The attribute that still lacks its value; null if none does.
    QStringView name;
    while (true) {
        while (name.isNull() && readUsualAttribute(p)) {
        }
        Token token = nextToken(p);
        if (token.kind == TokenKind::End) return StartTag::Unfinished;
        if (token.kind == TokenKind::Text) {
            if (!name.isNull()) p.attributes.push_back({name, {}});
            name = token.text;
        } else if (token.kind == TokenKind::TagClose || token.kind == TokenKind::ShortEnd) {
            bool isEmpty = token.kind == TokenKind::ShortEnd;
            if (element.isDeclaration && name.endsWith(u'?')) {
                name.chop(1);
                // At the top, "?>" closes nothing: the declaration becomes the parent of the rest.
                if (element.parent->parent) isEmpty = true;
            }
            if (!name.isEmpty()) p.attributes.push_back({name, {}});
            p.runStart = p.at;
            return isEmpty ? StartTag::Empty : StartTag::Open;
        } else if (token.kind == TokenKind::Equals && !name.isNull()) {
            token = nextToken(p);
            QStringView value = token.text;
            if (token.kind == TokenKind::End) return StartTag::Unfinished;
            if (token.kind == TokenKind::Quoted) {
                value = value.sliced(1, value.size() - 2);
            } else if (token.kind != TokenKind::Text) {
                break;
            } else if (element.isDeclaration && value.endsWith(u'?')) {
                value.chop(1);
            }
            if (!decodeEntities(p, value, value)) return StartTag::Failed;
            p.attributes.push_back({name, value});
            name = {};
        } else {
            break;
        }
    }
    p.error = XmlError::UnexpectedToken;
    return StartTag::Failed;
}

StartTag readStartTag(Parser &p) {
    p.attributes.clear();
    const StartTag result = readAttributes(p);
    XmlElement &element = *p.open.back().element;
    element.attributeCount = store(p, p.attributes, 0, element.attributes);
    return result;
}

bool readClear(Parser &p, const ClearTag *tag) {
    const QStringView rest(p.source + p.at, p.length - p.at);
    QStringView closing = tag->closing;
    if (tag == doctypeTag) {
        const auto *const stop =
            std::find_if(rest.begin(), rest.end(), [](QChar c) { return c == u'<' || c == u'>'; });
        if (stop != rest.end() && *stop == u'<') closing = doctypeSubsetEnd;
    }
    const qsizetype size = rest.indexOf(closing);
    if (size < 0) return fail(p, XmlError::UnmatchedClearTagEnd);
    p.clears.push_back({size > 0 ? rest.first(size) : QStringView(), tag->opening, closing});
    addPiece(p, tag == commentTag ? PieceKind::Comment : PieceKind::Clear);
    p.at += size + closing.size();
    p.runStart = p.at;
    return true;
}

// Whether the end tag whose name starts at `candidate` closes an element called `name`.
bool matchesEndTag(QStringView name, const char16_t *candidate) {
    if (name.isNull()) return false;
    qsizetype size = 0;
    while (size < name.size() && candidate[size] != 0) ++size;
    if (!equalsIgnoringCase(name, QStringView(candidate, size))) return false;
    const char16_t next = candidate[size];
    return isSpace(next) || next == u'/' || next == u'<' || next == u'>' || next == u'=';
}

// Reads an end tag after its "</", and closes the innermost element. If the tag names another
// element, closes the enclosing ones up to and including that element.
bool readEndTag(Parser &p) {
    const Token name = nextToken(p);
    if (name.kind != TokenKind::Text || nextToken(p).kind != TokenKind::TagClose) {
        return fail(p, XmlError::MissingEndTagName);
    }
    const char16_t *const wanted = name.text.utf16();
    bool isClosed = matchesEndTag(p.open.back().element->name, wanted);
    if (!isClosed) warnUnmatchedEndTag(p);
    closeElement(p);
    while (!isClosed && !p.open.empty()) {
        const QStringView outer = p.open.back().element->name;
        if (outer.isNull()) return fail(p, XmlError::UnmatchedEndTag);
        isClosed = matchesEndTag(outer, wanted);
        closeElement(p);
    }
    p.runStart = p.at;
    return true;
}

void warnIfUnclosed(Parser &p) {
    const XmlElement &element = *p.open.back().element;
    if (!element.isDeclaration && element.parent) warnUnmatchedEndTag(p);
}

// Reads a start tag after its "<" or "<?". False on an error and if the document ends in it.
bool readElement(Parser &p, bool isDeclaration) {
    const Token name = nextToken(p);
    if (name.kind != TokenKind::Text) return fail(p, XmlError::MissingStartTagName);
    openElement(p, name.text, isDeclaration);
    switch (readStartTag(p)) {
    case StartTag::Open:
        return true;
    case StartTag::Empty:
        closeElement(p);
        return true;
    case StartTag::Unfinished:
        warnIfUnclosed(p);
        return false;
    case StartTag::Failed:
        break;
    }
    return false;
}

// Reads until the source ends, an error occurs or the top element closes. Up to the next "<",
// everything is text, even a quotation mark.
void readContent(Parser &p) {
    bool goesOn = true;
    while (goesOn && !p.open.empty()) {
        const char16_t *const end = p.source + p.length;
        const qsizetype markup = findUnit(p.source + p.at, end, u'<') - p.source;
        p.at = markup;
        if (markup == p.length) {
            warnIfUnclosed(p);
            flushText(p, p.length);
            return;
        }
        const Token token = markupToken(p);
        if (!flushText(p, markup)) return;
        switch (token.kind) {
        case TokenKind::Clear:
            goesOn = readClear(p, token.clearTag);
            break;
        case TokenKind::EndTagStart:
            goesOn = readEndTag(p);
            break;
        default:
            goesOn = readElement(p, token.kind == TokenKind::Declaration);
        }
    }
}

void locate(const XmlDocument &document, qsizetype position, XmlParseResult &result) {
    const QStringView before(document.source, position);
    result.line = 1 + static_cast<int>(before.count(u'\n'));
    result.column = static_cast<int>(position - before.lastIndexOf(u'\n'));
}

bool keepsTree(XmlError error) {
    return error == XmlError::NoError || error == XmlError::UnmatchedEndTagWarning ||
           error == XmlError::NoXmlTagFound;
}

} // namespace

XmlNode parseXml(std::unique_ptr<XmlDocument> owned, QStringView tag, XmlParseResult *results) {
    Parser p{*owned, owned->source, owned->length};
    openElement(p, {}, false);
    XmlElement *const top = p.open.front().element;
    XmlNode node(owned.release(), top);
    readContent(p);
    while (!p.open.empty()) closeElement(p);

    // Without any element, this warning replaces all other errors.
    if (top->childCount == 0) p.error = XmlError::NoXmlTagFound;
    XmlParseResult result{p.error};
    if (p.error != XmlError::NoError) {
        const bool isUnmatchedEndTag = p.error == XmlError::UnmatchedEndTagWarning;
        locate(p.document, isUnmatchedEndTag ? p.warningAt : p.at, result);
    }

    if (!keepsTree(p.error)) {
        node = {};
    } else {
        if (top->childCount == 1 && top->textCount == 0 && top->clearCount == 0) {
            node = node.childAt(0);
        }
        if (!tag.isEmpty() && !equalsIgnoringCase(node.name(), tag)) {
            node = node.childNode(tag);
            if (node.isEmpty()) result = {XmlError::FirstTagNotFound};
        }
    }
    if (results) *results = result;
    return node;
}
