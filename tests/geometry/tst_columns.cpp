#include "geometry/pointcolumns.h"
#include "geometry/pointorder.h"
#include "support/random.h"
#include "support/specialvalues.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace {

/// Places of a layout.
using Places = std::function<QPointF(Random&)>;

Places within(double x, double y, double width, double height)
{
    return [=](Random& random) {
        return QPointF(random.between(x, x + width), random.between(y, y + height));
    };
}

Places grid(double step, int columns, int rows)
{
    return [=](Random& random) {
        return QPointF(random.below(columns) * step, random.below(rows) * step);
    };
}

Places oneIn(int often, const Places& odd, const Places& usual)
{
    return [=](Random& random) { return random.oneIn(often) ? odd(random) : usual(random); };
}

/// Sorted points, no two of them at one place.
QVector<DefPoint> pointsOf(const Places& places, int count, Random& random)
{
    QVector<DefPoint> points;
    for (int i = 0; i < count; ++i) {
        const QPointF place = places(random);
        points.append(DefPoint{ QString(), place.x(), place.y() });
    }
    sortPoints(points);
    const auto isSame = [](const DefPoint& a, const DefPoint& b) {
        return a.x == b.x && a.y == b.y;
    };
    points.erase(std::unique(points.begin(), points.end(), isSame), points.end());
    return points;
}

/// The points at the smallest squared distance from a place, in their order.
QVector<int> nearestOneByOne(const QVector<DefPoint>& points, const QPointF& place, double within)
{
    QVector<int> nearest;
    double least = within;
    for (int i = 0; i < points.size(); ++i) {
        const double distance = squaredDistance(points.at(i), place.x(), place.y());
        if (!(distance <= least))
            continue;
        if (distance < least)
            nearest.clear();
        least = distance;
        nearest.append(i);
    }
    return nearest;
}

} // namespace

Q_DECLARE_METATYPE(Places)

class TestColumns : public QObject {
    Q_OBJECT

private slots:
    void findsAllThatAreNearest_data();
    void findsAllThatAreNearest();
    void givesUpInTime();
    void nothingToFind();
    void expectsAnyPlace();
};

void TestColumns::findsAllThatAreNearest_data()
{
    QTest::addColumn<Places>("places");
    QTest::addColumn<double>("within");
    QTest::addColumn<int>("givenUp"); // percent, at most

    constexpr double far = std::numeric_limits<double>::max();
    const Places district = within(30.1, 55.2, 0.2, 0.08);
    const auto row = [](const char* name, const Places& places, double distance, int givenUp) {
        QTest::newRow(name) << places << distance << givenUp;
    };
    row("even", district, far, 0);
    row("even, a short way", district, 1e-8, 0);
    row("negative", within(-0.1, -0.1, 0.2, 0.2), far, 0);
    row("a low strip", within(30, 55, 40, 0.001), far, 1);
    row("a narrow strip", within(30, 55, 0.001, 40), far, 1);
    row("ties on a grid", grid(1.0 / 1024, 80, 60), far, 0);
    row("one column", grid(1.0 / 1024, 1, 9000), far, 0);
    row("one row", grid(1.0 / 1024, 9000, 1), far, 0);
    row("some far off", oneIn(300, within(-9e5, -9e5, 2e6, 2e6), district), far, 3);
    row("one place far off", oneIn(300, within(0, 0, 0, 0), district), far, 1);
    row("two towns", oneIn(3, within(31.5, 56, 0.01, 0.01), district), far, 1);
    row("a dense one in a wide one", oneIn(2, within(30.2, 55.22, 1e-5, 1e-5), district), far, 1);
    row("infinite here and there",
        oneIn(
            50,
            [](Random& random) {
                return QPointF(
                    random.oneIn(2) ? infinite : 30.15, random.oneIn(2) ? -infinite : 55.25);
            },
            district),
        far, 0);
    row("huge here and there", oneIn(50, within(-1e308, -1e308, 1e308, 1e308), district), far, 100);
    row("wider than the largest number",
        oneIn(2, grid(1.7e308, 2, 2), [](Random&) { return QPointF(-1.7e308, -1.7e308); }), far,
        100);
    row("closer than the smallest numbers", grid(5e-324, 60, 60), far, 100);
    row("squares vanish", grid(1e-165, 60, 60), far, 100);
    row("squares vanish beside an axis",
        oneIn(
            2, [](Random& random) { return QPointF(random.below(40) * 1e-170, 55.2); }, district),
        far, 100);
    row(
        "a circle",
        [](Random& random) {
            const double angle = random.between(0, 6.28);
            return QPointF(std::cos(angle), std::sin(angle));
        },
        far, 100);
}

void TestColumns::findsAllThatAreNearest()
{
    QFETCH(Places, places);
    QFETCH(double, within);
    QFETCH(int, givenUp);
    Random random(5);
    int failures = 0;
    int searches = 0;
    for (const int count : { 1, 2, 3, 17, 400, 3000 }) {
        const QVector<DefPoint> points = pointsOf(places, count, random);
        const PointColumns columns(points.constData(), points.size());
        for (int i = 0; i < 400; ++i) {
            QPointF place = places(random);
            if (random.oneIn(2)) {
                const DefPoint& point = points.at(random.below(points.size()));
                place = QPointF(point.x, point.y);
            }
            if (random.oneIn(4))
                place.rx() += random.between(-0.01, 0.01);
            if (!std::isfinite(place.x()) || !std::isfinite(place.y()))
                continue;
            ++searches;
            // Of what is offered the nearest count, as they do for whoever asks.
            QVector<int> offered;
            double least = within;
            const bool isAnswered = columns.findNearest(
                points.constData(), place.x(), place.y(), within, [&](int index) {
                    const double d = squaredDistance(points.at(index), place.x(), place.y());
                    if (d < least)
                        offered.clear();
                    least = std::min(least, d);
                    offered.append(index);
                });
            if (!isAnswered) {
                ++failures;
                continue;
            }
            std::sort(offered.begin(), offered.end());
            QCOMPARE(offered, nearestOneByOne(points, place, within));
        }
    }
    QVERIFY2(failures * 100 <= givenUp * searches,
        qPrintable(QStringLiteral("%1 of %2 given up").arg(failures).arg(searches)));
}

void TestColumns::givesUpInTime()
{
    // Between two layers all points are about equally near, and none is at its own place.
    QVector<DefPoint> points;
    for (int i = 0; i < 20000; ++i)
        points.append(DefPoint{ QString(), 30 + i * 1e-9, i % 2 == 0 ? 55.0 : 55.015625 });
    const PointColumns columns(points.constData(), points.size());
    int offered = 0;
    const auto isAnswered = [&](double x, double y) {
        offered = 0;
        return columns.findNearest(points.constData(), x, y, 4, [&](int) { ++offered; });
    };
    for (const double x : { 29.0, 30.00001, 31.0 }) {
        QVERIFY(!isAnswered(x, 55.0078125));
        QVERIFY2(offered <= 128, qPrintable(QString::number(offered)));
    }
    QVERIFY(isAnswered(points.at(10000).x, 55));
}

void TestColumns::nothingToFind()
{
    const auto notOffered = [](int) { QFAIL("there is no point"); };
    QVERIFY(PointColumns().isEmpty());
    QVERIFY(PointColumns(nullptr, 0).isEmpty());
    const DefPoint nowhere{ QString(), infinite, 1 };
    QVERIFY(PointColumns(&nowhere, 1).isEmpty());
    const DefPoint point{ QString(), 30, 55 };
    QVERIFY(PointColumns(&point, 1).findNearest(&point, 30, 55.2, 0.03, notOffered));
}

void TestColumns::expectsAnyPlace()
{
    Random random(6);
    const QVector<DefPoint> points = pointsOf(within(30, 55, 1, 1), 100, random);
    const PointColumns columns(points.constData(), points.size());
    for (const double x : { 0.0, 30.5, 99.0, undefined, infinite, -infinite }) {
        for (const double y : { 0.0, 55.5, 99.0, undefined, infinite, -infinite }) {
            const size_t expected[] = { columns.expect(x, y), 100, size_t(-1) };
            QVERIFY(expected[0] < 100);
            columns.expectPoints(points.constData(), expected, 3);
        }
    }
}

QTEST_APPLESS_MAIN(TestColumns)
#include "tst_columns.moc"
