#include "app/driver.h"

#include "exporters/html/html_exporter.h"
#include "exporters/python/python_exporter.h"
#include "exporters/sas/sas_exporter.h"
#include "exporters/sql/sql_exporter.h"
#include "exporters/vba/vba_exporter.h"
#include "model/exit_status.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <new>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int exitUsage = 1;

constexpr QStringView banner =
    u"Qorv Model Exportation v" SCOREWRIGHT_VERSION u"\n=============================\n";

constexpr QStringView usage = uR"(USAGE:
to SAS   : scorewright -a <.ModelXml file> <SAS script file>
to SQL   : scorewright -s <Config SQL file convertion>
to VBA   : scorewright -e <.ModelXml file> <Excel VBA code file>
to Python: scorewright -p <.ModelXml file> <Python code file> [<Python Class>]
to Html  : scorewright -h <.ModelXml file> [[<HTML canvas file>] <HTML output file>]
)";

using Operands = std::array<QString, 3>;

struct Option {
    QStringView name;
    std::size_t leastOperands; // fewer print the usage
    std::size_t mostOperands;  // further ones are ignored
    int (*convert)(const Operands &operands);
};

constexpr Option options[] = {
    {u"-a", 2, 2, [](const Operands &o) { return exportToSas(o[0], o[1]); }},
    {u"-e", 2, 2, [](const Operands &o) { return exportToVba(o[0], o[1]); }},
    {u"-h", 1, 3, [](const Operands &o) { return exportToHtml(o[0], o[1], o[2]); }},
    {u"-s", 1, 1, [](const Operands &o) { return exportToSql(o[0]); }},
    {u"-p", 2, 3, [](const Operands &o) { return exportToPython(o[0], o[1], o[2]); }},
};

int runOption(const std::vector<QString> &arguments) {
    const std::size_t given = arguments.size() < 2 ? 0 : arguments.size() - 2;
    for (const Option &option : options) {
        if (arguments.size() < 2 || arguments[1] != option.name || given < option.leastOperands)
            continue;
        Operands operands;
        operands.fill(u""_s); // null stands for invalid UTF-8
        for (std::size_t i = 0; i < std::min(given, option.mostOperands); ++i) {
            operands[i] = arguments[2 + i];
            if (operands[i].isNull()) {
                printText(u"Argument %1 is not valid UTF-8.\n"_s.arg(2 + i));
                return exitUsage;
            }
        }
        return option.convert(operands);
    }
    printText(usage);
    return exitUsage;
}

} // namespace

int runCommandLine(const std::function<std::vector<QString>()> &readArguments) {
    try {
        const std::vector<QString> arguments = readArguments();
        printText(banner);
        return runOption(arguments);
    } catch (const std::bad_alloc &) {
        printText(u"The model does not fit in memory.\n");
        return exitUnusableModel;
    }
}
