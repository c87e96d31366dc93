#include "jobs.h"

#include "console.h"
#include "importarguments.h"
#include "interrupt.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QEventLoop>
#include <QProcess>
#include <QSocketNotifier>

#include <cstdio>
#include <memory>
#include <vector>

#include <unistd.h>

namespace {

/// The processes of one runJobs().
class JobPool {
public:
    JobPool(const QList<QStringList>& argumentLists, const JobReceiver& receiver)
        : m_argumentLists(argumentLists)
        , m_receiver(receiver)
        , m_progress(argumentLists.size())
    {
    }

    void run(int jobCount)
    {
        QSocketNotifier interrupt(Interrupt::descriptor(), QSocketNotifier::Read);
        QObject::connect(&interrupt, &QSocketNotifier::activated, &m_loop, [&] { stop(); });
        while (m_running < jobCount && startNext()) { }
        if (m_running > 0)
            m_loop.exec();
    }

private:
    bool startNext()
    {
        if (m_next == m_argumentLists.size() || Interrupt::requested())
            return false;
        const int index = m_next++;
        m_processes.push_back(std::make_unique<QProcess>());
        QProcess* const process = m_processes.back().get();
        QObject::connect(process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
            &m_loop, [this, process, index] { finish(process, index); });
        QObject::connect(
            process, &QProcess::errorOccurred, &m_loop, [this, process, index](auto error) {
                if (error == QProcess::FailedToStart)
                    finish(process, index);
            });
        ++m_running;
        process->setStandardInputFile(QProcess::nullDevice());
        process->start(QCoreApplication::applicationFilePath(), m_argumentLists.at(index));
        return true;
    }

    void finish(QProcess* process, int index)
    {
        --m_running;
        if (!Interrupt::requested()) {
            m_progress.advance();
            m_receiver(index,
                JobResult{ process->error() == QProcess::FailedToStart
                        || process->exitStatus() == QProcess::CrashExit,
                    process->exitCode(), process->readAllStandardOutput(),
                    process->readAllStandardError() },
                m_progress);
        }
        startNext();
        if (m_running == 0)
            m_loop.quit();
    }

    void stop()
    {
        for (const auto& process : m_processes)
            process->terminate();
    }

    const QList<QStringList>& m_argumentLists;
    const JobReceiver& m_receiver;
    Progress m_progress;
    QEventLoop m_loop;
    std::vector<std::unique_ptr<QProcess>> m_processes;
    int m_next = 0;
    int m_running = 0;
};

} // namespace

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
    for (const QCommandLineOption& option : options + importCommandLineOptions()) {
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
        JobPool(argumentLists, receiver).run(jobCount);
    }
    Interrupt::obey();
}
