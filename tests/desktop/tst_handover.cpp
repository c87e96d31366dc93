// What leaves the window, and what comes to it from elsewhere: the printer, the clipboard, files of
// other formats.

#include "cataloguerows.h"
#include "foreigndialog.h"
#include "prepare/foreignfile.h"
#include "support/miftext.h"
#include "windowdriver.h"
#include "windowtest.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QMimeData>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QRadioButton>
#include <QTableView>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>

namespace {

/// Objects in a row, each a square.
FormTable rowOfSquares(const QStringList& defs)
{
    FormTable table;
    for (int i = 0; i < defs.size(); ++i) {
        const double x = 20.0 * i;
        table.objects.append({ defs.at(i),
            { { { QStringLiteral("т1"), x, 0 }, { QStringLiteral("т2"), x + 10, 0 },
                { QStringLiteral("т3"), x + 10, 10 }, { QStringLiteral("т4"), x, 10 },
                { QStringLiteral("т1"), x, 0 } } } });
    }
    table.others.resize(defs.size());
    return table;
}

/// One line of so many vertices.
FormTable longLine(int vertices)
{
    FormTable table;
    DefPolygon object{ QStringLiteral("ось"), { {} } };
    for (int i = 0; i < vertices; ++i)
        object.contours.first().append({ QString::number(i), i * 0.5, i % 7 * 1.0 });
    table.objects.append(object);
    table.others.resize(1);
    return table;
}

const QByteArray geoJson = R"({"type": "FeatureCollection", "features": [
{"type": "Feature", "properties": {"kind": "parcel", "number": "50:1"}, "geometry":
 {"type": "Polygon", "coordinates": [[[0, 0], [10, 0], [10, 10], [0, 10], [0, 0]]]}}]})";

} // namespace

class TestHandover : public WindowTest {
    Q_OBJECT

private slots:
    void prints();
    void printsChosen();
    void cancelsPrinting();
    void copiesLongCatalogue();
    void copiesChosenRows();
    void cancelledCopyLeavesClipboard();
    void cancelledTextEnds();
    void opensOtherFormat();
    void numbersObjectsWithoutColumn();
    void asksForColumn();
    void choosesLayer();
    void cancelsOtherFormat();
    void tellsWhatReadsOtherFormat();
    void tellsUnknownFile();
    void opensPairOnce();

private:
    /// Prints into a file through the dialog.
    QString printed(bool chosenOnly);
    bool waitForObjects(int count);
    /// Writes a file with these objects in each of its layers "first" and "second".
    QString twoLayers(const QByteArray& content);
};

bool TestHandover::waitForObjects(int count)
{
    return waitFor([&] { return m_window->document().objects().size() == count; });
}

QString TestHandover::printed(bool chosenOnly)
{
    const QString file = m_files->path(QStringLiteral("printed.pdf"));
    whenDialogRuns([&](QDialog& dialog) {
        auto* asked = qobject_cast<QPrintDialog*>(&dialog);
        auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("filename"));
        if (!asked || !name)
            qFatal("This is not the print dialog");
        if (chosenOnly)
            dialog.findChild<QRadioButton*>(QStringLiteral("printSelection"))->setChecked(true);
        name->setText(file);
        dialog.accept();
    });
    trigger("print");
    return QFileInfo::exists(file) ? textOfPdf(file) : QString();
}

void TestHandover::prints()
{
    m_window->document().reset(rowOfSquares({ QStringLiteral("Ю1"), QStringLiteral("Ю2") }), {});
    const QString text = printed(false).simplified();
    QVERIFY2(text.contains(QStringLiteral("План и каталог координат")), qPrintable(text));
    QVERIFY(text.contains(QStringLiteral("Объект Ю1")));
    QVERIFY(text.contains(QStringLiteral("Объект Ю2")));
    const auto number = [](double value) { return QLocale().toString(value, 'f', 2); };
    QVERIFY(text.contains(
        QStringLiteral("Площадь %1 кв. м, периметр %2 м").arg(number(100), number(40))));
    // The second vertex of the second square, and the side to the north from it.
    QVERIFY2(text.contains(
                 QStringLiteral("2 т2 %1 %2 %3 0°00,0′").arg(number(0), number(30), number(10))),
        qPrintable(text));
}

void TestHandover::printsChosen()
{
    m_window->document().reset(rowOfSquares({ QStringLiteral("Ю1"), QStringLiteral("Ю2") }), {});
    auto& objects = widget<QTableView>("objects");
    objects.setCurrentIndex(objects.model()->index(1, 0));
    const QString text = printed(true);
    QVERIFY2(text.contains(QStringLiteral("Объект Ю2")), qPrintable(text));
    QVERIFY(!text.contains(QStringLiteral("Объект Ю1")));
}

void TestHandover::cancelsPrinting()
{
    m_window->document().reset(rowOfSquares({ QStringLiteral("Ю1") }), {});
    bool isAsked = false;
    whenDialogRuns([&](QDialog& dialog) {
        auto* asked = qobject_cast<QPrintDialog*>(&dialog);
        isAsked = asked != nullptr;
        if (asked) {
            dialog.findChild<QLineEdit*>(QStringLiteral("filename"))
                ->setText(m_files->path(QStringLiteral("none.pdf")));
        }
        dialog.reject();
    });
    trigger("print");
    QVERIFY(isAsked);
    QVERIFY(!QFileInfo::exists(m_files->path(QStringLiteral("none.pdf"))));
}

void TestHandover::copiesLongCatalogue()
{
    constexpr int vertices = 60000;
    m_window->document().reset(longLine(vertices), {});
    trigger("copy");
    const QMimeData* copied = QApplication::clipboard()->mimeData();
    const QStringList lines = copied->text().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 1 + vertices + 1);
    QCOMPARE(lines.at(vertices).section(QLatin1Char('\t'), 0, 0), QString::number(vertices - 1));
    // As a table it would be ten times as long.
    QVERIFY(!copied->hasHtml());
}

void TestHandover::copiesChosenRows()
{
    m_window->document().reset(longLine(10), {});
    auto& catalogue = widget<QTableView>("catalogue");
    QItemSelection rows(catalogue.model()->index(2, 0), catalogue.model()->index(4, 2));
    catalogue.selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect);
    trigger("copy");
    const QStringList lines = QApplication::clipboard()->text().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 1 + 3 + 1);
    QVERIFY(lines.at(1).startsWith(QStringLiteral("2\t")));
    QVERIFY(QApplication::clipboard()->mimeData()->html().contains(QStringLiteral("<td>4</td>")));
}

void TestHandover::cancelledCopyLeavesClipboard()
{
    m_window->document().reset(longLine(500000), {});
    QApplication::clipboard()->setText(QStringLiteral("прежнее"));
    // The end of the program ends the wait, as its cancellation does.
    QTimer::singleShot(0, this, [this] {
        QTimer::singleShot(0, qApp, [] { QApplication::exit(); });
        trigger("copy");
    });
    QApplication::exec();
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("прежнее"));
}

void TestHandover::cancelledTextEnds()
{
    const CatalogueText catalogue(longLine(5), 0, { QStringLiteral("Точка") });
    const std::atomic_bool cancelled{ true };
    QCOMPARE(catalogue.plain({ 0, 1, 2 }, cancelled), QStringLiteral("Точка\n"));
    const std::atomic_bool goesOn{ false };
    QCOMPARE(catalogue.plain({ 0, 1, 7 }, goesOn), QStringLiteral("Точка\n0\n1\n\n"));
}

QString TestHandover::twoLayers(const QByteArray& content)
{
    const QString json = m_files->write(QStringLiteral("a.geojson"), content);
    QString file = m_files->path(QStringLiteral("two.gpkg"));
    const auto add = [&](const QStringList& options, const char* layer) {
        const QStringList arguments{ file, json, QStringLiteral("-nln"), QLatin1String(layer) };
        if (QProcess::execute(QStringLiteral("ogr2ogr"), options + arguments) != 0)
            qFatal("No layer %s is written", layer);
    };
    add({ QStringLiteral("-f"), QStringLiteral("GPKG") }, "first");
    add({ QStringLiteral("-update") }, "second");
    return file;
}

void TestHandover::opensOtherFormat()
{
    if (!hasOgr())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    const QString file = m_files->write(QStringLiteral("parcels.geojson"), geoJson);
    whenDialogRuns([&](QDialog& dialog) {
        auto* column = dialog.findChild<QComboBox*>(QStringLiteral("columnCombo"));
        if (!column)
            qFatal("This is not the dialog for other formats");
        column->setCurrentText(QStringLiteral("number"));
        whenDialogRuns(startAndAccept);
        dialog.accept();
    });
    m_window->openFiles({ file });
    QVERIFY(waitForObjects(1));
    const DefPolygon& object = m_window->document().objects().first();
    QCOMPARE(object.def, QStringLiteral("50:1"));
    QCOMPARE(object.contours.first().size(), 5);
    QVERIFY(QFileInfo::exists(m_files->path(QStringLiteral("parcels-готов.mif"))));
    QVERIFY(QFileInfo::exists(m_files->path(QStringLiteral("parcels-готов.mid"))));
    const auto* told = m_window->findChild<QTextBrowser*>(QStringLiteral("diagnosisText"));
    QVERIFY(
        waitFor([&] { return told->toPlainText().contains(QStringLiteral("parcels-готов.mif")); }));
    QVERIFY(
        told->toPlainText().contains(QStringLiteral("файл переведён в MIF программой ogr2ogr")));
}

void TestHandover::numbersObjectsWithoutColumn()
{
    if (!hasOgr())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    // The name that the added column would have is taken.
    QByteArray content = geoJson;
    content.replace("\"number\"", "\"Name\"");
    QVERIFY(content != geoJson);
    const QString file = twoLayers(content);
    whenDialogRuns([&](QDialog& dialog) {
        dialog.findChild<QComboBox*>(QStringLiteral("layerCombo"))
            ->setCurrentText(QStringLiteral("second"));
        dialog.findChild<QComboBox*>(QStringLiteral("columnCombo"))->setCurrentIndex(0);
        whenDialogRuns(startAndAccept);
        dialog.accept();
    });
    m_window->openFiles({ file });
    QVERIFY(waitForObjects(1));
    QCOMPARE(m_window->document().objects().first().def, QStringLiteral(":ЗУ1"));
    // The copy has the other columns all the same.
    QFile mid(m_files->path(QStringLiteral("two-готов.mid")));
    QVERIFY(mid.open(QIODevice::ReadOnly));
    const QByteArray row = mid.readAll();
    QVERIFY2(row.startsWith("\"\",") && row.contains("\"50:1\""), row.constData());
}

void TestHandover::asksForColumn()
{
    const QString number = QStringLiteral("number");
    ForeignDialog dialog(QStringLiteral("a.gpkg"),
        { { QStringLiteral("first"), { number, QStringLiteral("area") }, true },
            { QStringLiteral("second"), {}, true } });
    auto* column = dialog.findChild<QComboBox*>(QStringLiteral("columnCombo"));
    // Most files have one, and none is no answer that is given without a word.
    QCOMPARE(column->itemText(0), QStringLiteral("(нет, объекты нумеруются)"));
    QCOMPARE(column->count(), 3);
    QCOMPARE(dialog.column(), number);
    column->setCurrentIndex(0);
    QCOMPARE(dialog.column(), QString());
    dialog.findChild<QComboBox*>(QStringLiteral("layerCombo"))->setCurrentIndex(1);
    QCOMPARE(column->count(), 1);
    QCOMPARE(dialog.column(), QString());
    QVERIFY(!column->isEnabled());
}

void TestHandover::choosesLayer()
{
    if (!hasOgr())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    const QString file = twoLayers(geoJson);
    QStringList layers;
    whenDialogRuns([&](QDialog& dialog) {
        auto* layer = dialog.findChild<QComboBox*>(QStringLiteral("layerCombo"));
        for (int i = 0; i < layer->count(); ++i)
            layers.append(layer->itemText(i));
        layer->setCurrentText(QStringLiteral("second"));
        whenDialogRuns(startAndAccept);
        dialog.accept();
    });
    m_window->openFiles({ file });
    QVERIFY(waitForObjects(1));
    QCOMPARE(prep::layerPattern(QStringLiteral("a[b]*?")), QStringLiteral("a[[]b][*][?]"));
    QCOMPARE(layers, QStringList({ QStringLiteral("first"), QStringLiteral("second") }));
}

void TestHandover::cancelsOtherFormat()
{
    if (!hasOgr())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    const QString file = m_files->write(QStringLiteral("a.geojson"), geoJson);
    bool isAsked = false;
    whenDialogRuns([&](QDialog& dialog) {
        isAsked = dialog.findChild<QComboBox*>(QStringLiteral("layerCombo")) != nullptr;
        dialog.reject();
    });
    m_window->openFiles({ file });
    QVERIFY(waitFor([&] { return isAsked; }));
    QVERIFY(!QFileInfo::exists(m_files->path(QStringLiteral("a-готов.mif"))));
}

void TestHandover::tellsWhatReadsOtherFormat()
{
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(m_files->path(QString())));
    QString told;
    whenDialogRuns([&](QDialog& dialog) {
        auto* box = qobject_cast<QMessageBox*>(&dialog);
        told = box ? box->text() : QString();
        dialog.accept();
    });
    m_window->openFiles({ m_files->write(QStringLiteral("a.shp"), "none") });
    const bool isTold = waitFor([&] { return !told.isEmpty(); });
    qputenv("PATH", path);
    QVERIFY(isTold);
    QVERIFY2(told.startsWith(QStringLiteral("a.shp: ")), qPrintable(told));
    QVERIFY2(told.contains(QStringLiteral("gdal-bin")), qPrintable(told));
}

void TestHandover::tellsUnknownFile()
{
    QString told;
    whenDialogRuns([&](QDialog& dialog) {
        auto* box = qobject_cast<QMessageBox*>(&dialog);
        told = box ? box->text() : QString();
        dialog.accept();
    });
    m_window->openFiles({ m_files->write(QStringLiteral("a.txt"), "none") });
    QVERIFY(waitFor([&] { return !told.isEmpty(); }));
    QVERIFY2(told.contains(QStringLiteral("shp")), qPrintable(told));
}

void TestHandover::opensPairOnce()
{
    // Both files of a pair are dropped: nothing is the matter with the second one.
    const QString mid = m_files->write(QStringLiteral("a.mid"), "\"1\"\n");
    const QString file = m_files->write(QStringLiteral("a.mif"), mif("Pline 2\n0 0\n10 10\n"));
    bool isWarned = false;
    whenDialogRuns([&](QDialog& dialog) {
        isWarned = qobject_cast<QMessageBox*>(&dialog) != nullptr;
        startAndAccept(dialog);
    });
    m_window->openFiles({ mid, file });
    QVERIFY(waitForObjects(1));
    QVERIFY(!isWarned);
}

QTEST_MAIN(TestHandover)
#include "tst_handover.moc"
