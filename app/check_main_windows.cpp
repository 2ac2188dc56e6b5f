#include "app/check_driver.h"

int wmain(int argc, wchar_t **argv) {
    return runCheck([&] {
        QStringList arguments;
        for (int i = 0; i < argc; ++i) arguments.append(QStringView(argv[i]).toString());
        return arguments;
    });
}
