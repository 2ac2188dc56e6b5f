#include "model/model_document.h"

#include "model/output_file.h"
#include "xml/platform.h"

#include <QHash>

#include <algorithm>
#include <bit>
#include <cstring>
#include <unordered_map>

using namespace Qt::Literals::StringLiterals;

static_assert(std::endian::native == std::endian::little, "arrays are read as they stand");

namespace {

// How messages call the element that an array belongs to.
QString describe(const XmlNode &node) {
    if (!equalsIgnoringCase(node.name(), u"Model")) return node.name().toString();
    return u"model '%1' (field '%2')"_s.arg(node.attribute(u"name"), node.attribute(u"field"));
}

template <typename T>
void decodeArray(ModelDocument &document, QStringView text, std::vector<T> &values) {
    qsizetype size = 0;
    const unsigned char *const bytes = base64Decode(document.decoder, text, &size);
    values.resize(bytes ? static_cast<std::size_t>(size) / sizeof(T) : 0);
    if (bytes && !values.empty()) std::memcpy(values.data(), bytes, values.size() * sizeof(T));
}

// Notes an array that is shorter than `needed` and fills it up.
void requireValues(ModelDocument &document, std::vector<double> &values, std::size_t needed,
                   const QString &owner, QStringView array) {
    if (values.size() >= needed) return;
    const QString problem = u"%1: array '%2' has %3 values, %4 needed"_s;
    noteProblem(document,
                problem.arg(owner, array, QString::number(values.size()), QString::number(needed)));
    values.resize(needed);
}

void appendValues(const UnivModel &model, std::vector<QStringView> &values) {
    for (const XmlNode &mod : model.node.childNode(u"Modalities").children(u"Mod")) {
        values.push_back(mod.attribute(u"val"));
    }
}

// The score of a missing value is not counted.
std::size_t booleanScoresNeeded(std::size_t values, BooleanScores scores) {
    if (scores == BooleanScores::Both || values > 5) return 2;
    return std::min<std::size_t>(values, 1);
}

struct HashOfName {
    std::size_t operator()(QStringView name) const { return hashIgnoringCase(name); }
};
struct EqualNames {
    bool operator()(QStringView a, QStringView b) const { return equalsIgnoringCase(a, b); }
};
// Positions of lists of missing codes by the names of data fields. Of several fields with one name
// the first counts.
using MissingLists = std::unordered_map<QStringView, std::size_t, HashOfName, EqualNames>;

// Decodes each list once, however many variables share it.
MissingLists readMissingCodes(ModelDocument &document, std::vector<MissingCodes> &lists) {
    const XmlNode dictionary = document.root.childNode(u"DataDictionary");
    MissingLists ofField;
    ofField.reserve(static_cast<std::size_t>(dictionary.childCount()));
    lists.emplace_back();
    for (const XmlNode &field : dictionary.children(u"DataField")) {
        std::size_t list = 0;
        if (const QStringView text = field.childNode(u"Missing").text(); !text.isNull()) {
            list = lists.size();
            MissingCodes &missing = lists.emplace_back();
            missing.isListed = true;
            decodeArray(document, text, missing.codes);
            std::reverse(missing.codes.begin(), missing.codes.end());
        }
        int next = 0;
        for (int before = -1; before != next;) { // a field may have several attributes "name"
            before = next;
            const QStringView name = field.attribute(u"name", &next);
            if (!name.isNull()) ofField.try_emplace(name, list);
        }
    }
    return ofField;
}

} // namespace

XmlNode rootElement(const XmlNode &parsed, QStringView name) {
    const XmlNode root = parsed.childNode(name);
    return root.isEmpty() && equalsIgnoringCase(parsed.name(), name) ? parsed : root;
}

ModelDocument loadModel(const QString &fileName) {
    ModelDocument document;
    document.fileName = fileName;
    XmlParseResult result;
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

void noteProblem(ModelDocument &document, const QString &problem) {
    if (document.problem.isEmpty()) document.problem = problem;
}

int reportProblem(const ModelDocument &document) {
    QString message = u"Cannot convert model '%1': %2."_s.arg(document.fileName, document.problem);
    // Names may hold line ends; the message is one line all the same.
    for (const char16_t lineEnd : {u'\n', u'\r'}) message.replace(lineEnd, u' ');
    printText(message + u'\n');
    return exitUnusableModel;
}

void readNumbers(ModelDocument &document, const XmlNode &owner, QStringView array,
                 std::size_t needed, std::vector<double> &values) {
    decodeArray(document, owner.childNode(array).text(), values);
    if (values.size() < needed) requireValues(document, values, needed, describe(owner), array);
}

void readIntegers(ModelDocument &document, const XmlNode &owner, QStringView array,
                  std::vector<int> &values) {
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

std::vector<UnivModel> readUnivModels(const ModelDocument &document, QStringView replaced) {
    constexpr qsizetype longestName = 31;
    const XmlNode parent = document.root.childNode(u"UnivModels");
    std::vector<UnivModel> models;
    models.reserve(static_cast<std::size_t>(parent.childCount(u"Model")));
    for (const XmlNode &node : parent.children(u"Model")) {
        UnivModel model;
        model.node = node;
        model.position = models.size();
        model.field = node.attribute(u"field");
        model.cleanField = cleanName(model.field, replaced);
        model.recodingName =
            (u'R' + QString::number(models.size()) + u'_' + model.cleanField).left(longestName);
        const QStringView name = node.attribute(u"name");
        model.number = name.size() > 1 ? xmlToInt(name.sliced(1), -1) : -1;
        model.isCategorical = node.attribute(u"type") == u"MapValues";
        models.push_back(std::move(model));
    }
    return models;
}

NumericRecoding Recodings::numeric(const UnivModel &model) const {
    const Record &record = records[model.position];
    const std::span numbersOfModel = std::span(numbers).subspan(record.firstNumber);
    return {.x = numbersOfModel.first(record.bounds),
            .y = numbersOfModel.subspan(record.bounds, record.scores),
            .missing = missingCodes[record.missingList]};
}

CategoricalRecoding Recodings::categorical(const UnivModel &model) const {
    const Record &record = records[model.position];
    return {.values = std::span(values).subspan(record.firstValue, record.values),
            .y = std::span(numbers).subspan(record.firstNumber, record.scores),
            .isBoolean = record.isBoolean};
}

Recodings readRecodings(ModelDocument &document, const std::vector<UnivModel> &models,
                        BooleanScores booleanScores) {
    Recodings all;
    const MissingLists missingLists = readMissingCodes(document, all.missingCodes);
    all.records.reserve(models.size());
    // Room for a document that is nothing but numbers, six bits a character.
    all.numbers.reserve(static_cast<std::size_t>(document.root.sourceLength()) * 6 / 64);
    preferLargePages(all.numbers.data(), all.numbers.capacity() * sizeof(double));
    std::vector<double> array;
    const auto append = [&](const UnivModel &model, QStringView name, std::size_t needed) {
        readNumbers(document, model.node, name, needed, array);
        all.numbers.insert(all.numbers.end(), array.begin(), array.end());
        return array.size();
    };
    for (const UnivModel &model : models) {
        Recodings::Record record{.firstNumber = all.numbers.size(),
                                 .firstValue = all.values.size()};
        if (model.isCategorical) {
            appendValues(model, all.values);
            record.values = all.values.size() - record.firstValue;
            record.isBoolean = model.node.attribute(u"tname") == u"bb64";
            const std::size_t scores = record.isBoolean
                                           ? booleanScoresNeeded(record.values, booleanScores)
                                           : record.values;
            record.scores = append(model, u"y", 1 + scores);
        } else {
            record.bounds = append(model, u"x", 1);
            record.scores = append(model, u"y", record.bounds + 2);
            const QStringView field = model.cleanField;
            const auto found = missingLists.find(field.isNull() ? QStringView(u"") : field);
            if (found != missingLists.end()) record.missingList = found->second;
        }
        all.records.push_back(record);
    }
    return all;
}

Regression readRegression(ModelDocument &document, std::span<const UnivModel> models,
                          ConstantTerm constantTerm) {
    const XmlNode node = document.root.childNode(u"RegressionModel");
    std::vector<int> indexes;
    std::vector<double> betas;
    readIntegers(document, node, u"indexes", indexes);
    const XmlNode list = node.childNode(u"indexes");
    if (list.isEmpty() || (indexes.empty() && !list.text().isNull())) {
        // Without the numbers of its models the regression would be no more than its first beta.
        noteProblem(document, u"RegressionModel: array 'indexes' is absent or holds no number"_s);
    }
    const bool hasConstant = constantTerm == ConstantTerm::Read;
    readNumbers(document, node, u"betas", indexes.size() + (hasConstant ? 1 : 0), betas);

    QHash<int, int> lastOfNumber;
    lastOfNumber.reserve(std::ssize(models));
    for (int k = 0; k < static_cast<int>(models.size()); ++k) {
        lastOfNumber.insert(models[static_cast<std::size_t>(k)].number, k);
    }
    Regression regression;
    regression.terms.reserve(indexes.size());
    for (std::size_t j = 0; j < indexes.size(); ++j) {
        regression.terms.push_back({betas[j], indexes[j], lastOfNumber.value(indexes[j], -1)});
    }
    if (hasConstant) regression.constant = betas[indexes.size()];
    return regression;
}

QStringView recodingName(std::span<const UnivModel> models, const RegressionTerm &term) {
    if (term.model < 0) return {};
    return models[static_cast<std::size_t>(term.model)].recodingName;
}

void requireModels(ModelDocument &document, const Regression &regression) {
    const auto unmatched = std::find_if(regression.terms.begin(), regression.terms.end(),
                                        [](const RegressionTerm &term) { return term.model < 0; });
    if (unmatched != regression.terms.end()) {
        noteProblem(document, u"RegressionModel: array 'indexes' holds %1, which is the number of "
                              "no model"_s.arg(unmatched->index));
    }
}

std::vector<double> modelCoefficients(ModelDocument &document, std::span<const UnivModel> models,
                                      const Regression &regression) {
    QHash<int, double> ofNumber;
    ofNumber.reserve(std::ssize(regression.terms));
    for (const RegressionTerm &term : regression.terms) ofNumber[term.index] = term.coefficient;

    std::vector<double> coefficients;
    coefficients.reserve(models.size());
    for (const UnivModel &model : models) {
        if (document.problem.isEmpty() && !ofNumber.contains(model.number)) {
            noteProblem(document,
                        u"%1: its number is not in the array 'indexes' of RegressionModel"_s.arg(
                            describe(model.node)));
        }
        coefficients.push_back(ofNumber.value(model.number));
    }
    return coefficients;
}

ProbabilityTable readProbabilityTable(ModelDocument &document) {
    const XmlNode node = document.root.childNode(u"ProbabilityMapping");
    ProbabilityTable table;
    table.exists = !node.isEmpty();
    if (table.exists) {
        readNumbers(document, node, u"x", 1, table.x);
        readNumbers(document, node, u"y", table.x.size(), table.y);
    }
    return table;
}

ProbabilitySegment probabilitySegment(const ProbabilityTable &table, std::size_t i) {
    const std::vector<double> &x = table.x;
    const std::vector<double> &y = table.y;
    const double slope = (y[i] - y[i - 1]) / (x[i] - x[i - 1]);
    const double product = x[i] * slope;
    return {x[i], slope, y[i] - product};
}

bool hasLogisticProbability(const ModelDocument &document) {
    return document.root.childNode(u"RegressionModel")
        .attribute(u"normalizationMethod")
        .startsWith(u"so");
}
