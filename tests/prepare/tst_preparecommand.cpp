// The command: targets, statuses, reports.

#include "commandrun.h"
#include "prepared.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <QTextCodec>

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
    void foldersNamed();
    void namedEncodings_data();
    void namedEncodings();
    void quiet();
    void pair();
    void usage_data();
    void usage();
    void failures();
    void failingPair();
    void fullDevice();
    void sourcesStay_data();
    void sourcesStay();
    void json();
    void options_data();
    void options();
    void moreOptions_data();
    void moreOptions();
    void encodings();
    void nameField();
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

void TestPrepareCommand::foldersNamed()
{
    const TempFiles files;
    QVERIFY(QDir(files.path(QString())).mkpath(QStringLiteral("in/deep")));
    for (const char* name : { "in/a.dxf", "in/deep/a.dxf" })
        files.write(QLatin1String(name), wholeDrawing);
    files.write(QStringLiteral("in/readme.txt"), "no drawing");
    const auto prepared = [&files](std::initializer_list<const char*> arguments) {
        return runCommand(words({ "prepare", "in", "--out-dir", "new/out" }) + words(arguments),
            files.path(QString()));
    };
    const QString deep = files.path(QStringLiteral("new/out/deep/a.dxf"));
    QCOMPARE(prepared({}).status, 0);
    QVERIFY(QFile::exists(files.path(QStringLiteral("new/out/a.dxf"))));
    QVERIFY(!QFile::exists(deep));
    QCOMPARE(prepared({ "--recursive" }).status, 0);
    QVERIFY(QFile::exists(deep));
}

void TestPrepareCommand::namedEncodings_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("text");
    const QByteArray windows = "\xD3\xF7\xE0\xF1\xF2\xEE\xEA";
    const QByteArray utf8 = "Участок";
    QTest::newRow("as it was") << QStringList() << windows;
    QTest::newRow("auto") << words({ "--encoding", "auto" }) << windows;
    QTest::newRow("auto of the source") << words({ "--from-encoding", "auto" }) << windows;
    QTest::newRow("named") << words({ "--encoding", "UTF-8" }) << utf8;
    QTest::newRow("of the system") << words({ "--encoding", "Default" }) << utf8;
}

void TestPrepareCommand::namedEncodings()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, text);
    const TempFiles files;
    files.write(QStringLiteral("a.mif"), pairHeader + "Line 0 0 1 1\n");
    files.write(QStringLiteral("a.mid"), "\"\xD3\xF7\xE0\xF1\xF2\xEE\xEA\"\n");
    const CommandRun run = runShell(QStringLiteral("LC_ALL=C.UTF-8 $CLI prepare a.mif -o b.mif ")
            + options.join(QLatin1Char(' ')),
        files.path(QString()));
    QCOMPARE(run.status, 0);
    QCOMPARE(contentOf(files.path(QStringLiteral("b.mid"))), '"' + text + "\"\n");
}

void TestPrepareCommand::quiet()
{
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), lossyDrawing);
    files.write(QStringLiteral("d.dxf"), "nothing");
    const CommandRun lossy =
        runCommand(words({ "prepare", "-q", "a.dxf", "-o", "b.dxf" }), files.path(QString()));
    QCOMPARE(lossy.err, QString());
    QCOMPARE(lossy.status, 3);
    const CommandRun failed =
        runCommand(words({ "prepare", "-q", "d.dxf", "-o", "e.dxf" }), files.path(QString()));
    QCOMPARE(failed.errorLines(), words({ "d.dxf: это не чертёж DXF" }));
    QCOMPARE(failed.status, 1);
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
    row("the other file of a pair", { "a.mid", "-o", "b.mif" },
        "a.mid: импортируют файл MIF, а MID читается вместе с ним: укажите a.mif");
    row("an option of imports", { "a.dxf", "-o", "b.dxf", "--points", "c.dxf" },
        "неизвестный параметр «--points»");
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
    row("encoding", { "a.dxf", "-o", "b.dxf", "--from-encoding", "cp12510" },
        "неизвестная кодировка «cp12510»; возможно, «cp1250»; список даёт --list-encodings");
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

/// Of a pair both files are written, or none.
void TestPrepareCommand::failingPair()
{
    const TempFiles files;
    files.write(QStringLiteral("a.mif"), pairHeader + "Line 0 0 1 1\n");
    files.write(QStringLiteral("b.mif"), "older");
    QVERIFY(QDir(files.path(QString())).mkdir(QStringLiteral("b.mid")));
    const CommandRun run =
        runCommand(words({ "prepare", "a.mif", "-o", "b.mif" }), files.path(QString()));
    QCOMPARE(run.status, 1);
    QCOMPARE(contentOf(files.path(QStringLiteral("b.mif"))), QByteArray("older"));
    QCOMPARE(QDir(files.path(QString())).entryList(QDir::Files, QDir::Name),
        QStringList({ QStringLiteral("a.mif"), QStringLiteral("b.mif") }));
}

void TestPrepareCommand::fullDevice()
{
    if (!QFile::exists(QStringLiteral("/dev/full")))
        QSKIP("there is no /dev/full");
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), lossyDrawing);
    const CommandRun run =
        runShell(QStringLiteral("\"$CLI\" prepare a.dxf -o - >/dev/full"), files.path(QString()));
    // Worse than what is lost of the drawing.
    QCOMPARE(run.status, 1);
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

void TestPrepareCommand::moreOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("without");
    QTest::addColumn<QString>("with");
    QTest::addColumn<QByteArray>("drawing");
    const auto row = [](const char* name, std::initializer_list<const char*> arguments,
                         const char* without, const char* with, const QByteArray& drawing) {
        QTest::newRow(name) << words(arguments) << QString::fromUtf8(without)
                            << QString::fromUtf8(with) << drawing;
    };
    row("visible", { "--visible" }, "line 1 0, 2 0; line 3 0, 4 0; line 5 0, 6 0", "line 5 0, 6 0",
        drawingOf("0 LINE, 8 off, 10 1, 20 0, 11 2, 21 0, 0 LINE, 8 a, 60 1, 10 3, 20 0, 11 4, "
                  "21 0, 0 LINE, 8 a, 10 5, 20 0, 11 6, 21 0",
            "", "0 TABLE, 2 LAYER, 0 LAYER, 2 off, 70 0, 62 -7, 0 ENDTAB"));
    row("join", { "--join", "0.1" }, "line 0 0, 5 0; line 5.05 0, 5 5; line 5 5, 0 0",
        "closed 0 0, 5.05 0, 5 5",
        drawingOf("0 LINE, 8 a, 10 0, 20 0, 11 5, 21 0, 0 LINE, 8 a, 10 5.05, 20 0, 11 5, 21 5, "
                  "0 LINE, 8 a, 10 5, 20 5, 11 0, 21 0"));
    row("hatch", { "--hatch" }, "line 0 0, 1 0", "line 0 0, 1 0; closed 0 0, 5 0, 5 5",
        drawingOf("0 LINE, 8 a, 10 0, 20 0, 11 1, 21 0, 0 HATCH, 8 a, 91 1, 92 3, 72 0, 73 1, "
                  "93 3, 10 0, 20 0, 10 5, 20 0, 10 5, 20 5, 97 0, 75 0"));
    const QByteArray labels = drawingOf(
        "0 POINT, 10 0, 20 0, 0 TEXT, 10 1, 20 0, 1 т, 0 MTEXT, 10 2, 20 0, 1 м, "
        "0 INSERT, 66 1, 2 B, 10 9, 20 9, 0 ATTRIB, 10 3, 20 0, 1 а, 2 N, 70 0, 0 SEQEND, "
        "0 DIMENSION, 2 *D1",
        "0 BLOCK, 2 B, 10 0, 20 0, 0 LINE, 10 0, 20 0, 11 1, 21 0, 0 ENDBLK, "
        "0 BLOCK, 2 *D1, 10 0, 20 0, 0 TEXT, 10 4, 20 0, 1 р, 0 ENDBLK");
    const char* const usual = "line 9 9, 10 9; point 0 0; text 1 0 т; text 2 0 м; text 3 0 а";
    row("labels of texts", { "--labels", "text" }, usual, "line 9 9, 10 9; point 0 0; text 1 0 т",
        labels);
    row("labels of attributes", { "--labels", "attrib" }, usual,
        "line 9 9, 10 9; point 0 0; text 3 0 а", labels);
    row("labels of dimensions", { "--labels", "mtext,dimension" }, usual,
        "line 9 9, 10 9; point 0 0; text 2 0 м; text 4 0 р", labels);
    // Of the two blocks one is a small mark around its insertion.
    row("blocks", { "--blocks", "auto" },
        "line 0 0, 900 0; line 100 100, 150 100; point 500 500; text 0 0 т",
        "line 0 0, 900 0; line 100 100, 150 100; point 500 500; text 0 0 т",
        drawingOf("0 LINE, 10 0, 20 0, 11 900, 21 0, 0 INSERT, 2 M, 10 500, 20 500, "
                  "0 INSERT, 2 L, 10 100, 20 100, 0 TEXT, 10 0, 20 0, 1 т",
            "0 BLOCK, 2 M, 10 0, 20 0, 0 LINE, 10 -1, 20 0, 11 1, 21 0, 0 ENDBLK, "
            "0 BLOCK, 2 L, 10 0, 20 0, 0 LINE, 10 0, 20 0, 11 50, 21 0, 0 ENDBLK"));
    row("level", { "--level", "repair" }, "open 10 0, 7.0710678119 7.0710678119, 0 10", "arc 0 0",
        drawingOf("0 ARC, 8 a, 10 0, 20 0, 40 10, 50 0, 51 90"));
}

void TestPrepareCommand::moreOptions()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, drawing);
    const TempFiles files;
    files.write(QStringLiteral("a.dxf"), drawing);
    const auto outlineWith = [&files](const QStringList& options) {
        const CommandRun run =
            runCommand(words({ "prepare", "a.dxf", "-o", "b.dxf", "--tolerance", "1" }) + options,
                files.path(QString()));
        if (run.status != 0)
            return run.err;
        return outline(contentOf(files.path(QStringLiteral("b.dxf")))).join(QStringLiteral("; "));
    };
    QTEST(outlineWith({}), "without");
    QTEST(outlineWith(arguments), "with");
}

void TestPrepareCommand::encodings()
{
    const QTextCodec* const windows = QTextCodec::codecForName("Windows-1251");
    const QTextCodec* const dos = QTextCodec::codecForName("IBM866");
    const QString drawing =
        QString::fromUtf8(drawingOf("0 POINT, 10 0, 20 0, 0 TEXT, 10 1, 20 0, 1 Участок земли"));
    const TempFiles files;
    const auto written = [&files](const QByteArray& bytes, const QStringList& options) {
        files.write(QStringLiteral("a.dxf"), bytes);
        runCommand(words({ "prepare", "a.dxf", "-o", "b.dxf" }) + options, files.path(QString()));
        return contentOf(files.path(QStringLiteral("b.dxf")));
    };
    const QString text = QStringLiteral("\nУчасток земли\n");
    // Kept as the bytes tell it, and as the option does.
    QVERIFY(written(windows->fromUnicode(drawing), {}).contains(windows->fromUnicode(text)));
    const QStringList toUtf8 = words({ "--encoding", "UTF-8" });
    QVERIFY(written(dos->fromUnicode(drawing), toUtf8).contains(text.toUtf8()));
    // Read as the option says, whatever the bytes look like.
    const QByteArray misread =
        written(windows->fromUnicode(drawing), words({ "--from-encoding", "ISO-8859-1" }) + toUtf8);
    QVERIFY(misread.contains(QString::fromLatin1(windows->fromUnicode(text)).toUtf8()));
    const QByteArray other = written(drawing.toUtf8(), words({ "--encoding", "Windows-1251" }));
    QVERIFY(other.contains(windows->fromUnicode(text)));
}

void TestPrepareCommand::nameField()
{
    const TempFiles files;
    QByteArray header = pairHeader;
    header.replace("Columns 1\n  a Char(9)\n", "Columns 2\n  a Char(9)\n  Номер Char(9)\n");
    files.write(QStringLiteral("a.mif"), header + "Line 0 0 1 1\n");
    files.write(QStringLiteral("a.mid"), "\"x\",\"ЗУ1\"\n");
    const CommandRun run =
        runCommand(words({ "prepare", "a.mif", "-o", "b.mif", "--name-field", "Номер" }),
            files.path(QString()));
    QCOMPARE(run.status, 0);
    QCOMPARE(contentOf(files.path(QStringLiteral("b.mid"))), QByteArray("\"ЗУ1\",\"x\"\n"));
    const CommandRun missing = runCommand(
        words({ "prepare", "a.mif", "-o", "c.mif", "--name-field", "Имя" }), files.path(QString()));
    QCOMPARE(missing.status, 1);
    QCOMPARE(missing.errorLines(),
        QStringList{ QStringLiteral("a.mif: нет столбца «Имя» (--name-field)") });
    QVERIFY(!QFile::exists(files.path(QStringLiteral("c.mif"))));
}

QTEST_GUILESS_MAIN(TestPrepareCommand)
#include "tst_preparecommand.moc"
