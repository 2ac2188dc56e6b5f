#include "exporters/sql/etl_document.h"

#include "exporters/sql/etl_text.h"
#include "xml/xml_node.h"

#include <algorithm>

namespace {

// Only what would be read as markup is escaped, so that the script stays readable.
void putContent(TextBuffer &out, QStringView text) {
    const auto isMarkup = [](QChar c) { return c == u'&' || c == u'<'; };
    const QChar *from = text.begin();
    while (from != text.end()) {
        const QChar *const to = std::find_if(from, text.end(), isMarkup);
        put(out, QStringView(from, to));
        if (to == text.end()) return;
        put(out, *to == u'&' ? QStringView(u"&amp;") : QStringView(u"&lt;"));
        from = to + 1;
    }
}

} // namespace

void putEtlDocument(TextBuffer &out, const EtlConnection &connection, bool hasReaderMode,
                    QStringView script) {
    XmlEscapeBuffer escaped;
    put(out, etlLink, escaped.escape(connection.link));
    put(out, u"' login='", escaped.escape(connection.login));
    put(out, u"' password='", escaped.escape(connection.password));
    put(out, etlReader);
    if (hasReaderMode) put(out, u" mode='4'");
    put(out, u" idx='0' allowNullOutput='1' odbcname='DataBaseConnection'>\n");
    putContent(out, script);
    put(out, etlEnd);
}
