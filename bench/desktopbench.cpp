// Times the window of the host: opening a result of the plug-in, and frames of its plan while it is
// zoomed and moved. Prints one JSON object of milliseconds for each file of the command line, best
// of several runs; frames are the slowest of their walk.

#include "document.h"
#include "mainwindow.h"
#include "planwidget.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

constexpr QSize planSize(1200, 800);
constexpr int runs = 3;

double timed(const std::function<void()>& action)
{
    QElapsedTimer timer;
    timer.start();
    action();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double best(const std::function<void()>& action)
{
    double least = timed(action);
    for (int i = 1; i < runs; ++i)
        least = std::min(least, timed(action));
    return least;
}

/// Runs the import as its user does; the time is that of the button, of OK, and of the result.
QString import(PluginHost& host, const QString& file, double& milliseconds)
{
    QString result;
    QElapsedTimer timer;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        dialog->findChild<QLineEdit*>(QStringLiteral("objectFileNameEdit"))->setText(file);
        timer.start();
        dialog->findChild<QPushButton*>(QStringLiteral("startButton"))->click();
        dialog->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))
            ->button(QDialogButtonBox::Ok)
            ->click();
    });
    result = host.run(host.operationFor(file), {}, FormSettings()).result;
    milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    return result;
}

double frame(PlanWidget& plan, QImage& image)
{
    return timed([&] { plan.render(&image); });
}

/// The median and the slowest frame of a walk: the whole, eight steps in, a way to the side, and
/// out again.
QJsonObject walk(PlanWidget& plan)
{
    QImage image(planSize, QImage::Format_RGB32);
    QJsonObject frames;
    const auto note = [&](const char* name, int count, const std::function<void()>& step) {
        std::vector<double> times;
        for (int i = 0; i < count; ++i) {
            step();
            times.push_back(frame(plan, image));
        }
        std::sort(times.begin(), times.end());
        frames[QLatin1String(name)] =
            QJsonObject{ { QStringLiteral("median"), times[times.size() / 2] },
                { QStringLiteral("slowest"), times.back() } };
    };
    const auto key = [&](Qt::Key code) {
        QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier);
        QApplication::sendEvent(&plan, &press);
    };
    plan.fit();
    frame(plan, image);
    note("whole", 5, [&] { plan.fit(); });
    note("zoom in", 24, [&] { plan.zoomIn(); });
    note("pan near", 8, [&] { key(Qt::Key_Left); });
    note("zoom out", 20, [&] { plan.zoomOut(); });
    note("pan far", 8, [&] { key(Qt::Key_Right); });
    return frames;
}

QJsonObject measure(PluginHost& host, const QString& file)
{
    double importing = 0;
    const QString xml = import(host, file, importing);
    FormTable table;
    double reading = 0;
    double showing = 0;
    Document document;
    PlanWidget plan(document);
    plan.resize(planSize);
    const GeometryInfo columns = FormSettings().columns;
    reading = best([&] { readForm(xml, columns, table); });
    QImage image(planSize, QImage::Format_RGB32);
    showing = best([&] {
        document.reset(table, {});
        plan.render(&image);
    });
    QJsonObject result{
        { QStringLiteral("vertices"), static_cast<double>(table.vertexCount()) },
        { QStringLiteral("objects"), table.objects.size() },
        { QStringLiteral("import"), importing },
        { QStringLiteral("read"), reading },
        { QStringLiteral("show"), showing },
        { QStringLiteral("opening / import"), (reading + showing) / importing },
    };
    result[QStringLiteral("frames")] = walk(plan);
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("importgeometry"));
    QApplication::setApplicationName(QStringLiteral("importgeometry-desktop-bench"));
    QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    PluginHost host;
    if (argc < 2 || !host.load({})) {
        std::fprintf(stderr, "usage: importgeometry-desktop-bench FILE...\n%s\n",
            qUtf8Printable(host.errorString()));
        return 2;
    }
    for (int i = 1; i < argc; ++i) {
        const QString file = QString::fromLocal8Bit(argv[i]);
        std::fputs(QJsonDocument(measure(host, file)).toJson().constData(), stdout);
    }
    return 0;
}
