// A script, and the function that writes each part:
//
//  *  QORVALIS v4.2.1 auto-generated model        *    putBanner
//    /* computing recoding 'R0_Age'                     putHeading
//    if (Age=.                                          putMissingTest
//    ) then R0_Age=0.1;                                 putNumeric
//    else if (Age<18) then R0_Age=-0.2;
//    if trim(left(job))="" then R1_job=0.25;            putCategorical
//    Bad_score= 0.5                                     putScore
//         + 2* R0_Age
//    if      (Bad_score>3) then Bad_proba=0.9;          putProbability
//    else if Bad_score>1 then Bad_proba=0.1+ Bad_score*0.2;
//    drop R0_Age;                                       putClosing
#include "exporters/sas/sas_exporter.h"

#include "exporters/sas/sas_text.h"
#include "model/banner.h"
#include "model/regression.h"
#include "model/target_rules.h"
#include "model/text_buffer.h"
#include "model/write_output.h"
#include "platform/platform.h"

#include <algorithm>

namespace {

constexpr int exitUnsupportedRecoding = 1;
const BannerText banner = {sasBanner, u" *  ", u"            *\n", sasBannerEnd};

void putCategorical(TextBuffer &out, const Variable &variable,
                    const CategoricalRecoding &recoding) {
    const QStringView field = variable.cleanField;
    const QStringView name = variable.recodingName;
    const bool hasQuotes = recoding.isBoolean || !sasComparesNumbers(recoding.values);
    const QStringView quote = hasQuotes ? u"\"" : u"";

    put(out, u"   if trim(left(", field, u"))=\"\" then ", name, u"=", recoding.y[0], u";\n");
    for (std::size_t i = 0; i < recoding.values.size(); ++i) {
        const double score = recoding.score(i);
        put(out, u"   else if trim(left(", field, u"))=", quote, escapeQuotes(recoding.values[i]),
            quote, u" then ", name, u"=",
            recoding.isBoolean ? streamNumber(score) : modelNumber(score), u";\n");
    }
    put(out, u"   else ", name, u"=", recoding.y[0], u";\n");
}

// Starts the test for a missing value. With a list of codes, the test lacks its opening "if" and
// the document's last code, which is the first one here. Frozen for compatibility.
void putMissingTest(TextBuffer &out, QStringView field, const MissingCodes &missing) {
    if (!missing.isListed) {
        put(out, u"   if (", field, u"=.");
        return;
    }
    for (std::size_t i = 1; i < missing.codes.size(); ++i) {
        put(out, u"|| (", field, u"==", streamNumber(missing.codes[i]), u")");
    }
}

void putNumeric(TextBuffer &out, const Variable &variable, const NumericRecoding &recoding) {
    const QStringView field = variable.cleanField;
    const QStringView name = variable.recodingName;

    putMissingTest(out, field, recoding.missing);
    put(out, u") then ", name, u"=", recoding.scoreMissing(), u";\n");
    put(out, u"   else if (", field, u"<", recoding.x.front(), u") then ", name, u"=",
        recoding.scoreBelow(), u";\n");
    put(out, u"   else if (", field, u">", recoding.x.back(), u") then ", name, u"=",
        recoding.scoreAbove(), u";\n");
    forEachInnerBin(recoding, [&](double bound, double score) {
        put(out, u"   else if (", field, u"<=", bound, u") then ", name, u"=", score, u";\n");
    });
    put(out, u"   else ", name, u"=", recoding.scoreMissing(), u"; /* default */\n\n");
}

void putHeading(TextBuffer &out, const Variable &variable) {
    put(out, u"\n   /* computing recoding '", variable.recodingName, u"'\n      based on the ",
        variable.type, u" column of display name '", variable.label, u"' */\n\n");
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

void putScore(TextBuffer &out, std::span<const Variable> variables, const Regression &regression,
              const QString &prefix) {
    put(out, u"\n\n   /* computing the regression Model */\n   ", prefix, u"score= ",
        regression.constant, u"\n");
    for (std::size_t j = 0; j < regression.terms.size(); ++j) {
        const RegressionTerm &term = regression.terms[j];
        put(out, u"        + ", term.coefficient, u"* ", recodingName(variables, term));
        put(out, j + 1 == regression.terms.size() ? QStringView(u";\n\n") : QStringView(u"\n"));
    }
    put(out, u"\n");
}

void putLogisticProbability(TextBuffer &out, const QString &prefix) {
    put(out, u"   /* computing the probability */\n");
    put(out, u"   ", prefix, u"proba=1/(1+exp(-", prefix, u"score);\n");
}

void putProbability(TextBuffer &out, const ProbabilityTable &table, const QString &prefix) {
    const std::size_t last = table.x.size() - 1;
    put(out, u"   /* computing the probability */\n", u"   ", prefix, u"proba=0;\n");
    put(out, u"   if      (", prefix, u"score>", table.x[0], u") then ", prefix, u"proba=",
        table.y[0], u";\n");
    put(out, u"   else if (", prefix, u"score<", table.x[last], u") then ", prefix, u"proba=",
        table.y[last], u";\n");
    forEachSegment(table, LastSegment::Written, [&](const ProbabilitySegment &segment) {
        put(out, u"   else if ", prefix, u"score>", segment.threshold, u" then ", prefix, u"proba=",
            segment.intercept, u"+ ", prefix, u"score*", segment.slope, u";\n");
    });
}

void putClosing(TextBuffer &out, std::span<const Variable> variables) {
    put(out, sasDropRemark);
    for (const Variable &variable : variables) put(out, u"   drop ", variable.recodingName, u";\n");
    put(out, u"\n/* run; */\n");
}

} // namespace

int exportToSas(const QString &modelFile, const QString &scriptFile) {
    ModelDocument document = loadModel(modelFile, scriptFile);
    if (!document.problem.isEmpty()) return reportProblem(document);
    const QStringView replaced = replacedCharacters(Target::Sas);
    const Variables variables = readVariables(document, replaced);
    if (!std::ranges::all_of(variables, sasSupports, &Variable::type)) {
        printText(u"Unsupported recoding (from RANK)!\n"
                  "Please update Qorv to the latest version.\n");
        return exitUnsupportedRecoding;
    }
    const QString prefix = targetPrefix(document, replaced);
    const Recodings recodings = readRecodings(document, variables);
    const Regression regression = readRegression(document, variables);
    requireVariables(document, regression);
    const ProbabilityTable table = readProbabilityTable(document);
    if (!document.problem.isEmpty()) return reportProblem(document);

    return writeScript(scriptFile, [&](TextBuffer &out) {
        putBanner(out, document, variables, banner);
        putRecodings(out, variables, recodings);
        putScore(out, variables, regression, prefix);
        if (table.exists) {
            putProbability(out, table, prefix);
        } else if (hasLogisticProbability(document)) {
            putLogisticProbability(out, prefix);
        }
        putClosing(out, variables);
    });
}
