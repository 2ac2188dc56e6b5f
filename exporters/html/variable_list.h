// The variables of all models of a page, arranged by the questions that the page asks.
#pragma once

#include "exporters/html/html_page.h"

// One record for each variable: the first of each model, then the second of each, and so on. If its
// column is already listed, a record is inserted before the others of that column.
std::vector<VariableRecord> listRecords(const std::vector<HtmlModel> &models);

// The position of the first record of each column.
std::vector<std::size_t> listQuestions(const std::vector<VariableRecord> &records);
