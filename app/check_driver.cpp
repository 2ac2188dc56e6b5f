#include "app/check_driver.h"

#include "check/inspection/inspection.h"
#include "check/reports/report.h"
#include "model/canvas_tags.h"
#include "model/exit_status.h"
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

// What was asked for, with what the arguments say of it.
struct Request {
    const QCommandLineParser &parser;
    Targets targets = allTargets;
    RowOptions rows = {}; // without a file, none

    bool has(const QString &option) const { return parser.isSet(option); }
    QString operator[](const QString &option) const { return parser.value(option); }
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

QString readRowOptions(Request &request) {
    RowOptions &rows = request.rows;
    rows.file = request[u"rows"_s];
    rows.key = request[u"key"_s];
    rows.scores = request[u"scores"_s];
    rows.results = request[u"compare"_s];
    rows.score = request[u"score"_s];
    rows.probability = request[u"probability"_s];
    for (const QString &text : request.parser.values(u"missing"_s)) {
        rows.missing.push_back(text.toStdString());
    }
    if (!request.has(u"delimiter"_s)) return {};
    return readDelimiter(request[u"delimiter"_s], rows.delimiter);
}

QString readComparison(Request &request) {
    RowOptions &rows = request.rows;
    if (!request.has(u"target"_s) || !std::has_single_bit(request.targets)) {
        return u"--compare wants the one --target that the results are of."_s;
    }
    rows.target = listTargets(request.targets).front();
    if (rows.score.isEmpty() && rows.probability.isEmpty()) {
        return u"--compare wants --score or --probability, the columns of the results."_s;
    }
    const auto isAgain = [](const QString &a, const QString &b) { return !a.isEmpty() && a == b; };
    const bool isKey = isAgain(rows.score, rows.key);
    if (isKey || isAgain(rows.probability, rows.key) || isAgain(rows.probability, rows.score)) {
        return u"The column '%1' is named twice."_s.arg(isKey ? rows.score : rows.probability);
    }
    if (!request.has(u"tolerance"_s)) return {};
    bool isNumber = false;
    rows.tolerance = request[u"tolerance"_s].toDouble(&isNumber);
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
    QStringList places = {placeOf(request.parser.positionalArguments().constFirst())};
    for (const QString &input : {u"sql"_s, u"canvas"_s, u"rows"_s, u"compare"_s}) {
        places.append(placeOf(request[input]));
    }
    for (const QString &output : {request[u"scores"_s], request[u"report"_s]}) {
        const QString place = placeOf(output);
        if (place.isEmpty()) continue;
        if (places.contains(place)) return u"File '%1' would be written over."_s.arg(output);
        places.append(place);
    }
    return {};
}

// What is wrong with the call, or an empty text.
QString readRequest(Request &request) {
    if (request.parser.positionalArguments().size() != 1) return u"One model document is needed."_s;
    if (request.has(u"show"_s) && request.has(u"json"_s)) {
        return u"--show prints text, and cannot be JSON."_s;
    }
    for (const auto &[name, description, value, needed] : listOptions()) {
        if (!request.has(name)) continue;
        if (!needed.isEmpty() && !request.has(needed)) {
            return u"--%1 wants --%2."_s.arg(name, needed);
        }
        const bool isRead = name == u"rows" || name == u"compare";
        if (isRead && request[name].isEmpty()) return u"--%1 wants a file."_s.arg(name);
    }
    QString problem;
    if (request.has(u"target"_s)) problem = readTargets(request[u"target"_s], request.targets);
    if (problem.isEmpty()) problem = readRowOptions(request);
    if (problem.isEmpty() && request.has(u"compare"_s)) problem = readComparison(request);
    return problem.isEmpty() ? findOverwritten(request) : problem;
}

// Whether findings are looked for: the model alone may be all that is asked for.
bool looks(const Request &request) {
    const auto isSet = [&](const QString &option) { return request.has(option); };
    return !request.has(u"show"_s) ||
           std::ranges::any_of(
               QStringList{u"rows"_s, u"json"_s, u"report"_s, u"sql"_s, u"canvas"_s, u"target"_s},
               isSet);
}

// --- Work

bool isFound(const Report &report) {
    if (!report.findings.empty()) return true;
    const ComparisonResult *const result = report.comparison;
    return result && (result->equal != result->rows || result->missing.rows > 0 ||
                      result->extra.rows > 0 || result->repeated.rows > 0);
}

void print(const Request &request, const Report &report) {
    TextBuffer out;
    const bool shows = request.has(u"show"_s);
    if (shows) putModel(out, report.card);
    if (shows && looks(request)) put(out, u"\n");
    if (request.has(u"json"_s)) {
        put(out, QString::fromUtf8(jsonReport(report)));
    } else if (looks(request)) {
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
    return isClosed(file) ? QString() : u"Cannot write to file '%1'."_s.arg(fileName);
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
        return kindOf(finding.id).scope == RowScope::Required && finding.rows == 0;
    });
    const Report report = {.card = card,
                           .findings = findings,
                           .counts = hasRows ? &counts : nullptr,
                           .compared = compares ? &request.rows : nullptr,
                           .comparison = compares ? &compared : nullptr};
    print(request, report);
    if (const QString page = request[u"report"_s]; !page.isEmpty())
        problem = writeReport(page, report);
    if (!problem.isEmpty()) return fail(problem, exitUsage);
    return looks(request) && isFound(report) ? exitFound : exitNothingFound;
}

int check(const Request &request) {
    const Scorecard card = readScorecard(request.parser.positionalArguments().constFirst());
    if (!card.document.problem.isEmpty()) {
        printError(problemMessage(card.document.fileName, card.document.problem));
        return exitUnusableModel;
    }
    Inspection inspection{.targets = request.targets, .canvasName = request[u"canvas"_s]};
    SqlConfigurationFile sql;
    if (!request[u"sql"_s].isEmpty()) {
        sql = readSqlConfiguration(request[u"sql"_s]);
        if (!sql.message.isEmpty()) return fail(sql.message.trimmed(), exitUnusableModel);
        inspection.sql = &sql;
    }
    if (!inspection.canvasName.isEmpty()) inspection.canvas = readCanvas(inspection.canvasName);
    return reportOn(request, card, inspect(card, inspection));
}

int run(const QStringList &arguments) {
    QCommandLineParser parser;
    addOptions(parser);
    const bool isParsed = parser.parse(arguments);
    if (isParsed && parser.isSet(u"version"_s)) {
        printText(u"scorewright-check " SCOREWRIGHT_VERSION u"\n");
        return exitNothingFound;
    }
    if (isParsed && parser.isSet(u"help"_s)) {
        printText(parser.helpText().replace(u"<executable_name>"_s, u"scorewright-check"_s));
        return exitNothingFound;
    }
    Request request{parser};
    const QString problem = isParsed ? readRequest(request) : parser.errorText();
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
