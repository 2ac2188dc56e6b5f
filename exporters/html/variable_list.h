// The variables of all models of a page, in the order of the page's questions.
#pragma once

#include "exporters/html/html_page.h"

// One record for each variable: the first of each model, then the second of each, and so on. A
// record whose column is already listed is inserted before the others of that column.
std::vector<VariableRecord> listRecords(const std::vector<HtmlModel> &models);

// The index of the first record of each column.
std::vector<std::size_t> listQuestions(const std::vector<VariableRecord> &records);
