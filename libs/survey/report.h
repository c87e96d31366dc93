#pragma once

#include "importgeometryinterface.h"
#include "importrun/importrun.h"
#include "survey/filesurvey.h"
#include "survey/findings.h"

/// A message of the import and the place that it speaks of.
struct ReportMessage {
    QString text;
    QString fileName;
    int line; ///< one-based; 0 when it names none
};

/// All that a check finds out about a file.
struct Report {
    QString fileName;
    QByteArray chosenEncoding;
    qint64 objectCount = 0;
    qint64 vertexCount = 0;
    QVector<ReportMessage> messages;
    QVector<FileSurvey> surveys; ///< of the file, and of the file of points if there is one
    Findings<PointConflict> conflicts;
    Findings<DuplicateDef> duplicates;
    Findings<IncompleteObject> incomplete;
    bool unreadable = false; ///< there was no file to look at

    qint64 findingCount() const;
};

/// Imports a file into `import` and looks at its bytes; `columns` are those of the catalogue that
/// it is meant for. Of each kind of findings about objects at most so many are listed.
Report makeReport(const Format& format, const ImportOptions& options, const GeometryInfo& columns,
    int mostListed, ImportRun& import);
