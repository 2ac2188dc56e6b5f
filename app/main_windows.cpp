#include "app/driver.h"

// Arguments are not validated: even one with half a surrogate pair may name a file.
int wmain(int argc, wchar_t **argv) {
    return runCommandLine([&] {
        std::vector<QString> arguments;
        arguments.reserve(static_cast<std::size_t>(argc));
        for (int i = 0; i < argc; ++i) arguments.push_back(QStringView(argv[i]).toString());
        return arguments;
    });
}
