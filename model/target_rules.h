// How targets treat the names, types and lists of a document: rules that the exporters follow and
// that the companion uses to predict what the generated code does. Rules of SQL's settings and
// dialects are in sql_configuration.h and sql_dialect.h, those of a canvas in canvas_tags.h.
#pragma once

#include <QStringView>

#include <cstddef>
#include <cstdint>
#include <span>

enum class Target : std::uint8_t { Sas, Sql, Vba, Python, Html };
inline constexpr std::size_t targetCount = 5;

// --- Names

// The characters that become "_" in column names, because the generated code cannot contain them.
// Missing codes are looked up by the resulting name. The Python package has the same list (REPLACED
// in python/scorewright/document.py).
QStringView replacedCharacters(Target target);

// The longest name of a recoding, in UTF-16 units; longer names are truncated.
inline constexpr qsizetype longestRecodingName = 31;

// --- SAS

// Whether SAS code can be generated for this type of recoding. Documents with others are rejected.
bool sasSupports(QStringView type);

// Whether the values of a list are written without quotes, so that SAS compares them as numbers: if
// all consist of digits and full stops only. False for an empty list.
bool sasComparesNumbers(std::span<const QStringView> values);

// --- HTML

// Whether a page shows a list of this many categories as a drop-down list, not as radio buttons,
// and whether its script reads it as one.
constexpr bool htmlShowsList(std::size_t categories) {
    return categories >= 5;
}
constexpr bool htmlReadsList(std::size_t categories) {
    return categories >= 6;
}
// A drop-down list that is read as radio buttons scores as missing. Frozen for compatibility.
constexpr bool htmlMisreadsList(std::size_t categories) {
    return htmlShowsList(categories) && !htmlReadsList(categories);
}
