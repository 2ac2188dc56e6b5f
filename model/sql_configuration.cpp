// Settings are attributes of the root element, and the comment is its text. All are read before the
// first is checked.
#include "model/sql_configuration.h"

#include <QStringList>

using namespace Qt::Literals::StringLiterals;

namespace {

// 4 was never used.
enum ConfigurationStatus {
    exitNoInputFile = 1,
    exitNoOutputFile = 2,
    exitNoInputTable = 3,
    exitNoPredictionTable = 5,
    exitBadConfiguration = 10,
};

// Messages about the settings; they end without a line end.
constexpr char16_t sqlNoInputFile[] =
    u"Error: cannot convert model: no XML model to convert! ('inputFile' field is empty or mising)";
constexpr char16_t sqlNoOutputFile[] =
    u"Error: cannot convert model: the output filename is missing! ('outputFile' field is empty or mising)";
constexpr char16_t sqlNoInputTable[] =
    u"Error: cannot convert model: no input table/view is given! ('inputTable' field is empty or mising)";
constexpr char16_t sqlNoPredictionTable[] =
    u"Error: cannot convert model: no prediction Table Name is given! ('predictionTable' field is empty or mising)";

SqlConfiguration readSettings(const XmlNode &root) {
    const auto text = [&](QStringView name, QStringView absent = {}) {
        return xmlToText(root.attribute(name), absent).toString();
    };
    const auto flag = [&](QStringView name, bool absent) {
        return xmlToBool(root.attribute(name), absent);
    };
    return {
        .inputFile = text(u"inputFile"),
        .outputFile = text(u"outputFile"),
        .inputTable = text(u"inputTable"),
        .keyName = text(u"keyName"),
        .prediction = text(u"prediction", u"Predictions"),
        .predictionTable = text(u"predictionTable"),
        .schemaName = text(u"schemaName"),
        .dbType = text(u"dbType", u"default"),
        .createPredictionTable = flag(u"createPredictionTable", false),
        .kestruneScript = flag(u"kestruneScript", false),
        .useTmpTable = flag(u"useTmpTable", true),
        .createTmpTable = flag(u"createTmpTable", true),
        .boolsAreNumbers = flag(u"boolsAreNumbers", true),
        .debugRecoding = flag(u"debugRecoding", false),
        .odbcLink = text(u"odbcLink"),
        .odbcLogin = text(u"odbcLogin"),
        .odbcPassword = text(u"odbcPassword"),
        .comment = root.text().trimmed().toString().split(u'\n').join(u"\n-- "),
    };
}

void checkSettings(SqlConfigurationFile &file) {
    struct Check {
        const QString &setting;
        int status;
        QStringView message;
    };
    const SqlConfiguration &configuration = file.configuration;
    const Check checks[] = {
        {configuration.inputFile, exitNoInputFile, sqlNoInputFile},
        {configuration.outputFile, exitNoOutputFile, sqlNoOutputFile},
        {configuration.inputTable, exitNoInputTable, sqlNoInputTable},
        {configuration.predictionTable, exitNoPredictionTable, sqlNoPredictionTable},
    };
    for (const Check &check : checks) {
        if (!check.setting.isEmpty()) continue;
        file.message = check.message.toString();
        file.status = check.status;
        return;
    }
}

} // namespace

SqlConfigurationFile readSqlConfiguration(const QString &fileName) {
    SqlConfigurationFile file;
    XmlParseResult result;
    file.root = XmlNode::parseFile(fileName, u"Model2SQL", &result);
    if (result.error != XmlError::NoError) {
        const QString message =
            u"XML Parsing error inside file '%1'.\n%2\nAt line %3, column %4.\n"_s;
        file.message = message.arg(fileName, QString::fromLatin1(xmlErrorMessage(result.error)),
                                   QString::number(result.line), QString::number(result.column));
        file.status = exitBadConfiguration;
        return file;
    }
    file.configuration = readSettings(file.root);
    checkSettings(file);
    return file;
}
