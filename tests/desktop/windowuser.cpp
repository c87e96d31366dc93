// The user of the program importgeometry-host, inside of it: a generic plug-in of Qt, which the
// program loads when QT_QPA_GENERIC_PLUGINS says so. It does what the environment variable
// WINDOW_USER tells, step by step: "objects=N" waits until the window shows so many, "told=N" until
// so many messages have come, any other word is an action of a menu. What messages say is printed;
// dialogs of the import plug-in are started and accepted. After the last step the state of the
// window is printed, and the program quit.

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QGenericPlugin>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int patienceMs = 60000;

void print(const QString& line)
{
    std::printf("%s\n", qUtf8Printable(line));
    std::fflush(stdout);
}

class User : public QObject {
public:
    User()
        : m_steps(QString::fromUtf8(qgetenv("WINDOW_USER")).split(QLatin1Char(' ')))
    {
        m_steps.append(QStringLiteral("quit"));
        m_elapsed.start();
        startTimer(5);
    }

protected:
    void timerEvent(QTimerEvent*) override
    {
        if (m_elapsed.hasExpired(patienceMs))
            qFatal("The user waits in vain");
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
            drive(*dialog);
        else if (auto* window = shownWindow())
            step(*window);
    }

private:
    static QMainWindow* shownWindow()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* window = qobject_cast<QMainWindow*>(widget);
            if (window && window->isVisible())
                return window;
        }
        return nullptr;
    }

    /// A click may open the next dialog: it must not hold up the timer.
    static void clickLater(QAbstractButton& button)
    {
        QTimer::singleShot(0, &button, &QAbstractButton::click);
    }

    void drive(QDialog& dialog)
    {
        if (&dialog == m_driven || qobject_cast<QProgressDialog*>(&dialog))
            return;
        m_driven = &dialog;
        if (auto* box = qobject_cast<QMessageBox*>(&dialog)) {
            ++m_told;
            print(QStringLiteral("%1: %2").arg(box->windowTitle(), box->text()));
            auto* discard = box->button(QMessageBox::Discard);
            clickLater(discard ? *discard : *box->buttons().first());
            return;
        }
        print(QStringLiteral("dialog: %1").arg(dialog.windowTitle()));
        clickLater(*dialog.findChild<QAbstractButton*>(QStringLiteral("startButton")));
        clickLater(*dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))
                        ->button(QDialogButtonBox::Ok));
    }

    void step(QMainWindow& window)
    {
        if (m_steps.isEmpty())
            return;
        const auto* objects = window.findChild<QTableView*>(QStringLiteral("objects"));
        const int count = objects->model()->rowCount();
        const QString next = m_steps.first();
        const QString word = next.section(QLatin1Char('='), 0, 0);
        const int number = next.section(QLatin1Char('='), 1).toInt();
        const bool isWait = word == QLatin1String("objects") || word == QLatin1String("told");
        if (isWait && number != (word == QLatin1String("told") ? m_told : count))
            return;
        m_steps.removeFirst();
        if (isWait || word.isEmpty())
            return;
        if (m_steps.isEmpty())
            print(QStringLiteral("window: %1, objects: %2").arg(window.windowTitle()).arg(count));
        auto* action = window.findChild<QAction*>(word);
        if (!action)
            qFatal("No action %s", qUtf8Printable(word));
        QTimer::singleShot(0, action, &QAction::trigger);
    }

    QStringList m_steps;
    int m_told = 0;
    QPointer<const QDialog> m_driven;
    QElapsedTimer m_elapsed;
};

} // namespace

class WindowUserPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "windowuser.json")

public:
    QObject* create(const QString&, const QString&) override { return new User; }
};

#include "windowuser.moc"
