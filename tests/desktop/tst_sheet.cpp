#include "sheet.h"

#include <QTest>

class TestSheet : public QObject {
    Q_OBJECT

private slots:
    void measuresSides_data();
    void measuresSides();
    void writesBearings_data();
    void writesBearings();
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

QTEST_GUILESS_MAIN(TestSheet)
#include "tst_sheet.moc"
