// The control of a question depends on the column's kind:
//
// Age    a slider and a number field, synchronised            putNumericControl
// Paid   unknown, True and False as radio buttons             putYesNoControl
// Job    a drop-down list of many categories                  putList
// Home   radio buttons for few categories                     putRadioButtons
#include "exporters/html/form_controls.h"

#include "exporters/html/form_controls_text.h"
#include "model/target_rules.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace {

int toInt(double value) {
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    return std::isnan(value) ? 0 : static_cast<int>(std::clamp(value, lowest, highest));
}

double rounded(double value) {
    return std::floor(value + 0.5);
}

std::size_t mostFrequent(ModelDocument &document, const Variable &variable) {
    const std::vector<int> counts = readIntegers(document, variable.node, u"nocc");
    const auto largest = std::ranges::max_element(counts);
    if (largest == counts.end() || *largest <= 0) return 0;
    return static_cast<std::size_t>(largest - counts.begin());
}

// The label, or the column if that is empty, or the variable's name if both are.
QStringView captionOf(const Variable &variable) {
    if (!variable.label.isEmpty()) return variable.label;
    return variable.field.isEmpty() ? variable.name : variable.field;
}

void putNumericControl(TextBuffer &out, HtmlPage &page, const QString &formName,
                       const SliderRange &range) {
    fill(out, numericControl,
         {{u"min", range.min},
          {u"max", range.max},
          {u"default", range.defaultValue},
          {u"form", formName},
          {u"unknown", page.tags.labels.unknown}});
    put(page.listenerCalls, u"myEventListener(\"", formName, u"\");\n");
}

void putYesNoControl(TextBuffer &out, const Labels &labels, const QString &formName,
                     int defaultValue) {
    const auto checkedIf = [defaultValue](int value) {
        return value == defaultValue ? QStringView(u"CHECKED") : QStringView();
    };
    fill(out, yesNoControl,
         {{u"form", formName},
          {u"unknownMark", checkedIf(0)},
          {u"unknown", labels.unknown},
          {u"trueMark", checkedIf(2)},
          {u"true", labels.trueAnswer},
          {u"falseMark", checkedIf(1)},
          {u"false", labels.falseAnswer}});
}

// The categories in the order of their values, each with its index in the document. Of several with
// the same value, the last is offered.
struct Category {
    int index;
    QStringView caption;
};
std::map<QStringView, Category> sortCategories(const XmlNode &modalities) {
    std::map<QStringView, Category> categories;
    int index = 0;
    for (const XmlNode &mod : modalities.children(u"Mod")) {
        const QStringView value = mod.attribute(u"val");
        const QStringView label = mod.attribute(u"label");
        categories[value] = {index++, label.isEmpty() ? value : label};
    }
    return categories;
}

void putList(TextBuffer &out, const std::map<QStringView, Category> &categories,
             QStringView unknown, const QString &formName, int defaultValue) {
    const auto selectedIf = [defaultValue](int value) {
        return value == defaultValue ? QStringView(u" selected=\"selected\"") : QStringView();
    };
    put(out, u"\n<SELECT onChange=\"ComputeModel();\" name=\"", formName,
        u"\" >\n<OPTION VALUE=\"0\"", selectedIf(0), u">----- ", unknown, u" -----\n");
    for (const auto &[value, category] : categories) {
        const int number = category.index + 1;
        put(out, u"<OPTION VALUE=\"", number, u"\"", selectedIf(number), u">", category.caption,
            u"\n");
    }
    put(out, u"</SELECT><br>\n");
}

void putRadioButtons(TextBuffer &out, const std::map<QStringView, Category> &categories,
                     QStringView unknown, const QString &formName, int defaultValue) {
    const auto putButton = [&](int value, QStringView caption) {
        put(out, u"<input onclick=\"ComputeModel();\" type=\"radio\" name=\"", formName,
            u"\" value=\"", value, u"\" ");
        if (value == defaultValue) put(out, u"CHECKED");
        put(out, u" >", caption, u"<br>\n");
    };
    put(out, u"<br/>\n");
    putButton(0, unknown);
    for (const auto &[value, category] : categories) {
        putButton(category.index + 1, category.caption);
    }
}

} // namespace

SliderRange computeSliderRange(ModelDocument &document, const Variable &variable) {
    const std::span<const double> bounds = variable.x;
    SliderRange range;
    if (!bounds.empty()) {
        range.min = toInt(std::floor(bounds.front()));
        range.max = toInt(std::ceil(bounds.back()));
    }
    const bool isOrdinal =
        variable.node.childNode(u"x").isEmpty() || variable.node.attribute(u"ordinal") == u"1";
    if (!isOrdinal) {
        range.defaultValue = toInt(rounded((double(range.min) + double(range.max)) * 0.5));
        return range;
    }
    const std::size_t index = mostFrequent(document, variable);
    range.defaultValue = bounds.empty()
                             ? static_cast<int>(index)
                             : toInt(rounded(bounds[std::min(index, bounds.size() - 1)]));
    return range;
}

void writeQuestionControls(TextBuffer &out, HtmlPage &page, std::size_t recordIndex) {
    const VariableRecord &record = page.records[recordIndex];
    const Variable &variable = page.variable(record);
    const SliderRange range = computeSliderRange(page.model(record).document, variable);
    const QString &formName = record.formName;
    const Labels &labels = page.tags.labels;

    put(out, captionOf(variable), u" ");
    if (!variable.isCategorical) {
        putNumericControl(out, page, formName, range);
        return;
    }
    const XmlNode modalities = variable.node.childNode(u"Modalities");
    if (modalities.isEmpty()) return;
    if (variable.isBoolean) {
        putYesNoControl(out, labels, formName, range.defaultValue);
    } else if (htmlShowsList(variable.values.size())) {
        putList(out, sortCategories(modalities), labels.unknown, formName, range.defaultValue);
    } else {
        putRadioButtons(out, sortCategories(modalities), labels.unknown, formName,
                        range.defaultValue);
    }
}

void writeListenerScript(TextBuffer &out, const HtmlPage &page) {
    put(out, listenerScript, page.listenerCalls.text(), u"--></script>\n");
}
