#include "import/formats.h"
#include "import/mapimport.h"
#include "support/importing.h"

#include <QtTest>

namespace {

/// Writes down what an import tells, a line an event.
class EventLog : public ImportObserver {
public:
    explicit EventLog(const QString& folder)
        : m_folder(folder + QLatin1Char('/'))
    {
    }

    void passStarted(ImportPass pass, const QString& fileName) override
    {
        static const char* const names[] = { "points", "labels", "objects" };
        add(QStringLiteral("pass %1 %2")
                .arg(QString::fromLatin1(names[int(pass)]), QString(fileName).remove(m_folder)));
    }
    void entityRead(QLatin1String kind) override { add(QStringLiteral("read ") + kind); }
    void objectBuilt(QLatin1String kind, bool closed, bool complete) override
    {
        add(QStringLiteral("built ") + kind + (closed ? QStringLiteral(" closed") : QString())
            + (complete ? QString() : QStringLiteral(" in part")));
    }
    void failed(const ImportFailure& failure) override
    {
        const QString entity = failure.entity.size() == 0
            ? QString()
            : QStringLiteral(", %1 of %2").arg(failure.entity).arg(failure.entityLine);
        add(QStringLiteral("failed %1 at %2 in line %3")
                .arg(QString(failure.fileName).remove(m_folder))
                .arg(failure.number)
                .arg(failure.line)
            + entity);
    }

    QStringList events;

private:
    void add(const QString& event) { events.append(event); }

    QString m_folder;
};

/// Takes each object out of the collection when it is told of it.
class Taker : public ImportObserver {
public:
    explicit Taker(QVector<DefPolygon>& objects)
        : m_objects(objects)
    {
    }

    void objectBuilt(QLatin1String, bool, bool) override
    {
        taken += m_objects;
        m_objects.clear();
    }

    QVector<DefPolygon> taken;

private:
    QVector<DefPolygon>& m_objects;
};

} // namespace

/// What an import tells about itself while it runs.
class TestImportObserver : public QObject {
    Q_OBJECT

private:
    TempFiles m_folder;

    /// Imports with all designations searched; "-" stands for no point file.
    QStringList eventsOf(
        const QString& objectFile, const QString& pointFile = {}, bool searchPointDefs = true)
    {
        const auto importer = formatOfFile(objectFile)->makeImporter();
        ImportOptions options = numbered();
        options.searchPointDefs = searchPointDefs;
        options.searchObjectDefs = true;
        prepare(*importer, options, m_folder, objectFile, pointFile);
        QVector<DefPolygon> objects;
        importer->map = &objects;
        EventLog log(m_folder.path(QString()));
        importer->observer = &log;
        const StatusLog status;
        importer->importMap();
        if (!status.messages().isEmpty())
            log.events << status.messages();
        return log.events;
    }

private slots:
    void mif();
    void mifThatStops_data();
    void mifThatStops();
    void dxf();
    void dxfWithPointFile();
    void lineOfAFileThatIsReadTwice();
    void filesThatAreMissing();
    void objectsMayBeTaken_data();
    void objectsMayBeTaken();
};

void TestImportObserver::mif()
{
    m_folder.write(QStringLiteral("a.mif"),
        "Version 300\nCharset \"N\"\nDelimiter \",\"\nData\n"
        "Point 1 2\nText\nLine 0 0 5 5\nPline 2\n0 0\n1 1\n"
        "Pline Multiple 2\n2\n0 0\n1 1\n2\n0 0\n1 1\nRegion 1\n4\n0 0\n1 0\n1 1\n0 0\nNone\n");
    m_folder.write(QStringLiteral("a.mid"), "1\n2\n3\n4\n5\n6\n7\n");
    QCOMPARE(eventsOf(QStringLiteral("a.mif")),
        (QStringList{ QStringLiteral("pass points a.mif"), QStringLiteral("read POINT"),
            QStringLiteral("pass objects a.mif"), QStringLiteral("built LINE"),
            QStringLiteral("built PLINE"), QStringLiteral("built PLINE"),
            QStringLiteral("built REGION closed") }));
}

void TestImportObserver::mifThatStops_data()
{
    QTest::addColumn<QByteArray>("objects");
    QTest::addColumn<QByteArray>("rows");
    QTest::addColumn<QStringList>("events");
    const auto row = [](const char* name, const char* objects, const char* rows,
                         const QStringList& events) {
        QTest::newRow(name) << QByteArray(objects) << QByteArray(rows) << events;
    };
    row("line", "Line 0 0 5\n", "1\n",
        { QStringLiteral("failed b.mif at 5 in line 5, LINE of 5") });
    row("polyline", "Pline 2\n0 0\n1\n", "1\n",
        { QStringLiteral("failed b.mif at 7 in line 7, PLINE of 5"),
            QStringLiteral("built PLINE in part") });
    row("region", "Region 1\n3\n0 0\n", "1\n",
        { QStringLiteral("failed b.mif at 7 in line 7, REGION of 5"),
            QStringLiteral("built REGION closed in part") });
    row("no row", "Line 0 0 5 5\nLine 0 0 5 6\n", "1\n",
        { QStringLiteral("built LINE"), QStringLiteral("failed b.mid at 2 in line 2"),
            QStringLiteral("built LINE in part") });
    row("no row for a point", "Point 1 1\n", "\n",
        { QStringLiteral("failed b.mid at 1 in line 1") });
    row("collection", "Line 0 0 5 5\nCollection 1\n", "1\n",
        { QStringLiteral("built LINE"),
            QStringLiteral("failed b.mif at 6 in line 6, COLLECTION of 6") });
}

void TestImportObserver::mifThatStops()
{
    QFETCH(QByteArray, objects);
    QFETCH(QByteArray, rows);
    QFETCH(QStringList, events);
    m_folder.write(
        QStringLiteral("b.mif"), "Version 300\nCharset \"N\"\nDelimiter \",\"\nData\n" + objects);
    m_folder.write(QStringLiteral("b.mid"), rows);
    events.prepend(QStringLiteral("pass objects b.mif"));
    QCOMPARE(eventsOf(QStringLiteral("b.mif"), {}, false), events);
}

static const QByteArray start = "0\nSECTION\n2\nHEADER\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n";

void TestImportObserver::dxf()
{
    m_folder.write(QStringLiteral("a.dxf"),
        start
            + "0\nINSERT\n10\n0\n20\n0\n0\nTEXT\n1\nЗУ1\n10\n0\n20\n0\n0\nARC\n10\n0\n20\n0\n"
              "0\nLINE\n10\n0\n20\n0\n11\n1\n21\n1\n"
              "0\nLWPOLYLINE\n90\n2\n70\n1\n10\n0\n20\n0\n10\n5\n20\n5\n"
              "0\nPOLYLINE\n70\n1\n0\nVERTEX\n10\n0\n20\n0\n0\nVERTEX\n10\n2\n20\n0\n0\nSEQEND\n"
              "0\nLWPOLYLINE\n10\n0\n20\n0\n");
    QCOMPARE(eventsOf(QStringLiteral("a.dxf")),
        (QStringList{ QStringLiteral("pass points a.dxf"), QStringLiteral("read INSERT"),
            QStringLiteral("read TEXT"), QStringLiteral("pass objects a.dxf"),
            QStringLiteral("built LINE"), QStringLiteral("built LWPOLYLINE closed"),
            QStringLiteral("built POLYLINE closed"), QStringLiteral("built LWPOLYLINE in part"),
            QStringLiteral("failed a.dxf at 78 in line 78, LWPOLYLINE of 74") }));
}

void TestImportObserver::dxfWithPointFile()
{
    m_folder.write(
        QStringLiteral("p.dxf"), start + "0\nCIRCLE\n10\n0\n20\n0\n0\nTEXT\n1\n1\n10\n0\n20\n0\n");
    m_folder.write(QStringLiteral("o.dxf"),
        start + "0\nTEXT\n1\nЗУ1\n10\n0\n20\n0\n0\nLINE\n10\n0\n20\n0\n11\n1\n21\n1\n");
    QCOMPARE(eventsOf(QStringLiteral("o.dxf"), QStringLiteral("p.dxf")),
        (QStringList{ QStringLiteral("pass points p.dxf"), QStringLiteral("read CIRCLE"),
            QStringLiteral("read TEXT"), QStringLiteral("pass objects o.dxf"),
            QStringLiteral("pass labels o.dxf"), QStringLiteral("read TEXT"),
            QStringLiteral("pass objects o.dxf"), QStringLiteral("built LINE") }));
}

/// The number in the message runs on from the reading of the labels; the line is the file's own.
void TestImportObserver::lineOfAFileThatIsReadTwice()
{
    m_folder.write(QStringLiteral("t.dxf"), start + "0\nLINE\n10\nx\n0\nEOF\n");
    QCOMPARE(eventsOf(QStringLiteral("t.dxf"), {}, false),
        (QStringList{ QStringLiteral("pass objects t.dxf"), QStringLiteral("pass labels t.dxf"),
            QStringLiteral("pass objects t.dxf"),
            QStringLiteral("failed t.dxf at 30 in line 14, LINE of 12") }));
}

void TestImportObserver::filesThatAreMissing()
{
    QCOMPARE(eventsOf(QStringLiteral("none.dxf"), QStringLiteral("nothing.dxf")),
        (QStringList{ QStringLiteral("pass points nothing.dxf"),
            QStringLiteral("failed nothing.dxf at 0 in line 0"),
            QStringLiteral("pass objects none.dxf"),
            QStringLiteral("failed none.dxf at 0 in line 0") }));
}

void TestImportObserver::objectsMayBeTaken_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("MIF") << QStringLiteral("t.mif")
                         << QByteArray("Version 300\nCharset \"N\"\nDelimiter \",\"\nData\nLine 0 "
                                       "0 5 5\nPline 2\n0 0\n1 1\n"
                                       "Region 1\n4\n0 0\n1 0\n1 1\n0 0\nPline 3\n7 7\n8 8\n");
    QTest::newRow("DXF") << QStringLiteral("t.dxf")
                         << start
            + "0\nLINE\n10\n0\n20\n0\n11\n5\n21\n5\n"
              "0\nLWPOLYLINE\n90\n2\n10\n0\n20\n0\n10\n1\n20\n1\n"
              "0\nLWPOLYLINE\n90\n3\n70\n1\n10\n0\n20\n0\n10\n1\n20\n0\n10\n1\n20\n1\n"
              "0\nLWPOLYLINE\n90\n3\n10\n7\n20\n7\n10\n8\n20\n8\n0\nEOF\n";
}

/// Their vertices have their names by then, and those of later objects go on from them.
void TestImportObserver::objectsMayBeTaken()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    m_folder.write(name, content);
    const auto importer = formatOfFile(name)->makeImporter();
    prepare(*importer, numbered(), m_folder, name, {});
    QVector<DefPolygon> objects;
    importer->map = &objects;
    Taker taker(objects);
    importer->observer = &taker;
    const StatusLog status;
    importer->importMap();
    QVERIFY(objects.isEmpty());
    QCOMPARE(describeAll(taker.taken),
        QStringLiteral("1 [1 0 0; 2 5 5]; 2 [1 0 0; 3 1 1]; 3 [1 0 0; 4 1 0; 3 1 1; 1 0 0]; "
                       "<null> [5 7 7; 6 8 8]"));
}

QTEST_GUILESS_MAIN(TestImportObserver)
#include "tst_importobserver.moc"
