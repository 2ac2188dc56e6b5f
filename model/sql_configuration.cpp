// Settings are attributes of the root element, and the comment is its text.
#include "model/sql_configuration.h"

#include "model/model_document.h"

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

// Messages about absent settings; by contract without a line feed.
constexpr char16_t sqlNoInputFile[] =
    u"Error: cannot convert model: no XML model to convert! ('inputFile' field is empty or mising)";
constexpr char16_t sqlNoOutputFile[] =
    u"Error: cannot convert model: the output filename is missing! ('outputFile' field is empty or mising)";
constexpr char16_t sqlNoInputTable[] =
    u"Error: cannot convert model: no input table/view is given! ('inputTable' field is empty or mising)";
constexpr char16_t sqlNoPredictionTable[] =
    u"Error: cannot convert model: no prediction Table Name is given! ('predictionTable' field is empty or mising)";

constexpr SqlSetting textSetting(QStringView name, QString SqlConfiguration::*text) {
    return {name, text, nullptr};
}
constexpr SqlSetting flagSetting(QStringView name, bool SqlConfiguration::*flag) {
    return {name, nullptr, flag};
}

constexpr SqlSetting settings[] = {
    textSetting(u"inputFile", &SqlConfiguration::inputFile),
    textSetting(u"outputFile", &SqlConfiguration::outputFile),
    textSetting(u"inputTable", &SqlConfiguration::inputTable),
    textSetting(u"keyName", &SqlConfiguration::keyName),
    textSetting(u"prediction", &SqlConfiguration::prediction),
    textSetting(u"predictionTable", &SqlConfiguration::predictionTable),
    textSetting(u"schemaName", &SqlConfiguration::schemaName),
    textSetting(u"dbType", &SqlConfiguration::dbType),
    textSetting(u"odbcLink", &SqlConfiguration::odbcLink),
    textSetting(u"odbcLogin", &SqlConfiguration::odbcLogin),
    textSetting(u"odbcPassword", &SqlConfiguration::odbcPassword),
    flagSetting(u"createPredictionTable", &SqlConfiguration::createPredictionTable),
    flagSetting(u"kestruneScript", &SqlConfiguration::kestruneScript),
    flagSetting(u"useTmpTable", &SqlConfiguration::useTmpTable),
    flagSetting(u"createTmpTable", &SqlConfiguration::createTmpTable),
    flagSetting(u"boolsAreNumbers", &SqlConfiguration::boolsAreNumbers),
    flagSetting(u"debugRecoding", &SqlConfiguration::debugRecoding),
};

SqlConfiguration readSettings(const XmlNode &root) {
    SqlConfiguration configuration;
    for (const auto &[name, text, flag] : settings) {
        const QStringView value = root.attribute(name);
        if (text) configuration.*text = xmlToText(value, configuration.*text).toString();
        if (flag) configuration.*flag = xmlToBool(value, configuration.*flag);
    }
    configuration.comment = root.text().trimmed().toString().split(u'\n').join(u"\n-- ");
    return configuration;
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

std::span<const SqlSetting> sqlSettings() {
    return settings;
}

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

QString keyColumn(const SqlConfiguration &configuration, const ModelDocument &document) {
    if (!configuration.keyName.isEmpty()) return configuration.keyName;
    const QStringView key = document.root.childNode(u"MetaData").childNode(u"Key").text();
    return key.isEmpty() ? u"id"_s : key.toString();
}

QString temporaryTableName(const SqlConfiguration &configuration) {
    return u"Qorv_TMP_"_s + configuration.predictionTable;
}
