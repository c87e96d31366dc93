// The files of the window, as its user handles them: the menus, the file dialogs, the questions and
// the messages.

#include "diagnosispane.h"
#include "messagespane.h"
#include "prepare/foreignfile.h"
#include "support/miftext.h"
#include "windowdriver.h"
#include "windowtest.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QDockWidget>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QStatusBar>
#include <QTableView>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QUrl>

#include <sys/stat.h>

namespace {

/// A form of one object with two points; the columns are those of the settings of a new user.
QByteArray form(const QString& def, const QString& x = QStringLiteral("5"))
{
    const auto point = [](const QString& name, const QString& north, const QString& east) {
        return QStringLiteral("<Row><Cell>%1</Cell><Cell>%2</Cell><Cell>%3</Cell></Row>\n")
            .arg(name, east, north);
    };
    return QStringLiteral("<FormTable Name=\"Участки\">\n<Row><Cell></Cell><Cell>%1</Cell>\n"
                          "<FormTable Name=\"Координаты\">\n%2%3</FormTable>\n</Row>\n"
                          "</FormTable>\n")
        .arg(def, point(QStringLiteral("т1"), QStringLiteral("0"), QStringLiteral("0")),
            point(QStringLiteral("т2"), x, QStringLiteral("7")))
        .toUtf8();
}

QByteArray contentOf(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("No file %s", qPrintable(fileName));
    return file.readAll();
}

const QByteArray geoJson = R"({"type": "FeatureCollection", "features": [
{"type": "Feature", "properties": {"number": "50:1"}, "geometry":
 {"type": "Polygon", "coordinates": [[[0, 0], [10, 0], [10, 10], [0, 10], [0, 0]]]}}]})";

/// A name that a file system takes, but not with anything added.
QString longName(const QString& suffix)
{
    return QString(250 - suffix.size(), QLatin1Char('a')) + suffix;
}

} // namespace

class TestWindowFiles : public WindowTest {
    Q_OBJECT

private slots:
    void choosesSeveralDrawings();
    void cancelledDialogLeavesAll_data();
    void cancelledDialogLeavesAll();
    void choosesForm();
    void asksBeforeReplacing_data();
    void asksBeforeReplacing();
    void unnamedFormIsNotLost();
    void newFormHasTablesOfSettings();
    void refusesBrokenForm_data();
    void refusesBrokenForm();
    void savesUnderName();
    void savesNewFormUnderName();
    void keepsFileThatIsNotReplaced();
    void tellsUnsavedForm();
    void exportsThroughDialog_data();
    void exportsThroughDialog();
    void exportsChosenThroughDialog();
    void tellsUnknownLetters();
    void tellsRefusedPrint();
    void checksFile();
    void checksUnknownFile();
    void refusesPipes_data();
    void refusesPipes();
    void checksNoPipe();
    void checksPointFile();
    void choosesOtherFormat();
    void tellsEmptyOtherFormat();
    void tellsDrawingRemedy();
    void tellsUnwrittenCopy();
    void tellsUnwrittenMendedCopy();
    void showsNamesAsTheyAre_data();
    void showsNamesAsTheyAre();
    void showsDesignationAsItIs();
    void opensRecentFiles();
    void dropsWaitForTheDialog();
    void takesOnlyLocalFiles();
    void passesOverSideFiles_data();
    void passesOverSideFiles();
    void warnsOfSideFileAlone_data();
    void warnsOfSideFileAlone();
    void cancelledReadingLeavesForm();
    void cancelledExportLeavesFile();
    void cancelledImportLeavesForm();
    void cancelledCopiesAreNotMade();
    void opensWithoutSessionFile();
    void tellsAbout();
    void goesToSearch();
    void bringsPaneToFront();
    void worksWithoutPlugin();
    void importsWithoutName();
    void tellsUnreadableResult();

private:
    /// Opens a form from a file.
    QString openForm(const QString& name, const QString& def);
    void rename(const QString& def);
    QStringList messages();
    /// The names of the files in the folder, in order.
    QStringList files() const;
    QStringList recentFiles();
    QString status() { return m_window->statusBar()->currentMessage(); }
};

QString TestWindowFiles::openForm(const QString& name, const QString& def)
{
    const QString file = m_files->write(name, form(def));
    m_window->openFiles({ file });
    if (!waitFor([&] { return m_window->document().fileName() == file; }))
        qFatal("The form is not opened");
    return file;
}

void TestWindowFiles::rename(const QString& def)
{
    QAbstractItemModel& model = *widget<QTableView>("objects").model();
    if (!model.setData(model.index(0, 0), def, Qt::EditRole))
        qFatal("The object is not renamed");
}

QStringList TestWindowFiles::messages()
{
    const auto& pane = widget<MessagesPane>("messages");
    QStringList texts;
    for (int i = 0; i < pane.topLevelItemCount(); ++i)
        texts.append(pane.topLevelItem(i)->text(2));
    return texts;
}

QStringList TestWindowFiles::files() const
{
    return QDir(m_files->path(QString())).entryList(QDir::Files, QDir::Name);
}

QStringList TestWindowFiles::recentFiles()
{
    QStringList names;
    for (const QMenu* menu : m_window->findChildren<QMenu*>()) {
        if (menu->title() != QStringLiteral("Не&давние файлы"))
            continue;
        for (const QAction* action : menu->actions())
            names.append(QFileInfo(action->text()).fileName());
    }
    return names;
}

void TestWindowFiles::choosesSeveralDrawings()
{
    const QString one = squares("one");
    const QString two = squares("two");
    QString title;
    QStringList filters;
    whenDialogsRun({ [&](QDialog& dialog) {
                        title = dialog.windowTitle();
                        filters = asFileDialog(dialog).nameFilters();
                        choose({ one, two })(dialog);
                    },
        startAndAccept, startAndAccept });
    trigger("operation0");
    QCOMPARE(title, QStringLiteral("Объекты из MIF"));
    QCOMPARE(filters, QStringList(QStringLiteral("Файлы mif (*.mif)")));
    QCOMPARE(shownObjects(), QStringLiteral("А Б А А Б А").split(QLatin1Char(' ')));
    QCOMPARE(recentFiles(), QStringList({ QStringLiteral("two.mif"), QStringLiteral("one.mif") }));
    QCOMPARE(widget<QComboBox>("diagnosisFiles").count(), 2);
}

void TestWindowFiles::cancelledDialogLeavesAll_data()
{
    QTest::addColumn<QByteArray>("action");
    for (const char* action : { "operation0", "operation1", "foreign", "check", "open", "saveAs",
             "exportCsv", "exportGeoJson", "exportMif", "exportSvg", "exportPng", "exportPdf",
             "exportChosenPdf", "formSettings" })
        QTest::newRow(action) << QByteArray(action);
}

void TestWindowFiles::cancelledDialogLeavesAll()
{
    QFETCH(QByteArray, action);
    openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    rename(QStringLiteral("Ю2"));
    const QStringList before = files();
    const QString told = widget<QTextBrowser>("diagnosisText").toPlainText();
    bool isAsked = false;
    whenDialogRuns([&](QDialog& dialog) {
        isAsked = true;
        // What is typed does not count.
        if (auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
            name->setText(m_files->path(QStringLiteral("b")));
        if (auto* table = dialog.findChild<QLineEdit*>(QStringLiteral("tableEdit")))
            table->setText(QStringLiteral("Зоны"));
        dialog.reject();
    });
    trigger(action.constData());
    QVERIFY(isAsked);
    QCOMPARE(shownObjects(), QStringList(QStringLiteral("Ю2")));
    QCOMPARE(m_window->document().table().name, QStringLiteral("Участки"));
    QCOMPARE(m_window->document().undoStack().count(), 1);
    QVERIFY(m_window->isWindowModified());
    QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("a.xml")));
    QCOMPARE(files(), before);
    QCOMPARE(recentFiles(), QStringList(QStringLiteral("a.xml")));
    QCOMPARE(messages(), QStringList());
    QCOMPARE(widget<QTextBrowser>("diagnosisText").toPlainText(), told);
}

void TestWindowFiles::choosesForm()
{
    const QString file = m_files->write(QStringLiteral("участки.xml"), form(QStringLiteral("Ю1")));
    whenDialogRuns(choose({ file }));
    trigger("open");
    QCOMPARE(shownObjects(), QStringList(QStringLiteral("Ю1")));
    QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("участки.xml")));
    QVERIFY(!m_window->isWindowModified());
    QCOMPARE(recentFiles(), QStringList(QStringLiteral("участки.xml")));
    const DefPoint& last = m_window->document().objects().first().contours.first().last();
    QCOMPARE(last.x, 5.0);
    QCOMPARE(last.y, 7.0);
    // The next dialog opens where the last file was.
    QString folder;
    whenDialogRuns([&](QDialog& dialog) {
        folder = asFileDialog(dialog).directory().canonicalPath();
        dialog.reject();
    });
    trigger("open");
    QCOMPARE(folder, QFileInfo(file).canonicalPath());
}

void TestWindowFiles::asksBeforeReplacing_data()
{
    QTest::addColumn<QByteArray>("way");
    QTest::addColumn<int>("button");
    for (const char* way : { "new", "open", "dropped", "quit" }) {
        const auto add = [&](const char* name, QMessageBox::StandardButton button) {
            QTest::addRow("%s: %s", way, name) << QByteArray(way) << int(button);
        };
        add("save", QMessageBox::Save);
        add("discard", QMessageBox::Discard);
        add("cancel", QMessageBox::Cancel);
    }
}

void TestWindowFiles::asksBeforeReplacing()
{
    QFETCH(QByteArray, way);
    QFETCH(int, button);
    const QString file = openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    const QByteArray before = contentOf(file);
    const QString other = m_files->write(QStringLiteral("b.xml"), form(QStringLiteral("Ю9")));
    rename(QStringLiteral("Ю2"));

    QString question;
    const auto ask = answer(QMessageBox::StandardButton(button), &question);
    if (way == "open")
        whenDialogsRun({ choose({ other }), ask });
    else
        whenDialogRuns(ask);
    if (way == "dropped") {
        m_window->openFiles({ other });
        QVERIFY(waitFor([&] { return !question.isEmpty(); }));
        QVERIFY(waitFor([&] {
            return button == QMessageBox::Cancel || m_window->document().fileName() == other;
        }));
    } else {
        trigger(way.constData());
    }
    QCOMPARE(question, QStringLiteral("Сохранить изменения формы?"));

    const bool isKept = button == QMessageBox::Cancel;
    if (way == "quit") {
        QCOMPARE(m_window->isVisible(), isKept);
    } else {
        const QString shown = isKept ? QStringLiteral("Ю2") : QStringLiteral("Ю9");
        QCOMPARE(shownObjects(), way == "new" && !isKept ? QStringList() : QStringList(shown));
        QCOMPARE(m_window->isWindowModified(), isKept);
    }
    if (button == QMessageBox::Save)
        QVERIFY(contentOf(file).contains(QStringLiteral("<Cell>Ю2</Cell>").toUtf8()));
    else
        QCOMPARE(contentOf(file), before);
}

void TestWindowFiles::unnamedFormIsNotLost()
{
    openSquares();
    // Who does not give it a name goes on with it.
    whenDialogsRun({ answer(QMessageBox::Save), cancel });
    QVERIFY(!m_window->close());
    QVERIFY(m_window->isVisible());
    QCOMPARE(shownObjects().size(), 3);
    QVERIFY(m_window->isWindowModified());
}

void TestWindowFiles::newFormHasTablesOfSettings()
{
    whenDialogRuns([](QDialog& dialog) {
        dialog.findChild<QLineEdit*>(QStringLiteral("tableEdit"))->setText(QStringLiteral("Зоны"));
        dialog.findChild<QLineEdit*>(QStringLiteral("catalogueEdit"))
            ->setText(QStringLiteral("Углы"));
        dialog.accept();
    });
    trigger("formSettings");
    // An empty form takes them without a step to undo.
    QCOMPARE(m_window->document().table().name, QStringLiteral("Зоны"));
    QCOMPARE(m_window->document().undoStack().count(), 0);
    openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    QCOMPARE(m_window->document().table().name, QStringLiteral("Участки"));
    trigger("new");
    QCOMPARE(shownObjects(), QStringList());
    QCOMPARE(m_window->document().table().name, QStringLiteral("Зоны"));
    QCOMPARE(m_window->document().table().catalogueName, QStringLiteral("Углы"));
    QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("новая форма")));
    QVERIFY(!m_window->isWindowModified());
}

void TestWindowFiles::refusesBrokenForm_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("trouble");
    QTest::newRow("another document") << QByteArray("<?xml version=\"1.0\"?>\n<svg/>\n")
                                      << QStringLiteral("строка 2: это не таблица формы");
    QTest::newRow("no coordinate")
        << form(QStringLiteral("Ю1"), QStringLiteral("пять"))
        << QStringLiteral("строка 5: в столбце 3 каталога не координата: «пять»");
    QTest::newRow("cut off") << form(QStringLiteral("Ю1")).left(200)
                             << QStringLiteral("строка 5: ");
    QTest::newRow("element in a cell")
        << QByteArray("<FormTable>\n<Row>\n<Cell>a<b/></Cell></Row></FormTable>")
        << QStringLiteral("строка 3: в ячейке таблицы не только текст");
    QTest::newRow("empty") << QByteArray() << QStringLiteral("строка 1: ");
}

void TestWindowFiles::refusesBrokenForm()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, trouble);
    const QString kept = openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    const QString file = m_files->write(QStringLiteral("b.xml"), content);
    QString told;
    whenDialogsRun({ choose({ file }), answer(QMessageBox::Ok, &told) });
    trigger("open");
    QVERIFY2(told.startsWith(QStringLiteral("%1: %2").arg(file, trouble)), qPrintable(told));
    QVERIFY(told.contains(QStringLiteral("«Таблицы программы»")));
    QCOMPARE(m_window->document().fileName(), kept);
    QCOMPARE(shownObjects(), QStringList(QStringLiteral("Ю1")));
    QCOMPARE(recentFiles(), QStringList(QStringLiteral("a.xml")));
}

void TestWindowFiles::savesUnderName()
{
    const QString file = openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    rename(QStringLiteral("Ю2"));
    whenDialogRuns(choose({ m_files->path(QStringLiteral("b")) }));
    trigger("saveAs");
    const QString copy = m_files->path(QStringLiteral("b.xml"));
    QVERIFY(contentOf(copy).contains(QStringLiteral("Ю2").toUtf8()));
    QVERIFY(contentOf(file).contains(QStringLiteral("Ю1").toUtf8()));
    QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("b.xml")));
    QVERIFY(!m_window->isWindowModified());
    QCOMPARE(recentFiles(), QStringList({ QStringLiteral("b.xml"), QStringLiteral("a.xml") }));
    QCOMPARE(status(), QStringLiteral("Записан файл %1").arg(copy));

    // From now on it is that file's form: nothing is asked.
    rename(QStringLiteral("Ю3"));
    QVERIFY(m_window->isWindowModified());
    trigger("save");
    QVERIFY(!m_window->isWindowModified());
    QVERIFY(contentOf(copy).contains(QStringLiteral("Ю3").toUtf8()));
    QVERIFY(contentOf(file).contains(QStringLiteral("Ю1").toUtf8()));
}

void TestWindowFiles::savesNewFormUnderName()
{
    openSquares();
    const QString file = m_files->path(QStringLiteral("новая.xml"));
    whenDialogRuns(choose({ file }));
    trigger("save");
    QCOMPARE(m_window->document().fileName(), file);
    QVERIFY(!m_window->isWindowModified());
    trigger("new");
    QCOMPARE(shownObjects(), QStringList());
    whenDialogRuns(choose({ file }));
    trigger("open");
    QCOMPARE(shownObjects(), QStringLiteral("А Б А").split(QLatin1Char(' ')));
}

void TestWindowFiles::keepsFileThatIsNotReplaced()
{
    const QString file = openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    rename(QStringLiteral("Ю2"));
    const QString other = m_files->write(QStringLiteral("b.xml"), "другая");
    // The dialog asks, and stays open after a no.
    QDialog* asking = nullptr;
    whenDialogsRun({ [&](QDialog& dialog) {
                        asking = &dialog;
                        choose({ other })(dialog);
                        dialog.reject();
                    },
        answer(QMessageBox::No) });
    trigger("saveAs");
    QVERIFY(asking);
    QCOMPARE(contentOf(other), QByteArray("другая"));
    QCOMPARE(m_window->document().fileName(), file);
    QVERIFY(m_window->isWindowModified());

    whenDialogsRun({ choose({ other }), answer(QMessageBox::Yes) });
    trigger("saveAs");
    QVERIFY(contentOf(other).contains(QStringLiteral("Ю2").toUtf8()));
    QCOMPARE(m_window->document().fileName(), other);
}

void TestWindowFiles::tellsUnsavedForm()
{
    const QString folder = m_files->path(QStringLiteral("папка"));
    QVERIFY(QDir().mkpath(folder));
    const QString file = openForm(QStringLiteral("папка/a.xml"), QStringLiteral("Ю1"));
    rename(QStringLiteral("Ю2"));
    QVERIFY(QDir(folder).removeRecursively());
    QString told;
    whenDialogRuns(answer(QMessageBox::Ok, &told));
    trigger("save");
    QVERIFY2(
        told.startsWith(QStringLiteral("Ошибка записи файла %1: ").arg(file)), qPrintable(told));
    QVERIFY(m_window->isWindowModified());

    told.clear();
    whenDialogsRun({ choose({ file }), answer(QMessageBox::Ok, &told) });
    trigger("saveAs");
    QVERIFY2(told.startsWith(QStringLiteral("Ошибка записи файла ")), qPrintable(told));
    QVERIFY(m_window->isWindowModified());

    // Nor is the form given up for another one.
    whenDialogsRun({ answer(QMessageBox::Save), answer(QMessageBox::Ok) });
    trigger("new");
    QCOMPARE(shownObjects(), QStringList(QStringLiteral("Ю2")));
}

void TestWindowFiles::exportsThroughDialog_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("written");
    QTest::addColumn<QByteArray>("part");
    QTest::newRow("CSV") << QByteArray("exportCsv") << QStringLiteral("Таблица CSV (*.csv)")
                         << QStringList(QStringLiteral("out.csv"))
                         << QStringLiteral("Ю1;1;2;т2;5;7;").toUtf8();
    QTest::newRow("GeoJSON") << QByteArray("exportGeoJson") << QStringLiteral("GeoJSON (*.geojson)")
                             << QStringList(QStringLiteral("out.geojson"))
                             << QByteArray("\"FeatureCollection\"");
    QTest::newRow("MIF") << QByteArray("exportMif") << QStringLiteral("MIF/MID (*.mif)")
                         << QStringList({ QStringLiteral("out.mid"), QStringLiteral("out.mif") })
                         << QByteArray("\xDE"
                                       "1");
    QTest::newRow("SVG") << QByteArray("exportSvg") << QStringLiteral("План SVG (*.svg)")
                         << QStringList(QStringLiteral("out.svg")) << QStringLiteral("Ю1").toUtf8();
    QTest::newRow("PNG") << QByteArray("exportPng") << QStringLiteral("План PNG (*.png)")
                         << QStringList(QStringLiteral("out.png")) << QByteArray("\x89PNG");
    QTest::newRow("PDF") << QByteArray("exportPdf") << QStringLiteral("План и каталог PDF (*.pdf)")
                         << QStringList(QStringLiteral("out.pdf")) << QByteArray("%PDF-");
}

void TestWindowFiles::exportsThroughDialog()
{
    QFETCH(QByteArray, action);
    QFETCH(QString, filter);
    QFETCH(QStringList, written);
    QFETCH(QByteArray, part);
    const QString file = openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    const QByteArray saved = contentOf(file);
    const QStringList before = files();
    QStringList filters;
    whenDialogRuns([&](QDialog& dialog) {
        filters = asFileDialog(dialog).nameFilters();
        choose({ m_files->path(QStringLiteral("out")) })(dialog);
    });
    trigger(action.constData());
    QCOMPARE(filters, QStringList(filter));
    QStringList added = files();
    for (const QString& name : before)
        added.removeAll(name);
    QCOMPARE(added, written);
    QVERIFY(contentOf(m_files->path(written.first())).contains(part));
    QCOMPARE(status(), QStringLiteral("Записан файл %1").arg(m_files->path(written.last())));
    // The form itself is where it was.
    QCOMPARE(m_window->document().fileName(), file);
    QCOMPARE(contentOf(file), saved);
    QCOMPARE(recentFiles(), QStringList(QStringLiteral("a.xml")));
}

void TestWindowFiles::exportsChosenThroughDialog()
{
    openSquares();
    auto& objects = widget<QTableView>("objects");
    objects.setCurrentIndex(objects.model()->index(1, 0));
    whenDialogRuns(choose({ m_files->path(QStringLiteral("out")) }));
    trigger("exportChosenPdf");
    const QString text = textOfPdf(m_files->path(QStringLiteral("out.pdf")));
    QVERIFY(text.contains(QStringLiteral("Объект Б")));
    QVERIFY(!text.contains(QStringLiteral("Объект А")));
}

void TestWindowFiles::tellsUnknownLetters()
{
    openForm(QStringLiteral("a.xml"), QStringLiteral("Ω1"));
    whenDialogRuns(choose({ m_files->path(QStringLiteral("out.mif")) }));
    trigger("exportMif");
    QCOMPARE(messages(),
        QStringList(QStringLiteral("Обозначений с буквами, которых нет в Windows-1251: 1")));
}

void TestWindowFiles::tellsRefusedPrint()
{
    openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    QString told;
    whenDialogsRun({ [&](QDialog& dialog) {
                        dialog.findChild<QLineEdit*>(QStringLiteral("filename"))
                            ->setText(m_files->path(QStringLiteral("нет/a.pdf")));
                        dialog.accept();
                    },
        answer(QMessageBox::Ok, &told) });
    // Qt warns of it as well.
    static QStringList warnings;
    const QtMessageHandler strict =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
            if (text.startsWith(QLatin1String("QPainter")))
                warnings.append(text);
        });
    trigger("print");
    qInstallMessageHandler(strict);
    QCOMPARE(warnings, QStringList(QStringLiteral("QPainter::begin(): Returned false")));
    QCOMPARE(told, QStringLiteral("Принтер не принял задание."));
}

void TestWindowFiles::checksFile()
{
    const QString file = m_files->path(QStringLiteral("survey.dxf"));
    QVERIFY(QFile::copy(QStringLiteral(SAMPLES_DIR "/survey.dxf"), file));
    QStringList filters;
    whenDialogRuns([&](QDialog& dialog) {
        filters = asFileDialog(dialog).nameFilters();
        choose({ file })(dialog);
    });
    trigger("check");
    QCOMPARE(filters, QStringList(QStringLiteral("Чертежи (*.mif *.MIF *.dxf *.DXF)")));
    const QString told = widget<QTextBrowser>("diagnosisText").toPlainText();
    QVERIFY2(told.contains(QStringLiteral("survey.dxf, строка 1")), qPrintable(told));
    QVERIFY(widget<QPushButton>("mendButton").isEnabled());
    // It is only looked at.
    QCOMPARE(shownObjects(), QStringList());
    QCOMPARE(m_window->document().undoStack().count(), 0);
    QCOMPARE(recentFiles(), QStringList());
}

void TestWindowFiles::checksUnknownFile()
{
    const QString file = m_files->write(QStringLiteral("a.txt"), "0\n");
    whenDialogRuns(choose({ file }));
    trigger("check");
    QCOMPARE(messages(), QStringList(QStringLiteral("Вид файла по расширению не определить.")));
    QVERIFY(!widget<MessagesPane>("messages").visibleRegion().isEmpty());
}

void TestWindowFiles::refusesPipes_data()
{
    QTest::addColumn<QString>("opened");
    QTest::addColumn<QString>("pipe");
    QTest::newRow("drawing") << QStringLiteral("a.dxf") << QStringLiteral("a.dxf");
    QTest::newRow("rows of a pair")
        << QStringLiteral("squares.mif") << QStringLiteral("squares.mid");
    QTest::newRow("form") << QStringLiteral("a.xml") << QStringLiteral("a.xml");
}

/// Whoever opens a pipe waits until somebody writes to it, and the window would hang.
void TestWindowFiles::refusesPipes()
{
    QFETCH(QString, opened);
    QFETCH(QString, pipe);
    squares();
    m_files->remove(pipe);
    const QString name = m_files->path(pipe);
    QCOMPARE(mkfifo(QFile::encodeName(name).constData(), 0600), 0);
    QString told;
    whenDialogRuns(answer(QMessageBox::Ok, &told));
    m_window->openFiles({ m_files->path(opened) });
    QVERIFY(waitFor([&] { return !told.isEmpty(); }));
    QCOMPARE(told,
        QStringLiteral("Ошибка открытия файла %1: это не файл, а канал или устройство").arg(name));
    QCOMPARE(shownObjects(), QStringList());
    QCOMPARE(recentFiles(), QStringList());
}

void TestWindowFiles::checksNoPipe()
{
    const QString pipe = m_files->path(QStringLiteral("a.dxf"));
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    whenDialogRuns(choose({ pipe }));
    trigger("check");
    QCOMPARE(messages(),
        QStringList(QStringLiteral("Ошибка открытия файла %1: это не файл, а канал или устройство")
                        .arg(pipe)));
}

void TestWindowFiles::checksPointFile()
{
    // A point of the other file names the corner; the check reads it, too.
    const QString points = m_files->write(QStringLiteral("точки.mif"), "no drawing\n");
    const QString file = squares();
    whenDialogRuns([&](QDialog& dialog) {
        dialog.findChild<QCheckBox*>(QStringLiteral("usePointFileCheck"))->setChecked(true);
        dialog.findChild<QLineEdit*>(QStringLiteral("pointFileNameEdit"))->setText(points);
        dialog.findChild<QAbstractButton*>(QStringLiteral("startButton"))->click();
        dialog.reject();
    });
    m_window->openFiles({ file });
    auto& told = widget<QTextBrowser>("diagnosisText");
    QVERIFY(waitFor([&] { return told.toPlainText().contains(QStringLiteral("squares.mif")); }));
    QVERIFY2(told.toPlainText().contains(QStringLiteral("точки.mif, строка 1")),
        qPrintable(told.toPlainText()));
    QCOMPARE(shownObjects(), QStringList());
}

void TestWindowFiles::choosesOtherFormat()
{
    if (!hasOgr())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    const QString file = m_files->write(QStringLiteral("parcels.geojson"), geoJson);
    QString filter;
    whenDialogsRun({ [&](QDialog& dialog) {
                        filter = asFileDialog(dialog).nameFilters().value(0);
                        choose({ file })(dialog);
                    },
        [](QDialog& dialog) {
            dialog.findChild<QComboBox*>(QStringLiteral("columnCombo"))
                ->setCurrentText(QStringLiteral("number"));
            dialog.accept();
        },
        startAndAccept });
    trigger("foreign");
    QVERIFY(waitFor([&] { return !shownObjects().isEmpty(); }));
    QCOMPARE(shownObjects(), QStringList(QStringLiteral("50:1")));
    QVERIFY2(filter.contains(QStringLiteral("*.geojson *.GEOJSON")), qPrintable(filter));
    QVERIFY(filter.contains(QStringLiteral("*.shp *.SHP")));
    QVERIFY(waitFor([&] { return !widget<QComboBox>("diagnosisFiles").currentText().isEmpty(); }));
}

void TestWindowFiles::tellsEmptyOtherFormat()
{
    if (!hasOgr())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    const QString file = m_files->write(
        QStringLiteral("a.geojson"), R"({"type": "FeatureCollection", "features": []})");
    QString told;
    whenDialogRuns(answer(QMessageBox::Ok, &told));
    m_window->openFiles({ file });
    QVERIFY(waitFor([&] { return !told.isEmpty(); }));
    QCOMPARE(told,
        QStringLiteral("a.geojson: в файле нет объектов.\n\nМожно и выгрузить объекты в MIF или "
                       "DXF из программы, в которой они сделаны."));
}

void TestWindowFiles::tellsDrawingRemedy()
{
    if (!hasOgr())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    const QString file = m_files->write(QStringLiteral("a.DWG"), "AC1032");
    QString told;
    whenDialogRuns(answer(QMessageBox::Ok, &told));
    m_window->openFiles({ file });
    QVERIFY(waitFor([&] { return !told.isEmpty(); }));
    QVERIFY2(told.startsWith(QStringLiteral("a.DWG: ")), qPrintable(told));
    QVERIFY(told.endsWith(QStringLiteral("\n\nСохраните чертёж в программе, в которой он сделан, "
                                         "как текстовый (ASCII) DXF.")));
}

void TestWindowFiles::tellsUnwrittenCopy()
{
    if (!hasOgr())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    const QString name = longName(QStringLiteral(".geojson"));
    const QString file = m_files->write(name, geoJson);
    const QStringList before = files();
    QString told;
    whenDialogsRun({ [](QDialog& dialog) { dialog.accept(); }, answer(QMessageBox::Ok, &told) });
    m_window->openFiles({ file });
    QVERIFY(waitFor([&] { return !told.isEmpty(); }));
    QVERIFY2(told.startsWith(name + QStringLiteral(": ошибка записи файла ")), qPrintable(told));
    QVERIFY(told.contains(QStringLiteral("-готов.mid: ")));
    QCOMPARE(files(), before);
    QCOMPARE(shownObjects(), QStringList());
}

void TestWindowFiles::tellsUnwrittenMendedCopy()
{
    const QString file = m_files->path(longName(QStringLiteral(".dxf")));
    QVERIFY(QFile::copy(QStringLiteral(SAMPLES_DIR "/survey.dxf"), file));
    const QStringList before = files();
    whenDialogRuns(choose({ file }));
    trigger("check");
    auto& mend = widget<QPushButton>("mendButton");
    QVERIFY(mend.isEnabled());
    QString told;
    whenDialogRuns(answer(QMessageBox::Ok, &told));
    mend.click();
    QVERIFY2(told.startsWith(QStringLiteral("ошибка записи файла ")), qPrintable(told));
    QVERIFY(told.contains(QStringLiteral("-готов.dxf: ")));
    QCOMPARE(files(), before);
}

void TestWindowFiles::showsNamesAsTheyAre_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("action");
    const auto row = [](const char* title, const QString& name, const char* action) {
        QTest::newRow(title) << name << QByteArray(action);
    };
    row("no drawing", QStringLiteral("<b>a.txt"), "");
    row("other format", QStringLiteral("<b>a.geojson"), "");
    row("form", QStringLiteral("<b>a.xml"), "open");
    row("export", QStringLiteral("<b>нет/a.csv"), "exportCsv");
    row("copy", QStringLiteral("<b>") + longName(QStringLiteral(".dxf")).mid(3), "check");
}

void TestWindowFiles::showsNamesAsTheyAre()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, action);
    const QString file = m_files->path(name);
    if (action == "check")
        QVERIFY(QFile::copy(QStringLiteral(SAMPLES_DIR "/survey.dxf"), file));
    else if (action != "exportCsv")
        m_files->write(name, "0\n");
    QString told;
    Qt::TextFormat format = Qt::AutoText;
    const DriveDialog read = [&](QDialog& dialog) {
        if (const auto* box = qobject_cast<QMessageBox*>(&dialog))
            format = box->textFormat();
        answer(QMessageBox::Ok, &told)(dialog);
    };
    if (action.isEmpty()) {
        whenDialogRuns(read);
        m_window->openFiles({ file });
    } else if (action == "check") {
        whenDialogRuns(choose({ file }));
        trigger("check");
        whenDialogRuns(read);
        widget<QPushButton>("mendButton").click();
    } else if (action == "exportCsv") {
        whenDialogRuns(read);
        QVERIFY(!m_window->exportTo(FormFile::Csv, file));
    } else {
        whenDialogsRun({ choose({ file }), read });
        trigger(action.constData());
    }
    QVERIFY(waitFor([&] { return !told.isEmpty(); }));
    QVERIFY2(told.contains(QStringLiteral("<b>")), qPrintable(told));
    QCOMPARE(format, Qt::PlainText);
}

void TestWindowFiles::showsDesignationAsItIs()
{
    openForm(QStringLiteral("a.xml"), QStringLiteral("&lt;b&gt;Ю1"));
    const auto& label = widget<QLabel>("objectLabel");
    QVERIFY2(label.text().startsWith(QStringLiteral("<b>Ю1: ")), qPrintable(label.text()));
    QCOMPARE(label.textFormat(), Qt::PlainText);
}

void TestWindowFiles::opensRecentFiles()
{
    const QString name = QStringLiteral("a & b.xml");
    const QString file = openForm(name, QStringLiteral("Ю1"));
    QMenu* recent = nullptr;
    for (QMenu* menu : m_window->findChildren<QMenu*>()) {
        if (menu->title() == QStringLiteral("Не&давние файлы"))
            recent = menu;
    }
    QVERIFY(recent && recent->isEnabled());
    QCOMPARE(recent->actions().size(), 1);
    QVERIFY(recent->actions().first()->text().endsWith(QStringLiteral("a && b.xml")));
    trigger("new");
    QCOMPARE(shownObjects(), QStringList());
    recent->actions().first()->trigger();
    QVERIFY(waitFor([&] { return m_window->document().fileName() == file; }));

    // A file that is gone is told, and the form stays.
    m_files->remove(name);
    QString told;
    whenDialogRuns(answer(QMessageBox::Ok, &told));
    recent->actions().first()->trigger();
    QVERIFY(waitFor([&] { return !told.isEmpty(); }));
    QVERIFY2(told.startsWith(file + QStringLiteral(": ")), qPrintable(told));
    QCOMPARE(shownObjects(), QStringList(QStringLiteral("Ю1")));
}

void TestWindowFiles::dropsWaitForTheDialog()
{
    const QString one = squares("one");
    const QString two = squares("two");
    QStringList filled;
    const auto nameIn = [](const QDialog& dialog) {
        const QWidget* edit = dialog.findChild<QWidget*>(QStringLiteral("objectFileNameEdit"));
        return QFileInfo(edit->property("text").toString()).fileName();
    };
    bool isAlone = false;
    whenDialogRuns([&](QDialog& dialog) {
        filled.append(nameIn(dialog));
        m_window->openFiles({ two });
        QApplication::processEvents();
        isAlone = QApplication::activeModalWidget() == &dialog;
        whenDialogRuns([&](QDialog& next) {
            filled.append(nameIn(next));
            startAndAccept(next);
        });
        startAndAccept(dialog);
    });
    m_window->openFiles({ one });
    QVERIFY(waitFor([&] { return shownObjects().size() == 6; }));
    QVERIFY(isAlone);
    QCOMPARE(filled, QStringList({ QStringLiteral("one.mif"), QStringLiteral("two.mif") }));
    QVERIFY(waitFor([&] { return widget<QComboBox>("diagnosisFiles").count() == 2; }));
}

void TestWindowFiles::takesOnlyLocalFiles()
{
    QMimeData words;
    words.setText(QStringLiteral("слова"));
    QDragEnterEvent enter({ 100, 100 }, Qt::CopyAction, &words, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(m_window.get(), &enter);
    QVERIFY(!enter.isAccepted());

    const QString file = m_files->write(QStringLiteral("a.xml"), form(QStringLiteral("Ю1")));
    QMimeData links;
    links.setUrls({ QUrl(QStringLiteral("https://example.org/b.xml")), QUrl::fromLocalFile(file) });
    QDragEnterEvent taken({ 100, 100 }, Qt::CopyAction, &links, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_window.get(), &taken);
    QVERIFY(taken.isAccepted());
    QDropEvent drop({ 100, 100 }, Qt::CopyAction, &links, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_window.get(), &drop);
    QVERIFY(waitFor([&] { return m_window->document().fileName() == file; }));
    QCOMPARE(recentFiles(), QStringList(QStringLiteral("a.xml")));
}

void TestWindowFiles::passesOverSideFiles_data()
{
    QTest::addColumn<QStringList>("names");
    const auto row = [](const char* title, const char* names) {
        QTest::newRow(title) << QString::fromUtf8(names).split(QLatin1Char(' '));
    };
    row("MIF", "a.mif a.mid");
    row("MIF, other letters", "a.mid A.MIF a.MID");
    row("SHP", "a.dbf a.cpg a.prj a.shp a.shx");
    row("SHP, all of it", "а.shp а.shp.xml а.sbn а.sbx а.qix а.dbf а.shx");
    row("SHP, other letters", "A.SHP a.dbf A.Shx");
    row("TAB", "a.tab a.dat a.map a.id a.ind");
}

void TestWindowFiles::passesOverSideFiles()
{
    QFETCH(QStringList, names);
    QStringList dropped;
    for (const QString& name : names)
        dropped.append(m_files->write(name, "0\n"));
    // The form comes last.
    dropped.append(m_files->write(QStringLiteral("z.xml"), form(QStringLiteral("Ю1"))));
    int asked = 0;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&asked] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || qobject_cast<QProgressDialog*>(dialog))
            return;
        ++asked;
        dialog->reject();
    });
    watch.start(5);
    m_window->openFiles(dropped);
    QVERIFY(waitFor([&] { return m_window->document().fileName() == dropped.last(); }));
    QCOMPARE(asked, 1);
}

void TestWindowFiles::warnsOfSideFileAlone_data()
{
    QTest::addColumn<QString>("beside");
    QTest::addColumn<QString>("name");
    QTest::newRow("no SHP") << QString() << QStringLiteral("a.dbf");
    QTest::newRow("another SHP") << QStringLiteral("b.shp") << QStringLiteral("a.dbf");
    QTest::newRow("SHP in another folder") << QStringLiteral("б/a.shp") << QStringLiteral("a.dbf");
    QTest::newRow("of another format") << QStringLiteral("a.shp") << QStringLiteral("a.mid");
    QTest::newRow("no MIF") << QString() << QStringLiteral("a.mid");
}

void TestWindowFiles::warnsOfSideFileAlone()
{
    QFETCH(QString, beside);
    QFETCH(QString, name);
    const QString file = m_files->write(name, "0\n");
    QStringList dropped{ file };
    QString told;
    const DriveDialog read = answer(QMessageBox::Ok, &told);
    if (beside.isEmpty()) {
        whenDialogRuns(read);
    } else {
        dropped.append(m_files->path(beside));
        whenDialogsRun({ read, cancel });
    }
    m_window->openFiles(dropped);
    QVERIFY(waitFor([&] { return !told.isEmpty(); }));
    QVERIFY2(told.startsWith(file + QStringLiteral(": открываются формы")), qPrintable(told));
}

void TestWindowFiles::cancelledReadingLeavesForm()
{
    const QString file = openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    const QString other = m_files->write(QStringLiteral("b.xml"), form(QStringLiteral("Ю2")));
    const BusyThread busy(*m_window);
    QString told;
    whenDialogRuns(choose({ other }));
    whenProgressRuns([&](const QString& label) { told = label; });
    trigger("open");
    QCOMPARE(told, QStringLiteral("Форма читается…"));
    QCOMPARE(m_window->document().fileName(), file);
    QCOMPARE(shownObjects(), QStringList(QStringLiteral("Ю1")));
    QCOMPARE(recentFiles(), QStringList(QStringLiteral("a.xml")));
}

void TestWindowFiles::cancelledExportLeavesFile()
{
    const QString file = openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    const QByteArray before = contentOf(file);
    rename(QStringLiteral("Ю2"));
    {
        const BusyThread busy(*m_window);
        QString told;
        whenProgressRuns([&](const QString& label) { told = label; });
        trigger("save");
        QCOMPARE(told, QStringLiteral("Пишется %1…").arg(file));
        QVERIFY(m_window->isWindowModified());
    }
    // Nor is it written when there is time for it.
    QCOMPARE(contentOf(file), before);
    trigger("save");
    QVERIFY(contentOf(file).contains(QStringLiteral("Ю2").toUtf8()));
}

void TestWindowFiles::cancelledImportLeavesForm()
{
    const QString file = squares();
    const BusyThread busy(*m_window);
    QStringList told;
    const auto tell = [&](const QString& label) { told.append(label); };
    whenDialogRuns(startAndAccept);
    whenProgressRuns([&](const QString& label) {
        tell(label);
        whenProgressRuns(tell);
    });
    m_window->openFiles({ file });
    QVERIFY(waitFor([&] { return !messages().isEmpty(); }));
    QCOMPARE(told,
        QStringList({ QStringLiteral("Объекты читаются…"),
            QStringLiteral("Файл «squares.mif» проверяется…") }));
    QCOMPARE(messages(), QStringList(QStringLiteral("Файл не проверен до конца.")));
    QCOMPARE(shownObjects(), QStringList());
    QCOMPARE(recentFiles(), QStringList());
}

void TestWindowFiles::cancelledCopiesAreNotMade()
{
    const QString drawing = m_files->path(QStringLiteral("survey.dxf"));
    QVERIFY(QFile::copy(QStringLiteral(SAMPLES_DIR "/survey.dxf"), drawing));
    whenDialogRuns(choose({ drawing }));
    trigger("check");
    const QString foreign = m_files->write(QStringLiteral("a.geojson"), geoJson);
    const QStringList before = files();
    QStringList told;
    {
        const BusyThread busy(*m_window);
        const auto tell = [&](const QString& label) { told.append(label); };
        whenProgressRuns(tell);
        widget<QPushButton>("mendButton").click();
        whenDialogRuns(choose({ foreign }));
        whenProgressRuns(tell);
        trigger("foreign");
        QVERIFY(waitFor([&] { return told.size() == 2; }));
    }
    QCOMPARE(told,
        QStringList({ QStringLiteral("Пишется исправленная копия файла «survey.dxf»…"),
            QStringLiteral("Файл «a.geojson» просматривается…") }));
    QCOMPARE(files(), before);
    if (!hasOgr())
        return;

    // The last step of a file of another format.
    std::unique_ptr<BusyThread> busy;
    QString last;
    whenDialogsRun({ choose({ foreign }), [&](QDialog& dialog) {
                        busy = std::make_unique<BusyThread>(dialog);
                        whenProgressRuns([&](const QString& label) { last = label; });
                        dialog.accept();
                    } });
    trigger("foreign");
    QVERIFY(waitFor([&] { return !last.isEmpty(); }));
    busy.reset();
    QCOMPARE(last, QStringLiteral("Пишется копия файла «a.geojson»…"));
    QCOMPARE(files(), before);
}

void TestWindowFiles::opensWithoutSessionFile()
{
    openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    QVERIFY(m_window->close());
    m_files->remove(QStringLiteral("a.xml"));
    m_window = std::make_unique<MainWindow>(*m_host);
    // Nobody asked for it now: there is nothing to answer.
    m_window->restoreSession();
    m_window->show();
    QCOMPARE(shownObjects(), QStringList());
    QVERIFY(m_window->windowTitle().startsWith(QStringLiteral("новая форма")));
    QCOMPARE(recentFiles(), QStringList(QStringLiteral("a.xml")));
}

void TestWindowFiles::tellsAbout()
{
    QString told;
    whenDialogRuns(answer(QMessageBox::Ok, &told));
    trigger("about");
    QVERIFY2(told.contains(QStringLiteral("Каталоги координат")), qPrintable(told));
    QVERIFY2(told.contains(QStringLiteral("Модуль импорта: ")
                 + QFileInfo(QStringLiteral(PLUGIN_PATH)).filePath()),
        qPrintable(told));
}

void TestWindowFiles::goesToSearch()
{
    openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    auto& search = widget<QLineEdit>("search");
    search.setText(QStringLiteral("прежнее"));
    widget<QTableView>("objects").setFocus();
    trigger("find");
    QCOMPARE(m_window->focusWidget(), &search);
    // What is typed takes the place of what stood there.
    QTest::keyClicks(&search, QStringLiteral("z"));
    QCOMPARE(search.text(), QStringLiteral("z"));
    QTest::keyClick(&search, Qt::Key_Return);
    QCOMPARE(status(), QStringLiteral("Не найдено: z"));
}

void TestWindowFiles::bringsPaneToFront()
{
    for (const char* name : { "diagnosisDock", "messagesDock" }) {
        auto& dock = widget<QDockWidget>(name);
        dock.toggleViewAction()->trigger();
        QVERIFY2(dock.isHidden(), name);
        dock.toggleViewAction()->trigger();
        QVERIFY2(waitFor([&] { return !dock.widget()->visibleRegion().isEmpty(); }), name);
    }
}

void TestWindowFiles::worksWithoutPlugin()
{
    m_window.reset();
    m_host = std::make_unique<PluginHost>();
    m_window = std::make_unique<MainWindow>(*m_host);
    m_window->show();
    QVERIFY(!m_window->findChild<QAction*>(QStringLiteral("operation0")));
    QVERIFY(m_host->run(QStringLiteral("Объекты из MIF"), squares(), {}).result.isNull());
    openForm(QStringLiteral("a.xml"), QStringLiteral("Ю1"));
    QCOMPARE(shownObjects(), QStringList(QStringLiteral("Ю1")));
    // A drawing cannot be opened, and that is told.
    QString told;
    whenDialogRuns(answer(QMessageBox::Ok, &told));
    m_window->openFiles({ squares() });
    QVERIFY(waitFor([&] { return !told.isEmpty(); }));
    QVERIFY2(
        told.contains(QStringLiteral("squares.mif: открываются формы (xml)")), qPrintable(told));
}

void TestWindowFiles::importsWithoutName()
{
    // The dialog opens empty, and the answer names the file that the user chose in it.
    const QString file = squares();
    QString before = QStringLiteral("?");
    whenDialogRuns([&](QDialog& dialog) {
        auto* edit = dialog.findChild<QWidget*>(QStringLiteral("objectFileNameEdit"));
        before = edit->property("text").toString();
        edit->setProperty("text", file);
        startAndAccept(dialog);
    });
    const ImportAnswer taken = m_host->run(QStringLiteral("Объекты из MIF"), {}, {});
    QCOMPARE(before, QString());
    QCOMPARE(taken.fileName, file);
    QVERIFY(taken.isStarted);
    QVERIFY(!taken.result.isNull());
}

void TestWindowFiles::tellsUnreadableResult()
{
    // The designations stand in the column of the coordinate, which the dialog of the settings
    // refuses and a file of settings may say.
    QSettings store;
    store.setValue(QStringLiteral("form/pointColumn"), 2);
    m_window = std::make_unique<MainWindow>(*m_host);
    m_window->show();
    const QString file = squares();
    whenDialogRuns(startAndAccept);
    m_window->openFiles({ file });
    QVERIFY(waitFor([&] { return !messages().isEmpty(); }));
    QCOMPARE(messages(), QStringList(QStringLiteral("в столбце 3 каталога не координата: «н1»")));
    QCOMPARE(shownObjects(), QStringList());
    QCOMPARE(recentFiles(), QStringList());
}

QTEST_MAIN(TestWindowFiles)
#include "tst_windowfiles.moc"
