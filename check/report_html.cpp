#include "check/report.h"

#include "check/report_html_text.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

QString escaped(const QString &text) {
    return text.toHtmlEscaped();
}

QString escaped(QStringView text) {
    return text.toString().toHtmlEscaped();
}

// A length or a place in a drawing or in per cent.
QString place(double value) {
    return QString::number(std::isfinite(value) ? value : 0, 'f', 2);
}

void putTile(TextBuffer &out, std::int64_t number, QStringView label) {
    put(out, u"<div><b>", qsizetype(number), u"</b>", label, u"</div>\n");
}

void putHead(TextBuffer &out, const Report &report) {
    const XmlNode &root = report.card.document.root;
    const XmlNode metaData = root.childNode(u"MetaData");
    const QString name = escaped(report.card.document.fileName);
    put(out,
        u"<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>",
        name, u"</title>\n", reportStyle, u"</head><body><main>\n<h1>", name,
        u"</h1>\n<p class=\"soft\">Target ", escaped(metaData.childNode(u"Target").text()),
        u", kind ", escaped(metaData.attribute(u"tkind")), u", version ",
        escaped(root.childNode(u"Header").attribute(u"version")), u"</p>\n<div class=\"tiles\">\n");
    putTile(out, std::ssize(report.card.recodings), u"recodings");
    putTile(out, std::ssize(report.findings), u"findings");
    if (report.counts) putTile(out, report.counts->rows, u"rows scored");
    if (report.comparison) {
        putTile(out, report.comparison->equal, u"as the model says");
        putTile(out, report.comparison->explainedRows, u"explained");
        putTile(out, report.comparison->unexplained, u"without explanation");
    }
    put(out, u"</div>\n");
}

void putFindings(TextBuffer &out, const Report &report) {
    put(out, u"<section><h2>Findings</h2>\n");
    if (report.findings.empty()) put(out, u"<article>None.</article>\n");
    for (const FindingGroup &group : groupsOf(report.findings)) {
        const FindingKind &kind = *group.kind;
        put(out, u"<article><h3>", kind.name, u" <span class=\"tag\">",
            targetNames(group.targets).join(u", "_s), u"</span></h3>\n<p>", escaped(kind.text),
            u"</p>\n<p class=\"soft\">", escaped(kind.remedy), u" (docs/", kind.page,
            u")</p>\n<ul>\n");
        for (const Finding &finding : group.findings) {
            put(out, u"<li>", escaped(finding.place));
            if (report.counts && finding.byRows) put(out, u": rows ", qsizetype(finding.rows));
            if (finding.rows > 0) put(out, u", the first is ", qsizetype(finding.firstRow));
            put(out, u"</li>\n");
        }
        put(out, u"</ul></article>\n");
    }
    put(out, u"</section>\n");
}

// --- Comparison

void putCount(TextBuffer &out, const ComparisonCount &count) {
    put(out, u"<tr><td>", escaped(count.label), u"<span class=\"soft\">", escaped(count.more),
        u"</span></td><td class=\"number\">", qsizetype(count.rows), u"</td></tr>\n");
}

void putWorst(TextBuffer &out, const Report &report, const ComparedRow &row) {
    put(out, u"<article><h3>Row ", qsizetype(row.row));
    if (!row.key.empty()) put(out, u", ", escaped(QString::fromStdString(row.key)));
    put(out, u"</h3>\n<p>Model: score ", shortNumber(row.expected.score), u", probability ",
        shortNumber(row.expected.probability), u". Result: score ", shortNumber(row.found.score),
        u", probability ", shortNumber(row.found.probability), u".</p>\n<table>\n");
    for (const Contribution &part : contributionsOf(report.card, row)) {
        put(out, u"<tr><td>", escaped(titleOf(*part.recoding)), u"</td><td>", escaped(part.cell),
            u"</td><td>", escaped(part.values), u"</td><td class=\"number\">",
            shortNumber(part.points), u"</td></tr>\n");
    }
    put(out, u"</table></article>\n");
}

void putComparison(TextBuffer &out, const Report &report) {
    const ComparisonResult &result = *report.comparison;
    put(out, u"<section><h2>Comparison with ", escaped(report.compared->results), u" (",
        targetNames(only(report.compared->target)).constFirst(), u")</h2>\n<article><table>\n");
    if (result.equal > 0) putCount(out, {u"as the model says"_s, result.equal, {}});
    for (const ComparisonCount &count : countsOf(result)) putCount(out, count);
    put(out, u"</table></article>\n");
    for (const ComparedRow &row : result.worst) putWorst(out, report, row);
    put(out, u"</section>\n");
}

// --- The curve

constexpr double curveWidth = 1000;
constexpr double curveHeight = 260;
constexpr double curveFoot = 230; // where probability 0 and no rows are
constexpr double curveHead = 10;
constexpr double curveLeft = 40;

struct Range {
    double from;
    double to;

    double across(double score) const {
        const double share = (std::clamp(score, from, to) - from) / (to - from);
        return curveLeft + share * (curveWidth - curveLeft - 24);
    }
};

// From the lowest to the highest score of the table and of the rows.
Range rangeOf(const Report &report) {
    const std::pmr::vector<double> &x = report.card.table.x;
    Range range{-5, 5};
    if (!x.empty()) range = {x.back(), x.front()};
    if (const RowCounts *const counts = report.counts) {
        const auto steps = static_cast<double>(counts->scores.size());
        const double width = (counts->highestScore - counts->lowestScore) / steps;
        for (std::size_t i = 0; i < counts->scores.size(); ++i) {
            if (counts->scores[i] == 0) continue;
            const double start = counts->lowestScore + static_cast<double>(i) * width;
            range.from = std::min(range.from, start);
            range.to = std::max(range.to, start + width);
        }
    }
    if (!(range.to > range.from)) range.to = range.from + 1;
    const double margin = (range.to - range.from) / 20;
    return {range.from - margin, range.to + margin};
}

void putScores(TextBuffer &out, const RowCounts &counts, const Range &range) {
    const std::int64_t most = std::max<std::int64_t>(std::ranges::max(counts.scores), 1);
    const auto steps = static_cast<double>(counts.scores.size());
    const double width = (counts.highestScore - counts.lowestScore) / steps;
    for (std::size_t i = 0; i < counts.scores.size(); ++i) {
        if (counts.scores[i] == 0) continue;
        const double start = counts.lowestScore + static_cast<double>(i) * width;
        const double left = range.across(start);
        const double height = (curveFoot - curveHead) * static_cast<double>(counts.scores[i]) /
                              static_cast<double>(most);
        put(out, u"<rect x=\"", place(left), u"\" y=\"", place(curveFoot - height), u"\" width=\"",
            place(std::max(range.across(start + width) - left - 1, 0.5)), u"\" height=\"",
            place(height), u"\" fill=\"#d5e2f1\"/>\n");
    }
}

void putAxes(TextBuffer &out, const Range &range) {
    for (const double share : {0.0, 0.25, 0.5, 0.75, 1.0}) {
        const QString y = place(curveFoot - share * (curveFoot - curveHead));
        put(out, u"<line x1=\"", place(curveLeft), u"\" x2=\"", place(curveWidth - 24), u"\" y1=\"",
            y, u"\" y2=\"", y, u"\" stroke=\"#dfe5ec\"/><text x=\"34\" y=\"", y,
            u"\" text-anchor=\"end\" dominant-baseline=\"middle\">", place(share), u"</text>\n");
    }
    for (int i = 0; i <= 8; ++i) {
        const double score = range.from + (range.to - range.from) * i / 8;
        put(out, u"<text x=\"", place(range.across(score)), u"\" y=\"248\" text-anchor=\"middle\">",
            QString::number(score, 'g', 3), u"</text>\n");
    }
}

void putCurve(TextBuffer &out, const Report &report) {
    if (!report.card.hasProbability() && !report.counts) return;
    const Range range = rangeOf(report);
    put(out, u"<section><h2>",
        report.card.hasProbability() ? u"Probability by score"_s : u"Scores"_s,
        u"</h2>\n<figure><svg viewBox=\"0 0 ", place(curveWidth), u" ", place(curveHeight),
        u"\" role=\"img\" aria-label=\"probability by score\">\n");
    if (report.counts) putScores(out, *report.counts, range);
    putAxes(out, range);
    if (report.card.hasProbability()) {
        put(out, u"<polyline fill=\"none\" stroke=\"#2563a8\" stroke-width=\"2\" points=\"");
        // The table's own points among others, so that its corners are seen.
        std::vector<double> scores(report.card.table.x.rbegin(), report.card.table.x.rend());
        constexpr int steps = 200;
        for (int i = 0; i <= steps; ++i) {
            scores.push_back(range.from + (range.to - range.from) * i / steps);
        }
        std::erase_if(scores, [](double score) { return std::isnan(score); });
        std::ranges::sort(scores);
        for (const double score : scores) {
            const double p = std::clamp(probabilityOf(report.card, score), 0.0, 1.0);
            put(out, place(range.across(score)), u",",
                place(curveFoot - p * (curveFoot - curveHead)), u" ");
        }
        put(out, u"\"/>\n");
    }
    put(out, u"</svg>");
    if (report.counts) {
        put(out, u"<figcaption class=\"soft\">The bars are the rows by score; the highest has ",
            qsizetype(std::ranges::max(report.counts->scores)), u".</figcaption>");
    }
    put(out, u"</figure></section>\n");
}

// --- Recodings

// Bars of one model share a scale, so that recodings can be compared.
struct Scale {
    double least = 0;
    double most = 0;

    double across(double points) const {
        return most > least ? 100 * (points - least) / (most - least) : 0;
    }
};

Scale scaleOf(const Scorecard &card) {
    Scale scale;
    for (const Recoding &recoding : card.recodings) {
        for (const double score : recoding.y) {
            const double points = recoding.coefficient * score;
            if (!std::isfinite(points)) continue;
            scale.least = std::min(scale.least, points);
            scale.most = std::max(scale.most, points);
        }
    }
    return scale;
}

void putRecoding(TextBuffer &out, const Report &report, std::size_t at, const Scale &scale) {
    const Recoding &recoding = report.card.recodings[at];
    put(out, u"<article><h3>", escaped(titleOf(recoding)), u"</h3>\n<p class=\"soft\">",
        escaped(recoding.variable->node.attribute(u"displayName")), u"; ",
        escaped(recoding.variable->node.attribute(u"type")), u", coefficient ",
        recoding.coefficient,
        u"</p>\n<table><tr><th>values</th><th></th><th class=\"number\">points</th>");
    if (report.counts) put(out, u"<th class=\"number\">rows</th>");
    put(out, u"</tr>\n");
    for (std::size_t i = 0; i < recoding.y.size(); ++i) {
        const double points = recoding.coefficient * recoding.y[i];
        const double zero = scale.across(0);
        const double end = scale.across(points);
        put(out, u"<tr><td>", escaped(valuesAt(recoding, i)), u"</td><td class=\"bar\"><i",
            points < 0 ? QStringView(u" class=\"below\"") : QStringView(), u" style=\"left:",
            place(std::min(zero, end)), u"%;width:", place(std::abs(end - zero)),
            u"%\"></i><u style=\"left:", place(zero), u"%\"></u></td><td class=\"number\">",
            shortNumber(points), u"</td>");
        if (report.counts) {
            put(out, u"<td class=\"number\">", qsizetype(report.counts->positions[at][i]),
                u"</td>");
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
    const Scale scale = scaleOf(report.card);
    for (std::size_t i = 0; i < report.card.recodings.size(); ++i) {
        putRecoding(out, report, i, scale);
    }
    put(out, u"</div></section>\n</main></body></html>\n");
}
