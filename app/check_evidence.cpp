#include "app/check_evidence.h"

#include "platform/platform.h"

#include <QCryptographicHash>
#include <QDateTime>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

// Reads nothing from a device, which has no size.
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

// The current time, or that of SOURCE_DATE_EPOCH for reproducible outputs.
QString timeText() {
    bool isSet = false;
    const qint64 seconds = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&isSet);
    const QDateTime time =
        isSet ? QDateTime::fromSecsSinceEpoch(seconds) : QDateTime::currentDateTime();
    return time.toUTC().toString(Qt::ISODate);
}

void addFile(Evidence &evidence, const QString &role, const QString &path, const FileRead &read) {
    if (!path.isEmpty()) evidence.files.push_back({role, path, read});
}

} // namespace

Evidence evidenceOf(const Request &request) {
    if (!request.rows.hashesFiles) return {};
    Evidence evidence = {.version = SCOREWRIGHT_VERSION u""_s,
                         .arguments = request.arguments,
                         .time = timeText(),
                         .files = {}};
    addFile(evidence, u"document"_s, request.model, readFile(request.model));
    addFile(evidence, u"SQL configuration"_s, request.sql, readFile(request.sql));
    addFile(evidence, u"canvas"_s, request.canvas, readFile(request.canvas));
    return evidence;
}

void addRows(Evidence &evidence, const RowOptions &options, const RowCounts &counts) {
    addFile(evidence, u"rows"_s, options.file, counts.rowsRead);
    addFile(evidence, u"results"_s, options.results, counts.resultsRead);
}
