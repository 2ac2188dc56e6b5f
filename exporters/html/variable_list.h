// The variables of all models of a page, arranged as the questions that are asked for them.
#pragma once

#include "exporters/html/html_page.h"

// One record for each variable, the first of each model before the second of each, and so
// on; a record of a column that is already listed is put before the others of that column.
std::vector<VariableRecord> listRecords(const std::vector<HtmlModel> &models);

// The positions of the records that begin a column.
std::vector<std::size_t> listQuestions(const std::vector<VariableRecord> &records);
