#include "app/driver.h"

#include <QStringDecoder>

#include <cstdio>
#include <cstdlib>

using namespace Qt::Literals::StringLiterals;

namespace {

// Null if the argument is not valid UTF-8.
QString decodeArgument(const char *argument) {
    // Only a stateless decoder reports a truncated sequence at the end as an error.
    QStringDecoder utf8(QStringDecoder::Utf8,
                        QStringDecoder::Flag::ConvertInitialBom | QStringDecoder::Flag::Stateless);
    const QString text = utf8(QByteArrayView(argument));
    return utf8.hasError() ? QString() : text.isNull() ? QString(u""_s) : text;
}

} // namespace

int main(int argc, char **argv) {
    const int status = runCommandLine([&] {
        std::vector<QString> arguments;
        arguments.reserve(static_cast<std::size_t>(argc));
        for (int i = 0; i < argc; ++i) arguments.push_back(decodeArgument(argv[i]));
        return arguments;
    });
    // Skips Qt's static destructors; all files are closed, and the operating system reclaims the
    // memory (benchmarks/costs.md: "leaving through main").
    if constexpr (SCOREWRIGHT_LEAVES_AT_ONCE) {
        std::fflush(stdout);
        std::_Exit(status);
    }
    return status;
}
