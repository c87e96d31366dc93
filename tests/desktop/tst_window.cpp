#include "cataloguemodel.h"
#include "diagnosispane.h"
#include "guidewindow.h"
#include "messagespane.h"
#include "objectsmodel.h"
#include "planwidget.h"
#include "support/miftext.h"
#include "windowdriver.h"
#include "windowtest.h"

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QDropEvent>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QXmlStreamReader>

namespace {

QString locale(double value)
{
    return QLocale().toString(value, 'f', 2);
}

} // namespace

class TestWindow : public WindowTest {
    Q_OBJECT

private slots:
    void findsPlugin();
    void offersOperations();
    void opensDrawing();
    void opensSeveral();
    void cancelLeavesForm();
    void selectsFromTable();
    void selectsFromPlan();
    void selectsPoints();
    void marksDuplicates();
    void undoesEdits();
    void undoesPointNames();
    void finds();
    void savesAndOpensForm();
    void exportsCsv();
    void exportsGeoJson();
    void exportsMif();
    void exportsPictures();
    void exportsPdf();
    void exportsChosenPdf();
    void repeatsHeadOfTable();
    void tellsUnwritableFile();
    void copiesCatalogue();
    void takesDroppedFiles();
    void keepsMessages();
    void mendsRefusedDrawing();
    void changesTables();
    void remembersSession();
    void bearsBadSettings();
    void isReachableByKeyboard();
    void showsCoordinates();
    void zoomsAtCursor();
    void showsGuide();
    void explainsEmptyResult();
    void keepsLossesOfBatch();
    void goesThroughParts();
    void copiesMessages();
    void marksAreReadInTheDark();
};

void TestWindow::findsPlugin()
{
    PluginHost missing;
    QVERIFY(!missing.load(m_files->path(QStringLiteral("none.so"))));
    QVERIFY(!missing.errorString().isEmpty());
    QVERIFY(missing.operations().isEmpty());

    // In the folder of the program: a copy of it suffices.
    const QString folder = QApplication::applicationDirPath() + QStringLiteral("/importgeometry");
    QVERIFY(QDir().mkpath(folder));
    // Tests run side by side, from one folder.
    const QString name =
        QStringLiteral("/libimportgeometry.%1.so").arg(QApplication::applicationPid());
    const QString copy = folder + name;
    QFile::remove(copy);
    QVERIFY(QFile::copy(QStringLiteral(PLUGIN_PATH), copy));
    const QStringList candidates = PluginHost::candidates();
    QFile::remove(copy);
    QVERIFY(candidates.contains(QFileInfo(folder).canonicalFilePath() + name));
}

void TestWindow::offersOperations()
{
    QCOMPARE(widget<QAction>("operation0").text(), QStringLiteral("Объекты из MIF…"));
    QCOMPARE(widget<QAction>("operation1").text(), QStringLiteral("Объекты из DXF…"));
    QCOMPARE(m_host->operationFor(QStringLiteral("a.MIF")), QStringLiteral("Объекты из MIF"));
    QCOMPARE(m_host->operationFor(QStringLiteral("a.dxf")), QStringLiteral("Объекты из DXF"));
    QVERIFY(m_host->operationFor(QStringLiteral("a.txt")).isEmpty());
}

void TestWindow::opensDrawing()
{
    QString filled;
    QString encoding;
    const QString file = squares();
    whenDialogRuns([&](QDialog& dialog) {
        filled = dialog.findChild<QWidget*>(QStringLiteral("objectFileNameEdit"))
                     ->property("text")
                     .toString();
        encoding = dialog.findChild<QWidget*>(QStringLiteral("encodingCombo"))
                       ->property("currentText")
                       .toString();
        startAndAccept(dialog);
    });
    m_window->openFiles({ file });
    QVERIFY(waitFor([&] { return !m_window->document().objects().isEmpty(); }));
    QCOMPARE(filled, file);
    QCOMPARE(encoding, QStringLiteral("Windows-1251"));
    QCOMPARE(shownObjects(), QStringLiteral("А Б А").split(QLatin1Char(' ')));

    // The first object is shown: its file's first coordinate stands in the last column.
    const QAbstractItemModel& catalogue = *widget<QTableView>("catalogue").model();
    QCOMPARE(catalogue.rowCount(), 5);
    const auto cell = [&](int row, int column) { return catalogue.index(row, column).data(); };
    QCOMPARE(cell(1, 0).toString(), QStringLiteral("н2"));
    QCOMPARE(cell(1, 1).toString(), locale(0));
    QCOMPARE(cell(1, 2).toString(), locale(10));
    QCOMPARE(catalogue.headerData(1, Qt::Horizontal).toString(), QStringLiteral("X"));
}

void TestWindow::opensSeveral()
{
    open({ squares("one"), squares("two") });
    QCOMPARE(m_window->document().objects().size(), 6);
    // Each is a step of its own.
    trigger("undo");
    QCOMPARE(m_window->document().objects().size(), 3);
}

void TestWindow::cancelLeavesForm()
{
    openSquares();
    bool isDone = false;
    whenDialogRuns([&](QDialog& dialog) {
        dialog.reject();
        isDone = true;
    });
    m_window->openFiles({ squares() });
    QVERIFY(waitFor([&] { return isDone; }));
    QTest::qWait(50);
    QCOMPARE(m_window->document().objects().size(), 3);
    QCOMPARE(m_window->document().undoStack().count(), 1);
}

void TestWindow::selectsFromTable()
{
    openSquares();
    auto& objects = widget<QTableView>("objects");
    auto& plan = widget<PlanWidget>("plan");
    QCOMPARE(plan.selection().objects, QVector<int>{ 0 });
    const QPoint row = objects.visualRect(objects.model()->index(1, 0)).center();
    QTest::mouseClick(objects.viewport(), Qt::LeftButton, Qt::NoModifier, row);
    QCOMPARE(plan.selection().objects, QVector<int>{ 1 });
    objects.selectAll();
    QCOMPARE(plan.selection().objects.size(), 3);
}

void TestWindow::selectsFromPlan()
{
    openSquares();
    auto& plan = widget<PlanWidget>("plan");
    const auto click = [&](double x, double y) {
        QTest::mouseClick(
            &plan, Qt::LeftButton, Qt::NoModifier, plan.placeOf(DefPoint{ {}, x, y }).toPoint());
    };
    click(25, 5);
    QCOMPARE(widget<QTableView>("objects").currentIndex().row(), 1);
    click(5, 25);
    QCOMPARE(widget<QTableView>("objects").currentIndex().row(), 2);
    QCOMPARE(widget<QTableView>("catalogue").model()->index(0, 0).data().toString(),
        QStringLiteral("н9"));
    // Between the squares there is nothing.
    click(15, 15);
    QVERIFY(plan.selection().objects.isEmpty());
    QVERIFY(!widget<QTableView>("objects").selectionModel()->hasSelection());
}

void TestWindow::selectsPoints()
{
    openSquares();
    auto& plan = widget<PlanWidget>("plan");
    auto& catalogue = widget<QTableView>("catalogue");
    catalogue.setCurrentIndex(catalogue.model()->index(3, 1));
    QCOMPARE(plan.selection().contour, 0);
    QCOMPARE(plan.selection().vertex, 3);
    QTest::mouseClick(
        &plan, Qt::LeftButton, Qt::NoModifier, plan.placeOf(DefPoint{ {}, 10, 10 }).toPoint());
    QCOMPARE(catalogue.currentIndex().row(), 2);
    QCOMPARE(plan.selection().vertex, 2);
}

void TestWindow::marksDuplicates()
{
    openSquares();
    const QAbstractItemModel& model = *widget<QTableView>("objects").model();
    const auto isMarked = [&](int row) {
        return model.index(row, 0).data(Qt::BackgroundRole).isValid();
    };
    QVERIFY(isMarked(0));
    QVERIFY(!isMarked(1));
    QVERIFY(isMarked(2));
    // In the plan the lines of both are red: the middle of a left edge tells.
    auto& plan = widget<PlanWidget>("plan");
    plan.select({});
    const QImage picture = plan.grab().toImage();
    const double ratio = picture.devicePixelRatio();
    const auto redness = [&](double x, double y) {
        const QPoint place = (plan.placeOf(DefPoint{ {}, x, y }) * ratio).toPoint();
        int most = -255;
        for (int step = -2; step <= 2; ++step) {
            const QColor color = picture.pixelColor(place + QPoint(step, 0));
            most = std::max(most, color.red() - color.blue());
        }
        return most;
    };
    QVERIFY(redness(0, 5) > 60);
    QVERIFY(redness(20, 5) <= 0);
}

void TestWindow::undoesEdits()
{
    QAbstractItemModel& model = *widget<QTableView>("objects").model();
    const QAbstractItemModelTester tester(
        &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    openSquares();
    const QModelIndex last = model.index(2, 0);
    QVERIFY(model.setData(last, QStringLiteral("В"), Qt::EditRole));
    QCOMPARE(shownObjects().last(), QStringLiteral("В"));
    QVERIFY(!model.index(0, 0).data(Qt::BackgroundRole).isValid());
    QVERIFY(m_window->isWindowModified());
    QVERIFY(!model.setData(last, QStringLiteral("В"), Qt::EditRole));
    trigger("undo");
    QCOMPARE(shownObjects().last(), QStringLiteral("А"));
    QVERIFY(model.index(0, 0).data(Qt::BackgroundRole).isValid());
    trigger("redo");
    QCOMPARE(shownObjects().last(), QStringLiteral("В"));
}

void TestWindow::undoesPointNames()
{
    QAbstractItemModel& model = *widget<QTableView>("catalogue").model();
    const QAbstractItemModelTester tester(
        &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    openSquares();
    const auto isMarked = [&](int row) {
        return model.index(row, 0).data(Qt::BackgroundRole).isValid();
    };
    // The second point under the name of the first one stands at another place.
    QVERIFY(model.setData(model.index(1, 0), QStringLiteral("н1"), Qt::EditRole));
    QVERIFY(isMarked(0) && isMarked(1) && isMarked(4));
    QVERIFY(!isMarked(2));
    QVERIFY(!model.setData(model.index(1, 1), QStringLiteral("7"), Qt::EditRole));
    trigger("undo");
    QCOMPARE(model.index(1, 0).data().toString(), QStringLiteral("н2"));
    QVERIFY(!isMarked(0) && !isMarked(1));
}

void TestWindow::finds()
{
    openSquares();
    auto& objects = widget<QTableView>("objects");
    auto& search = widget<QLineEdit>("search");
    search.setText(QStringLiteral("а"));
    trigger("findNext");
    QCOMPARE(objects.currentIndex().row(), 2);
    trigger("findNext");
    QCOMPARE(objects.currentIndex().row(), 0);
    trigger("findPrevious");
    QCOMPARE(objects.currentIndex().row(), 2);
    search.setText(QStringLiteral("нет такого"));
    trigger("findNext");
    QCOMPARE(objects.currentIndex().row(), 2);
}

void TestWindow::savesAndOpensForm()
{
    openSquares();
    const QString file = m_files->path(QStringLiteral("форма.xml"));
    QVERIFY(m_window->exportTo(FormFile::Xml, file));
    QProcess reader;
    reader.start(QStringLiteral(CLI_PATH),
        { QStringLiteral("convert"), squares(), QStringLiteral("--encoding"),
            QStringLiteral("Windows-1251"), QStringLiteral("--object-column"), QStringLiteral("2"),
            QStringLiteral("--table"), QStringLiteral("Участки"), QStringLiteral("--catalogue"),
            QStringLiteral("Координаты"), QStringLiteral("-o"),
            m_files->path(QStringLiteral("команда.xml")) });
    QVERIFY(reader.waitForFinished(60000));
    QFile ours(file);
    QFile theirs(m_files->path(QStringLiteral("команда.xml")));
    QVERIFY2(ours.open(QIODevice::ReadOnly) && theirs.open(QIODevice::ReadOnly),
        reader.readAllStandardError().constData());
    // To the letter what the command writes of the same drawing.
    QCOMPARE(
        QString::fromUtf8(ours.readAll()).trimmed(), QString::fromUtf8(theirs.readAll()).trimmed());

    m_window->document().undoStack().setClean();
    m_window->openFiles({ file });
    QVERIFY(waitFor([&] { return m_window->document().fileName() == file; }));
    QCOMPARE(shownObjects().size(), 3);
}

void TestWindow::exportsCsv()
{
    openSquares();
    const QString file = m_files->path(QStringLiteral("a.csv"));
    QVERIFY(m_window->exportTo(FormFile::Csv, file));
    QFile csv(file);
    QVERIFY(csv.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(csv.readAll()).split(QLatin1Char('\n'));
    // A title, and a row for each of fifteen vertices.
    QCOMPARE(lines.size(), 1 + 15 + 1);
    QVERIFY(lines.at(2).startsWith(QStringLiteral("А;1;2;н2;10;0;100,00;40,00")));
}

void TestWindow::exportsGeoJson()
{
    openSquares();
    const QString file = m_files->path(QStringLiteral("a.geojson"));
    QVERIFY(m_window->exportTo(FormFile::GeoJson, file));
    QFile json(file);
    QVERIFY(json.open(QIODevice::ReadOnly));
    const QJsonArray features =
        QJsonDocument::fromJson(json.readAll()).object()[QStringLiteral("features")].toArray();
    QCOMPARE(features.size(), 3);
    const QJsonObject geometry = features.at(1).toObject()[QStringLiteral("geometry")].toObject();
    QCOMPARE(geometry[QStringLiteral("type")].toString(), QStringLiteral("Polygon"));
    QCOMPARE(geometry[QStringLiteral("coordinates")].toArray().at(0).toArray().size(), 5);
}

void TestWindow::exportsMif()
{
    openSquares();
    const QString file = m_files->path(QStringLiteral("a.mif"));
    QVERIFY(m_window->exportTo(FormFile::Mif, file));
    QVERIFY(QFileInfo::exists(m_files->path(QStringLiteral("a.mid"))));
    // The command reads what the window wrote.
    QProcess reader;
    reader.start(QStringLiteral(CLI_PATH),
        { QStringLiteral("convert"), file, QStringLiteral("--encoding"),
            QStringLiteral("Windows-1251"), QStringLiteral("--object-column"), QStringLiteral("2"),
            QStringLiteral("-o"), m_files->path(QStringLiteral("back.xml")) });
    QVERIFY(reader.waitForFinished(60000));
    QCOMPARE(reader.exitCode(), 0);
    QFile back(m_files->path(QStringLiteral("back.xml")));
    QVERIFY(back.open(QIODevice::ReadOnly));
    FormTable table;
    QVERIFY(!readForm(back, { 0, 2, 1, 1 }, table));
    QCOMPARE(table.objects.size(), 3);
    QCOMPARE(table.objects.at(1).def, QStringLiteral("Б"));
    QCOMPARE(table.objects.at(1).contours.at(0).size(), 5);
}

void TestWindow::exportsPictures()
{
    openSquares();
    const QString png = m_files->path(QStringLiteral("a.png"));
    QVERIFY(m_window->exportTo(FormFile::Png, png));
    QVERIFY(QImage(png).width() > 200);
    const QString svg = m_files->path(QStringLiteral("a.svg"));
    QVERIFY(m_window->exportTo(FormFile::Svg, svg));
    QFile file(svg);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    QStringList texts;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == QLatin1String("text"))
            texts.append(xml.readElementText());
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    QVERIFY(texts.contains(QStringLiteral("Б")));
}

void TestWindow::exportsPdf()
{
    openSquares();
    const QString file = m_files->path(QStringLiteral("a.pdf"));
    QVERIFY(m_window->exportTo(FormFile::Pdf, file));
    const QString text = textOfPdf(file).simplified();
    QVERIFY(text.contains(QStringLiteral("План и каталог координат")));
    QVERIFY(text.contains(QStringLiteral("Объект Б")));
    QVERIFY(text.contains(
        QStringLiteral("Площадь %1 кв. м, периметр %2 м").arg(locale(100), locale(40))));
    // Along the first square: to the east, to the north, to the west, to the south.
    const QString row = QStringLiteral("%1 %2 %3 %4 %5 %6");
    const auto has = [&](const char* number, const char* def, double x, double y,
                         const char* bearing) {
        return text.contains(row.arg(QLatin1String(number), QString::fromUtf8(def), locale(x),
            locale(y), locale(10), QString::fromUtf8(bearing)));
    };
    QVERIFY2(has("1", "н1", 0, 0, "90°00,0′"), qPrintable(text));
    QVERIFY(has("2", "н2", 0, 10, "0°00,0′"));
    QVERIFY(has("3", "н3", 10, 10, "270°00,0′"));
    QVERIFY(has("4", "н4", 10, 0, "180°00,0′"));
}

void TestWindow::exportsChosenPdf()
{
    openSquares();
    auto& objects = widget<QTableView>("objects");
    objects.setCurrentIndex(objects.model()->index(1, 0));
    const QString file = m_files->path(QStringLiteral("b.pdf"));
    QVERIFY(m_window->exportTo(FormFile::Pdf, file, true));
    const QString text = textOfPdf(file);
    QVERIFY(text.contains(QStringLiteral("Объект Б")));
    QVERIFY(!text.contains(QStringLiteral("Объект А")));
}

void TestWindow::repeatsHeadOfTable()
{
    FormTable table;
    DefPolygon object{ QStringLiteral("длинный"), { {} } };
    for (int i = 0; i < 120; ++i)
        object.contours.first().append({ QString::number(i), double(i), double(i * i) });
    table.objects.append(object);
    table.others.resize(1);
    m_window->document().reset(table, {});
    const QString file = m_files->path(QStringLiteral("c.pdf"));
    QVERIFY(m_window->exportTo(FormFile::Pdf, file));
    const QString text = textOfPdf(file);
    // Beside the plan there is room for some rows, a page has about fifty.
    const int pages = text.count(QStringLiteral("Лист "));
    QVERIFY(pages > 2);
    QCOMPARE(text.count(QStringLiteral("Дир. угол")), pages);
}

void TestWindow::tellsUnwritableFile()
{
    openSquares();
    QString told;
    whenDialogRuns([&](QDialog& dialog) {
        auto* box = qobject_cast<QMessageBox*>(&dialog);
        told = box ? box->text() : QString();
        dialog.accept();
    });
    QVERIFY(!m_window->exportTo(FormFile::Csv, m_files->path(QStringLiteral("none/a.csv"))));
    QVERIFY(told.startsWith(QStringLiteral("Ошибка записи файла")));
}

void TestWindow::copiesCatalogue()
{
    openSquares();
    trigger("copy");
    const QMimeData* copied = QApplication::clipboard()->mimeData();
    const QStringList lines = copied->text().split(QLatin1Char('\n'));
    QCOMPARE(lines.at(0), QStringLiteral("Точка\tX\tY"));
    QCOMPARE(lines.at(2), QStringLiteral("н2\t%1\t%2").arg(locale(0), locale(10)));
    QCOMPARE(lines.size(), 1 + 5 + 1);
    QVERIFY(copied->html().contains(QStringLiteral("<td>н2</td>")));
}

void TestWindow::takesDroppedFiles()
{
    QMimeData dropped;
    dropped.setUrls({ QUrl::fromLocalFile(squares()) });
    QDragEnterEvent enter({ 100, 100 }, Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_window.get(), &enter);
    QVERIFY(enter.isAccepted());
    whenDialogRuns(startAndAccept);
    QDropEvent drop({ 100, 100 }, Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_window.get(), &drop);
    QVERIFY(waitFor([&] { return m_window->document().objects().size() == 3; }));
}

void TestWindow::keepsMessages()
{
    const QString file = m_files->write(QStringLiteral("bad.mif"), "no drawing\n");
    bool isDone = false;
    whenDialogRuns([&](QDialog& dialog) {
        startAndAccept(dialog);
        isDone = true;
    });
    m_window->openFiles({ file });
    auto& messages = widget<MessagesPane>("messages");
    QVERIFY(waitFor([&] { return isDone && messages.topLevelItemCount() == 1; }));
    const QTreeWidgetItem& item = *messages.topLevelItem(0);
    QVERIFY(QTime::fromString(item.text(0), QStringLiteral("HH:mm:ss")).isValid());
    QCOMPARE(item.text(1), QStringLiteral("bad.mif"));
    QVERIFY(item.text(2).contains(QStringLiteral("не соответствует формату MIF")));
}

void TestWindow::mendsRefusedDrawing()
{
    const QString file = m_files->path(QStringLiteral("survey.dxf"));
    QVERIFY(QFile::copy(QStringLiteral(SAMPLES_DIR "/survey.dxf"), file));
    auto& told = widget<QTextBrowser>("diagnosisText");
    auto& mend = widget<QPushButton>("mendButton");
    whenDialogRuns(startAndAccept);
    m_window->openFiles({ file });
    QVERIFY(waitFor([&] { return mend.isEnabled(); }));
    QVERIFY(m_window->document().objects().isEmpty());
    QVERIFY(told.toPlainText().contains(QStringLiteral("Файл начинается с комментария (код 999)")));
    QVERIFY(told.toPlainText().contains(QStringLiteral("survey.dxf, строка 1")));

    whenDialogRuns(startAndAccept);
    mend.click();
    // Two parcels and a building; the empty result of the drawing itself is taken back.
    QVERIFY(waitFor([&] { return m_window->document().objects().size() == 3; }));
    QVERIFY(QFileInfo::exists(m_files->path(QStringLiteral("survey-готов.dxf"))));
    QVERIFY(told.toPlainText().contains(QStringLiteral("убраны комментарии (код 999): 1")));
    QCOMPARE(m_window->document().undoStack().index(), 1);
}

void TestWindow::changesTables()
{
    openSquares();
    bool isRefused = false;
    whenDialogRuns([&](QDialog& dialog) {
        const auto spin = [&](const char* name) {
            return dialog.findChild<QSpinBox*>(QLatin1String(name));
        };
        // Two things in one column are refused.
        spin("xSpin")->setValue(1);
        whenDialogRuns([&](QDialog& warning) {
            isRefused = true;
            warning.accept();
        });
        dialog.accept();
        spin("xSpin")->setValue(2);
        spin("ySpin")->setValue(3);
        dialog.findChild<QLineEdit*>(QStringLiteral("tableEdit"))->setText(QStringLiteral("Зоны"));
        dialog.findChild<QLineEdit*>(QStringLiteral("titlesEdit"))
            ->setText(QStringLiteral("N, Север"));
        dialog.accept();
    });
    trigger("formSettings");
    QVERIFY(isRefused);
    QCOMPARE(m_window->document().table().name, QStringLiteral("Зоны"));
    QVERIFY(m_window->document().isNorthingFirst());
    const QAbstractItemModel& catalogue = *widget<QTableView>("catalogue").model();
    QCOMPARE(catalogue.index(1, 1).data().toString(), locale(10));
    QCOMPARE(catalogue.index(1, 2).data().toString(), locale(0));
    QCOMPARE(catalogue.headerData(1, Qt::Horizontal).toString(), QStringLiteral("Север"));
    QCOMPARE(catalogue.headerData(2, Qt::Horizontal).toInt(), 3);
    trigger("undo");
    QCOMPARE(m_window->document().table().name, QStringLiteral("Участки"));
    QCOMPARE(catalogue.index(1, 2).data().toString(), locale(10));
}

void TestWindow::remembersSession()
{
    openSquares();
    const QString file = m_files->path(QStringLiteral("a.xml"));
    QVERIFY(m_window->exportTo(FormFile::Xml, file));
    m_window->document().setSaved(file);
    auto& objects = widget<QTableView>("objects");
    objects.setCurrentIndex(objects.model()->index(2, 0));
    m_window->resize(900, 640);
    const QSize size = m_window->size();
    QVERIFY(m_window->close());

    m_window = std::make_unique<MainWindow>(*m_host);
    m_window->restoreSession();
    QCOMPARE(m_window->document().fileName(), file);
    QCOMPARE(widget<QTableView>("objects").currentIndex().row(), 2);
    QCOMPARE(m_window->size(), size);
    QVERIFY(QSettings().value(QStringLiteral("recent")).toStringList().contains(squares()));
}

void TestWindow::bearsBadSettings()
{
    QSettings store;
    store.setValue(QStringLiteral("form/xColumn"), QStringLiteral("много"));
    store.setValue(QStringLiteral("form/yColumn"), 2000000000);
    store.setValue(QStringLiteral("form/pointColumn"), -7);
    store.setValue(QStringLiteral("window/geometry"), QByteArray("\xFF\x00\x01", 3));
    store.setValue(QStringLiteral("window/state"), QByteArray(1000, 'x'));
    store.setValue(QStringLiteral("session/file"), m_files->path(QString()));
    store.setValue(QStringLiteral("session/object"), 99);
    m_window = std::make_unique<MainWindow>(*m_host);
    m_window->restoreSession();
    m_window->show();
    const GeometryInfo& columns = m_window->document().table().columns;
    QVERIFY(columns.nColNum >= 0 && columns.xColNum >= 0 && columns.yColNum < 1000);
}

void TestWindow::isReachableByKeyboard()
{
    const auto actions = m_window->menuBar()->findChildren<QAction*>();
    QVERIFY(actions.size() > 5);
    for (const char* name : { "objects", "catalogue", "plan", "search", "messages" })
        QVERIFY2(!widget<QWidget>(name).accessibleName().isEmpty(), name);
    QCOMPARE(widget<QAction>("undo").shortcut(), QKeySequence(QKeySequence::Undo));
    QCOMPARE(widget<QAction>("open").shortcut(), QKeySequence(QKeySequence::Open));

    // The tab key goes through all parts of the window.
    QSet<QString> visited;
    QWidget* focus = &widget<QWidget>("search");
    for (int i = 0; i < 100; ++i) {
        visited.insert(focus->objectName());
        focus = focus->nextInFocusChain();
    }
    for (const char* name : { "search", "objects", "catalogue", "plan", "diagnosisText" })
        QVERIFY2(visited.contains(QLatin1String(name)), name);
    openSquares();
    auto& plan = widget<PlanWidget>("plan");
    const double scale = plan.scale();
    QTest::keyClick(&plan, Qt::Key_Plus);
    QVERIFY(plan.scale() > scale);
    QTest::keyClick(&plan, Qt::Key_Home);
    QCOMPARE(plan.scale(), scale);
}

void TestWindow::showsCoordinates()
{
    openSquares();
    auto& plan = widget<PlanWidget>("plan");
    QString shown;
    connect(&plan, &PlanWidget::cursorMoved, this, [&](const QString& text) { shown = text; });
    const QPointF place = plan.placeOf(DefPoint{ {}, 25, 5 }).toPoint();
    QMouseEvent move(QEvent::MouseMove, place, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&plan, &move);
    // X runs to the north, Y to the east; a pixel is less than half a unit here.
    static const QRegularExpression form(QStringLiteral("^X (\\S+)  Y (\\S+)$"));
    const auto match = form.match(shown);
    QVERIFY2(match.hasMatch(), qPrintable(shown));
    QVERIFY(std::abs(QLocale().toDouble(match.captured(1)) - 5) < 0.5);
    QVERIFY(std::abs(QLocale().toDouble(match.captured(2)) - 25) < 0.5);
}

void TestWindow::zoomsAtCursor()
{
    openSquares();
    auto& plan = widget<PlanWidget>("plan");
    const DefPoint corner{ {}, 30, 10 };
    const QPointF place = plan.placeOf(corner);
    const double scale = plan.scale();
    QWheelEvent wheel(place, plan.mapToGlobal(place.toPoint()), {}, { 0, 240 }, Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&plan, &wheel);
    QVERIFY(plan.scale() > scale * 1.5);
    const QPointF way = plan.placeOf(corner) - place;
    QVERIFY(way.manhattanLength() < 0.01);
}

void TestWindow::showsGuide()
{
    QVERIFY(!GuideWindow::findGuide().isEmpty());
    trigger("help");
    GuideWindow* guide = nullptr;
    for (QWidget* shown : QApplication::topLevelWidgets()) {
        if (!guide)
            guide = qobject_cast<GuideWindow*>(shown);
    }
    QVERIFY(guide && guide->isVisible());
    QVERIFY(guide->windowTitle().startsWith(QStringLiteral("Каталоги координат: руководство")));
    auto& text = *guide->findChild<QTextBrowser*>(QStringLiteral("guideText"));
    QTextDocument& page = *text.document();
    QCOMPARE(page.firstBlock().text(), QStringLiteral("Каталоги координат: руководство"));
    QCOMPARE(page.firstBlock().blockFormat().headingLevel(), 1);

    int pictures = 0;
    for (QTextBlock block = page.firstBlock(); block.isValid(); block = block.next()) {
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            const QTextImageFormat format = part.fragment().charFormat().toImageFormat();
            if (!format.isValid())
                continue;
            ++pictures;
            const auto image =
                page.resource(QTextDocument::ImageResource, QUrl(format.name())).value<QImage>();
            QVERIFY2(image.width() > 100, qPrintable(format.name()));
        }
    }
    QFile source(GuideWindow::findGuide());
    QVERIFY(source.open(QIODevice::ReadOnly));
    QVERIFY(pictures > 0);
    QCOMPARE(pictures, source.readAll().count("\n!["));

    // The search goes round the page.
    auto& search = *guide->findChild<QLineEdit*>(QStringLiteral("guideSearch"));
    search.setText(QStringLiteral("каталоги координат: руководство"));
    for (int i = 0; i < 2; ++i) {
        QTest::keyClick(&search, Qt::Key_Return);
        QCOMPARE(
            text.textCursor().selectedText(), QStringLiteral("Каталоги координат: руководство"));
    }
    search.setText(QStringLiteral("нет такого слова"));
    QTest::keyClick(&search, Qt::Key_Return);
    QCOMPARE(guide->findChild<QLabel*>(QStringLiteral("guideFound"))->text().trimmed(),
        QStringLiteral("Не найдено"));

    // A page that it leads to, and back.
    const QUrl start = text.source();
    text.setSource(QUrl(QStringLiteral("formats.ru.md")));
    QVERIFY(!guide->windowTitle().startsWith(QStringLiteral("Каталоги координат: руководство")));
    text.backward();
    QCOMPARE(text.source(), start);
    QVERIFY(QTest::qWaitForWindowActive(guide));
    QTest::keyClick(guide, Qt::Key_Escape);
    QVERIFY(!guide->isVisible());
}

void TestWindow::explainsEmptyResult()
{
    // Nothing comes of it, and no message tells why; who sees that cancels.
    const QString file = m_files->write(QStringLiteral("точки.mif"), mif("Point 1 2\n"));
    m_files->write(QStringLiteral("точки.mid"), "\"1\"\n");
    whenDialogRuns([](QDialog& dialog) {
        dialog.findChild<QAbstractButton*>(QStringLiteral("startButton"))->click();
        dialog.reject();
    });
    m_window->openFiles({ file });
    auto& told = widget<QTextBrowser>("diagnosisText");
    QVERIFY(waitFor([&] { return told.toPlainText().contains(QStringLiteral("точки.mif")); }));
    QVERIFY(told.toPlainText().contains(QStringLiteral("Что делать:")));
    QVERIFY(widget<MessagesPane>("messages").topLevelItemCount() == 0);
    QVERIFY(m_window->document().objects().isEmpty());
}

void TestWindow::keepsLossesOfBatch()
{
    // An arc is not read; the file behind it is read whole.
    const QString lossy =
        m_files->write(QStringLiteral("дуга.mif"), mif(square(0, 0) + "Arc 0 0 5 5 0 90\n"));
    m_files->write(QStringLiteral("дуга.mid"), "\"1\"\n\"2\"\n");
    auto& files = widget<QComboBox>("diagnosisFiles");
    auto& told = widget<QTextBrowser>("diagnosisText");
    whenDialogRuns([](QDialog& dialog) {
        whenDialogRuns(startAndAccept);
        startAndAccept(dialog);
    });
    m_window->openFiles({ lossy, squares() });
    QVERIFY(waitFor([&] { return files.count() == 2; }));
    QVERIFY(told.toPlainText().contains(QStringLiteral("дуга.mif")));
    QVERIFY(files.currentText().startsWith(QStringLiteral("дуга.mif: замечаний ")));
    QVERIFY(widget<QPushButton>("mendButton").isEnabled());

    // The other one is at hand, too.
    QTest::keyClick(&files, Qt::Key_Up);
    QVERIFY(told.toPlainText().contains(QStringLiteral("squares.mif")));
    QVERIFY(!widget<QPushButton>("mendButton").isEnabled());
}

void TestWindow::goesThroughParts()
{
    QStringList visited;
    widget<QLineEdit>("search").setFocus();
    for (int i = 0; i < 6; ++i) {
        trigger("nextPart");
        visited.append(m_window->focusWidget()->objectName());
    }
    QCOMPARE(visited,
        QStringLiteral("objects catalogue plan diagnosisText messages objects")
            .split(QLatin1Char(' ')));
    trigger("previousPart");
    QCOMPARE(m_window->focusWidget()->objectName(), QStringLiteral("messages"));
    // It lies behind the diagnosis, and has come to the front.
    QVERIFY(!widget<MessagesPane>("messages").visibleRegion().isEmpty());
}

void TestWindow::copiesMessages()
{
    auto& messages = widget<MessagesPane>("messages");
    messages.add(QStringLiteral("a.mif"), QStringLiteral("одно"));
    messages.add(QStringLiteral("b.mif"), QStringLiteral("другое"));
    widget<QDockWidget>("messagesDock").raise();
    messages.setFocus();
    messages.selectAll();
    QTest::keyClick(&messages, Qt::Key_C, Qt::ControlModifier);
    const QStringList lines = QApplication::clipboard()->text().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines.at(1).endsWith(QStringLiteral("\tb.mif\tдругое")));
}

void TestWindow::marksAreReadInTheDark()
{
    const QPalette usual = QApplication::palette();
    QPalette dark = usual;
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, QColor(240, 240, 240));
    QApplication::setPalette(dark);
    QVector<int> differences;
    whenDialogRuns([&](QDialog& dialog) {
        dialog.findChild<QAbstractButton*>(QStringLiteral("startButton"))->click();
        auto* list = dialog.findChild<QAbstractItemView*>(QStringLiteral("listView"));
        const QModelIndex marked = list->model()->index(0, 0);
        const QColor background = marked.data(Qt::BackgroundRole).value<QBrush>().color();
        differences.append(
            std::abs(background.lightness() - list->palette().color(QPalette::Text).lightness()));
        dialog.reject();
    });
    m_window->openFiles({ squares() });
    const bool isDone = waitFor([&] { return !differences.isEmpty(); });
    QApplication::setPalette(usual);
    QVERIFY(isDone);
    QVERIFY2(differences.first() > 150, qPrintable(QString::number(differences.first())));
}

QTEST_MAIN(TestWindow)
#include "tst_window.moc"
