#include "check/model_findings.h"

#include "check/csv_reader.h"
#include "check/evaluation.h"
#include "check/setting_findings.h"

#include <QSet>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum FindingId;

QString placeOf(const Recoding &recoding) {
    return u"recoding %1 (column %2)"_s.arg(recoding.variable->node.attribute(u"name"),
                                            recoding.variable->field);
}

void note(Notes &notes, FindingId id, const Scorecard &card, const Recoding &recoding,
          const Targets &targets = Targets().set()) {
    Finding *const finding = notes.add(id, placeOf(recoding), targets);
    if (finding) finding->recoding = static_cast<int>(&recoding - card.recodings.data());
}

bool isFinite(std::span<const double> numbers) {
    return std::ranges::all_of(numbers, [](double v) { return std::isfinite(v); });
}

bool isSmall(double number) {
    constexpr double smallest = 1e-12;
    return number != 0 && std::abs(number) < smallest;
}

// --- Recodings

void inspectCodes(Notes &notes, const Scorecard &card, const Recoding &recoding) {
    const QStringView field = recoding.variable->field;
    const MissingDictionary &dictionary = card.dictionary;
    if (dictionary.lists[dictionary.find(cleanedFor(Target::Sas, field))].isListed) {
        note(notes, MissingCodesLine, card, recoding);
    }
    const auto isRounded = [](double code) { return sixDigits(code) != code; };
    if (std::ranges::any_of(recoding.codes.exact, isRounded)) {
        note(notes, MissingCodesDigits, card, recoding);
    }
    Targets others;
    for (std::size_t t = 0; t < targetCount; ++t) {
        others.set(t, !std::ranges::equal(recoding.codes.exact, recoding.codesOfTarget[t].exact));
    }
    if (others.any()) note(notes, MissingCodesName, card, recoding, others);
    if (!recoding.codesOfTarget[static_cast<std::size_t>(Target::Python)].exact.empty()) {
        note(notes, MissingCodesParenthesis, card, recoding);
    }
    if (!recoding.codes.exact.empty()) note(notes, MissingCodesUnread, card, recoding);
}

void inspectNumeric(Notes &notes, const Scorecard &card, const Recoding &recoding) {
    inspectCodes(notes, card, recoding);
    if (recoding.x.size() == 1) note(notes, SingleBound, card, recoding);
    if (!recoding.isRising) note(notes, BoundsNotRising, card, recoding);
    if (recoding.y.size() > recoding.x.size() + 2) note(notes, ArrayTooLong, card, recoding);
    const QStringView type = recoding.variable->node.attribute(u"type");
    if (type != u"NormContinuous" && type != u"Discretize") {
        note(notes, UnsupportedType, card, recoding);
    }
}

// What the targets make of the values as texts.
void inspectValues(Notes &notes, const Scorecard &card, const Recoding &recoding,
                   const SqlUse &sql) {
    const auto anyValue = [&](auto test) { return std::ranges::any_of(recoding.listed, test); };
    const auto holds = [&](QChar c) {
        return anyValue([c](QStringView value) { return value.contains(c); });
    };
    const auto isPlain = [](QStringView value) {
        return std::all_of(value.begin(), value.end(),
                           [](QChar c) { return (c >= u'0' && c <= u'9') || c == u'.'; });
    };
    const auto isEmpty = [](QStringView value) { return value.isEmpty(); };
    const bool isNumbers = !recoding.isBoolean && !recoding.listed.empty() &&
                           std::ranges::all_of(recoding.listed, isPlain);
    if (isNumbers) note(notes, ValuesAsNumbers, card, recoding);
    if (isNumbers && anyValue(isEmpty)) note(notes, EmptyNumber, card, recoding);
    if (holds(u'"')) note(notes, QuoteInValue, card, recoding);
    if (holds(u'\'') && !sql.readsBackslashes) note(notes, ApostropheInValue, card, recoding);
    if (holds(u'\\')) note(notes, Backslash, card, recoding);
    if (anyValue([](QStringView v) { return v == u"TRUE" || v == u"FALSE"; })) {
        note(notes, TrueFalse, card, recoding);
    }
    if (anyValue([](QStringView v) { return v.size() != v.trimmed().size(); })) {
        note(notes, ValueBlanks, card, recoding);
    }
    if (anyValue(isEmpty)) note(notes, EmptyValue, card, recoding);
}

void inspectCategorical(Notes &notes, const Scorecard &card, const Recoding &recoding,
                        const SqlUse &sql) {
    inspectValues(notes, card, recoding, sql);
    if (recoding.isBoolean) {
        const auto used = recoding.y.subspan(1, std::min<std::size_t>(recoding.y.size() - 1, 2));
        const auto isRounded = [](double score) { return sixDigits(score) != score; };
        if (std::ranges::any_of(used, isRounded)) note(notes, BooleanDigits, card, recoding);
        note(notes, sql.boolsAreNumbers ? BooleanNumbers : BooleanBlanks, card, recoding);
    } else {
        if (recoding.listed.size() == 5) note(notes, FiveCategories, card, recoding);
        if (!sql.trimsTexts) note(notes, TextBlanks, card, recoding);
    }
    if (!recoding.isBoolean || !sql.boolsAreNumbers) note(notes, Capitals, card, recoding);
    const auto isTwice = [](const auto &entry) { return entry.second.first != entry.second.last; };
    if (std::ranges::any_of(recoding.values[0], isTwice)) note(notes, ValueTwice, card, recoding);
}

void inspectRecodings(Notes &notes, const Scorecard &card, const SqlUse &sql) {
    QSet<int> numbers;
    for (const RegressionTerm &term : card.regression.terms) numbers.insert(term.number);
    QSet<int> ofRecodings;
    QSet<std::size_t> numericColumns; // whose cells are looked at already
    for (const Recoding &recoding : card.recodings) {
        const Variable &variable = *recoding.variable;
        if (variable.isCategorical) {
            inspectCategorical(notes, card, recoding, sql);
        } else {
            inspectNumeric(notes, card, recoding);
            if (!numericColumns.contains(recoding.column)) {
                note(notes, NotANumber, card, recoding);
            }
            numericColumns.insert(recoding.column);
        }
        if (!isFinite(recoding.x) || !isFinite(recoding.y) || !isFinite(recoding.codes.exact)) {
            note(notes, NotFinite, card, recoding);
        }
        const auto isLost = [&](double score) { return isSmall(score * recoding.coefficient); };
        if (std::ranges::any_of(recoding.x, isSmall) || std::ranges::any_of(recoding.y, isLost)) {
            note(notes, SmallNumber, card, recoding);
        }
        if (variable.node.attribute(u"displayName").contains(u"*/"_s)) {
            note(notes, LabelEndsComment, card, recoding);
        }
        if (!numbers.contains(variable.number)) {
            note(notes, RecodingWithoutCoefficient, card, recoding);
        } else if (ofRecodings.contains(variable.number)) {
            note(notes, EqualNumbers, card, recoding);
        }
        ofRecodings.insert(variable.number);
    }
}

// --- Names of columns

bool isName(QStringView name, Target target) {
    const auto isAllowed = [target](QChar c) {
        return c == u'_' || (c.isLetterOrNumber() && (target == Target::Python || c < u'\x80'));
    };
    return !name.isEmpty() && !name[0].isDigit() &&
           std::all_of(name.begin(), name.end(), isAllowed);
}

Targets only(std::initializer_list<std::pair<Target, bool>> chosen) {
    Targets targets;
    for (const auto &[target, isChosen] : chosen) {
        targets.set(static_cast<std::size_t>(target), isChosen);
    }
    return targets;
}

// HTML asks a column once.
bool sharesItsAnswers(const Recoding &a, const Recoding &b) {
    return a.variable->isCategorical == b.variable->isCategorical && a.isBoolean == b.isBoolean &&
           (a.isBoolean || std::ranges::equal(a.listed, b.listed));
}

void inspectNames(Notes &notes, const Scorecard &card) {
    constexpr qsizetype longestName = 31;
    std::vector<bool> isSeen(card.columns.size());
    for (const Recoding &recoding : card.recodings) {
        const Variable &variable = *recoding.variable;
        Targets alike;
        Targets broken;
        for (const Target target : {Target::Sas, Target::Python}) {
            const auto t = static_cast<std::size_t>(target);
            alike.set(t, recoding.lastAlike[t] != recoding.column);
            broken.set(t, !isName(cleanedFor(target, variable.field), target));
        }
        if (alike.any()) note(notes, NamesAlike, card, recoding, alike);
        if (QString::number(variable.position).size() + 2 + variable.field.size() > longestName) {
            note(notes, LongName, card, recoding);
        }
        if (!sharesItsAnswers(*recoding.asked, recoding)) {
            note(notes, SharedValues, card, recoding);
        }
        if (isSeen[recoding.column]) continue;
        isSeen[recoding.column] = true;
        if (broken.any()) note(notes, NameCharacters, card, recoding, broken);
        if (variable.field.contains(u'"')) note(notes, QuoteInTitle, card, recoding);
    }
    const QString prefix = targetPrefix(card.document, u" .");
    if (!prefix.isEmpty() && !isName(prefix, Target::Sas)) {
        notes.add(NameCharacters, u"target %1"_s.arg(prefix.chopped(1)),
                  only({{Target::Sas, true}}));
    }
}

// --- Regression and table

void inspectRegression(Notes &notes, const Scorecard &card) {
    QSet<int> seen;
    for (const RegressionTerm &term : card.regression.terms) {
        const QString place = u"coefficient of number %1"_s.arg(term.number);
        if (term.position < 0) notes.add(CoefficientWithoutRecoding, place);
        if (seen.contains(term.number)) notes.add(EqualCoefficients, place);
        seen.insert(term.number);
        if (!std::isfinite(term.coefficient)) notes.add(NotFinite, place);
    }
    if (card.regression.terms.empty()) notes.add(NoTerms, u"RegressionModel"_s);
    if (!std::isfinite(card.regression.constant)) notes.add(NotFinite, u"constant"_s);
    if (isSmall(card.regression.constant)) notes.add(SmallNumber, u"constant"_s);
    if (card.regression.terms.size() != card.variables.size()) {
        notes.add(ConstantMisplaced, u"constant"_s);
    }
    if (std::ranges::none_of(card.variables, &Variable::isCategorical)) {
        notes.add(NoCategories, u"model"_s);
    }
}

QString pointOf(const Scorecard &card, std::size_t i) {
    return u"table, point %1 (score %2)"_s.arg(QString::number(i + 1), numberText(card.table.x[i]));
}

QStringView kindOfTarget(const Scorecard &card) {
    return card.document.root.childNode(u"MetaData").attribute(u"tkind");
}

void inspectTable(Notes &notes, const Scorecard &card, const SqlUse &sql) {
    const std::span<const double> x = card.table.x;
    const std::span<const double> y = std::span<const double>(card.table.y).first(x.size());
    if (!card.table.exists) return;
    const std::size_t last = x.size() - 1;
    const Targets probabilities =
        sql.hasProbability ? Targets().set() : ~only({{Target::Sql, true}});
    if (last > 0 && x[last] != x[last - 1]) {
        notes.add(LowestSegment, pointOf(card, last), probabilities);
    }
    notes.add(LowestPoint, pointOf(card, last), probabilities);
    if (equalsIgnoringCase(kindOfTarget(card), u"T")) notes.add(LowestNan, pointOf(card, last));
    bool rises = true;
    bool falls = true;
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (!std::isfinite(x[i]) || !std::isfinite(y[i])) notes.add(NotFinite, pointOf(card, i));
        if (isSmall(x[i]) || isSmall(y[i])) notes.add(SmallNumber, pointOf(card, i));
        if (y[i] < 0 || y[i] > 1) notes.add(ProbabilityRange, pointOf(card, i));
        if (i == 0) continue;
        if (x[i] > x[i - 1]) notes.add(TableNotFalling, pointOf(card, i));
        rises = rises && y[i] >= y[i - 1];
        falls = falls && y[i] <= y[i - 1];
        if (!rises && !falls) {
            notes.add(ProbabilityOrder, pointOf(card, i));
            rises = falls = true; // from here on
        }
    }
}

void inspectResult(Notes &notes, const Scorecard &card, bool hasCanvas) {
    const QStringView kind = kindOfTarget(card);
    const bool isProbability = equalsIgnoringCase(kind, u"T");
    const bool isPrediction = equalsIgnoringCase(kind, u"C");
    const QString place = u"tkind '%1'"_s.arg(kind);
    if (card.isLogistic) {
        const QString method = u"normalizationMethod"_s;
        notes.add(LogisticParenthesis, method);
        notes.add(LogisticAbsent, method,
                  isPrediction ? Targets().set() : ~only({{Target::Html, true}}));
        notes.add(LogisticLastRow, method);
    }
    if (isProbability && !card.hasProbability()) notes.add(TableAbsent, place);
    if (isProbability ? !card.table.exists : !isPrediction) notes.add(PageError, place);
    if (isProbability && card.table.exists && card.table.x.size() < 3) {
        notes.add(BarScale, u"table"_s);
    }
    if (isPrediction && card.table.exists) notes.add(TableUnread, place);
    if (isPrediction && !hasCanvas) notes.add(PercentSign, place);
}

} // namespace

std::vector<Finding> inspect(const Scorecard &card, const Inspection &inspection) {
    Notes notes(inspection.targets);
    const SqlUse sql = inspection.sql ? useOf(inspection.sql->configuration) : SqlUse();
    if (card.document.reading.error == XmlError::UnmatchedEndTagWarning) {
        notes.add(DocumentCut, u"line %1, column %2"_s.arg(card.document.reading.line)
                                   .arg(card.document.reading.column));
    }
    inspectRecodings(notes, card, sql);
    inspectNames(notes, card);
    inspectRegression(notes, card);
    inspectTable(notes, card, sql);
    inspectResult(notes, card, inspection.hasCanvas);
    inspectSql(notes, card, inspection.sql);
    if (inspection.hasCanvas) inspectCanvas(notes, card, inspection.canvasName, inspection.canvas);

    std::vector<Finding> findings = std::move(notes.findings);
    std::ranges::stable_sort(findings, {}, &Finding::id);
    return findings;
}
