// The file that tells what SQL to write, and of which model.
#pragma once

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

// Reads the file and checks that it names what nothing can stand in for. Returns 0, or, after a
// message: 1, 2, 3 or 5 without an input file, output file, input table or prediction table, and 10
// for a file that gives a parse error or warning.
int readSqlConfiguration(const QString &fileName, SqlConfiguration &configuration);
