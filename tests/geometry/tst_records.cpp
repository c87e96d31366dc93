#include "geometry/defpolygon.h"

#include "support/random.h"
#include "support/specialvalues.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

class TestRecords : public QObject {
    Q_OBJECT

private slots:
    void defaults();
    void coincidence_data();
    void coincidence();
    void ordering_data();
    void ordering();
    void orderingIsStrict();
    void sorting();
    void centroid_data();
    void centroid();
    void centroidOfFurtherContours();
    void centroidIgnoresTheWinding();
};

namespace {

using Places = QVector<QPointF>;

QVector<DefPoint> contourOf(const Places& places)
{
    QVector<DefPoint> contour;
    for (const QPointF& place : places)
        contour.append(DefPoint{ QString(), place.x(), place.y() });
    return contour;
}

} // namespace

static_assert(std::is_aggregate_v<DefPoint> && std::is_aggregate_v<DefPolygon>);
static_assert(DefPoint::epsilon == 0.01);

void TestRecords::defaults()
{
    const DefPolygon object;
    QVERIFY(object.def.isEmpty());
    QVERIFY(object.contours.isEmpty());

    DefPolygon a{ QStringLiteral("a"), { { DefPoint{ QStringLiteral("p"), 1, 2 } } } };
    DefPolygon b{ QStringLiteral("b"), {} };
    std::swap(a, b);
    QCOMPARE(a.def, QStringLiteral("b"));
    QVERIFY(a.contours.isEmpty());
    QCOMPARE(b.def, QStringLiteral("a"));
    QCOMPARE(b.contours.first().first().def, QStringLiteral("p"));
}

void TestRecords::coincidence_data()
{
    QTest::addColumn<QPointF>("a");
    QTest::addColumn<QPointF>("b");
    QTest::addColumn<bool>("expected");

    QTest::newRow("inside") << QPointF(1.0, 2.0) << QPointF(1.005, 1.995) << true;
    QTest::newRow("outside in x") << QPointF(1.0, 2.0) << QPointF(1.02, 2.0) << false;
    QTest::newRow("outside in y") << QPointF(1.0, 2.0) << QPointF(1.0, 2.02) << false;
    QTest::newRow("the same") << QPointF(-3.5, 7) << QPointF(-3.5, 7) << true;
    QTest::newRow("the bound itself in x") << QPointF(0, 0) << QPointF(0.01, 0) << true;
    QTest::newRow("the bound itself in y") << QPointF(0, 0) << QPointF(0, -0.01) << true;
    QTest::newRow("the corner of the square") << QPointF(0, 0) << QPointF(0.01, 0.01) << true;
    QTest::newRow("the next double in x")
        << QPointF(0, 0) << QPointF(std::nextafter(0.01, 1), 0) << false;
    QTest::newRow("the next double in y")
        << QPointF(0, 0) << QPointF(0, std::nextafter(0.01, 1)) << false;
    QTest::newRow("zeros of either sign") << QPointF(0.0, 0.0) << QPointF(-0.0, -0.0) << true;
    QTest::newRow("one place at infinity") << QPointF(infinite, 0) << QPointF(infinite, 0) << false;
    QTest::newRow("not a number") << QPointF(undefined, 0) << QPointF(undefined, 0) << false;
}

void TestRecords::coincidence()
{
    QFETCH(QPointF, a);
    QFETCH(QPointF, b);
    QFETCH(bool, expected);
    const DefPoint first{ QStringLiteral("a"), a.x(), a.y() };
    const DefPoint second{ QStringLiteral("b"), b.x(), b.y() };
    QCOMPARE(coincide(first, second), expected);
    QCOMPARE(coincide(second, first), expected);
}

void TestRecords::ordering_data()
{
    QTest::addColumn<QPointF>("a");
    QTest::addColumn<QPointF>("b");
    QTest::addColumn<bool>("less");
    QTest::addColumn<bool>("greater");

    QTest::newRow("equal x") << QPointF(1, 3) << QPointF(1, 5) << true << false;
    QTest::newRow("x decides") << QPointF(0, 9) << QPointF(1, 0) << true << false;
    QTest::newRow("only def differs") << QPointF(1, 5) << QPointF(1, 5) << false << false;
    QTest::newRow("closer than the tolerance")
        << QPointF(1, 5) << QPointF(1.000001, 0) << true << false;
    QTest::newRow("zeros of either sign") << QPointF(-0.0, 5) << QPointF(0.0, 5) << false << false;
}

void TestRecords::ordering()
{
    QFETCH(QPointF, a);
    QFETCH(QPointF, b);
    const DefPoint first{ QStringLiteral("z"), a.x(), a.y() };
    const DefPoint second{ QStringLiteral("a"), b.x(), b.y() };
    QTEST(first < second, "less");
    QTEST(second < first, "greater");
    QTEST(std::less<DefPoint>()(first, second), "less");
}

void TestRecords::orderingIsStrict()
{
    Random random(1);
    const auto point = [&] {
        return DefPoint{ QString::number(random.below(5)), random.below(3) * 0.5,
            random.below(3) * 0.5 };
    };
    for (int i = 0; i < 20000; ++i) {
        const DefPoint a = point(), b = point();
        const bool expected = a.x < b.x || (a.x == b.x && a.y < b.y);
        QCOMPARE(a < b, expected);
        QVERIFY(!(a < b && b < a));
    }
}

void TestRecords::sorting()
{
    QVector<DefPoint> points = contourOf({ { 1, 5 }, { 0, 9 }, { 1, 3 }, { -2, 0 }, { 1, 0 } });
    std::sort(points.begin(), points.end());
    const Places expected{ { -2, 0 }, { 0, 9 }, { 1, 0 }, { 1, 3 }, { 1, 5 } };
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE(QPointF(points[i].x, points[i].y), expected[i]);
}

void TestRecords::centroid_data()
{
    QTest::addColumn<Places>("contour");
    QTest::addColumn<QPointF>("expected");

    QTest::newRow("no vertex") << Places{} << QPointF(0, 0);
    QTest::newRow("one vertex") << Places{ { 3, -4 } } << QPointF(3, -4);
    QTest::newRow("two vertices") << Places{ { 0, 0 }, { 4, 2 } } << QPointF(2, 1);
    QTest::newRow("square") << Places{ { 0, 0 }, { 2, 0 }, { 2, 2 }, { 0, 2 } } << QPointF(1, 1);
    QTest::newRow("clockwise square")
        << Places{ { 0, 0 }, { 0, 2 }, { 2, 2 }, { 2, 0 } } << QPointF(1, 1);
    QTest::newRow("closed square")
        << Places{ { 0, 0 }, { 2, 0 }, { 2, 2 }, { 0, 2 }, { 0, 0 } } << QPointF(1, 1);
    QTest::newRow("triangle") << Places{ { 0, 0 }, { 3, 0 }, { 0, 3 } } << QPointF(1, 1);
    // Two rectangles, 2 by 1 and 1 by 1: areas 2 and 1, centres (1, 0.5) and (0.5, 1.5).
    QTest::newRow("angle") << Places{ { 0, 0 }, { 2, 0 }, { 2, 1 }, { 1, 1 }, { 1, 2 }, { 0, 2 } }
                           << QPointF(2.5 / 3, 2.5 / 3);
    QTest::newRow("collinear") << Places{ { 0, 0 }, { 1, 1 }, { 5, 5 } } << QPointF(2, 2);
    QTest::newRow("closed line: the repeated vertex counts twice")
        << Places{ { 0, 0 }, { 3, 0 }, { 6, 0 }, { 0, 0 } } << QPointF(2.25, 0);
    QTest::newRow("a repeated point") << Places{ { 7, 8 }, { 7, 8 }, { 7, 8 } } << QPointF(7, 8);
    // Its area is 0.5e-12, below the bound.
    QTest::newRow("almost a line")
        << Places{ { 0, 0 }, { 0, 0 }, { 1, 0 }, { 1, 1e-12 } } << QPointF(0.5, 0.25e-12);
    QTest::newRow("an area of the bound has none")
        << Places{ { 0, 0 }, { 2e-12, 0 }, { 0, 1 }, { 0, 0.5 } } << QPointF(5e-13, 0.375);
    QTest::newRow("the edge that closes an open contour counts")
        << Places{ { 1, 1 }, { 3, 1 }, { 5, 1 }, { 5, 3 }, { 1, 3 } } << QPointF(3, 2);
    // Its area is 5e-12, above the bound.
    QTest::newRow("a sliver") << Places{ { 0, 0 }, { 0, 0 }, { 1, 0 }, { 1, 1e-11 } }
                              << QPointF(2.0 / 3, 1e-11 / 3);
    QTest::newRow("a bow tie without area")
        << Places{ { 0, 0 }, { 2, 2 }, { 2, 0 }, { 0, 2 } } << QPointF(1, 1);
}

void TestRecords::centroid()
{
    QFETCH(Places, contour);
    const DefPolygon object{ QStringLiteral("a"), { contourOf(contour) } };
    QTEST(object.centroid(), "expected");
}

void TestRecords::centroidOfFurtherContours()
{
    QCOMPARE(DefPolygon().centroid(), QPointF(0, 0));

    const Places square{ { 0, 0 }, { 2, 0 }, { 2, 2 }, { 0, 2 } };
    const Places distant{ { 100, 100 }, { 300, 100 }, { 300, 300 } };
    DefPolygon object{ QString(), { contourOf(square), contourOf(distant) } };
    QCOMPARE(object.centroid(), QPointF(1, 1));

    object.contours.prepend(QVector<DefPoint>());
    QCOMPARE(object.centroid(), QPointF(0, 0));
}

void TestRecords::centroidIgnoresTheWinding()
{
    Random random(2);
    for (int i = 0; i < 500; ++i) {
        // A star around (50, 50) has an area and does not cross itself.
        Places places;
        const int corners = 3 + random.below(12);
        for (int k = 0; k < corners; ++k) {
            const double angle = 2 * M_PI * k / corners;
            const double radius = random.between(1, 10);
            places.append({ 50 + radius * std::cos(angle), 50 + radius * std::sin(angle) });
        }
        DefPolygon object{ QString(), { contourOf(places) } };
        const QPointF there = object.centroid();
        std::reverse(object.contours[0].begin(), object.contours[0].end());
        const QPointF back = object.centroid();
        QVERIFY(std::abs(there.x() - back.x()) < 1e-6 && std::abs(there.y() - back.y()) < 1e-6);
    }
}

QTEST_APPLESS_MAIN(TestRecords)
#include "tst_records.moc"
