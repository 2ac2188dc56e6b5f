#include "check/reports/report.h"

#include "check/reports/report_html_text.h"

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

QString escaped(QStringView text) {
    return text.toString().toHtmlEscaped();
}

// A length or a coordinate, in units of the drawing or in per cent.
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
    const ModelSection &model = report.model;
    put(out, pageHead, escaped(model.file), u"</title>\n", reportStyle,
        u"</head><body><main>\n<h1>", escaped(model.file),
        u"</h1>\n<p class=\"soft\">Target column ", escaped(model.target), u", kind ",
        escaped(model.kind), u", ", escaped(writerText(model)), u"</p>\n<div class=\"tiles\">\n");
    const auto putTile = [&](std::int64_t number, QStringView label) {
        put(out, u"<div><b>", grouped(number), u"</b>", label, u"</div>\n");
    };
    putTile(std::ssize(model.recodings), u"recodings");
    putTile(countPlaces(report.open), u"open findings");
    if (report.found.counts) putTile(report.found.counts->rows, u"rows scored");
    if (report.found.comparison) {
        const ComparisonResult &result = *report.found.comparison;
        putTile(result.equal, u"as the model says");
        putTile(result.explainedRows, u"explained");
        putTile(result.unexplained, u"unexplained");
        const std::int64_t apart = result.missing.rows + result.extra.rows + result.repeated.rows;
        if (apart > 0) putTile(apart, u"missing, extra or duplicate");
    }
    put(out, u"</div>\n<p class=\"verdict\"><b>Verdict: ", nameOf(report.verdict), u".</b> ");
    putVerdict(out, report);
    put(out, u"</p>\n");
}

void putNames(TextBuffer &out, QStringView title, std::span<const FindingGroup> groups) {
    if (groups.empty()) return;
    put(out, u"<article>", title, u": ", escaped(namesOf(groups)), u"</article>\n");
}

// The arguments, quoted for a shell.
QString callText(QStringList arguments) {
    for (QString &argument : arguments) {
        const auto isPlain = [](QChar c) {
            return c.isLetterOrNumber() || u"-_.,:/=@%+"_s.contains(c);
        };
        if (!argument.isEmpty() && std::ranges::all_of(argument, isPlain)) continue;
        argument = u'\'' + argument.replace(u"'"_s, u"'\\''"_s) + u'\'';
    }
    return arguments.join(u' ');
}

void putEvidence(TextBuffer &out, const Report &report) {
    const Found &found = report.found;
    const Evidence &evidence = *found.evidence;
    put(out,
        u"<section><h2>Checked files</h2>\n<article><table>\n<tr><th>file</th><th></th>"
        "<th>SHA-256</th><th class=\"number\">bytes</th><th class=\"number\">rows</th></tr>\n");
    for (const Evidence::File &file : evidence.files) {
        const FileRead &read = file.read;
        const bool isRead = !read.sha256.isEmpty();
        put(out, u"<tr><td>", escaped(file.role), u"</td><td>", escaped(file.path),
            u"</td><td class=\"hash\">",
            isRead ? QString::fromLatin1(read.sha256.toHex()) : u"not read"_s,
            u"</td><td class=\"number\">", isRead ? grouped(read.bytes) : QString(),
            u"</td><td class=\"number\">", read.rows < 0 ? QString() : grouped(read.rows),
            u"</td></tr>\n");
    }
    put(out, u"</table>\n<p>Checked on ", evidence.time, u" with scorewright-check ",
        evidence.version, u": <code>scorewright-check ", escaped(callText(evidence.arguments)),
        u"</code></p>\n");
    QStringList missing;
    for (const std::string &text : found.options->missing) {
        missing.append(u'\'' + QString::fromStdString(text) + u'\'');
    }
    if (!missing.isEmpty()) {
        put(out, u"<p>Cells read as missing: empty, ", escaped(missing.join(u", "_s)), u"</p>\n");
    }
    if (found.comparison) {
        put(out, u"<p>Results of ", comparedTarget(report), u", tolerance ",
            shortNumber(found.options->tolerance).replace(u"e-0"_s, u"e-"_s), u"</p>\n");
    }
    const QStringList accepted = namesOf(found.accepted);
    if (!accepted.isEmpty()) put(out, u"<p>Accepted: ", accepted.join(u", "_s), u"</p>\n");
    put(out, u"</article></section>\n");
}

void putFindings(TextBuffer &out, const Report &report) {
    put(out, u"<section><h2>Findings</h2>\n");
    if (report.open.empty()) put(out, u"<article>No open findings.</article>\n");
    for (const FindingGroup &group : report.open) {
        const FindingKind &kind = *group.kind;
        put(out, u"<article><h3>", kind.name, u" <span class=\"tag\">",
            targetNames(group.targets).join(u", "_s), u"</span></h3>\n<p>", escaped(kind.text),
            u"</p>\n<p class=\"soft\">", escaped(kind.remedy), u" (docs/", kind.page,
            u")</p>\n<ul>\n");
        for (const Finding *const finding : group.findings) {
            put(out, u"<li>", escaped(placeText(report, *finding)), u"</li>\n");
        }
        put(out, u"</ul></article>\n");
    }
    putNames(out, u"Accepted", report.accepted);
    putNames(out, u"Affecting no row", report.unaffecting);
    put(out, u"</section>\n");
}

// --- Comparison

void putWorst(TextBuffer &out, const Report &report, const ComparedRow &row,
              std::span<const PointsLine> parts) {
    put(out, u"<article><h3>Row ", row.row);
    if (!row.key.empty()) put(out, u", key ", escaped(QString::fromStdString(row.key)));
    put(out, u"</h3>\n<p>Model: ", expectedText(row), u". Result: ", foundText(report, row),
        u".</p>\n<table><thead><tr><th>recoding</th><th>cell</th><th>position</th>"
        "<th class=\"number\">points</th></tr></thead>\n");
    for (const PointsLine &part : parts) {
        putRow(out, {part.recoding, part.cell, part.values, shortNumber(part.points)});
    }
    put(out, u"</table></article>\n");
}

// The number of rows by the power of ten of their difference.
void putHistogram(TextBuffer &out, QStringView title, const Differences &differences) {
    if (differences.rows == 0) return;
    const auto counts = differences.histogram();
    const auto most = static_cast<double>(std::ranges::max(counts));
    put(out, u"<article><h3>Differences of the ", title,
        u"</h3>\n<table><thead><tr><th>size</th><th></th><th class=\"number\">rows</th></tr>"
        "</thead>\n");
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] == 0) continue;
        const int power = Differences::leastPower + static_cast<int>(i);
        put(out,
            i == 0 ? u"<tr><td>below 1e%1"_s.arg(power + 1)
                   : u"<tr><td>1e%1 to 1e%2"_s.arg(power).arg(power + 1),
            u"</td><td class=\"bar\"><i style=\"left:0;width:%1%\"></i></td>"_s.arg(
                place(100 * static_cast<double>(counts[i]) / most)),
            u"<td class=\"number\">", grouped(counts[i]), u"</td></tr>\n");
    }
    put(out, u"</table></article>\n");
}

void putParagraphs(TextBuffer &out, const QStringList &lines) {
    if (lines.isEmpty()) return;
    put(out, u"<article>");
    for (const QString &line : lines) put(out, u"<p>", escaped(line), u"</p>\n");
    put(out, u"</article>\n");
}

void putComparison(TextBuffer &out, const Report &report) {
    const ComparisonResult &result = *report.found.comparison;
    put(out, u"<section><h2>Comparison with ", escaped(report.found.options->results), u" (",
        comparedTarget(report), u")</h2>\n");
    QStringList causes;
    for (const CauseLine &cause : report.causes) causes.append(causeText(report, cause));
    putParagraphs(out, causes);
    put(out, u"<article><table>\n");
    for (const CountLine &line : report.counts) {
        putRow(out, {line.label + line.more, grouped(line.rows)});
    }
    put(out, u"</table></article>\n");
    putParagraphs(out, summaryOf(report));
    put(out, u"<div class=\"recodings\">\n");
    putHistogram(out, u"score", result.scores);
    putHistogram(out, u"probability", result.probabilities);
    put(out, u"</div>\n");
    for (std::size_t i = 0; i < result.worst.size(); ++i) {
        putWorst(out, report, result.worst[i], report.worstPoints[i]);
    }
    put(out, u"</section>\n");
}

// --- Pictures: a drawing of `width` by `height`, scaled to its frame, and axes with labels of a
// fixed size around it.

constexpr double width = 1000;
constexpr double height = 220;

QString across(const Scale &scale, double value) {
    return place(width * scale.shareOf(value));
}
QString above(double share) {
    return place(height * (1 - share));
}

// A labelled place on an axis.
struct Tick {
    double value = 0;
    bool isMinor = false; // hidden in a narrow window
};

// Up to `most` steps of 1, 2 or 5 times a power of ten, of at least 1 on an axis of counts. Empty
// for a scale without extent or of infinite extent.
std::vector<Tick> ticksOf(const Scale &scale, int most, bool isCount = false) {
    const double step = (scale.to - scale.from) / most;
    if (!std::isnormal(step)) return {};
    // Parsed from text, to be the double nearest to a decimal number.
    const auto numberOf = [](std::int64_t digits, int exponent) {
        double number = noNumber;
        readNumber(std::to_string(digits) + 'e' + std::to_string(exponent), number);
        return number;
    };
    const int least = static_cast<int>(std::floor(std::log10(step)));
    for (int exponent = isCount ? std::max(least, 0) : least;; ++exponent) {
        for (const int factor : {1, 2, 5}) {
            const double spacing = numberOf(factor, exponent);
            const auto first = static_cast<std::int64_t>(std::ceil(scale.from / spacing));
            const auto last = static_cast<std::int64_t>(std::floor(scale.to / spacing));
            if (last - first > most) continue;
            std::vector<Tick> ticks;
            for (std::int64_t i = first; i <= last; ++i) {
                ticks.push_back({numberOf(i * factor, exponent), i % 2 != 0});
            }
            return ticks;
        }
    }
}

// An axis on the side of the drawing, "left", "right" or "below", with up to `most` labels.
void putAxis(TextBuffer &out, QStringView side, const Scale &scale, int most,
             bool isCount = false) {
    for (const Tick &tick : ticksOf(scale, most, isCount)) {
        put(out, u"<i class=\"", side, tick.isMinor ? u" minor"_s : QString(), u"\" style=\"",
            side == u"below" ? u"left:"_s : u"bottom:"_s, place(100 * scale.shareOf(tick.value)),
            u"%\"><b>", numberText(tick.value), u"</b></i>\n");
    }
}

// The axis of scores, with fewer labels if they are long.
void putScores(TextBuffer &out, const Scale &scale) {
    int most = 10;
    const auto length = [&] {
        qsizetype units = 0;
        for (const Tick &tick : ticksOf(scale, most)) units += numberText(tick.value).size();
        return units;
    };
    while (most > 2 && length() > 44) --most;
    putAxis(out, u"below", scale, most);
    put(out, u"<span class=\"under\">score</span>\n");
}

void putBars(TextBuffer &out, const RowCounts &counts, const Scale &scale) {
    const auto most = static_cast<double>(std::ranges::max(counts.scores));
    for (std::size_t i = 0; i < counts.scores.size(); ++i) {
        if (counts.scores[i] == 0) continue;
        const double share = static_cast<double>(counts.scores[i]) / most;
        put(out, u"<path d=\"M%1 %2V%3H%4V%2Z\" fill=\"#d5e2f1\" stroke=\"#fff\"/>\n"_s.arg(
                     across(scale, counts.stepAt(i)), place(height), above(share),
                     across(scale, counts.stepAt(i + 1))));
    }
}

void putLine(TextBuffer &out, std::span<const Prediction> curve, const Scale &scale) {
    put(out, u"<polyline fill=\"none\" stroke=\"#2563a8\" stroke-width=\"2\" points=\"");
    for (const auto &[score, probability] : curve) {
        put(out, across(scale, score), u",", above(probability), u" ");
    }
    put(out, u"\"/>\n");
}

void putCurve(TextBuffer &out, const Report &report) {
    const ModelSection &model = report.model;
    const RowCounts *const counts = report.found.counts;
    if (!model.hasProbability && !counts) return;
    const QString title = model.hasProbability ? u"Probability by score"_s : u"Scores"_s;
    put(out, u"<section><h2>", title, u"</h2>\n<figure><div class=\"plot\">\n");
    putScores(out, model.scores);
    if (model.hasProbability) {
        putAxis(out, u"left", {0, 1}, 5);
        put(out, u"<span class=\"over\">probability</span>\n");
    }
    if (counts) {
        const auto most = static_cast<double>(std::ranges::max(counts->scores));
        putAxis(out, model.hasProbability ? u"right" : u"left", {0, most}, 5, true);
        put(out, u"<span class=\"over",
            model.hasProbability ? u" right\">rows</span>\n"_s : u"\">rows</span>\n"_s);
    }
    put(out,
        u"<svg viewBox=\"0 0 1000 220\" preserveAspectRatio=\"none\" role=\"img\" aria-label=\"",
        title, u"\">\n");
    if (counts) putBars(out, *counts, model.scores);
    if (model.hasProbability) putLine(out, model.curve, model.scores);
    put(out, u"</svg></div>");
    if (counts) {
        put(out, u"<figcaption class=\"soft\">Bars: rows by score, at most ",
            std::ranges::max(counts->scores), u" in a bar.</figcaption>");
    }
    put(out, u"</figure></section>\n");
}

// --- Recodings

void putUnreached(TextBuffer &out, const Unreached &unreached) {
    put(out, u"<article>", unreachedTitle(unreached));
    for (const QString &line : unreachedLines(unreached)) put(out, u"<br>\n– ", escaped(line));
    put(out, u"</article>\n");
}

void putRecoding(TextBuffer &out, const RecodingSection &recoding, const Scale &scale,
                 bool hasRows) {
    constexpr std::size_t longest = 50; // fits on a printed page
    put(out, recoding.positions.size() > longest ? u"<article class=\"long\">"_s : u"<article>"_s,
        u"<h3>", escaped(recoding.title), u"</h3>\n<p class=\"soft\">", escaped(recoding.label),
        recoding.label.isEmpty() ? QString() : u"; "_s, escaped(recoding.type), u", coefficient ",
        recoding.coefficient,
        u"</p>\n<table><thead><tr><th>position</th><th></th><th class=\"number\">points</th>",
        hasRows ? u"<th class=\"number\">rows</th>"_s : QString(), u"</tr></thead>\n");
    const double zero = 100 * scale.shareOf(0);
    for (const PositionLine &line : recoding.positions) {
        const double end = 100 * scale.shareOf(line.points);
        put(out, u"<tr><td>", escaped(line.values), u"</td><td class=\"bar\"><i",
            line.points < 0 ? u" class=\"below\""_s : QString(),
            u" style=\"left:%1%;width:%2%\"></i><u style=\"left:%3%\"></u></td>"_s.arg(
                place(std::min(zero, end)), place(std::abs(end - zero)), place(zero)),
            u"<td class=\"number\">", shortNumber(line.points), u"</td>");
        if (hasRows) put(out, u"<td class=\"number\">", grouped(line.rows), u"</td>");
        put(out, u"</tr>\n");
    }
    put(out, u"</table></article>\n");
}

} // namespace

void putPage(TextBuffer &out, const Report &report) {
    const ModelSection &model = report.model;
    putHead(out, report);
    if (report.found.evidence) putEvidence(out, report);
    put(out, signatures);
    putFindings(out, report);
    if (report.found.comparison) putComparison(out, report);
    putCurve(out, report);
    put(out, u"<section><h2>Recodings</h2>\n<p>Constant ", model.constant,
        u"; all bars share one scale.",
        model.notation.isEmpty() ? u""_s : u" "_s + escaped(model.notation), u"</p>\n");
    if (report.found.counts) putUnreached(out, report.unreached);
    put(out, u"<div class=\"recodings\">\n");
    for (const RecodingSection &recoding : model.recodings) {
        putRecoding(out, recoding, model.points, report.found.counts != nullptr);
    }
    put(out, u"</div></section>\n</main></body></html>\n");
}
