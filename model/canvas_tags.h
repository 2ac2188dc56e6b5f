// The tags of a canvas, and their values. Each kind of tag is searched separately, one occurrence
// at a time; the first of the current occurrences is the next tag of the canvas.
#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <functional>

// In the order in which kinds are searched.
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

// The text of a canvas, a file in UTF-8; empty if the file cannot be opened or reading it fails.
QString readCanvas(const QString &fileName);

// A canvas with a shorter text, in UTF-16 units, is replaced by the built-in one.
inline constexpr qsizetype shortestCanvas = 10;

// The text with which tags of the kind begin, such as "[QRV_SCRIPT".
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

// The current tags, and the values of those scanned last. Labels are views into the canvas.
struct CanvasTags {
    QStringView canvas;
    std::array<Tag, tagKinds> tags;
    int questionNumber = 0;
    int answerModel = 0;
    Labels labels;
    std::function<void(QStringView)> warn; // called if a value is not a number; may be empty

    const Tag &operator[](TagKind kind) const { return tags[static_cast<std::size_t>(kind)]; }
};

// Finds the next occurrence of the kind and stores its value. If the value is not a number where
// one is needed, warns and stores 0. An occurrence that is not closed is skipped, but its value is
// stored.
void scanTag(CanvasTags &tags, TagKind kind);

// The first occurrence of each kind. Without `warn` there are no warnings.
CanvasTags scanCanvas(QStringView canvas, std::function<void(QStringView)> warn = {});

// The kind of the next tag in the canvas; None if no tag is left. The current occurrence of
// `previous` has been handled: unless `previous` is None, the next one of its kind is searched
// first.
TagKind nextTag(CanvasTags &tags, TagKind previous);
