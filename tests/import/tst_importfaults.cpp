#include "import/dxfimport.h"
#include "import/formats.h"
#include "status.h"
#include "support/failingallocator.h"
#include "support/importing.h"
#include "support/miftext.h"
#include "support/permissions.h"
#include "support/stricttest.h"

#include <QFile>
#include <QTest>

#include <functional>

using Change = std::function<void(const QString& fileName)>;
Q_DECLARE_METATYPE(Change)

namespace {

void cutInHalf(const QString& fileName)
{
    QFile file(fileName);
    QVERIFY(file.resize(file.size() / 2));
}

void grow(const QString& fileName)
{
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::Append));
    QVERIFY(file.write(QByteArray(100000, ' ')) == 100000);
}

void removeFile(const QString& fileName)
{
    QVERIFY(QFile::remove(fileName));
}

void makeEmpty(const QString& fileName)
{
    QFile file(fileName);
    QVERIFY(file.resize(0));
}

/// Changes a file when the import has come to a pass, or has read the first entity in one.
class FileChanger : public ImportObserver {
public:
    FileChanger(ImportPass pass, bool isLater, Change change)
        : m_pass(pass)
        , m_isLater(isLater)
        , m_change(std::move(change))
    {
    }

    void passStarted(ImportPass pass, const QString& fileName) override
    {
        m_fileName = fileName;
        m_isInPass = pass == m_pass;
        if (!m_isLater)
            changeOnce();
    }
    void entityRead(QLatin1String) override { changeOnce(); }
    void objectBuilt(QLatin1String, bool, bool) override { changeOnce(); }
    void failed(const ImportFailure& failure) override { messages.append(failure.text()); }

    bool hasChanged() const { return m_change == nullptr; }

    QStringList messages;

private:
    void changeOnce()
    {
        if (!m_isInPass || !m_change)
            return;
        m_isInPass = false;
        const Change change = std::exchange(m_change, nullptr);
        change(m_fileName);
    }

    ImportPass m_pass;
    bool m_isLater;
    bool m_isInPass = false;
    Change m_change;
    QString m_fileName;
};

QByteArray pairs(const QByteArray& spaced)
{
    return QByteArray(spaced).replace(' ', '\n') + '\n';
}

/// A drawing of that many points, texts and lines, in this order.
QByteArray drawing(int count)
{
    QByteArray content = pairs("0 SECTION 2 HEADER 0 ENDSEC 0 SECTION 2 ENTITIES");
    for (int i = 0; i < count; ++i) {
        const QByteArray x = QByteArray::number(10 * i);
        content += pairs("0 POINT 10 " + x + " 20 0");
        content += pairs("0 TEXT 10 " + x + " 20 1 1 \xCF" + QByteArray::number(i));
    }
    for (int i = 0; i < count; ++i) {
        const QByteArray x = QByteArray::number(10 * i);
        content += pairs("0 LINE 10 " + x + " 20 0 11 " + x + " 21 5");
    }
    return content + pairs("0 ENDSEC 0 EOF");
}

struct MifText {
    QByteArray objects;
    QByteArray rows;
};

/// That many points, then as many lines.
MifText mifOf(int count)
{
    MifText text;
    for (int i = 0; i < count; ++i) {
        text.objects += "Point " + QByteArray::number(10 * i) + " 0\n";
        text.rows += "\xCF" + QByteArray::number(i) + '\n';
    }
    for (int i = 0; i < count; ++i) {
        const QByteArray x = QByteArray::number(10 * i);
        text.objects += "Line " + x + " 0 " + x + " 5\n";
        text.rows += "\"\xC7" + QByteArray::number(i) + "\"\n";
    }
    return text;
}

} // namespace

/// Circumstances under which files cannot be read to their ends.
class TestImportFaults : public StrictTest {
    Q_OBJECT

private slots:
    void changedFiles_data();
    void changedFiles();
    void permissionDenied_data();
    void permissionDenied();
    void allocations_data();
    void allocations();

private:
    ImportOptions optionsOf(const QString& format, int count) const;

    TempFiles m_files;
};

/// Writes files of the format; the options name them and have all names looked for.
ImportOptions TestImportFaults::optionsOf(const QString& format, int count) const
{
    ImportOptions options = ImportOptions::offered();
    options.encoding = "Windows-1251";
    if (format == QLatin1String("dxf")) {
        options.objectFileName = m_files.write(QStringLiteral("a.dxf"), drawing(count));
        return options;
    }
    const MifText text = mifOf(count);
    options.objectFileName = m_files.write(QStringLiteral("a.mif"), mif(text.objects));
    m_files.write(QStringLiteral("a.mid"), text.rows);
    return options;
}

void TestImportFaults::changedFiles_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("pass");
    QTest::addColumn<bool>("isLater");
    QTest::addColumn<Change>("change");
    const QList<QPair<const char*, Change>> changes{ { "shrinks", cutInHalf }, { "grows", grow },
        { "vanishes", removeFile }, { "is emptied", makeEmpty } };
    for (const char* format : { "mif", "dxf" }) {
        for (const auto& [name, change] : changes) {
            for (const ImportPass pass : { ImportPass::Points, ImportPass::Objects }) {
                for (const bool isLater : { false, true }) {
                    QTest::addRow("%s %s %s the %s pass", format, name, isLater ? "in" : "before",
                        pass == ImportPass::Points ? "point" : "object")
                        << QString::fromLatin1(format) << static_cast<int>(pass) << isLater
                        << change;
                }
            }
        }
    }
}

void TestImportFaults::changedFiles()
{
    constexpr int count = 3000;
    QFETCH(QString, format);
    QFETCH(int, pass);
    QFETCH(bool, isLater);
    QFETCH(Change, change);
    const ImportOptions options = optionsOf(format, count);
    const std::unique_ptr<MapImport> importer = formatOfId(format)->makeImporter();
    FileChanger changer(static_cast<ImportPass>(pass), isLater, change);
    QVector<DefPolygon> objects;
    importer->setOptions(options);
    importer->observer = &changer;
    importer->map = &objects;

    const bool result = importer->importMap();

    QVERIFY(changer.hasChanged());
    // Whatever was there to be read: objects as they were written, from the first on.
    QVERIFY(objects.size() <= count);
    for (int i = 0; i < objects.size() - 1; ++i) {
        QCOMPARE(objects.at(i).contours.size(), 1);
        QCOMPARE(objects.at(i).contours.first().size(), 2);
        QCOMPARE(objects.at(i).contours.first().first().x, 10.0 * i);
    }
    // Less than all was read without a word only where the file ends between two objects.
    if (!result)
        QVERIFY(!changer.messages.isEmpty());
    if (result && changer.messages.isEmpty() && change.target<void (*)(const QString&)>()) {
        const bool isWhole = *change.target<void (*)(const QString&)>() == grow
            || *change.target<void (*)(const QString&)>() == removeFile;
        if (isWhole)
            QCOMPARE(objects.size(), count);
    }
}

void TestImportFaults::permissionDenied_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("messages");
    const auto row = [](const char* format, const char* file, const QStringList& messages) {
        QTest::newRow(file) << QString::fromLatin1(format) << QString::fromLatin1(file) << messages;
    };
    // One message for each pass that wants the file.
    const QString mif = QStringLiteral("Ошибка открытия файла a.mif");
    row("mif", "a.mif", { mif, mif });
    row("mif", "a.mid", { QStringLiteral("Ошибка открытия MID файла a.mid") });
    const QString dxf = QStringLiteral("Ошибка открытия файла a.dxf");
    row("dxf", "a.dxf", { dxf, dxf });
}

void TestImportFaults::permissionDenied()
{
    QFETCH(QString, format);
    QFETCH(QString, file);
    QFETCH(QStringList, messages);
    const ImportOptions options = optionsOf(format, 3);
    const std::unique_ptr<MapImport> importer = formatOfId(format)->makeImporter();
    importer->setOptions(options);
    QVERIFY(QFile::setPermissions(m_files.path(file), QFile::Permissions()));
    ImportOutcome outcome;
    {
        const PermissionsHold permissions;
        if (!permissions.isSet())
            QSKIP("Permissions cannot be made to hold here");
        outcome = run(*importer);
    }
    QFile::setPermissions(m_files.path(file), QFile::ReadOwner | QFile::WriteOwner);
    for (QString& message : outcome.messages)
        message.remove(m_files.path(QString()) + QLatin1Char('/'));
    QCOMPARE(outcome.messages, messages);
    QVERIFY(outcome.objects.isEmpty());
}

void TestImportFaults::allocations_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<bool>("isNew");
    QTest::newRow("MIF, operator new") << QStringLiteral("mif") << true;
    QTest::newRow("DXF, operator new") << QStringLiteral("dxf") << true;
    // A sanitizer has an allocator of its own.
    if (!failing::canFailMalloc())
        return;
    QTest::newRow("MIF, malloc") << QStringLiteral("mif") << false;
    QTest::newRow("DXF, malloc") << QStringLiteral("dxf") << false;
}

/// Lets each allocation of an import fail, the first, the second and so on.
void TestImportFaults::allocations()
{
    constexpr int count = 4;
    QFETCH(QString, format);
    QFETCH(bool, isNew);
    const failing::Calls calls = isNew ? failing::Calls::New : failing::Calls::Malloc;
    const ImportOptions options = optionsOf(format, count);
    const Format& found = *formatOfId(format);
    const auto import = [&](QVector<DefPolygon>& objects) {
        guarded([&] {
            const std::unique_ptr<MapImport> importer = found.makeImporter();
            importer->setOptions(options);
            importer->map = &objects;
            importer->importMap();
        });
    };
    QVector<DefPolygon> whole;
    import(whole);
    QCOMPARE(whole.size(), count);

    const StatusLog log;
    int granted = 0;
    for (bool hasFailed = true; hasFailed; ++granted) {
        QVector<DefPolygon> objects;
        failing::arm(calls, granted);
        import(objects);
        hasFailed = failing::disarm();
        QVERIFY2(objects.size() <= count, qPrintable(QString::number(granted)));
        // What was built is what would have been built, but for the object at work.
        for (int i = 0; i < objects.size() - 1; ++i)
            QCOMPARE(describe({ objects.at(i) }), describe({ whole.at(i) }));
        for (const DefPolygon& object : qAsConst(objects)) {
            for (const QVector<DefPoint>& contour : object.contours) {
                for (const DefPoint& vertex : contour)
                    QVERIFY2(!vertex.def.isNull(), qPrintable(QString::number(granted)));
            }
        }
    }
    QVERIFY(granted > 5);
    // The next import is none the worse.
    QVector<DefPolygon> objects;
    import(objects);
    QCOMPARE(describe(objects), describe(whole));
}

QTEST_GUILESS_MAIN(TestImportFaults)
#include "tst_importfaults.moc"
