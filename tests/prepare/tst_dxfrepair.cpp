// Repair: pairs and lines only.

#include "drawing.h"
#include "import/dxfimport.h"
#include "prepared.h"
#include "support/importing.h"

#include <QTest>

using prep::PrepareOptions;

namespace {

Prepared repaired(const QByteArray& drawing)
{
    PrepareOptions options;
    options.level = prep::Level::Repair;
    return prepared(drawing, options);
}

/// The pairs of a drawing in the notation of pairs(), from the ENTITIES section on.
QString entitiesOf(const QByteArray& bytes)
{
    const QStringList lines = QString::fromUtf8(bytes).split(QLatin1Char('\n'));
    QStringList texts;
    for (int i = lines.indexOf(QStringLiteral("ENTITIES")) + 1; i + 1 < lines.size(); i += 2)
        texts.append(lines.at(i) + QLatin1Char(' ') + lines.at(i + 1));
    texts.removeLast(); // the end of the section and of the drawing
    texts.removeLast();
    return texts.join(QStringLiteral(", "));
}

} // namespace

class TestDxfRepair : public QObject {
    Q_OBJECT

private slots:
    void frames_data();
    void frames();
    void entities_data();
    void entities();
    void otherSectionsStay();
    void sectionWithoutName();
    void manyKinds();
    void binary();
    void noDrawing_data();
    void noDrawing();
    void twice_data();
    void twice();
    void readsWhole_data();
    void readsWhole();
};

void TestDxfRepair::frames_data()
{
    QTest::addColumn<QByteArray>("drawing");
    QTest::addColumn<QStringList>("notes");
    const QByteArray whole =
        "0\nSECTION\n2\nHEADER\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nLINE\n8\na\n10\n1.50\n"
        "20\n2\n11\n3\n21\n4\n0\nENDSEC\n0\nEOF\n";
    const auto row = [](const char* name, const QByteArray& drawing,
                         std::initializer_list<const char*> notes) {
        QStringList names;
        for (const char* note : notes)
            names.append(QString::fromLatin1(note));
        QTest::newRow(name) << drawing << names;
    };
    const QByteArray entities = whole.mid(whole.indexOf("0\nSECTION\n2\nENTITIES"));
    const QByteArray line = whole.mid(
        whole.indexOf("0\nLINE"), whole.lastIndexOf("0\nENDSEC") - whole.indexOf("0\nLINE"));
    row("whole", whole, {});
    row("line ends of DOS", QByteArray(whole).replace("\n", "\r\n"), {});
    row("several returns at line ends", QByteArray(whole).replace("\n", "\r\r\n"), {});
    row("odd spacing", QByteArray(whole).replace("\n10\n", "\n 10 \n"), {});
    row("comments",
        "999\nmade by\n999\n\n" + QByteArray(whole).replace("0\nLINE", "999\nx\n0\nLINE"),
        { "comments" });
    row("trailing blank lines", whole + "\n\n", { "blank-lines" });
    row("blank lines in front", "\n" + whole, { "blank-lines" });
    row("no header", entities, { "header-added" });
    row("no end", QByteArray(whole).replace("0\nEOF\n", ""), { "eof-added" });
    row("no end of the section", QByteArray(whole).replace("4\n0\nENDSEC\n", "4\n"), {});
    row("no section at all", line, { "eof-added", "header-added", "section-added" });
    row("byte-order mark", "\xEF\xBB\xBF" + whole, {});
}

void TestDxfRepair::frames()
{
    QFETCH(QByteArray, drawing);
    const Prepared result = repaired(drawing);
    QCOMPARE(result.bytes,
        QByteArray("0\nSECTION\n2\nHEADER\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nLINE\n8\na\n10\n"
                   "1.50\n20\n2\n11\n3\n21\n4\n0\nENDSEC\n0\nEOF\n"));
    QTEST(result.notes(), "notes");
    QVERIFY(!result.report.hasLosses());
}

void TestDxfRepair::entities_data()
{
    QTest::addColumn<QString>("entities");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("note");
    const auto row = [](const char* name, const char* entities, const char* expected,
                         const char* note = "") {
        QTest::newRow(name) << QString::fromUtf8(entities) << QString::fromUtf8(expected)
                            << QString::fromUtf8(note);
    };
    const auto same = [&row](const char* name, const char* entities) {
        row(name, entities, entities);
    };
    same("arc", "0 ARC, 8 a, 10 1, 20 2, 40 3, 50 0, 51 90");
    same("insert with attributes",
        "0 INSERT, 8 a, 66 1, 2 B, 10 1, 20 2, 0 ATTRIB, 10 1, 20 2, "
        "1 т, 2 N, 70 0, 0 SEQEND, 8 a, 0 POINT, 10 1, 20 2");
    same("something else", "0 SOMETHING, 10 x");
    same("text with codes", "0 TEXT, 10 1, 20 2, 1 %%u\\U+0417");
    same("lwpolyline", "0 LWPOLYLINE, 5 1F, 90 2, 70 129, 43 0.0, 10 1, 20 2, 42 1, 10 3, 20 4");
    row("lwpolyline with a wrong count", "0 LWPOLYLINE, 90 7, 70 1, 10 1, 20 2, 10 3, 20 4",
        "0 LWPOLYLINE, 70 1, 90 2, 10 1, 20 2, 10 3, 20 4", "vertex-count");
    row("lwpolyline with a late count", "0 LWPOLYLINE, 70 0, 10 1, 20 2, 10 3, 20 4, 90 2",
        "0 LWPOLYLINE, 70 0, 90 2, 10 1, 20 2, 10 3, 20 4", "vertex-count");
    row("lwpolyline with a late flag", "0 LWPOLYLINE, 90 2, 10 1, 20 2, 10 3, 20 4, 70 1",
        "0 LWPOLYLINE, 90 2, 70 1, 10 1, 20 2, 10 3, 20 4", "closing-flag");
    row("lwpolyline with two abscissas", "0 LWPOLYLINE, 90 2, 70 0, 10 1, 10 3, 20 2, 20 4", "",
        "incomplete");
    row("lwpolyline of one vertex", "0 LWPOLYLINE, 90 1, 70 0, 10 1, 20 2", "", "incomplete");
    same("polyline",
        "0 POLYLINE, 66 1, 70 1, 0 VERTEX, 10 1, 20 2, 70 1, 0 VERTEX, 10 3, 20 4, "
        "0 SEQEND, 8 a");
    row("polyline closed by another flag",
        "0 POLYLINE, 66 1, 70 129, 0 VERTEX, 10 1, 20 2, 0 VERTEX, 10 3, 20 4, 0 SEQEND",
        "0 POLYLINE, 66 1, 70 1, 0 VERTEX, 10 1, 20 2, 0 VERTEX, 10 3, 20 4, 0 SEQEND",
        "closing-flag");
    row("open polyline with a flag of a vertex",
        "0 POLYLINE, 66 1, 70 4, 0 VERTEX, 10 1, 20 2, 70 1, 0 VERTEX, 10 3, 20 4, 0 SEQEND",
        "0 POLYLINE, 66 1, 70 4, 0 VERTEX, 10 1, 20 2, 0 VERTEX, 10 3, 20 4, 0 SEQEND",
        "closing-flag");
    row("polyline without an end",
        "0 POLYLINE, 66 1, 70 0, 0 VERTEX, 10 1, 20 2, 0 VERTEX, 10 3, 20 4, 0 POINT, 10 1, 20 1",
        "0 POLYLINE, 66 1, 70 0, 0 VERTEX, 10 1, 20 2, 0 VERTEX, 10 3, 20 4, 0 SEQEND, 0 POINT, "
        "10 1, 20 1",
        "seqend-added");
    row("mesh",
        "0 POLYLINE, 66 1, 70 17, 0 VERTEX, 10 1, 20 2, 0 VERTEX, 10 3, 20 4, 0 SEQEND, 0 POINT, "
        "10 1, 20 1",
        "0 POINT, 10 1, 20 1", "mesh");
    row("paper space", "0 LINE, 67 1, 10 1, 20 2, 11 1, 21 1, 0 POINT, 67 0, 10 1, 20 1",
        "0 POINT, 67 0, 10 1, 20 1", "paper-space");
    row("line with a bad number", "0 LINE, 10 1, 20 2, 11 1, 21 2;5, 0 POINT, 10 1, 20 1",
        "0 POINT, 10 1, 20 1", "incomplete");
    row("line with a bad number and a better one",
        "0 LINE, 10 1, 20 x, 20 2, 11 1, 21 2, 0 POINT, 10 1, 20 1", "0 POINT, 10 1, 20 1",
        "incomplete");
    row("text without a place", "0 TEXT, 10 1, 1 т, 0 POINT, 10 1, 20 1", "0 POINT, 10 1, 20 1",
        "incomplete");
}

void TestDxfRepair::entities()
{
    QFETCH(QString, entities);
    QFETCH(QString, note);
    const Prepared result = repaired(drawingOf(entities.toUtf8()));
    QTEST(entitiesOf(result.bytes), "expected");
    QCOMPARE(result.notes(), note.isEmpty() ? QStringList() : QStringList{ note });
}

void TestDxfRepair::otherSectionsStay()
{
    const QByteArray drawing = drawingOf("0 POINT, 10 1, 20 2",
        "0 BLOCK, 2 B, 0 LINE, 10 x, "
        "0 POLYLINE, 70 16, 0 ENDBLK",
        "0 TABLE, 2 LAYER, 0 LAYER, 2 a, 0 ENDTAB");
    QCOMPARE(repaired(drawing).bytes, drawing);
}

void TestDxfRepair::sectionWithoutName()
{
    QCOMPARE(repaired("0\nSECTION\nx\n").bytes,
        QByteArray("0\nSECTION\n2\nHEADER\n0\nENDSEC\n0\nEOF\n"));
}

void TestDxfRepair::manyKinds()
{
    QByteArray entities;
    for (int i = 0; i < 5000; ++i)
        entities += "0\nK" + QByteArray::number(i) + "\n8\na\n";
    const Prepared result = repaired("0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n");
    // The rest counts as one kind.
    QCOMPARE(result.report.kinds().size(), size_t(1001));
    QCOMPARE(result.report.kinds().at("...").kept, qint64(4000));
}

void TestDxfRepair::binary()
{
    QByteArray bytes("AutoCAD Binary DXF\r\n\x1a\0", 22);
    const auto text = [&bytes](char code, const char* value) {
        bytes.append(code).append('\0').append(value).append('\0');
    };
    const auto number = [&bytes](char code, double value) {
        bytes.append(code).append('\0').append(
            reinterpret_cast<const char*>(&value), int(sizeof(value)));
    };
    text(0, "SECTION");
    text(2, "ENTITIES");
    text(0, "LINE");
    number(10, 1.5);
    number(20, 2212870.11);
    number(11, 3);
    number(21, 4);
    text(0, "ENDSEC");
    text(0, "EOF");
    const Prepared result = repaired(bytes);
    QCOMPARE(entitiesOf(result.bytes), QStringLiteral("0 LINE, 10 1.5, 20 2212870.11, 11 3, 21 4"));
    QCOMPARE(
        result.notes(), QStringList({ QStringLiteral("binary"), QStringLiteral("header-added") }));
    bytes.chop(9);
    QVERIFY(repaired(bytes).notes().contains(QStringLiteral("broken-off")));
}

void TestDxfRepair::noDrawing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("zeros") << QByteArray(1000, '\0');
    QTest::newRow("another file") << QByteArray("Version 300\nCharset \"Neutral\"\n");
    QTest::newRow("only an end") << QByteArray("0\nEOF\n");
    QTest::newRow("DWG") << QByteArray("AC1015\0\0\0\0\0\0", 12);
}

void TestDxfRepair::noDrawing()
{
    QFETCH(QByteArray, bytes);
    for (const prep::Level level : { prep::Level::Repair, prep::Level::Flatten }) {
        PrepareOptions options;
        options.level = level;
        const Prepared result = prepared(bytes, options);
        QVERIFY(!result.written);
        QVERIFY(!result.report.failure.isEmpty());
        QCOMPARE(result.bytes, QByteArray());
    }
}

void TestDxfRepair::twice_data()
{
    entities_data();
}

void TestDxfRepair::twice()
{
    QFETCH(QString, entities);
    const QByteArray once = repaired(drawingOf(entities.toUtf8())).bytes;
    const Prepared again = repaired(once);
    QCOMPARE(again.bytes, once);
    QCOMPARE(again.notes(), QStringList());
}

void TestDxfRepair::readsWhole_data()
{
    entities_data();
}

void TestDxfRepair::readsWhole()
{
    QFETCH(QString, entities);
    const TempFiles files;
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    options.searchObjectDefs = true;
    const ImportOutcome outcome = importFiles<DxfImport>(options,
        files.write(QStringLiteral("a.dxf"), repaired(drawingOf(entities.toUtf8())).bytes));
    QCOMPARE(outcome.messages, QStringList());
    QVERIFY(outcome.result);
}

QTEST_APPLESS_MAIN(TestDxfRepair)
#include "tst_dxfrepair.moc"
