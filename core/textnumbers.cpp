#include "core/textnumbers.h"

#include "core/runtimeerror.h"

#include <QLocale>

#include <cmath>
#include <limits>
#include <optional>

namespace textnumbers {
namespace {

std::optional<double> parseNumber(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return std::nullopt;
    bool ok = false;
    const double value = QLocale::c().toDouble(trimmed, &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

template<typename T>
T roundedInRange(double value)
{
    const double rounded = std::nearbyint(value); // the default rounding mode is half to even
    if (rounded < double(std::numeric_limits<T>::min()) || rounded > double(std::numeric_limits<T>::max()))
        throw RuntimeError::overflow();
    return static_cast<T>(rounded);
}

template<typename T>
T convert(const QString &text)
{
    const auto value = parseNumber(text);
    if (!value)
        throw RuntimeError::typeMismatch();
    return roundedInRange<T>(*value);
}

} // namespace

bool isNumeric(const QString &text)
{
    return parseNumber(text).has_value();
}

int16_t toInteger(const QString &text)
{
    return convert<int16_t>(text);
}

int32_t toLong(const QString &text)
{
    return convert<int32_t>(text);
}

int16_t toInteger(double value)
{
    return roundedInRange<int16_t>(value);
}

int32_t toLong(double value)
{
    return roundedInRange<int32_t>(value);
}

double val(const QString &text)
{
    // The longest leading run of blanks, sign, digits, one point and an exponent that parses.
    QString number;
    bool seenDigit = false, seenPoint = false, seenExponent = false;
    for (const QChar c : text) {
        if (c == QLatin1Char(' ') || c == QLatin1Char('\t')) {
            continue;
        } else if (c.isDigit() && c.unicode() < 128) {
            seenDigit = true;
        } else if ((c == QLatin1Char('-') || c == QLatin1Char('+'))
                   && (number.isEmpty() || number.back().toLower() == QLatin1Char('e'))) {
        } else if (c == QLatin1Char('.') && !seenPoint && !seenExponent) {
            seenPoint = true;
        } else if ((c == QLatin1Char('e') || c == QLatin1Char('E')) && seenDigit && !seenExponent) {
            seenExponent = true;
        } else {
            break;
        }
        number += c;
    }
    while (!number.isEmpty()) {
        bool ok = false;
        const double value = QLocale::c().toDouble(number, &ok);
        if (ok && std::isfinite(value))
            return value;
        number.chop(1);
    }
    return 0.0;
}

const QString &item(const QStringList &list, qsizetype index)
{
    if (index < 0 || index >= list.size())
        throw RuntimeError::subscriptOutOfRange();
    return list.at(index);
}

} // namespace textnumbers
