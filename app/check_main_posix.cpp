#include "app/check_driver.h"

// Arguments are UTF-8. Invalid UTF-8 surfaces later as a file that is not found.
int main(int argc, char **argv) {
    return runCheck([&] {
        QStringList arguments;
        for (int i = 0; i < argc; ++i) arguments.append(QString::fromUtf8(argv[i]));
        return arguments;
    });
}
