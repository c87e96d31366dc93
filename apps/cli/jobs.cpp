#include "jobs.h"

#include "console.h"
#include "importarguments.h"
#include "interrupt.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QEventLoop>
#include <QProcess>
#include <QSocketNotifier>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

/// What starting a process opens: the null device, three pipes and a descriptor of the process.
constexpr int filesOfProcess = 8;

/// Whether a process that nobody has waited for yet is a child of this one.
bool isChild(qint64 process)
{
    siginfo_t info{};
    return process > 0
        && waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

/// The processes of one runJobs().
class JobPool {
public:
    JobPool(const QList<QStringList>& argumentLists, int jobCount, const JobReceiver& receiver)
        : m_argumentLists(argumentLists)
        , m_jobCount(static_cast<size_t>(jobCount))
        , m_receiver(receiver)
        , m_progress(argumentLists.size())
    {
    }

    void run()
    {
        QSocketNotifier interrupt(Interrupt::descriptor(), QSocketNotifier::Read);
        QObject::connect(&interrupt, &QSocketNotifier::activated, &m_loop, [&] {
            interrupt.setEnabled(false);
            stop();
        });
        startMore();
        if (!m_running.empty())
            m_loop.exec();
    }

private:
    struct Running {
        std::unique_ptr<QProcess> process;
        int index;
    };

    void startMore()
    {
        while (m_next < m_argumentLists.size() && m_running.size() < m_jobCount
            && !Interrupt::requested()) {
            if (!start(m_next)) {
                // There may be room for it when one of the others has ended.
                if (!m_running.empty())
                    return;
                handOver(m_next, JobResult{ JobResult::NotStarted, 0, {}, {} });
            }
            ++m_next;
        }
    }

    /// False when the machine has no room for another process.
    bool start(int index)
    {
        if (!canOpenFiles(filesOfProcess))
            return false;
        auto process = std::make_unique<QProcess>();
        process->setStandardInputFile(QProcess::nullDevice());
        process->start(QCoreApplication::applicationFilePath(), m_argumentLists.at(index));
        if (process->state() == QProcess::NotRunning)
            return false;
        if (!isChild(process->processId())) {
            // Qt takes a process that the system refused for a running one, whose number may be
            // anybody's: to delete the object would be to kill that one.
            static_cast<void>(process.release());
            return false;
        }
        QProcess* const started = process.get();
        QObject::connect(started, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
            &m_loop, [this, started] { finish(started); });
        QObject::connect(started, &QProcess::errorOccurred, &m_loop, [this, started](auto error) {
            if (error == QProcess::FailedToStart)
                finish(started);
        });
        m_running.push_back({ std::move(process), index });
        return true;
    }

    void finish(QProcess* process)
    {
        const auto found = std::find_if(m_running.begin(), m_running.end(),
            [process](const Running& running) { return running.process.get() == process; });
        if (found == m_running.end())
            return;
        const int index = found->index;
        // It is still telling of its end.
        found->process.release()->deleteLater();
        m_running.erase(found);
        if (!Interrupt::requested())
            handOver(index,
                JobResult{ endOf(*process), process->exitCode(), process->readAllStandardOutput(),
                    process->readAllStandardError() });
        startMore();
        if (m_running.empty())
            m_loop.quit();
    }

    static JobResult::End endOf(const QProcess& process)
    {
        if (process.error() == QProcess::FailedToStart)
            return JobResult::NotStarted;
        return process.exitStatus() == QProcess::CrashExit ? JobResult::Crashed : JobResult::Exited;
    }

    void handOver(int index, const JobResult& result)
    {
        m_progress.advance();
        m_receiver(index, result, m_progress);
    }

    void stop()
    {
        for (const Running& running : m_running)
            running.process->terminate();
    }

    const QList<QStringList>& m_argumentLists;
    const size_t m_jobCount;
    const JobReceiver& m_receiver;
    Progress m_progress;
    QEventLoop m_loop;
    std::vector<Running> m_running;
    int m_next = 0;
};

} // namespace

QCommandLineOption jobsOption()
{
    return { { QStringLiteral("j"), QStringLiteral("jobs") },
        QStringLiteral("Сколько файлов обрабатывать одновременно; -j без числа - по числу ядер; "
                       "без параметра - 1."),
        QStringLiteral("ЧИСЛО"), QStringLiteral("1") };
}

QString JobResult::trouble(const QString& work) const
{
    return end == NotStarted ? QStringLiteral("не хватает ресурсов, чтобы запустить процесс")
                             : work + QStringLiteral(" прервалась аварийно");
}

Progress::Progress(int total)
    : m_total(total)
    , m_isTerminal(isatty(STDERR_FILENO) == 1)
{
    show();
}

Progress::~Progress()
{
    hide();
}

void Progress::advance()
{
    ++m_done;
    show();
}

void Progress::print(const QString& line)
{
    hide();
    printError(line);
    show();
}

void Progress::print(const QByteArray& lines)
{
    hide();
    std::fwrite(lines.constData(), 1, static_cast<size_t>(lines.size()), stderr);
    show();
}

void Progress::show() const
{
    constexpr int width = 40;
    if (!m_isTerminal)
        return;
    const int filled = width * m_done / m_total;
    std::fprintf(stderr, "\r[%s%s] %d/%d", QByteArray(filled, '#').constData(),
        QByteArray(width - filled, '.').constData(), m_done, m_total);
}

void Progress::hide() const
{
    if (m_isTerminal)
        std::fputs("\r\033[K", stderr);
}

QStringList forwardedArguments(const QCommandLineParser& parser,
    const QList<QCommandLineOption>& options, const QStringList& leftOut)
{
    QStringList arguments;
    for (const QCommandLineOption& option : options) {
        const QString name = option.names().constLast();
        if (!parser.isSet(option) || leftOut.contains(name))
            continue;
        if (option.valueName().isEmpty())
            arguments.append(QStringLiteral("--") + name);
        for (const QString& value : parser.values(option))
            arguments.append(QStringLiteral("--%1=%2").arg(name, value));
    }
    return arguments;
}

void runJobs(const QList<QStringList>& argumentLists, int jobCount, const JobReceiver& receiver)
{
    {
        const Interrupt::Deferral deferral;
        JobPool(argumentLists, jobCount, receiver).run();
    }
    Interrupt::obey();
}
