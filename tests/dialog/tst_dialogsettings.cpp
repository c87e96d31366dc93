#include "dialog.h"
#include "fieldnumvaluemap.h"
#include "support/dialogdriver.h"
#include "support/stricttest.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QSettings>
#include <QSpinBox>
#include <QSplitter>
#include <QTest>

#include <memory>

namespace {

const QString group = QStringLiteral("ImportObjects/");
const QString fieldGroup = QStringLiteral("ImportObjects/FieldNumValueMap/");

void store(const QString& key, const QVariant& value)
{
    QSettings().setValue(group + key, value);
}

QVariant stored(const QString& key)
{
    return QSettings().value(group + key);
}

QStringList storedFields()
{
    QSettings settings;
    settings.beginGroup(fieldGroup);
    QStringList result;
    for (const QString& key : settings.childKeys())
        result.append(key + QLatin1Char('=') + settings.value(key).toString());
    return result;
}

/// The extra-field rows as "column=text".
QStringList fieldRows(const QDialog& dialog)
{
    QStringList result;
    for (int row = 0;; ++row) {
        const auto* spin = dialog.findChild<QSpinBox*>(QStringLiteral("fieldSpin_%1").arg(row));
        const auto* edit = dialog.findChild<QLineEdit*>(QStringLiteral("fieldEdit_%1").arg(row));
        if (!spin != !edit)
            return { QStringLiteral("half a row") };
        if (!spin)
            return result;
        result.append(QString::number(spin->value()) + QLatin1Char('=') + edit->text());
    }
}

QStringList rowLayout(const QDialog& dialog)
{
    const auto* layout = dialog.findChild<QHBoxLayout*>(QStringLiteral("horizontalLayout_7"));
    QStringList result;
    for (int i = 0; i < layout->count(); ++i)
        result.append(layout->itemAt(i)->widget()->objectName());
    return result;
}

void setRow(const QDialog& dialog, int row, int column, const QString& text)
{
    const QByteArray number = QByteArray::number(row);
    widget<QSpinBox>(dialog, "fieldSpin_" + number).setValue(column);
    type(dialog, "fieldEdit_" + number, text);
}

QStringList list(const char* text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

using Fields = QMap<int, QString>;

class TestDialogSettings : public StrictTest {
    Q_OBJECT

private slots:
    void init() { m_store = std::make_unique<OwnStore>(); }
    void cleanup() { m_store.reset(); }

    void firstRun();
    void keysAndValues();
    void savedOnEveryOutcome_data();
    void savedOnEveryOutcome();
    void nothingElseIsStored();
    void restored_data();
    void restored();
    void malformed_data();
    void malformed();
    void malformedSizeAndSplitter();
    void sizeAndSplitterComeBack();
    void pointFileRowFollowsTheStore_data();
    void pointFileRowFollowsTheStore();

    void fieldRowsFromTheStore_data();
    void fieldRowsFromTheStore();
    void plusAddsUpToFiveRows();
    void plusCountsUpToTheMaximum();
    void minusRemovesTheLastRowAtOnce();
    void rowsComeAndGo();
    void laterRowWins();
    void emptyRowIsNotStored();
    void sixthFieldIsDropped();

    void saveFieldMapReplacesTheGroup();
    void loadFieldMapSkipsWhatIsNoField();

private:
    std::unique_ptr<OwnStore> m_store;
};

void TestDialogSettings::firstRun()
{
    const Dialog dialog;
    QCOMPARE(dialog.size(), QSize(400, 600));
    QVERIFY(widget<QCheckBox>(dialog, "searchPointDefsCheck").isChecked());
    QVERIFY(widget<QCheckBox>(dialog, "searchObjectDefsCheck").isChecked());
    QCOMPARE(widget<QLineEdit>(dialog, "pointPrefEdit").text(), QStringLiteral("н"));
    QCOMPARE(widget<QLineEdit>(dialog, "objectPrefEdit").text(), QStringLiteral(":ЗУ"));
    QCOMPARE(widget<QSpinBox>(dialog, "pointStartNumSpin").value(), 1);
    QCOMPARE(widget<QSpinBox>(dialog, "objectStartNumSpin").value(), 1);
    QVERIFY(!widget<QCheckBox>(dialog, "usePointFileCheck").isChecked());
    QVERIFY(!widget<QCheckBox>(dialog, "updateCheck").isChecked());
    QCOMPARE(fieldRows(dialog), list("4="));
    QVERIFY(QSettings().allKeys().isEmpty());
}

void TestDialogSettings::keysAndValues()
{
    store(QStringLiteral("lastPath"), QStringLiteral("/somewhere/план.mif"));
    QByteArray splitter;
    {
        Dialog dialog;
        dialog.resize(801, 502);
        setChecked(dialog, "searchPointDefsCheck", false);
        type(dialog, "pointPrefEdit", QStringLiteral("p"));
        widget<QSpinBox>(dialog, "pointStartNumSpin").setValue(17);
        setChecked(dialog, "searchObjectDefsCheck", false);
        type(dialog, "objectPrefEdit", QStringLiteral("o"));
        widget<QSpinBox>(dialog, "objectStartNumSpin").setValue(999999999);
        setChecked(dialog, "usePointFileCheck", true);
        setChecked(dialog, "updateCheck", true);
        setRow(dialog, 0, 4, QStringLiteral("A"));
        splitter = widget<QSplitter>(dialog, "splitter").saveState();
    }
    const QMap<QString, QVariant> expected = {
        { QStringLiteral("size"), QSize(801, 502) },
        { QStringLiteral("splitterSizes"), splitter },
        { QStringLiteral("lastPath"), QStringLiteral("/somewhere/план.mif") },
        { QStringLiteral("searchPointDefs"), false },
        { QStringLiteral("pointPref"), QStringLiteral("p") },
        { QStringLiteral("pointStartNum"), 17 },
        { QStringLiteral("searchObjectDefs"), false },
        { QStringLiteral("objectPref"), QStringLiteral("o") },
        { QStringLiteral("objectStartNum"), 999999999 },
        { QStringLiteral("usePointFile"), true },
        { QStringLiteral("update"), true },
        { QStringLiteral("FieldNumValueMap/3"), QStringLiteral("A") },
    };
    QStringList keys;
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        QCOMPARE(stored(it.key()), it.value());
        keys.append(group + it.key());
    }
    QStringList storedKeys = QSettings().allKeys();
    storedKeys.sort();
    keys.sort();
    QCOMPARE(storedKeys, keys);
    QVERIFY(!splitter.isEmpty());
    QVERIFY(QFile::exists(m_store->path(QStringLiteral("store/TestOrganization/TestHost.conf"))));
}

void TestDialogSettings::savedOnEveryOutcome_data()
{
    QTest::addColumn<QByteArray>("outcome");
    for (const char* outcome : { "accepted", "cancelled", "closed", "never shown" })
        QTest::newRow(outcome) << QByteArray(outcome);
}

void TestDialogSettings::savedOnEveryOutcome()
{
    QFETCH(QByteArray, outcome);
    const auto drive = [&](QDialog& dialog) {
        type(dialog, "pointPrefEdit", QStringLiteral("новый"));
        if (outcome == "accepted")
            clickOk(dialog);
        if (outcome == "cancelled")
            clickCancel(dialog);
        if (outcome == "closed")
            dialog.close();
    };
    {
        Dialog dialog;
        if (outcome == "never shown") {
            drive(dialog);
        } else {
            driveModal(drive);
            QCOMPARE(
                dialog.exec(), int(outcome == "accepted" ? QDialog::Accepted : QDialog::Rejected));
        }
        QVERIFY(!stored(QStringLiteral("pointPref")).isValid());
    }
    QCOMPARE(stored(QStringLiteral("pointPref")), QVariant(QStringLiteral("новый")));
    const Dialog next;
    QCOMPARE(widget<QLineEdit>(next, "pointPrefEdit").text(), QStringLiteral("новый"));
}

void TestDialogSettings::nothingElseIsStored()
{
    {
        Dialog dialog;
        type(dialog, "objectFileNameEdit", QStringLiteral("a.mif"));
        type(dialog, "pointFileNameEdit", QStringLiteral("b.mif"));
        widget<QComboBox>(dialog, "encodingCombo").setCurrentIndex(2);
        widget<QCheckBox>(dialog, "swapXYCheck").setChecked(true);
    }
    const Dialog next;
    QCOMPARE(widget<QLineEdit>(next, "objectFileNameEdit").text(), QString());
    QCOMPARE(widget<QLineEdit>(next, "pointFileNameEdit").text(), QString());
    QCOMPARE(widget<QComboBox>(next, "encodingCombo").currentText(), QStringLiteral("Default"));
    QVERIFY(!widget<QCheckBox>(next, "swapXYCheck").isChecked());
    QVERIFY(!widget<QWidget>(next, "startButton").isEnabled());
}

void TestDialogSettings::restored_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("property");

    const auto row = [](const char* key, const QVariant& value, const char* name,
                         const char* property) {
        QTest::newRow(key) << QString::fromLatin1(key) << value << QByteArray(name)
                           << QByteArray(property);
    };
    row("searchPointDefs", false, "searchPointDefsCheck", "checked");
    row("pointPref", QStringLiteral("т"), "pointPrefEdit", "text");
    row("pointStartNum", 12, "pointStartNumSpin", "value");
    row("searchObjectDefs", false, "searchObjectDefsCheck", "checked");
    row("objectPref", QStringLiteral("об"), "objectPrefEdit", "text");
    row("objectStartNum", 34, "objectStartNumSpin", "value");
    row("usePointFile", true, "usePointFileCheck", "checked");
    row("update", true, "updateCheck", "checked");
}

void TestDialogSettings::restored()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, property);
    store(key, value);
    {
        const Dialog dialog;
        QCOMPARE(widget<QWidget>(dialog, name).property(property), value);
    }
    QCOMPARE(stored(key), value);
}

void TestDialogSettings::malformed_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("shown");

    const auto row = [](const char* tag, const char* key, const QVariant& value, const char* name,
                         const char* property, const QVariant& shown) {
        QTest::newRow(tag) << QString::fromLatin1(key) << value << QByteArray(name)
                           << QByteArray(property) << shown;
    };
    const QVariant text = QStringLiteral("abc");
    const QVariant bytes = QByteArray("\0\1\2", 3);
    row("no number", "pointStartNum", text, "pointStartNumSpin", "value", 1);
    row("zero", "pointStartNum", 0, "pointStartNumSpin", "value", 1);
    row("negative", "objectStartNum", -5, "objectStartNumSpin", "value", 1);
    row("too great", "objectStartNum", 2000000000, "objectStartNumSpin", "value", 999999999);
    row("number in a text", "objectStartNum", QStringLiteral("7"), "objectStartNumSpin", "value",
        7);
    row("text for a box", "searchPointDefs", text, "searchPointDefsCheck", "checked", true);
    row("0 for a box", "searchPointDefs", 0, "searchPointDefsCheck", "checked", false);
    row("false as text", "searchObjectDefs", QStringLiteral("false"), "searchObjectDefsCheck",
        "checked", false);
    row("empty text for a box", "searchObjectDefs", QString(), "searchObjectDefsCheck", "checked",
        false);
    row("list for a box", "update", QStringList{ text.toString(), text.toString() }, "updateCheck",
        "checked", false);
    row("number for a text", "objectPref", 15, "objectPrefEdit", "text", QStringLiteral("15"));
    row("empty prefix", "pointPref", QString(), "pointPrefEdit", "text", QString());
    row("prefix too long", "pointPref", QString(25, QLatin1Char('x')), "pointPrefEdit", "text",
        QString(20, QLatin1Char('x')));
    row("bytes for a number", "pointStartNum", bytes, "pointStartNumSpin", "value", 1);
}

void TestDialogSettings::malformed()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, property);
    QFETCH(QVariant, shown);
    store(key, value);
    const Dialog dialog;
    QCOMPARE(widget<QWidget>(dialog, name).property(property), shown);
}

void TestDialogSettings::malformedSizeAndSplitter()
{
    store(QStringLiteral("size"), QStringLiteral("large"));
    store(QStringLiteral("splitterSizes"), QByteArray("no state"));
    store(QStringLiteral("FieldNumValueMap"), QStringLiteral("no group"));
    {
        Dialog dialog;
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QCOMPARE(fieldRows(dialog), list("4="));
        QCOMPARE(widget<QSplitter>(dialog, "splitter").count(), 2);
    }
    QVERIFY(stored(QStringLiteral("size")).toSize().isValid());
}

void TestDialogSettings::sizeAndSplitterComeBack()
{
    QList<int> sizes;
    QSize size;
    {
        Dialog dialog;
        dialog.resize(1000, 700);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        auto& splitter = widget<QSplitter>(dialog, "splitter");
        const QList<int> before = splitter.sizes();
        splitter.setSizes({ 300, 700 });
        sizes = splitter.sizes();
        QVERIFY(sizes != before);
        size = dialog.size();
    }
    Dialog next;
    QCOMPARE(next.size(), size);
    next.show();
    QVERIFY(QTest::qWaitForWindowExposed(&next));
    QCOMPARE(widget<QSplitter>(next, "splitter").sizes(), sizes);
}

void TestDialogSettings::pointFileRowFollowsTheStore_data()
{
    QTest::addColumn<bool>("used");
    QTest::newRow("used") << true;
    QTest::newRow("not used") << false;
}

void TestDialogSettings::pointFileRowFollowsTheStore()
{
    QFETCH(bool, used);
    store(QStringLiteral("usePointFile"), used);
    const Dialog dialog;
    for (const char* name : { "pointFileLabel", "pointFileNameEdit", "pointFileButton" })
        QCOMPARE(widget<QWidget>(dialog, name).isHidden(), !used);
    QCOMPARE(widget<QLabel>(dialog, "objectFileLabel").text(),
        used ? QStringLiteral("Файл объектов:") : QStringLiteral("Файл:"));
}

void TestDialogSettings::fieldRowsFromTheStore_data()
{
    QTest::addColumn<QStringList>("keys"); // as "key=text"
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QStringList>("storedAgain");

    QTest::newRow("none") << list("") << list("4=") << list("");
    QTest::newRow("one") << list("6=a") << list("7=a") << list("6=a");
    QTest::newRow("three") << list("1=a 4=b 8=c") << list("2=a 5=b 9=c") << list("1=a 4=b 8=c");
    QTest::newRow("in order of number")
        << list("10=a 9=b 0=c") << list("1=c 10=b 11=a") << list("0=c 10=a 9=b");
    QTest::newRow("no fields") << list("x=a -1=b 3= 1.5=c") << list("4=") << list("");
    QTest::newRow("some fields") << list("x=a 2=b -1=c") << list("3=b") << list("2=b");
    QTest::newRow("beyond the last column") << list("25=a") << list("20=a") << list("19=a");
    QTest::newRow("largest number") << list("2147483647=a") << list("20=a") << list("19=a");
}

void TestDialogSettings::fieldRowsFromTheStore()
{
    QFETCH(QStringList, keys);
    QFETCH(QStringList, rows);
    QFETCH(QStringList, storedAgain);
    for (const QString& entry : keys)
        store(QStringLiteral("FieldNumValueMap/") + entry.section(QLatin1Char('='), 0, 0),
            entry.section(QLatin1Char('='), 1));
    {
        const Dialog dialog;
        QCOMPARE(fieldRows(dialog), rows);
    }
    QCOMPARE(storedFields(), storedAgain);
}

void TestDialogSettings::plusAddsUpToFiveRows()
{
    const Dialog dialog;
    for (int i = 0; i < 6; ++i)
        click(dialog, "plusToolButton");
    QCOMPARE(fieldRows(dialog), list("4= 5= 6= 7= 8="));
    QCOMPARE(rowLayout(dialog),
        list("fieldSpin_0 fieldEdit_0 fieldSpin_1 fieldEdit_1 fieldSpin_2 fieldEdit_2 "
             "fieldSpin_3 fieldEdit_3 fieldSpin_4 fieldEdit_4"));
    for (int row = 0; row < 5; ++row) {
        const auto& spin = widget<QSpinBox>(dialog, "fieldSpin_" + QByteArray::number(row));
        QCOMPARE(spin.minimum(), 1);
        QCOMPARE(spin.maximum(), 20);
        QCOMPARE(spin.parentWidget(), &dialog);
    }
}

void TestDialogSettings::plusCountsUpToTheMaximum()
{
    const Dialog dialog;
    widget<QSpinBox>(dialog, "fieldSpin_0").setValue(19);
    for (int i = 0; i < 3; ++i)
        click(dialog, "plusToolButton");
    QCOMPARE(fieldRows(dialog), list("19= 20= 20= 20="));
}

void TestDialogSettings::minusRemovesTheLastRowAtOnce()
{
    const Dialog dialog;
    click(dialog, "minusToolButton");
    QCOMPARE(fieldRows(dialog), list("4="));

    click(dialog, "plusToolButton");
    click(dialog, "plusToolButton");
    const QPointer<QSpinBox> spin = &widget<QSpinBox>(dialog, "fieldSpin_2");
    const QPointer<QLineEdit> edit = &widget<QLineEdit>(dialog, "fieldEdit_2");
    click(dialog, "minusToolButton");
    QVERIFY(!spin);
    QVERIFY(!edit);
    QCOMPARE(rowLayout(dialog), list("fieldSpin_0 fieldEdit_0 fieldSpin_1 fieldEdit_1"));
    click(dialog, "minusToolButton");
    click(dialog, "minusToolButton");
    QCOMPARE(rowLayout(dialog), list("fieldSpin_0 fieldEdit_0"));
}

void TestDialogSettings::rowsComeAndGo()
{
    {
        const Dialog dialog;
        setRow(dialog, 0, 4, QStringLiteral("a"));
        click(dialog, "plusToolButton");
        setRow(dialog, 1, 9, QStringLiteral("b"));
        click(dialog, "minusToolButton");
        click(dialog, "plusToolButton");
        QCOMPARE(fieldRows(dialog), list("4=a 5="));
        setRow(dialog, 1, 2, QStringLiteral("знак"));
    }
    QCOMPARE(storedFields(), list("1=знак 3=a"));
    const Dialog next;
    QCOMPARE(fieldRows(next), list("2=знак 4=a"));
}

void TestDialogSettings::laterRowWins()
{
    {
        const Dialog dialog;
        setRow(dialog, 0, 7, QStringLiteral("a"));
        click(dialog, "plusToolButton");
        setRow(dialog, 1, 7, QStringLiteral("b"));
    }
    QCOMPARE(storedFields(), list("6=b"));
}

void TestDialogSettings::emptyRowIsNotStored()
{
    store(QStringLiteral("FieldNumValueMap/3"), QStringLiteral("old"));
    store(QStringLiteral("FieldNumValueMap/x"), QStringLiteral("odd"));
    {
        const Dialog dialog;
        QCOMPARE(fieldRows(dialog), list("4=old"));
        type(dialog, "fieldEdit_0", QString());
    }
    QCOMPARE(storedFields(), QStringList());
}

void TestDialogSettings::sixthFieldIsDropped()
{
    for (int key = 0; key < 7; ++key)
        store(QStringLiteral("FieldNumValueMap/%1").arg(key), QStringLiteral("t"));
    {
        const Dialog dialog;
        QCOMPARE(fieldRows(dialog), list("1=t 2=t 3=t 4=t 5=t"));
    }
    QCOMPARE(storedFields(), list("0=t 1=t 2=t 3=t 4=t"));
}

void TestDialogSettings::saveFieldMapReplacesTheGroup()
{
    QSettings settings;
    settings.setValue(QStringLiteral("outer/FieldNumValueMap/7"), QStringLiteral("old"));
    settings.setValue(QStringLiteral("outer/FieldNumValueMap/deep/7"), QStringLiteral("old"));
    settings.setValue(QStringLiteral("outer/other"), 1);
    settings.beginGroup(QStringLiteral("outer"));
    saveFieldMap(settings,
        { { 12, QStringLiteral("знак") }, { 3, QStringLiteral("") }, { 4, QString() },
            { 0, QStringLiteral("a") } });
    QCOMPARE(settings.group(), QStringLiteral("outer"));
    settings.endGroup();

    QStringList keys = settings.allKeys();
    keys.sort();
    QCOMPARE(keys, list("outer/FieldNumValueMap/0 outer/FieldNumValueMap/12 outer/other"));
    QCOMPARE(settings.value(QStringLiteral("outer/FieldNumValueMap/12")),
        QVariant(QStringLiteral("знак")));
}

void TestDialogSettings::loadFieldMapSkipsWhatIsNoField()
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("outer/FieldNumValueMap"));
    for (const char* key : { "0", "12", "x", "-1", "1.5", "99999999999", "0x3", "4a" })
        settings.setValue(QLatin1String(key), QStringLiteral("t"));
    settings.setValue(QStringLiteral("5"), QString());
    settings.setValue(QStringLiteral("6"), 17);
    settings.setValue(QStringLiteral("deep/7"), QStringLiteral("t"));
    settings.endGroup();

    Fields fields = { { 1, QStringLiteral("earlier") } };
    settings.beginGroup(QStringLiteral("outer"));
    loadFieldMap(settings, fields);
    QCOMPARE(settings.group(), QStringLiteral("outer"));
    QCOMPARE(fields,
        (Fields{ { 0, QStringLiteral("t") }, { 6, QStringLiteral("17") },
            { 12, QStringLiteral("t") } }));
}

QTEST_MAIN(TestDialogSettings)
#include "tst_dialogsettings.moc"
