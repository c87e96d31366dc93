#pragma once

#include "importarguments.h"

#include <QStringList>

/// What is read for a result, and what is written.
struct TargetClaim {
    QString fileName; ///< the file of the command line
    QStringList sources;
    QStringList targets;
};

/// A file whose result goes into a folder.
struct ResultInFolder {
    QString fileName;
    QString subfolder; ///< see InputFile
    QString suffix; ///< of the result
};

/// Where the results go below `folder`: each under the name of its file, with the suffix in the
/// place of the file's own; where two would be one, that stays, too (a.mif.xml and a.dxf.xml).
QStringList targetsIn(const QString& folder, const QVector<ResultInFolder>& results);

/// Makes the folders that these files are to be in.
void makeFoldersOf(const QStringList& targets);

/// Refuses results that would take the place of one another or of a file that is read.
void checkTargets(const QVector<TargetClaim>& claims);

/// The same for imports; `targets` holds the result of each task, or one for all of them.
void checkTargets(const QVector<ImportTask>& tasks, const QStringList& targets);
