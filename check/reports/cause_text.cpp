#include "check/reports/report.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using Kind = Cause::Kind;
using Form = NumberMap::Form;
using Rounding = NumberMap::Rounding;

QString signedNumber(double number) {
    return number < 0 ? shortNumber(number) : u'+' + shortNumber(number);
}

// Describes a map, except for its rounding. `own` and `other` name the model's numbers.
QString formText(const NumberMap &map, const QString &own, const QString &other) {
    switch (map.form) {
    case Form::Other:
        return u"the %1 in place of the %2"_s.arg(other, own);
    case Form::Logistic:
        return u"the logistic function of the %1score in place of the table"_s.arg(
            map.times < 0 ? u"negated "_s : QString());
    case Form::Through:
        return u"the probability of that score"_s;
    case Form::Linear:
        break;
    }
    if (map.times == 0) return u"%1 in place of the %2"_s.arg(shortNumber(map.add), own);
    if (map.add == 1 && map.times == -1) return u"1 minus the %1"_s.arg(own);
    QString text = u"the "_s + own;
    if (map.times != 1) text += u" times "_s + shortNumber(map.times);
    if (map.add == 0) return text;
    return text + (map.add < 0 ? u" minus "_s : u" plus "_s) + shortNumber(std::abs(map.add));
}

QString roundingText(const NumberMap &map) {
    switch (map.rounding) {
    case Rounding::None:
        break;
    case Rounding::Decimals:
        return u", rounded to %1 decimal%2"_s.arg(map.places).arg(map.places == 1 ? u""_s : u"s"_s);
    case Rounding::Digits:
        return u", rounded to %1 digits"_s.arg(map.places);
    case Rounding::Single:
        return u", rounded to 32 bits"_s;
    }
    return {};
}

bool isExchange(const Cause &cause) {
    return cause.score.form == Form::Other && cause.probability.form == Form::Other;
}

QString mapsText(const Cause &cause, const RowOptions &options) {
    QStringList texts;
    const auto add = [&](const NumberMap &map, bool isCompared, const QString &own,
                         const QString &other) {
        if (isCompared && !map.isSame())
            texts.append(formText(map, own, other) + roundingText(map));
    };
    if (isExchange(cause)) return u"score and probability exchanged"_s;
    // Without scores in the results, describes the score that their probabilities belong to.
    const bool isImplied = !options.hasScore() && cause.probability.form == Form::Through;
    NumberMap score = cause.score;
    if (isImplied) {
        score = cause.probability;
        score.form = Form::Linear;
    }
    add(score, options.hasScore() || isImplied, u"score"_s, u"probability"_s);
    add(cause.probability, options.hasProbability(), u"probability"_s, u"score"_s);
    return texts.join(u"; "_s);
}

QString amountsText(const Cause &cause, const Recoding &recoding, QString &notation) {
    constexpr std::size_t most = 5;
    QStringList texts;
    for (const auto &[position, amount] :
         std::span(cause.amounts).first(std::min(most, cause.amounts.size()))) {
        texts.append(
            u"%1 for %2"_s.arg(signedNumber(amount), valuesAt(recoding, position, notation)));
    }
    if (cause.amounts.size() > most) texts.append(u"…"_s);
    return texts.join(u", "_s);
}

QStringView nameOf(const NumberMap &map) {
    if (map.form == Form::Other) return u"other-number";
    if (map.form == Form::Logistic) return u"logistic";
    if (map.add == 1 && map.times == -1) return u"complement";
    if (map.times == 0) return u"constant";
    if (map.times != 1) return map.add == 0 ? u"factor" : u"linear";
    if (map.add != 0) return u"amount";
    constexpr QStringView roundings[] = {u"", u"decimals", u"digits", u"single-precision"};
    return roundings[static_cast<std::size_t>(map.rounding)];
}

QString nameOf(const Cause &cause) {
    constexpr QStringView names[] = {u"numbers",     u"points",     u"coefficient",
                                     u"last-digit",  u"next-row",   u"row-before",
                                     u"other-order", u"key-column", u"key-text"};
    if (cause.kind != Kind::Numbers) return names[static_cast<std::size_t>(cause.kind)].toString();
    if (isExchange(cause)) return u"exchanged"_s;
    return nameOf(cause.score.isSame() ? cause.probability : cause.score).toString();
}

QString textOf(const Cause &cause, const Scorecard &card, const RowOptions &options,
               QString &notation) {
    const auto recoding = [&]() -> const Recoding & { return card.recodings[cause.recoding]; };
    switch (cause.kind) {
    case Kind::Numbers:
        return mapsText(cause, options);
    case Kind::Points:
        return u"changed points of %1: %2"_s.arg(titleOf(recoding()),
                                                 amountsText(cause, recoding(), notation));
    case Kind::Coefficient:
        return u"a coefficient of %1 for %2"_s.arg(shortNumber(cause.coefficient),
                                                   titleOf(recoding()));
    case Kind::LastDigit:
        return u"cells at a bound read on its other side (last digit misread, or < for <=)"_s;
    case Kind::NextRow:
        return u"those of the next row, from row %1 on"_s.arg(cause.row);
    case Kind::RowBefore:
        return u"those of the row before, from row %1 on"_s.arg(cause.row);
    case Kind::Order:
        return u"those of the rows in another order"_s;
    case Kind::KeyColumn:
        return u"both files have a column '%1'; to join by it, use --key"_s.arg(
            cause.texts.join(u"' and '"_s));
    case Kind::KeyText:
        return u"key '%1' of the rows is '%2' in the results; write both in one format"_s.arg(
            cause.texts[0], cause.texts[1]);
    }
    return {};
}

} // namespace

CauseLine causeLine(const Cause &cause, const Scorecard &card, const RowOptions &options,
                    QString &notation) {
    return {nameOf(cause), textOf(cause, card, options, notation), cause.rows};
}
