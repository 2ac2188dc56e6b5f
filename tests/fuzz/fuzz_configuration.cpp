// The SQL configuration and the names in it. The files that it names are not touched.
#include "exporters/sql/etl_document.h"
#include "exporters/sql/sql_script.h"
#include "model/exit_status.h"
#include "model/sql_configuration.h"
#include "model/sql_dialect.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    silenceOutput();
    const SqlConfigurationFile file = readSqlConfiguration(fileInMemory(data, size));
    if (!file.message.isEmpty()) return 0;
    const SqlConfiguration &configuration = file.configuration;
    ModelDocument document = loadModel(modelOfCorpus("kinds"));
    const SqlDialect &dialect = findSqlDialect(configuration.dbType);
    TextBuffer script;
    putSqlScript(script, readSqlScript(document, configuration, dialect));
    TextBuffer etl;
    putEtlDocument(etl,
                   {configuration.odbcLink, configuration.odbcLogin, configuration.odbcPassword},
                   dialect.hasReaderMode, script.text());
    return 0;
}
