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

// Applies the values of an option. Returns an error message; empty on success.
using SetValues = QString (*)(Request &request, const QStringList &values);

enum class FileRole : std::uint8_t { None, Input, RequiredInput, Output };

struct Option {
    QStringView name;
    QStringView description;
    SetValues set;
    QStringView value = {};  // its name in the help; empty for a switch
    QStringView needed = {}; // the option that this one requires
    FileRole file = FileRole::None;
    bool looksForFindings = false; // even with --show, which alone prints only the model
};

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
            return u"Unknown target '%1'. The targets are %2."_s.arg(name, known.join(u", "_s));
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
            const QString hint = meant.isEmpty() ? u" Use a name that the report prints."_s
                                                 : u" Did you mean '%1'?"_s.arg(meant);
            return u"Unknown finding '%1'."_s.arg(name) + hint;
        }
        request.accepted.add(static_cast<FindingId>(at - names.begin()));
    }
    return {};
}

QString setDelimiter(Request &request, const QStringList &values) {
    const QString &text = values.constLast();
    const bool isOne = text.size() == 1 && text[0] < u'\x80';
    if (!isOne || text == u"\"" || text == u"\n" || text == u"\r") {
        return u"--delimiter requires one ASCII character other than \" and line ends."_s;
    }
    request.rows.delimiter = text[0].toLatin1();
    return {};
}

QString setDecimal(Request &request, const QStringList &values) {
    const QString &mark = values.constLast();
    request.rows.hasDecimalComma = mark == u",";
    return mark == u"," || mark == u"." ? QString()
                                        : u"--decimal requires a comma or a full stop."_s;
}

QString setMissing(Request &request, const QStringList &values) {
    for (const QString &text : values) request.rows.missing.push_back(text.toStdString());
    return {};
}

QString setTolerance(Request &request, const QStringList &values) {
    bool isNumber = false;
    const double tolerance = values.constLast().toDouble(&isNumber);
    request.rows.tolerance = isNumber ? tolerance : noNumber; // which checkComparison() rejects
    return {};
}

// In the order of the help.
// clang-format off
using enum FileRole;
constexpr Option options[] = {
    {u"show", u"Print the model.", set<&Request::showsModel>},
    {u"target", u"Report findings for these targets only: sas, sql, vba, python, html.", setTargets, u"list", {}, None, true},
    {u"sql", u"Apply the settings of this SQL configuration file.", set<&Request::sql>, u"file", {}, Input, true},
    {u"canvas", u"Check this canvas of the HTML page.", set<&Request::canvas>, u"file", {}, Input, true},
    {u"probe", u"Write test rows for every bin, bound and value to this CSV file.", set<&Request::probe>, u"file", {}, Output},
    {u"rows", u"Score the rows of this CSV file.", set<&RowOptions::file>, u"file", {}, RequiredInput, true},
    {u"key", u"Column that identifies a row, in all files.", set<&RowOptions::key>, u"column", u"rows"},
    {u"scores", u"Write key, score and probability to this CSV file.", set<&RowOptions::scores>, u"file", u"rows", Output},
    {u"delimiter", u"Cell delimiter (default: detected in the header line).", setDelimiter, u"character", u"rows"},
    {u"decimal", u"Decimal mark of rows and results: a full stop (default) or a comma.", setDecimal, u"mark", u"rows"},
    {u"missing", u"Treat cells with this text as missing. May be given several times.", setMissing, u"text", u"rows"},
    {u"compare", u"Compare the results in this CSV file with the model (requires one --target).", set<&RowOptions::results>,
     u"file", u"rows", RequiredInput},
    {u"score", u"Column of the scores in the results.", set<&RowOptions::score>, u"column", u"compare"},
    {u"probability", u"Column of the probabilities in the results.", set<&RowOptions::probability>, u"column", u"compare"},
    {u"differences", u"Write the rows that depart from the model to this CSV file.", set<&RowOptions::differences>,
     u"file", u"compare", Output},
    {u"tolerance", u"Tolerance for numeric differences (default 1e-9).", setTolerance, u"number", u"compare"},
    {u"accept", u"Ignore these findings, and the rows that they explain, in the verdict. May be given several times.", setAccepted, u"list", {}, None, true},
    {u"quiet", u"Print only the verdict.", set<&Request::isQuiet>, {}, {}, None, true},
    {u"json", u"Print the report as JSON.", set<&Request::isJson>, {}, {}, None, true},
    {u"report", u"Write the report to this file, as an HTML page.", set<&Request::report>, u"file", {}, Output, true},
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
        return u"--compare requires exactly one --target."_s;
    }
    rows.target = listTargets(request.targets).front();
    if (rows.score.isEmpty() && rows.probability.isEmpty()) {
        return u"--compare requires --score, --probability or both."_s;
    }
    const auto isSame = [](const QString &a, const QString &b) { return !a.isEmpty() && a == b; };
    const bool isKey = isSame(rows.score, rows.key);
    if (isKey || isSame(rows.probability, rows.key) || isSame(rows.probability, rows.score)) {
        return u"Column '%1' is given twice. --key, --score and --probability require different columns."_s
            .arg(isKey ? rows.score : rows.probability);
    }
    if (!(rows.tolerance >= 0) || std::isinf(rows.tolerance)) {
        return u"--tolerance requires a finite number of at least 0."_s;
    }
    return {};
}

// Whether two names refer to one regular file, which need not exist yet.
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
            return u"Output '%1' would overwrite an input or another output."_s.arg(output);
        }
        others.append(output);
    }
    return {};
}

// --- Command line

void addOptions(QCommandLineParser &parser) {
    parser.setApplicationDescription(
        u"Shows a scoring model, reports where generated code departs from it, scores rows\n"
        "exactly as the model defines them, and explains the results of a deployment."_s);
    parser.addOption({{u"h"_s, u"help"_s}, u"Print this help."_s});
    parser.addOption({{u"v"_s, u"version"_s}, u"Print the version."_s});
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
    if (request.showsModel + request.isJson + request.isQuiet > 1) {
        return u"Give only one of --show, --json and --quiet."_s;
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
    if (parser.positionalArguments().size() != 1) return u"Give exactly one model document."_s;
    request.arguments = arguments.mid(1);
    request.model = parser.positionalArguments().constFirst();
    return readOptions(parser, request);
}
