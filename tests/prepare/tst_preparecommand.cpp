// The command: targets, statuses, reports.

#include "commandrun.h"
#include "prepared.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace {

const QByteArray wholeDrawing =
    "0\nSECTION\n2\nHEADER\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nLINE\n"
    "8\na\n10\n1\n20\n2\n11\n3\n21\n4\n0\nENDSEC\n0\nEOF\n";
const QByteArray lossyDrawing = "0\nSECTION\n2\nENTITIES\n0\nBODY\n8\na\n0\nENDSEC\n0\nEOF\n";
const QByteArray pairHeader =
    "Version 300\nCharset \"Neutral\"\nDelimiter \",\"\nColumns 1\n  a Char(9)\nData\n";

} // namespace

class TestPrepareCommand : public QObject {
    Q_OBJECT

private slots:
    void oneDrawing();
    void standardOutput();
    void losses();
    void folder();
    void pair();
    void usage_data();
    void usage();
    void failures();
    void sourcesStay_data();
    void sourcesStay();
    void json();
    void options_data();
    void options();
};

void TestPrepareCommand::oneDrawing()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), "999\nx\n" + wholeDrawing);
    const CommandRun run =
        runCommand(words({ "prepare", "a.dxf", "-o", "b.dxf" }), files.path(QString()));
    QCOMPARE(run.status, 0);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errorLines(),
        QStringList(
            { QStringLiteral("a.dxf: записано в b.dxf"), QStringLiteral("a.dxf: кодировка: UTF-8"),
                QStringLiteral("a.dxf: контуров: 1, точек: 0, надписей: 0"),
                QStringLiteral("a.dxf: LINE: 1, сохранено: 1"),
                QStringLiteral("a.dxf: исправлено: убраны комментарии (код 999): 1") }));
    QCOMPARE(outline(contentOf(files.path(QStringLiteral("b.dxf")))),
        QStringList{ QStringLiteral("line 1 2, 3 4") });
}

void TestPrepareCommand::standardOutput()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), wholeDrawing);
    const CommandRun run = runCommand(
        words({ "prepare", "a.dxf", "-o", "-", "--level", "repair" }), files.path(QString()));
    QCOMPARE(run.status, 0);
    QCOMPARE(run.out, wholeDrawing);
}

void TestPrepareCommand::losses()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), lossyDrawing);
    const CommandRun run =
        runCommand(words({ "prepare", "a.dxf", "-o", "b.dxf" }), files.path(QString()));
    QCOMPARE(run.status, 3);
    QVERIFY(run.err.contains(QStringLiteral("a.dxf: BODY: 1, не перенесено: 1\n")));
    QVERIFY(run.err.contains(
        QStringLiteral("a.dxf: не перенесено: этот вид объектов не переводится: 1\n")));
    QVERIFY(QFile::exists(files.path(QStringLiteral("b.dxf"))));
}

void TestPrepareCommand::folder()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), wholeDrawing);
    files.write(QStringLiteral("b.DXF"), lossyDrawing);
    files.write(QStringLiteral("c.mif"), pairHeader + "Line 0 0 1 1\n");
    files.write(QStringLiteral("d.dxf"), "nothing");
    QVERIFY(QDir(files.path(QString())).mkdir(QStringLiteral("out")));
    const CommandRun run =
        runCommand(words({ "prepare", "a.dxf", "b.DXF", "c.mif", "d.dxf", "--out-dir", "out" }),
            files.path(QString()));
    // A file of which nothing could be written counts for more than one with losses.
    QCOMPARE(run.status, 1);
    QCOMPARE(QDir(files.path(QStringLiteral("out"))).entryList(QDir::Files, QDir::Name),
        QStringList({ QStringLiteral("a.dxf"), QStringLiteral("b.dxf"), QStringLiteral("c.mid"),
            QStringLiteral("c.mif") }));
    QVERIFY(run.err.contains(QStringLiteral("d.dxf: это не чертёж DXF\n")));
}

void TestPrepareCommand::pair()
{
    const TempFiles files;
    files.write(QStringLiteral("a.MIF"), "\n" + pairHeader + "Line 0 0 1 1\n");
    files.write(QStringLiteral("A.mid"), "\"x\"\n");
    const CommandRun run =
        runCommand(words({ "prepare", "a.MIF", "-o", "b.MIF" }), files.path(QString()));
    QCOMPARE(run.status, 0);
    QVERIFY(run.err.contains(QStringLiteral("файл MID найден под именем в другом регистре букв")));
    // The name that the readers look for.
    QCOMPARE(contentOf(files.path(QStringLiteral("b.MId"))), QByteArray("\"x\"\n"));
    const CommandRun converted = runCommand(words({ "convert", "b.MIF" }), files.path(QString()));
    QCOMPARE(converted.status, 0);
    QVERIFY(converted.out.contains("<Cell>x</Cell>"));
}

void TestPrepareCommand::usage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const auto row = [](const char* name, std::initializer_list<const char*> arguments,
                         const char* message) {
        QTest::newRow(name) << words({ "prepare" }) + words(arguments)
                            << QString::fromUtf8(message);
    };
    row("no target", { "a.dxf" }, "укажите -o ФАЙЛ или --out-dir ПАПКА");
    row("two targets", { "a.dxf", "-o", "b.dxf", "--out-dir", "." },
        "укажите -o ФАЙЛ или --out-dir ПАПКА");
    row("several files and one target", { "a.dxf", "c.dxf", "-o", "b.dxf" },
        "для нескольких файлов укажите --out-dir");
    row("unknown format", { "a.txt", "-o", "b.txt" },
        "a.txt: формат по расширению не определить; укажите --format mif или dxf");
    row("pair to standard output", { "a.mif", "-o", "-" },
        "на стандартный вывод можно записать только один DXF, без --json");
    row("JSON beside the drawing", { "a.dxf", "-o", "-", "--json" },
        "на стандартный вывод можно записать только один DXF, без --json");
    row("level", { "a.dxf", "-o", "b.dxf", "--level", "all" },
        "--level: ожидается repair или flatten, а не «all»");
    row("tolerance", { "a.dxf", "-o", "b.dxf", "--tolerance", "0" },
        "--tolerance: ожидается число не меньше 1e-09, а не «0»");
    row("tolerance that is no number", { "a.dxf", "-o", "b.dxf", "--tolerance", "nan" },
        "--tolerance: ожидается число не меньше 1e-09, а не «nan»");
    row("tolerance without end", { "a.dxf", "-o", "b.dxf", "--tolerance", "inf" },
        "--tolerance: ожидается число не меньше 1e-09, а не «inf»");
    row("labels", { "a.dxf", "-o", "b.dxf", "--labels", "text,numbers" },
        "--labels: ожидается text, mtext, attrib, dimension через запятую, а не «text,numbers»");
    row("encoding", { "a.dxf", "-o", "b.dxf", "--from-encoding", "cp9" },
        "неизвестная кодировка «cp9»; список даёт --list-encodings");
    row("flattening options without flattening",
        { "a.dxf", "-o", "b.dxf", "--level", "repair", "--swap-xy" },
        "--swap-xy, --scale, --join, --visible, --layers и --skip-layers действуют только с "
        "--level flatten");
}

void TestPrepareCommand::usage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), wholeDrawing);
    const CommandRun run = runCommand(arguments, files.path(QString()));
    QCOMPARE(run.status, 2);
    QCOMPARE(run.errorLines().value(0), QStringLiteral("importgeometry: ") + message);
    QVERIFY(!QFile::exists(files.path(QStringLiteral("b.dxf"))));
}

void TestPrepareCommand::failures()
{
    const TempFiles files;
    files.write(QStringLiteral("b.dxf"), "older");
    files.write(QStringLiteral("bad.dxf"), "nothing");
    files.write(QStringLiteral("lossy.dxf"), lossyDrawing);
    const auto status = [&files](std::initializer_list<const char*> arguments) {
        return runCommand(words({ "prepare" }) + words(arguments), files.path(QString())).status;
    };
    QCOMPARE(status({ "missing.dxf", "-o", "b.dxf" }), 1);
    QCOMPARE(status({ "bad.dxf", "-o", "b.dxf" }), 1);
    QCOMPARE(status({ "bad.dxf", "-o", "nowhere/b.dxf" }), 1);
    QCOMPARE(contentOf(files.path(QStringLiteral("b.dxf"))), QByteArray("older"));
    QCOMPARE(QDir(files.path(QString())).entryList(QDir::Files, QDir::Name),
        QStringList(
            { QStringLiteral("b.dxf"), QStringLiteral("bad.dxf"), QStringLiteral("lossy.dxf") }));

    // What is lost of another file is less than that one could not be written.
    QVERIFY(QDir(files.path(QString())).mkdir(QStringLiteral("out")));
    QCOMPARE(status({ "missing.dxf", "lossy.dxf", "--out-dir", "out" }), 1);
    QVERIFY(QFile::exists(files.path(QStringLiteral("out/lossy.dxf"))));
}

void TestPrepareCommand::sourcesStay_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("itself") << words({ "a.dxf", "-o", "a.dxf" });
    QTest::newRow("by another way") << words({ "a.dxf", "-o", "./x/../a.dxf" });
    QTest::newRow("by a link") << words({ "a.dxf", "-o", "link.dxf" });
    QTest::newRow("its folder") << words({ "a.dxf", "--out-dir", "." });
    QTest::newRow("its MID") << words({ "p.mif", "-o", "p.miD" });
    QTest::newRow("of two files") << words({ "a.dxf", "x/a.dxf", "--out-dir", "y" });
}

void TestPrepareCommand::sourcesStay()
{
    QFETCH(QStringList, arguments);
    const TempFiles files;
    QVERIFY(QDir(files.path(QString())).mkdir(QStringLiteral("x")));
    QVERIFY(QDir(files.path(QString())).mkdir(QStringLiteral("y")));
    files.write(QStringLiteral("a.dxf"), wholeDrawing);
    files.write(QStringLiteral("x/a.dxf"), wholeDrawing);
    files.write(QStringLiteral("p.mif"), pairHeader);
    files.write(QStringLiteral("p.mid"), "x");
    QVERIFY(QFile::link(QStringLiteral("a.dxf"), files.path(QStringLiteral("link.dxf"))));
    const CommandRun run = runCommand(words({ "prepare" }) + arguments, files.path(QString()));
    QCOMPARE(run.status, 2);
    QCOMPARE(contentOf(files.path(QStringLiteral("a.dxf"))), wholeDrawing);
    QCOMPARE(contentOf(files.path(QStringLiteral("p.mid"))), QByteArray("x"));
}

void TestPrepareCommand::json()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), lossyDrawing);
    files.write(QStringLiteral("c.dxf"), "nothing");
    QVERIFY(QDir(files.path(QString())).mkdir(QStringLiteral("out")));
    const CommandRun run =
        runCommand(words({ "prepare", "a.dxf", "c.dxf", "--out-dir", "out", "--json" }),
            files.path(QString()));
    QCOMPARE(run.status, 1);
    const QJsonArray answers = QJsonDocument::fromJson(run.out).array();
    QCOMPARE(answers.size(), 2);
    const QJsonObject first = answers.at(0).toObject();
    QCOMPARE(first.value(QStringLiteral("file")).toString(), QStringLiteral("a.dxf"));
    QCOMPARE(first.value(QStringLiteral("output")).toString(), QStringLiteral("out/a.dxf"));
    QCOMPARE(first.value(QStringLiteral("encoding")).toString(), QStringLiteral("UTF-8"));
    QCOMPARE(first.value(QStringLiteral("contours")).toInt(-1), 0);
    QCOMPARE(first.value(QStringLiteral("kinds")).toObject(),
        (QJsonObject{ { QStringLiteral("BODY"),
            QJsonObject{ { QStringLiteral("kept"), 0 }, { QStringLiteral("changed"), 0 },
                { QStringLiteral("leftOut"), 0 }, { QStringLiteral("lost"), 1 } } } }));
    const QJsonObject note = first.value(QStringLiteral("notes")).toArray().at(0).toObject();
    QCOMPARE(note.value(QStringLiteral("id")).toString(), QStringLiteral("unreadable"));
    QCOMPARE(note.value(QStringLiteral("lost")).toBool(), true);
    QCOMPARE(answers.at(1).toObject().value(QStringLiteral("failure")).toString(),
        QStringLiteral("это не чертёж DXF"));
}

void TestPrepareCommand::options_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, std::initializer_list<const char*> arguments,
                         const char* expected) {
        QTest::newRow(name) << words(arguments) << QString::fromUtf8(expected);
    };
    row("none", {}, "line 0 0, 4 0; point 8 8; point 20 20; text 1 1 надпись");
    row("exploded", { "--blocks", "explode" },
        "line 0 0, 4 0; line 20 20, 29 29; point 8 8; text 1 1 надпись");
    row("circles", { "--circles", "contours", "--tolerance", "3" },
        "line 0 0, 4 0; closed 18 8, 8 18, -2 8, 8 -2; point 20 20; text 1 1 надпись");
    row("layers", { "--layers", "a", "--blocks", "explode" }, "line 0 0, 4 0");
    row("layers left out", { "--skip-layers", "a", "--skip-layers", "c" },
        "point 20 20; text 1 1 надпись");
    row("labels", { "--labels", "mtext" }, "line 0 0, 4 0");
    row("axes", { "--swap-xy" }, "line 0 0, 0 4; point 8 8; point 20 20; text 1 1 надпись");
    row("scale", { "--scale", "0.5", "--labels", "mtext" }, "line 0 0, 2 0");
}

void TestPrepareCommand::options()
{
    QFETCH(QStringList, arguments);
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"),
        drawingOf("0 LINE, 8 a, 10 0, 20 0, 11 4, 21 0, 0 CIRCLE, 8 c, 10 8, 20 8, 40 10, "
                  "0 INSERT, 8 b, 2 B, 10 20, 20 20, 0 TEXT, 8 t, 10 1, 20 1, 40 1, 1 надпись",
            "0 BLOCK, 2 B, 10 0, 20 0, 0 LINE, 10 0, 20 0, 11 9, 21 9, 0 ENDBLK"));
    const bool choosesBlocks = arguments.contains(QStringLiteral("--blocks"));
    const CommandRun run = runCommand(words({ "prepare", "a.dxf", "-o", "b.dxf" }) + arguments
            + (choosesBlocks ? QStringList() : words({ "--blocks", "points" })),
        files.path(QString()));
    QCOMPARE(run.status, 0);
    QTEST(outline(contentOf(files.path(QStringLiteral("b.dxf")))).join(QStringLiteral("; ")),
        "expected");
}

QTEST_GUILESS_MAIN(TestPrepareCommand)
#include "tst_preparecommand.moc"
