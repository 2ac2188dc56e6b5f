// The tree stays the model: what is read are views into it and decoded arrays. Arrays are decoded
// into one buffer and copied from there, since a text in the middle of a document is aligned to
// nothing.
#include "model/model_document.h"

#include "model/exit_status.h"
#include "platform/platform.h"

#include <algorithm>
#include <bit>
#include <cstring>

using namespace Qt::Literals::StringLiterals;

static_assert(std::endian::native == std::endian::little, "arrays are read as they stand");

namespace {

// Appends the numbers of an array and returns how many there are.
template <typename Values>
std::size_t decodeArray(ModelDocument &document, QStringView text, Values &values) {
    using T = typename Values::value_type;
    qsizetype size = 0;
    const unsigned char *const bytes = base64Decode(document.decoder, text, &size);
    const std::size_t count = bytes ? static_cast<std::size_t>(size) / sizeof(T) : 0;
    if (count > 0) {
        values.resize(values.size() + count);
        std::memcpy(values.data() + values.size() - count, bytes, count * sizeof(T));
    }
    return count;
}

void noteShortArray(ModelDocument &document, const QString &owner, QStringView array,
                    std::size_t count, std::size_t needed) {
    const QString problem = u"%1: array '%2' has %3 values, %4 needed"_s;
    noteProblem(document,
                problem.arg(owner, array, QString::number(count), QString::number(needed)));
}

} // namespace

XmlNode rootElement(const XmlNode &parsed, QStringView name) {
    const XmlNode root = parsed.childNode(name);
    return root.isEmpty() && equalsIgnoringCase(parsed.name(), name) ? parsed : root;
}

ModelDocument loadModel(const QString &fileName) {
    ModelDocument document;
    document.fileName = fileName;
    XmlParseResult &result = document.reading;
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
    // Names may hold line ends; the message is one line all the same.
    for (const char16_t lineEnd : {u'\n', u'\r'}) message.replace(lineEnd, u' ');
    return message + u'\n';
}

int reportProblem(const QString &fileName, const QString &problem) {
    printText(problemMessage(fileName, problem));
    return exitUnusableModel;
}

std::size_t appendNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                          std::size_t needed, std::pmr::vector<double> &values) {
    const std::size_t count = decodeArray(document, owner.childNode(array).text(), values);
    if (count >= needed) return count;
    noteShortArray(document, describe(owner), array, count, needed);
    values.resize(values.size() + needed - count);
    return needed;
}

void readNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                 std::size_t needed, std::pmr::vector<double> &values) {
    values.clear();
    appendNumbers(document, owner, array, needed, values);
}

void readIntegers(ModelDocument &document, const XmlNode &owner, QStringView array,
                  std::vector<int> &values) {
    values.clear();
    decodeArray(document, owner.childNode(array).text(), values);
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
