#include "check/reports/report.h"

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

// std::vector, for the reason in model/hash_tables.h.
using Row = std::vector<QString>;
using Table = std::vector<Row>;

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

void putRecoding(TextBuffer &out, const RecodingSection &recoding) {
    put(out, u"\n", recoding.title);
    if (!recoding.label.isEmpty()) put(out, u" (", recoding.label, u")");
    put(out, u"\n  ", recoding.type);
    if (recoding.isBoolean) put(out, u", boolean");
    put(out, u", coefficient ", recoding.coefficient, u"\n");
    if (!recoding.codes.isEmpty()) put(out, u"  missing codes: ", recoding.codes, u"\n");
    Table table = {{recoding.isCategorical ? u"value"_s : u"bin"_s, u"score"_s, u"points"_s}};
    for (const PositionLine &line : recoding.positions) {
        table.push_back({line.values, numberText(line.score), shortNumber(line.points)});
    }
    putTable(out, table);
}

void putFindings(TextBuffer &out, const Report &report) {
    for (const FindingGroup &group : report.open) {
        const FindingKind &kind = *group.kind;
        put(out, u"\n", kind.name, u" [", targetNames(group.targets).join(u", "_s), u"] docs/",
            kind.page, u"\n  ", kind.text, u"\n  Remedy: ", kind.remedy, u"\n");
        for (const Finding *const finding : group.findings) {
            put(out, u"  - ", placeText(report, *finding), u"\n");
        }
    }
    if (!report.accepted.empty()) put(out, u"\naccepted: ", namesOf(report.accepted), u"\n");
}

void putRows(TextBuffer &out, const Report &report) {
    const RowCounts &counts = *report.found.counts;
    put(out, u"\n");
    if (report.found.comparison) put(out, rowsText(counts.rows), u" scored\n");
    put(out, unreachedTitle(report.unreached), u"\n");
    for (const QString &line : unreachedLines(report.unreached)) put(out, u"  - ", line, u"\n");
    if (counts.uneven > 0) {
        put(out, rowsText(counts.uneven),
            u" with fewer or more cells than the header line, first row ", counts.firstUneven,
            u"\n");
    }
    // Not a second time below the model.
    if (!out.text().contains(report.notation)) put(out, u"\n", report.notation, u"\n");
}

void putWorst(TextBuffer &out, const Report &report, const ComparedRow &row,
              std::span<const PointsLine> parts) {
    put(out, u"\n  row ", row.row);
    if (!row.key.empty()) put(out, u", key ", shownText(row.key));
    put(out, u"\n    model:  ", expectedText(row), u"\n    result: ", foundText(report, row),
        u"\n");
    Table table;
    for (const PointsLine &part : parts) {
        table.push_back({u"  "_s + part.recoding, u'\'' + part.cell + u'\'', part.values,
                         shortNumber(part.points)});
    }
    putTable(out, table);
}

void putComparison(TextBuffer &out, const Report &report) {
    const ComparisonResult &result = *report.found.comparison;
    put(out, u"\nComparison with ", report.found.options->results, u" (", comparedTarget(report),
        u")\n  ", rowsText(result.rows), u" in both files\n");
    for (const CauseLine &cause : report.causes) put(out, u"  ", causeText(report, cause), u"\n");
    for (const CountLine &line : report.counts) {
        put(out, u"  ", line.label, u": ", rowsText(line.rows), line.more, u"\n");
    }
    for (const QString &line : summaryOf(report)) put(out, u"  ", line, u"\n");
    for (std::size_t i = 0; i < result.worst.size(); ++i) {
        putWorst(out, report, result.worst[i], report.worstPoints[i]);
    }
}

// Rounded down: 99.999 % is not shown as 100 %.
QString perCent(std::int64_t rows, std::int64_t of) {
    const double share = 100 * static_cast<double>(rows) / static_cast<double>(of);
    return shortNumber(std::floor(share * 100) / 100);
}

QString numbersText(const Prediction &numbers, const Prediction &other, bool hasScore,
                    bool hasProbability) {
    QStringList texts;
    if (hasScore) texts.append(u"score "_s + numberBeside(numbers.score, other.score));
    if (hasProbability) {
        texts.append(u"probability "_s + numberBeside(numbers.probability, other.probability));
    }
    return texts.join(u", "_s);
}

QStringView unreadableText(Unreadable kind) {
    constexpr QStringView texts[] = {
        u"empty",     u"NULL or similar", u"NaN",       u"decimal comma; see --decimal",
        u"thousands", u"per cent",        u"other text"};
    return texts[static_cast<std::size_t>(kind)];
}

} // namespace

void putModel(TextBuffer &out, const ModelSection &model) {
    put(out, u"Model ", model.file, u", ", writerText(model), u"\nTarget column ", model.target,
        u", kind ", model.kind, u"\n", std::ssize(model.recodings), u" recodings of ",
        model.columns, u" columns\n");
    if (!model.notation.isEmpty()) put(out, u"\n", model.notation, u"\n");
    for (const RecodingSection &recoding : model.recodings) putRecoding(out, recoding);
    put(out, u"\nConstant ", model.constant, u"\n");
    if (model.isLogistic) put(out, u"\nProbability 1/(1+exp(-score))\n");
    if (!model.hasProbability) put(out, u"\nNo probability: the result is the score.\n");
    if (!model.hasTable) return;
    put(out, u"\nProbability table, with straight lines between its points\n");
    Table table = {{u"score"_s, u"probability"_s}};
    for (const auto &[score, probability] : model.table) {
        table.push_back({numberText(score), numberText(probability)});
    }
    putTable(out, table);
}

void putVerdict(TextBuffer &out, const Report &report) {
    put(out, report.sentence.first(1).toUpper(), report.sentence.sliced(1), u"\n");
}

void putText(TextBuffer &out, const Report &report) {
    putVerdict(out, report);
    putFindings(out, report);
    if (report.found.counts) putRows(out, report);
    if (report.found.comparison) putComparison(out, report);
    if (!report.unaffecting.empty())
        put(out, u"\naffecting no row: ", namesOf(report.unaffecting), u"\n");
}

QString shortNumber(double number) {
    return numberBeside(number, number);
}

QString numberBeside(double number, double other) {
    if (std::isnan(number)) return u"none"_s;
    constexpr int most = 17;
    int digits = 6;
    const auto text = [&](double shown) { return generalNumber(shown + 0.0, digits); }; // no -0
    while (digits < most && number != other && text(number).view() == text(other).view()) ++digits;
    const NumberText shown = text(number);
    return QString::fromLatin1(shown.characters, shown.size);
}

QString expectedText(const ComparedRow &row) {
    return numbersText(row.expected, row.found, true, !std::isnan(row.expected.probability));
}

QString foundText(const Report &report, const ComparedRow &row) {
    const RowOptions &options = *report.found.options;
    return numbersText(row.found, row.expected, !options.score.isEmpty(),
                       !options.probability.isEmpty());
}

QString unreachedTitle(const Unreached &unreached) {
    return u"Positions that no row reaches: %1 of %2"_s.arg(std::ssize(unreached.places))
        .arg(unreached.reachable);
}

QStringList unreachedLines(const Unreached &unreached) {
    constexpr qsizetype most = 10;
    QStringList lines = unreached.places.first(std::min(most, unreached.places.size()));
    const qsizetype more = unreached.places.size() - lines.size();
    if (more > 0) lines.append(u"and %1 more"_s.arg(more));
    return lines;
}

QString writerText(const ModelSection &model) {
    return model.version.isEmpty() ? u"no tool version in its header"_s
                                   : u"tool version %1 in its header"_s.arg(model.version);
}

QString comparedTarget(const Report &report) {
    return targetNames(only(report.found.options->target)).constFirst();
}

QString placeText(const Report &report, const Finding &finding) {
    QString text = finding.place;
    if (report.found.counts && finding.countsRows()) text += u": "_s + rowsText(finding.rows);
    if (finding.rows > 0) text += u", first row %1"_s.arg(finding.firstRow);
    if (finding.togetherRows > 0) {
        text += u"; %1 only together with other findings"_s.arg(rowsText(finding.togetherRows));
    }
    return text;
}

QString causeText(const Report &report, const CauseLine &cause) {
    const std::int64_t unexplained = report.found.comparison->unexplained;
    const std::int64_t all = std::min(unexplained, mostLookedAt);
    const bool isHint = cause.name.startsWith(u"key-");
    QString text = (isHint ? QString() : u"results look like "_s) + cause.text;
    if (cause.rows == 0) return text;
    if (cause.rows >= unexplained) return text + u": "_s + rowsText(cause.rows);
    return u"%1: %2 of %3%4 unexplained rows"_s.arg(
        text, grouped(cause.rows), all < unexplained ? u"the first "_s : QString(), grouped(all));
}

QStringList summaryOf(const Report &report) {
    const ComparisonResult &result = *report.found.comparison;
    QStringList lines;
    const auto addDifferences = [&](QStringView column, const Differences &differences) {
        if (differences.rows == 0) return;
        QStringList shares;
        for (std::size_t i = 0; i < differences.within.size(); ++i) {
            shares.append(u"%1 % within %2"_s.arg(perCent(differences.within[i], differences.rows),
                                                  differenceSteps[i]));
        }
        const QString of = differences.rows < result.rows
                               ? u" (%1 with both numbers)"_s.arg(rowsText(differences.rows))
                               : QString();
        lines.append(column.toString() + of +
                     u": largest difference %1, median %2; %3"_s.arg(
                         shortNumber(differences.largest), shortNumber(differences.median()),
                         shares.join(u", "_s)));
    };
    addDifferences(u"score", result.scores);
    addDifferences(u"probability", result.probabilities);
    for (std::size_t i = 0; i < unreadableKinds; ++i) {
        const auto &[cells, first, row] = result.unreadable[i];
        if (cells == 0) continue;
        lines.append(u"not a number in the results: %1 cell%2 (%3), first '%4' in row %5"_s.arg(
            grouped(cells), cells == 1 ? u""_s : u"s"_s, unreadableText(static_cast<Unreadable>(i)),
            shownText(first), QString::number(row)));
    }
    return lines;
}

QString nameOf(Verdict verdict) {
    constexpr QStringView names[] = {u"clean", u"findings", u"unexplained"};
    return names[static_cast<std::size_t>(verdict)].toString();
}
