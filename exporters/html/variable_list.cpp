// Records are appended to the list of their column, and the lists are read backwards at the end:
// this puts newer records before older ones without moving them.
#include "exporters/html/variable_list.h"

#include <algorithm>
#include <iterator>

using namespace Qt::Literals::StringLiterals;

namespace {

// The records of one column, in order of creation.
using Column = std::vector<VariableRecord>;

struct Columns {
    std::vector<Column> columns;
    TextTable<QStringView, std::size_t> indexes; // by field
};

void addRecord(Columns &list, const HtmlModel &model, std::size_t univIndex) {
    const Variable &variable = model.variables[univIndex];
    const auto [found, isNew] = list.indexes.try_emplace(variable.field, list.columns.size());
    if (isNew) list.columns.emplace_back();
    Column &column = list.columns[found->second];
    const QString name = u"m%1_%2"_s.arg(QString::number(model.index), variable.name);
    const QString formName = isNew ? name : column.front().formName;
    column.push_back({variable.field, formName, name, model.index, univIndex});
}

} // namespace

std::vector<VariableRecord> listRecords(const std::vector<HtmlModel> &models) {
    Columns list;
    std::vector<const HtmlModel *> unfinished;
    unfinished.reserve(models.size());
    for (const HtmlModel &model : models) unfinished.push_back(&model);
    for (std::size_t univIndex = 0; !unfinished.empty(); ++univIndex) {
        std::erase_if(unfinished, [univIndex](const HtmlModel *model) {
            return model->variables.size() <= univIndex;
        });
        for (const HtmlModel *model : unfinished) addRecord(list, *model, univIndex);
    }
    std::vector<VariableRecord> records;
    for (Column &column : list.columns) {
        std::move(column.rbegin(), column.rend(), std::back_inserter(records));
    }
    return records;
}

std::vector<std::size_t> listQuestions(const std::vector<VariableRecord> &records) {
    std::vector<std::size_t> questions;
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (i == 0 || records[i].field != records[i - 1].field) questions.push_back(i);
    }
    return questions;
}
