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
    TextBuffer script(expectedOutput(document));
    putSqlScript(script, document, configuration, dialect);
    if (!document.problem.isEmpty()) return reportProblem(document);

    if (!configuration.kestruneScript) return writeScript(configuration.outputFile, script.text());
    TextBuffer etl(2 * script.text().size());
    putEtlDocument(etl,
                   {configuration.odbcLink, configuration.odbcLogin, configuration.odbcPassword},
                   dialect.hasReaderMode, script.text());
    return writeScript(configuration.outputFile, etl.text());
}
