#include "import/mifimport.h"

#include "support/importing.h"
#include "support/miftext.h"

#include <QtTest>

namespace {

void columns()
{
    QTest::addColumn<QByteArray>("mif");
    QTest::addColumn<QStringList>("expected");
}

/// An object pass over `mif` without a MID file. The outcome is that of outcomeOf().
void row(const char* name, const QByteArray& mif, const char* expected)
{
    QTest::newRow(name) << mif << lines(expected);
}

/// The outcome when an object cannot be read: the message about its kind and the line, and then
/// as much of the object as was built.
QByteArray bad(const char* kind, int line, const char* object)
{
    return "false\n! Ошибка чтения " + QByteArray(kind) + " из строки: " + QByteArray::number(line)
        + '\n' + object;
}

QByteArray badPline(int line, const char* object)
{
    return bad("полилинии", line, object);
}

QByteArray badRegion(int line, const char* object)
{
    return bad("области", line, object);
}

const char* const badHeader = "false\n! Ошибка. Файл plan.mif не соответствует формату MIF";

} // namespace

/// What the object pass makes of a MIF file alone.
class TestMif : public QObject {
    Q_OBJECT

private slots:
    void header_data();
    void header() { check(); }
    void dataSection_data();
    void dataSection() { check(); }
    void keywords_data();
    void keywords() { check(); }
    void line_data();
    void line() { check(); }
    void pline_data();
    void pline() { check(); }
    void plineMultiple_data();
    void plineMultiple() { check(); }
    void region_data();
    void region() { check(); }
    void numbers_data();
    void numbers() { check(); }
    void stops_data();
    void stops() { check(); }

private:
    void check();
};

void TestMif::check()
{
    QFETCH(QByteArray, mif);
    QFETCH(QStringList, expected);
    const TempFiles files;
    const QString name = QStringLiteral("plan.mif");
    files.write(name, mif);
    QCOMPARE(outcomeOf<MifImport>(prefixed(), files, name), expected);

    QByteArray withReturns = mif;
    withReturns.replace("\n", "\r\n");
    files.write(name, withReturns);
    QCOMPARE(outcomeOf<MifImport>(prefixed(), files, name), expected);

    // A last line without its end is a line like any other; an end alone would be a blank one.
    if (mif.endsWith('\n') && !mif.endsWith("\n\n")) {
        files.write(name, mif.left(mif.size() - 1));
        QCOMPARE(outcomeOf<MifImport>(prefixed(), files, name), expected);
    }
}

void TestMif::header_data()
{
    columns();
    const QByteArray object = "Data\nLine 1 2 3 4\n";
    const char* const good = "true\nоб1 [т1 1 2; т2 3 4]";

    row("as usual", "Version 300\nCharset \"Neutral\"\nDelimiter \",\"\n" + object, good);
    row("any case", "vErSiOn 300\nCHARSET x\ndelimiter \",\"\n" + object, good);
    row("values do not matter", "Version abc\nCharset 5\nDelimiter \",\"\n" + object, good);
    row("any white space", " \tVersion\t \t300 \nCharset\t\"N\"\n  Delimiter   \",\"  \n" + object,
        good);
    row("delimiter without quotes", "Version 300\nCharset \"N\"\nDelimiter ;\n" + object, good);
    row("empty delimiter", "Version 300\nCharset \"N\"\nDelimiter \"\"\n" + object, good);
    row("letters that are upper-cased to the keyword",
        "Verſion 300\nCharſet \"N\"\nDelımıter \",\"\n" + object, good);
    row("header only", "Version 300\nCharset \"N\"\nDelimiter \",\"\n", "true");

    row("empty file", "", badHeader);
    row("only a line feed", "\n", badHeader);
    row("blank first line", "\n" + mif("Line 1 2 3 4\n"), badHeader);
    row("another first line", "!table\n" + mif("Line 1 2 3 4\n"), badHeader);
    row("version without value", "Version\nCharset \"N\"\nDelimiter \",\"\n" + object, badHeader);
    row("version with two values", "Version 3 0\nCharset \"N\"\nDelimiter \",\"\n" + object,
        badHeader);
    row("no version", "Charset \"N\"\nDelimiter \",\"\n" + object, badHeader);
    row("version only", "Version 300\n", badHeader);
    row("no character set", "Version 300\nDelimiter \",\"\n" + object, badHeader);
    row("character set with a space", "Version 300\nCharset \"a b\"\nDelimiter \",\"\n" + object,
        badHeader);
    row("blank line between", "Version 300\nCharset \"N\"\n\nDelimiter \",\"\n" + object,
        badHeader);
    row("no delimiter", "Version 300\nCharset \"N\"\n" + object, badHeader);
    row("delimiter without value", "Version 300\nCharset \"N\"\nDelimiter\n" + object, badHeader);
    row("delimiter is a space", "Version 300\nCharset \"N\"\nDelimiter \" \"\n" + object,
        badHeader);
    row("delimiter is a tab", "Version 300\nCharset \"N\"\nDelimiter \"\t\"\n" + object, badHeader);
    row("wrong order", "Charset \"N\"\nVersion 300\nDelimiter \",\"\n" + object, badHeader);
    row("longer keyword", "Versions 300\nCharset \"N\"\nDelimiter \",\"\n" + object, badHeader);
    row("binary", QByteArray("\x00\x01\x02\xFF\xFE\n\x00\n", 8), badHeader);
}

void TestMif::dataSection_data()
{
    columns();
    const QByteArray start = "Version 300\nCharset \"N\"\nDelimiter \",\"\n";
    const QByteArray object = "Line 1 2 3 4\n";
    const char* const good = "true\nоб1 [т1 1 2; т2 3 4]";

    row("DATA", start + "DATA\n" + object, good);
    row("data", start + "data\n" + object, good);
    row("white space around it", start + " \tData  \n" + object, good);
    row("no such line", start + object, "true");
    row("DATA 1", start + "DATA 1\n" + object, "true");
    row("longer word", start + "Datas\n" + object, "true");
    row("objects before it are passed over",
        start + "Region x\nPline 1\nCollection 2\nLine 5 6 7 8\nData\n" + object, good);
    row("the rest of the header",
        start
            + "Unique 1\nIndex 1,2\nCoordSys Earth Projection 8, 1001\nTransform 0,0,0,0\n"
              "Columns 1\n  Data Char(20)\nData\n"
            + object,
        good);
    row("blank lines around it", start + "\n\nData\n\n\n" + object + "\n\n", good);
    row("twice", start + "Data\nData\n" + object, good);
    row("nothing after it", start + "Data\n", "true");
}

void TestMif::keywords_data()
{
    columns();
    row("any case", mif("lInE 1 2 3 4\nPLINE 2\n1 2\n5 6\nregion 0\n"),
        "true\nоб1 [т1 1 2; т2 3 4]\nоб2 [т1 1 2; т3 5 6]\nоб3");
    row("passed over without a message",
        mif("None\nPoint 1 2\nArc 1 2 3 4\n  1 2\nText \"Line 1 2 3 4\"\n 1 2 3 4\nRect 1 2 3 4\n"
            "RoundRect 1 2 3 4\n 5\nEllipse 1 2 3 4\nMultipoint 2\n1 2\n3 4\nLine 1 2 3 4\n"),
        "true\nоб1 [т1 1 2; т2 3 4]");
    row("a point is not read", mif("Point a b\nPoint\nLine 1 2 3 4\n"),
        "true\nоб1 [т1 1 2; т2 3 4]");
    row("other lines",
        mif("Lines 1 2 3 4\nMyLine 1 2\n\"Line\" 1 2 3 4\nPen (1,2,0)\n"
            "Brush (2,3)\nSymbol (1,2,3)\nSmooth\nCenter 5 5\n12 34\n"),
        "true");
    row("attributes of an object",
        mif("Region 1\n 4\n0 0\n5 0\n5 5\n0 0\n    Pen (1,2,0)\n"
            "    Brush (2,3)\n    Center 2 2\nLine 0 0 9 9\n Pen (1,2,0)\n"),
        "true\nоб1 [т1 0 0; т2 5 0; т3 5 5; т1 0 0]\nоб2 [т1 0 0; т4 9 9]");
    row("a letter that is upper-cased to the keyword", mif("Lıne 1 2 3 4\nREGİON 0\n"),
        "true\nоб1 [т1 1 2; т2 3 4]");
    row("a keyword between quotes is none", mif("\"REGION\" 1\n"), "true");
}

void TestMif::line_data()
{
    columns();
    const char* const bad = "false\n! Ошибка чтения линии из строки: 7";
    row("two vertices", mif("Line 1.5 -2 3e2 .25\n"), "true\nоб1 [т1 1.5 -2; т2 300 0.25]");
    row("any white space", mif("\tLine\t1   2\t3 4\t\n"), "true\nоб1 [т1 1 2; т2 3 4]");
    row("further tokens do not matter", mif("Line 1 2 3 4 x 5\n"), "true\nоб1 [т1 1 2; т2 3 4]");
    row("equal ends", mif("Line 1 2 1 2\n"), "true\nоб1 [т1 1 2; т1 1 2]");
    row("nothing is added: no coordinates", mif("Line\n"), bad);
    row("three coordinates", mif("Line 1 2 3\n"), bad);
    row("the first is no number", mif("Line x 2 3 4\n"), bad);
    row("the second is no number", mif("Line 1 x 3 4\n"), bad);
    row("the third is no number", mif("Line 1 2 x 4\n"), bad);
    row("the last is no number", mif("Line 1 2 3 x\n"), bad);
    row("decimal comma", mif("Line 1,5 2 3 4\n"), bad);
    row("coordinates on the next line", mif("Line\n1 2 3 4\n"), bad);
    row("what was read before stays", mif("Line 1 2 3 4\nLine 1 2 3\nLine 5 6 7 8\n"),
        "false\n! Ошибка чтения линии из строки: 8\nоб1 [т1 1 2; т2 3 4]");
}

void TestMif::pline_data()
{
    columns();
    row("two vertices", mif("Pline 2\n1 2\n3 4\n"), "true\nоб1 [т1 1 2; т2 3 4]");
    row("closed one: not a ring, but one place", mif("Pline 4\n1 2\n3 4\n5 6\n1 2\n"),
        "true\nоб1 [т1 1 2; т2 3 4; т3 5 6; т1 1 2]");
    row("white space in vertices", mif("Pline 2\n  1 \t 2\n\t3 4  \n"),
        "true\nоб1 [т1 1 2; т2 3 4]");
    row("vertices beyond the count are passed over", mif("Pline 2\n1 2\n3 4\n5 6\n"),
        "true\nоб1 [т1 1 2; т2 3 4]");
    row("further tokens do not matter", mif("Pline 2 x\n1 2\n3 4\n"), "true\nоб1 [т1 1 2; т2 3 4]");
    row("signed count", mif("Pline +2\n1 2\n3 4\n"), "true\nоб1 [т1 1 2; т2 3 4]");
    row("one vertex", mif("Pline 1\n1 2\n"), badPline(7, "<null>"));
    row("no vertex", mif("Pline 0\n"), badPline(7, "<null>"));
    row("negative", mif("Pline -2\n1 2\n3 4\n"), badPline(7, "<null>"));
    row("no count", mif("Pline\n2\n1 2\n3 4\n"), badPline(7, "<null>"));
    row("count is no number", mif("Pline x\n1 2\n3 4\n"), badPline(7, "<null>"));
    row("count is no integer", mif("Pline 2.0\n1 2\n3 4\n"), badPline(7, "<null>"));
    row("count is too large", mif("Pline 2147483648\n1 2\n3 4\n"), badPline(7, "<null>"));
    row("end of file after the count", mif("Pline 2\n"), badPline(7, "<null> []"));
    row("end of file after a vertex", mif("Pline 3\n1 2\n3 4\n"),
        badPline(9, "<null> [т1 1 2; т2 3 4]"));
    row("blank line in place of a vertex", mif("Pline 2\n1 2\n\n3 4\n"),
        badPline(9, "<null> [т1 1 2]"));
    row("vertex of one token", mif("Pline 2\n1\n2 3\n"), badPline(8, "<null> []"));
    row("vertex of three tokens", mif("Pline 2\n1 2\n3 4 5\n"), badPline(9, "<null> [т1 1 2]"));
    row("x is no number", mif("Pline 2\n1 2\nx 4\n"), badPline(9, "<null> [т1 1 2]"));
    row("y is no number", mif("Pline 2\n1 2\n3 y\n"), badPline(9, "<null> [т1 1 2]"));
    row("coordinates with a comma", mif("Pline 2\n1,2\n3,4\n"), badPline(8, "<null> []"));
}

void TestMif::plineMultiple_data()
{
    columns();
    const char* const good = "true\nоб1 [т1 1 2; т2 3 4] [т2 3 4; т3 5 6; т1 1 2]";
    row("two sections", mif("Pline Multiple 2\n 2\n1 2\n3 4\n 3\n3 4\n5 6\n1 2\n"), good);
    row("any case", mif("pline mULTIPLE 2\n2\n1 2\n3 4\n3\n3 4\n5 6\n1 2\n"), good);
    row("a letter that is upper-cased to it",
        mif("Pline Multıple 2\n2\n1 2\n3 4\n3\n3 4\n5 6\n1 2\n"), good);
    row("one section", mif("Pline Multiple 1\n2\n1 2\n3 4\n"), badPline(7, "<null>"));
    row("no section", mif("Pline Multiple 0\n"), badPline(7, "<null>"));
    row("no count", mif("Pline Multiple\n2\n1 2\n3 4\n"), badPline(7, "<null>"));
    row("count is no number", mif("Pline Multiple x\n2\n1 2\n3 4\n"), badPline(7, "<null>"));
    row("end of file after the count", mif("Pline Multiple 2\n"), badPline(7, "<null>"));
    row("section of one vertex", mif("Pline Multiple 2\n1\n1 2\n2\n1 2\n3 4\n"),
        badPline(8, "<null>"));
    row("section count with more on the line", mif("Pline Multiple 2\n2 2\n1 2\n3 4\n"),
        badPline(8, "<null>"));
    row("blank line in place of a count", mif("Pline Multiple 2\n2\n1 2\n3 4\n\n2\n1 2\n3 4\n"),
        badPline(11, "<null> [т1 1 2; т2 3 4]"));
    row("end of file after a section count", mif("Pline Multiple 2\n2\n1 2\n3 4\n2\n"),
        badPline(11, "<null> [т1 1 2; т2 3 4] []"));
    row("end of file after a section", mif("Pline Multiple 3\n2\n1 2\n3 4\n2\n5 6\n7 8\n"),
        badPline(13, "<null> [т1 1 2; т2 3 4] [т3 5 6; т4 7 8]"));
    row("bad vertex in the second section", mif("Pline Multiple 2\n2\n1 2\n3 4\n2\n5 6\n7\n"),
        badPline(13, "<null> [т1 1 2; т2 3 4] [т3 5 6]"));
    row("further sections are passed over",
        mif("Pline Multiple 2\n2\n1 2\n3 4\n2\n1 2\n3 4\n2\n5 6\n7 8\n"),
        "true\nоб1 [т1 1 2; т2 3 4] [т1 1 2; т2 3 4]");
}

void TestMif::region_data()
{
    columns();
    row("ring of five", mif("Region 1\n  5\n0 0\n0 9\n9 9\n9 0\n0 0\n"),
        "true\nоб1 [т1 0 0; т2 0 9; т3 9 9; т4 9 0; т1 0 0]");
    row("the last vertex is named after the first wherever it stands",
        mif("Region 1\n3\n0 0\n0 9\n7 7\n"), "true\nоб1 [т1 0 0; т2 0 9; т1 7 7]");
    row("a ring and a hole", mif("Region 2\n4\n0 0\n0 9\n9 9\n0 0\n4\n1 1\n1 2\n2 2\n1 1\n"),
        "true\nоб1 [т1 0 0; т2 0 9; т3 9 9; т1 0 0] [т4 1 1; т5 1 2; т6 2 2; т4 1 1]");
    row("no ring", mif("Region 0\nLine 1 2 3 4\n"), "true\nоб1\nоб2 [т1 1 2; т2 3 4]");
    row("no ring at the end of the file", mif("Region 0\n"), "true\nоб1");
    row("negative", mif("Region -1\n4\n0 0\n"), badRegion(7, "<null>"));
    row("no count", mif("Region\n4\n0 0\n0 9\n9 9\n0 0\n"), badRegion(7, "<null>"));
    row("no count at the end of the file", mif("Region\n"), badRegion(7, "<null>"));
    row("count is no number", mif("Region one\n4\n"), badRegion(7, "<null>"));
    row("end of file after the count", mif("Region 1\n"), badRegion(7, "<null>"));
    row("ring of two", mif("Region 1\n2\n0 0\n0 9\n"), badRegion(8, "<null>"));
    row("ring count is no number", mif("Region 1\nx\n0 0\n0 9\n"), badRegion(8, "<null>"));
    row("blank line in place of a ring count", mif("Region 1\n\n3\n0 0\n0 9\n0 0\n"),
        badRegion(8, "<null>"));
    row("end of file after a ring count", mif("Region 1\n3\n"), badRegion(8, "<null> []"));
    row("end of file in a ring", mif("Region 1\n4\n0 0\n0 9\n"),
        badRegion(10, "<null> [т1 0 0; т2 0 9]"));
    row("blank line between rings", mif("Region 2\n3\n0 0\n0 9\n0 0\n\n3\n1 1\n1 2\n1 1\n"),
        badRegion(12, "<null> [т1 0 0; т2 0 9; т1 0 0]"));
    row("blank line in place of a vertex", mif("Region 1\n3\n0 0\n\n0 9\n0 0\n"),
        badRegion(10, "<null> [т1 0 0]"));
    row("end of file between rings", mif("Region 2\n3\n0 0\n0 9\n0 0\n"),
        badRegion(11, "<null> [т1 0 0; т2 0 9; т1 0 0]"));
    row("bad closing vertex", mif("Region 1\n3\n0 0\n0 9\n0\n"),
        badRegion(11, "<null> [т1 0 0; т2 0 9]"));
    row("shared vertices",
        mif("Region 1\n4\n0 0\n0 9\n9 9\n0 0\nRegion 1\n4\n9 9\n0 9\n5 20\n9 9\n"),
        "true\nоб1 [т1 0 0; т2 0 9; т3 9 9; т1 0 0]\nоб2 [т3 9 9; т2 0 9; т4 5 20; т3 9 9]");
}

void TestMif::numbers_data()
{
    columns();
    row("infinite and undefined coordinates are numbers",
        mif("Line inf 2 nan -inf\nLine inf 2 3 4\n"),
        "true\nоб1 [т1 inf 2; т2 nan -inf]\nоб2 [т3 inf 2; т4 3 4]");
    row("beyond the range of a double", mif("Line 1e400 2 3 4\n"),
        "false\n! Ошибка чтения линии из строки: 7");
    row("hexadecimal is none", mif("Line 0x10 2 3 4\n"),
        "false\n! Ошибка чтения линии из строки: 7");
    row("digits of other scripts are none", mif("Line ١ 2 3 4\n"),
        "false\n! Ошибка чтения линии из строки: 7");
    row("tokens parted by a no-break space", mif("Line 1\u00A02 3 4\n"),
        "true\nоб1 [т1 1 2; т2 3 4]");
    row("a NUL is part of a token", mif(QByteArray("Line 1 2 3 4\0\n", 14)),
        "false\n! Ошибка чтения линии из строки: 7");
}

void TestMif::stops_data()
{
    columns();
    row("collection", mif("Line 1 2 3 4\nCollection 2\nLine 5 6 7 8\n"),
        "true\n! Ошибка в стоке 8. Коллекции в MIF файлах не поддерживаются.\n"
        "об1 [т1 1 2; т2 3 4]");
    row("collection in any case, blank lines counted", mif("\n\ncOLLECTION\n"),
        "true\n! Ошибка в стоке 9. Коллекции в MIF файлах не поддерживаются.");
    row("one message only", mif("Pline 1\nRegion x\nCollection\n"),
        "false\n! Ошибка чтения полилинии из строки: 7\n<null>");
}

QTEST_GUILESS_MAIN(TestMif)
#include "tst_mif.moc"
