#include "commandrun.h"
#include "samples.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

/// What the command writes of one pair of files, in forms that other tests do not look at.
class TestCliForms : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Two points of one name at two places; no Windows-1251 has the letter of the object.
        m_folder.write(QStringLiteral("a.mif"),
            "Version 300\nCharset \"WindowsCyrillic\"\nDelimiter \",\"\n"
            "CoordSys NonEarth Units \"m\"\nColumns 1\n  A char(10)\nData\n"
            "Point 0 0\nPoint 5 0\nRegion 1\n4\n0 0\n5 0\n5 5\n0 0\n");
        m_folder.write(QStringLiteral("a.mid"),
            "\"1\"\n\"1\"\n\"\xCE\xA9"
            "1\"\n");
    }

    void conflictsAsJson()
    {
        const CommandRun run = shell(QStringLiteral("$CLI check --json --encoding UTF-8 a.mif"));
        QCOMPARE(run.status, 3);
        const QJsonObject report = QJsonDocument::fromJson(run.out).array().first().toObject();
        const QJsonArray places{ QJsonObject{
                                     { QStringLiteral("x"), 0 }, { QStringLiteral("y"), 0 } },
            QJsonObject{ { QStringLiteral("x"), 5 }, { QStringLiteral("y"), 0 } } };
        const QJsonArray expected{ QJsonObject{ { QStringLiteral("object"), 1 },
            { QStringLiteral("designation"), QStringLiteral("Ω1") },
            { QStringLiteral("point"), QStringLiteral("1") },
            { QStringLiteral("places"), places } } };
        QCOMPARE(report.value(QStringLiteral("conflicts")).toArray(), expected);
    }

    void kindsAsJson()
    {
        m_folder.write(QStringLiteral("a.dxf"),
            "0\nSECTION\n2\nHEADER\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nB\n0\nLINE\n"
            "0\nENDBLK\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nARC\n0\nENDSEC\n0\nEOF\n");
        const CommandRun run = shell(QStringLiteral("$CLI check --json a.dxf"));
        const QJsonObject report = QJsonDocument::fromJson(run.out).array().first().toObject();
        const QJsonObject contents =
            report.value(QStringLiteral("contents")).toArray().first().toObject();
        QStringList kinds;
        for (const QJsonValue& kind : contents.value(QStringLiteral("kinds")).toArray())
            kinds.append(kind.toObject().value(QStringLiteral("kind")).toString());
        QCOMPARE(kinds, QStringList({ QStringLiteral("ARC"), QStringLiteral("LINE in blocks") }));
    }

    void exportAsMif()
    {
        const CommandRun run = shell(QStringLiteral("$CLI export --encoding UTF-8 a.mif -o b.mif"));
        QCOMPARE(run.status, 0);
        QVERIFY2(run.errorLines().contains(QStringLiteral(
                     "b.mif: внимание: обозначений с буквами, которых нет в Windows-1251: 1")),
            qPrintable(run.err));
        // The area is 5 * 5 / 2, the length 5 + 5 + 7.07.
        QCOMPARE(shell(QStringLiteral("cat b.mid")).out, QByteArray("\"?1\",12.50,17.07\n"));
        QCOMPARE(
            shell(QStringLiteral("$CLI export -q --encoding UTF-8 a.mif -o b.mif")).err, QString());
    }

    void pairStaysWhole_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("vertices");
        for (const char* command : { "export", "prepare" }) {
            // What is left to be written at the end, and what fails before.
            QTest::addRow("%s, end", command) << QString::fromLatin1(command) << 500;
            QTest::addRow("%s, middle", command) << QString::fromLatin1(command) << 50000;
        }
    }

    /// There is room for the rows of objects, but not for their places.
    void pairStaysWhole()
    {
        QFETCH(QString, command);
        QFETCH(int, vertices);
        const TempFiles folder;
        QByteArray places;
        for (int i = 0; i < vertices; ++i)
            places += QByteArray::number(i) + " 0\n";
        folder.write(QStringLiteral("a.mif"),
            mifHeader() + "Pline " + QByteArray::number(vertices) + '\n' + places);
        folder.write(QStringLiteral("a.mid"), "new\n");
        const QString run = QStringLiteral("$CLI %1 -q a.mif -o b.mif; echo $?; ls; ").arg(command);
        const QString limit = QStringLiteral("ulimit -f 1; ");
        const CommandRun first = runShell(limit + run, folder.path({}));
        QCOMPARE(first.out, QByteArray("1\na.mid\na.mif\n"));
        QVERIFY2(first.err.endsWith(
                     QStringLiteral("b.mif: ошибка записи: превышен предельный размер файла\n")),
            qPrintable(first.err));
        const CommandRun second = runShell(QStringLiteral("echo older >b.mif; echo rows >b.mid; ")
                + limit + run + QStringLiteral("cat b.mif b.mid"),
            folder.path({}));
        QCOMPARE(second.out, QByteArray("1\na.mid\na.mif\nb.mid\nb.mif\nolder\nrows\n"));
        // With room for both there is a new pair.
        const CommandRun third =
            runShell(run + QStringLiteral("grep -c old b.m*"), folder.path({}));
        QCOMPARE(third.out, QByteArray("0\na.mid\na.mif\nb.mid\nb.mif\nb.mid:0\nb.mif:0\n"));
    }

    void exportAsGeoJson_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("isInDegrees");
        QTest::newRow("metres") << QByteArray("468214 2213661 468247 2213670") << false;
        QTest::newRow("degrees") << QByteArray("37.6 55.7 37.61 55.71") << true;
    }

    /// GeoJSON has no coordinate system but one.
    void exportAsGeoJson()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, isInDegrees);
        TempFiles folder;
        folder.write(QStringLiteral("a.mif"),
            "Version 300\nCharset \"Neutral\"\nDelimiter \",\"\nData\nLine " + line + '\n');
        folder.write(QStringLiteral("a.mid"), "1\n");
        const auto told = [&folder](const char* options, const QString& name) {
            const CommandRun run =
                runShell(QStringLiteral("$CLI export a.mif ") + QLatin1String(options),
                    folder.path(QString()));
            return run.status == 0
                && run.errorLines().contains(name
                    + QStringLiteral(
                        ": координаты те же, что в файле; GeoJSON ждёт градусы WGS 84"));
        };
        QCOMPARE(told("-o b.geojson", QStringLiteral("b.geojson")), !isInDegrees);
        QCOMPARE(told("--to geojson", QStringLiteral("стандартный вывод")), !isInDegrees);
        QVERIFY(!told("-q -o c.geojson", QStringLiteral("c.geojson")));
        QVERIFY(!told("-o b.csv", QStringLiteral("b.csv")));
    }

    void exportIsRefused_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("error");
        QTest::newRow("locale") << QStringLiteral("a.mif -o b.csv --locale de")
                                << QStringLiteral("--locale: ожидается c или ru, а не «de»");
        QTest::newRow("its own input") << QStringLiteral(
            "a.mif -o a.mif") << QStringLiteral("a.mif: результат заменил бы исходный файл");
    }

    void exportIsRefused()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, error);
        const CommandRun run = shell(QStringLiteral("$CLI export ") + arguments);
        QCOMPARE(run.status, 2);
        QCOMPARE(run.errorLines().first(), QStringLiteral("importgeometry: ") + error);
    }

    void preparedPoints()
    {
        const QString files = QStringLiteral("--encoding UTF-8 -q a.mif --points a.mif");
        const CommandRun prepared = shell(QStringLiteral("$CLI convert --prepare ") + files);
        QCOMPARE(prepared.status, 0);
        QVERIFY(!prepared.out.isEmpty());
        QCOMPARE(prepared.out, shell(QStringLiteral("$CLI convert ") + files).out);
    }

    void orientation_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("northUpIsUsual");
        QTest::addColumn<bool>("asIsIsUsual");
        QTest::newRow("northing first")
            << QByteArray("468214 2213661 468247 2213670") << true << false;
        QTest::newRow("easting first")
            << QByteArray("2213661 468214 2213670 468247") << true << true;
        // Who asks for the north has the northing first.
        QTest::newRow("untold") << QByteArray("0 0 5 9") << false << true;
    }

    void orientation()
    {
        QFETCH(QByteArray, line);
        const TempFiles folder;
        folder.write(QStringLiteral("a.mif"), mifHeader() + "Line " + line + '\n');
        folder.write(QStringLiteral("a.mid"), "1\n");
        const auto plan = [&folder](const char* options) {
            return runCommand(
                words({ "plan", "-q", "a.mif", "-o", "-", "--to", "svg" }) + words({ options }),
                folder.path(QString()));
        };
        const QByteArray usual = plan("--quiet").out;
        QVERIFY(usual.startsWith("<?xml"));
        QTEST(plan("--north-up").out == usual, "northUpIsUsual");
        QTEST(plan("--as-is").out == usual, "asIsIsUsual");
        const CommandRun both = runCommand(
            words({ "plan", "a.mif", "-o", "a.svg", "--north-up", "--as-is" }), folder.path({}));
        QCOMPARE(both.status, 2);
        QCOMPARE(both.errorLines().first(),
            QStringLiteral("importgeometry: --north-up и --as-is вместе не указывают"));
    }

    void resultsOfOneName_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("files");
        QTest::newRow("folder") << QStringLiteral("convert in")
                                << QStringLiteral("a.dxf.xml\na.mif.xml\nb.xml\n");
        QTest::newRow("subfolders")
            << QStringLiteral("convert --recursive in")
            << QStringLiteral("a.dxf.xml\na.mif.xml\nb.xml\nbelow/a.xml\nbelow/b.xml\n");
        QTest::newRow("side by side") << QStringLiteral("convert -j 2 in/a.dxf in/a.mif")
                                      << QStringLiteral("a.dxf.xml\na.mif.xml\n");
        QTest::newRow("one format")
            << QStringLiteral("convert --format mif in") << QStringLiteral("a.xml\n");
        QTest::newRow("copies") << QStringLiteral("prepare in")
                                << QStringLiteral("a.dxf\na.mid\na.mif\nb.dxf\n");
        QTest::newRow("copies of one name") << QStringLiteral("prepare in/b.dxf in/below/b.DXF")
                                            << QStringLiteral("b.DXF.dxf\nb.dxf.dxf\n");
    }

    void resultsOfOneName()
    {
        QFETCH(QString, command);
        QFETCH(QString, files);
        const TempFiles folder;
        QVERIFY(QDir(folder.path(QString())).mkpath(QStringLiteral("in/below")));
        writeDrawings(folder);
        const CommandRun run = runShell(
            QStringLiteral("$CLI %1 --out-dir out && cd out && find * -type f | LC_ALL=C sort")
                .arg(command),
            folder.path(QString()));
        QCOMPARE(run.status, 0);
        QCOMPARE(QString::fromUtf8(run.out), files);
        if (files.contains(QLatin1String("a.dxf.xml")))
            QVERIFY2(run.err.contains(QStringLiteral("in/a.dxf: записано в out/a.dxf.xml")),
                qPrintable(run.err));
    }

    /// Nothing in the names tells these results from one another.
    void resultsOfOneNameRefused()
    {
        const TempFiles folder;
        QVERIFY(QDir(folder.path(QString())).mkpath(QStringLiteral("in/below")));
        writeDrawings(folder);
        const CommandRun run =
            runShell(QStringLiteral("$CLI convert in/a.dxf in/below/a.dxf --out-dir out"),
                folder.path(QString()));
        QCOMPARE(run.status, 2);
        QCOMPARE(run.errorLines().first(),
            QStringLiteral("importgeometry: файлы in/a.dxf и in/below/a.dxf дали бы один результат "
                           "out/a.xml; запишите их в разные папки (--out-dir)"));
        QVERIFY(!QDir(folder.path(QStringLiteral("out"))).exists());
    }

private:
    static void writeDrawings(const TempFiles& folder)
    {
        const QByteArray lines =
            drawing("0\nLINE\n10\n468210\n20\n2213660\n11\n468215\n21\n2213665\n");
        for (const char* name : { "in/a.dxf", "in/b.dxf", "in/below/a.dxf", "in/below/b.DXF" })
            folder.write(QLatin1String(name), lines);
        folder.write(QStringLiteral("in/a.mif"), mifHeader() + "Line 0 0 5 5\n");
        folder.write(QStringLiteral("in/a.mid"), "1\n");
    }

    CommandRun shell(const QString& script) const
    {
        return runShell(script, m_folder.path(QStringLiteral(".")));
    }

    TempFiles m_folder;
};

QTEST_GUILESS_MAIN(TestCliForms)
#include "tst_cliforms.moc"
