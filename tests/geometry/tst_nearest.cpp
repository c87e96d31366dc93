#include "geometry/nearestindex.h"
#include "geometry/nearestpoint.h"

#include "literal/literalgeometry.h"
#include "support/random.h"
#include "support/records.h"
#include "support/specialvalues.h"

#include <QtTest>

#include <algorithm>
#include <functional>
#include <limits>

class TestNearest : public QObject {
    Q_OBJECT

private slots:
    void finds_data();
    void finds();
    void followsTheStepsOnUnsortedPoints();
    void indexLikeTheSearch_data();
    void indexLikeTheSearch();
    void indexOfManyInAColumn();
};

namespace {

using Points = QVector<DefPoint>;
using Coordinate = std::function<double(Random&)>;

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

} // namespace

Q_DECLARE_METATYPE(Coordinate)

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
    // The first of these three is met in the backward scan, which a coordinate that is not
    // a number does not stop.
    QTest::newRow("past a point that is not a number")
        << Places{ { 0, 0 }, { 1, undefined }, { 2, undefined } } << QPointF(1.5, 0) << 0;
}

void TestNearest::finds()
{
    QFETCH(QVector<QPointF>, places);
    QFETCH(QPointF, query);
    QFETCH(int, expected);
    const Points points = pointsAt(places);
    QCOMPARE(indexOf(points, findNearestPoint(points, query)), expected);
    QCOMPARE(literal::findNearestPoint(points, query), expected);

    const NearestIndex index(points);
    QCOMPARE(indexOf(index.points(), index.find(query)), expected);
}

void TestNearest::followsTheStepsOnUnsortedPoints()
{
    Random random(7);
    for (int round = 0; round < 20000; ++round) {
        Points points;
        for (int i = random.below(12); i > 0; --i)
            points.append(DefPoint{ QString(), double(random.below(6)), double(random.below(6)) });
        const QPointF query(random.below(6), random.below(6));
        QCOMPARE(indexOf(points, findNearestPoint(points, query)),
            literal::findNearestPoint(points, query));
    }
}

void TestNearest::indexLikeTheSearch_data()
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
    QTest::newRow("any double") << anything << anything << 60;
    QTest::newRow("far from the origin") << far << far << 200;
}

void TestNearest::indexLikeTheSearch()
{
    QFETCH(Coordinate, x);
    QFETCH(Coordinate, y);
    QFETCH(int, most);
    Random random(8);
    const QVector<double> odd{ undefined, infinite, -infinite, 0.0, -0.0, 1e300, -1e300, 5e-324,
        0.5, 3.5 };
    for (int round = 0; round < 150; ++round) {
        Points points;
        for (int i = random.below(most); i > 0; --i)
            points.append(DefPoint{ QString::number(i), x(random), y(random) });
        if (std::none_of(points.cbegin(), points.cend(), hasNan))
            std::sort(points.begin(), points.end());
        const NearestIndex index(points);
        for (int i = 0; i < 60; ++i) {
            const QPointF query(random.oneIn(5) ? random.pick(odd) : x(random),
                random.oneIn(5) ? random.pick(odd) : y(random));
            const int expected = literal::findNearestPoint(points, query);
            const int found = indexOf(index.points(), index.find(query));
            const bool alike =
                found == expected && indexOf(points, findNearestPoint(points, query)) == expected;
            if (!alike) {
                QFAIL(qPrintable(QStringLiteral("%1 %2 in %3: index %4, expected %5")
                                     .arg(describe(query.x()), describe(query.y()),
                                         describe(DefPolygon{ QString(), { points } }))
                                     .arg(found)
                                     .arg(expected)));
            }
        }
    }
}

void TestNearest::indexOfManyInAColumn()
{
    constexpr int count = 200000;
    Points points;
    for (int i = 0; i < count; ++i)
        points.append(DefPoint{ QString(), 7, double(i) });
    const NearestIndex index(points);
    for (int i = 0; i < count; ++i)
        QCOMPARE(indexOf(index.points(), index.find(QPointF(i % 2 ? 7.25 : 6.75, i + 0.25))), i);
}

QTEST_APPLESS_MAIN(TestNearest)
#include "tst_nearest.moc"
