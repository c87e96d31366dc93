#include "dialog.h"
#include "support/dialogdriver.h"
#include "support/fulldisk.h"
#include "support/permissions.h"
#include "support/stricttest.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QPointF>
#include <QSettings>
#include <QSpinBox>
#include <QTest>

#include <limits>
#include <memory>

namespace {

const QString group = QStringLiteral("ImportObjects/");

/// What the dialog offers, widget by widget.
QStringList offers(const QDialog& dialog)
{
    QStringList texts;
    for (const char* name :
        { "searchPointDefsCheck", "searchObjectDefsCheck", "usePointFileCheck", "updateCheck" })
        texts.append(widget<QCheckBox>(dialog, name).isChecked() ? QStringLiteral("on")
                                                                 : QStringLiteral("off"));
    for (const char* name : { "pointPrefEdit", "objectPrefEdit" })
        texts.append(widget<QLineEdit>(dialog, name).text());
    for (const char* name : { "pointStartNumSpin", "objectStartNumSpin" })
        texts.append(QString::number(widget<QSpinBox>(dialog, name).value()));
    return texts;
}

const QStringList firstOffers{ QStringLiteral("on"), QStringLiteral("on"), QStringLiteral("off"),
    QStringLiteral("off"), QStringLiteral("н"), QStringLiteral(":ЗУ"), QStringLiteral("1"),
    QStringLiteral("1") };

} // namespace

/// Stores that no dialog has written, or that cannot be written.
class TestSettingsFaults : public StrictTest {
    Q_OBJECT

private slots:
    void init() { m_store = std::make_unique<OwnStore>(); }
    void cleanup() { m_store.reset(); }

    void keysOfAnyType_data();
    void keysOfAnyType();
    void garbage_data();
    void garbage();
    void fullDisk();
    void folderInPlaceOfTheStore();
    void storeThatMayNotBeWritten();
    void storeThatMayNotBeRead();

private:
    /// The path of the store, in folders that exist.
    QString storePath() const;

    std::unique_ptr<OwnStore> m_store;
};

QString TestSettingsFaults::storePath() const
{
    const QString folder = m_store->path(QStringLiteral("store/TestOrganization"));
    QDir().mkpath(folder);
    return folder + QStringLiteral("/TestHost.conf");
}

void TestSettingsFaults::keysOfAnyType_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    const QList<QPair<const char*, QVariant>> values{ { "nothing", QVariant() },
        { "a text", QStringLiteral("abc") }, { "an empty text", QLatin1String("") },
        { "a truth", true }, { "a large number", std::numeric_limits<int>::max() },
        { "a small number", std::numeric_limits<int>::min() },
        { "a larger number", std::numeric_limits<qlonglong>::max() },
        { "no number", std::numeric_limits<double>::quiet_NaN() },
        { "bytes", QByteArray("\0\xFF\x01", 3) },
        { "a list", QStringList{ QStringLiteral("a"), QStringLiteral("b") } },
        { "a map", QVariantMap{ { QStringLiteral("a"), 1 } } }, { "a size", QSize(-5, 1 << 30) },
        { "a place", QPointF(1, 2) } };
    for (const char* key : { "size", "splitterSizes", "lastPath", "searchPointDefs", "pointPref",
             "pointStartNum", "searchObjectDefs", "objectPref", "objectStartNum", "usePointFile",
             "update", "FieldNumValueMap", "FieldNumValueMap/0", "FieldNumValueMap/x" }) {
        for (const auto& [name, value] : values)
            QTest::newRow(QByteArray(key) + " is " + name) << QString::fromLatin1(key) << value;
    }
}

void TestSettingsFaults::keysOfAnyType()
{
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    {
        QSettings settings;
        settings.setValue(group + key, value);
    }
    {
        Dialog dialog;
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        for (const char* name : { "pointStartNumSpin", "objectStartNumSpin" }) {
            const int number = widget<QSpinBox>(dialog, name).value();
            QVERIFY(number >= 1 && number <= 999999999);
        }
        QVERIFY(widget<QLineEdit>(dialog, "pointPrefEdit").text().size() <= 20);
        QVERIFY(dialog.findChild<QSpinBox*>(QStringLiteral("fieldSpin_0")));
        QVERIFY(!dialog.findChild<QSpinBox*>(QStringLiteral("fieldSpin_2")));
    }
    // What the dialog leaves is sound: the next one offers the same and leaves it so.
    QStringList offered;
    {
        const Dialog dialog;
        offered = offers(dialog);
    }
    const Dialog dialog;
    QCOMPARE(offers(dialog), offered);
    QVERIFY(QSettings().value(group + QStringLiteral("size")).toSize().isValid());
    bool isNumber = false;
    QSettings().value(group + QStringLiteral("pointStartNum")).toInt(&isNumber);
    QVERIFY(isNumber);
}

void TestSettingsFaults::garbage_data()
{
    QTest::addColumn<QByteArray>("content");
    QByteArray bytes;
    for (int i = 0; i < 10000; ++i)
        bytes.append(static_cast<char>(i * 37 + i / 256));
    QTest::newRow("any bytes") << bytes;
    QTest::newRow("NUL bytes") << QByteArray(5000, '\0');
    QTest::newRow("no end of a group") << QByteArray("[ImportObj\npointPref=x\n");
    QTest::newRow("a picture") << QByteArray("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16);
    QTest::newRow("one long line") << QByteArray(1000000, '[');
    QTest::newRow("another group") << QByteArray("[Other]\npointPref=x\n");
}

void TestSettingsFaults::garbage()
{
    QFETCH(QByteArray, content);
    writeFile(storePath(), content);
    {
        const Dialog dialog;
        QCOMPARE(offers(dialog), firstOffers);
    }
    const Dialog dialog;
    QCOMPARE(offers(dialog), firstOffers);
}

void TestSettingsFaults::fullDisk()
{
    const QByteArray before("[ImportObjects]\npointPref=x\n");
    writeFile(storePath(), before);
    {
        const FullDisk full;
        {
            const Dialog dialog;
            QCOMPARE(widget<QLineEdit>(dialog, "pointPrefEdit").text(), QStringLiteral("x"));
            widget<QLineEdit>(dialog, "pointPrefEdit").setText(QStringLiteral("y"));
        }
        // The dialog has gone without a word, and what was stored is whole.
        QFile file(storePath());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), before);
    }
    {
        const Dialog dialog;
    }
    QFile file(storePath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("pointPref="));
}

void TestSettingsFaults::folderInPlaceOfTheStore()
{
    QVERIFY(QDir().mkpath(storePath()));
    {
        const Dialog dialog;
        QCOMPARE(offers(dialog), firstOffers);
    }
    QVERIFY(QDir(storePath()).isEmpty());
}

void TestSettingsFaults::storeThatMayNotBeWritten()
{
    const QByteArray before("[ImportObjects]\npointPref=x\n");
    writeFile(storePath(), before);
    const QString folder = QFileInfo(storePath()).path();
    QVERIFY(QFile::setPermissions(storePath(), QFile::ReadOwner));
    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
    {
        const PermissionsHold permissions;
        if (!permissions.isSet())
            QSKIP("Permissions cannot be made to hold here");
        Dialog dialog;
        QCOMPARE(widget<QLineEdit>(dialog, "pointPrefEdit").text(), QStringLiteral("x"));
        widget<QLineEdit>(dialog, "pointPrefEdit").setText(QStringLiteral("y"));
    }
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QFile file(storePath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

void TestSettingsFaults::storeThatMayNotBeRead()
{
    const QByteArray before("[ImportObjects]\npointPref=x\n");
    writeFile(storePath(), before);
    QVERIFY(QFile::setPermissions(storePath(), QFile::Permissions()));
    {
        const PermissionsHold permissions;
        if (!permissions.isSet())
            QSKIP("Permissions cannot be made to hold here");
        const Dialog dialog;
        QCOMPARE(offers(dialog), firstOffers);
    }
    QFile::setPermissions(storePath(), QFile::ReadOwner | QFile::WriteOwner);
    QFile file(storePath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
}

QTEST_MAIN(TestSettingsFaults)
#include "tst_settingsfaults.moc"
