// The form controls with which a page asks for the value of a column.
#pragma once

#include "exporters/html/html_page.h"

// The slider of a numeric column. A list of values uses only the default: 0 for the unknown value,
// k + 1 for the value of index k.
struct SliderRange {
    int min = 0;
    int max = 0;
    int defaultValue = 0;
};

// The range covers the bounds in "x", rounded outwards to whole numbers and limited to 32 bits;
// 0 to 0 without bounds. The default is its middle or, if the values are ordinal or have no "x",
// the bound with the index of the largest count in "nocc"; without bounds, that index.
SliderRange computeSliderRange(ModelDocument &document, const Variable &variable);

// Writes the label and the controls of the question whose first record has this index.
void writeQuestionControls(TextBuffer &out, HtmlPage &page, std::size_t recordIndex);

// Writes the script that synchronises the sliders written so far with their number fields.
void writeListenerScript(TextBuffer &out, const HtmlPage &page);
