#include "commandrun.h"
#include "samples.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QTest>

namespace {

const QByteArray line = "0\nLINE\n10\n0\n20\n0\n11\n5\n21\n5\n";

} // namespace

/// What convert, plan and export tell of what they did not take, and how they take files.
class TestCliLosses : public QObject {
    Q_OBJECT

private slots:
    void told_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("loss");
        const auto row = [](const char* name, const QByteArray& content, const char* loss) {
            QTest::newRow(name) << content << QString::fromUtf8(loss);
        };
        row("nothing", drawing(line), "");
        row("no objects", drawing("0\nPOINT\n10\n0\n20\n0\n"),
            "В файле нет объектов, из которых складываются контуры: в нём только POINT - 1.");
        row("inserts alone", drawing("0\nINSERT\n2\nP\n10\n0\n20\n0\n"),
            "В чертеже нет линий и полилиний, а содержимое блоков (вставок: 1) не читается.");
        row("kinds", drawing(line + "0\nARC\n0\nHATCH\n0\nARC\n"),
            "Не прочитана часть элементов: ARC - 2, HATCH - 1.");
        row("labels", drawing(line + "0\nMTEXT\n10\n0\n20\n0\n1\nA\n"),
            "Надписи записаны как MTEXT (1), а обозначения ищутся только в TEXT.");
        row("encoding", drawing(line + "0\nTEXT\n10\n0\n20\n0\n1\n\xD3\xF7\xE0\xF1\xF2\xEE\xEA\n"),
            "Байты файла похожи на Windows-1251, а выбрана другая кодировка.");
        row("degrees", drawing("0\nLINE\n10\n37.6\n20\n55.7\n11\n37.61\n21\n55.71\n"),
            "Координаты записаны в градусах, а допуск 0.01 и два знака после запятой рассчитаны на "
            "метры: вершины сливаются.");
        row("axes", drawing("0\nLINE\n10\n451234\n20\n2201234\n11\n451250\n21\n2201250\n"),
            "Север и восток переставлены: первая координата в файле похожа на север, вторая на "
            "восток, и север попадает в столбец после востока.");
    }

    void told()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, loss);
        const TempFiles folder;
        folder.write(QStringLiteral("a.dxf"), content);
        const QStringList lines = loss.isEmpty()
            ? QStringList()
            : QStringList(QStringLiteral("a.dxf: внимание: ") + loss);
        const auto run = [&](std::initializer_list<const char*> arguments) {
            return runCommand(words(arguments) + words({ "a.dxf", "--encoding=UTF-8" }),
                folder.path(QStringLiteral(".")));
        };
        const CommandRun converted = run({ "convert" });
        QCOMPARE(converted.errorLines(), lines);
        QCOMPARE(converted.status, 0);
        const CommandRun quiet = run({ "convert", "--quiet" });
        QCOMPARE(quiet.err, QString());
        QCOMPARE(quiet.out, converted.out);
        const CommandRun plan = run({ "plan", "-o", "-" });
        QCOMPARE(plan.errorLines(), lines);
        QVERIFY(plan.out.contains("<svg"));

        const CommandRun strict = run({ "convert", "--strict", "-o", "a.xml" });
        QCOMPARE(strict.status, loss.isEmpty() ? 0 : 1);
        QCOMPARE(QFile::exists(folder.path(QStringLiteral("a.xml"))), loss.isEmpty());
        const CommandRun verbose = run({ "convert", "-v" });
        QCOMPARE(verbose.errorLines().size(), 2 * lines.size());
    }

    /// A preparation tells what it did and left; only what is lost counts for --strict.
    void prepared_data()
    {
        QTest::addColumn<QByteArray>("entity");
        QTest::addColumn<QString>("told");
        QTest::addColumn<bool>("isLost");
        QTest::newRow("nothing") << QByteArray() << QString() << false;
        QTest::newRow("arc") << QByteArray("0\nARC\n10\n0\n20\n0\n40\n5\n50\n0\n51\n90\n")
                             << QStringLiteral("исправлено: кривые заменены хордами: 1") << false;
        QTest::newRow("solid") << QByteArray("0\n3DSOLID\n1\nx\n")
                               << QStringLiteral(
                                      "не перенесено: этот вид объектов не переводится: 1")
                               << true;
    }

    void prepared()
    {
        QFETCH(QByteArray, entity);
        QFETCH(QString, told);
        QFETCH(bool, isLost);
        const TempFiles folder;
        folder.write(QStringLiteral("a.dxf"), drawing(line + entity));
        const QStringList lines =
            told.isEmpty() ? QStringList() : QStringList(QStringLiteral("a.dxf: ") + told);
        const auto run = [&](const char* option) {
            return runCommand(words({ "convert", "a.dxf", "--prepare", "-o", "a.xml", option }),
                folder.path(QStringLiteral(".")));
        };
        const CommandRun strict = run("--strict");
        QCOMPARE(strict.errorLines(), lines);
        QCOMPARE(strict.status, isLost ? 1 : 0);
        QCOMPARE(QFile::exists(folder.path(QStringLiteral("a.xml"))), !isLost);
        const CommandRun plain = run("--sort");
        QCOMPARE(plain.errorLines(), lines);
        QCOMPARE(plain.status, isLost ? 3 : 0);
        QVERIFY(QFile::exists(folder.path(QStringLiteral("a.xml"))));
    }

    void likelyEncoding()
    {
        const TempFiles folder;
        folder.write(QStringLiteral("a.mif"), mifHeader() + "Line 0 0 1 1\n");
        folder.write(QStringLiteral("a.mid"), "\x93\xE7\xA0\xE1\xE2\xAE\xAA\n");
        const CommandRun run = runCommand(
            words({ "convert", "a.mif", "--encoding=auto" }), folder.path(QStringLiteral(".")));
        QCOMPARE(run.errorLines(), words({ "a.mif: кодировка: IBM866" }));
        QVERIFY(QString::fromUtf8(run.out).contains(QStringLiteral("<Cell>Участок</Cell>")));
    }

    void folders()
    {
        const TempFiles folder;
        QVERIFY(QDir(folder.path(QStringLiteral("."))).mkpath(QStringLiteral("in/deep")));
        for (const char* name : { "in/b.dxf", "in/a.DXF", "in/deep/a.dxf" })
            folder.write(QLatin1String(name), drawing(line));
        folder.write(QStringLiteral("in/readme.txt"), "no drawing");
        const CommandRun flat = runCommand(
            words({ "convert", "in", "--out-dir", "new/out" }), folder.path(QStringLiteral(".")));
        QCOMPARE(flat.status, 0);
        QCOMPARE(flat.errorLines(),
            words({ "in/a.DXF: записано в new/out/a.xml", "in/b.dxf: записано в new/out/b.xml",
                "Всего файлов: 2, записано: 2, с ошибками: 0" }));
        const CommandRun deep =
            runCommand(words({ "convert", "-q", "-j", "in", "--recursive", "--out-dir", "all" }),
                folder.path(QStringLiteral(".")));
        QCOMPARE(deep.err, QString());
        QCOMPARE(deep.status, 0);
        QVERIFY(QFile::exists(folder.path(QStringLiteral("all/deep/a.xml"))));
        QVERIFY(QFile::exists(folder.path(QStringLiteral("all/a.xml"))));
    }

    void summary()
    {
        const TempFiles folder;
        folder.write(QStringLiteral("a.dxf"), drawing(line));
        folder.write(QStringLiteral("b.dxf"), "999\na\n" + drawing(line));
        folder.write(QStringLiteral("c.dxf"), "999\na\n" + drawing(line));
        // A name behind that of the messages; findings about objects come behind all causes.
        folder.write(QStringLiteral("d.dxf"), "0\nLINE\n");
        folder.write(QStringLiteral("e.mif"), mifHeader() + "Region 0\n");
        folder.write(QStringLiteral("e.mid"), "1\n");
        const CommandRun run = runCommand(
            words({ "check", ".", "--summary", "--quiet" }), folder.path(QStringLiteral(".")));
        QCOMPARE(run.status, 3);
        QCOMPARE(QString::fromUtf8(run.out),
            QStringLiteral("файлов: 5, с замечаниями: 4\n"
                           "leading-comment: файлов: 2, замечаний: 2\n"
                           "not-dxf: файлов: 1, замечаний: 1\n"
                           "сообщения импорта: файлов: 3, замечаний: 3\n"
                           "контуры с недостатком вершин: файлов: 1, замечаний: 1\n"));
        const CommandRun lines = runCommand(
            words({ "check", ".", "--json-lines", "--quiet" }), folder.path(QStringLiteral(".")));
        QCOMPARE(lines.out.count('\n'), 5);
        QCOMPARE(lines.out.count("leading-comment"), 2);
    }

    void tenOfAKind()
    {
        const TempFiles folder;
        QByteArray objects = mifHeader();
        QByteArray rows;
        for (int i = 0; i < 25; ++i) {
            objects += "Region 0\n";
            rows += QByteArray::number(i) + '\n';
        }
        folder.write(QStringLiteral("a.mif"), objects);
        folder.write(QStringLiteral("a.mid"), rows);
        const CommandRun run =
            runCommand(words({ "check", "a.mif" }), folder.path(QStringLiteral(".")));
        const QString text = QString::fromUtf8(run.out);
        QCOMPARE(text.count(QStringLiteral("нет ни одного контура")), 10);
        QVERIFY(text.contains(
            QStringLiteral("a.mif: и ещё неполных контуров: 15 (все показывает --all)\n")));
        QVERIFY(text.endsWith(QStringLiteral("замечаний: 25\n")));
        const CommandRun all =
            runCommand(words({ "check", "a.mif", "--all" }), folder.path(QStringLiteral(".")));
        QCOMPARE(QString::fromUtf8(all.out).count(QStringLiteral("нет ни одного контура")), 25);
    }

    void explainedCauses()
    {
        const CommandRun run =
            runCommand(words({ "check", "--explain", "axes" }), QDir::currentPath());
        QCOMPARE(run.status, 0);
        QVERIFY(QString::fromUtf8(run.out).startsWith(QStringLiteral("axes\n    Север и восток")));
        const CommandRun all =
            runCommand(words({ "check", "--explain", "all" }), QDir::currentPath());
        for (const char* id : { "degrees\n", "left-out\n", "encoding\n" })
            QVERIFY(all.out.contains(id));
    }

    void sizes()
    {
        const TempFiles folder;
        folder.write(QStringLiteral("a.dxf"), drawing(line));
        for (const char* size : { "300x200", "300X200", "300х200", "300Х200", "300×200" }) {
            const CommandRun run = runCommand(words({ "plan", "a.dxf", "-o", "-", "--size", size }),
                folder.path(QStringLiteral(".")));
            QCOMPARE(run.status, 0);
            QVERIFY(run.out.contains("width=\"300\" height=\"200\""));
        }
    }

    void coloursOnATerminal()
    {
        const TempFiles folder;
        folder.write(QStringLiteral("a.dxf"), "999\na\n" + drawing(line));
        const auto onTerminal = [&](const char* variables) {
            return runShell(
                QStringLiteral("%1 TERM=xterm script -qec \"$CLI check a.dxf\" /dev/null")
                    .arg(QLatin1String(variables)),
                folder.path(QStringLiteral(".")));
        };
        if (runShell(QStringLiteral("script -qec true /dev/null"), folder.path(QStringLiteral(".")))
                .status
            != 0)
            QSKIP("script is not installed");
        QVERIFY(onTerminal("").out.contains("\033[33m"));
        QVERIFY(!onTerminal("NO_COLOR=1").out.contains("\033[33m"));
        QVERIFY(!runCommand(words({ "check", "a.dxf" }), folder.path(QStringLiteral(".")))
                     .out.contains('\033'));
    }
};

QTEST_GUILESS_MAIN(TestCliLosses)
#include "tst_clilosses.moc"
