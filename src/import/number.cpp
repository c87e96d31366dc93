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
template <typename Unit>
const Unit* scanDigits(const Unit* it, const Unit* end, quint64* value)
{
    for (; it != end; ++it) {
        const uint digit = uint(*it) - uint('0');
        if (digit > 9)
            break;
        *value = *value * 10 + digit;
    }
    return it;
}

/// Converts a plain decimal number at `it` when both its digits and the power of ten are exact
/// doubles: one division then rounds correctly. Returns the end of the number, or null where
/// there is none of this form.
template <typename Unit>
const Unit* scanPlain(const Unit* it, const Unit* end, double* value)
{
    const bool negative = it != end && *it == '-';
    if (negative)
        ++it;
    quint64 digits = 0;
    const Unit* const pointOrEnd = scanDigits(it, end, &digits);
    const auto wholes = pointOrEnd - it;
    it = pointOrEnd;
    std::ptrdiff_t decimals = 0;
    if (it != end && *it == '.') {
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

double toDouble(TextView text, bool* ok)
{
    double value = 0;
    const bool isPlain = text.visit(
        [&](auto begin, auto end) { return end == scanPlain(begin, end, &value) && begin != end; });
    if (!isPlain)
        return text.toString().toDouble(ok);
    *ok = true;
    return value;
}

int toInt(TextView text, bool* ok)
{
    // So few digits make an int, whatever they are.
    constexpr qsizetype mostDigits = 9;
    quint64 value = 0;
    const bool isPlain = !text.isEmpty() && text.size() <= mostDigits
        && text.visit([&](auto begin, auto end) { return scanDigits(begin, end, &value) == end; });
    if (!isPlain)
        return text.toString().toInt(ok);
    if (ok)
        *ok = true;
    return static_cast<int>(value);
}

bool toPlainPair(TextView text, double* first, double* second)
{
    return text.visit([&](auto begin, auto end) {
        const auto middle = scanPlain(begin, end, first);
        return middle && middle != end && *middle == ' '
            && scanPlain(middle + 1, end, second) == end;
    });
}
