#include "commands.h"
#include "fileprogress.h"
#include "importarguments.h"
#include "losses.h"
#include "outputfile.h"
#include "plandrawer.h"
#include "resultwriter.h"
#include "standardinput.h"
#include "survey/findings.h"
#include "targets.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSize>

namespace {

constexpr int maxSide = 20000;

QList<QCommandLineOption> planCommandLineOptions()
{
    return QList<QCommandLineOption>{
        { { QStringLiteral("o"), QStringLiteral("output") },
            QStringLiteral("Файл рисунка; вид рисунка - по расширению; «-» - стандартный "
                           "вывод."),
            QStringLiteral("ФАЙЛ.svg|ФАЙЛ.png") },
        { QStringLiteral("to"),
            QStringLiteral("Вид рисунка, если его не назвало расширение; для «-» - svg."),
            QStringLiteral("svg|png") },
        { QStringLiteral("north-up"),
            QStringLiteral("Север вверху: первая координата - северная, если величины не говорят "
                           "иного.") },
        { QStringLiteral("as-is"),
            QStringLiteral("Первая координата вправо, вторая вверх, что бы они ни значили.") },
        { QStringLiteral("size"),
            QStringLiteral("Ширина и высота рисунка в пикселях; без параметра - по форме объектов, "
                           "не больше 1600x1200."),
            QStringLiteral("ШxВ"), QStringLiteral("1600x1200") },
        { QStringLiteral("partial"),
            QStringLiteral("Нарисовать и то, что прочитано до ошибки импорта.") },
    }
    + tellingOptions();
}

QSize readSize(const QCommandLineParser& parser)
{
    const QString what = QStringLiteral("--size");
    const QString text = parser.value(QStringLiteral("size"));
    // As people type it: Latin or Cyrillic, or the sign itself.
    static const QRegularExpression separator(QStringLiteral("[xXхХ×]"));
    const QStringList sides = text.split(separator);
    if (sides.size() != 2)
        throw Failure{ WrongUsage, QStringLiteral("%1: ожидается ШxВ, а не «%2»").arg(what, text) };
    return { parseNumber(sides.at(0), what, 200, maxSide),
        parseNumber(sides.at(1), what, 200, maxSide) };
}

PlanFormat readPlanFormat(const QCommandLineParser& parser, const QString& target)
{
    const QString to = parser.value(QStringLiteral("to")).toLower();
    const QString suffix = to.isEmpty() ? QFileInfo(target).suffix().toLower() : to;
    if (target == standardOutput && to.isEmpty())
        return PlanFormat::Svg;
    if (suffix == QLatin1String("svg"))
        return PlanFormat::Svg;
    if (suffix == QLatin1String("png"))
        return PlanFormat::Png;
    throw Failure{ WrongUsage,
        QStringLiteral("укажите файл рисунка: -o ФАЙЛ.svg или -o ФАЙЛ.png") };
}

/// What decides which coordinate runs upwards.
enum class Orientation { Auto, NorthUp, AsIs };

Orientation readOrientation(const QCommandLineParser& parser)
{
    const bool northUp = parser.isSet(QStringLiteral("north-up"));
    const bool asIs = parser.isSet(QStringLiteral("as-is"));
    if (northUp && asIs)
        throw Failure{ WrongUsage, QStringLiteral("--north-up и --as-is вместе не указывают") };
    return northUp ? Orientation::NorthUp : asIs ? Orientation::AsIs : Orientation::Auto;
}

PlanAxes axesOf(const QVector<DefPolygon>& objects, Orientation orientation)
{
    const AxisOrder order = guessAxisOrder(objects);
    if (orientation == Orientation::AsIs)
        return { false, order == AxisOrder::EastingFirst };
    // Who asks for the north where sizes tell nothing has the northing first, as catalogues do.
    if (orientation == Orientation::NorthUp)
        return { order != AxisOrder::EastingFirst, true };
    return { order == AxisOrder::NorthingFirst, order != AxisOrder::Unknown };
}

QString titleOf(const QVector<ImportTask>& tasks)
{
    QStringList names;
    for (const ImportTask& task : tasks)
        names.append(QFileInfo(task.fileName()).fileName());
    return names.join(QLatin1String(", "));
}

/// What the command line asks for.
struct PlanOptions {
    QVector<ImportTask> tasks;
    QString target;
    PlanRequest picture;
    Telling telling;
    Orientation orientation = Orientation::Auto;
    bool partial = false;
};

PlanOptions readPlanOptions(const QCommandLineParser& parser)
{
    PlanOptions options;
    options.target = parser.value(QStringLiteral("output"));
    options.picture.format = readPlanFormat(parser, options.target);
    options.picture.size = readSize(parser);
    options.picture.fits = !parser.isSet(QStringLiteral("size"));
    options.orientation = readOrientation(parser);
    options.telling = readTelling(parser);
    options.tasks = readImportTasks(parser);
    checkTargets(options.tasks, { options.target });
    options.partial = parser.isSet(QStringLiteral("partial"));
    options.picture.title = titleOf(options.tasks);
    options.picture.objectDrawn = FileProgress::countObject;
    return options;
}

const PlanDrawer& drawer()
{
    const PlanDrawer* const loaded = planDrawer();
    if (!loaded)
        throw Failure{ Failed,
            QStringLiteral("нет библиотеки рисования планов («%1» рядом с программой), или ей не "
                           "хватает Qt Gui: установите программу целиком")
                .arg(QStringLiteral(DRAWER_FILE)) };
    return *loaded;
}

ExitStatus runPlan(const QCommandLineParser& parser)
{
    PlanOptions options = readPlanOptions(parser);
    OutputFile::checkPlace(options.target);
    const PlanDrawer& plan = drawer();

    QVector<DefPolygon> objects;
    bool failed = false;
    bool complete = true;
    FileProgress progress(options.telling.quiet);
    for (ImportTask task : options.tasks) {
        spoolStandardInput(task.fileName());
        progress.startFiles(filesOf(*task.format, task.options));
        resolveEncoding(task, options.telling);
        Losses losses(task, options.telling);
        const ImportRun import = runImport(*task.format, task.options);
        objects += import.objects;
        failed = failed || !import.messages.isEmpty();
        for (const ImportMessage& message : import.messages)
            printMessage(task.fileName(), message.text);
        // Beside the picture, what a result in the usual columns would be.
        const GeometryInfo columns = ResultOptions().info;
        if (import.messages.isEmpty())
            complete = losses.tell(import, &columns) && complete;
    }
    if ((failed && !options.partial) || !complete)
        return Failed;
    options.picture.axes = axesOf(objects, options.orientation);
    OutputFile out(options.target);
    if (!plan.draw(out, objects, options.picture))
        throw Failure{ Failed, QStringLiteral("для рисунка такого размера не хватает памяти") };
    out.commit();
    return failed ? Failed : Done;
}

} // namespace

const Command planCommand{ "plan", "ФАЙЛ... -o ФАЙЛ.svg|ФАЙЛ.png [параметры]",
    "Нарисовать план объектов.", planCommandLineOptions, importCommandLineOptions, runPlan, true };
