// A loaded model document, its arrays and its names. recodings.h and regression.h read the rest.
// ARCHITECTURE.md lists which results own their memory and which are views.
//
// Reading does not stop at an array that is too short: the reader records the first problem in the
// document and continues. The exporter checks once for a problem, after it has read everything and
// before it writes anything.
#pragma once

#include "xml/base64.h"
#include "xml/xml_node.h"

#include <QString>

#include <vector>

struct ModelDocument {
    QString fileName;
    XmlNode root;               // the element "QRV_Model"
    XmlParseResult parseResult; // a warning if the document is truncated or lacks end tags
    QString problem;            // why the document cannot be converted; empty if it can
    Base64Decoder decoder;      // reused for all arrays
};

// The element of that name at the top of a parsed file. Without an XML declaration, `parsed` is
// that element itself rather than its parent.
XmlNode rootElement(const XmlNode &parsed, QStringView name);

// Loads a model document. If the file cannot be read or parsed, has no element "QRV_Model" or is
// `outputFile` itself, the root is empty and the problem states the reason.
ModelDocument loadModel(const QString &fileName, const QString &outputFile = {});

// Estimated size of an output of this document, in UTF-16 units; seldom exceeded.
qsizetype expectedOutput(const ModelDocument &document);

// Records why the document cannot be converted, unless an earlier reason is recorded.
void noteProblem(ModelDocument &document, const QString &problem);

// How messages name the element that owns an array.
QString describe(const XmlNode &node);

// The one-line message that a model cannot be converted.
QString problemMessage(const QString &fileName, const QString &problem);

// Prints that message and returns exitUnusableModel.
int reportProblem(const QString &fileName, const QString &problem);
inline int reportProblem(const ModelDocument &document) {
    return reportProblem(document.fileName, document.problem);
}

// The version of the workbench that wrote the document.
QStringView modelVersion(const ModelDocument &document);

// --- Arrays

// The 64-bit numbers of the child `array` of `owner`; none if it is absent. Records a problem for a
// text that ends early and for fewer than `needed` numbers; zeros then make up the rest.
std::vector<double> readNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                                std::size_t needed);

// The same for 32-bit integers, of any count.
std::vector<int> readIntegers(ModelDocument &document, const XmlNode &owner, QStringView array);

// The 64-bit numbers of the child `array` of `owner`, decoded over its text; none if it is absent.
// Records a problem for a text that ends early.
std::span<const double> decodeNumbers(ModelDocument &document, const XmlNode &owner,
                                      QStringView array);

// Records a problem if `count`, the numbers in the child `array` of `owner`, is less than `needed`.
void requireNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                    std::size_t count, std::size_t needed);

// --- Names

// The text with "_" in place of each character of `replaced`.
QString cleanName(QStringView text, QStringView replaced);

// The cleaned name of the target column and "_"; empty without a target column.
QString targetPrefix(const ModelDocument &document, QStringView replaced);
