// The plan under the hands of its user: mouse, wheel, keys.

#include "document.h"
#include "planwidget.h"
#include "support/stricttest.h"

#include <QApplication>
#include <QImage>
#include <QLocale>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <limits>
#include <memory>

namespace {

/// With it the frame of the plan is 500 x 400 units large, its middle at (256, 206).
constexpr QSize plainSize(512, 452);

const DefPoint origin{ {}, 0, 0 };

QVector<DefPoint> rectangle(double left, double bottom, double right, double top)
{
    return { { QStringLiteral("1"), left, bottom }, { QStringLiteral("2"), right, bottom },
        { QStringLiteral("3"), right, top }, { QStringLiteral("4"), left, top },
        { QStringLiteral("1"), left, bottom } };
}

FormTable formOf(const QVector<DefPolygon>& objects)
{
    FormTable table;
    table.objects = objects;
    table.others.resize(objects.size());
    return table;
}

/// A square, a large rectangle, a line and an object without a place. They fill 44 x 32 units, so
/// that a unit is 10 of the picture and the origin stands at (36, 366).
FormTable plainForm()
{
    const double nowhere = std::numeric_limits<double>::quiet_NaN();
    return formOf({ { QStringLiteral("А"), { rectangle(0, 0, 10, 10) } },
        { QStringLiteral("Б"), { rectangle(20, 0, 44, 32) } },
        { QStringLiteral("В"),
            { { { QStringLiteral("1"), 0, 32 }, { QStringLiteral("2"), 10, 32 } } } },
        { QStringLiteral("Г"), { { { QStringLiteral("1"), nowhere, 5 } } } } });
}

} // namespace

Q_DECLARE_METATYPE(Qt::MouseButton)

class TestPlanWidget : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void fitsForm();
    void dragsPlan_data();
    void dragsPlan();
    void rightButtonLeavesPlan();
    void smallMoveIsClick();
    void picksObjects_data();
    void picksObjects();
    void picksVertices();
    void otherButtonsPickNothing();
    void doubleClickShowsObject_data();
    void doubleClickShowsObject();
    void doubleClickOnNothing();
    void keysMovePlan_data();
    void keysMovePlan();
    void otherKeysGoOn();
    void homeShowsAll();
    void wheelZooms_data();
    void wheelZooms();
    void wheelHasEnds();
    void staysFittedWhenResized();
    void keepsPartWhenResized();
    void bringsChosenObjectIntoSight();
    void leavesVisibleObject();
    void leavesObjectWithoutPlace();
    void bringsChosenVertexIntoSight();
    void tellsPlaceOfCursor_data();
    void tellsPlaceOfCursor();
    void tellsNoPlaceOfEmptyForm();
    void showsFocus();
    void marksConflictOfLargeForm();
    void asksForRoom();

private:
    void send(
        QEvent::Type type, const QPointF& place, Qt::MouseButton button, Qt::MouseButtons buttons);
    void press(const QPointF& place, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonPress, place, button, button);
    }
    void move(const QPointF& place, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        send(QEvent::MouseMove, place, Qt::NoButton, buttons);
    }
    void release(const QPointF& place, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonRelease, place, button, Qt::NoButton);
    }
    /// All that a window system sends, from the first press to the last release.
    void doubleClick(const QPointF& place);
    void turnWheel(const QPointF& place, int angle);
    QPointF place(double x, double y) const { return m_plan->placeOf(DefPoint{ {}, x, y }); }

    std::unique_ptr<Document> m_document;
    std::unique_ptr<PlanWidget> m_plan;
};

void TestPlanWidget::init()
{
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    m_document = std::make_unique<Document>();
    m_plan = std::make_unique<PlanWidget>(*m_document);
    m_plan->resize(plainSize);
    m_document->reset(plainForm(), {});
    // As the window does it.
    connect(m_plan.get(), &PlanWidget::objectPicked, m_plan.get(), [this](int object) {
        m_plan->select(object < 0 ? QVector<int>() : QVector<int>{ object });
    });
    m_plan->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_plan.get(), 60000));
}

void TestPlanWidget::cleanup()
{
    m_plan.reset();
    m_document.reset();
}

void TestPlanWidget::send(
    QEvent::Type type, const QPointF& place, Qt::MouseButton button, Qt::MouseButtons buttons)
{
    QMouseEvent event(type, place, button, buttons, Qt::NoModifier);
    QApplication::sendEvent(m_plan.get(), &event);
}

void TestPlanWidget::doubleClick(const QPointF& place)
{
    press(place);
    release(place);
    send(QEvent::MouseButtonDblClick, place, Qt::LeftButton, Qt::LeftButton);
    release(place);
}

void TestPlanWidget::turnWheel(const QPointF& place, int angle)
{
    QWheelEvent wheel(place, m_plan->mapToGlobal(place.toPoint()), {}, { 0, angle }, Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(m_plan.get(), &wheel);
    QVERIFY(wheel.isAccepted());
}

void TestPlanWidget::fitsForm()
{
    QCOMPARE(m_plan->scale(), 10.0);
    QCOMPARE(place(0, 0), QPointF(36, 366));
    QCOMPARE(place(44, 32), QPointF(476, 46));
    // With another form, too.
    m_document->replaceTable(
        formOf({ { QStringLiteral("А"), { rectangle(0, 0, 22, 16) } } }), QString());
    QCOMPARE(m_plan->scale(), 20.0);
    QCOMPARE(place(0, 0), QPointF(36, 366));
}

void TestPlanWidget::dragsPlan_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::newRow("left") << Qt::LeftButton;
    QTest::newRow("middle") << Qt::MiddleButton;
}

void TestPlanWidget::dragsPlan()
{
    QFETCH(Qt::MouseButton, button);
    const QSignalSpy picked(m_plan.get(), &PlanWidget::objectPicked);
    press({ 86, 316 }, button);
    move({ 106, 306 }, button);
    QCOMPARE(m_plan->cursor().shape(), Qt::ClosedHandCursor);
    QCOMPARE(place(0, 0), QPointF(56, 356));
    // From there on each step counts.
    move({ 107, 306 }, button);
    QCOMPARE(place(0, 0), QPointF(57, 356));
    release({ 107, 306 }, button);
    QCOMPARE(m_plan->cursor().shape(), Qt::ArrowCursor);
    QVERIFY(picked.isEmpty());
    QCOMPARE(m_plan->scale(), 10.0);
    // Released, it stays.
    move({ 300, 200 }, Qt::NoButton);
    QCOMPARE(place(0, 0), QPointF(57, 356));
}

void TestPlanWidget::rightButtonLeavesPlan()
{
    press({ 86, 316 }, Qt::RightButton);
    move({ 186, 216 }, Qt::RightButton);
    QCOMPARE(place(0, 0), QPointF(36, 366));
    QCOMPARE(m_plan->cursor().shape(), Qt::ArrowCursor);
    release({ 186, 216 }, Qt::RightButton);
    QCOMPARE(place(0, 0), QPointF(36, 366));
}

void TestPlanWidget::smallMoveIsClick()
{
    press({ 86, 316 });
    move(QPointF(86 + QApplication::startDragDistance() - 1, 316));
    QCOMPARE(place(0, 0), QPointF(36, 366));
    release({ 86, 316 });
    QCOMPARE(m_plan->selection().objects, QVector<int>{ 0 });
}

void TestPlanWidget::picksObjects_data()
{
    QTest::addColumn<QPointF>("at");
    QTest::addColumn<QVector<int>>("objects");
    QTest::newRow("in the square") << QPointF(5, 5) << QVector<int>{ 0 };
    QTest::newRow("in the rectangle") << QPointF(30, 16) << QVector<int>{ 1 };
    QTest::newRow("on the line") << QPointF(5, 32) << QVector<int>{ 2 };
    QTest::newRow("half a unit beside the line") << QPointF(5, 31.5) << QVector<int>{ 2 };
    QTest::newRow("a unit beside the line") << QPointF(5, 31) << QVector<int>();
    QTest::newRow("between them") << QPointF(15, 20) << QVector<int>();
}

void TestPlanWidget::picksObjects()
{
    QFETCH(QPointF, at);
    m_plan->select({ 0 });
    const QPointF there = place(at.x(), at.y());
    press(there);
    release(there);
    QTEST(m_plan->selection().objects, "objects");
    QCOMPARE(place(0, 0), QPointF(36, 366));
}

void TestPlanWidget::picksVertices()
{
    QSignalSpy vertices(m_plan.get(), &PlanWidget::vertexPicked);
    const QPointF corner = place(10, 10) + QPointF(3, -3);
    // Of an object that is not chosen the corner is not asked for.
    press(corner);
    release(corner);
    QVERIFY(vertices.isEmpty());
    QCOMPARE(m_plan->selection().objects, QVector<int>{ 0 });
    press(corner);
    release(corner);
    QCOMPARE(vertices.size(), 1);
    QCOMPARE(vertices.first(), (QVariantList{ 0, 2 }));
}

void TestPlanWidget::otherButtonsPickNothing()
{
    const QSignalSpy picked(m_plan.get(), &PlanWidget::objectPicked);
    for (const Qt::MouseButton button : { Qt::MiddleButton, Qt::RightButton }) {
        press({ 86, 316 }, button);
        release({ 86, 316 }, button);
    }
    QVERIFY(picked.isEmpty());
}

void TestPlanWidget::doubleClickShowsObject_data()
{
    QTest::addColumn<QPointF>("at");
    QTest::addColumn<int>("object");
    QTest::addColumn<double>("scale");
    QTest::addColumn<QPointF>("center");
    // It fills seven tenths of the frame, of 500 x 400 units.
    QTest::newRow("square") << QPointF(9, 5) << 0 << 28.0 << QPointF(5, 5);
    QTest::newRow("rectangle") << QPointF(22, 3) << 1 << 8.75 << QPointF(32, 16);
    // Where the cursor stands, there is nothing afterwards.
    QTest::newRow("line") << QPointF(8, 32) << 2 << 35.0 << QPointF(5, 32);
}

void TestPlanWidget::doubleClickShowsObject()
{
    QFETCH(QPointF, at);
    QFETCH(int, object);
    QFETCH(QPointF, center);
    doubleClick(place(at.x(), at.y()));
    QTEST(m_plan->scale(), "scale");
    QCOMPARE(place(center.x(), center.y()), QPointF(256, 206));
    QCOMPARE(m_plan->selection().objects, QVector<int>{ object });
    QCOMPARE(m_plan->selection().contour, -1);
}

void TestPlanWidget::doubleClickOnNothing()
{
    doubleClick(place(15, 20));
    QCOMPARE(m_plan->scale(), 10.0);
    QCOMPARE(place(0, 0), QPointF(36, 366));
    QVERIFY(m_plan->selection().objects.isEmpty());
}

void TestPlanWidget::keysMovePlan_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<double>("scale");
    QTest::addColumn<QPointF>("place");
    // An arrow tells where the view goes. Larger and smaller is a quarter, around (256, 226).
    QTest::newRow("left") << int(Qt::Key_Left) << 10.0 << QPointF(96, 366);
    QTest::newRow("right") << int(Qt::Key_Right) << 10.0 << QPointF(-24, 366);
    QTest::newRow("up") << int(Qt::Key_Up) << 10.0 << QPointF(36, 426);
    QTest::newRow("down") << int(Qt::Key_Down) << 10.0 << QPointF(36, 306);
    QTest::newRow("plus") << int(Qt::Key_Plus) << 12.5 << QPointF(-19, 401);
    QTest::newRow("the same key without shift") << int(Qt::Key_Equal) << 12.5 << QPointF(-19, 401);
    QTest::newRow("minus") << int(Qt::Key_Minus) << 8.0 << QPointF(80, 338);
}

void TestPlanWidget::keysMovePlan()
{
    QFETCH(int, key);
    QTest::keyClick(m_plan.get(), static_cast<Qt::Key>(key));
    QTEST(m_plan->scale(), "scale");
    QTEST(m_plan->placeOf(origin), "place");
}

void TestPlanWidget::otherKeysGoOn()
{
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
    QApplication::sendEvent(m_plan.get(), &event);
    QVERIFY(!event.isAccepted());
    QCOMPARE(place(0, 0), QPointF(36, 366));
}

void TestPlanWidget::homeShowsAll()
{
    QTest::keyClick(m_plan.get(), Qt::Key_Plus);
    QTest::keyClick(m_plan.get(), Qt::Key_Left);
    QTest::keyClick(m_plan.get(), Qt::Key_Home);
    QCOMPARE(m_plan->scale(), 10.0);
    QCOMPARE(place(0, 0), QPointF(36, 366));
}

void TestPlanWidget::wheelZooms_data()
{
    QTest::addColumn<int>("angle");
    QTest::addColumn<double>("scale");
    QTest::newRow("a notch") << 120 << 12.5;
    QTest::newRow("two notches") << 240 << 15.625;
    QTest::newRow("a notch back") << -120 << 8.0;
    QTest::newRow("sideways") << 0 << 10.0;
}

void TestPlanWidget::wheelZooms()
{
    QFETCH(int, angle);
    const QPointF corner = place(44, 32);
    turnWheel(corner, angle);
    QTEST(m_plan->scale(), "scale");
    QCOMPARE(place(44, 32), corner);
}

void TestPlanWidget::wheelHasEnds()
{
    // Everything is a tenth of the frame at least, and a unit no more than so many of the picture.
    for (int i = 0; i < 100; ++i)
        turnWheel({ 256, 206 }, -240);
    QCOMPARE(m_plan->scale(), 1.0);
    QCOMPARE(place(22, 16), QPointF(256, 206));
    for (int i = 0; i < 100; ++i)
        turnWheel({ 256, 206 }, 240);
    QCOMPARE(m_plan->scale(), 1e5);
    QCOMPARE(place(22, 16), QPointF(256, 206));
}

void TestPlanWidget::staysFittedWhenResized()
{
    m_plan->resize(262, 252); // a frame of half the sizes
    QCOMPARE(m_plan->scale(), 5.0);
    QCOMPARE(place(22, 16), QPointF(131, 106));
}

void TestPlanWidget::keepsPartWhenResized()
{
    QTest::keyClick(m_plan.get(), Qt::Key_Left);
    QCOMPARE(place(16, 16), QPointF(256, 206));
    m_plan->resize(262, 252);
    QCOMPARE(m_plan->scale(), 10.0);
    QCOMPARE(place(16, 16), QPointF(131, 106));
}

void TestPlanWidget::bringsChosenObjectIntoSight()
{
    for (int i = 0; i < 8; ++i)
        QTest::keyClick(m_plan.get(), Qt::Key_Right);
    QCOMPARE(place(0, 0), QPointF(-444, 366));
    m_plan->select({ 1, 0 });
    QCOMPARE(place(5, 5), QPointF(256, 206));
    QCOMPARE(m_plan->scale(), 10.0);
}

void TestPlanWidget::leavesVisibleObject()
{
    QTest::keyClick(m_plan.get(), Qt::Key_Right);
    m_plan->select({ 0 }); // in sight as far as from -24 to 76
    QCOMPARE(place(0, 0), QPointF(-24, 366));
    m_plan->select({});
    QCOMPARE(place(0, 0), QPointF(-24, 366));
}

void TestPlanWidget::leavesObjectWithoutPlace()
{
    m_plan->select({ 3 });
    m_plan->selectVertex(0, 0);
    QCOMPARE(m_plan->selection().objects, QVector<int>{ 3 });
    QCOMPARE(m_plan->selection().vertex, 0);
    QCOMPARE(place(0, 0), QPointF(36, 366));
}

void TestPlanWidget::bringsChosenVertexIntoSight()
{
    m_plan->select({ 0 });
    m_plan->selectVertex(0, 1); // in sight
    QCOMPARE(place(0, 0), QPointF(36, 366));
    QTest::keyClick(m_plan.get(), Qt::Key_Right);
    m_plan->selectVertex(0, 3); // at (0, 10)
    QCOMPARE(place(0, 10), QPointF(256, 206));
    // None is nowhere.
    m_plan->selectVertex(-1, -1);
    QCOMPARE(place(0, 10), QPointF(256, 206));
    QCOMPARE(m_plan->selection().contour, -1);
}

void TestPlanWidget::tellsPlaceOfCursor_data()
{
    QTest::addColumn<QPointF>("at");
    QTest::addColumn<QString>("text");
    // X runs upwards.
    QTest::newRow("corner") << QPointF(136, 366) << QStringLiteral("X 0,00  Y 10,00");
    QTest::newRow("between") << QPointF(41, 341) << QStringLiteral("X 2,50  Y 0,50");
    QTest::newRow("outside of all") << QPointF(26, 376) << QStringLiteral("X -1,00  Y -1,00");
    QTest::newRow("beside the scale") << QPointF(100, 430) << QString();
}

void TestPlanWidget::tellsPlaceOfCursor()
{
    QFETCH(QPointF, at);
    QSignalSpy moved(m_plan.get(), &PlanWidget::cursorMoved);
    move(at, Qt::NoButton);
    QCOMPARE(moved.size(), 1);
    QTEST(moved.first().first().toString(), "text");
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(m_plan.get(), &leave);
    QCOMPARE(moved.size(), 2);
    QCOMPARE(moved.last().first().toString(), QString());
}

void TestPlanWidget::tellsNoPlaceOfEmptyForm()
{
    m_document->reset(FormTable(), {});
    QSignalSpy moved(m_plan.get(), &PlanWidget::cursorMoved);
    move({ 136, 366 }, Qt::NoButton);
    QCOMPARE(moved.size(), 1);
    QCOMPARE(moved.first().first().toString(), QString());
    // Nor is there anything to pick.
    press({ 136, 366 });
    release({ 136, 366 });
    QVERIFY(m_plan->selection().objects.isEmpty());
}

void TestPlanWidget::showsFocus()
{
    const QColor mark = m_plan->palette().color(QPalette::Highlight);
    const auto edges = [this] {
        const QImage picture = m_plan->grab().toImage();
        return QVector<QColor>{ picture.pixelColor(1, 100),
            picture.pixelColor(picture.width() - 2, 100), picture.pixelColor(100, 1),
            picture.pixelColor(100, picture.height() - 2) };
    };
    m_plan->clearFocus();
    QVERIFY(!edges().contains(mark));
    m_plan->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_plan.get(), 60000));
    m_plan->setFocus();
    QCOMPARE(edges(), QVector<QColor>(4, mark));
}

void TestPlanWidget::marksConflictOfLargeForm()
{
    // More vertices than are looked at in one go stand before the two of one name.
    FormTable table = plainForm();
    DefPolygon large{ QStringLiteral("Д"), { {} } };
    for (int i = 0; i < 50000; ++i)
        large.contours.first().append({ QString::number(i), 44, 32.0 * i / 50000 });
    table.objects.insert(0, large);
    DefPolygon doubtful{ QStringLiteral("Е"), { rectangle(2, 20, 12, 26) } };
    doubtful.contours.first()[1].def = QStringLiteral("3");
    table.objects.append(doubtful);
    table.others.resize(table.objects.size());
    m_document->reset(table, {});
    const auto redness = [this](double x, double y) {
        const QImage picture = m_plan->grab().toImage();
        const QPoint middle = (place(x, y) * picture.devicePixelRatio()).toPoint();
        int most = -255;
        for (int step = -8; step <= 8; ++step) {
            const QColor color = picture.pixelColor(middle + QPoint(step, 2));
            most = std::max(most, color.red() - color.blue());
        }
        return most;
    };
    QVERIFY(QTest::qWaitFor([&] { return redness(12, 20) > 60; }, 60000));
    QVERIFY(redness(12, 26) > 60);
    QVERIFY(redness(2, 26) <= 60);
}

void TestPlanWidget::asksForRoom()
{
    QWidget window;
    QVBoxLayout layout(&window);
    layout.setContentsMargins(0, 0, 0, 0);
    layout.addWidget(new PlanWidget(*m_document));
    QCOMPARE(layout.sizeHint(), QSize(600, 500));
    QCOMPARE(layout.minimumSize(), QSize(200, 160));
}

QTEST_MAIN(TestPlanWidget)
#include "tst_planwidget.moc"
