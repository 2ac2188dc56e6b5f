// A module, and the function that writes each part. Long fixed texts are in vba_text.h.
//
// ' *  QORVALIS v4.2.1 auto-generated model         *        putBanner
//      variableNames(1)="Age"                                 putInitialisation
// '   computing recoding 'R0_Age'                             putHeading
//    Select case CDbl(myCell)                                 putNumeric
//     Case Is <18
//   Select case Trim(ActiveWorkbook.Worksheets(…              putCategorical
// '  vdebug(1) = R0_Age                                       putScore
//         + 2* R0_Age                                         putTerms
//    Case Is > 3                                              putProbability
//          Case Is <18                                        putRangeChecks
#include "exporters/vba/vba_exporter.h"

#include "exporters/vba/vba_text.h"
#include "model/banner.h"
#include "model/regression.h"
#include "model/target_rules.h"
#include "model/text_buffer.h"
#include "model/write_output.h"

namespace {

const BannerText banner = {vbaBanner, u"' *  ", u"            *\n", vbaBannerEnd};
constexpr int mostLinesOfStatement = 24;

// The variable's index in the module's arrays, which start at 1.
std::ptrdiff_t slotOf(const Variable &variable) {
    return static_cast<std::ptrdiff_t>(variable.index) + 1;
}

// `routine`, "Function" or "Sub", is what the code exits if it does not find a sheet or a title.
void putInitialisation(TextBuffer &out, std::span<const Variable> variables, QStringView routine) {
    fill(out, vbaInitialisation, {{u"exit", routine}, {u"count", std::ssize(variables)}});
    for (const Variable &variable : variables) {
        put(out, u"     variableNames(", slotOf(variable), u")=\"", escapeQuotes(variable.field),
            u"\"\n");
    }
    fill(out, vbaTitleSearch, {{u"exit", routine}});
}

// The module reads the text that a cell shows, and a truth value shows as True or False.
QStringView shownInCell(QStringView value) {
    if (value == u"TRUE") return u"True";
    if (value == u"FALSE") return u"False";
    return value;
}

void putCategorical(TextBuffer &out, const Variable &variable,
                    const CategoricalRecoding &recoding) {
    const QStringView name = variable.recodingName;
    fill(out, vbaCategoryOfCell,
         {{u"recoding", name}, {u"unknown", recoding.y[0]}, {u"slot", slotOf(variable)}});
    for (std::size_t i = 0; i < recoding.values.size(); ++i) {
        const QStringView value = recoding.values[i];
        if (recoding.isBoolean) {
            put(out, u"    Case Is =\"", escapeQuotes(value));
        } else {
            put(out, u"    Case Is = \"", escapeQuotes(shownInCell(value)));
        }
        put(out, u"\"\n      ", name, u"=", recoding.score(i), u"\n");
    }
    put(out, u"   End Select\n");
}

// The recoding starts as the score of a missing value and keeps it if the cell is empty, is not a
// number or equals the only bound.
void putNumeric(TextBuffer &out, const Variable &variable, const NumericRecoding &recoding) {
    const QStringView name = variable.recodingName;

    fill(out, vbaNumberOfCell,
         {{u"recoding", name}, {u"unknown", recoding.scoreMissing()}, {u"slot", slotOf(variable)}});
    for (const double code : recoding.missing.codes) {
        put(out, u"    Case Is =", streamNumber(code), u"\n", name, u" = ", recoding.scoreMissing(),
            u"\n");
    }
    put(out, u"    Case Is <", recoding.x.front(), u"\n      ", name, u"=", recoding.scoreBelow(),
        u"\n");
    put(out, u"    Case Is >", recoding.x.back(), u"\n      ", name, u"=", recoding.scoreAbove(),
        u"\n");
    forEachInnerBin(recoding, [&](double bound, double score) {
        put(out, u"    Case Is <=", bound, u"\n      ", name, u"=", score, u"\n");
    });
    put(out, u"   End Select\n  End If\n");
}

void putHeading(TextBuffer &out, const Variable &variable) {
    fill(out, vbaRecodingHead,
         {{u"recoding", variable.recodingName},
          {u"type", variable.type},
          {u"label", variable.label}});
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

// VBA limits the lines of a statement, so a long sum needs several statements.
void putTerms(TextBuffer &out, std::span<const Variable> variables, const Regression &regression) {
    put(out, u"\n\n'   computing the regression Model\n  score = ", regression.constant);
    int lines = 2;
    for (const RegressionTerm &term : regression.terms) {
        if (lines != mostLinesOfStatement) {
            put(out, u" _\n");
            ++lines;
        } else {
            put(out, u"\n score  = score _\n");
            lines = 1;
        }
        put(out, u"        + ", term.coefficient, u"* ", recodingName(variables, term));
    }
    put(out, u"\n\n");
}

void putScore(TextBuffer &out, std::span<const Variable> variables, const Regression &regression) {
    put(out, u"\n\n'  for debug:\n'  Dim vdebug(", std::ssize(regression.terms), u") As Double\n");
    std::ptrdiff_t line = 0;
    for (const RegressionTerm &term : regression.terms) {
        put(out, u"'  vdebug(", ++line, u") = ", recodingName(variables, term), u"\n");
    }
    putTerms(out, variables, regression);
}

void putProbability(TextBuffer &out, const ProbabilityTable &table) {
    if (!table.exists) {
        put(out, u"  QorvPrediction_1 = score\n");
        return;
    }
    const std::size_t last = table.x.size() - 1;
    put(out, u"'  computing the probability\n   Dim proba as Double\n   proba=0\n");
    put(out, u"   Select Case score\n");
    put(out, u"   Case Is > ", table.x[0], u"\n    proba=", table.y[0], u"\n");
    put(out, u"   Case Is < ", table.x[last], u"\n    proba=", table.y[last], u"\n");
    forEachSegment(table, LastSegment::LeftOut, [&](const ProbabilitySegment &segment) {
        put(out, u"   Case Is > ", segment.threshold, u"\n    proba=", segment.intercept,
            u"+ score*", segment.slope, u"\n");
    });
    put(out, u"End Select\n  QorvPrediction_1 = proba\n");
}

void putRangeChecks(TextBuffer &out, std::span<const Variable> variables) {
    for (const Variable &variable : variables) {
        if (variable.isCategorical) continue;
        fill(out, vbaRangeCheck,
             {{u"recoding", variable.recodingName},
              {u"slot", slotOf(variable)},
              {u"lowest", variable.x.front()},
              {u"highest", variable.x.back()}});
    }
}

} // namespace

int exportToVba(const QString &modelFile, const QString &moduleFile) {
    ModelDocument document = loadModel(modelFile, moduleFile);
    if (!document.problem.isEmpty()) return reportProblem(document);
    const Variables variables = readVariables(document, replacedCharacters(Target::Vba));
    const Recodings recodings = readRecodings(document, variables);
    const Regression regression = readRegression(document, variables);
    const ProbabilityTable table = readProbabilityTable(document);
    if (!document.problem.isEmpty()) return reportProblem(document);

    return writeScript(moduleFile, [&](TextBuffer &out) {
        put(out, vbaDeclarations);
        putBanner(out, document, variables, banner);
        put(out, vbaFunctionHead);
        putInitialisation(out, variables, u"Function");
        put(out, vbaRowDeclarations);
        putRecodings(out, variables, recodings);
        putScore(out, variables, regression);
        putProbability(out, table);
        put(out, vbaRangeHead);
        putInitialisation(out, variables, u"Sub");
        put(out, vbaRangeRows);
        putRangeChecks(out, variables);
        put(out, vbaRangeEnd);
    });
}
