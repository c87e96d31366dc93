#include "commands.h"
#include "geometry/designation.h"
#include "importarguments.h"
#include "jobs.h"
#include "outputfile.h"
#include "resultwriter.h"
#include "standardinput.h"
#include "targets.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

namespace {

/// The columns that a field can have in the dialog.
constexpr int maxFieldColumn = 20;

const QString standardOutput = QStringLiteral("-");

QList<QCommandLineOption> convertCommandLineOptions()
{
    return {
        { { QStringLiteral("o"), QStringLiteral("output") },
            QStringLiteral("Куда записать результат; «-» или без параметра - стандартный вывод."),
            QStringLiteral("ФАЙЛ") },
        { QStringLiteral("out-dir"),
            QStringLiteral("Папка результатов: для каждого файла - файл xml того же имени."),
            QStringLiteral("ПАПКА") },
        { QStringLiteral("jobs"),
            QStringLiteral("Сколько файлов обрабатывать одновременно; без параметра - 1."),
            QStringLiteral("ЧИСЛО"), QStringLiteral("1") },
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
    };
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

QString targetIn(const QString& folder, const QString& fileName)
{
    return QDir(folder).filePath(QFileInfo(fileName).completeBaseName() + QStringLiteral(".xml"));
}

QStringList readTargets(const QCommandLineParser& parser)
{
    const QStringList files = parser.positionalArguments();
    const QString output = parser.value(QStringLiteral("output"));
    const QString folder = parser.value(QStringLiteral("out-dir"));
    for (const char* option : { "output", "out-dir" }) {
        const QString name = QLatin1String(option);
        if (parser.isSet(name) && parser.value(name).isEmpty())
            throw Failure{ WrongUsage, QStringLiteral("--%1: имя не может быть пустым").arg(name) };
    }
    if (!output.isEmpty() && !folder.isEmpty())
        throw Failure{ WrongUsage, QStringLiteral("-o и --out-dir вместе не указывают") };
    if (folder.isEmpty() && files.size() > 1)
        throw Failure{ WrongUsage, QStringLiteral("для нескольких файлов укажите --out-dir") };
    if (folder.isEmpty())
        return { output.isEmpty() ? standardOutput : output };

    QStringList targets;
    for (const QString& file : files)
        targets.append(targetIn(folder, file));
    return targets;
}

/// What the command line asks for.
struct ConvertOptions {
    QVector<ImportTask> tasks;
    QStringList targets; ///< of the files, in their order
    ResultOptions result;
    bool partial = false;
    bool sort = false;
    int jobs = 1;
    QStringList forwarded; ///< the options that each process for one file gets
};

ConvertOptions readConvertOptions(const QCommandLineParser& parser)
{
    ConvertOptions options;
    options.targets = readTargets(parser);
    options.tasks = readImportTasks(parser);
    checkTargets(options.tasks, options.targets);
    options.result = readResultOptions(parser);
    options.partial = parser.isSet(QStringLiteral("partial"));
    options.sort = parser.isSet(QStringLiteral("sort"));
    options.jobs = readNumber(parser, QStringLiteral("jobs"), 1, maxJobs);
    options.forwarded = forwardedArguments(parser, convertCommandLineOptions(),
        { QStringLiteral("output"), QStringLiteral("out-dir"), QStringLiteral("jobs") });
    return options;
}

void writeXml(
    const QString& target, const QVector<DefPolygon>& objects, const ResultOptions& options)
{
    OutputFile out(target);
    ResultWriter writer(out, options);
    for (const DefPolygon& object : objects)
        writer.write(object);
    writer.finish();
    out.commit();
}

ExitStatus convertFile(const ConvertOptions& options)
{
    const ImportTask& task = options.tasks.first();
    const QString& target = options.targets.first();
    OutputFile::checkPlace(target);
    spoolStandardInput(task.fileName());
    ImportRun import = runImport(*task.format, task.options);
    for (const ImportMessage& message : qAsConst(import.messages))
        printMessage(task.fileName(), message.text);
    const bool failed = !import.messages.isEmpty();
    if (failed && !options.partial)
        return Failed;
    if (options.sort)
        sortObjects(import.objects);
    writeXml(target, import.objects, options.result);
    return failed ? Failed : Done;
}

QString outcome(const JobResult& result, const QString& target)
{
    if (!result.exited())
        return result.trouble(QStringLiteral("обработка"));
    return result.status == Done ? QStringLiteral("записано в %1").arg(target)
                                 : QStringLiteral("с ошибками");
}

/// Every file in a process of its own: what goes wrong with one costs only that one.
ExitStatus convertFiles(const ConvertOptions& options)
{
    OutputFile::checkPlace(options.targets.first());
    QList<QStringList> argumentLists;
    for (int i = 0; i < options.tasks.size(); ++i) {
        argumentLists.append(QStringList{ QStringLiteral("convert") } + options.forwarded
            + QStringList{ QStringLiteral("--output=") + options.targets.at(i),
                QStringLiteral("--"), options.tasks.at(i).fileName() });
    }
    int failures = 0;
    runJobs(
        argumentLists, options.jobs, [&](int index, const JobResult& result, Progress& progress) {
            progress.print(result.errors);
            progress.print(options.tasks.at(index).fileName() + QStringLiteral(": ")
                + outcome(result, options.targets.at(index)));
            failures += !result.exited() || result.status != Done ? 1 : 0;
        });
    printError(QStringLiteral("Всего файлов: %1, записано: %2, с ошибками: %3")
                   .arg(options.tasks.size())
                   .arg(options.tasks.size() - failures)
                   .arg(failures));
    return failures == 0 ? Done : Failed;
}

ExitStatus runConvert(const QCommandLineParser& parser)
{
    const ConvertOptions options = readConvertOptions(parser);
    return options.tasks.size() == 1 ? convertFile(options) : convertFiles(options);
}

} // namespace

const Command convertCommand{ "convert", "ФАЙЛ... [-o ФАЙЛ | --out-dir ПАПКА] [параметры]",
    "Записать результат импорта в XML.", convertCommandLineOptions, runConvert, false };
