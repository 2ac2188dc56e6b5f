#include "exporters/sql/etl_document.h"

#include "xml/xml_node.h"

#include <algorithm>

namespace {

constexpr char16_t etlHead[] = uR"(<?xml version="1.0" encoding="utf-16"?>
<KESTRUNE>
<GlobalParameters><ODBCConnections>
<odbc name='DataBaseConnection' link='$link$' login='$login$' password='$password$'/>
</ODBCConnections></GlobalParameters>
<ACTIONS>
<readODBC module='KestruneDefaultDBConnectors'$mode$ idx='0' allowNullOutput='1' odbcname='DataBaseConnection'>
)";

constexpr char16_t etlEnd[] = uR"(
</readODBC>
<RunToFinishLine idx='1' x='125'/>
</ACTIONS>
<CONNECTORS><Connection idxSrc='0' idxDest='1'/></CONNECTORS>
</KESTRUNE>)";

// Escapes only what would be read as markup, so that the script stays readable.
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
    XmlEscapeBuffer link;
    XmlEscapeBuffer login;
    XmlEscapeBuffer password;
    fill(out, etlHead,
         {{u"link", link.escape(connection.link)},
          {u"login", login.escape(connection.login)},
          {u"password", password.escape(connection.password)},
          {u"mode", hasReaderMode ? QStringView(u" mode='4'") : QStringView()}});
    putContent(out, script);
    put(out, etlEnd);
}
