#include "import/mapimport.h"

#include "status.h"
#include "support/importing.h"

#include <QtTest>

#include <functional>
#include <new>
#include <stdexcept>

namespace {

/// A reader of nothing in particular: a test says what its passes do.
class ToyImport : public MapImport {
public:
    using Pass = std::function<bool(ToyImport&)>;
    Pass pointPass = [](ToyImport&) { return true; };
    Pass objectPass = [](ToyImport&) { return true; };

    using MapImport::appendEmptyContour;
    using MapImport::appendEmptyPolygon;
    using MapImport::appendVert;
    using MapImport::encoding;
    using MapImport::in;
    using MapImport::points;
    using MapImport::resetInFileStream;
    using MapImport::setLastPolygonDef;

protected:
    bool loadPoints() override { return pointPass(*this); }
    bool loadPolygons() override { return objectPass(*this); }
};

/// Adds the contour of a new object through the given places; the last one of a ring closes it.
void build(ToyImport& toy, const QVector<QPointF>& places, bool ring = false)
{
    toy.appendEmptyPolygon();
    toy.appendEmptyContour();
    for (int i = 0; i < places.size(); ++i)
        toy.appendVert(places[i].x(), places[i].y(), ring && i == places.size() - 1);
}

QString nextLine(ToyImport& toy)
{
    return toy.in.readLine().toString();
}

const QString objectFile = QStringLiteral("objects.txt");
const QString pointFile = QStringLiteral("points.txt");

} // namespace

class TestDriver : public QObject {
    Q_OBJECT

private slots:
    void init();
    void defaults();
    void passesAndFiles_data();
    void passesAndFiles();
    void linesAreCountedAnewInEachPass();
    void lastLines_data();
    void lastLines();
    void failuresToOpen_data();
    void failuresToOpen();
    void silentWithoutAStatusFunction();
    void exceptionsBecomeMessages();
    void resultsOfPasses_data();
    void resultsOfPasses();
    void startsWithoutPoints();
    void numbersAndSnaps_data();
    void numbersAndSnaps();
    void mergesCataloguePoints();
    void swapsOnlyWhatIsStored();
    void namesObjects_data();
    void namesObjects();
    void readsAgainFromTheStart();
    void encodings_data();
    void encodings();
    void unknownEncodingAlone();

private:
    QScopedPointer<TempFiles> m_files;
};

void TestDriver::init()
{
    m_files.reset(new TempFiles);
    m_files->write(objectFile, "object\nsecond\n");
    m_files->write(pointFile, "point\nsecond\n");
}

void TestDriver::defaults()
{
    const ToyImport toy;
    QVERIFY(!toy.swapXY && !toy.searchPointDefs && !toy.searchObjectDefs);
    QVERIFY(toy.pointPref.isEmpty() && toy.objectPref.isEmpty());
    QVERIFY(toy.objectFileName.isEmpty() && toy.pointFileName.isEmpty());
    QCOMPARE(toy.pointStartNum, 0);
    QCOMPARE(toy.objectStartNum, 0);
    QVERIFY(!toy.map);
    QVERIFY(toy.points.isEmpty());
    QVERIFY(toy.encoding.isEmpty());
}

void TestDriver::passesAndFiles_data()
{
    QTest::addColumn<bool>("searchPointDefs");
    QTest::addColumn<bool>("separate");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no point pass") << false << false << QStringLiteral("o:object");
    QTest::newRow("a point file alone asks for no point pass")
        << false << true << QStringLiteral("o:object");
    QTest::newRow("points from the object file")
        << true << false << QStringLiteral("p:object o:object");
    QTest::newRow("points from their own file")
        << true << true << QStringLiteral("p:point o:object");
}

void TestDriver::passesAndFiles()
{
    QFETCH(bool, searchPointDefs);
    QFETCH(bool, separate);
    QFETCH(QString, expected);
    ImportOptions options = prefixed();
    options.searchPointDefs = searchPointDefs;
    ToyImport toy;
    prepare(toy, options, *m_files, objectFile, separate ? pointFile : QString());
    QStringList seen;
    toy.pointPass = [&](ToyImport& t) {
        seen.append(QStringLiteral("p:") + nextLine(t));
        return true;
    };
    toy.objectPass = [&](ToyImport& t) {
        seen.append(QStringLiteral("o:") + nextLine(t));
        return true;
    };
    QCOMPARE(outcomeOf(toy, *m_files), lines("true"));
    QCOMPARE(seen.join(QLatin1Char(' ')), expected);
    QVERIFY(!toy.in.isOpen());
}

void TestDriver::linesAreCountedAnewInEachPass()
{
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    ToyImport toy;
    prepare(toy, options, *m_files, objectFile);
    QVector<int> counts;
    const ToyImport::Pass pass = [&](ToyImport& t) {
        counts.append(t.in.lineNum());
        while (!t.in.atEnd()) {
            nextLine(t);
            counts.append(t.in.lineNum());
        }
        return true;
    };
    toy.pointPass = pass;
    toy.objectPass = pass;
    QCOMPARE(outcomeOf(toy, *m_files), lines("true"));
    QCOMPARE(counts, (QVector<int>{ 0, 1, 2, 0, 1, 2 }));
}

void TestDriver::lastLines_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expected");

    const QStringList two{ QStringLiteral("a"), QStringLiteral("b") };
    QTest::newRow("LF") << QByteArray("a\nb\n") << two;
    QTest::newRow("LF, no last one") << QByteArray("a\nb") << two;
    QTest::newRow("CRLF") << QByteArray("a\r\nb\r\n") << two;
    QTest::newRow("CRLF, no last one") << QByteArray("a\r\nb") << two;
    QTest::newRow("blank last line") << QByteArray("a\nb\n\n") << (two + QStringList{ QString() });
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF"
                                                   "a\nb\n")
                                     << two;
    QTest::newRow("empty") << QByteArray() << QStringList();
}

void TestDriver::lastLines()
{
    QFETCH(QByteArray, content);
    m_files->write(objectFile, content);
    ToyImport toy;
    prepare(toy, prefixed(), *m_files, objectFile);
    QStringList seen;
    toy.objectPass = [&](ToyImport& t) {
        while (!t.in.atEnd())
            seen.append(nextLine(t));
        return true;
    };
    QCOMPARE(outcomeOf(toy, *m_files), lines("true"));
    QTEST(seen, "expected");

    toy.objectPass = [](ToyImport& t) {
        while (!t.in.atEnd())
            nextLine(t);
        const int count = t.in.lineNum();
        return nextLine(t).isNull() && t.in.lineNum() == count + 1;
    };
    QCOMPARE(outcomeOf(toy, *m_files), lines("true"));
}

void TestDriver::failuresToOpen_data()
{
    QTest::addColumn<QString>("objects");
    QTest::addColumn<QString>("points");
    QTest::addColumn<QStringList>("expected");

    const QString none = QStringLiteral("none.txt");
    const QString folder = QStringLiteral("folder");
    QTest::newRow("missing object file")
        << none << pointFile << lines("true\n! Ошибка открытия файла none.txt");
    QTest::newRow("a folder as object file")
        << folder << pointFile << lines("true\n! Ошибка открытия файла folder");
    QTest::newRow("missing point file: the object pass runs")
        << objectFile << none << lines("true\n! Ошибка открытия файла none.txt\n<null> [т1 1 2]");
    QTest::newRow("a folder as point file")
        << objectFile << folder << lines("true\n! Ошибка открытия файла folder\n<null> [т1 1 2]");
    QTest::newRow("both missing")
        << none << QStringLiteral("no.txt")
        << lines("true\n! Ошибка открытия файла no.txt\n! Ошибка открытия файла none.txt");
    QTest::newRow("one missing file for both") << none << QString()
                                               << lines("true\n! Ошибка открытия файла none.txt\n"
                                                        "! Ошибка открытия файла none.txt");
    QTest::newRow("place marks in the name") << QStringLiteral("a%1b%2.txt") << pointFile
                                             << lines("true\n! Ошибка открытия файла a%1b%2.txt");
}

void TestDriver::failuresToOpen()
{
    QFETCH(QString, objects);
    QFETCH(QString, points);
    QVERIFY(QDir().mkdir(m_files->path(QStringLiteral("folder"))));
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    ToyImport toy;
    prepare(toy, options, *m_files, objects, points);
    toy.objectPass = [](ToyImport& t) {
        build(t, { { 1, 2 } });
        return true;
    };
    QTEST(outcomeOf(toy, *m_files), "expected");
}

void TestDriver::silentWithoutAStatusFunction()
{
    ToyImport toy;
    prepare(toy, prefixed(), *m_files, QStringLiteral("none.txt"));
    QVector<DefPolygon> objects;
    toy.map = &objects;
    QVERIFY(toy.importMap());
    QVERIFY(objects.isEmpty());
}

void TestDriver::exceptionsBecomeMessages()
{
    const StatusLog log;
    guarded([] { throw std::bad_alloc(); });
    guarded([] { throw std::runtime_error("the reason"); });
    guarded([] { throw 1; });
    guarded([] {});
    QCOMPARE(log.messages(),
        lines("Ошибка. Недостаточно памяти для обработки данных.\n"
              "Ошибка обработки данных: the reason\nОшибка обработки данных."));
}

void TestDriver::resultsOfPasses_data()
{
    QTest::addColumn<bool>("pointsLoaded");
    QTest::addColumn<bool>("objectsLoaded");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("both") << true << true << lines("true\nA [т1 1 2]");
    QTest::newRow("no points: no object pass") << false << true << lines("false");
    QTest::newRow("no objects: what was built stays")
        << true << false << lines("false\nA [т1 1 2]");
}

void TestDriver::resultsOfPasses()
{
    QFETCH(bool, pointsLoaded);
    QFETCH(bool, objectsLoaded);
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    ToyImport toy;
    prepare(toy, options, *m_files, objectFile);
    toy.pointPass = [&](ToyImport&) { return pointsLoaded; };
    toy.objectPass = [&](ToyImport& t) {
        build(t, { { 1, 2 } });
        t.setLastPolygonDef(QStringLiteral("A"));
        return objectsLoaded;
    };
    QTEST(outcomeOf(toy, *m_files), "expected");
    QVERIFY(!toy.in.isOpen());
}

void TestDriver::startsWithoutPoints()
{
    ToyImport toy;
    prepare(toy, prefixed(), *m_files, objectFile);
    toy.objectPass = [](ToyImport& t) {
        build(t, { { 1, 2 } });
        return true;
    };
    QCOMPARE(outcomeOf(toy, *m_files), lines("true\n<null> [т1 1 2]"));
    QCOMPARE(outcomeOf(toy, *m_files), lines("true\n<null> [т2 1 2]"));
}

void TestDriver::numbersAndSnaps_data()
{
    using Places = QVector<QPointF>;
    using Rings = QVector<Places>;
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<Rings>("rings");
    QTest::addColumn<bool>("closed");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<int>("next");

    const QString p = QStringLiteral("P");
    QTest::newRow("each place gets a number")
        << p << Rings{ { { 1, 2 }, { 3, 4 }, { 5, 6 } } } << false
        << lines("true\n<null> [P1 1 2; P2 3 4; P3 5 6]") << 4;
    QTest::newRow("no prefix") << QString() << Rings{ { { 1, 2 }, { 3, 4 } } } << false
                               << lines("true\n<null> [1 1 2; 2 3 4]") << 3;
    QTest::newRow("place marks in the prefix")
        << QStringLiteral("%1-%2-") << Rings{ { { 1, 2 }, { 3, 4 } } } << false
        << lines("true\n<null> [%1-%2-1 1 2; %1-%2-2 3 4]") << 3;
    QTest::newRow("a place met again bears its name, and keeps its own coordinates")
        << p << Rings{ { { 1, 2 }, { 3, 4 } }, { { 3.0078125, 4 }, { 1, 2 }, { 7, 8 } } } << false
        << lines("true\n<null> [P1 1 2; P2 3 4]\n<null> [P2 3.0078125 4; P1 1 2; P3 7 8]") << 4;
    QTest::newRow("the tolerance is inclusive")
        << p << Rings{ { { 0, 0 }, { 0.01, -0.01 }, { 0.02, 0 } } } << false
        << lines("true\n<null> [P1 0 0; P1 0.01 -0.01; P2 0.02 0]") << 3;
    QTest::newRow("equal neighbours are all kept")
        << p << Rings{ { { 1, 2 }, { 1, 2 }, { 1, 2 } } } << false
        << lines("true\n<null> [P1 1 2; P1 1 2; P1 1 2]") << 2;
    QTest::newRow("a ring of four uses three numbers")
        << p << Rings{ { { 0, 0 }, { 5, 0 }, { 5, 5 }, { 0, 0 } } } << true
        << lines("true\n<null> [P1 0 0; P2 5 0; P3 5 5; P1 0 0]") << 4;
    QTest::newRow("the closing vertex is not looked at, nor remembered")
        << p << Rings{ { { 0, 0 }, { 5, 0 }, { 9, 9 } }, { { 9, 9 }, { 5, 0 }, { 9, 9 } } } << true
        << lines("true\n<null> [P1 0 0; P2 5 0; P1 9 9]\n<null> [P3 9 9; P2 5 0; P3 9 9]") << 4;
}

void TestDriver::numbersAndSnaps()
{
    QFETCH(QString, prefix);
    QFETCH(QVector<QVector<QPointF>>, rings);
    QFETCH(bool, closed);
    ImportOptions options = prefixed();
    options.pointPref = prefix;
    ToyImport toy;
    prepare(toy, options, *m_files, objectFile);
    toy.objectPass = [&](ToyImport& t) {
        for (const QVector<QPointF>& ring : qAsConst(rings))
            build(t, ring, closed);
        return true;
    };
    QTEST(outcomeOf(toy, *m_files), "expected");
    QTEST(toy.pointStartNum, "next");
}

void TestDriver::mergesCataloguePoints()
{
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    ToyImport toy;
    prepare(toy, options, *m_files, objectFile);
    toy.pointPass = [](ToyImport& t) {
        t.points.append(DefPoint{ QStringLiteral("b"), 1.005, 2.005 });
        t.points.append(DefPoint{ QStringLiteral("z"), 9, 9 });
        t.points.append(DefPoint{ QStringLiteral("a"), 1, 2 });
        return true;
    };
    toy.objectPass = [](ToyImport& t) {
        const int size = t.points.size();
        build(t, { { 1.005, 2.005 }, { 9, 9 }, { 1.012, 2 } });
        return size == 2;
    };
    // The third vertex is within the tolerance of b, which is gone, and not of a.
    QCOMPARE(outcomeOf(toy, *m_files), lines("true\n<null> [a 1.005 2.005; z 9 9; т1 1.012 2]"));
}

void TestDriver::swapsOnlyWhatIsStored()
{
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    options.swapXY = true;
    ToyImport toy;
    prepare(toy, options, *m_files, objectFile);
    toy.pointPass = [](ToyImport& t) {
        t.points.append(DefPoint{ QStringLiteral("a"), 1, 2 });
        return true;
    };
    toy.objectPass = [](ToyImport& t) {
        build(t, { { 1, 2 }, { 2, 1 }, { 5, 6 }, { 5, 6 }, { 1, 2 } }, true);
        return true;
    };
    QCOMPARE(
        outcomeOf(toy, *m_files), lines("true\n<null> [a 2 1; т1 1 2; т2 6 5; т2 6 5; a 2 1]"));
}

void TestDriver::namesObjects_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QStringList>("defs");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<int>("next");

    QTest::newRow("given names use no number")
        << QStringLiteral(":ЗУ") << lines("A\nB\nA") << lines("true\nA\nB\nA") << 1;
    QTest::newRow("empty ones are numbered")
        << QStringLiteral(":ЗУ") << lines("\nB\n") << lines("true\n:ЗУ1\nB\n:ЗУ2") << 3;
    QTest::newRow("place marks in the prefix")
        << QStringLiteral("%2%1") << lines("\n") << lines("true\n%2%11\n%2%12") << 3;
    QTest::newRow("no prefix") << QString() << lines("\n") << lines("true\n1\n2") << 3;
    QTest::newRow("a space is a name")
        << QStringLiteral("x") << lines(" ") << lines("true\n ") << 1;
}

void TestDriver::namesObjects()
{
    QFETCH(QString, prefix);
    QFETCH(QStringList, defs);
    ImportOptions options = prefixed();
    options.objectPref = prefix;
    ToyImport toy;
    prepare(toy, options, *m_files, objectFile);
    toy.objectPass = [&](ToyImport& t) {
        for (const QString& def : qAsConst(defs)) {
            t.appendEmptyPolygon();
            t.setLastPolygonDef(def);
        }
        return true;
    };
    QTEST(outcomeOf(toy, *m_files), "expected");
    QTEST(toy.objectStartNum, "next");
}

void TestDriver::readsAgainFromTheStart()
{
    ToyImport toy;
    prepare(toy, prefixed(), *m_files, objectFile);
    QStringList seen;
    toy.objectPass = [&](ToyImport& t) {
        seen.append(nextLine(t));
        seen.append(nextLine(t));
        t.resetInFileStream();
        seen.append(nextLine(t));
        return true;
    };
    QCOMPARE(outcomeOf(toy, *m_files), lines("true"));
    QCOMPARE(seen, lines("object\nsecond\nobject"));
}

void TestDriver::encodings_data()
{
    QTest::addColumn<QByteArrayList>("names");
    QTest::addColumn<QByteArray>("content");

    const QByteArray utf8 = "\xD0\x9D\xD1\x91";
    const QByteArray cp1251 = "\xCD\xB8";
    const QByteArray cp866 = "\x8D\xF1";
    QTest::newRow("UTF-8") << QByteArrayList{ "UTF-8" } << utf8;
    QTest::newRow("Windows-1251") << QByteArrayList{ "Windows-1251" } << cp1251;
    QTest::newRow("IBM866") << QByteArrayList{ "IBM866" } << cp866;
    QTest::newRow("any case") << QByteArrayList{ "windows-1251" } << cp1251;
    QTest::newRow("the last one counts") << QByteArrayList{ "UTF-8", "IBM866" } << cp866;
    QTest::newRow("an unknown one changes nothing")
        << QByteArrayList{ "Windows-1251", "no such encoding" } << cp1251;
    QTest::newRow("nor does an empty one") << QByteArrayList{ "IBM866", "" } << cp866;
}

void TestDriver::encodings()
{
    QFETCH(QByteArrayList, names);
    QFETCH(QByteArray, content);
    m_files->write(objectFile, content);
    m_files->write(pointFile, content);
    ImportOptions options = prefixed();
    options.searchPointDefs = true;
    ToyImport toy;
    prepare(toy, options, *m_files, objectFile, pointFile);
    for (const QByteArray& name : qAsConst(names))
        toy.setEncoding(name);
    QCOMPARE(toy.encoding, names.last());
    QStringList seen;
    const ToyImport::Pass pass = [&](ToyImport& t) {
        seen.append(nextLine(t));
        return true;
    };
    toy.pointPass = pass;
    toy.objectPass = pass;
    QCOMPARE(outcomeOf(toy, *m_files), lines("true"));
    QCOMPARE(seen, lines("Нё\nНё"));
}

void TestDriver::unknownEncodingAlone()
{
    const QByteArray content = "\xCD\xB8";
    m_files->write(objectFile, content);
    ImportOptions options = prefixed();
    options.encoding = "Default";
    ToyImport toy;
    prepare(toy, options, *m_files, objectFile);
    QString seen;
    toy.objectPass = [&](ToyImport& t) {
        seen = nextLine(t);
        return true;
    };
    QCOMPARE(outcomeOf(toy, *m_files), lines("true"));
    QCOMPARE(seen, QTextCodec::codecForLocale()->toUnicode(content));
}

QTEST_GUILESS_MAIN(TestDriver)
#include "tst_driver.moc"
