#include "check/reports/report.h"

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

// The bound at `place`, rounded to 12 digits if that is greater and no number of up to 16 digits
// lies between: "up to the bound" then means "below the rounded number". Does not round the first
// bound, which belongs to the bin above it, nor any bound beyond the next.
double shownBound(std::span<const double> bounds, std::size_t place) {
    const auto withDigits = [](double number, int digits) {
        double rounded = noNumber;
        readNumber(generalNumber(number, digits).view(), rounded);
        return rounded;
    };
    const double bound = bounds[place];
    const double shorter = withDigits(bound, 12);
    const bool isLast = place + 1 == bounds.size();
    if (place == 0 || !(shorter > bound) || std::isinf(shorter)) return bound;
    if (!isLast && !(bounds[place + 1] >= shorter)) return bound;
    double between = std::nextafter(shorter, bound);
    while (between > bound && withDigits(between, 16) != between) {
        between = std::nextafter(between, bound);
    }
    return between > bound ? bound : shorter;
}

QString binAt(std::span<const double> bounds, std::size_t position, QString &notation) {
    if (position == 0) return u"missing"_s;
    if (position == 1) return u"(-∞, %1)"_s.arg(numberText(bounds[0]));
    if (position > bounds.size() + 1) return u"unused"_s;
    struct End {
        QString text;
        bool isBelow = false; // the bin below does not contain it
    };
    const auto endAt = [&](std::size_t place) {
        const double shown = shownBound(bounds, place);
        End end = {numberText(shown), shown > bounds[place]};
        if (end.isBelow && notation.isEmpty()) {
            notation =
                u"The bound shown as %2) is %1] in the document: no number of up to "
                "16 digits lies between the two. The same applies to every other bound before a \")\", "
                "except the lowest of a recoding."_s.arg(numberText(bounds[place]), end.text);
        }
        return end;
    };
    const End from = endAt(position - 2);
    const bool hasFrom = from.isBelow || (position == 2 && bounds.size() > 1);
    const QString lower = (hasFrom ? u'[' : u'(') + from.text + u", "_s;
    if (position == bounds.size() + 1) return lower + u"∞)"_s;
    const End to = endAt(position - 1);
    return lower + to.text + (to.isBelow ? u')' : u']');
}

} // namespace

QString titleOf(const Recoding &recoding) {
    return u"%1 %2"_s.arg(recoding.variable->name, recoding.variable->field);
}

QString valuesAt(const Recoding &recoding, std::size_t position, QString &notation) {
    if (!recoding.variable->isCategorical) return binAt(recoding.x, position, notation);
    if (position == 0) return u"missing or unlisted"_s;
    if (position > (recoding.isBoolean ? 2 : recoding.listed.size())) return u"unused"_s;
    const auto quoted = [&](std::size_t i) {
        return u'\'' + recoding.listed[i].toString() + u'\'';
    };
    if (!recoding.isBoolean) return quoted(position - 1);
    QStringList values;
    const CategoricalRecoding arrays = {recoding.listed, recoding.y, true};
    for (std::size_t i = 0; i < recoding.listed.size(); ++i) {
        if (arrays.positionOf(i) == position) values.append(quoted(i));
    }
    values.removeDuplicates();
    return (position == 1 ? u"false: "_s : u"true: "_s) + values.join(u", "_s);
}
