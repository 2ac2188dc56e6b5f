// The configuration names the model and the output. A script goes straight to its file; for an ETL
// document, which contains it as escaped text, it is written in memory first.
#include "exporters/sql/sql_exporter.h"

#include "exporters/sql/etl_document.h"
#include "exporters/sql/sql_script.h"
#include "model/model_document.h"
#include "model/sql_configuration.h"
#include "model/sql_dialect.h"
#include "model/text_buffer.h"
#include "model/write_output.h"
#include "platform/platform.h"

using namespace Qt::Literals::StringLiterals;

int exportToSql(const QString &configurationFile) {
    const SqlConfigurationFile file = readSqlConfiguration(configurationFile);
    if (!file.message.isEmpty()) {
        printText(file.message);
        return file.status;
    }
    const SqlConfiguration &configuration = file.configuration;
    const SqlDialect &dialect = findSqlDialect(configuration.dbType);

    const QString &output = configuration.outputFile;
    if (isSameFile(configurationFile, output)) {
        return reportProblem(
            configuration.inputFile,
            u"the output would overwrite the configuration '%1'"_s.arg(configurationFile));
    }
    ModelDocument document = loadModel(configuration.inputFile, output);
    if (!document.problem.isEmpty()) return reportProblem(document);
    const SqlScript script = readSqlScript(document, configuration, dialect);
    if (!document.problem.isEmpty()) return reportProblem(document);

    if (!configuration.kestruneScript) {
        return writeScript(output, [&](TextBuffer &out) { putSqlScript(out, script); });
    }
    TextBuffer content(expectedOutput(document));
    putSqlScript(content, script);
    const EtlConnection connection = {configuration.odbcLink, configuration.odbcLogin,
                                      configuration.odbcPassword};
    return writeScript(output, [&](TextBuffer &out) {
        putEtlDocument(out, connection, dialect.hasReaderMode, content.text());
    });
}
