// The user of the host that docs/host-integration.md shows: linked to it, chooses its first
// operation, imports the file that MINIMAL_HOST_FILE names, and prints what its window says.

#include "support/dialogdriver.h"

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTimer>

#include <cstdio>

namespace {

QMainWindow& mainWindow()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<QMainWindow*>(widget))
            return *window;
    }
    qFatal("The host has no window");
}

void importAndPrint()
{
    const QMainWindow& window = mainWindow();
    const QList<QAction*> operations = window.menuBar()->actions().constFirst()->menu()->actions();
    driveModal([](QDialog& dialog) {
        type(dialog, "objectFileNameEdit", qEnvironmentVariable("MINIMAL_HOST_FILE"));
        type(dialog, "encodingCombo", QStringLiteral("UTF-8"));
        click(dialog, "startButton");
        clickOk(dialog);
    });
    operations.constFirst()->trigger();
    std::fputs(qUtf8Printable(window.findChild<QPlainTextEdit*>()->toPlainText()), stdout);
    QCoreApplication::quit();
}

void waitForTheWindow()
{
    QTimer::singleShot(0, importAndPrint);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(waitForTheWindow)
