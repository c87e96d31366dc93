// What each kind of entity becomes, with coordinates that were worked out by hand.

#include "deviation.h"
#include "prepared.h"

#include <QTest>
#include <QtMath>

#include <cmath>

using prep::PrepareOptions;

namespace {

/// Options under which a quarter of a circle of radius 10 becomes one chord and a half two.
PrepareOptions coarse()
{
    PrepareOptions options;
    options.tolerance = 3; // a chord over a right angle has the sagitta 2.93
    options.circles = prep::CircleMode::Contours;
    return options;
}

} // namespace

class TestFlatten : public QObject {
    Q_OBJECT

private slots:
    void entities_data();
    void entities();
    void sagitta_data();
    void sagitta();
    void leftOut_data();
    void leftOut();
    void layers_data();
    void layers();
    void axesAndScale();
    void labelsAreSorted();
    void pointBesideTexts();
    void pointsWithoutTexts();
    void twice_data();
    void twice();
    void hostile_data();
    void hostile();
};

void TestFlatten::entities_data()
{
    QTest::addColumn<QString>("entities");
    QTest::addColumn<PrepareOptions>("options");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* entities, const char* expected,
                         const PrepareOptions& options = coarse()) {
        QTest::newRow(name) << QString::fromUtf8(entities) << options
                            << QString::fromUtf8(expected);
    };

    row("line keeps its digits", "0 LINE, 8 a, 10 1.50, 20 -0, 30 9, 11 +2., 21 1e1",
        "line 1.50 -0, +2. 1e1");
    row("line is of the world whatever its extrusion",
        "0 LINE, 8 a, 10 1, 20 2, 11 3, 21 4, 210 0, 220 0, 230 -1", "line 1 2, 3 4");
    row("open lwpolyline", "0 LWPOLYLINE, 8 a, 90 3, 70 0, 10 0, 20 0, 10 1.0, 20 0, 10 1, 20 1.10",
        "open 0 0, 1.0 0, 1 1.10");
    row("closed lwpolyline with another flag",
        "0 LWPOLYLINE, 8 a, 90 3, 70 129, 10 0, 20 0, 10 1, 20 0, 10 1, 20 1",
        "closed 0 0, 1 0, 1 1");
    row("open lwpolyline of two vertices is a line",
        "0 LWPOLYLINE, 8 a, 90 2, 70 0, 10 0, 20 0, 10 1, 20 0", "line 0 0, 1 0");
    row("closed lwpolyline of two vertices stays one",
        "0 LWPOLYLINE, 8 a, 90 2, 70 1, 10 0, 20 0, 10 1, 20 0", "closed 0 0, 1 0");
    // Half a circle anticlockwise from (0, 0) to (20, 0) goes below, over (10, -10).
    row("bulge", "0 LWPOLYLINE, 8 a, 90 2, 70 0, 10 0, 20 0, 42 1, 10 20, 20 0",
        "open 0 0, 10 -10, 20 0");
    row("clockwise bulge", "0 LWPOLYLINE, 8 a, 90 2, 70 0, 10 0, 20 0, 42 -1, 10 20, 20 0",
        "open 0 0, 10 10, 20 0");
    row("bulge of the closing segment",
        "0 LWPOLYLINE, 8 a, 90 2, 70 1, 10 0.0, 20 0, 42 1, 10 20, 20 0, 42 1",
        "closed 0.0 0, 10 -10, 20 0, 10 10");
    row("bulge of an open end means nothing",
        "0 LWPOLYLINE, 8 a, 90 2, 70 0, 10 0, 20 0, 10 20, 20 0, 42 1", "line 0 0, 20 0");
    row("mirrored lwpolyline",
        "0 LWPOLYLINE, 8 a, 90 3, 70 1, 10 1.50, 20 0, 10 2, 20 0, 10 2, 20 3.0, 210 0.0, "
        "220 0.0, 230 -1.0",
        "closed -1.5 0, -2 0, -2 3");
    // Along the world's x axis: the object's x axis is the world's y, its y the world's z.
    row("lwpolyline that stands upright",
        "0 LWPOLYLINE, 8 a, 90 3, 70 0, 38 7, 10 1, 20 5, 10 2, 20 5, 10 3, 20 9, 210 1, 220 0, "
        "230 0",
        "open 7 1, 7 2, 7 3");
    row("polyline",
        "0 POLYLINE, 8 a, 66 1, 10 0, 20 0, 70 0, 0 VERTEX, 8 a, 10 0.50, 20 0, 0 VERTEX, 8 a, "
        "10 1, 20 0, 0 VERTEX, 8 a, 10 1, 20 1, 0 SEQEND",
        "open 0.50 0, 1 0, 1 1");
    row("closed polyline with another flag and without an end",
        "0 POLYLINE, 8 a, 66 1, 70 9, 0 VERTEX, 8 a, 10 0, 20 0, 0 VERTEX, 10 1, 20 0, 0 VERTEX, "
        "10 1, 20 1, 0 LINE, 8 a, 10 1, 20 2, 11 3, 21 4",
        "closed 0 0, 1 0, 1 1; line 1 2, 3 4");
    row("polyline with a flag of its vertices",
        "0 POLYLINE, 8 a, 66 1, 70 0, 0 VERTEX, 10 0, 20 0, 70 1, 0 VERTEX, 10 1, 20 0, 70 1, "
        "0 VERTEX, 10 1, 20 1, 0 SEQEND",
        "open 0 0, 1 0, 1 1");
    row("polyline fitted by a spline, without the frame",
        "0 POLYLINE, 8 a, 66 1, 70 4, 0 VERTEX, 10 0, 20 0, 70 16, 0 VERTEX, 10 0, 20 0, 70 8, "
        "0 VERTEX, 10 1, 20 2, 70 8, 0 VERTEX, 10 3, 20 3, 70 8, 0 SEQEND",
        "open 0 0, 1 2, 3 3");
    row("polyline in space is of the world",
        "0 POLYLINE, 8 a, 66 1, 70 8, 210 0, 220 0, 230 -1, 0 VERTEX, 10 0, 20 0, 30 1, "
        "0 VERTEX, 10 1, 20 0, 30 2, 0 VERTEX, 10 1, 20 1, 30 3, 0 SEQEND",
        "open 0 0, 1 0, 1 1");
    row("polyline with a bulge",
        "0 POLYLINE, 8 a, 66 1, 70 0, 0 VERTEX, 10 0, 20 0, 42 1, 0 VERTEX, 10 20, 20 0, 0 SEQEND",
        "open 0 0, 10 -10, 20 0");
    row("arc", "0 ARC, 8 a, 10 5, 20 5, 40 10, 50 0, 51 180", "open 15 5, 5 15, -5 5");
    row("arc over the start of the circle", "0 ARC, 8 a, 10 0, 20 0, 40 10, 50 270, 51 90",
        "open 0 -10, 10 0, 0 10");
    row("mirrored arc", "0 ARC, 8 a, 10 5, 20 5, 40 10, 50 0, 51 180, 210 0, 220 0, 230 -1",
        "open -15 5, -5 15, 5 5");
    row("circle as a contour", "0 CIRCLE, 8 a, 10 5, 20 5, 40 10", "closed 15 5, 5 15, -5 5, 5 -5");
    // Half axes 10 along y and 5 along -x.
    // Its x axis is the world's y; its y axis, (-0.8, 0, 0.6), is seen from above.
    row("circle that stands tilted", "0 CIRCLE, 8 a, 10 0, 20 0, 40 10, 210 3, 220 0, 230 4",
        "closed 0 10, -8 0, 0 -10, 8 0");
    row("ellipse",
        "0 ELLIPSE, 8 a, 10 1, 20 2, 11 0, 21 10, 31 0, 40 0.5, 41 0, 42 6.283185307179586",
        "closed 1 12, -4 2, 1 -8, 6 2");
    row("arc of an ellipse",
        "0 ELLIPSE, 8 a, 10 0, 20 0, 11 10, 21 0, 31 0, 40 0.5, 41 0, 42 3.141592653589793",
        "open 10 0, 0 5, -10 0");
    row("mirrored arc of an ellipse",
        "0 ELLIPSE, 8 a, 10 0, 20 0, 11 10, 21 0, 31 0, 210 0, 220 0, 230 -1, 40 0.5, 41 0, "
        "42 3.141592653589793",
        "open 10 0, 0 -5, -10 0");
    // The control points lie within 3 of the chord: it alone is left.
    row("flat spline",
        "0 SPLINE, 8 a, 70 8, 71 2, 72 6, 73 3, 40 0, 40 0, 40 0, 40 1, 40 1, 40 1, 10 0, 20 0, "
        "30 0, 10 5, 20 2, 30 0, 10 10, 20 0, 30 0",
        "line 0 0, 10 0");
    // Halved once: the middle is a quarter, half and quarter of the control points.
    row("spline",
        "0 SPLINE, 8 a, 70 8, 71 2, 72 6, 73 3, 40 0, 40 0, 40 0, 40 1, 40 1, 40 1, 10 0, 20 0, "
        "30 0, 10 5, 20 8, 30 0, 10 10, 20 0, 30 0",
        "open 0 0, 5 4, 10 0");
    row("spline without knots",
        "0 SPLINE, 8 a, 70 8, 71 2, 73 3, 10 0, 20 0, 30 0, 10 5, 20 8, 30 0, 10 10, 20 0, 30 0",
        "open 0 0, 5 4, 10 0");
    // A quarter of a circle, halved once.
    row("spline with weights",
        "0 SPLINE, 8 a, 70 12, 71 2, 72 6, 73 3, 40 0, 40 0, 40 0, 40 1, 40 1, 40 1, 41 1, "
        "41 0.7071067811865476, 41 1, 10 10, 20 0, 30 0, 10 10, 20 10, 30 0, 10 0, 20 10, 30 0",
        "open 10 0, 7.0710678119 7.0710678119, 0 10");
    row("closed spline",
        "0 SPLINE, 8 a, 70 11, 71 1, 72 6, 73 4, 40 0, 40 0, 40 1, 40 2, 40 3, 40 3, 10 0, 20 0, "
        "10 9, 20 0, 10 9, 20 9, 10 0, 20 0",
        "closed 0 0, 9 0, 9 9, 0 0");
    row("spline of fit points",
        "0 SPLINE, 8 a, 70 0, 71 3, 74 3, 11 0, 21 0, 31 0, 11 1.5, 21 2, "
        "31 0, 11 3, 21 0, 31 0",
        "open 0 0, 1.5 2, 3 0");
    row("hatch with a polyline and one of edges",
        "0 HATCH, 8 a, 10 0, 20 0, 30 0, 210 0, 220 0, 230 1, 2 SOLID, 70 1, 71 0, 91 2, "
        "92 3, 72 1, 73 1, 93 3, 10 0.0, 20 0, 42 0, 10 20, 20 0, 42 1, 10 0, 20 5, 42 0, 97 0, "
        "92 1, 93 2, 72 1, 10 0, 20 10, 11 0, 21 -10, 72 2, 10 0, 20 0, 40 10, 50 270, 51 90, 73 "
        "1, "
        "97 0, 75 0, 76 1",
        "closed 0.0 0, 20 0, 12.5 12.5, 0 5; closed 0 10, 0 -10, 10 0, 0 10", [] {
            PrepareOptions options = coarse();
            options.tolerance = 20;
            options.hatches = true;
            return options;
        }());
    const auto hatch = [&row](const char* name, const char* boundary, const char* expected,
                           const char* normal = "0, 220 0, 230 1") {
        PrepareOptions options = coarse();
        options.hatches = true;
        const QByteArray entity = QByteArray("0 HATCH, 8 a, 10 0, 20 0, 30 0, 210 ") + normal
            + ", 2 SOLID, 70 1, 71 0, 91 1, " + boundary + ", 97 0, 75 0, 76 1, 98 1, 10 7, 20 7";
        row(name, entity.constData(), expected, options);
    };
    hatch("hatch with an arc of an ellipse",
        "92 1, 93 2, 72 3, 10 0, 20 0, 11 10, 21 0, 40 0.5, 50 0, 51 180, 73 1, 72 1, 10 -10, "
        "20 0, 11 10, 21 0",
        "closed 10 0, 0 5, -10 0, 10 0");
    // Counted clockwise, 270 to 450 degrees are -270 to -450: from the top over the right.
    hatch("hatch with a clockwise arc",
        "92 1, 93 2, 72 2, 10 0, 20 0, 40 10, 50 270, 51 450, 73 0, 72 1, 10 0, 20 -10, 11 0, 21 "
        "10",
        "closed 0 10, 10 0, 0 -10, 0 10");
    hatch("hatch with a spline",
        "92 1, 93 2, 72 4, 94 2, 73 0, 74 0, 95 6, 96 3, 40 0, 40 0, 40 0, 40 1, 40 1, 40 1, "
        "10 0, 20 0, 10 5, 20 8, 10 10, 20 0, 97 0, 72 1, 10 10, 20 0, 11 0, 21 0",
        "closed 0 0, 5 4, 10 0, 0 0");
    hatch("hatch with a spline with weights",
        "92 1, 93 3, 72 4, 94 2, 73 1, 74 0, 95 6, 96 3, 40 0, 40 0, 40 0, 40 1, 40 1, 40 1, "
        "10 10, 20 0, 42 1, 10 10, 20 10, 42 0.7071067811865476, 10 0, 20 10, 42 1, 97 0, "
        "72 1, 10 0, 20 10, 11 0, 21 0, 72 1, 10 0, 20 0, 11 10, 21 0",
        "closed 10 0, 7.0710678119 7.0710678119, 0 10, 0 0, 10 0");
    hatch("hatch with a whole circle", "92 1, 93 1, 72 2, 10 5, 20 5, 40 10, 50 0, 51 360, 73 1",
        "closed 15 5, 5 15, -5 5, 5 -5");
    hatch("mirrored hatch", "92 3, 72 0, 73 1, 93 3, 10 0, 20 0, 10 20.0, 20 0, 10 0, 20 5",
        "closed 0 0, -20 0, 0 5", "0, 220 0, 230 -1");
    row("order of contours stays",
        "0 LINE, 8 a, 10 5, 20 0, 11 6, 21 0, 0 ARC, 8 a, 10 0, 20 0, 40 10, 50 0, 51 90, 0 LINE, "
        "8 a, 10 1, 20 0, 11 2, 21 0",
        "line 5 0, 6 0; line 10 0, 0 10; line 1 0, 2 0");
}

void TestFlatten::entities()
{
    QFETCH(QString, entities);
    QFETCH(PrepareOptions, options);
    QFETCH(QString, expected);
    const Prepared result = prepared(drawingOf(entities.toUtf8()), options);
    QVERIFY(result.written);
    QCOMPARE(outline(result.bytes).join(QStringLiteral("; ")), expected);
    QVERIFY(!result.report.hasLosses());
}

void TestFlatten::sagitta_data()
{
    QTest::addColumn<QString>("entities");
    QTest::addColumn<QString>("blocks");
    QTest::addColumn<Curve>("curve");
    const auto row = [](const char* name, const char* entities, const Curve& curve,
                         const char* blocks = "") {
        QTest::newRow(name) << QString::fromLatin1(entities) << QString::fromLatin1(blocks)
                            << curve;
    };
    /// The arc of an ellipse along the axes of the world.
    const auto arc = [](double x, double y, double a, double b, double start, double sweep) {
        return [=](double part) {
            const double t = qDegreesToRadians(start + sweep * part);
            return prep::Planar{ x + a * std::cos(t), y + b * std::sin(t) };
        };
    };
    row("arc", "0 ARC, 8 a, 10 5, 20 -7, 40 100, 50 300, 51 200", arc(5, -7, 100, 100, 300, 260));
    row("circle", "0 CIRCLE, 8 a, 10 5, 20 -7, 40 100", arc(5, -7, 100, 100, 0, 360));
    row("mirrored arc", "0 ARC, 8 a, 10 5, 20 -7, 40 100, 50 0, 51 90, 210 0, 220 0, 230 -1",
        arc(-5, -7, -100, 100, 0, 90));
    row("tilted circle", "0 CIRCLE, 8 a, 10 0, 20 0, 40 100, 210 3, 220 0, 230 4",
        arc(0, 0, 80, 100, 90, 360));
    row("ellipse", "0 ELLIPSE, 8 a, 10 1, 20 2, 11 100, 21 0, 40 0.1, 41 0, 42 6.283185307179586",
        arc(1, 2, 100, 10, 0, 360));
    // The sagitta is half of half the chord: 5 on 20, and the radius (100 + 25) / 10.
    const double half = qRadiansToDegrees(2 * std::atan(0.5));
    row("bulge of a lwpolyline", "0 LWPOLYLINE, 8 a, 90 2, 70 0, 10 0, 20 0, 42 0.5, 10 20, 20 0",
        arc(10, 7.5, 12.5, 12.5, 270 - half, 2 * half));
    row("bulge of a polyline",
        "0 POLYLINE, 8 a, 66 1, 70 0, 0 VERTEX, 10 20, 20 0, 42 -0.5, 0 VERTEX, 10 0, 20 0, "
        "0 SEQEND",
        arc(10, 7.5, 12.5, 12.5, 270 + half, -2 * half));
    row("spline",
        "0 SPLINE, 8 a, 71 3, 40 0, 40 0, 40 0, 40 0, 40 1, 40 1, 40 1, 40 1, 10 0, 20 0, 10 0, "
        "20 80, 10 80, 20 80, 10 80, 20 0",
        [](double t) {
            const double s = 1 - t;
            return prep::Planar{ 80 * (3 * s + t) * t * t, 240 * s * t };
        });
    row("spline with weights",
        "0 SPLINE, 8 a, 71 2, 40 0, 40 0, 40 0, 40 1, 40 1, 40 1, 41 1, 41 0.7071067811865476, "
        "41 1, 10 100, 20 0, 10 100, 20 100, 10 0, 20 100",
        arc(0, 0, 100, 100, 0, 90));
    row("hatch with an arc",
        "0 HATCH, 8 a, 91 1, 92 1, 93 1, 72 2, 10 5, 20 5, 40 100, 50 0, 51 360, 73 1, 97 0, 75 0",
        arc(5, 5, 100, 100, 0, 360));
    row("hatch with an ellipse",
        "0 HATCH, 8 a, 91 1, 92 1, 93 1, 72 3, 10 5, 20 5, 11 0, 21 100, 40 0.25, 50 0, 51 360, "
        "73 1, 97 0, 75 0",
        arc(5, 5, 25, 100, 0, 360));
    row("arc in a stretched and mirrored insert",
        "0 INSERT, 8 a, 2 B, 10 1000, 20 0, 41 20, 42 3, 210 0, 220 0, 230 -1",
        arc(-1000, 0, -200, 30, 0, 180),
        "0 BLOCK, 2 B, 10 0, 20 0, 0 ARC, 10 0, 20 0, 40 10, 50 0, 51 180, 0 ENDBLK");
}

void TestFlatten::sagitta()
{
    QFETCH(QString, entities);
    QFETCH(QString, blocks);
    QFETCH(Curve, curve);
    const QByteArray drawing = drawingOf(entities.toUtf8(), blocks.toUtf8());
    for (const double tolerance : { 0.001, 0.01, 1.0 }) {
        PrepareOptions options;
        options.tolerance = tolerance;
        options.circles = prep::CircleMode::Contours;
        options.hatches = true;
        options.blocks = prep::BlockMode::Explode;
        const QStringList contours = outline(prepared(drawing, options).bytes);
        QCOMPARE(contours.size(), 1);
        const std::vector<prep::Planar> chords = placesOf(contours.first());
        // Coordinates are written with ten decimal places.
        QVERIFY(deviation(curve, chords) <= tolerance + 1e-9);
        QVERIFY(distanceFrom(curve, chords) <= 1e-3);
    }
    // The tolerance is that of the file, whatever its coordinates are multiplied by.
    PrepareOptions options;
    options.circles = prep::CircleMode::Contours;
    options.hatches = true;
    options.blocks = prep::BlockMode::Explode;
    const auto count = [&] {
        return placesOf(outline(prepared(drawing, options).bytes)[0]).size();
    };
    const size_t plain = count();
    options.scale = 1000;
    QCOMPARE(count(), plain);
}

void TestFlatten::leftOut_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<QString>("note");
    QTest::addColumn<bool>("loss");
    const auto row = [](const char* name, const char* entity, const char* note, bool loss) {
        QTest::newRow(name) << QString::fromUtf8(entity) << QString::fromUtf8(note) << loss;
    };
    row("paper space", "0 LINE, 67 1, 10 0, 20 0, 11 1, 21 1", "paper-space", false);
    row("polyline in paper space",
        "0 POLYLINE, 67 1, 66 1, 70 1, 0 VERTEX, 67 1, 10 0, 20 0, 0 VERTEX, 67 1, 10 1, 20 0, "
        "0 SEQEND",
        "paper-space", false);
    row("insert in paper space",
        "0 INSERT, 67 1, 66 1, 2 B, 10 0, 20 0, 0 ATTRIB, 67 1, 10 0, 20 0, 1 x, 2 N, 70 0, "
        "0 SEQEND",
        "paper-space", false);
    row("mesh",
        "0 POLYLINE, 66 1, 70 16, 71 2, 72 2, 0 VERTEX, 10 0, 20 0, 70 64, 0 VERTEX, 10 1, 20 0, "
        "70 64, 0 SEQEND",
        "mesh", false);
    row("polyface mesh", "0 POLYLINE, 66 1, 70 64, 0 VERTEX, 10 0, 20 0, 70 192, 0 SEQEND", "mesh",
        false);
    row("solid", "0 SOLID, 10 0, 20 0, 11 1, 21 1, 12 2, 22 2", "surface", false);
    row("viewport", "0 VIEWPORT, 10 0, 20 0", "no-contour", false);
    row("hatch", "0 HATCH, 91 0", "hatch", false);
    row("dimension", "0 DIMENSION, 2 *D1", "label", false);
    row("line without an end", "0 LINE, 10 0, 20 0, 11 1", "incomplete", true);
    row("line with a bad number", "0 LINE, 10 0, 20 0, 11 1, 21 x", "incomplete", true);
    row("line with a decimal comma", "0 LINE, 10 0, 20 0, 11 1, 21 2,5", "incomplete", true);
    row("line that ends nowhere", "0 LINE, 10 0, 20 0, 11 1, 21 inf", "incomplete", true);
    row("lwpolyline of one vertex", "0 LWPOLYLINE, 90 1, 70 0, 10 0, 20 0", "incomplete", true);
    row("polyline of one vertex", "0 POLYLINE, 66 1, 70 0, 0 VERTEX, 10 0, 20 0, 0 SEQEND",
        "incomplete", true);
    row("arc without a radius", "0 ARC, 10 0, 20 0, 50 0, 51 90", "incomplete", true);
    row("circle of no size", "0 CIRCLE, 10 0, 20 0, 40 0", "incomplete", true);
    row("ellipse of no size", "0 ELLIPSE, 10 0, 20 0, 11 0, 21 0, 40 1", "incomplete", true);
    row("spline of no degree", "0 SPLINE, 71 0, 10 0, 20 0", "incomplete", true);
    row("text without text", "0 TEXT, 10 0, 20 0", "incomplete", true);
    row("body", "0 3DSOLID, 1 abc", "unreadable", true);
    row("something else", "0 SOMETHING, 10 0, 20 0", "unreadable", true);
}

void TestFlatten::leftOut()
{
    QFETCH(QString, entity);
    QFETCH(QString, note);
    const Prepared result = prepared(drawingOf(entity.toUtf8()));
    QCOMPARE(outline(result.bytes), QStringList());
    QCOMPARE(result.notes(), QStringList{ note });
    QTEST(result.report.hasLosses(), "loss");
    QCOMPARE(result.report.kinds().size(), size_t(1));
}

void TestFlatten::layers_data()
{
    QTest::addColumn<PrepareOptions>("options");
    QTest::addColumn<QString>("taken");
    PrepareOptions options;
    QTest::newRow("all") << options << QStringLiteral("1 2 3 4 5");
    options.layers = QStringList{ QStringLiteral("уч*") };
    QTest::newRow("pattern without case") << options << QStringLiteral("1 2");
    options.skipLayers = QStringList{ QStringLiteral("*старые") };
    QTest::newRow("and left out") << options << QStringLiteral("1");
    options.layers.clear();
    QTest::newRow("left out alone") << options << QStringLiteral("1 3 4 5");
    options = PrepareOptions();
    options.layers = QStringList{ QStringLiteral("off"), QStringLiteral("frozen") };
    QTest::newRow("two patterns") << options << QStringLiteral("3 4");
    options = PrepareOptions();
    options.visibleOnly = true;
    QTest::newRow("visible") << options << QStringLiteral("1 2");
}

void TestFlatten::layers()
{
    QFETCH(PrepareOptions, options);
    const QByteArray drawing = drawingOf("0 LINE, 8 Участки, 10 1, 20 0, 11 0, 21 0, "
                                         "0 LINE, 8 Участки старые, 10 2, 20 0, 11 0, 21 0, "
                                         "0 LINE, 8 off, 10 3, 20 0, 11 0, 21 0, "
                                         "0 LINE, 8 frozen, 10 4, 20 0, 11 0, 21 0, "
                                         "0 LINE, 8 any, 60 1, 10 5, 20 0, 11 0, 21 0",
        "",
        "0 TABLE, 2 LAYER, 0 LAYER, 2 OFF, 70 0, 62 -7, 0 LAYER, 2 FROZEN, 70 1, 62 7, "
        "0 LAYER, 2 any, 70 0, 62 7, 0 ENDTAB");
    QStringList firsts;
    for (const QString& line : outline(prepared(drawing, options).bytes))
        firsts.append(line.section(QLatin1Char(' '), 1, 1));
    QTEST(firsts.join(QLatin1Char(' ')), "taken");
}

void TestFlatten::axesAndScale()
{
    const QByteArray drawing = drawingOf("0 LINE, 8 a, 10 1.50, 20 2.0, 11 3, 21 4, "
                                         "0 TEXT, 8 a, 10 7.0, 20 8, 40 2, 1 А, "
                                         "0 POINT, 8 a, 10 7.0, 20 8.00");
    PrepareOptions options;
    options.swapXY = true;
    QCOMPARE(outline(prepared(drawing, options).bytes),
        QStringList({ QStringLiteral("line 2.0 1.50, 4 3"), QStringLiteral("point 8.00 7.0"),
            QStringLiteral("text 8 7.0 А") }));
    options.swapXY = false;
    options.scale = 0.001;
    QCOMPARE(outline(prepared(drawing, options).bytes),
        QStringList({ QStringLiteral("line 0.0015 0.002, 0.003 0.004"),
            QStringLiteral("point 0.007 0.008"), QStringLiteral("text 0.007 0.008 А") }));
}

void TestFlatten::labelsAreSorted()
{
    const QByteArray drawing = drawingOf("0 TEXT, 8 a, 10 10, 20 5, 40 1, 1 в, "
                                         "0 TEXT, 8 a, 10 9, 20 7, 40 1, 1 б, "
                                         "0 TEXT, 8 a, 10 10, 20 -5, 40 1, 1 г, "
                                         "0 POINT, 8 a, 10 0, 20 0, "
                                         "0 TEXT, 8 a, 10 0, 20 0, 11 9, 21 6, 72 1, 40 1, 1 а");
    QCOMPARE(outline(prepared(drawing).bytes),
        QStringList({ QStringLiteral("point 0 0"), QStringLiteral("text 9 6 а"),
            QStringLiteral("text 9 7 б"), QStringLiteral("text 10 -5 г"),
            QStringLiteral("text 10 5 в") }));
}

void TestFlatten::pointBesideTexts()
{
    const Prepared result = prepared(
        drawingOf("0 LINE, 8 a, 10 -3.5, 20 0, 11 1, 21 0, 0 TEXT, 8 a, 10 2, 20 7, 40 1, 1 а"));
    QCOMPARE(outline(result.bytes),
        QStringList({ QStringLiteral("line -3.5 0, 1 0"), QStringLiteral("point -5 7"),
            QStringLiteral("text 2 7 а") }));
    QCOMPARE(result.notes(), QStringList{ QStringLiteral("point-added") });
}

void TestFlatten::pointsWithoutTexts()
{
    const Prepared result =
        prepared(drawingOf("0 POINT, 8 a, 10 0, 20 0, 0 LINE, 8 a, 10 0, 20 0, 11 1, 21 0"));
    QCOMPARE(outline(result.bytes), QStringList{ QStringLiteral("line 0 0, 1 0") });
    QCOMPARE(result.notes(), QStringList{ QStringLiteral("points-without-texts") });
    QVERIFY(!result.report.hasLosses());
}

void TestFlatten::twice_data()
{
    entities_data();
}

void TestFlatten::twice()
{
    QFETCH(QString, entities);
    QFETCH(PrepareOptions, options);
    const QByteArray once = prepared(drawingOf(entities.toUtf8()), options).bytes;
    const Prepared again = prepared(once, options);
    QCOMPARE(again.bytes, once);
    QCOMPARE(again.notes(), QStringList());
}

void TestFlatten::hostile_data()
{
    QTest::addColumn<QByteArray>("drawing");
    QTest::addColumn<QString>("note");
    const auto row = [](const char* name, const QByteArray& drawing, const char* note) {
        QTest::newRow(name) << drawing << QString::fromLatin1(note);
    };
    row("infinite bulge", drawingOf("0 LWPOLYLINE, 90 2, 70 0, 10 0, 20 0, 42 1e400, 10 1, 20 1"),
        "coarse-chords");
    row("bulge that is no number",
        drawingOf("0 LWPOLYLINE, 90 2, 70 0, 10 0, 20 0, 42 nan, 10 1, 20 1"), "coarse-chords");
    row("coordinates at the end of all numbers",
        drawingOf("0 LWPOLYLINE, 90 2, 70 0, 10 -1e308, 20 0, 42 1, 10 1e308, 20 1e308"),
        "coarse-chords");
    row("spline of absurd degree",
        drawingOf("0 SPLINE, 71 2147483647, 72 2147483647, 73 2147483647, 40 0, 10 0, 20 0, 30 0"),
        "incomplete");
    row("arc as large as the sun", drawingOf("0 ARC, 10 0, 20 0, 40 1e15, 50 0, 51 90"),
        "coarse-chords");
    row("ellipse beyond all numbers",
        drawingOf("0 ELLIPSE, 10 0, 20 0, 11 1e308, 21 1e308, 40 1e308, 41 0, 42 1"), "incomplete");
}

void TestFlatten::hostile()
{
    QFETCH(QByteArray, drawing);
    QFETCH(QString, note);
    const Prepared result = prepared(drawing);
    QVERIFY(result.written);
    QVERIFY2(result.notes().contains(note), qUtf8Printable(result.notes().join(QLatin1Char(' '))));
    QVERIFY(result.report.hasLosses());
    QVERIFY(result.bytes.size() < 8 << 20);
    QVERIFY(!result.bytes.contains("nan") && !result.bytes.contains("inf"));
}

QTEST_APPLESS_MAIN(TestFlatten)
#include "tst_flatten.moc"
