#include "check/inspection/inspection.h"

#include "check/evaluation/evaluation.h"
#include "check/evaluation/target_texts.h"
#include "model/sql_dialect.h"

#include <QSet>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

bool isFinite(std::span<const double> numbers) {
    return std::ranges::all_of(numbers, [](double v) { return std::isfinite(v); });
}

bool isSmall(double number) {
    return number != 0 && std::abs(number) < smallestSqlNumber;
}

bool isRounded(double number) {
    return withDigits(number, 6) != number;
}

// Whether rounding to `digits` significant digits changes one of the numbers.
bool isInexact(std::span<const double> numbers, int digits) {
    return std::ranges::any_of(numbers,
                               [&](double number) { return withDigits(number, digits) != number; });
}

// --- Recodings

// Whether the recoding is the first of its kind, numeric or categorical, in its column.
bool isFirstOfKind(const Scorecard &card, const Recoding &recoding) {
    const auto isAlike = [&](std::size_t i) {
        return card.recodings[i].variable->isCategorical == recoding.variable->isCategorical;
    };
    return *std::ranges::find_if(card.recodingsOf[recoding.column], isAlike) ==
           recoding.variable->index;
}

void inspectNumeric(Notes &notes, const FindingPlace &place, const Scorecard &card,
                    const Recoding &recoding, const SqlProperties &sql) {
    const QStringView field = recoding.variable->field;
    const MissingDictionary &dictionary = card.dictionary;
    const std::size_t listOfSas = dictionary.find(cleanedFor(Target::Sas, field));
    const std::span<const double> codes = recoding.codes;
    const auto codesIn = [&](Target target) {
        return recoding.codesOfTarget[static_cast<std::size_t>(target)];
    };
    Targets others = 0;
    Targets rounding = std::ranges::any_of(codes, isRounded) ? allTargets : 0;
    for (const Target target : listTargets(allTargets)) {
        if (!std::ranges::equal(codes, codesIn(target))) others |= only(target);
        if (std::ranges::any_of(codesIn(target), isRounded)) rounding |= only(target);
    }
    Targets inexact = isInexact(recoding.x, SqlReading().digits) ? allTargets : 0;
    if (isInexact(recoding.x, sql.reading.digits) ||
        isInexact(codesIn(Target::Sql), sql.reading.digits)) {
        inexact |= only(Target::Sql);
    }
    notes.add(place, MissingCodesLine, dictionary.lists[listOfSas].isListed);
    notes.add(place, MissingCodesDigits, true, rounding);
    notes.add(place, MissingCodesName, true, others);
    notes.add(place, MissingCodesParenthesis, !codesIn(Target::Python).empty());
    notes.add(place, MissingCodesUnread, !codes.empty());
    notes.add(place, SingleBound, recoding.x.size() == 1);
    notes.add(place, BoundsNotRising, !recoding.isRising);
    notes.add(place, ArrayTooLong, recoding.y.size() > recoding.x.size() + 2);
    notes.add(place, UnsupportedType, !sasSupports(recoding.variable->type));
    notes.add(place, BoundDigits, true, inexact);
    const bool isFirst = isFirstOfKind(card, recoding);
    notes.add(place, EmptyField, isFirst);
    notes.add(place, NotANumber, isFirst);
    notes.add(place, NanCell, isFirst);
    notes.add(place, NotFinite, !isFinite(recoding.x) || !isFinite(recoding.y) || !isFinite(codes));
}

// Whether SAS reads the value without quotation marks as a number; a full stop is a missing value.
bool isNumberOfSas(QStringView value) {
    const auto stops = std::ranges::count(value, u'.');
    return value == u"." || (stops <= 1 && value.size() > stops);
}

void inspectCategorical(Notes &notes, const FindingPlace &place, const Scorecard &card,
                        const Recoding &recoding, const SqlProperties &sql) {
    const bool isBoolean = recoding.isBoolean;
    const auto any = [&](auto test) { return std::ranges::any_of(recoding.listed, test); };
    const auto holds = [&](QChar c) {
        return any([c](QStringView value) { return value.contains(c); });
    };
    const auto isTruth = [](QStringView value) {
        return value == u"TRUE" || value == u"FALSE" || value == u"True" || value == u"False";
    };
    const auto hasBlanks = [](QStringView v) { return v.size() != v.trimmed().size(); };
    const auto isTwice = [&](const auto &entry) {
        return recoding.positionAt(entry.second.first) != recoding.positionAt(entry.second.last);
    };
    const bool hasEmpty = any([](QStringView value) { return value.isEmpty(); });
    // A column compared with 0 and 1 has no texts in the script.
    const bool hasTexts = !isBoolean || !sql.boolsAreNumbers;
    const Targets texts = hasTexts ? allTargets : ~only(Target::Sql);
    const bool isTrimmed = !isBoolean && sql.trimsTexts;
    const auto used = recoding.y.subspan(1, std::min<std::size_t>(recoding.y.size() - 1, 2));

    notes.add(place, BooleanDigits, isBoolean && std::ranges::any_of(used, isRounded));
    notes.add(place, BooleanNumbers, isBoolean && sql.boolsAreNumbers);
    notes.add(place, BooleanBlanks, isBoolean && !sql.boolsAreNumbers);
    notes.add(place, FiveCategories, !isBoolean && htmlMisreadsList(recoding.listed.size()));
    notes.add(place, TextBlanks, !isBoolean && !sql.trimsTexts);
    notes.add(place, Capitals, hasTexts);
    notes.add(place, Accents, hasTexts);
    notes.add(place, OtherBlanks, true, isTrimmed ? allTargets : ~only(Target::Sql));
    notes.add(place, NotListed, isFirstOfKind(card, recoding));
    notes.add(place, ValuesAsNumbers, recoding.isOfNumbers);
    notes.add(place, EmptyNumber,
              recoding.isOfNumbers && !std::ranges::all_of(recoding.listed, isNumberOfSas));
    notes.add(place, QuoteInValue, holds(u'"'));
    notes.add(place, ApostropheInValue, holds(u'\'') && !sql.readsBackslashes);
    notes.add(place, Backslash, recoding.holdsBackslash);
    notes.add(place, BackslashEscape,
              recoding.holdsBackslash && hasTexts && sql.mayReadBackslashes);
    notes.add(place, TrueFalse, any(isTruth));
    notes.add(place, ValueBlanks, any(hasBlanks), texts);
    notes.add(place, EmptyValue, hasEmpty);
    notes.add(place, ValueTwice, std::ranges::any_of(recoding.values[0], isTwice));
    notes.add(place, NotFinite, !isFinite(recoding.y));
}

// Whether the target accepts the name; in Excel VBA a prefix precedes it.
bool isName(QStringView name, Target target) {
    constexpr qsizetype longestOfSas = 32;
    const auto isAllowed = [target](QChar c) {
        return c == u'_' ||
               ((c.isLetter() || c.isDigit()) && (target != Target::Sas || c < u'\x80'));
    };
    if (target == Target::Sas && name.size() > longestOfSas) return false;
    const bool begins = target == Target::Vba || (!name.isEmpty() && !name[0].isDigit());
    return begins && std::all_of(name.begin(), name.end(), isAllowed);
}

bool isInWindows1252(QStringView text) {
    static constexpr QStringView above = u"€‚ƒ„…†‡ˆ‰Š‹ŒŽ‘’“”•–—˜™š›œžŸ";
    return std::ranges::all_of(text, [](QChar c) {
        return c < u'\x80' || (c >= u'\xA0' && c <= u'\xFF') || above.contains(c);
    });
}

// The page has one question for each column.
bool sharesItsAnswers(const Recoding &a, const Recoding &b) {
    return a.variable->isCategorical == b.variable->isCategorical && a.isBoolean == b.isBoolean &&
           std::ranges::equal(a.listed, b.listed);
}

void inspectNames(Notes &notes, const FindingPlace &place, const Recoding &recoding) {
    const Variable &variable = *recoding.variable;
    const bool isFirst = recoding.rank == 0;
    const QString prefix = u"R%1_"_s.arg(variable.index);
    Targets alike = 0;
    Targets broken = 0;
    for (const Target target : {Target::Sas, Target::Vba, Target::Python}) {
        const std::size_t last = recoding.lastAlike[static_cast<std::size_t>(target)];
        if (last != recoding.column) alike |= only(target);
        QString name = cleanedFor(target, variable.field);
        if (target == Target::Vba) name.truncate(longestRecodingName - prefix.size());
        if (!isName(name, target)) broken |= only(target);
    }
    notes.add(place, NamesAlike, true, alike);
    notes.add(place, NameCharacters, isFirst, broken);
    notes.add(place, QuoteInTitle, isFirst && variable.field.contains(u'"'));
    notes.add(place, CodePage,
              !isInWindows1252(variable.field) ||
                  !std::ranges::all_of(recoding.listed, isInWindows1252));
    notes.add(place, LongName, prefix.size() + variable.field.size() > longestRecodingName);
    notes.add(place, SharedValues, !sharesItsAnswers(*recoding.asked, recoding));
    notes.add(place, LabelEndsComment, variable.label.contains(u"*/"_s));
}

void inspectRecodings(Notes &notes, const Scorecard &card, const SqlProperties &sql) {
    QSet<int> numbers;
    for (const RegressionTerm &term : card.regression.terms) numbers.insert(term.number);
    QSet<int> ofRecodings;
    for (const Recoding &recoding : card.recodings) {
        const Variable &variable = *recoding.variable;
        const FindingPlace place = {u"recoding %1 (column %2)"_s.arg(variable.name, variable.field),
                                    static_cast<int>(variable.index)};
        if (variable.isCategorical) {
            inspectCategorical(notes, place, card, recoding, sql);
        } else {
            inspectNumeric(notes, place, card, recoding, sql);
        }
        inspectNames(notes, place, recoding);
        const auto isLost = [&](double score) { return isSmall(score * recoding.coefficient); };
        notes.add(place, SmallNumber,
                  std::ranges::any_of(recoding.x, isSmall) ||
                      std::ranges::any_of(recoding.y, isLost));
        const bool hasCoefficient = numbers.contains(variable.number);
        notes.add(place, RecodingWithoutCoefficient, !hasCoefficient);
        notes.add(place, EqualNumbers, hasCoefficient && ofRecodings.contains(variable.number));
        ofRecodings.insert(variable.number);
    }
}

// --- Regression and table

void inspectRegression(Notes &notes, const Scorecard &card) {
    const Regression &regression = card.regression;
    QSet<int> seen;
    for (const RegressionTerm &term : regression.terms) {
        const FindingPlace place = {u"coefficient of number %1"_s.arg(term.number)};
        notes.add(place, CoefficientWithoutRecoding, term.index < 0);
        notes.add(place, EqualCoefficients, seen.contains(term.number));
        notes.add(place, NotFinite, !std::isfinite(term.coefficient));
        seen.insert(term.number);
    }
    const FindingPlace constant = {u"constant"_s};
    notes.add({u"RegressionModel"_s}, NoTerms, regression.terms.empty());
    notes.add(constant, NotFinite, !std::isfinite(regression.constant));
    notes.add(constant, SmallNumber, isSmall(regression.constant));
    notes.add(constant, ConstantMisplaced, regression.terms.size() != card.variables.size());
    notes.add({u"model"_s}, NoCategories,
              std::ranges::none_of(card.variables, &Variable::isCategorical));
    const QString prefix = targetPrefix(card.document, replacedCharacters(Target::Sas));
    notes.add({u"target %1"_s.arg(prefix.chopped(std::min<qsizetype>(prefix.size(), 1)))},
              NameCharacters, !prefix.isEmpty() && !isName(prefix + u"score"_s, Target::Sas),
              only(Target::Sas));
}

bool hasOtherSums(const Notes &notes) {
    constexpr FindingId others[] = {CoefficientWithoutRecoding, EqualCoefficients, EqualNumbers,
                                    ConstantMisplaced, DebugRecoding};
    return std::ranges::any_of(notes.findings, [&](const Finding &finding) {
        return std::ranges::find(others, finding.id) != std::end(others);
    });
}

// Whether a table point at a jump of the probability is rounded. At the end of the table, targets
// have jumps of their own.
bool hasInexactJump(const Scorecard &card, int digits) {
    const std::span<const double> x = card.table.x;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const bool isJump = i + 2 >= x.size() || (i > 0 && x[i] == x[i - 1]) || x[i] == x[i + 1];
        if (isJump && isInexact(x.subspan(i, 1), digits)) return true;
    }
    return false;
}

void inspectTable(Notes &notes, const Scorecard &card, const SqlProperties &sql) {
    if (!card.table.exists) return;
    const auto &x = card.table.x;
    const auto &y = card.table.y;
    const Targets probabilities = sql.hasProbability ? allTargets : ~only(Target::Sql);
    bool rises = true;
    bool falls = true;
    const auto pointAt = [&](std::size_t i) -> FindingPlace {
        return {u"table, point %1 (score %2)"_s.arg(QString::number(i + 1), numberText(x[i]))};
    };
    for (std::size_t i = 0; i < x.size(); ++i) {
        const FindingPlace place = pointAt(i);
        notes.add(place, NotFinite, !std::isfinite(x[i]) || !std::isfinite(y[i]));
        notes.add(place, SmallNumber, isSmall(x[i]) || isSmall(y[i]));
        notes.add(place, ProbabilityRange, y[i] < 0 || y[i] > 1);
        if (i == 0) continue;
        notes.add(place, TableNotFalling, x[i] > x[i - 1]);
        rises = rises && y[i] >= y[i - 1];
        falls = falls && y[i] <= y[i - 1];
        notes.add(place, ProbabilityOrder, !rises && !falls);
        if (!rises && !falls) rises = falls = true; // reports each turn once
    }
    // The least score of the model. A target that departs from its sum may go below it.
    const double least = hasOtherSums(notes) ? -HUGE_VAL : scoreRange(card).least;
    const FindingPlace lowest = pointAt(x.size() - 1);
    const bool hasSegment = x.size() > 1 && x.back() != x[x.size() - 2];
    notes.add(lowest, LowestSegment, hasSegment && least <= x[x.size() - 2], probabilities);
    notes.add(lowest, LowestPoint, least <= x.back(), probabilities);
    notes.add({u"table"_s}, BoundDigits, hasInexactJump(card, sql.reading.digits));
    notes.add(lowest, LowestNan, least <= x.back() && isOfKind(card, u"T"));
}

void inspectResult(Notes &notes, const Scorecard &card, bool hasCanvas) {
    const bool isProbability = isOfKind(card, u"T");
    const bool isPrediction = isOfKind(card, u"C");
    const bool hasTable = card.table.exists;
    const FindingPlace method = {u"normalizationMethod"_s};
    notes.add(method, LogisticParenthesis, card.isLogistic);
    notes.add(method, LogisticOverflow, card.isLogistic);
    notes.add(method, LogisticAbsent, card.isLogistic,
              isPrediction ? allTargets : ~only(Target::Html));
    notes.add(method, LogisticLastRow, card.isLogistic);
    const FindingPlace kind = {u"tkind '%1'"_s.arg(kindOfTarget(card))};
    notes.add(kind, TableAbsent, isProbability && !card.hasProbability());
    notes.add(kind, PageError, isProbability ? !hasTable : !isPrediction);
    notes.add(kind, TableUnread, isPrediction && hasTable);
    notes.add(kind, PercentSign, isPrediction && !hasCanvas);
    notes.add({u"table"_s}, BarScale, isProbability && hasTable && card.table.x.size() < 3);
}

} // namespace

std::vector<Finding> inspect(const Scorecard &card, const Inspection &inspection) {
    Notes notes{inspection.targets};
    const SqlProperties sql =
        inspection.sql ? propertiesOf(inspection.sql->configuration) : SqlProperties();
    const XmlParseResult &parsed = card.document.parseResult;
    notes.add({u"line %1, column %2"_s.arg(parsed.line).arg(parsed.column)}, DocumentCut,
              parsed.error == XmlError::UnmatchedEndTagWarning);
    inspectRecodings(notes, card, sql);
    inspectRegression(notes, card);
    const bool hasCanvas = !inspection.canvasName.isEmpty();
    inspectResult(notes, card, hasCanvas);
    inspectSql(notes, card, inspection.sql);
    inspectTable(notes, card, sql);
    if (hasCanvas) inspectCanvas(notes, card, inspection.canvasName, inspection.canvas);
    std::ranges::stable_sort(notes.findings, {}, &Finding::id);
    return std::move(notes.findings);
}
