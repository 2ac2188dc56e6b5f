#include "app/driver.h"

// Arguments are taken as they stand, also where half a pair makes one no text: it may name a file.
int wmain(int argc, wchar_t **argv) {
    return runCommandLine([&] {
        std::vector<QString> arguments;
        arguments.reserve(static_cast<std::size_t>(argc));
        for (int i = 0; i < argc; ++i) arguments.push_back(QStringView(argv[i]).toString());
        return arguments;
    });
}
