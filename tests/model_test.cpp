#include "model/number_text.h"
#include "model/regression.h"
#include "model/text_buffer.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

// Numbers within, at the limits of and outside the fast path: any bits, few decimals, ties, and
// neighbours of powers of ten.
TEST(NumberText, MatchesTheStandardLibrary) {
    std::vector<double> values = {0.0,    -0.0,    1e18 + 1, 9999999999999999.0, 3504133338402688.5,
                                  5e-324, 1.5e308, -1e100,   HUGE_VAL,           -HUGE_VAL};
    std::mt19937_64 random(1);
    for (int i = 0; i < 70000; ++i) {
        const std::uint64_t bits = random();
        const auto power = std::pow(10.0, static_cast<double>(bits % 22) - 5);
        values.push_back(std::bit_cast<double>(bits));
        values.push_back(static_cast<double>(bits >> 44) / power);
        values.push_back(std::ldexp(static_cast<double>(bits >> (11 + bits % 40)), -1 - i % 60));
        values.push_back(-power * (1 + std::ldexp(i % 5 - 2, -52)));
        values.push_back(power - std::pow(10.0, i % 30 - 20) / 2);
    }
    for (const double value : values) {
        if (std::isnan(value)) continue; // libraries differ
        for (const int digits : {6, 15, 16}) {
            char text[64];
            const auto end =
                std::to_chars(text, std::end(text), value, std::chars_format::general, digits);
            ASSERT_EQ(generalNumber(value, digits).view(), std::string_view(text, end.ptr))
                << digits;
        }
    }
}

TEST(StreamNumber, HasSixDigitsAndALongExponent) {
    const std::pair<double, const char *> cases[] = {
        {-999.5, "-999.5"},  {1e6, "1e+006"}, {1.5e-07, "1.5e-007"}, {1234567, "1.23457e+006"},
        {-1e100, "-1e+100"}, {0, "0"},        {1e-05, "1e-005"},     {999999.4, "999999"}};
    for (const auto &[value, text] : cases) EXPECT_EQ(streamNumber(value).view(), text);
}

const std::filesystem::path path =
    std::filesystem::temp_directory_path() / ("model_test_" + std::to_string(getpid()));

QByteArray written(OutputEncoding encoding, QStringView text, qsizetype pieceSize) {
    OutputFile file;
    file.stream.reset(std::fopen(path.string().c_str(), "wb"));
    file.encoding = encoding;
    TextBuffer out;
    out.writeTo(std::move(file));
    for (qsizetype at = 0; at < text.size(); at += pieceSize) {
        put(out, text.sliced(at, std::min(pieceSize, text.size() - at)));
    }
    out.close();
    std::ifstream stream(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(stream), {});
    stream.close();
    std::filesystem::remove(path);
    return QByteArray::fromStdString(bytes);
}

// Surrogate pairs cross the ends of blocks, and the text ends with half a pair.
TEST(TextBuffer, WritesBlocksAsOneText) {
    for (const qsizetype shift : {0, 1}) {
        const QString text =
            QString(shift, u'x') + QString(u"\U0001D11E"_s).repeated(200000) + QChar(0xD834);
        EXPECT_EQ(written(OutputEncoding::Utf8, text, 7), text.toUtf8());
        EXPECT_EQ(written(OutputEncoding::Utf16, text, 20000),
                  QByteArray(reinterpret_cast<const char *>(text.utf16()), 2 * text.size()));
    }
}

// The sanitizer detects use of memory after its release.
TEST(Variables, KeepTheirDocumentAlive) {
    std::ofstream(path) << "<QRV_Model><UnivModels><Model field='a b'/><Model field='c d'>"
                           "<y>AAAAAAAA8D8=</y></Model></UnivModels></QRV_Model>";
    Variables kept;
    {
        ModelDocument document = loadModel(QString::fromStdString(path.string()));
        std::filesystem::remove(path);
        const Variables first = readVariables(document, u"b");
        kept = readVariables(document, u" ");
        // An array that was decoded with the variables can be read again.
        EXPECT_EQ(readNumbers(document, kept[1].node, u"y", 1), std::vector<double>{1});
        EXPECT_EQ(first[1].y.data(), kept[1].y.data());
        EXPECT_EQ(first[0].recodingName, u"R0_a _");
    }
    const Variables moved = std::move(kept);
    EXPECT_TRUE(kept.empty());
    EXPECT_EQ(moved.size(), 2);
    EXPECT_EQ(moved[1].recodingName, u"R1_c_d");
    EXPECT_EQ(moved[1].y[0], 1);
    ModelDocument none;
    EXPECT_TRUE(readVariables(none, {}).empty());
}

// A fused multiply-add would round once, to ...125.
TEST(ProbabilitySegments, RoundProductAndDifferenceSeparately) {
    EXPECT_EQ(probabilitySegment({true, {3, 0.3}, {0.9, 0.1}}, 1).intercept, 0.011111111111111127);
}

} // namespace
