#include "app/check_driver.h"

#include "app/check_evidence.h"
#include "app/check_options.h"
#include "check/inspection/inspection.h"
#include "check/reports/report.h"
#include "check/rows/probe.h"
#include "model/canvas_tags.h"
#include "model/exit_status.h"
#include "platform/platform.h"

#include <new>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace {

enum CheckStatus { exitNothingFound = 0, exitFound = 1, exitUsage = 2, exitUnexplained = 3 };

int fail(const QString &message, int status) {
    printError(message + u'\n');
    return status;
}

// --- Outputs. Each returns an error message; empty on success.

QString print(QStringView text) {
    return printAtOnce(text) ? QString() : u"Cannot write to standard output."_s;
}

QString writePage(const QString &fileName, const Report &report) {
    OutputFile file = {.stream = {}, .encoding = OutputEncoding::Utf8};
    file.stream.reset(openFile(fileName, FileUse::Write));
    if (!file.stream) return u"Cannot open file '%1' for writing."_s.arg(fileName);
    TextBuffer page;
    putPage(page, report);
    writeText(file, page.text());
    return isClosed(file) ? QString() : u"Cannot write to file '%1'."_s.arg(fileName);
}

QString printReport(const Request &request, const Report &report) {
    TextBuffer out;
    if (request.showsModel) putModel(out, report.model);
    if (request.showsModel && request.looksForFindings) put(out, u"\n");
    if (request.isJson) {
        putJson(out, report);
    } else if (request.isQuiet) {
        putVerdict(out, report);
    } else if (request.looksForFindings) {
        putText(out, report);
    }
    return print(out.text());
}

// --- Work

int statusOf(Verdict verdict) {
    if (verdict == Verdict::Unexplained) return exitUnexplained;
    return verdict == Verdict::Findings ? exitFound : exitNothingFound;
}

// Scores the rows, if given, and prints the report.
int reportOn(const Request &request, const Scorecard &card, std::vector<Finding> findings) {
    Evidence evidence = evidenceOf(request);
    RowCounts counts;
    ComparisonResult compared;
    QString problem;
    const bool hasRows = !request.rows.file.isEmpty();
    const bool compares = !request.rows.results.isEmpty();
    if (hasRows) problem = scoreRows(card, findings, request.rows, counts, compared);
    if (!problem.isEmpty()) return fail(problem, exitUsage);
    addRows(evidence, request.rows, counts);
    std::erase_if(findings, [&](const Finding &finding) {
        return kindOf(finding.id).scope == RowScope::Required && finding.rows == 0 &&
               finding.togetherRows == 0 && !compared.explained.contains(finding.id);
    });
    const Found found = {.findings = findings,
                         .counts = hasRows ? &counts : nullptr,
                         .options = &request.rows,
                         .comparison = compares ? &compared : nullptr,
                         .accepted = request.accepted,
                         .evidence = &evidence};
    const bool isWhole = request.showsModel || !request.report.isEmpty();
    const Report report = buildReport(card, found, isWhole);
    problem = printReport(request, report);
    const QString page = request.report.isEmpty() ? QString() : writePage(request.report, report);
    if (problem.isEmpty()) problem = page;
    if (!problem.isEmpty()) return fail(problem, exitUsage);
    return request.looksForFindings ? statusOf(report.verdict) : exitNothingFound;
}

int check(Request &request) {
    const Scorecard card = readScorecard(request.model);
    if (!card.document.problem.isEmpty()) {
        printError(problemMessage(card.document.fileName, card.document.problem));
        return exitUnusableModel;
    }
    if (!request.probe.isEmpty()) {
        const QString problem = writeProbe(card, request.probe);
        if (!problem.isEmpty()) return fail(problem, exitUsage);
        if (!request.showsModel && !request.looksForFindings) return exitNothingFound;
    }
    Inspection inspection{.targets = request.targets, .canvasName = request.canvas};
    SqlConfigurationFile sql;
    if (!request.sql.isEmpty()) {
        sql = readSqlConfiguration(request.sql);
        if (!sql.message.isEmpty()) return fail(sql.message.trimmed(), exitUnusableModel);
        inspection.sql = &sql;
        request.rows.sql = propertiesOf(sql.configuration).reading;
    }
    if (!request.canvas.isEmpty()) inspection.canvas = readCanvas(request.canvas);
    return reportOn(request, card, inspect(card, inspection));
}

int run(const QStringList &arguments) {
    Request request;
    QString problem = readRequest(arguments, request);
    if (!problem.isEmpty()) {
        return fail(problem + u"\nscorewright-check --help lists the options."_s, exitUsage);
    }
    if (request.answer.isEmpty()) return check(request);
    problem = print(request.answer);
    return problem.isEmpty() ? exitNothingFound : fail(problem, exitUsage);
}

} // namespace

int runCheck(const std::function<QStringList()> &readArguments) {
    try {
        return run(readArguments());
    } catch (const std::bad_alloc &) {
        return fail(u"Out of memory."_s, exitUnusableModel);
    } catch (const std::length_error &) {
        return fail(u"Out of memory."_s, exitUnusableModel);
    }
}
