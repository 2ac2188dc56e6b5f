#include "check/reports/report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

QJsonValue number(double value) {
    return std::isfinite(value) ? QJsonValue(value) : QJsonValue();
}

QJsonValue count(std::int64_t value) {
    return {static_cast<qint64>(value)};
}

QJsonObject jsonOf(const Finding &finding, const Found &found) {
    const FindingKind &kind = kindOf(finding.id);
    const QJsonArray targets = QJsonArray::fromStringList(targetNames(finding.targets));
    QJsonObject object = {{u"name"_s, kind.name.toString()},     {u"targets"_s, targets},
                          {u"place"_s, finding.place},           {u"text"_s, kind.text.toString()},
                          {u"remedy"_s, kind.remedy.toString()}, {u"page"_s, kind.page.toString()}};
    if (found.accepted.has(finding.id)) object[u"accepted"_s] = true;
    if (found.counts && finding.countsRows()) {
        const bool isTogether = finding.togetherRows > 0;
        if (isTogether) object[u"together"_s] = count(finding.togetherRows);
        if (finding.rows > 0 || !isTogether) {
            object[u"rows"_s] = count(finding.rows);
            object[u"firstRow"_s] = finding.rows > 0 ? count(finding.firstRow) : QJsonValue();
        }
    }
    return object;
}

QJsonObject jsonOf(const Prediction &prediction) {
    return {{u"score"_s, number(prediction.score)},
            {u"probability"_s, number(prediction.probability)}};
}

QJsonObject jsonOf(const ComparedRow &row, std::span<const PointsLine> lines) {
    QJsonArray parts;
    for (const PointsLine &part : lines) {
        parts.append(QJsonObject{{u"recoding"_s, part.recoding},
                                 {u"column"_s, part.column},
                                 {u"cell"_s, part.cell},
                                 {u"values"_s, part.values},
                                 {u"points"_s, number(part.points)}});
    }
    return {{u"row"_s, count(row.row)},
            {u"key"_s, QString::fromStdString(row.key)},
            {u"model"_s, jsonOf(row.expected)},
            {u"result"_s, jsonOf(row.found)},
            {u"contributions"_s, parts}};
}

// By statistic, then by column.
QJsonObject jsonOfDifferences(const ComparisonResult &result) {
    QJsonObject largest;
    QJsonObject median;
    QJsonObject within;
    const auto add = [&](const QString &column, const Differences &differences) {
        if (differences.rows == 0) return;
        QJsonObject shares;
        for (std::size_t i = 0; i < differences.within.size(); ++i) {
            shares[differenceSteps[i].toString()] =
                static_cast<double>(differences.within[i]) / static_cast<double>(differences.rows);
        }
        largest[column] = number(differences.largest);
        median[column] = number(differences.median());
        within[column] = shares;
    };
    add(u"score"_s, result.scores);
    add(u"probability"_s, result.probabilities);
    return {{u"largest"_s, largest}, {u"median"_s, median}, {u"within"_s, within}};
}

QJsonArray jsonOf(std::span<const UnreadableCells> unreadable) {
    constexpr QStringView names[] = {u"empty",     u"null",     u"nan",  u"decimal-comma",
                                     u"thousands", u"per-cent", u"other"};
    QJsonArray kinds;
    for (std::size_t i = 0; i < unreadable.size(); ++i) {
        const UnreadableCells &cells = unreadable[i];
        if (cells.cells == 0) continue;
        kinds.append(QJsonObject{{u"kind"_s, names[i].toString()},
                                 {u"cells"_s, count(cells.cells)},
                                 {u"first"_s, QString::fromStdString(cells.first)},
                                 {u"row"_s, count(cells.row)}});
    }
    return kinds;
}

QJsonObject jsonOf(const Report &report) {
    const ComparisonResult &result = *report.found.comparison;
    QJsonObject explained;
    for (const auto &[id, rows] : result.explained) {
        explained[kindOf(id).name.toString()] = count(rows);
    }
    QJsonObject reasons;
    for (const auto &[reason, rows] : result.reasons) reasons[reason] = count(rows.rows);
    QJsonObject blamed;
    for (const Suspected &fault : result.suspected) blamed[fault.text] = count(fault.rows);
    QJsonArray worst;
    for (std::size_t i = 0; i < result.worst.size(); ++i) {
        worst.append(jsonOf(result.worst[i], report.worstPoints[i]));
    }
    QJsonArray causes;
    for (const auto &[name, text, rows] : report.causes) {
        causes.append(
            QJsonObject{{u"cause"_s, name}, {u"rows"_s, count(rows)}, {u"detail"_s, text}});
    }
    return {{u"target"_s, comparedTarget(report)},
            {u"causes"_s, causes},
            {u"differences"_s, jsonOfDifferences(result)},
            {u"unreadable"_s, jsonOf(result.unreadable)},
            {u"rows"_s, count(result.rows)},
            {u"equal"_s, count(result.equal)},
            {u"explained"_s, explained},
            {u"reasons"_s, reasons},
            {u"explainedRows"_s, count(result.explainedRows)},
            {u"unexplained"_s, count(result.unexplained)},
            {u"missing"_s, count(result.missing.rows)},
            {u"extra"_s, count(result.extra.rows)},
            {u"repeated"_s, count(result.repeated.rows)},
            {u"blamed"_s, blamed},
            {u"worst"_s, worst}};
}

QJsonObject jsonOf(const Evidence::File &file) {
    const FileRead &read = file.read;
    const bool isRead = !read.sha256.isEmpty();
    return {{u"role"_s, file.role},
            {u"path"_s, file.path},
            {u"bytes"_s, isRead ? count(read.bytes) : QJsonValue()},
            {u"sha256"_s, isRead ? QString::fromLatin1(read.sha256.toHex()) : QJsonValue()},
            {u"rows"_s, read.rows >= 0 ? count(read.rows) : QJsonValue()}};
}

void addEvidence(QJsonObject &object, const Found &found) {
    const Evidence &evidence = *found.evidence;
    QJsonArray files;
    for (const Evidence::File &file : evidence.files) files.append(jsonOf(file));
    QJsonArray missing;
    for (const std::string &text : found.options->missing) {
        missing.append(QString::fromStdString(text));
    }
    object[u"program"_s] =
        QJsonObject{{u"name"_s, u"scorewright-check"_s}, {u"version"_s, evidence.version}};
    object[u"files"_s] = files;
    object[u"options"_s] =
        QJsonObject{{u"arguments"_s, QJsonArray::fromStringList(evidence.arguments)},
                    {u"missing"_s, missing},
                    {u"accepted"_s, QJsonArray::fromStringList(namesOf(found.accepted))},
                    {u"tolerance"_s, found.options->tolerance}};
    object[u"time"_s] = evidence.time;
}

} // namespace

void putJson(TextBuffer &out, const Report &report) {
    QJsonArray findings;
    for (const Finding &finding : report.found.findings) {
        findings.append(jsonOf(finding, report.found));
    }
    QJsonObject object = {{u"model"_s, report.model.file},
                          {u"verdict"_s, nameOf(report.verdict)},
                          {u"sentence"_s, report.sentence},
                          {u"findings"_s, findings}};
    if (report.found.evidence) addEvidence(object, report.found);
    if (report.found.counts) {
        object[u"rows"_s] = count(report.found.counts->rows);
        object[u"uneven"_s] = count(report.found.counts->uneven);
        const Unreached &unreached = report.unreached;
        object[u"unreached"_s] =
            QJsonObject{{u"positions"_s, count(std::ssize(unreached.places))},
                        {u"of"_s, count(unreached.reachable)},
                        {u"places"_s, QJsonArray::fromStringList(unreached.places)}};
    }
    if (report.found.comparison) object[u"comparison"_s] = jsonOf(report);
    put(out, QString::fromUtf8(QJsonDocument(object).toJson()));
}
