#include "check/reports/report.h"

#include "check/reports/report_html_text.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

QString escaped(QStringView text) {
    return text.toString().toHtmlEscaped();
}

// A length or a place in a drawing or in per cent.
QString place(double value) {
    return QString::number(std::isfinite(value) ? value : 0, 'f', 2);
}

// A row of a table, whose last cell is a number.
void putRow(TextBuffer &out, const QStringList &cells) {
    put(out, u"<tr>");
    for (const QString &cell : cells.first(cells.size() - 1)) {
        put(out, u"<td>", escaped(cell), u"</td>");
    }
    put(out, u"<td class=\"number\">", cells.back(), u"</td></tr>\n");
}

void putHead(TextBuffer &out, const Report &report) {
    const XmlNode &root = report.card.document.root;
    const QString name = escaped(report.card.document.fileName);
    put(out, pageHead, name, u"</title>\n", reportStyle, u"</head><body><main>\n<h1>", name,
        u"</h1>\n<p class=\"soft\">Target ",
        escaped(root.childNode(u"MetaData").childNode(u"Target").text()), u", kind ",
        escaped(kindOfTarget(report.card)), u", version ",
        escaped(root.childNode(u"Header").attribute(u"version")), u"</p>\n<div class=\"tiles\">\n");
    std::vector<std::pair<std::int64_t, QStringView>> tiles = {
        {std::ssize(report.card.recodings), u"recodings"},
        {std::ssize(report.findings), u"findings"}};
    if (report.counts) tiles.emplace_back(report.counts->rows, u"rows scored");
    if (const ComparisonResult *const result = report.comparison) {
        tiles.insert(tiles.end(), {{result->equal, u"as the model says"},
                                   {result->explainedRows, u"explained"},
                                   {result->unexplained, u"without explanation"}});
    }
    for (const auto &[number, label] : tiles) {
        put(out, u"<div><b>", number, u"</b>", label, u"</div>\n");
    }
    put(out, u"</div>\n");
}

void putFindings(TextBuffer &out, const Report &report) {
    put(out, u"<section><h2>Findings</h2>\n");
    if (report.findings.empty()) put(out, u"<article>None.</article>\n");
    for (const FindingGroup &group : groupsOf(report)) {
        const FindingKind &kind = *group.kind;
        put(out, u"<article><h3>", kind.name, u" <span class=\"tag\">",
            targetNames(group.targets).join(u", "_s), u"</span></h3>\n<p>", escaped(kind.text),
            u"</p>\n<p class=\"soft\">", escaped(kind.remedy), u" (docs/", kind.page,
            u")</p>\n<ul>\n");
        for (const QString &text : group.places) put(out, u"<li>", escaped(text), u"</li>\n");
        put(out, u"</ul></article>\n");
    }
    put(out, u"</section>\n");
}

// --- Comparison

void putWorst(TextBuffer &out, const Report &report, const ComparedRow &row) {
    put(out, u"<article><h3>Row ", row.row);
    if (!row.key.empty()) put(out, u", ", escaped(QString::fromStdString(row.key)));
    const auto numbers = [](const Prediction &p) {
        return u"score %1, probability %2."_s.arg(shortNumber(p.score), shortNumber(p.probability));
    };
    put(out, u"</h3>\n<p>Model: ", numbers(row.expected), u" Result: ", numbers(row.found),
        u"</p>\n<table>\n");
    for (const Contribution &part : contributionsOf(report.card, row)) {
        putRow(out, {titleOf(*part.recoding), part.cell, part.values, shortNumber(part.points)});
    }
    put(out, u"</table></article>\n");
}

void putComparison(TextBuffer &out, const Report &report) {
    const ComparisonResult &result = *report.comparison;
    put(out, u"<section><h2>Comparison with ", escaped(report.compared->results), u" (",
        targetNames(only(report.compared->target)).front(), u")</h2>\n<article><table>\n");
    if (result.equal > 0) putRow(out, {u"as the model says"_s, QString::number(result.equal)});
    for (const ComparisonCount &count : countsOf(result)) {
        putRow(out, {count.label + count.more, QString::number(count.rows)});
    }
    put(out, u"</table></article>\n");
    for (const ComparedRow &row : result.worst) putWorst(out, report, row);
    put(out, u"</section>\n");
}

// --- The curve

// What a drawing or its bars reach from and to.
struct Range {
    double from = 0;
    double to = 0;

    double at(double share) const { return from + share * (to - from); }
    double shareOf(double value) const {
        return to > from ? (std::clamp(value, from, to) - from) / (to - from) : 0;
    }
    QString across(double score) const { return place(40 + 936 * shareOf(score)); }
};

// Where a probability, or a share of the most rows, stands.
QString above(double share) {
    return place(230 - 220 * share);
}

// From the lowest to the highest score of the table and of the rows.
Range rangeOf(const Report &report) {
    const auto &x = report.card.table.x;
    Range range = x.empty() ? Range{-5, 5} : Range{x.back(), x.front()};
    for (std::size_t i = 0; report.counts && i < report.counts->scores.size(); ++i) {
        if (report.counts->scores[i] == 0) continue;
        range.from = std::min(range.from, report.counts->stepAt(i));
        range.to = std::max(range.to, report.counts->stepAt(i + 1));
    }
    if (!(range.to > range.from)) range.to = range.from + 1;
    return {range.at(-0.05), range.at(1.05)};
}

void putBars(TextBuffer &out, const RowCounts &counts, const Range &range) {
    const auto most = static_cast<double>(std::ranges::max(counts.scores));
    for (std::size_t i = 0; i < counts.scores.size(); ++i) {
        if (counts.scores[i] == 0) continue;
        put(out,
            u"<path d=\"M%1 230V%2H%3V230Z\" fill=\"#d5e2f1\" stroke=\"#fff\"/>\n"_s.arg(
                range.across(counts.stepAt(i)), above(static_cast<double>(counts.scores[i]) / most),
                range.across(counts.stepAt(i + 1))));
    }
}

void putAxes(TextBuffer &out, const Range &range) {
    for (const double share : {0.0, 0.25, 0.5, 0.75, 1.0}) {
        put(out, u"<path d=\"M40 %1H976\" stroke=\"#dfe5ec\"/><text x=\"34\" y=\"%1\" "
                 "text-anchor=\"end\" dominant-baseline=\"middle\">%2</text>\n"_s.arg(
                     above(share), place(share)));
    }
    for (int i = 0; i <= 8; ++i) {
        const double score = range.at(i / 8.0);
        put(out, u"<text x=\"%1\" y=\"248\" text-anchor=\"middle\">%2</text>\n"_s.arg(
                     range.across(score), QString::number(score, 'g', 3)));
    }
}

void putLine(TextBuffer &out, const Scorecard &card, const Range &range) {
    // The table's own points among others, so that its corners are seen.
    std::vector<double> scores(card.table.x.begin(), card.table.x.end());
    for (int i = 0; i <= 200; ++i) scores.push_back(range.at(i / 200.0));
    std::erase_if(scores, [](double score) { return std::isnan(score); });
    std::ranges::sort(scores);
    put(out, u"<polyline fill=\"none\" stroke=\"#2563a8\" stroke-width=\"2\" points=\"");
    for (const double score : scores) {
        const double p = std::clamp(probabilityOf(card, score), 0.0, 1.0);
        put(out, range.across(score), u",", above(p), u" ");
    }
    put(out, u"\"/>\n");
}

void putCurve(TextBuffer &out, const Report &report) {
    const bool hasProbability = report.card.hasProbability();
    if (!hasProbability && !report.counts) return;
    const Range range = rangeOf(report);
    put(out, u"<section><h2>", hasProbability ? u"Probability by score"_s : u"Scores"_s,
        u"</h2>\n<figure><svg viewBox=\"0 0 1000 260\" role=\"img\" "
        "aria-label=\"probability by score\">\n");
    if (report.counts) putBars(out, *report.counts, range);
    putAxes(out, range);
    if (hasProbability) putLine(out, report.card, range);
    put(out, u"</svg>");
    if (report.counts) {
        put(out, u"<figcaption class=\"soft\">The bars are the rows by score; the highest has ",
            std::ranges::max(report.counts->scores), u".</figcaption>");
    }
    put(out, u"</figure></section>\n");
}

// --- Recodings

// Bars of one model share a scale, so that recodings can be compared.
Range scaleOf(const Scorecard &card) {
    Range scale;
    for (const Recoding &recoding : card.recodings) {
        for (const double score : recoding.y) {
            const double points = recoding.coefficient * score;
            if (!std::isfinite(points)) continue;
            scale.from = std::min(scale.from, points);
            scale.to = std::max(scale.to, points);
        }
    }
    return scale;
}

void putRecoding(TextBuffer &out, const Report &report, std::size_t at, const Range &scale) {
    const Recoding &recoding = report.card.recodings[at];
    const Variable &variable = *recoding.variable;
    put(out, u"<article><h3>", escaped(titleOf(recoding)), u"</h3>\n<p class=\"soft\">",
        escaped(variable.label), u"; ", escaped(variable.type), u", coefficient ",
        recoding.coefficient,
        u"</p>\n<table><tr><th>values</th><th></th><th class=\"number\">points</th>",
        report.counts ? u"<th class=\"number\">rows</th>"_s : QString(), u"</tr>\n");
    const double zero = 100 * scale.shareOf(0);
    for (std::size_t i = 0; i < recoding.y.size(); ++i) {
        const double points = recoding.coefficient * recoding.y[i];
        const double end = 100 * scale.shareOf(points);
        put(out, u"<tr><td>", escaped(valuesAt(recoding, i)), u"</td><td class=\"bar\"><i",
            points < 0 ? u" class=\"below\""_s : QString(),
            u" style=\"left:%1%;width:%2%\"></i><u style=\"left:%3%\"></u></td>"_s.arg(
                place(std::min(zero, end)), place(std::abs(end - zero)), place(zero)),
            u"<td class=\"number\">", shortNumber(points), u"</td>");
        if (report.counts) {
            put(out, u"<td class=\"number\">", report.counts->positions[at][i], u"</td>");
        }
        put(out, u"</tr>\n");
    }
    put(out, u"</table></article>\n");
}

} // namespace

void putHtmlReport(TextBuffer &out, const Report &report) {
    putHead(out, report);
    putFindings(out, report);
    if (report.comparison) putComparison(out, report);
    putCurve(out, report);
    put(out, u"<section><h2>Recodings</h2>\n<p>Constant ", report.card.regression.constant,
        u"; all bars have one scale.</p>\n<div class=\"recodings\">\n");
    const Range scale = scaleOf(report.card);
    for (std::size_t i = 0; i < report.card.recodings.size(); ++i) {
        putRecoding(out, report, i, scale);
    }
    put(out, u"</div></section>\n</main></body></html>\n");
}
