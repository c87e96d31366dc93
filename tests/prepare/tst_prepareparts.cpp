// Numbers, pairs and the binary form.

#include "prepare/binarydxf.h"
#include "prepare/dxfpaircursor.h"
#include "prepare/plainnumber.h"
#include "prepare/space.h"

#include <QTest>

#include <cmath>

using namespace prep;

namespace {

template <typename Number>
QByteArray raw(Number number)
{
    return { reinterpret_cast<const char*>(&number), int(sizeof(number)) };
}

const QByteArray sentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

/// Text with the zero that ends it.
QByteArray ended(const char* text)
{
    return QByteArray(text) + '\0';
}

QByteArray wide(int code)
{
    return raw(static_cast<qint16>(code));
}

QByteArray narrow(int code)
{
    return QByteArray(1, static_cast<char>(code));
}

} // namespace

class TestPrepareParts : public QObject {
    Q_OBJECT

private slots:
    void numbers_data();
    void numbers();
    void texts_data();
    void texts();
    void pairs_data();
    void pairs();
    void wideBinary();
    void narrowBinary();
    void brokenBinary();
    void angles();
    void arbitraryAxis();
};

void TestPrepareParts::numbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("good");
    const auto row = [](const char* text, bool good) {
        QTest::newRow(text) << QString::fromLatin1(text) << good;
    };
    for (const char* good : { "1", "-1.50", "+2", ".5", "5.", "1e3", "1E-3", "-0", "000012" })
        row(good, true);
    for (const char* bad : { "", "x", "1x", "1,5", "+-1", "++1", "--1", "1 2", "nan", "inf", "-inf",
             "1e400", "0x10", "1e", ".", "+" })
        row(bad, false);
}

void TestPrepareParts::numbers()
{
    QFETCH(QString, text);
    QFETCH(bool, good);
    const auto number = toNumber(text.toStdString());
    QCOMPARE(number.has_value(), good);
    bool read = false;
    const double expected = text.toDouble(&read);
    // What is taken here the readers take, for the same number.
    if (good) {
        QVERIFY(read);
        QCOMPARE(*number, expected);
    }
}

void TestPrepareParts::texts_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<QString>("text");
    const auto row = [](double number, const char* text) {
        QTest::newRow(text) << number << QString::fromLatin1(text);
    };
    row(0, "0");
    row(1.5, "1.5");
    row(-2212870.11, "-2212870.11");
    row(2212870.1 + 0.01, "2212870.11");
    row(0.1 + 0.2, "0.3");
    row(100, "100");
    row(1e15, "1000000000000000");
    row(123456789012345680.0, "123456789012345680");
    row(1.0 / 3, "0.3333333333");
    row(1e-10, "0.0000000001");
    QTest::newRow("negative zero") << -0.0 << QStringLiteral("0");
    QTest::newRow("next to nothing") << -1e-14 << QStringLiteral("0");
}

void TestPrepareParts::texts()
{
    QFETCH(double, number);
    QTEST(QString::fromStdString(plainText(number)), "text");
}

void TestPrepareParts::pairs_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("read");
    QTest::addColumn<QVector<qint64>>("passed");
    const auto row = [](const char* name, const QByteArray& bytes, const char* read,
                         const QVector<qint64>& passed) {
        QTest::newRow(name) << bytes << QString::fromLatin1(read) << passed;
    };
    row("plain", "0\nLINE\n10\n1.5\n", "0=LINE 10=1.5", { 0, 0, 0 });
    row("no end of the last line", "0\nEOF", "0=EOF", { 0, 0, 0 });
    row("line ends of DOS", "0\r\nLINE\r\n10\r\n1\r\n", "0=LINE 10=1", { 0, 0, 0 });
    row("codes with blanks", "  0\nLINE\n\t10 \n 1\n", "0=LINE 10= 1", { 0, 0, 0 });
    row("comments", "999\nx\n0\nLINE\n999\n\n10\n1\n", "0=LINE 10=1", { 2, 0, 0 });
    row("blank lines", "\n0\nLINE\n \n\n10\n1\n\n\n", "0=LINE 10=1", { 0, 5, 0 });
    row("empty value", "1\n\n0\nLINE\n", "1= 0=LINE", { 0, 0, 0 });
    row("stray lines", "0\nMTEXT\n1\nabc\ndef\n10\n1\n", "0=MTEXT 1=abc 10=1", { 0, 0, 1 });
    row("code too long", "00000\n0\nLINE\n", "0=LINE", { 0, 0, 1 });
    row("code with a point", "1.0\n0\nLINE\n", "0=LINE", { 0, 0, 1 });
    row("code without a value", "0\nLINE\n10", "0=LINE", { 0, 0, 0 });
    row("nothing", "", "", { 0, 0, 0 });
}

void TestPrepareParts::pairs()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QVector<qint64>, passed);
    DxfPairCursor cursor({ bytes.constData(), static_cast<size_t>(bytes.size()) });
    DxfPair pair;
    QStringList read;
    while (cursor.next(pair)) {
        read.append(QStringLiteral("%1=%2").arg(pair.code).arg(
            QString::fromLatin1(pair.value.data(), int(pair.value.size()))));
    }
    QTEST(read.join(QLatin1Char(' ')), "read");
    QCOMPARE(
        QVector<qint64>({ cursor.comments(), cursor.blankLines(), cursor.strayLines() }), passed);
}

void TestPrepareParts::wideBinary()
{
    const QByteArray bytes = sentinel + wide(0) + ended("SECTION") + wide(10) + raw(2212870.11)
        + wide(70) + raw(qint16(-3)) + wide(90) + raw(qint32(70000)) + wide(160)
        + raw(qint64(5000000000)) + wide(290) + narrow(1) + wide(310) + narrow(3)
        + QByteArray("\x01\xAB\xFF", 3) + wide(1071) + raw(qint32(9)) + wide(1000) + ended("a\nb")
        + wide(0) + ended("EOF");
    bool complete = false;
    QVERIFY(isBinaryDxf({ bytes.constData(), static_cast<size_t>(bytes.size()) }));
    QCOMPARE(asciiOfBinaryDxf({ bytes.constData(), static_cast<size_t>(bytes.size()) }, &complete),
        QByteArray("0\nSECTION\n10\n2212870.11\n70\n-3\n90\n70000\n160\n5000000000\n290\n1\n"
                   "310\n01ABFF\n1071\n9\n1000\na b\n0\nEOF\n"));
    QVERIFY(complete);
}

void TestPrepareParts::narrowBinary()
{
    const QByteArray bytes = sentinel + narrow(0) + ended("SECTION") + narrow(40) + raw(0.5)
        + narrow(70) + raw(qint16(1)) + narrow(255) + wide(1000) + ended("x") + narrow(0)
        + ended("EOF");
    bool complete = false;
    QCOMPARE(asciiOfBinaryDxf({ bytes.constData(), static_cast<size_t>(bytes.size()) }, &complete),
        QByteArray("0\nSECTION\n40\n0.5\n70\n1\n1000\nx\n0\nEOF\n"));
    QVERIFY(complete);
}

void TestPrepareParts::brokenBinary()
{
    const QByteArray bytes = sentinel + wide(0) + ended("SECTION") + wide(10) + raw(1.5);
    const QByteArray whole("0\nSECTION\n10\n1.5\n");
    for (int length = sentinel.size() + 2; length <= bytes.size(); ++length) {
        bool complete = false;
        const QByteArray ascii =
            asciiOfBinaryDxf({ bytes.constData(), static_cast<size_t>(length) }, &complete);
        QVERIFY(whole.startsWith(ascii));
        QCOMPARE(complete, length == bytes.size() || length == sentinel.size() + 10);
    }
    bool complete = true;
    const QByteArray unknown = sentinel + wide(0) + ended("SECTION") + wide(5000) + ended("x");
    QCOMPARE(
        asciiOfBinaryDxf({ unknown.constData(), static_cast<size_t>(unknown.size()) }, &complete),
        QByteArray("0\nSECTION\n"));
    QVERIFY(!complete);
}

void TestPrepareParts::angles()
{
    double sine = 7;
    double cosine = 7;
    for (const double degrees : { 0.0, 360.0, -720.0 }) {
        sinCosOfDegrees(degrees, &sine, &cosine);
        QVERIFY(sine == 0 && cosine == 1);
        QVERIFY(Affine::turn(degrees).isIdentity());
    }
    for (const double degrees : { 90.0, -270.0, 450.0 }) {
        sinCosOfDegrees(degrees, &sine, &cosine);
        QVERIFY(sine == 1 && cosine == 0);
    }
    for (const double degrees : { 180.0, -180.0 }) {
        sinCosOfDegrees(degrees, &sine, &cosine);
        QVERIFY(sine == 0 && cosine == -1);
    }
    sinCosOfDegrees(-90, &sine, &cosine);
    QVERIFY(sine == -1 && cosine == 0);
    sinCosOfDegrees(30, &sine, &cosine);
    QVERIFY(std::abs(sine - 0.5) < 1e-15);
}

void TestPrepareParts::arbitraryAxis()
{
    QVERIFY(Affine::ofExtrusion({ 0, 0, 1 }).isIdentity());
    QVERIFY(Affine::ofExtrusion({ 0, 0, 5 }).isIdentity());
    QVERIFY(Affine::ofExtrusion({ 0, 0, 0 }).isIdentity());
    const auto map = [](const Vec3& normal, const Vec3& place) {
        const Vec3 to = Affine::ofExtrusion(normal).place(place);
        return QStringLiteral("%1 %2 %3").arg(to.x).arg(to.y).arg(to.z);
    };
    QCOMPARE(map({ 0, 0, -1 }, { 1, 2, 3 }), QStringLiteral("-1 2 -3"));
    QCOMPARE(map({ 1, 0, 0 }, { 1, 2, 3 }), QStringLiteral("3 1 2"));
    QCOMPARE(map({ 0, 1, 0 }, { 1, 2, 3 }), QStringLiteral("-1 3 2"));
    // Tilted by 3-4-5 about the y axis: the world's z axis crossed with it is y.
    QCOMPARE(map({ 3, 0, 4 }, { 1, 5, 0 }), QStringLiteral("-4 1 3"));
    // Within 1/64 of z the y axis of the world is crossed instead: x stays nearly x.
    const Vec3 near = Affine::ofExtrusion({ 0.01, 0, 1 }).direction({ 1, 0, 0 });
    QVERIFY(near.x > 0.99);
    const Vec3 far = Affine::ofExtrusion({ 0.02, 0, 1 }).direction({ 1, 0, 0 });
    QVERIFY(far.y > 0.99);
}

QTEST_APPLESS_MAIN(TestPrepareParts)
#include "tst_prepareparts.moc"
