// Preparation as a step of other things: before an import, and behind another program.

#include "commandrun.h"
#include "prepared.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QStandardPaths>
#include <QTest>

namespace {

const QByteArray header = "0\nSECTION\n2\nHEADER\n0\nENDSEC\n";
const QByteArray entities = "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\na\n10\n1\n20\n2\n11\n3\n21\n4\n";
const QByteArray end = "0\nENDSEC\n0\nEOF\n";

/// Two objects, of which the second column holds the designations.
const QByteArray geoJson = R"({"type":"FeatureCollection","features":[
{"type":"Feature","properties":{"code":7,"Имя":"ЗУ1"},"geometry":{"type":"Polygon",
"coordinates":[[[0,0],[4,0],[4,4],[0,0]]]}},
{"type":"Feature","properties":{"code":8,"Имя":"ЗУ2"},"geometry":{"type":"LineString",
"coordinates":[[10,0],[14,0],[14,4]]}}]})";

/// A program that stands for ogr2ogr: it writes the MIF layers named, or fails.
QByteArray standIn(const QByteArray& body)
{
    return "#!/bin/sh\nfor last; do input=$target; target=$last; done\ntarget=$input\n" + body;
}

void install(const TempFiles& files, const QByteArray& program)
{
    QDir(files.path(QString())).mkdir(QStringLiteral("bin"));
    const QString name = files.write(QStringLiteral("bin/ogr2ogr"), program);
    QFile::setPermissions(name, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

CommandRun prepareShape(const TempFiles& files, const char* options = "")
{
    files.write(QStringLiteral("a.shp"), "shape");
    return runShell(QStringLiteral("PATH=\"$PWD/bin:$PATH\" \"$CLI\" prepare a.shp -o b.mif ")
            + QString::fromLatin1(options),
        files.path(QString()));
}

} // namespace

class TestPrepareSteps : public QObject {
    Q_OBJECT

private slots:
    void convertPrepared();
    void convertTellsLosses();
    void convertManyFiles();
    void convertUsage();
    void pipe();
    void controlCharacters();
    void foreignFiles_data();
    void foreignFiles();
    void foreignProgramMissing();
    void foreignProgramFails();
    void foreignLayers();
    void foreignTarget();
};

void TestPrepareSteps::convertPrepared()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), "999\nx\n" + header + entities + end);
    files.write(QStringLiteral("b.dxf"), header + entities + end);
    QCOMPARE(runCommand(words({ "convert", "a.dxf" }), files.path(QString())).status, 1);
    const CommandRun run =
        runCommand(words({ "convert", "a.dxf", "--prepare" }), files.path(QString()));
    QCOMPARE(run.status, 0);
    QCOMPARE(run.errorLines(),
        QStringList{ QStringLiteral("a.dxf: исправлено: убраны комментарии (код 999): 1") });
    QCOMPARE(run.out, runCommand(words({ "convert", "b.dxf" }), files.path(QString())).out);
}

void TestPrepareSteps::convertTellsLosses()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), header + entities + "0\nBODY\n8\na\n" + end);
    const CommandRun run = runCommand(
        words({ "convert", "a.dxf", "--prepare", "-o", "a.xml" }), files.path(QString()));
    QCOMPARE(run.status, 3);
    QCOMPARE(run.errorLines(),
        QStringList{ QStringLiteral("a.dxf: не перенесено: этот вид объектов не переводится: 1") });
    QVERIFY(contentOf(files.path(QStringLiteral("a.xml"))).contains("<Cell>3.00</Cell>"));
}

void TestPrepareSteps::convertManyFiles()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), header + entities + "0\nBODY\n8\na\n" + end);
    files.write(QStringLiteral("b.dxf"), "999\nx\n" + header + entities + end);
    const CommandRun run = runCommand(
        words({ "convert", "a.dxf", "b.dxf", "--prepare", "--level=repair", "--out-dir", "." }),
        files.path(QString()));
    QCOMPARE(run.status, 0);
    QVERIFY(run.err.contains(QStringLiteral("b.dxf: записано в ./b.xml\n")));
    QVERIFY(run.err.contains(QStringLiteral("Всего файлов: 2, записано: 2, с ошибками: 0\n")));
    const CommandRun lossy =
        runCommand(words({ "convert", "a.dxf", "b.dxf", "--prepare", "--out-dir", "." }),
            files.path(QString()));
    QCOMPARE(lossy.status, 3);
    QVERIFY(lossy.err.contains(QStringLiteral("a.dxf: записано в ./a.xml, не всё\n")));
}

void TestPrepareSteps::convertUsage()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), header + entities + end);
    const CommandRun run =
        runCommand(words({ "convert", "a.dxf", "--swap-xy" }), files.path(QString()));
    QCOMPARE(run.status, 2);
    QCOMPARE(run.errorLines().value(0),
        QStringLiteral("importgeometry: --swap-xy действует только с --prepare"));
}

void TestPrepareSteps::pipe()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), "999\nx\n" + header + entities + end);
    const CommandRun piped =
        runShell(QStringLiteral("cat a.dxf | \"$CLI\" prepare - --format dxf --level repair -o -"),
            files.path(QString()));
    QCOMPARE(piped.status, 0);
    QCOMPARE(piped.out, header + entities + end);
    const CommandRun named = runShell(
        QStringLiteral("mkfifo p.dxf; \"$CLI\" prepare p.dxf -o b.dxf"), files.path(QString()));
    QCOMPARE(named.status, 1);
    QVERIFY(named.err.contains(QStringLiteral("это именованный канал")));
}

void TestPrepareSteps::controlCharacters()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), header + "0\nSECTION\n2\nENTITIES\n0\nBO\x1B[2J\n" + end);
    const CommandRun run =
        runCommand(words({ "prepare", "a.dxf", "-o", "b.dxf", "--json" }), files.path(QString()));
    QCOMPARE(run.status, 3);
    QVERIFY(!run.err.contains(QChar(0x1B)));
    QVERIFY(run.err.contains(QStringLiteral("BO␛[2J: 1")));
    QVERIFY(!run.out.contains('\x1B'));
}

void TestPrepareSteps::foreignFiles_data()
{
    QTest::addColumn<QString>("driver");
    QTest::addColumn<QString>("name");
    QTest::newRow("GeoJSON") << QString() << QStringLiteral("a.geojson");
    QTest::newRow("GeoPackage") << QStringLiteral("GPKG") << QStringLiteral("b.gpkg");
    QTest::newRow("GML") << QStringLiteral("GML") << QStringLiteral("b.gml");
}

void TestPrepareSteps::foreignFiles()
{
    QFETCH(QString, driver);
    QFETCH(QString, name);
    if (QStandardPaths::findExecutable(QStringLiteral("ogr2ogr")).isEmpty())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    const TempFiles files;
    files.write(QStringLiteral("a.geojson"), geoJson);
    const QString folder = files.path(QString());
    if (!driver.isEmpty())
        QCOMPARE(
            runShell(QStringLiteral("ogr2ogr -f %1 %2 a.geojson").arg(driver, name), folder).status,
            0);
    const QStringList before = QDir(folder).entryList(QDir::Files, QDir::Name);
    const CommandRun run =
        runCommand(QStringList{ QStringLiteral("convert"), name, QStringLiteral("--prepare"),
                       QStringLiteral("--name-field"), QStringLiteral("Имя") },
            folder);
    QCOMPARE(run.errorLines(),
        QStringList{
            name + QStringLiteral(": исправлено: файл переведён в MIF программой ogr2ogr: 1") });
    QCOMPARE(run.status, 0);
    QCOMPARE(run.out.count("<Cell>ЗУ1</Cell>"), 1);
    QCOMPARE(run.out.count("<Cell>ЗУ2</Cell>"), 1);
    QCOMPARE(run.out.count("<Cell>14.00</Cell>"), 2);
    // The program leaves nothing beside its input.
    QCOMPARE(QDir(folder).entryList(QDir::Files, QDir::Name), before);
}

void TestPrepareSteps::foreignProgramMissing()
{
    const TempFiles files;
    files.write(QStringLiteral("a.shp"), "shape");
    const CommandRun run = runShell(
        QStringLiteral("PATH=/nowhere; \"$CLI\" prepare a.shp -o b.mif"), files.path(QString()));
    QCOMPARE(run.status, 1);
    QCOMPARE(run.errorLines(),
        QStringList{ QStringLiteral("a.shp: этот формат читается программой ogr2ogr, а её нет; её "
                                    "приносит пакет gdal-bin") });
}

void TestPrepareSteps::foreignProgramFails()
{
    const TempFiles files;
    install(files, standIn("echo 'ERROR 1: no such thing' >&2\necho hint >&2\nexit 1\n"));
    const CommandRun run = prepareShape(files);
    QCOMPARE(run.status, 1);
    QCOMPARE(run.errorLines(),
        QStringList{
            QStringLiteral("a.shp: программа ogr2ogr не прочитала файл: ERROR 1: no such thing") });
    QVERIFY(!QFile::exists(files.path(QStringLiteral("b.mif"))));
}

void TestPrepareSteps::foreignLayers()
{
    const TempFiles files;
    install(files,
        standIn("mkdir \"$target\"\nfor layer in roads lots; do printf 'Version 300\\nCharset "
                "\"Neutral\"\\nDelimiter \",\"\\nColumns 1\\n  a Char(9)\\nData\\nLine 0 0 1 1\\n' "
                ">\"$target/$layer.mif\"; echo '\"'$layer'\"' >\"$target/$layer.mid\"; done\n"));
    const CommandRun several = prepareShape(files);
    QCOMPARE(several.status, 1);
    QCOMPARE(several.errorLines(),
        QStringList{ QStringLiteral("a.shp: в файле несколько слоёв: lots, roads; выберите один из "
                                    "них: --layers ИМЯ") });
    QCOMPARE(prepareShape(files, "--layers 'LO*'").status, 0);
    QCOMPARE(contentOf(files.path(QStringLiteral("b.mid"))), QByteArray("\"lots\"\n"));
    QCOMPARE(prepareShape(files, "--skip-layers lots").status, 0);
    QCOMPARE(contentOf(files.path(QStringLiteral("b.mid"))), QByteArray("\"roads\"\n"));
    QCOMPARE(prepareShape(files, "--layers none").status, 1);
}

void TestPrepareSteps::foreignTarget()
{
    const TempFiles files;
    files.write(QStringLiteral("a.shp"), "shape");
    const CommandRun run =
        runCommand(words({ "prepare", "a.shp", "-o", "b.dxf" }), files.path(QString()));
    QCOMPARE(run.status, 2);
    QCOMPARE(run.errorLines().value(0),
        QStringLiteral(
            "importgeometry: a.shp: из этого файла получается MIF; укажите -o ФАЙЛ.mif"));
}

QTEST_GUILESS_MAIN(TestPrepareSteps)
#include "tst_preparesteps.moc"
