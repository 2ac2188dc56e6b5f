#include "app/driver.h"

// Arguments are not validated: even half a surrogate pair may be part of a file name.
int wmain(int argc, wchar_t **argv) {
    return runCommandLine([&] {
        std::vector<QString> arguments;
        arguments.reserve(static_cast<std::size_t>(argc));
        for (int i = 0; i < argc; ++i) arguments.push_back(QStringView(argv[i]).toString());
        return arguments;
    });
}
