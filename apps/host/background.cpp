#include "background.h"

#include "plaintext.h"
#include "status.h"

#include <QEventLoop>
#include <QFutureInterface>
#include <QFutureWatcher>
#include <QLabel>
#include <QProgressDialog>
#include <QRunnable>
#include <QThreadPool>
#include <QTimer>

#include <memory>
#include <utility>

namespace {

constexpr int unshownMs = 300;

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
    explicit Task(BackgroundWork work)
        : m_work(std::move(work))
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
    const std::shared_ptr<std::atomic_bool> cancelled = task->cancelFlag();
    const QFuture<void> future = task->future();
    QFutureWatcher<void> watcher;
    QEventLoop loop;
    QObject::connect(&watcher, &QFutureWatcher<void>::finished, &loop, &QEventLoop::quit);
    watcher.setFuture(future);
    pool().start(task);
    // Short work shows no window, and nothing else is begun beside it.
    QTimer::singleShot(unshownMs, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (future.isFinished())
        return true;
    // No bar can tell how far the work is; one that moves tells that it goes on.
    QProgressDialog progress({}, QStringLiteral("Отмена"), 0, 0, parent);
    auto* shown = plainLabel(label);
    shown->setAlignment(Qt::AlignCenter);
    progress.setLabel(shown);
    progress.setWindowModality(Qt::WindowModal);
    QObject::connect(&progress, &QProgressDialog::canceled, &loop, &QEventLoop::quit);
    progress.show();
    loop.exec();
    if (future.isFinished() && !progress.wasCanceled())
        return true;
    // The program may be about to end, too.
    *cancelled = true;
    return false;
}

void finishBackgroundWork()
{
    pool().waitForDone();
}
