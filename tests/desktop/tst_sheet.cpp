#include "sheet.h"

#include <QLocale>
#include <QPaintEngine>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QTest>

#include <functional>
#include <map>

namespace {

/// Where a text stands on the pages: the page and the place of its base line, from the top.
using Line = std::pair<int, int>;

/// Writes down the texts that are drawn, and where.
class TextEngine : public QPaintEngine {
public:
    TextEngine()
        : QPaintEngine(AllFeatures)
    {
    }

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override { }
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override { }
    void drawPath(const QPainterPath&) override { }
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override { }
    void drawTextItem(const QPointF& place, const QTextItem& item) override
    {
        const QPointF onPage = painter()->deviceTransform().map(place);
        lines[{ page, qRound(onPage.y()) }] += item.text();
    }
    Type type() const override { return User; }

    std::map<Line, QString> lines; ///< the texts of a line one after the other
    int page = 1;
};

/// Pages of 500 x 700 points. Under the plan, which takes 55 parts of a hundred from 34 on, and
/// above the foot of 20 there is room for thirteen rows of the first table.
class TextPages : public QPdfWriter {
public:
    TextPages()
        : QPdfWriter(QString())
    {
    }
    bool newPage() override
    {
        if (!turn || !turn())
            return false;
        ++engine.page;
        return true;
    }
    QPaintEngine* paintEngine() const override { return isPaintable ? &engine : nullptr; }

    /// The texts of a page below the plan, without blanks: a font may have drawn them in parts.
    QStringList textsOf(int page) const
    {
        QStringList texts;
        for (const auto& [line, text] : engine.lines) {
            if (line.first == page && (page > 1 || line.second > 433))
                texts.append(QString(text).remove(QLatin1Char(' ')).remove(QChar(QChar::Nbsp)));
        }
        return texts;
    }

    mutable TextEngine engine;
    std::function<bool()> turn; ///< whether there is another page; none when empty
    bool isPaintable = true;

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return 500;
        case PdmHeight:
            return 700;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return 72;
        default:
            return QPdfWriter::metric(metric);
        }
    }
};

QVector<DefPoint> square(const char* prefix, double corner, double side)
{
    const auto point = [&](int number, double x, double y) {
        return DefPoint{ QString::fromUtf8(prefix) + QString::number(number), x, y };
    };
    return { point(1, corner, corner), point(2, corner + side, corner),
        point(3, corner + side, corner + side), point(4, corner, corner + side),
        point(1, corner, corner) };
}

FormTable formOf(const DefPolygon& object)
{
    FormTable table;
    table.name = QStringLiteral("Участки");
    table.objects = { object };
    table.others.resize(1);
    return table;
}

/// A line to the east of so many vertices.
FormTable lineForm(int vertices)
{
    DefPolygon object{ QStringLiteral("Л"), { {} } };
    for (int i = 1; i <= vertices; ++i)
        object.contours.first().append({ QStringLiteral("т%1").arg(i), double(i), 0 });
    return formOf(object);
}

bool paint(const FormTable& table, TextPages& pages, const std::atomic_bool& cancelled)
{
    return Sheet(table, { 0 }, false, QStringLiteral("План и каталог")).paint(pages, cancelled);
}

const std::atomic_bool goesOn{ false };

const QString head = QStringLiteral("№ТочкаXYДлина,мДир.угол");

} // namespace

class TestSheet : public QObject {
    Q_OBJECT

private slots:
    void measuresSides_data();
    void measuresSides();
    void writesBearings_data();
    void writesBearings();
    void partsContours();
    void measuresLine();
    void turnsPages();
    void leavesBearingOfNoLength();
    void endsWhenCancelled();
    void endsWhenCancelledOnPage();
    void endsWithoutPages();
    void tellsDeviceWithoutPaint();
};

void TestSheet::measuresSides_data()
{
    QTest::addColumn<double>("north");
    QTest::addColumn<double>("east");
    QTest::addColumn<double>("length");
    QTest::addColumn<double>("bearing");
    QTest::newRow("north") << 10.0 << 0.0 << 10.0 << 0.0;
    QTest::newRow("north-east") << 3.0 << 3.0 << 4.242640687 << 45.0;
    QTest::newRow("east") << 0.0 << 2.0 << 2.0 << 90.0;
    QTest::newRow("south") << -5.0 << 0.0 << 5.0 << 180.0;
    QTest::newRow("south-west") << -3.0 << -4.0 << 5.0 << 233.130102354;
    QTest::newRow("west") << 0.0 << -1.0 << 1.0 << 270.0;
    QTest::newRow("north-west") << 1.0 << -1.0 << 1.414213562 << 315.0;
}

void TestSheet::measuresSides()
{
    QFETCH(double, north);
    QFETCH(double, east);
    QFETCH(double, length);
    QFETCH(double, bearing);
    const SideMeasures side = measureSide(468000, 2213000, 468000 + north, 2213000 + east);
    QVERIFY(std::abs(side.length - length) < 1e-8);
    QVERIFY(std::abs(side.bearing - bearing) < 1e-8);
}

void TestSheet::writesBearings_data()
{
    QTest::addColumn<double>("degrees");
    QTest::addColumn<QString>("text");
    QTest::newRow("nought") << 0.0 << QStringLiteral("0°00,0′");
    QTest::newRow("half a degree") << 45.5 << QStringLiteral("45°30,0′");
    QTest::newRow("tenths") << 233.130102354 << QStringLiteral("233°07,8′");
    // 59.98 minutes are no sixty.
    QTest::newRow("carry") << 9.9997 << QStringLiteral("10°00,0′");
    QTest::newRow("full circle") << 359.9999 << QStringLiteral("0°00,0′");
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << QString();
}

void TestSheet::writesBearings()
{
    QFETCH(double, degrees);
    QTEST(bearingText(degrees), "text");
}

void TestSheet::partsContours()
{
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    const DefPolygon object{ QStringLiteral("А"), { square("н", 0, 10), square("в", 2, 3) } };
    TextPages pages;
    QVERIFY(paint(formOf(object), pages, goesOn));
    // A square of ten with a hole of three; rows are numbered through both.
    QCOMPARE(pages.textsOf(1),
        (QStringList{ QStringLiteral("ОбъектА"), QStringLiteral("Площадь91,00кв.м,периметр52,00м"),
            head, QStringLiteral("1н10,000,0010,0090°00,0′"),
            QStringLiteral("2н20,0010,0010,000°00,0′"),
            QStringLiteral("3н310,0010,0010,00270°00,0′"),
            QStringLiteral("4н410,000,0010,00180°00,0′"), QStringLiteral("5н10,000,00"),
            QStringLiteral("6в12,002,003,0090°00,0′"), QStringLiteral("7в22,005,003,000°00,0′"),
            QStringLiteral("8в35,005,003,00270°00,0′"), QStringLiteral("9в45,002,003,00180°00,0′"),
            QStringLiteral("10в12,002,00"), QStringLiteral("Лист1") }));
    // Rows are 14 points high; an empty one stands between the contours.
    QVector<int> steps;
    int before = 0;
    for (const auto& entry : pages.engine.lines) {
        const Line& line = entry.first;
        if (line.second < 433)
            continue;
        steps.append(line.second - before);
        before = line.second;
    }
    // Behind the name, the measures, the titles and the first row.
    QCOMPARE(steps.mid(4, 9), (QVector<int>{ 14, 14, 14, 14, 28, 14, 14, 14, 14 }));
}

void TestSheet::measuresLine()
{
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    TextPages pages;
    FormTable table = lineForm(3);
    table.decimals = 1;
    QVERIFY(paint(table, pages, goesOn));
    QCOMPARE(pages.textsOf(1),
        (QStringList{ QStringLiteral("ОбъектЛ"), QStringLiteral("Длина2,0м"), head,
            QStringLiteral("1т10,01,01,090°00,0′"), QStringLiteral("2т20,02,01,090°00,0′"),
            QStringLiteral("3т30,03,0"), QStringLiteral("Лист1") }));
}

void TestSheet::turnsPages()
{
    TextPages pages;
    pages.turn = [] { return true; };
    QVERIFY(paint(lineForm(70), pages, goesOn));
    QCOMPARE(pages.engine.page, 3);
    // Object, length, titles, thirteen rows, the number of the page.
    QCOMPARE(pages.textsOf(1).size(), 3 + 13 + 1);
    // 680 points have room for the titles and 47 rows.
    QCOMPARE(pages.textsOf(2).size(), 1 + 47 + 1);
    QCOMPARE(pages.textsOf(2).first(), head);
    QCOMPARE(pages.textsOf(2).last(), QStringLiteral("Лист2"));
    QCOMPARE(pages.textsOf(3).size(), 1 + 10 + 1);
    QVERIFY(pages.textsOf(3).at(1).startsWith(QStringLiteral("61т61")));
}

void TestSheet::leavesBearingOfNoLength()
{
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    const DefPoint point{ QStringLiteral("т"), 1, 2 };
    TextPages pages;
    QVERIFY(paint(formOf({ QStringLiteral("Л"), { { point, point } } }), pages, goesOn));
    QCOMPARE(pages.textsOf(1).at(3), QStringLiteral("1т2,001,000,00"));
}

void TestSheet::endsWhenCancelled()
{
    const std::atomic_bool cancelled{ true };
    TextPages pages;
    QVERIFY(!paint(lineForm(3), pages, cancelled));
    QCOMPARE(pages.textsOf(1), QStringList(QStringLiteral("Лист1")));
}

void TestSheet::endsWhenCancelledOnPage()
{
    std::atomic_bool cancelled{ false };
    TextPages pages;
    pages.turn = [&cancelled] {
        cancelled = true;
        return true;
    };
    QVERIFY(!paint(lineForm(70), pages, cancelled));
    QCOMPARE(pages.engine.page, 2);
    // The row that asked for the page is the last one.
    QCOMPARE(pages.textsOf(2).size(), 1 + 1 + 1);
}

void TestSheet::endsWithoutPages()
{
    TextPages pages;
    QVERIFY(!paint(lineForm(70), pages, goesOn));
    QCOMPARE(pages.textsOf(1).size(), 3 + 13 + 1);
}

void TestSheet::tellsDeviceWithoutPaint()
{
    QTest::ignoreMessage(QtWarningMsg,
        QRegularExpression(QStringLiteral("^QPainter::begin: Paint device returned engine == 0")));
    TextPages pages;
    pages.isPaintable = false;
    QVERIFY(!paint(lineForm(3), pages, goesOn));
}

QTEST_MAIN(TestSheet)
#include "tst_sheet.moc"
