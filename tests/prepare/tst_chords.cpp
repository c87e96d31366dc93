// Chords of curves: on the curve, as close to it as asked, and no more of them than that takes.

#include "deviation.h"

#include <QTest>
#include <QtMath>

#include <cmath>

using namespace prep;

namespace {

constexpr qint64 noLimit = 100000000;

Planar operator*(const Planar& a, double factor)
{
    return { a.x * factor, a.y * factor };
}

Planar operator+(const Planar& a, const Planar& b)
{
    return { a.x + b.x, a.y + b.y };
}

Planar planar(const Vec3& place)
{
    return { place.x, place.y };
}

} // namespace

class TestChords : public QObject {
    Q_OBJECT

private slots:
    void conics_data();
    void conics();
    void bulges_data();
    void bulges();
    void halfCircle();
    void mirroredBulge();
    void flatBulge();
    void endlessBulge();
    void polynomialSpline();
    void splineOfSpans();
    void rationalCircle();
    void badSplines_data();
    void badSplines();
    void limits();
};

void TestChords::conics_data()
{
    QTest::addColumn<double>("a");
    QTest::addColumn<double>("b");
    QTest::addColumn<double>("skew");
    QTest::addColumn<double>("sweep");
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<int>("count");

    // The chord of the angle h leaves the sagitta r (1 - cos(h / 2)). For r = 100 and 0.01 that is
    // h = 2 acos(0.9999) = 0.0282845: 222.14 chords to the full turn, so 223.
    QTest::newRow("circle") << 100.0 << 100.0 << 0.0 << 2 * M_PI << 0.01 << 223;
    // A quarter of it: 55.5.
    QTest::newRow("quarter") << 100.0 << 100.0 << 0.0 << M_PI_2 << 0.01 << 56;
    QTest::newRow("clockwise quarter") << 100.0 << 100.0 << 0.0 << -M_PI_2 << 0.01 << 56;
    // h = 2 acos(0.999) = 0.0894502: 70.24.
    QTest::newRow("coarser") << 100.0 << 100.0 << 0.0 << 2 * M_PI << 0.1 << 71;
    // No circle has fewer than four chords, however small it is.
    QTest::newRow("tiny circle") << 0.001 << 0.001 << 0.0 << 2 * M_PI << 0.01 << 4;
    // The longer half axis decides.
    QTest::newRow("ellipse") << 100.0 << 10.0 << 0.0 << 2 * M_PI << 0.01 << 223;
    // Half diameters (1, 0) and (1, 1): the longer half axis is the root of (3 + sqrt 5) / 2, which
    // is 1.618034; h = 2 acos(1 - 0.001 / 1.618034) = 0.0703205: 89.35.
    QTest::newRow("skewed circle") << 1.0 << 1.0 << 1.0 << 2 * M_PI << 0.001 << 90;
}

void TestChords::conics()
{
    QFETCH(double, a);
    QFETCH(double, b);
    QFETCH(double, skew);
    QFETCH(double, sweep);
    QFETCH(double, tolerance);
    const Vec3 centre{ 1000, -500, 7 };
    const Vec3 first{ a, 0, 3 };
    const Vec3 second{ skew, b, -2 };
    const double start = 0.3;
    const auto curve = [&](double part) {
        const double t = start + sweep * part;
        return planar(centre + first * std::cos(t) + second * std::sin(t));
    };
    ChordMaker chords(tolerance, noLimit);
    std::vector<Planar> places{ curve(0) };
    chords.appendInner(centre, first, second, start, sweep, places);
    places.push_back(curve(1));

    QTEST(static_cast<int>(places.size()) - 1, "count");
    if (std::hypot(a, skew) > tolerance)
        QVERIFY(deviation(curve, places) <= tolerance * (1 + 1e-6));
    QVERIFY(!chords.takeCoarse());
}

void TestChords::bulges_data()
{
    QTest::addColumn<double>("bulge");
    QTest::newRow("slight") << 0.01;
    QTest::newRow("quarter") << std::tan(M_PI / 8);
    QTest::newRow("half") << 1.0;
    QTest::newRow("more than half") << 3.0;
    QTest::newRow("nearly whole") << 100.0;
    QTest::newRow("clockwise") << -0.5;
}

void TestChords::bulges()
{
    QFETCH(double, bulge);
    constexpr double tolerance = 0.001;
    const Vec3 from{ 10, 20, 0 };
    const Vec3 to{ 13, 24, 0 };
    // The sagitta of the arc is the bulge times half the chord, which is 5 long. The arc bulges to
    // the right of the way for positive ones. From the three points follows the circle.
    const double sagitta = bulge * 2.5;
    const double radius = (2.5 * 2.5 + sagitta * sagitta) / (2 * std::abs(sagitta));
    const Planar right{ 0.8, -0.6 };
    const Planar middle{ 11.5, 22 };
    const Planar top = middle + right * sagitta;
    const Planar centre = top + right * (bulge > 0 ? -radius : radius);

    ChordMaker chords(tolerance, noLimit);
    std::vector<Planar> places{ planar(from) };
    chords.appendBulge(from, to, bulge, Affine(), places);
    places.push_back(planar(to));

    for (const Planar& place : places) {
        const double distance = std::hypot(place.x - centre.x, place.y - centre.y);
        QVERIFY(std::abs(distance - radius) < 1e-9 * std::max(radius, 1.0));
    }
    const double start = std::atan2(from.y - centre.y, from.x - centre.x);
    const double sweep = 4 * std::atan(bulge);
    const auto curve = [&](double part) {
        const double t = start + sweep * part;
        return centre + Planar{ std::cos(t), std::sin(t) } * radius;
    };
    QVERIFY(deviation(curve, places) <= tolerance * (1 + 1e-6));
}

void TestChords::halfCircle()
{
    // From (0, 0) to (2, 0) anticlockwise about (1, 0): below, over (1, -1).
    ChordMaker chords(0.3, noLimit);
    std::vector<Planar> places;
    chords.appendBulge({ 0, 0, 0 }, { 2, 0, 0 }, 1, Affine(), places);
    QCOMPARE(places.size(), size_t(1));
    QVERIFY(std::abs(places[0].x - 1) < 1e-12);
    QVERIFY(std::abs(places[0].y + 1) < 1e-12);
}

void TestChords::mirroredBulge()
{
    ChordMaker chords(0.3, noLimit);
    std::vector<Planar> places;
    chords.appendBulge({ 0, 0, 0 }, { 2, 0, 0 }, 1, Affine::ofExtrusion({ 0, 0, -1 }), places);
    QCOMPARE(places.size(), size_t(1));
    QVERIFY(std::abs(places[0].x + 1) < 1e-12);
    QVERIFY(std::abs(places[0].y + 1) < 1e-12);
}

void TestChords::flatBulge()
{
    ChordMaker chords(0.01, noLimit);
    std::vector<Planar> places;
    chords.appendBulge({ 0, 0, 0 }, { 100, 0, 0 }, 1e-9, Affine(), places);
    QVERIFY(places.empty());
    QVERIFY(!chords.takeCoarse());
}

void TestChords::endlessBulge()
{
    for (const double bulge : { std::numeric_limits<double>::infinity(), 1e200, 1e-320 }) {
        ChordMaker chords(0.01, noLimit);
        std::vector<Planar> places;
        chords.appendBulge({ 0, 0, 0 }, { 1, 0, 0 }, bulge, Affine(), places);
        QVERIFY(places.empty());
        QVERIFY(chords.takeCoarse());
    }
}

void TestChords::polynomialSpline()
{
    // One cubic piece: (0, 0), (0, 8), (8, 8), (8, 0).
    SplineShape spline;
    spline.degree = 3;
    spline.knots = { 0, 0, 0, 0, 1, 1, 1, 1 };
    spline.controls = { { 0, 0, 0 }, { 0, 8, 0 }, { 8, 8, 0 }, { 8, 0, 0 } };
    const auto curve = [](double t) {
        const double s = 1 - t;
        return Planar{ 3 * s * t * t * 8 + t * t * t * 8, 3 * s * s * t * 8 + 3 * s * t * t * 8 };
    };
    ChordMaker chords(0.01, noLimit);
    std::vector<Planar> places;
    QVERIFY(chords.appendSpline(spline, Affine(), places));
    QCOMPARE(places.front().x, 0.0);
    QCOMPARE(places.back().x, 8.0);
    QCOMPARE(places.back().y, 0.0);
    QVERIFY(deviation(curve, places) <= 0.01);
    // It rises to 6 in its middle, where x is 4: halving meets this place.
    const auto middle = std::find_if(
        places.begin(), places.end(), [](const Planar& place) { return place.x == 4.0; });
    QVERIFY(middle != places.end());
    QCOMPARE(middle->y, 6.0);
    QVERIFY(places.size() < 60);
}

void TestChords::splineOfSpans()
{
    // A quadratic of two spans and one double knot that leaves an empty one. In the middle of the
    // first span of knots 0 0 0 1 2 2 2 the basis is 1/4, 5/8, 1/8: half of (3/4, 1/4) and so on by
    // de Boor's algorithm: d1 = (P0 + P1) / 2, d2 = P1 + (P2 - P1) / 4, then their middle.
    SplineShape spline;
    spline.degree = 2;
    spline.knots = { 0, 0, 0, 1, 2, 2, 2 };
    spline.controls = { { 0, 0, 0 }, { 8, 0, 0 }, { 8, 8, 0 }, { 0, 8, 0 } };
    ChordMaker chords(1e-6, noLimit);
    std::vector<Planar> places;
    QVERIFY(chords.appendSpline(spline, Affine(), places));
    const auto holds = [&places](double x, double y) {
        return std::any_of(places.begin(), places.end(), [x, y](const Planar& place) {
            return std::abs(place.x - x) < 1e-12 && std::abs(place.y - y) < 1e-12;
        });
    };
    QVERIFY(holds(0, 0));
    QVERIFY(holds(6, 1)); // d1 = (4, 0), d2 = (8, 2)
    QVERIFY(holds(8, 4)); // at the knot 1: the middle of P1 and P2
    QVERIFY(holds(6, 7));
    QVERIFY(holds(0, 8));
}

void TestChords::rationalCircle()
{
    // A quarter of the unit circle with the weights 1, cos 45°, 1: every point is 1 from the
    // centre.
    SplineShape spline;
    spline.degree = 2;
    spline.knots = { 0, 0, 0, 1, 1, 1 };
    spline.controls = { { 1, 0, 0 }, { 1, 1, 0 }, { 0, 1, 0 } };
    spline.weights = { 1, std::sqrt(0.5), 1 };
    constexpr double tolerance = 1e-5;
    ChordMaker chords(tolerance, noLimit);
    std::vector<Planar> places;
    QVERIFY(chords.appendSpline(spline, Affine(), places));
    for (const Planar& place : places)
        QVERIFY(std::abs(std::hypot(place.x, place.y) - 1) < 1e-12);
    const auto circle = [](double t) {
        return Planar{ std::cos(t * M_PI_2), std::sin(t * M_PI_2) };
    };
    QVERIFY(deviation(circle, places) <= tolerance);
}

void TestChords::badSplines_data()
{
    QTest::addColumn<int>("degree");
    QTest::addColumn<QVector<double>>("knots");
    QTest::addColumn<QVector<double>>("weights");
    const QVector<double> knots{ 0, 0, 0, 1, 1, 1 };
    QTest::newRow("degree 0") << 0 << knots << QVector<double>();
    QTest::newRow("degree beyond all bounds") << 2147483647 << knots << QVector<double>();
    QTest::newRow("more degree than points") << 3 << knots << QVector<double>();
    QTest::newRow("too few knots") << 2 << QVector<double>{ 0, 0, 1, 1 } << QVector<double>();
    QTest::newRow("falling knots") << 2 << QVector<double>{ 0, 0, 1, 0, 1, 1 } << QVector<double>();
    QTest::newRow("equal knots") << 2 << QVector<double>(6, 1.0) << QVector<double>();
    QTest::newRow("too few weights") << 2 << knots << QVector<double>{ 1 };
    QTest::newRow("weight 0") << 2 << knots << QVector<double>{ 1, 0, 1 };
    QTest::newRow("negative weight") << 2 << knots << QVector<double>{ 1, -1, 1 };
}

void TestChords::badSplines()
{
    QFETCH(int, degree);
    QFETCH(QVector<double>, knots);
    QFETCH(QVector<double>, weights);
    SplineShape spline;
    spline.degree = degree;
    spline.knots.assign(knots.begin(), knots.end());
    spline.weights.assign(weights.begin(), weights.end());
    spline.controls = { { 0, 0, 0 }, { 1, 1, 0 }, { 2, 0, 0 } };
    ChordMaker chords(0.01, noLimit);
    std::vector<Planar> places;
    QVERIFY(!chords.appendSpline(spline, Affine(), places));
    QVERIFY(places.empty());
}

void TestChords::limits()
{
    // A circle as large as the sun would take millions of chords.
    ChordMaker chords(0.01, noLimit);
    std::vector<Planar> places;
    chords.appendInner({ 0, 0, 0 }, { 1e12, 0, 0 }, { 0, 1e12, 0 }, 0, 2 * M_PI, places);
    QCOMPARE(places.size(), size_t(99999));
    QVERIFY(chords.takeCoarse());
    QVERIFY(!chords.takeCoarse());

    ChordMaker few(0.01, 300);
    places.clear();
    few.appendInner({ 0, 0, 0 }, { 100, 0, 0 }, { 0, 100, 0 }, 0, 2 * M_PI, places);
    QVERIFY(!few.takeCoarse());
    few.appendInner({ 0, 0, 0 }, { 100, 0, 0 }, { 0, 100, 0 }, 0, 2 * M_PI, places);
    QVERIFY(few.takeCoarse());
    QCOMPARE(places.size(), size_t(222 + 76));

    SplineShape spline;
    spline.degree = 2;
    spline.knots = { 0, 0, 0, 1, 1, 1 };
    spline.controls = { { 0, 0, 0 }, { 1e300, 1e300, 0 }, { 0, 1, 0 } };
    ChordMaker spent(0.01, 50);
    places.clear();
    QVERIFY(spent.appendSpline(spline, Affine(), places));
    QVERIFY(spent.takeCoarse());
    QVERIFY(places.size() <= 51);
}

QTEST_APPLESS_MAIN(TestChords)
#include "tst_chords.moc"
