// The file that says what SQL to write, and of which model.
#pragma once

#include "xml/xml_node.h"

#include <QString>

#include <span>

struct ModelDocument;

// The settings, with the values that they have where the file leaves them out.
struct SqlConfiguration {
    QString inputFile;  // the model document
    QString outputFile; // the script
    QString inputTable;
    QString keyName; // empty: the model's own key
    QString prediction = QStringLiteral("Predictions");
    QString predictionTable;
    QString schemaName;
    QString dbType = QStringLiteral("default");
    bool createPredictionTable = false;
    bool kestruneScript = false; // wrap the script in an ETL document
    bool useTmpTable = true;
    bool createTmpTable = true;
    bool boolsAreNumbers = true;
    bool debugRecoding = false;
    QString odbcLink;
    QString odbcLogin;
    QString odbcPassword;
    QString comment; // the text of the file; each line after the first begins as a comment
};

// The name of a setting in the file, and where its value goes: one of the two, the other is null.
struct SqlSetting {
    QStringView name;
    QString SqlConfiguration::*text;
    bool SqlConfiguration::*flag;
};

// All settings. The file is read by this table, and any other name in it is unknown.
std::span<const SqlSetting> sqlSettings();

// What a configuration file says. It can be used if there is no message.
struct SqlConfigurationFile {
    SqlConfiguration configuration;
    XmlNode root;    // the element "Model2SQL"; empty if the file cannot be read
    int status = 0;  // the exit status of a conversion with this file
    QString message; // ends with a line end only if the file cannot be read
};

// Reads the file and checks that it has the settings that have no default. The status is 1, 2, 3
// or 5 without an input file, output file, input table or prediction table, and 10 for a file that
// gives a parse error or warning.
SqlConfigurationFile readSqlConfiguration(const QString &fileName);

// --- What follows from the settings

// The column that identifies a row: that of the setting, else the model's own, else "id".
QString keyColumn(const SqlConfiguration &configuration, const ModelDocument &document);

// Whether the script goes through a temporary table; `mapsScores`: it makes probabilities of scores
// by the model's table.
inline bool usesTemporaryTable(const SqlConfiguration &configuration, bool mapsScores) {
    return mapsScores && configuration.useTmpTable;
}

// The table for the scores, if there is one; without its schema, and before it is cut.
QString temporaryTableName(const SqlConfiguration &configuration);
