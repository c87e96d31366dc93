#include "plan/planfile.h"
#include "plan/planpainter.h"

#include <QBuffer>
#include <QTest>

#include <limits>

namespace {

using Limits = std::numeric_limits<double>;

} // namespace

class TestPlan : public QObject {
    Q_OBJECT

private slots:
    void spaceIsTakenOnce()
    {
        PlanSpace space(QSizeF(100, 50));
        QVERIFY(space.take(QRectF(10, 10, 20, 5)));
        QVERIFY(!space.take(QRectF(29, 14, 20, 5)));
        QVERIFY(space.take(QRectF(40, 10, 20, 5)));
    }

    void noSpaceOutside_data()
    {
        QTest::addColumn<QRectF>("rect");
        QTest::newRow("left") << QRectF(-1, 10, 5, 5);
        QTest::newRow("above") << QRectF(10, -1, 5, 5);
        QTest::newRow("right") << QRectF(100, 10, 5, 5);
        QTest::newRow("below") << QRectF(10, 50, 5, 5);
        QTest::newRow("far") << QRectF(1e300, 1e300, 5, 5);
        QTest::newRow("wide") << QRectF(10, 10, 1e300, 5);
        QTest::newRow("no place") << QRectF(Limits::quiet_NaN(), 10, 5, 5);
        QTest::newRow("no height") << QRectF(10, 10, 5, Limits::quiet_NaN());
    }

    void noSpaceOutside()
    {
        QFETCH(QRectF, rect);
        QVERIFY(!PlanSpace(QSizeF(100, 50)).take(rect));
    }

    void extremeExtents_data()
    {
        QTest::addColumn<double>("from");
        QTest::addColumn<double>("to");
        QTest::newRow("least numbers") << 0.0 << Limits::denorm_min();
        QTest::newRow("tiny numbers") << 0.0 << 1e-310;
        QTest::newRow("least normal numbers") << -Limits::min() << Limits::min();
        QTest::newRow("all numbers") << Limits::lowest() << Limits::max();
        QTest::newRow("one place") << 5.0 << 5.0;
    }

    void extremeExtents()
    {
        QFETCH(double, from);
        QFETCH(double, to);
        const DefPoint a{ QStringLiteral("a"), from, from };
        const DefPoint b{ QStringLiteral("b"), to, to };
        const QVector<DefPolygon> objects{ { {}, { { a, b } } } };
        PlanPainter plan(objects, {});
        QBuffer svg;
        svg.open(QIODevice::WriteOnly);
        QVERIFY(writePlan(svg, PlanFormat::Svg, QSize(800, 600), plan, {}));
        QVERIFY2(!svg.data().contains("nan") && !svg.data().contains("inf"), svg.data());
        QVERIFY(svg.data().contains("<circle"));
    }

    /// The names of conflicting points have the choice of places, though others come before them.
    void conflictsAreNamedFirst()
    {
        const DefPoint plain{ QStringLiteral("plain"), 50, 50 };
        const DefPoint beside{ QStringLiteral("conflict"), 50.05, 50 };
        const DefPoint there{ QStringLiteral("conflict"), 100, 0 };
        const DefPoint corner{ QStringLiteral("corner"), 0, 100 };
        const QVector<DefPolygon> objects{ { {}, { { plain, beside, there, corner } } } };
        PlanPainter plan(objects, {});
        QBuffer svg;
        svg.open(QIODevice::WriteOnly);
        QVERIFY(writePlan(svg, PlanFormat::Svg, QSize(800, 600), plan, {}));
        QCOMPARE(svg.data().count(">conflict</text>"), 2);
        QCOMPARE(svg.data().count(">corner</text>"), 1);
        QVERIFY(svg.data().lastIndexOf(">conflict</text>") < svg.data().indexOf(">plain</text>"));
    }
};

QTEST_MAIN(TestPlan)
#include "tst_plan.moc"
