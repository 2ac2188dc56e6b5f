// All bounds and scores go into one list and all values into another, in document order; a record
// for each variable says where its own begin. So no variable takes memory of its own.
#include "model/recodings.h"

#include "model/number_text.h"

#include <algorithm>

namespace {

void listValues(const Variable &variable, std::pmr::vector<QStringView> &values) {
    for (const XmlNode &mod : variable.node.childNode(u"Modalities").children(u"Mod")) {
        values.push_back(mod.attribute(u"val"));
    }
}

// The score of a missing value is not counted.
std::size_t booleanScoresNeeded(std::size_t values, BooleanScores scores) {
    if (scores == BooleanScores::Both || values > 5) return 2;
    return std::min<std::size_t>(values, 1);
}

} // namespace

std::size_t MissingDictionary::find(QStringView field) const {
    const auto found = positions.find(field.isNull() ? QStringView(u"") : field);
    return found == positions.end() ? 0 : found->second;
}

// Decodes each list once, however many variables share it.
MissingDictionary readMissingDictionary(ModelDocument &document) {
    const XmlNode parent = document.root.childNode(u"DataDictionary");
    MissingDictionary dictionary;
    dictionary.positions.reserve(static_cast<std::size_t>(parent.childCount()));
    dictionary.lists.emplace_back();
    for (const XmlNode &field : parent.children(u"DataField")) {
        std::size_t list = 0;
        if (const QStringView text = field.childNode(u"Missing").text(); !text.isNull()) {
            list = dictionary.lists.size();
            MissingCodes &missing = dictionary.lists.emplace_back();
            missing.isListed = true;
            readNumbers(document, field, u"Missing", 0, missing.codes);
            std::reverse(missing.codes.begin(), missing.codes.end());
        }
        int next = 0;
        int before = 0;
        do { // a field may have several attributes "name"
            before = next;
            const QStringView name = field.attribute(u"name", &next);
            if (!name.isNull()) dictionary.positions.try_emplace(name, list);
        } while (next != before);
    }
    return dictionary;
}

namespace {

constexpr qsizetype longestName = 31;

Variable readVariable(const XmlNode &node) {
    Variable variable;
    variable.node = node;
    variable.name = node.attribute(u"name");
    variable.field = node.attribute(u"field");
    variable.label = node.attribute(u"displayName");
    variable.type = node.attribute(u"type");
    variable.number = variable.name.size() > 1 ? xmlToInt(variable.name.sliced(1), -1) : -1;
    variable.isCategorical = variable.type == u"MapValues";
    variable.isBoolean = variable.isCategorical && node.attribute(u"tname") == u"bb64";
    return variable;
}

// Stores the cleaned name at `end` and moves on behind it. A name that is clean needs no room.
QStringView storeCleanName(QStringView name, QStringView replaced, char16_t *&end) {
    const auto isReplaced = [&](QChar c) {
        return std::ranges::find(replaced, c) != replaced.end();
    };
    if (std::ranges::none_of(name, isReplaced)) return name;
    char16_t *const begin = end;
    for (const QChar c : name) *end++ = isReplaced(c) ? u'_' : c.unicode();
    return {begin, end};
}

// Stores the variable's recoding name at `end` and moves on behind it.
QStringView storeRecodingName(const Variable &variable, char16_t *&end) {
    char16_t *const begin = end;
    const NumberText position = integerText(static_cast<std::int64_t>(variable.position));
    *end++ = u'R';
    end = std::copy_n(position.characters, position.size, end);
    *end++ = u'_';
    const QStringView field = variable.cleanField;
    end = std::copy_n(field.utf16(), std::min(field.size(), longestName - (end - begin)), end);
    return {begin, end};
}

} // namespace

// All names are views into one text. Two strings for each variable would cost a SAS script 7 % more
// instructions.
std::pmr::vector<Variable> readVariables(ModelDocument &document, QStringView replaced) {
    const XmlNode parent = document.root.childNode(u"UnivModels");
    std::pmr::vector<Variable> variables(document.root.memory());
    variables.reserve(static_cast<std::size_t>(parent.childCount()));
    qsizetype room = 0;
    for (const XmlNode &node : parent.children(u"Model")) {
        Variable &variable = variables.emplace_back(readVariable(node));
        variable.position = variables.size() - 1;
        room += variable.field.size() + longestName;
    }
    if (variables.empty()) return variables;
    auto *end = static_cast<char16_t *>(document.root.memory()->allocate(
        static_cast<std::size_t>(room) * sizeof(char16_t), alignof(char16_t)));
    for (Variable &variable : variables) {
        variable.cleanField = storeCleanName(variable.field, replaced, end);
        variable.recodingName = storeRecodingName(variable, end);
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

Recodings readRecodings(ModelDocument &document, std::span<const Variable> variables,
                        BooleanScores booleanScores) {
    std::pmr::memory_resource *const memory = document.root.memory();
    Recodings all{.records = std::pmr::vector<Recodings::Record>(memory),
                  .numbers = std::pmr::vector<double>(memory),
                  .values = std::pmr::vector<QStringView>(memory)};
    MissingDictionary dictionary = readMissingDictionary(document);
    all.records.reserve(variables.size());
    // Room for a document that is nothing but numbers, six bits a character.
    all.numbers.reserve(static_cast<std::size_t>(document.root.sourceLength()) * 6 / 64);
    const auto append = [&](const Variable &variable, QStringView name, std::size_t needed) {
        return appendNumbers(document, variable.node, name, needed, all.numbers);
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
            record.scoreCount = append(variable, u"y", 1 + scores);
        } else {
            record.boundCount = append(variable, u"x", 1);
            record.scoreCount = append(variable, u"y", record.boundCount + 2);
            record.missingList = dictionary.find(variable.cleanField);
        }
        all.records.push_back(record);
    }
    all.missingCodes = std::move(dictionary.lists);
    return all;
}
