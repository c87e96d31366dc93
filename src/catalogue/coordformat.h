#pragma once

#include <QString>

#include <array>

/// The characters of a number in fixed notation.
using FixedDigits = std::array<char, 32>;

/// Writes `value` in fixed notation with `decimals` places into `digits`, as formatFixed() does.
/// Returns how many characters it takes; 0, and nothing written, for a value that takes
/// formatFixed().
int writeFixed(FixedDigits& digits, double value, int decimals);

/// `value` in fixed notation with `decimals` places, as the C locale writes it: a full stop as
/// the decimal point and no group separators. The text is that of QLocale::toString on
/// QLocale::c(), got at a fraction of its cost.
QString formatFixed(double value, int decimals);

/// Sets the precision, in coordinate units, that gives the number of decimals of all catalogues;
/// values that are not greater than 0 are ignored. Once coordinates have been formatted with
/// decimals, their number stays for the rest of the process.
void setCoordPrecision(double precision);
/// The precision last set; 0.01 at first.
double coordPrecision();

/// The number of decimals in catalogues.
int coordDecimals();
/// A coordinate with the decimals of coordPrecision(), in the user's locale or the C locale.
QString formatCoord(double value, bool userLocale);
