// The configuration file: which model to convert to SQL, and how.
#pragma once

#include "xml/xml_node.h"

#include <QString>

#include <span>

struct ModelDocument;

// The settings, with their defaults.
struct SqlConfiguration {
    QString inputFile;  // the model document
    QString outputFile; // the script
    QString inputTable;
    QString keyName; // if empty, the model's own key
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
    QString comment; // the file's text, with "-- " before each line but the first
};

// The name of a setting in the file, and the member that stores it; the other member is null.
struct SqlSetting {
    QStringView name;
    QString SqlConfiguration::*text;
    bool SqlConfiguration::*flag;
};

// All settings; any other name in the file is unknown.
std::span<const SqlSetting> sqlSettings();

// A configuration file. It is usable if the message is empty.
struct SqlConfigurationFile {
    SqlConfiguration configuration;
    XmlNode root;    // the element "Model2SQL"; empty if the file cannot be read
    int status = 0;  // the exit status of a conversion with this file
    QString message; // ends with a line feed only if the file cannot be read
};

// Reads the file and checks that it has the settings without a default. The status is 1, 2, 3 or 5
// without an input file, output file, input table or prediction table, and 10 for a parse error or
// warning.
SqlConfigurationFile readSqlConfiguration(const QString &fileName);

// --- Derived from the settings

// The column that identifies a row: the setting's, else the model's own, else "id".
QString keyColumn(const SqlConfiguration &configuration, const ModelDocument &document);

// Whether the script uses a temporary table; `mapsScores`: the model's probability table maps the
// scores.
inline bool usesTemporaryTable(const SqlConfiguration &configuration, bool mapsScores) {
    return mapsScores && configuration.useTmpTable;
}

// The name of the temporary table, without its schema and before it is truncated.
QString temporaryTableName(const SqlConfiguration &configuration);
