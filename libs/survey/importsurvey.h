#pragma once

#include "importgeometryinterface.h"
#include "importrun/importrun.h"
#include "survey/filesurvey.h"

#include <future>
#include <memory>
#include <vector>

/// Finds out what an import did not take of its file, or took for something else than it is.
///
/// The bytes of the file, and of the file of points, are looked at in a thread of their own, so
/// that the import may run meanwhile.
class ImportSurvey {
public:
    /// Starts to look at the files of an import with these options, `options.encoding` being the
    /// name of the codec in force.
    ImportSurvey(const Format& format, const ImportOptions& options);
    /// Waits until the files have been looked at.
    ~ImportSurvey();
    Q_DISABLE_COPY(ImportSurvey)

    /// The surveys of the files beside what the import made of them; to be called once. `columns`
    /// may be null where axes do not matter. None where the file cannot be read.
    QVector<FileSurvey> finish(const ImportRun& run, const GeometryInfo* columns);

private:
    std::vector<std::unique_ptr<Surveyor>> m_surveyors; ///< of the file first
    std::future<void> m_looking;
};

/// Whether a survey of several found a cause.
bool hasCause(const QVector<FileSurvey>& surveys, Cause cause);
