#pragma once

#include <QChar>

/// Whether a character is one of the ten ASCII digits; those of other scripts name no points.
inline bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}
