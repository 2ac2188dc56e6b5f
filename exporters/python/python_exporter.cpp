// A module, and the function that writes each part:
//
//    QORVALIS v4.2.1 auto-generated model                            putBanner
//         self.dict_R1_job = {"":0.25,"clerk":2}                     putDictionaries
//         Age_Idx=colNames.index('''Age''')                          putColumnLookups
//             # computing recoding 'R0_Age'                          putHeading
//             data = float(df.iloc[line,Age_Idx])                    putNumeric
//             if (isnan(data)or (data==-1):                          putMissingTest
//             elif data < 18:                                        putNumeric
//                 R1_job = self.dict_R1_job[…                        putCategorical
//             s=dfOutScore[line]=0.5 + 2 * R0_Age                    putScore
//             if s>3:                                                putProbability
//         return pd.DataFrame(data={'Bad_score':dfOutScore, …       putReturn
#include "exporters/python/python_exporter.h"

#include "exporters/python/python_text.h"
#include "model/banner.h"
#include "model/regression.h"
#include "model/target_rules.h"
#include "model/text_buffer.h"
#include "model/write_output.h"

#include <algorithm>

namespace {

const BannerText banner = {pythonBanner, u"  ", u"\n", u"'''\n"};

// The last component of the path up to its last full stop, if any, with the slash before it.
QString classNameOf(const QString &modelFile) {
    QString path = modelFile;
    path.replace(u'\\', u'/');
    const qsizetype start = std::max<qsizetype>(path.lastIndexOf(u'/'), 0);
    const qsizetype end = path.lastIndexOf(u'.');
    return path.mid(start, end < start ? -1 : end - start);
}

void putDictionaries(TextBuffer &out, std::span<const Variable> variables) {
    for (const Variable &variable : variables) {
        if (!variable.isCategorical) continue;
        const CategoricalRecoding recoding = categorical(variable);
        // Entries of a boolean column end with a comma; others are separated by commas.
        const QStringView separator = recoding.isBoolean ? u"" : u",";
        const QStringView end = recoding.isBoolean ? u"," : u"";
        put(out, u"        self.dict_", variable.recodingName, u" = {\"\":", recoding.y[0], end);
        for (std::size_t i = 0; i < recoding.values.size(); ++i) {
            put(out, separator, u"\"", escapeQuotes(recoding.values[i]), u"\":", recoding.score(i),
                end);
        }
        put(out, u"}\n");
    }
}

void putColumnLookups(TextBuffer &out, std::span<const Variable> variables) {
    for (const Variable &variable : variables) {
        put(out, u"        ", variable.cleanField, u"_Idx=colNames.index('''", variable.field,
            u"''')\n");
    }
}

void putCategorical(TextBuffer &out, const Variable &variable,
                    const CategoricalRecoding &recoding) {
    const QStringView name = variable.recodingName;
    put(out, u"            try:\n                ", name, u" = self.dict_", name, u"[df.iloc[line,",
        variable.cleanField, u"_Idx].strip()]\n");
    put(out, u"            except KeyError:\n                ", name, u" = ", recoding.y[0],
        u"\n\n");
}

// With codes, the parenthesis after "if" is never closed. Frozen for compatibility.
void putMissingTest(TextBuffer &out, std::span<const double> codes) {
    if (codes.empty()) {
        put(out, u"            if isnan(data):\n");
        return;
    }
    put(out, u"            if (isnan(data)");
    for (const double code : codes) {
        put(out, u"or (data==", streamNumber(code), u")");
    }
    put(out, u":\n");
}

void putNumeric(TextBuffer &out, const Variable &variable, const NumericRecoding &recoding) {
    const QStringView name = variable.recodingName;

    put(out, u"            data = float(df.iloc[line,", variable.cleanField, u"_Idx])\n");
    putMissingTest(out, recoding.missing.codes);
    put(out, u"                ", name, u"=", recoding.scoreMissing(), u"\n");
    put(out, u"            elif data < ", recoding.x.front(), u":\n                ", name, u" = ",
        recoding.scoreBelow(), u"\n");
    put(out, u"            elif data > ", recoding.x.back(), u":\n                ", name, u" = ",
        recoding.scoreAbove(), u"\n");
    forEachInnerBin(recoding, [&](double bound, double score) {
        put(out, u"            elif data <= ", bound, u":\n                ", name, u" = ", score,
            u"\n");
    });
    put(out, u"            else:\n                ", name, u" = ", recoding.scoreMissing(),
        u"\n\n");
}

void putHeading(TextBuffer &out, const Variable &variable) {
    put(out, u"            # computing recoding '", variable.recodingName,
        u"'\n            #based on the ", variable.type, u" column of display name '",
        variable.label, u"'\n");
}

void putRecodings(TextBuffer &out, std::span<const Variable> variables,
                  const Recodings &recodings) {
    for (const Variable &variable : variables) {
        putHeading(out, variable);
        if (variable.isCategorical) {
            putCategorical(out, variable, categorical(variable));
        } else {
            putNumeric(out, variable, recodings.numeric(variable));
        }
    }
}

void putScore(TextBuffer &out, std::span<const Variable> variables, const Regression &regression) {
    put(out, u"\n\n            #computing the regression Model\n");
    put(out, u"            s=dfOutScore[line]=", regression.constant);
    for (const RegressionTerm &term : regression.terms) {
        put(out, u" + ", term.coefficient, u" * ", recodingName(variables, term));
    }
    put(out, u"\n");
}

void putProbability(TextBuffer &out, const ProbabilityTable &table) {
    const std::size_t last = table.x.size() - 1;
    put(out, u"            # computing the probability */\n");
    put(out, u"            if s>", table.x[0], u":\n                dfOutProba[line]=", table.y[0],
        u"\n");
    put(out, u"            elif s<", table.x[last], u":\n                dfOutProba[line]=",
        table.y[last], u"\n");
    forEachSegment(table, LastSegment::LeftOut, [&](const ProbabilitySegment &segment) {
        put(out, u"            elif s>", segment.threshold, u":\n                dfOutProba[line]=",
            segment.intercept, u" + s*", segment.slope, u"\n");
    });
}

void putReturn(TextBuffer &out, bool hasProbability, const QString &prefix) {
    put(out, u"        return pd.DataFrame(data={'", prefix);
    if (hasProbability) {
        put(out, u"score':dfOutScore,'", prefix, u"proba':dfOutProba})");
    } else {
        put(out, u"prediction':dfOutScore})");
    }
}

} // namespace

int exportToPython(const QString &modelFile, const QString &moduleFile, const QString &className) {
    ModelDocument document = loadModel(modelFile, moduleFile);
    if (!document.problem.isEmpty()) return reportProblem(document);
    const QStringView replaced = replacedCharacters(Target::Python);
    const Variables variables = readVariables(document, replaced);
    const Recodings recodings = readRecodings(document, variables);
    const Regression regression = readRegression(document, variables);
    const ProbabilityTable table = readProbabilityTable(document);
    const QString prefix = targetPrefix(document, replaced);
    const QString name = className.isEmpty() ? classNameOf(modelFile) : className;
    const bool isLogistic = !table.exists && hasLogisticProbability(document);
    if (!document.problem.isEmpty()) return reportProblem(document);

    return writeOutput(moduleFile, OutputEncoding::Utf8, [&](TextBuffer &out) {
        putBanner(out, document, variables, banner);
        put(out, pythonImports);
        put(out, u"class QORVModel_", name, u":\n");
        put(out, u"    def __init__(self):\n");
        putDictionaries(out, variables);
        put(out, pythonApply);
        putColumnLookups(out, variables);
        put(out, u"        for line in range(len(df.index)):\n");
        putRecodings(out, variables, recodings);
        putScore(out, variables, regression);
        if (table.exists) putProbability(out, table);
        if (isLogistic) put(out, pythonLogisticProbability);
        putReturn(out, table.exists || isLogistic, prefix);
    });
}
