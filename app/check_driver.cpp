#include "app/check_driver.h"

#include "check/model_findings.h"
#include "check/report.h"
#include "model/exit_status.h"
#include "model/output_file.h"
#include "platform/platform.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <stdexcept>

using namespace Qt::Literals::StringLiterals;

namespace {

enum CheckStatus { exitNothingFound = 0, exitFound = 1, exitUsage = 2 };

struct Request {
    QString model;
    bool shows = false;
    bool looks = true; // for findings
    bool asJson = false;
    QString report;
    Targets targets = Targets().set();
    QString sql;
    QString canvas;
    std::optional<RowOptions> rows;
    std::optional<ComparisonOptions> comparison;
};

int fail(const QString &message, int status) {
    printError(message + u'\n');
    return status;
}

void addOptions(QCommandLineParser &parser) {
    parser.setApplicationDescription(
        u"Shows a scoring model, tells where generated code does not do what the model says,\n"
        "scores rows as the model means them, and explains the results of a deployment."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(u"model"_s, u"The model document."_s);
    parser.addOptions({
        {u"show"_s, u"Print the model."_s},
        {u"target"_s, u"Look for findings of these targets only: sas, sql, vba, python, html."_s,
         u"list"_s},
        {u"sql"_s, u"The configuration file of SQL."_s, u"file"_s},
        {u"canvas"_s, u"The canvas of HTML."_s, u"file"_s},
        {u"rows"_s, u"Score the rows of this CSV file."_s, u"file"_s},
        {u"key"_s, u"The column that names a row."_s, u"column"_s},
        {u"scores"_s, u"Write key, score and probability to this CSV file."_s, u"file"_s},
        {u"delimiter"_s, u"What stands between cells; a comma."_s, u"character"_s},
        {u"missing"_s, u"Cells with this text mean nothing. May be given several times."_s,
         u"text"_s},
        {u"compare"_s, u"Hold this CSV file of results of the one target against the model."_s,
         u"file"_s},
        {u"score"_s, u"The column of scores there."_s, u"column"_s},
        {u"probability"_s, u"The column of probabilities there."_s, u"column"_s},
        {u"tolerance"_s, u"What numbers may differ by; 1e-9."_s, u"number"_s},
        {u"json"_s, u"Print JSON."_s},
        {u"report"_s, u"Write a page to this file."_s, u"file"_s},
    });
}

// --- Arguments

QString readTargets(const QString &list, Targets &targets) {
    targets.reset();
    for (const QString &name : list.split(u',')) {
        bool isKnown = false;
        for (std::size_t t = 0; t < targetCount; ++t) {
            if (name != targetName(static_cast<Target>(t))) continue;
            targets.set(t);
            isKnown = true;
        }
        if (!isKnown) return u"There is no target '%1'."_s.arg(name);
    }
    return {};
}

QString readRowOptions(const QCommandLineParser &parser, RowOptions &rows) {
    rows.file = parser.value(u"rows"_s);
    rows.key = parser.value(u"key"_s);
    rows.scores = parser.value(u"scores"_s);
    for (const QString &text : parser.values(u"missing"_s)) {
        rows.missing.push_back(text.toStdString());
    }
    if (!parser.isSet(u"delimiter"_s)) return {};
    const QString delimiter = parser.value(u"delimiter"_s);
    const bool isOne = delimiter.size() == 1 && delimiter[0] < u'\x80';
    if (!isOne || delimiter == u"\"" || delimiter == u"\n" || delimiter == u"\r") {
        return u"The delimiter must be one character of ASCII, and no quotation mark."_s;
    }
    rows.delimiter = delimiter[0].toLatin1();
    return {};
}

QString readComparison(const QCommandLineParser &parser, const RowOptions &rows,
                       const Targets &targets, ComparisonOptions &comparison) {
    if (!parser.isSet(u"target"_s) || targets.count() != 1) {
        return u"--compare wants the one --target that the results are of."_s;
    }
    comparison.file = parser.value(u"compare"_s);
    comparison.delimiter = rows.delimiter;
    comparison.missing = rows.missing;
    comparison.key = rows.key;
    comparison.score = parser.value(u"score"_s);
    comparison.probability = parser.value(u"probability"_s);
    if (comparison.score.isEmpty() && comparison.probability.isEmpty()) {
        return u"--compare wants --score or --probability, the columns of the results."_s;
    }
    const std::array columns = {&comparison.key, &comparison.score, &comparison.probability};
    for (std::size_t i = 1; i < columns.size(); ++i) {
        const QString &column = *columns[i];
        const bool isAgain = std::any_of(columns.begin(), columns.begin() + i,
                                         [&](const QString *name) { return *name == column; });
        if (isAgain && !column.isEmpty()) return u"The column '%1' is named twice."_s.arg(column);
    }
    if (parser.isSet(u"tolerance"_s)) {
        bool isNumber = false;
        comparison.tolerance = parser.value(u"tolerance"_s).toDouble(&isNumber);
        if (!isNumber || !(comparison.tolerance >= 0) || std::isinf(comparison.tolerance)) {
            return u"The tolerance must be a number that is not below 0."_s;
        }
    }
    for (std::size_t t = 0; t < targetCount; ++t) {
        if (targets.test(t)) comparison.target = static_cast<Target>(t);
    }
    return {};
}

// Where the file is or would be, however it is named. Empty for what holds nothing, as a device.
QString placeOf(const QString &fileName) {
    const QFileInfo file(fileName);
    if (fileName.isEmpty() || (file.exists() && !file.isFile())) return {};
    if (file.exists()) return file.canonicalFilePath();
    return QDir(file.absolutePath()).canonicalPath() + u'/' + file.fileName();
}

// Tells of a file that would be written over what is read or written too.
QString findOverwritten(const Request &request) {
    QStringList places = {placeOf(request.model), placeOf(request.sql), placeOf(request.canvas)};
    if (request.rows) places.append(placeOf(request.rows->file));
    if (request.comparison) places.append(placeOf(request.comparison->file));
    for (const QString &output :
         {request.rows ? request.rows->scores : QString(), request.report}) {
        const QString place = placeOf(output);
        if (place.isEmpty()) continue;
        if (places.contains(place)) return u"File '%1' would be written over."_s.arg(output);
        places.append(place);
    }
    return {};
}

// Tells of an option without the one that it belongs to.
QString findLonely(const QCommandLineParser &parser) {
    for (const QString &name :
         {u"key"_s, u"scores"_s, u"delimiter"_s, u"missing"_s, u"compare"_s}) {
        if (parser.isSet(name) && !parser.isSet(u"rows"_s))
            return u"--%1 wants --rows."_s.arg(name);
    }
    for (const QString &name : {u"score"_s, u"probability"_s, u"tolerance"_s}) {
        if (parser.isSet(name) && !parser.isSet(u"compare"_s)) {
            return u"--%1 wants --compare."_s.arg(name);
        }
    }
    return {};
}

// What is wrong with the call, or an empty text.
QString readRequest(const QCommandLineParser &parser, Request &request) {
    if (parser.positionalArguments().size() != 1) return u"One model document is needed."_s;
    request.model = parser.positionalArguments().constFirst();
    request.shows = parser.isSet(u"show"_s);
    request.asJson = parser.isSet(u"json"_s);
    request.report = parser.value(u"report"_s);
    request.sql = parser.value(u"sql"_s);
    request.canvas = parser.value(u"canvas"_s);
    if (request.shows && request.asJson) return u"--show prints text, and cannot be JSON."_s;
    QString problem;
    if (parser.isSet(u"target"_s)) {
        problem = readTargets(parser.value(u"target"_s), request.targets);
        if (!problem.isEmpty()) return problem;
    }
    if (parser.isSet(u"rows"_s)) {
        problem = readRowOptions(parser, request.rows.emplace());
        if (!problem.isEmpty()) return problem;
    }
    problem = findLonely(parser);
    if (!problem.isEmpty()) return problem;
    if (parser.isSet(u"compare"_s)) {
        problem =
            readComparison(parser, *request.rows, request.targets, request.comparison.emplace());
        if (!problem.isEmpty()) return problem;
    }
    const bool asksMore = request.rows || request.asJson || !request.report.isEmpty() ||
                          !request.sql.isEmpty() || !request.canvas.isEmpty() ||
                          parser.isSet(u"target"_s);
    request.looks = !request.shows || asksMore;
    return findOverwritten(request);
}

// --- Work

QString readCanvas(const QString &fileName) {
    QByteArray bytes;
    std::FILE *const file = openFile(fileName, FileUse::Read);
    if (!file) return {};
    bytes.resize(fileSize(file));
    const auto size = static_cast<std::size_t>(bytes.size());
    bytes.truncate(static_cast<qsizetype>(std::fread(bytes.data(), 1, size, file)));
    std::fclose(file);
    return QString::fromUtf8(bytes);
}

bool isFound(const Report &report) {
    if (!report.findings.empty()) return true;
    const ComparisonResult *const result = report.comparison;
    return result && (result->equal != result->rows || result->missing > 0 || result->extra > 0 ||
                      result->repeated > 0);
}

void print(const Request &request, const Report &report) {
    TextBuffer out;
    if (request.shows) putModel(out, report.card);
    if (request.shows && request.looks) put(out, u"\n");
    if (request.asJson) {
        put(out, QString::fromUtf8(jsonReport(report)));
    } else if (request.looks) {
        putReport(out, report);
    }
    printText(out.text());
}

// Whether the device took the page.
bool writePage(OutputFile &file, const Report &report) {
    TextBuffer page;
    putHtmlReport(page, report);
    writeText(file, page.text());
    const bool isWritten = std::ferror(file.stream.get()) == 0;
    return std::fclose(file.stream.release()) == 0 && isWritten;
}

// Scores rows where that is asked for, and tells everything.
int reportOn(const Request &request, const Scorecard &card, std::vector<Finding> findings) {
    RowCounts counts;
    std::optional<Comparison> comparison;
    if (request.comparison) {
        comparison.emplace(card, findings, *request.comparison);
        const QString problem = comparison->open();
        if (!problem.isEmpty()) return fail(problem, exitUsage);
    }
    // Before the rows are scored, which may take its time.
    OutputFile page{.stream = {}, .encoding = OutputEncoding::Utf8};
    if (!request.report.isEmpty()) {
        page.stream.reset(openFile(request.report, FileUse::Write));
        if (!page.stream) {
            return fail(u"Cannot open file '%1' for writing."_s.arg(request.report), exitUsage);
        }
    }
    if (request.rows) {
        const QString problem =
            scoreRows(card, findings, *request.rows, comparison ? &*comparison : nullptr, counts);
        if (!problem.isEmpty()) return fail(problem, exitUsage);
    }
    std::erase_if(findings, [](const Finding &finding) {
        return kindOf(finding.id).rows == Rows::Needed && finding.rows == 0;
    });
    const Report report = {.card = card,
                           .findings = findings,
                           .counts = request.rows ? &counts : nullptr,
                           .compared = comparison ? &comparison->asked() : nullptr,
                           .comparison = comparison ? &comparison->result : nullptr};
    print(request, report);
    if (page.stream && !writePage(page, report)) {
        return fail(u"Cannot write to file '%1'."_s.arg(request.report), exitUsage);
    }
    return request.looks && isFound(report) ? exitFound : exitNothingFound;
}

int check(const Request &request) {
    const Scorecard card = readScorecard(request.model);
    if (!card.document.problem.isEmpty()) {
        printError(problemMessage(card.document.fileName, card.document.problem));
        return exitUnusableModel;
    }
    Inspection inspection;
    inspection.targets = request.targets;
    SqlConfigurationFile sql;
    if (!request.sql.isEmpty()) {
        sql = readSqlConfiguration(request.sql);
        if (!sql.message.isEmpty()) return fail(sql.message.trimmed(), exitUnusableModel);
        inspection.sql = &sql;
    }
    inspection.hasCanvas = !request.canvas.isEmpty();
    inspection.canvasName = request.canvas;
    if (inspection.hasCanvas) inspection.canvas = readCanvas(request.canvas);

    return reportOn(request, card, inspect(card, inspection));
}

int run(const QStringList &arguments) {
    QCommandLineParser parser;
    addOptions(parser);
    const bool isParsed = parser.parse(arguments);
    if (isParsed && parser.isSet(u"version"_s)) {
        printText(u"scorewright-check 1.07\n");
        return exitNothingFound;
    }
    if (isParsed && parser.isSet(u"help"_s)) {
        printText(parser.helpText().replace(u"<executable_name>"_s, u"scorewright-check"_s));
        return exitNothingFound;
    }
    Request request;
    const QString problem = isParsed ? readRequest(parser, request) : parser.errorText();
    if (!problem.isEmpty()) {
        return fail(problem + u"\nscorewright-check --help tells the options."_s, exitUsage);
    }
    return check(request);
}

} // namespace

int runCheck(const std::function<QStringList()> &readArguments) {
    try {
        return run(readArguments());
    } catch (const std::bad_alloc &) {
        return fail(u"There is not enough memory."_s, exitUnusableModel);
    } catch (const std::length_error &) {
        return fail(u"There is not enough memory."_s, exitUnusableModel);
    }
}
