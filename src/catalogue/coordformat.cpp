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

int writeFixed(FixedDigits& digits, double value, int decimals)
{
    const auto places = static_cast<size_t>(decimals);
    const bool isPlain =
        places < powersOfTen.size() && std::abs(value) * powersOfTen[places] < halvesLimit;
    if (!isPlain)
        return 0;

    char* const start = value < 0 ? &(digits[0] = '-') + 1 : digits.data();
    const quint64 scaled = roundScaled(std::abs(value), powersOfTen[places]);
    char* end = std::to_chars(start, digits.data() + digits.size(), scaled).ptr;
    if (decimals > 0) {
        // At least one digit stands before the point.
        const auto missing = decimals + 1 - (end - start);
        if (missing > 0) {
            std::copy_backward(start, end, end + missing);
            std::fill_n(start, missing, '0');
            end += missing;
        }
        std::copy_backward(end - decimals, end, end + 1);
        *(end++ - decimals) = '.';
    }
    return static_cast<int>(end - digits.data());
}

QString formatFixed(double value, int decimals)
{
    FixedDigits digits;
    const int size = writeFixed(digits, value, decimals);
    return size > 0 ? QString::fromLatin1(digits.data(), size)
                    : QLocale::c().toString(value, 'f', decimals);
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

int coordDecimals()
{
    static int decimals = 0;
    if (decimals == 0)
        decimals = decimalsFor(s_coordPrecision);
    return decimals;
}

QString formatCoord(double value, bool userLocale)
{
    static const QLocale uLocale;
    const int decimals = coordDecimals();
    return userLocale ? uLocale.toString(value, 'f', decimals) : formatFixed(value, decimals);
}
