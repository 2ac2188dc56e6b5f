// The models that a page scores, read completely before anything is written.
#pragma once

#include "model/regression.h"

// The attribute "tkind", in any case: "T", "C" or another.
enum class TargetKind { Probability, Prediction, Other };

// One of the models that the page scores. A document that cannot be read has no variables.
struct HtmlModel {
    int index; // in the list, from 0
    ModelDocument document;
    Variables variables;
    std::vector<std::size_t> regIndex; // by variable; empty without a regression
    TargetKind targetKind = TargetKind::Other;
    std::vector<double> betas; // coefficients and constant; empty for a model without a sum
    ProbabilityTable table;    // may have no points
    bool endsScript = false;   // the script ends at its table
};

// The model of that document, or those of a list. Prints a message and returns none for a list
// without entries. A document that cannot be read is not an error.
std::vector<HtmlModel> readModels(const QString &modelPath);

// Reads the regression and the probability table of each model. Prints a message and returns false
// if the regression of a model lacks one of its variables. Records arrays that are too short as
// problems of their documents. Does not read tables after the one that ends the script.
bool readRegressions(std::vector<HtmlModel> &models);
