#include "app/check_options.h"

#include "check/findings/nearest_name.h"
#include "platform/platform.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <bit>
#include <type_traits>

using namespace Qt::Literals::StringLiterals;

namespace {

// Sets what the values of an option ask for. Returns an error message; empty on success.
using SetValues = QString (*)(Request &request, const QStringList &values);

enum class FileRole : std::uint8_t { None, Input, RequiredInput, Output };

struct Option {
    QStringView name;
    QStringView description;
    SetValues set;
    QStringView value = {};  // its name in the help; empty for a switch
    QStringView needed = {}; // the option without which this one is an error
    FileRole file = FileRole::None;
    bool looksForFindings = false; // with --show too, which alone prints just the model
};

// Sets a switch, or a text to the last value.
template <auto member>
QString set(Request &request, const QStringList &values) {
    if constexpr (std::is_same_v<decltype(member), bool Request::*>) {
        request.*member = true;
    } else if constexpr (std::is_same_v<decltype(member), QString Request::*>) {
        request.*member = values.constLast();
    } else {
        request.rows.*member = values.constLast();
    }
    return {};
}

QString setTargets(Request &request, const QStringList &values) {
    request.targets = 0;
    const QStringList known = targetNames(allTargets);
    for (const QString &name : values.constLast().split(u',')) {
        if (!known.contains(name)) {
            return u"There is no target '%1'. The targets are %2."_s.arg(name, known.join(u", "_s));
        }
        request.targets |= only(static_cast<Target>(known.indexOf(name)));
    }
    return {};
}

QString setAccepted(Request &request, const QStringList &values) {
    std::vector<QStringView> names;
    for (const FindingKind &kind : findingKinds()) names.push_back(kind.name);
    for (const QString &name : values.join(u',').split(u',')) {
        const auto at = std::ranges::find(names, name);
        if (at == names.end()) {
            const QStringView meant = nearestName(name, names);
            const QString hint = meant.isEmpty() ? QString() : u" '%1' is meant?"_s.arg(meant);
            return u"There is no finding '%1'."_s.arg(name) + hint;
        }
        request.accepted.add(static_cast<FindingId>(at - names.begin()));
    }
    return {};
}

QString setDelimiter(Request &request, const QStringList &values) {
    const QString &text = values.constLast();
    const bool isOne = text.size() == 1 && text[0] < u'\x80';
    if (!isOne || text == u"\"" || text == u"\n" || text == u"\r") {
        return u"The delimiter must be one character of ASCII, and no quotation mark."_s;
    }
    request.rows.delimiter = text[0].toLatin1();
    return {};
}

QString setDecimal(Request &request, const QStringList &values) {
    const QString &mark = values.constLast();
    request.rows.hasDecimalComma = mark == u",";
    return mark == u"," || mark == u"." ? QString()
                                        : u"The decimal mark must be a comma or a full stop."_s;
}

QString setMissing(Request &request, const QStringList &values) {
    for (const QString &text : values) request.rows.missing.push_back(text.toStdString());
    return {};
}

// checkComparison() rejects NaN.
QString setTolerance(Request &request, const QStringList &values) {
    bool isNumber = false;
    const double tolerance = values.constLast().toDouble(&isNumber);
    request.rows.tolerance = isNumber ? tolerance : noNumber;
    return {};
}

// In the order of the help.
// clang-format off
using enum FileRole;
constexpr Option options[] = {
    {u"show", u"Print the model.", set<&Request::showsModel>},
    {u"target", u"Report findings for these targets only: sas, sql, vba, python, html.", setTargets, u"list", {}, None, true},
    {u"sql", u"The configuration file of SQL.", set<&Request::sql>, u"file", {}, Input, true},
    {u"canvas", u"The canvas of HTML.", set<&Request::canvas>, u"file", {}, Input, true},
    {u"probe", u"Write rows that try every interval and value to this CSV file.", set<&Request::probe>, u"file", {}, Output},
    {u"rows", u"Score the rows of this CSV file.", set<&RowOptions::file>, u"file", {}, RequiredInput, true},
    {u"key", u"The column that identifies a row, in all files.", set<&RowOptions::key>, u"column", u"rows"},
    {u"scores", u"Write key, score and probability to this CSV file.", set<&RowOptions::scores>, u"file", u"rows", Output},
    {u"delimiter", u"The delimiter, if the title lines do not show it.", setDelimiter, u"character", u"rows"},
    {u"decimal", u"The decimal mark in both files: a full stop (.) or a comma.", setDecimal, u"mark", u"rows"},
    {u"missing", u"Treat cells with this text as missing. May be given several times.", setMissing, u"text", u"rows"},
    {u"compare", u"Compare the results in this CSV file with the model (requires one --target).", set<&RowOptions::results>,
     u"file", u"rows", RequiredInput},
    {u"score", u"The column of scores in the results.", set<&RowOptions::score>, u"column", u"compare"},
    {u"probability", u"The column of probabilities in the results.", set<&RowOptions::probability>, u"column", u"compare"},
    {u"differences", u"Write the rows that depart from the model to this CSV file.", set<&RowOptions::differences>,
     u"file", u"compare", Output},
    {u"tolerance", u"Tolerance for numeric differences (default 1e-9).", setTolerance, u"number", u"compare"},
    {u"accept", u"Ignore these findings in the verdict. May be given several times.", setAccepted, u"list", {}, None, true},
    {u"quiet", u"Print only the verdict.", set<&Request::isQuiet>, {}, {}, None, true},
    {u"json", u"Print JSON.", set<&Request::isJson>, {}, {}, None, true},
    {u"report", u"Write an HTML page to this file.", set<&Request::report>, u"file", {}, Output, true},
};
// clang-format on

// --- Errors. Each function returns an error message; empty on success.

QString findIncomplete(const QCommandLineParser &parser, const Option &option) {
    if (!option.needed.isEmpty() && !parser.isSet(option.needed.toString())) {
        return u"--%1 requires --%2."_s.arg(option.name, option.needed);
    }
    const bool lacksFile =
        option.file == RequiredInput && parser.value(option.name.toString()).isEmpty();
    return lacksFile ? u"--%1 requires a file."_s.arg(option.name) : QString();
}

QString checkComparison(Request &request) {
    RowOptions &rows = request.rows;
    if (!std::has_single_bit(request.targets)) {
        return u"--compare requires one --target, that of the results."_s;
    }
    rows.target = listTargets(request.targets).front();
    if (rows.score.isEmpty() && rows.probability.isEmpty()) {
        return u"--compare requires --score or --probability, columns of the results."_s;
    }
    const auto isAgain = [](const QString &a, const QString &b) { return !a.isEmpty() && a == b; };
    const bool isKey = isAgain(rows.score, rows.key);
    if (isKey || isAgain(rows.probability, rows.key) || isAgain(rows.probability, rows.score)) {
        return u"The column '%1' is named twice."_s.arg(isKey ? rows.score : rows.probability);
    }
    if (!(rows.tolerance >= 0) || std::isinf(rows.tolerance)) {
        return u"The tolerance must be a number that is not below 0."_s;
    }
    return {};
}

// Whether two names are of one regular file, which need not exist yet.
bool willBeSameFile(const QString &a, const QString &b) {
    const QFileInfo one(a);
    const QFileInfo other(b);
    if (one.exists() || other.exists()) return isSameFile(a, b);
    return one.fileName() == other.fileName() &&
           QDir(one.absolutePath()).canonicalPath() == QDir(other.absolutePath()).canonicalPath();
}

// Finds an output that would overwrite an input or another output.
QString findOverwritten(QStringList others, const QStringList &outputs) {
    for (const QString &output : outputs) {
        const auto isSame = [&](const QString &other) { return willBeSameFile(output, other); };
        if (std::ranges::any_of(others, isSame)) {
            return u"File '%1' would be written over."_s.arg(output);
        }
        others.append(output);
    }
    return {};
}

// --- The call

void addOptions(QCommandLineParser &parser) {
    parser.setApplicationDescription(
        u"Shows a scoring model, reports where generated code departs from it, scores rows\n"
        "exactly as the model defines them, and explains the results of a deployment."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(u"model"_s, u"The model document."_s);
    for (const Option &option : options) {
        parser.addOption(
            {option.name.toString(), option.description.toString(), option.value.toString()});
    }
}

QString readOptions(const QCommandLineParser &parser, Request &request) {
    QString incomplete;
    QString wrong;
    QStringList inputs = {request.model};
    QStringList outputs;
    for (const Option &option : options) {
        const QString name = option.name.toString();
        if (!parser.isSet(name)) continue;
        const QStringList values = parser.values(name);
        if (incomplete.isEmpty()) incomplete = findIncomplete(parser, option);
        const QString problem = option.set(request, values);
        if (wrong.isEmpty()) wrong = problem;
        const bool hasFile = option.file != None && !values.constLast().isEmpty();
        if (hasFile) (option.file == Output ? outputs : inputs).append(values.constLast());
        request.looksForFindings = request.looksForFindings || option.looksForFindings;
    }
    const bool hasOther = request.showsModel || !request.probe.isEmpty();
    request.looksForFindings = request.looksForFindings || !hasOther;
    request.rows.hashesFiles = request.isJson || !request.report.isEmpty();
    if (request.showsModel && request.isJson) return u"--show prints text, and cannot be JSON."_s;
    if (request.isQuiet && (request.isJson || request.showsModel)) {
        return u"--quiet prints the verdict alone, without --%1."_s.arg(request.isJson ? u"json"
                                                                                       : u"show");
    }
    if (!incomplete.isEmpty()) return incomplete;
    if (wrong.isEmpty() && !request.rows.results.isEmpty()) wrong = checkComparison(request);
    return wrong.isEmpty() ? findOverwritten(inputs, outputs) : wrong;
}

} // namespace

QString readRequest(const QStringList &arguments, Request &request) {
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments)) return parser.errorText();
    if (parser.isSet(u"version"_s)) {
        request.answer = u"scorewright-check " SCOREWRIGHT_VERSION u"\n"_s;
    } else if (parser.isSet(u"help"_s)) {
        request.answer = parser.helpText().replace(u"<executable_name>"_s, u"scorewright-check"_s);
    }
    if (!request.answer.isEmpty()) return {};
    if (parser.positionalArguments().size() != 1) return u"One model document is needed."_s;
    request.arguments = arguments.mid(1);
    request.model = parser.positionalArguments().constFirst();
    return readOptions(parser, request);
}
