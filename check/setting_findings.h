// What a configuration of SQL and a canvas of HTML add to the findings of a model.
#pragma once

#include "check/scorecard.h"
#include "model/sql_configuration.h"

// What the script does that findings depend on. As it stands, without a configuration.
struct SqlUse {
    bool hasProbability = true;
    bool trimsTexts = true;
    bool boolsAreNumbers = true;
    bool createsTables = true;
    bool readsBackslashes = false; // as escapes in texts
};
SqlUse useOf(const SqlConfiguration &configuration);

// `file` may be null.
void inspectSql(Notes &notes, const Scorecard &card, const SqlConfigurationFile *file);
void inspectCanvas(Notes &notes, const Scorecard &card, const QString &name, const QString &canvas);
