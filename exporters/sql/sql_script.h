// The script that scores each row of a table in the database.
#pragma once

#include "model/regression.h"
#include "model/sql_configuration.h"
#include "model/sql_dialect.h"
#include "model/text_buffer.h"

enum class SqlPlan {
    ScoreOnly,      // the score is the prediction
    Nested,         // the probability is selected from the score select
    TemporaryTable, // the scores go into another table first
};

// Everything that a script is written from. Names are quoted, and tables have their schema. Valid
// as long as the configuration and the document.
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
    std::vector<QString> fields;       // of each variable
    std::vector<QString> debugColumns; // of each variable, or none
    ProbabilityTable probabilities;    // unless the plan is ScoreOnly
    double constant;                   // 0 if it is not written
    std::vector<double> coefficients;  // of each variable
    Recodings recodings;
};

// Problems of the model are noted in the document; the script must not be written then.
SqlScript readSqlScript(ModelDocument &document, const SqlConfiguration &configuration,
                        const SqlDialect &dialect);

void putSqlScript(TextBuffer &out, const SqlScript &script);
