#include "survey/report.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace {

bool isReadable(const QString& fileName)
{
    return QFileInfo(fileName).isFile() && QFileInfo(fileName).isReadable();
}

SurveyOptions surveyOptions(const ImportOptions& options, bool forPoints, bool forObjects)
{
    SurveyOptions surveyOptions;
    surveyOptions.encoding = options.encoding;
    surveyOptions.readsPoints = forPoints && options.searchPointDefs;
    surveyOptions.readsObjects = forObjects;
    surveyOptions.searchPointDefs = options.searchPointDefs;
    surveyOptions.searchObjectDefs = forObjects && options.searchObjectDefs;
    return surveyOptions;
}

/// Surveys the file, and the file of points if there is one.
QVector<FileSurvey> surveyFiles(const Format& format, const ImportOptions& options)
{
    const auto survey = format.id == QLatin1String("dxf") ? surveyDxf : surveyMif;
    const QString& pointFile = options.pointFileName;
    QVector<FileSurvey> surveys{ survey(
        options.objectFileName, surveyOptions(options, pointFile.isEmpty(), true)) };
    if (!pointFile.isEmpty() && isReadable(pointFile))
        surveys.append(survey(pointFile, surveyOptions(options, true, false)));
    return surveys;
}

/// The place of an error of the reader, as the message tells it.
ReportMessage locate(const QString& text, const Report& report)
{
    static const QRegularExpression place(
        QStringLiteral("(?:строки:|строке:|стоке) (\\d+)\\.?(?: |$)"));
    static const QRegularExpression midRow(QStringLiteral("обозначения (точки|объекта)|данных"));
    const FileSurvey& surveyed =
        report.surveys.last().stopped ? report.surveys.last() : report.surveys.first();
    ReportMessage message{ text, surveyed.fileName, place.match(text).captured(1).toInt() };
    if (message.line == 0)
        return message;
    if (midRow.match(text).hasMatch())
        message.fileName = message.fileName.chopped(1) + QLatin1Char('d');
    // The reader counts on when it reads a drawing a second time.
    else if (surveyed.lineCount > 0 && message.line > surveyed.lineCount + 1)
        message.line -= surveyed.lineCount;
    return message;
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
        for (const QString& message : import.messages)
            report.messages.append({ message, fileName, 0 });
        return report;
    }
    report.surveys = surveyFiles(format, options);
    if (import.objects.isEmpty())
        explainEmptyResult(report.surveys.first());
    judgeAxes(report, import.objects, columns);
    for (const QString& message : import.messages)
        report.messages.append(locate(message, report));
    report.objectCount = import.objects.size();
    for (const DefPolygon& object : import.objects) {
        report.defs.append(object.def);
        for (const QVector<DefPoint>& contour : object.contours)
            report.vertexCount += contour.size();
    }
    report.conflicts = findPointConflicts(import.objects);
    report.duplicates = findDuplicateDefs(import.objects);
    report.incomplete = findIncompleteObjects(import.objects, report.surveys.first().shapes);
    return report;
}
