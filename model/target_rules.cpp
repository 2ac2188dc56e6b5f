#include "model/target_rules.h"

#include <algorithm>

namespace {

// In the order of the targets.
constexpr QStringView replaced[targetCount] = {u" .", u"", u"\"%'-() /.", u" .'-", u""};

} // namespace

QStringView replacedCharacters(Target target) {
    return replaced[static_cast<std::size_t>(target)];
}

bool sasSupports(QStringView type) {
    return type == u"MapValues" || type == u"NormContinuous" || type == u"Discretize";
}

bool sasComparesNumbers(std::span<const QStringView> values) {
    const auto isOfNumber = [](QChar c) { return (c >= u'0' && c <= u'9') || c == u'.'; };
    return !values.empty() && std::ranges::all_of(values, [&](QStringView value) {
        return std::all_of(value.begin(), value.end(), isOfNumber);
    });
}
