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
#include <bit>
#include <new>
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
    Targets targets = allTargets;
    QString sql;
    QString canvas;
    RowOptions rows; // without a file, none are asked for
};

// In the order of the help.
struct Option {
    QString name;
    QString description;
    QString value = {};
    QString needed = {}; // option without which this one means nothing
};

std::vector<Option> listOptions() {
    const QString file = u"file"_s;
    const QString column = u"column"_s;
    const QString rows = u"rows"_s;
    const QString compare = u"compare"_s;
    return {
        {u"show"_s, u"Print the model."_s},
        {u"target"_s, u"Look for findings of these targets only: sas, sql, vba, python, html."_s,
         u"list"_s},
        {u"sql"_s, u"The configuration file of SQL."_s, file},
        {u"canvas"_s, u"The canvas of HTML."_s, file},
        {rows, u"Score the rows of this CSV file."_s, file},
        {u"key"_s, u"The column that names a row."_s, column, rows},
        {u"scores"_s, u"Write key, score and probability to this CSV file."_s, file, rows},
        {u"delimiter"_s, u"What stands between cells; a comma."_s, u"character"_s, rows},
        {u"missing"_s, u"Cells with this text mean nothing. May be given several times."_s,
         u"text"_s, rows},
        {compare, u"Hold this CSV file of results of the one target against the model."_s, file,
         rows},
        {u"score"_s, u"The column of scores there."_s, column, compare},
        {u"probability"_s, u"The column of probabilities there."_s, column, compare},
        {u"tolerance"_s, u"What numbers may differ by; 1e-9."_s, u"number"_s, compare},
        {u"json"_s, u"Print JSON."_s},
        {u"report"_s, u"Write a page to this file."_s, file},
    };
}

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
    for (const Option &option : listOptions()) {
        parser.addOption({option.name, option.description, option.value});
    }
}

// --- Arguments

QString readTargets(const QString &list, Targets &targets) {
    targets = 0;
    const QStringList known = targetNames(allTargets);
    for (const QString &name : list.split(u',')) {
        if (!known.contains(name)) return u"There is no target '%1'."_s.arg(name);
        targets |= only(static_cast<Target>(known.indexOf(name)));
    }
    return {};
}

QString readDelimiter(const QString &text, char &delimiter) {
    const bool isOne = text.size() == 1 && text[0] < u'\x80';
    if (!isOne || text == u"\"" || text == u"\n" || text == u"\r") {
        return u"The delimiter must be one character of ASCII, and no quotation mark."_s;
    }
    delimiter = text[0].toLatin1();
    return {};
}

QString readRowOptions(const QCommandLineParser &parser, RowOptions &rows) {
    rows.file = parser.value(u"rows"_s);
    rows.key = parser.value(u"key"_s);
    rows.scores = parser.value(u"scores"_s);
    rows.results = parser.value(u"compare"_s);
    rows.score = parser.value(u"score"_s);
    rows.probability = parser.value(u"probability"_s);
    for (const QString &text : parser.values(u"missing"_s)) {
        rows.missing.push_back(text.toStdString());
    }
    if (!parser.isSet(u"delimiter"_s)) return {};
    return readDelimiter(parser.value(u"delimiter"_s), rows.delimiter);
}

QString readComparison(const QCommandLineParser &parser, Targets targets, RowOptions &rows) {
    if (!parser.isSet(u"target"_s) || !std::has_single_bit(targets)) {
        return u"--compare wants the one --target that the results are of."_s;
    }
    rows.target = listTargets(targets).front();
    QStringList columns = {rows.key, rows.score, rows.probability};
    columns.removeAll(QString());
    if (rows.score.isEmpty() && rows.probability.isEmpty()) {
        return u"--compare wants --score or --probability, the columns of the results."_s;
    }
    if (columns.removeDuplicates() > 0) {
        return u"The column '%1' is named twice."_s.arg(rows.score == rows.key ? rows.score
                                                                               : rows.probability);
    }
    if (!parser.isSet(u"tolerance"_s)) return {};
    bool isNumber = false;
    rows.tolerance = parser.value(u"tolerance"_s).toDouble(&isNumber);
    if (!isNumber || !(rows.tolerance >= 0) || std::isinf(rows.tolerance)) {
        return u"The tolerance must be a number that is not below 0."_s;
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
    const RowOptions &rows = request.rows;
    QStringList places;
    for (const QString &input :
         {request.model, request.sql, request.canvas, rows.file, rows.results}) {
        places.append(placeOf(input));
    }
    for (const QString &output : {rows.scores, request.report}) {
        const QString place = placeOf(output);
        if (place.isEmpty()) continue;
        if (places.contains(place)) return u"File '%1' would be written over."_s.arg(output);
        places.append(place);
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
    for (const Option &option : listOptions()) {
        if (option.needed.isEmpty() || !parser.isSet(option.name)) continue;
        if (!parser.isSet(option.needed))
            return u"--%1 wants --%2."_s.arg(option.name, option.needed);
    }
    if (parser.isSet(u"target"_s))
        problem = readTargets(parser.value(u"target"_s), request.targets);
    if (problem.isEmpty()) problem = readRowOptions(parser, request.rows);
    if (problem.isEmpty() && parser.isSet(u"compare"_s)) {
        problem = readComparison(parser, request.targets, request.rows);
    }
    if (!problem.isEmpty()) return problem;
    request.looks = !request.shows;
    for (const QString &name :
         {u"rows"_s, u"json"_s, u"report"_s, u"sql"_s, u"canvas"_s, u"target"_s}) {
        if (parser.isSet(name)) request.looks = true;
    }
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

// Returns what is wrong, or an empty text.
QString writeReport(const QString &fileName, const Report &report) {
    OutputFile file = {.stream = {}, .encoding = OutputEncoding::Utf8};
    file.stream.reset(openFile(fileName, FileUse::Write));
    if (!file.stream) return u"Cannot open file '%1' for writing."_s.arg(fileName);
    TextBuffer page;
    putHtmlReport(page, report);
    writeText(file, page.text());
    const bool isWritten = std::fflush(file.stream.get()) == 0 && !std::ferror(file.stream.get());
    return isWritten ? QString() : u"Cannot write to file '%1'."_s.arg(fileName);
}

// Scores rows where that is asked for, and tells everything.
int reportOn(const Request &request, const Scorecard &card, std::vector<Finding> findings) {
    RowCounts counts;
    ComparisonResult compared;
    QString problem;
    const bool hasRows = !request.rows.file.isEmpty();
    const bool compares = !request.rows.results.isEmpty();
    if (hasRows) problem = scoreRows(card, findings, request.rows, counts, compared);
    if (!problem.isEmpty()) return fail(problem, exitUsage);
    std::erase_if(findings, [](const Finding &finding) {
        return kindOf(finding.id).rows == Rows::Needed && finding.rows == 0;
    });
    const Report report = {.card = card,
                           .findings = findings,
                           .counts = hasRows ? &counts : nullptr,
                           .compared = compares ? &request.rows : nullptr,
                           .comparison = compares ? &compared : nullptr};
    print(request, report);
    if (!request.report.isEmpty()) problem = writeReport(request.report, report);
    if (!problem.isEmpty()) return fail(problem, exitUsage);
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
