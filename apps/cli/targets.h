#pragma once

#include "importarguments.h"

#include <QStringList>

/// What is read for a result, and what is written.
struct TargetClaim {
    QString fileName; ///< the file of the command line
    QStringList sources;
    QStringList targets;
};

/// The place below `folder` for the result of a file of this subfolder (see InputFile).
QString placeIn(const QString& folder, const QString& subfolder);

/// Makes the folders that these files are to be in.
void makeFoldersOf(const QStringList& targets);

/// Refuses results that would take the place of one another or of a file that is read.
void checkTargets(const QVector<TargetClaim>& claims);

/// The same for imports; `targets` holds the result of each task, or one for all of them.
void checkTargets(const QVector<ImportTask>& tasks, const QStringList& targets);
