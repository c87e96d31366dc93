#include "commands.h"
#include "fileprogress.h"
#include "outputfile.h"
#include "prepare/foreignfile.h"
#include "prepare/reporttext.h"
#include "preparearguments.h"
#include "preparefile.h"
#include "standardinput.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

namespace {

const QString standardOutput = QStringLiteral("-");

QList<QCommandLineOption> prepareCommandLineOptions()
{
    return QList<QCommandLineOption>{
        { { QStringLiteral("o"), QStringLiteral("output") },
            QStringLiteral("Куда записать файл; «-» - стандартный вывод (только DXF)."),
            QStringLiteral("ФАЙЛ") },
        { QStringLiteral("out-dir"),
            QStringLiteral("Папка, в которую файлы записываются под своими именами."),
            QStringLiteral("ПАПКА") },
        { QStringLiteral("json"), QStringLiteral("Отчёт в виде JSON на стандартный вывод.") },
    }
    + preparationOptions();
}

PrepareTask taskOf(const QString& fileName, const QCommandLineParser& parser)
{
    const QString id = parser.value(QStringLiteral("format")).toLower();
    const Format* const foreign = id.isEmpty() ? prep::formatOfForeignFile(fileName) : nullptr;
    const Format* const own = id.isEmpty() ? formatOfFile(fileName) : formatOfId(id);
    if (foreign || own)
        return { fileName, foreign ? foreign : own, foreign != nullptr, {} };
    throw Failure{ WrongUsage,
        QStringLiteral("%1: формат по расширению не определить; укажите --format mif или dxf")
            .arg(fileName) };
}

QString targetOf(const PrepareTask& task, const QCommandLineParser& parser)
{
    QString output = parser.value(QStringLiteral("output"));
    const QString folder = parser.value(QStringLiteral("out-dir"));
    if (output.isEmpty() == folder.isEmpty())
        throw Failure{ WrongUsage, QStringLiteral("укажите -o ФАЙЛ или --out-dir ПАПКА") };
    if (output.isEmpty()) {
        return QDir(folder).filePath(
            QFileInfo(task.fileName).completeBaseName() + QLatin1Char('.') + task.format->suffix);
    }
    if (task.isForeign && formatOfFile(output) != task.format)
        throw Failure{ WrongUsage,
            QStringLiteral("%1: из этого файла получается MIF; укажите -o ФАЙЛ.mif")
                .arg(task.fileName) };
    return output;
}

QVector<PrepareTask> readTasks(const QCommandLineParser& parser)
{
    const QStringList files = parser.positionalArguments();
    if (files.size() > 1 && parser.isSet(QStringLiteral("output")))
        throw Failure{ WrongUsage, QStringLiteral("для нескольких файлов укажите --out-dir") };
    QVector<PrepareTask> tasks;
    QVector<TargetClaim> claims;
    for (const QString& file : files) {
        PrepareTask task = taskOf(inputFileName(file), parser);
        task.target = targetOf(task, parser);
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

ExitStatus runPrepare(const QCommandLineParser& parser)
{
    prep::PrepareOptions options = readPreparationOptions(parser);
    options.encoding = readCodec(parser, "encoding");
    const QVector<PrepareTask> tasks = readTasks(parser);
    QJsonArray answers;
    ExitStatus status = Done;
    FileProgress progress(false);
    for (const PrepareTask& task : tasks) {
        progress.startFiles({ task.fileName });
        prep::PrepareReport report;
        try {
            report = prepareFile(task, options);
        } catch (const Failure& failure) {
            report.failure = failure.text;
            status = Failed;
        }
        for (const QString& line : prep::reportLines(report, task.target))
            printMessage(task.fileName, line);
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
    "Записать копию файла, которая читается целиком.", prepareCommandLineOptions, runPrepare,
    false };
