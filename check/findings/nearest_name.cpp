#include "check/findings/nearest_name.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

// The edit distance: characters to insert, delete or replace, ignoring case.
std::size_t distance(QStringView a, QStringView b) {
    std::vector<std::size_t> row(static_cast<std::size_t>(b.size()) + 1);
    std::iota(row.begin(), row.end(), std::size_t(0));
    for (const QChar c : a) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 1; j < row.size(); ++j) {
            const bool isSame = c.toLower() == b[static_cast<qsizetype>(j) - 1].toLower();
            const std::size_t changed = diagonal + (isSame ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

} // namespace

QStringView nearestName(QStringView written, std::span<const QStringView> names) {
    constexpr qsizetype longest = 64;
    if (written.size() > longest) return {};
    QStringView found;
    std::size_t least = static_cast<std::size_t>(written.size()) / 2;
    for (const QStringView name : names) {
        const std::size_t steps = distance(written, name);
        if (steps > least || (steps == least && !found.isEmpty())) continue;
        least = steps;
        found = name;
    }
    return found;
}
