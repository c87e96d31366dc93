#pragma once

#include <QString>

struct Report;

/// A report for people: a line for each thing, in colours for a terminal that shows them.
QString reportText(const Report& report, bool inColours);
