#include "check/findings/nearest_name.h"
#include "check/inspection/inspection.h"

#include "model/canvas_tags.h"
#include "model/sql_dialect.h"

#include <QSet>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

// Words that most databases reject as names.
constexpr QStringView sqlWords[] = {
    u"all",    u"alter",  u"and",    u"as",      u"between", u"by",    u"case",     u"check",
    u"column", u"create", u"cross",  u"default", u"delete",  u"desc",  u"distinct", u"drop",
    u"else",   u"end",    u"exists", u"from",    u"grant",   u"group", u"having",   u"in",
    u"index",  u"inner",  u"insert", u"into",    u"is",      u"join",  u"key",      u"left",
    u"like",   u"not",    u"null",   u"on",      u"or",      u"order", u"primary",  u"right",
    u"select", u"set",    u"size",   u"table",   u"then",    u"to",    u"union",    u"unique",
    u"update", u"use",    u"user",   u"using",   u"values",  u"when",  u"where",    u"with"};

// --- Settings and dialects

QString withSuggestion(const QString &place, QStringView meant) {
    return meant.isEmpty() ? place : u"%1; did you mean %2?"_s.arg(place, meant);
}

void inspectSettings(Notes &notes, const XmlNode &root) {
    const std::span<const SqlSetting> settings = sqlSettings();
    std::vector<QStringView> names;
    for (const SqlSetting &setting : settings) names.push_back(setting.name);
    for (int i = 0; i < root.attributeCount(); ++i) {
        const QStringView name = root.attributeName(i);
        const QStringView value = root.attribute(name);
        const QString place = u"setting %1"_s.arg(name);
        const auto setting = std::ranges::find_if(settings, [&](const SqlSetting &candidate) {
            return candidate.name.compare(name, Qt::CaseInsensitive) == 0;
        });
        const bool isKnown = setting != settings.end();
        const bool isBadFlag =
            isKnown && setting->flag && !value.isEmpty() && value != u"0" && value != u"1";
        if (!isKnown) notes.add({withSuggestion(place, nearestName(name, names))}, UnknownSetting);
        if (isBadFlag) notes.add({u"%1, '%2'"_s.arg(place, value)}, FlagText);
    }
    const SqlConfiguration defaults;
    for (const auto &[name, text, flag] : settings) {
        const bool hasDefault = text && !(defaults.*text).isEmpty();
        const bool isEmpty = root.isAttributeSet(name) && root.attribute(name).isEmpty();
        notes.add({u"setting %1"_s.arg(name)}, EmptyName, hasDefault && isEmpty);
    }
}

// Servers that general SQL suits and whose FLOAT has 64 bits.
constexpr QStringView doubleServers[] = {u"postgresql", u"postgres", u"sqlite", u"sqlite3"};

bool isDoubleServer(QStringView dbType) {
    return std::ranges::any_of(doubleServers, [&](QStringView name) {
        return name.compare(dbType, Qt::CaseInsensitive) == 0;
    });
}

// The dialect that another name of a server, or a misspelt dialect, stands for; empty if none.
QStringView dialectOf(QStringView dbType, std::span<const QStringView> names) {
    constexpr std::pair<QStringView, QStringView> others[] = {
        {u"mssql", u"sqlserver"}, {u"tsql", u"sqlserver"}, {u"mariadb", u"mysql"}};
    for (const auto &[name, dialect] : others) {
        if (name.compare(dbType, Qt::CaseInsensitive) == 0) return dialect;
    }
    return nearestName(dbType, names);
}

void inspectDialect(Notes &notes, const Scorecard &card, const QString &dbType) {
    const SqlDialect &dialect = findSqlDialect(dbType);
    const QString place = u"setting dbType, '%1'"_s.arg(dbType);
    notes.add({place}, NoProbability, card.table.exists && !dialect.hasProbability);
    std::vector<QStringView> names;
    for (const SqlDialect &known : sqlDialects()) {
        if (!known.name.isEmpty()) names.push_back(known.name);
    }
    const bool isDouble = isDoubleServer(dbType);
    notes.add({place}, SinglePrecision, !dialect.scoreCast.opening.isEmpty() && !isDouble);
    const bool isKnown = !dialect.name.isEmpty() || dbType.isEmpty() || isDouble ||
                         dbType.compare(u"duckdb", Qt::CaseInsensitive) == 0;
    const QStringView meant = dialectOf(dbType, names);
    notes.add({withSuggestion(place, meant)}, UnknownDialect, !isKnown && !meant.isEmpty());
}

void inspectTables(Notes &notes, const Scorecard &card, const SqlConfiguration &configuration) {
    const SqlDialect &dialect = findSqlDialect(configuration.dbType);
    const QString &table = configuration.predictionTable;
    const bool creates = configuration.createPredictionTable;
    const bool usesTemporary =
        usesTemporaryTable(configuration, card.table.exists && dialect.hasProbability);
    const bool createsTemporary = usesTemporary && configuration.createTmpTable;
    const bool isQuoted = sqlIdentifier(dialect, table) != table;
    const QString longestName = usesTemporary ? temporaryTableName(configuration) : table;
    const QString key = keyColumn(configuration, card.document);
    notes.add({u"setting createPredictionTable"_s}, creates ? SecondRun : RowsAdded);
    notes.add({u"key"_s}, KeyLength, creates || createsTemporary);
    const FindingPlace tableName = {u"setting predictionTable, '%1'"_s.arg(table)};
    notes.add(tableName, TableNameQuoted, creates && dialect.makesIndex && isQuoted);
    notes.add(tableName, TableNameCut, longestName.size() > dialect.identifierLength);
    notes.add({u"key %1"_s.arg(key)}, DistributeId,
              dialect.distributes && (creates || createsTemporary) && key != u"id");
    notes.add({u"setting createTmpTable"_s}, CommentDashes,
              createsTemporary && dialect.needsCommentBlank);
    const bool showsPassword =
        configuration.kestruneScript && !configuration.odbcPassword.isEmpty();
    notes.add({u"setting odbcPassword"_s}, PasswordInClear, showsPassword);
}

void inspectDebugging(Notes &notes, const Scorecard &card) {
    notes.add({u"setting debugRecoding"_s}, DebugRecoding);
    for (const Recoding &recoding : card.recodings) {
        notes.add({u"column %1"_s.arg(recoding.variable->field)}, DebugColumnsAlike,
                  recoding.rank > 0);
    }
}

// Whether databases require quotes around the name. With a schema, a full stop separates two names.
bool needsQuotes(QStringView name, bool hasSchema) {
    const auto isWord = [&](QStringView word) {
        return word.compare(name, Qt::CaseInsensitive) == 0;
    };
    const auto isPlain = [&](QChar c) {
        return c.isLetterOrNumber() || c == u'_' || c == u'$' || (hasSchema && c == u'.');
    };
    return (!name.isEmpty() && name[0].isDigit()) || std::ranges::any_of(sqlWords, isWord) ||
           !std::all_of(name.begin(), name.end(), isPlain);
}

void inspectSqlNames(Notes &notes, const Scorecard &card, const SqlConfiguration *configuration) {
    const SqlDialect *const dialect =
        configuration ? &findSqlDialect(configuration->dbType) : nullptr;
    const bool needsAnsiQuotes = !dialect || dialect->needsAnsiQuotes;
    const bool isBracketed = dialect && dialect->quoting == SqlQuoting::Brackets;
    const auto inspectName = [&](QStringView name, const FindingPlace &place,
                                 bool hasSchema = false) {
        const bool isQuoted =
            sqlIdentifier(dialect ? *dialect : sqlDialects().back(), name) != name;
        notes.add(place, SqlName, !isQuoted && needsQuotes(name, hasSchema));
        const bool isOdd = !isBracketed && (needsAnsiQuotes || name.contains(u'"'));
        notes.add(place, QuotedName, isQuoted && isOdd);
    };
    for (const QString &column : card.columns) inspectName(column, {u"column %1"_s.arg(column)});
    if (!configuration) return;
    inspectName(keyColumn(*configuration, card.document), {u"key"_s});
    inspectName(configuration->prediction, {u"setting prediction"_s});
    inspectName(configuration->schemaName, {u"setting schemaName"_s}, true);
    inspectName(configuration->inputTable, {u"setting inputTable"_s}, true);
    inspectName(configuration->predictionTable, {u"setting predictionTable"_s});
}

// --- HTML

struct CanvasUse {
    std::array<int, tagKinds> tags{};
    QSet<int> questions;
    bool hasOddQuestion = false;
    bool hasOddAnswer = false;

    int count(TagKind kind) const { return tags[static_cast<std::size_t>(kind)]; }
};

CanvasUse walkCanvas(CanvasTags &tags, qsizetype questions) {
    CanvasUse use;
    for (TagKind kind = nextTag(tags, TagKind::None); kind != TagKind::None;
         kind = nextTag(tags, kind)) {
        ++use.tags[static_cast<std::size_t>(kind)];
        if (kind == TagKind::Question) {
            const int number = tags.questionNumber;
            const bool isRepeated = use.questions.contains(number);
            if (number < 1 || number > questions || isRepeated) use.hasOddQuestion = true;
            use.questions.insert(number);
        } else if (kind == TagKind::Answer && (tags.answerModel != 0 || use.count(kind) > 1)) {
            use.hasOddAnswer = true;
        }
    }
    return use;
}

} // namespace

SqlProperties propertiesOf(const SqlConfiguration &configuration) {
    const SqlDialect &dialect = findSqlDialect(configuration.dbType);
    return {.hasProbability = dialect.hasProbability,
            .trimsTexts = !dialect.textTrim.opening.isEmpty(),
            .boolsAreNumbers = configuration.boolsAreNumbers,
            .readsBackslashes = dialect.readsBackslashes,
            .mayReadBackslashes = dialect.mayReadBackslashes,
            .reading = {.digits = dialect.digits, .padsTexts = dialect.padsTexts}};
}

void inspectSql(Notes &notes, const Scorecard &card, const SqlConfigurationFile *file) {
    inspectSqlNames(notes, card, file ? &file->configuration : nullptr);
    if (!file) {
        notes.add({u"key"_s}, KeyLength);
        return;
    }
    inspectSettings(notes, file->root);
    inspectDialect(notes, card, file->configuration.dbType);
    inspectTables(notes, card, file->configuration);
    if (file->configuration.debugRecoding) inspectDebugging(notes, card);
}

void inspectCanvas(Notes &notes, const Scorecard &card, const QString &name,
                   const QString &canvas) {
    const FindingPlace place = {u"canvas %1"_s.arg(name)};
    notes.add(place, CanvasNotRead, canvas.size() < shortestCanvas);
    if (canvas.size() < shortestCanvas) return;
    const bool hasDoctype = canvas.contains(u"<!doctype"_s, Qt::CaseInsensitive);
    notes.add(place, CanvasForm, !canvas.contains(u"QRVform"_s));
    notes.add(place, CanvasColours,
              hasDoctype && !canvas.contains(u"QRVSpecifiedHistogramColor"_s));
    CanvasTags tags = scanCanvas(
        canvas, [&](QStringView warning) { notes.add({warning.toString()}, CanvasNumber); });
    const CanvasUse use = walkCanvas(tags, std::ssize(card.columns));
    const auto require = [&](FindingId id, TagKind kind, bool isNeeded = true) {
        notes.add({u"tag %1/]"_s.arg(tagOpening(kind))}, id, isNeeded && use.count(kind) == 0);
    };
    const int questions = use.count(TagKind::Question);
    const bool isComplete = std::ssize(card.recodings) == use.questions.size();
    const bool hasBars = isOfKind(card, u"T") && card.table.exists;
    require(CanvasTagMissing, TagKind::Script);
    require(CanvasTagMissing, TagKind::Answer);
    require(CanvasTagMissing, TagKind::AllQuestions, questions == 0);
    require(CanvasScale, TagKind::Graphics);
    require(CanvasScale, TagKind::DynScale, hasBars);
    notes.add({u"tag [QRV_QUESTION"_s}, CanvasQuestion,
              use.hasOddQuestion || (questions > 0 && !isComplete));
    notes.add({u"tag [QRV_ANSWER"_s}, CanvasAnswer, use.hasOddAnswer);
}
