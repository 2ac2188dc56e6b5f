// Compares the parts that take most of a conversion's time with other libraries.
#include "model/number_text.h"
#include "xml/base64.h"
#include "xml/xml_node.h"

#include <QXmlStreamReader>
#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <bit>
#include <random>

namespace {

// Like a model document: 2,000 models of one array and twelve values each.
QString modelText() {
    const QString array = QString::fromLatin1(QByteArray(176, 'x').toBase64()); // 22 doubles
    QString text = QStringLiteral("<?xml version=\"1.0\"?>\n<QRV_Model>\n <UnivModels>\n");
    for (int i = 0; i < 2000; ++i) {
        text += QStringLiteral("  <Model name=\"V%1\" field=\"months on book %1\" "
                               "displayName=\"Months (source &amp; recode)\" type=\"MapValues\">\n"
                               "   <y>%2</y>\n   <Modalities>\n")
                    .arg(QString::number(i), array);
        for (int k = 0; k < 12; ++k) {
            text +=
                QStringLiteral("    <Mod val=\"skilled worker\" label=\"Worker (%1)\"/>\n").arg(k);
        }
        text += QStringLiteral("   </Modalities>\n  </Model>\n");
    }
    return text + QStringLiteral(" </UnivModels>\n</QRV_Model>\n");
}

void perByte(benchmark::State &state, qsizetype bytes) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * bytes);
}

void parseScorewright(benchmark::State &state) {
    const QString text = modelText();
    for (auto _ : state) benchmark::DoNotOptimize(XmlNode::parseText(text));
    perByte(state, text.size() * 2);
}
BENCHMARK(parseScorewright)->Unit(benchmark::kMillisecond);

void parsePugixml(benchmark::State &state) {
    const QString text = modelText();
    for (auto _ : state) {
        pugi::xml_document document;
        const auto bytes = static_cast<std::size_t>(text.size()) * 2;
        document.load_buffer(text.utf16(), bytes, pugi::parse_default, pugi::encoding_utf16_le);
        benchmark::DoNotOptimize(document.first_child());
    }
    perByte(state, text.size() * 2);
}
BENCHMARK(parsePugixml)->Unit(benchmark::kMillisecond);

void parseQXmlStreamReader(benchmark::State &state) {
    const QString text = modelText();
    for (auto _ : state) {
        QXmlStreamReader reader(text);
        qsizetype attributes = 0;
        while (!reader.atEnd()) {
            reader.readNext();
            attributes += reader.attributes().size();
        }
        benchmark::DoNotOptimize(attributes);
    }
    perByte(state, text.size() * 2);
}
BENCHMARK(parseQXmlStreamReader)->Unit(benchmark::kMillisecond);

QString base64Text() {
    return QString::fromLatin1(QByteArray(22 * 8, '\x5A').toBase64());
}

void base64Scorewright(benchmark::State &state) {
    const QString text = base64Text();
    Base64Decoder decoder;
    for (auto _ : state) benchmark::DoNotOptimize(base64Decode(decoder, text));
    perByte(state, text.size());
}
BENCHMARK(base64Scorewright);

void base64QByteArray(benchmark::State &state) {
    const QString text = base64Text();
    for (auto _ : state) benchmark::DoNotOptimize(QByteArray::fromBase64(text.toLatin1()));
    perByte(state, text.size());
}
BENCHMARK(base64QByteArray);

std::vector<double> numbers() {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> distribution(-2, 2);
    std::vector<double> values(1000);
    for (double &value : values) value = distribution(random);
    return values;
}

void numberScorewright(benchmark::State &state) {
    const std::vector<double> values = numbers();
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(modelNumber(values[i++ % values.size()]));
}
BENCHMARK(numberScorewright);

void numberSnprintf(benchmark::State &state) {
    const std::vector<double> values = numbers();
    std::size_t i = 0;
    char text[64];
    for (auto _ : state) {
        std::snprintf(text, sizeof text, "%.16g", values[i++ % values.size()]);
        benchmark::DoNotOptimize(text[0]);
    }
}
BENCHMARK(numberSnprintf);

void numberQString(benchmark::State &state) {
    const std::vector<double> values = numbers();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(QString::number(values[i++ % values.size()], 'g', 16));
    }
}
BENCHMARK(numberQString);

} // namespace
