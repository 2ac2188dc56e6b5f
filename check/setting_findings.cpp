#include "check/setting_findings.h"

#include "model/canvas_tags.h"
#include "model/sql_dialect.h"

#include <QSet>

#include <algorithm>
#include <array>
#include <numeric>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

// Words that most databases do not take as names.
constexpr QStringView sqlWords[] = {
    u"all",    u"alter",  u"and",    u"as",      u"between", u"by",    u"case",     u"check",
    u"column", u"create", u"cross",  u"default", u"delete",  u"desc",  u"distinct", u"drop",
    u"else",   u"end",    u"exists", u"from",    u"grant",   u"group", u"having",   u"in",
    u"index",  u"inner",  u"insert", u"into",    u"is",      u"join",  u"key",      u"left",
    u"like",   u"not",    u"null",   u"on",      u"or",      u"order", u"primary",  u"right",
    u"select", u"set",    u"size",   u"table",   u"then",    u"to",    u"union",    u"unique",
    u"update", u"use",    u"user",   u"using",   u"values",  u"when",  u"where",    u"with"};

// --- Names that were meant

// The steps from one text to the other: characters added, left out or changed.
std::size_t distance(QStringView a, QStringView b) {
    std::vector<std::size_t> row(static_cast<std::size_t>(b.size()) + 1);
    std::iota(row.begin(), row.end(), std::size_t(0));
    for (const QChar c : a) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 1; j < row.size(); ++j) {
            const bool isSame = c.toLower() == b[static_cast<qsizetype>(j) - 1].toLower();
            const std::size_t changed = diagonal + (isSame ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

// Empty when no name is near.
template <typename Names>
QStringView nearest(QStringView written, const Names &names) {
    constexpr qsizetype longest = 64;
    if (written.size() > longest) return {};
    QStringView found;
    std::size_t least = static_cast<std::size_t>(written.size()) / 2;
    for (const QStringView name : names) {
        const std::size_t steps = distance(written, name);
        if (steps > least || (steps == least && !found.isEmpty())) continue;
        least = steps;
        found = name;
    }
    return found;
}

QString withMeant(const QString &place, QStringView meant) {
    return meant.isEmpty() ? place : u"%1; %2 is meant?"_s.arg(place, meant);
}

// --- SQL

void inspectSettings(Notes &notes, const XmlNode &root) {
    std::vector<QStringView> known(std::begin(sqlSettings), std::end(sqlSettings));
    known.insert(known.end(), std::begin(sqlFlags), std::end(sqlFlags));
    const auto isIn = [](const auto &names, QStringView wanted) {
        return std::ranges::any_of(names, [&](QStringView name) {
            return name.compare(wanted, Qt::CaseInsensitive) == 0;
        });
    };
    for (int i = 0; i < root.attributeCount(); ++i) {
        const QStringView name = root.attributeName(i);
        const QStringView value = root.attribute(name);
        const QString place = u"setting %1"_s.arg(name);
        if (!isIn(known, name)) {
            notes.add(UnknownSetting, withMeant(place, nearest(name, known)));
        } else if (isIn(sqlFlags, name) && !value.isEmpty() && value != u"0" && value != u"1") {
            notes.add(FlagText, u"%1, '%2'"_s.arg(place, value));
        }
    }
    for (const QStringView name : {u"prediction", u"dbType"}) {
        if (root.isAttributeSet(name) && root.attribute(name).isEmpty()) {
            notes.add(EmptyName, u"setting %1"_s.arg(name));
        }
    }
}

void inspectDialect(Notes &notes, const Scorecard &card, const SqlConfiguration &configuration) {
    const SqlDialect &dialect = findSqlDialect(configuration.dbType);
    const QString place = u"setting dbType, '%1'"_s.arg(configuration.dbType);
    if (card.table.exists && !dialect.hasProbability) notes.add(NoProbability, place);
    if (!dialect.name.isEmpty() || configuration.dbType.isEmpty()) return;
    std::vector<QStringView> names;
    for (const SqlDialect &known : sqlDialects()) {
        if (!known.name.isEmpty()) names.push_back(known.name);
    }
    notes.add(UnknownDialect, withMeant(place, nearest(configuration.dbType, names)));
}

QString keyOf(const Scorecard &card, const SqlConfiguration &configuration) {
    if (!configuration.keyName.isEmpty()) return configuration.keyName;
    const QStringView key = card.document.root.childNode(u"MetaData").childNode(u"Key").text();
    return key.isEmpty() ? u"id"_s : key.toString();
}

void inspectTables(Notes &notes, const Scorecard &card, const SqlConfiguration &configuration) {
    const SqlDialect &dialect = findSqlDialect(configuration.dbType);
    const QString &table = configuration.predictionTable;
    const QString place = u"setting predictionTable, '%1'"_s.arg(table);
    const bool hasMapping = card.table.exists && dialect.hasProbability;
    const bool createsTemporary =
        hasMapping && configuration.useTmpTable && configuration.createTmpTable;
    const bool creates = configuration.createPredictionTable;
    if (creates) notes.add(SecondRun, u"setting createPredictionTable"_s);
    if (creates && dialect.makesIndex && sqlIdentifier(dialect, table) != table) {
        notes.add(TableNameQuoted, place);
    }
    const QString key = keyOf(card, configuration);
    if (dialect.distributes && (creates || createsTemporary) && key != u"id") {
        notes.add(DistributeId, u"key %1"_s.arg(key));
    }
    if (createsTemporary && dialect.name == u"mysql") {
        notes.add(CommentDashes, u"setting createTmpTable"_s);
    }
    const QString temporary = hasMapping && configuration.useTmpTable ? u"Qorv_TMP_"_s : QString();
    if ((temporary + table).size() > dialect.identifierLength) notes.add(TableNameCut, place);
    if (configuration.kestruneScript && !configuration.odbcPassword.isEmpty()) {
        notes.add(PasswordInClear, u"setting odbcPassword"_s);
    }
}

void inspectDebugging(Notes &notes, const Scorecard &card) {
    notes.add(DebugRecoding, u"setting debugRecoding"_s);
    QSet<std::size_t> columns;
    for (const Recoding &recoding : card.recodings) {
        if (columns.contains(recoding.column)) {
            notes.add(DebugColumnsAlike, u"column %1"_s.arg(recoding.variable->field));
        }
        columns.insert(recoding.column);
    }
}

// Characters that names have without quotes in all databases, and "." where it parts them.
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

void inspectSqlName(Notes &notes, const SqlDialect *dialect, QStringView name, const QString &place,
                    bool hasSchema = false) {
    const bool isQuoted = sqlIdentifier(dialect ? *dialect : sqlDialects().back(), name) != name;
    if (!isQuoted && needsQuotes(name, hasSchema)) notes.add(SqlName, place);
    const bool takesAnsiQuotes = !dialect || dialect->name == u"mysql";
    const bool isBracketed = dialect && dialect->quoting == SqlQuoting::Brackets;
    if (isQuoted && !isBracketed && (takesAnsiQuotes || name.contains(u'"'))) {
        notes.add(QuotedName, place);
    }
}

void inspectSqlNames(Notes &notes, const Scorecard &card, const SqlConfiguration *configuration) {
    const SqlDialect *const dialect =
        configuration ? &findSqlDialect(configuration->dbType) : nullptr;
    for (const QString &column : card.columns) {
        inspectSqlName(notes, dialect, column, u"column %1"_s.arg(column));
    }
    if (!configuration) return;
    inspectSqlName(notes, dialect, keyOf(card, *configuration), u"key"_s);
    inspectSqlName(notes, dialect, configuration->prediction, u"setting prediction"_s);
    inspectSqlName(notes, dialect, configuration->schemaName, u"setting schemaName"_s, true);
    inspectSqlName(notes, dialect, configuration->inputTable, u"setting inputTable"_s, true);
    inspectSqlName(notes, dialect, configuration->predictionTable, u"setting predictionTable"_s);
}

// --- HTML

struct CanvasUse {
    std::array<int, tagKinds> tags{};
    QSet<int> questions;
    QSet<int> answers;
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
            if (number < 1 || number > questions || use.questions.contains(number)) {
                use.hasOddQuestion = true;
            }
            use.questions.insert(number);
        } else if (kind == TagKind::Answer) {
            const int model = tags.answerModel;
            if (model != 0 || use.answers.contains(model)) use.hasOddAnswer = true;
            use.answers.insert(model);
        }
    }
    return use;
}

} // namespace

QString numberText(double number) {
    const NumberText text = modelNumber(number);
    return QString::fromLatin1(text.characters, text.size);
}

Finding *Notes::add(FindingId id, const QString &place, const Targets &limit) {
    const Targets concerned = kindOf(id).targets & targets & limit;
    if (concerned.none()) return nullptr;
    Finding &finding = findings.emplace_back();
    finding.id = id;
    finding.targets = concerned;
    finding.place = place;
    finding.byRows = kindOf(id).rows != Rows::Untold;
    return &finding;
}

SqlUse useOf(const SqlConfiguration &configuration) {
    const SqlDialect &dialect = findSqlDialect(configuration.dbType);
    return {.hasProbability = dialect.hasProbability,
            .trimsTexts = !dialect.textTrim.opening.isEmpty(),
            .boolsAreNumbers = configuration.boolsAreNumbers,
            .createsTables = configuration.createPredictionTable || configuration.createTmpTable,
            .readsBackslashes = dialect.name == u"mysql"};
}

void inspectSql(Notes &notes, const Scorecard &card, const SqlConfigurationFile *file) {
    inspectSqlNames(notes, card, file ? &file->configuration : nullptr);
    if (!file || useOf(file->configuration).createsTables) notes.add(KeyLength, u"key"_s);
    if (!file) return;
    inspectSettings(notes, file->root);
    inspectDialect(notes, card, file->configuration);
    inspectTables(notes, card, file->configuration);
    if (file->configuration.debugRecoding) inspectDebugging(notes, card);
}

void inspectCanvas(Notes &notes, const Scorecard &card, const QString &name,
                   const QString &canvas) {
    constexpr qsizetype shortest = 10;
    if (canvas.size() < shortest) {
        notes.add(CanvasNotRead, u"canvas %1"_s.arg(name));
        return;
    }
    const auto warn = [&](QStringView warning) { notes.add(CanvasNumber, warning.toString()); };
    CanvasTags tags = scanCanvas(canvas, warn);
    const CanvasUse use = walkCanvas(tags, std::ssize(card.columns));
    const auto want = [&](FindingId id, TagKind kind) {
        if (use.count(kind) == 0) notes.add(id, u"tag %1/]"_s.arg(tagOpening(kind)));
    };
    want(CanvasTagMissing, TagKind::Script);
    want(CanvasTagMissing, TagKind::Answer);
    const int questions = use.count(TagKind::Question);
    if (questions == 0) want(CanvasTagMissing, TagKind::AllQuestions);
    const bool isComplete = std::ssize(card.recodings) == use.questions.size();
    if (use.hasOddQuestion || (questions > 0 && !isComplete)) {
        notes.add(CanvasQuestion, u"tag [QRV_QUESTION"_s);
    }
    if (use.hasOddAnswer) notes.add(CanvasAnswer, u"tag [QRV_ANSWER"_s);
    want(CanvasScale, TagKind::Graphics);
    const QStringView kind = card.document.root.childNode(u"MetaData").attribute(u"tkind");
    const bool isProbability = equalsIgnoringCase(kind, u"T");
    if (isProbability && card.table.exists) want(CanvasScale, TagKind::DynScale);
    if (!canvas.contains(u"QRVform"_s)) notes.add(CanvasForm, u"canvas %1"_s.arg(name));
    if (canvas.contains(u"<!doctype"_s, Qt::CaseInsensitive) &&
        !canvas.contains(u"QRVSpecifiedHistogramColor"_s)) {
        notes.add(CanvasColours, u"canvas %1"_s.arg(name));
    }
}
