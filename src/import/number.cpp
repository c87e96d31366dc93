#include "import/number.h"

#include <QString>

#include <array>

namespace {

/// Powers of ten that a double holds exactly.
constexpr std::array<double, 16> powersOfTen{ 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9,
    1e10, 1e11, 1e12, 1e13, 1e14, 1e15 };
/// Any number of so many decimal digits is an exact double.
constexpr int exactDigits = 15;

/// Reads decimal digits at `it`, appends them to `value` (which wraps when there are too many) and
/// returns their end.
const QChar* scanDigits(const QChar* it, const QChar* end, quint64* value)
{
    for (; it != end; ++it) {
        const uint digit = it->unicode() - uint('0');
        if (digit > 9)
            break;
        *value = *value * 10 + digit;
    }
    return it;
}

/// Converts a plain decimal number at `it` when both its digits and the power of ten are exact
/// doubles: one division then rounds correctly. Returns the end of the number, or null where
/// there is none of this form.
const QChar* scanPlain(const QChar* it, const QChar* end, double* value)
{
    const bool negative = it != end && *it == QLatin1Char('-');
    if (negative)
        ++it;
    quint64 digits = 0;
    const QChar* const pointOrEnd = scanDigits(it, end, &digits);
    const auto wholes = pointOrEnd - it;
    it = pointOrEnd;
    std::ptrdiff_t decimals = 0;
    if (it != end && *it == QLatin1Char('.')) {
        it = scanDigits(pointOrEnd + 1, end, &digits);
        decimals = it - pointOrEnd - 1;
        if (decimals == 0)
            return nullptr;
    }
    if (wholes == 0 || wholes + decimals > exactDigits)
        return nullptr;

    const double magnitude = static_cast<double>(static_cast<qint64>(digits))
        / powersOfTen[static_cast<size_t>(decimals)];
    *value = negative ? -magnitude : magnitude;
    return it;
}

} // namespace

double toDouble(QStringView text, bool* ok)
{
    double value = 0;
    const QChar* const end = scanPlain(text.cbegin(), text.cend(), &value);
    if (!end || end != text.cend())
        return text.toString().toDouble(ok);
    *ok = true;
    return value;
}

bool toPlainPair(QStringView text, double* first, double* second)
{
    const QChar* const end = text.cend();
    const QChar* const middle = scanPlain(text.cbegin(), end, first);
    return middle && middle != end && *middle == QLatin1Char(' ')
        && scanPlain(middle + 1, end, second) == end;
}
