#include "import/mifimport.h"

#include "literal/literalmifimport.h"
#include "support/importing.h"
#include "support/miftext.h"

#include <QtTest>

namespace {

const QString plan = QStringLiteral("plan.mif");
const QString planMid = QStringLiteral("plan.mid");

/// One object of every kind, two of them with names of their own.
QByteArray sampleMif()
{
    return mif("Point 1 2\n"
               "    Symbol (35,0,12)\n"
               "Line 1 2 3 4\n"
               "    Pen (1,2,0)\n"
               "\n"
               "Pline 3\n"
               "1 2\n"
               "5 6\n"
               "7 8\n"
               "Pline Multiple 2\n"
               "  2\n"
               "1 2\n"
               "3 4\n"
               "  2\n"
               "5 6\n"
               "9 9\n"
               "Text \"a\"\n"
               "    1 2 3 4\n"
               "Region 2\n"
               "  4\n"
               "0 0\n"
               "0 9\n"
               "9 9\n"
               "0 0\n"
               "  4\n"
               "2 3\n"
               "2 4\n"
               "3 4\n"
               "2 3\n"
               "    Brush (1,0,0)\n"
               "    Center 4 4\n"
               "Region 0\n");
}

QByteArray sampleMid()
{
    return "\"н1\",1\n\"А\",2\n,3\n\"\",4\ntext,5\n\"Б 2\",6\nВ,7\n";
}

ImportOptions searchAll()
{
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    options.searchObjectDefs = true;
    return options;
}

QByteArrayList linesOf(const QByteArray& text)
{
    QByteArrayList lines;
    for (const QByteArray& line : text.split('\n'))
        lines.append(line + '\n');
    lines.removeLast();
    return lines;
}

/// The most address space that this process has had, in bytes; 0 where that is not known.
qint64 peakAddressSpace()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmPeak:"))
            return line.mid(7).simplified().split(' ').first().toLongLong() * 1024;
    }
    return 0;
}

} // namespace

/// Files that are cut short, damaged or absurd: a message or a result, and never more than that.
class TestMifHostile : public QObject {
    Q_OBJECT

private slots:
    void wholeSample();
    void cutAtEveryByte();
    void aBlockEndsAtEveryByte();
    void everyLineReplaced_data();
    void everyLineReplaced();
    void absurdCounts_data();
    void absurdCounts();
    void enormousLine();

private:
    void compare(const QByteArray& mif, const QByteArray& mid, bool searchPoints = true);

    TempFiles m_files;
};

/// The outcome must be that of the plain reader, and tell of a failure exactly once.
void TestMifHostile::compare(const QByteArray& mif, const QByteArray& mid, bool searchPoints)
{
    m_files.write(plan, mif);
    m_files.write(planMid, mid);
    ImportOptions options = searchAll();
    options.searchPointDefs = searchPoints;
    const QStringList outcome = outcomeOf<MifImport>(options, m_files, plan);
    QCOMPARE(outcome, outcomeOf<literal::MifImport>(options, m_files, plan));

    // A collection ends its pass with a message too, but that is no failure.
    const int messages = outcome.filter(QStringLiteral("! ")).size();
    const int collections = outcome.filter(QStringLiteral("Коллекции")).size();
    QCOMPARE(messages - collections, outcome.first() == QStringLiteral("false") ? 1 : 0);
}

void TestMifHostile::wholeSample()
{
    m_files.write(plan, sampleMif());
    m_files.write(planMid, sampleMid());
    const QStringList expected{
        QStringLiteral("true"),
        QStringLiteral("А [н1 1 2; т1 3 4]"),
        QStringLiteral("об1 [н1 1 2; т2 5 6; т3 7 8]"),
        QStringLiteral("об2 [н1 1 2; т1 3 4] [т2 5 6; т4 9 9]"),
        QStringLiteral("Б 2 [т5 0 0; т6 0 9; т4 9 9; т5 0 0] [т7 2 3; т8 2 4; т1 3 4; т7 2 3]"),
        QStringLiteral("В"),
    };
    QCOMPARE(outcomeOf<MifImport>(searchAll(), m_files, plan), expected);
}

void TestMifHostile::cutAtEveryByte()
{
    const QByteArray mif = sampleMif();
    const QByteArray mid = sampleMid();
    for (int size = 0; size <= mif.size(); ++size)
        compare(mif.left(size), mid, size % 2 == 0);
    for (int size = 0; size <= mid.size(); ++size)
        compare(mif, mid.left(size), size % 2 == 0);
}

void TestMifHostile::aBlockEndsAtEveryByte()
{
    // What reads and decodes a file does so by blocks of this size.
    constexpr int block = 16384;
    const QByteArray end = sampleMif().mid(mifHeader().size());
    const QByteArray rows = sampleMid();
    for (int left = -9; left <= end.size() + 9; ++left) {
        QByteArray start = mifHeader();
        start.insert(
            start.indexOf("Columns"), QByteArray(block - start.size() - left - 1, 'x') + '\n');
        compare(start + end, rows, left % 2 == 0);
    }
    for (int left = -9; left <= rows.size() + 9; ++left) {
        QByteArray padded = rows;
        padded.insert(padded.indexOf('\n'), QByteArray(block - left, 'x'));
        compare(sampleMif(), padded, left % 2 == 0);
    }
}

void TestMifHostile::everyLineReplaced_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("blank") << QByteArray("\n");
    QTest::newRow("nothing") << QByteArray("");
    QTest::newRow("word") << QByteArray("abc\n");
    QTest::newRow("NUL") << QByteArray("\0\n", 2);
    QTest::newRow("number and NUL") << QByteArray("2\0\n", 3);
    QTest::newRow("one number") << QByteArray("3\n");
    QTest::newRow("two numbers") << QByteArray("1 2\n");
    QTest::newRow("nan inf") << QByteArray("nan inf\n");
    QTest::newRow("Data") << QByteArray("Data\n");
    QTest::newRow("collection") << QByteArray("Collection 1\n");
    QTest::newRow("region") << QByteArray("Region 1\n");
    QTest::newRow("not UTF-8") << QByteArray("\xFF\xFE\xC0\n");
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF\n");
    QTest::newRow("carriage returns") << QByteArray("\r\r\n");
    QTest::newRow("quotes") << QByteArray("\"\"\",,\"\n");
}

void TestMifHostile::everyLineReplaced()
{
    QFETCH(QByteArray, line);
    const QByteArrayList mif = linesOf(sampleMif());
    const QByteArrayList mid = linesOf(sampleMid());
    for (int i = 0; i < mif.size(); ++i) {
        QByteArrayList damaged = mif;
        damaged[i] = line;
        compare(damaged.join(), mid.join(), i % 2 == 0);
    }
    for (int i = 0; i < mid.size(); ++i) {
        QByteArrayList damaged = mid;
        damaged[i] = line;
        compare(mif.join(), damaged.join(), i % 2 == 0);
    }
}

void TestMifHostile::absurdCounts_data()
{
    QTest::addColumn<QByteArray>("objects");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QByteArray& objects, const char* expected) {
        QTest::newRow(name) << objects << QString::fromUtf8(expected);
    };
    row("rings", "Region 2000000000\n3\n0 0\n0 9\n0 0\n",
        "! Ошибка чтения области из строки: 11|<null> [т1 0 0; т2 0 9; т1 0 0]");
    row("vertices of a ring", "Region 1\n2000000000\n0 0\n",
        "! Ошибка чтения области из строки: 9|<null> [т1 0 0]");
    row("vertices of a polyline", "Pline 2000000000\n0 0\n",
        "! Ошибка чтения полилинии из строки: 8|<null> [т1 0 0]");
    row("sections", "Pline Multiple 2000000000\n2\n0 0\n0 9\n",
        "! Ошибка чтения полилинии из строки: 10|<null> [т1 0 0; т2 0 9]");
    row("vertices of a section", "Pline Multiple 2\n2000000000\n0 0\n",
        "! Ошибка чтения полилинии из строки: 9|<null> [т1 0 0]");
}

void TestMifHostile::absurdCounts()
{
    QFETCH(QByteArray, objects);
    QFETCH(QString, expected);
    m_files.write(plan, mif(objects));
    const qint64 before = peakAddressSpace();
    const QStringList outcome = outcomeOf<MifImport>(prefixed(), m_files, plan);
    QCOMPARE(outcome, QStringList{ QStringLiteral("false") } + expected.split(QLatin1Char('|')));
    QVERIFY(peakAddressSpace() - before < qint64(1) << 30);
}

void TestMifHostile::enormousLine()
{
    constexpr int size = 100 * 1024 * 1024;
    const QByteArray object = "Line 1 2 3 4\n";
    m_files.write(plan, mif("Pline 2\n1 2\n" + QByteArray(size, '9') + " 4\n" + object));
    const QStringList expected{ QStringLiteral("false"),
        QStringLiteral("! Ошибка чтения полилинии из строки: 9"),
        QStringLiteral("<null> [т1 1 2]") };
    QCOMPARE(outcomeOf<MifImport>(prefixed(), m_files, plan), expected);
}

QTEST_GUILESS_MAIN(TestMifHostile)
#include "tst_mifhostile.moc"
