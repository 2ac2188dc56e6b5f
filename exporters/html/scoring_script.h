// The script that scores the models of a page in the browser.
#pragma once

#include "exporters/html/html_page.h"

#include <span>

// How the script reads a form control.
enum class ControlKind { NumberField, List, Integer, RadioButtons };

// An error message if these variables share columns so often that the script would be too long: a
// column of k variables has k (k + 1) / 2 score lines. Empty on success.
QString scoreLinesProblem(const std::vector<VariableRecord> &records);

// Writes the whole script block. A model without a document, or with a probability mapping that
// lacks one of its arrays, ends the block instead of its table, without closing it.
void writeHtmlScript(TextBuffer &out, HtmlPage &page);

// Writes the score lines of the record at `index` and of those after it in its column, all of them
// for the same kind of control.
void writeVariableScoreLines(TextBuffer &out, const HtmlPage &page, std::size_t index,
                             ControlKind kind);

// Writes an array as a literal, and ends the statement.
void writeNumberArray(TextBuffer &out, std::span<const double> values);
