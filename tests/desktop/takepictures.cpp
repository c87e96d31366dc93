// Takes the pictures of the pages from the running program: `importgeometry-pictures FOLDER SAMPLES
// [dark]`. The scale is that of QT_SCALE_FACTOR.

#include "mainwindow.h"
#include "planwidget.h"
#include "windowdriver.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QLibraryInfo>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QStyleFactory>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <cstdio>

namespace {

QString folder;
QString samples;

void take(QWidget& widget, const char* name)
{
    QApplication::processEvents();
    QTest::qWait(100);
    const QString file = folder + QLatin1Char('/') + QLatin1String(name) + QStringLiteral(".png");
    if (!widget.grab().save(file))
        qFatal("cannot write %s", qPrintable(file));
}

void beDark()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(49, 54, 59));
    palette.setColor(QPalette::WindowText, QColor(239, 240, 241));
    palette.setColor(QPalette::Base, QColor(35, 38, 41));
    palette.setColor(QPalette::AlternateBase, QColor(49, 54, 59));
    palette.setColor(QPalette::Text, QColor(239, 240, 241));
    palette.setColor(QPalette::Button, QColor(49, 54, 59));
    palette.setColor(QPalette::ButtonText, QColor(239, 240, 241));
    palette.setColor(QPalette::ToolTipBase, QColor(49, 54, 59));
    palette.setColor(QPalette::ToolTipText, QColor(239, 240, 241));
    palette.setColor(QPalette::Highlight, QColor(61, 174, 233));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(61, 174, 233));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(130, 135, 140));
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(130, 135, 140));
    palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(130, 135, 140));
    palette.setColor(QPalette::PlaceholderText, QColor(150, 155, 160));
    QApplication::setPalette(palette);
}

/// Starts the import in the plug-in's dialog, takes its picture, and accepts.
void importShown(QDialog& dialog, const char* name)
{
    dialog.resize(620, 640);
    dialog.findChild<QPushButton*>(QStringLiteral("startButton"))->click();
    dialog.findChild<QTableView*>(QStringLiteral("tableView"))->resizeColumnsToContents();
    take(dialog, name);
    dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))
        ->button(QDialogButtonBox::Ok)
        ->click();
}

void open(MainWindow& window, const QString& file, const char* name)
{
    bool isDone = false;
    whenDialogRuns([&](QDialog& dialog) {
        importShown(dialog, name);
        isDone = true;
    });
    window.openFiles({ file });
    while (!isDone)
        QTest::qWait(20);
    QTest::qWait(200);
}

void takeAll(PluginHost& host)
{
    MainWindow window(host);
    window.resize(1200, 780);
    window.show();
    open(window, samples + QStringLiteral("/parcels.mif"), "dialog-mif");
    take(window, "window");
    auto* objects = window.findChild<QTableView*>(QStringLiteral("objects"));
    auto* plan = window.findChild<PlanWidget*>(QStringLiteral("plan"));
    objects->setCurrentIndex(objects->model()->index(32, 0));
    plan->fitSelection();
    take(window, "window-object");
    take(*plan, "window-plan");

    // A drawing as people have it: refused, explained, mended.
    QTemporaryDir own;
    // Pictures show names without the folders of this machine.
    const QString drawing = QStringLiteral("survey.dxf");
    QFile::copy(samples + QStringLiteral("/survey.dxf"), own.filePath(drawing));
    QDir::setCurrent(own.path());
    MainWindow other(host);
    other.resize(1200, 780);
    other.show();
    open(other, drawing, "dialog-refused");
    take(other, "diagnosis");
    auto* mend = other.findChild<QPushButton*>(QStringLiteral("mendButton"));
    bool isDone = false;
    whenDialogRuns([&](QDialog& dialog) {
        importShown(dialog, "dialog-dxf");
        isDone = true;
    });
    mend->click();
    while (!isDone)
        QTest::qWait(20);
    QTest::qWait(200);
    take(other, "mended");
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication app(argc, argv);
    if (argc < 3) {
        std::fputs("usage: importgeometry-pictures FOLDER SAMPLES [dark]\n", stderr);
        return 2;
    }
    folder = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
    samples = QString::fromLocal8Bit(argv[2]);
    QDir().mkpath(folder);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (argc > 3)
        beDark();
    QTranslator translator;
    if (translator.load(
            QStringLiteral("qtbase_ru"), QLibraryInfo::location(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&translator);
    QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    QApplication::setOrganizationName(QStringLiteral("importgeometry"));
    QApplication::setApplicationName(QStringLiteral("importgeometry-pictures"));
    PluginHost host;
    if (!host.load({})) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(host.errorString()));
        return 1;
    }
    takeAll(host);
    return 0;
}
