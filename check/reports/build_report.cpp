#include "check/reports/report.h"

#include "check/rows/probe.h"

#include <algorithm>
#include <cmath>
#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace {

// --- The model

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

// One scale for all recodings makes their bars comparable.
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
    // Samples of the whole scale, and the points of the table, so that the corners show.
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

// --- Rows

Unreached unreachedOf(const Scorecard &card, const RowCounts &counts,
                      std::span<const std::string> missing, QString &notation) {
    Unreached unreached;
    for (std::size_t column = 0; column < card.columns.size(); ++column) {
        const std::vector<std::size_t> &recodings = card.recodingsOf[column];
        const auto reachable = reachablePositions(card, column, missing);
        for (std::size_t rank = 0; rank < recodings.size(); ++rank) {
            const Recoding &recoding = card.recodings[recodings[rank]];
            const std::vector<std::int64_t> &rows = counts.positions[recodings[rank]];
            for (std::size_t i = 0; i < rows.size(); ++i) {
                if (rows[i] == 0 && !reachable[rank][i]) continue;
                ++unreached.reachable;
                if (rows[i] > 0) continue;
                unreached.places.append(titleOf(recoding) + u": "_s +
                                        valuesAt(recoding, i, notation));
            }
        }
    }
    return unreached;
}

// --- Findings and comparison

bool affectsRows(const Finding &finding) {
    return finding.rows > 0 || finding.togetherRows > 0;
}

// The findings that explain rows although none of their places affects one.
FindingSet explaining(const Found &found) {
    FindingSet findings;
    if (!found.comparison) return findings;
    for (const auto &[id, rows] : found.comparison->explained) findings.add(id);
    for (const Finding &finding : found.findings) {
        if (affectsRows(finding)) findings.remove(finding.id);
    }
    return findings;
}

void groupFindings(Report &report) {
    const Found &found = report.found;
    const FindingSet explains = explaining(found);
    const bool hasRows = found.counts && found.counts->rows > 0;
    for (const Finding &finding : found.findings) {
        const bool isUnaffecting = hasRows && finding.countsRows() && !affectsRows(finding);
        const bool isOpen = !isUnaffecting || explains.has(finding.id);
        std::vector<FindingGroup> &groups = found.accepted.has(finding.id) ? report.accepted
                                            : isOpen                       ? report.open
                                                                           : report.unaffecting;
        const FindingKind &kind = kindOf(finding.id);
        if (groups.empty() || groups.back().kind != &kind) groups.push_back({&kind});
        groups.back().targets |= finding.targets;
        groups.back().findings.push_back(&finding);
    }
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
    add(u"as the model says"_s, result.equal);
    for (const auto &[reason, sample] : result.reasons) {
        add(u"explained by "_s + reason, sample.rows,
            u", first row "_s + sample.first.constFirst());
    }
    add(u"unexplained"_s, result.unexplained);
    addSample(u"without a result"_s, result.missing);
    addSample(u"in the results only"_s, result.extra);
    addSample(u"with a duplicate key"_s, result.repeated);
    // Below a tenth of the rows, a suspicion may match by chance. JSON has all.
    for (const auto &[text, rows, of] : result.suspected) {
        const bool isPart = rows < of || of < result.unexplained;
        add(u"would match with "_s + text, 10 * rows < of ? 0 : rows,
            isPart ? u" (of %1 tested)"_s.arg(grouped(of)) : QString());
    }
    return counts;
}

// Of all recodings that have a coefficient, the largest first.
std::vector<PointsLine> pointsOfRow(const Scorecard &card, const ComparedRow &row,
                                    QString &notation) {
    std::vector<PointsLine> parts;
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
                             [](const PointsLine &part) { return std::abs(part.points); });
    return parts;
}

// --- Verdict

Verdict verdictOf(const Report &report) {
    const ComparisonResult *const result = report.found.comparison;
    if (result && (result->unexplained > 0 || result->missing.rows > 0 || result->extra.rows > 0 ||
                   result->repeated.rows > 0)) {
        return Verdict::Unexplained;
    }
    return report.open.empty() ? Verdict::Clean : Verdict::Findings;
}

// "3 findings open", "2 findings accepted, none open", "1 finding open, 2 accepted" or "no
// findings".
QString findingsText(const Report &report) {
    const std::int64_t open = countPlaces(report.open);
    const std::int64_t accepted = countPlaces(report.accepted);
    const auto text = [](std::int64_t count) {
        return count == 1 ? u"1 finding"_s : u"%1 findings"_s.arg(count);
    };
    if (open == 0 && accepted == 0) return u"no findings"_s;
    if (open == 0) return text(accepted) + u" accepted, none open"_s;
    return text(open) + u" open"_s + (accepted > 0 ? u", %1 accepted"_s.arg(accepted) : QString());
}

QString sentenceOf(const Report &report) {
    QString findings = findingsText(report);
    if (!report.found.counts) return findings;
    const ComparisonResult *const result = report.found.comparison;
    if (!result) {
        return rowsText(report.found.counts->rows) + u" scored; "_s + findings;
    }
    QString rows =
        grouped(result->equal) + u" of "_s + rowsText(result->rows) + u" as the model says"_s;
    const std::pair<std::int64_t, QStringView> others[] = {
        {result->explainedRows, u"explained"},
        {result->unexplained, u"unexplained"},
        {result->missing.rows, u"without a result"},
        {result->extra.rows, u"in the results only"},
        {result->repeated.rows, u"with a duplicate key"}};
    for (const auto &[count, label] : others) {
        if (count > 0) rows += u", %1 %2"_s.arg(grouped(count), label);
    }
    // "No findings" after unexplained rows would sound like an all-clear.
    const bool isSilent =
        report.verdict == Verdict::Unexplained && report.open.empty() && report.accepted.empty();
    return isSilent ? rows : rows + u"; "_s + findings;
}

} // namespace

Report buildReport(const Scorecard &card, const Found &found, bool isWhole) {
    Report report = {.found = found,
                     .model = isWhole ? modelOf(card, found.counts)
                                      : ModelSection{.file = card.document.fileName}};
    groupFindings(report);
    report.verdict = verdictOf(report);
    report.sentence = sentenceOf(report);
    if (found.counts) {
        report.unreached =
            unreachedOf(card, *found.counts, found.options->missing, report.notation);
    }
    if (found.comparison) {
        for (const Cause &cause : found.comparison->causes) {
            report.causes.push_back(causeLine(cause, card, *found.options, report.notation));
        }
        report.counts = countsOf(*found.comparison);
        for (const ComparedRow &row : found.comparison->worst) {
            report.worstPoints.push_back(pointsOfRow(card, row, report.notation));
        }
    }
    if (!report.notation.isEmpty() && isWhole) report.notation = report.model.notation;
    return report;
}

std::int64_t countPlaces(std::span<const FindingGroup> groups) {
    std::int64_t places = 0;
    for (const FindingGroup &group : groups) places += std::ssize(group.findings);
    return places;
}

QString namesOf(std::span<const FindingGroup> groups) {
    QStringList names;
    for (const FindingGroup &group : groups) {
        const std::size_t places = group.findings.size();
        names.append(group.kind->name.toString() +
                     (places > 1 ? u" (%1 places)"_s.arg(places) : QString()));
    }
    return names.join(u", "_s);
}
