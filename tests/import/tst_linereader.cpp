#include "import/linereader.h"

#include "support/random.h"
#include "support/tempfiles.h"

#include <QSet>
#include <QTest>
#include <QTextCodec>
#include <QTextStream>

namespace {

/// What a reader gives: its lines, and after each one whether the file has ended.
struct Reading {
    QStringList lines;
    QList<bool> ends;

    void add(const QString& line, bool atEnd)
    {
        lines.append(line);
        ends.append(atEnd);
    }
    bool sameNulls(const Reading& other) const
    {
        for (int i = 0; i < lines.size(); ++i) {
            if (lines.at(i).isNull() != other.lines.at(i).isNull())
                return false;
        }
        return true;
    }
};

/// Lines are asked for beyond the end, too.
constexpr int linesPastEnd = 2;

Reading readWithStream(const QString& fileName, QTextCodec* codec)
{
    Reading reading;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return reading;
    QTextStream in(&file);
    in.setCodec(codec);
    for (int past = 0; past < linesPastEnd;) {
        past += in.atEnd() ? 1 : 0;
        const QString line = in.readLine();
        reading.add(line, in.atEnd());
    }
    return reading;
}

Reading readWithReader(LineReader& reader)
{
    Reading reading;
    for (int past = 0; past < linesPastEnd;) {
        past += reader.atEnd() ? 1 : 0;
        const QString line = reader.readLine().toString();
        reading.add(line, reader.atEnd());
    }
    return reading;
}

QByteArray randomText(Random& random, int size)
{
    static const QByteArray pieces[] = { "\n", "\r\n", "\r", "\r\r\n", "\n\n", "0", " 10", "12.5",
        "\t", "\xD0\x97\xD0\xA3", "\xD0", "\xE2\x82", "\xF0\x90", "\xEF\xBB\xBF", "\x0E", "\x0F",
        "\x1B$B", "+", "~{", "\xFF", QByteArray(1, '\0'), QByteArray(300, 'x') };
    QByteArray text;
    while (text.size() < size)
        text += pieces[random.below(int(std::size(pieces)))];
    return text.left(size);
}

} // namespace

class TestLineReader : public QObject {
    Q_OBJECT

private slots:
    void sameLinesAsStream_data();
    void sameLinesAsStream();
    void everyCodec_data();
    void everyCodec();
    void randomFiles();
    void tailsBehindABlock();
    void skippedLinesChangeNothing();
    void skippedPairsChangeNothing();
    void bytesOfLines();
    void lastTwoLinesStayValid();
    void rewindsAndCountsOn();
    void reportsMissingFile();

private:
    QString write(const QByteArray& content)
    {
        return m_files.write(QStringLiteral("lines.txt"), content);
    }
    void compare(const QByteArray& content, const char* codecName)
    {
        const QString name = write(content);
        QTextCodec* codec = QTextCodec::codecForName(codecName);
        const Reading expected = readWithStream(name, codec);
        LineReader reader;
        QVERIFY(reader.open(name, codec));
        const Reading actual = readWithReader(reader);
        QCOMPARE(actual.lines, expected.lines);
        QCOMPARE(actual.ends, expected.ends);
        QVERIFY(actual.sameNulls(expected));
        QCOMPARE(reader.lineNum(), int(actual.lines.size()));
    }

    TempFiles m_files;
};

void TestLineReader::sameLinesAsStream_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("codec");

    const QByteArray block(16383, 'a');
    QTest::newRow("empty") << QByteArray() << QByteArray("UTF-8");
    QTest::newRow("one line feed") << QByteArray("\n") << QByteArray("UTF-8");
    QTest::newRow("one carriage return") << QByteArray("\r") << QByteArray("UTF-8");
    QTest::newRow("no last line feed") << QByteArray("a\nb") << QByteArray("UTF-8");
    QTest::newRow("carriage returns") << QByteArray("a\r\nb\r\r\nc\rd\r") << QByteArray("UTF-8");
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF"
                                                   "0\nSECTION\n")
                                     << QByteArray("windows-1251");
    QTest::newRow("only a byte-order mark")
        << QByteArray("\xEF\xBB\xBF") << QByteArray("windows-1251");
    QTest::newRow("UTF-16 mark") << QByteArray("\xFF\xFE"
                                               "0\0\n\0"
                                               "1\0",
        8) << QByteArray("windows-1251");
    QTest::newRow("UTF-16 cut in half") << QByteArray("0\0\n\0"
                                                      "1",
        5) << QByteArray("UTF-16LE");
    QTest::newRow("block ends a line") << block + "\nb" << QByteArray("windows-1251");
    QTest::newRow("block ends the file") << block + "\n" << QByteArray("windows-1251");
    QTest::newRow("line end across blocks") << block + "\r\nb\n" << QByteArray("windows-1251");
    QTest::newRow("line across blocks") << block + block + block << QByteArray("windows-1251");
    QTest::newRow("character across blocks") << block + "\xD0\x97\n" << QByteArray("UTF-8");
    QTest::newRow("cut character alone in the last block")
        << block + "\n\xD0" << QByteArray("UTF-8");
    QTest::newRow("cut character alone behind a block of two-byte characters")
        << QByteArray("\xD0\x97").repeated(8191) + "a\n\xD0" << QByteArray("UTF-8");
    QTest::newRow("cut character ends the last block") << block + "\nab\xD0" << QByteArray("UTF-8");
    QTest::newRow("NUL bytes") << QByteArray("a\0b\n\0\n", 6) << QByteArray("IBM866");
}

void TestLineReader::sameLinesAsStream()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QByteArray, codec);
    compare(content, codec);
}

void TestLineReader::everyCodec_data()
{
    QTest::addColumn<QByteArray>("codec");
    QSet<QByteArray> names; // an encoding is listed under all its names
    for (const QByteArray& alias : QTextCodec::availableCodecs())
        names.insert(QTextCodec::codecForName(alias)->name());
    for (const QByteArray& name : qAsConst(names))
        QTest::newRow(name) << name;
}

/// Each pair of high bytes: in an encoding of longer characters one of them tells.
void TestLineReader::everyCodec()
{
    QFETCH(const QByteArray, codec);
    QByteArray content;
    for (int first = 0x80; first < 0x100; ++first) {
        for (int second = 0x80; second < 0x100; ++second)
            content.append(char(first)).append(char(second)).append('\n');
    }
    compare(content, codec);
    compare("\xD0\x94\xD0\xBE\xD0\xBC 1,2\n\xED\xA0\x81\xED\xB0\x80\n", codec);
}

void TestLineReader::randomFiles()
{
    Random random(20);
    const char* const codecs[] = { "UTF-8", "windows-1251", "IBM866", "KOI8-R", "UTF-16LE",
        "UTF-16", "UTF-32", "GB18030", "Shift_JIS", "ISO-2022-JP", "UTF-7", "US-ASCII" };
    for (int i = 0; i < 3000; ++i) {
        QTextCodec* const codec = QTextCodec::codecForName(codecs[i % std::size(codecs)]);
        if (!codec)
            continue;
        const int blocks = random.below(4) * 16384;
        const int size = std::max(0, blocks + random.below(61) - 30) + random.below(2) * 500;
        compare(randomText(random, size), codec->name().constData());
        if (QTest::currentTestFailed())
            qFatal("file %d of %d bytes in %s", i, size, codec->name().constData());
    }
}

/// What a block ends with, and a last block that may come to no character at all.
void TestLineReader::tailsBehindABlock()
{
    static const QByteArray tails[] = { "\r", "\r\r\r\r\r\r\r\r\r\r\r\r", "\xD0", "\xF0\x90\x90",
        "\x0E\x0F\x0E\x0F\x0E\x0F\x0E\x0F\x0E\x0F", "\n", "\r\n", "A", "\x97\n", "\x90\x90\nB" };
    static const QByteArray ends[] = { "\n", "a", "\r", "\xD0", "\xF0", "\xF0\x90", "\r\n",
        "\n\r" };
    for (const char* codec : { "UTF-8", "windows-1251", "ISO-2022-JP", "UTF-16LE" }) {
        for (const QByteArray& end : ends) {
            for (const QByteArray& tail : tails)
                compare(QByteArray(16384 - end.size(), 'x') + end + tail, codec);
        }
    }
}

void TestLineReader::skippedLinesChangeNothing()
{
    Random random(21);
    for (int i = 0; i < 300; ++i) {
        const QString name = write(randomText(random, random.below(50000)));
        QTextCodec* const codec =
            QTextCodec::codecForName(random.below(2) ? "UTF-8" : "windows-1251");
        const Reading expected = readWithStream(name, codec);
        LineReader reader;
        QVERIFY(reader.open(name, codec));
        for (int line = 0; line < expected.lines.size(); ++line) {
            if (random.below(2))
                reader.skipLine();
            else
                QCOMPARE(reader.readLine().toString(), expected.lines.at(line));
            QCOMPARE(reader.atEnd(), expected.ends.at(line));
            QCOMPARE(reader.lineNum(), line + 1);
        }
    }
}

/// Pairs that are passed over as a whole, between lines that are read.
void TestLineReader::skippedPairsChangeNothing()
{
    Random random(23);
    int skipped = 0;
    for (int i = 0; i < 600; ++i) {
        const QByteArray content = randomText(random, random.below(50000));
        const QString name = write(content);
        QTextCodec* const chosen = QTextCodec::codecForName(
            random.pick(QByteArrayList{ "windows-1251", "IBM866", "UTF-8", "ISO-2022-JP" }));
        QTextCodec* const codec = QTextCodec::codecForUtfText(content, chosen);
        const Reading expected = readWithStream(name, chosen);
        LineReader reader;
        QVERIFY(reader.open(name, chosen));
        int line = 0;
        while (line < expected.lines.size()) {
            int looked = line;
            int taken = line;
            bool areLines = true;
            reader.skipPairs([&](std::string_view bytes) {
                // A character that is cut short shows at the line feed, which the view leaves out.
                QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
                QString text =
                    codec->toUnicode(bytes.data(), static_cast<int>(bytes.size()) + 1, &state);
                text.chop(1);
                text.remove(QLatin1Char('\r'));
                areLines = areLines && text == expected.lines.value(looked);
                looked += 2;
                const bool isSkipped = random.below(8) > 0;
                taken += isSkipped ? 2 : 0;
                return isSkipped;
            });
            QVERIFY(areLines);
            // The second line of a pair that is not passed over may be the last of the block.
            QVERIFY(reader.lineNum() == taken || reader.lineNum() == taken - 2);
            skipped += reader.lineNum() - line;
            line = reader.lineNum();
            QVERIFY(line < expected.lines.size());
            QCOMPARE(reader.readLine().toString(), expected.lines.at(line));
            QCOMPARE(reader.atEnd(), expected.ends.at(line));
            ++line;
        }
    }
    QVERIFY(skipped > 10000);
}

/// Lines taken as bytes, among others that are not: each byte is a character.
void TestLineReader::bytesOfLines()
{
    Random random(22);
    int taken = 0;
    for (int i = 0; i < 600; ++i) {
        const QString name = write(randomText(random, random.below(50000)));
        QTextCodec* const codec = QTextCodec::codecForName(
            random.pick(QByteArrayList{ "windows-1251", "IBM866", "UTF-8", "ISO-2022-JP" }));
        const Reading expected = readWithStream(name, codec);
        LineReader reader;
        QVERIFY(reader.open(name, codec));
        for (int line = 0; line < expected.lines.size(); ++line) {
            const std::string_view bytes =
                random.below(2) ? reader.readBytes() : std::string_view();
            QString text;
            for (const char byte : bytes)
                text += reader.byteTable().at(byte);
            QCOMPARE(bytes.data() ? text : reader.readLine().toString(), expected.lines.at(line));
            QCOMPARE(reader.atEnd(), expected.ends.at(line));
            QCOMPARE(reader.lineNum(), line + 1);
            taken += bytes.data() ? 1 : 0;
        }
        QVERIFY(!reader.readBytes().data());
    }
    QVERIFY(taken > 10000);
}

void TestLineReader::lastTwoLinesStayValid()
{
    QByteArray content;
    QStringList lines;
    Random random(7);
    for (int i = 0; i < 3000; ++i) {
        lines.append(QString(1 + random.below(59), QChar('a' + i % 26)));
        if (i % 500 == 0)
            lines.last() = QString(40000, QLatin1Char('x'));
        content += lines.last().toLatin1() + '\n';
    }
    LineReader reader;
    QVERIFY(reader.open(write(content), QTextCodec::codecForName("UTF-8")));
    TextView previous = reader.readLine();
    for (int i = 1; i < lines.size(); ++i) {
        const TextView line = reader.readLine();
        QCOMPARE(previous.toString(), lines.at(i - 1));
        QCOMPARE(line.toString(), lines.at(i));
        previous = line;
    }
}

void TestLineReader::rewindsAndCountsOn()
{
    LineReader reader;
    QVERIFY(reader.open(write("\xEF\xBB\xBF"
                              "one\ntwo\nthree"),
        QTextCodec::codecForName("IBM866")));
    QCOMPARE(reader.readLine().toString(), QStringLiteral("one"));
    QCOMPARE(reader.readLine().toString(), QStringLiteral("two"));
    reader.rewind();
    QVERIFY(!reader.atEnd());
    QCOMPARE(reader.readLine().toString(), QStringLiteral("one"));
    QCOMPARE(reader.lineNum(), 3);
}

void TestLineReader::reportsMissingFile()
{
    LineReader reader;
    QVERIFY(!reader.open(m_files.path(QStringLiteral("absent")), QTextCodec::codecForLocale()));
    QVERIFY(!reader.isOpen());
    QVERIFY(!reader.open(m_files.path(QString()), QTextCodec::codecForLocale()));
}

QTEST_GUILESS_MAIN(TestLineReader)
#include "tst_linereader.moc"
