// The tree stays the model: what is read are views into it and decoded arrays, some of them in
// place of their texts. Arrays are decoded into one buffer and copied from there to where they are
// aligned.
#include "model/model_document.h"

#include "model/exit_status.h"
#include "platform/platform.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <span>

using namespace Qt::Literals::StringLiterals;

static_assert(std::endian::native == std::endian::little, "arrays are read as they stand");

namespace {

// The bytes of an array, as they were decoded, up to the last whole number of `numberSize` bytes.
// They stay until the next array is decoded.
std::span<const unsigned char> decodeArray(ModelDocument &document, QStringView text,
                                           std::size_t numberSize) {
    qsizetype size = 0;
    const unsigned char *const bytes = base64Decode(document.decoder, text, &size);
    const std::size_t count = bytes ? static_cast<std::size_t>(size) / numberSize : 0;
    return {bytes, count * numberSize};
}

// Puts the numbers in place of `values` and fills up with zeros to `needed`.
template <typename Values>
void copyNumbers(std::span<const unsigned char> bytes, std::size_t needed, Values &values) {
    constexpr std::size_t numberSize = sizeof(typename Values::value_type);
    values.assign(std::max(bytes.size() / numberSize, needed), 0);
    if (!bytes.empty()) std::memcpy(values.data(), bytes.data(), bytes.size());
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

void requireNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                    std::size_t count, std::size_t needed) {
    if (count >= needed) return;
    const QString problem = u"%1: array '%2' has %3 values, %4 needed"_s;
    noteProblem(document, problem.arg(describe(owner), array, QString::number(count),
                                      QString::number(needed)));
}

void readNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                 std::size_t needed, std::pmr::vector<double> &values) {
    const auto bytes = decodeArray(document, owner.childNode(array).text(), sizeof(double));
    requireNumbers(document, owner, array, bytes.size() / sizeof(double), needed);
    copyNumbers(bytes, needed, values);
}

// The numbers take less than half of the memory of their text, which leaves room to align them. In
// memory of their own, a SAS script would need 8 % more of it.
std::span<const double> takeNumbers(ModelDocument &document, const XmlNode &owner,
                                    QStringView array) {
    const XmlNode node = owner.childNode(array);
    const auto bytes = decodeArray(document, node.text(), sizeof(double));
    if (bytes.empty()) return {};
    const std::span<char16_t> text = node.takeText();
    void *place = text.data();
    std::size_t room = text.size_bytes();
    std::align(alignof(double), bytes.size(), place, room);
    std::memcpy(place, bytes.data(), bytes.size());
    return {static_cast<const double *>(place), bytes.size() / sizeof(double)};
}

void readIntegers(ModelDocument &document, const XmlNode &owner, QStringView array,
                  std::vector<int> &values) {
    const auto bytes = decodeArray(document, owner.childNode(array).text(), sizeof(int));
    copyNumbers(bytes, 0, values);
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
