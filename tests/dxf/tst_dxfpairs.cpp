#include "drawing.h"
#include "import/dxftext.h"
#include "importrun.h"
#include "support/random.h"

#include <QDir>
#include <QtTest>

/// Group codes and values, the test of the file's form, and its encoding.
class TestDxfPairs : public QObject {
    Q_OBJECT

private:
    TempFiles m_folder;
    OpenDxfImport* m_import = nullptr;

    void open(const QByteArray& content)
    {
        QVERIFY(m_import->open(m_folder.write(QStringLiteral("test.dxf"), content)));
    }

    QString pair() const
    {
        return m_import->pairs.code.toString() + QLatin1Char('|')
            + m_import->pairs.value.toString();
    }

private slots:
    void init() { m_import = new OpenDxfImport; }
    void cleanup() { delete m_import; }

    void newImporterHasNothing();
    void codeAndValueAreTrimmed();
    void codeStaysText();
    void linesMayEndWithCarriageReturn();
    void blankCodeLineFailsWithoutReadingTheValue();
    void endOfFileFails();
    void blankValueIsAccepted();
    void missingValueLineIsAnEmptyValue();
    void unreadHandsBackTheSamePairOnce();
    void pairsOfOtherCodesArePassedOver();
    void excludedLinesAreNoCodes();

    void headerSectionIsAccepted();
    void otherBeginningIsRefused_data();
    void otherBeginningIsRefused();
    void refusedPointFileIsNamed();
    void refusalShowsAFileNameThatLooksLikeAPlaceholder();
    void refusalWithoutCallbackIsSilent();

    void unknownEncodingKeepsTheCodecOfTheEscapes();
    void encodingOfFileGovernsTextsAndEscapes_data();
    void encodingOfFileGovernsTextsAndEscapes();
};

void TestDxfPairs::newImporterHasNothing()
{
    QVERIFY(m_import->pairs.code.isEmpty());
    QVERIFY(m_import->pairs.value.isEmpty());
    QVERIFY(!m_import->pairs.unread);
    QVERIFY(m_import->labels.isEmpty());
    QCOMPARE(m_import->lineNum(), 0);
}

void TestDxfPairs::codeAndValueAreTrimmed()
{
    open("  10 \n 12.5\t\n\t 20\v\n \f-3 4 \n");
    QVERIFY(m_import->pairs.readCodeValue());
    QCOMPARE(pair(), QStringLiteral("10|12.5"));
    QCOMPARE(m_import->lineNum(), 2);
    QVERIFY(m_import->pairs.readCodeValue());
    QCOMPARE(pair(), QStringLiteral("20|-3 4"));
    QCOMPARE(m_import->lineNum(), 4);
}

/// Codes that would be the same numbers are other codes; the names of entities have one spelling.
void TestDxfPairs::codeStaysText()
{
    ImportOptions options = numbered();
    const QString line = QStringLiteral("1 [1 1 2; 2 3 4]");
    const ImportOutcome outcome = importDrawing(options,
        drawing("0 LINE, 010 8, 10 1, +20 8, 20 2, 11.0 8, 11 3, 0x15 8, 21 4, "
                "00 LINE, 0 Line, 0 line, 0 LINE2"));
    QVERIFY(outcome.result);
    QCOMPARE(describeAll(outcome.objects), line);
}

void TestDxfPairs::linesMayEndWithCarriageReturn()
{
    open("  0\r\nSECTION\r\n  2\r\nHEADER\r\n");
    QVERIFY(m_import->checkDxfFile());
    QCOMPARE(m_import->lineNum(), 4);
}

void TestDxfPairs::blankCodeLineFailsWithoutReadingTheValue()
{
    for (const QByteArray blank : { "", "   ", "\t", "\r" }) {
        open("8\nlayer\n" + blank + "\n10\n5\n");
        QVERIFY(m_import->pairs.readCodeValue());
        QVERIFY(!m_import->pairs.readCodeValue());
        QCOMPARE(m_import->lineNum(), 3);
        QVERIFY(m_import->pairs.code.isEmpty());
        QVERIFY(m_import->pairs.readCodeValue());
        QCOMPARE(pair(), QStringLiteral("10|5"));
        QCOMPARE(m_import->lineNum(), 5);
    }
}

void TestDxfPairs::endOfFileFails()
{
    open("10\n5");
    QVERIFY(m_import->pairs.readCodeValue());
    QVERIFY(!m_import->pairs.readCodeValue());
    QCOMPARE(m_import->lineNum(), 3);
    QVERIFY(!m_import->pairs.readCodeValue());
    QCOMPARE(m_import->lineNum(), 4);
}

void TestDxfPairs::blankValueIsAccepted()
{
    open("1\n\n1\n  \t\n8\nlayer\n");
    QVERIFY(m_import->pairs.readCodeValue());
    QCOMPARE(pair(), QStringLiteral("1|"));
    QVERIFY(m_import->pairs.readCodeValue());
    QCOMPARE(pair(), QStringLiteral("1|"));
    QVERIFY(m_import->pairs.readCodeValue());
    QCOMPARE(pair(), QStringLiteral("8|layer"));
}

void TestDxfPairs::missingValueLineIsAnEmptyValue()
{
    open("8\nlayer\n1\n");
    QVERIFY(m_import->pairs.readCodeValue());
    QVERIFY(m_import->pairs.readCodeValue());
    QCOMPARE(pair(), QStringLiteral("1|"));
    QCOMPARE(m_import->lineNum(), 4);
}

void TestDxfPairs::unreadHandsBackTheSamePairOnce()
{
    open("10\n5\n20\n6\n");
    QVERIFY(m_import->pairs.readCodeValue());
    m_import->pairs.unread = true;
    QVERIFY(m_import->pairs.readCodeValue());
    QVERIFY(!m_import->pairs.unread);
    QCOMPARE(pair(), QStringLiteral("10|5"));
    QCOMPARE(m_import->lineNum(), 2);
    QVERIFY(m_import->pairs.readCodeValue());
    QCOMPARE(pair(), QStringLiteral("20|6"));
    QCOMPARE(m_import->lineNum(), 4);
}

void TestDxfPairs::pairsOfOtherCodesArePassedOver()
{
    const DxfCodes codes(std::array<QLatin1String, 1>{ QLatin1String("10") });
    const QByteArray content =
        "999\nfirst\n  5\n1F\n330\n0\n 100\nAcDbEntity\n  8\n\xD1\xEB\xEE\xE9\n 10\n7\n  0\nLINE\n";
    open(content);
    QVERIFY(m_import->pairs.readCodeValue());
    m_import->pairs.skipOthers(codes);
    QCOMPARE(m_import->lineNum(), 10);
    QVERIFY(m_import->pairs.readCodeValue());
    QCOMPARE(pair(), QStringLiteral("10|7"));
    m_import->pairs.skipOthers(codes);
    QVERIFY(m_import->pairs.readCodeValue());
    QCOMPARE(pair(), QStringLiteral("0|LINE"));

    open(content);
    QVERIFY(m_import->pairs.readCodeValue());
    m_import->pairs.unread = true;
    m_import->pairs.skipOthers(codes);
    QVERIFY(m_import->pairs.readCodeValue());
    QCOMPARE(pair(), QStringLiteral("999|first"));
    QCOMPARE(m_import->lineNum(), 2);
}

/// A glance at the bytes never takes for another code what is one when decoded and trimmed.
void TestDxfPairs::excludedLinesAreNoCodes()
{
    const QByteArrayList pieces{ "0", "1", "2", "10", "73", "330", " ", "\t", "\r", "x", "\xA0",
        "\x85", "\xD0\x97", "\xE2\x80", "\x1C", QByteArray(1, '\0') };
    const std::array<QLatin1String, 3> wanted{ QLatin1String("1"), QLatin1String("10"),
        QLatin1String("73") };
    const DxfCodes codes(wanted);
    QVERIFY(codes.exclude("330") && codes.exclude(" 8") && codes.exclude("100\r"));
    Random random(7);
    int excluded = 0;
    for (int i = 0; i < 100000; ++i) {
        QByteArray line;
        for (int count = random.below(5); count > 0; --count)
            line += random.pick(pieces);
        if (!codes.exclude({ line.constData(), static_cast<size_t>(line.size()) }))
            continue;
        ++excluded;
        for (const char* name : { "windows-1251", "ISO-8859-1", "UTF-8" }) {
            const QString code =
                QTextCodec::codecForName(name)->toUnicode(line).remove(QLatin1Char('\r')).trimmed();
            QVERIFY2(!code.isEmpty() && code != DxfPairs::entityCode, line.toHex().constData());
            for (const QLatin1String other : wanted)
                QVERIFY2(code != other, line.toHex().constData());
        }
    }
    QVERIFY(excluded > 10000);
}

void TestDxfPairs::headerSectionIsAccepted()
{
    const StatusLog log;
    open("  0 \n SECTION\n\t2\nHEADER  \n9\n$ACADVER\n");
    QVERIFY(m_import->checkDxfFile());
    QCOMPARE(m_import->lineNum(), 4);
    QVERIFY(m_import->pairs.readCodeValue());
    QCOMPARE(pair(), QStringLiteral("9|$ACADVER"));
    QVERIFY(log.messages().isEmpty());
}

void TestDxfPairs::otherBeginningIsRefused_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("one line") << QByteArray("0\n");
    QTest::newRow("one pair") << QByteArray("0\nSECTION\n");
    QTest::newRow("three lines") << QByteArray("0\nSECTION\n2\n");
    QTest::newRow("blank first line") << QByteArray("\n0\nSECTION\n2\nHEADER\n");
    QTest::newRow("blank third line") << QByteArray("0\nSECTION\n\n2\nHEADER\n");
    QTest::newRow("comment first") << QByteArray("999\nby hand\n0\nSECTION\n2\nHEADER\n");
    QTest::newRow("no HEADER section") << QByteArray("0\nSECTION\n2\nENTITIES\n");
    QTest::newRow("TABLES first") << QByteArray("0\nSECTION\n2\nTABLES\n0\nENDSEC\n");
    QTest::newRow("first code") << QByteArray("1\nSECTION\n2\nHEADER\n");
    QTest::newRow("first code as a number") << QByteArray("00\nSECTION\n2\nHEADER\n");
    QTest::newRow("first value") << QByteArray("0\nSECTIONS\n2\nHEADER\n");
    QTest::newRow("first value in lower case") << QByteArray("0\nsection\n2\nHEADER\n");
    QTest::newRow("second code") << QByteArray("0\nSECTION\n0\nHEADER\n");
    QTest::newRow("second value in lower case") << QByteArray("0\nSECTION\n2\nheader\n");
    QTest::newRow("one line of text") << QByteArray("0 SECTION 2 HEADER\n");
}

void TestDxfPairs::otherBeginningIsRefused()
{
    QFETCH(QByteArray, content);
    const QString fileName = m_folder.write(QStringLiteral("refused.dxf"), content);
    for (const bool searchPointDefs : { false, true }) {
        ImportOptions options = numbered();
        options.searchPointDefs = searchPointDefs;
        options.searchObjectDefs = true;
        const ImportOutcome outcome = importFiles<DxfImport>(options, fileName);
        QVERIFY(!outcome.result);
        QCOMPARE(outcome.messages, QStringList{ formatError(fileName) });
        QVERIFY(outcome.objects.isEmpty());
    }
}

void TestDxfPairs::refusedPointFileIsNamed()
{
    const QString objectFile = m_folder.write(
        QStringLiteral("good.dxf"), encoded(drawing("0 LINE, 10 0, 20 0, 11 1, 21 1")));
    const QString pointFile = m_folder.write(QStringLiteral("bad.dxf"), "0\nEOF\n");
    ImportOptions options = numbered();
    options.searchPointDefs = true;
    const ImportOutcome outcome = importFiles<DxfImport>(options, objectFile, pointFile);
    QVERIFY(!outcome.result);
    QCOMPARE(outcome.messages, QStringList{ formatError(pointFile) });
    QVERIFY(outcome.objects.isEmpty());
}

void TestDxfPairs::refusalShowsAFileNameThatLooksLikeAPlaceholder()
{
    const QString fileName = m_folder.write(QStringLiteral("план %1.dxf"), "0\nEOF\n");
    const ImportOutcome outcome = importFiles<DxfImport>(numbered(), fileName);
    QCOMPARE(outcome.messages,
        QStringList{ QStringLiteral("Ошибка. Файл %1 не соответствует формату DXF")
                         .replace(QStringLiteral("%1"), QDir::toNativeSeparators(fileName)) });
}

void TestDxfPairs::refusalWithoutCallbackIsSilent()
{
    open("0\nEOF\n");
    QVERIFY(!m_import->checkDxfFile());
    open("0\nSECTION\n2\nHEADER\n");
    QVERIFY(m_import->checkDxfFile());
}

void TestDxfPairs::unknownEncodingKeepsTheCodecOfTheEscapes()
{
    m_import->setEncoding("IBM866");
    m_import->setEncoding("no such encoding");
    QCOMPARE(decodeText(QStringLiteral("%%128"), m_import->codec), QStringLiteral("А"));
}

void TestDxfPairs::encodingOfFileGovernsTextsAndEscapes_data()
{
    QTest::addColumn<QByteArray>("codecName");
    QTest::addColumn<QString>("def");
    QTest::newRow("Windows-1251") << QByteArray("Windows-1251") << QStringLiteral("Уч-А");
    QTest::newRow("IBM866") << QByteArray("IBM866") << QStringLiteral("Уч-└");
    QTest::newRow("UTF-8") << QByteArray("UTF-8") << QStringLiteral("Уч-\uFFFD");
}

void TestDxfPairs::encodingOfFileGovernsTextsAndEscapes()
{
    QFETCH(QByteArray, codecName);
    QFETCH(QString, def);
    ImportOptions options = numbered();
    options.searchObjectDefs = true;
    options.encoding = codecName;
    const QStringList lines =
        drawing("0 TEXT, 10 0, 20 0, 1 Уч-%%192, 0 LINE, 10 0, 20 0, 11 1, 21 1");
    const ImportOutcome outcome = importDrawing(options, encoded(lines, codecName.constData()));
    QVERIFY(outcome.result);
    QCOMPARE(outcome.objects.size(), 1);
    QCOMPARE(outcome.objects.first().def, def);
}

QTEST_GUILESS_MAIN(TestDxfPairs)
#include "tst_dxfpairs.moc"
