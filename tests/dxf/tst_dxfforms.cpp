#include "drawing.h"
#include "importrun.h"

#include <QtTest>

namespace {

/// Entities of all kinds that are read, far away from those that are to be read, with designations
/// of their own.
const char* const blockEntities =
    "0 BLOCK, 8 0, 2 ЗНАК, 70 2, 10 0.0, 20 0.0, 30 0.0, 3 ЗНАК, "
    "0 POINT, 8 0, 10 0.0, 20 0.0, 30 0.0, 0 CIRCLE, 8 0, 10 0.0, 20 0.0, 30 0.0, 40 1.5, "
    "0 TEXT, 8 0, 10 0.0, 20 0.0, 30 0.0, 40 2.5, 1 БЛОК, "
    "0 ATTDEF, 8 0, 10 0.0, 20 0.0, 30 0.0, 40 2.5, 1 0, 3 номер, 2 N, 70 0, "
    "0 LINE, 8 0, 10 0.0, 20 0.0, 30 0.0, 11 1.0, 21 1.0, 31 0.0, "
    "0 POLYLINE, 8 0, 66 1, 10 0.0, 20 0.0, 30 0.0, 70 1, 0 VERTEX, 8 0, 10 0.0, 20 0.0, 30 0.0, "
    "0 VERTEX, 8 0, 10 1.0, 20 0.0, 30 0.0, 0 SEQEND, 8 0, "
    "0 LWPOLYLINE, 8 0, 90 2, 70 1, 10 0.0, 20 0.0, 10 1.0, 20 0.0, 0 ENDBLK, 8 0, ";

QByteArray join(std::initializer_list<const char*> parts)
{
    QByteArray all;
    for (const char* part : parts)
        all += part;
    return all;
}

/// A drawing as the oldest programs still write it: polylines with VERTEX entities, points as
/// inserted blocks with their number as an attribute.
QStringList oldDrawing()
{
    return pairs(join(
        { "0 SECTION, 2 HEADER, 9 $ACADVER, 1 AC1009, 9 $INSBASE, 10 0.0, 20 0.0, "
          "30 0.0, 9 $EXTMIN, 10 -1.0, 20 -1.0, 30 0.0, 9 $EXTMAX, 10 101.0, "
          "20 51.0, 30 0.0, 9 $LTSCALE, 40 1.0, 9 $ATTMODE, 70 1, 9 $TEXTSTYLE, "
          "7 STANDARD, 9 $CLAYER, 8 0, 9 $DWGCODEPAGE, 3 dos866, 0 ENDSEC, ",
            "0 SECTION, 2 TABLES, 0 TABLE, 2 LTYPE, 70 1, 0 LTYPE, 2 CONTINUOUS, 70 0, 3 Solid "
            "line, "
            "72 65, 73 0, 40 0.0, 0 ENDTAB, 0 TABLE, 2 LAYER, 70 2, 0 LAYER, 2 0, 70 0, 62 7, "
            "6 CONTINUOUS, 0 LAYER, 2 ГРАНИЦА, 70 0, 62 1, 6 CONTINUOUS, 0 ENDTAB, 0 TABLE, 2 "
            "VPORT, "
            "70 1, 0 VPORT, 2 *ACTIVE, 70 0, 10 0.0, 20 0.0, 11 1.0, 21 1.0, 0 ENDTAB, 0 ENDSEC, ",
            "0 SECTION, 2 BLOCKS, ", blockEntities, "0 ENDSEC, 0 SECTION, 2 ENTITIES, ",
            "0 INSERT, 8 ГРАНИЦА, 66 1, 2 ЗНАК, 10 1000.0, 20 2000.0, 30 0.0, 41 2.0, 50 90.0, "
            "0 ATTRIB, 8 0, 10 1000.0, 20 2000.0, 30 0.0, 40 2.5, 1 атрибут, 2 N, 70 0, "
            "0 SEQEND, 8 0, ",
            "0 CIRCLE, 8 ГРАНИЦА, 10 1100.0, 20 2000.0, 30 0.0, 40 0.5, ",
            "0 POINT, 8 ГРАНИЦА, 10 1100.0, 20 2050.0, 30 0.0, 50 45.0, ",
            "0 TEXT, 8 0, 10 1001.0, 20 2001.0, 30 0.0, 40 2.5, 1 н1, 7 STANDARD, ",
            // Centred: the point that counts is 11, 21, near the circle.
            "0 TEXT, 8 0, 10 1090.0, 20 2049.0, 30 0.0, 40 2.5, 1 н2, 72 1, 11 1101.0, 21 2001.0, "
            "31 0.0, ",
            // Top left: 10, 20 lies near the circle.
            "0 TEXT, 8 0, 10 1100.0, 20 2000.1, 30 0.0, 40 2.5, 1 н3, 50 0.0, 73 3, 11 1101.0, "
            "21 2051.0, 31 0.0, ",
            "0 TEXT, 8 0, 10 1060.0, 20 2020.0, 30 0.0, 40 5.0, 1 :ЗУ1, ",
            "0 POLYLINE, 5 2A, 8 ГРАНИЦА, 66 1, 10 0.0, 20 0.0, 30 0.0, 70 1, 40 0.0, 41 0.0, ",
            "0 VERTEX, 5 2B, 8 ГРАНИЦА, 10 1000.0, 20 2000.0, 30 0.0, 42 0.5, 70 0, ",
            "0 VERTEX, 5 2C, 8 ГРАНИЦА, 10 1100.0, 20 2000.0, 30 0.0, ",
            "0 VERTEX, 5 2D, 8 ГРАНИЦА, 10 1100.0, 20 2050.0, 30 0.0, ",
            "0 VERTEX, 5 2E, 8 ГРАНИЦА, 10 1000.0, 20 2050.0, 30 0.0, 0 SEQEND, 8 ГРАНИЦА, ",
            "0 SOLID, 8 0, 10 1.0, 20 1.0, 11 2.0, 21 1.0, 12 1.0, 22 2.0, 13 2.0, 23 2.0, ",
            "0 ENDSEC, 0 EOF" })
                     .constData());
}

/// A drawing of later programs: handles, owners, subclass markers, extrusions, and sections of
/// classes and objects.
QStringList laterDrawing()
{
    return pairs(join(
        { "0 SECTION, 2 HEADER, 9 $ACADVER, 1 AC1015, 9 $ACADMAINTVER, 70 6, "
          "9 $DWGCODEPAGE, 3 ANSI_1251, 9 $INSBASE, 10 0.0, 20 0.0, 30 0.0, "
          "9 $EXTMIN, 10 1e+20, 20 1e+20, 30 1e+20, 9 $HANDSEED, 5 20000, 0 ENDSEC, ",
            "0 SECTION, 2 CLASSES, 0 CLASS, 1 ACDBDICTIONARYWDFLT, 2 AcDbDictionaryWithDefault, "
            "3 ObjectDBX Classes, 90 0, 280 0, 281 0, 0 ENDSEC, ",
            "0 SECTION, 2 TABLES, 0 TABLE, 2 BLOCK_RECORD, 5 1, 330 0, 100 AcDbSymbolTable, 70 1, "
            "0 BLOCK_RECORD, 5 1F, 330 1, 100 AcDbSymbolTableRecord, 100 AcDbBlockTableRecord, "
            "2 *Model_Space, 340 22, 0 ENDTAB, 0 ENDSEC, 0 SECTION, 2 BLOCKS, ",
            blockEntities, "0 ENDSEC, 0 SECTION, 2 ENTITIES, ",
            "0 POINT, 5 50, 330 1F, 100 AcDbEntity, 8 0, 100 AcDbPoint, 10 10.5, 20 20.25, 30 0.0, "
            "210 0.0, 220 0.0, 230 1.0, ",
            "0 ELLIPSE, 5 51, 330 1F, 100 AcDbEntity, 8 0, 100 AcDbEllipse, 10 30.5, 20 20.25, 30 "
            "0.0, "
            "11 1.0, 21 0.0, 31 0.0, 210 0.0, 220 0.0, 230 1.0, 40 1.0, 41 0.0, 42 6.28, ",
            "0 TEXT, 5 52, 330 1F, 100 AcDbEntity, 8 0, 100 AcDbText, 10 10.6, 20 20.25, 30 0.0, "
            "40 2.5, 1 А1, 100 AcDbText, ",
            "0 TEXT, 5 53, 330 1F, 100 AcDbEntity, 8 0, 100 AcDbText, 10 0.0, 20 0.0, 30 0.0, "
            "40 2.5, 1 2, 72 4, 11 30.6, 21 20.25, 31 0.0, 210 0.0, 220 0.0, 230 -1.0, 100 "
            "AcDbText, "
            "73 2, ",
            "0 TEXT, 5 54, 330 1F, 100 AcDbEntity, 8 0, 100 AcDbText, 10 20.0, 20 26.0, 30 0.0, "
            "40 2.5, 1 50:21:0101%%c, 100 AcDbText, ",
            "0 MTEXT, 5 55, 330 1F, 100 AcDbEntity, 8 0, 100 AcDbMText, 10 20.0, 20 24.0, 30 0.0, "
            "40 2.5, 41 10.0, 71 5, 72 1, 3 начало, 1 конец, ",
            "0 ATTRIB, 5 56, 330 1F, 100 AcDbEntity, 8 0, 100 AcDbText, 10 20.0, 20 24.0, 30 0.0, "
            "40 2.5, 1 атрибут, 100 AcDbAttribute, 2 N, 70 0, ",
            "0 LWPOLYLINE, 5 57, 102 {ACAD_REACTORS, 330 9, 102 }, 330 1F, 100 AcDbEntity, 8 0, "
            "6 ByBlock, 100 AcDbPolyline, 90 4, 70 129, 43 0.0, 38 5.0, 39 1.0, 10 10.5, 20 20.25, "
            "42 0.4142, 10 30.5, 20 20.25, 10 30.5, 20 30.25, 91 0, 10 10.5, 20 30.25, "
            "210 0.0, 220 0.0, 230 -1.0, 1001 APP, 1000 данные, 1040 10.0, ",
            "0 LINE, 5 58, 330 1F, 100 AcDbEntity, 8 0, 100 AcDbLine, 10 30.5, 20 20.25, 30 0.0, "
            "11 10.5, 21 20.25, 31 0.0, 210 0.0, 220 0.0, 230 1.0, ",
            "0 HATCH, 5 59, 330 1F, 100 AcDbEntity, 8 0, 100 AcDbHatch, 10 0.0, 20 0.0, 30 0.0, "
            "2 SOLID, 70 1, 71 0, 91 1, 92 7, 72 0, 73 1, 93 2, 10 1.0, 20 1.0, 10 2.0, 20 2.0, ",
            "0 ENDSEC, 0 SECTION, 2 OBJECTS, 0 DICTIONARY, 5 C, 330 0, 100 AcDbDictionary, 281 1, "
            "3 ACAD_GROUP, 350 D, 0 TEXT, 10 20.0, 20 25.0, 1 не текст, 0 LINE, 10 0.0, 20 0.0, "
            "11 1.0, 21 1.0, 0 ENDSEC, 0 SECTION, 2 THUMBNAILIMAGE, 90 4, 310 00FF00FF, 0 ENDSEC, "
            "0 EOF" })
                     .constData());
}

} // namespace

/// Whole drawings in the forms in which programs write them.
class TestDxfForms : public QObject {
    Q_OBJECT

private slots:
    void drawing_data();
    void drawing();
};

void TestDxfForms::drawing_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QByteArray>("encoding");
    QTest::addColumn<QString>("named");
    QTest::addColumn<QString>("numbered");

    const QString oldNamed =
        QStringLiteral(":ЗУ1 [н1 1000 2000; н2 1100 2000; н3 1100 2050; 1 1000 2050; "
                       "н1 1000 2000]");
    const QString oldNumbered =
        QStringLiteral("1 [1 1000 2000; 2 1100 2000; 3 1100 2050; 4 1000 2050; 1 1000 2000]");
    for (const char* encoding : { "IBM866", "Windows-1251", "UTF-8" }) {
        QTest::addRow("old drawing in %s", encoding)
            << oldDrawing() << QByteArray(encoding) << oldNamed << oldNumbered;
    }

    // The line lies below the label of the parcel as well: it takes that label too.
    const QString laterNamed = QStringLiteral("50:21:0101Ø [А1 10.5 20.25; 2 30.5 20.25; "
                                              "1 30.5 30.25; 2 10.5 30.25; А1 10.5 20.25]; "
                                              "50:21:0101Ø [2 30.5 20.25; А1 10.5 20.25]");
    const QString laterNumbered = QStringLiteral("1 [1 10.5 20.25; 2 30.5 20.25; 3 30.5 30.25; "
                                                 "4 10.5 30.25; 1 10.5 20.25]; "
                                                 "2 [2 30.5 20.25; 1 10.5 20.25]");
    for (const char* encoding : { "Windows-1251", "UTF-8" }) {
        QTest::addRow("later drawing in %s", encoding)
            << laterDrawing() << QByteArray(encoding) << laterNamed << laterNumbered;
    }
}

void TestDxfForms::drawing()
{
    QFETCH(QStringList, lines);
    QFETCH(QByteArray, encoding);
    QFETCH(QString, named);
    QFETCH(QString, numbered);
    for (const QStringList& form : { lines, rightAligned(lines) }) {
        for (const LineEnd lineEnd : { LineEnd::Lf, LineEnd::CrLf }) {
            const QByteArray file = encoded(form, encoding.constData(), lineEnd);
            ImportOptions options = ::numbered();
            options.encoding = encoding;
            const ImportOutcome plain = importDrawing(options, file);
            QCOMPARE(plain.messages, QStringList());
            QVERIFY(plain.result);
            QCOMPARE(describeAll(plain.objects), numbered);

            options.searchPointDefs = true;
            options.searchObjectDefs = true;
            const ImportOutcome searched = importDrawing(options, file);
            QCOMPARE(searched.messages, QStringList());
            QVERIFY(searched.result);
            QCOMPARE(describeAll(searched.objects), named);

            const ImportOutcome inTwoFiles = importDrawings(options, file, file);
            QCOMPARE(inTwoFiles.messages, QStringList());
            QCOMPARE(describeAll(inTwoFiles.objects), named);
        }
    }
}

QTEST_GUILESS_MAIN(TestDxfForms)
#include "tst_dxfforms.moc"
