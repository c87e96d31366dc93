#include "commands.h"
#include "fileprogress.h"
#include "importarguments.h"
#include "outputfile.h"
#include "prepare/foreignfile.h"
#include "prepare/reporttext.h"
#include "preparearguments.h"
#include "preparefile.h"
#include "targets.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

namespace {

QList<QCommandLineOption> prepareCommandLineOptions()
{
    return QList<QCommandLineOption>{
        { { QStringLiteral("o"), QStringLiteral("output") },
            QStringLiteral("Куда записать файл; «-» - стандартный вывод (только DXF)."),
            QStringLiteral("ФАЙЛ") },
        { QStringLiteral("out-dir"),
            QStringLiteral(
                "Папка, в которую файлы записываются под своими именами; создаётся, если "
                "её нет."),
            QStringLiteral("ПАПКА") },
        { QStringLiteral("json"), QStringLiteral("Отчёт в виде JSON на стандартный вывод.") },
        { { QStringLiteral("q"), QStringLiteral("quiet") },
            QStringLiteral("Сообщать только об ошибках.") },
    }
    + preparationOptions();
}

QList<QCommandLineOption> prepareInputOptions()
{
    return QList<QCommandLineOption>{
        { QStringLiteral("encoding"),
            QStringLiteral(
                "Кодировка копий; auto или без параметра - та же, что у исходных файлов."),
            QStringLiteral("ИМЯ") },
    }
    + inputFileOptions();
}

QStringList readCopyTargets(const QCommandLineParser& parser, const QVector<InputFile>& files)
{
    const QString output = parser.value(QStringLiteral("output"));
    const QString folder = parser.value(QStringLiteral("out-dir"));
    if (parser.isSet(QStringLiteral("output")) && files.size() > 1)
        throw Failure{ WrongUsage, QStringLiteral("для нескольких файлов укажите --out-dir") };
    if (output.isEmpty() == folder.isEmpty())
        throw Failure{ WrongUsage, QStringLiteral("укажите -o ФАЙЛ или --out-dir ПАПКА") };
    if (!output.isEmpty())
        return { output };
    QVector<ResultInFolder> results;
    for (const InputFile& file : files)
        results.append({ file.name, file.subfolder, file.format->suffix });
    return targetsIn(folder, results);
}

/// Refuses targets that cannot hold what becomes of the file.
void checkKind(const PrepareTask& task, const QCommandLineParser& parser)
{
    if (task.isForeign && parser.isSet(QStringLiteral("output"))
        && formatOfFile(task.target) != task.format)
        throw Failure{ WrongUsage,
            QStringLiteral("%1: из этого файла получается MIF; укажите -o ФАЙЛ.mif")
                .arg(task.fileName) };
    if (task.target == standardOutput && (task.isMif() || parser.isSet(QStringLiteral("json"))))
        throw Failure{ WrongUsage,
            QStringLiteral("на стандартный вывод можно записать только один DXF, без --json") };
}

QVector<PrepareTask> readTasks(const QCommandLineParser& parser)
{
    const QVector<InputFile> files = readInputFiles(parser, prep::formatOfForeignFile);
    const QStringList targets = readCopyTargets(parser, files);
    QVector<PrepareTask> tasks;
    QVector<TargetClaim> claims;
    for (int i = 0; i < files.size(); ++i) {
        const InputFile& file = files.at(i);
        const bool isForeign =
            !parser.isSet(QStringLiteral("format")) && prep::formatOfForeignFile(file.name);
        const PrepareTask task{ file.name, file.format, isForeign, targets.at(i) };
        checkKind(task, parser);
        tasks.append(task);
        claims.append(task.claim());
    }
    checkTargets(claims);
    return tasks;
}

void tell(const PrepareTask& task, const prep::PrepareReport& report)
{
    for (const QString& line : prep::reportLines(report, OutputFile::shownName(task.target)))
        printMessage(task.fileName, line);
}

ExitStatus runPrepare(const QCommandLineParser& parser)
{
    prep::PrepareOptions options = readPreparationOptions(parser);
    options.encoding = readCodec(parser, "encoding");
    const QVector<PrepareTask> tasks = readTasks(parser);
    if (parser.isSet(QStringLiteral("out-dir"))) {
        for (const PrepareTask& task : tasks)
            makeFoldersOf({ task.target });
    }
    const bool quiet = parser.isSet(QStringLiteral("quiet"));
    QJsonArray answers;
    ExitStatus status = Done;
    FileProgress progress(quiet);
    for (const PrepareTask& task : tasks) {
        progress.startFiles({ task.fileName });
        prep::PrepareReport report;
        try {
            report = prepareFile(task, options, FileProgress::countObject);
        } catch (const Failure& failure) {
            report.failure = failure.text;
            status = Failed;
        }
        if (!quiet || !report.failure.isEmpty())
            tell(task, report);
        if (report.hasLosses() && status == Done)
            status = Found;
        answers.append(prep::reportJson(report, task.fileName, task.target));
    }
    if (parser.isSet(QStringLiteral("json")))
        writeJson(answers);
    return status;
}

} // namespace

const Command prepareCommand{ "prepare", "ФАЙЛ... -o ФАЙЛ | --out-dir ПАПКА [параметры]",
    "Записать копию файла, которая читается целиком.", prepareCommandLineOptions,
    prepareInputOptions, runPrepare, false };
