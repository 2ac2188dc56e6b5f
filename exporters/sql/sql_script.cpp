// A script with a temporary table, and the function that writes each part:
//
// -- drop table predictions;                                  putPredictionTable
// create table Qorv_TMP_predictions(id VARCHAR(20), …         putTemporaryTable
// insert into Qorv_TMP_predictions(id,score)                  putTemporaryInsert
//  SELECT id,(0.5                                             putScoreSelect
//  +(CASE WHEN (Age IS NULL) THEN 0.2                         putNumericCase
//    WHEN Age<18 THEN -0.4
//  +(CASE WHEN ( job IS NULL OR RTRIM(LTRIM(job))='') THEN …  putCategoricalCase
// insert into predictions(id,proba)                           putPredictionInsert
//  select id, (CASE                                           putProbabilitySelect
//    WHEN Qorv_TMP_predictions.score>3 THEN 0.9
// DROP TABLE Qorv_TMP_predictions;                            putTemporaryMapping
#include "exporters/sql/sql_script.h"

#include "model/target_rules.h"

using namespace Qt::Literals::StringLiterals;

namespace {

// --- Names and plan

QString schemaPrefix(const SqlConfiguration &configuration, const SqlDialect &dialect) {
    const QString &schema = configuration.schemaName;
    return schema.isEmpty() ? QString() : sqlIdentifier(dialect, schema) + u'.';
}

std::vector<QString> debugColumns(std::span<const Variable> variables,
                                  const SqlConfiguration &configuration,
                                  const SqlDialect &dialect) {
    std::vector<QString> columns;
    if (!configuration.debugRecoding) return columns;
    columns.reserve(variables.size());
    for (const Variable &variable : variables) {
        columns.push_back(sqlIdentifier(dialect, u"R_%1"_s.arg(variable.field)));
    }
    return columns;
}

std::vector<QString> quotedFields(std::span<const Variable> variables, const SqlDialect &dialect) {
    std::vector<QString> fields;
    fields.reserve(variables.size());
    for (const Variable &variable : variables)
        fields.push_back(sqlIdentifier(dialect, variable.field));
    return fields;
}

SqlPlan choosePlan(const ProbabilityTable &probabilities, const SqlConfiguration &configuration) {
    if (usesTemporaryTable(configuration, probabilities.exists)) return SqlPlan::TemporaryTable;
    return probabilities.exists ? SqlPlan::Nested : SqlPlan::ScoreOnly;
}

// --- Tables

void putComment(TextBuffer &out, const SqlScript &script) {
    const QString &comment = script.configuration.comment;
    if (!comment.isEmpty()) put(out, u"-- ", comment, u"\n");
}

QStringView tableClause(const SqlScript &script) {
    return script.dialect.distributes ? u" distribute by hash(id)" : u"";
}

void putPredictionTable(TextBuffer &out, const SqlScript &script) {
    if (!script.configuration.createPredictionTable) return;
    put(out, u"-- drop table ", script.predictionTable, u";\n");
    put(out, u"create table ", script.predictionTable, u"(", script.key, u" VARCHAR(",
        longestSqlKey, u"), ", script.prediction, u" FLOAT(53))", tableClause(script), u";\n");
    if (script.dialect.makesIndex) {
        const QString indexed = sqlTableName(script.dialect, script.configuration.predictionTable);
        put(out, u"CREATE INDEX ", indexed, u"_index ON ", script.predictionTable, u"(", script.key,
            u");\n");
    }
}

// If the script does not create the temporary table, a comment shows the statement that does.
void putTemporaryTable(TextBuffer &out, const SqlScript &script) {
    const QString &table = script.temporaryTable;
    const bool creates = script.configuration.createTmpTable;
    if (creates) {
        put(out, u"--drop table ", table, u";\n");
    } else {
        put(out, u"-- ");
    }
    put(out, u"create table ", table, u"(", script.key, u" VARCHAR(", longestSqlKey,
        u"), score FLOAT(53)");
    for (const QString &column : script.debugColumns) put(out, u",\n", column, u" FLOAT(53)");
    put(out, u")", tableClause(script), u";\n");
    if (!creates) put(out, u"delete from ", table, u";\n");
}

void putTemporaryInsert(TextBuffer &out, const SqlScript &script) {
    put(out, u"insert into ", script.temporaryTable, u"(", script.key);
    for (const QString &column : script.debugColumns) put(out, u",", column);
    put(out, u",score)\n");
}

void putPredictionInsert(TextBuffer &out, const SqlScript &script) {
    put(out, u"insert into ", script.predictionTable, u"(", script.key, u",", script.prediction,
        u")\n");
}

// --- Score

void putNumericCase(TextBuffer &out, const SqlDialect &dialect, const QString &field,
                    const NumericRecoding &recoding, double coefficient) {
    const WrappedName column = {dialect.columnCast, field};
    const auto number = [&](double value) { return sqlNumber(dialect, value); };
    const auto points = [&](double score) { return number(coefficient * score); };

    put(out, u"CASE WHEN (", field, u" IS NULL");
    for (const double code : recoding.missing.codes)
        put(out, u") OR (", column, u"=", number(code));
    put(out, u") THEN ", points(recoding.scoreMissing()), u"\n");
    put(out, u"   WHEN ", column, u"<", number(recoding.x.front()), u" THEN ",
        points(recoding.scoreBelow()), u"\n");
    put(out, u"   WHEN ", column, u">", number(recoding.x.back()), u" THEN ",
        points(recoding.scoreAbove()), u"\n");
    forEachInnerBin(recoding, [&](double bound, double score) {
        put(out, u"   WHEN ", column, u"<=", number(bound), u" THEN ", points(score), u"\n");
    });
    put(out, u"   ELSE ", points(recoding.scoreMissing()), u"\n   END ");
}

// isNumber: a boolean column stored as 0 and 1, which must not be compared with texts.
void putCategoricalCase(TextBuffer &out, const SqlDialect &dialect, const QString &field,
                        const CategoricalRecoding &recoding, bool isNumber, double coefficient) {
    const WrappedName text = {dialect.textTrim, field};
    const WrappedName column = {dialect.columnCast, field};
    const auto points = [&](double score) { return sqlNumber(dialect, coefficient * score); };

    put(out, u"CASE WHEN ( ", field, u" IS NULL");
    if (!isNumber) put(out, u" OR ", text, u"=''");
    put(out, u") THEN ", points(recoding.y[0]), u"\n");
    if (isNumber) {
        put(out, u"   WHEN ", column, u"=0 THEN ", points(recoding.y[1]), u"\n");
        put(out, u"   WHEN ", column, u"=1 THEN ", points(recoding.y[2]), u"\n");
    } else {
        // The spellings of a boolean column are compared untrimmed.
        const WrappedName compared = recoding.isBoolean ? WrappedName{{}, field} : text;
        for (std::size_t i = 0; i < recoding.values.size(); ++i) {
            put(out, u"   WHEN ", compared, u"='", EscapedText{recoding.values[i], u'\''},
                u"' THEN ", points(recoding.score(i)), u"\n");
        }
    }
    put(out, u"   ELSE ", points(recoding.y[0]), u"\n   END");
}

// Each variable's CASE yields its points. It is a term of the sum or, for debugging, a separate
// column.
void putPoints(TextBuffer &out, const SqlScript &script) {
    const SqlDialect &dialect = script.dialect;
    const Recodings &recodings = script.recodings;
    const bool isDebug = script.configuration.debugRecoding;
    for (const Variable &variable : script.variables) {
        const QString &field = script.fields[variable.index];
        const double coefficient = script.coefficients[variable.index];
        put(out, isDebug ? QStringView(u",(") : QStringView(u" +("), dialect.scoreCast.opening);
        if (variable.isCategorical) {
            const CategoricalRecoding recoding = categorical(variable);
            const bool isNumber = recoding.isBoolean && script.configuration.boolsAreNumbers;
            putCategoricalCase(out, dialect, field, recoding, isNumber, coefficient);
        } else {
            putNumericCase(out, dialect, field, recodings.numeric(variable), coefficient);
        }
        put(out, dialect.scoreCast.closing, u")");
        if (isDebug) put(out, u" AS ", script.debugColumns[variable.index]);
        put(out, u"\n");
    }
}

void putScoreSelect(TextBuffer &out, const SqlScript &script) {
    const bool isDebug = script.configuration.debugRecoding;
    put(out, u" SELECT ", script.key);
    if (!isDebug) put(out, u",(", sqlNumber(script.dialect, script.constant), u"\n");
    putPoints(out, script);
    if (isDebug) {
        put(out, u", 0 as score");
    } else {
        const bool isPrediction = script.plan == SqlPlan::ScoreOnly;
        put(out, u"   ) AS ", isPrediction ? QStringView(script.prediction) : u"score");
    }
    put(out, u" FROM ", script.inputTable);
}

// --- Probability

// Ends with "from"; the caller appends the table or the query. `prefix` precedes each "score".
// Scores between the last two points of the probability table get probability 0, which is frozen
// for compatibility.
void putProbabilitySelect(TextBuffer &out, const SqlScript &script, const QString &prefix) {
    const SqlDialect &dialect = script.dialect;
    const ProbabilityTable &table = script.probabilities;
    const std::size_t last = table.x.size() - 1;
    const auto number = [&](double value) { return sqlNumber(dialect, value); };

    put(out, u" select ", script.key, u", (", dialect.scoreCast.opening, u"CASE \n");
    put(out, u"   WHEN ", prefix, u"score>", number(table.x[0]), u" THEN ", number(table.y[0]),
        u"\n   WHEN ", prefix, u"score<", number(table.x[last]), u" THEN ", number(table.y[last]));
    forEachSegment(table, LastSegment::LeftOut, [&](const ProbabilitySegment &segment) {
        put(out, u"\n   WHEN ", prefix, u"score>", number(segment.threshold), u" THEN ",
            number(segment.intercept));
        const NumberText slope = number(segment.slope);
        if (slope.view() != "0") put(out, u"+", prefix, u"score*", slope);
    });
    put(out, u"\n   ELSE 0\n   END ", dialect.scoreCast.closing, u") AS ", script.prediction,
        u"\n  from ");
}

void putTemporaryMapping(TextBuffer &out, const SqlScript &script) {
    const QString &table = script.temporaryTable;
    if (script.dialect.collectsStatistics) {
        put(out, u"COLLECT STATISTICS ON ", table, u" INDEX (", script.key, u");\n");
    }
    putPredictionInsert(out, script);
    putProbabilitySelect(out, script, table + u'.');
    put(out, table, u";\n");
    if (script.configuration.debugRecoding) return;
    put(out, script.configuration.createTmpTable ? QStringView(u"DROP TABLE ") : u"DELETE FROM ",
        table, u";\n");
}

} // namespace

SqlScript readSqlScript(ModelDocument &document, const SqlConfiguration &configuration,
                        const SqlDialect &dialect) {
    const QString schema = schemaPrefix(configuration, dialect);
    const QString &target = configuration.predictionTable;
    Variables variables = readVariables(document, replacedCharacters(Target::Sql));
    ProbabilityTable probabilities;
    if (dialect.hasProbability) probabilities = readProbabilityTable(document);
    const SqlPlan plan = choosePlan(probabilities, configuration);
    std::vector<QString> fields = quotedFields(variables, dialect);
    std::vector<QString> columns = debugColumns(variables, configuration, dialect);
    const Regression regression =
        readRegression(document, variables,
                       configuration.debugRecoding ? ConstantTerm::LeftOut : ConstantTerm::Read);
    std::vector<double> coefficients = variableCoefficients(document, variables, regression);
    Recodings recodings = readRecodings(document, variables,
                                        configuration.boolsAreNumbers ? BooleanScores::Both
                                                                      : BooleanScores::OfValues);
    return {
        .configuration = configuration,
        .dialect = dialect,
        .plan = plan,
        .key = sqlIdentifier(dialect, keyColumn(configuration, document)),
        .prediction = sqlIdentifier(dialect, configuration.prediction),
        .predictionTable = schema + sqlTableName(dialect, target),
        .inputTable = schema + sqlIdentifier(dialect, configuration.inputTable),
        .temporaryTable = schema + sqlTableName(dialect, temporaryTableName(configuration)),
        .variables = std::move(variables),
        .fields = std::move(fields),
        .debugColumns = std::move(columns),
        .probabilities = std::move(probabilities),
        .constant = regression.constant,
        .coefficients = std::move(coefficients),
        .recodings = std::move(recodings),
    };
}

void putSqlScript(TextBuffer &out, const SqlScript &script) {
    putComment(out, script);
    putPredictionTable(out, script);
    switch (script.plan) {
    case SqlPlan::ScoreOnly:
        putPredictionInsert(out, script);
        putScoreSelect(out, script);
        put(out, u";\n\n");
        break;
    case SqlPlan::Nested:
        putPredictionInsert(out, script);
        // Below, the alias is defined in another case. Frozen for compatibility.
        putProbabilitySelect(out, script, u"qorv_tmp."_s);
        put(out, u"\n(");
        putScoreSelect(out, script);
        put(out, u") Qorv_TMP;\n\n");
        break;
    case SqlPlan::TemporaryTable:
        putTemporaryTable(out, script);
        putTemporaryInsert(out, script);
        putScoreSelect(out, script);
        put(out, u";\n\n");
        putTemporaryMapping(out, script);
        break;
    }
}
