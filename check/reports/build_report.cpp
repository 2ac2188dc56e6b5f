#include "check/reports/report.h"

#include <algorithm>
#include <cmath>
#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace {

// --- The model

QString titleOf(const Recoding &recoding) {
    return u"%1 %2"_s.arg(recoding.variable->name, recoding.variable->field);
}

// The number that the bound at `place` is shown as: of up to 12 digits, if no number of up to 16
// lies between the two, so that an interval up to the bound is one below this number. Else the
// bound itself; so is the first, which belongs to the interval above it, and one that the next
// bound follows too closely.
double shownBound(std::span<const double> bounds, std::size_t place) {
    const auto withDigits = [](double number, int digits) {
        double rounded = noNumber;
        readNumber(generalNumber(number, digits).view(), rounded);
        return rounded;
    };
    const double bound = bounds[place];
    const double shorter = withDigits(bound, 12);
    const bool isLast = place + 1 == bounds.size();
    if (place == 0 || !(shorter > bound) || std::isinf(shorter)) return bound;
    if (!isLast && !(bounds[place + 1] >= shorter)) return bound;
    double between = std::nextafter(shorter, bound);
    while (between > bound && withDigits(between, 16) != between) {
        between = std::nextafter(between, bound);
    }
    return between > bound ? bound : shorter;
}

// Sets the notation, where a bound is not shown as the document has it, unless it is set.
QString intervalAt(std::span<const double> bounds, std::size_t position, QString &notation) {
    if (position == 0) return u"missing"_s;
    if (position == 1) return u"(-∞, %1)"_s.arg(numberText(bounds[0]));
    if (position > bounds.size() + 1) return u"never"_s;
    struct End {
        QString text;
        bool isBelow = false; // the interval below does not have it
    };
    const auto endAt = [&](std::size_t place) {
        const double shown = shownBound(bounds, place);
        const End end = {numberText(shown), shown > bounds[place]};
        if (end.isBelow && notation.isEmpty()) {
            notation = u"The document has %1] for %2): no number of up to 16 digits lies between "
                       "them. The same holds for every bound before ), except the lowest of a "
                       "recoding."_s.arg(numberText(bounds[place]), end.text);
        }
        return end;
    };
    const End from = endAt(position - 2);
    const bool hasFrom = from.isBelow || (position == 2 && bounds.size() > 1);
    const QString lower = (hasFrom ? u'[' : u'(') + from.text + u", "_s;
    if (position == bounds.size() + 1) return lower + u"∞)"_s;
    const End to = endAt(position - 1);
    return lower + to.text + (to.isBelow ? u')' : u']');
}

QString valuesAt(const Recoding &recoding, std::size_t position, QString &notation) {
    if (!recoding.variable->isCategorical) return intervalAt(recoding.x, position, notation);
    if (position == 0) return u"missing or not listed"_s;
    if (position > (recoding.isBoolean ? 2 : recoding.listed.size())) return u"never"_s;
    const auto quoted = [&](std::size_t i) {
        return u'\'' + recoding.listed[i].toString() + u'\'';
    };
    if (!recoding.isBoolean) return quoted(position - 1);
    QStringList values;
    const CategoricalRecoding arrays = {recoding.listed, recoding.y, true};
    for (std::size_t i = 0; i < recoding.listed.size(); ++i) {
        if (arrays.place(i) == position) values.append(quoted(i));
    }
    values.removeDuplicates();
    return (position == 1 ? u"false: "_s : u"true: "_s) + values.join(u", "_s);
}

RecodingSection recodingOf(const Recoding &recoding, const std::vector<std::int64_t> *rows,
                           QString &notation) {
    const Variable &variable = *recoding.variable;
    QStringList codes;
    for (const double code : recoding.codes) codes.prepend(numberText(code));
    RecodingSection section = {.title = titleOf(recoding),
                               .label = variable.label.toString(),
                               .type = variable.type.toString(),
                               .isCategorical = variable.isCategorical,
                               .isBoolean = recoding.isBoolean,
                               .coefficient = recoding.coefficient,
                               .codes = codes.join(u", "_s)};
    section.positions.reserve(recoding.y.size());
    for (std::size_t i = 0; i < recoding.y.size(); ++i) {
        section.positions.push_back({valuesAt(recoding, i, notation), recoding.y[i],
                                     recoding.coefficient * recoding.y[i], rows ? (*rows)[i] : 0});
    }
    return section;
}

// One scale for all recodings, so that their bars can be compared.
Scale pointsOf(std::span<const RecodingSection> recodings) {
    Scale scale;
    for (const RecodingSection &recoding : recodings) {
        for (const PositionLine &line : recoding.positions) {
            if (!std::isfinite(line.points)) continue;
            scale.from = std::min(scale.from, line.points);
            scale.to = std::max(scale.to, line.points);
        }
    }
    return scale;
}

// From the lowest to the highest score of the table and of the rows, with a margin.
Scale scoresOf(std::span<const double> table, const RowCounts *counts) {
    Scale scale = table.empty() ? Scale{-5, 5} : Scale{table.back(), table.front()};
    for (std::size_t i = 0; counts && i < counts->scores.size(); ++i) {
        if (counts->scores[i] == 0) continue;
        scale.from = std::min(scale.from, counts->stepAt(i));
        scale.to = std::max(scale.to, counts->stepAt(i + 1));
    }
    if (!(scale.to > scale.from)) scale.to = scale.from + 1;
    return {scale.at(-0.05), scale.at(1.05)};
}

std::vector<Prediction> curveOf(const Scorecard &card, const Scale &scale) {
    // Samples of the whole scale, and the table's points, so that its corners show.
    std::vector<double> scores(card.table.x.begin(), card.table.x.end());
    for (int i = 0; i <= 200; ++i) scores.push_back(scale.at(i / 200.0));
    std::erase_if(scores, [](double score) { return std::isnan(score); });
    std::ranges::sort(scores);
    std::vector<Prediction> curve;
    curve.reserve(scores.size());
    for (const double score : scores) {
        curve.push_back({score, std::clamp(probabilityOf(card, score), 0.0, 1.0)});
    }
    return curve;
}

ModelSection modelOf(const Scorecard &card, const RowCounts *counts) {
    const QStringView target =
        card.document.root.childNode(u"MetaData").childNode(u"Target").text();
    ModelSection model = {.file = card.document.fileName,
                          .version = modelVersion(card.document).toString(),
                          .target = target.toString(),
                          .kind = kindOfTarget(card).toString(),
                          .columns = std::ssize(card.columns),
                          .constant = card.regression.constant,
                          .isLogistic = card.isLogistic,
                          .hasTable = card.table.exists,
                          .hasProbability = card.hasProbability()};
    for (std::size_t i = 0; i < card.recodings.size(); ++i) {
        const auto *const rows = counts ? &counts->positions[i] : nullptr;
        model.recodings.push_back(recodingOf(card.recodings[i], rows, model.notation));
    }
    model.points = pointsOf(model.recodings);
    for (std::size_t i = 0; i < card.table.x.size(); ++i) {
        model.table.push_back({card.table.x[i], card.table.y[i]});
    }
    model.scores = scoresOf(card.table.x, counts);
    if (model.hasProbability) model.curve = curveOf(card, model.scores);
    return model;
}

// --- Findings and comparison

std::vector<FindingGroup> groupsOf(std::span<const Finding> findings) {
    std::vector<FindingGroup> groups;
    for (std::size_t i = 0, first = 0; i < findings.size(); ++i) {
        if (i == 0 || findings[i].id != findings[first].id) {
            first = i;
            groups.push_back({&kindOf(findings[i].id)});
        }
        groups.back().targets |= findings[i].targets;
        groups.back().findings = findings.subspan(first, i + 1 - first);
    }
    return groups;
}

std::vector<CountLine> countsOf(const ComparisonResult &result) {
    std::vector<CountLine> counts;
    const auto add = [&](const QString &label, std::int64_t rows, const QString &more = {}) {
        if (rows > 0) counts.push_back({label, rows, more});
    };
    const auto addSample = [&](const QString &label, const RowSample &sample) {
        const QString more = sample.first.size() < sample.rows ? u", …"_s : QString();
        add(label, sample.rows, u": "_s + sample.first.join(u", "_s) + more);
    };
    for (const auto &[reason, sample] : result.reasons) {
        add(u"explained by "_s + reason, sample.rows,
            u", first row "_s + sample.first.constFirst());
    }
    add(u"without explanation"_s, result.unexplained);
    addSample(u"without a result"_s, result.missing);
    addSample(u"in the results only"_s, result.extra);
    addSample(u"key occurs again"_s, result.repeated);
    for (const auto &[fault, rows] : result.suspected) {
        add(u"would be right with "_s + fault, rows);
    }
    return counts;
}

// Of all recodings that have a coefficient, the largest first.
std::vector<Contribution> contributionsOf(const Scorecard &card, const ComparedRow &row,
                                          QString &notation) {
    std::vector<Contribution> parts;
    for (std::size_t i = 0; i < card.recodings.size(); ++i) {
        const Recoding &recoding = card.recodings[i];
        if (recoding.coefficient == 0) continue;
        const Recoded &recoded = row.recoded[i];
        parts.push_back({titleOf(recoding), recoding.variable->field.toString(),
                         QString::fromStdString(row.cells[recoding.column]),
                         valuesAt(recoding, recoded.position, notation),
                         recoding.coefficient * recoded.score});
    }
    std::ranges::stable_sort(parts, std::greater(),
                             [](const Contribution &part) { return std::abs(part.points); });
    return parts;
}

} // namespace

std::vector<Tick> ticksOf(const Scale &scale, int most, bool isCount) {
    const double step = (scale.to - scale.from) / most;
    if (!std::isnormal(step)) return {};
    // Texts, so that each number is the nearest to a decimal one.
    const auto numberOf = [](std::int64_t digits, int exponent) {
        double number = noNumber;
        readNumber(std::to_string(digits) + 'e' + std::to_string(exponent), number);
        return number;
    };
    const int least = static_cast<int>(std::floor(std::log10(step)));
    for (int exponent = isCount ? std::max(least, 0) : least;; ++exponent) {
        for (const int factor : {1, 2, 5}) {
            const double width = numberOf(factor, exponent);
            const auto first = static_cast<std::int64_t>(std::ceil(scale.from / width));
            const auto last = static_cast<std::int64_t>(std::floor(scale.to / width));
            if (last - first > most) continue;
            std::vector<Tick> ticks;
            for (std::int64_t i = first; i <= last; ++i) {
                ticks.push_back({numberOf(i * factor, exponent), i % 2 != 0});
            }
            return ticks;
        }
    }
}

Report buildReport(const Scorecard &card, const Found &found, bool isWhole) {
    Report report = {.found = found,
                     .model = isWhole ? modelOf(card, found.counts)
                                      : ModelSection{.file = card.document.fileName},
                     .groups = groupsOf(found.findings)};
    if (!found.comparison) return report;
    report.counts = countsOf(*found.comparison);
    for (const ComparedRow &row : found.comparison->worst) {
        report.contributions.push_back(contributionsOf(card, row, report.notation));
    }
    if (!report.notation.isEmpty() && isWhole) report.notation = report.model.notation;
    return report;
}
