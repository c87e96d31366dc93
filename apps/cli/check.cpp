#include "commands.h"
#include "importoptions.h"
#include "jobs.h"
#include "outputfile.h"
#include "survey/findings.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

/// A message of the import and the place that it speaks of.
struct Message {
    QString text;
    QString fileName;
    int line; ///< 0 when it names none
};

/// All that a check finds out about a file.
struct Report {
    QString fileName;
    QByteArray chosenEncoding;
    qint64 objectCount = 0;
    qint64 vertexCount = 0;
    QStringList defs; ///< of the objects
    QVector<Message> messages;
    QVector<FileSurvey> surveys; ///< of the file, and of the file of points if there is one
    QVector<PointConflict> conflicts;
    QVector<DuplicateDef> duplicates;
    QVector<IncompleteObject> incomplete;
    bool unreadable = false; ///< there was no file to look at

    qint64 findingCount() const
    {
        qint64 count = messages.size() + conflicts.size() + duplicates.size() + incomplete.size();
        for (const FileSurvey& survey : surveys)
            count += survey.causes.size();
        return count;
    }
    ExitStatus status() const
    {
        if (unreadable)
            return Failed;
        return findingCount() > 0 ? Found : Done;
    }
};

QList<QCommandLineOption> checkOptions()
{
    return {
        { QStringLiteral("json"), QStringLiteral("Ответ в виде JSON.") },
        { QStringLiteral("jobs"),
            QStringLiteral("Сколько файлов проверять одновременно; без параметра - 1."),
            QStringLiteral("ЧИСЛО"), QStringLiteral("1") },
        columnsOption(),
    };
}

// Looking

bool isReadable(const QString& fileName)
{
    return QFileInfo(fileName).isFile() && QFileInfo(fileName).isReadable();
}

SurveyOptions surveyOptions(const ImportArguments& arguments, bool forPoints, bool forObjects)
{
    SurveyOptions surveyOptions;
    surveyOptions.encoding = arguments.codecName();
    surveyOptions.readsPoints = forPoints && arguments.options.searchPointDefs;
    surveyOptions.readsObjects = forObjects;
    surveyOptions.searchPointDefs = arguments.options.searchPointDefs;
    surveyOptions.searchObjectDefs = forObjects && arguments.options.searchObjectDefs;
    return surveyOptions;
}

/// How files of a format are surveyed.
auto surveyOf(const Format& format)
{
    return format.id == QLatin1String("dxf") ? surveyDxf : surveyMif;
}

/// Surveys the file, and the file of points if there is one.
QVector<FileSurvey> surveyFiles(const QString& fileName, const ImportArguments& arguments)
{
    const auto survey = surveyOf(arguments.formatOf(fileName));
    const QString& pointFile = arguments.options.pointFileName;
    QVector<FileSurvey> surveys{ survey(
        fileName, surveyOptions(arguments, pointFile.isEmpty(), true)) };
    if (!pointFile.isEmpty() && isReadable(pointFile))
        surveys.append(survey(pointFile, surveyOptions(arguments, true, false)));
    return surveys;
}

/// The place of an error of the reader, as the message tells it.
Message locate(const QString& text, const Report& report)
{
    static const QRegularExpression place(
        QStringLiteral("(?:строки:|строке:|стоке) (\\d+)\\.?(?: |$)"));
    static const QRegularExpression midRow(QStringLiteral("обозначения (точки|объекта)|данных"));
    const FileSurvey& surveyed =
        report.surveys.last().stopped ? report.surveys.last() : report.surveys.first();
    Message message{ text, surveyed.fileName, place.match(text).captured(1).toInt() };
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

Report check(const QString& fileName, const ImportArguments& arguments, const GeometryInfo& columns)
{
    Report report;
    report.fileName = fileName;
    report.chosenEncoding = arguments.codecName();
    const Import import = runImport(fileName, arguments);
    report.unreadable = !isReadable(fileName);
    if (report.unreadable) {
        for (const QString& message : import.messages)
            report.messages.append({ message, fileName, 0 });
        return report;
    }
    report.surveys = surveyFiles(fileName, arguments);
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

// As text

QString quoted(const QString& text)
{
    return QStringLiteral("«%1»").arg(text);
}

QString placeText(const QString& fileName, int line)
{
    return line > 0 ? QStringLiteral("%1:%2: ").arg(fileName).arg(line)
                    : fileName + QStringLiteral(": ");
}

/// The text of a report, a line for each thing.
class TextReport {
public:
    explicit TextReport(const Report& report)
        : m_report(report)
    {
    }

    QString text()
    {
        add(QStringLiteral("прочитано объектов: %1, вершин: %2")
                .arg(m_report.objectCount)
                .arg(m_report.vertexCount));
        for (const FileSurvey& survey : m_report.surveys)
            addContents(survey);
        for (const Message& message : m_report.messages)
            addAt(message.fileName, message.line, QStringLiteral("сообщение: ") + message.text);
        for (const FileSurvey& survey : m_report.surveys)
            addCauses(survey);
        for (const PointConflict& conflict : m_report.conflicts)
            addConflict(conflict);
        for (const DuplicateDef& duplicate : m_report.duplicates)
            addDuplicate(duplicate);
        for (const IncompleteObject& object : m_report.incomplete)
            addIncomplete(object);
        add(m_report.findingCount() == 0
                ? QStringLiteral("замечаний нет")
                : QStringLiteral("замечаний: %1").arg(m_report.findingCount()));
        return m_text;
    }

private:
    /// More than these say no more to a reader; the JSON has them all.
    static constexpr int maxListed = 10;

    void addAt(const QString& fileName, int line, const QString& text)
    {
        m_text += placeText(fileName, line) + text + QLatin1Char('\n');
    }

    void add(const QString& text) { addAt(m_report.fileName, 0, text); }

    void addContents(const FileSurvey& survey)
    {
        for (const auto& [name, kind] : survey.kinds) {
            addAt(survey.fileName, 0,
                QStringLiteral("%1: %2, прочитано: %3, пропущено: %4")
                    .arg(QString::fromStdString(name))
                    .arg(kind.count)
                    .arg(kind.read)
                    .arg(kind.count - kind.read));
        }
        QString encoding = survey.likelyEncoding.isEmpty()
            ? QStringLiteral("кодировка: только символы ASCII")
            : QStringLiteral("кодировка: похоже на ") + QString::fromLatin1(survey.likelyEncoding);
        encoding += QStringLiteral(", выбрана ") + QString::fromLatin1(m_report.chosenEncoding);
        if (!survey.declaredEncoding.isEmpty())
            encoding += QStringLiteral(", в заголовке указана ") + survey.declaredEncoding;
        addAt(survey.fileName, 0, encoding);
    }

    void addCauses(const FileSurvey& survey)
    {
        for (const FoundCause& found : survey.causes) {
            addAt(found.fileName, found.line, QStringLiteral("причина: ") + causeText(found));
            addAt(found.fileName, found.line, QStringLiteral("что делать: ") + remedyText(found));
        }
    }

    QString objectText(int object) const
    {
        return QStringLiteral("объект %1 %2").arg(object + 1).arg(quoted(m_report.defs.at(object)));
    }

    template <typename Items, typename ToText>
    static QString list(const Items& items, ToText toText)
    {
        QStringList texts;
        for (int i = 0; i < items.size() && i < maxListed; ++i)
            texts.append(toText(items.at(i)));
        if (items.size() > maxListed)
            texts.append(QStringLiteral("и ещё %1").arg(items.size() - maxListed));
        return texts.join(QLatin1String(", "));
    }

    void addConflict(const PointConflict& conflict)
    {
        const QString places = list(conflict.places, [](const QPointF& place) {
            return QStringLiteral("(%1; %2)").arg(place.x(), 0, 'f', 2).arg(place.y(), 0, 'f', 2);
        });
        add(QStringLiteral("%1: точка %2 стоит в разных местах: %3")
                .arg(objectText(conflict.object), quoted(conflict.def), places));
    }

    void addDuplicate(const DuplicateDef& duplicate)
    {
        const QString objects =
            list(duplicate.objects, [](int object) { return QString::number(object + 1); });
        add(QStringLiteral("обозначение %1 повторяется у объектов %2")
                .arg(quoted(duplicate.def), objects));
    }

    void addIncomplete(const IncompleteObject& object)
    {
        if (object.contour < 0) {
            add(objectText(object.object) + QStringLiteral(": нет ни одного контура"));
            return;
        }
        add(QStringLiteral("%1: в контуре %2 вершин: %3, а нужно не меньше %4")
                .arg(objectText(object.object))
                .arg(object.contour + 1)
                .arg(object.vertices)
                .arg(object.needed));
    }

    const Report& m_report;
    QString m_text;
};

// As JSON

QJsonObject toJson(const Message& message)
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

QJsonObject toJson(const FileSurvey& survey)
{
    QJsonArray kinds;
    for (const auto& [name, kind] : survey.kinds) {
        kinds.append(QJsonObject{ { QStringLiteral("kind"), QString::fromStdString(name) },
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

QJsonObject toJson(const Report& report)
{
    const auto objectJson = [&report](int object) {
        return QJsonObject{ { QStringLiteral("object"), object + 1 },
            { QStringLiteral("designation"), report.defs.at(object) } };
    };
    const auto conflictJson = [&](const PointConflict& conflict) {
        QJsonObject json = objectJson(conflict.object);
        json.insert(QStringLiteral("point"), conflict.def);
        json.insert(QStringLiteral("places"), toJsonArray(conflict.places, [](QPointF place) {
            return QJsonObject{ { QStringLiteral("x"), place.x() },
                { QStringLiteral("y"), place.y() } };
        }));
        return json;
    };
    const auto duplicateJson = [](const DuplicateDef& duplicate) {
        return QJsonObject{ { QStringLiteral("designation"), duplicate.def },
            { QStringLiteral("objects"),
                toJsonArray(duplicate.objects, [](int object) { return object + 1; }) } };
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
        { QStringLiteral("conflicts"), toJsonArray(report.conflicts, conflictJson) },
        { QStringLiteral("duplicates"), toJsonArray(report.duplicates, duplicateJson) },
        { QStringLiteral("incomplete"), toJsonArray(report.incomplete, incompleteJson) },
        { QStringLiteral("findings"), report.findingCount() } };
}

// The command

void writeOut(const QByteArray& bytes)
{
    OutputFile out(QStringLiteral("-"));
    out.write(bytes);
    out.commit();
}

ExitStatus checkFile(const QString& fileName, const QCommandLineParser& parser)
{
    const Report report = check(fileName, readImportArguments(parser), readColumns(parser));
    if (report.unreadable)
        printMessage(fileName, report.messages.value(0).text);
    if (parser.isSet(QStringLiteral("json")))
        writeOut(QJsonDocument(QJsonArray{ toJson(report) }).toJson());
    else if (!report.unreadable)
        writeOut(TextReport(report).text().toLocal8Bit());
    return report.status();
}

QByteArray mergeJson(const QVector<QByteArray>& outputs)
{
    QJsonArray merged;
    for (const QByteArray& output : outputs) {
        for (const QJsonValue& report : QJsonDocument::fromJson(output).array())
            merged.append(report);
    }
    return QJsonDocument(merged).toJson();
}

ExitStatus checkFiles(const QStringList& files, const QCommandLineParser& parser)
{
    const QStringList common =
        forwardedArguments(parser, checkOptions(), { QStringLiteral("jobs") });
    QList<QStringList> argumentLists;
    for (const QString& file : files) {
        argumentLists.append(QStringList{ QStringLiteral("check") } + common
            + QStringList{ QStringLiteral("--"), file });
    }
    QVector<QByteArray> outputs(files.size());
    int failures = 0;
    int found = 0;
    runJobs(argumentLists, readNumber(parser, QStringLiteral("jobs"), 1, maxJobs),
        [&](int index, const JobResult& result, Progress& progress) {
            outputs[index] = result.output;
            progress.print(result.errors);
            if (result.crashed) {
                progress.print(files.at(index) + QStringLiteral(": проверка прервалась аварийно"));
            }
            failures += result.crashed || result.status == Failed ? 1 : 0;
            found += !result.crashed && result.status == Found ? 1 : 0;
        });
    if (parser.isSet(QStringLiteral("json"))) {
        writeOut(mergeJson(outputs));
    } else {
        QByteArray text;
        for (const QByteArray& output : qAsConst(outputs))
            text += output;
        writeOut(text);
    }
    printError(QStringLiteral("Всего файлов: %1, с замечаниями: %2, не проверено: %3")
                   .arg(files.size())
                   .arg(found)
                   .arg(failures));
    if (failures > 0)
        return Failed;
    return found > 0 ? Found : Done;
}

ExitStatus runCheck(const QCommandLineParser& parser)
{
    const QStringList files = parser.positionalArguments();
    const ImportArguments arguments = readImportArguments(parser);
    readColumns(parser);
    readNumber(parser, QStringLiteral("jobs"), 1, maxJobs);
    for (const QString& file : files)
        arguments.formatOf(file);
    return files.size() == 1 ? checkFile(files.first(), parser) : checkFiles(files, parser);
}

} // namespace

const Command checkCommand{ "check", "ФАЙЛ... [--json] [параметры]",
    "Проверить файлы и объяснить, что в них не так.", checkOptions, runCheck, false };
