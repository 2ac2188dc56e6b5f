// read_model MODEL: the work that every target requires. Reads the document and formats each of its
// numbers once.
#include "model/number_text.h"
#include "model/regression.h"

int main(int argc, char **argv) {
    if (argc < 2) return 1;
    ModelDocument document = loadModel(QString::fromLocal8Bit(argv[1]));
    const Variables variables = readVariables(document, u" .");
    const Recodings recodings = readRecodings(document, variables);
    const Regression regression = readRegression(document, variables);
    const ProbabilityTable table = readProbabilityTable(document);
    qsizetype size = 0;
    for (const Variable &variable : variables) {
        for (const double number : variable.x) size += modelNumber(number).size;
        for (const double number : variable.y) size += modelNumber(number).size;
    }
    for (const MissingCodes &missing : recodings.missingCodes) {
        for (const double code : missing.codes) size += modelNumber(code).size;
    }
    for (const RegressionTerm &term : regression.terms) size += modelNumber(term.coefficient).size;
    for (const double number : table.x) size += modelNumber(number).size;
    for (const double number : table.y) size += modelNumber(number).size;
    return document.problem.isEmpty() && size > 0 ? 0 : 1;
}
