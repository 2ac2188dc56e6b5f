// Reads each variable in one pass: a large document does not fit in the cache
// (benchmarks/costs.md: "arrays in a second pass").
#include "model/recodings.h"

#include "model/number_text.h"
#include "model/target_rules.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace {

// Excluding the score of missing values.
std::size_t booleanScoresNeeded(std::size_t values, BooleanScores scores) {
    if (scores == BooleanScores::Both || values > 5) return 2;
    return std::min<std::size_t>(values, 1);
}

} // namespace

std::size_t MissingDictionary::find(QStringView field) const {
    const auto found = indexes.find(field.isNull() ? QStringView(u"") : field);
    return found == indexes.end() ? 0 : found->second;
}

// Decodes each list once, however many variables share it. Walks backwards, so that the first field
// of a name wins; a field without a list then simply erases the entry, which keeps such fields out
// of the table (benchmarks/costs.md: "fields without missing codes").
MissingDictionary readMissingDictionary(ModelDocument &document) {
    const XmlNode parent = document.root.childNode(u"DataDictionary");
    MissingDictionary dictionary{.owner = parent};
    dictionary.lists.emplace_back();
    for (int i = parent.childCount() - 1; i >= 0; --i) {
        const XmlNode field = parent.childAt(i);
        if (!equalsIgnoringCase(field.name(), u"DataField")) continue;
        const bool isListed = !field.childNode(u"Missing").text().isNull();
        if (isListed) {
            MissingCodes &missing = dictionary.lists.emplace_back();
            missing.isListed = true;
            missing.codes = readNumbers(document, field, u"Missing", 0);
            std::reverse(missing.codes.begin(), missing.codes.end());
        }
        int next = 0;
        int before = 0;
        do { // a field may have several attributes "name"
            before = next;
            const QStringView name = field.attribute(u"name", &next);
            if (!isListed) {
                dictionary.indexes.erase(name);
            } else if (!name.isNull()) {
                dictionary.indexes.insert_or_assign(name, dictionary.lists.size() - 1);
            }
        } while (next != before);
    }
    return dictionary;
}

namespace {

std::span<const QStringView> readValues(const XmlNode &modalities) {
    const auto most = static_cast<std::size_t>(modalities.childCount());
    if (most == 0) return {};
    auto *const values = modalities.allocate<QStringView>(most);
    std::size_t count = 0;
    for (const XmlNode &mod : modalities.children(u"Mod")) {
        new (values + count++) QStringView(mod.attribute(u"val"));
    }
    return {values, count};
}

void readVariable(ModelDocument &document, const XmlNode &node, Variable &variable) {
    variable.node = node;
    variable.name = node.attribute(u"name");
    variable.field = node.attribute(u"field");
    variable.label = node.attribute(u"displayName");
    variable.type = node.attribute(u"type");
    variable.number = variable.name.size() > 1 ? xmlToInt(variable.name.sliced(1), -1) : -1;
    variable.isCategorical = variable.type == u"MapValues";
    variable.isBoolean = variable.isCategorical && node.attribute(u"tname") == u"bb64";
    variable.x = decodeNumbers(document, node, u"x");
    variable.y = decodeNumbers(document, node, u"y");
    if (variable.isCategorical) variable.values = readValues(node.childNode(u"Modalities"));
}

char16_t *allocateUnits(const XmlNode &node, qsizetype count) {
    return node.allocate<char16_t>(static_cast<std::size_t>(count));
}

// Returns the field's own view if no character is replaced.
QStringView makeCleanField(const Variable &variable, QStringView replaced) {
    const QStringView name = variable.field;
    const auto isReplaced = [&](QChar c) {
        return std::ranges::find(replaced, c) != replaced.end();
    };
    if (std::ranges::none_of(name, isReplaced)) return name;
    char16_t *const clean = allocateUnits(variable.node, name.size());
    for (qsizetype i = 0; i < name.size(); ++i) {
        clean[i] = isReplaced(name[i]) ? u'_' : name[i].unicode();
    }
    return {clean, name.size()};
}

QStringView makeRecodingName(const Variable &variable) {
    const NumberText index = integerText(static_cast<std::int64_t>(variable.index));
    const QStringView field = variable.cleanField;
    const qsizetype size = std::min(2 + index.size + field.size(), longestRecodingName);
    char16_t *const name = allocateUnits(variable.node, size);
    char16_t *end = name;
    *end++ = u'R';
    end = std::copy_n(index.characters, index.size, end);
    *end++ = u'_';
    std::copy_n(field.utf16(), size - (end - name), end);
    return {name, size};
}

} // namespace

Variables::Variables(Variables &&other) noexcept
    : owner(std::move(other.owner)), list(std::exchange(other.list, {})) {}

Variables &Variables::operator=(Variables other) noexcept {
    std::swap(owner, other.owner);
    std::swap(list, other.list);
    return *this;
}

// Releases the list's own handles before the owner's, which may free the memory of the list.
Variables::~Variables() {
    std::ranges::destroy(list);
}

// Names are views, not strings (benchmarks/costs.md: "names as strings").
Variables readVariables(ModelDocument &document, QStringView replaced) {
    const XmlNode parent = document.root.childNode(u"UnivModels");
    Variables variables;
    if (parent.childCount() == 0) return variables;
    variables.owner = parent;
    auto *const first = parent.allocate<Variable>(static_cast<std::size_t>(parent.childCount()));
    for (const XmlNode &node : parent.children(u"Model")) {
        const std::size_t index = variables.size();
        Variable &variable = *new (first + index) Variable;
        variables.list = {first, index + 1};
        variable.index = index;
        readVariable(document, node, variable);
        variable.cleanField = makeCleanField(variable, replaced);
        variable.recodingName = makeRecodingName(variable);
    }
    return variables;
}

NumericRecoding Recodings::numeric(const Variable &variable) const {
    const MissingCodes &missing = missingCodes[missingLists[variable.index]];
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
    std::vector<std::size_t> missingLists;
    missingLists.reserve(variables.size());
    for (const Variable &variable : variables) {
        missingLists.push_back(variable.isCategorical ? 0 : dictionary.find(variable.cleanField));
    }
    return {.missingLists = std::move(missingLists), .missingCodes = std::move(dictionary.lists)};
}
