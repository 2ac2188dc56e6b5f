// All bounds and scores go into one list and all values into another, in document order; a record
// for each variable says where its own begin. So no variable takes memory of its own.
#include "model/recodings.h"

#include "platform/platform.h"

#include <algorithm>
#include <unordered_map>

namespace {

void listValues(const Variable &variable, std::vector<QStringView> &values) {
    for (const XmlNode &mod : variable.node.childNode(u"Modalities").children(u"Mod")) {
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
            readNumbers(document, field, u"Missing", 0, missing.codes);
            std::reverse(missing.codes.begin(), missing.codes.end());
        }
        int next = 0;
        int before = 0;
        do { // a field may have several attributes "name"
            before = next;
            const QStringView name = field.attribute(u"name", &next);
            if (!name.isNull()) ofField.try_emplace(name, list);
        } while (next != before);
    }
    return ofField;
}

} // namespace

std::vector<Variable> readVariables(const ModelDocument &document, QStringView replaced) {
    constexpr qsizetype longestName = 31;
    const XmlNode parent = document.root.childNode(u"UnivModels");
    std::vector<Variable> variables;
    variables.reserve(static_cast<std::size_t>(parent.childCount(u"Model")));
    for (const XmlNode &node : parent.children(u"Model")) {
        Variable variable;
        variable.node = node;
        variable.position = variables.size();
        variable.field = node.attribute(u"field");
        variable.cleanField = cleanName(variable.field, replaced);
        variable.recodingName =
            (u'R' + QString::number(variables.size()) + u'_' + variable.cleanField)
                .left(longestName);
        const QStringView name = node.attribute(u"name");
        variable.number = name.size() > 1 ? xmlToInt(name.sliced(1), -1) : -1;
        variable.isCategorical = node.attribute(u"type") == u"MapValues";
        variable.isBoolean = variable.isCategorical && node.attribute(u"tname") == u"bb64";
        variables.push_back(std::move(variable));
    }
    return variables;
}

NumericRecoding Recodings::numeric(const Variable &variable) const {
    const Record &record = records[variable.position];
    const std::span numbersOfVariable = std::span(numbers).subspan(record.firstNumber);
    return {.x = numbersOfVariable.first(record.boundCount),
            .y = numbersOfVariable.subspan(record.boundCount, record.scoreCount),
            .missing = missingCodes[record.missingList]};
}

CategoricalRecoding Recodings::categorical(const Variable &variable) const {
    const Record &record = records[variable.position];
    return {.values = std::span(values).subspan(record.firstValue, record.valueCount),
            .y = std::span(numbers).subspan(record.firstNumber, record.scoreCount),
            .isBoolean = variable.isBoolean};
}

Recodings readRecodings(ModelDocument &document, const std::vector<Variable> &variables,
                        BooleanScores booleanScores) {
    Recodings all;
    const MissingLists missingLists = readMissingCodes(document, all.missingCodes);
    all.records.reserve(variables.size());
    // Room for a document that is nothing but numbers, six bits a character.
    all.numbers.reserve(static_cast<std::size_t>(document.root.sourceLength()) * 6 / 64);
    preferLargePages(all.numbers.data(), all.numbers.capacity() * sizeof(double));
    std::vector<double> array;
    const auto read = [&](const Variable &variable, QStringView name, std::size_t needed) {
        readNumbers(document, variable.node, name, needed, array);
        all.numbers.insert(all.numbers.end(), array.begin(), array.end());
        return array.size();
    };
    for (const Variable &variable : variables) {
        Recodings::Record record{.firstNumber = all.numbers.size(),
                                 .firstValue = all.values.size()};
        if (variable.isCategorical) {
            listValues(variable, all.values);
            record.valueCount = all.values.size() - record.firstValue;
            const std::size_t scores = variable.isBoolean
                                           ? booleanScoresNeeded(record.valueCount, booleanScores)
                                           : record.valueCount;
            record.scoreCount = read(variable, u"y", 1 + scores);
        } else {
            record.boundCount = read(variable, u"x", 1);
            record.scoreCount = read(variable, u"y", record.boundCount + 2);
            const QStringView field = variable.cleanField;
            const auto found = missingLists.find(field.isNull() ? QStringView(u"") : field);
            if (found != missingLists.end()) record.missingList = found->second;
        }
        all.records.push_back(record);
    }
    return all;
}
