// The script that scores each row of a table in the database.
#pragma once

#include "model/regression.h"
#include "model/sql_configuration.h"
#include "model/sql_dialect.h"
#include "model/text_buffer.h"

enum class SqlPlan {
    ScoreOnly,      // the score is the prediction
    Nested,         // the select of the probability contains that of the score
    TemporaryTable, // a temporary table stores the scores
};

// The contents of a script. Names are quoted, and tables have their schema. The configuration and
// the document must outlive it.
struct SqlScript {
    const SqlConfiguration &configuration;
    const SqlDialect &dialect;
    SqlPlan plan;
    QString key;
    QString prediction;
    QString predictionTable;
    QString inputTable;
    QString temporaryTable;
    Variables variables;
    std::vector<QString> fields;       // by variable
    std::vector<QString> debugColumns; // by variable; empty unless for debugging
    ProbabilityTable probabilities;    // not for ScoreOnly
    double constant;                   // 0 for debugging
    std::vector<double> coefficients;  // by variable
    Recodings recodings;
};

// Records problems of the model in the document; the script must not be written then.
SqlScript readSqlScript(ModelDocument &document, const SqlConfiguration &configuration,
                        const SqlDialect &dialect);

void putSqlScript(TextBuffer &out, const SqlScript &script);
