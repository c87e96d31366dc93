#include "reportjson.h"

#include "survey/report.h"

#include <QJsonArray>

namespace {

QJsonObject toJson(const ReportMessage& message)
{
    QJsonObject json{ { QStringLiteral("text"), message.text },
        { QStringLiteral("file"), message.fileName } };
    if (message.line > 0)
        json.insert(QStringLiteral("line"), message.line);
    return json;
}

QJsonObject toJson(const FoundCause& found)
{
    QJsonObject json{ { QStringLiteral("id"), causeId(found.cause) },
        { QStringLiteral("file"), found.fileName }, { QStringLiteral("cause"), causeText(found) },
        { QStringLiteral("remedy"), remedyText(found) } };
    if (found.line > 0)
        json.insert(QStringLiteral("line"), found.line);
    if (found.count > 0)
        json.insert(QStringLiteral("count"), found.count);
    return json;
}

template <typename Items, typename ToJson>
QJsonArray toJsonArray(const Items& items, ToJson convert)
{
    QJsonArray array;
    for (const auto& item : items)
        array.append(convert(item));
    return array;
}

/// The name of a kind for programs.
QString kindId(const std::string& name)
{
    return QString::fromStdString(name)
        .replace(QString::fromUtf8(inBlocks), QLatin1String(" in blocks"))
        .replace(QString::fromUtf8(otherKinds), QLatin1String("other"));
}

QJsonObject toJson(const FileSurvey& survey)
{
    QJsonArray kinds;
    for (const auto& [name, kind] : survey.kinds) {
        kinds.append(QJsonObject{ { QStringLiteral("kind"), kindId(name) },
            { QStringLiteral("count"), kind.count }, { QStringLiteral("read"), kind.read },
            { QStringLiteral("skipped"), kind.count - kind.read } });
    }
    return { { QStringLiteral("file"), survey.fileName }, { QStringLiteral("kinds"), kinds },
        { QStringLiteral("likelyEncoding"),
            survey.likelyEncoding.isEmpty() ? QStringLiteral("ASCII")
                                            : QString::fromLatin1(survey.likelyEncoding) },
        { QStringLiteral("declaredEncoding"), survey.declaredEncoding },
        { QStringLiteral("encodingMatches"), survey.encodingMatches } };
}

} // namespace

QJsonObject reportJson(const Report& report)
{
    const auto objectJson = [](const ObjectName& object) {
        return QJsonObject{ { QStringLiteral("object"), object.object + 1 },
            { QStringLiteral("designation"), object.def } };
    };
    const auto conflictJson = [&](const PointConflict& conflict) {
        QJsonObject json = objectJson(conflict.object);
        json.insert(QStringLiteral("point"), conflict.def);
        json.insert(
            QStringLiteral("places"), toJsonArray(conflict.places.listed, [](QPointF place) {
                return QJsonObject{ { QStringLiteral("x"), place.x() },
                    { QStringLiteral("y"), place.y() } };
            }));
        return json;
    };
    const auto duplicateJson = [](const DuplicateDef& duplicate) {
        return QJsonObject{ { QStringLiteral("designation"), duplicate.def },
            { QStringLiteral("objects"),
                toJsonArray(duplicate.objects.listed, [](int object) { return object + 1; }) } };
    };
    const auto incompleteJson = [&](const IncompleteObject& incomplete) {
        QJsonObject json = objectJson(incomplete.object);
        json.insert(QStringLiteral("vertices"), incomplete.vertices);
        json.insert(QStringLiteral("needed"), incomplete.needed);
        if (incomplete.contour >= 0)
            json.insert(QStringLiteral("contour"), incomplete.contour + 1);
        return json;
    };
    QJsonArray causes;
    for (const FileSurvey& survey : report.surveys) {
        for (const FoundCause& found : survey.causes)
            causes.append(toJson(found));
    }
    const auto asJson = [](const auto& item) { return toJson(item); };
    return { { QStringLiteral("file"), report.fileName },
        { QStringLiteral("objects"), report.objectCount },
        { QStringLiteral("vertices"), report.vertexCount },
        { QStringLiteral("chosenEncoding"), QString::fromLatin1(report.chosenEncoding) },
        { QStringLiteral("contents"), toJsonArray(report.surveys, asJson) },
        { QStringLiteral("messages"), toJsonArray(report.messages, asJson) },
        { QStringLiteral("causes"), causes },
        { QStringLiteral("conflicts"), toJsonArray(report.conflicts.listed, conflictJson) },
        { QStringLiteral("duplicates"), toJsonArray(report.duplicates.listed, duplicateJson) },
        { QStringLiteral("incomplete"), toJsonArray(report.incomplete.listed, incompleteJson) },
        { QStringLiteral("unlisted"),
            QJsonObject{ { QStringLiteral("conflicts"), report.conflicts.unlisted() },
                { QStringLiteral("duplicates"), report.duplicates.unlisted() },
                { QStringLiteral("incomplete"), report.incomplete.unlisted() } } },
        { QStringLiteral("findings"), report.findingCount() } };
}
