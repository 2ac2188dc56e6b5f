// All fuzz targets. A program of them runs one, whose name it is compiled with as FUZZ_TARGET.
#include "check/inspection/inspection.h"
#include "check/reports/report.h"
#include "exporters/html/html_exporter.h"
#include "exporters/python/python_exporter.h"
#include "exporters/sas/sas_exporter.h"
#include "exporters/sql/etl_document.h"
#include "exporters/sql/sql_script.h"
#include "exporters/vba/vba_exporter.h"
#include "model/number_text.h"
#include "model/sql_configuration.h"
#include "xml/base64.h"
#include "xml/xml_node.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <span>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

using Input = std::span<const uint8_t>;

const QString nowhere = u"/dev/null"_s;
const QString corpus = QStringLiteral(FUZZ_CORPUS "/model/");

// The path of a file in memory that holds the input; the next call replaces it.
QString fileOf(Input input) {
    static const int file = memfd_create("input", 0);
    if (ftruncate(file, 0) != 0 || pwrite(file, input.data(), input.size(), 0) < 0) std::abort();
    return u"/proc/self/fd/%1"_s.arg(file);
}

void decodeBase64(Input input) {
    static Base64Decoder decoder;
    const auto *const characters = reinterpret_cast<const char *>(input.data());
    const QString text = QString::fromUtf8(characters, std::ssize(input));
    qsizetype size = 0;
    const unsigned char *const bytes = base64Decode(decoder, text, &size);
    if (bytes && std::count(bytes, bytes + size, 0) < 0) std::abort();
}

// Each eight bytes are a number, which is held against the standard library's text of it.
void writeNumbers(Input input) {
    for (; input.size() >= sizeof(double); input = input.subspan(sizeof(double))) {
        double value = 0;
        std::memcpy(&value, input.data(), sizeof value);
        for (int digits = 1; digits <= 17; ++digits) {
            char text[64];
            const auto end =
                std::to_chars(text, std::end(text), value, std::chars_format::general, digits);
            if (generalNumber(value, digits).view() != std::string_view(text, end.ptr))
                std::abort();
        }
    }
}

// Looks at all of a tree; the sum keeps the reads from being left out.
void walk(const XmlNode &top) {
    qsizetype sum = 0;
    std::vector<XmlNode> pending = {top};
    while (!pending.empty()) {
        const XmlNode node = pending.back();
        pending.pop_back();
        int next = 0;
        sum += node.name().count(u'a') + node.attribute(u"name", &next).count(u'a');
        sum += node.childNodeWithAttribute(u"a", u"name", u"a").childCount(u"a");
        for (int i = 0; i < node.textCount(); ++i) sum += node.text(i).count(u'a');
        for (int i = 0; i < node.clearCount(); ++i) sum += node.clear(i).content.count(u'a');
        for (int i = 0; i < node.childCount(); ++i) pending.push_back(node.childAt(i));
    }
    if (sum < 0) std::abort();
}

// The files that a configuration names are not affected.
void putSql(const SqlConfiguration &configuration, const QString &model) {
    ModelDocument document = loadModel(model);
    const SqlDialect &dialect = findSqlDialect(configuration.dbType);
    const SqlScript read = readSqlScript(document, configuration, dialect);
    if (!document.problem.isEmpty()) return;
    TextBuffer script;
    putSqlScript(script, read);
    TextBuffer etl;
    putEtlDocument(etl,
                   {configuration.odbcLink, configuration.odbcLogin, configuration.odbcPassword},
                   dialect.hasReaderMode, script.text());
}

void readConfiguration(Input input) {
    const SqlConfigurationFile file = readSqlConfiguration(fileOf(input));
    if (file.message.isEmpty()) putSql(file.configuration, corpus + u"kinds"_s);
}

// The first two bytes choose dialect and plan.
void writeSql(Input input) {
    static constexpr std::array<QStringView, 7> dialects = {
        u"default", u"sqlserver", u"oracle", u"mysql", u"teradata", u"teradata_aster", u"other"};
    if (input.size() < 2) return;
    SqlConfiguration chosen;
    chosen.dbType = dialects[input[0] % dialects.size()].toString();
    int bit = 0;
    for (bool *flag : {&chosen.useTmpTable, &chosen.createTmpTable, &chosen.boolsAreNumbers,
                       &chosen.debugRecoding, &chosen.createPredictionTable}) {
        *flag = (input[1] >> bit++ & 1) != 0;
    }
    putSql(chosen, fileOf(input.subspan(2)));
}

// The rows are compared with themselves.
void checkRows(const QString &model, const QString &rows) {
    const Scorecard card = readScorecard(model);
    if (!card.document.problem.isEmpty()) return;
    std::vector<Finding> findings = inspect(card, {});
    for (const Target target : {Target::Sql, Target::Vba, Target::Python, Target::Html}) {
        RowOptions options;
        options.file = options.results = rows;
        if (target == Target::Sql && !card.columns.empty()) options.key = card.columns[0];
        options.score = QStringLiteral("score");
        options.target = target;
        RowCounts counts;
        ComparisonResult compared;
        if (!scoreRows(card, findings, options, counts, compared).isEmpty()) {
            options.results.clear(); // few inputs have a column of that name
            scoreRows(card, findings, options, counts = {}, compared = {});
        }
        const Report report = buildReport(card,
                                          {.findings = findings,
                                           .counts = counts.scores.empty() ? nullptr : &counts,
                                           .options = &options,
                                           .comparison = &compared},
                                          true);
        TextBuffer out;
        putModel(out, report.model);
        putText(out, report);
        putJson(out, report);
        putPage(out, report);
    }
}

// A model document, or the rows of a fixed one.
void check(Input input) {
    if (!input.empty() && (input[0] == '<' || input[0] == 0xFF || input[0] == 0xEF)) {
        checkRows(fileOf(input), QStringLiteral(FUZZ_CORPUS "/check/rows"));
    } else {
        checkRows(corpus + u"kinds"_s, fileOf(input));
    }
}

struct FuzzTarget {
    std::string_view name;
    void (*run)(Input input);
};
constexpr FuzzTarget targets[] = {
    {"file", [](Input input) { walk(XmlNode::parseFile(fileOf(input))); }},
    {"base64", decodeBase64},
    {"number", writeNumbers},
    {"sas", [](Input input) { exportToSas(fileOf(input), nowhere); }},
    {"python", [](Input input) { exportToPython(fileOf(input), nowhere, {}); }},
    {"vba", [](Input input) { exportToVba(fileOf(input), nowhere); }},
    {"sql", writeSql},
    {"html", [](Input input) { exportToHtml(fileOf(input), {}, nowhere); }},
    {"canvas", [](Input input) { exportToHtml(corpus + u"logistic"_s, fileOf(input), nowhere); }},
    {"configuration", readConfiguration},
    {"check", check},
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const std::FILE *const silenced = std::freopen("/dev/null", "w", stdout);
    if (!silenced) std::abort();
    std::ranges::find(targets, FUZZ_TARGET, &FuzzTarget::name)->run({data, size});
    return 0;
}
