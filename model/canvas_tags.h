// The tags of a canvas, and their values. Each kind of tag is searched for separately, one
// occurrence at a time; the first of the current occurrences is the next tag of the canvas.
#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <functional>

// In search order, which is the order of the warnings.
enum class TagKind {
    Script,
    AllQuestions,
    Question,
    DynScale,
    Graphics,
    Answer,
    Submit,
    UnknownLabel,
    TrueLabel,
    FalseLabel,
    SubmitLabel,
    None,
};
inline constexpr std::size_t tagKinds = static_cast<std::size_t>(TagKind::None);

// The text of a canvas, a file in UTF-8; empty if the file cannot be opened or read.
QString readCanvas(const QString &fileName);

// In UTF-16 units. A shorter canvas is replaced by the built-in one.
inline constexpr qsizetype shortestCanvas = 10;

// The text that tags of the kind begin with, such as "[QRV_SCRIPT".
QStringView tagOpening(TagKind kind);

// The current occurrence of a kind: [start, end) in the canvas, both -1 if none is left.
struct Tag {
    qsizetype start = -1;
    qsizetype end = 0; // where the next search starts
};

struct Labels {
    QStringView unknown = u"unknown";
    QStringView trueAnswer = u"True";
    QStringView falseAnswer = u"False";
    QStringView submit = u"Submit";
};

// The current tags, and the values that were scanned last. Labels are views into the canvas.
struct CanvasTags {
    QStringView canvas;
    std::array<Tag, tagKinds> tags;
    int questionNumber = 0;
    int answerModel = 0;
    Labels labels;
    std::function<void(QStringView)> warn; // may be empty

    const Tag &operator[](TagKind kind) const { return tags[static_cast<std::size_t>(kind)]; }
};

// Finds the next occurrence of the kind and stores its value. If the value must be a number but is
// not, warns with the tag and its position in the canvas, and stores 0. Skips an occurrence that is
// not closed, but stores its value.
void scanTag(CanvasTags &tags, TagKind kind);

// Finds the first occurrence of each kind.
CanvasTags scanCanvas(QStringView canvas, std::function<void(QStringView)> warn = {});

// The kind of the next tag in the canvas; None if no tag is left. `previous` is the kind of the tag
// that was just handled, whose next occurrence is searched for first; None for the first call.
TagKind nextTag(CanvasTags &tags, TagKind previous);
