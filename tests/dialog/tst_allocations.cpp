#include "hostinterface.h"
#include "samplefiles.h"
#include "support/dialogdriver.h"
#include "support/failingallocator.h"
#include "support/messagelog.h"
#include "support/stricttest.h"
#include "support/tempfiles.h"

#include <QGuiApplication>
#include <QLineEdit>
#include <QMetaMethod>
#include <QPluginLoader>
#include <QTest>

#include <memory>

/// Each allocation that the plug-in asks for while its dialog works fails in its turn; the dialog
/// must live on. Qt's widgets themselves do not get over a lack of memory, so theirs are granted.
class TestAllocations : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void eachAllocation_data();
    void eachAllocation();

private:
    QString fileOf(const QString& suffix) const;

    QPluginLoader m_loader{ QStringLiteral(PLUGIN_PATH) };
    HostImport* m_import = nullptr;
    std::unique_ptr<OwnStore> m_store;
    std::unique_ptr<MessageLog> m_messages;
};

static const HostColumns columns{ 0, 1, 2, 0 };

void TestAllocations::init()
{
    m_store = std::make_unique<OwnStore>();
    m_messages = std::make_unique<MessageLog>();
    m_import = qobject_cast<HostImport*>(m_loader.instance());
    QVERIFY(m_import);
}

void TestAllocations::cleanup()
{
    failing::disarm();
    m_messages.reset();
    m_store.reset();
}

/// A small file of two objects.
QString TestAllocations::fileOf(const QString& suffix) const
{
    const QString path = m_store->path(QStringLiteral("a"));
    if (suffix == QLatin1String("mif"))
        writeMif(path, "Point 0 0\nLine 0 0 5 5\nLine 5 5 9 9\n", "1\n2\n1\n");
    else
        m_store->write(QStringLiteral("a.dxf"), squareDxf(true));
    return path + QLatin1Char('.') + suffix;
}

void TestAllocations::eachAllocation_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QByteArray>("slot");
    const QString fromMif = QStringLiteral("Объекты из MIF");
    const QString fromDxf = QStringLiteral("Объекты из DXF");
    const QByteArray start("on_startButton_clicked()");
    QTest::newRow("import of MIF") << fromMif << QStringLiteral("mif") << start;
    QTest::newRow("import of DXF") << fromDxf << QStringLiteral("dxf") << start;
    QTest::newRow("sorting") << fromMif << QStringLiteral("mif")
                             << QByteArray("on_sortButton_clicked()");
    QTest::newRow("a further field")
        << fromMif << QStringLiteral("mif") << QByteArray("on_plusToolButton_clicked()");
}

void TestAllocations::eachAllocation()
{
    QFETCH(QString, operation);
    QFETCH(QString, suffix);
    QFETCH(QByteArray, slot);
    const QString fileName = fileOf(suffix);
    int granted = 0;
    bool hasLeftTheSlot = false;
    QStringList whole;
    driveModal([&](QDialog& dialog) {
        widget<QLineEdit>(dialog, "objectFileNameEdit").setText(fileName);
        click(dialog, "startButton");
        whole = objectsOf(dialog);
        // Found before, for to look for it allocates.
        const QMetaObject& meta = *dialog.metaObject();
        const QMetaMethod method = meta.method(meta.indexOfSlot(slot));
        QVERIFY(method.isValid());
        for (bool hasFailed = true; hasFailed; ++granted) {
            failing::arm(failing::Calls::New, granted, "libimportgeometry");
            try {
                method.invoke(&dialog, Qt::DirectConnection);
            } catch (...) {
                hasLeftTheSlot = true;
            }
            hasFailed = failing::disarm();
            QVERIFY(!hasLeftTheSlot);
            QVERIFY(!QGuiApplication::overrideCursor());
            // The objects are painted as they are.
            dialog.grab();
        }
        // The dialog goes on as if nothing had happened.
        click(dialog, "startButton");
        QCOMPARE(objectsOf(dialog), whole);
        clickOk(dialog);
    });
    const QString result = m_import->operation(
        operation, QString(), QString(), QString(), columns, &MessageLog::receive);
    QVERIFY(!result.isNull());
    QVERIFY(!whole.isEmpty());
    QVERIFY(granted > 1);
}

QTEST_MAIN(TestAllocations)
#include "tst_allocations.moc"
