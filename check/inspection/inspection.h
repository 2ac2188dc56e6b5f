// Inspects a model, a configuration and a canvas for findings.
#pragma once

#include "check/evaluation/evaluation.h"
#include "model/sql_configuration.h"

// What to inspect. Without a configuration, SQL is assumed to have default settings and a dialect
// with a probability.
struct Inspection {
    Targets targets = allTargets;
    const SqlConfigurationFile *sql = nullptr;
    QString canvasName = {}; // empty: no canvas
    QString canvas = {};     // the canvas's text
};

// The findings in the order of the manual, including those that are reported only for rows.
std::vector<Finding> inspect(const Scorecard &card, const Inspection &inspection);

// --- Findings in a configuration of SQL and a canvas of HTML

// What findings depend on in the script. The defaults are those without a configuration.
struct SqlUse {
    bool hasProbability = true;
    bool trimsTexts = true;
    bool boolsAreNumbers = true;
    bool readsBackslashes = false; // as escapes in texts
    bool mayEscape = true;         // the server may read a backslash in a text as an escape
    SqlReading reading = {};
};
SqlUse useOf(const SqlConfiguration &configuration);

// `file` may be null.
void inspectSql(Notes &notes, const Scorecard &card, const SqlConfigurationFile *file);
void inspectCanvas(Notes &notes, const Scorecard &card, const QString &name, const QString &canvas);
