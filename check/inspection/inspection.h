// Looks for findings in a model, a configuration and a canvas.
#pragma once

#include "check/evaluation/scorecard.h"
#include "model/sql_configuration.h"

// What to inspect. Without a configuration, SQL is assumed to have its default settings and a
// dialect with a probability.
struct Inspection {
    Targets targets = allTargets;
    const SqlConfigurationFile *sql = nullptr;
    QString canvasName = {}; // empty: no canvas
    QString canvas = {};     // the canvas's text
};

// Returns the findings in the order of the manual, including those that only rows can confirm.
std::vector<Finding> inspect(const Scorecard &card, const Inspection &inspection);

// --- Findings of a SQL configuration and of an HTML canvas

// What the script does that findings depend on; the defaults are those without a configuration.
struct SqlUse {
    bool hasProbability = true;
    bool trimsTexts = true;
    bool boolsAreNumbers = true;
    bool readsBackslashes = false; // as escapes in string literals
};
SqlUse useOf(const SqlConfiguration &configuration);

// `file` may be null.
void inspectSql(Notes &notes, const Scorecard &card, const SqlConfigurationFile *file);
void inspectCanvas(Notes &notes, const Scorecard &card, const QString &name, const QString &canvas);
