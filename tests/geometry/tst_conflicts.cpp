#include "geometry/conflicts.h"

#include "literal/literalgeometry.h"
#include "support/random.h"
#include "support/records.h"
#include "support/specialvalues.h"

#include <QtTest>

#include <cmath>
#include <limits>

class TestConflicts : public QObject {
    Q_OBJECT

private slots:
    void duplicates_data();
    void duplicates();
    void duplicatesLikeTheScan();
    void duplicatesAfterEachRename();
    void conflicts_data();
    void conflicts();
    void conflictsLikeTheScan();
    void manyOfEither();
    void longOnes();
};

namespace {

QString marks(const QBitArray& bits)
{
    QString result;
    for (int i = 0; i < bits.size(); ++i)
        result.append(QLatin1Char(bits.testBit(i) ? '1' : '0'));
    return result;
}

QString deseret(ushort low)
{
    return QString(QChar(0xD801)) + QChar(low);
}

/// Designations of which many are the same but for their case.
QStringList caseVariants()
{
    return { QString(), QStringLiteral(""), QStringLiteral("a"), QStringLiteral("A"),
        QStringLiteral("н1"), QStringLiteral("Н1"), QStringLiteral("н2"), QStringLiteral("k"),
        QStringLiteral("K"), QStringLiteral("\u212A"), QStringLiteral("s"),
        QStringLiteral("\u017F"), QStringLiteral("ß"), QStringLiteral("ẞ"), QStringLiteral("SS"),
        QStringLiteral("ss"), QStringLiteral("ı"), QStringLiteral("İ"), QStringLiteral("I"),
        QStringLiteral("i"), QStringLiteral("σ"), QStringLiteral("ς"), QStringLiteral("Σ"),
        QStringLiteral("ǅ"), QStringLiteral("Ǆ"), QStringLiteral("ǆ"), deseret(0xDC00),
        deseret(0xDC28), deseret(0xDC01), QString(QChar(0xD801)), QString(QChar(0xDC28)),
        QStringLiteral("a "), QString(QChar(0)) };
}

} // namespace

void TestConflicts::duplicates_data()
{
    QTest::addColumn<QStringList>("defs");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char* name, const QString& defs, const QString& expected) {
        QTest::newRow(name) << defs.split(QLatin1Char(',')) << expected;
    };
    row("none", QStringLiteral("a,b,c"), QStringLiteral("000"));
    row("two", QStringLiteral("a,b,a"), QStringLiteral("101"));
    row("three", QStringLiteral("a,a,a"), QStringLiteral("111"));
    row("case", QStringLiteral("ЗУ1,b,зу1"), QStringLiteral("101"));
    row("empty ones are never marked", QStringLiteral(",,a,,a"), QStringLiteral("00101"));
    row("spaces count", QStringLiteral("a,a ,a"), QStringLiteral("101"));
    row("numbers are text", QStringLiteral("A1,A01,A001"), QStringLiteral("000"));
    QTest::newRow("no object") << QStringList() << QString();
}

void TestConflicts::duplicates()
{
    QFETCH(QStringList, defs);
    QTEST(marks(duplicateDefs(objectsNamed(defs))), "expected");
}

void TestConflicts::duplicatesLikeTheScan()
{
    Random random(5);
    const QStringList variants = caseVariants();
    for (int round = 0; round < 2000; ++round) {
        QStringList defs;
        for (int i = random.below(25); i > 0; --i) {
            QString def = random.pick(variants);
            if (random.oneIn(3))
                def += random.pick(variants);
            defs.append(def);
        }
        const QVector<DefPolygon> objects = objectsNamed(defs);
        QCOMPARE(marks(duplicateDefs(objects)), marks(literal::duplicateDefs(objects)));
    }
}

using Contours = QVector<QVector<DefPoint>>;

void TestConflicts::duplicatesAfterEachRename()
{
    const QStringList defs = { QString(), QStringLiteral(""), QStringLiteral("1"),
        QStringLiteral("a"), QStringLiteral("A"), QStringLiteral("ё"), QStringLiteral("Ё"),
        QStringLiteral("ß"), QStringLiteral("ss"), deseret(0xDC00), deseret(0xDC28) };
    Random random(11);
    for (int round = 0; round < 50; ++round) {
        QVector<DefPolygon> objects(1 + random.below(8));
        for (DefPolygon& object : objects)
            object.def = random.pick(defs);
        QBitArray bits = duplicateDefs(objects);
        for (int rename = 0; rename < 50; ++rename) {
            const int renamed = random.below(objects.size());
            const QString before = objects.at(renamed).def;
            objects[renamed].def = random.pick(defs);
            updateDuplicateDefs(bits, objects, renamed, before);
            QCOMPARE(marks(bits), marks(literal::duplicateDefs(objects)));
        }
    }
}

void TestConflicts::conflicts_data()
{
    QTest::addColumn<Contours>("contours");
    QTest::addColumn<QString>("expected");

    const auto point = [](const char* def, double x, double y) {
        return DefPoint{ QString::fromUtf8(def), x, y };
    };
    const double beyond = std::nextafter(0.01, 1);
    QTest::newRow("nothing") << Contours{} << QString();
    QTest::newRow("empty contours") << Contours{ {}, {} } << QString();
    QTest::newRow("one vertex") << Contours{ { point("a", 1, 2) } } << QStringLiteral("0");
    QTest::newRow("listed twice") << Contours{ { point("a", 1, 2), point("b", 3, 4),
        point("a", 1, 2) } } << QStringLiteral("000");
    QTest::newRow("at two places")
        << Contours{ { point("a", 1, 2), point("b", 3, 4), point("a", 1, 3) } }
        << QStringLiteral("101");
    QTest::newRow("case") << Contours{ { point("н1", 1, 2), point("Н1", 5, 2) } }
                          << QStringLiteral("11");
    QTest::newRow("in another contour")
        << Contours{ { point("a", 1, 2) }, {}, { point("b", 1, 2), point("A", 9, 9) } }
        << QStringLiteral("101");
    QTest::newRow("other designations at one place")
        << Contours{ { point("a", 1, 2), point("b", 1, 2) } } << QStringLiteral("00");
    QTest::newRow("no designation")
        << Contours{ { point("", 1, 2), point("", 5, 2) } } << QStringLiteral("00");
    QTest::newRow("the bound itself")
        << Contours{ { point("a", 0, 0), point("a", 0.01, -0.01) } } << QStringLiteral("00");
    QTest::newRow("just beyond in x")
        << Contours{ { point("a", 0, 0), point("a", beyond, 0) } } << QStringLiteral("11");
    QTest::newRow("just beyond in y")
        << Contours{ { point("a", 0, 0), point("a", 0, -beyond) } } << QStringLiteral("11");
    QTest::newRow("the middle one is near both of the others")
        << Contours{ { point("a", 0, 0), point("a", 0.008, 0), point("a", 0.016, 0) } }
        << QStringLiteral("101");
    QTest::newRow("both not a number")
        << Contours{ { point("a", undefined, 0), point("a", undefined, 0) } }
        << QStringLiteral("11");
    QTest::newRow("one at infinity conflicts with all")
        << Contours{ { point("a", 0, 0), point("a", 0, 0), point("a", 0, infinite) } }
        << QStringLiteral("111");
    QTest::newRow("alone at infinity")
        << Contours{ { point("a", infinite, undefined), point("b", 0, 0) } }
        << QStringLiteral("00");
}

void TestConflicts::conflicts()
{
    QFETCH(Contours, contours);
    QTEST(marks(conflictingPoints(DefPolygon{ QString(), contours })), "expected");
}

void TestConflicts::conflictsLikeTheScan()
{
    Random random(6);
    const QStringList variants = caseVariants();
    const QVector<double> ordinary{ 0, -0.0, 0.005, 0.01, 0.010000000000000002, 0.02, -0.01, 1,
        1.01, 1.0099999999999998, 1000000.01, 1000000 };
    const QVector<double> odd{ infinite, -infinite, undefined, 1e308, -1e308, 5e-324 };
    for (int round = 0; round < 6000; ++round) {
        const auto coordinate = [&] {
            return random.oneIn(round % 3 == 0 ? 8 : 1000) ? random.pick(odd)
                                                           : random.pick(ordinary);
        };
        DefPolygon object;
        for (int contours = random.below(4); contours > 0; --contours) {
            object.contours.append(QVector<DefPoint>());
            for (int i = random.below(14); i > 0; --i) {
                object.contours.last().append(
                    DefPoint{ random.pick(variants), coordinate(), coordinate() });
            }
        }
        const QString expected = marks(literal::conflictingPoints(object));
        if (marks(conflictingPoints(object)) != expected)
            QFAIL(qPrintable(describe(object) + QStringLiteral(" expected ") + expected));
    }
}

void TestConflicts::manyOfEither()
{
    constexpr int count = 300000;
    QVector<DefPolygon> objects(count);
    DefPolygon object{ QString(), { QVector<DefPoint>(count) } };
    for (int i = 0; i < count; ++i) {
        // Every designation but the last two occurs once; a scan would take minutes.
        objects[i].def = QString::number(i == count - 1 ? i - 1 : i);
        object.contours[0][i] = DefPoint{ objects[i].def, double(i), 0 };
    }
    const QBitArray duplicates = duplicateDefs(objects);
    QCOMPARE(duplicates.count(true), 2);
    QVERIFY(duplicates.testBit(count - 1) && duplicates.testBit(count - 2));
    const QBitArray conflicting = conflictingPoints(object);
    QCOMPARE(conflicting.count(true), 2);
    QVERIFY(conflicting.testBit(count - 1) && conflicting.testBit(count - 2));
}

/// One text of a drawing may name all that is in it: it must not be gone through each time.
void TestConflicts::longOnes()
{
    constexpr int count = 20000;
    const QString text(500000, QLatin1Char('a'));
    const QString sameText = text.toUpper();
    const QString otherText = text + QLatin1Char('b');
    QVector<DefPolygon> objects;
    DefPolygon polygon;
    polygon.contours.append(QVector<DefPoint>());
    for (int i = 0; i < count; ++i) {
        const QString& def = i == 7 ? otherText : i % 2 == 0 ? text : sameText;
        polygon.contours.first().append(DefPoint{ def, 1.0 * i, 0 });
        objects.append(DefPolygon{ def, {} });
    }
    QBitArray expected(count, true);
    expected.clearBit(7);
    QCOMPARE(conflictingPoints(polygon), expected);
    QCOMPARE(duplicateDefs(objects), expected);
}

QTEST_APPLESS_MAIN(TestConflicts)
#include "tst_conflicts.moc"
