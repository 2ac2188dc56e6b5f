#include "xml/base64.h"
#include "xml/xml_node.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

using namespace Qt::Literals::StringLiterals;

namespace {

std::string utf8(QStringView text) {
    return text.toUtf8().toStdString();
}

// A tree in one line: name(attribute=value flag)[text|text]<clear opening content>{child child}.
// A declaration has a "?" before its name, the record at the top is called "*".
std::string render(const XmlNode &node) {
    if (node.isEmpty()) return "-";
    static const std::array names = {u"x", u"y", u"version", u"encoding"};
    std::string out = node.isDeclaration() ? "?" : "";
    out += node.name().isNull() ? "*" : utf8(node.name());
    std::string attributes;
    int found = 0;
    for (const char16_t *name : names) {
        int index = 0;
        while (node.isAttributeSet(name)) {
            const int before = index;
            const QStringView value = node.attribute(name, &index);
            if (index == before) break;
            attributes += (found++ ? " " : "") + utf8(name);
            if (!value.isNull()) attributes += "=" + utf8(value);
        }
    }
    EXPECT_EQ(node.attributeCount(), found) << "an attribute of another name";
    if (found > 0) out += "(" + attributes + ")";
    for (int i = 0; i < node.textCount(); ++i) {
        out += (i ? "|" : "[") + utf8(node.text(i));
    }
    if (node.textCount() > 0) out += "]";
    for (int i = 0; i < node.clearCount(); ++i) {
        const XmlClear clear = node.clear(i);
        out += "<" + utf8(clear.opening) + " " +
               (clear.content.isNull() ? "null" : utf8(clear.content)) + " " + utf8(clear.closing) +
               ">";
    }
    for (int i = 0; i < node.childCount(); ++i) {
        out += (i ? " " : "{") + render(node.childAt(i));
        EXPECT_EQ(node.childAt(i).parent().name(), node.name());
    }
    if (node.childCount() > 0) out += "}";
    return out;
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
    {u"<a/>", "a"},
    {u"<a></A>", "a"},
    {u"< a >\n</ a\t>", "a"},
    {u"<a x='1' y=\"2\"/>", "a(x=1 y=2)"},
    {u"<a x=1 y = 2 />", "a(x=1 y=2)"},
    {u"<a x=1/>", "a(x=1)"},
    {u"<a x=1/2></a>", "a(x=1/2)"},
    {u"<a x y='' />", "a(x y=)"},
    {u"<a x><b y/></a>", "a(x){b(y)}"},
    {u"<a x='1' x='2'/>", "a(x=1 x=2)"},
    {u"<a x='it\"s' y=\"it's\"/>", "a(x=it\"s y=it's)"},
    {u"<a x=\"1>2\"/>", "a(x=1>2)"},
    {u"<a x=''/>", "a(x=)"},
    {u"<a x=\"1></a>", "a(x=\"1)"}, // a quote that does not close is part of an unquoted value
    {u"<a\rx/>", "a(x)"},
    {u"<a x=\"<b>\"/>", "-", 8, 1, 8}, // a quote does not run over a "<"
    // Declarations: at the top they take in the rest, elsewhere "?>" closes them.
    {u"<?xml version=\"1.0\"?><a/>", "?xml(version=1.0){a}"},
    {u"<?xml version=1.0?><a/>", "?xml(version=1.0){a}"},
    {u"<?xml version?><a/>", "?xml(version){a}"},
    {u"<?xml version='1?' ?>", "?xml(version=1?)"},
    {u"<a><?xml version='1' encoding?><b/></a>", "a{?xml(version=1 encoding) b}"},
    {u"<a><?xml?><b/></a>", "a{?xml?{b}}", 1, 1, 19},
    {u"<?xml x='1'?><a><b/></a>", "a{b}", 0, 0, 0, u"A"},
    // Texts.
    {u"<a> one\r\n two \t</a>", "a[one\r\n two]"},
    {u"<a> \n </a>", "a"},
    {u"<a>x='1' / > \" '</a>", "a[x='1' / > \" ']"},
    {u"<a>one<b/>two</a>", "a[one|two]{b}"},
    {u"<a>&amp;&LT;&gt;&Quot;&apos;&#65;&#x41;&#X6a;&#65601;</a>", "a[&<>\"'AAjA]"},
    {u"<a>one&#0;two</a>", "a[one]"},
    {u"<a>&#;x</a>", "a[]"},
    {u"<a>&#;</a>", "a[]"},
    {u"<a>\f one</a>", "a[\f one]"},
    {u"<a>&bad;", "-", 12, 1, 9},
    {u"<a x='&lt;1&gt;'/>", "a(x=<1>)"},
    {u"<a>&nbsp;</a>", "-", 12, 1, 12},
    {u"<a>\n&#65</a>", "-", 12, 2, 7},
    {u"<a>&#6A;</a>", "-", 12, 1, 11},
    {u"<a>&#</a>", "-", 12, 1, 8},
    {u"<a>&</a>", "-", 12, 1, 7},
    {u"<a x='&bad;' />", "-", 12, 1, 13},
    {u"&bad;", "*", 2, 1, 6}, // no element at the top is what is told, whatever else is wrong
    // Sections that are kept as they stand.
    {u"<a><![CDATA[<b>&x;]]></a>", "a<<![CDATA[ <b>&x; ]]>>"},
    {u"<a><!----></a>", "a<<!-- null -->>"},
    {u"<a><PRE> <b> </PRE></a>", "a<<PRE>  <b>  </PRE>>"},
    {u"<a><pre>x</pre></a>", "a{pre[x]}"},
    {u"<!DOCTYPE a SYSTEM \"b\"><a/>", "*<<!DOCTYPE  a SYSTEM \"b\" >>{a}"},
    {u"<!DOCTYPE a [<!ENTITY b 'c'>]><a/>", "*<<!DOCTYPE  a [<!ENTITY b 'c'> ]>>{a}"},
    {u"<!DOCTYPE a><b>[</b>", "*<<!DOCTYPE  a >>{b[[]}"},
    {u"<a>one <!-- x --> two</a>", "a[onetwo]"},
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
    {u"<a/></b><c/>", "a", 1, 1, 9},
    {u"<a></a/b>", "a"},
    {u"<a></a\f></a>", "-", 6, 1, 9},
    {u"<ab></a></ab>", "-", 6, 1, 9},
    // Documents that end early.
    {u"<a>one<b>two", "a[one]{b[two]}", 1, 1, 13},
    {u"<a>one<b x='1' y", "a[one]{b(x=1)}", 1, 1, 17},
    {u"<?xml x='1'?><a/>text", "?xml(x=1)[text]{a}"},
    {u"<a", "a", 1, 1, 3},
    {u"<a><", "-", 4, 1, 5},
    {u"<a></a", "-", 5, 1, 7},
    {u"<a></>", "-", 5, 1, 7},
    {u"<a></a x>", "-", 5, 1, 9},
    {u"<a></a/>", "-", 5, 1, 9},
    {u"<a><='1'/></a>", "-", 4, 1, 6},
    {u"<a><\"b\"/></a>", "-", 4, 1, 8},
    // Tokens where they do not belong; the column is that behind the token.
    {u"<a ='1'/>", "-", 8, 1, 5},
    {u"<a x==/>", "-", 8, 1, 7},
    {u"<a x=>", "-", 8, 1, 7},
    {u"<a x '1'/>", "-", 8, 1, 9},
    {u"<a <!--x--> />", "-", 8, 1, 8},
    {u"<a x=/>", "-", 8, 1, 8},
    {u"<a x=1\n<b/>", "-", 8, 2, 2},
    // Nothing at the top, or more than one thing.
    {u"", "*", 2, 1, 1},
    {u" text\n ", "*[text]", 2, 2, 2},
    {u"<", "*", 2, 1, 2},
    {u"<a/><b/>", "*{a b}"},
    {u"text<a/>", "*[text]{a}"},
    // Tags.
    {u"<a/>", "a", 0, 0, 0, u"A"},
    {u"<a/><b/>", "b", 0, 0, 0, u"b"},
    {u"<a><b><c/></b></a>", "b{c}", 0, 0, 0, u"b"},
    {u"<a><b><c/></b></a>", "-", 11, 0, 0, u"c"},
    {u"<a><b x=1>", "b(x=1)", 1, 1, 11, u"b"},
    {u"<a><b>", "-", 11, 0, 0, u"c"},
    {QStringView(u"<a/>\0<b/>", 9), "a"},
    {u"<a>\u0130</a>", "-", 11, 0, 0, u"\u0131"},
};

TEST(Parser, BuildsTheTreeAndTellsCodeAndPosition) {
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

TEST(Parser, TakesDocumentsOfAnyShape) {
    constexpr int many = 1'000'000;
    XmlParseResult result;

    XmlNode node = XmlNode::parseText(u"<a x='1'>"_s.repeated(many), {}, &result);
    EXPECT_EQ(result.error, XmlError::UnmatchedEndTagWarning);
    int depth = 0;
    for (; node.childCount() == 1; ++depth) node = node.childAt(0);
    EXPECT_EQ(depth, many - 1);
    node = node.parent(); // the tree lives although only this handle is left
    EXPECT_EQ(node.attribute(u"X"), u"1");

    const QString closed = u"<a>"_s.repeated(many) + u"</a>"_s.repeated(many);
    EXPECT_FALSE(XmlNode::parseText(closed, {}, &result).isEmpty());
    EXPECT_EQ(result.error, XmlError::NoError);
    const QString broken = u"<a>"_s.repeated(many) + u"</b>"_s;
    EXPECT_TRUE(XmlNode::parseText(broken, {}, &result).isEmpty());
    EXPECT_EQ(result.error, XmlError::UnmatchedEndTag);

    node =
        XmlNode::parseText(QString(u"<r>"_s + u"<a/>t"_s.repeated(many) + u"</r>"_s), {}, &result);
    EXPECT_EQ(node.childCount(u"a"), many);
    EXPECT_EQ(node.textCount(), many);
    node = XmlNode::parseText(QString(u"<r>"_s + u"t<!---->"_s.repeated(many) + u"</r>"_s), {},
                              &result);
    EXPECT_EQ(node.text().size(), many);
    node =
        XmlNode::parseText(QString(u"<r>"_s + u"&amp;"_s.repeated(many) + u"</r>"_s), {}, &result);
    EXPECT_EQ(node.text().size(), many);
}

TEST(Navigation, FindsWhatIsThereAndNothingElse) {
    const XmlNode a = XmlNode::parseText(
        u"<a><B v='1'/><c v='X' v='y'/><b v='2' w/>one<b/><b V='x'/><!--z--></a>");
    int index = 0;
    EXPECT_EQ(a.childNode(u"b", &index).attribute(u"v"), u"1");
    EXPECT_EQ(index, 1);
    EXPECT_EQ(a.childNode(u"b", &index).attribute(u"v"), u"2");
    EXPECT_EQ(a.childNode(u"b", &index).attributeCount(), 0);
    EXPECT_EQ(a.childNode(u"b", &index).attribute(u"v"), u"x");
    EXPECT_TRUE(a.childNode(u"b", &index).isEmpty());
    EXPECT_EQ(index, 5);
    EXPECT_EQ(a.childNode(u"b", 1).attribute(u"v"), u"2");
    EXPECT_EQ(a.childNode(u"b", -1).attribute(u"v"), u"x");
    EXPECT_TRUE(a.childNode(u"b", 4).isEmpty());
    EXPECT_TRUE(a.childNode(u"d", -1).isEmpty());
    EXPECT_EQ(a.childCount(u"b"), 4);

    index = 0;
    EXPECT_EQ(a.childNodeWithAttribute(u"B", u"V", u"X", &index).attribute(u"v"), u"x");
    EXPECT_EQ(index, 5);
    EXPECT_EQ(a.childNodeWithAttribute(u"c", u"v", u"Y").name(), u"c"); // its second "v"
    EXPECT_EQ(a.childNodeWithAttribute(u"b", u"w", {}).attribute(u"v"), u"2");
    EXPECT_TRUE(a.childNodeWithAttribute(u"b", u"w", u"").isEmpty()); // absent is not empty
    EXPECT_TRUE(a.childNodeWithAttribute(u"c", u"w", {}).isEmpty());

    const XmlNode b = a.childNode(u"b", 1);
    EXPECT_TRUE(b.isAttributeSet(u"W"));
    EXPECT_TRUE(b.attribute(u"w").isNull());
    EXPECT_FALSE(b.isAttributeSet(u"x"));
    EXPECT_EQ(b.parent().name(), u"a");
    EXPECT_EQ(a.text(0), u"one");
    EXPECT_TRUE(a.text(1).isNull());
    EXPECT_TRUE(a.text(-1).isNull());
    EXPECT_EQ(a.clearCount(), 1);
    EXPECT_TRUE(a.childAt(5).isEmpty());
    EXPECT_TRUE(a.parent().parent().isEmpty());

    const XmlNode none;
    EXPECT_TRUE(none.isEmpty() && none.parent().isEmpty() && none.childAt(0).isEmpty());
    EXPECT_TRUE(none.childNode(u"a").isEmpty() && none.childNode(u"a", 2).isEmpty());
    EXPECT_TRUE(none.childNodeWithAttribute(u"a", u"b", {}).isEmpty());
    EXPECT_TRUE(none.name().isNull() && none.text().isNull() && none.attribute(u"a").isNull());
    EXPECT_TRUE(none.clear(0).opening.isNull());
    EXPECT_EQ(none.childCount() + none.textCount() + none.clearCount() + none.attributeCount(), 0);
    EXPECT_FALSE(none.isDeclaration() || none.isAttributeSet(u"a"));
}

TEST(Navigation, ConvertsValues) {
    const std::pair<const char16_t *, int> numbers[] = {
        {u"12", 12},
        {u" \t\n-7x", -7},
        {u"+3", 3},
        {u"x", 0},
        {u"-", 0},
        {u"- 1", 0},
        {u"2147483648", INT_MAX},
        {u"-99999999999999999999", INT_MIN},
        {u"\u0661", 0},
        {u" ", 0},
        {u"\v\f\r5", 5},
    };
    for (const auto &[text, number] : numbers) EXPECT_EQ(xmlToInt(text, 5), number);
    EXPECT_EQ(xmlToInt(u"", 5), 5);
    EXPECT_EQ(xmlToInt({}, 5), 5);
    EXPECT_TRUE(xmlToBool(u"-1", false) && xmlToBool(u"257", false) && xmlToBool(u"", true));
    EXPECT_FALSE(xmlToBool(u"256", true) || xmlToBool(u"true", true) || xmlToBool({}, false));
    EXPECT_EQ(xmlToText(u"", u"d"), u"");
    EXPECT_EQ(xmlToText({}, u"d"), u"d");
    EXPECT_TRUE(xmlNonEmpty(u"").isNull() && xmlNonEmpty(u"\u0100").isNull());
    EXPECT_EQ(xmlNonEmpty(u"a"), u"a");
    EXPECT_STREQ(xmlErrorMessage(static_cast<XmlError>(20)),
                 "Error: Base64 decode output buffer is too small");
    EXPECT_STREQ(xmlErrorMessage(static_cast<XmlError>(21)), "Unknown");
    EXPECT_STREQ(xmlErrorMessage(static_cast<XmlError>(-1)), "Unknown");

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
        {"\xFF\xFE" + utf16(u"<a>\u4e00\u4e01\u4e02\u4e03\u4e04\u4e05\u4e06\u4e07\u4e08</a>"),
         "a[\u4e00\u4e01\u4e02\u4e03\u4e04\u4e05\u4e06\u4e07\u4e08]"},
        {"\xFF\xFE", "*", 2},
        {"\xEF\xBB\xBF<a>\xC3\xA9\xE2\x82\xAC</a>", "a[\u00e9\u20ac]"},
        {"\xEF\xBB\xBF\xEF\xBB\xBF<a/>", "*[\uFEFF]{a}"},
        {"\xEF\xBB\xBF<a>\xC3</a>", "a[\uFFFD]"},
        {"\xEF\xBB\xBF<a/>\xC3", "*[\uFFFD]{a}"},
        {utf16(u"<abcdef/>") + "x", "*", 2}, // of an odd length
        {"\xFE\xFF" + utf16(u"<abcdef/>"), "*[\u00fe\u00ff]", 2},
        {"\xEF\xBB\xBF", "*", 2},
        {"<a/>", "a"},
        {"<a>\xE9\x80\x81</a>", "a[\u00e9\u20ac\u0081]"},
        {"<a>\x8D\x8F\x90\x9D\x9F</a>", "a[\u008d\u008f\u0090\u009d\u0178]"},
        {"\xFE\xFF<a/>", "*[\u00fe\u00ff]{a}"},
        {std::string(1, '\0'), "*", 2},
        {"", "-", 3},
    });
}

// Windows has a test of its own for UTF-16, which takes these otherwise.
TEST(File, CountsNarrowUnitsOutsideWindows) {
    expectTrees({
        {"\xFF\xFE" + utf16(u"<a/>") + "x", "*[x]{a}"}, // an odd byte pairs with a zero
        {"\xFF\xFE" + utf16(QStringView(u"<a/>\0<b/>", 9)), "a"},
        {std::string("\xEF\xBB\xBF<a/>\xC3\0<b/>", 13), "*[\uFFFD]{a}"},
        {std::string("\xEF\xBB\xBF<a/>\0<b/>", 12), "a"},
        {std::string("<a/>\0<b/>", 9), "a"},
        {utf16(u"<a>\u4e00\u4e01\u4e02\u4e03\u4e04\u4e05\u4e06</a>"), "*",
         2}, // just half is narrow
        {utf16(u"<a></a>\u4e00\u4e01\u4e02\u4e03\u4e04\u4e05"),
         "*[\u4e00\u4e01\u4e02\u4e03\u4e04\u4e05]{a}"},
    });
}

TEST(File, TellsWhatIsNone) {
    for (const QString &unusable : {u"no such file"_s, u"/"_s, u""_s}) {
        XmlParseResult result{XmlError::NoError, -1, -1};
        EXPECT_TRUE(XmlNode::parseFile(unusable, {}, &result).isEmpty());
        EXPECT_EQ(result.error, XmlError::FileNotFound);
        EXPECT_EQ(result.line + result.column, 0);
    }
}

TEST(Base64, DecodesAndTellsWhatIsWrong) {
    const struct {
        QStringView text;
        std::string bytes; // "-" for a null result
        int code = 0;
    } cases[] = {
        {u"QQ==", "A"},
        {u"QUI=", "AB"},
        {u"QUJD", "ABC"},
        {u"QU J\r\n\tD", "ABC"},
        {u"+/+/AAAA", std::string("\xFB\xFF\xBF\0\0\0", 6)},
        {u"", "-"},
        {u" \n", "-"},
        {u"====", "-"},
        {u"====\n", std::string(3, '\0'), 19},
        {u"QQ", "A", 19},
        {u"QUJDR", "ABC", 19},
        {u"QQ==\n", std::string("A\0\0", 3), 19},
        {u"QQ==QUJD", std::string("A\0\0\0\0\0", 6), 19},
        {u"Q===", "-"}, // one digit announces no byte
        {u"QUJDRA=", "ABCD", 17},
        {u"QUJ=D", std::string("AB\0", 3), 19},
        {u"QUJD*", "-", 18},
        {u"QUJD\u0141", "-", 18},
    };
    Base64Decoder decoder;
    for (const auto &c : cases) {
        SCOPED_TRACE(utf8(c.text));
        qsizetype size = -1;
        XmlError error = XmlError::FileNotFound;
        const unsigned char *bytes = base64Decode(decoder, c.text, &size, &error);
        const std::string decoded = bytes ? std::string(bytes, bytes + size) : std::string("-");
        EXPECT_EQ(decoded, c.bytes);
        EXPECT_EQ(static_cast<int>(error), c.code);
        EXPECT_EQ(bytes == nullptr, size == 0);
    }
    qsizetype size = -1;
    EXPECT_NE(base64Decode(decoder, {}, &size), nullptr);
    EXPECT_EQ(size, 0);
    decoder.release();
    EXPECT_EQ(decoder.capacity, 0);
}

} // namespace
