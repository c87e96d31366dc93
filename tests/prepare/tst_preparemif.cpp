// MIF/MID pairs: what is mended, what becomes a contour, and that the import takes the result
// whole.

#include "deviation.h"
#include "import/mifimport.h"
#include "prepare/preparemif.h"
#include "support/importing.h"

#include <QBuffer>
#include <QTest>
#include <QTextCodec>
#include <QtMath>

#include <cmath>

using prep::Level;
using prep::PrepareOptions;

Q_DECLARE_METATYPE(PrepareOptions)

namespace {

const QByteArray header = "Version 300\nCharset \"WindowsCyrillic\"\nDelimiter \",\"\n"
                          "Columns 2\n  name Char(20)\n  area Decimal(10,2)\nData\n\n";

struct PreparedPair {
    bool written = false;
    QByteArray mif;
    QByteArray mid;
    prep::PrepareReport report;

    /// The objects, without the header.
    QByteArray objects() const { return mif.mid(mif.indexOf("Data\n\n") + 6); }
    QStringList notes() const
    {
        QStringList names;
        for (const auto& [note, count] : report.notes())
            names.append(prep::noteId(note));
        names.sort();
        return names;
    }
};

PreparedPair prepared(
    const QByteArray& mif, const std::optional<QByteArray>& mid, const PrepareOptions& options = {})
{
    PreparedPair result;
    QBuffer mifOut(&result.mif);
    QBuffer midOut(&result.mid);
    mifOut.open(QIODevice::WriteOnly);
    midOut.open(QIODevice::WriteOnly);
    result.written = prep::prepareMif({ mif, mid }, options, mifOut, midOut, result.report);
    return result;
}

PrepareOptions repair()
{
    PrepareOptions options;
    options.level = Level::Repair;
    return options;
}

PrepareOptions coarse()
{
    PrepareOptions options;
    options.tolerance = 3; // a chord over a right angle of radius 10 has the sagitta 2.93
    return options;
}

ImportOutcome import(const PreparedPair& pair)
{
    static const TempFiles files;
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    options.searchObjectDefs = true;
    options.encoding = pair.report.encoding;
    files.write(QStringLiteral("a.mid"), pair.mid);
    return importFiles<MifImport>(options, files.write(QStringLiteral("a.mif"), pair.mif));
}

QStringList one(const char* note)
{
    return QStringList{ QString::fromLatin1(note) };
}

} // namespace

class TestPrepareMif : public QObject {
    Q_OBJECT

private slots:
    void wholePair();
    void headers_data();
    void headers();
    void noMif_data();
    void noMif();
    void lines_data();
    void lines();
    void rows_data();
    void rows();
    void tabbedRows();
    void missingMid();
    void noColumns();
    void collection();
    void collectionOfPoints();
    void shapeOfNothing();
    void shapes_data();
    void shapes();
    void sagitta_data();
    void sagitta();
    void multipoint();
    void transform();
    void axesAndScale();
    void badObjects_data();
    void badObjects();
    void nameField();
    void encodings();
    void midFile();
    void twice_data();
    void twice();
};

void TestPrepareMif::wholePair()
{
    const QByteArray objects = "Point 1.50 2\n    Symbol (35,0,12)\nLine 0 0 5.0 6\n"
                               "Pline 3\n0 0\n1 1\n2 0\n    Pen (1,2,0)\n    Smooth\n"
                               "Pline Multiple 2\n  2\n0 0\n1 1\n  2\n2 2\n3 3\n"
                               "Region 2\n  4\n0 0\n9 0\n9 9\n0 0\n  4\n1 1\n2 1\n2 2\n1 1\n"
                               "    Brush (2,16777215,16777215)\n    Center 5 5\nNone\n"
                               "Text \"Region 1\"\n    0 0 5 5\n    Font (\"Arial\",0,0,0)\n";
    const QByteArray rows =
        "\"т1\",0\n\"л\",0\n\"п\",0\n\"м\",0\n\"ЗУ1\",75.5\n\"нет\",0\n\"\",0\n";
    for (const PrepareOptions& options : { repair(), PrepareOptions() }) {
        const PreparedPair result = prepared(header + objects, rows, options);
        QVERIFY(result.written);
        QCOMPARE(result.objects(), objects);
        QCOMPARE(result.mid, rows);
        QCOMPARE(result.notes(), QStringList());
        QVERIFY(result.mif.startsWith(
            "Version 300\nCharset \"WindowsCyrillic\"\nDelimiter \",\"\nColumns 2\n"));
    }
}

void TestPrepareMif::headers_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QStringList>("notes");
    QTest::newRow("blank line in front") << QByteArray(
        "\nVersion 300\nCharset \"Neutral\"\nDelimiter \",\"\nColumns 1\n  a Char(9)\n"
        "Data\n") << one("mif-header");
    QTest::newRow("no charset") << QByteArray(
        "Version 300\nDelimiter \",\"\nColumns 1\n  a Char(9)\nData\n")
                                << one("mif-header");
    QTest::newRow("other order") << QByteArray(
        "VERSION 300\nDELIMITER \",\"\nCHARSET \"Neutral\"\nColumns 1\n  a Char(9)\n"
        "data\n") << one("mif-header");
    QTest::newRow("charset of two words") << QByteArray(
        "Version 300\nCharset \"Windows Cyrillic\"\nDelimiter \",\"\nColumns 1\n"
        "  a Char(9)\nData\n") << one("mif-header");
    QTest::newRow("charset with a control character") << QByteArray(
        "Version 300\nCharset \"Neu\ftral\"\nDelimiter \",\"\nColumns 1\n  a Char(9)\n"
        "Data\n") << one("mif-header");
    QTest::newRow("data with a blank that is not ASCII") << QByteArray(
        "Version 300\nCharset \"Neutral\"\nDelimiter \",\"\nData\xA0\nLine 5 5 6 6\n"
        "Columns 1\n  a Char(9)\nData\n") << QStringList();
    QTest::newRow("data with a carriage return in it") << QByteArray(
        "Version 300\nCharset \"Neutral\"\nDelimiter \",\"\nDa\rta\nLine 5 5 6 6\n"
        "Columns 1\n  a Char(9)\nData\n") << QStringList();
    QTest::newRow("semicolon") << QByteArray(
        "Version 300\nCharset \"Neutral\"\nDelimiter \";\"\nColumns 1\n  a Char(9)\nDATA\n")
                               << QStringList();
}

void TestPrepareMif::headers()
{
    QFETCH(QByteArray, header);
    const PreparedPair result =
        prepared(header + "Line 0 0 1 1\n", QByteArray("\"x\"\n"), repair());
    QTEST(result.notes(), "notes");
    const ImportOutcome outcome = import(result);
    QCOMPARE(outcome.messages, QStringList());
    QCOMPARE(defsOf(outcome.objects), QStringList{ QStringLiteral("x") });
}

void TestPrepareMif::noMif_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no data") << QByteArray("Version 300\nCharset \"Neutral\"\nDelimiter \",\"\n");
    QTest::newRow("zeros") << QByteArray(1000, '\0');
    QTest::newRow("a drawing") << QByteArray("0\nSECTION\n2\nHEADER\n");
}

void TestPrepareMif::noMif()
{
    QFETCH(QByteArray, bytes);
    const PreparedPair result = prepared(bytes, QByteArray());
    QVERIFY(!result.written);
    QVERIFY(!result.report.failure.isEmpty());
    QVERIFY(result.mif.isEmpty() && result.mid.isEmpty());
}

void TestPrepareMif::lines_data()
{
    QTest::addColumn<QByteArray>("objects");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char* name, const char* objects, const char* expected) {
        QTest::newRow(name) << QByteArray(objects) << QByteArray(expected);
    };
    row("count on the next line", "Pline\n  2\n0 0\n1 1\n", "Pline 2\n0 0\n1 1\n");
    row("count of rings on the next line", "Region\n  1\n  3\n0 0\n1 1\n0 0\n",
        "Region 1\n  3\n0 0\n1 1\n0 0\n");
    row("blank line between rings", "Region 2\n  3\n0 0\n1 1\n0 0\n\n  3\n2 2\n3 3\n2 2\n",
        "Region 2\n  3\n0 0\n1 1\n0 0\n  3\n2 2\n3 3\n2 2\n");
    row("blank line between vertices", "Pline 2\n0 0\n\n1 1\n", "Pline 2\n0 0\n1 1\n");
    row("two vertices on a line", "Pline 3\n0 0 1 1\n2 2\n", "Pline 3\n0 0\n1 1\n2 2\n");
    // A no-break space parts words, too.
    row("a clause that reads as an object",
        "Pline 2\n0 0\n1 1\n    Pen (1,2,0)\nLine\xA0 5 5 6 6\n",
        "Pline 2\n0 0\n1 1\n    Pen (1,2,0)\n");
    row("a clause with a carriage return in it",
        "Pline 2\n0 0\n1 1\n    Pen (1,2,0)\r\nLi\rne 5 5 6 6\n",
        "Pline 2\n0 0\n1 1\n    Pen (1,2,0)\n");
    row("a text of several lines", "Text \"a\nLine 0 0 1 1\r\nb\"\n 0 0 1 1\n",
        "Text \"a\\nLine 0 0 1 1\\nb\"\n    0 0 1 1\n");
    row("a text that is missing", "Text\n 0 0 1 1\nNone\nText\n\"a\" 0 0 1 1\n",
        "None\nText\n\"a\"\n    0 0 1 1\n");
    row("multiple with one section", "Pline Multiple 1\n  2\n0 0\n1 1\n", "Pline 2\n0 0\n1 1\n");
}

void TestPrepareMif::lines()
{
    QFETCH(QByteArray, objects);
    const PreparedPair result = prepared(header + objects, QByteArray("\"x\",1\n"), repair());
    QTEST(result.objects(), "expected");
    QCOMPARE(import(result).messages, QStringList());
}

void TestPrepareMif::rows_data()
{
    QTest::addColumn<QByteArray>("rows");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QStringList>("notes");
    const auto row = [](const char* name, const char* rows, const char* expected,
                         const QStringList& notes) {
        QTest::newRow(name) << QByteArray(rows) << QByteArray(expected) << notes;
    };
    row("whole", "\"a\",1\n\"b\",2\n", "\"a\",1\n\"b\",2\n", {});
    row("line ends of DOS", "\"a\",1\r\n\"b\",2\r\n", "\"a\",1\n\"b\",2\n", {});
    row("no end of the last line", "\"a\",1\n\"b\",2", "\"a\",1\n\"b\",2\n", {});
    row("blank row", "\n\"b\",2\n", "\"\",\n\"b\",2\n", one("mid-rows"));
    row("value over two lines", "\"a\nb\",1\n\"c\",2\n", "\"a b\",1\n\"c\",2\n", one("mid-rows"));
    row("value with a blank line", "\"a\r\n\r\nb\",1\r\n\"c\",2\r\n", "\"a b\",1\n\"c\",2\n",
        one("mid-rows"));
    row("quote that nothing closes", "\"a,1\n\"b\",2\n", "\"a,1\n\"b\",2\n", {});
    row("one too few", "\"a\",1\n", "\"a\",1\n\"\",\n",
        { QStringLiteral("mid-rows"), QStringLiteral("mid-too-short") });
    row("one too many", "\"a\",1\n\"b\",2\n\"c\",3\n", "\"a\",1\n\"b\",2\n", one("mid-too-long"));
    row("blank lines at the end", "\"a\",1\n\"b\",2\n\n\n", "\"a\",1\n\"b\",2\n", {});
}

void TestPrepareMif::rows()
{
    QFETCH(QByteArray, rows);
    const PreparedPair result = prepared(header + "Line 0 0 1 1\nLine 2 2 3 3\n", rows);
    QTEST(result.mid, "expected");
    QTEST(result.notes(), "notes");
    QCOMPARE(import(result).messages, QStringList());
}

void TestPrepareMif::tabbedRows()
{
    // Without a line Delimiter it is a tab, which the readers do not take.
    const PreparedPair result =
        prepared("Version 300\nCharset \"Neutral\"\nColumns 3\n  a Char(9)\n  b Char(9)\n"
                 "  c Char(9)\nData\nLine 0 0 1 1\nLine 2 2 3 3\n",
            QByteArray("\tx,y\t1\n\"a\tb\"\t\"q\"\t\n"));
    QCOMPARE(result.mid, QByteArray(",\"x,y\",1\n\"a\tb\",\"q\",\n"));
    QCOMPARE(result.notes(),
        QStringList({ QStringLiteral("mif-delimiter"), QStringLiteral("mif-header") }));
    const PreparedPair quoted = prepared("Version 300\nCharset \"Neutral\"\nDelimiter \"\t\"\n"
                                         "Columns 1\n  a Char(9)\nData\nLine 0 0 1 1\n",
        QByteArray("ЗУ 1\n"));
    QCOMPARE(defsOf(import(quoted).objects), QStringList{ QStringLiteral("ЗУ 1") });
}

void TestPrepareMif::missingMid()
{
    const PreparedPair result = prepared(header + "Line 0 0 1 1\nNone\n", {});
    QCOMPARE(result.mid, QByteArray("\"\",\n\"\",\n"));
    QCOMPARE(result.notes(), one("mid-made"));
    QCOMPARE(
        describe(import(result).objects), QStringList{ QStringLiteral("об1 [т1 0 0; т2 1 1]") });
}

void TestPrepareMif::noColumns()
{
    const PreparedPair result = prepared(
        "Version 300\nCharset \"Neutral\"\nDelimiter \",\"\nColumns 0\nData\nLine 0 0 1 1\n",
        QByteArray("\n"));
    QCOMPARE(result.mid, QByteArray("\"\"\n"));
    QVERIFY(result.mif.contains("Columns 1\n  NAME Char(64)\n"));
}

void TestPrepareMif::collection()
{
    const PreparedPair result = prepared(header
            + "Collection 2\n  Region 1\n    3\n    0 0\n    1 1\n    0 0\n  Pline 2\n"
              "    5 5\n    6 6\n    Pen (1,2,0)\nLine 2 2 3 3\n",
        QByteArray("\"к\",1\n\"л\",2\n"), repair());
    QCOMPARE(result.objects(),
        QByteArray(
            "Region 1\n  3\n0 0\n1 1\n0 0\nPline 2\n5 5\n6 6\n    Pen (1,2,0)\nLine 2 2 3 3\n"));
    QCOMPARE(result.mid, QByteArray("\"к\",1\n\"к\",1\n\"л\",2\n"));
    QCOMPARE(result.notes(), one("collection-parts"));
    QCOMPARE(import(result).messages, QStringList());
}

void TestPrepareMif::collectionOfPoints()
{
    const PreparedPair result = prepared(header
            + "Collection 3\n  Multipoint 2\n    1 1\n    2 2\n  Region 1\n    3\n    0 0\n"
              "    1 1\n    0 0\n  Pline Multiple 2\n    2\n    5 5\n    6 6\n    2\n    7 7\n"
              "    8 8\nPoint 9 9\n",
        QByteArray("\"к\",1\n\"т\",2\n"));
    QCOMPARE(result.objects(),
        QByteArray("Point 1 1\nPoint 2 2\nRegion 1\n  3\n0 0\n1 1\n0 0\nPline Multiple 2\n  2\n5 "
                   "5\n6 6\n  2\n7 7\n8 8\nPoint 9 9\n"));
    QCOMPARE(result.mid, QByteArray("\"к\",1\n\"к\",1\n\"к\",1\n\"к\",1\n\"т\",2\n"));
    QCOMPARE(import(result).messages, QStringList());
}

/// A circle without an extent is no contour, and nothing else either.
void TestPrepareMif::shapeOfNothing()
{
    const PreparedPair result =
        prepared(header + "Ellipse 1 2 1 2\nPoint 3 4\n", QByteArray("a,1\nb,2\n"));
    QCOMPARE(result.objects(), QByteArray("Point 3 4\n"));
    QCOMPARE(result.mid, QByteArray("b,2\n"));
    QCOMPARE(result.report.notes().at(prep::Note::Incomplete), qint64(1));
}

void TestPrepareMif::shapes_data()
{
    QTest::addColumn<QByteArray>("object");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](const char* name, const char* object, const char* expected) {
        QTest::newRow(name) << QByteArray(object) << QByteArray(expected);
    };
    row("rectangle", "Rect 1.50 2 3 4.0\n    Pen (1,2,0)\n",
        "Region 1\n  5\n1.50 2\n3 2\n3 4.0\n1.50 4.0\n1.50 2\n    Pen (1,2,0)\n");
    row("ellipse", "Ellipse -10 -5 10 5\n", "Region 1\n  5\n10 0\n0 5\n-10 0\n0 -5\n10 0\n");
    row("ellipse from the other corner", "ELLIPSE 10 5 -10 -5\n",
        "Region 1\n  5\n10 0\n0 5\n-10 0\n0 -5\n10 0\n");
    // The corners are quarters of circles with the diameter 4.
    row("rounded rectangle", "RoundRect 0 0 20 10 4\n",
        "Region 1\n  9\n20 8\n18 10\n2 10\n0 8\n0 2\n2 0\n18 0\n20 2\n20 8\n");
    row("rounding on the next line, larger than the rectangle", "Roundrect 0 0 20 10\n  40\n",
        "Region 1\n  5\n20 5\n10 10\n0 5\n10 0\n20 5\n");
    row("arc", "Arc -10 -10 10 10\n  0 90\n", "Pline 2\n10 0\n0 10\n");
    row("arc over the start of the circle", "Arc -10 -5 10 5 270 90\n",
        "Pline 3\n0 -5\n10 0\n0 5\n");
    row("whole arc", "Arc -10 -10 10 10\n  0 360\n", "Pline 5\n10 0\n0 10\n-10 0\n0 -10\n10 0\n");
}

void TestPrepareMif::shapes()
{
    QFETCH(QByteArray, object);
    const PreparedPair result = prepared(header + object, QByteArray("\"x\",1\n"), coarse());
    QTEST(result.objects(), "expected");
    QCOMPARE(result.notes(), one("outlines"));
    QCOMPARE(import(result).messages, QStringList());
    // No shape changes at the level of repair.
    QCOMPARE(prepared(header + object, QByteArray("\"x\",1\n"), repair()).notes(), QStringList());
}

void TestPrepareMif::sagitta_data()
{
    QTest::addColumn<QByteArray>("object");
    QTest::addColumn<Curve>("curve");
    const auto arc = [](double x, double y, double a, double b, double start, double sweep) {
        return Curve([=](double part) {
            const double t = qDegreesToRadians(start + sweep * part);
            return prep::Planar{ x + a * std::cos(t), y + b * std::sin(t) };
        });
    };
    QTest::newRow("arc") << QByteArray("Arc -95 -17 105 3\n  300 200\n")
                         << arc(5, -7, 100, 10, 300, 260);
    QTest::newRow("circle") << QByteArray("Ellipse -95 -107 105 93\n")
                            << arc(5, -7, 100, 100, 0, 360);
    QTest::newRow("ellipse") << QByteArray("Ellipse -5 -107 15 93\n")
                             << arc(5, -7, 10, 100, 0, 360);
    // Quarters of circles around (180, 80), (20, 80), (20, 20), (180, 20), and what is between.
    QTest::newRow("rounded rectangle")
        << QByteArray("RoundRect 0 0 200 100 40\n") << Curve([arc](double part) {
               const double place = std::min(part * 4, 3.999);
               const int quarter = static_cast<int>(place);
               const double x = quarter == 0 || quarter == 3 ? 180 : 20;
               return arc(x, quarter < 2 ? 80 : 20, 20, 20, 90 * quarter, 90)(place - quarter);
           });
}

void TestPrepareMif::sagitta()
{
    QFETCH(QByteArray, object);
    QFETCH(Curve, curve);
    const auto chordsOf = [&object](const QByteArray& head, const PrepareOptions& options) {
        const QList<QByteArray> lines =
            prepared(head + object, QByteArray("\"x\",1\n"), options).objects().split('\n');
        std::vector<prep::Planar> places;
        for (const QByteArray& line : lines) {
            const QList<QByteArray> words = line.split(' ');
            bool isNumber = false;
            const double x = words.first().toDouble(&isNumber);
            if (isNumber && words.size() == 2)
                places.push_back({ x, words.last().toDouble() });
        }
        return places;
    };
    PrepareOptions options;
    for (const double tolerance : { 0.001, 0.01, 1.0 }) {
        options.tolerance = tolerance;
        const std::vector<prep::Planar> chords = chordsOf(header, options);
        QVERIFY(deviation(curve, chords) <= tolerance + 1e-9);
    }
    // Multiplied, the curve keeps its chords; what Transform makes of it is what is meant.
    const size_t plain = chordsOf(header, options).size();
    options.scale = 1000;
    QCOMPARE(chordsOf(header, options).size(), plain);
    options.scale = 1;
    options.tolerance = 100;
    QByteArray transformed = header;
    transformed.replace("Columns", "Transform 100,100,0,0\nColumns");
    QCOMPARE(chordsOf(transformed, options).size(), plain);
}

void TestPrepareMif::multipoint()
{
    const PreparedPair result = prepared(
        header + "MultiPoint 2\n1.0 2\n3 4\n    Symbol (35,0,12)\n", QByteArray("\"т\",1\n"));
    QCOMPARE(result.objects(), QByteArray("Point 1.0 2\nPoint 3 4\n"));
    QCOMPARE(result.mid, QByteArray("\"т\",1\n\"т\",1\n"));
}

void TestPrepareMif::transform()
{
    QByteArray transformed = header;
    transformed.replace("Columns", "Transform 0.01,0,100,-50\nColumns");
    const PreparedPair result =
        prepared(transformed + "Pline 2\n100 60.5\n200 70\n", QByteArray("\"x\",1\n"));
    QCOMPARE(result.objects(), QByteArray("Pline 2\n101 10.5\n102 20\n"));
    QCOMPARE(result.notes(), one("transform"));
    QVERIFY(!result.mif.contains("Transform"));
    const PreparedPair kept =
        prepared(transformed + "Pline 2\n100 60.5\n200 70\n", QByteArray("\"x\",1\n"), repair());
    QVERIFY(kept.mif.contains("\nTransform 0.01,0,100,-50\n"));
    QCOMPARE(kept.objects(), QByteArray("Pline 2\n100 60.5\n200 70\n"));
}

void TestPrepareMif::axesAndScale()
{
    PrepareOptions options;
    options.swapXY = true;
    QCOMPARE(prepared(header + "Line 1.0 2 3 4.50\n", QByteArray("\"x\",1\n"), options).objects(),
        QByteArray("Line 2 1.0 4.50 3\n"));
    options.scale = 100;
    QCOMPARE(prepared(header + "Line 1.0 2 3 4.50\n", QByteArray("\"x\",1\n"), options).objects(),
        QByteArray("Line 200 100 450 300\n"));
}

void TestPrepareMif::badObjects_data()
{
    QTest::addColumn<QByteArray>("object");
    for (const char* object : { "Line 0 0 1\n", "Line 0 0 1 x\n", "Point 1,5 2\n", "Pline 1\n0 0\n",
             "Pline x\n0 0\n1 1\n", "Pline 3\n0 0\n1 1\n", "Pline 2000000000\n0 0\n", "Pline -1\n",
             "Region 1\n  2\n0 0\n1 1\n", "Region 2\n  3\n0 0\n1 1\n0 0\n", "Rect 0 0 1\n",
             "MultiPoint 2\n0 0\n", "Region -1\n", "Pline Multiple 0\n", "Pline 2\n0 0\n1 nan\n" })
        QTest::newRow(object) << QByteArray(object);
}

void TestPrepareMif::badObjects()
{
    QFETCH(QByteArray, object);
    const PreparedPair result = prepared(header + "Line 0 0 1 1\n" + object + "Line 2 2 3 3\n",
        QByteArray("\"a\",1\n\"b\",2\n\"c\",3\n"));
    QCOMPARE(result.objects(), QByteArray("Line 0 0 1 1\nLine 2 2 3 3\n"));
    QCOMPARE(result.mid, QByteArray("\"a\",1\n\"c\",3\n"));
    QCOMPARE(result.notes(), one("incomplete"));
    QVERIFY(result.report.hasLosses());
}

void TestPrepareMif::nameField()
{
    PrepareOptions options;
    options.nameField = QStringLiteral("AREA");
    const PreparedPair result = prepared(
        header + "Line 0 0 1 1\nLine 2 2 3 3\n", QByteArray("\"a, b\",1.5\n\"c\",2\n"), options);
    QCOMPARE(result.mid, QByteArray("1.5,\"a, b\"\n2,\"c\"\n"));
    QVERIFY(result.mif.contains("Columns 2\n  area Decimal(10,2)\n  name Char(20)\n"));
    QCOMPARE(result.notes(), one("name-field"));
    options.nameField = QStringLiteral("number");
    QVERIFY(!prepared(header, QByteArray(), options).written);
}

void TestPrepareMif::encodings()
{
    const QTextCodec* const windows = QTextCodec::codecForName("Windows-1251");
    const QByteArray rows = windows->fromUnicode(QStringLiteral("\"Участок\",1\n"));
    const PreparedPair kept = prepared(header + "Line 0 0 1 1\n", rows);
    QCOMPARE(kept.mid, rows);
    QCOMPARE(kept.report.encoding, QByteArray("windows-1251"));
    PrepareOptions options;
    options.encoding = "UTF-8";
    const PreparedPair changed = prepared(header + "Line 0 0 1 1\n", rows, options);
    QCOMPARE(changed.mid, QByteArray("\"Участок\",1\n"));
    QVERIFY(changed.mif.contains("Charset \"UTF-8\"\n"));
    QCOMPARE(changed.notes(), one("transcoded"));
}

void TestPrepareMif::midFile()
{
    const TempFiles files;
    const QString mif = files.write(QStringLiteral("Plan.MIF"), "x");
    QCOMPARE(prep::midFileOf(mif), QString());
    const QString upper = files.write(QStringLiteral("PLAN.MID"), "x");
    QCOMPARE(prep::midFileOf(mif), upper);
    const QString usual = files.write(QStringLiteral("Plan.MId"), "x");
    QCOMPARE(prep::midFileOf(mif), usual);
}

void TestPrepareMif::twice_data()
{
    QTest::addColumn<QByteArray>("objects");
    QTest::addColumn<PrepareOptions>("options");
    const QByteArray objects =
        "Collection 1\n Rect 0 0 1 1\nArc 0 0 5 5 0 77\nMultipoint 2\n1 1\n2 2\n"
        "Region 1\n 3\n0 0\n1 0\n1 1\nText \"a\nb\" 0 0 1 1\nNone\n";
    QTest::newRow("repaired") << objects << repair();
    QTest::newRow("flattened") << objects << PrepareOptions();
}

void TestPrepareMif::twice()
{
    QFETCH(QByteArray, objects);
    QFETCH(PrepareOptions, options);
    const PreparedPair once = prepared(
        "Version 300\nColumns 1\n  a Char(9)\nData\n" + objects, QByteArray("к\n\nb\n"), options);
    const PreparedPair again = prepared(once.mif, once.mid, options);
    QCOMPARE(again.mif, once.mif);
    QCOMPARE(again.mid, once.mid);
    QCOMPARE(again.notes(), QStringList());
    QCOMPARE(import(once).messages, QStringList());
}

QTEST_APPLESS_MAIN(TestPrepareMif)
#include "tst_preparemif.moc"
