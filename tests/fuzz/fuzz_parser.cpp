// The parser and the navigation, on UTF-16 text made of UTF-8 bytes or of the bytes as they stand.
#include "tests/fuzz/fuzz.h"
#include "xml/xml_node.h"

#include <cstring>
#include <vector>

namespace {

// Looks at all of a tree; the sum keeps the reads from being left out.
qsizetype walk(const XmlNode &top) {
    qsizetype sum = 0;
    std::vector<XmlNode> pending = {top};
    while (!pending.empty()) {
        const XmlNode node = pending.back();
        pending.pop_back();
        sum += node.name().count(u'a');
        for (int i = 0; i < node.textCount(); ++i) sum += node.text(i).count(u'a');
        for (int i = 0; i < node.clearCount(); ++i) sum += node.clear(i).content.count(u'a');
        int next = 0;
        sum += node.attribute(u"name", &next).count(u'a');
        sum += xmlToInt(node.attribute(u"val", &next), 0) & 1;
        sum += node.childNodeWithAttribute(u"a", u"name", u"a").childCount(u"a");
        sum += node.childNode(u"a", -1).childCount();
        for (int i = 0; i < node.childCount(); ++i) {
            if (node.childAt(i).parent().name() != node.name()) std::abort();
            pending.push_back(node.childAt(i));
        }
    }
    return sum;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    const auto *const bytes = reinterpret_cast<const char *>(data);
    const auto length = static_cast<qsizetype>(size);
    const bool isWide = data[0] == 0;
    std::vector<char16_t> units(size / 2 + 1);
    std::memcpy(units.data(), bytes, size);
    const QString text = isWide ? QString::fromUtf16(units.data(), std::ssize(units))
                                : QString::fromUtf8(bytes, length);
    XmlParseResult result;
    qsizetype sum = walk(XmlNode::parseText(text, {}, &result));
    sum += walk(XmlNode::parseText(text, u"a", &result));
    if (sum < 0 || result.line < 0 || result.column < 0) std::abort();
    return 0;
}
