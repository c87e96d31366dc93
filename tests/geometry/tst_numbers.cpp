#include "catalogue/coordformat.h"
#include "import/number.h"

#include "support/random.h"
#include "support/specialvalues.h"

#include <QLocale>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>

class TestNumbers : public QObject {
    Q_OBJECT

private slots:
    void formats_data();
    void formats();
    void formatsLikeTheLocale_data();
    void formatsLikeTheLocale();
    void formatsRandomValuesLikeTheLocale();
    void reads_data();
    void reads();
    void readsLikeQString_data();
    void readsLikeQString();
    void readsRandomNumbersLikeQString();
    void readsEveryShortTextLikeQString();
    void pairs_data();
    void pairs();
    void readsRandomPairsLikeQString();
};

namespace {

bool formatsAlike(double value, int decimals)
{
    const QString text = formatFixed(value, decimals);
    const QString expected = QLocale::c().toString(value, 'f', decimals);
    if (text == expected)
        return true;
    qWarning("%s with %d decimals: '%s', expected '%s'",
        qPrintable(QString::number(value, 'g', 17)), decimals, qPrintable(text),
        qPrintable(expected));
    return false;
}

bool isAscii(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

/// Both forms of a text, or the one that it can have, each handed to `test`.
template <typename Test>
bool inEachForm(const QString& text, Test test)
{
    const QByteArray bytes = text.toLatin1();
    return test(TextView(QStringView(text)))
        && (!isAscii(text) || test(TextView(bytes.constData(), bytes.size())));
}

bool readsIntegerAlike(const QString& text)
{
    bool expectedOk = false;
    const int expected = text.toInt(&expectedOk);
    return inEachForm(text, [&](TextView form) {
        bool ok = !expectedOk;
        const int value = toInt(form, &ok);
        if (ok == expectedOk && value == expected && toInt(form) == expected)
            return true;
        qWarning("'%s': %d %d, expected %d %d", qPrintable(text), value, ok, expected, expectedOk);
        return false;
    });
}

bool readsAlike(const QString& text)
{
    if (!readsIntegerAlike(text))
        return false;
    bool expectedOk = false;
    const double expected = text.toDouble(&expectedOk);
    return inEachForm(text, [&](TextView form) {
        bool ok = !expectedOk;
        const double value = toDouble(form, &ok);
        if (ok == expectedOk && std::memcmp(&value, &expected, sizeof value) == 0)
            return true;
        qWarning("'%s': %s %d, expected %s %d", qPrintable(text),
            qPrintable(QString::number(value, 'g', 17)), ok,
            qPrintable(QString::number(expected, 'g', 17)), expectedOk);
        return false;
    });
}

/// Whether `text` is taken for a plain pair. A failure when it is one of other values than
/// QString::toDouble() finds in its two tokens.
bool isPlainPairLikeQString(const QString& text)
{
    double first = 0, second = 0;
    if (!inEachForm(text, [&](TextView form) { return toPlainPair(form, &first, &second); }))
        return false;
    const QStringList tokens = text.split(QLatin1Char(' '));
    bool ok1 = false, ok2 = false;
    const double expected[] = { tokens.value(0).toDouble(&ok1), tokens.value(1).toDouble(&ok2) };
    const double values[] = { first, second };
    if (tokens.size() != 2 || !ok1 || !ok2 || std::memcmp(values, expected, sizeof values) != 0)
        QTest::qFail(qPrintable(text), __FILE__, __LINE__);
    return true;
}

QString digits(Random& random, int longest)
{
    return random.text(QStringLiteral("0123456789"), longest);
}

/// A number in one of the ways in which files write them, or nearly so.
QString numberText(Random& random)
{
    QString text = random.pick(
        QStringList{ QString(), QString(), QString(), QStringLiteral("-"), QStringLiteral("+") });
    text += digits(random, random.oneIn(4) ? 22 : 9);
    if (!random.oneIn(4))
        text += QLatin1Char('.') + digits(random, random.oneIn(4) ? 22 : 6);
    if (random.oneIn(8)) {
        text += random.pick(QStringList{
            QStringLiteral("e"), QStringLiteral("E"), QStringLiteral("e-"), QStringLiteral("E+") });
        text += digits(random, 3);
    }
    return text;
}

} // namespace

void TestNumbers::formats_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("expected");

    QTest::newRow("whole") << 12.0 << 2 << QStringLiteral("12.00");
    QTest::newRow("rounded down") << 1.234 << 2 << QStringLiteral("1.23");
    QTest::newRow("rounded up") << 1.236 << 2 << QStringLiteral("1.24");
    QTest::newRow("exact half") << 0.125 << 2 << QStringLiteral("0.13");
    QTest::newRow("negative exact half") << -2.5 << 0 << QStringLiteral("-3");
    QTest::newRow("no group separators") << 1234567.891 << 2 << QStringLiteral("1234567.89");
    QTest::newRow("no decimals") << 1234.5678 << 0 << QStringLiteral("1235");
    QTest::newRow("negative") << -0.5 << 1 << QStringLiteral("-0.5");
    QTest::newRow("zero") << 0.0 << 2 << QStringLiteral("0.00");
    // Ten times this is beyond where doubles tell halves apart.
    QTest::newRow("exact half of a large number")
        << 450359962737051.25 << 1 << QStringLiteral("450359962737051.3");
}

void TestNumbers::formats()
{
    QFETCH(double, value);
    QFETCH(int, decimals);
    QTEST(formatFixed(value, decimals), "expected");
}

void TestNumbers::formatsLikeTheLocale_data()
{
    QTest::addColumn<double>("value");
    const auto row = [](const char* name, double value) { QTest::newRow(name) << value; };

    row("zero", 0.0);
    row("negative zero", -0.0);
    row("exact half: 0.125", 0.125);
    row("exact half: 0.375", 0.375);
    row("exact half: 0.5", 0.5);
    row("exact half: 1.5", 1.5);
    row("exact half: 2.5", 2.5);
    row("exact half: -2.5", -2.5);
    row("almost half: 0.005", 0.005);
    row("almost half: 0.015", 0.015);
    row("almost half: 1.005", 1.005);
    row("tiny", 1e-300);
    row("tiny negative", -1e-300);
    row("rounds to zero", 0.004);
    row("negative, rounds to zero", -0.004);
    row("denormal", 5e-324);
    row("negative denormal", -5e-324);
    row("carries over", 0.9999999);
    row("carries over thrice", 999.9999999);
    row("below 1e15", 999999999999999.9);
    row("1e15", 1e15);
    row("1e16", 1e16);
    row("1e21", 1e21);
    row("1e22", -1e22);
    row("huge", 1e300);
    row("largest", std::numeric_limits<double>::max());
    row("infinite", infinite);
    row("negative infinite", -infinite);
    row("not a number", undefined);
    row("negative, not a number", std::copysign(undefined, -1));
}

void TestNumbers::formatsLikeTheLocale()
{
    QFETCH(double, value);
    for (int decimals = 0; decimals <= 20; ++decimals)
        QVERIFY(formatsAlike(value, decimals));
    QVERIFY(formatsAlike(value, 40));
}

void TestNumbers::formatsRandomValuesLikeTheLocale()
{
    Random random(12);
    for (int i = 0; i < 300000; ++i) {
        const int decimals = random.oneIn(2) ? 2 : random.below(18);
        QVERIFY(formatsAlike(random.between(-9e6, 9e6), decimals));
        // Multiples of powers of two: many of these are exact halves of the last decimal.
        QVERIFY(formatsAlike((random.below(200001) - 100000) / 1024.0, random.below(11)));
        // Decimals as files write them, half a digit beyond what is shown.
        QVERIFY(formatsAlike((random.below(2000001) - 1000000) / 1000.0, 2));
        if (i % 4 == 0)
            QVERIFY(formatsAlike(random.anyDouble(), decimals));
    }
}

void TestNumbers::reads_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("expectedOk");
    QTest::addColumn<double>("expected");

    const auto number = [](const char* text, double value) {
        QTest::newRow(text) << QString::fromUtf8(text) << true << value;
    };
    const auto junk = [](const char* text) {
        QTest::newRow(text) << QString::fromUtf8(text) << false << 0.0;
    };
    number("0", 0);
    number("12.5", 12.5);
    number("-12.5", -12.5);
    number("+7", 7);
    number("0.1", 0.1);
    number("7512345.67", 7512345.67);
    number("1e3", 1000);
    number("1.5E-2", 0.015);
    number("123456789012345678", 123456789012345678.0);
    number("9007199254740993", 9007199254740992.0);
    number("0.30000000000000004", 0.30000000000000004);
    number("inf", infinite);
    junk("");
    junk("abc");
    junk("-");
    junk(".");
    junk("1,5");
    junk("1.2.3");
    junk("1-2");
    junk("0x10");
    junk("1e");
    junk("--1");
    junk("12abc");
}

void TestNumbers::reads()
{
    QFETCH(QString, text);
    QFETCH(bool, expectedOk);
    QFETCH(double, expected);
    bool ok = !expectedOk;
    const double value = toDouble(QStringView(text), &ok);
    QCOMPARE(ok, expectedOk);
    QVERIFY2(value == expected, qPrintable(QString::number(value, 'g', 17)));
}

void TestNumbers::readsLikeQString_data()
{
    QTest::addColumn<QString>("text");
    const QStringList texts{ QString(), QStringLiteral("-0"), QStringLiteral("-0.0"),
        QStringLiteral("+0"), QStringLiteral("+-1"), QStringLiteral(".5"), QStringLiteral("-.5"),
        QStringLiteral("5."), QStringLiteral("-5."), QStringLiteral("00"), QStringLiteral("007"),
        QStringLiteral("0.000000000000001"), QStringLiteral("0.0000000000000001"),
        QStringLiteral("999999999999999"), QStringLiteral("9999999999999999"),
        QStringLiteral("-999999999999999"), QStringLiteral("99999999999999.9"),
        QStringLiteral("000000000000000"), QStringLiteral("0000000000000001"),
        QStringLiteral("1e400"), QStringLiteral("-1e400"), QStringLiteral("1e-400"),
        QStringLiteral("999999999"), QStringLiteral("0999999999"), QStringLiteral("2147483647"),
        QStringLiteral("2147483648"), QStringLiteral("-2147483648"), QStringLiteral("-2147483649"),
        QStringLiteral("nan"), QStringLiteral("NaN"), QStringLiteral("-nan"), QStringLiteral("inf"),
        QStringLiteral("-inf"), QStringLiteral("+inf"), QStringLiteral("INF"),
        QStringLiteral("infinity"), QStringLiteral(" 1"), QStringLiteral("1 "),
        QStringLiteral("1 2"), QStringLiteral("1\t"), QStringLiteral("1'000"),
        QStringLiteral("1,000"), QStringLiteral("1,5"), QStringLiteral("1\u00A0000"),
        QStringLiteral("\u0661\u0662"), QStringLiteral("\uFF11"), QStringLiteral("1\uFF0E5"),
        QStringLiteral("\u22125"), QStringLiteral("1\u066B5"), QStringLiteral("0x1p3"),
        QStringLiteral("1d3"), QStringLiteral("1f"), QString(QChar(0)),
        QString(QLatin1Char('1')) + QChar(0), QString(QChar(0xD800)),
        QString(400, QLatin1Char('9')), QStringLiteral("0.") + QString(400, QLatin1Char('3')) };
    for (const QString& text : texts)
        QTest::newRow(qPrintable(text.left(30))) << text;
}

void TestNumbers::readsLikeQString()
{
    QFETCH(QString, text);
    QVERIFY(readsAlike(text));
}

void TestNumbers::readsRandomNumbersLikeQString()
{
    Random random(13);
    const QString junk = QStringLiteral("0123456789.+-eE ,_xnaif\u0661\uFF11\t");
    for (int i = 0; i < 300000; ++i) {
        QString text = numberText(random);
        QVERIFY(readsAlike(text));
        QVERIFY(readsAlike(QString::number(random.between(-9e6, 9e6), 'f', random.below(9))));
        if (!text.isEmpty())
            text[random.below(text.size())] = random.pick(junk);
        QVERIFY(readsAlike(text));
        if (i % 4 == 0)
            QVERIFY(readsAlike(QString::number(random.anyDouble(), 'g', 1 + random.below(20))));
    }
}

void TestNumbers::readsEveryShortTextLikeQString()
{
    const QString alphabet = QStringLiteral("019.-+e ");
    int count = 1;
    for (int length = 1; length <= 5; ++length) {
        count *= alphabet.size();
        for (int i = 0; i < count; ++i) {
            QString text;
            for (int rest = i, left = length; left > 0; --left, rest /= alphabet.size())
                text.append(alphabet.at(rest % alphabet.size()));
            QVERIFY(readsAlike(text));
        }
    }
}

void TestNumbers::pairs_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isPair");
    QTest::newRow("whole") << QStringLiteral("1 2") << true;
    QTest::newRow("decimals") << QStringLiteral("7512345.67 -2200000.5") << true;
    QTest::newRow("negative zero") << QStringLiteral("-0 -0.0") << true;
    QTest::newRow("nothing") << QString() << false;
    QTest::newRow("a space") << QStringLiteral(" ") << false;
    QTest::newRow("one number") << QStringLiteral("1") << false;
    QTest::newRow("one number and a space") << QStringLiteral("1 ") << false;
    QTest::newRow("three numbers") << QStringLiteral("1 2 3") << false;
    QTest::newRow("a comma") << QStringLiteral("1,2") << false;
    QTest::newRow("junk") << QStringLiteral("1 2x") << false;
}

void TestNumbers::pairs()
{
    QFETCH(QString, text);
    QFETCH(bool, isPair);
    QCOMPARE(isPlainPairLikeQString(text), isPair);
}

void TestNumbers::readsRandomPairsLikeQString()
{
    Random random(15);
    const QString junk = QStringLiteral("0123456789.+-eE ,\t\u00A0x");
    int pairs = 0;
    for (int i = 0; i < 300000; ++i) {
        QString text = numberText(random) + QLatin1Char(' ') + numberText(random);
        if (random.oneIn(2))
            text[random.below(text.size())] = random.pick(junk);
        pairs += isPlainPairLikeQString(text) ? 1 : 0;
    }
    QVERIFY(pairs > 10000);
}

QTEST_APPLESS_MAIN(TestNumbers)
#include "tst_numbers.moc"
