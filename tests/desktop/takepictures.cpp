// Takes the pictures of the pages from the running program: `importgeometry-pictures FOLDER SAMPLES
// [dark]`. The scale is that of QT_SCALE_FACTOR. `importgeometry-pictures --terminal FILE` draws
// the text of its standard input as a terminal shows it.

#include "foreigndialog.h"
#include "mainwindow.h"
#include "planwidget.h"
#include "windowdriver.h"

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QFontMetrics>
#include <QImage>
#include <QLibraryInfo>
#include <QPainter>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QStyleFactory>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <algorithm>
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

/// What no page shows, and yet is looked at.
void takeMore(MainWindow& window)
{
    const auto trigger = [&window](const char* action) {
        window.findChild<QAction*>(QLatin1String(action))->trigger();
    };
    trigger("help");
    for (QWidget* shown : QApplication::topLevelWidgets()) {
        if (shown->objectName() == QLatin1String("guide"))
            take(*shown, "guide");
    }
    whenDialogRuns([](QDialog& dialog) {
        take(dialog, "settings");
        dialog.reject();
    });
    trigger("formSettings");
    ForeignDialog foreign(QStringLiteral("межевание.gpkg"),
        { { QStringLiteral("Участки"),
            { QStringLiteral("Кадастровый номер"), QStringLiteral("Площадь") } } });
    foreign.show();
    take(foreign, "foreign");
    window.findChild<QDockWidget*>(QStringLiteral("messagesDock"))->raise();
    take(window, "messages");
}

void takeAll(PluginHost& host, bool isForPages)
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
    if (!isForPages)
        window.exportTo(FormFile::Pdf, folder + QStringLiteral("/sheet.pdf"));

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
    if (!isForPages)
        takeMore(other);
}

int drawTerminal(const QString& fileName)
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return 1;
    const QStringList lines = QString::fromUtf8(input.readAll()).trimmed().split(QLatin1Char('\n'));
    QFont font(QStringLiteral("DejaVu Sans Mono"));
    font.setPixelSize(14);
    const QFontMetrics metrics(font);
    constexpr int margin = 14;
    int width = 0;
    for (const QString& line : lines)
        width = std::max(width, metrics.horizontalAdvance(line));
    const int height = lines.size() * metrics.lineSpacing();
    QImage picture(width + 2 * margin, height + 2 * margin, QImage::Format_RGB32);
    picture.fill(QColor(35, 38, 41));
    QPainter painter(&picture);
    painter.setFont(font);
    painter.setPen(QColor(238, 238, 238));
    painter.drawText(picture.rect().adjusted(margin, margin, 0, 0), Qt::AlignLeft | Qt::AlignTop,
        lines.join(QLatin1Char('\n')));
    return picture.save(fileName) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication app(argc, argv);
    if (argc < 3) {
        std::fputs("usage: importgeometry-pictures FOLDER SAMPLES [light|dark]\n", stderr);
        return 2;
    }
    if (qstrcmp(argv[1], "--terminal") == 0)
        return drawTerminal(QString::fromLocal8Bit(argv[2]));
    folder = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
    samples = QString::fromLocal8Bit(argv[2]);
    QDir().mkpath(folder);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (argc > 3 && qstrcmp(argv[3], "dark") == 0)
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
    takeAll(host, argc == 3);
    return 0;
}
