#include "import/dxflabels.h"

#include "literal/literalgeometry.h"
#include "support/random.h"
#include "support/records.h"

#include <QtTest>

/// The labels of drawings: which of them name objects, and which one is nearest.
class TestDxfLabels : public QObject {
    Q_OBJECT

private slots:
    void filterDropsPointNumbers_data();
    void filterDropsPointNumbers();
    void filterKeepsTheOrder();
    void filterThatLeavesNothingLeavesEverything();
    void nearestOfNone();
    void nearestFollowsTheOrder();
    void everyChangeIsSeenByTheNextSearch();
};

void TestDxfLabels::filterDropsPointNumbers_data()
{
    QTest::addColumn<QString>("def");
    QTest::addColumn<bool>("isPointNumber");
    const auto rowName = [](QByteArray def) { return def.replace('\n', "<LF>"); };
    for (const char* def : { "1", "12", "0", "т5", "A07", "z9", "Ё1", "ё1", "А1", "я77",
             "99999999999999999999", "12\n" })
        QTest::newRow(rowName(def).constData()) << QString::fromUtf8(def) << true;
    for (const char* def : { "ЗУ1", "12а", "A-7", ":123", "50:21:0101", "", "A", "AB1", " 1", "1 ",
             "-1", "1.5", "Ђ1", "é1", "1\n\n", "\n1", "1A1", "٣", "A٣" })
        QTest::newRow(rowName(def).constData()) << QString::fromUtf8(def) << false;
}

void TestDxfLabels::filterDropsPointNumbers()
{
    QFETCH(QString, def);
    QFETCH(bool, isPointNumber);
    DxfLabels labels({ DefPoint{ def, 1, 2 }, DefPoint{ QStringLiteral("ЗУ"), 3, 4 } });
    labels.filterObjectDefs();
    QCOMPARE(labels.texts().size(), isPointNumber ? 1 : 2);
    QCOMPARE(labels.texts().last().def, QStringLiteral("ЗУ"));
}

void TestDxfLabels::filterKeepsTheOrder()
{
    DxfLabels labels({ DefPoint{ QStringLiteral("В"), 9, 0 }, DefPoint{ QStringLiteral("7"), 1, 2 },
        DefPoint{ QStringLiteral("А"), 5, 0 }, DefPoint{ QStringLiteral(""), 3, 0 },
        DefPoint{ QStringLiteral("н8"), 1, 2 } });
    labels.filterObjectDefs();
    QCOMPARE(describeAll(labels.texts()), QStringLiteral("В 9 0; А 5 0;  3 0"));
}

void TestDxfLabels::filterThatLeavesNothingLeavesEverything()
{
    DxfLabels labels(
        { DefPoint{ QStringLiteral("2"), 9, 0 }, DefPoint{ QStringLiteral("т1"), 1, 2 } });
    labels.filterObjectDefs();
    QCOMPARE(describeAll(labels.texts()), QStringLiteral("2 9 0; т1 1 2"));
    labels.clear();
    labels.filterObjectDefs();
    QVERIFY(labels.isEmpty());
}

void TestDxfLabels::nearestOfNone()
{
    QVERIFY(!DxfLabels().findNearest(QPointF(1, 2)));
}

/// Two labels are as near as each other: the search meets the one or the other first, depending
/// on where in the list the place has its x.
void TestDxfLabels::nearestFollowsTheOrder()
{
    DxfLabels labels({ { QStringLiteral("А"), 1, 0 }, { QStringLiteral("В"), 3, 0 },
        { QStringLiteral("Б"), 2, 5 } });
    QCOMPARE(labels.findNearest(QPointF(2, 0))->def, QStringLiteral("В"));
    labels.sort();
    QCOMPARE(describeAll(labels.texts()), QStringLiteral("А 1 0; Б 2 5; В 3 0"));
    QCOMPARE(labels.findNearest(QPointF(2, 0))->def, QStringLiteral("А"));
    QCOMPARE(labels.findNearest(QPointF(2.5, 0))->def, QStringLiteral("В"));
}

void TestDxfLabels::everyChangeIsSeenByTheNextSearch()
{
    Random random(5);
    DxfLabels labels;
    for (int step = 0; step < 3000; ++step) {
        switch (random.below(12)) {
        case 0:
            labels.sort();
            break;
        case 1:
            labels.filterObjectDefs();
            break;
        case 2:
            if (random.below(8) == 0)
                labels.clear();
            break;
        default:
            labels.append(
                { QString::number(random.below(9)) + QLatin1Char(random.below(2) ? 'a' : '1'),
                    double(random.below(9)), double(random.below(9)) });
        }
        const QPointF place(random.below(20) / 2.0, random.below(20) / 2.0);
        const int expected = literal::findNearestPoint(labels.texts(), place);
        const DefPoint* const found = labels.findNearest(place);
        QCOMPARE(describe(found ? *found : DefPoint()),
            describe(expected < 0 ? DefPoint() : labels.texts().at(expected)));
        QCOMPARE(found == nullptr, expected < 0);
    }
}

QTEST_GUILESS_MAIN(TestDxfLabels)
#include "tst_dxflabels.moc"
