// What the import makes of prepared drawings.

#include "drawing.h"
#include "import/dxfimport.h"
#include "prepared.h"
#include "support/importing.h"

#include <QFile>
#include <QTest>

using prep::PrepareOptions;

namespace {

QByteArray sample(const char* name)
{
    QFile file(QStringLiteral(SAMPLES_DIR "/") + QString::fromLatin1(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", name);
    return file.readAll();
}

ImportOutcome import(const QByteArray& drawing, const char* encoding = "UTF-8")
{
    static const TempFiles files;
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    options.searchObjectDefs = true;
    options.encoding = encoding;
    return importFiles<DxfImport>(options, files.write(QStringLiteral("a.dxf"), drawing));
}

} // namespace

class TestPrepareImport : public QObject {
    Q_OBJECT

private slots:
    void wholeFiles_data();
    void wholeFiles();
    void parcelsInBlocks();
    void textsThatWereUnsorted();
    void survey();
};

void TestPrepareImport::wholeFiles_data()
{
    QTest::addColumn<QByteArray>("drawing");
    QTest::newRow("quarter.dxf") << sample("quarter.dxf");
    QTest::newRow("lots.dxf with a point") << [] {
        QByteArray drawing = sample("lots.dxf");
        const int entities = drawing.lastIndexOf("ENTITIES");
        const int start = drawing.indexOf('\n', entities) + 1;
        return drawing.insert(start, "  0\r\nPOINT\r\n 10\r\n0\r\n 20\r\n0\r\n");
    }();
}

void TestPrepareImport::wholeFiles()
{
    QFETCH(QByteArray, drawing);
    const ImportOutcome before = import(drawing, "Windows-1251");
    QVERIFY(before.result && !before.objects.isEmpty());
    for (const prep::Level level : { prep::Level::Repair, prep::Level::Flatten }) {
        PrepareOptions options;
        options.level = level;
        const Prepared result = prepared(drawing, options);
        const ImportOutcome after = import(result.bytes, "Windows-1251");
        QCOMPARE(after.messages, QStringList());
        QVERIFY(sameObjects(after.objects, before.objects));
        QVERIFY(!result.report.hasLosses());
    }
}

void TestPrepareImport::parcelsInBlocks()
{
    const QByteArray drawing = "999\nexport\n"
        + drawingOf("0 INSERT, 8 a, 2 P1, 10 0, 20 0, 0 INSERT, 8 a, 2 P2, 10 0, 20 0, "
                    "0 INSERT, 8 a, 66 1, 2 Mark, 10 100, 20 0, "
                    "0 ATTRIB, 8 a, 10 100.50, 20 0.5, 40 1, 1 н7, 2 N, 70 0, 0 SEQEND",
            "0 BLOCK, 2 P1, 10 0, 20 0, 0 LWPOLYLINE, 90 4, 70 1, 10 0, 20 0, 10 100, 20 0, "
            "10 100, 20 100, 10 0, 20 100, 0 MTEXT, 10 50, 20 50, 40 1, 1 {\\fArial;:ЗУ1}, "
            "0 ENDBLK, "
            "0 BLOCK, 2 P2, 10 0, 20 0, 0 LWPOLYLINE, 90 3, 70 1, 10 100, 20 0, 10 200, 20 0, "
            "10 100, 20 100, 0 MTEXT, 10 130, 20 30, 40 1, 1 :ЗУ2, 0 ENDBLK, "
            "0 BLOCK, 2 Mark, 10 0, 20 0, 0 CIRCLE, 10 0, 20 0, 40 1, 0 ENDBLK");
    QVERIFY(!import(drawing).result);
    const Prepared result = prepared(drawing);
    const ImportOutcome outcome = import(result.bytes);
    QCOMPARE(outcome.messages, QStringList());
    // The mark at (100, 0) gives its number to the vertices there; the others are numbered.
    QCOMPARE(describe(outcome.objects),
        QStringList({ QStringLiteral(":ЗУ1 [т1 0 0; н7 100 0; т2 100 100; т3 0 100; т1 0 0]"),
            QStringLiteral(":ЗУ2 [н7 100 0; т4 200 0; т2 100 100; н7 100 0]") }));
}

void TestPrepareImport::textsThatWereUnsorted()
{
    // Three parcels side by side, each with its text in the middle, the texts in another order.
    QByteArray entities;
    for (const char* x : { "0", "100", "200" }) {
        const QByteArray left(x);
        const QByteArray right = QByteArray::number(left.toInt() + 100);
        entities += "0 LWPOLYLINE, 90 4, 70 1, 10 " + left + ", 20 0, 10 " + right + ", 20 0, 10 "
            + right + ", 20 100, 10 " + left + ", 20 100, ";
    }
    entities += "0 TEXT, 10 250, 20 50, 1 :ЗУ3, 0 TEXT, 10 50, 20 50, 1 :ЗУ1, "
                "0 TEXT, 10 150, 20 50, 1 :ЗУ2";
    const QByteArray drawing = drawingOf(entities.constData());
    const QStringList right{ QStringLiteral(":ЗУ1"), QStringLiteral(":ЗУ2"),
        QStringLiteral(":ЗУ3") };
    QVERIFY(defsOf(import(drawing).objects) != right);
    QCOMPARE(defsOf(import(prepared(drawing).bytes).objects), right);
}

void TestPrepareImport::survey()
{
    const QByteArray drawing = sample("survey.dxf");
    QVERIFY(!import(drawing, "Windows-1251").result);
    const Prepared result = prepared(drawing);
    QCOMPARE(result.report.encoding, QByteArray("windows-1251"));
    QVERIFY(!result.report.hasLosses());
    const QStringList objects = describe(import(result.bytes, "Windows-1251").objects);
    QCOMPARE(objects.size(), 3);

    QCOMPARE(objects.at(0),
        QStringLiteral(":ЗУ17 [т1 2212104.52 468210.31; т2 2212144.52 468210.31; "
                       "т3 2212144.52 468240.31; т4 2212104.52 468240.31; т1 2212104.52 "
                       "468210.31]"));
    // One side is an arc, of which the ends keep their numbers.
    QVERIFY(objects.at(1).startsWith(
        QStringLiteral(":ЗУ18 [т2 2212144.52 468210.31; т5 2212178.07 468212.84; ")));
    QVERIFY(objects.at(1).endsWith(QStringLiteral(
        "; т6 2212176.91 468241.65; т3 2212144.52 468240.31; т2 2212144.52 468210.31]")));
    // Drawn in mirrored coordinates.
    QVERIFY(objects.at(2).startsWith(QStringLiteral(":ОКС1 [")));
    QVERIFY(objects.at(2).contains(QStringLiteral(" 2212118.3 468230.1;")));
    QVERIFY(objects.at(2).contains(QStringLiteral(" 2212128.3 468236.1;")));
    QCOMPARE(prepared(result.bytes).bytes, result.bytes);
}

QTEST_APPLESS_MAIN(TestPrepareImport)
#include "tst_prepareimport.moc"
