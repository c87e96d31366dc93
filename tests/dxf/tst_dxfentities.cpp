#include "drawing.h"
#include "importrun.h"

#include <QtTest>

namespace {

/// The entity stands at the end of a whole drawing, or the file breaks off after it.
enum class Ending { Whole, Open };

} // namespace

/// The readers of single entities. The drawings begin with ten lines: the entity of a row stands
/// from line 11 on, two lines a pair.
class TestDxfEntities : public QObject {
    Q_OBJECT

private:
    TempFiles m_folder;

    static QStringList lines(const char* entities, Ending ending)
    {
        return ending == Ending::Whole ? drawing(entities) : openDrawing(entities);
    }

    /// Columns of a table of point passes.
    static void addPassColumns()
    {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("errorLine");
    }

    static void addRow(const char* name, const char* entities, const char* expected,
        int errorLine = 0, Ending ending = Ending::Whole)
    {
        QTest::newRow(name) << lines(entities, ending) << QString::fromUtf8(expected) << errorLine;
    }

    static QStringList expectedMessages(int errorLine)
    {
        return errorLine ? QStringList{ readError(errorLine) } : QStringList();
    }

    /// Runs the point pass alone over the lines of a row.
    bool runPointPass(OpenDxfImport& import)
    {
        QFETCH(QStringList, lines);
        QFETCH(int, errorLine);
        const StatusLog log;
        import.setEncoding("UTF-8");
        if (!import.open(m_folder.write(QStringLiteral("points.dxf"), encoded(lines))))
            return false;
        const bool result = import.loadPoints();
        return result == (errorLine == 0) && log.messages() == expectedMessages(errorLine);
    }

    void checkObjects(const ImportOptions& options = numbered())
    {
        QFETCH(QStringList, lines);
        QFETCH(QString, expected);
        QFETCH(int, errorLine);
        const ImportOutcome outcome = importDrawing(options, lines);
        QCOMPARE(describeAll(outcome.objects), expected);
        QCOMPARE(outcome.messages, expectedMessages(errorLine));
        QCOMPARE(outcome.result, errorLine == 0);
    }

private slots:
    void point_data();
    void point();
    void text_data();
    void text();
    void line_data();
    void line();
    void polyline_data();
    void polyline();
    void lwpolyline_data();
    void lwpolyline();
    void closingCopyUsesNoNumberAndNoSearch();
    void closingCopyOfExchangedVertices();
    void largeCountSetsNoMemoryAside();
};

void TestDxfEntities::point_data()
{
    addPassColumns();
    addRow("POINT", "0 POINT, 8 layer, 10 5, 20 6, 30 7", "<null> 5 6");
    addRow("INSERT", "0 INSERT, 2 name, 10 5, 20 6", "<null> 5 6");
    addRow("CIRCLE takes its centre", "0 CIRCLE, 10 5, 20 6, 40 9", "<null> 5 6");
    addRow("ELLIPSE takes its centre", "0 ELLIPSE, 10 5, 20 6, 11 1, 21 2", "<null> 5 6");
    addRow("other entities are passed over",
        "0 ARC, 10 1, 20 2, 0 LINE, 10 1, 20 2, 0 point, 10 1, 20 2, 0 POINTS, 10 1, 20 2", "");
    addRow("20 before 10", "0 POINT, 20 6, 10 5", "<null> 5 6");
    addRow("several keep their order", "0 POINT, 10 9, 20 1, 0 CIRCLE, 10 5, 20 6",
        "<null> 9 1; <null> 5 6");
    addRow(
        "same place twice", "0 POINT, 10 9, 20 1, 0 POINT, 10 9, 20 1", "<null> 9 1; <null> 9 1");
    addRow("forms of numbers", "0 POINT, 10 -1.5e2, 20 .5", "<null> -150 0.5");
    addRow("nan and inf are numbers", "0 POINT, 10 nan, 20 -inf", "<null> nan -inf");
    addRow("code that comes again overwrites", "0 POINT, 10 5, 10 7, 20 6", "<null> 7 6");
    addRow("code that comes again when all are seen is skipped", "0 POINT, 10 5, 20 6, 10 7",
        "<null> 5 6");
    addRow("missing 20 comes from a later entity",
        "0 POINT, 10 5, 0 LINE, 8 a, 20 6, 0 POINT, 10 1, 20 2", "<null> 5 6; <null> 1 2");
    addRow("missing 20 comes from a later entity, which overwrites 10 too",
        "0 POINT, 10 5, 0 CIRCLE, 10 7, 20 8", "<null> 7 8");
    addRow("missing code is taken across the end of the section",
        "0 POINT, 10 5, 0 ENDSEC, 0 SECTION, 2 OBJECTS, 20 6, 0 POINT, 10 1, 20 2",
        "<null> 5 6; <null> 1 2");
    addRow("complete at the end of the file", "0 POINT, 10 5, 20 6", "<null> 5 6", 0, Ending::Open);
    addRow("20 is no number", "0 POINT, 10 5.0, 20 abc", "", 16);
    addRow("10 is no number", "0 POINT, 10 abc, 20 5", "", 14);
    addRow("10 is no number when it comes again", "0 POINT, 10 5, 10 abc, 20 5", "", 16);
    addRow("blank number", "0 POINT, 10 , 20 5", "", 14);
    addRow("decimal comma", "0 POINT, 10 1, 20 1,5", "", 16);
    addRow("two numbers", "0 POINT, 10 1 2, 20 5", "", 14);
    addRow("file ends", "0 POINT, 10 5", "", 14, Ending::Open);
    addRow("file ends at once", "0 POINT", "", 12, Ending::Open);
    // After 0/ENDSEC and 0/EOF, lines 15 to 18, there is nothing to take 20 from.
    addRow("missing code is found nowhere", "0 POINT, 10 5", "", 18);
    addRow("earlier points stay", "0 POINT, 10 1, 20 2, 0 POINT, 10 x", "<null> 1 2", 20);
    QTest::newRow("blank code line")
        << openDrawing("0 POINT, 10 5") + QStringList{ QString() } << QString() << 15;
    QTest::newRow("value line missing")
        << openDrawing("0 POINT, 10 5") + QStringList{ QStringLiteral("20") } << QString() << 16;
}

void TestDxfEntities::point()
{
    QFETCH(QString, expected);
    OpenDxfImport import;
    QVERIFY(runPointPass(import));
    QCOMPARE(describeAll(pointsOf(import.points)), expected);
    QVERIFY(import.labels.isEmpty());
}

void TestDxfEntities::text_data()
{
    addPassColumns();
    addRow("plain", "0 TEXT, 8 layer, 10 5, 20 6, 30 0, 40 2.5, 1 ЗУ1", "ЗУ1 5 6");
    addRow("codes in any order", "0 TEXT, 1 ЗУ1, 20 6, 10 5", "ЗУ1 5 6");
    addRow("text is decoded", "0 TEXT, 10 5, 20 6, 1 %%c%%065", "ØA 5 6");
    addRow("text is trimmed, but not within", "0 TEXT, 10 5, 20 6, 1   ЗУ  1  ", "ЗУ  1 5 6");
    addRow("text of blanks is empty", "0 TEXT, 10 5, 20 6, 1   ", " 5 6");
    addRow("texts keep the order of the file", "0 TEXT, 10 9, 20 6, 1 б, 0 TEXT, 10 5, 20 6, 1 а",
        "б 9 6; а 5 6");
    addRow("blank text is empty", "0 TEXT, 10 5, 20 6, 1 ", " 5 6");
    addRow("MTEXT, ATTRIB and ATTDEF are no texts",
        "0 MTEXT, 10 5, 20 6, 1 а, 0 ATTRIB, 10 5, 20 6, 1 б, 0 ATTDEF, 10 5, 20 6, 1 в, "
        "0 TEXT, 10 5, 20 6, 1 г",
        "г 5 6");
    addRow("code 1 twice keeps the last", "0 TEXT, 1 а, 10 5, 20 6, 1 б", "б 5 6");
    addRow("10 twice keeps the last", "0 TEXT, 10 1, 20 6, 10 5, 1 а", "а 5 6");
    addRow("only the last 10 must be a number", "0 TEXT, 10 abc, 20 6, 10 5, 1 а", "а 5 6");
    addRow("last 10 is no number", "0 TEXT, 10 5, 20 6, 10 abc, 1 а", "", 22);
    addRow("72, 11 and 21", "0 TEXT, 10 5, 20 6, 1 а, 72 1, 11 7, 21 8", "а 7 8");
    addRow("73, 11 and 21", "0 TEXT, 10 5, 20 6, 1 а, 11 7, 21 8, 73 2", "а 7 8");
    addRow("72 and 73", "0 TEXT, 10 5, 20 6, 1 а, 72 1, 11 7, 21 8, 73 2", "а 7 8");
    addRow("negative 72 is a justification", "0 TEXT, 10 5, 20 6, 1 а, 72 -1, 11 7, 21 8", "а 7 8");
    addRow("72 without 21", "0 TEXT, 10 5, 20 6, 1 а, 72 1, 11 7", "а 5 6");
    addRow("72 without 11", "0 TEXT, 10 5, 20 6, 1 а, 72 1, 21 7", "а 5 6");
    addRow(
        "72 without 21: 11 need not be a number", "0 TEXT, 10 5, 20 6, 1 а, 72 1, 11 x", "а 5 6");
    addRow("72 and 73 are 0", "0 TEXT, 10 5, 20 6, 1 а, 72 0, 11 7, 21 8, 73 0", "а 5 6");
    addRow("no 72 and 73: 11 and 21 are not looked at", "0 TEXT, 10 5, 20 6, 1 а, 11 x, 21 y",
        "а 5 6");
    addRow(
        "72 that is no number counts as 0", "0 TEXT, 10 5, 20 6, 1 а, 72 abc, 11 7, 21 8", "а 5 6");
    addRow("72 that is no integer counts as 0", "0 TEXT, 10 5, 20 6, 1 а, 72 1.0, 11 7, 21 8",
        "а 5 6");
    addRow("the last 72 wins", "0 TEXT, 10 5, 20 6, 1 а, 72 1, 11 7, 21 8, 72 0", "а 5 6");
    addRow("only the last 21 must be a number", "0 TEXT, 10 5, 20 6, 1 а, 72 1, 11 7, 21 x, 21 8",
        "а 7 8");
    addRow("last entity of the file", "0 TEXT, 10 5, 20 6, 1 а", "а 5 6", 0, Ending::Open);
    addRow("the entity after a text is not lost",
        "0 TEXT, 10 5, 20 6, 1 а, 0 TEXT, 10 7, 20 8, 1 б, 0 LINE, 10 1", "а 5 6; б 7 8");
    // A text is judged when the 0 of the next entity has been read.
    addRow("no 1", "0 TEXT, 10 5, 20 6", "", 18);
    addRow("no 10", "0 TEXT, 1 а, 20 6", "", 18);
    addRow("no 20", "0 TEXT, 10 5, 1 а", "", 18);
    addRow("nothing", "0 TEXT", "", 14);
    addRow("no 1 at the end of the file", "0 TEXT, 10 5, 20 6", "", 16, Ending::Open);
    addRow("nothing at the end of the file", "0 TEXT", "", 12, Ending::Open);
    addRow("10 is no number", "0 TEXT, 10 abc, 20 6, 1 а", "", 20);
    addRow("20 is no number", "0 TEXT, 10 5, 20 abc, 1 а", "", 20);
    addRow("10 must be a number even if 11 is used", "0 TEXT, 10 abc, 20 6, 1 а, 72 1, 11 7, 21 8",
        "", 26);
    addRow("11 is no number", "0 TEXT, 10 5, 20 6, 1 а, 72 1, 11 abc, 21 8", "", 26);
    addRow("21 is no number", "0 TEXT, 10 5, 20 6, 1 а, 72 1, 11 7, 21 abc", "", 26);
    QTest::newRow("blank code line")
        << openDrawing("0 TEXT, 10 5, 20 6, 1 а") + QStringList{ QStringLiteral(" ") } << QString()
        << 19;
    QTest::newRow("value line of the text is missing at the end of the file")
        << openDrawing("0 TEXT, 10 5, 20 6") + QStringList{ QStringLiteral("1") }
        << QStringLiteral("<null> 5 6") << 0;
}

void TestDxfEntities::text()
{
    QFETCH(QString, expected);
    OpenDxfImport import;
    QVERIFY(runPointPass(import));
    QCOMPARE(describeAll(import.labels.texts()), expected);
    QCOMPARE(import.points.size(), 0);
}

void TestDxfEntities::line_data()
{
    addPassColumns();
    addRow("two vertices in order", "0 LINE, 8 0, 10 0, 20 0, 30 0, 11 10, 21 0, 31 0",
        "1 [1 0 0; 2 10 0]");
    addRow("codes in any order", "0 LINE, 21 4, 11 3, 20 2, 10 1", "1 [1 1 2; 2 3 4]");
    addRow("lines with a common end are not joined",
        "0 LINE, 10 0, 20 0, 11 1, 21 0, 0 LINE, 10 1, 20 0, 11 1, 21 1",
        "1 [1 0 0; 2 1 0]; 2 [2 1 0; 3 1 1]");
    addRow("both ends at one place", "0 LINE, 10 1, 20 2, 11 1, 21 2", "1 [1 1 2; 1 1 2]");
    addRow("code that comes again overwrites", "0 LINE, 10 9, 20 2, 11 3, 10 1, 21 4",
        "1 [1 1 2; 2 3 4]");
    addRow("missing codes come from a later entity",
        "0 LINE, 10 1, 20 2, 0 CIRCLE, 11 3, 0 LINE, 21 4, 10 9, 20 9", "1 [1 1 2; 2 3 4]");
    addRow("complete at the end of the file", "0 LINE, 10 1, 20 2, 11 3, 21 4", "1 [1 1 2; 2 3 4]",
        0, Ending::Open);
    addRow("10 is no number", "0 LINE, 10 x, 20 2, 11 3, 21 4", "", 14);
    addRow("20 is no number", "0 LINE, 10 1, 20 x, 11 3, 21 4", "", 16);
    addRow("11 is no number", "0 LINE, 10 1, 20 2, 11 x, 21 4", "", 18);
    addRow("21 is no number", "0 LINE, 10 1, 20 2, 11 3, 21 x", "", 20);
    addRow("file ends", "0 LINE, 10 1, 20 2, 11 3", "", 18, Ending::Open);
    addRow("file ends at once", "0 LINE", "", 12, Ending::Open);
    addRow("missing code is found nowhere", "0 LINE, 10 1, 20 2, 11 3", "", 22);
    addRow("earlier objects stay", "0 LINE, 10 1, 20 2, 11 3, 21 4, 0 LINE, 10 1, 20 x",
        "1 [1 1 2; 2 3 4]", 26);
    QTest::newRow("blank code line")
        << openDrawing("0 LINE, 10 1, 20 2") + QStringList{ QString() } << QString() << 17;
}

void TestDxfEntities::line()
{
    checkObjects();
}

void TestDxfEntities::polyline_data()
{
    addPassColumns();
    addRow("open", "0 POLYLINE, 70 0, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 SEQEND",
        "1 [1 0 0; 2 4 0]");
    addRow("without 70", "0 POLYLINE, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 SEQEND",
        "1 [1 0 0; 2 4 0]");
    addRow("70 is 1: closed",
        "0 POLYLINE, 66 1, 10 0, 20 0, 30 0, 70 1, 0 VERTEX, 8 0, 10 0, 20 0, 30 0, "
        "0 VERTEX, 10 4, 20 0, 0 VERTEX, 10 4, 20 3, 0 SEQEND, 8 0",
        "1 [1 0 0; 2 4 0; 3 4 3; 1 0 0]");
    addRow("70 is 129: open",
        "0 POLYLINE, 70 129, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 SEQEND",
        "1 [1 0 0; 2 4 0]");
    addRow("70 is 9: open",
        "0 POLYLINE, 70 9, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 SEQEND",
        "1 [1 0 0; 2 4 0]");
    addRow("70 is 01: open",
        "0 POLYLINE, 70 01, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 SEQEND",
        "1 [1 0 0; 2 4 0]");
    addRow("a later 70 does not open it again",
        "0 POLYLINE, 70 1, 70 0, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 SEQEND",
        "1 [1 0 0; 2 4 0; 1 0 0]");
    addRow("70 of a vertex closes it",
        "0 POLYLINE, 70 0, 0 VERTEX, 10 0, 20 0, 70 1, 0 VERTEX, 10 4, 20 0, 70 0, 0 SEQEND",
        "1 [1 0 0; 2 4 0; 1 0 0]");
    addRow("70 of a vertex before its coordinates is skipped",
        "0 POLYLINE, 70 0, 0 VERTEX, 70 1, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 SEQEND",
        "1 [1 0 0; 2 4 0]");
    addRow("its own 10 and 20 are no vertex",
        "0 POLYLINE, 10 7, 20 7, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 SEQEND",
        "1 [1 0 0; 2 4 0]");
    addRow("closed and the last vertex is the first",
        "0 POLYLINE, 70 1, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 VERTEX, 10 0, 20 0, "
        "0 SEQEND",
        "1 [1 0 0; 2 4 0; 1 0 0]");
    addRow("open and the last vertex is the first",
        "0 POLYLINE, 70 0, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 VERTEX, 10 0, 20 0, "
        "0 SEQEND",
        "1 [1 0 0; 2 4 0; 1 0 0]");
    addRow("equal vertices are not merged",
        "0 POLYLINE, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 0, 20 0, 0 SEQEND", "1 [1 0 0; 1 0 0]");
    addRow("missing 20 of a vertex comes from the next one",
        "0 POLYLINE, 0 VERTEX, 10 0, 0 VERTEX, 10 4, 20 1, 0 VERTEX, 10 5, 20 5, 0 SEQEND",
        "1 [1 4 1; 2 5 5]");
    addRow("SEQEND is the last pair of the file",
        "0 POLYLINE, 70 1, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 SEQEND",
        "1 [1 0 0; 2 4 0; 1 0 0]", 0, Ending::Open);
    addRow("one vertex", "0 POLYLINE, 0 VERTEX, 10 0, 20 0, 0 SEQEND", "<null> [1 0 0]", 20);
    addRow("one vertex, closed", "0 POLYLINE, 70 1, 0 VERTEX, 10 0, 20 0, 0 SEQEND",
        "<null> [1 0 0]", 22);
    addRow("no vertex leaves its empty object", "0 POLYLINE, 70 1, 0 SEQEND", "<null> []", 16);
    addRow(
        "file ends at once leaves its empty object", "0 POLYLINE", "<null> []", 12, Ending::Open);
    addRow("file ends before SEQEND", "0 POLYLINE, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0",
        "<null> [1 0 0; 2 4 0]", 24, Ending::Open);
    addRow("file ends in a vertex", "0 POLYLINE, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4",
        "<null> [1 0 0]", 22, Ending::Open);
    addRow("another entity instead of SEQEND",
        "0 POLYLINE, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0, 0 LINE, 10 0, 20 0, 11 1, 21 1",
        "<null> [1 0 0; 2 4 0]", 26);
    addRow("ENDSEC instead of SEQEND", "0 POLYLINE, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 0",
        "<null> [1 0 0; 2 4 0]", 26);
    addRow("bad vertex", "0 POLYLINE, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 4, 20 x, 0 SEQEND",
        "<null> [1 0 0]", 24);
    addRow("objects before and after the failing one",
        "0 LINE, 10 0, 20 0, 11 1, 21 1, 0 POLYLINE, 0 EOF, 0 LINE, 10 0, 20 0, 11 1, 21 1",
        "1 [1 0 0; 2 1 1]; <null> []", 24);
    QTest::newRow("blank code line") << openDrawing("0 POLYLINE, 70 1") + QStringList{ QString() }
                                     << QStringLiteral("<null> []") << 15;
    QTest::newRow("blank code line in a vertex")
        << openDrawing("0 POLYLINE, 0 VERTEX, 10 0") + QStringList{ QString() }
        << QStringLiteral("<null> []") << 17;
}

void TestDxfEntities::polyline()
{
    checkObjects();
}

void TestDxfEntities::lwpolyline_data()
{
    addPassColumns();
    addRow("open", "0 LWPOLYLINE, 90 4, 70 0, 10 0, 20 0, 10 4, 20 0, 10 4, 20 3, 10 0, 20 3",
        "1 [1 0 0; 2 4 0; 3 4 3; 4 0 3]");
    addRow("closed", "0 LWPOLYLINE, 90 4, 70 1, 10 0, 20 0, 10 4, 20 0, 10 4, 20 3, 10 0, 20 3",
        "1 [1 0 0; 2 4 0; 3 4 3; 4 0 3; 1 0 0]");
    addRow("two vertices", "0 LWPOLYLINE, 90 2, 10 0, 20 0, 10 4, 20 0", "1 [1 0 0; 2 4 0]");
    addRow("two vertices, closed", "0 LWPOLYLINE, 90 2, 70 1, 10 0, 20 0, 10 4, 20 0",
        "1 [1 0 0; 2 4 0; 1 0 0]");
    addRow("70 is 129: closed", "0 LWPOLYLINE, 90 2, 70 129, 10 0, 20 0, 10 4, 20 0",
        "1 [1 0 0; 2 4 0; 1 0 0]");
    addRow("70 is 128: open", "0 LWPOLYLINE, 90 2, 70 128, 10 0, 20 0, 10 4, 20 0",
        "1 [1 0 0; 2 4 0]");
    addRow("70 is -1: closed", "0 LWPOLYLINE, 90 2, 70 -1, 10 0, 20 0, 10 4, 20 0",
        "1 [1 0 0; 2 4 0; 1 0 0]");
    addRow("the last 70 wins: open", "0 LWPOLYLINE, 90 2, 70 1, 10 0, 20 0, 70 0, 10 4, 20 0",
        "1 [1 0 0; 2 4 0]");
    addRow("the last 70 wins: closed", "0 LWPOLYLINE, 90 2, 70 0, 10 0, 20 0, 70 1, 10 4, 20 0",
        "1 [1 0 0; 2 4 0; 1 0 0]");
    addRow("70 after the last vertex is skipped",
        "0 LWPOLYLINE, 90 2, 10 0, 20 0, 10 4, 20 0, 70 1", "1 [1 0 0; 2 4 0]");
    addRow("70 that is no number counts as 0 and is no error",
        "0 LWPOLYLINE, 90 2, 70 1, 70 abc, 10 0, 20 0, 10 4, 20 0", "1 [1 0 0; 2 4 0]");
    addRow("20 before 10", "0 LWPOLYLINE, 90 2, 20 1, 10 0, 20 2, 10 4", "1 [1 0 1; 2 4 2]");
    addRow("a coordinate that comes again overwrites",
        "0 LWPOLYLINE, 90 2, 10 9, 10 0, 20 0, 10 4, 20 0", "1 [1 0 0; 2 4 0]");
    addRow("other codes are skipped",
        "0 LWPOLYLINE, 5 1F, 330 2, 100 AcDbEntity, 8 0, 100 AcDbPolyline, 90 2, 43 0.0, 38 1, "
        "10 0, 20 0, 40 0, 41 0, 42 1, 91 3, 10 4, 20 0, 42 1, 210 0, 220 0, 230 -1",
        "1 [1 0 0; 2 4 0]");
    addRow("vertices beyond the count are skipped",
        "0 LWPOLYLINE, 90 2, 10 0, 20 0, 10 4, 20 0, 10 5, 20 5", "1 [1 0 0; 2 4 0]");
    addRow("complete at the end of the file", "0 LWPOLYLINE, 90 2, 10 0, 20 0, 10 4, 20 0",
        "1 [1 0 0; 2 4 0]", 0, Ending::Open);
    addRow("closed and the last vertex is the first",
        "0 LWPOLYLINE, 90 3, 70 1, 10 0, 20 0, 10 4, 20 0, 10 0, 20 0", "1 [1 0 0; 2 4 0; 1 0 0]");
    addRow("closed and the last vertex lies beside the first",
        "0 LWPOLYLINE, 90 3, 70 1, 10 0, 20 0, 10 4, 20 0, 10 0.0078125, 20 -0.0078125",
        "1 [1 0 0; 2 4 0; 1 0.0078125 -0.0078125]");
    addRow("closed and the last vertex lies off the first in y",
        "0 LWPOLYLINE, 90 3, 70 1, 10 0, 20 0, 10 4, 20 0, 10 0, 20 0.015625",
        "1 [1 0 0; 2 4 0; 3 0 0.015625; 1 0 0]");
    addRow("closed on the exact tolerance",
        "0 LWPOLYLINE, 90 3, 70 1, 10 0, 20 0, 10 4, 20 0, 10 0.01, 20 0.01",
        "1 [1 0 0; 2 4 0; 1 0.01 0.01]");
    addRow("open and the last vertex is the first",
        "0 LWPOLYLINE, 90 3, 70 0, 10 0, 20 0, 10 4, 20 0, 10 0, 20 0", "1 [1 0 0; 2 4 0; 1 0 0]");

    addRow("count is 1", "0 LWPOLYLINE, 90 1, 10 0, 20 0, 10 4, 20 0", "<null> []", 18);
    addRow("count is 0", "0 LWPOLYLINE, 90 0, 10 0, 20 0, 10 4, 20 0", "<null> []", 18);
    addRow("count is negative", "0 LWPOLYLINE, 90 -2147483648, 10 0, 20 0, 10 4, 20 0", "<null> []",
        18);
    addRow("no count", "0 LWPOLYLINE, 10 0, 20 0, 10 4, 20 0", "<null> []", 16);
    addRow("count after the first vertex", "0 LWPOLYLINE, 10 0, 20 0, 90 2, 10 4, 20 0",
        "<null> []", 16);
    addRow("count between the first 10 and 20", "0 LWPOLYLINE, 10 0, 90 2, 20 0, 10 4, 20 0",
        "1 [1 0 0; 2 4 0]");
    addRow("the last count before a vertex holds",
        "0 LWPOLYLINE, 90 7, 90 2, 10 0, 20 0, 10 4, 20 0", "1 [1 0 0; 2 4 0]");
    addRow("a later count ends the entity sooner",
        "0 LWPOLYLINE, 90 4, 10 0, 20 0, 90 1, 10 4, 20 0, 10 5, 20 5", "1 [1 0 0; 2 4 0]");
    addRow("a later count of 0 never ends the entity",
        "0 LWPOLYLINE, 90 2, 10 0, 20 0, 90 0, 10 4, 20 0, 10 5, 20 5",
        "<null> [1 0 0; 2 4 0; 3 5 5]", 30);
    addRow("count is no number", "0 LWPOLYLINE, 90 abc, 10 0, 20 0, 10 4, 20 0", "<null> []", 14);
    addRow("count is no integer", "0 LWPOLYLINE, 90 2.0, 10 0, 20 0, 10 4, 20 0", "<null> []", 14);
    addRow("count is too large for an integer", "0 LWPOLYLINE, 90 2147483648, 10 0, 20 0",
        "<null> []", 14);
    addRow("count is not reached: another entity",
        "0 LWPOLYLINE, 90 3, 10 0, 20 0, 10 4, 20 0, 0 LINE, 10 0, 20 0, 11 1, 21 1",
        "<null> [1 0 0; 2 4 0]", 24);
    addRow("count is not reached: ENDSEC", "0 LWPOLYLINE, 90 3, 10 0, 20 0, 10 4, 20 0",
        "<null> [1 0 0; 2 4 0]", 24);
    addRow("count is not reached: end of file", "0 LWPOLYLINE, 90 3, 10 0, 20 0, 10 4, 20 0",
        "<null> [1 0 0; 2 4 0]", 22, Ending::Open);
    addRow(
        "file ends at once leaves its empty object", "0 LWPOLYLINE", "<null> []", 12, Ending::Open);
    addRow("nothing leaves its empty object", "0 LWPOLYLINE", "<null> []", 14);
    addRow("10 is no number", "0 LWPOLYLINE, 90 2, 10 x, 20 0, 10 4, 20 0", "<null> []", 16);
    // The vertex is complete before the bad number is noticed, and it is kept with 0 in its place.
    addRow("20 of the first vertex is no number", "0 LWPOLYLINE, 90 2, 10 1, 20 x, 10 4, 20 0",
        "<null> [1 1 0]", 18);
    addRow("bad last coordinate of the last declared vertex is not noticed",
        "0 LWPOLYLINE, 90 2, 10 1, 20 1, 10 4, 20 x", "1 [1 1 1; 2 4 0]");
    addRow("bad last coordinate of the last declared vertex, 20 before 10",
        "0 LWPOLYLINE, 90 2, 20 1, 10 1, 20 4, 10 x", "1 [1 1 1; 2 0 4]");
    addRow("bad first coordinate of the last declared vertex is noticed",
        "0 LWPOLYLINE, 90 2, 10 1, 20 1, 10 x, 20 4", "<null> [1 1 1]", 20);
    QTest::newRow("blank code line")
        << openDrawing("0 LWPOLYLINE, 90 2, 10 1") + QStringList{ QString() }
        << QStringLiteral("<null> []") << 17;
    QTest::newRow("blank code line after a bad number: the bad number comes first")
        << openDrawing("0 LWPOLYLINE, 90 2, 10 x") + QStringList{ QString() }
        << QStringLiteral("<null> []") << 16;
}

void TestDxfEntities::lwpolyline()
{
    checkObjects();
}

void TestDxfEntities::closingCopyUsesNoNumberAndNoSearch()
{
    // The tolerance is wide enough for a second vertex near the first to bear its name.
    const ImportOutcome outcome = importDrawing(numbered(),
        drawing("0 LWPOLYLINE, 90 3, 70 1, 10 0, 20 0, 10 4, 20 0, 10 4, 20 3, "
                "0 LINE, 10 0.0078125, 20 0, 11 9, 21 9"));
    QVERIFY(outcome.result);
    QCOMPARE(describeAll(outcome.objects),
        QStringLiteral("1 [1 0 0; 2 4 0; 3 4 3; 1 0 0]; 2 [1 0.0078125 0; 4 9 9]"));
}

void TestDxfEntities::closingCopyOfExchangedVertices()
{
    ImportOptions options = numbered();
    options.swapXY = true;
    const ImportOutcome outcome = importDrawing(
        options, drawing("0 LWPOLYLINE, 90 3, 70 1, 10 0, 20 1, 10 4, 20 1, 10 4, 20 3"));
    QVERIFY(outcome.result);
    QCOMPARE(describeAll(outcome.objects), QStringLiteral("1 [1 1 0; 2 1 4; 3 3 4; 1 1 0]"));
}

void TestDxfEntities::largeCountSetsNoMemoryAside()
{
    for (const char* count : { "100000000", "2000000000" }) {
        const QByteArray entities =
            QByteArray("0 LWPOLYLINE, 90 ") + count + ", 10 0, 20 0, 10 4, 20 0";
        const ImportOutcome outcome = importDrawing(numbered(), drawing(entities.constData()));
        QVERIFY(!outcome.result);
        QCOMPARE(outcome.messages, QStringList{ readError(24) });
        QCOMPARE(describeAll(outcome.objects), QStringLiteral("<null> [1 0 0; 2 4 0]"));
        QVERIFY(outcome.objects.first().contours.first().capacity() < 100);
    }
}

QTEST_GUILESS_MAIN(TestDxfEntities)
#include "tst_dxfentities.moc"
