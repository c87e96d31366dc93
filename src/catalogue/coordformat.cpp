#include "catalogue/coordformat.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {

/// Powers of ten that a double holds exactly and a coordinate can be scaled by.
constexpr std::array<double, 10> powersOfTen{ 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9 };
/// Below this a double still tells halves of whole numbers apart.
constexpr double halvesLimit = 2251799813685248.0;

/// The whole number nearest to `value` * `scale`, neither negative; exact halves go up.
quint64 roundScaled(double value, double scale)
{
    const double product = value * scale;
    const double whole = std::floor(product);
    const double fraction = product - whole;
    // What the product lost in rounding decides where it looks like a half.
    const bool up = fraction > 0.5 || (fraction == 0.5 && std::fma(value, scale, -product) >= 0);
    return static_cast<quint64>(whole) + (up ? 1 : 0);
}

/// The number of decimals that show `precision`; 0 for whole units and coarser.
int decimalsFor(double precision)
{
    int decimals = 0;
    if (precision == 0)
        return decimals;
    while (precision < 1) {
        precision *= 10;
        ++decimals;
    }
    return decimals;
}

double s_coordPrecision = 0.01;

} // namespace

QString formatFixed(double value, int decimals)
{
    const auto places = static_cast<size_t>(decimals);
    const bool isPlain = places < powersOfTen.size() && value != 0
        && std::abs(value) * powersOfTen[places] < halvesLimit;
    if (!isPlain)
        return QLocale::c().toString(value, 'f', decimals);

    std::array<char, 24> digits;
    const quint64 scaled = roundScaled(std::abs(value), powersOfTen[places]);
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), scaled).ptr;
    const int digitCount = static_cast<int>(end - digits.data());
    const int wholeCount = std::max(digitCount - decimals, 0);

    QString text;
    text.reserve(digitCount + decimals + 3);
    if (value < 0)
        text.append(QLatin1Char('-'));
    text.append(wholeCount > 0 ? QLatin1String(digits.data(), wholeCount) : QLatin1String("0"));
    if (decimals == 0)
        return text;
    text.append(QLatin1Char('.'));
    text.append(QString(std::max(decimals - digitCount, 0), QLatin1Char('0')));
    text.append(QLatin1String(digits.data() + wholeCount, digitCount - wholeCount));
    return text;
}

void setCoordPrecision(double precision)
{
    if (precision > 0)
        s_coordPrecision = precision;
}

double coordPrecision()
{
    return s_coordPrecision;
}

QString formatCoord(double value, bool userLocale)
{
    static const QLocale uLocale;
    static int decimals = 0;
    if (decimals == 0)
        decimals = decimalsFor(s_coordPrecision);
    return userLocale ? uLocale.toString(value, 'f', decimals) : formatFixed(value, decimals);
}
