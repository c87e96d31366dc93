#include "commands.h"
#include "fileprogress.h"
#include "geometry/designation.h"
#include "importarguments.h"
#include "jobs.h"
#include "losses.h"
#include "outputfile.h"
#include "prepare/foreignfile.h"
#include "prepare/reporttext.h"
#include "preparearguments.h"
#include "preparefile.h"
#include "resultfile.h"
#include "resultwriter.h"
#include "standardinput.h"
#include "targets.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <optional>

namespace {

/// The columns that a field can have in the dialog.
constexpr int maxFieldColumn = 20;

QList<QCommandLineOption> convertCommandLineOptions()
{
    return QList<QCommandLineOption>{
        { { QStringLiteral("o"), QStringLiteral("output") },
            QStringLiteral("Куда записать результат; «-» или без параметра - стандартный вывод."),
            QStringLiteral("ФАЙЛ") },
        { QStringLiteral("out-dir"),
            QStringLiteral("Папка результатов: для каждого файла - файл xml того же имени."),
            QStringLiteral("ПАПКА") },
        jobsOption(),
        { QStringLiteral("partial"),
            QStringLiteral("Записать и то, что прочитано до ошибки импорта.") },
        { QStringLiteral("field"),
            QStringLiteral("Заполнить столбец каталога текстом; можно повторять."),
            QStringLiteral("СТОЛБЕЦ=ТЕКСТ") },
        { QStringLiteral("sort"), QStringLiteral("Сортировать объекты.") },
        { QStringLiteral("update"), QStringLiteral("Обновить при импорте.") },
        { QStringLiteral("table"), QStringLiteral("Имя таблицы объектов."), QStringLiteral("ИМЯ") },
        { QStringLiteral("catalogue"), QStringLiteral("Имя таблицы каталога координат."),
            QStringLiteral("ИМЯ") },
        columnsOption(),
        { QStringLiteral("object-column"),
            QStringLiteral("Столбец обозначения объекта, считая с 1; без параметра - 1."),
            QStringLiteral("ЧИСЛО"), QStringLiteral("1") },
        { QStringLiteral("prepare"),
            QStringLiteral("Сначала подготовить копию файла, как это делает prepare; с ним "
                           "действуют и параметры подготовки, от --level до --scale.") },
    }
    + tellingOptions() + preparationOptions();
}

void readField(const QString& text, QMap<int, QString>& fields)
{
    const int equals = text.indexOf(QLatin1Char('='));
    if (equals < 0) {
        throw Failure{ WrongUsage,
            QStringLiteral("--field: ожидается СТОЛБЕЦ=ТЕКСТ, а не «%1»").arg(text) };
    }
    const int column = parseNumber(text.left(equals), QStringLiteral("--field"), 1, maxFieldColumn);
    const QString value = text.mid(equals + 1);
    if (!value.isEmpty())
        fields.insert(column - 1, value);
}

ResultOptions readResultOptions(const QCommandLineParser& parser)
{
    ResultOptions options;
    options.tableName = parser.value(QStringLiteral("table"));
    options.catalogueTableName = parser.value(QStringLiteral("catalogue"));
    options.update = parser.isSet(QStringLiteral("update"));
    options.info = readColumns(parser);
    options.info.defColNum = readNumber(parser, QStringLiteral("object-column"), 1, maxColumn) - 1;
    for (const QString& field : parser.values(QStringLiteral("field")))
        readField(field, options.fields);
    return options;
}

QStringList readTargets(const QCommandLineParser& parser, const QVector<ImportTask>& tasks)
{
    const QString output = parser.value(QStringLiteral("output"));
    const QString folder = parser.value(QStringLiteral("out-dir"));
    for (const char* option : { "output", "out-dir" }) {
        const QString name = QLatin1String(option);
        if (parser.isSet(name) && parser.value(name).isEmpty())
            throw Failure{ WrongUsage, QStringLiteral("--%1: имя не может быть пустым").arg(name) };
    }
    if (!output.isEmpty() && !folder.isEmpty())
        throw Failure{ WrongUsage, QStringLiteral("-o и --out-dir вместе не указывают") };
    if (folder.isEmpty() && tasks.size() > 1)
        throw Failure{ WrongUsage, QStringLiteral("для нескольких файлов укажите --out-dir") };
    if (folder.isEmpty())
        return { output.isEmpty() ? standardOutput : output };

    QVector<ResultInFolder> results;
    for (const ImportTask& task : tasks)
        results.append({ task.fileName(), task.subfolder, QStringLiteral("xml") });
    return targetsIn(folder, results);
}

/// What the command line asks for.
struct ConvertOptions {
    QVector<ImportTask> tasks;
    Telling telling;
    QStringList targets; ///< of the files, in their order
    ResultOptions result;
    bool makesFolders = false;
    std::optional<prep::PrepareOptions> preparation; ///< none to read the files as they are
    bool partial = false;
    bool sort = false;
    int jobs = 1;
    bool overlaps = false; ///< writes while it reads
    QStringList forwarded; ///< the options that each process for one file gets
};

std::optional<prep::PrepareOptions> readPreparation(const QCommandLineParser& parser)
{
    if (parser.isSet(QStringLiteral("prepare"))) {
        prep::PrepareOptions options = readPreparationOptions(parser);
        if (options.fromEncoding.isEmpty())
            options.fromEncoding = readCodec(parser, "encoding");
        return options;
    }
    for (const QCommandLineOption& option : preparationOptions()) {
        if (parser.isSet(option)) {
            throw Failure{
                WrongUsage,
                QStringLiteral("--%1 действует только с --prepare").arg(option.names().constLast())
            };
        }
    }
    return {};
}

ConvertOptions readConvertOptions(const QCommandLineParser& parser)
{
    ConvertOptions options;
    options.preparation = readPreparation(parser);
    options.tasks =
        readImportTasks(parser, options.preparation ? prep::formatOfForeignFile : nullptr);
    options.telling = readTelling(parser);
    options.targets = readTargets(parser, options.tasks);
    options.makesFolders = parser.isSet(QStringLiteral("out-dir"));
    checkTargets(options.tasks, options.targets);
    options.result = readResultOptions(parser);
    options.partial = parser.isSet(QStringLiteral("partial"));
    options.sort = parser.isSet(QStringLiteral("sort"));
    options.jobs = readNumber(parser, QStringLiteral("jobs"), 1, maxJobs);
    // Several files share the processors by themselves, and who asks for one job gets one.
    options.overlaps = !keepToOneJob(parser, options.tasks) && !options.sort
        && ResultFile::isOfUse(options.targets.constFirst());
    options.forwarded = forwardedArguments(parser, convertCommand.options(),
        { QStringLiteral("output"), QStringLiteral("out-dir"), QStringLiteral("jobs"),
            QStringLiteral("recursive") });
    return options;
}

void writeXml(
    const QString& target, const QVector<DefPolygon>& objects, const ResultOptions& options)
{
    OutputFile out(target);
    ResultWriter writer(out, options);
    for (const DefPolygon& object : objects) {
        writer.write(object);
        FileProgress::countObject();
    }
    writer.finish();
    out.commit();
}

/// Makes the folders that the results are to be in.
void makeFolders(const ConvertOptions& options)
{
    if (options.makesFolders)
        makeFoldersOf(options.targets);
}

/// Puts a prepared copy in the place of a file, and tells what that took. False when something was
/// lost.
bool prepareCopy(QString& fileName, const Format& format, const QString& copy,
    const prep::PrepareOptions& options, QByteArray& encoding)
{
    const PrepareTask task{ fileName, &format, prep::formatOfForeignFile(fileName) != nullptr,
        copy };
    try {
        const prep::PrepareReport report = prepareFile(task, options);
        for (const QString& line : prep::noteLines(report))
            printMessage(fileName, line);
        fileName = copy;
        encoding = report.encoding;
        return !report.hasLosses();
    } catch (const Failure& failure) {
        throw Failure{ failure.status, fileName + QStringLiteral(": ") + failure.text };
    }
}

/// Lets the import read prepared copies of its files. False when something was lost.
bool prepareCopies(ImportTask& task, prep::PrepareOptions options, const QTemporaryDir& folder)
{
    const auto copy = [&](const char* name) {
        return folder.filePath(QLatin1String(name) + task.format->suffix);
    };
    QByteArray& encoding = task.options.encoding;
    bool isWhole =
        prepareCopy(task.options.objectFileName, *task.format, copy("objects."), options, encoding);
    if (!task.options.pointFileName.isEmpty()) {
        // Both are read in one encoding.
        options.encoding = encoding;
        isWhole = prepareCopy(
                      task.options.pointFileName, *task.format, copy("points."), options, encoding)
            && isWhole;
    }
    return isWhole;
}

ExitStatus convertFile(const ConvertOptions& options)
{
    ImportTask task = options.tasks.first();
    const QString& target = options.targets.first();
    const QString fileName = task.fileName();
    makeFolders(options);
    OutputFile::checkPlace(target);
    FileProgress progress(options.telling.quiet);
    spoolStandardInput(fileName);
    progress.startFiles(filesOf(*task.format, task.options));
    std::optional<QTemporaryDir> folder;
    const bool isWhole =
        !options.preparation || prepareCopies(task, *options.preparation, folder.emplace());
    resolveEncoding(task, options.telling);
    std::optional<Losses> losses;
    // What a preparation took and left it has told itself.
    if (!options.preparation)
        losses.emplace(task, options.telling);
    std::optional<ResultFile> result;
    if (options.overlaps)
        result.emplace(target, options.result);
    ImportRun import = runImport(*task.format, task.options,
        result ? [&result](const auto& objects) { result->take(objects); } : ObjectTaker());
    for (const ImportMessage& message : qAsConst(import.messages))
        printMessage(fileName, message.text);
    const bool failed = !import.messages.isEmpty();
    if (failed && !options.partial)
        return Failed;
    if (!isWhole && options.telling.strict)
        return Failed;
    if (!failed && losses && !losses->tell(import, &options.result.info))
        return Failed;
    if (options.sort)
        sortObjects(import.objects);
    if (result)
        result->commit();
    else
        writeXml(target, import.objects, options.result);
    if (failed)
        return Failed;
    return isWhole ? Done : Found;
}

QString outcome(const JobResult& result, const QString& target)
{
    if (!result.exited())
        return result.trouble(QStringLiteral("обработка"));
    if (result.status == Found)
        return QStringLiteral("записано в %1, не всё").arg(target);
    return result.status == Done ? QStringLiteral("записано в %1").arg(target)
                                 : QStringLiteral("с ошибками");
}

/// Every file in a process of its own: what goes wrong with one costs only that one.
ExitStatus convertFiles(const ConvertOptions& options)
{
    makeFolders(options);
    OutputFile::checkPlace(options.targets.first());
    QList<QStringList> argumentLists;
    for (int i = 0; i < options.tasks.size(); ++i) {
        argumentLists.append(QStringList{ QStringLiteral("convert") } + options.forwarded
            + QStringList{ QStringLiteral("--output=") + options.targets.at(i),
                QStringLiteral("--jobs=1"), QStringLiteral("--"), options.tasks.at(i).fileName() });
    }
    int failures = 0;
    int lossy = 0;
    runJobs(
        argumentLists, options.jobs, [&](int index, const JobResult& result, Progress& progress) {
            progress.print(result.errors);
            if (!options.telling.quiet || !result.exited() || result.status != Done)
                progress.print(options.tasks.at(index).fileName() + QStringLiteral(": ")
                    + outcome(result, options.targets.at(index)));
            const bool isLossy = result.exited() && result.status == Found;
            lossy += isLossy ? 1 : 0;
            failures += !isLossy && (!result.exited() || result.status != Done) ? 1 : 0;
        });
    if (!options.telling.quiet)
        printError(QStringLiteral("Всего файлов: %1, записано: %2, с ошибками: %3")
                       .arg(options.tasks.size())
                       .arg(options.tasks.size() - failures)
                       .arg(failures));
    if (failures > 0)
        return Failed;
    return lossy > 0 ? Found : Done;
}

ExitStatus runConvert(const QCommandLineParser& parser)
{
    const ConvertOptions options = readConvertOptions(parser);
    return options.tasks.size() == 1 ? convertFile(options) : convertFiles(options);
}

} // namespace

const Command convertCommand{ "convert", "ФАЙЛ... [-o ФАЙЛ | --out-dir ПАПКА] [параметры]",
    "Записать результат импорта в XML.", convertCommandLineOptions, importCommandLineOptions,
    runConvert, false };
