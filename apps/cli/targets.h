#pragma once

#include "importarguments.h"

#include <QStringList>

/// Refuses results that would take the place of one another or of a file that is read; `targets`
/// holds the result of each task, or one for all of them.
void checkTargets(const QVector<ImportTask>& tasks, const QStringList& targets);
