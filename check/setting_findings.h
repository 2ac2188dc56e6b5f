// What a configuration of SQL and a canvas of HTML add to the findings of a model.
#pragma once

#include "check/scorecard.h"
#include "model/sql_configuration.h"

// Collects findings, and leaves out those that concern none of the targets.
class Notes {
public:
    explicit Notes(const Targets &asked) : targets(asked) {}

    // The finding, until the next call; null when it was left out.
    Finding *add(FindingId id, const QString &place, const Targets &limit = Targets().set());

    std::vector<Finding> findings;

private:
    Targets targets;
};

// A number as the generated code shows it.
QString numberText(double number);

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
