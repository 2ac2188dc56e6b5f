// The file that tells what SQL to write, and of which model.
#pragma once

#include "xml/xml_node.h"

#include <QString>

struct SqlConfiguration {
    QString inputFile;  // the model document
    QString outputFile; // the script
    QString inputTable;
    QString keyName; // empty: the model's own key
    QString prediction;
    QString predictionTable;
    QString schemaName;
    QString dbType;
    bool createPredictionTable = false;
    bool kestruneScript = false; // wrap the script in an ETL document
    bool useTmpTable = true;
    bool createTmpTable = true;
    bool boolsAreNumbers = true;
    bool debugRecoding = false;
    QString odbcLink;
    QString odbcLogin;
    QString odbcPassword;
    QString comment; // each line after the first begins as a comment
};

// The names of the settings: texts, and flags.
inline constexpr QStringView sqlSettings[] = {
    u"inputFile",  u"outputFile", u"inputTable", u"keyName",   u"prediction",  u"predictionTable",
    u"schemaName", u"dbType",     u"odbcLink",   u"odbcLogin", u"odbcPassword"};
inline constexpr QStringView sqlFlags[] = {u"createPredictionTable", u"kestruneScript",
                                           u"useTmpTable",           u"createTmpTable",
                                           u"boolsAreNumbers",       u"debugRecoding"};

// What a configuration file says. Without a message it can be used.
struct SqlConfigurationFile {
    SqlConfiguration configuration;
    XmlNode root;    // the element "Model2SQL"; empty when the file cannot be read
    int status = 0;  // the exit status of a conversion that needs it
    QString message; // ends its line only where the file cannot be read
};

// Reads the file and checks that it names what nothing can stand in for. The status is 1, 2, 3 or 5
// without an input file, output file, input table or prediction table, and 10 for a file that gives
// a parse error or warning.
SqlConfigurationFile readSqlConfiguration(const QString &fileName);
