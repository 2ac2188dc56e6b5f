#include "check/rows/progress.h"

#include "platform/platform.h"

#include <algorithm>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

void Progress::begin(QStringView what, std::int64_t size) {
    constexpr auto shortRun = 1s;
    isShown = isErrorTerminal();
    title = u"Reading the %1: "_s.arg(what);
    fileSize = size;
    next = Clock::now() + shortRun;
}

void Progress::advance(std::int64_t bytes) {
    constexpr auto interval = 250ms;
    constexpr std::int64_t megabyte = 1'000'000;
    if (!isShown || Clock::now() < next) return;
    next = Clock::now() + interval;
    const QString amount = fileSize > 0 ? u"%1 %"_s.arg(100 * std::min(bytes, fileSize) / fileSize)
                                        : u"%1 MB"_s.arg(bytes / megabyte);
    printError(u'\r' + title + amount);
    width = title.size() + amount.size(); // which never becomes shorter
}

void Progress::end() {
    if (width > 0) printError(u'\r' + QString(width, u' ') + u'\r');
    isShown = false;
    width = 0;
}
