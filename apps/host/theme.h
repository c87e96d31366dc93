#pragma once

#include "plan/planstyle.h"

class QPalette;

/// A theme is dark when its texts are lighter than what they stand on.
bool isDark(const QPalette& palette);
/// The background of rows whose designations contradict each other or occur twice: the red of the
/// plug-in's dialog as far as the theme bears it.
QColor conflictBackground(const QPalette& palette);
/// The background of the empty rows between contours.
QColor separatorBackground(const QPalette& palette);
/// The colours of the plan in the window.
PlanColors planColors(const QPalette& palette);
