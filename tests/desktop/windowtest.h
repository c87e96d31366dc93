#pragma once

#include "mainwindow.h"
#include "support/stricttest.h"
#include "support/tempfiles.h"

#include <QAction>
#include <QStringList>

#include <functional>
#include <memory>

/// The base of tests of the window: each test function has a window of its own with the plug-in,
/// settings of its own and a folder of files.
class WindowTest : public StrictTest {
    Q_OBJECT

protected:
    template <typename Widget>
    Widget& widget(const char* name)
    {
        auto* found = m_window->findChild<Widget*>(QLatin1String(name));
        if (!found)
            qFatal("No widget %s", name);
        return *found;
    }
    void trigger(const char* action) { widget<QAction>(action).trigger(); }
    /// Opens files, each through the dialog; waits until all have been taken.
    void open(const QStringList& files);
    /// Opens the three squares.
    void openSquares();
    /// Writes a drawing of three squares of ten units, "А", "Б" and once more "А".
    QString squares(const char* name = "squares");
    /// The designations in the table of objects.
    QStringList shownObjects();

    std::unique_ptr<TempFiles> m_files;
    std::unique_ptr<PluginHost> m_host;
    std::unique_ptr<MainWindow> m_window;

private slots:
    void init();
    void cleanup();
};

/// A square of ten units as a region of a MIF file; its lower left corner is given.
QByteArray square(int x, int y);

/// Runs the event loop until the condition holds; false when it does not within a minute.
bool waitFor(const std::function<bool()>& condition);

/// Whether the program is there that reads files of other formats.
bool hasOgr();

/// The text of a PDF file; ends the program when there is none.
QString textOfPdf(const QString& fileName);
