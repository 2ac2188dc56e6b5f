// A variable is read whole, at one visit to its element: a large document stays in no cache, and a
// second visit for the arrays would make a SAS script take 3 % longer.
#include "model/recodings.h"

#include "model/number_text.h"
#include "model/target_rules.h"

#include <algorithm>

namespace {

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

// Decodes each list once, however many variables share it. From the last field to the first, each
// takes the place of those behind it, so that the table need not hold the fields without a list:
// with them, a SAS script would take 3 % longer.
MissingDictionary readMissingDictionary(ModelDocument &document) {
    const XmlNode parent = document.root.childNode(u"DataDictionary");
    MissingDictionary dictionary{.positions = MissingDictionary::Positions(document.root.memory())};
    dictionary.lists.emplace_back();
    for (int i = parent.childCount() - 1; i >= 0; --i) {
        const XmlNode field = parent.childAt(i);
        if (!equalsIgnoringCase(field.name(), u"DataField")) continue;
        const bool isListed = !field.childNode(u"Missing").text().isNull();
        if (isListed) {
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
            if (!isListed) {
                dictionary.positions.erase(name);
            } else if (!name.isNull()) {
                dictionary.positions.insert_or_assign(name, dictionary.lists.size() - 1);
            }
        } while (next != before);
    }
    return dictionary;
}

namespace {

// The values of a list.
std::span<const QStringView> readValues(ModelDocument &document, const XmlNode &modalities) {
    const auto most = static_cast<std::size_t>(modalities.childCount());
    if (most == 0) return {};
    auto *const values = static_cast<QStringView *>(
        document.root.memory()->allocate(most * sizeof(QStringView), alignof(QStringView)));
    std::size_t count = 0;
    for (const XmlNode &mod : modalities.children(u"Mod")) {
        new (values + count++) QStringView(mod.attribute(u"val"));
    }
    return {values, count};
}

Variable readVariable(ModelDocument &document, const XmlNode &node) {
    Variable variable;
    variable.node = node;
    variable.name = node.attribute(u"name");
    variable.field = node.attribute(u"field");
    variable.label = node.attribute(u"displayName");
    variable.type = node.attribute(u"type");
    variable.number = variable.name.size() > 1 ? xmlToInt(variable.name.sliced(1), -1) : -1;
    variable.isCategorical = variable.type == u"MapValues";
    variable.isBoolean = variable.isCategorical && node.attribute(u"tname") == u"bb64";
    variable.x = takeNumbers(document, node, u"x");
    variable.y = takeNumbers(document, node, u"y");
    if (variable.isCategorical) {
        variable.values = readValues(document, node.childNode(u"Modalities"));
    }
    return variable;
}

char16_t *allocateUnits(ModelDocument &document, qsizetype count) {
    const std::size_t bytes = static_cast<std::size_t>(count) * sizeof(char16_t);
    return static_cast<char16_t *>(document.root.memory()->allocate(bytes, alignof(char16_t)));
}

// The name with each of the characters of `replaced` turned into "_": in memory of its own, unless
// there is none of them.
QStringView cleanNameIn(ModelDocument &document, QStringView name, QStringView replaced) {
    const auto isReplaced = [&](QChar c) {
        return std::ranges::find(replaced, c) != replaced.end();
    };
    if (std::ranges::none_of(name, isReplaced)) return name;
    char16_t *const clean = allocateUnits(document, name.size());
    for (qsizetype i = 0; i < name.size(); ++i) {
        clean[i] = isReplaced(name[i]) ? u'_' : name[i].unicode();
    }
    return {clean, name.size()};
}

QStringView makeRecodingName(ModelDocument &document, const Variable &variable) {
    const NumberText position = integerText(static_cast<std::int64_t>(variable.position));
    const QStringView field = variable.cleanField;
    const qsizetype size = std::min(2 + position.size + field.size(), longestRecodingName);
    char16_t *const name = allocateUnits(document, size);
    char16_t *end = name;
    *end++ = u'R';
    end = std::copy_n(position.characters, position.size, end);
    *end++ = u'_';
    std::copy_n(field.utf16(), size - (end - name), end);
    return {name, size};
}

} // namespace

// All names are views. Two strings for each variable would cost a SAS script 7 % more instructions.
std::pmr::vector<Variable> readVariables(ModelDocument &document, QStringView replaced) {
    const XmlNode parent = document.root.childNode(u"UnivModels");
    std::pmr::vector<Variable> variables(document.root.memory());
    variables.reserve(static_cast<std::size_t>(parent.childCount()));
    for (const XmlNode &node : parent.children(u"Model")) {
        Variable &variable = variables.emplace_back(readVariable(document, node));
        variable.position = variables.size() - 1;
        variable.cleanField = cleanNameIn(document, variable.field, replaced);
        variable.recodingName = makeRecodingName(document, variable);
    }
    return variables;
}

NumericRecoding Recodings::numeric(const Variable &variable) const {
    const MissingCodes &missing = missingCodes[missingLists[variable.position]];
    return {.x = variable.x, .y = variable.y, .missing = missing};
}

CategoricalRecoding categorical(const Variable &variable) {
    return {.values = variable.values, .y = variable.y, .isBoolean = variable.isBoolean};
}

void requireRecodings(ModelDocument &document, std::span<const Variable> variables,
                      BooleanScores booleanScores) {
    for (const Variable &variable : variables) {
        std::size_t scores = variable.values.size();
        if (!variable.isCategorical) {
            requireNumbers(document, variable.node, u"x", variable.x.size(), 1);
            scores = variable.x.size() + 1;
        } else if (variable.isBoolean) {
            scores = booleanScoresNeeded(scores, booleanScores);
        }
        requireNumbers(document, variable.node, u"y", variable.y.size(), 1 + scores);
    }
}

Recodings readRecodings(ModelDocument &document, std::span<const Variable> variables,
                        BooleanScores booleanScores) {
    requireRecodings(document, variables, booleanScores);
    MissingDictionary dictionary = readMissingDictionary(document);
    std::pmr::vector<std::size_t> missingLists(document.root.memory());
    missingLists.reserve(variables.size());
    for (const Variable &variable : variables) {
        missingLists.push_back(variable.isCategorical ? 0 : dictionary.find(variable.cleanField));
    }
    return {.missingLists = std::move(missingLists), .missingCodes = std::move(dictionary.lists)};
}
