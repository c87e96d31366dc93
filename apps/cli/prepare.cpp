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

QString targetOf(
    const PrepareTask& task, const QString& subfolder, const QCommandLineParser& parser)
{
    QString output = parser.value(QStringLiteral("output"));
    const QString folder = parser.value(QStringLiteral("out-dir"));
    if (output.isEmpty() == folder.isEmpty())
        throw Failure{ WrongUsage, QStringLiteral("укажите -o ФАЙЛ или --out-dir ПАПКА") };
    if (output.isEmpty()) {
        return QDir(placeIn(folder, subfolder))
            .filePath(QFileInfo(task.fileName).completeBaseName() + QLatin1Char('.')
                + task.format->suffix);
    }
    if (task.isForeign && formatOfFile(output) != task.format)
        throw Failure{ WrongUsage,
            QStringLiteral("%1: из этого файла получается MIF; укажите -o ФАЙЛ.mif")
                .arg(task.fileName) };
    return output;
}

QVector<PrepareTask> readTasks(const QCommandLineParser& parser)
{
    const QVector<InputFile> files = readInputFiles(parser, prep::formatOfForeignFile);
    if (files.size() > 1 && parser.isSet(QStringLiteral("output")))
        throw Failure{ WrongUsage, QStringLiteral("для нескольких файлов укажите --out-dir") };
    QVector<PrepareTask> tasks;
    QVector<TargetClaim> claims;
    for (const InputFile& file : files) {
        const bool isForeign =
            !parser.isSet(QStringLiteral("format")) && prep::formatOfForeignFile(file.name);
        PrepareTask task{ file.name, file.format, isForeign, {} };
        task.target = targetOf(task, file.subfolder, parser);
        if (task.target == standardOutput
            && (task.isMif() || parser.isSet(QStringLiteral("json")))) {
            throw Failure{ WrongUsage,
                QStringLiteral("на стандартный вывод можно записать только один DXF, без --json") };
        }
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
