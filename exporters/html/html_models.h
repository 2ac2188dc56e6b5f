// The models that a page scores. They are read completely before anything is written.
#pragma once

#include "model/regression.h"

// The attribute "tkind", in any case: "T", "C" or another.
enum class TargetKind { Probability, Prediction, Other };

// One of the models that the page scores. A document that cannot be read has no variables.
struct HtmlModel {
    int position; // in the list, from 0
    ModelDocument document;
    Variables variables;
    std::vector<std::size_t> regIndex; // of each variable among betas; empty without a regression
    TargetKind targetKind = TargetKind::Other;
    std::vector<double> betas; // coefficients and constant; empty for a model that gets no sum
    ProbabilityTable table;    // y has at least as many values as x, which may have none
    bool endsScript = false;   // where its table would stand
};

// The model of that document, or those of a list. Prints a message and returns none if the file is
// a list without entries. A document that cannot be read is not an error.
std::vector<HtmlModel> readModels(const QString &modelPath);

// Reads the regression and the probability table of each model. Prints a message and returns false
// if the regression of a model lacks one of its variables. Arrays that are too short are noted as
// problems of their documents. Tables after the one that ends the script are not read.
bool readRegressions(std::vector<HtmlModel> &models);
