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
{"type":"Feature","properties":{"code":7,"Имя":"ЗУ1","area":8},"geometry":{"type":"Polygon",
"coordinates":[[[0,0],[4,0],[4,4],[0,0]]]}},
{"type":"Feature","properties":{"code":8,"Имя":"ЗУ2","area":0},"geometry":{"type":"LineString",
"coordinates":[[10,0],[14,0],[14,4]]}}]})";

/// An object whose columns have such names and values as MIF has not.
const QByteArray oddColumns =
    "{\"type\":\"FeatureCollection\",\"features\":[{\"type\":\"Feature\",\"properties\":"
    "{\"code\":7,\"tags\":[\"x\",\"y\"],\"a \\\"b\\\", c\":\"q\",\"Имя участка\":\"ЗУ1\"},"
    "\"geometry\":{\"type\":\"Point\",\"coordinates\":[1,2]}}]}";

bool hasPrograms()
{
    return !QStandardPaths::findExecutable(QStringLiteral("ogr2ogr")).isEmpty();
}

void install(const TempFiles& files, const QString& name, const QByteArray& body)
{
    QDir(files.path(QString())).mkdir(QStringLiteral("bin"));
    const QString path = files.write(QStringLiteral("bin/") + name, "#!/bin/sh\n" + body);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

/// Programs that stand for ogrinfo, which lists these layers, each with the columns a and b, and
/// for ogr2ogr, whose MIF holds the name of the layer that it is asked for, and has these columns.
void installStandIns(
    const TempFiles& files, const QByteArray& layers, const QByteArray& columns = "a b")
{
    install(files, QStringLiteral("ogrinfo"),
        "for layer in " + layers
            + "; do printf 'Layer name: %s\\nGeometry: Point\\na: String (0.0)\\nb: "
              "Integer64(Boolean) (1.0) NOT NULL\\n\\n' $layer; done\n");
    install(files, QStringLiteral("ogr2ogr"),
        "for last; do beforeThat=$before; before=$last; done\n"
        "case $last in */in/*) target=$beforeThat;; *) target=$(dirname \"$beforeThat\")/../out;; "
        "esac\n"
        "mkdir -p \"$target\"\n"
        "set -- "
            + columns
            + "\nprintf 'Version 300\\nCharset \"Neutral\"\\nDelimiter \",\"\\nColumns %s\\n' $# "
              ">\"$target/objects.mif\"\n"
              "printf '  %s Char(9)\\n' $@ >>\"$target/objects.mif\"\n"
              "printf 'Data\\nLine 0 0 1 1\\n' >>\"$target/objects.mif\"\n"
              "printf '\"%s\",\"1\"\\n' \"$(basename \"$last\")\" >\"$target/objects.mid\"\n");
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
    void foreignColumns();
    void foreignFileOfLayers();
    void foreignProgramMissing();
    void foreignProgramFails();
    void foreignLayers();
    void foreignColumnsLost();
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
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("column");
    QTest::addColumn<QByteArray>("row");
    const auto row = [](const char* name, const char* options, const char* column,
                         const char* midRow) {
        QTest::newRow(name) << QString::fromUtf8(name) << QString::fromUtf8(options)
                            << QString::fromUtf8(column) << QByteArray(midRow);
    };
    row("b.geojson", "-f GeoJSON", "Имя", "\"ЗУ1\",7,8");
    row("Мой 'план' \"1\".gpkg", "-f GPKG -nln 'уч/астки, \"1\"'", "имя", "\"ЗУ1\",7,8");
    row("b.gml", "-f GML", "Имя", "\"ЗУ1\"");
    row("Мой план.shp", "-f 'ESRI Shapefile' -lco ENCODING=UTF-8 -where code=7", "Имя",
        "\"ЗУ1\",7,8");
    row("b.tab", "-f 'MapInfo File'", "AREA", "8,7,\"ЗУ1\"");
    row("b.kml", "-f KML -dsco NameField=Имя", "Name", "\"ЗУ1\"");
}

void TestPrepareSteps::foreignFiles()
{
    QFETCH(QString, name);
    QFETCH(QString, options);
    QFETCH(QString, column);
    QFETCH(QByteArray, row);
    if (!hasPrograms())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    const TempFiles files;
    files.write(QStringLiteral("a.geojson"), geoJson);
    const QString folder = files.path(QString());
    QString quoted = name;
    quoted.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    const CommandRun made =
        runShell(QStringLiteral("ogr2ogr %1 '%2' a.geojson").arg(options, quoted), folder);
    QVERIFY2(made.status == 0, qUtf8Printable(made.err));
    const QStringList before = QDir(folder).entryList(QDir::Files, QDir::Name);
    const CommandRun run = runCommand(words({ "prepare" })
            + QStringList{ name, QStringLiteral("-o"), QStringLiteral("copy.mif"),
                QStringLiteral("--name-field"), column },
        folder);
    QVERIFY2(run.status == 0, qUtf8Printable(run.err));
    QVERIFY(run.err.contains(QStringLiteral("файл переведён в MIF программой ogr2ogr")));
    const QByteArray mid = contentOf(files.path(QStringLiteral("copy.mid")));
    QVERIFY2(mid.startsWith(row), mid.constData());
    // The program leaves nothing beside its input.
    QCOMPARE(QDir(folder).entryList(QDir::Files, QDir::Name).size(), before.size() + 2);

    const CommandRun converted =
        runCommand(words({ "convert", "copy.mif", "--encoding", "UTF-8" }), files.path(QString()));
    QCOMPARE(converted.status, 0);
    QVERIFY(converted.out.count("<Cell>4.00</Cell>") >= 3);
}

void TestPrepareSteps::foreignColumns()
{
    if (!hasPrograms())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    const TempFiles files;
    files.write(QStringLiteral("a.geojson"), oddColumns);
    const auto rows = [&files](const char* column) {
        const CommandRun run =
            runCommand(words({ "prepare", "a.geojson", "-o", "b.mif", "--name-field", column }),
                files.path(QString()));
        return run.status == 0 ? contentOf(files.path(QStringLiteral("b.mid"))) : run.err.toUtf8();
    };
    QCOMPARE(rows("имя УЧАСТКА"), QByteArray("\"ЗУ1\",7,\"(2:x,y)\",\"q\"\n"));
    QCOMPARE(rows("a \"b\", c"), QByteArray("\"q\",7,\"(2:x,y)\",\"ЗУ1\"\n"));
    QCOMPARE(rows("code"), QByteArray("7,\"(2:x,y)\",\"q\",\"ЗУ1\"\n"));
    QCOMPARE(rows("другое"),
        QByteArray("a.geojson: нет столбца «другое» (--name-field), есть: code, tags, a \"b\", c, "
                   "Имя участка\n"));
    // Without any column the objects are as good.
    files.write(QStringLiteral("a.geojson"), R"({"type":"FeatureCollection","features":[{"type":
        "Feature","properties":{},"geometry":{"type":"Point","coordinates":[1,2]}}]})");
    QCOMPARE(
        runCommand(words({ "prepare", "a.geojson", "-o", "b.mif" }), files.path(QString())).status,
        0);
    QCOMPARE(contentOf(files.path(QStringLiteral("b.mid"))), QByteArray("\"\"\n"));
    QVERIFY(contentOf(files.path(QStringLiteral("b.mif")))
                .endsWith("Data\n\nPoint 1 2\n"
                          "    Symbol (35,0,12)\n"));
}

void TestPrepareSteps::foreignFileOfLayers()
{
    if (!hasPrograms())
        QSKIP("ogr2ogr is not installed (package gdal-bin)");
    const TempFiles files;
    files.write(QStringLiteral("a.geojson"), geoJson);
    files.write(QStringLiteral("b.geojson"), oddColumns);
    // The third layer has no places at all.
    QCOMPARE(runShell(QStringLiteral("ogr2ogr -f GPKG c.gpkg a.geojson -nln 'Участки 1' && "
                                     "ogr2ogr -update c.gpkg b.geojson -nln 'Точки/2' && "
                                     "ogr2ogr -update c.gpkg b.geojson -nln styles -nlt NONE"),
                 files.path(QString()))
                 .status,
        0);
    const auto run = [&files](const QStringList& options) {
        return runCommand(
            words({ "prepare", "c.gpkg", "-o", "d.mif" }) + options, files.path(QString()));
    };
    const CommandRun several = run({});
    QCOMPARE(several.status, 1);
    QCOMPARE(several.errorLines(),
        QStringList{ QStringLiteral("c.gpkg: в файле несколько слоёв: Участки 1, Точки/2; выберите "
                                    "один из них: --layers ИМЯ") });
    QCOMPARE(run(words({ "--layers", "участки*", "--name-field", "ИМЯ" })).status, 0);
    QCOMPARE(
        contentOf(files.path(QStringLiteral("d.mid"))), QByteArray("\"ЗУ1\",7,8\n\"ЗУ2\",8,0\n"));
    QCOMPARE(run(words({ "--skip-layers", "Участки 1", "--name-field", "Имя участка" })).status, 0);
    QVERIFY(contentOf(files.path(QStringLiteral("d.mid"))).startsWith("\"ЗУ1\",7,"));
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
    installStandIns(files, "a");
    install(files, QStringLiteral("ogr2ogr"),
        "echo 'ERROR 1: no such thing' >&2\necho hint >&2\nexit 1\n");
    const CommandRun run = prepareShape(files);
    QCOMPARE(run.status, 1);
    QCOMPARE(run.errorLines(),
        QStringList{
            QStringLiteral("a.shp: программа ogr2ogr не прочитала файл: ERROR 1: no such thing") });
    QVERIFY(!QFile::exists(files.path(QStringLiteral("b.mif"))));

    install(files, QStringLiteral("ogrinfo"),
        "for last; do :; done\n"
        "printf 'FAILURE:\\nUnable to open `%s`.\\n  -> A\\n' \"$last\"\nexit 1\n");
    QCOMPARE(prepareShape(files).errorLines(),
        QStringList{ QStringLiteral(
            "a.shp: программа ogrinfo не прочитала файл: Unable to open `a.shp`.") });
}

void TestPrepareSteps::foreignLayers()
{
    const TempFiles files;
    installStandIns(files, "roads lots");
    const CommandRun several = prepareShape(files);
    QCOMPARE(several.status, 1);
    QCOMPARE(several.errorLines(),
        QStringList{ QStringLiteral("a.shp: в файле несколько слоёв: roads, lots; выберите один из "
                                    "них: --layers ИМЯ") });
    QCOMPARE(prepareShape(files, "--layers 'LO*'").status, 0);
    QCOMPARE(contentOf(files.path(QStringLiteral("b.mid"))), QByteArray("\"lots\",\"1\"\n"));
    QCOMPARE(prepareShape(files, "--skip-layers lots").status, 0);
    QCOMPARE(contentOf(files.path(QStringLiteral("b.mid"))), QByteArray("\"roads\",\"1\"\n"));
    QCOMPARE(prepareShape(files, "--layers none").status, 1);
    QCOMPARE(prepareShape(files, "--layers lots --name-field B").status, 0);
    QCOMPARE(contentOf(files.path(QStringLiteral("b.mid"))), QByteArray("\"1\",\"lots\"\n"));
}

void TestPrepareSteps::foreignColumnsLost()
{
    const TempFiles files;
    installStandIns(files, "a", "b");
    const CommandRun run = prepareShape(files, "--name-field b");
    QCOMPARE(run.status, 1);
    QVERIFY(run.err.contains(QStringLiteral("программа ogr2ogr перевела не все столбцы")));
    QCOMPARE(prepareShape(files).status, 0);
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
