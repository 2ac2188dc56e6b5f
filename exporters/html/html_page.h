// The state of one page, which the parts of the exporter share.
#pragma once

#include "exporters/html/html_models.h"
#include "model/canvas_tags.h"
#include "model/text_buffer.h"

// One variable of one of the models. Records of the same column are adjacent and share the form
// control of the record that was created first.
struct VariableRecord {
    QStringView field; // the input column
    QString formName;  // of the column's form control
    QString jsName;    // of the variable, in the script
    int modelIndex;
    std::size_t univIndex; // within the model
};

struct HtmlPage {
    std::vector<HtmlModel> models;
    std::vector<VariableRecord> records;
    std::vector<std::size_t> questions; // the first record of each column
    CanvasTags tags;
    TextBuffer listenerCalls; // grows with each numeric control

    HtmlModel &model(const VariableRecord &record) {
        return models[static_cast<std::size_t>(record.modelIndex)];
    }
    const Variable &variable(const VariableRecord &record) {
        return model(record).variables[record.univIndex];
    }
};
