// A loaded model document, its arrays, and the names in it. recodings.h and regression.h read the
// rest. ARCHITECTURE.md says which results own their memory and which are views.
//
// Reading does not stop at an array that is too short: the reader notes the first problem in the
// document and goes on. When the exporter has read everything that it needs, and before it writes
// anything, it asks once whether there was a problem.
#pragma once

#include "xml/base64.h"
#include "xml/xml_node.h"

#include <QString>

#include <vector>

struct ModelDocument {
    QString fileName;
    XmlNode root;           // the element "QRV_Model"
    XmlParseResult reading; // a warning if the document is truncated or lacks end tags
    QString problem;        // the first reason why the document cannot be converted; else empty
    Base64Decoder decoder;  // reused for all arrays
};

// The element of that name at the top of a parsed file. Without an XML declaration, the parser
// returns that element itself instead of one that contains it.
XmlNode rootElement(const XmlNode &parsed, QStringView name);

// Loads a model document. If the file cannot be read or parsed, has no element "QRV_Model" or is
// `outputFile` itself, the root is empty and the problem says why.
ModelDocument loadModel(const QString &fileName, const QString &outputFile = {});

// Estimated size of an output of this document, in UTF-16 units; seldom exceeded.
qsizetype expectedOutput(const ModelDocument &document);

// Notes why the document cannot be converted, unless an earlier reason is noted already.
void noteProblem(ModelDocument &document, const QString &problem);

// The name by which messages call the element that an array belongs to.
QString describe(const XmlNode &node);

// The message that a model cannot be converted, as one line.
QString problemMessage(const QString &fileName, const QString &problem);

// Prints that message and returns exitUnusableModel.
int reportProblem(const QString &fileName, const QString &problem);
inline int reportProblem(const ModelDocument &document) {
    return reportProblem(document.fileName, document.problem);
}

// The version of the workbench that wrote the document.
QStringView modelVersion(const ModelDocument &document);

// --- Arrays

// The 64-bit numbers of the child `array` of `owner`; none if it is absent. Fewer than `needed` are
// a problem, and zeros are appended; so is a text that ends early. Not for the arrays of a
// Variable, whose text is gone.
std::vector<double> readNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                                std::size_t needed);

// The same for 32-bit integers; an array of any length is acceptable.
std::vector<int> readIntegers(ModelDocument &document, const XmlNode &owner, QStringView array);

// The 64-bit numbers of the child `array` of `owner`, which take the place of its text; none if it
// is absent. A text that ends early is a problem.
std::span<const double> decodeNumbers(ModelDocument &document, const XmlNode &owner,
                                      QStringView array);

// Notes a problem if the child `array` of `owner` has fewer numbers than needed.
void requireNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                    std::size_t count, std::size_t needed);

// --- Names

// The text with "_" in place of each character of `replaced`.
QString cleanName(QStringView text, QStringView replaced);

// The cleaned name of the target column and "_"; empty without a target.
QString targetPrefix(const ModelDocument &document, QStringView replaced);
