// What targets do with the names, types and lists of a document. An exporter follows these rules,
// and the companion asks for the same ones to say what the generated code does. Rules of SQL's
// settings and dialects stand in sql_configuration.h and sql_dialect.h, those of a canvas in
// canvas_tags.h.
#pragma once

#include <QStringView>

#include <cstddef>
#include <cstdint>
#include <span>

enum class Target : std::uint8_t { Sas, Sql, Vba, Python, Html };
inline constexpr std::size_t targetCount = 5;

// --- Names

// The characters that become "_" in the names of columns and of the target column, since the
// target's code cannot hold them. Missing codes are looked up by the name that results. The Python
// package has the same list (REPLACED in python/scorewright/document.py).
QStringView replacedCharacters(Target target);

// The longest name of a recoding, in UTF-16 units; the rest is cut off.
inline constexpr qsizetype longestRecodingName = 31;

// --- SAS

// Whether there is SAS code for recodings of this type. A document with any other is rejected.
bool sasSupports(QStringView type);

// Whether SAS compares the values of a list as numbers, written without quotes: if all of them
// consist of digits and full stops only. False for an empty list.
bool sasComparesNumbers(std::span<const QStringView> values);

// --- HTML

// Whether a page shows a list of this many categories as a drop-down list rather than as radio
// buttons, and whether its script reads it as one.
constexpr bool htmlShowsList(std::size_t categories) {
    return categories >= 5;
}
constexpr bool htmlReadsList(std::size_t categories) {
    return categories >= 6;
}
// A list that is read as radio buttons scores as unknown. Existing pages do so.
constexpr bool htmlMisreadsList(std::size_t categories) {
    return htmlShowsList(categories) && !htmlReadsList(categories);
}
