#include "windowdriver.h"

#include "background.h"
#include "support/dialogdriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace {

constexpr int patienceMs = 60000;

class Watch : public QObject {
public:
    Watch(bool forProgress, const DriveDialog& drive)
        : QObject(qApp)
        , m_forProgress(forProgress)
        , m_drive(drive)
    {
        m_elapsed.start();
        startTimer(5);
    }

protected:
    void timerEvent(QTimerEvent*) override
    {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        const bool isProgress = qobject_cast<QProgressDialog*>(dialog) != nullptr;
        if (!dialog || isProgress != m_forProgress) {
            if (m_elapsed.hasExpired(patienceMs))
                qFatal("No dialog runs");
            return;
        }
        deleteLater();
        const auto drive = m_drive;
        // Others wait for the dialog, too, and were first.
        QTimer::singleShot(0, dialog, [dialog, drive] { drive(*dialog); });
    }

private:
    const bool m_forProgress;
    const DriveDialog m_drive;
    QElapsedTimer m_elapsed;
};

} // namespace

void whenDialogRuns(const DriveDialog& drive)
{
    new Watch(false, drive);
}

void whenDialogsRun(const QVector<DriveDialog>& drives)
{
    whenDialogRuns([drives](QDialog& dialog) {
        if (drives.size() > 1)
            whenDialogsRun(drives.mid(1));
        drives.first()(dialog);
    });
}

void whenProgressRuns(const std::function<void(const QString&)>& tell)
{
    new Watch(true, [tell](QDialog& dialog) {
        tell(static_cast<QProgressDialog&>(dialog).labelText());
        dialog.findChild<QPushButton*>()->click();
    });
}

void startAndAccept(QDialog& dialog)
{
    widget<QAbstractButton>(dialog, "startButton").click();
    widget<QDialogButtonBox>(dialog, "buttonBox").button(QDialogButtonBox::Ok)->click();
}

void cancel(QDialog& dialog)
{
    dialog.reject();
}

QFileDialog& asFileDialog(QDialog& dialog)
{
    auto* found = qobject_cast<QFileDialog*>(&dialog);
    if (!found)
        qFatal("This is not a file dialog: %s", qPrintable(dialog.windowTitle()));
    return *found;
}

DriveDialog choose(const QStringList& fileNames)
{
    return [fileNames](QDialog& dialog) {
        const QFileDialog& asked = asFileDialog(dialog);
        widget<QLineEdit>(dialog, "fileNameEdit")
            .setText(fileNames.size() == 1
                    ? fileNames.first()
                    : QStringLiteral("\"%1\"").arg(fileNames.join(QStringLiteral("\" \""))));
        widget<QDialogButtonBox>(dialog, "buttonBox")
            .button(asked.acceptMode() == QFileDialog::AcceptSave ? QDialogButtonBox::Save
                                                                  : QDialogButtonBox::Open)
            ->click();
    };
}

DriveDialog answer(QMessageBox::StandardButton button, QString* text)
{
    return [button, text](QDialog& dialog) {
        const auto* box = qobject_cast<QMessageBox*>(&dialog);
        if (!box || !box->button(button))
            qFatal("This message does not ask that: %s", qPrintable(dialog.windowTitle()));
        if (text)
            *text = box->text();
        box->button(button)->click();
    };
}

BusyThread::BusyThread(QWidget& window)
{
    whenProgressRuns([](const QString&) {});
    const auto end = m_end;
    runWithProgress(
        &window, QStringLiteral("занято"), [end](const std::atomic_bool&) { end->acquire(); });
}

BusyThread::~BusyThread()
{
    m_end->release();
    finishBackgroundWork();
}
