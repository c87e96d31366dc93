#include "models/coordformat.h"

#include <QLocale>

#include <array>
#include <charconv>
#include <cmath>

QString formatFixed(double value, int decimals)
{
    // Zero and numbers that are not finite have spellings of their own; very long ones are rare.
    constexpr double limit = 1e15;
    constexpr int maxDecimals = 15;
    if (!(std::abs(value) < limit) || value == 0 || decimals > maxDecimals)
        return QLocale::c().toString(value, 'f', decimals);

    std::array<char, 64> text;
    const auto end = std::to_chars(
        text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals)
                         .ptr;
    return QString::fromLatin1(text.data(), static_cast<int>(end - text.data()));
}
