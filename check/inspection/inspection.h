// Finds departures and faults in a model, an SQL configuration and a canvas.
#pragma once

#include "check/evaluation/evaluation.h"
#include "model/sql_configuration.h"

// Without a configuration, SQL has the default settings and a dialect with a probability.
struct Inspection {
    Targets targets = allTargets;
    const SqlConfigurationFile *sql = nullptr;
    QString canvasName = {}; // empty: no canvas
    QString canvas = {};     // its content
};

// All findings in the order of FindingId, including those to be reported only if they affect rows.
std::vector<Finding> inspect(const Scorecard &card, const Inspection &inspection);

// --- SQL configuration and canvas

// The properties of the SQL script that decide findings; by default, those without a
// configuration.
struct SqlProperties {
    bool hasProbability = true;
    bool trimsTexts = true;
    bool boolsAreNumbers = true;
    bool readsBackslashes = false;  // as escapes in texts
    bool mayReadBackslashes = true; // at least one server does
    SqlReading reading = {};
};
SqlProperties propertiesOf(const SqlConfiguration &configuration);

// `file` may be null.
void inspectSql(Notes &notes, const Scorecard &card, const SqlConfigurationFile *file);
void inspectCanvas(Notes &notes, const Scorecard &card, const QString &name, const QString &canvas);
