#include "windowdriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

namespace {

constexpr int patienceMs = 60000;

class Watch : public QObject {
public:
    explicit Watch(const std::function<void(QDialog&)>& drive)
        : QObject(qApp)
        , m_drive(drive)
    {
        m_elapsed.start();
        startTimer(5);
    }

protected:
    void timerEvent(QTimerEvent*) override
    {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || qobject_cast<QProgressDialog*>(dialog)) {
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
    const std::function<void(QDialog&)> m_drive;
    QElapsedTimer m_elapsed;
};

} // namespace

void whenDialogRuns(const std::function<void(QDialog&)>& drive)
{
    new Watch(drive);
}

void startAndAccept(QDialog& dialog)
{
    auto* start = dialog.findChild<QAbstractButton*>(QStringLiteral("startButton"));
    auto* buttons = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    if (!start || !buttons)
        qFatal("This is not the dialog of the plug-in");
    start->click();
    buttons->button(QDialogButtonBox::Ok)->click();
}
