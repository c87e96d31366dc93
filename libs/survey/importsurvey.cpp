#include "survey/importsurvey.h"

#include "survey/beside.h"
#include "survey/findings.h"
#include "survey/surveyor.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace {

bool isReadable(const QString& fileName)
{
    return QFileInfo(fileName).isFile() && QFileInfo(fileName).isReadable();
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
    QStringList counts;
    for (const auto& [name, kind] : survey.kinds) {
        if (counts.size() < listedFindings)
            counts.append(
                QStringLiteral("%1 - %2").arg(QString::fromStdString(name)).arg(kind.count));
    }
    survey.causes.append({ Cause::NoObjects, survey.fileName, 0,
        QStringLiteral("в нём только ") + counts.join(QLatin1String(", ")), 0, survey.fileName });
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

} // namespace

ImportSurvey::ImportSurvey(const Format& format, const ImportOptions& options)
{
    const auto add = [&](const QString& fileName, FileRole role) {
        if (isReadable(fileName))
            m_surveyors.push_back(makeSurveyor(format, options, role));
    };
    add(options.objectFileName, FileRole::Objects);
    if (m_surveyors.empty())
        return;
    add(options.pointFileName, FileRole::Points);
    const auto look = [this] {
        for (const auto& surveyor : m_surveyors)
            surveyor->look();
    };
    m_looking = options.inOneThread ? std::async(std::launch::deferred, look) : runBeside(look);
}

ImportSurvey::~ImportSurvey() = default;

QVector<FileSurvey> ImportSurvey::finish(const ImportRun& run, const GeometryInfo* columns)
{
    if (m_surveyors.empty())
        return {};
    m_looking.get();
    QVector<FileSurvey> surveys;
    for (const auto& surveyor : m_surveyors)
        surveys.append(surveyor->judged(run));
    FileSurvey& survey = surveys.first();
    if (run.objects.isEmpty() && !run.stopped(true) && !run.stopped(false))
        explainEmptyResult(survey);
    judgeDegrees(survey, run.objects);
    if (columns && !hasCause(surveys, Cause::Degrees))
        judgeAxes(survey, run.objects, *columns);
    return surveys;
}

bool hasCause(const QVector<FileSurvey>& surveys, Cause cause)
{
    return std::any_of(surveys.cbegin(), surveys.cend(), [cause](const FileSurvey& survey) {
        return std::any_of(survey.causes.cbegin(), survey.causes.cend(),
            [cause](const FoundCause& found) { return found.cause == cause; });
    });
}
