// The script, and the function that writes each part:
//
// function enterDoubleField(formVal,formUnknown,scoreAr,boundAr)     writeHtmlScript
//       m0_V1_score = enterDoubleField(document.QRVform.m0_V1, …     writeVariableScoreLines
//     var m0_probaTot = mapScoreToProba(0,0                          putModelSum
//         + m0_V1_score * 2
//     drawing.innerHTML= "\                                          putHistogram
// //------------- Column 'Age' ( Age in years ) ------------------   putScoresAndBounds
// var m0_V1_scoreAr = [0.1,-0.2,0.5];                                writeNumberArray
// mapScore[0]  = [3,2,1];                                            putProbabilityTable
// var histogramMaxProba=0.9;                                         writeHtmlScript
#include "exporters/html/scoring_script.h"

#include "exporters/html/scoring_script_text.h"
#include "model/target_rules.h"

#include <algorithm>
#include <optional>
#include <span>

using namespace Qt::Literals::StringLiterals;

namespace {

// Limits of the score lines. Lists of hundreds of models stay below them; browsers do not load much
// longer pages.
constexpr qsizetype mostScoreLines = qsizetype(1) << 23;
constexpr double mostNameCharacters = 1 << 29;

// None for a categorical variable without a list of values.
std::optional<ControlKind> controlKind(const Variable &variable) {
    if (!variable.isCategorical) return ControlKind::NumberField;
    const XmlNode modalities = variable.node.childNode(u"Modalities");
    if (modalities.isEmpty()) return {};
    return htmlReadsList(variable.values.size()) ? ControlKind::List : ControlKind::RadioButtons;
}

void putScoreLines(TextBuffer &out, HtmlPage &page) {
    for (std::size_t i = 0; i < page.records.size(); ++i) {
        const VariableRecord &record = page.records[i];
        const std::optional<ControlKind> kind = controlKind(page.variable(record));
        if (kind) writeVariableScoreLines(out, page, i, *kind);
    }
}

// A model of neither a probability nor a prediction gets terms without a sum, and the page shows an
// error. Frozen for compatibility.
void putModelSum(TextBuffer &out, const HtmlModel &model) {
    if (model.betas.empty()) return;
    const bool isProbability = model.targetKind == TargetKind::Probability;
    const bool isPrediction = model.targetKind == TargetKind::Prediction;
    const int index = model.index;
    const std::size_t count = model.variables.size();

    if (isProbability) {
        put(out, u"\n\tvar m", index, u"_probaTot = mapScoreToProba(", index, u",0");
    } else if (isPrediction) {
        put(out, u"\n\tvar m", index, u"_probaTot = 0");
    }
    for (std::size_t j = 0; j < count; ++j) {
        put(out, u"\n\t\t+ m", index, u"_", model.variables[j].name, u"_score * ",
            model.betas[model.regIndex[j]]);
    }
    if (isProbability || isPrediction) {
        put(out, u"\n\t\t+ ");
        fill(out, isProbability ? QStringView(probabilityEnd) : QStringView(predictionEnd),
             {{u"constant", model.betas[count]}, {u"model", index}});
    }
}

void putHistogram(TextBuffer &out, const std::vector<HtmlModel> &models) {
    fill(out, histogramHead, {{u"models", std::ssize(models)}});
    for (const HtmlModel &model : models) fill(out, histogramBar, {{u"model", model.index}});
    put(out, histogramEnd);
}

void putNumbers(TextBuffer &out, std::span<const double> values) {
    constexpr std::size_t numbersPerLine = 5;
    for (std::size_t k = 0; k < values.size(); ++k) {
        if (k > 0) put(out, u",");
        if (k > 0 && k % numbersPerLine == 0) put(out, u"\n\t\t");
        put(out, values[k]);
    }
}

void putScoresAndBounds(TextBuffer &out, HtmlPage &page) {
    for (std::size_t i = 0; i < page.records.size(); ++i) {
        const VariableRecord &record = page.records[i];
        const Variable &variable = page.variable(record);
        if (i == 0 || record.field != page.records[i - 1].field) {
            put(out, u"//------------- Column '", record.field, u"' ");
            if (!variable.label.isEmpty()) put(out, u"( ", variable.label, u" ) ");
            put(out, u"------------------\n");
        }
        put(out, u"var ", record.jsName, u"_score = 0;\nvar ", record.jsName, u"_scoreAr = ");
        writeNumberArray(out, variable.y);
        if (!variable.isCategorical) {
            put(out, u"var ", record.jsName, u"_boundAr = ");
            writeNumberArray(out, variable.x);
        }
    }
}

void putProbabilityTable(TextBuffer &out, const HtmlModel &model) {
    if (!model.table.exists) return;
    const std::vector<double> &scores = model.table.x;
    put(out, u"mapScore[", model.index, u"]  = [");
    putNumbers(out, scores);
    put(out, u"];\nmapProba[", model.index, u"]  = [");
    putNumbers(out, std::span(model.table.y).first(scores.size()));
    put(out, u"];\n\n");
}

} // namespace

QString scoreLinesProblem(const std::vector<VariableRecord> &records) {
    qsizetype lines = 0;
    double characters = 0; // of names; an integer might overflow
    qsizetype repeats = 0;
    for (std::size_t i = 0; i < records.size(); ++i) {
        const VariableRecord &record = records[i];
        // The k-th record of a column has k lines.
        repeats = i > 0 && record.field == records[i - 1].field ? repeats + 1 : 1;
        lines += repeats;
        characters +=
            double(repeats) * double(3 * record.jsName.size() + 2 * record.formName.size());
    }
    if (lines <= mostScoreLines && characters <= mostNameCharacters) return {};
    return u"the models share columns so often that the script would have %1 score lines"_s.arg(
        lines);
}

void writeHtmlScript(TextBuffer &out, HtmlPage &page) {
    put(out, scriptHead);
    putScoreLines(out, page);
    put(out, sumsHead);
    for (const HtmlModel &model : page.models) putModelSum(out, model);
    putHistogram(out, page.models);
    putScoresAndBounds(out, page);
    put(out, mappingHead);
    double maxProbability = 0;
    for (const HtmlModel &model : page.models) {
        if (model.endsScript) return;
        putProbabilityTable(out, model);
        // The third probability of each table sets the scale, even if there are fewer scores.
        if (model.table.y.size() > 2) maxProbability = std::max(maxProbability, model.table.y[2]);
    }
    put(out, u"var histogramMaxProba=", streamNumber(maxProbability), u";\n");
    put(out, u"\n// -->\n</SCRIPT>\n");
}

void writeVariableScoreLines(TextBuffer &out, const HtmlPage &page, std::size_t index,
                             ControlKind kind) {
    const std::vector<VariableRecord> &records = page.records;
    const QStringView field = records[index].field;
    for (std::size_t i = index; i < records.size() && records[i].field == field; ++i) {
        const QString &name = records[i].jsName;
        const QString &formName = records[i].formName;
        put(out, u"      ", name, u"_score = ");
        switch (kind) {
        case ControlKind::NumberField:
            put(out, u"enterDoubleField(document.QRVform.", formName, u",document.QRVform.unkown_",
                formName, u",", name, u"_scoreAr,", name, u"_boundAr");
            break;
        case ControlKind::List:
            put(out, u"enterModalFieldString(document.QRVform.", formName, u",", name, u"_scoreAr");
            break;
        case ControlKind::Integer:
            put(out, u"enterModalFieldInt(0,", name, u"_scoreAr");
            break;
        case ControlKind::RadioButtons:
            put(out, u"enterModalFieldRadioButton(document.QRVform.", formName, u",", name,
                u"_scoreAr");
            break;
        }
        put(out, u");\n");
    }
}

void writeNumberArray(TextBuffer &out, std::span<const double> values) {
    put(out, u"[");
    putNumbers(out, values);
    put(out, u"];\n\n");
}
