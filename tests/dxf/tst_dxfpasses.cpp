#include "drawing.h"
#include "importrun.h"

#include <QtTest>

namespace {

/// The corners of a square as POINT entities, in the order of its contour.
const char* const cornerPoints = "0 POINT, 10 0, 20 0, 0 POINT, 10 100, 20 0, "
                                 "0 POINT, 10 100, 20 100, 0 POINT, 10 0, 20 100, ";
/// The labels of the corners, each near its own, and the label of the square.
const char* const squareTexts =
    "0 TEXT, 10 0.2, 20 0.3, 1 1, 72 0, 73 0, 0 TEXT, 10 100.1, 20 0.2, 1 2, 72 0, 73 0, "
    "0 TEXT, 10 100.2, 20 100.1, 1 3, 72 0, 73 0, 0 TEXT, 10 0.1, 20 100.3, 1 4, 72 0, 73 0, "
    "0 TEXT, 10 50, 20 50, 1 ЗУ1, 72 0, 73 0, ";
const char* const square =
    "0 LWPOLYLINE, 90 4, 70 1, 10 0, 20 0, 10 100, 20 0, 10 100, 20 100, 10 0, 20 100";

ImportOptions searching(bool pointDefs, bool objectDefs)
{
    ImportOptions options = numbered();
    options.searchPointDefs = pointDefs;
    options.searchObjectDefs = objectDefs;
    return options;
}

QStringList oneError(int line)
{
    return { readError(line) };
}

} // namespace

/// The passes over a drawing, and the designations that texts give to points and objects.
class TestDxfPasses : public QObject {
    Q_OBJECT

private:
    static void compare(const ImportOutcome& outcome, const char* objects)
    {
        QCOMPARE(outcome.messages, QStringList());
        QVERIFY(outcome.result);
        QCOMPARE(describeAll(outcome.objects), QString::fromUtf8(objects));
    }

    static void compareFailed(const ImportOutcome& outcome, int line, const char* objects)
    {
        QCOMPARE(outcome.messages, oneError(line));
        QVERIFY(!outcome.result);
        QCOMPARE(describeAll(outcome.objects), QString::fromUtf8(objects));
    }

private slots:
    void workedExample();
    void workedExampleWithoutPoints();
    void workedExampleWithoutTexts();
    void workedExampleWithoutObjectDesignations();
    void workedExampleWithoutPointDesignations();
    void workedExampleWithPointNumbersOnly();
    void workedExampleWithExchangedCoordinates();
    void workedExampleInTwoFiles();
    void pointPassOfWorkedExample();

    void headerOnlyGivesNothing();
    void headerLinesOnlyGiveNothing();
    void entitiesOutsideTheirSectionAreNotRead();
    void sectionNameIsTakenFromAnyCode();
    void sectionFlagLastsUntilTheNextSection();
    void sectionFlagOfLowerCaseName();
    void secondEntitiesSectionIsRead();
    void valuesThatLookLikeEntitiesAreNotRead();

    void coincidentPointsTakeOneText();
    void nearestTextAtAnyDistance();
    void oneTextNamesSeveralPoints();
    void pointsWithoutTextsHaveNoDesignation();
    void emptyTextNamesAPointWithNothing();
    void textWithoutItsLastLineNamesAPointWithNull();
    void pointTextIsTakenFromTheSecondAlignmentPoint();

    void oneTextNamesSeveralObjects();
    void objectTextAtAnyDistance();
    void emptyTextGivesAnAutomaticObjectDesignation();
    void lineIsNamedAtItsMiddle();
    void textsInFileOrderWhenThePointPassFoundNoPoint();
    void objectsTakePointNumbersWhereThereIsNothingElse();
    void filterIsNotRunWithoutObjectDesignations();

    void separatePointFile();
    void separatePointFileKeepsItsTextsFromObjects();
    void missingPointFileLeavesTheObjects();
    void missingObjectFile();
    void missingObjectFileAfterThePointPass();

    void stalePairOfThePointPassRefusesTheFile();
    void stalePairOfThePointFileRefusesTheObjectFile();
    void stalePairOfThePointFileStandsForTheFirstPair();
    void stalePairOfTheReloadIsHarmless();
    void textAtTheVeryEndLeavesNoStalePair();

    void failure_data();
    void failure();
    void failedReadAfterSection_data();
    void failedReadAfterSection();
    void skippingPairsMayEndTheFile();
    void lineNumbersRunOnAfterAReload();
    void lineNumbersDoNotRunOnWithoutAReload();
    void failedReloadGoesOnWhereItStopped();
    void failedReloadAtTheEndSucceeds();
    void failedReloadCanBeFollowedByAFailedPass();
    void failedReloadKeepsTheTextsInFileOrder();
    void withoutCallbackResultsStay();

    void pointsFromPolygons();
};

void TestDxfPasses::workedExample()
{
    const QByteArray entities = QByteArray(cornerPoints) + squareTexts + square;
    const ImportOutcome outcome =
        importDrawing(searching(true, true), drawing(entities.constData()));
    compare(outcome, "ЗУ1 [1 0 0; 2 100 0; 3 100 100; 4 0 100; 1 0 0]");
}

void TestDxfPasses::workedExampleWithoutPoints()
{
    const QByteArray entities = QByteArray(squareTexts) + square;
    const ImportOutcome outcome =
        importDrawing(searching(true, true), drawing(entities.constData()));
    compare(outcome, "ЗУ1 [1 0 0; 2 100 0; 3 100 100; 4 0 100; 1 0 0]");
}

void TestDxfPasses::workedExampleWithoutTexts()
{
    const QByteArray entities = QByteArray(cornerPoints) + square;
    const ImportOutcome outcome =
        importDrawing(searching(true, true), drawing(entities.constData()));
    compare(outcome, "1 [<null> 0 0; <null> 100 0; <null> 100 100; <null> 0 100; <null> 0 0]");
}

void TestDxfPasses::workedExampleWithoutObjectDesignations()
{
    const QByteArray entities = QByteArray(cornerPoints) + squareTexts + square;
    ImportOptions options = searching(true, false);
    options.objectPref = QStringLiteral(":ЗУ");
    options.objectStartNum = 7;
    const ImportOutcome outcome = importDrawing(options, drawing(entities.constData()));
    compare(outcome, ":ЗУ7 [1 0 0; 2 100 0; 3 100 100; 4 0 100; 1 0 0]");
}

void TestDxfPasses::workedExampleWithoutPointDesignations()
{
    const QByteArray entities = QByteArray(cornerPoints) + squareTexts + square;
    ImportOptions options = searching(false, true);
    options.pointPref = QStringLiteral("н");
    options.pointStartNum = 5;
    const ImportOutcome outcome = importDrawing(options, drawing(entities.constData()));
    compare(outcome, "ЗУ1 [н5 0 0; н6 100 0; н7 100 100; н8 0 100; н5 0 0]");
}

/// The text 3 is nearest to the centroid: the square's other corners are farther away by far.
void TestDxfPasses::workedExampleWithPointNumbersOnly()
{
    const QByteArray entities =
        QByteArray(cornerPoints) + "0 TEXT, 10 0, 20 0, 1 1, 0 TEXT, 10 99, 20 99, 1 3, " + square;
    const ImportOutcome outcome =
        importDrawing(searching(true, true), drawing(entities.constData()));
    // (100, 0) and (0, 100) are nearer to (99, 99), at distance 99.005, than to (0, 0).
    compare(outcome, "3 [1 0 0; 3 100 0; 3 100 100; 3 0 100; 1 0 0]");
}

void TestDxfPasses::workedExampleWithExchangedCoordinates()
{
    const QByteArray entities = QByteArray(cornerPoints) + squareTexts
        + "0 TEXT, 10 300, 20 0, 1 ЗУ2, 0 TEXT, 10 0, 20 300, 1 ЗУ3, " + square
        + ", 0 LINE, 10 300, 20 0, 11 310, 21 0";
    ImportOptions options = searching(true, true);
    options.swapXY = true;
    const ImportOutcome outcome = importDrawing(options, drawing(entities.constData()));
    compare(outcome, "ЗУ1 [1 0 0; 2 0 100; 3 100 100; 4 100 0; 1 0 0]; ЗУ2 [1 0 300; 2 0 310]");
}

void TestDxfPasses::workedExampleInTwoFiles()
{
    const QByteArray pointEntities =
        QByteArray(cornerPoints) + squareTexts + "0 TEXT, 10 50, 20 50.1, 1 ЗУ9";
    const QByteArray objectEntities = QByteArray("0 TEXT, 10 49, 20 50, 1 ЗУ1, ") + square;
    const ImportOutcome outcome = importDrawings(searching(true, true),
        encoded(drawing(objectEntities.constData())), encoded(drawing(pointEntities.constData())));
    compare(outcome, "ЗУ1 [1 0 0; 2 100 0; 3 100 100; 4 0 100; 1 0 0]");
}

void TestDxfPasses::pointPassOfWorkedExample()
{
    const TempFiles folder;
    const QByteArray entities = QByteArray(cornerPoints) + squareTexts + square;
    OpenDxfImport import;
    import.setEncoding("UTF-8");
    import.labels.append({ QStringLiteral("old"), 0, 0 });
    QVERIFY(import.open(
        folder.write(QStringLiteral("points.dxf"), encoded(drawing(entities.constData())))));
    QVERIFY(import.loadPoints());
    QCOMPARE(describeAll(pointsOf(import.points)),
        QStringLiteral("<null> 0 0; <null> 100 0; <null> 100 100; <null> 0 100"));
    QCOMPARE(describeAll(import.labels.texts()),
        QStringLiteral("1 0.2 0.3; 2 100.1 0.2; 3 100.2 100.1; 4 0.1 100.3; ЗУ1 50 50"));
    QVERIFY(!import.pairs.unread);
}

void TestDxfPasses::headerOnlyGivesNothing()
{
    const QStringList lines = pairs("0 SECTION, 2 HEADER, 9 $ACADVER, 1 AC1009, 0 ENDSEC, 0 EOF");
    for (const bool search : { false, true })
        compare(importDrawing(searching(search, search), lines), "");
}

void TestDxfPasses::headerLinesOnlyGiveNothing()
{
    for (const bool search : { false, true })
        compare(importDrawing(searching(search, search), pairs("0 SECTION, 2 HEADER")), "");
}

void TestDxfPasses::entitiesOutsideTheirSectionAreNotRead()
{
    const char* const entities = "0 POINT, 10 x, 0 TEXT, 0 LINE, 10 x, 0 POLYLINE, 0 LWPOLYLINE, ";
    const QByteArray before = QByteArray("0 SECTION, 2 HEADER, ") + entities
        + "0 ENDSEC, 0 SECTION, 2 TABLES, " + entities + "0 ENDSEC, 0 SECTION, 2 BLOCKS, "
        + entities + "0 ENDSEC, ";
    const QByteArray after =
        QByteArray("0 ENDSEC, 0 SECTION, 2 OBJECTS, ") + entities + "0 ENDSEC, 0 EOF";
    const QByteArray notation =
        before + "0 SECTION, 2 ENTITIES, 0 LINE, 10 0, 20 0, 11 1, 21 1, " + after;
    for (const bool search : { false, true }) {
        compare(importDrawing(searching(search, search), pairs(notation.constData())),
            "1 [1 0 0; 2 1 1]");
    }
}

void TestDxfPasses::sectionNameIsTakenFromAnyCode()
{
    const QStringList lines = pairs(
        "0 SECTION, 2 HEADER, 0 SECTION, 999 ENTITIES, 0 LINE, 10 0, 20 0, 11 1, 21 1, 0 EOF");
    for (const bool search : { false, true })
        compare(importDrawing(searching(search, search), lines), "1 [1 0 0; 2 1 1]");
}

void TestDxfPasses::sectionFlagLastsUntilTheNextSection()
{
    const QStringList lines = pairs("0 SECTION, 2 HEADER, 0 SECTION, 2 ENTITIES, 0 ENDSEC, "
                                    "0 EOF, 0 LINE, 10 0, 20 0, 11 1, 21 1, 0 SECTION, 2 OBJECTS, "
                                    "0 LINE, 10 0, 20 0, 11 1, 21 1");
    for (const bool search : { false, true })
        compare(importDrawing(searching(search, search), lines), "1 [1 0 0; 2 1 1]");
}

void TestDxfPasses::sectionFlagOfLowerCaseName()
{
    const QStringList lines = pairs("0 SECTION, 2 HEADER, 0 SECTION, 2 Entities, "
                                    "0 LINE, 10 0, 20 0, 11 1, 21 1, 0 ENDSEC, 0 EOF");
    compare(importDrawing(searching(true, true), lines), "");
}

void TestDxfPasses::secondEntitiesSectionIsRead()
{
    const QStringList lines = pairs("0 SECTION, 2 HEADER, 0 SECTION, 2 ENTITIES, "
                                    "0 LINE, 10 0, 20 0, 11 1, 21 1, 0 ENDSEC, "
                                    "0 SECTION, 2 BLOCKS, 0 ENDSEC, 0 SECTION, 2 ENTITIES, "
                                    "0 LINE, 10 1, 20 1, 11 2, 21 2, 0 ENDSEC, 0 EOF");
    compare(importDrawing(searching(true, true), lines), "1 [1 0 0; 2 1 1]; 2 [2 1 1; 3 2 2]");
}

void TestDxfPasses::valuesThatLookLikeEntitiesAreNotRead()
{
    compare(importDrawing(searching(true, true),
                drawing("0 ARC, 8 LINE, 1 SECTION, 2 POINT, 5 0, 6 LWPOLYLINE, 8 0")),
        "");
}

/// Two points within the tolerance are one, the first in order; its nearest text names both places.
void TestDxfPasses::coincidentPointsTakeOneText()
{
    compare(importDrawing(searching(true, false),
                drawing("0 POINT, 10 0.0078125, 20 0, 0 POINT, 10 0, 20 0, 0 TEXT, 10 0, 20 -1, "
                        "1 A, 0 TEXT, 10 1, 20 0, 1 B, 0 LINE, 10 0.0078125, 20 0, 11 0, 21 0")),
        "1 [A 0.0078125 0; A 0 0]");
}

void TestDxfPasses::nearestTextAtAnyDistance()
{
    compare(importDrawing(searching(true, false),
                drawing("0 POINT, 10 0, 20 0, 0 TEXT, 10 -1000000, 20 90000000, 1 далёкий, "
                        "0 LINE, 10 0, 20 0, 11 5, 21 5")),
        "1 [далёкий 0 0; 1 5 5]");
}

void TestDxfPasses::oneTextNamesSeveralPoints()
{
    compare(importDrawing(searching(true, false),
                drawing("0 POINT, 10 0, 20 0, 0 POINT, 10 5, 20 5, 0 TEXT, 10 2, 20 2, 1 7, "
                        "0 LINE, 10 0, 20 0, 11 5, 21 5")),
        "1 [7 0 0; 7 5 5]");
}

void TestDxfPasses::pointsWithoutTextsHaveNoDesignation()
{
    ImportOptions options = searching(true, true);
    options.pointPref = QStringLiteral("н");
    compare(importDrawing(options, drawing("0 POINT, 10 0, 20 0, 0 LINE, 10 0, 20 0, 11 5, 21 5")),
        "1 [<null> 0 0; н1 5 5]");
}

void TestDxfPasses::emptyTextNamesAPointWithNothing()
{
    compare(importDrawing(searching(true, true),
                drawing("0 POINT, 10 0, 20 0, 0 TEXT, 1 , 10 0, 20 0, "
                        "0 LINE, 10 0, 20 0, 11 5, 21 5")),
        "1 [ 0 0; 1 5 5]");
}

void TestDxfPasses::textWithoutItsLastLineNamesAPointWithNull()
{
    const QStringList lines = openDrawing("0 LINE, 10 0, 20 0, 11 5, 21 5, 0 POINT, 10 0, 20 0, "
                                          "0 TEXT, 10 0, 20 0")
        + QStringList{ QStringLiteral("1") };
    compare(importDrawing(searching(true, true), lines), "1 [<null> 0 0; 1 5 5]");
}

void TestDxfPasses::pointTextIsTakenFromTheSecondAlignmentPoint()
{
    compare(importDrawing(searching(true, false),
                drawing("0 POINT, 10 0, 20 0, 0 TEXT, 10 0, 20 0, 1 A, 72 1, 11 90, 21 90, "
                        "0 TEXT, 10 90, 20 90, 1 B, 73 1, 11 1, 21 1, "
                        "0 LINE, 10 0, 20 0, 11 5, 21 5")),
        "1 [B 0 0; 1 5 5]");
}

void TestDxfPasses::oneTextNamesSeveralObjects()
{
    compare(importDrawing(searching(false, true),
                drawing("0 TEXT, 10 0, 20 0, 1 ЗУ1, 0 LINE, 10 0, 20 0, 11 1, 21 1, "
                        "0 LINE, 10 5, 20 5, 11 6, 21 6")),
        "ЗУ1 [1 0 0; 2 1 1]; ЗУ1 [3 5 5; 4 6 6]");
}

void TestDxfPasses::objectTextAtAnyDistance()
{
    compare(importDrawing(searching(false, true),
                drawing("0 LINE, 10 0, 20 0, 11 1, 21 1, 0 TEXT, 10 -8e9, 20 7e8, 1 ЗУ1")),
        "ЗУ1 [1 0 0; 2 1 1]");
}

void TestDxfPasses::emptyTextGivesAnAutomaticObjectDesignation()
{
    compare(importDrawing(searching(false, true),
                drawing("0 TEXT, 10 0, 20 0, 1 , 0 TEXT, 10 9, 20 9, 1 ЗУ1, "
                        "0 LINE, 10 0, 20 0, 11 1, 21 1, 0 LINE, 10 8, 20 8, 11 9, 21 9")),
        "1 [1 0 0; 2 1 1]; ЗУ1 [3 8 8; 4 9 9]");
}

/// The middle (5, 0) is nearer to Б than to either end's own label.
void TestDxfPasses::lineIsNamedAtItsMiddle()
{
    compare(importDrawing(searching(false, true),
                drawing("0 TEXT, 10 0, 20 0, 1 А, 0 TEXT, 10 5, 20 4, 1 Б, "
                        "0 TEXT, 10 10, 20 0, 1 В, 0 LINE, 10 0, 20 0, 11 10, 21 0")),
        "Б [1 0 0; 2 10 0]");
}

/// Without points nothing sorts the texts, and the binary search takes them as they come.
void TestDxfPasses::textsInFileOrderWhenThePointPassFoundNoPoint()
{
    // The middle of the line is (5, 0). Б at (5, 0) stands on it, but before two texts on its left.
    const char* const entities = "0 TEXT, 10 5, 20 0, 1 Б, 0 TEXT, 10 0, 20 0, 1 А, "
                                 "0 TEXT, 10 4, 20 0, 1 В, 0 LINE, 10 0, 20 0, 11 10, 21 0, ";
    // Unsorted: the middle one, А, is less than 5, then В is less than 5: the lower bound is the
    // end. В is the one before it, at distance 1. А is 5 away in x, which ends the scan back.
    compare(importDrawing(searching(true, true), drawing(entities)), "В [1 0 0; 2 10 0]");
    // A reload sorts the texts.
    compare(importDrawing(searching(false, true), drawing(entities)), "Б [1 0 0; 2 10 0]");
    // So does the naming of points.
    const QByteArray withPoint = QByteArray(entities) + "0 POINT, 10 70, 20 70";
    compare(
        importDrawing(searching(true, true), drawing(withPoint.constData())), "Б [1 0 0; 2 10 0]");
}

void TestDxfPasses::objectsTakePointNumbersWhereThereIsNothingElse()
{
    compare(importDrawing(searching(false, true),
                drawing("0 TEXT, 10 0, 20 0, 1 1, 0 TEXT, 10 9, 20 9, 1 2, "
                        "0 LINE, 10 8, 20 8, 11 9, 21 9")),
        "2 [1 8 8; 2 9 9]");
}

void TestDxfPasses::filterIsNotRunWithoutObjectDesignations()
{
    const TempFiles folder;
    QVector<DefPolygon> objects;
    OpenDxfImport import;
    import.setEncoding("UTF-8");
    import.searchPointDefs = true;
    import.objectFileName = folder.write(QStringLiteral("objects.dxf"),
        encoded(drawing("0 TEXT, 10 0, 20 0, 1 7, 0 TEXT, 10 9, 20 9, 1 ЗУ1")));
    import.map = &objects;
    QVERIFY(import.importMap());
    QCOMPARE(describeAll(import.labels.texts()), QStringLiteral("7 0 0; ЗУ1 9 9"));
}

void TestDxfPasses::separatePointFile()
{
    const QByteArray pointFile = encoded(drawing("0 CIRCLE, 10 0, 20 0, 40 1, "
                                                 "0 INSERT, 10 10, 20 0, 0 TEXT, 10 1, 20 1, 1 к1, "
                                                 "0 TEXT, 10 11, 20 1, 1 к2"));
    const QByteArray objectFile =
        encoded(drawing("0 POINT, 10 5, 20 5, 0 TEXT, 10 5, 20 5, 1 никто, "
                        "0 LINE, 10 0, 20 0, 11 10, 21 0, 0 LINE, 10 5, 20 5, 11 0, 21 0"));
    compare(importDrawings(searching(true, false), objectFile, pointFile),
        "1 [к1 0 0; к2 10 0]; 2 [1 5 5; к1 0 0]");
}

void TestDxfPasses::separatePointFileKeepsItsTextsFromObjects()
{
    const QByteArray pointFile = encoded(drawing("0 POINT, 10 0, 20 0, 0 TEXT, 10 0, 20 0, 1 ЗУ9"));
    const QByteArray objectFile = encoded(drawing("0 LINE, 10 0, 20 0, 11 10, 21 0"));
    compare(importDrawings(searching(true, true), objectFile, pointFile), "1 [ЗУ9 0 0; 1 10 0]");
}

void TestDxfPasses::missingPointFileLeavesTheObjects()
{
    const TempFiles folder;
    const QString objectFile = folder.write(QStringLiteral("objects.dxf"),
        encoded(drawing("0 TEXT, 10 5, 20 0, 1 ЗУ1, "
                        "0 LINE, 10 0, 20 0, 11 10, 21 0")));
    const QString pointFile = folder.path(QStringLiteral("absent.dxf"));
    const ImportOutcome outcome =
        importFiles<DxfImport>(searching(true, true), objectFile, pointFile);
    QVERIFY(outcome.result);
    QCOMPARE(outcome.messages, QStringList{ QStringLiteral("Ошибка открытия файла ") + pointFile });
    QCOMPARE(describeAll(outcome.objects), QStringLiteral("ЗУ1 [1 0 0; 2 10 0]"));
}

void TestDxfPasses::missingObjectFile()
{
    const TempFiles folder;
    const QString message =
        QStringLiteral("Ошибка открытия файла ") + folder.path(QStringLiteral("absent.dxf"));
    for (const bool searchPointDefs : { false, true }) {
        const ImportOutcome outcome = importFiles<DxfImport>(
            searching(searchPointDefs, true), folder.path(QStringLiteral("absent.dxf")));
        QVERIFY(outcome.result);
        QStringList expected{ message };
        if (searchPointDefs)
            expected << message;
        QCOMPARE(outcome.messages, expected);
        QVERIFY(outcome.objects.isEmpty());
    }
}

void TestDxfPasses::missingObjectFileAfterThePointPass()
{
    const TempFiles folder;
    const QString pointFile =
        folder.write(QStringLiteral("points.dxf"), encoded(drawing("0 POINT, 10 0, 20 0")));
    const QString objectFile = folder.path(QStringLiteral("absent.dxf"));
    const ImportOutcome outcome =
        importFiles<DxfImport>(searching(true, true), objectFile, pointFile);
    QVERIFY(outcome.result);
    QCOMPARE(
        outcome.messages, QStringList{ QStringLiteral("Ошибка открытия файла ") + objectFile });
    QVERIFY(outcome.objects.isEmpty());
}

/// A text that only the file's last pair ends leaves that pair for the next pass, whose test of
/// the file then begins with it.
void TestDxfPasses::stalePairOfThePointPassRefusesTheFile()
{
    const TempFiles folder;
    for (const char* last : { "0 EOF", "0 ENDSEC", "0 SECTION" }) {
        const QByteArray entities =
            QByteArray("0 LINE, 10 0, 20 0, 11 1, 21 1, 0 TEXT, 10 0, 20 0, 1 а, ") + last;
        const QString fileName =
            folder.write(QStringLiteral("objects.dxf"), encoded(openDrawing(entities.constData())));
        const ImportOutcome outcome = importFiles<DxfImport>(searching(true, false), fileName);
        QVERIFY(!outcome.result);
        QCOMPARE(outcome.messages, QStringList{ formatError(fileName) });
        QVERIFY(outcome.objects.isEmpty());
    }
}

void TestDxfPasses::stalePairOfThePointFileRefusesTheObjectFile()
{
    const TempFiles folder;
    const QString pointFile = folder.write(
        QStringLiteral("points.dxf"), encoded(openDrawing("0 TEXT, 10 0, 20 0, 1 а, 0 EOF")));
    const QString objectFile = folder.write(
        QStringLiteral("objects.dxf"), encoded(drawing("0 LINE, 10 0, 20 0, 11 1, 21 1")));
    const ImportOutcome outcome =
        importFiles<DxfImport>(searching(true, true), objectFile, pointFile);
    QVERIFY(!outcome.result);
    QCOMPARE(outcome.messages, QStringList{ formatError(objectFile) });
}

/// The object file lacks its first pair, and the point file's last one stands in for it.
void TestDxfPasses::stalePairOfThePointFileStandsForTheFirstPair()
{
    const QByteArray pointFile =
        encoded(openDrawing("0 POINT, 10 0, 20 0, 0 TEXT, 10 0, 20 0, 1 а, 0 SECTION"));
    QStringList lines = drawing("0 LINE, 10 0, 20 0, 11 1, 21 1, 0 LINE, 10 x");
    lines = lines.mid(2);
    const ImportOutcome outcome = importDrawings(searching(true, false), encoded(lines), pointFile);
    // Lines 1 to 8 begin the file, the LINE takes 9 to 18, and the second one fails on line 22.
    compareFailed(outcome, 22, "1 [а 0 0; 1 1 1]");
}

/// After a reload the stale pair comes before the file's first one, where it means nothing.
void TestDxfPasses::stalePairOfTheReloadIsHarmless()
{
    for (const char* last : { "0 EOF", "0 LINE", "0 SECTION" }) {
        const QByteArray entities =
            QByteArray("0 LINE, 10 0, 20 0, 11 1, 21 1, 0 TEXT, 10 0, 20 0, 1 а, ") + last;
        const QStringList lines = openDrawing(entities.constData());
        const ImportOutcome outcome = importDrawing(searching(false, true), lines);
        QCOMPARE(describeAll(outcome.objects), QStringLiteral("а [1 0 0; 2 1 1]"));
        if (qstrcmp(last, "0 EOF") == 0) {
            QVERIFY(outcome.result);
            QVERIFY(outcome.messages.isEmpty());
            continue;
        }
        // The last pair fails in its own right: the reload has counted 30 lines, and the pass ends
        // after the same 30; a section's name would stand on the line after them.
        QVERIFY(!outcome.result);
        QCOMPARE(outcome.messages, oneError(qstrcmp(last, "0 LINE") == 0 ? 60 : 61));
    }
}

void TestDxfPasses::textAtTheVeryEndLeavesNoStalePair()
{
    compare(importDrawing(searching(true, true),
                openDrawing("0 LINE, 10 0, 20 0, 11 1, 21 1, 0 TEXT, 10 0, 20 0, 1 а")),
        "а [1 0 0; 2 1 1]");
}

void TestDxfPasses::failure_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<bool>("searchPointDefs");
    QTest::addColumn<int>("errorLine");
    QTest::addColumn<QString>("objects");
    const QString blank;
    const QString line = QStringLiteral("1 [1 0 0; 2 1 1]");
    const char* const oneLine = "0 LINE, 10 0, 20 0, 11 1, 21 1";

    // The whole drawing has 24 lines.
    QTest::newRow("blank line after EOF")
        << drawing(oneLine) + QStringList{ blank } << false << 25 << line;
    QTest::newRow("blank line after EOF, point pass")
        << drawing(oneLine) + QStringList{ blank } << true << 25 << QString();
    QTest::newRow("white line after EOF")
        << drawing(oneLine) + QStringList{ QStringLiteral(" \t") } << false << 25 << line;
    QTest::newRow("blank code line in the header, before the section")
        << pairs("0 SECTION, 2 HEADER") + QStringList{ blank } + drawing(oneLine) << false << 5
        << QString();
    QTest::newRow("blank code line in the header, point pass")
        << pairs("0 SECTION, 2 HEADER, 9 $ACADVER") + QStringList{ blank } + drawing(oneLine)
        << true << 7 << QString();
    QTest::newRow("blank code line after an entity")
        << openDrawing(oneLine) + QStringList{ blank } + pairs(oneLine) << false << 21 << line;
    QTest::newRow("blank code line among the pairs that are skipped") << openDrawing("0 ARC, 8 0")
            + QStringList{ blank } + pairs(oneLine) << true << 15 << QString();
    QTest::newRow("point") << drawing("0 POINT, 10 x") << true << 14 << QString();
    QTest::newRow("text") << drawing("0 TEXT, 10 1, 20 1, 0 LINE") << true << 18 << QString();
    QTest::newRow("polyline not ended")
        << drawing("0 POLYLINE, 0 VERTEX, 10 0, 20 0, 0 VERTEX, 10 1, 20 1") << false << 26
        << QStringLiteral("<null> [1 0 0; 2 1 1]");
    QTest::newRow("an object after the failure is not read")
        << drawing("0 LINE, 10 0, 20 0, 11 1, 21 1, 0 LINE, 10 x, 0 LINE, 10 0, 20 0, 11 1, 21 1")
        << false << 24 << line;
}

void TestDxfPasses::failure()
{
    QFETCH(QStringList, lines);
    QFETCH(bool, searchPointDefs);
    QFETCH(int, errorLine);
    QFETCH(QString, objects);
    const ImportOutcome outcome = importDrawing(searching(searchPointDefs, false), lines);
    compareFailed(outcome, errorLine, objects.toUtf8().constData());
}

void TestDxfPasses::failedReadAfterSection_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("errorLine");
    QTest::newRow("file ends") << pairs("0 SECTION, 2 HEADER, 0 ENDSEC, 0 SECTION") << 9;
    QTest::newRow("blank code line") << pairs("0 SECTION, 2 HEADER, 0 ENDSEC, 0 SECTION")
            + QStringList{ QString() } + pairs("2 ENTITIES, 0 EOF")
                                     << 9;
    QTest::newRow("file ends after an entity") << drawing("0 ARC, 8 0") + pairs("0 SECTION") << 21;
}

/// The name of a section that cannot be read is a failure of its own in each of the three scans.
void TestDxfPasses::failedReadAfterSection()
{
    QFETCH(QStringList, lines);
    QFETCH(int, errorLine);
    compareFailed(importDrawing(searching(true, true), lines), errorLine, "");
    compareFailed(importDrawing(searching(false, false), lines), errorLine, "");

    // The reload reports it; then either the file has ended, or the pass goes on behind it.
    const ImportOutcome reloaded = importDrawing(searching(false, true), lines);
    QVERIFY(reloaded.result);
    QCOMPARE(reloaded.messages, oneError(errorLine));
}

void TestDxfPasses::skippingPairsMayEndTheFile()
{
    for (const bool search : { false, true }) {
        compare(importDrawing(searching(search, search), openDrawing("0 ARC, 8 0, 62 7")), "");
        compare(
            importDrawing(searching(search, search), pairs("0 SECTION, 2 HEADER, 9 $A, 1 b")), "");
    }
}

/// The drawing has 36 lines: the reload counts them all, and the bad number on line 32 is the 68th.
void TestDxfPasses::lineNumbersRunOnAfterAReload()
{
    const QStringList lines = drawing("0 TEXT, 10 0, 20 0, 1 ЗУ1, 0 LINE, 10 0, 20 0, 11 1, 21 1, "
                                      "0 LINE, 10 x");
    QCOMPARE(lines.size(), 36);
    compareFailed(importDrawing(searching(false, true), lines), 36 + 32, "ЗУ1 [1 0 0; 2 1 1]");

    const QByteArray pointFile = encoded(drawing("0 POINT, 10 0, 20 0, 0 TEXT, 10 0, 20 0, 1 а"));
    compareFailed(importDrawings(searching(true, true), encoded(lines), pointFile), 36 + 32,
        "ЗУ1 [а 0 0; 1 1 1]");
}

void TestDxfPasses::lineNumbersDoNotRunOnWithoutAReload()
{
    const QStringList lines = drawing("0 TEXT, 10 0, 20 0, 1 ЗУ1, 0 LINE, 10 0, 20 0, 11 1, 21 1, "
                                      "0 LINE, 10 x");
    compareFailed(importDrawing(searching(true, true), lines), 32, "ЗУ1 [1 0 0; 2 1 1]");
    compareFailed(importDrawing(searching(true, false), lines), 32, "1 [1 0 0; 2 1 1]");
    compareFailed(importDrawing(searching(false, false), lines), 32, "1 [1 0 0; 2 1 1]");
}

/// The reload stops in the section of entities, so that the pass, which starts behind that place,
/// is in no section until the next one begins.
void TestDxfPasses::failedReloadGoesOnWhereItStopped()
{
    const QStringList lines = openDrawing("0 TEXT, 10 5, 20 5, 1 ЗУ1, 0 TEXT, 10 x, 20 0, 1 ЗУ2, "
                                          "0 LINE, 10 0, 20 0, 11 1, 21 1, 0 ENDSEC")
        + pairs("0 SECTION, 2 ENTITIES, 0 LINE, 10 2, 20 2, 11 3, 21 3, 0 ENDSEC, 0 EOF");
    const ImportOutcome outcome = importDrawing(searching(false, true), lines);
    QVERIFY(outcome.result);
    // The bad text stands on lines 19 to 26; it is judged at the 0 of the LINE.
    QCOMPARE(outcome.messages, oneError(28));
    QCOMPARE(describeAll(outcome.objects), QStringLiteral("ЗУ1 [1 2 2; 2 3 3]"));
}

void TestDxfPasses::failedReloadAtTheEndSucceeds()
{
    const QStringList lines = openDrawing("0 LINE, 10 0, 20 0, 11 1, 21 1, 0 TEXT, 10 5, 20 5");
    const ImportOutcome outcome = importDrawing(searching(false, true), lines);
    QVERIFY(outcome.result);
    QCOMPARE(outcome.messages, oneError(26));
    QVERIFY(outcome.objects.isEmpty());
}

void TestDxfPasses::failedReloadCanBeFollowedByAFailedPass()
{
    const QStringList lines = openDrawing("0 ARC") + QStringList{ QString() }
        + pairs("0 SECTION, 2 ENTITIES, 0 LINE, 10 x");
    const ImportOutcome outcome = importDrawing(searching(false, true), lines);
    QVERIFY(!outcome.result);
    QCOMPARE(outcome.messages, oneError(13) + oneError(21));
}

/// As in textsInFileOrderWhenThePointPassFoundNoPoint: no sort either when the reload has failed.
void TestDxfPasses::failedReloadKeepsTheTextsInFileOrder()
{
    const QStringList lines = openDrawing("0 TEXT, 10 5, 20 0, 1 Б, 0 TEXT, 10 0, 20 0, 1 А, "
                                          "0 TEXT, 10 4, 20 0, 1 В, 0 ARC")
        + QStringList{ QString() }
        + pairs("0 SECTION, 2 ENTITIES, 0 LINE, 10 0, 20 0, 11 10, 21 0, 0 EOF");
    const ImportOutcome outcome = importDrawing(searching(false, true), lines);
    QVERIFY(outcome.result);
    QCOMPARE(outcome.messages, oneError(37));
    QCOMPARE(describeAll(outcome.objects), QStringLiteral("В [1 0 0; 2 10 0]"));
}

void TestDxfPasses::withoutCallbackResultsStay()
{
    const TempFiles folder;
    QVector<DefPolygon> objects;
    DxfImport import;
    import.objectFileName = folder.write(QStringLiteral("objects.dxf"),
        encoded(drawing("0 LINE, 10 0, 20 0, 11 1, 21 1, 0 LINE, 10 x")));
    import.pointStartNum = 1;
    import.objectStartNum = 1;
    import.map = &objects;
    QVERIFY(!import.importMap());
    QCOMPARE(describeAll(objects), QStringLiteral("1 [1 0 0; 2 1 1]"));
}

void TestDxfPasses::pointsFromPolygons()
{
    const auto point = [](const char* def, double x, double y) {
        return DefPoint{ QString::fromUtf8(def), x, y };
    };
    QVector<DefPolygon> objects(3);
    objects[0].contours = { { point("а", 5, 5), point("б", 1, 1) }, { point("в", 1, 0) } };
    objects[2].contours = { {}, { point("г", 5.0078125, 5), point("д", 5.015625, 5) } };

    OpenDxfImport import;
    import.map = &objects;
    import.points.append(point("е", 3, 3));
    import.points.append(point("ж", 1, 0.9921875));
    import.pointsFromPolygons();
    // ж and б, and then а and г, stand at one place; д is within reach of г alone.
    QCOMPARE(describeAll(pointsOf(import.points)),
        QStringLiteral("в 1 0; ж 1 0.9921875; е 3 3; а 5 5; д 5.015625 5"));

    objects.clear();
    OpenDxfImport empty;
    empty.map = &objects;
    empty.pointsFromPolygons();
    QVERIFY(empty.points.isEmpty());
}

QTEST_GUILESS_MAIN(TestDxfPasses)
#include "tst_dxfpasses.moc"
