// A loaded model document, its arrays, and the names in it. recodings.h and regression.h read the
// rest.
//
// Reading does not stop at an array that is too short: the first shortage is noted in the document,
// and the exporter goes on and asks once, when it has read all that it needs and before it writes
// anything, whether there was a problem.
#pragma once

#include "xml/base64.h"
#include "xml/xml_node.h"

#include <QString>

#include <memory_resource>
#include <span>
#include <vector>

struct ModelDocument {
    QString fileName;
    XmlNode root;           // the element "QRV_Model"
    XmlParseResult reading; // a warning tells of a document that is cut off or lacks end tags
    QString problem;        // the first reason why the document cannot be converted; else empty
    Base64Decoder decoder;  // reused for all arrays
};

// The element of that name at the top of a parsed file. Without XML declaration, the parser returns
// that element itself instead of one that holds it.
XmlNode rootElement(const XmlNode &parsed, QStringView name);

// Loads a model document. Without a readable file, an acceptable document or a "QRV_Model" in it
// the root is empty and the problem says why.
ModelDocument loadModel(const QString &fileName);

// The size that an output of this document seldom exceeds, in UTF-16 units.
qsizetype expectedOutput(const ModelDocument &document);

// Takes down why the document cannot be converted, unless another reason came first.
void noteProblem(ModelDocument &document, const QString &problem);

// How messages call the element that an array belongs to.
QString describe(const XmlNode &node);

// Why a model cannot be converted, as one line.
QString problemMessage(const QString &fileName, const QString &problem);

// Prints as one line why a model cannot be converted, and returns exitUnusableModel.
int reportProblem(const QString &fileName, const QString &problem);
inline int reportProblem(const ModelDocument &document) {
    return reportProblem(document.fileName, document.problem);
}

// The version of the workbench that wrote the document.
QStringView modelVersion(const ModelDocument &document);

// --- Arrays

// Reads the child `array` of `owner`, which holds 64-bit numbers, in place of `values`; an absent
// one has none. One of less than `needed` values is a problem, and is filled up with zeros.
void readNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                 std::size_t needed, std::pmr::vector<double> &values);

// The same for 32-bit integers, of which an array of any length will do.
void readIntegers(ModelDocument &document, const XmlNode &owner, QStringView array,
                  std::vector<int> &values);

// Decodes the child `array` of `owner`, which holds 64-bit numbers, to where its text stands: where
// there was a number, the text is absent from then on. The numbers are valid as long as the
// document.
std::span<const double> takeNumbers(ModelDocument &document, const XmlNode &owner,
                                    QStringView array);

// Notes a problem when the child `array` of `owner` has fewer numbers than are needed.
void requireNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                    std::size_t count, std::size_t needed);

// --- Names

// The text with each of the characters of `replaced` turned into "_".
QString cleanName(QStringView text, QStringView replaced);

// The name of the target column, cleaned, and "_"; empty without a target.
QString targetPrefix(const ModelDocument &document, QStringView replaced);
