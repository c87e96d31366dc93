// Inserts of blocks: where their contents come to stand, and which of them are survey points.

#include "prepared.h"

#include <QTest>

using prep::BlockMode;
using prep::PrepareOptions;

namespace {

/// An arrow: from (1, 1) to (3, 1), with the base point at (1, 1).
constexpr const char* arrow = "0 BLOCK, 8 0, 2 Arrow, 70 0, 10 1, 20 1, 30 0, "
                              "0 LINE, 8 0, 10 1, 20 1, 11 3, 21 1, 0 ENDBLK";

PrepareOptions exploding()
{
    PrepareOptions options;
    options.blocks = BlockMode::Explode;
    options.tolerance = 3;
    return options;
}

QString outlineOf(const QByteArray& drawing, const PrepareOptions& options = exploding())
{
    return outline(prepared(drawing, options).bytes).join(QStringLiteral("; "));
}

/// A drawing of 1000 by 1000 with one insert of the block X in its middle.
QByteArray inLargeDrawing(const char* blockEntities)
{
    const QByteArray block =
        QByteArray("0 BLOCK, 8 0, 2 X, 70 0, 10 0, 20 0, 30 0, ") + blockEntities + ", 0 ENDBLK";
    return drawingOf("0 LINE, 8 a, 10 0, 20 0, 11 1000, 21 1000, "
                     "0 INSERT, 8 a, 2 X, 10 500, 20 500, "
                     "0 TEXT, 8 a, 10 0, 20 0, 40 1, 1 т",
        block.constData());
}

} // namespace

class TestFlattenBlocks : public QObject {
    Q_OBJECT

private slots:
    void inserts_data();
    void inserts();
    void digitsStay();
    void nesting();
    void nestedLabels();
    void curvesInBlocks();
    void mirroredBulge();
    void layerOfInsert();
    void frozenInsert();
    void attributes();
    void constantAttribute();
    void dimensions();
    void blocksBehindEntities();
    void choice_data();
    void choice();
    void choiceBySize();
    void choiceIsTold();
    void modes();
    void missingBlock();
    void externalBlock();
    void recursion();
    void depth();
    void millionInserts();
    void manyTexts();
    void longestText();
    void longEntityInBlock();
    void droppedInBlocks();
};

void TestFlattenBlocks::inserts_data()
{
    QTest::addColumn<QString>("insert");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* insert, const char* expected) {
        QTest::newRow(name) << QString::fromLatin1(insert) << QString::fromLatin1(expected);
    };
    row("place", "10 10, 20 20", "line 10 20, 12 20");
    row("name in another case", "2 ARROW, 10 10, 20 20", "line 10 20, 12 20");
    row("scale", "10 10, 20 20, 41 2.5, 42 7, 43 1", "line 10 20, 15 20");
    row("scale of minus one", "10 10, 20 20, 41 -1", "line 10 20, 8 20");
    row("rotation", "10 10, 20 20, 50 90", "line 10 20, 10 22");
    row("rotation of more than a turn", "10 10, 20 20, 50 450", "line 10 20, 10 22");
    row("scale, then rotation", "10 10, 20 20, 41 3, 42 1, 50 -90", "line 10 20, 10 14");
    // The steps of an array are turned, but not scaled.
    row("array", "10 10, 20 20, 41 2, 50 90, 70 2, 71 2, 44 5, 45 7",
        "line 10 20, 10 24; line 10 25, 10 29; line 3 20, 3 24; line 3 25, 3 29");
    row("array of nothing is one insert", "10 10, 20 20, 70 0, 71 -3", "line 10 20, 12 20");
    row("mirrored", "10 10, 20 20, 210 0, 220 0, 230 -1", "line -10 20, -12 20");
    row("mirrored and turned", "10 10, 20 20, 50 90, 210 0, 220 0, 230 -1", "line -10 20, -10 22");
    row("mirrored array", "10 10, 20 20, 70 2, 44 5, 230 -1",
        "line -10 20, -12 20; line -15 20, -17 20");
}

void TestFlattenBlocks::inserts()
{
    QFETCH(QString, insert);
    const QByteArray drawing =
        drawingOf(("0 INSERT, 8 a, 2 Arrow, " + insert.toLatin1()).constData(), arrow);
    QTEST(outlineOf(drawing), "expected");
    const QByteArray once = prepared(drawing, exploding()).bytes;
    QCOMPARE(prepared(once, exploding()).bytes, once);
}

void TestFlattenBlocks::digitsStay()
{
    // The cadastral way: the parcels as blocks in coordinates of the drawing, inserted at (0, 0).
    const QByteArray drawing = drawingOf("0 INSERT, 8 a, 2 P, 10 0.0, 20 0.0, 30 0.0, 41 1.0, "
                                         "42 1.0, 43 1.0, 50 0.0, 0 INSERT, 8 a, 2 P, 10 1, 20 0",
        "0 BLOCK, 2 P, 10 0, 20 0, 0 LINE, 10 2212870.110, 20 469428.60, 11 2212871.0, "
        "21 469429.00, 0 ENDBLK");
    QCOMPARE(outlineOf(drawing),
        QStringLiteral("line 2212870.110 469428.60, 2212871.0 469429.00; "
                       "line 2212871.11 469428.6, 2212872 469429"));
}

void TestFlattenBlocks::nesting()
{
    // Outer holds Arrow, turned to the left, 10 to the right of its base point; it is doubled.
    const QByteArray drawing = drawingOf("0 INSERT, 8 a, 2 Outer, 10 100, 20 0, 41 2, 42 2, 43 2",
        "0 BLOCK, 2 Outer, 10 0, 20 0, 0 INSERT, 2 Arrow, 10 10, 20 0, 50 90, 0 ENDBLK, "
        "0 BLOCK, 2 Arrow, 10 1, 20 1, 0 LINE, 10 1, 20 1, 11 3, 21 1, 0 ENDBLK");
    QCOMPARE(outlineOf(drawing), QStringLiteral("line 120 0, 120 4"));
}

void TestFlattenBlocks::nestedLabels()
{
    // The coordinates of an attribute are those of the block that holds its insert.
    const QByteArray drawing = drawingOf(
        "0 POINT, 10 0, 20 0, 0 INSERT, 8 a, 2 Outer, 10 100, 20 0, 41 2, 42 2, 43 2, 50 90",
        "0 BLOCK, 2 Outer, 10 0, 20 0, 0 INSERT, 66 1, 2 Arrow, 10 10, 20 0, "
        "0 ATTRIB, 10 11.5, 20 1, 40 1, 1 н1, 2 N, 70 0, 0 SEQEND, "
        "0 MTEXT, 10 5, 20 -3, 40 1, 1 \\pxqc;м, 0 TEXT, 10 0, 20 4, 40 1, 1 т, 0 ENDBLK, "
        "0 BLOCK, 2 Arrow, 10 1, 20 1, 0 LINE, 10 1, 20 1, 11 3, 21 1, 0 ENDBLK");
    QCOMPARE(outlineOf(drawing),
        QStringLiteral(
            "line 100 20, 100 24; point 0 0; text 92 0 т; text 98 23 н1; text 106 10 м"));
}

void TestFlattenBlocks::curvesInBlocks()
{
    // A circle that is stretched becomes an ellipse, and what is an arc stays one of its parts.
    const QByteArray drawing = drawingOf("0 INSERT, 8 a, 2 B, 10 0, 20 0, 41 2, 42 1",
        "0 BLOCK, 2 B, 10 0, 20 0, 0 ARC, 10 0, 20 0, 40 10, 50 0, 51 180, 0 ENDBLK");
    // The chord of the angle h leaves 20 (1 - cos(h / 2)) <= 3: three of 60 degrees.
    QCOMPARE(
        outlineOf(drawing), QStringLiteral("open 20 0, 10 8.6602540378, -10 8.6602540378, -20 0"));
}

void TestFlattenBlocks::mirroredBulge()
{
    // Anticlockwise from (0, 0) to (20, 0) below; mirrored by the insert it goes above.
    const QByteArray drawing = drawingOf("0 INSERT, 8 a, 2 B, 10 0, 20 0, 42 -1",
        "0 BLOCK, 2 B, 10 0, 20 0, 0 LWPOLYLINE, 90 2, 70 0, 10 0, 20 0, 42 1, 10 20, 20 0, "
        "0 ENDBLK");
    QCOMPARE(outlineOf(drawing), QStringLiteral("open 0 0, 10 10, 20 0"));
}

void TestFlattenBlocks::layerOfInsert()
{
    const QByteArray drawing = drawingOf("0 INSERT, 8 in, 2 B, 10 0, 20 0",
        "0 BLOCK, 2 B, 10 0, 20 0, 0 LINE, 8 0, 10 1, 20 0, 11 2, 21 0, "
        "0 LINE, 8 own, 10 3, 20 0, 11 4, 21 0, 0 ENDBLK");
    PrepareOptions options = exploding();
    options.layers = QStringList{ QStringLiteral("in") };
    QCOMPARE(outlineOf(drawing, options), QStringLiteral("line 1 0, 2 0"));
    options.layers = QStringList{ QStringLiteral("own") };
    QCOMPARE(outlineOf(drawing, options), QStringLiteral("line 3 0, 4 0"));
}

void TestFlattenBlocks::frozenInsert()
{
    const char* const block =
        "0 BLOCK, 2 B, 10 0, 20 0, 0 LINE, 8 own, 10 3, 20 0, 11 4, 21 0, 0 ENDBLK";
    const char* const insert = "0 INSERT, 8 in, 2 B, 10 0, 20 0";
    PrepareOptions options = exploding();
    options.visibleOnly = true;
    // Frozen with its layer an insert shows nothing, switched off it shows what has other layers.
    QCOMPARE(outlineOf(drawingOf(insert, block, "0 LAYER, 2 in, 70 1, 62 7"), options), QString());
    QCOMPARE(outlineOf(drawingOf(insert, block, "0 LAYER, 2 in, 70 0, 62 -7"), options),
        QStringLiteral("line 3 0, 4 0"));
}

void TestFlattenBlocks::attributes()
{
    const QByteArray drawing =
        drawingOf("0 INSERT, 8 a, 66 1, 2 Arrow, 10 10, 20 20, 50 90, "
                  "0 ATTRIB, 8 a, 10 11.50, 20 21, 40 2, 1 н12, 2 НОМЕР, 70 0, "
                  "0 ATTRIB, 8 a, 10 0, 20 0, 11 12, 21 22, 72 1, 74 2, 40 2, 1 скрыт, 2 X, 70 1, "
                  "0 SEQEND, 0 LINE, 8 a, 10 0, 20 0, 11 1, 21 0",
            arrow);
    PrepareOptions options;
    options.blocks = BlockMode::Points;
    QCOMPARE(outlineOf(drawing, options),
        QStringLiteral("line 0 0, 1 0; point 10 20; "
                       "text 11.50 21 н12; text 12 22 скрыт"));
    options.visibleOnly = true;
    QCOMPARE(outlineOf(drawing, options),
        QStringLiteral("line 0 0, 1 0; point 10 20; text 11.50 21 н12"));
    options.attributes = false;
    QCOMPARE(outlineOf(drawing, options), QStringLiteral("line 0 0, 1 0"));
}

void TestFlattenBlocks::constantAttribute()
{
    const QByteArray drawing = drawingOf("0 POINT, 10 0, 20 0, 0 INSERT, 2 B, 10 5, 20 5",
        "0 BLOCK, 2 B, 10 0, 20 0, 0 ATTDEF, 10 1, 20 1, 40 1, 1 образец, 2 Т, 70 0, "
        "0 ATTDEF, 10 2, 20 2, 40 1, 1 ГР, 2 Т, 70 2, 0 ENDBLK");
    QCOMPARE(outlineOf(drawing), QStringLiteral("point 0 0; text 7 7 ГР"));
}

void TestFlattenBlocks::dimensions()
{
    const QByteArray drawing = drawingOf("0 POINT, 10 0, 20 0, 0 DIMENSION, 8 a, 2 *D1, 10 0, 20 0",
        "0 BLOCK, 2 *D1, 10 0, 20 0, 0 LINE, 10 0, 20 0, 11 9, 21 0, "
        "0 MTEXT, 10 4.50, 20 1, 40 1, 71 5, 1 9.00, 0 ENDBLK");
    QCOMPARE(outlineOf(drawing), QString());
    PrepareOptions options = exploding();
    options.dimensions = true;
    QCOMPARE(outlineOf(drawing, options), QStringLiteral("point 0 0; text 4.50 1 9.00"));
}

void TestFlattenBlocks::blocksBehindEntities()
{
    QByteArray drawing = drawingOf("0 INSERT, 8 a, 2 Arrow, 10 10, 20 20");
    drawing.chop(int(sizeof("0\nEOF\n")) - 1);
    const QByteArray blocks = drawingOf("", arrow);
    const int start = blocks.indexOf("0\nSECTION\n2\nBLOCKS");
    drawing.append(blocks.mid(start));
    QCOMPARE(outlineOf(drawing), QStringLiteral("line 10 20, 12 20"));
}

void TestFlattenBlocks::choice_data()
{
    QTest::addColumn<QString>("entities");
    QTest::addColumn<bool>("isPoint");
    const auto row = [](const char* name, const char* entities, bool isPoint) {
        QTest::newRow(name) << QString::fromLatin1(entities) << isPoint;
    };
    row("circle", "0 CIRCLE, 10 0, 20 0, 40 1.5", true);
    row("cross", "0 LINE, 10 -1, 20 0, 11 1, 21 0, 0 LINE, 10 0, 20 -1, 11 0, 21 1", true);
    row("flag on its foot", "0 LINE, 10 0, 20 0, 11 0, 21 8, 0 LINE, 10 0, 20 8, 11 1, 21 7", true);
    row("point", "0 POINT, 10 0, 20 0", true);
    row("nothing but an attribute", "0 ATTDEF, 10 0, 20 0, 1 x, 70 0", true);
    row("text", "0 TEXT, 10 0, 20 0, 40 1, 1 x", false);
    // The drawing is 1000 wide: a mark is not wider than 20.
    row("large circle", "0 CIRCLE, 10 0, 20 0, 40 10.5", false);
    row("contour beside the insertion",
        "0 LWPOLYLINE, 90 4, 70 1, 10 3, 20 3, 10 6, 20 3, 10 6, 20 6, 10 3, 20 6", false);
    row("contour on its corner",
        "0 LWPOLYLINE, 90 4, 70 1, 10 0, 20 0, 10 6, 20 0, 10 6, 20 6, 10 0, 20 6", false);
}

void TestFlattenBlocks::choice()
{
    QFETCH(QString, entities);
    const Prepared result = prepared(inLargeDrawing(entities.toLatin1().constData()));
    QTEST(result.report.blocks.value(QStringLiteral("X")).asPoint, "isPoint");
}

void TestFlattenBlocks::choiceBySize()
{
    const char* const block = "0 BLOCK, 2 X, 10 0, 20 0, 0 CIRCLE, 10 0, 20 0, 40 1, 0 ENDBLK";
    const auto isPoint = [block](const char* scale) {
        const QByteArray insert =
            QByteArray("0 LINE, 10 0, 20 0, 11 100, 21 0, 0 INSERT, 2 X, 10 0, 20 0, 41 ") + scale
            + ", 42 " + scale;
        return prepared(drawingOf(insert.constData(), block))
            .report.blocks.value(QStringLiteral("X"))
            .asPoint;
    };
    QVERIFY(isPoint("1"));
    QVERIFY(isPoint("0.001"));
    QVERIFY(!isPoint("1.5"));
    // Alone in its drawing a block is what is drawn.
    const Prepared alone = prepared(drawingOf("0 INSERT, 2 X, 10 5, 20 5", block));
    QVERIFY(!alone.report.blocks.value(QStringLiteral("X")).asPoint);
}

void TestFlattenBlocks::choiceIsTold()
{
    const Prepared result = prepared(inLargeDrawing("0 CIRCLE, 10 0, 20 0, 40 1.5"));
    QCOMPARE(result.report.blocks.size(), 1);
    QCOMPARE(result.report.blocks.first().inserts, qint64(1));
    QCOMPARE(result.notes(), QStringList{ QStringLiteral("insert-as-point") });
    QCOMPARE(outline(result.bytes).at(1), QStringLiteral("point 500 500"));
}

void TestFlattenBlocks::modes()
{
    const QByteArray drawing = inLargeDrawing("0 LINE, 10 -1, 20 0, 11 1, 21 0");
    PrepareOptions options;
    const QString asPoint = QStringLiteral("line 0 0, 1000 1000; point 500 500; text 0 0 т");
    QCOMPARE(outlineOf(drawing, options), asPoint);
    options.blocks = BlockMode::Points;
    QCOMPARE(outlineOf(drawing, options), asPoint);
    options.blocks = BlockMode::Explode;
    QCOMPARE(outlineOf(drawing, options),
        QStringLiteral("line 0 0, 1000 1000; line 499 500, 501 500; point -1 0; text 0 0 т"));
}

void TestFlattenBlocks::missingBlock()
{
    const Prepared result =
        prepared(drawingOf("0 INSERT, 2 Nowhere, 10 5, 20 6, 0 TEXT, 10 0, 20 0, 1 т"));
    QCOMPARE(outline(result.bytes),
        QStringList({ QStringLiteral("point 5 6"), QStringLiteral("text 0 0 т") }));
    QCOMPARE(result.notes(), QStringList{ QStringLiteral("missing-block") });
}

void TestFlattenBlocks::externalBlock()
{
    const Prepared result = prepared(
        drawingOf("0 INSERT, 2 X, 10 5, 20 6", "0 BLOCK, 2 X, 70 4, 1 other.dwg, 0 ENDBLK"));
    QCOMPARE(outline(result.bytes), QStringList());
    QCOMPARE(result.notes(), QStringList{ QStringLiteral("external-block") });
    QVERIFY(result.report.hasLosses());
}

void TestFlattenBlocks::recursion()
{
    for (const BlockMode mode : { BlockMode::Auto, BlockMode::Explode }) {
        PrepareOptions options;
        options.blocks = mode;
        const Prepared result = prepared(drawingOf("0 INSERT, 2 A, 10 0, 20 0",
                                             "0 BLOCK, 2 A, 10 0, 20 0, 0 LINE, 10 1, 20 0, 11 2, "
                                             "21 0, 0 INSERT, 2 B, 10 0, 20 0, 0 ENDBLK, "
                                             "0 BLOCK, 2 B, 10 0, 20 0, 0 INSERT, 2 A, 10 0, "
                                             "20 0, 0 ENDBLK"),
            options);
        QCOMPARE(outline(result.bytes), QStringList{ QStringLiteral("line 1 0, 2 0") });
        QCOMPARE(result.report.notes().at(prep::Note::RecursiveBlock), qint64(1));
        QVERIFY(result.report.hasLosses());
    }
}

void TestFlattenBlocks::depth()
{
    QByteArray blocks;
    for (int i = 0; i < 100; ++i) {
        blocks += "0 BLOCK, 2 B" + QByteArray::number(i) + ", 10 0, 20 0, 0 LINE, 10 1, 20 0, "
            + "11 2, 21 0, 0 INSERT, 2 B" + QByteArray::number(i + 1) + ", 10 0, 20 0, 0 ENDBLK, ";
    }
    const Prepared result = prepared(
        drawingOf("0 INSERT, 2 B0, 10 0, 20 0", (blocks + "0 LINE").constData()), exploding());
    QCOMPARE(result.report.contours, qint64(64));
    QCOMPARE(result.report.notes().at(prep::Note::TooDeep), qint64(1));
}

void TestFlattenBlocks::millionInserts()
{
    // Thirty blocks, each holding the next one twice: a billion lines.
    QByteArray blocks;
    for (int i = 0; i < 30; ++i) {
        const QByteArray next = "0 INSERT, 2 B" + QByteArray::number(i + 1) + ", 10 0, 20 0, ";
        blocks +=
            "0 BLOCK, 2 B" + QByteArray::number(i) + ", 10 0, 20 0, " + next + next + "0 ENDBLK, ";
    }
    blocks += "0 BLOCK, 2 B30, 10 0, 20 0, 0 LINE, 10 1, 20 0, 11 2, 21 0, 0 ENDBLK";
    const Prepared result =
        prepared(drawingOf("0 INSERT, 2 B0, 10 0, 20 0", blocks.constData()), exploding());
    QVERIFY(result.report.notes().count(prep::Note::TooMuch) == 1);
    QVERIFY(result.report.contours < 1000000);
    QVERIFY(result.report.hasLosses());

    // An array of nothing, and one that is told in numbers alone.
    const Prepared array = prepared(drawingOf("0 INSERT, 2 E, 10 0, 20 0, 70 32767, 71 32767",
                                        "0 BLOCK, 2 E, 10 0, 20 0, 0 ENDBLK"),
        exploding());
    QCOMPARE(array.report.contours, qint64(0));
    QVERIFY(array.report.notes().count(prep::Note::TooMuch) == 1);
}

void TestFlattenBlocks::manyTexts()
{
    // Texts are kept until they can be sorted, so there is a limit of their own for them: 10 MiB
    // and four times the file, and one of these takes 32 bytes beside the 31 of its pairs.
    const Prepared result = prepared(drawingOf("0 INSERT, 2 T, 10 0, 20 0, 70 1000, 71 1000",
                                         "0 BLOCK, 2 T, 10 0, 20 0, 0 TEXT, 10 1, 20 0, 40 1, 1 т, "
                                         "0 ENDBLK"),
        exploding());
    QVERIFY(result.report.labels > 166400 && result.report.labels < 166500);
    QVERIFY(result.report.notes().count(prep::Note::TooMuch) == 1);
}

void TestFlattenBlocks::longestText()
{
    const QByteArray longest(1 << 20, 'x');
    const QByteArray start = "0 LINE, 10 1, 20 1, 11 2, 21 1, 0 TEXT, 10 1, 20 1, 1 ";
    const Prepared kept = prepared(drawingOf((start + longest).constData()));
    QCOMPARE(kept.report.labels, qint64(1));
    QVERIFY(!kept.report.hasLosses());
    const Prepared left = prepared(drawingOf((start + longest + 'x').constData()));
    QCOMPARE(left.report.labels, qint64(0));
    QCOMPARE(left.report.notes().at(prep::Note::TooMuch), qint64(1));
}

/// What blocks may come to is a matter of bytes, and not only of entities.
void TestFlattenBlocks::longEntityInBlock()
{
    const QByteArray line = "0 LINE, 10 1, 20 1, 11 2, 21 1, 6 " + QByteArray(500000, 'x');
    const QByteArray block = "0 BLOCK, 2 P, 10 0, 20 0, " + line + ", 0 ENDBLK";
    const Prepared result = prepared(
        drawingOf("0 INSERT, 2 P, 10 0, 20 0, 70 1000, 71 1000", block.constData()), exploding());
    // The file has 500,000 bytes and so has the line: 40,000,000 + 40 * 500,000 bytes of it.
    QVERIFY(result.report.contours >= 118 && result.report.contours <= 120);
    QVERIFY(result.report.notes().count(prep::Note::TooMuch) == 1);
}

void TestFlattenBlocks::droppedInBlocks()
{
    const Prepared result = prepared(
        drawingOf("0 INSERT, 2 S, 10 0, 20 0, 0 INSERT, 2 S, 10 9, 20 0",
            "0 BLOCK, 2 S, 10 0, 20 0, 0 SOLID, 10 1, 20 0, 0 LINE, 10 1, 20 0, 11 x, 21 0, "
            "0 ENDBLK, 0 BLOCK, 2 unused, 0 LINE, 10 1, 0 ENDBLK"),
        exploding());
    QCOMPARE(result.report.notes().at(prep::Note::Surface), qint64(1));
    QCOMPARE(result.report.notes().at(prep::Note::Incomplete), qint64(1));
}

QTEST_APPLESS_MAIN(TestFlattenBlocks)
#include "tst_flattenblocks.moc"
