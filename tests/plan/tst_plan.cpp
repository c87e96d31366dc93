#include "plan/planfile.h"
#include "plan/planpainter.h"
#include "plan/planstyle.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QRegularExpression>
#include <QTest>
#include <QXmlStreamReader>

#include <cmath>
#include <limits>

namespace {

using Limits = std::numeric_limits<double>;

/// A closed ring around a square.
QVector<DefPoint> ring(double x, double y, double size)
{
    const auto point = [](const char* def, double px, double py) {
        return DefPoint{ QString::fromLatin1(def), px, py };
    };
    return { point("a", x, y), point("b", x + size, y), point("c", x + size, y + size),
        point("d", x, y + size), point("a", x, y) };
}

DefPolygon polygon(const char* def, const QVector<QVector<DefPoint>>& contours)
{
    return { QString::fromUtf8(def), contours };
}

constexpr int pageWidth = 800;
constexpr int pageHeight = 600;

/// What is drawn, without the blanks that lines start with.
QString svgOf(const QVector<DefPolygon>& objects, const PlanAxes& axes = {})
{
    PlanPainter plan(objects, axes);
    QBuffer svg;
    svg.open(QIODevice::WriteOnly);
    if (!writePlan(svg, PlanFormat::Svg, QSize(pageWidth, pageHeight), plan, {}))
        return {};
    return QString::fromUtf8(svg.data())
        .remove(QRegularExpression(QStringLiteral("^ +"), QRegularExpression::MultilineOption));
}

/// The text of a layer.
QString layer(const QString& svg, const char* id)
{
    const int start = svg.indexOf(QStringLiteral("<g id=\"%1\"").arg(QLatin1String(id)));
    const int next = svg.indexOf(QLatin1String("inkscape:groupmode"), start + 60);
    return svg.mid(start, next < 0 ? -1 : next - start);
}

/// Where the dot of a point stands.
QPointF dotOf(const QString& svg, const char* id)
{
    const auto match =
        QRegularExpression(QStringLiteral("<circle id=\"%1\" cx=\"([0-9.]+)\" cy=\"([0-9.]+)\"")
                               .arg(QLatin1String(id)))
            .match(svg);
    return { match.captured(1).toDouble(), match.captured(2).toDouble() };
}

int countOf(const QString& text, const char* part)
{
    return text.count(QString::fromUtf8(part));
}

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

    /// Layers that other programs show, and a name for each thing that can be pointed at.
    void layersAndTitles()
    {
        const QString svg = svgOf({ polygon("У<1>", { ring(0, 0, 10) }) });
        for (const char* id : { "frame", "objects", "points", "grid", "legend", "names" }) {
            QCOMPARE(countOf(svg,
                         qPrintable(QStringLiteral("<g id=\"%1\" inkscape:groupmode=\"layer\" "
                                                   "inkscape:label=\"")
                                        .arg(QLatin1String(id)))),
                1);
        }
        QVERIFY(svg.contains(QStringLiteral("<g id=\"object-1\">\n<title>У&lt;1&gt;</title>\n")));
        QCOMPARE(countOf(svg, "<circle id=\"point-1-"), 4);
        QCOMPARE(countOf(svg, "<title>c</title>"), 1);
        QXmlStreamReader xml(svg);
        while (!xml.atEnd())
            xml.readNext();
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    }

    void holes()
    {
        const QString objects =
            layer(svgOf({ polygon("A", { ring(0, 0, 10), ring(4, 4, 2) }) }), "objects");
        const auto area = QRegularExpression(
            QStringLiteral("<path d=\"([^\"]*)\" fill-rule=\"evenodd\" fill=\"#"))
                              .match(objects);
        QCOMPARE(area.captured(1).count(QLatin1Char('M')), 2);
    }

    void partsAreNamedEach()
    {
        const auto namesOf = [](const QVector<QVector<DefPoint>>& contours) {
            return countOf(layer(svgOf({ polygon("Part", contours) }), "names"), ">Part</text>");
        };
        QCOMPARE(namesOf({ ring(0, 0, 10) }), 1);
        QCOMPARE(namesOf({ ring(0, 0, 10), ring(30, 0, 10) }), 2);
        QCOMPARE(namesOf({ ring(0, 0, 30), ring(10, 10, 2) }), 1);
    }

    void redLegend()
    {
        const auto isTold = [](const QVector<DefPolygon>& objects) {
            return layer(svgOf(objects), "legend").contains(QStringLiteral("красным"));
        };
        QVERIFY(!isTold({ polygon("A", { ring(0, 0, 10) }), polygon("B", { ring(20, 0, 10) }) }));
        QVERIFY(isTold({ polygon("A", { ring(0, 0, 10) }), polygon("a", { ring(20, 0, 10) }) }));
        QVERIFY(isTold({ polygon("A", { ring(0, 0, 10), ring(20, 0, 10) }) }));
    }

    /// The north is above whichever coordinate it is, and an arrow only says what is known.
    void northing()
    {
        const QVector<DefPolygon> objects{ polygon("A", { ring(0, 0, 10) }) };
        // The second point is the first one plus ten in the first coordinate.
        const QString asIs = svgOf(objects);
        QVERIFY(dotOf(asIs, "point-1-2").x() > dotOf(asIs, "point-1-1").x());
        QCOMPARE(dotOf(asIs, "point-1-2").y(), dotOf(asIs, "point-1-1").y());
        QCOMPARE(countOf(asIs, ">С</text>"), 0);
        QVERIFY(asIs.contains(QStringLiteral(">вправо X: от 0.00 до 10.00; вверх Y: ")));

        const QString northUp = svgOf(objects, { true, true });
        QVERIFY(dotOf(northUp, "point-1-2").y() < dotOf(northUp, "point-1-1").y());
        QCOMPARE(dotOf(northUp, "point-1-2").x(), dotOf(northUp, "point-1-1").x());
        QCOMPARE(countOf(northUp, ">С</text>"), 1);
        QVERIFY(northUp.contains(QStringLiteral(">север вверху; вправо Y: от 0.00 до 10.00; ")));
    }

    /// Crosses stand at round coordinates, and the bar is as long as it says.
    void gridAndScale()
    {
        const QString svg = svgOf({ polygon("A", { ring(0, 0, 100) }) });
        const QPointF nought = dotOf(svg, "point-1-1");
        const double scale = (dotOf(svg, "point-1-2").x() - nought.x()) / 100;
        const auto number = [](double value) { return QString::number(value, 'f', 2); };
        const QString arm = QStringLiteral("M%1 %2L%3 %2");
        QVERIFY(layer(svg, "grid")
                    .contains(arm.arg(
                        number(nought.x() - 4), number(nought.y()), number(nought.x() + 4))));
        const auto bar =
            QRegularExpression(QStringLiteral("<path d=\"M([0-9.]+) [0-9.]+L[0-9.]+ "
                                              "[0-9.]+L([0-9.]+) [^>]*>\n<text [^>]*>([0-9]+) м<"))
                .match(layer(svg, "legend"));
        QVERIFY(bar.hasMatch());
        const double length = bar.captured(2).toDouble() - bar.captured(1).toDouble();
        QVERIFY(std::abs(length - bar.captured(3).toInt() * scale) < 0.5);
    }

    void gridNumbersStayInsideTheFrame()
    {
        const QRegularExpression text(
            QStringLiteral("<text x=\"([^\"]*)\" y=\"60.00\"[^>]*>([^<]*)</text>"));
        const QFontMetricsF metrics(planFont(false));
        int count = 0;
        for (int size = 100; size < 200; size += 5) {
            const QString svg = svgOf({ polygon("A", { ring(2200000, 400000, size) }) });
            for (auto numbers = text.globalMatch(svg); numbers.hasNext(); ++count) {
                const auto number = numbers.next();
                const double right =
                    number.captured(1).toDouble() + metrics.horizontalAdvance(number.captured(2));
                QVERIFY2(right < pageWidth - PlanView::margin, qPrintable(number.captured()));
            }
        }
        QVERIFY(count > 20);
    }

    void gridCrossesLeaveNumbersAlone()
    {
        const QRegularExpression text(
            QStringLiteral("<text x=\"([^\"]*)\" y=\"([^\"]*)\"[^>]*>([0-9]+)</text>"));
        const QRegularExpression stroke(
            QStringLiteral("M([0-9.]+) ([0-9.]+)L([0-9.]+) ([0-9.]+)(?=[M\"])"));
        const QFontMetricsF metrics(planFont(false));
        int crosses = 0;
        for (int size = 100; size < 200; size += 5) {
            const QString grid =
                layer(svgOf({ polygon("A", { ring(2200000, 400000, size) }) }), "grid");
            QVector<QRectF> numbers;
            for (auto each = text.globalMatch(grid); each.hasNext();) {
                const auto number = each.next();
                // Digits reach from the base line to the height of capitals.
                const QPointF start(number.captured(1).toDouble(), number.captured(2).toDouble());
                numbers.append(QRectF(start - QPointF(0, metrics.capHeight()),
                    QSizeF(metrics.horizontalAdvance(number.captured(3)), metrics.capHeight())));
            }
            QVERIFY(numbers.size() > 4);
            for (auto each = stroke.globalMatch(grid); each.hasNext(); ++crosses) {
                const auto line = each.next();
                const QRectF box(QPointF(line.captured(1).toDouble(), line.captured(2).toDouble()),
                    QPointF(line.captured(3).toDouble(), line.captured(4).toDouble()));
                for (const QRectF& number : qAsConst(numbers))
                    QVERIFY2(!box.adjusted(-0.5, -0.5, 0.5, 0.5).intersects(number),
                        qPrintable(line.captured()));
            }
        }
        QVERIFY(crosses > 100);
    }

    /// Numbers of the grid and names stand on a ground of their own, over the objects.
    void textsAreReadOverObjects()
    {
        // Lines so dense that the picture is full of them.
        QVector<DefPoint> hatch;
        for (int i = 0; i < 2000; ++i)
            hatch.append({ {}, i % 2 == 0 ? -900.0 : 900.0, i * 0.9 - 900 });
        const QString svg = svgOf({ polygon("Имя", { hatch }) });
        QVERIFY(svg.indexOf(QStringLiteral("<g id=\"objects\""))
            < svg.indexOf(QStringLiteral("<g id=\"grid\"")));
        const QRegularExpression onGround(
            QStringLiteral("<path d=\"M([0-9.]+) ([0-9.]+)L([0-9.]+) [0-9.]+L[0-9.]+ ([0-9.]+)L"
                           "[^>]* fill=\"#ffffff\" fill-opacity=\"[0-9.]+\"/>\n"
                           "<text x=\"([0-9.]+)\" y=\"([0-9.]+)\"([^>]*)>([^<]*)</text>"));
        const auto check = [&](const char* name) {
            const QString texts = layer(svg, name);
            int count = 0;
            for (auto each = onGround.globalMatch(texts); each.hasNext(); ++count) {
                const auto match = each.next();
                const auto value = [&](int part) { return match.captured(part).toDouble(); };
                const QFontMetricsF metrics(
                    planFont(match.captured(7).contains(QLatin1String("bold"))));
                const QRectF ground(QPointF(value(1), value(2)), QPointF(value(3), value(4)));
                const QRectF letters(value(5), value(6) - metrics.capHeight(),
                    metrics.horizontalAdvance(match.captured(8)), metrics.capHeight());
                if (!ground.contains(letters))
                    return -1;
            }
            return count == countOf(texts, "</text>") ? count : -1;
        };
        QVERIFY(check("grid") > 5);
        QVERIFY(check("names") > 0);
    }

    /// No number of the grid stands under the arrow to the north.
    void arrowHasItsPlace()
    {
        for (int size = 100; size < 200; size += 5) {
            const QString grid = layer(
                svgOf({ polygon("A", { ring(400000, 2200000, size) }) }, { true, true }), "grid");
            const QRegularExpression text(
                QStringLiteral("<text x=\"([0-9.]+)\" y=\"60.00\"[^>]*>([0-9]+)</text>"));
            const double arrow = pageWidth - PlanView::margin - 34;
            for (auto each = text.globalMatch(grid); each.hasNext();) {
                const auto number = each.next();
                const double right = number.captured(1).toDouble()
                    + QFontMetricsF(planFont(false)).horizontalAdvance(number.captured(2));
                QVERIFY2(right < arrow, qPrintable(number.captured()));
            }
        }
    }

    void namesStayInsideTheFrame()
    {
        QVector<DefPoint> edge;
        const QString longName(30, QLatin1Char('w'));
        for (int i = 0; i < 40; ++i)
            edge.append({ longName + QString::number(i), i % 2 == 0 ? 0.0 : 100.0, i * 1.5 });
        const QVector<DefPolygon> objects{ polygon("A", { edge }) };
        const QString names = layer(svgOf(objects), "names");
        auto texts = QRegularExpression(
            QStringLiteral("<text x=\"([^\"]*)\" y=\"([^\"]*)\"([^>]*)>([^<]*)</text>"))
                         .globalMatch(names);
        int count = 0;
        while (texts.hasNext()) {
            const auto text = texts.next();
            const QFontMetricsF metrics(planFont(text.captured(3).contains(QLatin1String("bold"))));
            const double left = text.captured(1).toDouble();
            const double right = left + metrics.horizontalAdvance(text.captured(4));
            QVERIFY2(left >= PlanView::margin && right <= pageWidth - PlanView::margin,
                qPrintable(text.captured()));
            QVERIFY2(text.captured(2).toDouble() <= pageHeight - PlanView::margin,
                qPrintable(text.captured()));
            ++count;
        }
        QVERIFY(count > 10);
    }

    void pageTakesTheShape()
    {
        const auto pageOf = [](const DefPoint& corner) {
            const QVector<DefPolygon> objects{ { {}, { { DefPoint{ {}, 0, 0 }, corner } } } };
            return PlanPainter(objects, {}).pageWithin(QSize(1000, 1000));
        };
        const QSize wide = pageOf({ {}, 400, 100 });
        QCOMPARE(wide.width(), 1000);
        QVERIFY(wide.height() < 500);
        QCOMPARE(pageOf({ {}, 100, 400 }).height(), 1000);
        QVERIFY(pageOf({ {}, 100, 400 }).width() < 500);
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
