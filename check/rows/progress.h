// Shows how much of a file was read.
#pragma once

#include <QString>

#include <chrono>
#include <cstdint>

// A line on standard error, if that is a terminal and reading takes more than a second.
class Progress {
public:
    Progress() = default;
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    ~Progress() { end(); }

    // `size` is that of the file in bytes; 0 if it is not known. `what` the file holds.
    void begin(QStringView what, std::int64_t size);
    // `bytes` were read so far.
    void advance(std::int64_t bytes);
    // Erases the line.
    void end();

private:
    using Clock = std::chrono::steady_clock;

    bool isShown = false;
    QString title;
    std::int64_t fileSize = 0;
    Clock::time_point next; // when the line changes
    qsizetype width = 0;    // of the line
};
