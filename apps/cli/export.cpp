#include "commands.h"
#include "export/exportfile.h"
#include "fileprogress.h"
#include "importarguments.h"
#include "losses.h"
#include "outputfile.h"
#include "standardinput.h"
#include "survey/findings.h"
#include "targets.h"

#include <QCommandLineParser>

namespace {

QList<QCommandLineOption> exportCommandLineOptions()
{
    return QList<QCommandLineOption>{
        { { QStringLiteral("o"), QStringLiteral("output") },
            QStringLiteral("Куда записать; вид - по расширению; «-» - стандартный вывод, с --to."),
            QStringLiteral("ФАЙЛ.csv|ФАЙЛ.geojson|ФАЙЛ.mif") },
        { QStringLiteral("to"), QStringLiteral("Вид результата, если его не назвало расширение."),
            QStringLiteral("csv|geojson|mif") },
        { QStringLiteral("locale"),
            QStringLiteral("CSV: c - запятые между значениями; ru - точки с запятой между "
                           "значениями и запятые в числах; без параметра - c."),
            QStringLiteral("c|ru"), QStringLiteral("c") },
        { QStringLiteral("as-is"),
            QStringLiteral("Не переставлять координаты, если первой стоит северная.") },
        { QStringLiteral("partial"),
            QStringLiteral("Записать и то, что прочитано до ошибки импорта.") },
    }
    + tellingOptions();
}

/// What the command line asks for.
struct ExportTask {
    QVector<ImportTask> tasks;
    Telling telling;
    QString target;
    ExportFormat format = ExportFormat::Csv;
    ExportOptions options;
    bool asIs = false;
    bool partial = false;

    QString midTarget() const { return target.chopped(1) + QLatin1Char('d'); }
};

ExportFormat readExportFormat(const QCommandLineParser& parser, const QString& target)
{
    const QString to = parser.value(QStringLiteral("to"));
    const auto format = exportFormatOf(to.isEmpty() ? target : QStringLiteral("a.") + to.toLower());
    if (!format) {
        throw Failure{ WrongUsage,
            QStringLiteral("укажите -o ФАЙЛ.csv, ФАЙЛ.geojson или ФАЙЛ.mif, для стандартного "
                           "вывода - --to csv или --to geojson") };
    }
    if (*format == ExportFormat::Mif
        && !target.endsWith(QLatin1String(".mif"), Qt::CaseInsensitive)) {
        throw Failure{ WrongUsage, QStringLiteral("MIF - это два файла: укажите -o ФАЙЛ.mif") };
    }
    return *format;
}

ExportTask readExportTask(const QCommandLineParser& parser)
{
    ExportTask task;
    task.tasks = readImportTasks(parser);
    task.telling = readTelling(parser);
    task.target = parser.isSet(QStringLiteral("output")) ? parser.value(QStringLiteral("output"))
                                                         : standardOutput;
    task.format = readExportFormat(parser, task.target);
    const QString locale = parser.value(QStringLiteral("locale"));
    if (locale != QLatin1String("c") && locale != QLatin1String("ru")) {
        throw Failure{ WrongUsage,
            QStringLiteral("--locale: ожидается c или ru, а не «%1»").arg(locale) };
    }
    task.options.russianNumbers = locale == QLatin1String("ru");
    task.asIs = parser.isSet(QStringLiteral("as-is"));
    task.partial = parser.isSet(QStringLiteral("partial"));
    checkTargets(task.tasks, { task.target });
    if (task.format == ExportFormat::Mif)
        checkTargets(task.tasks, { task.midTarget() });
    return task;
}

void writePair(const ExportTask& task, const ImportRun& all)
{
    OutputFile mif(task.target);
    OutputFile mid(task.midTarget());
    const qint64 unknown = writeMif(mif, mid, all.objects, all.shapes, task.options);
    OutputFile::commitPair(mid, mif);
    if (unknown > 0 && !task.telling.quiet) {
        printMessage(task.target,
            QStringLiteral("внимание: обозначений с буквами, которых нет в Windows-1251: %1")
                .arg(unknown));
    }
}

void write(const ExportTask& task, const ImportRun& all)
{
    if (task.format == ExportFormat::Mif) {
        writePair(task, all);
        return;
    }
    OutputFile out(task.target);
    if (task.format == ExportFormat::Csv) {
        writeCsv(out, all.objects, all.shapes, task.options);
    } else {
        writeGeoJson(out, all.objects, all.shapes, task.options);
        if (!task.telling.quiet && !all.objects.isEmpty() && !guessDegrees(all.objects)) {
            printMessage(OutputFile::shownName(task.target),
                QStringLiteral("координаты те же, что в файле; GeoJSON ждёт градусы WGS 84"));
        }
    }
    out.commit();
}

ExitStatus runExport(const QCommandLineParser& parser)
{
    ExportTask job = readExportTask(parser);
    OutputFile::checkPlace(job.target);
    ImportRun all;
    bool failed = false;
    bool complete = true;
    FileProgress progress(job.telling.quiet);
    for (ImportTask task : job.tasks) {
        spoolStandardInput(task.fileName());
        progress.startFiles(filesOf(*task.format, task.options));
        resolveEncoding(task, job.telling);
        Losses losses(task, job.telling);
        const ImportRun import = runImport(*task.format, task.options);
        for (const ImportMessage& message : import.messages)
            printMessage(task.fileName(), message.text);
        failed = failed || !import.messages.isEmpty();
        if (import.messages.isEmpty())
            complete = losses.tell(import, nullptr) && complete;
        all.objects += import.objects;
        all.shapes += import.shapes;
    }
    if ((failed && !job.partial) || !complete)
        return Failed;
    job.options.swapped = !job.asIs && guessAxisOrder(all.objects) == AxisOrder::NorthingFirst;
    job.options.objectWritten = FileProgress::countObject;
    write(job, all);
    return failed ? Failed : Done;
}

} // namespace

const Command exportCommand{ "export", "ФАЙЛ... -o ФАЙЛ.csv|ФАЙЛ.geojson|ФАЙЛ.mif [параметры]",
    "Записать каталог в CSV, GeoJSON или MIF/MID.", exportCommandLineOptions,
    importCommandLineOptions, runExport, false };
