#include "checkoutput.h"
#include "commands.h"
#include "fileprogress.h"
#include "importarguments.h"
#include "jobs.h"
#include "losses.h"
#include "reportjson.h"
#include "reporttext.h"
#include "standardinput.h"
#include "survey/report.h"

#include <QCommandLineParser>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

#include <unistd.h>

namespace {

QList<QCommandLineOption> checkCommandLineOptions()
{
    return {
        { QStringLiteral("json"), QStringLiteral("Ответ одним документом JSON.") },
        { QStringLiteral("json-lines"),
            QStringLiteral("Ответ строками JSON, по мере проверки файлов.") },
        { QStringLiteral("summary"),
            QStringLiteral("Только число файлов и замечаний по каждой причине.") },
        { QStringLiteral("all"), QStringLiteral("Показать все замечания, а не по десять.") },
        { QStringLiteral("explain"),
            QStringLiteral("Рассказать о причине и закончить работу; all - обо всех."),
            QStringLiteral("ПРИЧИНА") },
        { { QStringLiteral("q"), QStringLiteral("quiet") },
            QStringLiteral("Не сообщать, сколько файлов проверено.") },
        jobsOption(),
        columnsOption(),
    };
}

/// What the command line asks for.
struct CheckOptions {
    QVector<ImportTask> tasks;
    GeometryInfo columns;
    CheckForm form = CheckForm::Text;
    int mostListed = listedFindings;
    bool quiet = false;
    int jobs = 1;
    QStringList forwarded; ///< the options that each process for one file gets
};

CheckForm readForm(const QCommandLineParser& parser)
{
    static constexpr struct {
        const char* option;
        CheckForm form;
    } forms[] = { { "json", CheckForm::Json }, { "json-lines", CheckForm::JsonLines },
        { "summary", CheckForm::Summary } };
    CheckForm found = CheckForm::Text;
    for (const auto& row : forms) {
        if (!parser.isSet(QLatin1String(row.option)))
            continue;
        if (found != CheckForm::Text)
            throw Failure{ WrongUsage,
                QStringLiteral("--json, --json-lines и --summary вместе не указывают") };
        found = row.form;
    }
    return found;
}

CheckOptions readCheckOptions(const QCommandLineParser& parser)
{
    const QString jobs = QStringLiteral("jobs");
    CheckOptions options;
    options.tasks = readImportTasks(parser);
    options.columns = readColumns(parser);
    options.form = readForm(parser);
    options.mostListed = parser.isSet(QStringLiteral("all")) ? allFindings : listedFindings;
    options.quiet = parser.isSet(QStringLiteral("quiet"));
    options.jobs = readNumber(parser, jobs, 1, maxJobs);
    keepToOneJob(parser, options.tasks);
    options.forwarded = forwardedArguments(parser, checkCommand.options(),
        { jobs, QStringLiteral("json"), QStringLiteral("json-lines"), QStringLiteral("summary"),
            QStringLiteral("recursive") });
    // Jobs that run side by side keep to one processor each.
    if (parser.isSet(jobs))
        options.forwarded.append(QStringLiteral("--jobs=1"));
    return options;
}

ExitStatus checkFile(ImportTask task, const CheckOptions& options)
{
    FileProgress progress(options.quiet);
    spoolStandardInput(task.fileName());
    progress.startFiles(filesOf(*task.format, task.options));
    resolveEncoding(task, Telling{ true, false, false });
    // The process ends with this file: what was read is not freed vertex by vertex before.
    static auto* const import = new ImportRun;
    const Report report =
        makeReport(*task.format, task.options, options.columns, options.mostListed, *import);
    if (report.unreadable)
        printMessage(task.fileName(), report.messages.value(0).text);
    CheckOutput out(options.form, 1);
    if (options.form != CheckForm::Text)
        out.add(reportJson(report), {});
    else if (!report.unreadable)
        out.add({}, reportText(report, mayBeColoured(STDOUT_FILENO)));
    out.finish();
    if (report.unreadable)
        return Failed;
    return report.findingCount() > 0 ? Found : Done;
}

/// Hands over the answers in the order of the files, each as soon as those before it are out.
class OrderedAnswers {
public:
    OrderedAnswers(CheckOutput& out, bool asText)
        : m_out(out)
        , m_asText(asText)
    {
    }

    void add(int index, const QByteArray& answer)
    {
        m_waiting.insert(index, answer);
        while (m_waiting.contains(m_next))
            handOver(m_waiting.take(m_next++));
    }

private:
    void handOver(const QByteArray& answer)
    {
        if (m_asText)
            m_out.add({}, QString::fromLocal8Bit(answer));
        else if (!answer.isEmpty())
            m_out.add(QJsonDocument::fromJson(answer).object(), {});
    }

    CheckOutput& m_out;
    bool m_asText;
    QHash<int, QByteArray> m_waiting;
    int m_next = 0;
};

ExitStatus checkFiles(const CheckOptions& options)
{
    const bool asText = options.form == CheckForm::Text;
    QList<QStringList> argumentLists;
    for (const ImportTask& task : options.tasks) {
        QStringList arguments = QStringList{ QStringLiteral("check") } + options.forwarded;
        if (!asText)
            arguments.append(QStringLiteral("--json-lines"));
        argumentLists.append(arguments + QStringList{ QStringLiteral("--"), task.fileName() });
    }
    CheckOutput out(options.form, options.tasks.size());
    OrderedAnswers answers(out, asText);
    int failures = 0;
    int found = 0;
    runJobs(
        argumentLists, options.jobs, [&](int index, const JobResult& result, Progress& progress) {
            progress.print(result.errors);
            if (!result.exited()) {
                progress.print(options.tasks.at(index).fileName() + QStringLiteral(": ")
                    + result.trouble(QStringLiteral("проверка")));
            }
            failures += !result.exited() || result.status == Failed ? 1 : 0;
            found += result.exited() && result.status == Found ? 1 : 0;
            answers.add(index, result.output);
        });
    out.finish();
    if (!options.quiet)
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

const Command checkCommand{ "check", "ФАЙЛ... [--json | --summary] [параметры]",
    "Проверить файлы и объяснить, что в них не так.", checkCommandLineOptions,
    importCommandLineOptions, runCheck, false };
