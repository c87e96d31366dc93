#include "geometry/designation.h"

#include "literal/literalgeometry.h"
#include "support/random.h"
#include "support/records.h"

#include <QtTest>

#include <limits>

class TestDesignation : public QObject {
    Q_OBJECT

private slots:
    void splits_data();
    void splits();
    void splitsLikeTheExpression_data();
    void splitsLikeTheExpression();
    void numbers_data();
    void numbers();
    void sorts_data();
    void sorts();
    void sortMovesWholeObjects();
    void sortsLikeTheComparator_data();
    void sortsLikeTheComparator();
    void sortsLongOnes();
    void sameDefIgnoresCase_data();
    void sameDefIgnoresCase();
};

namespace {

QString show(const QString& text)
{
    QStringList codes;
    for (const QChar c : text)
        codes.append(QString::number(c.unicode(), 16));
    return codes.join(QLatin1Char(' '));
}

bool splitsAlike(const QString& def)
{
    QString prefix, expectedPrefix;
    int number = 0, expectedNumber = 0;
    splitDef(def, prefix, number);
    literal::splitDef(def, expectedPrefix, expectedNumber);
    if (prefix == expectedPrefix && number == expectedNumber)
        return true;
    qWarning("%s gives %s and %d, expected %s and %d", qPrintable(show(def)),
        qPrintable(show(prefix)), number, qPrintable(show(expectedPrefix)), expectedNumber);
    return false;
}

} // namespace

void TestDesignation::splits_data()
{
    QTest::addColumn<QString>("def");
    QTest::addColumn<QString>("expectedPrefix");
    QTest::addColumn<int>("expectedNumber");

    const auto row = [](const char* name, const QString& def, const QString& prefix, int number) {
        QTest::newRow(name) << def << prefix << number;
    };
    row("letters and digits", QStringLiteral("AB12"), QStringLiteral("AB"), 12);
    row("only digits", QStringLiteral("12"), QString(), 12);
    row("a dash is no sign", QStringLiteral("1-2"), QStringLiteral("1-"), 2);
    row("no digits", QStringLiteral("A"), QStringLiteral("A"), -1);
    row("digits inside only", QStringLiteral("A1B"), QStringLiteral("A1B"), -1);
    row("empty", QString(), QString(), -1);
    row("leading zeros", QStringLiteral("A007"), QStringLiteral("A"), 7);
    row("only zeros", QStringLiteral("000"), QString(), 0);
    row("too long for an int", QStringLiteral("A99999999999"), QStringLiteral("A"), 0);
    row("the largest int", QStringLiteral("A2147483647"), QStringLiteral("A"), 2147483647);
    row("one more than that", QStringLiteral("A2147483648"), QStringLiteral("A"), 0);
    row("many leading zeros", QStringLiteral("A0000000000000005"), QStringLiteral("A"), 5);
    row("Cyrillic", QStringLiteral("н15"), QStringLiteral("н"), 15);
    row("cadastral number", QStringLiteral("50:12:0030102:ЗУ7"), QStringLiteral("50:12:0030102:ЗУ"),
        7);
    row("trailing space", QStringLiteral("A1 "), QStringLiteral("A1 "), -1);
    row("Arabic digits are text", QStringLiteral("A\u0661\u0662"), QStringLiteral("A\u0661\u0662"),
        -1);
    row("fullwidth digits are text", QStringLiteral("A\uFF11"), QStringLiteral("A\uFF11"), -1);
}

void TestDesignation::splits()
{
    QFETCH(QString, def);
    QString prefix = QStringLiteral("old");
    int number = 77;
    splitDef(def, prefix, number);
    QTEST(prefix, "expectedPrefix");
    QTEST(number, "expectedNumber");
}

void TestDesignation::splitsLikeTheExpression_data()
{
    QTest::addColumn<QString>("alphabet");
    QTest::addColumn<int>("longest");

    QTest::newRow("plain") << QStringLiteral("AbН-: 0123456789") << 12;
    QTest::newRow("line feeds") << QStringLiteral("A1\n") << 6;
    QTest::newRow("line ends of all kinds")
        << QStringLiteral("A12\n\r\u000b\u000c\u0085\u2028\u2029") << 7;
    QTest::newRow("digits of other scripts")
        << QStringLiteral("A19\u0660\u0669\u06f5\u0967\uff15\u00b2\u2460") << 6;
    QString surrogates = QStringLiteral("A12\n\u00e9");
    for (const int half : { 0xD800, 0xD835, 0xDBFF, 0xDC00, 0xDFCE, 0xDFFF })
        surrogates.append(QChar(half));
    QTest::newRow("surrogates, paired and lone") << surrogates << 6;
    QString odd = QStringLiteral("A12\n\uFEFF");
    for (const int code : { 0, 0x1F, 0xFFFE, 0xFFFF, 0xFDD0 })
        odd.append(QChar(code));
    QTest::newRow("NUL and noncharacters") << odd << 6;
    QTest::newRow("long runs of digits") << QStringLiteral("0123456789") << 200;
    QTest::newRow("runs around the limit of an int") << QStringLiteral("0124789") << 11;
}

void TestDesignation::splitsLikeTheExpression()
{
    QFETCH(QString, alphabet);
    QFETCH(int, longest);
    Random random(3);
    for (int i = 0; i < 60000; ++i)
        QVERIFY(splitsAlike(random.text(alphabet, longest)));
}

void TestDesignation::numbers_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("expected");

    QTest::newRow("prefix") << QStringLiteral("P") << 1 << QStringLiteral("P1");
    QTest::newRow("no prefix") << QString() << 1 << QStringLiteral("1");
    QTest::newRow("zero") << QStringLiteral("н") << 0 << QStringLiteral("н0");
    QTest::newRow("Cyrillic") << QStringLiteral(":ЗУ") << 120 << QStringLiteral(":ЗУ120");
    QTest::newRow("place marks are text")
        << QStringLiteral("%1%2%") << 3 << QStringLiteral("%1%2%3");
    QTest::newRow("prefix that ends in digits") << QStringLiteral("7") << 8 << QStringLiteral("78");
    QTest::newRow("the largest the form allows")
        << QStringLiteral("a") << 999999999 << QStringLiteral("a999999999");
    QTest::newRow("largest") << QString() << std::numeric_limits<int>::max()
                             << QStringLiteral("2147483647");
    QTest::newRow("smallest") << QString() << std::numeric_limits<int>::min()
                              << QStringLiteral("-2147483648");
}

void TestDesignation::numbers()
{
    QFETCH(QString, prefix);
    QFETCH(int, number);
    QTEST(numberedDef(prefix, number), "expected");
}

void TestDesignation::sorts_data()
{
    QTest::addColumn<QStringList>("defs");
    QTest::addColumn<QStringList>("expected");

    const auto row = [](const char* name, const QString& defs, const QString& expected) {
        const QLatin1Char comma(',');
        QTest::newRow(name) << defs.split(comma) << expected.split(comma);
    };
    row("worked example", QStringLiteral("P10,p2,P,Q1"), QStringLiteral("P,p2,P10,Q1"));
    row("numbers by value", QStringLiteral("P10,P9,P2,P100"), QStringLiteral("P2,P9,P10,P100"));
    row("no number comes first", QStringLiteral("A0,A"), QStringLiteral("A,A0"));
    row("no prefix before any", QStringLiteral("A,3,12,1"), QStringLiteral("1,3,12,A"));
    row("Cyrillic case", QStringLiteral("ЗУ3,зу2,Зу1"), QStringLiteral("Зу1,зу2,ЗУ3"));
    row("too long numbers count as 0", QStringLiteral("A1,A99999999999,A"),
        QStringLiteral("A,A99999999999,A1"));
    row("dashes are part of the prefix", QStringLiteral("1-10,1-2,2-1"),
        QStringLiteral("1-2,1-10,2-1"));
}

void TestDesignation::sorts()
{
    QFETCH(QStringList, defs);
    QVector<DefPolygon> objects = objectsNamed(defs);
    sortObjects(objects);
    QTEST(defsOf(objects), "expected");
}

void TestDesignation::sortMovesWholeObjects()
{
    QVector<DefPolygon> objects =
        objectsNamed({ QStringLiteral("B2"), QStringLiteral("B1"), QStringLiteral("A") });
    for (DefPolygon& object : objects)
        object.contours.append({ DefPoint{ object.def, 1, 2 } });
    const QVector<DefPolygon> shared = objects;
    sortObjects(objects);
    QCOMPARE(describe(objects),
        (QStringList{ QStringLiteral("A [A 1 2]"), QStringLiteral("B1 [B1 1 2]"),
            QStringLiteral("B2 [B2 1 2]") }));
    QCOMPARE(shared.first().def, QStringLiteral("B2"));

    QVector<DefPolygon> none;
    sortObjects(none);
    QVERIFY(none.isEmpty());
}

void TestDesignation::sortsLikeTheComparator_data()
{
    QTest::addColumn<QString>("alphabet");
    QTest::addColumn<int>("longest");

    QTest::newRow("few keys, many equal") << QStringLiteral("aA1") << 2;
    QTest::newRow("plain") << QStringLiteral("pPqQ0123456789") << 6;
    QTest::newRow("Cyrillic") << QStringLiteral("зЗуУ:012") << 5;
    QString odd = QStringLiteral("kK\u212AsS\u017F\u00DFı1\n");
    odd.append(QChar(0xD801)).append(QChar(0xDC00)).append(QChar(0xDC28));
    QTest::newRow("odd case pairs and surrogates") << odd << 4;
}

void TestDesignation::sortsLikeTheComparator()
{
    QFETCH(QString, alphabet);
    QFETCH(int, longest);
    Random random(4);
    for (int round = 0; round < 60; ++round) {
        QStringList defs;
        for (int i = random.below(round < 50 ? 60 : 2000); i >= 0; --i)
            defs.append(random.text(alphabet, longest));
        QVector<DefPolygon> objects = objectsNamed(defs);
        // Where an object stood, so that objects with equal keys can be told apart.
        for (int i = 0; i < objects.size(); ++i)
            objects[i].contours.append({ DefPoint{ QString(), double(i), 0 } });
        QVector<DefPolygon> expected = objects;
        sortObjects(objects);
        literal::sortObjects(expected);
        QCOMPARE(describe(objects), describe(expected));
    }
}

void TestDesignation::sameDefIgnoresCase_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<bool>("same");

    const auto deseret = [](ushort low) { return QString(QChar(0xD801)) + QChar(low); };
    QTest::newRow("case") << QStringLiteral("aBc") << QStringLiteral("AbC") << true;
    QTest::newRow("Cyrillic") << QStringLiteral("ёж") << QStringLiteral("ЁЖ") << true;
    QTest::newRow("other text") << QStringLiteral("a") << QStringLiteral("b") << false;
    QTest::newRow("length") << QStringLiteral("a") << QStringLiteral("aa") << false;
    QTest::newRow("Kelvin sign") << QStringLiteral("\u212A") << QStringLiteral("k") << true;
    QTest::newRow("long s") << QStringLiteral("\u017F") << QStringLiteral("S") << true;
    QTest::newRow("sharp s is one letter") << QStringLiteral("ß") << QStringLiteral("SS") << false;
    QTest::newRow("surrogate pairs") << deseret(0xDC00) << deseret(0xDC28) << true;
    QTest::newRow("other surrogate pairs") << deseret(0xDC00) << deseret(0xDC29) << false;
    QTest::newRow("null and empty") << QString() << QStringLiteral("") << true;
}

void TestDesignation::sameDefIgnoresCase()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(bool, same);
    QCOMPARE(sameDef(a, b), same);
    QCOMPARE(sameDef(b, a), same);
    if (same)
        QCOMPARE(qHash(DefKey{ a }), qHash(DefKey{ b }));
}

/// Thousands of objects that share one long text share what is sorted by, too.
void TestDesignation::sortsLongOnes()
{
    constexpr int count = 20000;
    const QString texts[] = { QString(500000, QLatin1Char('b')) + QLatin1Char('7'),
        QString(500000, QLatin1Char('a')) + QLatin1Char('9'), QStringLiteral("b") };
    QVector<DefPolygon> objects;
    for (int i = 0; i < count; ++i)
        objects.append(DefPolygon{ texts[i % 3], {} });
    sortObjects(objects);
    QCOMPARE(objects.size(), count);
    // Of 20,000 every third from the first and the second on is one of 6667.
    for (int i = 0; i < count; ++i)
        QVERIFY(objects.at(i).def.isSharedWith(texts[i < 6667 ? 1 : i < 13333 ? 2 : 0]));
}

QTEST_APPLESS_MAIN(TestDesignation)
#include "tst_designation.moc"
