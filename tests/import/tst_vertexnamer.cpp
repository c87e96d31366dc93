#include "import/formats.h"
#include "import/mapimport.h"
#include "importrun/importrun.h"
#include "status.h"
#include "support/failingallocator.h"
#include "support/importing.h"
#include "support/miftext.h"
#include "support/random.h"
#include "support/stricttest.h"

#include <QHash>
#include <QTest>

#include <functional>
#include <new>

namespace {

/// Places on a grid so wide that they coincide only where they are the same.
using Place = QPair<int, int>;
using Ring = QVector<Place>;
using Rings = QVector<Ring>;

/// Objects of a few vertices each, every place anywhere in a square of the given width.
Rings ringsAnywhere(int vertices, int width, int most)
{
    Random random(static_cast<unsigned>(vertices + width));
    Rings rings;
    for (int left = vertices; left > 0; left -= rings.last().size()) {
        Ring ring;
        for (int i = 3 + random.below(most); i > 0; --i)
            ring.append({ random.below(width), random.below(width) });
        rings.append(ring);
    }
    return rings;
}

/// The rings as regions, a few of them to an object.
QByteArray regionsOf(const Rings& rings, int ringsPerObject)
{
    QByteArray text;
    for (int i = 0; i < rings.size(); ++i) {
        if (i % ringsPerObject == 0) {
            const int count = std::min(ringsPerObject, rings.size() - i);
            text += "Region " + QByteArray::number(count) + '\n';
        }
        text += QByteArray::number(rings[i].size()) + '\n';
        for (const Place& place : rings[i])
            text += QByteArray::number(place.first) + ' ' + QByteArray::number(place.second) + '\n';
    }
    return text;
}

/// What the vertices of the rings are to be called: places bear the number of their first vertex,
/// or the name that they are known by, and the last vertex that of the ring's first.
QStringList expectedNames(const Rings& rings, QHash<Place, QString> names)
{
    QStringList result;
    int next = 1;
    for (const Ring& ring : rings) {
        const int first = result.size();
        for (int i = 0; i < ring.size() - 1; ++i) {
            QString& name = names[ring[i]];
            if (name.isNull())
                name = QStringLiteral("т%1").arg(next++);
            result.append(name);
        }
        result.append(result.at(first));
    }
    return result;
}

QStringList namesOf(const QVector<DefPolygon>& objects)
{
    QStringList names;
    for (const DefPolygon& object : objects) {
        for (const QVector<DefPoint>& contour : object.contours) {
            for (const DefPoint& vertex : contour)
                names.append(vertex.def);
        }
    }
    return names;
}

/// Checks, whenever some objects are told to have their names, that they have.
class NameWatcher : public ImportObserver {
public:
    explicit NameWatcher(const QVector<DefPolygon>& objects)
        : m_objects(objects)
    {
    }

    void objectBuilt(QLatin1String, bool, bool) override { ++built; }
    void objectsNamed(int count) override
    {
        QVERIFY(count > named);
        QVERIFY(count <= built);
        for (const DefPolygon& object : m_objects.mid(named, count - named))
            QVERIFY(!namesOf({ object }).contains(QString()));
        named = count;
        ++times;
    }

    int built = 0;
    int named = 0;
    int times = 0;

private:
    const QVector<DefPolygon>& m_objects;
};

} // namespace

/// The naming of so many vertices that a thread of its own is worth it.
class TestVertexNamer : public StrictTest {
    Q_OBJECT

private slots:
    void manyVertices_data();
    void manyVertices();
    void namesBeforeTheEnd();
    void objectsArePassedOn();
    void importsInTurn();
    void stopsInTheMiddle();
    void allocationsOfTheThread_data();
    void allocationsOfTheThread();
    void lastAllocationsOfTheThread();
    void allocationsOfTheReader_data();
    void allocationsOfTheReader();

private:
    void importInWant(failing::Threads threads, bool isNew, int granted, bool isTaken,
        const ImportOptions& options, const QStringList& expected, bool* hasFailed,
        int* named = nullptr);

    ImportOptions optionsOf(const QByteArray& objects);

    TempFiles m_files;
};

ImportOptions TestVertexNamer::optionsOf(const QByteArray& objects)
{
    ImportOptions options = prefixed();
    options.objectFileName = m_files.write(QStringLiteral("a.mif"), mif(objects));
    return options;
}

void TestVertexNamer::manyVertices_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("most");
    QTest::addColumn<int>("ringsPerObject");
    QTest::addColumn<int>("known");
    QTest::addColumn<bool>("swapXY");
    QTest::newRow("nearly all new") << 100000 << 6 << 1 << 0 << false;
    QTest::newRow("nearly all met again") << 30 << 6 << 1 << 0 << false;
    QTest::newRow("x and y exchanged") << 300 << 6 << 1 << 0 << true;
    QTest::newRow("many rings to an object") << 300 << 6 << 50 << 0 << false;
    QTest::newRow("one object") << 300 << 6 << 1000000 << 0 << false;
    QTest::newRow("long rings") << 300 << 30000 << 1 << 0 << false;
    QTest::newRow("some places are known") << 300 << 6 << 1 << 20000 << false;
    QTest::newRow("all places are known") << 100 << 6 << 1 << 200000 << true;
}

void TestVertexNamer::manyVertices()
{
    QFETCH(int, width);
    QFETCH(int, most);
    QFETCH(int, ringsPerObject);
    QFETCH(int, known);
    QFETCH(bool, swapXY);
    const Rings rings = ringsAnywhere(50000, width, most);
    Random random(static_cast<unsigned>(width));
    QHash<Place, QString> names;
    QByteArray points;
    QByteArray rows;
    for (int i = 0; i < known; ++i) {
        const Place place{ random.below(width), random.below(width) };
        if (names.contains(place))
            continue;
        const QByteArray name = "P" + QByteArray::number(i);
        names[place] = QString::fromLatin1(name);
        points += "Point " + QByteArray::number(place.first) + ' '
            + QByteArray::number(place.second) + '\n';
        rows += name + '\n';
    }
    ImportOptions options = optionsOf(regionsOf(rings, ringsPerObject));
    options.searchPointDefs = known > 0;
    options.pointFileName = m_files.write(QStringLiteral("p.mif"), mif(points));
    m_files.write(QStringLiteral("p.mid"), rows);
    options.swapXY = swapXY;
    const QStringList expected = expectedNames(rings, names);

    for (const bool inOneThread : { false, true }) {
        options.inOneThread = inOneThread;
        const std::unique_ptr<MapImport> importer =
            formatOfId(QStringLiteral("mif"))->makeImporter();
        importer->setOptions(options);
        const ImportOutcome outcome = run(*importer);
        QVERIFY(outcome.result);
        QCOMPARE(outcome.messages, QStringList());
        QCOMPARE(namesOf(outcome.objects), expected);
        const DefPoint& first = outcome.objects.first().contours.first().first();
        QCOMPARE(int(swapXY ? first.y : first.x), rings.first().first().first);
    }
}

void TestVertexNamer::namesBeforeTheEnd()
{
    const Rings rings = ringsAnywhere(60000, 200, 6);
    const std::unique_ptr<MapImport> importer = formatOfId(QStringLiteral("mif"))->makeImporter();
    importer->setOptions(optionsOf(regionsOf(rings, 1)));
    QVector<DefPolygon> objects;
    importer->map = &objects;
    NameWatcher watcher(objects);
    importer->observer = &watcher;
    QVERIFY(importer->importMap());
    QCOMPARE(watcher.built, rings.size());
    QCOMPARE(watcher.named, rings.size());
    QVERIFY(watcher.times > 1);
}

/// Who takes the objects gets them all, in their order and with their names.
void TestVertexNamer::objectsArePassedOn()
{
    const Rings rings = ringsAnywhere(60000, 200, 6);
    const QStringList expected = expectedNames(rings, {});
    const ImportOptions options = optionsOf(regionsOf(rings, 1));
    QStringList taken;
    int times = 0;
    const ImportRun whole = runImport(
        *formatOfId(QStringLiteral("mif")), options, [&](const QVector<DefPolygon>& objects) {
            taken += namesOf(objects);
            ++times;
        });
    QCOMPARE(taken, expected);
    QVERIFY(times > 10);
    QCOMPARE(namesOf(whole.objects), expected);
    QCOMPARE(whole.shapes.size(), rings.size());
}

/// A second run of one importer goes on with the numbers and knows the points of its own file only.
void TestVertexNamer::importsInTurn()
{
    const Rings rings = ringsAnywhere(30000, 100, 6);
    const std::unique_ptr<MapImport> importer = formatOfId(QStringLiteral("mif"))->makeImporter();
    importer->setOptions(optionsOf(regionsOf(rings, 1)));
    const QStringList first = namesOf(run(*importer).objects);
    const int numbers = importer->pointStartNum - 1;
    QCOMPARE(first, expectedNames(rings, {}));
    QStringList shifted;
    for (const QString& name : first)
        shifted.append(QStringLiteral("т%1").arg(name.midRef(1).toInt() + numbers));
    QVector<DefPolygon> objects;
    importer->map = &objects;
    NameWatcher watcher(objects);
    importer->observer = &watcher;
    QVERIFY(importer->importMap());
    QCOMPARE(namesOf(objects), shifted);
    QCOMPARE(watcher.named, rings.size());
}

/// What was read before an error has its names, and what the error says is the same.
void TestVertexNamer::stopsInTheMiddle()
{
    const Rings rings = ringsAnywhere(40000, 200, 6);
    const ImportOptions options = optionsOf(regionsOf(rings, 1) + "Region 1\n4\n1 1\n2 x\n");
    const std::unique_ptr<MapImport> importer = formatOfId(QStringLiteral("mif"))->makeImporter();
    importer->setOptions(options);
    const ImportOutcome outcome = run(*importer);
    QVERIFY(!outcome.result);
    QCOMPARE(outcome.messages.size(), 1);
    QCOMPARE(outcome.objects.size(), rings.size() + 1);
    Rings all = rings;
    // The vertex that was read stands last, so that one more is expected behind it.
    all.append({ { 1, 1 }, { 0, 0 } });
    QStringList expected = expectedNames(all, {});
    expected.removeLast();
    QCOMPARE(namesOf(outcome.objects), expected);
}

void TestVertexNamer::allocationsOfTheThread_data()
{
    QTest::addColumn<bool>("isNew");
    QTest::addColumn<int>("granted");
    for (const int granted : { 0, 1 })
        QTest::addRow("operator new, after %d", granted) << true << granted;
    // A sanitizer has an allocator of its own.
    if (!failing::canFailMalloc())
        return;
    for (const int granted : { 0, 1, 100, 3000, 10000 })
        QTest::addRow("malloc, after %d", granted) << false << granted;
}

/// Lets an allocation of an import fail: the user is told once, and each object that is left is as
/// it should be.
void TestVertexNamer::importInWant(failing::Threads threads, bool isNew, int granted, bool isTaken,
    const ImportOptions& options, const QStringList& expected, bool* hasFailed, int* named)
{
    QStringList taken;
    const ObjectTaker take = [&taken](const QVector<DefPolygon>& some) { taken += namesOf(some); };
    failing::arm(isNew ? failing::Calls::New : failing::Calls::Malloc, granted, threads);
    ImportRun import;
    try {
        import =
            runImport(*formatOfId(QStringLiteral("mif")), options, isTaken ? take : ObjectTaker());
    } catch (const std::bad_alloc&) {
        // Before the import was set up; who has called for it hears of that.
        *hasFailed = failing::disarm();
        QVERIFY(*hasFailed && granted < 100);
        return;
    }
    *hasFailed = failing::disarm();
    const QStringList names = namesOf(import.objects);
    QCOMPARE(names, expected.mid(0, names.size()));
    QCOMPARE(import.shapes.size(), import.objects.size());
    if (isTaken)
        QCOMPARE(taken, names);
    if (named)
        *named = names.size();
    if (!*hasFailed) {
        QCOMPARE(names.size(), expected.size());
        QCOMPARE(import.messages.size(), 0);
        return;
    }
    QCOMPARE(import.messages.size(), 1);
    QCOMPARE(import.messages.first().text,
        QStringLiteral("Ошибка. Недостаточно памяти для обработки данных."));
}

void TestVertexNamer::allocationsOfTheThread()
{
    QFETCH(bool, isNew);
    QFETCH(int, granted);
    if (std::thread::hardware_concurrency() < 2)
        QSKIP("There is no second processor");
    const Rings rings = ringsAnywhere(60000, 200, 6);
    const ImportOptions options = optionsOf(regionsOf(rings, 1));
    int named[2] = {};
    for (const bool isTaken : { false, true }) {
        bool hasFailed = false;
        importInWant(failing::Threads::Others, isNew, granted, isTaken, options,
            expectedNames(rings, {}), &hasFailed, &named[isTaken ? 1 : 0]);
        QVERIFY(hasFailed);
    }
    // As much is left to who takes the objects.
    QCOMPARE(named[1], named[0]);
}

/// The reader has no more to hand over then, and must still hear of it.
void TestVertexNamer::lastAllocationsOfTheThread()
{
    if (std::thread::hardware_concurrency() < 2)
        QSKIP("There is no second processor");
    if (!failing::canFailMalloc())
        QSKIP("A sanitizer has an allocator of its own");
    const Rings rings = ringsAnywhere(30000, 100000, 6);
    const ImportOptions options = optionsOf(regionsOf(rings, 1));
    const QStringList expected = expectedNames(rings, {});
    int granted = 0;
    for (int step = 1 << 16; step > 0; step /= 2) {
        bool hasFailed = false;
        importInWant(
            failing::Threads::Others, false, granted + step, false, options, expected, &hasFailed);
        if (QTest::currentTestFailed())
            return;
        granted += hasFailed ? step : 0;
    }
    QVERIFY(granted > 1000);
}

void TestVertexNamer::allocationsOfTheReader_data()
{
    QTest::addColumn<bool>("isNew");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("operator new") << true << false;
    QTest::newRow("operator new, objects are taken") << true << true;
    if (!failing::canFailMalloc())
        return;
    QTest::newRow("malloc") << false << false;
    QTest::newRow("malloc, objects are taken") << false << true;
}

/// The same in the thread that reads, while the other one is at work.
void TestVertexNamer::allocationsOfTheReader()
{
    QFETCH(bool, isNew);
    QFETCH(bool, isTaken);
    const Rings rings = ringsAnywhere(40000, 200, 6);
    const ImportOptions options = optionsOf(regionsOf(rings, 1));
    const QStringList expected = expectedNames(rings, {});
    bool hasFailed = true;
    int times = 0;
    // Fewer tries the farther the import has come.
    for (int granted = 0; hasFailed; granted += 1 + granted / 3, ++times) {
        importInWant(failing::Threads::Own, isNew, granted, isTaken, options, expected, &hasFailed);
        if (QTest::currentTestFailed())
            return;
    }
    QVERIFY(times > 10);
}

QTEST_GUILESS_MAIN(TestVertexNamer)
#include "tst_vertexnamer.moc"
