#include "hostinterface.h"
#include "samplefiles.h"
#include "support/dialogdriver.h"
#include "support/exampleresult.h"
#include "support/messagelog.h"
#include "support/stricttest.h"
#include "support/tempfiles.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QJsonObject>
#include <QLineEdit>
#include <QPluginLoader>
#include <QPointer>
#include <QSettings>
#include <QTest>

#include <memory>

namespace {

const QString fromMif = QStringLiteral("Объекты из MIF");
const QString fromDxf = QStringLiteral("Объекты из DXF");
const QString table = QStringLiteral("Участки");
const QString catalogue = QStringLiteral("Координаты");
const QString emptyTable = QStringLiteral("\n<FormTable Name=\"Участки\"/>");

QString noOperation(const QString& name)
{
    return QStringLiteral("Ошибка. Операция импорта \"%1\" планином не поддерживается.").arg(name);
}

QString storedPrefix()
{
    return QSettings().value(QStringLiteral("ImportObjects/pointPref")).toString();
}

} // namespace

/// The library as a host meets it: nothing of its sources or headers is used here.
class TestPlugin : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void metadata();
    void instance();
    void interfaceIdentity_data();
    void interfaceIdentity();
    void operations();
    void unknownOperation_data();
    void unknownOperation();
    void unknownOperationWithoutCallback();
    void callbackOfTheLastCallCounts();
    void rejected_data();
    void rejected();
    void acceptedWithoutObjects_data();
    void acceptedWithoutObjects();
    void dialogIsModalAndGoes();
    void modeFollowsTheName_data();
    void modeFollowsTheName();
    void orderOfColumns();
    void catalogueTableInTheResult();
    void importWithoutCallback();
    void cancelDuringAnImport();
    void operationFromTheCallback();
    void settingsLiveOn();
    void resultFromMif();
    void resultFromDxf();

private:
    QString run(const QString& name, const std::function<void(QDialog&)>& drive,
        const HostColumns& columns = { 0, 1, 2, 0 }, HostCallback callback = &MessageLog::receive);

    QPluginLoader m_loader{ QStringLiteral(PLUGIN_PATH) };
    HostImport* m_import = nullptr;
    std::unique_ptr<OwnStore> m_store;
    std::unique_ptr<MessageLog> m_messages;
};

void TestPlugin::init()
{
    m_store = std::make_unique<OwnStore>();
    m_messages = std::make_unique<MessageLog>();
    QVERIFY2(m_loader.instance(), qPrintable(m_loader.errorString()));
    m_import = qobject_cast<HostImport*>(m_loader.instance());
    QVERIFY(m_import);
}

void TestPlugin::cleanup()
{
    m_messages.reset();
    m_store.reset();
}

/// Runs the operation; `drive` gets its dialog.
QString TestPlugin::run(const QString& name, const std::function<void(QDialog&)>& drive,
    const HostColumns& columns, HostCallback callback)
{
    bool driven = false;
    driveModal([&](QDialog& dialog) {
        driven = true;
        drive(dialog);
    });
    const QString result =
        m_import->operation(name, QStringLiteral("Контекст"), table, catalogue, columns, callback);
    if (!driven)
        QTest::qFail("No dialog ran", __FILE__, __LINE__);
    return result;
}

static void import(const QDialog& dialog, const QString& fileName)
{
    widget<QComboBox>(dialog, "encodingCombo").setCurrentText(QStringLiteral("UTF-8"));
    widget<QLineEdit>(dialog, "objectFileNameEdit").setText(fileName);
    click(dialog, "startButton");
}

void TestPlugin::metadata()
{
    QJsonObject data = m_loader.metaData();
    QCOMPARE(data.take(QStringLiteral("IID")).toString(),
        QStringLiteral("ru.vexora.VexoraStudio.ImportGeometryInterface"));
    QCOMPARE(data.take(QStringLiteral("className")).toString(), QStringLiteral("ImportPlugin"));
#ifdef QT_NO_DEBUG
    const bool isDebug = false;
#else
    const bool isDebug = true;
#endif
    const QJsonValue debug = data.take(QStringLiteral("debug"));
    QVERIFY(debug.isBool());
    QCOMPARE(debug.toBool(), isDebug);
    const int version = data.take(QStringLiteral("version")).toInt();
    QCOMPARE(version >> 8, QT_VERSION_CHECK(5, 15, 0) >> 8);
    // What is left is Qt's own: the processor's requirements and the place of further data.
    data.remove(QStringLiteral("archreq"));
    QVERIFY(data.take(QStringLiteral("MetaData")).toObject().isEmpty());
    QCOMPARE(data.keys(), QStringList());
}

void TestPlugin::instance()
{
    const QObject* root = m_loader.instance();
    QVERIFY(!root->parent());
    QPluginLoader again(QStringLiteral(PLUGIN_PATH));
    QCOMPARE(again.instance(), root);

    const QMetaObject& meta = *root->metaObject();
    QCOMPARE(meta.className(), "ImportPlugin");
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta.methodCount(), meta.methodOffset());
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    // The object is the first base, the interface the second one.
    QCOMPARE(static_cast<const void*>(m_import),
        static_cast<const void*>(reinterpret_cast<const char*>(root) + sizeof(QObject)));
}

void TestPlugin::interfaceIdentity_data()
{
    QTest::addColumn<bool>("isKnown");
    QTest::newRow("ru.vexora.VexoraStudio.ImportGeometryInterface/1.0") << true;
    QTest::newRow("ImportGeometryInterface") << true;
    QTest::newRow("ImportPlugin") << true;
    QTest::newRow("QObject") << true;
    QTest::newRow("ru.vexora.VexoraStudio.ImportGeometryInterface") << false;
    QTest::newRow("ru.vexora.VexoraStudio.ImportGeometryInterface/1.1") << false;
    QTest::newRow("QWidget") << false;
}

void TestPlugin::interfaceIdentity()
{
    QFETCH(bool, isKnown);
    QCOMPARE(m_loader.instance()->qt_metacast(QTest::currentDataTag()) != nullptr, isKnown);
}

void TestPlugin::operations()
{
    QCOMPARE(m_import->operations(), (QStringList{ fromMif, fromDxf }));
    m_import->operations().clear();
    QCOMPARE(m_import->operations().size(), 2);
}

void TestPlugin::unknownOperation_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("other") << QStringLiteral("Объекты из SHP");
    QTest::newRow("lower case") << QStringLiteral("объекты из mif");
    QTest::newRow("space before") << QStringLiteral(" Объекты из MIF");
    QTest::newRow("space behind") << QStringLiteral("Объекты из DXF ");
    QTest::newRow("empty") << QStringLiteral("");
    QTest::newRow("null") << QString();
    QTest::newRow("place marker") << QStringLiteral("%1 %2");
}

void TestPlugin::unknownOperation()
{
    QFETCH(QString, name);
    const QString result = m_import->operation(name, QStringLiteral("Контекст"), table, catalogue,
        HostColumns{ 0, 1, 2, 0 }, &MessageLog::receive);
    QVERIFY(result.isNull());
    QCOMPARE(m_messages->messages(), QStringList{ noOperation(name) });
    // The settings are saved in this case too.
    QCOMPARE(storedPrefix(), QStringLiteral("н"));
}

void TestPlugin::unknownOperationWithoutCallback()
{
    const QString result = m_import->operation(
        QStringLiteral("?"), QString(), QString(), QString(), HostColumns{ 0, 1, 2, 0 }, nullptr);
    QVERIFY(result.isNull());
    QCOMPARE(m_messages->messages(), QStringList());
}

static int otherCalls = 0;

void TestPlugin::callbackOfTheLastCallCounts()
{
    otherCalls = 0;
    const HostColumns columns{ 0, 1, 2, 0 };
    const QString unknown = QStringLiteral("?");
    m_import->operation(
        unknown, QString(), QString(), QString(), columns, [](const QString&) { ++otherCalls; });
    QCOMPARE(otherCalls, 1);
    m_import->operation(unknown, QString(), QString(), QString(), columns, &MessageLog::receive);
    QCOMPARE(otherCalls, 1);
    QCOMPARE(m_messages->messages().size(), 1);
    m_import->operation(unknown, QString(), QString(), QString(), columns, nullptr);
    QCOMPARE(otherCalls, 1);
    QCOMPARE(m_messages->messages().size(), 1);
}

void TestPlugin::rejected_data()
{
    QTest::addColumn<QByteArray>("way");
    for (const char* way : { "cancel", "close", "escape" })
        QTest::newRow(way) << QByteArray(way);
}

void TestPlugin::rejected()
{
    QFETCH(QByteArray, way);
    const QString path = m_store->path(QStringLiteral("line"));
    writeMif(path, "Line 0 0 1 1\n", "а\n");
    const QString result = run(fromMif, [&](QDialog& dialog) {
        import(dialog, path + QStringLiteral(".mif"));
        type(dialog, "pointPrefEdit", QStringLiteral("после"));
        if (way == "cancel")
            clickCancel(dialog);
        if (way == "close")
            dialog.close();
        if (way == "escape")
            QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(!dialog.isVisible());
    });
    QVERIFY(result.isNull());
    QCOMPARE(m_messages->messages(), QStringList());
    QCOMPARE(storedPrefix(), QStringLiteral("после"));
}

void TestPlugin::acceptedWithoutObjects_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("MIF") << fromMif;
    QTest::newRow("DXF") << fromDxf;
}

void TestPlugin::acceptedWithoutObjects()
{
    QFETCH(QString, name);
    QCOMPARE(run(name, &clickOk), emptyTable);
    const QString updating = run(name, [](QDialog& dialog) {
        setChecked(dialog, "updateCheck", true);
        clickOk(dialog);
    });
    QCOMPARE(updating, QStringLiteral("\n<FormTable Name=\"Участки\" Update=\"1\"/>"));

    driveModal([](QDialog& dialog) {
        setChecked(dialog, "updateCheck", false);
        clickOk(dialog);
    });
    QCOMPARE(m_import->operation(name, QString(), QString(), QString(), HostColumns{ 0, 0, 0, 0 },
                 &MessageLog::receive),
        QStringLiteral("\n<FormTable/>"));
    QCOMPARE(m_messages->messages(), QStringList());
}

void TestPlugin::dialogIsModalAndGoes()
{
    QPointer<QDialog> seen;
    run(fromMif, [&](QDialog& dialog) {
        seen = &dialog;
        QVERIFY(dialog.isModal());
        QVERIFY(dialog.isVisible());
        QVERIFY(!dialog.parentWidget());
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Импорт объектов с каталогами координат"));
        clickOk(dialog);
        QVERIFY(seen);
    });
    QVERIFY(!seen);
    QVERIFY(QApplication::topLevelWidgets().isEmpty());
}

void TestPlugin::modeFollowsTheName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("format");
    QTest::newRow("MIF") << fromMif << QStringLiteral("Файлы mif (*.mif)") << QStringLiteral("MIF");
    QTest::newRow("DXF") << fromDxf << QStringLiteral("Файлы dxf (*.dxf)") << QStringLiteral("DXF");
}

void TestPlugin::modeFollowsTheName()
{
    QFETCH(QString, name);
    QFETCH(QString, filter);
    QFETCH(QString, format);
    const QString path = m_store->path(QStringLiteral("neither"));
    writeFile(path, "neither\n");
    QStringList filters;
    run(name, [&](QDialog& dialog) {
        driveModal(
            [&](QDialog& modal) { filters = static_cast<QFileDialog&>(modal).nameFilters(); });
        click(dialog, "objectFileButton");
        import(dialog, path);
        clickOk(dialog);
    });
    QCOMPARE(filters, QStringList{ filter });
    QCOMPARE(m_messages->messages(),
        QStringList{
            QStringLiteral("Ошибка. Файл %1 не соответствует формату %2").arg(path, format) });
}

void TestPlugin::orderOfColumns()
{
    const QString path = m_store->path(QStringLiteral("line"));
    writeMif(path, "Line 1 2 3 4\n", "а\n");
    QStringList shown;
    const QString result = run(fromMif,
        [&](QDialog& dialog) {
            import(dialog, path + QStringLiteral(".mif"));
            shown = catalogueOf(dialog);
            clickOk(dialog);
        },
        { 1, 3, 0, 2 });
    QCOMPARE(
        shown, (QStringList{ QStringLiteral("2.00|н1|-|1.00"), QStringLiteral("4.00|н2|-|3.00") }));
    const char* const expected = R"(
<FormTable Name="Участки">
    <Row>
        <Cell/>
        <Cell/>
        <Cell>а</Cell>
        <FormTable Name="Координаты">
            <Row>
                <Cell>2.00</Cell>
                <Cell>н1</Cell>
                <Cell/>
                <Cell>1.00</Cell>
            </Row>
            <Row>
                <Cell>4.00</Cell>
                <Cell>н2</Cell>
                <Cell/>
                <Cell>3.00</Cell>
            </Row>
        </FormTable>
    </Row>
</FormTable>)";
    QCOMPARE(result, QString::fromUtf8(expected));
}

// The names are the third and the fourth argument; the context's name goes nowhere.
void TestPlugin::catalogueTableInTheResult()
{
    const QString path = m_store->path(QStringLiteral("line"));
    writeMif(path, "Region 0\n", "а\n");
    const QString result = run(fromMif, [&](QDialog& dialog) {
        import(dialog, path + QStringLiteral(".mif"));
        clickOk(dialog);
    });
    const char* const expected = R"(
<FormTable Name="Участки">
    <Row>
        <Cell>а</Cell>
        <FormTable Name="Координаты"/>
    </Row>
</FormTable>)";
    QCOMPARE(result, QString::fromUtf8(expected));
}

void TestPlugin::importWithoutCallback()
{
    const QString missing = m_store->path(QStringLiteral("missing.mif"));
    const QString result = run(
        fromMif,
        [&](QDialog& dialog) {
            import(dialog, missing);
            clickOk(dialog);
        },
        { 0, 1, 2, 0 }, nullptr);
    QCOMPARE(result, emptyTable);
    QCOMPARE(m_messages->messages(), QStringList());
}

void TestPlugin::cancelDuringAnImport()
{
    const QString missing = m_store->path(QStringLiteral("missing.mif"));
    const QString result = run(fromMif, [&](QDialog& dialog) {
        m_messages->then([&dialog] {
            clickCancel(dialog);
            QCoreApplication::processEvents();
        });
        import(dialog, missing);
    });
    QVERIFY(result.isNull());
    QCOMPARE(m_messages->messages().size(), 2);
}

void TestPlugin::operationFromTheCallback()
{
    const QString missing = m_store->path(QStringLiteral("missing.mif"));
    bool nestedIsNull = false;
    const QString result = run(fromMif, [&](QDialog& dialog) {
        m_messages->then([&] {
            m_messages->then(nullptr);
            nestedIsNull = m_import
                               ->operation(QStringLiteral("?"), QString(), QString(), QString(),
                                   HostColumns{ 0, 1, 2, 0 }, &MessageLog::receive)
                               .isNull();
        });
        import(dialog, missing);
        clickOk(dialog);
    });
    QCOMPARE(result, emptyTable);
    QVERIFY(nestedIsNull);
    const QString open = QStringLiteral("Ошибка открытия файла ") + missing;
    QCOMPARE(m_messages->messages(), (QStringList{ open, noOperation(QStringLiteral("?")), open }));
}

void TestPlugin::settingsLiveOn()
{
    run(fromMif, [](QDialog& dialog) {
        type(dialog, "objectPrefEdit", QStringLiteral("общий"));
        clickCancel(dialog);
    });
    QString prefix;
    run(fromDxf, [&](QDialog& dialog) {
        prefix = widget<QLineEdit>(dialog, "objectPrefEdit").text();
        clickCancel(dialog);
    });
    QCOMPARE(prefix, QStringLiteral("общий"));
}

void TestPlugin::resultFromMif()
{
    const QString path = m_store->path(QStringLiteral("example"));
    writeMif(path,
        "Pline Multiple 2\n3\n100 200\n110.5 200\n110.5 215.25\n2\n120 230\n125.75 230\n",
        "ЗУ1,5\n");
    const QString result = run(fromMif,
        [&](QDialog& dialog) {
            setChecked(dialog, "searchPointDefsCheck", false);
            setChecked(dialog, "updateCheck", true);
            type(dialog, "pointPrefEdit", QString());
            type(dialog, "fieldEdit_0", QStringLiteral("знак"));
            import(dialog, path + QStringLiteral(".mif"));
            clickOk(dialog);
        },
        { 0, 1, 2, 1 });
    QCOMPARE(result, exampleResult());
    QCOMPARE(m_messages->messages(), QStringList());
}

void TestPlugin::resultFromDxf()
{
    const QString path = m_store->path(QStringLiteral("square.dxf"));
    writeFile(path, squareDxf(true));
    const QString result = run(fromDxf, [&](QDialog& dialog) {
        type(dialog, "pointPrefEdit", QString());
        type(dialog, "objectPrefEdit", QString());
        import(dialog, path);
        clickOk(dialog);
    });
    const auto row = [](const char* def, const char* x, const char* y) {
        return QStringLiteral("            <Row>\n                <Cell>%1</Cell>\n"
                              "                <Cell>%2</Cell>\n                <Cell>%3</Cell>\n"
                              "            </Row>\n")
            .arg(QLatin1String(def), QLatin1String(x), QLatin1String(y));
    };
    const QString expected = QStringLiteral("\n<FormTable Name=\"Участки\">\n    <Row>\n"
                                            "        <Cell>ЗУ1</Cell>\n"
                                            "        <FormTable Name=\"Координаты\">\n")
        + row("1", "0.00", "0.00") + row("2", "100.00", "0.00") + row("3", "100.00", "100.00")
        + row("4", "0.00", "100.00") + row("1", "0.00", "0.00")
        + QStringLiteral("        </FormTable>\n    </Row>\n</FormTable>");
    QCOMPARE(result, expected);
    QCOMPARE(m_messages->messages(), QStringList());
}

QTEST_MAIN(TestPlugin)
#include "tst_plugin.moc"
