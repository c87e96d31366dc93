#include "import/dxftext.h"

#include <QTextCodec>
#include <QtTest>

/// The control sequences of texts in drawings.
class TestDxfText : public QObject {
    Q_OBJECT

private slots:
    void decodedText_data();
    void decodedText();
    void decodedByte_data();
    void decodedByte();
    void halfACharacter();
};

void TestDxfText::decodedText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("decoded");
    const auto row = [](const char* text, const char* decoded) {
        QTest::newRow(text) << QString::fromUtf8(text) << QString::fromUtf8(decoded);
    };
    row("ЗУ1", "ЗУ1");
    row("10%%d", "10°");
    row("%%p0.5", "±0.5");
    row("%%c50", "Ø50");
    row("%%d%%p%%c", "°±Ø");
    row("%%C50", "%%C50");
    row("10%%D %%P1", "10%%D %%P1");
    row("%%%d", "%°");
    row("%%%%c", "%%Ø");
    row("%%065%%066", "AB");
    row("A%%065%%066", "AAB");
    row("%%0650", "A0");
    row("%%065B%%067", "ABC");
    row("%%12", "%%12");
    row("%%1 2", "%%1 2");
    row("%%", "%%");
    row("%065", "%065");
    row("%%%065", "%A");
    row("%%%%065", "%%A");
    row("%%126", "~");
    row("%%256", "%%256");
    row("%%300", "%%300");
    row("%%999", "%%999");
    row("%%999065", "%%999065");
    row("%%300%%065", "%%300A");
    row("%%-65", "%%-65");
    row("%%٠٦٥", "%%٠٦٥");
    row("%%o%%u%%%\\P\\U+0410", "%%o%%u%%%\\P\\U+0410");
    // What a replacement yields is not looked at again.
    row("%%037%%037065", "%%065");
    row("%%037%%037d", "%%d");
    row("%%0%%d37", "%%0°37");
}

void TestDxfText::decodedText()
{
    QFETCH(QString, text);
    QFETCH(QString, decoded);
    for (const char* codecName : { "Windows-1251", "IBM866", "UTF-8" }) {
        QCOMPARE(decodeText(text, QTextCodec::codecForName(codecName)), decoded);
    }
    QVERIFY(decodeText(QString(), QTextCodec::codecForName("UTF-8")).isNull());
    QVERIFY(!decodeText(QStringLiteral(""), QTextCodec::codecForName("UTF-8")).isNull());
}

void TestDxfText::decodedByte_data()
{
    QTest::addColumn<QByteArray>("codecName");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("decoded");
    const auto row = [](const char* codecName, const char* text, const QString& decoded) {
        QTest::addRow("%s in %s", text, codecName)
            << QByteArray(codecName) << QString::fromLatin1(text) << decoded;
    };
    const QString nul = QString(QChar(0));
    const QString replacement = QString(QChar(QChar::ReplacementCharacter));
    row("Windows-1251", "%%000", nul);
    row("Windows-1251", "%%128", QStringLiteral("Ђ"));
    row("Windows-1251", "%%176", QStringLiteral("°"));
    row("Windows-1251", "%%168%%184", QStringLiteral("Ёё"));
    row("Windows-1251", "%%199%%2111", QStringLiteral("ЗУ1"));
    row("Windows-1251", "%%255", QStringLiteral("я"));
    row("IBM866", "%%000", nul);
    row("IBM866", "%%128", QStringLiteral("А"));
    row("IBM866", "%%135%%1471", QStringLiteral("ЗУ1"));
    row("IBM866", "%%240%%241", QStringLiteral("Ёё"));
    row("IBM866", "%%248", QStringLiteral("°"));
    row("IBM866", "%%239", QStringLiteral("я"));
    row("UTF-8", "%%000", nul);
    row("UTF-8", "%%127", QString(QChar(127)));
    // Each escape is a byte of its own: no sequence of two makes a letter.
    row("UTF-8", "%%208%%151", replacement + replacement);
    row("UTF-8", "%%255", replacement);
}

void TestDxfText::decodedByte()
{
    QFETCH(QByteArray, codecName);
    QFETCH(QString, text);
    QFETCH(QString, decoded);
    QCOMPARE(decodeText(text, QTextCodec::codecForName(codecName)), decoded);
}

/// Numbers are looked for in whole texts only: not where a surrogate stands alone.
void TestDxfText::halfACharacter()
{
    const QString lone = QString(QChar(0xD800));
    QTextCodec* const codec = QTextCodec::codecForName("Windows-1251");
    QCOMPARE(decodeText(lone + QStringLiteral("%%d%%065"), codec), lone + QStringLiteral("°%%065"));
    QCOMPARE(decodeText(lone + QChar(0xDC00) + QStringLiteral("%%d%%065"), codec),
        lone + QChar(0xDC00) + QStringLiteral("°A"));
}

QTEST_GUILESS_MAIN(TestDxfText)
#include "tst_dxftext.moc"
