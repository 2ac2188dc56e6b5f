// All fuzz targets. Each program runs the one that FUZZ_TARGET names.
#include "check/inspection/inspection.h"
#include "check/reports/report.h"
#include "check/rows/probe.h"
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
#include <numeric>
#include <span>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

using Input = std::span<const uint8_t>;

const QString nullDevice = u"/dev/null"_s;
const QString corpus = QStringLiteral(FUZZ_CORPUS "/model/");

// The path of a file in memory with the input; the next call with the same number overwrites it.
QString fileOf(Input input, std::size_t number = 0) {
    static std::array<int, 3> files = {-1, -1, -1};
    int &file = files[number];
    if (file < 0) file = memfd_create("input", 0);
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

// Each eight bytes are a number, whose text must match the standard library's.
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

// Reads a whole tree; the sum prevents the compiler from removing the reads.
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

// Does not access the files that a configuration names.
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

// The first two bytes select dialect and plan.
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

// --- The companion

uint8_t takeByte(Input &input) {
    if (input.empty()) return 0;
    const uint8_t byte = input.front();
    input = input.subspan(1);
    return byte;
}

// The bytes up to the next ASCII record separator.
std::string_view takeSection(Input &input) {
    constexpr uint8_t separator = 0x1E;
    const auto end = std::ranges::find(input, separator);
    const auto size = static_cast<std::size_t>(end - input.begin());
    const std::string_view section(reinterpret_cast<const char *>(input.data()), size);
    input = input.subspan(std::min(size + 1, input.size()));
    return section;
}

Input bytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

// Models of the corpus, read once.
const Scorecard &knownModel(std::size_t number) {
    static const std::array<Scorecard, 4> known = {
        readScorecard(corpus + u"logistic"_s), readScorecard(corpus + u"kinds"_s),
        readScorecard(corpus + u"missing"_s), readScorecard(corpus + u"none"_s)};
    return known[number % known.size()];
}

// The first bytes of the input, each a choice.
struct Choices {
    uint8_t model = 0; // a known one, or one in the input
    uint8_t target = 0;
    uint8_t dialect = 0; // of SQL, or none
    uint8_t columns = 0; // which of them exist
    uint8_t form = 0;    // of the report, or none

    bool hasKey() const { return (columns & 1) != 0; }
    bool hasScore() const { return (columns & 2) != 0; }
    bool hasProbability() const { return (columns & 4) != 0; }
    bool hasTitles() const { return (columns & 8) != 0; } // in the input, else they are added
    bool comparesItself() const { return (columns & 16) != 0; }
    bool triesEverything() const { return (columns & 32) != 0; }
};

std::string titled(std::span<const QString> titles, std::string_view lines, bool hasTitles) {
    std::string text;
    for (const QString &title : hasTitles ? std::span<const QString>() : titles) {
        text += text.empty() ? "\"" : ",\"";
        text += title.toStdString() + '"';
    }
    return (text.empty() ? text : text + '\n').append(lines);
}

void require(bool condition) {
    if (!condition) std::abort();
}

void report(const Scorecard &card, std::span<const Finding> findings, const RowOptions &options,
            const RowCounts &counts, const ComparisonResult &compared, uint8_t form) {
    const Report report = buildReport(card,
                                      {.findings = findings,
                                       .counts = counts.scores.empty() ? nullptr : &counts,
                                       .options = &options,
                                       .comparison = &compared},
                                      form == 1 || form == 3);
    TextBuffer out;
    if (form == 1) putModel(out, report.model);
    if (form == 2) putText(out, report);
    if (form == 3) putPage(out, report);
    if (form == 4) putJson(out, report);
}

// Each row is counted once.
void checkCounts(std::span<const Finding> findings, const RowCounts &counts,
                 const ComparisonResult &compared) {
    for (const auto &rows : counts.positions) {
        require(std::accumulate(rows.begin(), rows.end(), std::int64_t(0)) == counts.rows);
    }
    for (const Finding &finding : findings) {
        require(finding.rows >= 0 && finding.rows <= counts.rows);
        require(finding.rows == 0 || (finding.firstRow > 0 && finding.firstRow <= counts.rows));
    }
    require(compared.equal + compared.explainedRows + compared.unexplained == compared.rows);
    require(compared.rows + compared.missing.rows <= counts.rows);
}

// A model's own scores match the model.
void compareItself(const Scorecard &card, RowOptions options) {
    options.key.clear();
    options.scores = options.results;
    options.results.clear();
    std::vector<Finding> none;
    RowCounts counts;
    ComparisonResult compared;
    if (!scoreRows(card, none, options, counts, compared).isEmpty()) return;
    options.results = std::exchange(options.scores, {});
    options.score = u"score"_s;
    options.probability = card.hasProbability() ? u"probability"_s : QString();
    require(scoreRows(card, none, options, counts = {}, compared).isEmpty());
    require(compared.equal == counts.rows);
}

// Probe rows reach every reachable position. Titles that are not Unicode are not found again.
void tryEverything(const Scorecard &card, RowOptions options) {
    options.file = fileOf({}, 1);
    require(writeProbe(card, options.file).isEmpty());
    std::vector<Finding> none;
    RowCounts counts;
    ComparisonResult compared;
    if (!scoreRows(card, none, options, counts, compared).isEmpty()) return;
    const Found found = {.counts = &counts, .options = &options};
    require(buildReport(card, found, false).unreached.places.isEmpty());
}

// The input consists of choices, possibly a model, rows and results.
void check(Input input) {
    Choices choices;
    for (uint8_t *choice :
         {&choices.model, &choices.target, &choices.dialect, &choices.columns, &choices.form}) {
        *choice = takeByte(input);
    }
    const bool hasModel = choices.model >= 0x80;
    const Scorecard given =
        hasModel ? readScorecard(fileOf(bytesOf(takeSection(input)))) : Scorecard();
    const Scorecard &card = hasModel ? given : knownModel(choices.model);
    if (!card.document.problem.isEmpty()) return;

    SqlConfigurationFile sql;
    const auto dialects = sqlDialects();
    const bool hasDialect = choices.dialect < dialects.size();
    if (hasDialect) sql.configuration.dbType = dialects[choices.dialect].name.toString();
    std::vector<Finding> findings = inspect(card, {.sql = hasDialect ? &sql : nullptr});

    RowOptions options;
    options.target = static_cast<Target>(choices.target % targetCount);
    options.cachedCells = 64; // the rows of an input are few
    options.missing = {"NA"};
    if (choices.hasKey()) options.key = u"k"_s;
    if (choices.hasScore()) options.score = u"s"_s;
    if (choices.hasProbability() && card.hasProbability()) options.probability = u"p"_s;
    std::vector<QString> titles = card.columns;
    if (choices.hasKey()) titles.push_back(options.key);
    options.file = fileOf(bytesOf(titled(titles, takeSection(input), choices.hasTitles())), 1);
    titles = {options.key, options.score, options.probability};
    std::erase(titles, QString());
    options.results = fileOf(bytesOf(titled(titles, takeSection(input), choices.hasTitles())), 2);
    if (choices.triesEverything()) return tryEverything(card, {.target = options.target});
    if (choices.comparesItself()) return compareItself(card, options);
    if (!options.hasScore() && !options.hasProbability()) options.results.clear();

    RowCounts counts;
    ComparisonResult compared;
    if (!scoreRows(card, findings, options, counts, compared).isEmpty()) return;
    checkCounts(findings, counts, compared);
    report(card, findings, options, counts, compared, choices.form);
}

struct FuzzTarget {
    std::string_view name;
    void (*run)(Input input);
};
constexpr FuzzTarget targets[] = {
    {"file", [](Input input) { walk(XmlNode::parseFile(fileOf(input))); }},
    {"base64", decodeBase64},
    {"number", writeNumbers},
    {"sas", [](Input input) { exportToSas(fileOf(input), nullDevice); }},
    {"python", [](Input input) { exportToPython(fileOf(input), nullDevice, {}); }},
    {"vba", [](Input input) { exportToVba(fileOf(input), nullDevice); }},
    {"sql", writeSql},
    {"html", [](Input input) { exportToHtml(fileOf(input), {}, nullDevice); }},
    {"canvas",
     [](Input input) { exportToHtml(corpus + u"logistic"_s, fileOf(input), nullDevice); }},
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
