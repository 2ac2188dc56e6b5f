// After a tag, only its own kind is searched for again: in total, the canvas is read once per kind.
#include "model/canvas_tags.h"

#include "platform/platform.h"

#include <algorithm>
#include <limits>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::array<QStringView, tagKinds> openings = {
    u"[QRV_SCRIPT",      u"[QRV_ALL_QUESTIONS", u"[QRV_QUESTION",     u"[QRV_DYN_SCALE",
    u"[QRV_GRAPHICS",    u"[QRV_ANSWER",        u"[QRV_SUBMIT",       u"[QRV_STRING_UNKNOWN",
    u"[QRV_STRING_TRUE", u"[QRV_STRING_FALSE",  u"[QRV_STRING_SUBMIT"};

constexpr TagKind kindAt(std::size_t index) {
    return static_cast<TagKind>(index);
}

bool isBlank(QChar c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

bool hasValue(TagKind kind) {
    return kind == TagKind::Question || kind == TagKind::Answer || kind >= TagKind::UnknownLabel;
}

qsizetype skipBlanks(QStringView canvas, qsizetype at) {
    while (at < canvas.size() && isBlank(canvas[at])) ++at;
    return at;
}

std::optional<int> wholeNumber(QStringView text) {
    const bool isNegative = text.startsWith(u'-');
    const QStringView digits = text.sliced(isNegative || text.startsWith(u'+') ? 1 : 0);
    qint64 number = 0;
    for (const QChar c : digits) {
        if (c < u'0' || c > u'9') return {};
        number = 10 * number + (c.unicode() - u'0');
        if (number > -qint64(std::numeric_limits<int>::min())) return {};
    }
    if (isNegative) number = -number;
    if (digits.isEmpty() || number > std::numeric_limits<int>::max()) return {};
    return static_cast<int>(number);
}

// The end of the value found last. Values that start before it end there too.
struct ValueEnd {
    qsizetype position = -1; // of its "/" or "]"
    qsizetype trimmed = -1;  // without the blanks before that
};

// The value at `at`, without the blanks around it. Reuses the end found for an earlier value:
// searching for it again would take quadratic time for unclosed tags before a long text.
QStringView readValue(QStringView canvas, qsizetype at, ValueEnd &end) {
    const qsizetype start = skipBlanks(canvas, at);
    if (end.position < start) {
        const auto isEnd = [](QChar c) { return c == u'/' || c == u']'; };
        end.position = std::find_if(canvas.begin() + start, canvas.end(), isEnd) - canvas.begin();
        end.trimmed = end.position;
        while (end.trimmed > start && isBlank(canvas[end.trimmed - 1])) --end.trimmed;
    }
    return canvas.sliced(start, std::max(end.trimmed, start) - start);
}

int numberOrWarn(const CanvasTags &tags, QStringView value, QStringView warning, TagKind kind) {
    const std::optional<int> number = wholeNumber(value);
    if (!number && tags.warn) {
        tags.warn(warning.arg(tagOpening(kind), QString::number(tags[kind].start)));
    }
    return number.value_or(0);
}

void storeValue(CanvasTags &tags, TagKind kind, QStringView value) {
    switch (kind) {
    case TagKind::Question:
        tags.questionNumber = numberOrWarn(
            tags, value, u"WARNING: no question number found in tag %1 on index %2", kind);
        break;
    case TagKind::Answer:
        tags.answerModel = numberOrWarn(
            tags, value, u"WARNING: no model number found in tag %1 on index %2", kind);
        break;
    case TagKind::UnknownLabel:
        tags.labels.unknown = value;
        break;
    case TagKind::TrueLabel:
        tags.labels.trueAnswer = value;
        break;
    case TagKind::FalseLabel:
        tags.labels.falseAnswer = value;
        break;
    case TagKind::SubmitLabel:
        tags.labels.submit = value;
        break;
    case TagKind::Script:
    case TagKind::AllQuestions:
    case TagKind::DynScale:
    case TagKind::Graphics:
    case TagKind::Submit:
    case TagKind::None:
        break;
    }
}

// The position after the "]" or "/]" at `at`; -1 if neither is there.
qsizetype closingEnd(QStringView canvas, qsizetype at) {
    const QStringView rest = canvas.sliced(at);
    if (rest.startsWith(u']')) return at + 1;
    return rest.startsWith(u"/]") ? at + 2 : -1;
}

} // namespace

QString readCanvas(const QString &fileName) {
    std::FILE *const file = openFile(fileName, FileUse::Read);
    if (!file) return {};
    QByteArray bytes;
    bytes.resize(fileSize(file)); // a device may never end, but its size is 0
    const auto size = static_cast<std::size_t>(bytes.size());
    bytes.truncate(static_cast<qsizetype>(std::fread(bytes.data(), 1, size, file)));
    const bool isRead = std::ferror(file) == 0;
    std::fclose(file);
    return isRead ? QString::fromUtf8(bytes) : QString();
}

QStringView tagOpening(TagKind kind) {
    return openings[static_cast<std::size_t>(kind)];
}

void scanTag(CanvasTags &tags, TagKind kind) {
    const QStringView opening = tagOpening(kind);
    Tag &tag = tags.tags[static_cast<std::size_t>(kind)];
    qsizetype from = tag.end;
    ValueEnd valueEnd;
    do {
        tag.end = -1;
        tag.start = tags.canvas.indexOf(opening, from);
        if (tag.start < 0) return;
        from = tag.start + opening.size();
        if (hasValue(kind)) {
            storeValue(tags, kind, readValue(tags.canvas, from, valueEnd));
            tag.end = closingEnd(tags.canvas, valueEnd.position);
        } else {
            tag.end = closingEnd(tags.canvas, skipBlanks(tags.canvas, from));
        }
    } while (tag.end < 0);
}

CanvasTags scanCanvas(QStringView canvas, std::function<void(QStringView)> warn) {
    CanvasTags tags;
    tags.canvas = canvas;
    tags.warn = std::move(warn);
    for (std::size_t kind = 0; kind < tagKinds; ++kind) scanTag(tags, kindAt(kind));
    return tags;
}

TagKind nextTag(CanvasTags &tags, TagKind previous) {
    if (previous != TagKind::None) scanTag(tags, previous);
    TagKind next = TagKind::None;
    for (std::size_t kind = 0; kind < tagKinds; ++kind) {
        const qsizetype start = tags.tags[kind].start;
        if (start >= 0 && (next == TagKind::None || start < tags[next].start)) next = kindAt(kind);
    }
    return next;
}
