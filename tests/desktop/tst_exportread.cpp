// Other programs read what the window writes.

#include "formexport.h"
#include "support/stricttest.h"
#include "support/tempfiles.h"

#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTest>

namespace {

const QString firstName = QStringLiteral("Участок \"А\"; 1");
const QString secondName = QStringLiteral("ул. <Полевая> & др.");

QVector<DefPoint> ring(const char* prefix, double x, double y, double side)
{
    const auto point = [&](int number, double px, double py) {
        return DefPoint{ QString::fromUtf8(prefix) + QString::number(number), px, py };
    };
    return { point(1, x, y), point(2, x + side, y), point(3, x + side, y + side),
        point(4, x, y + side), point(1, x, y) };
}

/// A square of 100 units with a hole of ten, and a line of 50.
FormTable form()
{
    FormTable table;
    table.objects = { { firstName,
                          { ring("н", 2000000, 400000, 100), ring("в", 2000040, 400040, 10) } },
        { secondName,
            { { { QStringLiteral("т1"), 2000000, 400200 },
                { QStringLiteral("т2"), 2000030, 400240 } } } } };
    table.others.resize(2);
    return table;
}

bool isInstalled(const char* program)
{
    return !QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty();
}

/// What a program writes when it is asked; ends the test program when it fails.
QString outputOf(const char* program, const QStringList& arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PYTHONUTF8"), QStringLiteral("1"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process.setProcessEnvironment(environment);
    process.start(QString::fromLatin1(program), arguments);
    constexpr int patienceMs = 60000;
    if (!process.waitForFinished(patienceMs) || process.exitCode() != 0)
        qFatal("%s: %s", program, process.readAllStandardError().constData());
    return QString::fromUtf8(process.readAllStandardOutput());
}

} // namespace

#define NEED(program, package)                                                                     \
    if (!isInstalled(program))                                                                     \
    QSKIP("the program " program " is not installed (package " package ")")

class TestExportRead : public StrictTest {
    Q_OBJECT

private slots:
    void csvWithPython();
    void csvWithOgr();
    void geoJsonWithPython();
    void geoJsonWithOgr();
    void mifWithOgr();
    void svgWithXmllint();
    void svgWithRsvg();
    void pngWithPngcheck();

private:
    QString written(FormFile kind, const char* name) const;

    TempFiles m_files;
};

QString TestExportRead::written(FormFile kind, const char* name) const
{
    FormExport task;
    task.table = form();
    task.objects = { 0, 1 };
    task.form = kind;
    task.title = QStringLiteral("План");
    task.fileName = m_files.path(QString::fromLatin1(name));
    const std::atomic_bool goesOn{ false };
    const QString trouble = writeFormFile(task, goesOn, nullptr);
    if (!trouble.isEmpty())
        qFatal("%s", qPrintable(trouble));
    return task.fileName;
}

void TestExportRead::csvWithPython()
{
    NEED("python3", "python3");
    const QString read = outputOf("python3",
        { QStringLiteral("-c"),
            QStringLiteral(
                "import csv, sys\n"
                "rows = list(csv.DictReader(open(sys.argv[1], encoding='utf-8-sig', newline=''), "
                "delimiter=';'))\n"
                "print(len(rows))\n"
                "for i in (1, 5, 11): print('|'.join(rows[i].values()))\n"),
            written(FormFile::Csv, "a.csv") });
    // Ten vertices of the square and its hole, two of the line.
    const QString expected = QStringLiteral("12\n"
                                            "%1|1|2|н2|2000100|400000|9900,00|440,00\n"
                                            "%1|2|1|в1|2000040|400040|9900,00|440,00\n"
                                            "%2|1|2|т2|2000030|400240|0,00|50,00\n")
                                 .arg(firstName, secondName);
    QCOMPARE(read.split(QLatin1Char(10)), expected.split(QLatin1Char(10)));
}

void TestExportRead::csvWithOgr()
{
    NEED("ogrinfo", "gdal-bin");
    const QString read = outputOf("ogrinfo",
        { QStringLiteral("-ro"), QStringLiteral("-al"), written(FormFile::Csv, "b.csv") });
    QVERIFY2(read.contains(QStringLiteral("Feature Count: 12\n")), qPrintable(read));
    QVERIFY(read.contains(QStringLiteral("Объект (String) = %1\n").arg(firstName)));
    QVERIFY(read.contains(QStringLiteral("Периметр (String) = 50,00\n")));
}

void TestExportRead::geoJsonWithPython()
{
    NEED("python3", "python3");
    const QString read = outputOf("python3",
        { QStringLiteral("-c"),
            QStringLiteral("import json, sys\n"
                           "for f in json.load(open(sys.argv[1], encoding='utf-8'))['features']:\n"
                           "    g = f['geometry']\n"
                           "    print(g['type'], g['coordinates'])\n"
                           "    print([v for v in f['properties'].values() if isinstance(v, "
                           "str)][0])\n"),
            written(FormFile::GeoJson, "a.geojson") });
    const QStringList lines = read.split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 5);
    QVERIFY2(lines.at(0).startsWith(QLatin1String("Polygon [[[")), qPrintable(read));
    QCOMPARE(lines.at(0).count(QLatin1String("]], [[")), 1);
    QCOMPARE(lines.at(1), firstName);
    QCOMPARE(QString(lines.at(2)).remove(QLatin1String(".0")),
        QStringLiteral("LineString [[2000000, 400200], [2000030, 400240]]"));
    QCOMPARE(lines.at(3), secondName);
}

void TestExportRead::geoJsonWithOgr()
{
    NEED("ogrinfo", "gdal-bin");
    const QString read = outputOf("ogrinfo",
        { QStringLiteral("-ro"), QStringLiteral("-al"), written(FormFile::GeoJson, "b.geojson") });
    QVERIFY2(read.contains(QStringLiteral("Feature Count: 2\n")), qPrintable(read));
    QVERIFY(read.contains(QStringLiteral("POLYGON ((2000000 400000,2000100 400000,")));
    QVERIFY(read.contains(QStringLiteral("LINESTRING (2000000 400200,2000030 400240)")));
    QVERIFY(read.contains(QStringLiteral(" = %1\n").arg(firstName)));
}

void TestExportRead::mifWithOgr()
{
    NEED("ogrinfo", "gdal-bin");
    const QString read = outputOf("ogrinfo",
        { QStringLiteral("-ro"), QStringLiteral("-al"), written(FormFile::Mif, "a.mif") });
    QVERIFY2(read.contains(QStringLiteral("LINESTRING (2000000 400200,2000030 400240)")),
        qPrintable(read));
    QVERIFY(read.contains(QStringLiteral("2000100 400100")));
}

void TestExportRead::svgWithXmllint()
{
    NEED("xmllint", "libxml2-utils");
    const QString file = written(FormFile::Svg, "a.svg");
    const auto ask = [&](const QString& path) {
        return outputOf(
            "xmllint", { QStringLiteral("--nonet"), QStringLiteral("--xpath"), path, file })
            .trimmed();
    };
    QCOMPARE(ask(QStringLiteral("local-name(/*)")), QStringLiteral("svg"));
    QCOMPARE(ask(QStringLiteral("count(//*[local-name()='text'][.='%1'])").arg(secondName)),
        QStringLiteral("1"));
    QCOMPARE(ask(QStringLiteral("string(//*[@id='object-1']/*[local-name()='title'])")), firstName);
}

void TestExportRead::svgWithRsvg()
{
    NEED("rsvg-convert", "librsvg2-bin");
    const QString picture = m_files.path(QStringLiteral("svg.png"));
    outputOf("rsvg-convert", { written(FormFile::Svg, "b.svg"), QStringLiteral("-o"), picture });
    const QImage drawn(picture);
    const QImage ours(written(FormFile::Png, "b.png"));
    QCOMPARE(drawn.size(), ours.size());
    // Where our picture has the area of the object, so has that one.
    const QColor area = ours.pixelColor(ours.width() / 2, ours.height() * 3 / 5);
    const QColor there = drawn.pixelColor(ours.width() / 2, ours.height() * 3 / 5);
    QVERIFY(area != QColor(Qt::white));
    QVERIFY(std::abs(area.red() - there.red()) < 8 && std::abs(area.blue() - there.blue()) < 8);
}

void TestExportRead::pngWithPngcheck()
{
    NEED("pngcheck", "pngcheck");
    const QString file = written(FormFile::Png, "a.png");
    const QSize size = QImage(file).size();
    const QString read = outputOf("pngcheck", { file });
    QVERIFY2(read.startsWith(QLatin1String("OK:")), qPrintable(read));
    QVERIFY(read.contains(QStringLiteral("(%1x%2,").arg(size.width()).arg(size.height())));
}

QTEST_MAIN(TestExportRead)
#include "tst_exportread.moc"
