#include "commandrun.h"
#include "samples.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <csignal>

namespace {

/// Bytes that are no UTF-8 in the name of a file.
const QString strangeName = QStringLiteral("$'p\\xd3\\xf7.mif'");

/// A folder with copies of the data files.
class Folder : public TempFiles {
public:
    Folder()
    {
        for (const QString& name : QDir(dataFile("")).entryList(QDir::Files))
            write(name, contentOf(dataFile(qPrintable(name))));
    }

    using TempFiles::path;
    QString path() const { return path(QString()); }
    QStringList names(const char* pattern) const
    {
        return QDir(path()).entryList(
            { QString::fromLatin1(pattern) }, QDir::AllEntries | QDir::System);
    }
    /// A line of shell run here; no command takes longer than it may, and none has files open that
    /// the tests were started with.
    CommandRun shell(const QString& script) const
    {
        return runShell(QStringLiteral("for f in $(ls /proc/$$/fd); do "
                                       "if [ $f -gt 2 ]; then eval \"exec $f>&-\"; fi; done; "
                                       "CLI=\"timeout 60 $CLI\"; ")
                + script,
            path());
    }
};

} // namespace

class TestCliFaults : public QObject {
    Q_OBJECT

private slots:
    // A program without its library

    /// The copy of the program alone reads and writes; only plans it cannot draw, and says so.
    void planWithoutItsLibrary()
    {
        const Folder folder;
        QVERIFY(QFile::copy(commandPath(), folder.path(QStringLiteral("alone"))));
        const CommandRun plan = folder.shell(
            QStringLiteral("./alone plan parcels.mif -o p.svg; echo $?; "
                           "./alone convert -q --encoding Windows-1251 parcels.mif -o p.xml"));
        QCOMPARE(plan.status, 0);
        QCOMPARE(plan.out, QByteArray("1\n"));
        QCOMPARE(plan.err,
            QStringLiteral("importgeometry: нет библиотеки рисования планов "
                           "(«importgeometry-plan.so» рядом с программой), или ей не хватает "
                           "Qt Gui: установите программу целиком\n"));
        QCOMPARE(folder.names("p.*"), QStringList(QStringLiteral("p.xml")));
    }

    void planWithItsLibrary()
    {
        const Folder folder;
        const QString library = QStringLiteral("importgeometry-plan.so");
        QVERIFY(QFile::copy(commandPath(), folder.path(QStringLiteral("alone"))));
        QVERIFY(
            QFile::copy(QFileInfo(commandPath()).dir().filePath(library), folder.path(library)));
        const CommandRun plan = folder.shell(
            QStringLiteral("./alone plan -q --encoding Windows-1251 parcels.mif -o p.svg"));
        QCOMPARE(plan.err, QString());
        QCOMPARE(plan.status, 0);
        QVERIFY(contentOf(folder.path(QStringLiteral("p.svg"))).startsWith("<?xml"));
    }

    /// It takes as long to load as a small file takes to be converted.
    void onlyPlansLoadQtGui()
    {
        const Folder folder;
        const CommandRun run = folder.shell(QStringLiteral(
            "for c in convert check plan; do LD_DEBUG=files $CLI $c --help 2>&1 >/dev/null | "
            "grep -q 'calling init:.*Qt5Gui' && echo $c; done; true"));
        QCOMPARE(run.out, QByteArray("plan\n"));
    }

    // Many files and few resources

    void fewDescriptors_data()
    {
        QTest::addColumn<int>("limit");
        for (const int limit : { 16, 18, 20, 22, 23, 24, 25, 26 })
            QTest::newRow(qPrintable(QString::number(limit))) << limit;
    }

    void fewDescriptors()
    {
        QFETCH(int, limit);
        const Folder folder;
        const CommandRun run = folder.shell(QStringLiteral(
            "for i in 1 2 3 4 5; do cp parcels.mif p$i.mif; cp parcels.mid p$i.mid; "
            "done; ulimit -n %1; $CLI convert --encoding Windows-1251 p?.mif --out-dir . --jobs 4")
                                                .arg(limit));
        QCOMPARE(
            run.errorLines().last(), QStringLiteral("Всего файлов: 5, записано: 5, с ошибками: 0"));
        QCOMPARE(run.errorLines().size(), 6);
        QCOMPARE(run.status, 0);
        QCOMPARE(folder.names("p?.xml").size(), 5);
    }

    void noRoomForAnyProcess()
    {
        const Folder folder;
        for (const char* command : { "convert --out-dir .", "check" }) {
            const CommandRun run =
                folder.shell(QStringLiteral("ulimit -n 12; $CLI %1 parcels.mif drawing.dxf")
                                 .arg(QString::fromLatin1(command)));
            QCOMPARE(run.status, 1);
            QCOMPARE(run.errorLines().mid(0, 2),
                words({ "parcels.mif: не хватает ресурсов, чтобы запустить процесс",
                    "drawing.dxf: не хватает ресурсов, чтобы запустить процесс" }));
            QVERIFY(run.errorLines().last().endsWith(QStringLiteral(": 2")));
        }
    }

    /// The process is there, but the program does not start in it: an argument that the shell could
    /// just hand over is too long together with its option.
    void argumentBeyondTheLimit()
    {
        const Folder folder;
        const CommandRun run =
            folder.shell(QStringLiteral("$CLI convert parcels.mif drawing.dxf --out-dir . "
                                        "--table \"$(head -c 131066 /dev/zero | tr '\\0' x)\""));
        QCOMPARE(run.status, 1);
        QCOMPARE(run.errorLines(),
            words({ "parcels.mif: не хватает ресурсов, чтобы запустить процесс",
                "drawing.dxf: не хватает ресурсов, чтобы запустить процесс",
                "Всего файлов: 2, записано: 0, с ошибками: 2" }));
    }

    void noRoomAtAll()
    {
        const Folder folder;
        for (const char* command : { "convert", "check", "plan -o a.svg" }) {
            const CommandRun run =
                folder.shell(QStringLiteral("ulimit -n 5; exec \"${CLI##* }\" %1 parcels.mif")
                                 .arg(QString::fromLatin1(command)));
            QCOMPARE(run.status, 1);
            QCOMPARE(run.errorLines(),
                words({ "importgeometry: слишком мало файлов можно открыть (ulimit -n)" }));
        }
    }

    // Permissions

    void permissionDenied_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QStringList>("errors");
        const auto row = [](const char* script, const QStringList& errors) {
            QTest::newRow(script) << QString::fromLatin1(script) << errors;
        };
        // Each pass opens the file.
        row("chmod 0 parcels.mif; $CLI convert -q parcels.mif -o a.xml",
            words({ "parcels.mif: Ошибка открытия файла parcels.mif",
                "parcels.mif: Ошибка открытия файла parcels.mif" }));
        row("chmod 0 parcels.mif; $CLI check parcels.mif",
            words({ "parcels.mif: Ошибка открытия файла parcels.mif" }));
        row("chmod 0 parcels.mif; $CLI plan -q parcels.mif -o a.svg",
            words({ "parcels.mif: Ошибка открытия файла parcels.mif",
                "parcels.mif: Ошибка открытия файла parcels.mif" }));
        row("chmod 0 parcels.mid; $CLI convert -q parcels.mif -o a.xml",
            words({ "parcels.mif: Ошибка открытия MID файла parcels.mid" }));
        row("chmod 0 points.mif; $CLI convert -q parcels.mif --points points.mif -o a.xml",
            words({ "parcels.mif: Ошибка открытия файла points.mif" }));
        row("mkdir no; chmod 555 no; $CLI convert -q parcels.mif -o no/a.xml",
            words({ "importgeometry: no/a.xml: не удаётся создать файл: нет прав на запись" }));
        row("mkdir no; chmod 555 no; $CLI plan -q parcels.mif -o no/a.svg",
            words({ "importgeometry: no/a.svg: не удаётся создать файл: нет прав на запись" }));
        row("mkdir no; chmod 0 no; $CLI convert -q parcels.mif drawing.dxf --out-dir no",
            words({ "importgeometry: no/parcels.xml: не удаётся создать файл: нет прав на запись",
                "parcels.mif: с ошибками",
                "importgeometry: no/drawing.xml: не удаётся создать файл: нет прав на запись",
                "drawing.dxf: с ошибками" }));
        row("echo before >a.xml; chmod 444 a.xml; $CLI convert -q parcels.mif -o a.xml",
            words({ "importgeometry: a.xml: не удаётся создать файл: нет прав на запись" }));
    }

    void permissionDenied()
    {
        QFETCH(QString, script);
        QFETCH(QStringList, errors);
        const Folder folder;
        // The super-user is above permissions as long as he has these capabilities.
        const QString without =
            QStringLiteral("[ $(id -u) -ne 0 ] || P='setpriv --bounding-set "
                           "-dac_override,-dac_read_search'; CLI=\"$P $CLI\"; ");
        const CommandRun denied = folder.shell(
            without + QStringLiteral("echo x >x; chmod 0 x; $P true || exit 9; $P cat x"));
        if (denied.status == 9 || denied.out == "x\n")
            QSKIP("Permissions cannot be made to hold here");

        const CommandRun run = folder.shell(without + script);
        folder.shell(QStringLiteral("[ ! -e no ] || chmod 755 no"));
        QCOMPARE(run.errorLines(), errors);
        QCOMPARE(run.status, 1);
        const QString result = QStringLiteral("a.xml");
        if (QFile::exists(folder.path(result)))
            QCOMPARE(contentOf(folder.path(result)), QByteArray("before\n"));
        QVERIFY(folder.names("a.svg").isEmpty());
    }

    // Pipes

    void interruptWhileAPipeOpens_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGTERM") << SIGTERM;
    }

    void interruptWhileAPipeOpens()
    {
        QFETCH(int, signal);
        const Folder folder;
        folder.shell(QStringLiteral("mkfifo a.xml"));
        QProcess process;
        process.setWorkingDirectory(folder.path());
        startProgram(
            process, commandPath(), words({ "convert", "-q", "parcels.mif", "-o", "a.xml" }));
        QVERIFY(process.waitForStarted());
        waitForOpening(process);
        kill(static_cast<pid_t>(process.processId()), signal);
        const bool ended = process.waitForFinished(10000);
        if (!ended)
            process.kill();
        QVERIFY(ended);
        QCOMPARE(process.exitStatus(), QProcess::CrashExit);
        QCOMPARE(process.exitCode(), signal);
        QCOMPARE(process.readAllStandardError(), QByteArray("importgeometry: прервано\n"));
    }

    void pipesAreRefused_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("pipe");
        const auto row = [](const char* script, const char* file, const char* pipe) {
            QTest::newRow(script) << QString::fromLatin1(script) << QString::fromLatin1(file)
                                  << QString::fromLatin1(pipe);
        };
        row("mkfifo a.mif; $CLI convert a.mif", "a.mif", "a.mif");
        row("mkfifo a.mif; $CLI check a.mif", "a.mif", "a.mif");
        row("mkfifo a.mif; $CLI plan a.mif -o a.svg", "a.mif", "a.mif");
        row("mkfifo p.mif; $CLI convert parcels.mif --points p.mif", "parcels.mif", "p.mif");
        row("cp parcels.mif a.mif; mkfifo a.mid; $CLI convert a.mif", "a.mif", "a.mid");
    }

    void pipesAreRefused()
    {
        QFETCH(QString, script);
        QFETCH(QString, file);
        QFETCH(QString, pipe);
        const Folder folder;
        const CommandRun run = folder.shell(script);
        QCOMPARE(run.status, 1);
        QCOMPARE(run.errorLines(),
            QStringList(
                QStringLiteral("%1: Ошибка открытия файла %2: это именованный канал; данные "
                               "из канала подают на стандартный ввод")
                    .arg(file, pipe)));
        QCOMPARE(run.out, QByteArray());
    }

    void pipesBesideACheckedFile()
    {
        const Folder folder;
        const CommandRun run =
            folder.shell(QStringLiteral("cp parcels.mif a.mif; mkfifo p.mif a.mid; $CLI check "
                                        "parcels.mif --points p.mif; $CLI check a.mif"));
        QCOMPARE(run.status, 3);
        const QString out = QString::fromUtf8(run.out);
        for (const char* place : { "parcels.mif: сообщение: Ошибка открытия файла p.mif",
                 "a.mif: сообщение: Ошибка открытия файла a.mid" }) {
            QVERIFY2(out.contains(QString::fromUtf8(place)
                         + QStringLiteral(": это именованный канал; данные из канала подают на "
                                          "стандартный ввод\n")),
                run.out);
        }
    }

    void devicesAreRefused()
    {
        const Folder folder;
        const CommandRun run = folder.shell(QStringLiteral("$CLI convert /dev/zero --format mif"));
        QCOMPARE(run.status, 1);
        QCOMPARE(run.errorLines(),
            words({ "/dev/zero: Ошибка открытия файла /dev/zero: это устройство" }));
    }

    void standardInput_data()
    {
        QTest::addColumn<QString>("script");
        QTest::newRow("pipe") << QStringLiteral("cat drawing.dxf | $CLI convert -q - --format dxf");
        QTest::newRow("file") << QStringLiteral("$CLI convert -q - --format dxf < drawing.dxf");
        QTest::newRow("by its other name")
            << QStringLiteral("cat drawing.dxf | $CLI convert -q /dev/stdin --format dxf");
    }

    void standardInput()
    {
        QFETCH(QString, script);
        const Folder folder;
        const CommandRun run = folder.shell(script);
        QCOMPARE(run.err, QString());
        QCOMPARE(run.status, 0);
        QCOMPARE(run.out, folder.shell(QStringLiteral("$CLI convert drawing.dxf")).out);
        QCOMPARE(folder.shell(QStringLiteral("cat drawing.dxf | $CLI convert -")).status, 2);
    }

    // Names and texts

    void planOverItsInput()
    {
        const Folder folder;
        const CommandRun run = folder.shell(QStringLiteral(
            "cp parcels.mif a.svg; cp parcels.mid a.svd; $CLI plan a.svg --format mif -o ./a.svg"));
        QCOMPARE(run.status, 2);
        QCOMPARE(run.errorLines().first(),
            QStringLiteral("importgeometry: ./a.svg: результат заменил бы исходный файл"));
        QCOMPARE(
            contentOf(folder.path(QStringLiteral("a.svg"))), contentOf(dataFile("parcels.mif")));
        const CommandRun points = folder.shell(
            QStringLiteral("cp points.mif b.svg; $CLI plan parcels.mif --points b.svg -o b.svg"));
        QCOMPARE(points.status, 2);
    }

    void namesThatAreNoUtf8()
    {
        const Folder folder;
        const CommandRun run = folder.shell(QStringLiteral(
            "cp parcels.mif %1; cp parcels.mid $'p\\xd3\\xf7.mid'; "
            "$CLI convert -q %1 -o $'r\\xff.xml'; echo $?; "
            "cmp $'r\\xff.xml' <($CLI convert -q parcels.mif); echo $?; "
            "$CLI convert --encoding Windows-1251 %1 parcels.mif --out-dir .; LC_ALL=C ls -b "
            "*.xml; rm $'p\\xd3\\xf7'* $'r\\xff.xml'")
                                                .arg(strangeName));
        QCOMPARE(run.out, QByteArray("0\n0\nparcels.xml\np\\323\\367.xml\nr\\377.xml\n"));
        QCOMPARE(run.errorLines(),
            words({ "p\\xD3\\xF7.mif: записано в ./p\\xD3\\xF7.xml",
                "parcels.mif: записано в ./parcels.xml",
                "Всего файлов: 2, записано: 2, с ошибками: 0" }));
    }

    void namesThatAreNoUtf8InReports()
    {
        const Folder folder;
        const CommandRun run = folder.shell(QStringLiteral(
            "cp parcels.mif %1; cp parcels.mid $'p\\xd3\\xf7.mid'; "
            "$CLI check --encoding Windows-1251 %1 | tail -n 1; "
            "$CLI check --json --encoding Windows-1251 %1 | grep '^        \"file\"'; "
            "rm $'p\\xd3\\xf7'*")
                                                .arg(strangeName));
        QCOMPARE(QString::fromUtf8(run.out),
            QStringLiteral("p\\xD3\\xF7.mif: замечаний нет\n"
                           "        \"file\": \"p\\udcd3\\udcf7.mif\",\n"));
    }

    void fileOfManyGigabytes()
    {
        // Nothing of it takes room on the disk, nor is more than its start read.
        const Folder folder;
        const CommandRun run = folder.shell(
            QStringLiteral("printf 'AutoCAD Binary DXF\\r\\n\\n\\n' >a.dxf; "
                           "truncate -s 2200M a.dxf || exit 9; $CLI check a.dxf; rm a.dxf"));
        if (run.status == 9)
            QSKIP("No such file can be made here");
        QVERIFY2(run.out.contains(QStringLiteral("a.dxf: причина: Это не текстовый файл, а "
                                                 "двоичный DXF.\n")
                                      .toUtf8()),
            run.out);
    }

    void controlCharacters()
    {
        // A designation that would end the line and another that would name the window.
        const Folder folder;
        folder.write(QStringLiteral("a.dxf"),
            drawing("0\nTEXT\n10\n0\n20\n0\n1\nA%%010fine.dxf: ok%%027]0;x%%127%%007\n"
                    "0\nLINE\n10\n0\n20\n0\n11\n1\n21\n1\n0\nLINE\n10\n0\n20\n0\n11\n1\n21\n1\n"
                    "0\nK\x1b[31m\n0\n\xC2\x9B"
                    "2J\n"));
        const CommandRun run = folder.shell(QStringLiteral("$CLI check a.dxf --encoding UTF-8"));
        QCOMPARE(run.status, 3);
        const QString text = QString::fromUtf8(run.out);
        QVERIFY2(
            text.contains(QStringLiteral("a.dxf: обозначение «A␊fine.dxf: ok␛]0;x␡␇» повторяется у "
                                         "объектов 1, 2\n")),
            run.out);
        QVERIFY2(text.contains(QStringLiteral("a.dxf: K␛[31m: 1, ")), run.out);
        QVERIFY2(text.contains(QStringLiteral("a.dxf: \\u{9B}2J: 1, ")), run.out);
        for (const QString& line : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            QVERIFY2(line.startsWith(QLatin1String("a.dxf:")), qPrintable(line));

        const CommandRun json =
            folder.shell(QStringLiteral("$CLI check a.dxf --encoding UTF-8 --json"));
        QVERIFY2(json.out.contains("\\u009b2J") && !json.out.contains("\xC2\x9B"), json.out);
    }

    void controlCharactersInNames()
    {
        const Folder folder;
        const CommandRun run = folder.shell(
            QStringLiteral("cp broken.mif $'x\\n\\e[2J\\xe2\\x80\\xaey.mif'; cp broken.mid "
                           "$'x\\n\\e[2J\\xe2\\x80\\xaey.mid'; "
                           "$CLI convert x*y.mif -o a.xml; $CLI check x*y.mif | head -n 1"));
        QCOMPARE(run.errorLines(),
            words({ "x␊␛[2J\\u{202E}y.mif: Ошибка чтения области из строки: 22" }));
        QVERIFY(QString::fromUtf8(run.out).startsWith(
            QStringLiteral("x␊␛[2J\\u{202E}y.mif: прочитано объектов: 2")));
    }
};

QTEST_GUILESS_MAIN(TestCliFaults)
#include "tst_clifaults.moc"
