// Detects the errors of all models in the order of their messages: first variables that a
// regression lacks, then arrays that are too short, which are recorded in each document.
#include "exporters/html/html_models.h"

#include "model/target_rules.h"
#include "platform/platform.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

HtmlModel readModel(const XmlNode &parsed, const QString &fileName, qsizetype index) {
    HtmlModel model;
    model.index = static_cast<int>(index);
    model.document.fileName = fileName;
    model.document.root = rootElement(parsed, u"QRV_Model");
    model.variables = readVariables(model.document, replacedCharacters(Target::Html));
    return model;
}

// The index of each number's coefficient; the first one if several share the number.
NumberTable<std::size_t> coefficientIndexes(ModelDocument &document, const XmlNode &regression) {
    const std::vector<int> numbers = readIntegers(document, regression, u"indexes");
    NumberTable<std::size_t> indexes;
    indexes.reserve(numbers.size());
    for (std::size_t k = 0; k < numbers.size(); ++k) indexes.try_emplace(numbers[k], k);
    return indexes;
}

bool findCoefficients(HtmlModel &model) {
    const XmlNode regression = model.document.root.childNode(u"RegressionModel");
    if (regression.isEmpty() || model.variables.empty()) return true;
    const auto indexes = coefficientIndexes(model.document, regression);
    model.regIndex.reserve(model.variables.size());
    for (const Variable &variable : model.variables) {
        const auto found = indexes.find(variable.number);
        if (found == indexes.end()) {
            // The number after "model" is the variable's index, because users' scripts expect it.
            printText(u"Couldn't find regression index of var %1 in model %2!\n"_s.arg(
                variable.name, QString::number(variable.index)));
            return false;
        }
        model.regIndex.push_back(found->second);
    }
    return true;
}

TargetKind readTargetKind(const XmlNode &metaData) {
    const QStringView kind = metaData.attribute(u"tkind");
    return equalsIgnoringCase(kind, u"T")   ? TargetKind::Probability
           : equalsIgnoringCase(kind, u"C") ? TargetKind::Prediction
                                            : TargetKind::Other;
}

// The constant is read after one coefficient per variable, even if variables share coefficients. A
// model of neither a probability nor a prediction needs none.
void readBetas(HtmlModel &model) {
    const XmlNode &root = model.document.root;
    const XmlNode metaData = root.childNode(u"MetaData");
    const XmlNode regression = root.childNode(u"RegressionModel");
    if (metaData.isEmpty() || regression.childNode(u"betas").isEmpty() || model.regIndex.empty()) {
        return;
    }
    model.targetKind = readTargetKind(metaData);
    const bool hasConstant = model.targetKind != TargetKind::Other;
    const std::size_t constant = hasConstant ? model.variables.size() : 0;
    model.betas = readNumbers(model.document, regression, u"betas",
                              std::max(std::ranges::max(model.regIndex), constant) + 1);
}

void readTable(HtmlModel &model) {
    const XmlNode mapping = model.document.root.childNode(u"ProbabilityMapping");
    const bool lacksArray = mapping.childNode(u"x").isEmpty() || mapping.childNode(u"y").isEmpty();
    model.table.exists = !mapping.isEmpty() && !lacksArray;
    model.endsScript = model.document.root.isEmpty() || (!mapping.isEmpty() && lacksArray);
    if (!model.table.exists) return;
    model.table.x = readNumbers(model.document, mapping, u"x", 0);
    model.table.y = readNumbers(model.document, mapping, u"y", model.table.x.size());
}

} // namespace

std::vector<HtmlModel> readModels(const QString &modelPath) {
    const XmlNode parsed = XmlNode::parseFile(modelPath);
    const XmlNode list = rootElement(parsed, u"Models");
    std::vector<HtmlModel> models;
    if (list.isEmpty()) {
        models.push_back(readModel(parsed, modelPath, 0));
        return models;
    }
    for (const XmlNode &entry : list.children(u"Model")) {
        const QString fileName = entry.attribute(u"file").toString();
        models.push_back(readModel(XmlNode::parseFile(fileName), fileName, std::ssize(models)));
    }
    if (models.empty()) {
        printText(u"Couldn't find tag 'Model' in XML-Models file '%1'!"_s.arg(modelPath));
    }
    return models;
}

bool readRegressions(std::vector<HtmlModel> &models) {
    if (!std::ranges::all_of(models, findCoefficients)) return false;
    std::ranges::for_each(models, readBetas);
    for (HtmlModel &model : models) {
        readTable(model);
        if (model.endsScript) break;
    }
    return true;
}
