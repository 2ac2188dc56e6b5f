#include "check/reports/report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

namespace {

QJsonValue number(double value) {
    return std::isfinite(value) ? QJsonValue(value) : QJsonValue();
}

QJsonValue count(std::int64_t value) {
    return {static_cast<qint64>(value)};
}

QJsonObject jsonOf(const Finding &finding, bool hasRows) {
    const FindingKind &kind = kindOf(finding.id);
    const QJsonArray targets = QJsonArray::fromStringList(targetNames(finding.targets));
    QJsonObject object = {{u"name"_s, kind.name.toString()},     {u"targets"_s, targets},
                          {u"place"_s, finding.place},           {u"text"_s, kind.text.toString()},
                          {u"remedy"_s, kind.remedy.toString()}, {u"page"_s, kind.page.toString()}};
    if (hasRows && finding.countsRows()) {
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

QJsonObject jsonOf(const Scorecard &card, const ComparedRow &row) {
    QJsonArray parts;
    for (const Contribution &part : contributionsOf(card, row)) {
        parts.append(QJsonObject{{u"recoding"_s, titleOf(*part.recoding)},
                                 {u"column"_s, part.recoding->variable->field.toString()},
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

QJsonObject jsonOf(const Report &report) {
    const ComparisonResult &result = *report.comparison;
    QJsonObject explained;
    for (const auto &[id, rows] : result.explained) {
        explained[kindOf(id).name.toString()] = count(rows.rows);
    }
    QJsonObject blamed;
    for (const auto &[fault, rows] : result.suspected) blamed[fault] = count(rows);
    QJsonArray worst;
    for (const ComparedRow &row : result.worst) worst.append(jsonOf(report.card, row));
    return {{u"target"_s, targetNames(only(report.compared->target)).constFirst()},
            {u"rows"_s, count(result.rows)},
            {u"equal"_s, count(result.equal)},
            {u"explained"_s, explained},
            {u"explainedRows"_s, count(result.explainedRows)},
            {u"unexplained"_s, count(result.unexplained)},
            {u"missing"_s, count(result.missing.rows)},
            {u"extra"_s, count(result.extra.rows)},
            {u"repeated"_s, count(result.repeated.rows)},
            {u"blamed"_s, blamed},
            {u"worst"_s, worst}};
}

} // namespace

QByteArray jsonReport(const Report &report) {
    QJsonArray findings;
    for (const Finding &finding : report.findings) {
        findings.append(jsonOf(finding, report.counts != nullptr));
    }
    QJsonObject object = {{u"model"_s, report.card.document.fileName}, {u"findings"_s, findings}};
    if (report.counts) {
        object[u"rows"_s] = count(report.counts->rows);
        object[u"uneven"_s] = count(report.counts->uneven);
    }
    if (report.comparison) object[u"comparison"_s] = jsonOf(report);
    return QJsonDocument(object).toJson();
}
