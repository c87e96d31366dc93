#include "importrun.h"
#include "literal/literaldxfimport.h"
#include "support/random.h"

#include <QtTest>

namespace {

/// Puts another drawing in the place of the file when the objects are about to be read.
class Exchange : public ImportObserver {
public:
    Exchange(const TempFiles& folder, QString name, QByteArray text)
        : m_folder(folder)
        , m_name(std::move(name))
        , m_text(std::move(text))
    {
    }

    void passStarted(ImportPass pass, const QString& fileName) override
    {
        Q_UNUSED(fileName)
        if (pass == ImportPass::Objects)
            m_folder.write(m_name, m_text);
    }

private:
    const TempFiles& m_folder;
    QString m_name;
    QByteArray m_text;
};

} // namespace

/// Long parts of a drawing that the second pass leaves out: nothing else may change by that.
class TestDxfStretches : public QObject {
    Q_OBJECT

private slots:
    void ends();
    void shortOnesAreRead();
    void markBehindOne();
    void drawings_data();
    void drawings();
    void fileThatChanges();
};

using Place = DxfStretches::Place;

void TestDxfStretches::ends()
{
    DxfStretches stretches;
    stretches.note({ 100, 10 }, true);
    stretches.note({ 200, 20 }, false);
    stretches.note({ 300, 30 }, false);
    stretches.note({ 100200, 1000 }, true);
    stretches.note({ 100300, 1010 }, false);
    stretches.finish({ 900000, 9000 });
    QVERIFY(!stretches.endOf(199));
    QCOMPARE(stretches.endOf(200)->position, qint64(100200));
    QCOMPARE(stretches.endOf(100199)->line, 1000);
    QVERIFY(!stretches.endOf(100200));
    QCOMPARE(stretches.endOf(100300)->position, qint64(900000));
    QVERIFY(!stretches.endOf(900000));
    QVERIFY(stretches.fit(900000));
    QVERIFY(!stretches.fit(900001));
    stretches.clear();
    QVERIFY(!stretches.endOf(200));
    QVERIFY(!stretches.fit(900000));
}

void TestDxfStretches::shortOnesAreRead()
{
    DxfStretches stretches;
    stretches.note({ 0, 0 }, false);
    stretches.note({ 65535, 9 }, true);
    QVERIFY(!stretches.endOf(1));
    stretches.note({ 65536, 9 }, false);
    stretches.note({ 131072, 9 }, true);
    QVERIFY(stretches.endOf(65536));
}

/// A byte-order mark is one at the start of a file only.
void TestDxfStretches::markBehindOne()
{
    const TempFiles folder;
    QByteArray text = "0\nSECTION\n2\nHEADER\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n";
    text += QByteArray("0\nARC\n8\nroads\n").repeated(6000);
    text += "0\nLWPOLYLINE\n90\n2\n\xEF\xBB\xBF"
            "70\n1\n10\n0\n20\n0\n10\n5\n20\n0\n0\nENDSEC\n0\nEOF\n";
    folder.write(QStringLiteral("a.dxf"), text);
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    options.encoding = "UTF-8";
    const auto outcome = outcomeOf<DxfImport>(options, folder, QStringLiteral("a.dxf"));
    QCOMPARE(outcome, outcomeOf<literal::DxfImport>(options, folder, QStringLiteral("a.dxf")));
}

void TestDxfStretches::drawings_data()
{
    QTest::addColumn<QByteArray>("encoding");
    QTest::addColumn<bool>("endsWithoutLineFeed");
    for (const char* encoding : { "UTF-8", "Windows-1251", "UTF-16LE" }) {
        QTest::addRow("%s", encoding) << QByteArray(encoding) << false;
        QTest::addRow("%s, no last line feed", encoding) << QByteArray(encoding) << true;
    }
}

/// Points and labels by the ten thousand between a few objects; now and then an entity that lacks
/// a number and takes it from the next one, or one that ends the import.
void TestDxfStretches::drawings()
{
    QFETCH(QByteArray, encoding);
    QFETCH(bool, endsWithoutLineFeed);
    QTextCodec* const codec = QTextCodec::codecForName(encoding);
    Random random(31);
    const TempFiles folder;
    for (int round = 0; round < 4; ++round) {
        QString text =
            QStringLiteral("0\nSECTION\n2\nHEADER\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n");
        const auto number = [&] { return QString::number(random.below(2000)); };
        const auto place = [&](const char* first, const char* second) {
            return QStringLiteral("%1\n%2\n%3\n%4\n")
                .arg(QLatin1String(first), number(), QLatin1String(second), number());
        };
        for (int part = 0; part < 4; ++part) {
            for (int i = random.below(2500); i > 0; --i) {
                text += QStringLiteral("0\nPOINT\n8\nСлой\n") + place("10", "20");
                text += QStringLiteral("0\nTEXT\n1\nЗУ%1\n").arg(i) + place("10", "20");
            }
            if (random.below(4) == 0)
                text += QStringLiteral("0\nPOINT\n10\n5\n");
            for (int i = random.below(4); i > 0; --i) {
                text +=
                    QStringLiteral("0\nLINE\n8\nСлой\n") + place("10", "20") + place("11", "21");
                text += QStringLiteral("0\nPOLYLINE\n70\n1\n0\nVERTEX\n") + place("10", "20")
                    + QStringLiteral("0\nVERTEX\n") + place("10", "20")
                    + QStringLiteral("0\nSEQEND\n");
            }
        }
        if (random.below(3) == 0)
            text += QStringLiteral("0\nLINE\n10\nx\n");
        text += QStringLiteral("0\nENDSEC\n0\nEOF")
            + (endsWithoutLineFeed ? QString() : QStringLiteral("\n"));
        folder.write(QStringLiteral("a.dxf"), codec->fromUnicode(text));
        ImportOptions options = prefixed();
        options.searchPointDefs = true;
        options.searchObjectDefs = random.below(2) == 0;
        options.encoding = encoding;
        QCOMPARE(outcomeOf<DxfImport>(options, folder, QStringLiteral("a.dxf")),
            outcomeOf<literal::DxfImport>(options, folder, QStringLiteral("a.dxf")));
    }
}

/// Where the file is another one in the second pass, nothing of it is left out.
void TestDxfStretches::fileThatChanges()
{
    const QByteArray start = "0\nSECTION\n2\nHEADER\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n";
    const QByteArray arcs = QByteArray("0\nARC\n8\nroads\n").repeated(6000);
    const QByteArray line = "0\nLINE\n10\n0\n20\n0\n11\n5\n21\n0\n";
    const QByteArray end = "0\nENDSEC\n0\nEOF\n";
    const QString name = QStringLiteral("a.dxf");
    const TempFiles folder;
    folder.write(name, start + arcs + end);

    DxfImport importer;
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    prepare(importer, options, folder, name);
    QVector<DefPolygon> objects;
    importer.map = &objects;
    Exchange exchange(folder, name, start + arcs.left(arcs.size() / 2) + line + end);
    importer.observer = &exchange;
    QVERIFY(importer.importMap());
    QCOMPARE(objects.size(), 1);
}

QTEST_GUILESS_MAIN(TestDxfStretches)
#include "tst_dxfstretches.moc"
