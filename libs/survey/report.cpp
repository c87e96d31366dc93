#include "survey/report.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

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
                || found.cause == Cause::EmptyFile || found.cause == Cause::NotText
                || found.cause == Cause::OtherFormat;
        });
    if (explained)
        return;
    if (survey.kinds.empty()) {
        survey.causes.append({ Cause::NothingInside, survey.fileName, 0, {}, 0, survey.fileName });
        return;
    }
    QStringList kinds;
    for (const auto& [name, kind] : survey.kinds) {
        if (kinds.size() < listedFindings)
            kinds.append(
                QStringLiteral("%1 - %2").arg(QString::fromStdString(name)).arg(kind.count));
    }
    survey.causes.append({ Cause::NoObjects, survey.fileName, 0,
        QStringLiteral("в нём только ") + kinds.join(QLatin1String(", ")), 0, survey.fileName });
}

/// A catalogue lists the northing before the easting.
void judgeAxes(FileSurvey& survey, const QVector<DefPolygon>& objects, const GeometryInfo& columns)
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
    survey.causes.append({ Cause::Axes, survey.fileName, 0, detail, 0, survey.fileName });
}

/// Coordinates in degrees, by the header or by their sizes; the detail is the number of a system
/// in metres.
void judgeDegrees(FileSurvey& survey, const QVector<DefPolygon>& objects)
{
    const std::optional<QPointF> middle = guessDegrees(objects);
    if (objects.isEmpty() || (!survey.isInDegrees && !middle))
        return;
    constexpr int zoneWidth = 6;
    const QVector<QVector<DefPoint>>& contours = objects.constFirst().contours;
    const bool hasVertex = !contours.isEmpty() && !contours.constFirst().isEmpty();
    const DefPoint first = hasVertex ? contours.constFirst().constFirst() : DefPoint();
    const QPointF place = middle.value_or(QPointF(first.x, first.y));
    const double longitude = std::isfinite(place.x()) ? place.x() : 0;
    const int zone = qBound(
        1, static_cast<int>(std::floor(qBound(-180.0, longitude, 179.0) / zoneWidth)) + 31, 60);
    const int system = (place.y() < 0 ? 32700 : 32600) + zone;
    survey.causes.append(
        { Cause::Degrees, survey.fileName, 0, QString::number(system), 0, survey.fileName });
}

bool hasCause(const QVector<FileSurvey>& surveys, Cause cause)
{
    return std::any_of(surveys.cbegin(), surveys.cend(), [cause](const FileSurvey& survey) {
        return std::any_of(survey.causes.cbegin(), survey.causes.cend(),
            [cause](const FoundCause& found) { return found.cause == cause; });
    });
}

} // namespace

qint64 Report::findingCount() const
{
    qint64 count = messages.size() + conflicts.total + duplicates.total + incomplete.total;
    for (const FileSurvey& survey : surveys)
        count += survey.causes.size();
    return count;
}

QVector<FileSurvey> surveyRun(const Format& format, const ImportOptions& options,
    const ImportRun& run, const GeometryInfo* columns)
{
    if (!isReadable(options.objectFileName))
        return {};
    QVector<FileSurvey> surveys = surveyFiles(format, options, run);
    FileSurvey& survey = surveys.first();
    if (run.objects.isEmpty() && !run.stopped(true) && !run.stopped(false))
        explainEmptyResult(survey);
    judgeDegrees(survey, run.objects);
    if (columns && !hasCause(surveys, Cause::Degrees))
        judgeAxes(survey, run.objects, *columns);
    return surveys;
}

Report makeReport(
    const Format& format, const ImportOptions& options, const GeometryInfo& columns, int mostListed)
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
    report.surveys = surveyRun(format, options, import, &columns);
    for (const ImportMessage& message : import.messages)
        report.messages.append(located(message, options));
    report.objectCount = import.objects.size();
    for (const DefPolygon& object : import.objects) {
        for (const QVector<DefPoint>& contour : object.contours)
            report.vertexCount += contour.size();
    }
    // With vertices that run together every point is at odds with others: that is one finding.
    if (!hasCause(report.surveys, Cause::Degrees))
        report.conflicts = findPointConflicts(import.objects, mostListed);
    report.duplicates = findDuplicateDefs(import.objects, mostListed);
    report.incomplete = findIncompleteObjects(import.objects, import.shapes, mostListed);
    return report;
}
