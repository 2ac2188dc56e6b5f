// Findings: places where generated code departs from the model, and faults of a model, a
// configuration or a canvas.
#pragma once

#include "model/target_rules.h"

#include <QStringList>

#include <bitset>
#include <cstdint>
#include <span>
#include <vector>

// A set of targets.
using Targets = unsigned;
constexpr Targets only(Target target) {
    return 1U << static_cast<unsigned>(target);
}
inline constexpr Targets allTargets = (1U << targetCount) - 1;
std::vector<Target> listTargets(Targets targets);
QStringList targetNames(Targets targets); // as on the command line

// In the order of the report and of the table in findings.cpp.
// clang-format off
enum class FindingId : std::uint8_t {
    LowestSegment, LowestPoint, RecodingWithoutCoefficient, CoefficientWithoutRecoding,
    EqualCoefficients, EqualNumbers, SingleBound, BoundDigits, OtherBlanks, NanCell, NotListed,
    MissingCodesLine, MissingCodesDigits, MissingCodesName, BooleanDigits, ValuesAsNumbers,
    EmptyNumber, QuoteInValue, LongName, LogisticParenthesis, LogisticOverflow, NoTerms, LabelEndsComment,
    UnsupportedType, NameCharacters, NamesAlike,
    NoProbability, SqlName, QuotedName, ApostropheInValue, BackslashEscape, BooleanNumbers, BooleanBlanks,
    TextBlanks, Capitals, Accents, SinglePrecision, RowsAdded, SecondRun, KeyLength, TableNameQuoted, DistributeId, CommentDashes,
    DebugRecoding, DebugColumnsAlike, SmallNumber,
    LogisticAbsent, QuoteInTitle, CodePage, TrueFalse,
    MissingCodesParenthesis, NoCategories, LogisticLastRow, Backslash,
    FiveCategories, LowestNan, TableUnread, MissingCodesUnread, EmptyField, NotANumber,
    PageError, CanvasScale, BarScale, ConstantMisplaced, PercentSign, SharedValues, ArrayTooLong,
    UnknownSetting, UnknownDialect, FlagText, TableNameCut, EmptyName, PasswordInClear,
    CanvasNotRead, CanvasTagMissing, CanvasNumber, CanvasQuestion, CanvasAnswer, CanvasForm,
    CanvasColours,
    DocumentCut, BoundsNotRising, TableNotFalling, ProbabilityRange, ProbabilityOrder,
    TableAbsent, NotFinite, ValueTwice, EmptyValue, ValueBlanks,
};
// clang-format on
inline constexpr std::size_t findingCount = static_cast<std::size_t>(FindingId::ValueBlanks) + 1;

class FindingSet {
public:
    FindingSet() = default;
    FindingSet(std::initializer_list<FindingId> ids) {
        for (const FindingId id : ids) add(id);
    }
    bool has(FindingId id) const { return bits[static_cast<std::size_t>(id)]; }
    void add(FindingId id) { bits.set(static_cast<std::size_t>(id)); }
    void add(const FindingSet &others) { bits |= others.bits; }
    void remove(FindingId id) { bits.reset(static_cast<std::size_t>(id)); }
    bool isWithin(const FindingSet &other) const { return (bits & ~other.bits).none(); }

private:
    std::bitset<findingCount> bits;
};

QStringList namesOf(const FindingSet &findings);

// Whether a finding counts the rows that it affects; Required: it is reported only if it affects
// one.
enum class RowScope : std::uint8_t { None, Counted, Required };

struct FindingKind {
    FindingId id;
    QStringView name;
    Targets targets;
    Targets simulated; // those whose behaviour check/evaluation reproduces
    RowScope scope;
    QStringView text;
    QStringView remedy;
    QStringView page; // of the manual
};
const FindingKind &kindOf(FindingId id);
std::span<const FindingKind> findingKinds(); // in the order of FindingId

// A finding at one place.
struct Finding {
    FindingId id;
    Targets targets; // of its kind, if requested
    QString place;
    int recoding = -1;             // its index; -1 if the place is not a recoding
    std::int64_t rows = 0;         // that it affects alone
    std::int64_t firstRow = 0;     // from 1; 0 without rows
    std::int64_t togetherRows = 0; // further rows, affected only together with other findings

    bool countsRows() const { return kindOf(id).scope != RowScope::None; }
};

// "4,454".
QString grouped(std::int64_t number);

// "1 row" or "4,454 rows".
QString rowsText(std::int64_t rows);

struct FindingPlace {
    QString text;
    int recoding = -1; // its index; -1 if the place is not a recoding
};

// Collects findings for the requested targets.
struct Notes {
    Targets requested = allTargets;
    std::vector<Finding> findings = {};

    // Adds a finding for those requested targets of its kind that are within `limit`, if any.
    void add(const FindingPlace &place, FindingId id, bool isFound = true,
             Targets limit = allTargets);
};
