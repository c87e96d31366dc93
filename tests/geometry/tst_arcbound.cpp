#include "geometry/arcbound.h"

#include "support/random.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

using Sites = std::vector<Site>;

/// Sites between two radii and two directions, in radians, as seen from a centre.
Sites sitesOnArc(
    Random& random, double x, double y, double radius, double depth, double first, double width)
{
    Sites sites;
    for (int i = 0; i < 8; ++i) {
        const double direction = first + width * random.between(0, 1);
        const double distance = radius + depth * random.between(0, 1);
        sites.push_back(
            { x + distance * std::cos(direction), y + distance * std::sin(direction), i });
    }
    return sites;
}

ArcBound boundOf(const Sites& sites)
{
    return ArcBound(sites.data(), sites.data() + sites.size(), ArcBound());
}

double leastSquare(const Sites& sites, double x, double y)
{
    double least = std::numeric_limits<double>::infinity();
    for (const Site& site : sites)
        least = std::min(least, (site.x - x) * (site.x - x) + (site.y - y) * (site.y - y));
    return least;
}

} // namespace

/// What a ring and two directions say about the distances to sites.
class TestArcBound : public QObject {
    Q_OBJECT

private slots:
    void neverAboveTheNearest();
    void closeAcrossAnArc();
    void exactWhereThePlaceLeavesNoTrace();
    void knowsNothingOfNoSites();
};

void TestArcBound::neverAboveTheNearest()
{
    Random random(31);
    int known = 0;
    for (int i = 0; i < 20000; ++i) {
        const double scale = random.pick(QVector<double>{ 1e-170, 1e-3, 1, 1e6, 1e145, 1e160 });
        const double x = random.below(2) ? 0 : scale * random.between(0, 1);
        const double y = random.below(2) ? 0 : scale * random.between(0, 1);
        const double depth = random.pick(QVector<double>{ 0, 1e-9, 0.1, 1 });
        const double width = random.pick(QVector<double>{ 1e-6, 0.2, 2, 6.3 });
        const Sites sites =
            sitesOnArc(random, x, y, scale, depth * scale, 6.3 * random.between(0, 1), width);
        const ArcBound bound = boundOf(sites);
        for (int place = 0; place < 10; ++place) {
            const double away = random.pick(QVector<double>{ 1e-20, 1e-9, 0.5, 2, 1e3 }) * scale;
            const double direction = 6.3 * random.between(0, 1);
            const double placeX = x + away * std::cos(direction);
            const double placeY = y + away * std::sin(direction);
            const double least = bound.leastDistance(placeX, placeY);
            known += least > 0 ? 1 : 0;
            QVERIFY2(!(least > leastSquare(sites, placeX, placeY)),
                qPrintable(QStringLiteral("%1 > %2")
                               .arg(least, 0, 'g', 17)
                               .arg(leastSquare(sites, placeX, placeY), 0, 'g', 17)));
        }
    }
    QVERIFY(known > 50000);
}

/// The box of such sites says far less.
void TestArcBound::closeAcrossAnArc()
{
    Random random(32);
    for (int i = 0; i < 1000; ++i) {
        const double first = 6.3 * random.between(0, 1);
        const Sites sites = sitesOnArc(random, 5, 7, 1, 0, first, 1);
        const ArcBound bound = boundOf(sites);
        for (const double away : { 0.3, 0.9, 3.0 }) {
            for (const double direction : { first - 1, first + 0.5, first + 2 }) {
                const double x = 5 + away * std::cos(direction);
                const double y = 7 + away * std::sin(direction);
                const double exact = leastSquare(sites, x, y);
                // The arc between the outermost sites, where they may stand anywhere.
                const bool isAcross = direction == first + 0.5;
                const double least = isAcross ? (1 - away) * (1 - away) : exact;
                QVERIFY(bound.leastDistance(x, y) > 0.99 * least);
                QVERIFY(bound.leastDistance(x, y) <= exact);
            }
        }
    }
}

void TestArcBound::exactWhereThePlaceLeavesNoTrace()
{
    const Sites sites{ { 0.5, 0.5, 0 }, { 0.25, 0.75, 1 }, { 0.75, 0.25, 2 } };
    QCOMPARE(boundOf(sites).leastDistance(1e-20, -1e-20), 0.5);
    const Sites others{ { -0.5, -2, 0 }, { 3, -0.25, 1 }, { -3, 4, 2 } };
    QCOMPARE(boundOf(others).leastDistance(1e-20, 1e-20), 4.25);
}

void TestArcBound::knowsNothingOfNoSites()
{
    QVERIFY(!(ArcBound().leastDistance(1, 2) > 0));
}

QTEST_APPLESS_MAIN(TestArcBound)
#include "tst_arcbound.moc"
