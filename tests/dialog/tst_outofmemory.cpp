#include "hostinterface.h"
#include "samplefiles.h"
#include "support/dialogdriver.h"
#include "support/messagelog.h"
#include "support/stricttest.h"
#include "support/tempfiles.h"

#include <QGuiApplication>
#include <QLineEdit>
#include <QPluginLoader>
#include <QTest>

#include <cstdlib>
#include <memory>
#include <new>

namespace {

/// The smallest request that is refused, once; 0 while all are granted.
size_t refusedSize = 0;

} // namespace

void* operator new(size_t size)
{
    if (refusedSize > 0 && size >= refusedSize) {
        refusedSize = 0;
        throw std::bad_alloc();
    }
    void* memory = std::malloc(size);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

/// What the user and the host see when memory runs out.
class TestOutOfMemory : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void whileImporting_data();
    void whileImporting();
    void whileOpeningTheDialog();

private:
    QString writeSteps();

    QPluginLoader m_loader{ QStringLiteral(PLUGIN_PATH) };
    HostImport* m_import = nullptr;
    std::unique_ptr<OwnStore> m_store;
    std::unique_ptr<MessageLog> m_messages;
};

static const HostColumns columns{ 0, 1, 2, 0 };
static constexpr int stepCount = 100;
static constexpr int stepLength = 20;

void TestOutOfMemory::init()
{
    m_store = std::make_unique<OwnStore>();
    m_messages = std::make_unique<MessageLog>();
    m_import = qobject_cast<HostImport*>(m_loader.instance());
    QVERIFY(m_import);
}

void TestOutOfMemory::cleanup()
{
    refusedSize = 0;
    m_messages.reset();
    m_store.reset();
}

/// Writes many lines whose vertices stand far apart.
QString TestOutOfMemory::writeSteps()
{
    QByteArray objects;
    for (int step = 0; step < stepCount; ++step) {
        objects += "Pline " + QByteArray::number(stepLength) + '\n';
        for (int i = 0; i < stepLength; ++i)
            objects += QByteArray::number(1000 * step) + ' ' + QByteArray::number(1000 * i) + '\n';
    }
    const QString path = m_store->path(QStringLiteral("steps"));
    writeMif(path, objects, QByteArray());
    return path + QStringLiteral(".mif");
}

void TestOutOfMemory::whileImporting_data()
{
    QTest::addColumn<int>("refused");
    QTest::addColumn<bool>("isAtTheStart");
    QTest::newRow("for the importer") << 200 << true;
    QTest::newRow("as the catalogue grows") << 30000 << false;
}

void TestOutOfMemory::whileImporting()
{
    QFETCH(int, refused);
    QFETCH(bool, isAtTheStart);
    const QString fileName = writeSteps();
    bool wasRefused = false;
    bool hasLeftTheSlot = false;
    QStringList kept;
    QStringList all;
    driveModal([&](QDialog& dialog) {
        setChecked(dialog, "searchPointDefsCheck", false);
        setChecked(dialog, "searchObjectDefsCheck", false);
        widget<QLineEdit>(dialog, "objectFileNameEdit").setText(fileName);
        if (!isAtTheStart) {
            click(dialog, "startButton");
            all = objectsOf(dialog);
        }
        refusedSize = size_t(refused);
        try {
            QMetaObject::invokeMethod(&dialog, "on_startButton_clicked");
        } catch (const std::bad_alloc&) {
            hasLeftTheSlot = true;
        }
        wasRefused = refusedSize == 0;
        refusedSize = 0;
        QVERIFY(!QGuiApplication::overrideCursor());
        if (!isAtTheStart)
            kept = objectsOf(dialog);

        // The dialog goes on as if nothing had happened.
        click(dialog, "startButton");
        QCOMPARE(objectsOf(dialog).size(), stepCount);
        QCOMPARE(catalogueOf(dialog).size(), stepLength);
        clickOk(dialog);
    });
    const QString result = m_import->operation(QStringLiteral("Объекты из MIF"), QString(),
        QString(), QString(), columns, &MessageLog::receive);
    QVERIFY(wasRefused);
    QVERIFY(!hasLeftTheSlot);
    QVERIFY(!result.isNull());
    QCOMPARE(m_messages->messages().size(), 1);
    QVERIFY(m_messages->messages().first().startsWith(QStringLiteral("Ошибка")));
    if (!isAtTheStart) {
        QVERIFY(kept.size() > 1);
        QVERIFY(kept.size() < stepCount);
        kept.removeLast();
        QCOMPARE(kept, all.mid(0, kept.size()));
    }
}

void TestOutOfMemory::whileOpeningTheDialog()
{
    const QString name = QStringLiteral("Объекты из MIF");
    refusedSize = 1;
    const QString result =
        m_import->operation(name, QString(), QString(), QString(), columns, &MessageLog::receive);
    QCOMPARE(refusedSize, size_t(0));
    QVERIFY(result.isNull());
    QCOMPARE(m_messages->messages().size(), 1);
    QVERIFY(m_messages->messages().first().startsWith(QStringLiteral("Ошибка")));
}

QTEST_MAIN(TestOutOfMemory)
#include "tst_outofmemory.moc"
