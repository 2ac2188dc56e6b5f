// The SQL configuration and the names in it. The files that it names are not touched.
#include "exporters/sql/etl_document.h"
#include "exporters/sql/sql_configuration.h"
#include "exporters/sql/sql_dialect.h"
#include "exporters/sql/sql_script.h"
#include "model/exit_status.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    silenceOutput();
    SqlConfiguration configuration;
    if (readSqlConfiguration(fileInMemory(data, size), configuration) != exitSuccess) return 0;
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
