#include "model/sql_dialect.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <iterator>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr SqlWrapper none = {u"", u""};
constexpr SqlWrapper score = {u"CAST((", u") AS FLOAT)"};
constexpr SqlWrapper column = {u"CAST(", u" AS FLOAT)"};
constexpr SqlWrapper trim = {u"RTRIM(LTRIM(", u"))"};

constexpr SqlQuoting quotes = SqlQuoting::QuotationMarks;
constexpr SqlQuoting upper = SqlQuoting::UpperCase;
constexpr SqlQuoting brackets = SqlQuoting::Brackets;

constexpr bool yes = true;
constexpr bool no = false;

// clang-format off
constexpr SqlDialect dialects[] = {
    // name              score  column  text   quoting  name    digits  proba-  distri-  makes  collects    reader  reads    ANSI    comment  may   pads
    //                   cast   cast    trim            length          bility  butes    index  statistics  mode    slashes  quotes  blank    read  texts
    {u"default",         none,  none,   trim,  quotes,   64,    16,     no,     no,      no,    no,         yes,    no,      no,     no,      yes,  no},
    {u"sqlserver",       none,  column, trim,  brackets, 64,    16,     yes,    no,      yes,   no,         no,     no,      no,     no,      no,   no},
    {u"oracle",          none,  none,   trim,  upper,    64,    16,     yes,    no,      no,    no,         yes,    no,      no,     no,      no,   no},
    {u"mysql",           none,  none,   trim,  quotes,   64,    16,     yes,    no,      yes,   no,         yes,    yes,     yes,    yes,     yes,  yes},
    {u"teradata",        none,  none,   none,  quotes,   30,    15,     yes,    no,      no,    yes,        yes,    no,      no,     no,      no,   no},
    {u"teradata_aster",  none,  none,   none,  quotes,   30,    16,     yes,    yes,     no,    no,         yes,    no,      no,     no,      no,   no},
    {u"",                score, column, trim,  quotes,   64,    16,     yes,    no,      no,    no,         no,     no,      no,     no,      yes,  no},
};
// clang-format on

} // namespace

std::span<const SqlDialect> sqlDialects() {
    return dialects;
}

const SqlDialect &findSqlDialect(QStringView name) {
    const QString wanted = name.toString().toLower();
    const auto *const unknown = std::end(dialects) - 1;
    return *std::find_if(std::begin(dialects), unknown,
                         [&](const SqlDialect &dialect) { return dialect.name == wanted; });
}

QString sqlIdentifier(const SqlDialect &dialect, QStringView name) {
    const bool needsQuotes =
        name.contains(u'"') || name.contains(u' ') || name.contains(u'-') || name == u"key";
    QString text = name.toString();
    if (!needsQuotes) return text;
    if (dialect.quoting == SqlQuoting::Brackets) return u'[' + text + u']';
    text = text.split(u'"').join(u"\\\"");
    if (dialect.quoting == SqlQuoting::UpperCase) text = text.toUpper();
    return u'"' + text + u'"';
}

QString sqlTableName(const SqlDialect &dialect, QStringView name) {
    return sqlIdentifier(dialect, name.left(dialect.identifierLength));
}

NumberText sqlNumber(const SqlDialect &dialect, double number) {
    return generalNumber(std::abs(number) < smallestSqlNumber ? 0 : number, dialect.digits);
}

void put(TextBuffer &out, const WrappedName &wrapped) {
    put(out, wrapped.wrapper.opening, wrapped.name, wrapped.wrapper.closing);
}
