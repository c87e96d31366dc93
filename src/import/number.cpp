#include "import/number.h"

#include <QString>

#include <array>

namespace {

/// Powers of ten that a double holds exactly.
constexpr std::array<double, 23> powersOfTen{ 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9,
    1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22 };
/// Any number of so many decimal digits is an exact double.
constexpr int exactDigits = 15;

/// Converts digits with an optional sign and decimal point when both the digits and the power of
/// ten are exact doubles: one division then rounds correctly.
bool parsePlain(QStringView text, double* value)
{
    const QChar* it = text.cbegin();
    const QChar* const end = text.cend();
    const bool negative = it != end && *it == QLatin1Char('-');
    if (negative)
        ++it;
    if (end - it > exactDigits + 1)
        return false;

    qint64 digits = 0;
    qsizetype digitCount = 0;
    const QChar* point = nullptr;
    for (; it != end; ++it) {
        const uint digit = it->unicode() - uint('0');
        if (digit <= 9) {
            digits = digits * 10 + digit;
            ++digitCount;
        } else if (*it == QLatin1Char('.') && !point && digitCount > 0) {
            point = it;
        } else {
            return false;
        }
    }
    const auto decimals = point ? static_cast<size_t>(end - point - 1) : 0;
    if (digitCount == 0 || digitCount > exactDigits || (point && decimals == 0))
        return false;

    const double magnitude = static_cast<double>(digits) / powersOfTen[decimals];
    *value = negative ? -magnitude : magnitude;
    return true;
}

} // namespace

double toDouble(QStringView text, bool* ok)
{
    double value = 0;
    if (!parsePlain(text, &value))
        return text.toString().toDouble(ok);
    *ok = true;
    return value;
}
