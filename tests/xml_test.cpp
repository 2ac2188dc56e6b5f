#include "xml/base64.h"
#include "xml/xml_node.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <tuple>

#include <unistd.h>

using namespace std::string_literals;

namespace {

std::string utf8(QStringView text) {
    return text.toUtf8().toStdString();
}

// A tree in one line: name(attribute=value flag)[text|text]<opening content closing>{child child}.
// A "?" precedes the name of a declaration, and "*" is the unnamed element at the top.
std::string render(const XmlNode &node) {
    if (node.isEmpty()) return "-";
    std::string attributes;
    int found = 0;
    for (const char16_t *name : {u"x", u"x?", u"y", u"version", u"encoding"}) {
        int next = 0;
        for (int before = -1; before != next;) {
            before = next;
            const QStringView value = node.attribute(name, &next);
            if (before == next) continue;
            attributes += (found++ ? " " : "") + utf8(name);
            if (!value.isNull()) attributes += "=" + utf8(value);
        }
    }
    EXPECT_EQ(node.attributeCount(), found) << "an attribute of another name";
    std::string texts;
    for (int i = 0; i < node.textCount(); ++i) texts += (i ? "|" : "[") + utf8(node.text(i));
    std::string clears;
    for (int i = 0; i < node.clearCount(); ++i) {
        const auto [content, opening, closing] = node.clear(i);
        const std::string shown = content.isNull() ? "null" : utf8(content);
        clears += "<" + utf8(opening) + " " + shown + " " + utf8(closing) + ">";
    }
    std::string children;
    for (int i = 0; i < node.childCount(); ++i) {
        children += (i ? " " : "{") + render(node.childAt(i));
        EXPECT_EQ(node.childAt(i).parent().name(), node.name());
    }
    return (node.isDeclaration() ? "?" : "") + (node.name().isNull() ? "*" : utf8(node.name())) +
           (attributes.empty() ? "" : "(" + attributes + ")") + texts + (texts.empty() ? "" : "]") +
           clears + children + (children.empty() ? "" : "}");
}

struct ParseCase {
    QStringView text;
    const char *tree;
    int code = 0;
    int line = 0;
    int column = 0;
    QStringView tag = {};
};

const ParseCase parseCases[] = {
    // Start tags.
    {u"<a></A>", "a"},
    {u"< a\r>\n</ a\t>", "a"},
    {u"<a x='1' y=\"2\"/>", "a(x=1 y=2)"},
    {u"<a x=1 y = 2 />", "a(x=1 y=2)"},
    {u"<a x=/1/2/>", "a(x=/1/2)"},
    {u"<a x y='' />", "a(x y=)"},
    {u"<a x><b y/></a>", "a(x){b(y)}"},
    {u"<a x='it\"s' y=\"it's\"/>", "a(x=it\"s y=it's)"},
    {u"<a x=\"1>2\"/>", "a(x=1>2)"},
    {u"<a x=\"1></a>", "a(x=\"1)"},    // an unclosed quote is part of an unquoted value
    {u"<a x=\"<b>\"/>", "-", 8, 1, 8}, // a quotation ends before a "<"
    {u"<a y=1? x?></a>", "a(x? y=1?)"},
    // Declarations: at the top they contain the rest, elsewhere "?>" closes them.
    {u"<?xml version=\"1.0\"?><a/>", "?xml(version=1.0){a}"},
    {u"<?xml version?><a/>", "?xml(version){a}"},
    {u"<?xml version='1?' ?>", "?xml(version=1?)"},
    {u"<a><?xml version='1' encoding?><b/></a>", "a{?xml(version=1 encoding) b}"},
    {u"<a><?xml?><b/></a>", "a{?xml?{b}}", 1, 1, 19},
    // Texts.
    {u"<a> one\r\n two \t</a>", "a[one\r\n two]"},
    {u"<a>x='1' / > \" '</a>", "a[x='1' / > \" ']"},
    {u"<a>one<b/>two</a>", "a[one|two]{b}"},
    {u"<a>\u3C26\u263C&amp;\u013C</a>", "a[\u3C26\u263C&\u013C]"}, // with the bytes of "<" and "&"
    {u"<a>&amp;&LT;&gt;&Quot;&apos;&#65;&#x41;&#X6f;&#65601;</a>", "a[&<>\"'AAoA]"},
    {u"<a>one&#0;two</a>", "a[one]"},
    {u"<a>&#;x</a>", "a[]"},
    {u"<a>\f one</a>", "a[\f one]"},
    {u"<a>&bad;", "-", 12, 1, 9},
    {u"<a x='&lt;1&gt;'/>", "a(x=<1>)"},
    {u"<a>\n&#65</a>", "-", 12, 2, 7},
    {u"<a>&#6A;</a>", "-", 12, 1, 11},
    {u"&bad;", "*", 2, 1, 6}, // "no element" replaces all other errors
    // Sections kept verbatim.
    {u"<a><![CDATA[<b>&x;]]></a>", "a<<![CDATA[ <b>&x; ]]>>"},
    {u"<a><!----></a>", "a<<!-- null -->>"},
    {u"<a><PRE> <b> </PRE></a>", "a<<PRE>  <b>  </PRE>>"},
    {u"<!DOCTYPE a SYSTEM \"b\"><a/>", "*<<!DOCTYPE  a SYSTEM \"b\" >>{a}"},
    {u"<!DOCTYPE a [<!ENTITY b 'c'>]><a/>", "*<<!DOCTYPE  a [<!ENTITY b 'c'> ]>>{a}"},
    {u"<!DOCTYPE a><b>[</b>", "*<<!DOCTYPE  a >>{b[[]}"},
    {u"<a>1<!--x-->2<!--y-->3<!--z--></a>", "a[123]<<!-- z -->>"},
    {u"<a>1<!--x--><!--y-->2</a>", "a[1|2]<<!-- x -->><<!-- y -->>"},
    {u"<a>1<b/><!--x-->2</a>", "a[1|2]<<!-- x -->>{b}"},
    {u"<a>1<![CDATA[x]]>2</a>", "a[1|2]<<![CDATA[ x ]]>>"},
    {u"<a><!-- x</a>", "-", 7, 1, 8},
    {u"<!DOCTYPE a [ <b> ", "*", 2, 1, 10},
    // End tags that do not match.
    {u"<a>\n<b>x</a>", "a{b[x]}", 1, 2, 9},
    {u"<r><a><b><c></a><d/></r>", "r{a{b{c}} d}", 1, 1, 17},
    {u"<a><b></a><c></a>", "-", 6, 1, 18},
    {u"<a>text</b></a>", "-", 6, 1, 12},
    {u"<a></a/b>", "a"},
    {u"<a></a\f></a>", "-", 6, 1, 9},
    {u"<ab></a></ab>", "-", 6, 1, 9},
    // Documents that end early.
    {u"<a>one<b>two", "a[one]{b[two]}", 1, 1, 13},
    {u"<a>one<b x='1' y", "a[one]{b(x=1)}", 1, 1, 17},
    {u"<?xml x='1'?><a/>text", "?xml(x=1)[text]{a}"},
    {u"<a", "a", 1, 1, 3},
    {u"<a><", "-", 4, 1, 5},
    {u"<a></>", "-", 5, 1, 7},
    {u"<a></a x>", "-", 5, 1, 9},
    {u"<a><='1'/></a>", "-", 4, 1, 6},
    // Misplaced tokens; the column is after the token.
    {u"<a ='1'/>", "-", 8, 1, 5},
    {u"<a x '1'/>", "-", 8, 1, 9},
    {u"<a <!--x--> />", "-", 8, 1, 8},
    {u"<a x=/>", "-", 8, 1, 8},
    {u"<a x=1\n<b/>", "-", 8, 2, 2},
    // No element at the top, or several.
    {u"", "*", 2, 1, 1},
    {u" text\n ", "*[text]", 2, 2, 2},
    // Tags.
    {u"<a/><b/>", "b", 0, 0, 0, u"b"},
    {u"<a><b><c/></b></a>", "-", 11, 0, 0, u"c"},
    {u"<a><b x=1>", "b(x=1)", 1, 1, 11, u"b"},
    {u"<a><b>", "-", 11, 0, 0, u"c"},
    {QStringView(u"<a/>\0<b/>", 9), "a"},
    {u"<a>\u0130</a>", "-", 11, 0, 0, u"\u0131"},
};

TEST(Parser, BuildsTheTreeAndReportsCodeAndPosition) {
    for (const ParseCase &c : parseCases) {
        SCOPED_TRACE(utf8(c.text));
        XmlParseResult result{XmlError::FileNotFound, -1, -1};
        const XmlNode node = XmlNode::parseText(c.text, c.tag, &result);
        EXPECT_EQ(render(node), c.tree);
        EXPECT_EQ(static_cast<int>(result.error), c.code);
        EXPECT_EQ(result.line, c.line);
        EXPECT_EQ(result.column, c.column);
    }
    XmlParseResult result;
    EXPECT_TRUE(XmlNode::parseText(QStringView(), {}, &result).isEmpty());
    EXPECT_EQ(result.error, XmlError::NoElementsFound);
}

TEST(Navigation, FindsMatchesOrReturnsTheEmptyNode) {
    const XmlNode a = XmlNode::parseText(
        u"<a><B v='1'/><c v='X' v='y'/><b v='2' w/>one<b/><b V='x'/><!--z--></a>");
    int index = 0;
    EXPECT_EQ(a.childNode(u"b", &index).attribute(u"v"), u"1");
    EXPECT_EQ(index, 1);
    EXPECT_EQ(a.childNode(u"b", 1).attribute(u"v"), u"2");
    EXPECT_EQ(a.childNode(u"b", -1).attribute(u"v"), u"x");
    index = 5;
    EXPECT_TRUE(a.childNode(u"b", &index).isEmpty() && a.childNode(u"b", 4).isEmpty());
    EXPECT_EQ(index, 5);
    EXPECT_EQ(XmlNode::parseText(u"<a><b/><c/></a>").childNode(u"B", -1).name(), u"b");
    EXPECT_TRUE(a.childNode(u"d", -1).isEmpty() && a.childAt(5).isEmpty());
    EXPECT_EQ(a.childCount(u"b"), 4);
    qsizetype values = 0;
    for (const XmlNode &b : a.children(u"b")) values = 10 * values + b.attribute(u"v").size();
    EXPECT_EQ(values, 1101);

    index = 0;
    EXPECT_EQ(a.childNodeWithAttribute(u"B", u"V", u"X", &index).attribute(u"v"), u"x");
    EXPECT_EQ(index, 5);
    EXPECT_EQ(a.childNodeWithAttribute(u"c", u"v", u"Y").name(), u"c"); // its second "v"
    EXPECT_EQ(a.childNodeWithAttribute(u"b", u"v", {}).attribute(u"v"), u"1");
    EXPECT_EQ(a.childNodeWithAttribute(u"b", u"w", {}).attribute(u"v"), u"2");
    EXPECT_TRUE(a.childNodeWithAttribute(u"b", u"w", u"").isEmpty()); // absent is not empty
    EXPECT_TRUE(a.childNodeWithAttribute(u"c", u"w", {}).isEmpty());

    const XmlNode b = a.childNode(u"b", 1);
    EXPECT_TRUE(b.isAttributeSet(u"W") && b.attribute(u"w").isNull() && !b.isAttributeSet(u"x"));
    EXPECT_TRUE(a.text(1).isNull() && a.text(-1).isNull() && a.parent().parent().isEmpty());

    const XmlNode none;
    EXPECT_TRUE(none.isEmpty() && none.parent().isEmpty() && none.childAt(0).isEmpty());
    EXPECT_TRUE(none.childNode(u"a").isEmpty() && none.childNode(u"a", 2).isEmpty());
    EXPECT_TRUE(none.name().isNull() && none.text().isNull() && none.attribute(u"a").isNull());
    EXPECT_TRUE(none.clear(0).opening.isNull() && !none.isDeclaration());
    EXPECT_EQ(none.childCount() + none.textCount() + none.clearCount() + none.attributeCount(), 0);
}

TEST(Navigation, ConvertsValues) {
    const std::pair<const char16_t *, int> numbers[] = {
        {u"12", 12}, {u" \t\n-7x", -7}, {u"+3", 3},      {u"x", 0},
        {u"- 1", 0}, {u"\u0661", 0},    {u"\v\f\r5", 5}, {u"2147483648", INT_MAX},
        {u" ", 0},   {u"", 5},          {nullptr, 5},    {u"-99999999999999999999", INT_MIN}};
    for (const auto &[text, number] : numbers) EXPECT_EQ(xmlToInt(text, 5), number);
    EXPECT_TRUE(xmlToBool(u"-1", false) && xmlToBool(u"257", false) && xmlToBool(u"", true));
    EXPECT_FALSE(xmlToBool(u"256", true) || xmlToBool(u"true", true) || xmlToBool({}, false));
    EXPECT_TRUE(xmlToText(u"", u"d") == u"" && xmlToText({}, u"d") == u"d");
    EXPECT_TRUE(xmlNonEmpty(u"").isNull() && xmlNonEmpty(u"\u0100").isNull());
    EXPECT_EQ(xmlNonEmpty(u"a"), u"a");
    EXPECT_STREQ(xmlErrorMessage(static_cast<XmlError>(-1)), "Unknown");
    EXPECT_STREQ(xmlErrorMessage(XmlError::Base64OutputBufferTooSmall),
                 "Error: Base64 decode output buffer is too small");

    XmlEscapeBuffer buffer;
    EXPECT_EQ(buffer.escape(u"<a&'b'>\"\u00e9"), u"&lt;a&amp;&apos;b&apos;&gt;&quot;\u00e9");
    EXPECT_EQ(buffer.escape(u"x"), u"x");
    EXPECT_FALSE(buffer.escape({}).isNull());
}

std::string utf16(QStringView text) {
    return {reinterpret_cast<const char *>(text.utf16()),
            static_cast<std::size_t>(text.size()) * 2};
}

struct FileCase {
    std::string bytes;
    const char *tree;
    int code = 0;
};

void expectTrees(const std::vector<FileCase> &cases) {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("xml_test_" + std::to_string(getpid()));
    const QString name = QString::fromStdString(path.string());
    for (const FileCase &c : cases) {
        SCOPED_TRACE(c.bytes);
        std::ofstream(path, std::ios::binary) << c.bytes;
        XmlParseResult result;
        EXPECT_EQ(render(XmlNode::parseFile(name, {}, &result)), c.tree);
        EXPECT_EQ(static_cast<int>(result.error), c.code);
    }
    std::filesystem::remove(path);
}

TEST(File, DetectsTheEncoding) {
    const QStringView text = u"<a>\u00e9\u20ac</a>";
    expectTrees({
        {"\xFF\xFE" + utf16(text), "a[\u00e9\u20ac]"},
        {utf16(text), "a[\u00e9\u20ac]"},
        {"\xEF\xFF" + utf16(u"<a>abcdef</a>"), "a[abcdef]"},
        {"\xFF\xFE" + utf16(u"<a>\u4e00\u4e01\u4e02\u4e03\u4e04\u4e05\u4e06\u4e07</a>"),
         "a[\u4e00\u4e01\u4e02\u4e03\u4e04\u4e05\u4e06\u4e07]"},
        {"\xFF\xFE", "*", 2},
        {"\xEF\xBB\xBF<a>\xC3\xA9\xE2\x82\xAC</a>", "a[\u00e9\u20ac]"},
        {"\xEF\xBB\xBF\xEF\xBB\xBF<a/>", "*[\uFEFF]{a}"},
        {"\xEF\xBB\xBF<a>\xC3</a>", "a[\uFFFD]"},
        {"\xEF\xBB\xBF<a/>\xC3", "*[\uFFFD]{a}"},
        {utf16(u"<abcdef/>") + "x", "*", 2}, // an odd length
        {"\xFE\xFF" + utf16(u"<abcdef/>"), "*[\u00fe\u00ff]", 2},
        {"\xEF\xBB\xBF", "*", 2},
        {"<a/>", "a"},
        {"<a>\xE9\x80\x81</a>", "a[\u00e9\u20ac\u0081]"},
        {"<a>\x8D\x8F\x90\x9D\x9F</a>", "a[\u008d\u008f\u0090\u009d\u0178]"},
        {"\xFE\xFF<a/>", "*[\u00fe\u00ff]{a}"},
        {"\0"s, "*", 2},
        {"", "-", 3},
    });
}

// Windows has its own test for UTF-16, with other results.
TEST(File, CountsNarrowUnitsOutsideWindows) {
    expectTrees({
        {"\xFF\xFE" + utf16(u"<a/>") + "x", "*[x]{a}"}, // an odd byte pairs with a zero
        {"\xFF\xFE" + utf16(QStringView(u"<a/>\0<b/>", 9)), "a"},
        {"\xEF\xBB\xBF<a/>\xC3\0<b/>"s, "*[\uFFFD]{a}"},
        {"\xEF\xBB\xBF<a/>\0<b/>"s, "a"},
        {"<a/>\0<b/>"s + std::string(15, '\0'), "a"},
        // Exactly half of the units are narrow.
        {utf16(u"<a>\u4e00\u4e01\u4e02\u4e03\u4e04\u4e05\u4e06</a>"), "*", 2},
        {utf16(u"<a></a>\u4e00\u4e01\u4e02\u4e03\u4e04\u4e05"),
         "*[\u4e00\u4e01\u4e02\u4e03\u4e04\u4e05]{a}"},
    });
}

TEST(Base64, DecodesAndReportsIrregularities) {
    const std::tuple<QStringView, std::string, int> cases[] = {
        {u"QQ==", "A", 0},
        {u"QUI=", "AB", 0},
        {u"QUJD", "ABC", 0},
        {u"QU J\r\n\tD", "ABC", 0},
        {u"+/+/AAAA", "\xFB\xFF\xBF\0\0\0"s, 0},
        {u"", "-", 0},
        {u" \n", "-", 0},
        {u"====", "-", 0},
        {u"====\n", "\0\0\0"s, 19},
        {u"QQ", "A", 19},
        {u"QUJDR", "ABC", 19},
        {u"QQ==\n", "A\0\0"s, 19},
        {u"QQ==QUJD", "A\0\0\0\0\0"s, 19},
        {u"Q===", "-", 0},
        {u"QUJDRA=", "ABCD", 17},
        {u"QUJ=D", "AB\0"s, 19},
        {u"QUJD*", "-", 18},
        {u"QUJD\u0141", "-", 18}};
    Base64Decoder decoder;
    for (const auto &[text, decoded, code] : cases) { // "-" for a null result
        SCOPED_TRACE(utf8(text));
        qsizetype size = -1;
        XmlError error = XmlError::FileNotFound;
        const unsigned char *bytes = base64Decode(decoder, text, &size, &error);
        EXPECT_EQ(bytes ? std::string(bytes, bytes + size) : "-", decoded);
        EXPECT_EQ(static_cast<int>(error), code);
        EXPECT_EQ(bytes == nullptr, size == 0);
    }
    qsizetype size = -1;
    EXPECT_NE(base64Decode(decoder, {}, &size), nullptr);
    EXPECT_EQ(size, 0);
}

TEST(Memory, NumbersAreDecodedOverTheirTextOnce) {
    Base64Decoder decoder;
    const XmlNode a =
        XmlNode::parseText(u"<a><x>AAAAAAAA8D8AAAAAAAAAQEE=</x>\n<x>QUJD</x><x/></a>");
    const XmlNode other = a.childNode(u"x");
    const std::span<const double> numbers = a.childNode(u"x").decodeNumbers(decoder);
    EXPECT_EQ(std::vector(numbers.begin(), numbers.end()), std::vector({1.0, 2.0}));
    EXPECT_EQ(other.decodeNumbers(decoder).data(), numbers.data());
    EXPECT_EQ(other.decodeNumbers(decoder).size(), 2);
    EXPECT_TRUE(other.text().isNull());
    EXPECT_TRUE(a.childNode(u"x", 1).decodeNumbers(decoder).empty()); // three bytes
    EXPECT_EQ(a.childNode(u"x", 1).text(), u"QUJD");
    EXPECT_TRUE(a.childNode(u"x", 2).decodeNumbers(decoder).empty());
}

TEST(MemoryDeathTest, OverrunsWithinTheBlockAreDetected) {
    if (!SCOREWRIGHT_SANITIZE) GTEST_SKIP() << "only the address sanitizer detects them";
    Base64Decoder decoder;
    const XmlNode a = XmlNode::parseText(u"<a>AAAAAAAA8D8AAAAAAAAAQA==</a>");
    const auto read = [](const auto *place) {
        const volatile auto value = *place;
        static_cast<void>(value);
    };
    const double *const numbers = a.decodeNumbers(decoder).data();
    const char16_t *const source = a.name().utf16() - 1;
    const auto *const piece = a.allocate<char16_t>(3);
    std::fill_n(a.allocate<char16_t>(5), 5, u'x'); // the next piece
    read(numbers + 1);
    read(source + a.sourceLength());
    read(piece + 2);
    EXPECT_DEATH(read(numbers + 2), "use-after-poison");
    EXPECT_DEATH(read(source + a.sourceLength() + 1), "use-after-poison");
    EXPECT_DEATH(read(piece + 3), "use-after-poison");
    EXPECT_DEATH(read(piece - 1), "use-after-poison");
}

} // namespace
