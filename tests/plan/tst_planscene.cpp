#include "plan/plancanvas.h"
#include "plan/planscene.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <cmath>
#include <limits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double greatest = std::numeric_limits<double>::max();
const QRectF window(0, 0, 100, 100);

QVector<DefPoint> ring(double x, double y, double side, const QString& def = {})
{
    return { { def, x, y }, { {}, x + side, y }, { {}, x + side, y + side }, { {}, x, y + side },
        { def, x, y } };
}

QPolygonF line(std::initializer_list<QPointF> places)
{
    return QPolygonF(QVector<QPointF>(places));
}

QImage painted(PlanScene& scene, const PlanSelection& selection = {})
{
    QImage image(400, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    scene.paint(painter, {}, Qt::blue, selection);
    return image;
}

/// Smooth edges mix a line with what it is drawn on.
bool isAlike(const QColor& a, const QColor& b)
{
    constexpr int most = 90;
    return std::abs(a.red() - b.red()) < most && std::abs(a.green() - b.green()) < most
        && std::abs(a.blue() - b.blue()) < most;
}

/// Whether a place of the picture, or one beside it, has the colour.
bool has(const QImage& image, const QPointF& place, const QColor& color)
{
    for (int dx = -2; dx <= 2; ++dx) {
        for (int dy = -2; dy <= 2; ++dy) {
            const QPoint at = place.toPoint() + QPoint(dx, dy);
            if (image.rect().contains(at) && isAlike(image.pixelColor(at), color))
                return true;
        }
    }
    return false;
}

} // namespace

class TestPlanScene : public QObject {
    Q_OBJECT

private slots:
    void clipsRings();
    void clipsLines();
    void thinsOut();
    void closesThinnedRings();
    void cutsFarContours();
    void numbersVertices();
    void marksDuplicates();
    void findsConflicts();
    void findsObjects();
    void findsVertices();
    void drawsSpecks();
    void drawsCrowd();
    void bearsAllNumbers_data();
    void bearsAllNumbers();
    void bearsZoom();
    void drawsWhatThePageShows();
};

void TestPlanScene::clipsRings()
{
    const QPolygonF square =
        line({ { 50, 50 }, { 150, 50 }, { 150, 150 }, { 50, 150 }, { 50, 50 } });
    QCOMPARE(clippedRing(square, window).boundingRect(), QRectF(50, 50, 50, 50));
    // One that lies around the window fills it.
    const QPolygonF around =
        line({ { -500, -500 }, { 900, -500 }, { 900, 900 }, { -500, 900 }, { -500, -500 } });
    const QRectF clipped = clippedRing(around, window).boundingRect();
    QVERIFY(clipped.adjusted(-1e-9, -1e-9, 1e-9, 1e-9).contains(window));
    QVERIFY(window.adjusted(-1e-9, -1e-9, 1e-9, 1e-9).contains(clipped));
    QVERIFY(clippedRing(square.translated(500, 0), window).isEmpty());
}

void TestPlanScene::clipsLines()
{
    const auto parts =
        clippedLine(line({ { -100, 5 }, { 200, 5 }, { 200, 50 }, { 50, 50 } }), window);
    QCOMPARE(parts.size(), 2);
    QCOMPARE(parts.at(0), line({ { 0, 5 }, { 100, 5 } }));
    QCOMPARE(parts.at(1), line({ { 100, 50 }, { 50, 50 } }));
    // Past a corner.
    QVERIFY(clippedLine(line({ { -50, 40 }, { 40, -50 } }), window).isEmpty());
    QCOMPARE(clippedLine(line({ { 10, 10 }, { 20, 20 }, { 30, 10 } }), window).size(), 1);
}

void TestPlanScene::thinsOut()
{
    // A thousand steps along ten pixels.
    DefPolygon object;
    object.contours.resize(1);
    for (int i = 0; i <= 1000; ++i)
        object.contours[0].append({ {}, i * 0.01, 0 });
    const QVector<DefPolygon> objects{ object };
    PlanView view(objects, false);
    view.show(window, { 5, 0 }, 1);
    const PlanIndex index(objects, false);
    const PlanOutline outline = index.outline(0, view, 1);
    QCOMPARE(outline.lines.size(), 1);
    QVERIFY(outline.size <= 12);
    QCOMPARE(outline.lines.at(0).first(), view.toPicture({ {}, 0, 0 }));
    QCOMPARE(outline.lines.at(0).last(), view.toPicture({ {}, 10, 0 }));
    // With room for all of them, all are there.
    view.show(QRectF(0, 0, 5000, 100), { 5, 0 }, 400);
    QCOMPARE(index.outline(0, view, 1).size, 1001);
}

void TestPlanScene::closesThinnedRings()
{
    const QVector<DefPolygon> objects{ { {}, { ring(0, 0, 0.4) } } };
    PlanView view(objects, false);
    view.show(window, { 0, 0 }, 1);
    const PlanOutline outline = PlanIndex(objects, false).outline(0, view, 1);
    QCOMPARE(outline.areas.size(), 1);
    QCOMPARE(outline.areas.at(0).first(), outline.areas.at(0).last());
}

void TestPlanScene::cutsFarContours()
{
    // A circle of a million units, seen at its right end at a hundred pixels a unit.
    DefPolygon object;
    object.contours.resize(1);
    for (int i = 0; i <= 1000; ++i)
        object.contours[0].append(
            { {}, 1e6 * std::cos(i * M_PI / 500), 1e6 * std::sin(i * M_PI / 500) });
    object.contours[0].last() = object.contours[0].first();
    const QVector<DefPolygon> objects{ object };
    PlanView view(objects, false);
    view.show(window, { 1e6, 0 }, 100);
    const PlanOutline outline = PlanIndex(objects, false).outline(0, view, 1);
    for (const auto& polygons : { outline.lines, outline.areas }) {
        QVERIFY(!polygons.isEmpty());
        for (const QPolygonF& polygon : polygons)
            QVERIFY(window.adjusted(-17, -17, 17, 17).contains(polygon.boundingRect()));
    }
    // The left half of the window is inside.
    QVERIFY(outline.areas.at(0).containsPoint({ 20, 50 }, Qt::OddEvenFill));
    QVERIFY(!outline.areas.at(0).containsPoint({ 80, 50 }, Qt::OddEvenFill));
}

void TestPlanScene::numbersVertices()
{
    DefPolygon object{ {}, { ring(0, 0, 10), {}, ring(2, 2, 1) } };
    object.contours[0][1].x = notANumber;
    const QVector<DefPolygon> objects{ object };
    PlanView view(objects, false);
    view.show(window, { 5, 5 }, 5);
    const auto vertices = PlanIndex(objects, false).verticesIn(0, view, window);
    QCOMPARE(vertices.size(), 9);
    QCOMPARE(vertices.at(1).index, 2);
    QCOMPARE(vertices.at(4).contour, 2);
    QCOMPARE(vertices.at(4).index, 0);
    QCOMPARE(vertices.at(4).number, 5);
}

void TestPlanScene::marksDuplicates()
{
    const QVector<DefPolygon> objects{ { QStringLiteral("а"), { ring(0, 0, 10) } },
        { QStringLiteral("А"), { ring(20, 0, 10) } },
        { QStringLiteral("б"), { ring(40, 0, 10) } } };
    PlanScene scene(objects, {});
    QBitArray duplicates(3);
    duplicates.setBit(0);
    duplicates.setBit(1);
    scene.setDuplicates(duplicates);
    scene.view.fit(QRectF(10, 10, 380, 340));
    const QImage image = painted(scene);
    const auto isRed = [&](double x) {
        const QPointF place = scene.view.toPicture({ {}, x, 7 });
        for (int step = -2; step <= 2; ++step) {
            const QColor color = image.pixelColor(place.toPoint() + QPoint(step, 0));
            if (color.red() > color.blue() + 60)
                return true;
        }
        return false;
    };
    QVERIFY(isRed(0));
    QVERIFY(isRed(20));
    QVERIFY(!isRed(40));
}

void TestPlanScene::findsConflicts()
{
    QVector<DefPolygon> objects{ { {}, { ring(0, 0, 10, QStringLiteral("1")) } },
        { {}, { ring(20, 0, 10, QStringLiteral("1")) } } };
    objects[1].contours[0][2].def = QStringLiteral("1");
    PlanScene scene(objects, {});
    scene.view.fit(QRectF(10, 10, 380, 340));
    const QPointF place = scene.view.toPicture(objects.at(1).contours.at(0).at(2));
    const QColor red = PlanColors().red;
    QVERIFY(!has(painted(scene), place, red));
    QVERIFY(scene.findConflicts(1));
    QVERIFY(!has(painted(scene), place, red));
    QVERIFY(!scene.findConflicts(1));
    QVERIFY(has(painted(scene), place, red));
    objects[1].contours[0][2].def.clear();
    scene.updateConflicts(1);
    QVERIFY(!has(painted(scene), place, red));
}

void TestPlanScene::findsObjects()
{
    const QVector<DefPolygon> objects{ { {}, { ring(0, 0, 100), ring(60, 60, 20) } },
        { {}, { ring(10, 10, 10) } }, { {}, { { { {}, 0, 120 }, { {}, 100, 120 } } } } };
    PlanScene scene(objects, {});
    scene.view.fit(QRectF(10, 10, 380, 340));
    const auto objectAt = [&](double x, double y) {
        return scene.objectAt(scene.view.toPicture({ {}, x, y }), 4);
    };
    QCOMPARE(objectAt(40, 40), 0);
    QCOMPARE(objectAt(15, 15), 1);
    QCOMPARE(objectAt(50, 120), 2);
    QCOMPARE(objectAt(70, 70), -1); // in the hole
    QCOMPARE(objectAt(50, 110), -1);
}

void TestPlanScene::findsVertices()
{
    const QVector<DefPolygon> objects{ { {}, { ring(0, 0, 100) } } };
    PlanScene scene(objects, {});
    scene.view.fit(QRectF(10, 10, 380, 340));
    const QPointF place = scene.view.toPicture({ {}, 100, 0 }) + QPointF(2, -2);
    QCOMPARE(scene.vertexAt(0, place, 4).index, 1);
    QCOMPARE(scene.vertexAt(0, place + QPointF(4, 0), 4).contour, -1);
}

void TestPlanScene::drawsSpecks()
{
    // More objects than there is room for; each is less than a pixel.
    QVector<DefPolygon> objects;
    for (int i = 0; i < 20000; ++i)
        objects.append({ QString::number(i), { ring(i % 200 * 100, i / 200 * 100, 1) } });
    PlanScene scene(objects, {});
    scene.view.fit(QRectF(10, 10, 380, 340));
    const QImage image = painted(scene);
    QVERIFY(has(image, scene.view.toPicture({ {}, 5000, 5000 }), PlanColors().line));
    scene.view.show(QRectF(10, 10, 380, 340), { 5000.5, 5000.5 }, 50);
    QVERIFY(has(painted(scene), scene.view.toPicture({ {}, 5000, 5000 }), PlanColors().line));
}

void TestPlanScene::drawsCrowd()
{
    // Squares of about seven pixels, too many for shapes of their own; one has a point at two
    // places, and one is as large as all of them.
    QVector<DefPolygon> objects;
    for (int i = 0; i < 1600; ++i)
        objects.append({ QString::number(i), { ring(i % 40 * 100, i / 40 * 100, 90) } });
    objects[820].contours[0][0].def = QStringLiteral("1");
    objects[820].contours[0][2].def = QStringLiteral("1");
    objects.append({ QStringLiteral("всё"), { ring(-100, -100, 4200) } });
    PlanScene scene(objects, {});
    QBitArray duplicates(objects.size());
    duplicates.setBit(41);
    scene.setDuplicates(duplicates);
    while (scene.findConflicts(1000)) { }
    scene.view.fit(QRectF(10, 10, 380, 340));
    const QImage image = painted(scene);
    const auto colorAt = [&](double x, double y, const QColor& color) {
        return has(image, scene.view.toPicture({ {}, x, y }), color);
    };
    const PlanColors colors;
    QVERIFY(colorAt(3000, 3045, colors.line)); // a small square
    QVERIFY(colorAt(-100, 2000, colors.line)); // the large one
    QVERIFY(colorAt(100, 145, colors.red)); // a duplicate
    QVERIFY(colorAt(2000, 2000, colors.red)); // the conflict
    QVERIFY(colorAt(2090, 2090, colors.red));
    QVERIFY(!colorAt(3000, 1045, colors.red));
}

void TestPlanScene::bearsAllNumbers_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::newRow("no numbers") << notANumber << notANumber;
    QTest::newRow("one is none") << notANumber << 5.0;
    QTest::newRow("infinite") << infinity << -infinity;
    QTest::newRow("greatest") << greatest << -greatest;
    QTest::newRow("smallest") << 5e-324 << 5e-324;
    QTest::newRow("far") << 1e15 << 1e15;
}

void TestPlanScene::bearsAllNumbers()
{
    QFETCH(double, x);
    QFETCH(double, y);
    DefPolygon object{ QStringLiteral("а"), { ring(0, 0, 10, QStringLiteral("1")) } };
    object.contours[0][2] = { QStringLiteral("1"), x, y };
    const QVector<DefPolygon> objects{ object, { {}, {} }, { {}, { {} } },
        { QStringLiteral("б"), { ring(x, y, 1) } } };
    PlanScene scene(objects, {});
    while (scene.findConflicts(1)) { }
    PlanSelection selection;
    selection.objects = { 3, 0 };
    selection.contour = 0;
    selection.vertex = 2;
    scene.view.fit(QRectF(10, 10, 380, 340));
    QVERIFY(!painted(scene, selection).isNull());
    scene.view.show(QRectF(10, 10, 380, 340), { 5, 5 }, 10);
    // Whatever else there is, the sound side of the object is drawn.
    QVERIFY(has(painted(scene), scene.view.toPicture({ {}, 5, 0 }), PlanColors().line));
    QVERIFY(scene.objectAt(scene.view.toPicture({ {}, 5, 0 }), 3) >= -1);
}

void TestPlanScene::bearsZoom()
{
    const QVector<DefPolygon> objects{ { QStringLiteral("а"), { ring(2213600, 468200, 30) } } };
    PlanScene scene(objects, { true, true });
    for (double scale = 1e-9; scale < 1e12; scale *= 10) {
        scene.view.show(QRectF(10, 10, 380, 340), { 468215, 2213600 }, scale);
        QVERIFY(!painted(scene).isNull());
    }
}

void TestPlanScene::drawsWhatThePageShows()
{
    // Two of one name, a hole, a line, and a point that stands at two places.
    QVector<DefPolygon> objects{ { QStringLiteral("а"), { ring(0, 0, 100), ring(20, 20, 30) } },
        { QStringLiteral("А"), { ring(150, 0, 60, QStringLiteral("п1")) } },
        { QStringLiteral("б"), { { { {}, 0, 130 }, { {}, 90, 140 }, { {}, 200, 130 } } } } };
    objects[1].contours[0][2].def = QStringLiteral("п1");
    const PlanAxes axes{ false, true };
    const QSize size(700, 600);
    QImage page(size, QImage::Format_RGB32);
    {
        QPainter painter(&page);
        PainterCanvas canvas(painter);
        PlanPainter(objects, axes).paint(canvas, size, {});
    }
    PlanScene scene(objects, axes);
    QBitArray duplicates(3);
    duplicates.setBit(0);
    duplicates.setBit(1);
    scene.setDuplicates(duplicates);
    while (scene.findConflicts(100)) { }
    const double margin = PlanView::margin;
    scene.view.fit(QRectF(QPointF(), QSizeF(size)).adjusted(margin, margin, -margin, -margin));
    QImage window(size, QImage::Format_RGB32);
    {
        QPainter painter(&window);
        scene.paint(painter, {}, Qt::blue, {});
    }
    // Around the frame the page has its title and its legend.
    const QRect inside = scene.view.frame().toRect().adjusted(2, 2, -2, -2);
    QVERIFY(has(page, scene.view.toPicture({ {}, 180, 60 }), PlanColors().red));
    QVERIFY(window.copy(inside) == page.copy(inside));
}

QTEST_MAIN(TestPlanScene)
#include "tst_planscene.moc"
