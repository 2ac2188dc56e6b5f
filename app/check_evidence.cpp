#include "app/check_evidence.h"

#include "platform/platform.h"

#include <QCryptographicHash>
#include <QDateTime>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

// A device has no size, and nothing is read of it.
FileRead readFile(const QString &fileName) {
    OutputFile file;
    file.stream.reset(openFile(fileName, FileUse::Read));
    if (!file.stream) return {};
    QCryptographicHash hash(QCryptographicHash::Sha256);
    std::array<char, 1 << 16> block{};
    const auto size = static_cast<std::size_t>(fileSize(file.stream.get()));
    std::size_t read = 0;
    while (read < size) {
        const std::size_t wanted = std::min(block.size(), size - read);
        const std::size_t piece = std::fread(block.data(), 1, wanted, file.stream.get());
        if (piece == 0) return {};
        hash.addData({block.data(), static_cast<qsizetype>(piece)});
        read += piece;
    }
    return {.bytes = static_cast<std::int64_t>(read), .sha256 = hash.result()};
}

// The time now, or the one that builds set to repeat an output.
QString timeText() {
    bool isSet = false;
    const qint64 seconds = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&isSet);
    const QDateTime time =
        isSet ? QDateTime::fromSecsSinceEpoch(seconds) : QDateTime::currentDateTime();
    return time.toUTC().toString(Qt::ISODate);
}

} // namespace

Evidence evidenceOf(const Request &request) {
    if (!request.rows.hashesFiles) return {};
    Evidence evidence = {.version = SCOREWRIGHT_VERSION u""_s,
                         .arguments = request.arguments,
                         .time = timeText(),
                         .files = {}};
    const auto add = [&](const QString &role, const QString &path) {
        if (!path.isEmpty()) evidence.files.push_back({role, path, readFile(path)});
    };
    add(u"document"_s, request.model);
    add(u"SQL configuration"_s, request.sql);
    add(u"canvas"_s, request.canvas);
    return evidence;
}

void addRows(Evidence &evidence, const RowOptions &options, const RowCounts &counts) {
    const auto add = [&](const QString &role, const QString &path, const FileRead &read) {
        if (!path.isEmpty()) evidence.files.push_back({role, path, read});
    };
    add(u"rows"_s, options.file, counts.rowsRead);
    add(u"results"_s, options.results, counts.resultsRead);
}
