// Readers return views into the tree, and arrays. All arrays are decoded in one buffer, then copied
// to aligned memory.
#include "model/model_document.h"

#include "model/exit_status.h"
#include "platform/platform.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

using namespace Qt::Literals::StringLiterals;

static_assert(std::endian::native == std::endian::little, "arrays are copied byte by byte");

namespace {

// Padding inside an array leaves zeros, which would silently change the model.
void requireWhole(ModelDocument &document, const XmlNode &owner, QStringView array,
                  std::size_t whole, std::size_t total) {
    if (whole >= total) return;
    const QString problem = u"%1: array '%2' ends early: %3 of %4 numbers"_s;
    noteProblem(document, problem.arg(describe(owner), array, QString::number(whole),
                                      QString::number(total)));
}

// Ignores the bytes after the last complete number.
template <typename Number>
std::vector<Number> decodeArray(ModelDocument &document, const XmlNode &owner, QStringView array) {
    const XmlNode node = owner.childNode(array);
    qsizetype size = 0;
    XmlError warning = XmlError::NoError;
    const unsigned char *const bytes = base64Decode(document.decoder, node.text(), &size, &warning);
    const std::size_t count = bytes ? static_cast<std::size_t>(size) / sizeof(Number) : 0;
    if (warning == XmlError::Base64Truncated) {
        const auto whole = static_cast<std::size_t>(base64BytesBeforePadding(node.text()));
        requireWhole(document, owner, array, whole / sizeof(Number), count);
    }
    std::vector<Number> values(count);
    if (count > 0) std::memcpy(values.data(), bytes, count * sizeof(Number));
    return values;
}

} // namespace

XmlNode rootElement(const XmlNode &parsed, QStringView name) {
    const XmlNode root = parsed.childNode(name);
    return root.isEmpty() && equalsIgnoringCase(parsed.name(), name) ? parsed : root;
}

ModelDocument loadModel(const QString &fileName, const QString &outputFile) {
    ModelDocument document;
    document.fileName = fileName;
    if (isSameFile(fileName, outputFile)) {
        document.problem = u"the output would overwrite it"_s;
        return document;
    }
    XmlParseResult &result = document.parseResult;
    const XmlNode top = XmlNode::parseFile(fileName, {}, &result);
    if (top.isEmpty()) {
        document.problem = QString::fromLatin1(xmlErrorMessage(result.error));
        if (result.line > 0) {
            document.problem += u" at line %1, column %2"_s.arg(result.line).arg(result.column);
        }
        return document;
    }
    document.root = rootElement(top, u"QRV_Model");
    if (document.root.isEmpty()) document.problem = u"no element 'QRV_Model' found"_s;
    return document;
}

qsizetype expectedOutput(const ModelDocument &document) {
    return 4 * document.root.sourceLength();
}

QStringView modelVersion(const ModelDocument &document) {
    return document.root.childNode(u"Header").attribute(u"version");
}

void noteProblem(ModelDocument &document, const QString &problem) {
    if (document.problem.isEmpty()) document.problem = problem;
}

QString describe(const XmlNode &node) {
    if (!equalsIgnoringCase(node.name(), u"Model")) return node.name().toString();
    return u"model '%1' (field '%2')"_s.arg(node.attribute(u"name"), node.attribute(u"field"));
}

QString problemMessage(const QString &fileName, const QString &problem) {
    QString message = u"Cannot convert model '%1': %2."_s.arg(fileName, problem);
    // Names may contain line ends, but the message is one line.
    for (const char16_t lineEnd : {u'\n', u'\r'}) message.replace(lineEnd, u' ');
    return message + u'\n';
}

int reportProblem(const QString &fileName, const QString &problem) {
    printText(problemMessage(fileName, problem));
    return exitUnusableModel;
}

std::span<const double> decodeNumbers(ModelDocument &document, const XmlNode &owner,
                                      QStringView array) {
    std::size_t whole = SIZE_MAX;
    const std::span numbers = owner.childNode(array).decodeNumbers(document.decoder, &whole);
    requireWhole(document, owner, array, whole, numbers.size());
    return numbers;
}

void requireNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                    std::size_t count, std::size_t needed) {
    if (count >= needed) return;
    const QString problem = u"%1: array '%2' has %3 values, %4 needed"_s;
    noteProblem(document, problem.arg(describe(owner), array, QString::number(count),
                                      QString::number(needed)));
}

std::vector<double> readNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                                std::size_t needed) {
    std::vector<double> values = decodeArray<double>(document, owner, array);
    if (values.empty()) { // maybe decoded over their text by an earlier call
        const std::span<const double> decoded = decodeNumbers(document, owner, array);
        values.assign(decoded.begin(), decoded.end());
    }
    requireNumbers(document, owner, array, values.size(), needed);
    if (values.size() < needed) values.resize(needed);
    return values;
}

std::vector<int> readIntegers(ModelDocument &document, const XmlNode &owner, QStringView array) {
    return decodeArray<int>(document, owner, array);
}

QString cleanName(QStringView text, QStringView replaced) {
    QString name = text.toString();
    for (QChar &c : name) {
        if (std::find(replaced.begin(), replaced.end(), c) != replaced.end()) c = u'_';
    }
    return name;
}

QString targetPrefix(const ModelDocument &document, QStringView replaced) {
    const QStringView target = document.root.childNode(u"MetaData").childNode(u"Target").text();
    return target.isEmpty() ? QString() : cleanName(target, replaced) + u'_';
}
