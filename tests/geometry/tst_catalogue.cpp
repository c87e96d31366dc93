#include "geometry/pointcatalogue.h"

#include "literal/literalcatalogue.h"
#include "support/random.h"
#include "support/records.h"
#include "support/specialvalues.h"

#include <QPointF>
#include <QtTest>

#include <cmath>
#include <functional>
#include <limits>

namespace {

using Coordinate = std::function<double(Random&)>;

/// Where the points of a test stand, and how many there are.
struct Layout {
    Coordinate x;
    Coordinate y;
    int arranged = 0; ///< points given before the first search
    int searches = 0; ///< each inserts a point when it finds none
    int rounds = 8;
};

Coordinate anywhere(double low, double high)
{
    return [=](Random& random) { return random.between(low, high); };
}

/// Multiples of `step`, `count` of them from `start` on.
Coordinate lattice(double step, int count, double start = 0)
{
    return [=](Random& random) { return start + random.below(count) * step; };
}

Coordinate always(double value)
{
    return [=](Random&) { return value; };
}

/// One of `odd` once in `often` times, else from `usual`.
Coordinate sometimes(const QVector<double>& odd, int often, const Coordinate& usual)
{
    return [=](Random& random) { return random.oneIn(often) ? random.pick(odd) : usual(random); };
}

Coordinate signedZero()
{
    return [](Random& random) { return random.oneIn(2) ? 0.0 : -0.0; };
}

/// The product's catalogue beside the plain one; both get the same points and questions.
class Pair {
public:
    void append(const DefPoint& point)
    {
        m_catalogue.append(point);
        m_literal.points.append(point);
    }

    void arrange()
    {
        m_catalogue.arrange();
        m_literal.arrange();
    }

    bool sameArrangement() const
    {
        const QVector<DefPoint> expected = m_literal.points + m_literal.undefinedPoints;
        if (m_catalogue.size() != expected.size())
            return false;
        for (int i = 0; i < m_catalogue.size(); ++i) {
            if (describe(m_catalogue.at(i)) != describe(expected.at(i)))
                return false;
        }
        return true;
    }

    /// Searches both; where neither knows the place, inserts it. False when the answers differ.
    bool findOrInsert(double x, double y)
    {
        const DefPoint* found = m_catalogue.findCoincident(x, y);
        const int expected = m_literal.findCoincident(x, y);
        m_found += found ? 1 : 0;
        const QString text = found ? describe(*found) : QStringLiteral("nothing");
        const QString expectedText =
            expected >= 0 ? describe(m_literal.points.at(expected)) : QStringLiteral("nothing");
        if (text != expectedText) {
            qWarning("at %s %s: %s, expected %s", qPrintable(describe(x)), qPrintable(describe(y)),
                qPrintable(text), qPrintable(expectedText));
            return false;
        }
        if (!found) {
            const DefPoint point{ QStringLiteral("new") + QString::number(m_inserted++), x, y };
            m_catalogue.insert(point);
            m_literal.insert(point);
        }
        return m_catalogue.size() == m_literal.points.size() + m_literal.undefinedPoints.size();
    }

    int size() const { return m_catalogue.size(); }
    int found() const { return m_found; }

private:
    PointCatalogue m_catalogue;
    literal::Catalogue m_literal;
    int m_inserted = 0;
    int m_found = 0;
};

/// A step of about the tolerance, or none.
double step(Random& random)
{
    switch (random.below(6)) {
    case 0:
        return random.between(-0.02, 0.02);
    case 1:
        return random.oneIn(2) ? 0.01 : -0.01;
    case 2:
        return random.below(5) * 0.00125;
    default:
        return 0;
    }
}

/// Searches for places of the layout, some of them again, and for places near by.
bool searchAlike(Pair& pair, const Layout& layout, Random& random)
{
    QVector<QPointF> places;
    for (int i = 0; i < layout.searches; ++i) {
        if (places.isEmpty() || !random.oneIn(3))
            places.append(QPointF(layout.x(random), layout.y(random)));
        const QPointF place = random.oneIn(3) ? random.pick(places) : places.last();
        if (!pair.findOrInsert(place.x() + step(random), place.y() + step(random)))
            return false;
    }
    return true;
}

} // namespace

Q_DECLARE_METATYPE(Layout)

class TestCatalogue : public QObject {
    Q_OBJECT

private slots:
    void sortsAndMerges_data();
    void sortsAndMerges();
    void startsAfresh();
    void namesCanBeSet();
    void findsTheNearest_data();
    void findsTheNearest();
    void likeTheSortedVector_data();
    void likeTheSortedVector();
    void undefinedAmongOthers_data();
    void undefinedAmongOthers();
};

void TestCatalogue::sortsAndMerges_data()
{
    using Points = QVector<DefPoint>;
    QTest::addColumn<Points>("points");
    QTest::addColumn<QString>("expected");

    const auto point = [](const char* def, double x, double y) {
        return DefPoint{ QString::fromUtf8(def), x, y };
    };
    const auto row = [](const char* name, const Points& points, const char* expected) {
        QTest::newRow(name) << points << QString::fromUtf8(expected);
    };
    row("none", {}, "");
    row("sorted by x, then by y", { point("a", 2, 1), point("b", 1, 9), point("c", 1, 3) },
        "c 1 3; b 1 9; a 2 1");
    row("the one that sorts first keeps its name",
        { point("late", 1.005, 1.005), point("early", 1, 1) }, "early 1 1");
    row("the bound is inclusive", { point("a", 0, 0), point("b", 0.01, 0.01) }, "a 0 0");
    row("beyond the bound", { point("a", 0, 0), point("b", 0.011, 0) }, "a 0 0; b 0.011 0");
    row("each is measured from the last kept one",
        { point("a", 0, 0), point("b", 0.008, 0), point("c", 0.016, 0) }, "a 0 0; c 0.016 0");
    row("only neighbours in the order are merged",
        { point("a", 0, 0), point("b", 0.001, 5), point("c", 0.002, 0) },
        "a 0 0; b 0.001 5; c 0.002 0");
    row("empty names do not matter", { point("", 0, 0), point("b", 0.001, 0) }, " 0 0");
}

void TestCatalogue::sortsAndMerges()
{
    QFETCH(QVector<DefPoint>, points);
    QFETCH(QString, expected);
    PointCatalogue catalogue;
    QVERIFY(catalogue.isEmpty());
    for (const DefPoint& point : points)
        catalogue.append(point);
    QCOMPARE(catalogue.size(), points.size());
    catalogue.arrange();

    QStringList texts;
    for (int i = 0; i < catalogue.size(); ++i)
        texts.append(describe(catalogue.at(i)));
    QCOMPARE(texts.join(QStringLiteral("; ")), expected);
    QCOMPARE(catalogue.isEmpty(), points.isEmpty());

    sortPoints(points);
    mergeCoincident(points);
    QCOMPARE(points.size(), catalogue.size());
}

void TestCatalogue::startsAfresh()
{
    PointCatalogue catalogue;
    catalogue.append(DefPoint{ QStringLiteral("a"), undefined, 0 });
    catalogue.arrange();
    catalogue.insert(DefPoint{ QStringLiteral("b"), 1, 1 });
    catalogue.clear();
    QVERIFY(catalogue.isEmpty());
    QVERIFY(!catalogue.findCoincident(1, 1));
    catalogue.insert(DefPoint{ QStringLiteral("c"), 1, 1 });
    QCOMPARE(catalogue.findCoincident(1, 1)->def, QStringLiteral("c"));
}

void TestCatalogue::namesCanBeSet()
{
    PointCatalogue catalogue;
    catalogue.append(DefPoint{ QString(), 1, 2 });
    catalogue.append(DefPoint{ QString(), 3, 4 });
    catalogue.setDef(1, QStringLiteral("b"));
    catalogue.setDef(0, QStringLiteral("a"));
    catalogue.arrange();
    QCOMPARE(catalogue.findCoincident(1, 2)->def, QStringLiteral("a"));
    QCOMPARE(catalogue.findCoincident(3, 4)->def, QStringLiteral("b"));
}

void TestCatalogue::findsTheNearest_data()
{
    QTest::addColumn<QPointF>("query");
    QTest::addColumn<QString>("expected");

    QTest::newRow("the place itself") << QPointF(10, 20) << QStringLiteral("a");
    QTest::newRow("within the tolerance") << QPointF(10.009, 19.991) << QStringLiteral("a");
    QTest::newRow("the corner of the tolerance") << QPointF(0.01, -0.01) << QStringLiteral("o");
    QTest::newRow("out of it in x") << QPointF(10.011, 20) << QString();
    QTest::newRow("out of it in y") << QPointF(10, 20.011) << QString();
    QTest::newRow("a tie goes to the right one") << QPointF(30.0078125, 5) << QStringLiteral("r");
    // p is nearer but out of the tolerance, q would be within it.
    QTest::newRow("only the nearest point counts") << QPointF(40, 0) << QString();
    // s, behind the border of a cell, is 0.01412 away; t, at a corner of the tolerance, 0.014128.
    QTest::newRow("only the nearest point counts, in the next cell too")
        << QPointF(63.98595, 100) << QString();
    QTest::newRow("not a number") << QPointF(undefined, 20) << QString();
    QTest::newRow("infinite") << QPointF(10, infinite) << QString();
}

void TestCatalogue::findsTheNearest()
{
    QFETCH(QPointF, query);
    QFETCH(QString, expected);
    const QVector<DefPoint> points{ { QStringLiteral("a"), 10, 20 }, { QStringLiteral("o"), 0, 0 },
        { QStringLiteral("l"), 30, 5 }, { QStringLiteral("r"), 30.015625, 5 },
        { QStringLiteral("p"), 40.0105, 0 }, { QStringLiteral("q"), 39.991, 0.009 },
        { QStringLiteral("s"), 64.00007, 100 }, { QStringLiteral("t"), 63.97596, 100.00999 } };

    PointCatalogue arranged, inserted;
    for (const DefPoint& point : points) {
        arranged.append(point);
        inserted.insert(point);
    }
    arranged.arrange();
    for (PointCatalogue* catalogue : { &arranged, &inserted }) {
        const DefPoint* found = catalogue->findCoincident(query.x(), query.y());
        QCOMPARE(found ? found->def : QString(), expected);
    }
}

void TestCatalogue::likeTheSortedVector_data()
{
    QTest::addColumn<Layout>("layout");
    const auto row = [](const char* name, const Layout& layout) { QTest::newRow(name) << layout; };

    const Coordinate wide = anywhere(-500, 500);
    const Coordinate narrow = anywhere(0, 2);
    const Coordinate binary = lattice(1.0 / 128, 256);
    const Coordinate decimal = lattice(0.0125, 160);
    const Coordinate crowded = lattice(1.0 / 4096, 900);
    const Coordinate rows = lattice(1.0 / 64, 14);

    row("random", { wide, wide, 3000, 9000 });
    row("random, nothing given", { wide, wide, 0, 9000 });
    row("random and dense", { narrow, narrow, 4000, 9000 });
    row("lattice of 1/128", { binary, binary, 4000, 9000 });
    row("lattice of 1/128, nothing given", { binary, binary, 0, 12000 });
    row("lattice of 0.0125", { decimal, decimal, 4000, 9000 });
    row("lattice of 0.0125, nothing given", { decimal, decimal, 0, 12000 });
    row("lattice of 0.01 far off",
        { lattice(0.01, 60, 7512345.67), lattice(0.01, 60, 2200000.5), 1500, 5000 });
    row("lattice across the origin",
        { lattice(1.0 / 128, 64, -0.25), lattice(0.005, 100, -0.25), 1000, 6000 });
    row("small lattices", { lattice(1.0 / 128, 5), lattice(0.0125, 5), 12, 60, 400 });
    row("crowded cells", { crowded, rows, 9000, 6000 });
    row("crowded smallest cells",
        { lattice(1.0 / 65536, 900), sometimes({ 5 }, 2, always(0)), 9000, 6000 });
    row("crowded, close to an axis and on it",
        { lattice(1.0 / 65536, 900),
            sometimes({ 1e-99, -1e-101, 1e-120, 1e-170, -0.0 }, 2, always(0)), 9000, 4000, 3 });
    row("on the borders of cells", { lattice(1.0 / 32, 40, -0.5), lattice(1.0 / 64, 80), 0, 9000 });
    row("on the borders of cells, far off",
        { lattice(1.0 / 128, 60, 34359738368.0 - 0.25), lattice(1.0 / 128, 60, 70368744177664.0),
            1000, 5000 });
    row("crowded cells at random", { anywhere(0, 0.25), anywhere(0, 0.25), 5000, 5000 });
    row("crowded cells and far points",
        { sometimes({ 1000, -1000 }, 3, crowded), sometimes({ 77 }, 3, rows), 6000, 5000 });
    row("degrees", { anywhere(30.1, 30.3), anywhere(55.2, 55.28), 5000, 4000, 3 });
    row("degrees on a lattice",
        { lattice(0.0001, 700, 30.1), lattice(0.0001, 400, 55.2), 6000, 4000, 3 });
    row("degrees on a binary lattice",
        { lattice(1.0 / 8192, 700, 30), lattice(1.0 / 8192, 400, 55), 6000, 4000, 3 });
    row("degrees and points at the origin",
        { sometimes({ 0 }, 200, anywhere(30.1, 30.3)), sometimes({ 0 }, 200, anywhere(55.2, 55.28)),
            5000, 3000, 3 });
    row("about equally near in layers",
        { lattice(1e-9, 3000, 30), sometimes({ 55.0125 }, 2, always(55)), 4000, 3000, 3 });
    row("infinite among crowded cells",
        { sometimes({ infinite, -infinite }, 60, crowded),
            sometimes({ infinite, -infinite }, 60, rows), 6000, 3000, 3 });
    row("huge among crowded cells",
        { sometimes({ 1e308, -1e308 }, 60, crowded), sometimes({ 1e300, -1e155 }, 60, rows), 6000,
            3000, 3 });
    row("crowded at distances of the smallest numbers",
        { lattice(5e-324, 3000), lattice(1.0 / 64, 12), 4000, 2000, 3 });
    row("one column", { always(512.5), anywhere(0, 60), 1500, 2500 });
    row("one column of ties", { always(512.5), lattice(1.0 / 128, 2000), 800, 2500 });
    row("one row", { lattice(1.0 / 128, 3000), always(-4), 800, 4000 });
    row("columns", { lattice(1.0 / 64, 5), anywhere(0, 30), 1500, 3000 });
    row("one place", { always(3), always(4), 50, 300 });
    row("zeros of either sign", { signedZero(), signedZero(), 10, 200, 20 });
    row("zeros against a lattice", { signedZero(), lattice(1.0 / 128, 40), 60, 400, 20 });
    row("infinite here and there",
        { sometimes({ infinite, -infinite }, 7, binary),
            sometimes({ infinite, -infinite }, 7, binary), 500, 3000 });
    row("only infinite",
        { sometimes({ -infinite }, 2, always(infinite)),
            sometimes({ -infinite }, 2, always(infinite)), 12, 200, 5 });
    row("infinite x on a column",
        { sometimes({ infinite, -infinite }, 4, always(5)), binary, 200, 1500 });
    row("undefined from the start",
        { sometimes({ undefined }, 6, binary), sometimes({ undefined }, 6, binary), 600, 3000 });
    row("undefined and infinite from the start",
        { sometimes({ undefined, infinite, -infinite }, 4, decimal),
            sometimes({ undefined }, 9, decimal), 600, 2000 });
    row("undefined later", { binary, sometimes({ undefined }, 2000, binary), 12, 4000, 4 });
    row("undefined among crowded cells",
        { sometimes({ undefined }, 60, crowded), sometimes({ undefined }, 60, rows), 9000, 4000 });
    row("only undefined", { always(undefined), binary, 12, 200, 5 });
    row("huge",
        { sometimes({ 1e300, -1e300, 1e308 }, 3, binary), sometimes({ 1e300, 1e155 }, 3, decimal),
            300, 2500 });
    row("around 1e12", { lattice(1.0 / 128, 64, 1e12), lattice(1.0 / 128, 64, -1e12), 800, 4000 });
    row("around 1e13", { lattice(1.0 / 128, 64, 1e13), lattice(1.0 / 256, 64, 1e13), 800, 4000 });
    row("around 1e14", { lattice(1.0 / 64, 64, 1e14), lattice(1.0 / 64, 64, 1e14), 800, 3000 });
    row("around 2^47",
        { lattice(1.0 / 64, 60, std::exp2(47) - 0.5), lattice(1.0 / 32, 60, -std::exp2(47) - 0.5),
            800, 3000 });
    row("around 2^48, where the smallest cells end",
        { lattice(1.0 / 32, 60, std::exp2(48) - 1), lattice(1.0 / 16, 60, -std::exp2(48) - 1), 800,
            3000 });
    row("around 2^59, where the coarsest cells end",
        { lattice(64, 60, std::exp2(59) - 2000), lattice(128, 60, -std::exp2(59) - 2000), 800,
            3000 });
    row("around 1e15", { lattice(0.125, 40, 1e15), lattice(0.125, 40, -1e15), 800, 3000 });
    row("around 2^50",
        { lattice(0.25, 40, std::exp2(50) - 5), lattice(0.25, 40, -std::exp2(50) - 5), 800, 3000 });
    row("around 1e16", { lattice(2, 40, 1e16), lattice(2, 40, 1e16), 800, 3000 });
    row("mixed scales",
        { sometimes({ 1e12, 1e16, 1e200 }, 4, binary),
            sometimes({ -1e13, 5e-324, 1e-170 }, 4, decimal), 800, 3000 });
    row("places whose squares underflow",
        { lattice(1e-165, 12), sometimes({ 5, 7, 9 }, 3, lattice(1e-165, 12)), 400, 1500 });
    row("underflow in layers", { lattice(1e-170, 3000), lattice(1.0 / 64, 12), 3000, 2000 });
}

void TestCatalogue::likeTheSortedVector()
{
    QFETCH(Layout, layout);
    Random random(9);
    int found = 0;
    for (int round = 0; round < layout.rounds; ++round) {
        Pair pair;
        // Some rounds have less than all of the given points, down to none.
        const int given = round == 0 ? layout.arranged : random.below(layout.arranged + 1);
        for (int i = 0; i < given; ++i) {
            pair.append(DefPoint{ QString::number(i), layout.x(random), layout.y(random) });
        }
        pair.arrange();
        QVERIFY(pair.sameArrangement());
        QVERIFY(searchAlike(pair, layout, random));
        found += pair.found();
    }
    QCOMPARE(found > 0, !QByteArray(QTest::currentDataTag()).startsWith("only "));
}

void TestCatalogue::undefinedAmongOthers_data()
{
    using Points = QVector<DefPoint>;
    QTest::addColumn<Points>("arranged");
    QTest::addColumn<Points>("inserted");
    QTest::addColumn<QPointF>("query");
    QTest::addColumn<QString>("expected");

    const DefPoint left{ QStringLiteral("left"), 1, 0 };
    const DefPoint right{ QStringLiteral("right"), 1.015625, 0 };
    const DefPoint noX{ QStringLiteral("no x"), undefined, 0 };
    const DefPoint noY{ QStringLiteral("no y"), 1.0078125, undefined };
    const QPointF between(1.0078125, 0);
    const QString nothing;

    QTest::newRow("only one") << Points{ noX } << Points{} << between << nothing;
    QTest::newRow("found beside it")
        << Points{ noX, left, noY } << Points{} << QPointF(1, 0) << left.def;
    // Were it in the order, it would be the point next to the place.
    QTest::newRow("it wins no tie")
        << Points{ left, noY, right } << Points{} << between << right.def;
    QTest::newRow("inserted, it wins no tie")
        << Points{ left, right } << Points{ noY, noX } << between << right.def;
    QTest::newRow("it merges with nothing")
        << Points{ left, { QStringLiteral("near"), 1.005, 0 }, noY } << Points{}
        << QPointF(1.005, 0) << left.def;
    QTest::newRow("all inserted") << Points{} << Points{ noX, right, noY, left } << between
                                  << right.def;
    QTest::newRow("one next to the place decides for the left")
        << Points{ left, right } << Points{ { QStringLiteral("far"), 1.0078125, 7 }, noX }
        << between << left.def;
}

void TestCatalogue::undefinedAmongOthers()
{
    QFETCH(QVector<DefPoint>, arranged);
    QFETCH(QVector<DefPoint>, inserted);
    QFETCH(QPointF, query);
    QFETCH(QString, expected);
    PointCatalogue catalogue;
    for (const DefPoint& point : arranged)
        catalogue.append(point);
    catalogue.arrange();
    for (const DefPoint& point : inserted)
        catalogue.insert(point);
    QVERIFY(!catalogue.isEmpty());
    const DefPoint* found = catalogue.findCoincident(query.x(), query.y());
    QCOMPARE(found ? found->def : QString(), expected);
}

QTEST_APPLESS_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
