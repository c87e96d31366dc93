#include "survey/report.h"

#include <QFileInfo>

#include <algorithm>

namespace {

bool isReadable(const QString& fileName)
{
    return QFileInfo(fileName).isFile() && QFileInfo(fileName).isReadable();
}

/// Surveys the file, and the file of points if there is one.
QVector<FileSurvey> surveyFiles(
    const Format& format, const ImportOptions& options, const ImportRun& run)
{
    QVector<FileSurvey> surveys{ surveyFile(format, options, FileRole::Objects, run) };
    if (!options.pointFileName.isEmpty() && isReadable(options.pointFileName))
        surveys.append(surveyFile(format, options, FileRole::Points, run));
    return surveys;
}

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

/// Says why nothing came of a file that was read to its end, where no cause says it yet.
void explainEmptyResult(FileSurvey& survey)
{
    const bool explained =
        std::any_of(survey.causes.cbegin(), survey.causes.cend(), [](const FoundCause& found) {
            return found.cause == Cause::BlockInsertsOnly || found.cause == Cause::NoData
                || found.cause == Cause::EmptyFile;
        });
    if (explained)
        return;
    if (survey.kinds.empty()) {
        survey.causes.append({ Cause::NothingInside, survey.fileName, 0, {}, 0 });
        return;
    }
    QStringList kinds;
    for (const auto& [name, kind] : survey.kinds)
        kinds.append(QStringLiteral("%1 - %2").arg(QString::fromStdString(name)).arg(kind.count));
    survey.causes.append({ Cause::NoObjects, survey.fileName, 0,
        QStringLiteral("в нём только ") + kinds.join(QLatin1String(", ")), 0 });
}

/// A catalogue lists the northing before the easting.
void judgeAxes(Report& report, const QVector<DefPolygon>& objects, const GeometryInfo& columns)
{
    const AxisOrder order = guessAxisOrder(objects);
    const bool xFirst = columns.xColNum < columns.yColNum;
    if (order == AxisOrder::Unknown || (order == AxisOrder::NorthingFirst) == xFirst)
        return;
    const QString detail = order == AxisOrder::NorthingFirst
        ? QStringLiteral("первая координата в файле похожа на север, вторая на восток, и север "
                         "попадает в столбец после востока")
        : QStringLiteral("первая координата в файле похожа на восток, вторая на север, и восток "
                         "попадает в столбец перед севером");
    report.surveys.first().causes.append({ Cause::Axes, report.fileName, 0, detail, 0 });
}

} // namespace

qint64 Report::findingCount() const
{
    qint64 count = messages.size() + conflicts.size() + duplicates.size() + incomplete.size();
    for (const FileSurvey& survey : surveys)
        count += survey.causes.size();
    return count;
}

Report makeReport(const Format& format, const ImportOptions& options, const GeometryInfo& columns)
{
    const QString& fileName = options.objectFileName;
    Report report;
    report.fileName = fileName;
    report.chosenEncoding = options.encoding;
    const ImportRun import = runImport(format, options);
    report.unreadable = !isReadable(fileName);
    if (report.unreadable) {
        for (const ImportMessage& message : import.messages)
            report.messages.append({ message.text, fileName, 0 });
        return report;
    }
    report.surveys = surveyFiles(format, options, import);
    if (import.objects.isEmpty() && !import.stopped(true) && !import.stopped(false))
        explainEmptyResult(report.surveys.first());
    judgeAxes(report, import.objects, columns);
    for (const ImportMessage& message : import.messages)
        report.messages.append(located(message, options));
    report.objectCount = import.objects.size();
    for (const DefPolygon& object : import.objects) {
        report.defs.append(object.def);
        for (const QVector<DefPoint>& contour : object.contours)
            report.vertexCount += contour.size();
    }
    report.conflicts = findPointConflicts(import.objects);
    report.duplicates = findDuplicateDefs(import.objects);
    report.incomplete = findIncompleteObjects(import.objects, import.shapes);
    return report;
}
