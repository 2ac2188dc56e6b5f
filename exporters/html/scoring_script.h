// The script that scores the models of a page in the browser.
#pragma once

#include "exporters/html/html_page.h"

#include <span>

// How the script reads a form control.
enum class ControlKind { NumberField, List, Integer, RadioButtons };

// An error message if so many variables share columns that the script would be too long: a column
// of k variables has k (k + 1) / 2 score lines. Empty on success.
QString scoreLinesProblem(const std::vector<VariableRecord> &records);

// Writes the whole script block. At the table of a model without a document, or with a probability
// table that lacks an array, the block ends unclosed.
void writeHtmlScript(TextBuffer &out, HtmlPage &page);

// Writes the score lines of the record at `index` and of those after it in its column, all for the
// same kind of control.
void writeVariableScoreLines(TextBuffer &out, const HtmlPage &page, std::size_t index,
                             ControlKind kind);

// Writes an array literal and ends the statement.
void writeNumberArray(TextBuffer &out, std::span<const double> values);
