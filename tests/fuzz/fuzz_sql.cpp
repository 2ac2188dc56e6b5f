// The SQL exporter, on a model document; the first two bytes choose dialect and plan.
#include "exporters/sql/sql_exporter.h"
#include "tests/fuzz/fuzz.h"

#include <array>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static constexpr std::array dialects = {"default",  "sqlserver",      "oracle", "mysql",
                                            "teradata", "teradata_aster", "other"};
    silenceOutput();
    if (size < 2) return 0;
    const auto flag = [&](int bit) { return QString::number(data[1] >> bit & 1); };
    const QString model = fileInMemory(data + 2, size - 2);
    const QByteArray text =
        QStringLiteral("<Model2SQL inputFile='%1' outputFile='/dev/null' inputTable='i' "
                       "predictionTable='p' dbType='%2' useTmpTable='%3' createTmpTable='%4' "
                       "boolsAreNumbers='%5' debugRecoding='%6' kestruneScript='%7' "
                       "createPredictionTable='%8'></Model2SQL>")
            .arg(model, QLatin1StringView(dialects[data[0] % dialects.size()]), flag(0), flag(1),
                 flag(2), flag(3), flag(4), flag(5))
            .toLatin1();
    static MemoryFile configuration;
    configuration.write(text.constData(), static_cast<size_t>(text.size()));
    exportToSql(configuration.path());
    return 0;
}
