#pragma once

#include <QString>

/// `value` in fixed notation with `decimals` places, as the C locale writes it: a full stop as
/// the decimal point and no group separators. The text is that of QLocale::toString on
/// QLocale::c(), got at a fraction of its cost.
QString formatFixed(double value, int decimals);
