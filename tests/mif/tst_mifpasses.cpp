#include "import/mifimport.h"

#include "support/importing.h"
#include "support/miftext.h"

#include <QtTest>

#include <functional>

namespace {

/// A reader whose object pass is taken over by a test.
class ProbedMif : public MifImport {
public:
    using Pass = std::function<void(ProbedMif&)>;
    Pass pass;

    using MifImport::appendEmptyContour;
    using MifImport::appendEmptyPolygon;
    using MifImport::checkMifFile;
    using MifImport::in;
    using MifImport::mid;
    using MifImport::openMidFile;
    using MifImport::readVert;

protected:
    bool loadPolygons() override
    {
        pass(*this);
        return true;
    }
};

/// Files of one import; a null text stands for a file that does not exist.
struct Files {
    QByteArray mif;
    QByteArray mid;
    QByteArray pointMif;
    QByteArray pointMid;
};

const QString plan = QStringLiteral("plan.mif");
const QString pts = QStringLiteral("pts.mif");

void write(const TempFiles& folder, const QString& name, const QByteArray& content)
{
    if (!content.isNull())
        folder.write(name, content);
}

QStringList outcome(const Files& files, const ImportOptions& options)
{
    const TempFiles folder;
    write(folder, plan, files.mif);
    write(folder, QStringLiteral("plan.mid"), files.mid);
    write(folder, pts, files.pointMif);
    write(folder, QStringLiteral("pts.mid"), files.pointMid);
    const QString pointFile = files.pointMif.isNull() ? QString() : pts;
    return outcomeOf<MifImport>(options, folder, plan, pointFile);
}

} // namespace

Q_DECLARE_METATYPE(Files)

/// The MIF file with its MID, the point pass, and what passes from one pass to the other.
class TestMifPasses : public QObject {
    Q_OBJECT

private slots:
    void midRows_data();
    void midRows();
    void points_data();
    void points();
    void delimiters_data();
    void delimiters();
    void firstColumns_data();
    void firstColumns();
    void midNames_data();
    void midNames();
    void midIsAFolder();
    void encodings_data();
    void encodings();
    void readsAMidDef();
    void readsAVertex();
    void swapped();
    void worksThroughTheBase();
};

void TestMifPasses::midRows_data()
{
    QTest::addColumn<Files>("files");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char* name, const QByteArray& mif, const QByteArray& mid,
                         const char* expected) {
        QTest::newRow(name) << Files{ mif, mid, {}, {} } << lines(expected);
    };
    const QByteArray line = "Line 1 2 3 4\n";
    const QByteArray lineAndPline = mif(line + "Pline 2\n5 6\n1 2\n");
    const QByteArray others = mif(
        "None\nPoint x\nArc 1\nText \"a\"\nRect 1\nRoundRect 1\nEllipse 1\nMultipoint 0\n" + line);

    row("names", lineAndPline, "\"A 12\",5\nB,6\n",
        "true\nA 12 [т1 1 2; т2 3 4]\nB [т3 5 6; т1 1 2]");
    row("no last line end", lineAndPline, "A\nB", "true\nA [т1 1 2; т2 3 4]\nB [т3 5 6; т1 1 2]");
    row("CRLF", lineAndPline, "A\r\nB\r\n", "true\nA [т1 1 2; т2 3 4]\nB [т3 5 6; т1 1 2]");
    row("an empty first column is numbered", lineAndPline, "\"\",5\n,B\n",
        "true\nоб1 [т1 1 2; т2 3 4]\nоб2 [т3 5 6; т1 1 2]");
    row("numbers go on between names", mif(line + line + line), "A\n,\n\" \"\n",
        "true\nA [т1 1 2; т2 3 4]\nоб1 [т1 1 2; т2 3 4]\nоб2 [т1 1 2; т2 3 4]");
    row("each object that is passed over has its row", others, "1\n2\n3\n4\n5\n6\n7\n8\nA\n",
        "true\nA [т1 1 2; т2 3 4]");
    row("other lines have none", mif("Pen (1,2,0)\nLine 1 2 3 4\n Brush (1)\n" + line), "A\nB\n",
        "true\nA [т1 1 2; т2 3 4]\nB [т1 1 2; т2 3 4]");
    row("further rows do not matter", mif(line), "A\nB\n\nC\n", "true\nA [т1 1 2; т2 3 4]");
    row("region without rings", mif("Region 0\n"), "A\n", "true\nA");
    row("equal names are kept", mif(line + line), "A\nA\n",
        "true\nA [т1 1 2; т2 3 4]\nA [т1 1 2; т2 3 4]");

    row("no MID", mif(line), QByteArray(), "false\n! Ошибка открытия MID файла plan.mid");
    row("no MID and a wrong header", "x\n", QByteArray(),
        "false\n! Ошибка. Файл plan.mif не соответствует формату MIF");
    row("empty MID", mif(line), "",
        "false\n! Ошибка чтения обозначения объекта из строки: 1\n<null> [т1 1 2; т2 3 4]");
    row("empty MID without objects", mif("Pen (1,2,0)\n"), "", "true");
    row("blank row for a line", mif(line), " \t\nA\n",
        "false\n! Ошибка чтения обозначения объекта из строки: 1\n<null> [т1 1 2; т2 3 4]");
    row("short MID, polyline", lineAndPline, "A\n",
        "false\n! Ошибка чтения обозначения объекта из строки: 2\n"
        "A [т1 1 2; т2 3 4]\n<null> [т3 5 6; т1 1 2]");
    row("short MID, region", mif(line + "Region 0\n"), "A\n",
        "false\n! Ошибка чтения обозначения объекта из строки: 2\nA [т1 1 2; т2 3 4]\n<null>");
    row("blank row for an object that is passed over", mif(line + "None\n" + line), "A\n\nB\n",
        "false\n! Ошибка чтения данных объекта из строки: 2\nA [т1 1 2; т2 3 4]");
    row("short MID for a point", mif("None\n\nPoint 1 2\n" + line), "A\n",
        "false\n! Ошибка чтения данных объекта из строки: 2");
    row("a collection has no row", mif(line + "Collection 1\n"), "A\n",
        "true\n! Ошибка в стоке 8. Коллекции в MIF файлах не поддерживаются.\n"
        "A [т1 1 2; т2 3 4]");
    row("the geometry is read before its row", mif("Pline 1\n"), "",
        "false\n! Ошибка чтения полилинии из строки: 7\n<null>");
}

void TestMifPasses::midRows()
{
    QFETCH(Files, files);
    ImportOptions options = prefixed();
    options.searchObjectDefs = true;
    QTEST(outcome(files, options), "expected");
}

void TestMifPasses::points_data()
{
    QTest::addColumn<Files>("files");
    QTest::addColumn<bool>("searchObjectDefs");
    QTest::addColumn<QStringList>("expected");
    const auto own = [](const char* name, const QByteArray& pointMif, const QByteArray& pointMid,
                         const char* expected) {
        QTest::newRow(name) << Files{ mif("Line 1 2 3 4\n"), {}, pointMif, pointMid } << false
                            << lines(expected);
    };
    const auto same = [](const char* name, const QByteArray& mif, const QByteArray& mid,
                          const char* expected) {
        QTest::newRow(name) << Files{ mif, mid, {}, {} } << true << lines(expected);
    };

    own("named", mif("Point 1 2\n"), "н1\n", "true\nоб1 [н1 1 2; т1 3 4]");
    own("within the tolerance", mif("Point 1.009 1.991\nPoint 3.011 4\n"), "н1\nн2\n",
        "true\nоб1 [н1 1 2; т1 3 4]");
    own("the one that sorts first names both", mif("Point 1.005 2\nPoint 1 2\n"), "late\nearly\n",
        "true\nоб1 [early 1 2; т1 3 4]");
    own("further tokens do not matter", mif("point 1 2 3 x\n    Symbol (1,2,3)\n"), "a\n",
        "true\nоб1 [a 1 2; т1 3 4]");
    own("an empty name is a name", mif("Point 1 2\n"), "\"\"\n", "true\nоб1 [<null> 1 2; т1 3 4]");
    own("only points count", mif("Line 1 2 3 4\nNone\nPoint 3 4\n"), "A\nB\nC\n",
        "true\nоб1 [т1 1 2; C 3 4]");
    own("geometry of others is not read", mif("Pline 1\nRegion x\nLine\nPoint 3 4\n"),
        "A\nB\nC\nD\n", "true\nоб1 [т1 1 2; D 3 4]");
    own("infinite and undefined points name nothing", mif("Point inf 2\nPoint 1 nan\n"), "a\nb\n",
        "true\nоб1 [т1 1 2; т2 3 4]");
    own("no points", mif(""), "", "true\nоб1 [т1 1 2; т2 3 4]");

    const char* const badPoint = "false\n! Ошибка чтения координат точки из строки: 7";
    own("no coordinates", mif("Point\n"), "a\n", badPoint);
    own("one coordinate", mif("Point 1\n"), "a\n", badPoint);
    own("x is no number", mif("Point x 2\n"), "a\n", badPoint);
    own("y is no number", mif("Point 1 y\n"), "a\n", badPoint);
    own("decimal commas", mif("Point 1,0 2,0\n"), "a\n", badPoint);
    own("the line of the second point", mif("Point 1 2\n\n\nPoint 1\n"), "a\nb\n",
        "false\n! Ошибка чтения координат точки из строки: 10");
    own("no row for a point", mif("Point 1 2\nPoint 3 4\n"), "a\n",
        "false\n! Ошибка чтения обозначения точки из строки: 2");
    own("blank row for a point", mif("Point 1 2\n"), "  \na\n",
        "false\n! Ошибка чтения обозначения точки из строки: 1");
    own("no row for another object", mif("Point 1 2\nLine 1 2 3 4\n"), "a\n",
        "false\n! Ошибка чтения данных объекта из строки: 2");
    own("no MID for the points", mif("Point 1 2\n"), QByteArray(),
        "false\n! Ошибка открытия MID файла pts.mid");
    own("wrong header", "Version 300\n", "a\n",
        "false\n! Ошибка. Файл pts.mif не соответствует формату MIF");
    own("a collection keeps the points before it", mif("Point 1 2\nCollection 1\nPoint 3 4\n"),
        "a\nb\n",
        "true\n! Ошибка в стоке 8. Коллекции в MIF файлах не поддерживаются.\n"
        "об1 [a 1 2; т1 3 4]");

    same("one file for both", mif("Line 1 2 3 4\nPoint 3 4\n"), "A,x\nт7,y\n",
        "true\nA [т1 1 2; т7 3 4]");
    same("lines and rows are counted anew in each pass", mif("Point 3 4\nLine 1 2 3 4\nPline 1\n"),
        "a\nb\nc\n", "false\n! Ошибка чтения полилинии из строки: 9\nb [т1 1 2; a 3 4]\n<null>");
    same("rows are counted anew in each pass", mif("Point 3 4\nLine 1 2 3 4\n"), "a\n",
        "false\n! Ошибка чтения данных объекта из строки: 2");
    same("a collection stops both passes",
        mif("Point 1 2\nLine 1 2 3 4\nCollection 1\nLine 5 6 7 8\n"), "a\nb\nc\nd\n",
        "true\n! Ошибка в стоке 9. Коллекции в MIF файлах не поддерживаются.\n"
        "! Ошибка в стоке 9. Коллекции в MIF файлах не поддерживаются.\nb [a 1 2; т1 3 4]");
    same("no MID: one message, no object pass", mif("Line 1 2 3 4\n"), QByteArray(),
        "false\n! Ошибка открытия MID файла plan.mid");
}

void TestMifPasses::points()
{
    QFETCH(Files, files);
    QFETCH(bool, searchObjectDefs);
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    options.searchObjectDefs = searchObjectDefs;
    QTEST(outcome(files, options), "expected");
}

void TestMifPasses::delimiters_data()
{
    QTest::addColumn<QByteArray>("delimiter");
    QTest::addColumn<QByteArray>("mid");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* delimiter, const char* mid,
                         const char* expected) {
        QTest::newRow(name) << QByteArray(delimiter) << QByteArray(mid)
                            << QString::fromUtf8(expected);
    };
    row("comma", "\",\"", "A;B,C", "A;B");
    row("semicolon", "\";\"", "A,B;C", "A,B");
    row("without quotes", ";", "A,B;C", "A,B");
    row("only the first character counts", "\";,\"", "A,B;C", "A,B");
    row("empty: the comma stays", "\"\"", "A;B,C", "A;B");
    row("one quote: the comma stays", "\"", "A;B,C", "A;B");
    row("a letter", "\"x\"", "AxB", "A");
    row("not ASCII", "\"§\"", "A,B§C", "A,B");
    row("quotes anywhere are dropped", ";\"\"", "A,B;C", "A,B");
}

void TestMifPasses::delimiters()
{
    QFETCH(QByteArray, delimiter);
    QFETCH(QByteArray, mid);
    QFETCH(QString, expected);
    ImportOptions options = prefixed();
    options.searchObjectDefs = true;
    const QByteArray mif =
        "Version 300\nCharset \"N\"\nDelimiter " + delimiter + "\nData\nRegion 0\n";
    QCOMPARE(
        outcome({ mif, mid, {}, {} }, options), (QStringList{ QStringLiteral("true"), expected }));
}

void TestMifPasses::firstColumns_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* text, const char* expected) {
        QTest::newRow(text) << QString::fromUtf8(text) << QString::fromUtf8(expected);
    };
    row("\"A 12\",5", "A 12");
    row("  17 ,x", "17");
    row("\"  7  \"", "7");
    row("", "");
    row("   ", "");
    row(",", "");
    row(",A", "");
    row("\"\"", "");
    row("\"", "");
    row("A", "A");
    row("\"A", "A");
    row("\"A,B\",C", "A,B");
    row("A \"B,C\",D", "A B,C");
    row("A\"  B\"C,D", "AB");
    row("A\" B", "AB");
    row("\"A\"\"B\"", "A");
    row("\"\"\"A\"\"\"", "");
    row("\"A\"B,C", "A");
    row("A B  C  ,D", "A B  C");
    row("\tA\t,B", "\tA\t");
    row(" \tA", "\tA");
    row("\" ,\"", ",");
    row("Ё1,2", "Ё1");
    row("'A',B", "'A'");
}

void TestMifPasses::firstColumns()
{
    QFETCH(QString, row);
    QFETCH(QString, expected);
    const ProbedMif reader;
    QCOMPARE(reader.mid.extractDef(QStringView(row)), expected);
    const QByteArray bytes = row.toLatin1();
    if (QString::fromLatin1(bytes) == row)
        QCOMPARE(reader.mid.extractDef(TextView(bytes.constData(), bytes.size())), expected);
}

void TestMifPasses::midNames_data()
{
    QTest::addColumn<QString>("mifName");
    QTest::addColumn<QString>("midName");
    QTest::newRow("lower case") << QStringLiteral("plan.mif") << QStringLiteral("plan.mid");
    QTest::newRow("upper case") << QStringLiteral("PLAN.MIF") << QStringLiteral("PLAN.MId");
    QTest::newRow("mixed") << QStringLiteral("Plan.miF") << QStringLiteral("Plan.mid");
    QTest::newRow("another ending") << QStringLiteral("plan.txt") << QStringLiteral("plan.txd");
    QTest::newRow("no ending") << QStringLiteral("plan") << QStringLiteral("plad");
    QTest::newRow("Cyrillic") << QStringLiteral("план") << QStringLiteral("плаd");
    QTest::newRow("place marks") << QStringLiteral("%1.mif") << QStringLiteral("%1.mid");
}

void TestMifPasses::midNames()
{
    QFETCH(QString, mifName);
    QFETCH(QString, midName);
    const TempFiles files;
    files.write(mifName, mif("Line 1 2 3 4\n"));
    files.write(midName, "A\n");
    ImportOptions options = prefixed();
    options.searchObjectDefs = true;
    QCOMPARE(outcomeOf<MifImport>(options, files, mifName), lines("true\nA [т1 1 2; т2 3 4]"));

    files.remove(midName);
    QCOMPARE(outcomeOf<MifImport>(options, files, mifName),
        (QStringList{
            QStringLiteral("false"), QStringLiteral("! Ошибка открытия MID файла ") + midName }));

    options.searchObjectDefs = false;
    QCOMPARE(outcomeOf<MifImport>(options, files, mifName), lines("true\nоб1 [т1 1 2; т2 3 4]"));
}

void TestMifPasses::midIsAFolder()
{
    const TempFiles files;
    files.write(plan, mif("Line 1 2 3 4\n"));
    QVERIFY(QDir().mkdir(files.path(QStringLiteral("plan.mid"))));
    ImportOptions options = prefixed();
    options.searchObjectDefs = true;
    QCOMPARE(outcomeOf<MifImport>(options, files, plan),
        lines("false\n! Ошибка открытия MID файла plan.mid"));
}

void TestMifPasses::encodings_data()
{
    QTest::addColumn<QByteArray>("encoding");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("mark");
    QTest::newRow("Windows-1251") << QByteArray("Windows-1251")
                                  << QByteArray("\xC7\xD3 \xB9"
                                                "1\xB8")
                                  << false;
    QTest::newRow("IBM866") << QByteArray("IBM866")
                            << QByteArray("\x87\x93 \xFC"
                                          "1\xF1")
                            << false;
    QTest::newRow("UTF-8") << QByteArray("UTF-8") << QByteArray("ЗУ №1ё") << false;
    QTest::newRow("UTF-8 with a mark") << QByteArray("UTF-8") << QByteArray("ЗУ №1ё") << true;
}

void TestMifPasses::encodings()
{
    QFETCH(QByteArray, encoding);
    QFETCH(QByteArray, name);
    QFETCH(bool, mark);
    const QByteArray start = mark ? QByteArray("\xEF\xBB\xBF") : QByteArray("");
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    options.searchObjectDefs = true;
    options.encoding = encoding;
    const QByteArray named = start + '"' + name + "\",1\n";
    const QByteArray points = start + mif("Point 1 2\n");
    const QByteArray objects = start + mif("Line 1 2 3 4\n");
    QCOMPARE(outcome({ objects, named, points, named }, options),
        lines("true\nЗУ №1ё [ЗУ №1ё 1 2; т1 3 4]"));
}

void TestMifPasses::readsAMidDef()
{
    const TempFiles files;
    files.write(plan, mifHeader());
    files.write(QStringLiteral("plan.mid"), "\"A\",1\nskipped\n\nB\n");
    ProbedMif reader;
    prepare(reader, prefixed(), files, plan);
    reader.pass = [](ProbedMif& r) {
        QString def = QStringLiteral("untouched");
        QVERIFY(r.mid.readMidDef(&def));
        QVERIFY(r.mid.readMidDef(nullptr));
        QCOMPARE(def, QStringLiteral("untouched"));
        QCOMPARE(r.mid.lineNum(), 0);

        QVERIFY(r.openMidFile());
        QVERIFY(r.mid.readMidDef(&def));
        QCOMPARE(def, QStringLiteral("A"));
        QVERIFY(r.mid.readMidDef(nullptr));
        QCOMPARE(def, QStringLiteral("A"));
        QVERIFY(!r.mid.readMidDef(&def));
        QCOMPARE(def, QStringLiteral("A"));
        QVERIFY(r.mid.readMidDef(&def));
        QCOMPARE(def, QStringLiteral("B"));
        QVERIFY(!r.mid.readMidDef(&def));
        QCOMPARE(r.mid.lineNum(), 5);
    };
    QCOMPARE(outcomeOf(reader, files), lines("true"));
}

void TestMifPasses::readsAVertex()
{
    const TempFiles files;
    files.write(plan, "1 2\n 3\t4 \n5 6\n7\n8 9 10\n\nx 1\n");
    ProbedMif reader;
    prepare(reader, prefixed(), files, plan);
    reader.pass = [](ProbedMif& r) {
        r.appendEmptyPolygon();
        r.appendEmptyContour();
        QVERIFY(r.readVert(false));
        QVERIFY(r.readVert(false));
        QVERIFY(r.readVert(true));
        for (int i = 0; i < 5; ++i)
            QVERIFY(!r.readVert(false));
        QCOMPARE(r.in.lineNum(), 8);
    };
    QCOMPARE(outcomeOf(reader, files), lines("true\n<null> [т1 1 2; т2 3 4; т1 5 6]"));
}

void TestMifPasses::swapped()
{
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    options.swapXY = true;
    QCOMPARE(outcome({ mif("Region 1\n3\n1 2\n3 4\n1 2\nLine 4 3 3 4\n"), {}, mif("Point 3 4\n"),
                         "a\n" },
                 options),
        lines("true\nоб1 [т1 2 1; a 4 3; т1 2 1]\nоб2 [т2 3 4; a 4 3]"));
}

void TestMifPasses::worksThroughTheBase()
{
    const TempFiles files;
    files.write(plan, mif("Line 1 2 3 4\n"));
    const QScopedPointer<MapImport> importer(new MifImport);
    prepare(*importer, prefixed(), files, plan);
    QCOMPARE(outcomeOf(*importer, files), lines("true\nоб1 [т1 1 2; т2 3 4]"));
    QCOMPARE(importer->pointStartNum, 3);
    QCOMPARE(importer->objectStartNum, 2);
}

QTEST_GUILESS_MAIN(TestMifPasses)
#include "tst_mifpasses.moc"
