#include "commands.h"
#include "importarguments.h"
#include "jobs.h"
#include "outputfile.h"
#include "reportjson.h"
#include "reporttext.h"
#include "standardinput.h"
#include "survey/report.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

QList<QCommandLineOption> checkCommandLineOptions()
{
    return {
        { QStringLiteral("json"), QStringLiteral("Ответ в виде JSON.") },
        { QStringLiteral("jobs"),
            QStringLiteral("Сколько файлов проверять одновременно; без параметра - 1."),
            QStringLiteral("ЧИСЛО"), QStringLiteral("1") },
        columnsOption(),
    };
}

/// What the command line asks for.
struct CheckOptions {
    QVector<ImportTask> tasks;
    GeometryInfo columns;
    bool json = false;
    int jobs = 1;
    QStringList forwarded; ///< the options that each process for one file gets
};

CheckOptions readCheckOptions(const QCommandLineParser& parser)
{
    const QString jobs = QStringLiteral("jobs");
    CheckOptions options;
    options.tasks = readImportTasks(parser);
    options.columns = readColumns(parser);
    options.json = parser.isSet(QStringLiteral("json"));
    options.jobs = readNumber(parser, jobs, 1, maxJobs);
    options.forwarded = forwardedArguments(parser, checkCommandLineOptions(), { jobs });
    return options;
}

void writeOut(const QByteArray& bytes)
{
    OutputFile out(QStringLiteral("-"));
    out.write(bytes);
    out.commit();
}

ExitStatus checkFile(const ImportTask& task, const CheckOptions& options)
{
    spoolStandardInput(task.fileName());
    const Report report = makeReport(*task.format, task.options, options.columns);
    if (report.unreadable)
        printMessage(task.fileName(), report.messages.value(0).text);
    if (options.json)
        writeJson({ reportJson(report) });
    else if (!report.unreadable)
        writeOut(reportText(report).toLocal8Bit());
    if (report.unreadable)
        return Failed;
    return report.findingCount() > 0 ? Found : Done;
}

QJsonArray mergeJson(const QVector<QByteArray>& outputs)
{
    QJsonArray merged;
    for (const QByteArray& output : outputs) {
        for (const auto& report : QJsonDocument::fromJson(output).array())
            merged.append(report);
    }
    return merged;
}

ExitStatus checkFiles(const CheckOptions& options)
{
    QList<QStringList> argumentLists;
    for (const ImportTask& task : options.tasks) {
        argumentLists.append(QStringList{ QStringLiteral("check") } + options.forwarded
            + QStringList{ QStringLiteral("--"), task.fileName() });
    }
    QVector<QByteArray> outputs(options.tasks.size());
    int failures = 0;
    int found = 0;
    runJobs(
        argumentLists, options.jobs, [&](int index, const JobResult& result, Progress& progress) {
            outputs[index] = result.output;
            progress.print(result.errors);
            if (!result.exited()) {
                progress.print(options.tasks.at(index).fileName() + QStringLiteral(": ")
                    + result.trouble(QStringLiteral("проверка")));
            }
            failures += !result.exited() || result.status == Failed ? 1 : 0;
            found += result.exited() && result.status == Found ? 1 : 0;
        });
    if (options.json) {
        writeJson(mergeJson(outputs));
    } else {
        QByteArray text;
        for (const QByteArray& output : qAsConst(outputs))
            text += output;
        writeOut(text);
    }
    printError(QStringLiteral("Всего файлов: %1, с замечаниями: %2, не проверено: %3")
                   .arg(options.tasks.size())
                   .arg(found)
                   .arg(failures));
    if (failures > 0)
        return Failed;
    return found > 0 ? Found : Done;
}

ExitStatus runCheck(const QCommandLineParser& parser)
{
    const CheckOptions options = readCheckOptions(parser);
    return options.tasks.size() == 1 ? checkFile(options.tasks.first(), options)
                                     : checkFiles(options);
}

} // namespace

const Command checkCommand{ "check", "ФАЙЛ... [--json] [параметры]",
    "Проверить файлы и объяснить, что в них не так.", checkCommandLineOptions, runCheck, false };
