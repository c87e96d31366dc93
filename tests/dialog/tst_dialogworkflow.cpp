#include "dialog.h"
#include "import/formats.h"
#include "samplefiles.h"
#include "support/dialogdriver.h"
#include "support/miftext.h"
#include "support/statuslog.h"
#include "support/stricttest.h"
#include "support/tempfiles.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QBrush>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QTextCodec>

#include <functional>
#include <memory>
#include <stdexcept>

namespace {

const GeometryInfo plainInfo{ 0, 1, 2, 0 };

// A point, a triangle and a line: the point names a vertex of the triangle.
const QByteArray planObjects = "Point 0 0\n"
                               "Region 1\n  4\n0 0\n10 0\n10 10.25\n0 0\n"
                               "Pline 2\n100 100\n110 100\n";
const QString planRows = QStringLiteral("\"т1\",1\n\"ЗУ2\",2\n\"ЗУ1\",3\n");

QStringList list(const char* text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QStringList planCatalogue()
{
    return list("т1|0.00|0.00 н1|10.00|0.00 н2|10.00|10.25 т1|0.00|0.00");
}

QString lastPath()
{
    return QSettings().value(QStringLiteral("ImportObjects/lastPath")).toString();
}

/// Edits the cell with the keyboard, as after a double click.
void editCell(QAbstractItemView& view, const QModelIndex& index, const QString& text)
{
    const QPoint place = view.visualRect(index).center();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, place);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, place);
    const QPointer<QLineEdit> editor = view.viewport()->findChild<QLineEdit*>();
    QVERIFY2(editor, "No editor opened");
    editor->setText(text);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_VERIFY(!editor);
}

constexpr int noShape = -1;

/// The pointer that stands instead of those of the widgets.
int overrideShape()
{
    const QCursor* cursor = QGuiApplication::overrideCursor();
    return cursor ? int(cursor->shape()) : noShape;
}

/// A text codec, while it lives, that does something whenever the import reads a text with it.
class CodecWatch {
public:
    explicit CodecWatch(const std::function<void()>& action) { codec().action = action; }
    ~CodecWatch() { codec().action = nullptr; }
    Q_DISABLE_COPY(CodecWatch)
    static QString codecName() { return QString::fromLatin1(codec().name()); }

private:
    class Codec : public QTextCodec {
    public:
        QByteArray name() const override { return "watched"; }
        int mibEnum() const override { return 999999; }
        QString convertToUnicode(const char* in, int length, ConverterState*) const override
        {
            if (action)
                action();
            return QString::fromLatin1(in, length);
        }
        QByteArray convertFromUnicode(const QChar*, int, ConverterState*) const override
        {
            return QByteArray();
        }
        std::function<void()> action;
    };

    /// Registered codecs are Qt's until the end.
    static Codec& codec()
    {
        static auto* codec = new Codec;
        return *codec;
    }
};

} // namespace

Q_DECLARE_METATYPE(GeometryInfo)

/// The dialog as a user works with it: all goes through the widgets.
class TestDialogWorkflow : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void startButtonNeedsAFileName();
    void startDoesNothingWithoutAFileName();
    void pointFileRow();
    void fileDialog_data();
    void fileDialog();
    void cancelledFileDialogChangesNothing_data();
    void cancelledFileDialogChangesNothing();
    void fileDialogStartsAtTheLastFile();

    void importShowsTheFirstObject();
    void importOptions_data();
    void importOptions();
    void pointFileIsUsedOnlyWhenAsked();
    void columnsOfTheHost_data();
    void columnsOfTheHost();
    void encodings_data();
    void encodings();
    void dxf();
    void unreadableFile_data();
    void unreadableFile();
    void objectsBeforeAnErrorStay();
    void swapIsNeverOffered();

    void selectionShowsTheObject();
    void nothingReadEmptiesBothModels();
    void secondImportReplacesTheFirst();
    void selectionIsConnectedOnce();
    void extraFields();
    void sort();
    void sortBeforeAnyImport();
    void sectionSizesStay_data();
    void sectionSizesStay();
    void edits();
    void coloursInTheViews();
    void modelsThroughTheWholeLife();
    void resultOfEachState();

    void waitCursorWhileImporting();
    void messagesUnderTheUsualPointer_data();
    void messagesUnderTheUsualPointer();
    void exceptionsUnderTheUsualPointer();
    void throwingCallback();
    void callbackThatLetsEventsIn();
    void okAndCancel();

private:
    void useMode(bool isDxf, const GeometryInfo& info = plainInfo);
    QString writePlan();
    void start(const QString& fileName);
    QStringList objects() const { return objectsOf(*m_dialog); }
    QStringList catalogue() const { return catalogueOf(*m_dialog); }
    QListView& listView() const { return widget<QListView>(*m_dialog, "listView"); }
    QTableView& tableView() const { return widget<QTableView>(*m_dialog, "tableView"); }

    std::unique_ptr<OwnStore> m_store;
    std::unique_ptr<StatusLog> m_messages;
    std::unique_ptr<Dialog> m_dialog;
};

void TestDialogWorkflow::init()
{
    m_store = std::make_unique<OwnStore>();
    m_messages = std::make_unique<StatusLog>();
    useMode(false);
}

void TestDialogWorkflow::cleanup()
{
    m_dialog.reset();
    m_messages.reset();
    m_store.reset();
    QVERIFY(!QGuiApplication::overrideCursor());
}

void TestDialogWorkflow::useMode(bool isDxf, const GeometryInfo& info)
{
    const Format* const format = formatOfId(isDxf ? QStringLiteral("dxf") : QStringLiteral("mif"));
    QVERIFY(format);
    m_dialog = std::make_unique<Dialog>();
    m_dialog->setUp(*format, QStringLiteral("Контекст"), QStringLiteral("Участки"),
        QStringLiteral("Координаты"), info);
    m_dialog->resize(900, 600);
    m_dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_dialog.get()));
}

/// Writes the plan in UTF-8 and returns the name of its MIF file.
QString TestDialogWorkflow::writePlan()
{
    const QString path = m_store->path(QStringLiteral("plan"));
    writeMif(path, planObjects, planRows.toUtf8());
    widget<QComboBox>(*m_dialog, "encodingCombo").setCurrentText(QStringLiteral("UTF-8"));
    return path + QStringLiteral(".mif");
}

void TestDialogWorkflow::start(const QString& fileName)
{
    widget<QLineEdit>(*m_dialog, "objectFileNameEdit").setText(fileName);
    click(*m_dialog, "startButton");
}

void TestDialogWorkflow::startButtonNeedsAFileName()
{
    const auto& button = widget<QPushButton>(*m_dialog, "startButton");
    auto& edit = widget<QLineEdit>(*m_dialog, "objectFileNameEdit");
    QVERIFY(!button.isEnabled());
    type(*m_dialog, "objectFileNameEdit", QStringLiteral("a"));
    QVERIFY(button.isEnabled());
    QTest::keyClick(&edit, Qt::Key_Backspace);
    QVERIFY(!button.isEnabled());
    type(*m_dialog, "objectFileNameEdit", QStringLiteral(" "));
    QVERIFY(button.isEnabled());
    type(*m_dialog, "pointFileNameEdit", QStringLiteral("a"));
    edit.clear();
    QVERIFY(!button.isEnabled());
}

void TestDialogWorkflow::startDoesNothingWithoutAFileName()
{
    click(*m_dialog, "startButton");
    QCOMPARE(m_messages->messages(), QStringList());
    QVERIFY(!listView().model());
}

void TestDialogWorkflow::pointFileRow()
{
    const auto& label = widget<QLabel>(*m_dialog, "objectFileLabel");
    const auto isShown = [this](bool shown) {
        for (const char* name : { "pointFileLabel", "pointFileNameEdit", "pointFileButton" }) {
            if (widget<QWidget>(*m_dialog, name).isVisible() != shown)
                return false;
        }
        return true;
    };
    QVERIFY(isShown(false));
    QCOMPARE(label.text(), QStringLiteral("Файл:"));
    click(*m_dialog, "usePointFileCheck");
    QVERIFY(isShown(true));
    QCOMPARE(label.text(), QStringLiteral("Файл объектов:"));
    click(*m_dialog, "usePointFileCheck");
    QVERIFY(isShown(false));
    QCOMPARE(label.text(), QStringLiteral("Файл:"));
}

void TestDialogWorkflow::fileDialog_data()
{
    QTest::addColumn<bool>("isDxf");
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QByteArray>("edit");

    const QByteArray object = "objectFileButton";
    const QByteArray point = "pointFileButton";
    QTest::newRow("MIF objects") << false << object << QByteArray("objectFileNameEdit");
    QTest::newRow("MIF points") << false << point << QByteArray("pointFileNameEdit");
    QTest::newRow("DXF objects") << true << object << QByteArray("objectFileNameEdit");
    QTest::newRow("DXF points") << true << point << QByteArray("pointFileNameEdit");
}

void TestDialogWorkflow::fileDialog()
{
    QFETCH(bool, isDxf);
    QFETCH(QByteArray, button);
    QFETCH(QByteArray, edit);
    useMode(isDxf);
    setChecked(*m_dialog, "usePointFileCheck", true);
    const QString fileName =
        m_store->path(isDxf ? QStringLiteral("план.dxf") : QStringLiteral("план.mif"));
    writeFile(fileName, "");

    bool driven = false;
    driveModal([&](QDialog& modal) {
        auto* files = qobject_cast<QFileDialog*>(&modal);
        QVERIFY(files);
        QCOMPARE(files->parentWidget(), m_dialog.get());
        QCOMPARE(files->windowTitle(), QStringLiteral("Выбрать файл"));
        QCOMPARE(files->nameFilters(),
            QStringList{ isDxf ? QStringLiteral("Файлы dxf (*.dxf)")
                               : QStringLiteral("Файлы mif (*.mif)") });
        QCOMPARE(files->fileMode(), QFileDialog::ExistingFile);
        QCOMPARE(files->acceptMode(), QFileDialog::AcceptOpen);
        widget<QLineEdit>(*files, "fileNameEdit").setText(fileName);
        clickOk(*files);
        driven = true;
    });
    click(*m_dialog, button);
    QVERIFY(driven);
    QCOMPARE(widget<QLineEdit>(*m_dialog, edit).text(), QDir::toNativeSeparators(fileName));
    const char* other = edit == "pointFileNameEdit" ? "objectFileNameEdit" : "pointFileNameEdit";
    QCOMPARE(widget<QLineEdit>(*m_dialog, other).text(), QString());
    QCOMPARE(
        widget<QPushButton>(*m_dialog, "startButton").isEnabled(), edit == "objectFileNameEdit");
    m_dialog.reset();
    QCOMPARE(lastPath(), fileName);
}

void TestDialogWorkflow::cancelledFileDialogChangesNothing_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QByteArray>("edit");
    QTest::newRow("objects") << QByteArray("objectFileButton") << QByteArray("objectFileNameEdit");
    QTest::newRow("points") << QByteArray("pointFileButton") << QByteArray("pointFileNameEdit");
}

void TestDialogWorkflow::cancelledFileDialogChangesNothing()
{
    QFETCH(QByteArray, button);
    QFETCH(QByteArray, edit);
    const QString before = m_store->path(QStringLiteral("before.mif"));
    m_dialog.reset();
    QSettings().setValue(QStringLiteral("ImportObjects/lastPath"), before);
    useMode(false);
    setChecked(*m_dialog, "usePointFileCheck", true);
    type(*m_dialog, edit, QStringLiteral("typed"));
    bool driven = false;
    driveModal([&](QDialog& modal) {
        driven = qobject_cast<QFileDialog*>(&modal);
        modal.reject();
    });
    click(*m_dialog, button);
    QVERIFY(driven);
    QCOMPARE(widget<QLineEdit>(*m_dialog, edit).text(), QStringLiteral("typed"));
    m_dialog.reset();
    QCOMPARE(lastPath(), before);
}

void TestDialogWorkflow::fileDialogStartsAtTheLastFile()
{
    QVERIFY(QDir(m_store->path(QString())).mkdir(QStringLiteral("deep")));
    const QString fileName = m_store->path(QStringLiteral("deep/a.mif"));
    writeFile(fileName, "");
    m_dialog.reset();
    QSettings().setValue(QStringLiteral("ImportObjects/lastPath"), fileName);
    useMode(false);
    bool driven = false;
    driveModal([&](QDialog& modal) {
        auto* files = qobject_cast<QFileDialog*>(&modal);
        QVERIFY(files);
        QCOMPARE(files->directory(), QDir(m_store->path(QStringLiteral("deep"))));
        QCOMPARE(widget<QLineEdit>(*files, "fileNameEdit").text(), QStringLiteral("a.mif"));
        driven = true;
    });
    click(*m_dialog, "objectFileButton");
    QVERIFY(driven);
}

void TestDialogWorkflow::importShowsTheFirstObject()
{
    start(writePlan());
    QCOMPARE(m_messages->messages(), QStringList());
    QCOMPARE(objects(), list("ЗУ2 ЗУ1"));
    QCOMPARE(catalogue(), planCatalogue());
    QVERIFY(!listView().currentIndex().isValid());
}

void TestDialogWorkflow::importOptions_data()
{
    QTest::addColumn<QByteArray>("box");
    QTest::addColumn<QString>("pointPref");
    QTest::addColumn<int>("pointStart");
    QTest::addColumn<QString>("objectPref");
    QTest::addColumn<int>("objectStart");
    QTest::addColumn<QStringList>("objects");
    QTest::addColumn<QStringList>("points");

    const QString n = QStringLiteral("н");
    const QString zu = QStringLiteral(":ЗУ");
    QTest::newRow("as they are") << QByteArray() << n << 1 << zu << 1 << list("ЗУ2 ЗУ1")
                                 << list("т1 н1 н2 т1");
    QTest::newRow("points not searched") << QByteArray("searchPointDefsCheck") << n << 1 << zu << 1
                                         << list("ЗУ2 ЗУ1") << list("н1 н2 н3 н1");
    QTest::newRow("objects not searched") << QByteArray("searchObjectDefsCheck") << n << 1 << zu
                                          << 1 << list(":ЗУ1 :ЗУ2") << list("т1 н1 н2 т1");
    QTest::newRow("point numbers") << QByteArray() << QStringLiteral("P") << 70 << zu << 1
                                   << list("ЗУ2 ЗУ1") << list("т1 P70 P71 т1");
    QTest::newRow("object numbers")
        << QByteArray("searchObjectDefsCheck") << n << 1 << QStringLiteral("об") << 999999998
        << list("об999999998 об999999999") << list("т1 н1 н2 т1");
    QTest::newRow("empty prefixes") << QByteArray("searchObjectDefsCheck") << QString() << 5
                                    << QString() << 8 << list("8 9") << list("т1 5 6 т1");
    QTest::newRow("prefixes like place markers")
        << QByteArray("searchObjectDefsCheck") << QStringLiteral("%1") << 3
        << QStringLiteral("%2%1") << 4 << list("%2%14 %2%15") << list("т1 %13 %14 т1");
}

void TestDialogWorkflow::importOptions()
{
    QFETCH(QByteArray, box);
    QFETCH(QString, pointPref);
    QFETCH(int, pointStart);
    QFETCH(QString, objectPref);
    QFETCH(int, objectStart);
    QFETCH(QStringList, points);
    if (!box.isEmpty())
        setChecked(*m_dialog, box, false);
    type(*m_dialog, "pointPrefEdit", pointPref);
    type(*m_dialog, "pointStartNumSpin", QString::number(pointStart));
    type(*m_dialog, "objectPrefEdit", objectPref);
    type(*m_dialog, "objectStartNumSpin", QString::number(objectStart));
    start(writePlan());

    QStringList defs;
    for (const QString& row : catalogue())
        defs.append(row.section(QLatin1Char('|'), 0, 0));
    QCOMPARE(defs, points);
    QTEST(objects(), "objects");
    QCOMPARE(m_messages->messages(), QStringList());
}

void TestDialogWorkflow::pointFileIsUsedOnlyWhenAsked()
{
    const QString points = m_store->path(QStringLiteral("points"));
    writeMif(points, "Point 10 0\n", "П9\n");
    const QString plan = writePlan();
    setChecked(*m_dialog, "usePointFileCheck", true);
    type(*m_dialog, "pointFileNameEdit", points + QStringLiteral(".mif"));
    start(plan);
    QCOMPARE(catalogue(), list("н1|0.00|0.00 П9|10.00|0.00 н2|10.00|10.25 н1|0.00|0.00"));

    setChecked(*m_dialog, "usePointFileCheck", false);
    start(plan);
    QCOMPARE(catalogue(), planCatalogue());

    setChecked(*m_dialog, "usePointFileCheck", true);
    type(*m_dialog, "pointFileNameEdit", QString());
    start(plan);
    QCOMPARE(catalogue(), planCatalogue());

    const QString missing = m_store->path(QStringLiteral("no such file.mif"));
    type(*m_dialog, "pointFileNameEdit", missing);
    QCOMPARE(m_messages->messages(), QStringList());
    start(plan);
    QCOMPARE(
        m_messages->messages(), QStringList{ QStringLiteral("Ошибка открытия файла ") + missing });
    QCOMPARE(catalogue(), list("н1|0.00|0.00 н2|10.00|0.00 н3|10.00|10.25 н1|0.00|0.00"));
}

void TestDialogWorkflow::columnsOfTheHost_data()
{
    QTest::addColumn<GeometryInfo>("info");
    QTest::addColumn<QString>("row");

    QTest::newRow("y first") << GeometryInfo{ 0, 2, 1, 0 } << QStringLiteral("н2|10.25|10.00");
    QTest::newRow("apart") << GeometryInfo{ 4, 0, 2, 0 } << QStringLiteral("10.00|-|10.25|-|н2");
    QTest::newRow("negative") << GeometryInfo{ 0, -1, 1, 0 } << QStringLiteral("н2|10.25|-");
}

void TestDialogWorkflow::columnsOfTheHost()
{
    QFETCH(GeometryInfo, info);
    useMode(false, info);
    start(writePlan());
    QTEST(catalogue().at(2), "row");
}

void TestDialogWorkflow::encodings_data()
{
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QByteArray>("written"); // the codec of the files
    QTest::addColumn<bool>("isTyped");
    QTest::addColumn<bool>("isMarked"); // the files begin with a byte-order mark

    const auto row = [](const char* name, const char* chosen, const char* codec, bool isTyped,
                         bool isMarked = false) {
        QTest::newRow(name) << QString::fromUtf8(chosen) << QByteArray(codec) << isTyped
                            << isMarked;
    };
    row("Windows-1251", "Windows-1251", "Windows-1251", false);
    row("IBM866", "IBM866", "IBM866", false);
    row("UTF-8", "UTF-8", "UTF-8", false);
    row("UTF-8 with a mark", "UTF-8", "UTF-8", false, true);
    row("typed KOI8-R", "KOI8-R", "KOI8-R", true);
    row("typed in other letters", "windows-1251", "Windows-1251", true);
    row("Default", "Default", "", false);
    row("unknown", "no-such-codec", "", true);
    row("not Latin", "кодировка", "", true);
    row("empty", "", "", true);
}

void TestDialogWorkflow::encodings()
{
    QFETCH(QString, chosen);
    QFETCH(QByteArray, written);
    QFETCH(bool, isTyped);
    QFETCH(bool, isMarked);
    // Without a codec of that name the files are read as those of the system.
    const QTextCodec* codec =
        written.isEmpty() ? QTextCodec::codecForLocale() : QTextCodec::codecForName(written);
    QVERIFY(codec);
    const QString cyrillic = QStringLiteral("ЗУ2");
    const QString def = codec->canEncode(cyrillic) ? cyrillic : QStringLiteral("ZU2");
    QVERIFY(written.isEmpty() || def == cyrillic);
    const QByteArray mark = isMarked ? "\xEF\xBB\xBF" : "";
    const QString path = m_store->path(QStringLiteral("plan"));
    writeFile(path + QStringLiteral(".mif"), mark + mif("Line 0 0 1 1\n"));
    writeFile(path + QStringLiteral(".mid"),
        mark + codec->fromUnicode(QStringLiteral("\"%1\",1\n").arg(def)));

    auto& combo = widget<QComboBox>(*m_dialog, "encodingCombo");
    if (isTyped)
        type(*m_dialog, "encodingCombo", chosen);
    else
        combo.setCurrentIndex(combo.findText(chosen));
    QCOMPARE(combo.currentText(), chosen);
    start(path + QStringLiteral(".mif"));
    QCOMPARE(m_messages->messages(), QStringList());
    QCOMPARE(objects(), QStringList{ def });
}

void TestDialogWorkflow::dxf()
{
    useMode(true);
    const QString fileName = m_store->path(QStringLiteral("square.dxf"));
    widget<QComboBox>(*m_dialog, "encodingCombo").setCurrentText(QStringLiteral("UTF-8"));
    writeFile(fileName, squareDxf(true));
    start(fileName);
    QCOMPARE(m_messages->messages(), QStringList());
    QCOMPARE(objects(), list("ЗУ1"));
    QCOMPARE(
        catalogue(), list("1|0.00|0.00 2|100.00|0.00 3|100.00|100.00 4|0.00|100.00 1|0.00|0.00"));

    writeFile(fileName, squareDxf(false));
    start(fileName);
    QCOMPARE(objects(), list("ЗУ1"));
    QCOMPARE(catalogue(),
        list("н1|0.00|0.00 н2|100.00|0.00 н3|100.00|100.00 н4|0.00|100.00 н1|0.00|0.00"));

    setChecked(*m_dialog, "searchObjectDefsCheck", false);
    start(fileName);
    QCOMPARE(objects(), list(":ЗУ1"));
}

void TestDialogWorkflow::unreadableFile_data()
{
    QTest::addColumn<bool>("isDxf");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("messages"); // with %1 for the file's path

    const QString open = QStringLiteral("Ошибка открытия файла %1");
    const QString mif = QStringLiteral("Ошибка. Файл %1 не соответствует формату MIF");
    const QString dxf = QStringLiteral("Ошибка. Файл %1 не соответствует формату DXF");
    // Both passes open the object file; a wrong format ends the first one.
    QTest::newRow("missing MIF") << false << QStringLiteral("missing.mif")
                                 << QStringList{ open, open };
    QTest::newRow("missing DXF") << true << QStringLiteral("missing.dxf")
                                 << QStringList{ open, open };
    QTest::newRow("folder") << false << QStringLiteral("folder") << QStringList{ open, open };
    QTest::newRow("empty MIF") << false << QStringLiteral("empty") << QStringList{ mif };
    QTest::newRow("empty DXF") << true << QStringLiteral("empty") << QStringList{ dxf };
    QTest::newRow("DXF as MIF") << false << QStringLiteral("a.dxf") << QStringList{ mif };
    QTest::newRow("MIF as DXF") << true << QStringLiteral("a.mif") << QStringList{ dxf };
}

void TestDialogWorkflow::unreadableFile()
{
    QFETCH(bool, isDxf);
    QFETCH(QString, name);
    QFETCH(QStringList, messages);
    writeFile(m_store->path(QStringLiteral("empty")), "");
    writeFile(m_store->path(QStringLiteral("a.dxf")), squareDxf(true));
    writeFile(m_store->path(QStringLiteral("a.mif")), mif(planObjects));
    QVERIFY(QDir(m_store->path(QString())).mkdir(QStringLiteral("folder")));
    useMode(isDxf);
    const QString path = m_store->path(name);
    start(path);
    for (QString& message : messages)
        message = message.arg(path);
    QCOMPARE(m_messages->messages(), messages);
    // Nothing was ever shown, so the views are as the form has them.
    QVERIFY(!listView().model());
    QVERIFY(!tableView().model());
    QCOMPARE(m_dialog->stringResult(), QStringLiteral("\n<FormTable Name=\"Участки\"/>"));
}

void TestDialogWorkflow::objectsBeforeAnErrorStay()
{
    setChecked(*m_dialog, "searchPointDefsCheck", false);
    setChecked(*m_dialog, "searchObjectDefsCheck", false);
    const QString path = m_store->path(QStringLiteral("broken"));
    writeMif(path, "Line 0 0 1 1\nPline 2\n5 5\nbroken\n", "");
    start(path + QStringLiteral(".mif"));
    QCOMPARE(m_messages->messages(),
        list("Ошибка_чтения_полилинии_из_строки:_11")
            .replaceInStrings(QStringLiteral("_"), QStringLiteral(" ")));
    QCOMPARE(objects(), QStringList() << QStringLiteral(":ЗУ1") << QStringLiteral("-"));
    clickObject(*m_dialog, 1);
    QCOMPARE(catalogue(), list("н3|5.00|5.00"));
}

void TestDialogWorkflow::swapIsNeverOffered()
{
    QVERIFY(!widget<QCheckBox>(*m_dialog, "swapXYCheck").isVisible());
    widget<QCheckBox>(*m_dialog, "swapXYCheck").setChecked(true);
    start(writePlan());
    QCOMPARE(catalogue(), planCatalogue());
}

void TestDialogWorkflow::selectionShowsTheObject()
{
    start(writePlan());
    clickObject(*m_dialog, 1);
    QCOMPARE(catalogue(), list("н3|100.00|100.00 н4|110.00|100.00"));
    clickObject(*m_dialog, 0);
    QCOMPARE(catalogue(), planCatalogue());
    QTest::keyClick(&listView(), Qt::Key_Down);
    QCOMPARE(catalogue(), list("н3|100.00|100.00 н4|110.00|100.00"));
    // No current object is no reason to show another one.
    listView().selectionModel()->clearCurrentIndex();
    QCOMPARE(catalogue(), list("н3|100.00|100.00 н4|110.00|100.00"));
}

void TestDialogWorkflow::nothingReadEmptiesBothModels()
{
    start(writePlan());
    clickObject(*m_dialog, 1);
    const auto* listed = listView().model();
    const auto* shown = tableView().model();
    QSignalSpy listReset(listed, &QAbstractItemModel::modelReset);
    QSignalSpy tableReset(shown, &QAbstractItemModel::modelReset);
    QSignalSpy listChanged(listed, &QAbstractItemModel::dataChanged);
    QSignalSpy tableChanged(shown, &QAbstractItemModel::dataChanged);
    start(m_store->path(QStringLiteral("missing.mif")));
    QCOMPARE(m_messages->messages().size(), 2);
    QCOMPARE(listView().model(), listed);
    QCOMPARE(tableView().model(), shown);
    QCOMPARE(objects(), QStringList());
    QCOMPARE(catalogue(), QStringList());
    QVERIFY(!listReset.isEmpty());
    QVERIFY(!tableReset.isEmpty());
    QVERIFY(listChanged.isEmpty());
    QVERIFY(tableChanged.isEmpty());
    click(*m_dialog, "sortButton");
    QCOMPARE(objects(), QStringList());
    QVERIFY(listChanged.isEmpty());
}

void TestDialogWorkflow::secondImportReplacesTheFirst()
{
    const QString plan = writePlan();
    start(plan);
    clickObject(*m_dialog, 1);
    start(plan);
    QCOMPARE(objects(), list("ЗУ2 ЗУ1"));
    QCOMPARE(catalogue(), planCatalogue());
    QVERIFY(!listView().currentIndex().isValid());

    const QString other = m_store->path(QStringLiteral("other"));
    writeMif(other, "Line 7 8 9 10\n", "а\n");
    start(other + QStringLiteral(".mif"));
    QCOMPARE(objects(), list("а"));
    QCOMPARE(catalogue(), list("н1|7.00|8.00 н2|9.00|10.00"));
}

void TestDialogWorkflow::selectionIsConnectedOnce()
{
    const QString plan = writePlan();
    for (int i = 0; i < 3; ++i)
        start(plan);
    QSignalSpy reset(tableView().model(), &QAbstractItemModel::modelReset);
    clickObject(*m_dialog, 1);
    QCOMPARE(reset.count(), 1);
}

void TestDialogWorkflow::extraFields()
{
    widget<QSpinBox>(*m_dialog, "fieldSpin_0").setValue(5);
    type(*m_dialog, "fieldEdit_0", QStringLiteral("знак"));
    click(*m_dialog, "plusToolButton");
    start(writePlan());
    QCOMPARE(catalogue().first(), QStringLiteral("т1|0.00|0.00|-|знак"));
    QCOMPARE(tableView().horizontalHeader()->count(), 5);

    // What is typed after the import counts from the next one on.
    type(*m_dialog, "fieldEdit_0", QStringLiteral("веха"));
    clickObject(*m_dialog, 1);
    QCOMPARE(catalogue().first(), QStringLiteral("н3|100.00|100.00|-|знак"));
    QVERIFY(m_dialog->stringResult().contains(QStringLiteral("<Cell>знак</Cell>")));
    QVERIFY(!m_dialog->stringResult().contains(QStringLiteral("веха")));

    type(*m_dialog, "fieldEdit_1", QStringLiteral("x"));
    click(*m_dialog, "startButton");
    QCOMPARE(catalogue().first(), QStringLiteral("т1|0.00|0.00|-|веха|x"));
    QCOMPARE(tableView().horizontalHeader()->count(), 6);

    // A table never loses columns, but the result is made afresh.
    type(*m_dialog, "fieldEdit_0", QString());
    click(*m_dialog, "minusToolButton");
    click(*m_dialog, "startButton");
    QCOMPARE(catalogue().first(), QStringLiteral("т1|0.00|0.00|-|-|-"));
    QVERIFY(!m_dialog->stringResult().contains(QStringLiteral("<Cell/>")));
}

void TestDialogWorkflow::sort()
{
    start(writePlan());
    clickObject(*m_dialog, 0);
    click(*m_dialog, "sortButton");
    QCOMPARE(objects(), list("ЗУ1 ЗУ2"));
    QCOMPARE(catalogue(), list("н3|100.00|100.00 н4|110.00|100.00"));
    QVERIFY(!listView().currentIndex().isValid());
    clickObject(*m_dialog, 1);
    QCOMPARE(catalogue(), planCatalogue());
    const QString result = m_dialog->stringResult();
    QVERIFY(result.indexOf(QStringLiteral("ЗУ1")) < result.indexOf(QStringLiteral("ЗУ2")));
}

void TestDialogWorkflow::sortBeforeAnyImport()
{
    click(*m_dialog, "sortButton");
    QCOMPARE(m_messages->messages(), QStringList());
    QVERIFY(!listView().model());
    start(writePlan());
    QCOMPARE(objects(), list("ЗУ2 ЗУ1"));
}

void TestDialogWorkflow::sectionSizesStay_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QVector<int>>("rows"); // what is left of the heights of four rows

    // The rows of the line of two vertices, and of the triangle of four.
    QTest::newRow("select") << QByteArray("select") << QVector<int>{ 51, 52 };
    QTest::newRow("sort") << QByteArray("sortButton") << QVector<int>{ 51, 52 };
    QTest::newRow("import") << QByteArray("startButton") << QVector<int>{ 51, 52, 53, 54 };
}

void TestDialogWorkflow::sectionSizesStay()
{
    QFETCH(QByteArray, action);
    QFETCH(QVector<int>, rows);
    start(writePlan());
    for (int row = 0; row < 4; ++row)
        tableView().setRowHeight(row, 51 + row);
    for (int column = 0; column < 3; ++column)
        tableView().setColumnWidth(column, 71 + column);
    type(*m_dialog, "fieldEdit_0", QStringLiteral("знак"));
    if (action == "select")
        clickObject(*m_dialog, 1);
    else
        click(*m_dialog, action);

    const QHeaderView& vertical = *tableView().verticalHeader();
    QCOMPARE(vertical.count(), rows.size());
    for (int row = 0; row < rows.size(); ++row)
        QCOMPARE(vertical.sectionSize(row), rows.at(row));
    for (int column = 0; column < 3; ++column)
        QCOMPARE(tableView().columnWidth(column), 71 + column);
    // The further column of the extra field is there at once.
    QCOMPARE(tableView().horizontalHeader()->count(), action == "startButton" ? 4 : 3);
}

void TestDialogWorkflow::edits()
{
    start(writePlan());
    editCell(listView(), listView().model()->index(1, 0), QStringLiteral("Лес & поле"));
    QCOMPARE(objects().at(1), QStringLiteral("Лес & поле"));
    clickObject(*m_dialog, 0);
    editCell(tableView(), tableView().model()->index(1, 0), QStringLiteral("новая"));
    QCOMPARE(catalogue().at(1), QStringLiteral("новая|10.00|0.00"));

    clickObject(*m_dialog, 1);
    clickObject(*m_dialog, 0);
    QCOMPARE(catalogue().at(1), QStringLiteral("новая|10.00|0.00"));
    const QString result = m_dialog->stringResult();
    QVERIFY(result.contains(QStringLiteral("<Cell>Лес &amp; поле</Cell>")));
    QVERIFY(result.contains(QStringLiteral("<Cell>новая</Cell>")));
    click(*m_dialog, "sortButton");
    QCOMPARE(objects(), QStringList() << QStringLiteral("ЗУ2") << QStringLiteral("Лес & поле"));
    QCOMPARE(catalogue().at(1), QStringLiteral("новая|10.00|0.00"));
}

void TestDialogWorkflow::coloursInTheViews()
{
    start(writePlan());
    const QVariant lightRed = QBrush(QColor(255, 220, 220));
    const QModelIndex object = listView().model()->index(0, 0);
    const QModelIndex point = tableView().model()->index(1, 0);
    QVERIFY(!object.data(Qt::BackgroundRole).isValid());
    QVERIFY(!point.data(Qt::BackgroundRole).isValid());
    editCell(listView(), object, QStringLiteral("зу1"));
    editCell(tableView(), point, QStringLiteral("Т1"));
    QCOMPARE(object.data(Qt::BackgroundRole), lightRed);
    QCOMPARE(object.siblingAtRow(1).data(Qt::BackgroundRole), lightRed);
    QCOMPARE(point.data(Qt::BackgroundRole), lightRed);
    QVERIFY(!point.siblingAtRow(2).data(Qt::BackgroundRole).isValid());
}

void TestDialogWorkflow::modelsThroughTheWholeLife()
{
    const QString plan = writePlan();
    start(plan);
    const QAbstractItemModelTester listTester(
        listView().model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QAbstractItemModelTester tableTester(
        tableView().model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    editCell(listView(), listView().model()->index(0, 0), QStringLiteral("Я9"));
    editCell(tableView(), tableView().model()->index(0, 0), QStringLiteral("а"));
    click(*m_dialog, "sortButton");
    clickObject(*m_dialog, 0);
    clickObject(*m_dialog, 1);
    click(*m_dialog, "sortButton");
    type(*m_dialog, "fieldEdit_0", QStringLiteral("знак"));
    start(plan);
    QCOMPARE(tableView().model()->columnCount(), 4);
    clickObject(*m_dialog, 1);
    start(m_store->path(QStringLiteral("missing.mif")));
    QCOMPARE(objects(), QStringList());
    click(*m_dialog, "sortButton");
    start(plan);
    clickObject(*m_dialog, 1);
    QCOMPARE(catalogue(), list("н3|100.00|100.00|знак н4|110.00|100.00|знак"));
}

void TestDialogWorkflow::resultOfEachState()
{
    const QString none = QStringLiteral("\n<FormTable Name=\"Участки\"/>");
    QCOMPARE(m_dialog->stringResult(), none);
    setChecked(*m_dialog, "updateCheck", true);
    QCOMPARE(
        m_dialog->stringResult(), QStringLiteral("\n<FormTable Name=\"Участки\" Update=\"1\"/>"));
    setChecked(*m_dialog, "updateCheck", false);
    start(writePlan());
    const QStringList before = catalogue();
    const QString result = m_dialog->stringResult();
    QVERIFY(result.startsWith(
        QStringLiteral("\n<FormTable Name=\"Участки\">\n    <Row>\n        <Cell>ЗУ2</Cell>\n"
                       "        <FormTable Name=\"Координаты\">\n            <Row>\n"
                       "                <Cell>т1</Cell>\n")));
    QCOMPARE(catalogue(), before);
    start(m_store->path(QStringLiteral("missing.mif")));
    QCOMPARE(m_dialog->stringResult(), none);
}

void TestDialogWorkflow::waitCursorWhileImporting()
{
    QVector<int> whileReading;
    const CodecWatch watch([&whileReading] { whileReading.append(overrideShape()); });
    widget<QComboBox>(*m_dialog, "encodingCombo").setCurrentText(CodecWatch::codecName());
    const QString path = m_store->path(QStringLiteral("named"));
    writeMif(path, "Line 0 0 1 1\n", "name\n");
    start(path + QStringLiteral(".mif"));
    QVERIFY(!whileReading.isEmpty());
    QCOMPARE(whileReading, QVector<int>(whileReading.size(), Qt::WaitCursor));
    QVERIFY(!QGuiApplication::overrideCursor());

    int whileShowing = noShape;
    connect(listView().model(), &QAbstractItemModel::modelReset, m_dialog.get(),
        [&whileShowing] { whileShowing = overrideShape(); });
    start(writePlan());
    QCOMPARE(whileShowing, int(Qt::WaitCursor));
    QVERIFY(!QGuiApplication::overrideCursor());
}

void TestDialogWorkflow::messagesUnderTheUsualPointer_data()
{
    QTest::addColumn<QByteArray>("objects");
    QTest::addColumn<int>("hostsOwn"); // the pointer that the host shows itself
    QTest::addColumn<int>("messages");

    const QByteArray collection = "Line 0 0 1 1\nCollection 3\n";
    QTest::newRow("no file") << QByteArray() << noShape << 2;
    QTest::newRow("no file, the host busy") << QByteArray() << int(Qt::BusyCursor) << 2;
    QTest::newRow("in the file") << collection << noShape << 2;
    QTest::newRow("in the file, the host busy") << collection << int(Qt::BusyCursor) << 2;
}

void TestDialogWorkflow::messagesUnderTheUsualPointer()
{
    QFETCH(QByteArray, objects);
    QFETCH(int, hostsOwn);
    QFETCH(int, messages);
    const QString path = m_store->path(QStringLiteral("file"));
    if (!objects.isEmpty())
        writeMif(path, objects, "а\nб\n");
    if (hostsOwn != noShape)
        QGuiApplication::setOverrideCursor(Qt::CursorShape(hostsOwn));
    QVector<int> shapes;
    m_messages->then([&shapes] { shapes.append(overrideShape()); });
    start(path + QStringLiteral(".mif"));
    const int after = overrideShape();
    if (hostsOwn != noShape)
        QGuiApplication::restoreOverrideCursor();
    QCOMPARE(shapes, QVector<int>(messages, hostsOwn));
    QCOMPARE(after, hostsOwn);
}

// Memory that runs out between the readers' own failures is told under the usual pointer too.
void TestDialogWorkflow::exceptionsUnderTheUsualPointer()
{
    const CodecWatch watch([] { throw std::runtime_error("no more"); });
    widget<QComboBox>(*m_dialog, "encodingCombo").setCurrentText(CodecWatch::codecName());
    const QString path = m_store->path(QStringLiteral("named"));
    writeMif(path, "Line 0 0 1 1\n", "name\n");
    QVector<int> shapes;
    m_messages->then([&shapes] { shapes.append(overrideShape()); });
    start(path + QStringLiteral(".mif"));
    QCOMPARE(
        m_messages->messages(), QStringList{ QStringLiteral("Ошибка обработки данных: no more") });
    QCOMPARE(shapes, QVector<int>{ noShape });
    QVERIFY(!QGuiApplication::overrideCursor());
}

void TestDialogWorkflow::throwingCallback()
{
    const QString path = m_store->path(QStringLiteral("collection"));
    writeMif(path, "Line 0 0 1 1\nCollection 3\n", "а\nб\n");
    int thrown = 0;
    m_messages->then([&thrown] {
        ++thrown;
        throw std::runtime_error("the host's own trouble");
    });
    start(path + QStringLiteral(".mif"));
    // Both passes met the collection and told it once.
    QCOMPARE(thrown, 2);
    QCOMPARE(m_messages->messages().size(), 2);
    QVERIFY(!QGuiApplication::overrideCursor());
    m_messages->then(nullptr);
    start(writePlan());
    QCOMPARE(objects(), list("ЗУ2 ЗУ1"));
}

void TestDialogWorkflow::callbackThatLetsEventsIn()
{
    type(*m_dialog, "fieldEdit_0", QStringLiteral("знак"));
    start(writePlan());
    clickObject(*m_dialog, 1);
    type(*m_dialog, "fieldEdit_0", QString());
    const QString path = m_store->path(QStringLiteral("collection"));
    writeMif(path, "Line 0 0 1 1\nLine 5 5 6 6\nCollection 3\n", "б\nа\n");
    int calls = 0;
    m_messages->then([&] {
        ++calls;
        QCoreApplication::processEvents();
        click(*m_dialog, "startButton");
        click(*m_dialog, "sortButton");
        click(*m_dialog, "plusToolButton");
        m_dialog->grab();
        // The earlier objects stay, and can be looked at, until the import is over.
        QCOMPARE(objects(), list("ЗУ2 ЗУ1"));
        QCOMPARE(catalogue(), list("н3|100.00|100.00|знак н4|110.00|100.00|знак"));
        QTest::mouseClick(listView().viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
        QCOMPARE(catalogue().first(), QStringLiteral("т1|0.00|0.00|знак"));
        QTest::keyClick(&listView(), Qt::Key_Down);
        editCell(tableView(), tableView().model()->index(0, 0), QStringLiteral("новая"));
        QCOMPARE(catalogue(), list("новая|100.00|100.00|знак н4|110.00|100.00|знак"));
    });
    setChecked(*m_dialog, "searchPointDefsCheck", false);
    start(path + QStringLiteral(".mif"));
    QCOMPARE(calls, 1);
    QCOMPARE(m_messages->messages(),
        QStringList{
            QStringLiteral("Ошибка в стоке 10. Коллекции в MIF файлах не поддерживаются.") });
    QCOMPARE(objects(), list("б а"));
    QCOMPARE(catalogue(), list("н1|0.00|0.00|- н2|1.00|1.00|-"));
    QVERIFY(!listView().currentIndex().isValid());
    m_messages->then(nullptr);
    click(*m_dialog, "sortButton");
    QCOMPARE(objects(), list("а б"));
}

void TestDialogWorkflow::okAndCancel()
{
    clickOk(*m_dialog);
    QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
    QVERIFY(!m_dialog->isVisible());
    m_dialog->show();
    clickCancel(*m_dialog);
    QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
    QVERIFY(!m_dialog->isVisible());
}

QTEST_MAIN(TestDialogWorkflow)
#include "tst_dialogworkflow.moc"
