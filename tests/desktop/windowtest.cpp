#include "windowtest.h"

#include "objectsmodel.h"
#include "support/miftext.h"
#include "windowdriver.h"

#include <QApplication>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QTableView>
#include <QTest>
#include <QTextBrowser>

namespace {

constexpr int patienceMs = 60000;

} // namespace

void WindowTest::init()
{
    // File dialogs of a desktop are not ours to drive.
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    // No printer of this machine has to do with it.
    qputenv("CUPS_SERVER", "localhost:1");
    m_files = std::make_unique<TempFiles>();
    QSettings::setPath(
        QSettings::NativeFormat, QSettings::UserScope, m_files->path(QStringLiteral("settings")));
    QSettings().clear();
    m_host = std::make_unique<PluginHost>();
    QVERIFY2(m_host->load(QStringLiteral(PLUGIN_PATH)), qPrintable(m_host->errorString()));
    m_window = std::make_unique<MainWindow>(*m_host);
    m_window->resize(1100, 720);
    m_window->show();
    // The window manager may still be starting.
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get(), patienceMs));
}

void WindowTest::cleanup()
{
    m_window.reset();
    m_host.reset();
    m_files.reset();
}

QString WindowTest::squares(const char* name)
{
    const QString file = QLatin1String(name);
    m_files->write(file + QStringLiteral(".mid"), QByteArray("\"\xC0\"\n\"\xC1\"\n\"\xC0\"\n"));
    return m_files->write(
        file + QStringLiteral(".mif"), mif(square(0, 0) + square(20, 0) + square(0, 20)));
}

void WindowTest::open(const QStringList& files)
{
    int taken = 0;
    std::function<void(QDialog&)> drive = [&](QDialog& dialog) {
        ++taken;
        if (taken < files.size())
            whenDialogRuns(drive);
        startAndAccept(dialog);
    };
    whenDialogRuns(drive);
    const int before = m_window->document().undoStack().index();
    m_window->openFiles(files);
    QVERIFY(
        waitFor([&] { return m_window->document().undoStack().index() == before + files.size(); }));
    // The check of the last file comes after.
    QVERIFY(waitFor([&] {
        return widget<QTextBrowser>("diagnosisText")
            .toPlainText()
            .contains(QFileInfo(files.last()).fileName());
    }));
}

void WindowTest::openSquares()
{
    open({ squares() });
}

QStringList WindowTest::shownObjects()
{
    const QAbstractItemModel& model = *widget<QTableView>("objects").model();
    QStringList defs;
    for (int row = 0; row < model.rowCount(); ++row)
        defs.append(model.index(row, ObjectsModel::Designation).data().toString());
    return defs;
}

QByteArray square(int x, int y)
{
    const auto place = [](int right, int up) {
        return QByteArray::number(right) + ' ' + QByteArray::number(up) + '\n';
    };
    return "Region 1\n  5\n" + place(x, y) + place(x + 10, y) + place(x + 10, y + 10)
        + place(x, y + 10) + place(x, y);
}

bool waitFor(const std::function<bool()>& condition)
{
    return QTest::qWaitFor(condition, patienceMs);
}

bool hasOgr()
{
    return !QStandardPaths::findExecutable(QStringLiteral("ogr2ogr")).isEmpty();
}

QString textOfPdf(const QString& fileName)
{
    QProcess reader;
    reader.start(QStringLiteral("pdftotext"),
        { QStringLiteral("-layout"), QStringLiteral("-enc"), QStringLiteral("UTF-8"), fileName,
            QStringLiteral("-") });
    if (!reader.waitForFinished(patienceMs) || reader.exitCode() != 0)
        qFatal("pdftotext fails");
    return QString::fromUtf8(reader.readAllStandardOutput());
}
