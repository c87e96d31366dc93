// Texts: control codes, formatting, encodings.

#include "prepare/labeltext.h"
#include "prepared.h"

#include <QTest>
#include <QTextCodec>

using prep::LabelText;
using prep::PrepareOptions;

class TestPrepareLabels : public QObject {
    Q_OBJECT

private slots:
    void texts_data();
    void texts();
    void mtexts_data();
    void mtexts();
    void bytesStay();
    void unencodable();
    void mtextEntity();
    void mtextOfPieces();
    void embeddedObject();
    void places_data();
    void places();
    void kinds();
    void emptyLabels();
    void encodingIsToldFromBytes();
    void encodingIsChanged();
    void utf16_data();
    void utf16();
    void asciiWithEscapes();
    void asciiWithCodePage();
};

void TestPrepareLabels::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("plain");
    const auto row = [](const char* name, const char* text, const char* plain) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(plain);
    };
    row("nothing special", "ЗУ1 \\P {x} ^J", "ЗУ1 \\P {x} ^J");
    row("underlined", "%%uЗУ1%%u", "ЗУ1");
    row("overlined, struck", "%%Oа%%oб%%kв%%K", "абв");
    // The readers know these.
    row("symbols", "45%%d%%p1%%c5", "45%%d%%p1%%c5");
    row("symbols in capitals", "45%%D%%P1%%C5", "45%%d%%p1%%c5");
    row("byte", "%%065", "%%065");
    row("per cent", "50%%%", "50%");
    row("unknown code", "a%%xb", "a%%xb");
    row("code that breaks off", "a%%", "a%%");
    row("escape", "\\U+0417\\U+0423 1", "ЗУ 1");
    row("escape in small letters", "\\U+00b2", "²");
    row("no escape", "\\U+04 1\\U+ZZZZ\\u+0417", "\\U+04 1\\U+ZZZZ\\u+0417");
    row("escape of a number with a sign", "\\U+-041", "\\U+-041");
    row("escape of nothing", "\\U+0000", "\\U+0000");
    row("code made by a code", "%%%%%%uа", "а");
    row("escape made by an escape", "\\U+005CU+0417", "З");
}

void TestPrepareLabels::texts()
{
    QFETCH(QString, text);
    LabelText labels(QTextCodec::codecForName("UTF-8"));
    const std::string plain = labels.ofText(text.toStdString());
    QTEST(QString::fromStdString(plain), "plain");
    QCOMPARE(labels.ofText(plain), plain);
    QVERIFY(!labels.hasUnencodable());
}

void TestPrepareLabels::mtexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("plain");
    const auto row = [](const char* name, const char* text, const char* plain) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(plain);
    };
    row("nothing special", "ЗУ1", "ЗУ1");
    row("lines", "ЗУ1\\P12 кв.м", "ЗУ1 12 кв.м");
    row("font and colour", "{\\fArial|b0|i0|c204|p34;\\C1;ЗУ}\\H2.5x;1", "ЗУ1");
    row("width, slant, spacing, alignment", "\\W0.8;\\Q15;\\T1.2;\\A1;\\pxqc;x", "x");
    row("underlined", "\\LЗУ\\l \\Oа\\o \\Kб\\k", "ЗУ а б");
    row("blank that holds together", "ЗУ\\~1", "ЗУ 1");
    row("braces and backslash", "\\{1\\}\\\\2", "{1}\\2");
    row("fractions", "\\S1/2; \\S3#4; \\S+0.1^ -0.2;", "1/2 3/4 +0.1/-0.2");
    row("escape", "\\U+0417\\U+0423 {\\U+0031}", "ЗУ 1");
    row("symbols of texts", "%%uЗУ%%u 45%%D", "ЗУ 45%%d");
    row("carets", "a^Ib^Jc^ d", "a b c^d");
    row("blanks", "  a \\P\\P b ", "a b");
    row("code without an end", "\\H2.5", "2.5");
    row("code at the end", "a\\", "a\\");
    row("unknown code", "a\\zb", "a\\zb");
}

void TestPrepareLabels::mtexts()
{
    QFETCH(QString, text);
    LabelText labels(QTextCodec::codecForName("UTF-8"));
    const std::string plain = labels.ofMText(text.toStdString());
    QTEST(QString::fromStdString(plain), "plain");
}

void TestPrepareLabels::bytesStay()
{
    // What is no UTF-8 stays as it is where there is nothing to decode.
    const std::string bytes("\xC7\xD3 1");
    LabelText labels(QTextCodec::codecForName("UTF-8"));
    QCOMPARE(labels.ofText(bytes), bytes);
}

void TestPrepareLabels::unencodable()
{
    LabelText labels(QTextCodec::codecForName("Windows-1251"));
    QCOMPARE(labels.ofText("\\U+0417\\U+2192%%u"), std::string("\xC7\\U+2192"));
    QVERIFY(labels.hasUnencodable());
    QCOMPARE(labels.ofText("\\U+0417"), std::string("\xC7"));
    QVERIFY(!labels.hasUnencodable());
    // The two halves of a character beyond 16 bits.
    QCOMPARE(labels.ofText("\\U+D83D\\U+DE00"), std::string("\\U+D83D\\U+DE00"));
    LabelText unicode(QTextCodec::codecForName("UTF-8"));
    QCOMPARE(unicode.ofText("\\U+D83D\\U+DE00"), std::string("\xF0\x9F\x98\x80"));
}

void TestPrepareLabels::mtextEntity()
{
    const Prepared result = prepared(drawingOf(
        "0 POINT, 10 0, 20 0, 0 MTEXT, 8 a, 10 5.50, 20 6, 40 2, 71 5, 1 {\\fArial;ЗУ\\P1}"));
    QCOMPARE(outline(result.bytes),
        QStringList({ QStringLiteral("point 0 0"), QStringLiteral("text 5.50 6 ЗУ 1") }));
    // Middle centre, as a TEXT says it.
    QVERIFY(result.bytes.contains("\n72\n1\n11\n5.50\n21\n6\n73\n2\n"));
    QCOMPARE(
        result.notes(), QStringList({ QStringLiteral("as-text"), QStringLiteral("text-decoded") }));
}

void TestPrepareLabels::mtextOfPieces()
{
    QCOMPARE(outline(prepared(drawingOf("0 POINT, 10 0, 20 0, 0 MTEXT, 10 1, 20 2, 3 один , "
                                        "3 два\\, 1 Pтри"))
                         .bytes)
                 .last(),
        QStringLiteral("text 1 2 один два три"));
}

void TestPrepareLabels::embeddedObject()
{
    QCOMPARE(outline(prepared(drawingOf("0 POINT, 10 0, 20 0, 0 MTEXT, 10 1, 20 2, 1 ЗУ, "
                                        "101 Embedded Object, 10 7, 20 8, 1 другое"))
                         .bytes)
                 .last(),
        QStringLiteral("text 1 2 ЗУ"));
}

void TestPrepareLabels::places_data()
{
    QTest::addColumn<QString>("entity");
    QTest::addColumn<QString>("pairs");
    const auto row = [](const char* name, const char* entity, const char* pairs) {
        QTest::newRow(name) << QString::fromLatin1(entity) << QString::fromLatin1(pairs);
    };
    row("plain", "0 TEXT, 8 a, 10 1.0, 20 2, 40 2.50, 1 x",
        "0 TEXT 8 a 10 1.0 20 2 40 2.5 1 x 0 ENDSEC");
    row("turned", "0 TEXT, 8 a, 10 1, 20 2, 40 2, 50 30, 1 x",
        "0 TEXT 8 a 10 1 20 2 40 2 1 x 50 30 0 ENDSEC");
    row("justified", "0 TEXT, 8 a, 10 1, 20 2, 11 3.0, 21 4, 72 2, 73 3, 40 2, 1 x",
        "0 TEXT 8 a 10 3.0 20 4 40 2 1 x 72 2 11 3.0 21 4 73 3 0 ENDSEC");
    row("justified without a second point", "0 TEXT, 8 a, 10 1, 20 2, 72 1, 40 2, 1 x",
        "0 TEXT 8 a 10 1 20 2 40 2 1 x 72 1 11 1 21 2 73 0 0 ENDSEC");
    row("fitted between two points", "0 TEXT, 8 a, 10 1, 20 2, 11 3, 21 4, 72 5, 40 2, 1 x",
        "0 TEXT 8 a 10 3 20 4 40 2 1 x 0 ENDSEC");
    row("mirrored", "0 TEXT, 8 a, 10 1, 20 2, 40 2, 50 30, 230 -1, 1 x",
        "0 TEXT 8 a 10 -1 20 2 40 2 1 x 50 150 0 ENDSEC");
    row("along a direction", "0 MTEXT, 8 a, 10 1, 20 2, 11 0, 21 5, 31 0, 40 2, 1 x",
        "0 TEXT 8 a 10 1 20 2 40 2 1 x 50 90 72 0 11 1 21 2 73 3 0 ENDSEC");
    row("without a height", "0 TEXT, 8 a, 10 1, 20 2, 40 x, 1 x",
        "0 TEXT 8 a 10 1 20 2 40 1 1 x 0 ENDSEC");
}

void TestPrepareLabels::places()
{
    QFETCH(QString, entity);
    QFETCH(QString, pairs);
    QByteArray bytes = prepared(drawingOf(entity.toLatin1().constData())).bytes;
    bytes.replace('\n', ' ');
    QVERIFY2(bytes.contains(pairs.toLatin1()), bytes.constData());
}

void TestPrepareLabels::kinds()
{
    const QByteArray drawing = drawingOf("0 POINT, 10 0, 20 0, 0 TEXT, 10 1, 20 0, 1 t, "
                                         "0 MTEXT, 10 2, 20 0, 1 m");
    PrepareOptions options;
    options.texts = false;
    QCOMPARE(outline(prepared(drawing, options).bytes).last(), QStringLiteral("text 2 0 m"));
    options.mtexts = false;
    const Prepared none = prepared(drawing, options);
    QCOMPARE(outline(none.bytes), QStringList());
    QCOMPARE(none.report.notes().at(prep::Note::LabelLeftOut), qint64(2));
    options.texts = true;
    QCOMPARE(outline(prepared(drawing, options).bytes).last(), QStringLiteral("text 1 0 t"));
}

void TestPrepareLabels::emptyLabels()
{
    // An empty TEXT is one for the readers, too.
    const Prepared result =
        prepared(drawingOf("0 TEXT, 10 1, 20 0, 1 , 0 MTEXT, 10 2, 20 0, 1 \\P"));
    QCOMPARE(result.report.labels, qint64(1));
    QCOMPARE(result.report.notes().at(prep::Note::EmptyLabel), qint64(1));
}

void TestPrepareLabels::encodingIsToldFromBytes()
{
    const QTextCodec* const windows = QTextCodec::codecForName("Windows-1251");
    const QString text = QString::fromUtf8(
        drawingOf("0 TEXT, 8 слой, 10 0, 20 0, 1 \\U+0417%%uемля, 0 TEXT, 10 1, 20 1, 1 ЗУ"));
    const Prepared result = prepared(windows->fromUnicode(text));
    QCOMPARE(result.report.encoding, QByteArray("windows-1251"));
    QVERIFY(result.bytes.contains("\n3\nANSI_1251\n"));
    QCOMPARE(outline(result.bytes, "Windows-1251").mid(1),
        QStringList({ QStringLiteral("text 0 0 Земля"), QStringLiteral("text 1 1 ЗУ") }));
    const Prepared utf8 = prepared(text.toUtf8());
    QCOMPARE(utf8.report.encoding, QByteArray("UTF-8"));
    QVERIFY(utf8.bytes.contains("\n1\nAC1021\n"));
    QCOMPARE(outline(utf8.bytes).at(1), QStringLiteral("text 0 0 Земля"));
}

void TestPrepareLabels::encodingIsChanged()
{
    const QTextCodec* const dos = QTextCodec::codecForName("IBM866");
    const QByteArray drawing = dos->fromUnicode(
        QString::fromUtf8(drawingOf("0 POINT, 10 9, 20 9, 0 TEXT, 10 0, 20 0, 1 Участок %%128")));
    PrepareOptions options;
    options.encoding = "UTF-8";
    const Prepared result = prepared(drawing, options);
    QCOMPARE(result.report.sourceEncoding, QByteArray("IBM866"));
    QCOMPARE(result.report.encoding, QByteArray("UTF-8"));
    // Byte 128 of IBM866 is А.
    QCOMPARE(outline(result.bytes).last(), QStringLiteral("text 0 0 Участок А"));
    options.fromEncoding = "Windows-1251";
    QCOMPARE(prepared(drawing, options).report.sourceEncoding, QByteArray("windows-1251"));
    options = PrepareOptions();
    const Prepared marked =
        prepared("\xEF\xBB\xBF" + drawingOf("0 POINT, 10 9, 20 9, 0 TEXT, 10 0, 20 0, 1 Участок"));
    QCOMPARE(outline(marked.bytes).last(), QStringLiteral("text 0 0 Участок"));
}

void TestPrepareLabels::utf16_data()
{
    QTest::addColumn<QByteArray>("mark");
    QTest::addColumn<QByteArray>("codec");
    QTest::newRow("little end first") << QByteArray("\xFF\xFE") << QByteArray("UTF-16LE");
    QTest::newRow("big end first") << QByteArray("\xFE\xFF") << QByteArray("UTF-16BE");
    QTest::newRow("without a mark") << QByteArray() << QByteArray("UTF-16LE");
}

void TestPrepareLabels::utf16()
{
    QFETCH(QByteArray, mark);
    QFETCH(QByteArray, codec);
    const QString drawing =
        QString::fromUtf8(drawingOf("0 POINT, 10 9, 20 9, 0 TEXT, 10 0, 20 0, 1 Участок"));
    QTextEncoder encoder(QTextCodec::codecForName(codec), QTextCodec::IgnoreHeader);
    const Prepared result = prepared(mark + encoder.fromUnicode(drawing));
    QVERIFY(result.written);
    QCOMPARE(outline(result.bytes).last(), QStringLiteral("text 0 0 Участок"));
    QCOMPARE(result.report.encoding, QByteArray("UTF-8"));
    QCOMPARE(result.notes(), QStringList{ QStringLiteral("transcoded") });
}

void TestPrepareLabels::asciiWithEscapes()
{
    QByteArray drawing = drawingOf("0 POINT, 10 9, 20 9, 0 TEXT, 10 0, 20 0, 1 \\U+0417");
    drawing.replace("HEADER\n", "HEADER\n9\n$DWGCODEPAGE\n3\nANSI_1252\n");
    const Prepared result = prepared(drawing);
    QCOMPARE(outline(result.bytes).last(), QStringLiteral("text 0 0 З"));
    QCOMPARE(result.report.encoding, QByteArray("UTF-8"));
    QCOMPARE(result.report.declaredEncoding, QStringLiteral("ANSI_1252"));
    QVERIFY(!result.report.hasLosses());
}

void TestPrepareLabels::asciiWithCodePage()
{
    // The encoding came from names that are not written: the second time nothing tells it.
    QByteArray drawing = drawingOf("0 LINE, 10 0, 20 0, 11 1, 21 1", "0 BLOCK, 2 Знак, 0 ENDBLK");
    drawing = QTextCodec::codecForName("Windows-1251")->fromUnicode(QString::fromUtf8(drawing));
    const QByteArray once = prepared(drawing).bytes;
    QVERIFY(once.contains("ANSI_1251"));
    QCOMPARE(prepared(once).bytes, once);
}

QTEST_APPLESS_MAIN(TestPrepareLabels)
#include "tst_preparelabels.moc"
