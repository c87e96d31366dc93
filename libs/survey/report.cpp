#include "survey/report.h"

#include "survey/importsurvey.h"

namespace {

/// A message with the place that it speaks of: that of the failure, or the file of the pass where a
/// file that goes with it could not be opened.
ReportMessage located(const ImportMessage& message, const ImportOptions& options)
{
    const std::optional<ImportFailure>& failure = message.failure;
    if (!failure || failure->kind == FailureKind::FileNotOpened)
        return { message.text, options.objectFileName, 0 };
    if (failure->kind == FailureKind::MidNotOpened) {
        const bool isOfPoints =
            message.pass == ImportPass::Points && !options.pointFileName.isEmpty();
        return { message.text, isOfPoints ? options.pointFileName : options.objectFileName, 0 };
    }
    return { message.text, failure->fileName, failure->number > 0 ? failure->line : 0 };
}

} // namespace

qint64 Report::findingCount() const
{
    qint64 count = messages.size() + conflicts.total + duplicates.total + incomplete.total;
    for (const FileSurvey& survey : surveys)
        count += survey.causes.size();
    return count;
}

Report makeReport(const Format& format, const ImportOptions& options, const GeometryInfo& columns,
    int mostListed, ImportRun& import)
{
    const QString& fileName = options.objectFileName;
    Report report;
    report.fileName = fileName;
    report.chosenEncoding = options.encoding;
    ImportSurvey survey(format, options);
    import = runImport(format, options);
    report.surveys = survey.finish(import, &columns);
    report.unreadable = report.surveys.isEmpty();
    for (const ImportMessage& message : qAsConst(import.messages)) {
        report.messages.append(report.unreadable ? ReportMessage{ message.text, fileName, 0 }
                                                 : located(message, options));
    }
    report.objectCount = import.objects.size();
    for (const DefPolygon& object : qAsConst(import.objects)) {
        for (const QVector<DefPoint>& contour : object.contours)
            report.vertexCount += contour.size();
    }
    // With vertices that run together every point is at odds with others: that is one finding.
    if (!hasCause(report.surveys, Cause::Degrees))
        report.conflicts = findPointConflicts(import.objects, mostListed, options.inOneThread);
    report.duplicates = findDuplicateDefs(import.objects, mostListed);
    report.incomplete = findIncompleteObjects(import.objects, import.shapes, mostListed);
    return report;
}
