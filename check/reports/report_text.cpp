#include "check/reports/report.h"

#include <QSet>
#include <QStringList>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

// The standard library's lists, for the reason that model/hash_tables.h gives.
using Row = std::vector<QString>;
using Table = std::vector<Row>;

// Columns as wide as they need to be.
void putTable(TextBuffer &out, const Table &table) {
    std::vector<qsizetype> widths;
    for (const Row &row : table) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    for (const Row &row : table) {
        put(out, u" ");
        for (std::size_t i = 0; i < row.size(); ++i) {
            const bool isLast = i + 1 == row.size();
            put(out, u" ", isLast ? row[i] : row[i].leftJustified(widths[i] + 1));
        }
        put(out, u"\n");
    }
}

void putRecoding(TextBuffer &out, const Recoding &recoding) {
    const Variable &variable = *recoding.variable;
    put(out, u"\n", titleOf(recoding));
    if (!variable.label.isEmpty()) put(out, u" (", variable.label, u")");
    put(out, u"\n  ", variable.type);
    if (recoding.isBoolean) put(out, u", boolean");
    put(out, u", coefficient ", recoding.coefficient, u"\n");
    if (!recoding.codes.empty()) {
        QStringList codes;
        for (const double code : recoding.codes) codes.prepend(numberText(code));
        put(out, u"  missing codes: ", codes.join(u", "_s), u"\n");
    }
    Table table = {{variable.isCategorical ? u"values"_s : u"interval"_s, u"score"_s, u"points"_s}};
    for (std::size_t i = 0; i < recoding.y.size(); ++i) {
        table.push_back({valuesAt(recoding, i), numberText(recoding.y[i]),
                         shortNumber(recoding.coefficient * recoding.y[i])});
    }
    putTable(out, table);
}

QString rowsOf(std::int64_t rows) {
    return rows == 1 ? u"1 row"_s : u"%1 rows"_s.arg(rows);
}

void putFindings(TextBuffer &out, const Report &report) {
    const auto count = std::ssize(report.findings);
    put(out, count == 0 ? u"No"_s : QString::number(count), u" finding",
        count == 1 ? u"\n"_s : u"s\n"_s);
    for (const FindingGroup &group : groupsOf(report)) {
        const FindingKind &kind = *group.kind;
        put(out, u"\n", kind.name, u" [", targetNames(group.targets).join(u", "_s), u"] docs/",
            kind.page, u"\n  ", kind.text, u"\n  Remedy: ", kind.remedy, u"\n");
        for (const QString &place : group.places) put(out, u"  - ", place, u"\n");
    }
}

void putNumbers(TextBuffer &out, QStringView title, const Prediction &prediction) {
    put(out, u"    ", title, u" score ", shortNumber(prediction.score));
    if (!std::isnan(prediction.probability)) {
        put(out, u", probability ", shortNumber(prediction.probability));
    }
    put(out, u"\n");
}

void putWorst(TextBuffer &out, const Report &report, const ComparedRow &row) {
    put(out, u"\n  row ", qsizetype(row.row));
    if (!row.key.empty()) put(out, u", key ", QString::fromStdString(row.key));
    put(out, u"\n");
    putNumbers(out, u"model: ", row.expected);
    putNumbers(out, u"result:", row.found);
    Table table;
    for (const Contribution &part : contributionsOf(report.card, row)) {
        table.push_back({u"  "_s + titleOf(*part.recoding), u'\'' + part.cell + u'\'', part.values,
                         shortNumber(part.points)});
    }
    putTable(out, table);
}

void putComparison(TextBuffer &out, const Report &report) {
    const ComparisonResult &result = *report.comparison;
    put(out, u"\nComparison with ", report.compared->results, u" (",
        targetNames(only(report.compared->target)).constFirst(), u")\n");
    put(out, u"  ", rowsOf(result.rows), u" in both files, ", qsizetype(result.equal),
        u" as the model says\n");
    for (const ComparisonCount &count : countsOf(result)) {
        put(out, u"  ", count.label, u": ", rowsOf(count.rows), count.more, u"\n");
    }
    for (const ComparedRow &row : result.worst) putWorst(out, report, row);
}

} // namespace

QString valuesAt(const Recoding &recoding, std::size_t position) {
    const std::span<const double> x = recoding.x;
    const bool isCategorical = recoding.variable->isCategorical;
    if (position == 0) return isCategorical ? u"missing or not listed"_s : u"missing"_s;
    if (!isCategorical) {
        if (position == 1) return u"(-∞, %1)"_s.arg(numberText(x[0]));
        if (position > x.size() + 1) return u"never"_s;
        if (position == x.size() + 1) return u"(%1, ∞)"_s.arg(numberText(x.back()));
        // The first bound belongs to the interval above it.
        return u"%1%2, %3]"_s.arg(position == 2 ? u"["_s : u"("_s, numberText(x[position - 2]),
                                  numberText(x[position - 1]));
    }
    const auto quoted = [&](std::size_t i) {
        return u'\'' + recoding.listed[i].toString() + u'\'';
    };
    if (position > (recoding.isBoolean ? 2 : recoding.listed.size())) return u"never"_s;
    if (!recoding.isBoolean) return quoted(position - 1);
    QStringList values;
    const CategoricalRecoding arrays = {recoding.listed, recoding.y, true};
    for (std::size_t i = 0; i < recoding.listed.size(); ++i) {
        if (arrays.place(i) == position) values.append(quoted(i));
    }
    values.removeDuplicates();
    return (position == 1 ? u"false: "_s : u"true: "_s) + values.join(u", "_s);
}

std::vector<FindingGroup> groupsOf(const Report &report) {
    std::vector<FindingGroup> groups;
    for (const Finding &finding : report.findings) {
        const FindingKind &kind = kindOf(finding.id);
        if (groups.empty() || groups.back().kind != &kind) groups.push_back({&kind, 0, {}});
        QString place = finding.place;
        if (report.counts && finding.countsRows()) place += u": "_s + rowsOf(finding.rows);
        if (finding.rows > 0) place += u", first row %1"_s.arg(finding.firstRow);
        groups.back().targets |= finding.targets;
        groups.back().places.append(place);
    }
    return groups;
}

std::vector<ComparisonCount> countsOf(const ComparisonResult &result) {
    std::vector<ComparisonCount> counts;
    const auto tell = [&](const QString &label, std::int64_t rows, const QString &more) {
        if (rows > 0) counts.push_back({label, rows, more});
    };
    for (const auto &[id, explained] : result.explained) {
        tell(u"explained by %1"_s.arg(kindOf(id).name), explained.rows,
             u", first row "_s + explained.first.constFirst());
    }
    tell(u"without explanation"_s, result.unexplained, {});
    const auto tellFirst = [&](const QString &label, const RowSample &told) {
        const QString more = told.first.size() < told.rows ? u", …"_s : QString();
        tell(label, told.rows, u": "_s + told.first.join(u", "_s) + more);
    };
    tellFirst(u"without a result"_s, result.missing);
    tellFirst(u"in the results only"_s, result.extra);
    tellFirst(u"key occurs again"_s, result.repeated);
    for (const auto &[fault, rows] : result.suspected) {
        tell(u"would be right with "_s + fault, rows, {});
    }
    return counts;
}

QString shortNumber(double number) {
    const NumberText text = generalNumber(number + 0.0, 6); // which makes a zero of a negative one
    return std::isnan(number) ? u"none"_s : QString::fromLatin1(text.characters, text.size);
}

QString titleOf(const Recoding &recoding) {
    return u"%1 %2"_s.arg(recoding.variable->name, recoding.variable->field);
}

std::vector<Contribution> contributionsOf(const Scorecard &card, const ComparedRow &row) {
    std::vector<Contribution> parts;
    for (std::size_t i = 0; i < card.recodings.size(); ++i) {
        const Recoding &recoding = card.recodings[i];
        if (recoding.coefficient == 0) continue;
        const Recoded &recoded = row.recoded[i];
        parts.push_back({&recoding, QString::fromStdString(row.cells[recoding.column]),
                         valuesAt(recoding, recoded.position),
                         recoding.coefficient * recoded.score});
    }
    std::ranges::stable_sort(parts, std::greater(),
                             [](const Contribution &part) { return std::abs(part.points); });
    return parts;
}

void putModel(TextBuffer &out, const Scorecard &card) {
    const XmlNode &root = card.document.root;
    const QStringView target = root.childNode(u"MetaData").childNode(u"Target").text();
    put(out, u"Model ", card.document.fileName, u", version ",
        root.childNode(u"Header").attribute(u"version"), u"\nTarget ", target, u", kind ",
        kindOfTarget(card), u"\n", std::ssize(card.recodings), u" recodings of ",
        std::ssize(card.columns), u" columns\n");
    for (const Recoding &recoding : card.recodings) putRecoding(out, recoding);
    put(out, u"\nConstant ", card.regression.constant, u"\n");
    if (card.isLogistic) put(out, u"\nProbability 1/(1+exp(-score))\n");
    if (!card.hasProbability()) put(out, u"\nNo probability: the result is the score.\n");
    if (!card.table.exists) return;
    put(out, u"\nProbability, by straight lines between these points\n");
    Table table = {{u"score"_s, u"probability"_s}};
    for (std::size_t i = 0; i < card.table.x.size(); ++i) {
        table.push_back({numberText(card.table.x[i]), numberText(card.table.y[i])});
    }
    putTable(out, table);
}

void putReport(TextBuffer &out, const Report &report) {
    putFindings(out, report);
    if (report.counts) put(out, u"\n", rowsOf(report.counts->rows), u" scored\n");
    if (report.counts && report.counts->uneven > 0) {
        put(out, rowsOf(report.counts->uneven),
            u" with fewer or more cells than titles, first row ",
            qsizetype(report.counts->firstUneven), u"\n");
    }
    if (report.comparison) putComparison(out, report);
}
