#include "geometry/nearestindex.h"
#include "geometry/pointorder.h"
#include "geometry/sequenceindex.h"

#include "literal/literalgeometry.h"
#include "support/random.h"
#include "support/records.h"
#include "support/specialvalues.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

class TestNearest : public QObject {
    Q_OBJECT

private slots:
    void finds_data();
    void finds();
    void findsInAnyOrder_data();
    void findsInAnyOrder();
    void likeTheSearch_data();
    void likeTheSearch();
    void manyInAColumn();
    void arcsLikeTheSearch_data();
    void arcsLikeTheSearch();
    void manyOnACircle();
    void manyClosingIn();
    void manyAtOneDistance_data();
    void manyAtOneDistance();
    void knowsSorted_data();
    void knowsSorted();
};

namespace {

using Points = QVector<DefPoint>;
using Coordinate = std::function<double(Random&)>;
using Place = std::function<QPointF(Random&)>;

int indexOf(const Points& points, const DefPoint* point)
{
    return point ? static_cast<int>(point - points.constData()) : -1;
}

Points pointsAt(const QVector<QPointF>& places)
{
    Points points;
    for (const QPointF& place : places)
        points.append(DefPoint{ QString(), place.x(), place.y() });
    return points;
}

/// Points in one of the orders in which a file may hold them.
void putInOrder(Points& points, int order)
{
    const auto byX = [](const DefPoint& a, const DefPoint& b) { return a.x < b.x; };
    switch (order) {
    case 0:
        sortPoints(points);
        return;
    case 1:
        sortPoints(points);
        std::reverse(points.begin(), points.end());
        return;
    case 2:
        literal::sortPoints(points);
        std::stable_sort(points.begin(), points.begin() + points.size() / 2,
            [](const DefPoint& a, const DefPoint& b) { return a.y > b.y; });
        return;
    case 3:
        points = literal::definedPoints(points);
        std::stable_sort(points.begin(), points.end(), byX);
        return;
    default:
        return; // as they came
    }
}

constexpr double fullTurn = 6.283185307179586;

QPointF onCircle(double turns, double radius, const QPointF& centre = {})
{
    const double angle = turns * fullTurn;
    return centre + QPointF(std::cos(angle), std::sin(angle)) * radius;
}

} // namespace

Q_DECLARE_METATYPE(Coordinate)
Q_DECLARE_METATYPE(Place)

void TestNearest::finds_data()
{
    using Places = QVector<QPointF>;
    QTest::addColumn<Places>("places");
    QTest::addColumn<QPointF>("query");
    QTest::addColumn<int>("expected");

    QTest::newRow("empty") << Places{} << QPointF(1, 2) << -1;
    QTest::newRow("one, whatever the query") << Places{ { 5, 5 } } << QPointF(-1000, 1e6) << 0;
    QTest::newRow("the nearest by distance, not by x")
        << Places{ { 0, 0 }, { 1, 50 }, { 4, 1 } } << QPointF(1, 1) << 0;
    QTest::newRow("equal distance left and right: the right one is met first")
        << Places{ { -1, 0 }, { 1, 0 } } << QPointF(0, 0) << 1;
    QTest::newRow("the predecessor is met before the points after the lower bound")
        << Places{ { -1, 0 }, { 0, 9 }, { 1, 0 } } << QPointF(0, 0) << 0;
    QTest::newRow("right of all: predecessor")
        << Places{ { 0, 0 }, { 1, 0 }, { 2, 0 } } << QPointF(9, 0) << 2;
    QTest::newRow("right of all: backward scan")
        << Places{ { 0, 0 }, { 1, 0 }, { 2, 50 } } << QPointF(3, 0) << 1;
    QTest::newRow("left of all: forward scan")
        << Places{ { 0, 90 }, { 1, 0 }, { 2, 0 } } << QPointF(-3, 0) << 1;
    QTest::newRow("at exactly the pruning distance a point is examined, and does not replace")
        << Places{ { 0, 3 }, { 3, 0 } } << QPointF(0, 0) << 0;
    QTest::newRow("equal places: the lower bound")
        << Places{ { 1, 1 }, { 1, 1 }, { 1, 1 } } << QPointF(1, 1) << 0;
    QTest::newRow("equal places left of the query: the last")
        << Places{ { 1, 1 }, { 1, 1 }, { 1, 1 } } << QPointF(2, 1) << 2;
    QTest::newRow("an infinite distance is none")
        << Places{ { -infinite, 0 }, { 0, infinite }, { infinite, 0 } } << QPointF(0, 0) << -1;
    QTest::newRow("the square overflows") << Places{ { 1e200, 0 } } << QPointF(0, 0) << -1;
    QTest::newRow("query not a number")
        << Places{ { 0, 0 }, { 1, 0 } } << QPointF(undefined, 0) << -1;
    QTest::newRow("query at infinity")
        << Places{ { 0, 0 }, { 1, 0 } } << QPointF(infinite, 0) << -1;
    QTest::newRow("one that is not a number is none")
        << Places{ { undefined, 0 }, { 0, undefined } } << QPointF(0, 0) << -1;
    // The expected index counts the points that are numbers.
    QTest::newRow("behind one that is not a number")
        << Places{ { 0, 0 }, { 1, undefined }, { 2, 0 } } << QPointF(1.5, 0) << 1;
    QTest::newRow("one that is not a number is not the lower bound")
        << Places{ { -1, 0 }, { 0, undefined }, { 1, 0 } } << QPointF(0, 0) << 1;
    QTest::newRow("one that is not a number is not the predecessor")
        << Places{ { -1, 0 }, { -0.5, undefined }, { 0, 9 }, { 1, 0 } } << QPointF(0, 0) << 0;
    QTest::newRow("an infinite one is the lower bound")
        << Places{ { -1, 0 }, { 0, infinite }, { 1, 0 } } << QPointF(0, 0) << 0;
    QTest::newRow("all squares underflow: the lower bound")
        << Places{ { -2e-170, 0 }, { -1e-170, 0 }, { 1e-170, 0 }, { 2e-170, 0 } } << QPointF(0, 0)
        << 2;
    QTest::newRow("all differences are absorbed: the last, left of the query")
        << Places{ { 0, 5 }, { 1, 0 }, { 1, 7 }, { 2, -3 } } << QPointF(1e20, 0) << 3;
    // The second and the third are equally near, in the order of y.
    QTest::newRow("the first of those right of the query")
        << Places{ { 0, 9 }, { 1, -1 }, { 1, 1 } } << QPointF(0, 0) << 1;
    QTest::newRow("the last of those left of the query")
        << Places{ { -2, 9 }, { -1, -1 }, { -1, 1 }, { -0.5, 9 } } << QPointF(0, 0) << 2;
}

void TestNearest::finds()
{
    QFETCH(QVector<QPointF>, places);
    QFETCH(QPointF, query);
    QFETCH(int, expected);
    const Points points = pointsAt(places);
    QCOMPARE(literal::findNearestPoint(literal::definedPoints(points), query), expected);

    const NearestIndex sorted(points);
    QCOMPARE(indexOf(sorted.points(), sorted.find(query)), expected);
    const SequenceIndex any(points);
    QCOMPARE(indexOf(any.points(), any.find(query)), expected);
}

void TestNearest::findsInAnyOrder_data()
{
    using Places = QVector<QPointF>;
    QTest::addColumn<Places>("places");
    QTest::addColumn<QPointF>("query");
    QTest::addColumn<int>("expected");

    // Halving asks 80 and 90 and ends between 4 and 90. At 80 the way forward ends.
    QTest::newRow("the search ends before it comes to the nearest")
        << Places{ { 4, 0 }, { 90, 0 }, { 80, 0 }, { 5, 0 } } << QPointF(5, 0) << 0;
    QTest::newRow("falling: the nearest is met on the way back")
        << Places{ { 9, 0 }, { 5, 0 }, { 1, 0 } } << QPointF(10, 0) << 0;
    QTest::newRow("one x, equal distances: the first is met first")
        << Places{ { 3, 9 }, { 3, 1 }, { 3, -1 } } << QPointF(3, 0) << 1;
    QTest::newRow("left of the query: met backward")
        << Places{ { 3, 1 }, { 3, -1 }, { 3, 9 } } << QPointF(4, 0) << 1;
    QTest::newRow("not a number does not count in halving")
        << Places{ { 4, 0 }, { undefined, 0 }, { 90, 0 }, { 80, 0 }, { 0, undefined }, { 5, 0 } }
        << QPointF(5, 0) << 0;
}

void TestNearest::findsInAnyOrder()
{
    QFETCH(QVector<QPointF>, places);
    QFETCH(QPointF, query);
    QFETCH(int, expected);
    const Points points = pointsAt(places);
    QCOMPARE(literal::findNearestPoint(literal::definedPoints(points), query), expected);
    const SequenceIndex index(points);
    QCOMPARE(indexOf(index.points(), index.find(query)), expected);
}

void TestNearest::likeTheSearch_data()
{
    QTest::addColumn<Coordinate>("x");
    QTest::addColumn<Coordinate>("y");
    QTest::addColumn<int>("most");

    const Coordinate anywhere = [](Random& r) { return r.between(-100, 100); };
    const Coordinate coarse = [](Random& r) { return double(r.below(8)); };
    const Coordinate fine = [](Random& r) { return r.below(40) * 0.0125; };
    const Coordinate same = [](Random&) { return 12.5; };
    const Coordinate huge = [](Random& r) {
        return (r.below(21) - 10) * 1e299 + r.below(3) * 1e153;
    };
    const Coordinate roots = [](Random& r) { return (r.below(21) - 10) * 1.2e153; };
    const Coordinate tiny = [](Random& r) { return (r.below(21) - 10) * 5e-324; };
    const Coordinate small = [](Random& r) { return (r.below(21) - 10) * 1e-162; };
    const Coordinate zeros = [](Random& r) { return r.oneIn(2) ? 0.0 : -0.0; };
    const Coordinate someInfinite = [coarse](Random& r) {
        return r.oneIn(6) ? (r.oneIn(2) ? infinite : -infinite) : coarse(r);
    };
    const Coordinate someNan = [coarse](Random& r) { return r.oneIn(9) ? undefined : coarse(r); };
    const Coordinate anything = [](Random& r) { return r.anyDouble(); };
    const Coordinate far = [](Random& r) { return 1e15 + r.below(16) * 0.125; };
    const Coordinate tinier = [](Random& r) { return (r.below(401) - 200) * 1e-170; };
    const Coordinate someBig = [coarse](Random& r) { return r.oneIn(9) ? 1e20 : coarse(r); };
    const Coordinate largest = [](Random& r) { return (r.below(3) - 1) * 1e308; };

    QTest::newRow("random") << anywhere << anywhere << 400;
    QTest::newRow("coarse grid: many exact ties") << coarse << coarse << 300;
    QTest::newRow("fine grid") << fine << fine << 400;
    QTest::newRow("one column") << same << anywhere << 300;
    QTest::newRow("one column of ties") << same << coarse << 100;
    QTest::newRow("one row") << anywhere << same << 300;
    QTest::newRow("one place") << same << same << 60;
    QTest::newRow("zeros of either sign") << zeros << zeros << 40;
    QTest::newRow("zeros against a grid") << zeros << coarse << 60;
    QTest::newRow("huge") << huge << huge << 100;
    QTest::newRow("huge column") << same << huge << 100;
    QTest::newRow("squares on either side of the largest double") << roots << roots << 100;
    QTest::newRow("denormal") << tiny << tiny << 100;
    QTest::newRow("squares that underflow") << small << small << 200;
    QTest::newRow("underflow against a grid") << small << coarse << 200;
    QTest::newRow("infinite here and there") << someInfinite << someInfinite << 80;
    QTest::newRow("not a number here and there") << someNan << someNan << 12;
    QTest::newRow("not a number among many") << someNan << anywhere << 1200;
    QTest::newRow("squares that are nothing") << tinier << tinier << 1500;
    QTest::newRow("squares that are nothing, in columns") << coarse << tinier << 1500;
    QTest::newRow("squares that are nothing, in rows") << tinier << coarse << 1500;
    QTest::newRow("far queries absorb all differences") << someBig << someBig << 900;
    QTest::newRow("close to the largest double") << largest << largest << 200;
    QTest::newRow("many in a row") << anywhere << same << 3000;
    QTest::newRow("many in a column") << same << anywhere << 3000;
    QTest::newRow("many in some columns") << coarse << anywhere << 3000;
    QTest::newRow("many on a grid") << fine << fine << 3000;
    QTest::newRow("any double") << anything << anything << 60;
    QTest::newRow("far from the origin") << far << far << 200;
}

void TestNearest::likeTheSearch()
{
    QFETCH(Coordinate, x);
    QFETCH(Coordinate, y);
    QFETCH(int, most);
    Random random(8);
    const QVector<double> odd{ undefined, infinite, -infinite, 0.0, -0.0, 1e300, -1e300, 5e-324,
        0.5, 3.5, 1e20, -1e20, 1e-170 };
    for (int round = 0; round < 150; ++round) {
        Points points;
        for (int i = random.below(most); i > 0; --i)
            points.append(DefPoint{ QString::number(i), x(random), y(random) });
        putInOrder(points, round % 6);
        const bool isSorted = arePointsSorted(points);
        QVERIFY(isSorted || round % 6 != 0);
        const Points defined = literal::definedPoints(points);
        const NearestIndex sorted(isSorted ? points : Points());
        const SequenceIndex any(points);
        for (int i = 0; i < 60; ++i) {
            const QPointF query(random.oneIn(5) ? random.pick(odd) : x(random),
                random.oneIn(5) ? random.pick(odd) : y(random));
            const int expected = literal::findNearestPoint(defined, query);
            const int inAny = indexOf(any.points(), any.find(query));
            const int inSorted = isSorted ? indexOf(sorted.points(), sorted.find(query)) : expected;
            if (inAny != expected || inSorted != expected) {
                QFAIL(qPrintable(QStringLiteral("%1 %2 in %3: %4 and %5, expected %6")
                                     .arg(describe(query.x()), describe(query.y()),
                                         describe(DefPolygon{ QString(), { points } }))
                                     .arg(inSorted)
                                     .arg(inAny)
                                     .arg(expected)));
            }
        }
    }
}

void TestNearest::manyInAColumn()
{
    constexpr int count = 200000;
    Points points;
    for (int i = 0; i < count; ++i)
        points.append(DefPoint{ QString(), 7, double(i) });
    const NearestIndex sorted(points);
    const SequenceIndex any(points);
    for (int i = 0; i < count; ++i) {
        const QPointF query(i % 2 ? 7.25 : 6.75, i + 0.25);
        QCOMPARE(indexOf(sorted.points(), sorted.find(query)), i);
        QCOMPARE(indexOf(any.points(), any.find(query)), i);
    }
}

void TestNearest::arcsLikeTheSearch_data()
{
    QTest::addColumn<Place>("label");
    QTest::addColumn<Place>("query");

    const auto circle = [](double radius, double thickness, const QPointF& centre) -> Place {
        return [=](Random& r) {
            return onCircle(r.between(0, 1), radius * (1 + thickness * r.between(0, 1)), centre);
        };
    };
    const auto near = [](double distance, const QPointF& centre) -> Place {
        return [=](Random& r) {
            return onCircle(r.between(0, 1), distance * r.between(0, 1), centre);
        };
    };
    const auto onLine = [](double slope) -> Place {
        return [=](Random& r) {
            const double x = r.below(1 << 16) / 64.0;
            return QPointF(x, x * slope);
        };
    };
    const QPointF city(503218.25, 6172301.5);
    for (const double distance :
        { 0.0, 1e-170, 1e-17, 1e-15, 1e-12, 1e-6, 1e-3, 0.5, 0.999, 2.0, 1e4, 1e9, 1e17, 1e160 }) {
        QTest::addRow("a circle, queries within %g", distance)
            << circle(1, 0, {}) << near(distance, {});
    }
    for (const double distance : { 0.0, 1e-9, 1e-3, 10.0, 300.0 }) {
        QTest::addRow("a circle far from the origin, queries within %g", distance)
            << circle(250, 0, city) << near(distance, city);
    }
    QTest::newRow("a ring") << circle(250, 0.01, {}) << near(3, {});
    QTest::newRow("a disc") << circle(250, -1, {}) << near(300, {});
    QTest::newRow("circles inside each other")
        << Place([](Random& r) { return onCircle(r.below(1 << 12) / 4096.0, 1 + r.below(3)); })
        << near(2, {});
    QTest::newRow("a small circle beside a large one") << Place([](Random& r) {
        return r.oneIn(2) ? onCircle(r.between(0, 1), 1e-6, { 1000, 1 })
                          : onCircle(r.between(0, 1), 1000);
    }) << near(1e-3, { 1, 1 });
    QTest::newRow("a circle of hardly any size") << circle(1e-150, 0, {}) << near(1e-155, {});
    QTest::newRow("a circle of hardly finite size") << circle(1e150, 0, {}) << near(1e140, {});
    QTest::newRow("a few places of a circle")
        << Place([](Random& r) { return onCircle(r.below(12) / 12.0, 5); }) << near(1e-3, {});
    for (const double distance : { 1.0, 1e3, 1e6, 1e8, 1e11, 1e15, 1e18 }) {
        QTest::addRow("a line at an angle, queries at %g", distance)
            << onLine(-1) << near(500, { distance, distance });
    }
    QTest::newRow("a line, queries on both sides") << onLine(0.5) << Place([](Random& r) {
        const double side = r.oneIn(2) ? 1e4 : -1e4;
        return QPointF(-side + r.between(0, 1), 2 * side);
    });
    QTest::newRow("a parabola") << Place([](Random& r) {
        const double x = r.between(-1, 1);
        return QPointF(x, x * x);
    }) << near(1e-3, { 0, 0.5 });
}

void TestNearest::arcsLikeTheSearch()
{
    QFETCH(Place, label);
    QFETCH(Place, query);
    Random random(31);
    QVector<QPointF> places;
    for (int i = 0; i < 2000; ++i)
        places.append(label(random));
    const Points unsorted = pointsAt(places);
    Points points = unsorted;
    sortPoints(points);
    const NearestIndex sorted(points);
    const SequenceIndex any(unsorted);
    QVector<QPointF> queries;
    for (int i = 0; i < 250; ++i) {
        queries.append(query(random));
        queries.append(random.pick(queries)); // again, now that its answer may be known
        const QPointF& asked = queries.at(queries.size() - 1 - i % 2);
        QCOMPARE(
            indexOf(sorted.points(), sorted.find(asked)), literal::findNearestPoint(points, asked));
        QCOMPARE(
            indexOf(any.points(), any.find(asked)), literal::findNearestPoint(unsorted, asked));
    }
}

/// The label towards which an object lies from the centre is the nearest one.
void TestNearest::manyOnACircle()
{
    constexpr int count = 50000;
    Points points;
    for (int i = 0; i < count; ++i) {
        const QPointF place = onCircle(double(i) / count, 1000);
        points.append(DefPoint{ QString::number(i), place.x(), place.y() });
    }
    sortPoints(points);
    const NearestIndex index(points);
    for (int i = 0; i < count; ++i) {
        const QPointF query = onCircle(double(i) / count, i % 2 ? 1e-3 : 1);
        QCOMPARE(index.find(query)->def, QString::number(i));
        QVERIFY(index.find(QPointF(0, 0)));
    }
}

/// The last of the labels stands nearest, and none before it ends the search.
void TestNearest::manyClosingIn()
{
    constexpr int count = 50000;
    Points points;
    for (int i = 0; i < count; ++i)
        points.append(DefPoint{ QString(), double(i % 2 ? i - count : count - i), 0 });
    const SequenceIndex any(points);
    for (int i = 0; i < count; ++i) {
        const QPointF query(i % 2 ? -1e-9 * i : 1e-9 * i, 0);
        QCOMPARE(indexOf(any.points(), any.find(query)), count - 1);
    }
}

void TestNearest::manyAtOneDistance_data()
{
    QTest::addColumn<double>("step");
    QTest::addColumn<QPointF>("query");
    QTest::addColumn<int>("expected");

    constexpr int half = 100000;
    QTest::newRow("squares underflow") << 1e-170 << QPointF(0, 0) << half;
    QTest::newRow("squares underflow, right of all") << 1e-170 << QPointF(1e-160, 0) << 2 * half;
    QTest::newRow("differences are absorbed, left") << 1.0 << QPointF(-1e25, 0) << 0;
    QTest::newRow("differences are absorbed, right") << 1.0 << QPointF(1e25, 0) << 2 * half;
    QTest::newRow("differences are absorbed, above") << 1.0 << QPointF(0.5, 1e25) << half + 1;
}

void TestNearest::manyAtOneDistance()
{
    QFETCH(double, step);
    QFETCH(QPointF, query);
    QFETCH(int, expected);
    constexpr int half = 100000;
    Points points;
    for (int i = -half; i <= half; ++i)
        points.append(DefPoint{ QString(), i * step, (i % 7) * step });
    const NearestIndex sorted(points);
    const SequenceIndex any(points);
    for (int i = 0; i < half; ++i) {
        QCOMPARE(indexOf(sorted.points(), sorted.find(query)), expected);
        QCOMPARE(indexOf(any.points(), any.find(query)), expected);
    }
}

void TestNearest::knowsSorted_data()
{
    using Places = QVector<QPointF>;
    QTest::addColumn<Places>("places");
    QTest::addColumn<bool>("expected");

    QTest::newRow("none") << Places{} << true;
    QTest::newRow("by x, then by y") << Places{ { 0, 5 }, { 1, 2 }, { 1, 3 } } << true;
    QTest::newRow("equal places") << Places{ { 1, 2 }, { 1, 2 } } << true;
    QTest::newRow("y falls") << Places{ { 1, 3 }, { 1, 2 } } << false;
    QTest::newRow("x falls") << Places{ { 2, 0 }, { 1, 3 } } << false;
    QTest::newRow("not a number in between")
        << Places{ { 5, undefined }, { 1, 0 }, { undefined, 0 }, { 2, 0 }, { 0, undefined } }
        << true;
    QTest::newRow("x falls across one that is not a number")
        << Places{ { 2, 0 }, { undefined, 0 }, { 1, 0 } } << false;
}

void TestNearest::knowsSorted()
{
    QFETCH(QVector<QPointF>, places);
    QFETCH(bool, expected);
    QCOMPARE(arePointsSorted(pointsAt(places)), expected);
}

QTEST_APPLESS_MAIN(TestNearest)
#include "tst_nearest.moc"
