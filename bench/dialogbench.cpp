// Times the dialog from the outside, as a user meets it: every figure ends when the views are
// painted and no event is left. Prints one JSON object of milliseconds.

#include "bareresult.h"
#include "dialog.h"
#include "import/formats.h"
#include "importgeometryinterface.h"
#include "status.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QListView>
#include <QPluginLoader>
#include <QPushButton>
#include <QScrollBar>
#include <QSettings>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <new>

namespace {

constexpr qint64 patienceMs = 60000;

/// Measures elapsed time or, where others use the machine too, the time of the processor.
class Stopwatch {
public:
    double milliseconds() const
    {
        if (countsProcessor)
            return 1000.0 * static_cast<double>(std::clock() - m_clock) / CLOCKS_PER_SEC;
        return static_cast<double>(m_timer.nsecsElapsed()) / 1e6;
    }
    static bool countsProcessor;

private:
    QElapsedTimer m_timer = startedTimer();
    std::clock_t m_clock = std::clock();

    static QElapsedTimer startedTimer()
    {
        QElapsedTimer timer;
        timer.start();
        return timer;
    }
};
bool Stopwatch::countsProcessor = false;

double timed(const std::function<void()>& action)
{
    const Stopwatch stopwatch;
    action();
    return stopwatch.milliseconds();
}

/// Notices whether a widget has been painted.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(QObject* widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        isPainted |= event->type() == QEvent::Paint;
        return QObject::eventFilter(watched, event);
    }
    bool isPainted = false;
};

/// The time of `action` until `views` are painted and no event is left.
double timedToPaint(
    const std::vector<QAbstractScrollArea*>& views, const std::function<void()>& action)
{
    std::vector<std::unique_ptr<PaintWatch>> watches;
    for (QAbstractScrollArea* view : views)
        watches.push_back(std::make_unique<PaintWatch>(view->viewport()));
    const auto isPainted = [](const auto& watch) { return watch->isPainted; };

    const QDeadlineTimer deadline(patienceMs);
    const Stopwatch stopwatch;
    action();
    bool busy = true;
    while (busy || !std::all_of(watches.begin(), watches.end(), isPainted)) {
        busy = QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents);
        if (deadline.hasExpired())
            qFatal("A view was not painted");
    }
    return stopwatch.milliseconds();
}

/// A dialog on the screen, driven through its widgets.
class ShownDialog {
public:
    ShownDialog()
    {
        m_dialog.setUp(formats().front(), QStringLiteral("Контекст"), QStringLiteral("Участки"),
            QStringLiteral("Координаты"), GeometryInfo{ 0, 2, 1, 0 });
        widget<QComboBox>("encodingCombo")->setCurrentText(QStringLiteral("Windows-1251"));
        m_dialog.resize(1000, 800);
        m_dialog.show();
    }

    Dialog& dialog() { return m_dialog; }
    QListView* list() const { return widget<QListView>("listView"); }
    QTableView* table() const { return widget<QTableView>("tableView"); }

    void setFiles(const QString& objects, const QString& points)
    {
        widget<QLineEdit>("objectFileNameEdit")->setText(objects);
        widget<QLineEdit>("pointFileNameEdit")->setText(points);
        widget<QCheckBox>("usePointFileCheck")->setChecked(!points.isEmpty());
        widget<QCheckBox>("searchPointDefsCheck")->setChecked(!points.isEmpty());
    }

    double click(const char* button)
    {
        return timedToPaint({ list(), table() }, [&] { widget<QPushButton>(button)->click(); });
    }

    double select(int row)
    {
        return timedToPaint(
            { list(), table() }, [&] { list()->setCurrentIndex(list()->model()->index(row, 0)); });
    }

    double scroll(int value)
    {
        return timedToPaint({ table() }, [&] { table()->verticalScrollBar()->setValue(value); });
    }

    double renameObject(int row, const QString& def)
    {
        return timedToPaint(
            { list() }, [&] { list()->model()->setData(list()->model()->index(row, 0), def); });
    }

    double renamePoint(int row, const QString& def)
    {
        return timedToPaint(
            { table() }, [&] { table()->model()->setData(table()->model()->index(row, 0), def); });
    }

private:
    template <typename Widget>
    Widget* widget(const char* name) const
    {
        return m_dialog.findChild<Widget*>(QLatin1String(name));
    }

    Dialog m_dialog;
};

/// Rejects the modal dialog as soon as it has been painted, and tells when that was.
class OpeningWatch : public QObject {
public:
    OpeningWatch() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        QWidget* dialog = QApplication::activeModalWidget();
        if (event->type() == QEvent::Paint && dialog && watched == dialog && !m_isPainted) {
            m_isPainted = true;
            QTimer::singleShot(0, dialog, [this, dialog] {
                openedMs = m_stopwatch.milliseconds();
                static_cast<QDialog*>(dialog)->reject();
            });
        }
        return QObject::eventFilter(watched, event);
    }
    double openedMs = 0;

private:
    Stopwatch m_stopwatch;
    bool m_isPainted = false;
};

double timeOpening(ImportGeometryInterface& plugin)
{
    const QString operation = plugin.operations().constFirst();
    OpeningWatch watch;
    plugin.operation(
        operation, QString(), QString(), QString(), GeometryInfo{ 0, 2, 1, 0 }, nullptr);
    return watch.openedMs;
}

void measurePlugin(const QString& fileName, QJsonObject& figures)
{
    QPluginLoader loader(QFileInfo(fileName).absoluteFilePath());
    ImportGeometryInterface* plugin = nullptr;
    figures[QStringLiteral("plugin_load")] =
        timed([&] { plugin = qobject_cast<ImportGeometryInterface*>(loader.instance()); });
    if (!plugin)
        qFatal("%s", qPrintable(loader.errorString()));
    figures[QStringLiteral("dialog_open")] = timeOpening(*plugin);
    figures[QStringLiteral("dialog_open_again")] = timeOpening(*plugin);
}

void measureObjects(ShownDialog& shown, QJsonObject& figures)
{
    const int count = shown.list()->model()->rowCount();
    double select = 0;
    for (const int row : { count - 1, count / 2, 1, count / 3 })
        select = std::max(select, shown.select(row));
    figures[QStringLiteral("select")] = select;

    double rename = 0;
    for (const int row : { count / 3, count / 3 + 1, count / 3 + 2 })
        rename = std::max(rename, shown.renameObject(row, QStringLiteral("Участок переименован")));
    figures[QStringLiteral("rename")] = rename;
    figures[QStringLiteral("sort")] = shown.click("sortButton");
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Gives no figures for a result that is too long for a QString.
void measureResult(Dialog& dialog, QJsonObject& figures)
{
    constexpr int rounds = 3;
    QString first;
    try {
        first = dialog.stringResult();
    } catch (const std::bad_alloc&) {
        return;
    }
    const BareResult bare(first);
    std::vector<double> resultMs;
    std::vector<double> bareMs;
    for (int i = 0; i < rounds; ++i) {
        QString result;
        QString bareText;
        resultMs.push_back(timed([&] { result = dialog.stringResult(); }));
        bareMs.push_back(timed([&] { bareText = bare.write(); }));
        if (bareText != result)
            qFatal("The bare writer wrote another text");
    }
    figures[QStringLiteral("string_result")] = median(resultMs);
    figures[QStringLiteral("bare_writer")] = median(bareMs);
}

void measureSingle(ShownDialog& shown, QJsonObject& figures)
{
    figures[QStringLiteral("select_single")] = shown.select(1);
    const int last = shown.table()->verticalScrollBar()->maximum();
    double scroll = 0;
    for (const int value : { last, last / 2, last / 2 + 1, 1 })
        scroll = std::max(scroll, shown.scroll(value));
    figures[QStringLiteral("scroll")] = scroll;
    figures[QStringLiteral("rename_point_single")] =
        shown.renamePoint(2, QStringLiteral("переименована"));
}

} // namespace

int main(int argc, char* argv[])
{
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("importgeometry-bench"));
    QStringList files = QApplication::arguments().mid(1);
    Stopwatch::countsProcessor = files.removeAll(QStringLiteral("--cpu")) > 0;
    if (files.size() != 4) {
        std::fprintf(
            stderr, "Usage: %s OBJECTS.mif POINTS.mif SINGLE.mif PLUGIN [--cpu]\n", argv[0]);
        return EXIT_FAILURE;
    }
    setStatusFunc([](const QString& message) { qFatal("%s", qPrintable(message)); });

    QJsonObject figures;
    measurePlugin(files.at(3), figures);
    {
        ShownDialog shown;
        shown.setFiles(files.at(0), files.at(1));
        figures[QStringLiteral("import")] = shown.click("startButton");
        measureObjects(shown, figures);
        measureResult(shown.dialog(), figures);
    }
    ShownDialog shown;
    shown.setFiles(files.at(2), QString());
    figures[QStringLiteral("import_single")] = shown.click("startButton");
    measureSingle(shown, figures);
    std::printf("%s", QJsonDocument(figures).toJson().constData());
    return EXIT_SUCCESS;
}
