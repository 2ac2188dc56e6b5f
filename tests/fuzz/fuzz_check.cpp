// Findings, rows and comparison: rows of a fixed model, which are compared with themselves; or a
// model document, on fixed rows.
#include "check/model_findings.h"
#include "check/report.h"
#include "tests/fuzz/fuzz.h"

namespace {

constexpr std::string_view fixedRows =
    "Age in.years,rate,job-type,size,records,a field name that is longer than 31,score\n"
    "18,2.5,clerk,10,yes,x,1\n-999.5,x,\"5\"\" pipe\",, no ,,nan\n,,,,,,\n";

void checkRows(const QString &model, const QString &rows) {
    const Scorecard card = readScorecard(model);
    if (!card.document.problem.isEmpty()) return;
    std::vector<Finding> findings = inspect(card, {});
    for (const Target target : {Target::Sql, Target::Vba, Target::Python, Target::Html}) {
        ComparisonOptions options;
        options.file = rows;
        options.key = target == Target::Sql ? (card.columns.empty() ? QString() : card.columns[0])
                                            : QString();
        options.score = QStringLiteral("score");
        options.target = target;
        Comparison comparison(card, findings, options);
        const bool isOpen = comparison.open().isEmpty();
        RowOptions rowOptions;
        rowOptions.file = rows;
        rowOptions.key = options.key;
        RowCounts counts;
        scoreRows(card, findings, rowOptions, isOpen ? &comparison : nullptr, counts);
        const Report report = {.card = card,
                               .findings = findings,
                               .counts = counts.scores.empty() ? nullptr : &counts,
                               .compared = &comparison.asked(),
                               .comparison = &comparison.result};
        TextBuffer out;
        putModel(out, card);
        putReport(out, report);
        putHtmlReport(out, report);
        jsonReport(report);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static MemoryFile fixed;
    fixed.write(fixedRows.data(), fixedRows.size());
    const QString input = fileInMemory(data, size);
    if (size > 0 && (data[0] == '<' || data[0] == 0xFF || data[0] == 0xEF)) {
        checkRows(input, fixed.path());
    } else {
        checkRows(modelOfCorpus("kinds"), input);
    }
    return 0;
}
