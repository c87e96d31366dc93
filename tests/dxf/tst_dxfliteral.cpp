#include "drawing.h"
#include "import/dxftext.h"
#include "importrun.h"
#include "literal/literaldxfimport.h"
#include "randomdrawing.h"

#include <QtTest>

namespace {

/// What a run over many drawings has met, to tell that the comparison was not an empty one.
struct Census {
    int objects = 0;
    int messages = 0;
    int accepted = 0;
};

} // namespace

/// Compares the product with the literal importer on drawings made up at random.
class TestDxfLiteral : public QObject {
    Q_OBJECT

private:
    TempFiles m_folder;
    Census m_census;

    void compare(quint32 seed, const ImportOptions& options, bool ownPointFile)
    {
        const QString objectFile = m_folder.path(QStringLiteral("objects.dxf"));
        const QString pointFile =
            ownPointFile ? m_folder.path(QStringLiteral("points.dxf")) : QString();
        const ImportOutcome expected =
            importFiles<literal::DxfImport>(options, objectFile, pointFile);
        const ImportOutcome actual = importFiles<DxfImport>(options, objectFile, pointFile);
        m_census.objects += expected.objects.size();
        m_census.messages += expected.messages.size();
        m_census.accepted += expected.result ? 1 : 0;

        const QByteArray seedText = "seed " + QByteArray::number(seed);
        QCOMPARE(actual.messages, expected.messages);
        QVERIFY2(actual.result == expected.result, seedText.constData());
        if (!sameObjects(actual.objects, expected.objects)) {
            QCOMPARE(describeAll(actual.objects), describeAll(expected.objects));
            QFAIL(seedText.constData());
        }
    }

    void compareDrawings(int count, bool spoil)
    {
        m_census = Census();
        for (quint32 seed = 0; seed < static_cast<quint32>(count); ++seed) {
            RandomDrawing random(spoil ? seed + 1000000 : seed);
            const ImportOptions options = random.options();
            const bool ownPointFile = random.chance(40);
            for (const char* name : { "objects.dxf", "points.dxf" }) {
                QStringList lines = random.lines();
                if (spoil)
                    lines = random.spoiled(lines);
                m_folder.write(QLatin1String(name), random.bytes(lines));
            }
            compare(seed, options, ownPointFile);
            if (QTest::currentTestFailed()) {
                qWarning("The drawing of seed %u, spoiled: %d", seed, int(spoil));
                return;
            }
        }
        QVERIFY(m_census.objects > count);
        QVERIFY(m_census.messages > count / 10);
        QVERIFY(m_census.accepted > count / 10);
    }

private slots:
    void unspoiledDrawings() { compareDrawings(6000, false); }
    void spoiledDrawings() { compareDrawings(6000, true); }
    void largeDrawings();
    void everyCombinationOfOptions();
    void linesAcrossBlocks_data();
    void linesAcrossBlocks();
    void tiesBetweenTextsOnACircle();
    void textsAtOnePlace();
    void decodedTexts_data();
    void decodedTexts();
    void pointNumbers();
};

void TestDxfLiteral::largeDrawings()
{
    for (quint32 seed = 3000000; seed < 3000040; ++seed) {
        RandomDrawing random(seed);
        const ImportOptions options = random.options();
        for (const char* name : { "objects.dxf", "points.dxf" }) {
            QStringList lines = random.lines(1500);
            if (random.chance(30))
                lines = random.spoiled(lines);
            m_folder.write(QLatin1String(name), random.bytes(lines));
        }
        compare(seed, options, random.chance(40));
        if (QTest::currentTestFailed())
            return;
    }
}

void TestDxfLiteral::everyCombinationOfOptions()
{
    for (quint32 seed = 2000000; seed < 2000150; ++seed) {
        RandomDrawing random(seed);
        ImportOptions options = random.options();
        m_folder.write(QStringLiteral("objects.dxf"), random.bytes(random.lines()));
        m_folder.write(QStringLiteral("points.dxf"), random.bytes(random.lines()));
        for (int bits = 0; bits < 16; ++bits) {
            options.searchPointDefs = bits & 1;
            options.searchObjectDefs = bits & 2;
            options.swapXY = bits & 4;
            compare(seed, options, bits & 8);
            if (QTest::currentTestFailed())
                return;
        }
    }
}

void TestDxfLiteral::linesAcrossBlocks_data()
{
    QTest::addColumn<QByteArray>("codecName");
    QTest::addColumn<QByteArray>("lineEnd");
    for (const char* name : { "Windows-1251", "UTF-8", "UTF-16LE" }) {
        QTest::addRow("%s, LF", name) << QByteArray(name) << QByteArray("\n");
        QTest::addRow("%s, CRLF", name) << QByteArray(name) << QByteArray("\r\n");
    }
}

/// A file is read in blocks of 16 KiB; a filler moves their ends along the lines.
void TestDxfLiteral::linesAcrossBlocks()
{
    QFETCH(QByteArray, codecName);
    QFETCH(QByteArray, lineEnd);
    constexpr int block = 16384;
    QTextCodec* codec = QTextCodec::codecForName(codecName);
    ImportOptions options = numbered();
    options.encoding = codecName;
    options.searchObjectDefs = true;
    const QStringList body = drawing("0 POINT, 10 1, 20 2, 0 TEXT, 10 1, 20 2, 1 участок А-1, "
                                     "0 LINE, 10 1, 20 2, 11 3, 21 4, 0 TEXT, 10 3, 20 4, 1 ");
    for (int filler = block - 350; filler < block + 10; ++filler) {
        QStringList lines = body;
        lines.insert(4, QStringLiteral("1"));
        lines.insert(5, QString(filler, QLatin1Char('x')));
        const QString text = lines.join(QLatin1String(lineEnd));
        // With and without an end of the last line, by turns.
        const QByteArray bytes =
            codec->fromUnicode(filler % 2 ? text : text + QLatin1String(lineEnd));
        m_folder.write(QStringLiteral("objects.dxf"), bytes);
        options.searchPointDefs = filler % 3 == 0;
        compare(static_cast<quint32>(filler), options, false);
        if (QTest::currentTestFailed())
            return;
    }
}

/// A square around each place of a coarse grid, and texts at the same distance on all its sides.
void TestDxfLiteral::tiesBetweenTextsOnACircle()
{
    Random random(7);
    ImportOptions options = numbered();
    options.searchObjectDefs = true;
    for (quint32 round = 0; round < 300; ++round) {
        options.searchPointDefs = round & 1;
        QStringList lines = drawingStart();
        const auto addNumber = [&lines](const char* code, int number) {
            lines << QLatin1String(code) << QString::number(number);
        };
        for (int i = 0; i < 60; ++i) {
            lines += pairs("0 TEXT");
            lines << QStringLiteral("1") << QStringLiteral("ЗУ-%1-").arg(i);
            addNumber("10", random.below(9));
            addNumber("20", random.below(9));
        }
        for (int i = 0; i < 20; ++i) {
            const int x = random.below(8);
            const int y = random.below(8);
            lines += pairs("0 LINE");
            addNumber("10", x);
            addNumber("20", y);
            addNumber("11", x + 2 * random.below(2));
            addNumber("21", y + 2 * random.below(2));
        }
        lines += pairs("0 POINT, 10 4, 20 4, 0 ENDSEC, 0 EOF");
        m_folder.write(QStringLiteral("objects.dxf"), encoded(lines));
        compare(round, options, false);
        if (QTest::currentTestFailed())
            return;
    }
}

/// In file order, when the point pass has met no point; sorted otherwise.
void TestDxfLiteral::textsAtOnePlace()
{
    const QStringList lines = drawing("0 TEXT, 10 5, 20 5, 1 Б-, 0 TEXT, 10 5, 20 5, 1 А-, "
                                      "0 TEXT, 10 1, 20 1, 1 В-, 0 TEXT, 10 5, 20 5, 1 Г-, "
                                      "0 LINE, 10 0, 20 0, 11 9, 21 9, "
                                      "0 LINE, 10 9, 20 0, 11 1, 21 10, "
                                      "0 LINE, 10 9, 20 9, 11 9, 21 9");
    m_folder.write(QStringLiteral("objects.dxf"), encoded(lines));
    ImportOptions options = numbered();
    options.searchObjectDefs = true;
    for (const bool searchPointDefs : { false, true }) {
        options.searchPointDefs = searchPointDefs;
        compare(searchPointDefs, options, false);
        if (QTest::currentTestFailed())
            return;
    }
}

void TestDxfLiteral::decodedTexts_data()
{
    QTest::addColumn<QByteArray>("codecName");
    for (const char* name : { "Windows-1251", "IBM866", "UTF-8", "UTF-16LE" })
        QTest::newRow(name) << QByteArray(name);
}

void TestDxfLiteral::decodedTexts()
{
    QFETCH(QByteArray, codecName);
    static const QString pieces[] = { QStringLiteral("%"), QStringLiteral("%%"),
        QStringLiteral("%%"), QStringLiteral("%%"), QStringLiteral("%%1"), QStringLiteral("0"),
        QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("6"), QStringLiteral("255"),
        QStringLiteral("256"), QStringLiteral("037"), QStringLiteral("d"), QStringLiteral("p"),
        QStringLiteral("c"), QStringLiteral("D"), QStringLiteral("Я"), QStringLiteral("\u0663"),
        QStringLiteral("\n"), QStringLiteral("\U0001F600"), QString(QChar(0xD800)),
        QString(QChar(0)) };

    QTextCodec* codec = QTextCodec::codecForName(codecName);
    Random random(11);
    int changed = 0;
    for (int round = 0; round < 100000; ++round) {
        QString text;
        // A lone surrogate, among the last pieces, spoils the whole text: keep it rare.
        const int kinds = round % 10 == 0 ? int(std::size(pieces)) : int(std::size(pieces)) - 2;
        for (int count = random.below(12); count > 0; --count)
            text += pieces[random.below(kinds)];
        const QString expected = literal::decodeText(text, codec);
        const QString actual = decodeText(text, codec);
        changed += expected != text ? 1 : 0;
        QCOMPARE(actual, expected);
        QCOMPARE(actual.isNull(), expected.isNull());
    }
    QVERIFY(changed > 10000);
}

void TestDxfLiteral::pointNumbers()
{
    static const QString pieces[] = { QStringLiteral("0"), QStringLiteral("7"),
        QStringLiteral("42"), QStringLiteral("a"), QStringLiteral("Z"), QStringLiteral("т"),
        QStringLiteral("Ё"), QStringLiteral("ё"), QStringLiteral("А"), QStringLiteral("я"),
        QStringLiteral("Ђ"), QStringLiteral("ѐ"), QStringLiteral("-"), QStringLiteral(":"),
        QStringLiteral(" "), QStringLiteral("\n"), QStringLiteral("\u0663"), QString(QChar(0xDC00)),
        QString(QChar(0)) };

    Random random(13);
    int pointNumbers = 0;
    for (int round = 0; round < 50000; ++round) {
        QString def;
        for (int count = random.below(5); count > 0; --count)
            def += pieces[random.below(int(std::size(pieces)))];
        DxfLabels labels({ { def, 0, 0 }, { QStringLiteral("ЗУ"), 0, 0 } });
        labels.filterObjectDefs();
        const bool expected = literal::isPointNumber(def);
        pointNumbers += expected ? 1 : 0;
        QCOMPARE(labels.texts().size(), expected ? 1 : 2);
    }
    QVERIFY(pointNumbers > 1000);
}

QTEST_GUILESS_MAIN(TestDxfLiteral)
#include "tst_dxfliteral.moc"
