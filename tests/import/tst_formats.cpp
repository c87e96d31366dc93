#include "import/dxfimport.h"
#include "import/formats.h"
#include "import/mifimport.h"

#include <QtTest>

/// The table of formats.
class TestFormats : public QObject {
    Q_OBJECT

private slots:
    void rows();
    void importers();
    void foundByOperation_data();
    void foundByOperation();
    void foundByFile_data();
    void foundByFile();
    void companions_data();
    void companions();
};

void TestFormats::rows()
{
    QStringList texts;
    for (const Format& format : formats())
        texts << format.id << format.operation << format.suffix << format.filter;
    QCOMPARE(texts,
        (QStringList{ QStringLiteral("mif"), QStringLiteral("Объекты из MIF"),
            QStringLiteral("mif"), QStringLiteral("Файлы mif (*.mif)"), QStringLiteral("dxf"),
            QStringLiteral("Объекты из DXF"), QStringLiteral("dxf"),
            QStringLiteral("Файлы dxf (*.dxf)") }));
}

void TestFormats::importers()
{
    const auto mif = formatOfId(QStringLiteral("mif"))->makeImporter();
    QVERIFY(dynamic_cast<MifImport*>(mif.get()));
    const auto dxf = formatOfId(QStringLiteral("dxf"))->makeImporter();
    QVERIFY(dynamic_cast<DxfImport*>(dxf.get()));
    QVERIFY(!formatOfId(QStringLiteral("shp")));
    QVERIFY(!formatOfId(QString()));
}

void TestFormats::foundByOperation_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("id");
    const auto row = [](const char* operation, const char* id) {
        QTest::newRow(operation) << QString::fromUtf8(operation) << QString::fromLatin1(id);
    };
    row("Объекты из MIF", "mif");
    row("Объекты из DXF", "dxf");
    row("объекты из DXF", "none");
    row(" Объекты из MIF", "none");
    row("", "none");
}

void TestFormats::foundByOperation()
{
    QFETCH(QString, operation);
    QFETCH(QString, id);
    const Format* const format = formatOfOperation(operation);
    QCOMPARE(format ? format->id : QStringLiteral("none"), id);
}

void TestFormats::foundByFile_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("id");
    const auto row = [](const char* fileName, const char* id) {
        QTest::newRow(fileName) << QString::fromLatin1(fileName) << QString::fromLatin1(id);
    };
    row("a.mif", "mif");
    row("/b.dxf/A.MIF", "mif");
    row("a.b.DxF", "dxf");
    row("a.mid", "none");
    row("mif", "none");
    row("", "none");
}

void TestFormats::foundByFile()
{
    QFETCH(QString, fileName);
    QFETCH(QString, id);
    const Format* const format = formatOfFile(fileName);
    QCOMPARE(format ? format->id : QStringLiteral("none"), id);
}

void TestFormats::companions_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("companion");
    const auto row = [](const char* id, const char* fileName, const char* companion) {
        QTest::newRow(fileName) << QString::fromLatin1(id) << QString::fromLatin1(fileName)
                                << QString::fromLatin1(companion);
    };
    row("mif", "plan.mif", "plan.mid");
    row("mif", "PLAN.MIF", "PLAN.MId");
    row("mif", "f", "d");
    row("mif", "", "d");
    row("dxf", "plan.dxf", "");
}

void TestFormats::companions()
{
    QFETCH(QString, id);
    QFETCH(QString, fileName);
    QFETCH(QString, companion);
    QCOMPARE(formatOfId(id)->companionFile(fileName), companion);
}

QTEST_GUILESS_MAIN(TestFormats)
#include "tst_formats.moc"
