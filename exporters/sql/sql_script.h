// The script that scores each row of a table in the database.
#pragma once

#include "exporters/sql/sql_configuration.h"
#include "exporters/sql/sql_dialect.h"
#include "model/model_document.h"
#include "model/text_buffer.h"

// Appends the script. What is wrong with the model is noted in the document; the script is then not
// to be used.
void putSqlScript(TextBuffer &out, ModelDocument &document, const SqlConfiguration &configuration,
                  const SqlDialect &dialect);
