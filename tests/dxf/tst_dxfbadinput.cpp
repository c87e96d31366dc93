#include "drawing.h"
#include "importrun.h"
#include "literal/literaldxfimport.h"

#include <QtTest>

namespace {

/// A drawing with an entity of every kind, and with texts for all of them.
QStringList sampleDrawing()
{
    return drawing("0 POINT, 10 0, 20 0, 0 CIRCLE, 10 10, 20 0, 40 1, 0 TEXT, 10 0.5, 20 0.5, 1 1, "
                   "0 TEXT, 10 0, 20 0, 1 2, 72 1, 11 10.5, 21 0.5, "
                   "0 LWPOLYLINE, 90 3, 70 1, 10 0, 20 0, 10 10, 20 0, 10 10, 20 10, "
                   "0 POLYLINE, 66 1, 70 1, 0 VERTEX, 10 20, 20 0, 0 VERTEX, 10 30, 20 0, "
                   "0 VERTEX, 10 30, 20 10, 0 SEQEND, 8 0, "
                   "0 LINE, 10 0, 20 0, 11 30, 21 10, 0 TEXT, 10 7, 20 3, 1 ЗУ1, "
                   "0 TEXT, 10 27, 20 3, 1 %%c2");
}

QByteArray sampleBytes(const char* codecName)
{
    return encoded(sampleDrawing(), codecName);
}

/// What it gives when all designations are searched.
const char* const sampleObjects = "ЗУ1 [1 0 0; 2 10 0; 1 10 10; 1 0 0]; "
                                  "Ø2 [2 20 0; 3 30 0; 4 30 10; 2 20 0]; "
                                  "ЗУ1 [1 0 0; 4 30 10]";

} // namespace

/// Files that are spoiled, cut off or no drawings at all: a message or a result comes of each, the
/// same as of the literal importer.
class TestDxfBadInput : public QObject {
    Q_OBJECT

private:
    TempFiles m_folder;

    void importAllWays(const QByteArray& content, const QByteArray& encoding = "UTF-8")
    {
        const QString fileName = m_folder.write(QStringLiteral("bad.dxf"), content);
        const QString pointFile = m_folder.path(QStringLiteral("points.dxf"));
        for (int bits = 0; bits < 8; ++bits) {
            ImportOptions options = numbered();
            options.encoding = encoding;
            options.searchPointDefs = bits & 1;
            options.searchObjectDefs = bits & 2;
            const QString points = bits & 4 ? pointFile : QString();
            const ImportOutcome outcome = importFiles<DxfImport>(options, fileName, points);
            // Only a reload of texts may fail without ending the import.
            if (!options.searchObjectDefs)
                QCOMPARE(outcome.messages.isEmpty(), outcome.result);
            QVERIFY(outcome.result || !outcome.messages.isEmpty());

            const ImportOutcome expected =
                importFiles<literal::DxfImport>(options, fileName, points);
            QCOMPARE(outcome.messages, expected.messages);
            QCOMPARE(outcome.result, expected.result);
            QCOMPARE(describeAll(outcome.objects), describeAll(expected.objects));
        }
    }

    ImportOutcome importSearching(const QByteArray& content, const QByteArray& encoding = "UTF-8")
    {
        ImportOptions options = numbered();
        options.searchPointDefs = true;
        options.searchObjectDefs = true;
        options.encoding = encoding;
        return importFiles<DxfImport>(options, m_folder.write(QStringLiteral("bad.dxf"), content));
    }

    void checkRefused(const QByteArray& content, const QByteArray& encoding = "UTF-8")
    {
        const ImportOutcome outcome = importSearching(content, encoding);
        QVERIFY(!outcome.result);
        QCOMPARE(
            outcome.messages, QStringList{ formatError(m_folder.path(QStringLiteral("bad.dxf"))) });
        QVERIFY(outcome.objects.isEmpty());
    }

private slots:
    void initTestCase()
    {
        m_folder.write(QStringLiteral("points.dxf"),
            encoded(drawing("0 POINT, 10 0, 20 0, 0 TEXT, 10 0, 20 0, 1 т1")));
    }

    void sampleIsSound();
    void cutOffAtEachLine();
    void cutOffAtEachByte();
    void eachLineReplaced_data();
    void eachLineReplaced();
    void eachLineDropped();
    void strangeValues_data();
    void strangeValues();
    void refusedFile_data();
    void refusedFile();
    void byteOrderMark_data();
    void byteOrderMark();
    void nulBytes();
    void bytesThatAreNotInTheEncoding();
    void longLine();
    void manyEmptySections();
};

void TestDxfBadInput::sampleIsSound()
{
    const ImportOutcome outcome = importSearching(sampleBytes("UTF-8"));
    QVERIFY(outcome.result);
    QVERIFY(outcome.messages.isEmpty());
    QCOMPARE(describeAll(outcome.objects), QString::fromUtf8(sampleObjects));
}

void TestDxfBadInput::cutOffAtEachLine()
{
    const QStringList lines = sampleDrawing();
    for (int count = 0; count <= lines.size(); ++count) {
        importAllWays(encoded(lines.mid(0, count)));
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("cut off after line %1").arg(count)));
    }
}

void TestDxfBadInput::cutOffAtEachByte()
{
    const QByteArray bytes = sampleBytes("UTF-8");
    for (int size = 0; size <= bytes.size(); ++size) {
        importAllWays(bytes.left(size));
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("cut off after byte %1").arg(size)));
    }
}

void TestDxfBadInput::eachLineReplaced_data()
{
    QTest::addColumn<QString>("replacement");
    for (const char* replacement :
        { "", "   ", "abc", "0", "10", "70", "nan", "-inf", "1e400", "2000000000", "-2147483648" })
        QTest::addRow("\"%s\"", replacement) << QString::fromLatin1(replacement);
}

void TestDxfBadInput::eachLineReplaced()
{
    QFETCH(QString, replacement);
    const QStringList lines = sampleDrawing();
    for (int i = 0; i < lines.size(); ++i) {
        QStringList spoiled = lines;
        spoiled[i] = replacement;
        importAllWays(encoded(spoiled));
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("replaced line %1").arg(i + 1)));
    }
}

void TestDxfBadInput::eachLineDropped()
{
    const QStringList lines = sampleDrawing();
    for (int i = 0; i < lines.size(); ++i) {
        QStringList spoiled = lines;
        spoiled.removeAt(i);
        importAllWays(encoded(spoiled));
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("dropped line %1").arg(i + 1)));
    }
}

void TestDxfBadInput::strangeValues_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("objects");
    QTest::addColumn<int>("errorLine");
    const auto row = [](const char* name, const char* entities, const char* objects,
                         int errorLine = 0) {
        QTest::newRow(name) << drawing(entities) << QString::fromUtf8(objects) << errorLine;
    };
    // A place that is not finite is never found again, so that each vertex gets its number.
    row("nan", "0 LINE, 10 nan, 20 1, 11 nan, 21 1", "1 [1 nan 1; 2 nan 1]");
    row("inf", "0 LINE, 10 inf, 20 1, 11 inf, 21 1", "1 [1 inf 1; 2 inf 1]");
    row("nan in a closed contour is not the first vertex again",
        "0 LWPOLYLINE, 90 2, 70 1, 10 nan, 20 1, 10 nan, 20 1", "1 [1 nan 1; 2 nan 1; 1 nan 1]");
    row("vertices are found beside one that is nan",
        "0 LINE, 10 nan, 20 nan, 11 2, 21 1, 0 LINE, 10 2, 20 1, 11 3, 21 1",
        "1 [1 nan nan; 2 2 1]; 2 [2 2 1; 3 3 1]");
    row("too large for a double", "0 LINE, 10 1e400, 20 1, 11 2, 21 1", "", 14);
    row("largest double", "0 LINE, 10 1.7976931348623157e308, 20 0, 11 0, 21 -1e308",
        "1 [1 1.7976931348623157e+308 0; 2 0 -1e+308]");
    row("hexadecimal", "0 LINE, 10 0x10, 20 1, 11 2, 21 1", "", 14);
    row("decimal comma", "0 LINE, 10 1,5, 20 1, 11 2, 21 1", "", 14);
    row("count of two thousand million", "0 LWPOLYLINE, 90 2000000000, 10 0, 20 0, 10 1, 20 1",
        "<null> [1 0 0; 2 1 1]", 24);
    row("least count", "0 LWPOLYLINE, 90 -2147483648, 10 0, 20 0, 10 1, 20 1", "<null> []", 18);
    row("least count after the first vertex",
        "0 LWPOLYLINE, 90 2, 10 0, 20 0, 90 -2147483648, 10 1, 20 1, 10 2, 20 2",
        "<null> [1 0 0; 2 1 1; 3 2 2]", 30);
}

void TestDxfBadInput::strangeValues()
{
    QFETCH(QStringList, lines);
    QFETCH(QString, objects);
    QFETCH(int, errorLine);
    const ImportOutcome outcome = importDrawing(numbered(), lines);
    QCOMPARE(describeAll(outcome.objects), objects);
    QCOMPARE(outcome.messages, errorLine ? QStringList{ readError(errorLine) } : QStringList());
    QCOMPARE(outcome.result, errorLine == 0);
}

void TestDxfBadInput::refusedFile_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray sample = sampleBytes("UTF-8");
    QTest::newRow("binary form") << QByteArray(
        "AutoCAD Binary DXF\r\n\x1a\0\0SECTION\0\2HEADER\0", 40);
    QTest::newRow("carriage returns only") << encoded(sampleDrawing()).replace('\n', '\r');
    QTest::newRow("UTF-16 without a mark") << encoded(sampleDrawing(), "UTF-16LE").mid(2);
    QTest::newRow("NUL bytes") << QByteArray(10000, '\0');
    QTest::newRow("NUL byte first") << QByteArray(1, '\0') + sample;
    QTest::newRow("NUL byte in the first value") << QByteArray(sample).insert(4, '\0');
    QTest::newRow("blank lines") << QByteArray(10000, '\n');
    QTest::newRow("blank line first") << "\n" + sample;
    QTest::newRow("comment first") << "999\nкомментарий\n" + sample;
    QTest::newRow("random bytes") << QByteArray("\xff\xfe\x00\x81\xc0\xaf\x0a\x0d\x0a", 9);
}

void TestDxfBadInput::refusedFile()
{
    QFETCH(QByteArray, content);
    checkRefused(content);
    importAllWays(content);
}

void TestDxfBadInput::byteOrderMark_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray utf8 = sampleBytes("UTF-8");
    QTest::newRow("UTF-8") << "\xef\xbb\xbf" + utf8;
    QTest::newRow("UTF-16, little end first") << sampleBytes("UTF-16LE");
    QTest::newRow("UTF-16, big end first") << sampleBytes("UTF-16BE");
}

/// The text stream knows the marks, whatever encoding has been chosen.
void TestDxfBadInput::byteOrderMark()
{
    QFETCH(QByteArray, content);
    for (const char* encoding : { "UTF-8", "Windows-1251" }) {
        importAllWays(content, encoding);
        const ImportOutcome outcome = importSearching(content, encoding);
        QCOMPARE(outcome.messages, QStringList());
        QCOMPARE(describeAll(outcome.objects), QString::fromUtf8(sampleObjects));
    }
}

void TestDxfBadInput::nulBytes()
{
    const QByteArray sample = sampleBytes("UTF-8");
    for (int i = 0; i < sample.size(); i += 3) {
        importAllWays(QByteArray(sample).insert(i, '\0'));
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("NUL before byte %1").arg(i)));
    }
    importAllWays(sample + QByteArray(100000, '\0'));
}

void TestDxfBadInput::bytesThatAreNotInTheEncoding()
{
    importAllWays(sampleBytes("Windows-1251"), "UTF-8");
    importAllWays(sampleBytes("UTF-8"), "IBM866");
    ImportOutcome outcome = importSearching(sampleBytes("Windows-1251"));
    QVERIFY(outcome.result);
    QCOMPARE(outcome.objects.first().def, QStringLiteral("\uFFFD\uFFFD1"));
}

void TestDxfBadInput::longLine()
{
    constexpr int size = 100 * 1024 * 1024;
    QByteArray content = encoded(openDrawing("0 ARC"));
    content += "8\n" + QByteArray(size, 'x') + '\n';
    content += encoded(pairs("0 LINE, 10 0, 20 0, 11 1, 21 1, 0 LINE, 10 x"));
    const ImportOutcome outcome =
        importFiles<DxfImport>(numbered(), m_folder.write(QStringLiteral("long.dxf"), content));
    QVERIFY(!outcome.result);
    QCOMPARE(outcome.messages, QStringList{ readError(28) });
    QCOMPARE(describeAll(outcome.objects), QStringLiteral("1 [1 0 0; 2 1 1]"));
    QFile::remove(m_folder.path(QStringLiteral("long.dxf")));
}

void TestDxfBadInput::manyEmptySections()
{
    QByteArray content = encoded(pairs("0 SECTION, 2 HEADER"));
    for (int i = 0; i < 100000; ++i)
        content += "0\nSECTION\n2\nENTITIES\n";
    content += "0\nLINE\n10\n";
    const ImportOutcome outcome = importSearching(content);
    QVERIFY(!outcome.result);
    // 4 lines of the header, 400000 of the sections, 2 of the entity, 2 of its only pair.
    QCOMPARE(outcome.messages, QStringList{ readError(400008) });
}

QTEST_GUILESS_MAIN(TestDxfBadInput)
#include "tst_dxfbadinput.moc"
