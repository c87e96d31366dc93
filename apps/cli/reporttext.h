#pragma once

#include <QString>

struct Report;

/// A report for people: a line for each thing.
QString reportText(const Report& report);
