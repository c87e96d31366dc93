#pragma once

#include "prepare/preparereport.h"

#include <QJsonObject>
#include <QStringList>

namespace prep {

/// A report for people, line by line; `target` is the file that was written.
QStringList reportLines(const PrepareReport& report, const QString& target);

/// A report for programs.
QJsonObject reportJson(const PrepareReport& report, const QString& fileName, const QString& target);

/// What was mended, left out and lost, a line for each reason.
QStringList noteLines(const PrepareReport& report);

} // namespace prep
