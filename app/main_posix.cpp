#include "app/driver.h"

#include <QStringDecoder>

#include <cstdio>
#include <cstdlib>

using namespace Qt::Literals::StringLiterals;

namespace {

// File names are UTF-8. Returns a null text for a name that is not.
QString decodeArgument(const char *argument) {
    // Without state, an incomplete sequence at the end is an error too.
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
    // The files are closed. This skips the destructors of Qt's libraries, which take time; the
    // system reclaims the memory anyway.
    if constexpr (SCOREWRIGHT_LEAVES_AT_ONCE) {
        std::fflush(stdout);
        std::_Exit(status);
    }
    return status;
}
