#include "exporters/sql/sql_exporter.h"

#include "exporters/sql/etl_document.h"
#include "exporters/sql/sql_configuration.h"
#include "exporters/sql/sql_dialect.h"
#include "exporters/sql/sql_script.h"
#include "model/model_document.h"
#include "model/output_file.h"
#include "model/text_buffer.h"

int exportToSql(const QString &configurationFile) {
    SqlConfiguration configuration;
    const int status = readSqlConfiguration(configurationFile, configuration);
    if (status != exitSuccess) return status;
    const SqlDialect &dialect = findSqlDialect(configuration.dbType);

    ModelDocument document = loadModel(configuration.inputFile);
    if (!document.problem.isEmpty()) return reportProblem(document);
    const SqlScript script = readSqlScript(document, configuration, dialect);
    if (!document.problem.isEmpty()) return reportProblem(document);

    TextBuffer content;
    if (configuration.kestruneScript) {
        content = TextBuffer(expectedOutput(document));
        putSqlScript(content, script);
    }
    OutputFile file;
    const int openStatus = openOutputFile(configuration.outputFile, OutputEncoding::Utf16, file);
    if (openStatus != exitSuccess) return openStatus;
    TextBuffer out(std::move(file));
    if (configuration.kestruneScript) {
        putEtlDocument(
            out, {configuration.odbcLink, configuration.odbcLogin, configuration.odbcPassword},
            dialect.hasReaderMode, content.text());
    } else {
        putSqlScript(out, script);
    }
    return finishScript(out);
}
