#pragma once

#include <QColor>

/// The background of rows whose designations contradict each other or occur twice.
constexpr QColor conflictColor(255, 220, 220);
/// The background of the empty rows between contours.
constexpr QColor separatorColor(240, 240, 240);
