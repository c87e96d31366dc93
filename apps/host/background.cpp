#include "background.h"

#include "status.h"

#include <QEventLoop>
#include <QFutureInterface>
#include <QFutureWatcher>
#include <QProgressDialog>
#include <QRunnable>
#include <QThreadPool>

#include <memory>

namespace {

/// One after the other: an import tells its messages through one function of the process.
QThreadPool& pool()
{
    static QThreadPool threads;
    threads.setMaxThreadCount(1);
    return threads;
}

/// A piece of work, and the news of its end.
class Task : public QRunnable {
public:
    explicit Task(const BackgroundWork& work)
        : m_work(work)
    {
        m_state.reportStarted();
    }
    void run() override
    {
        if (!*m_cancelled)
            guarded([this] { m_work(*m_cancelled); });
        m_state.reportFinished();
    }
    QFuture<void> future() { return m_state.future(); }
    /// Set from outside, when the task itself may be gone.
    std::shared_ptr<std::atomic_bool> cancelFlag() const { return m_cancelled; }

private:
    const BackgroundWork m_work;
    const std::shared_ptr<std::atomic_bool> m_cancelled = std::make_shared<std::atomic_bool>(false);
    QFutureInterface<void> m_state;
};

} // namespace

bool runWithProgress(QWidget* parent, const QString& label, const BackgroundWork& work)
{
    auto* task = new Task(work);
    QFutureWatcher<void> watcher;
    QEventLoop loop;
    const std::shared_ptr<std::atomic_bool> cancelled = task->cancelFlag();
    // No bar can tell how far the work is; one that moves tells that it goes on.
    QProgressDialog progress(label, QStringLiteral("Отмена"), 0, 0, parent);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(400);
    QObject::connect(&progress, &QProgressDialog::canceled, &loop, [&] {
        *cancelled = true;
        loop.quit();
    });
    QObject::connect(&watcher, &QFutureWatcher<void>::finished, &loop, &QEventLoop::quit);
    QFuture<void> future = task->future();
    watcher.setFuture(future);
    pool().start(task);
    if (!future.isFinished())
        loop.exec(QEventLoop::AllEvents);
    return !*cancelled;
}

void finishBackgroundWork()
{
    pool().waitForDone();
}
