// The tags of a canvas, and what their values say. Each kind of tag is searched by itself, one
// occurrence at a time; taking the occurrence that stands first walks through all of them in order.
#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <functional>

// In the order in which kinds are told apart and searched.
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

// What a tag begins with, as in "[QRV_SCRIPT".
QStringView tagOpening(TagKind kind);

// The current occurrence of a kind: [start, end) in the canvas, both -1 when there is none left.
struct Tag {
    qsizetype start = -1;
    qsizetype end = 0; // the next search begins here
};

struct Labels {
    QStringView unknown = u"unknown";
    QStringView trueAnswer = u"True";
    QStringView falseAnswer = u"False";
    QStringView submit = u"Submit";
};

// The tags, and the values of those scanned last. Labels are views into the canvas.
struct CanvasTags {
    QStringView canvas;
    std::array<Tag, tagKinds> tags;
    int questionNumber = 0;
    int answerModel = 0;
    Labels labels;
    std::function<void(QStringView)> warn; // told of a number that is none; may be empty

    const Tag &operator[](TagKind kind) const { return tags[static_cast<std::size_t>(kind)]; }
};

// Finds the next occurrence of the kind and takes over its value. Warns of a number that is
// none, which counts as 0. An occurrence that is not closed leaves its value and is passed
// over.
void scanTag(CanvasTags &tags, TagKind kind);

// The first occurrence of each kind. Without `warn` there are no warnings.
CanvasTags scanCanvas(QStringView canvas, std::function<void(QStringView)> warn = {});

// The kind whose current occurrence stands first, None when there is none left. The occurrence of
// `previous` is done with: its kind is scanned on first, unless `previous` is None.
TagKind nextTag(CanvasTags &tags, TagKind previous);
