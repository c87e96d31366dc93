#include "commandrun.h"
#include "samples.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

namespace {

const QByteArray twoPoints = "10\n0\n20\n0\n10\n9\n20\n0\n";

/// A folder with copies of the data files that is searched for what a command left.
class Folder {
public:
    Folder()
    {
        for (const QString& name : QDir(dataFile("")).entryList(QDir::Files))
            write(name, contentOf(dataFile(qPrintable(name))));
        m_copied = names();
    }

    QString path() const { return m_folder.path(QString()); }
    QString path(const QString& name) const { return m_folder.path(name); }
    void write(const QString& name, const QByteArray& content) const
    {
        m_folder.write(name, content);
    }
    /// What was not there at first.
    QStringList added() const
    {
        QStringList added = names();
        for (const QString& name : m_copied)
            added.removeAll(name);
        return added;
    }

private:
    QStringList names() const
    {
        return QDir(path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    TempFiles m_folder;
    QStringList m_copied;
};

/// Milliseconds until a large file must be at hand, with sanitizers and other work going on; less
/// than a test function is given.
constexpr int patience = 240000;

/// Squares enough to keep the command writing for a while.
template <typename Files>
QString writeLargeMif(const Files& files)
{
    QByteArray mif = mifHeader();
    QByteArray mid;
    for (int i = 0; i < 240000; ++i) {
        const QByteArray x = QByteArray::number(i * 10);
        mif += "Region 1\n5\n" + x + " 0\n" + x + " 5\n" + x + ".5 5\n" + x + ".5 0\n" + x + " 0\n";
        mid += "a\n";
    }
    files.write(QStringLiteral("large.mif"), mif);
    files.write(QStringLiteral("large.mid"), mid);
    return files.path(QStringLiteral("large.mif"));
}

QStringList lines(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly)
        ? QString::fromLocal8Bit(file.readAll())
              .split(QRegularExpression(QStringLiteral("\\s")), Qt::SkipEmptyParts)
        : QStringList();
}

/// Whether a process has a file of the folder open, be it one without a name.
bool isWritingIn(const QString& folder, const QString& process)
{
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(process));
    for (const QFileInfo& info : descriptors.entryInfoList(QDir::Files | QDir::System)) {
        if (info.symLinkTarget().startsWith(folder + QLatin1Char('/')))
            return true;
    }
    return false;
}

QStringList childrenOf(const QString& process)
{
    return lines(QStringLiteral("/proc/%1/task/%1/children").arg(process));
}

/// Waits until the process, or `count` of its children, write in the folder; false when it has
/// ended before that was seen.
bool waitUntilWriting(const QProcess& process, const Folder& folder, int count)
{
    const QString id = QString::number(process.processId());
    const auto areWriting = [&] {
        int writing = 0;
        for (const QString& candidate : QStringList(id) + childrenOf(id))
            writing += isWritingIn(folder.path(), candidate) ? 1 : 0;
        return writing >= count;
    };
    bool isSeen = false;
    return QTest::qWaitFor(
               [&] {
                   isSeen = areWriting();
                   return isSeen || process.state() == QProcess::NotRunning;
               },
               patience)
        && isSeen;
}

void sendSignal(const QString& process, int signal)
{
    kill(static_cast<pid_t>(process.toLong()), signal);
}

QJsonObject reportOf(const CommandRun& run)
{
    return QJsonDocument::fromJson(run.out).array().first().toObject();
}

QString idOf(const QJsonValue& cause)
{
    return cause.toObject().value(QLatin1String("id")).toString();
}

} // namespace

class TestCli : public QObject {
    Q_OBJECT

private slots:
    void help_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("parts");
        QTest::newRow("program") << words({ "--help" })
                                 << words({ "Использование: importgeometry КОМАНДА", "convert",
                                        "check", "plan", "3 - проверка нашла" });
        QTest::newRow("short") << words({ "-h" }) << words({ "Использование:" });
        QTest::newRow("short version") << words({ "-V" }) << words({ "importgeometry 1." });
        QTest::newRow("help") << words({ "help" }) << words({ "Использование: importgeometry К" });
        QTest::newRow("help of a command")
            << words({ "help", "export" }) << words({ "importgeometry export", "--locale" });
        QTest::newRow("version") << words({ "--version" }) << words({ "importgeometry 1." });
        QTest::newRow("convert") << words({ "convert", "--help" })
                                 << words({ "Использование: importgeometry convert ФАЙЛ...",
                                        "Параметры:", "Аргументы:", "--output", "--out-dir",
                                        "--jobs", "--partial", "--format", "--points",
                                        "--search-points", "--search-objects", "--point-prefix",
                                        "--object-prefix", "--point-start", "--object-start",
                                        "--encoding", "--list-encodings", "--field", "--sort",
                                        "--update", "--table", "--catalogue", "--columns",
                                        "--object-column" });
        QTest::newRow("check") << words({ "check", "-h" })
                               << words({ "importgeometry check ФАЙЛ...", "--json" });
        QTest::newRow("plan") << words({ "plan", "--help" })
                              << words({ "importgeometry plan ФАЙЛ...", "--size" });
    }

    void help()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, parts);
        const CommandRun run = runCommand(arguments, QDir::currentPath());
        QCOMPARE(run.status, 0);
        QCOMPARE(run.err, QString());
        const QString out = QString::fromUtf8(run.out);
        for (const QString& part : parts)
            QVERIFY2(out.contains(part), qPrintable(part));
        for (const char* english : { "Usage", "Options:", "Arguments:", "Displays" })
            QVERIFY2(!run.out.contains(english), english);
    }

    void wrongUsage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* name, std::initializer_list<const char*> arguments,
                             const char* message) {
            QTest::newRow(name) << words(arguments) << QString::fromUtf8(message);
        };
        row("nothing", {}, "не указана команда: convert, check, plan, export, prepare");
        row("unknown option of the program", { "--vrsion" },
            "неизвестный параметр «--vrsion»; возможно, «--version»");
        row("unknown command", { "konvert" }, "неизвестная команда «konvert»; возможно, «convert»");
        row("no file", { "convert" }, "не указан ни один файл");
        row("unknown option", { "convert", "parcels.mif", "--swap" },
            "неизвестный параметр «--swap»; возможно, «--swap-xy»");
        row("mistyped option", { "convert", "parcels.mif", "--out-dri=." },
            "неизвестный параметр «--out-dri»; возможно, «--out-dir»");
        row("several unknown options", { "convert", "parcels.mif", "--strickt", "--zzz" },
            "неизвестный параметр «--strickt»; возможно, «--strict», неизвестный параметр "
            "«--zzz»");
        row("long option with one dash", { "convert", "parcels.mif", "-strict" },
            "неизвестный параметр «-strict»; возможно, «--strict»");
        row("short option", { "check", "parcels.mif", "-x" }, "неизвестный параметр «-x»");
        // Options of Qt are none of the program.
        row("platform of Qt", { "plan", "parcels.mif", "-o", "a.svg", "-platform", "xcb" },
            "неизвестный параметр «-platform»");
        row("style of Qt", { "plan", "-style", "x", "parcels.mif", "-o", "a.svg" },
            "неизвестный параметр «-style»");
        row("debugger of Qt", { "convert", "parcels.mif", "-qmljsdebugger=x" },
            "неизвестный параметр «-qmljsdebugger=x»");
        row("mistyped command after help", { "help", "chek" },
            "неизвестная команда «chek»; возможно, «check»");
        row("MID file", { "convert", "parcels.mid" },
            "parcels.mid: импортируют файл MIF, а MID читается вместе с ним: укажите parcels.mif");
        row("folder without files", { "check", "/proc/self/task" },
            "/proc/self/task: в папке нет файлов mif и dxf; вложенные папки просматривает "
            "--recursive");
        row("column twice", { "convert", "parcels.mif", "--columns=1,2,2" },
            "--columns: один столбец указан дважды: «1,2,2»");
        row("quiet and verbose", { "convert", "parcels.mif", "-q", "-v" },
            "-q и -v вместе не указывают");
        row("two forms of a check", { "check", "parcels.mif", "--json", "--summary" },
            "--json, --json-lines и --summary вместе не указывают");
        row("unknown cause", { "check", "--explain=axis" },
            "--explain: неизвестная причина «axis»; возможно, «axes»; все - --explain all");
        row("export to nowhere", { "export", "parcels.mif" },
            "укажите -o ФАЙЛ.csv, ФАЙЛ.geojson или ФАЙЛ.mif, для стандартного вывода - --to csv "
            "или --to geojson");
        row("export of two files to one", { "export", "parcels.mif", "--to=mif" },
            "MIF - это два файла: укажите -o ФАЙЛ.mif");
        row("export over the MID file",
            { "export", "points.mif", "parcels.mif", "-o", "parcels.mif" },
            "parcels.mif: результат заменил бы исходный файл");
        row("missing value", { "convert", "parcels.mif", "-o" }, "параметру «-o» нужно значение");
        row("unexpected value", { "convert", "parcels.mif", "--sort=1" },
            "параметр «--sort» не принимает значения");
        row("unknown encoding", { "convert", "parcels.mif", "--encoding=KOI-9" },
            "неизвестная кодировка «KOI-9»; список даёт --list-encodings");
        row("unknown extension", { "convert", "parcels.tab" },
            "parcels.tab: формат по расширению не определить; укажите --format mif или dxf");
        row("unknown format", { "convert", "parcels.mif", "--format=tab" },
            "--format: ожидается mif или dxf, а не «tab»");
        row("search", { "convert", "parcels.mif", "--search-points=yes" },
            "--search-points: ожидается on или off, а не «yes»");
        row("start below 1", { "convert", "parcels.mif", "--point-start=0" },
            "--point-start: ожидается целое число от 1 до 999999999, а не «0»");
        row("start is a word", { "convert", "parcels.mif", "--object-start=a" },
            "--object-start: ожидается целое число от 1 до 999999999, а не «a»");
        row("long prefix", { "convert", "parcels.mif", "--point-prefix=123456789012345678901" },
            "--point-prefix: не больше 20 символов");
        row("field without text", { "convert", "parcels.mif", "--field=4" },
            "--field: ожидается СТОЛБЕЦ=ТЕКСТ, а не «4»");
        row("field column", { "convert", "parcels.mif", "--field=21=a" },
            "--field: ожидается целое число от 1 до 20, а не «21»");
        row("two columns", { "convert", "parcels.mif", "--columns=1,2" },
            "--columns: ожидается N,X,Y, а не «1,2»");
        row("four columns", { "convert", "parcels.mif", "--columns=1,2,3,4" },
            "--columns: ожидается N,X,Y, а не «1,2,3,4»");
        row("column nought", { "convert", "parcels.mif", "--columns=0,1,2" },
            "--columns: ожидается целое число от 1 до 1000, а не «0»");
        row("object column", { "convert", "parcels.mif", "--object-column=0" },
            "--object-column: ожидается целое число от 1 до 1000, а не «0»");
        row("no jobs", { "convert", "parcels.mif", "--jobs=0" },
            "--jobs: ожидается целое число от 1 до 256, а не «0»");
        row("many files, one output", { "convert", "parcels.mif", "points.mif", "-o", "a.xml" },
            "для нескольких файлов укажите --out-dir");
        row("two outputs", { "convert", "parcels.mif", "-o", "a.xml", "--out-dir=." },
            "-o и --out-dir вместе не указывают");
        row("one result for two", { "convert", "parcels.mif", "./parcels.mif", "--out-dir=." },
            "файлы parcels.mif и ./parcels.mif дали бы один результат ./parcels.xml");
        row("result over the source", { "convert", "parcels.mif", "-o", "./parcels.mif" },
            "./parcels.mif: результат заменил бы исходный файл");
        row("result over the MID file", { "convert", "parcels.mif", "-o", "parcels.mid" },
            "parcels.mid: результат заменил бы исходный файл");
        row("result over the points",
            { "convert", "parcels.mif", "--points=points.mif", "-o", "points.mif" },
            "points.mif: результат заменил бы исходный файл");
        row("empty name", { "convert", "parcels.mif", "-o", "" },
            "--output: имя не может быть пустым");
        row("plan without a file", { "plan", "parcels.mif" },
            "укажите файл рисунка: -o ФАЙЛ.svg или -o ФАЙЛ.png");
        row("plan of another kind", { "plan", "parcels.mif", "-o", "a.pdf" },
            "укажите файл рисунка: -o ФАЙЛ.svg или -o ФАЙЛ.png");
        row("size", { "plan", "parcels.mif", "-o", "a.svg", "--size=100" },
            "--size: ожидается ШxВ, а не «100»");
        row("three sides", { "plan", "parcels.mif", "-o", "a.svg", "--size=300x300x300" },
            "--size: ожидается ШxВ, а не «300x300x300»");
    }

    void wrongUsage()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const Folder folder;
        const CommandRun run = runCommand(arguments, folder.path());
        QCOMPARE(run.status, 2);
        QCOMPARE(run.errorLines().value(0), QStringLiteral("importgeometry: ") + message);
        QVERIFY(run.errorLines().value(1).startsWith(QStringLiteral("Справка: importgeometry")));
        QCOMPARE(run.out, QByteArray());
        QCOMPARE(folder.added(), QStringList());
    }

    void listEncodings()
    {
        const CommandRun run =
            runCommand(words({ "convert", "--list-encodings" }), QDir::currentPath());
        QCOMPARE(run.status, 0);
        const QList<QByteArray> names = run.out.trimmed().split('\n');
        for (const char* name : { "Default", "windows-1251", "IBM866", "UTF-8" }) {
            QVERIFY2(std::any_of(names.cbegin(), names.cend(),
                         [name](const QByteArray& listed) {
                             return qstricmp(listed.constData(), name) == 0;
                         }),
                name);
        }
    }

    // Output

    void outputFile()
    {
        const Folder folder;
        const CommandRun run =
            runCommand(words({ "convert", "parcels.mif", "-q", "-o", "a.xml" }), folder.path());
        QCOMPARE(run.status, 0);
        QCOMPARE(run.err, QString());
        QCOMPARE(run.out, QByteArray());
        QCOMPARE(folder.added(), words({ "a.xml" }));
        const QByteArray result = contentOf(folder.path(QStringLiteral("a.xml")));
        QVERIFY(result.startsWith("\n<FormTable>"));
        QCOMPARE(
            runCommand(words({ "convert", "parcels.mif", "-o", "-" }), folder.path()).out, result);
        QCOMPARE(runCommand(words({ "convert", "parcels.mif" }), folder.path()).out, result);
        QCOMPARE(folder.added(), words({ "a.xml" }));
    }

    void cannotWrite_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* name, const char* script, const char* message) {
            QTest::newRow(name) << QString::fromUtf8(script) << QString::fromUtf8(message);
        };
        row("full disk", "$CLI convert -q parcels.mif -o /dev/full",
            "/dev/full: ошибка записи: на устройстве не осталось места");
        row("full disk behind standard output", "$CLI convert -q parcels.mif > /dev/full",
            "стандартный вывод: ошибка записи: на устройстве не осталось места");
        row("file size limit", "ulimit -f 1; $CLI convert -q parcels.mif -o a.xml",
            "a.xml: ошибка записи: превышен предельный размер файла");
        row("missing folder", "$CLI convert parcels.mif -o no/a.xml",
            "no/a.xml: не удаётся создать файл: нет такой папки");
        row("file for a folder", "$CLI convert parcels.mif -o parcels.mid/a.xml",
            "parcels.mid/a.xml: не удаётся создать файл: часть пути не является папкой");
        row("folder", "mkdir sub; $CLI convert parcels.mif -o sub",
            "sub: не удаётся создать файл: это папка, а не файл");
        // Not even the superuser makes files there.
        row("unwritable folder", "$CLI convert -q parcels.mif -o /proc/self/a.xml",
            "/proc/self/a.xml: не удаётся создать файл: нет прав на запись");
        row("help to a full disk", "$CLI --help > /dev/full",
            "стандартный вывод: ошибка записи: на устройстве не осталось места");
        row("check to a full disk", "$CLI check parcels.mif > /dev/full",
            "стандартный вывод: ошибка записи: на устройстве не осталось места");
        row("SVG to a full disk", "ulimit -f 1; $CLI plan -q parcels.mif -o a.svg",
            "a.svg: ошибка записи: превышен предельный размер файла");
        row("PNG to a full disk", "ulimit -f 1; $CLI plan -q parcels.mif -o a.png",
            "a.png: ошибка записи: превышен предельный размер файла");
        // What has no text of its own is told in the system's words.
        QTest::newRow("refused for another reason")
            << QStringLiteral("$CLI convert -q parcels.mif > /proc/self/oom_score_adj")
            << QStringLiteral("стандартный вывод: ошибка записи: ")
                + QString::fromLocal8Bit(std::strerror(EINVAL));
        row("plan in a missing folder", "$CLI plan parcels.mif -o no/a.png",
            "no/a.png: не удаётся создать файл: нет такой папки");
    }

    void cannotWrite()
    {
        QFETCH(QString, script);
        QFETCH(QString, message);
        const Folder folder;
        const CommandRun run = runShell(script, folder.path());
        QCOMPARE(run.status, 1);
        QCOMPARE(run.errorLines(), QStringList(QStringLiteral("importgeometry: ") + message));
        QCOMPARE(folder.added(), QStringList());
    }

    void closedPipe()
    {
        const Folder folder;
        writeLargeMif(folder);
        const CommandRun run =
            runShell(QStringLiteral("$CLI convert large.mif | head -c 10; exit ${PIPESTATUS[0]}"),
                folder.path());
        QCOMPARE(run.status, 1);
        QCOMPARE(run.errorLines(), QStringList());
    }

    void olderFileStays()
    {
        const Folder folder;
        folder.write(QStringLiteral("a.xml"), "older");
        QCOMPARE(
            runCommand(words({ "convert", "broken.mif", "-o", "a.xml" }), folder.path()).status, 1);
        QCOMPARE(contentOf(folder.path(QStringLiteral("a.xml"))), QByteArray("older"));
        QCOMPARE(runShell(QStringLiteral("ulimit -f 1; $CLI convert -q parcels.mif -o a.xml"),
                     folder.path())
                     .status,
            1);
        QCOMPARE(contentOf(folder.path(QStringLiteral("a.xml"))), QByteArray("older"));
        QCOMPARE(folder.added(), words({ "a.xml" }));
        QCOMPARE(
            runCommand(words({ "convert", "parcels.mif", "-o", "a.xml" }), folder.path()).status,
            0);
        QVERIFY(contentOf(folder.path(QStringLiteral("a.xml"))).startsWith("\n<FormTable>"));
    }

    void interrupt_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGHUP") << SIGHUP;
    }

    void interrupt()
    {
        QFETCH(int, signal);
        const Folder folder;
        const TempFiles sources;
        const QString large = writeLargeMif(sources);
        QProcess process;
        process.setWorkingDirectory(folder.path());
        startProgram(
            process, commandPath(), words({ "convert", "-o", "a.xml" }) + QStringList(large));
        QVERIFY(process.waitForStarted());
        QVERIFY(waitUntilWriting(process, folder, 1));
        sendSignal(QString::number(process.processId()), signal);
        const CommandRun run = waitFor(process);
        QCOMPARE(run.errorLines(), words({ "importgeometry: прервано" }));
        QCOMPARE(run.status, -1);
        QCOMPARE(process.exitCode(), signal);
        QCOMPARE(folder.added(), QStringList());
    }

    void interruptOfManyJobs()
    {
        const TempFiles sources;
        QStringList arguments = words({ "convert", "--out-dir", ".", "--jobs", "2" });
        const QString large = writeLargeMif(sources);
        for (const char* name : { "a", "b", "c" }) {
            for (const char* ending : { ".mif", ".mid" })
                QVERIFY(QFile::link(large.left(large.size() - 4) + QLatin1String(ending),
                    sources.path(QLatin1String(name) + QLatin1String(ending))));
            arguments.append(sources.path(QLatin1String(name) + QLatin1String(".mif")));
        }
        // The jobs may be done before both have been seen at work.
        constexpr int attempts = 10;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            const Folder folder;
            QProcess process;
            process.setWorkingDirectory(folder.path());
            startProgram(process, commandPath(), arguments);
            QVERIFY(process.waitForStarted());
            if (!waitUntilWriting(process, folder, 2))
                continue;
            sendSignal(QString::number(process.processId()), SIGTERM);
            const CommandRun run = waitFor(process);
            QCOMPARE(run.status, -1);
            QCOMPARE(run.errorLines().last(), QStringLiteral("importgeometry: прервано"));
            // A file that was finished before the signal may stand; half of one may not.
            for (const QString& name : folder.added()) {
                QVERIFY2(name.endsWith(QLatin1String(".xml")), qPrintable(name));
                QVERIFY(contentOf(folder.path(name)).endsWith("</FormTable>"));
            }
            // Those at work were ended, and no other was begun.
            QVERIFY(folder.added().size() < 2);
            return;
        }
        QFAIL("two jobs were never seen at work");
    }

    // Errors of the import

    void importError()
    {
        const Folder folder;
        const CommandRun run =
            runCommand(words({ "convert", "broken.mif", "-o", "a.xml" }), folder.path());
        QCOMPARE(run.status, 1);
        QCOMPARE(run.errorLines(), words({ "broken.mif: Ошибка чтения области из строки: 22" }));
        QCOMPARE(folder.added(), QStringList());
    }

    void partial()
    {
        const Folder folder;
        const CommandRun run = runCommand(
            words({ "convert", "broken.mif", "-o", "a.xml", "--partial" }), folder.path());
        QCOMPARE(run.status, 1);
        QCOMPARE(run.errorLines(), words({ "broken.mif: Ошибка чтения области из строки: 22" }));
        QCOMPARE(folder.added(), words({ "a.xml" }));
        QCOMPARE(contentOf(folder.path(QStringLiteral("a.xml"))).count("<FormTable"), 3);
    }

    /// What is written behind a pipe or a device cannot be taken back.
    void brokenFileGivesNoOutput()
    {
        const Folder folder;
        folder.write(QStringLiteral("long.mif"),
            mifHeader() + QByteArray("Line 0 0 1 1\n").repeated(20000) + "Line 0\n");
        folder.write(QStringLiteral("long.mid"), QByteArray("A\n").repeated(20001));
        const CommandRun run =
            runCommand(words({ "convert", "long.mif", "-o", "-" }), folder.path());
        QCOMPARE(run.status, 1);
        QCOMPARE(run.out, QByteArray());
    }

    void nameWithDots()
    {
        const Folder folder;
        folder.write(QStringLiteral("a.b.mif"), mifHeader() + "Line 0 0 1 1\n");
        folder.write(QStringLiteral("a.b.mid"), "A\n");
        const CommandRun run =
            runCommand(words({ "convert", "a.b.mif", "--out-dir", "." }), folder.path());
        QCOMPARE(run.status, 0);
        QVERIFY(QFile::exists(folder.path(QStringLiteral("a.b.xml"))));
    }

    void missingFile()
    {
        const Folder folder;
        for (const char* command : { "convert", "check" }) {
            const CommandRun run = runCommand(words({ command, "no.mif" }), folder.path());
            QCOMPARE(run.status, 1);
            QCOMPARE(
                run.errorLines().value(0), QStringLiteral("no.mif: Ошибка открытия файла no.mif"));
            QCOMPARE(run.out, QByteArray());
        }
    }

    // Many files

    void manyFiles_data()
    {
        QTest::addColumn<QString>("jobs");
        QTest::newRow("one at a time") << QStringLiteral("--jobs=1");
        QTest::newRow("two at a time") << QStringLiteral("--jobs=2");
        QTest::newRow("more than there are") << QStringLiteral("--jobs=9");
    }

    void manyFiles()
    {
        QFETCH(QString, jobs);
        const Folder folder;
        const CommandRun run =
            runCommand(words({ "convert", "parcels.mif", "broken.mif", "no.dxf", "drawing.dxf",
                           "--out-dir", ".", "--encoding=Windows-1251", "--table=Участки" })
                    + QStringList(jobs),
                folder.path());
        QCOMPARE(run.status, 1);
        QStringList lines = run.errorLines();
        QCOMPARE(lines.takeLast(), QStringLiteral("Всего файлов: 4, записано: 2, с ошибками: 2"));
        lines.sort();
        QCOMPARE(lines,
            words({ "broken.mif: Ошибка чтения области из строки: 22", "broken.mif: с ошибками",
                "drawing.dxf: записано в ./drawing.xml", "no.dxf: Ошибка открытия файла no.dxf",
                "no.dxf: Ошибка открытия файла no.dxf", "no.dxf: с ошибками",
                "parcels.mif: записано в ./parcels.xml" }));
        QCOMPARE(folder.added(), words({ "drawing.xml", "parcels.xml" }));
        const CommandRun single = runCommand(
            words({ "convert", "parcels.mif", "--encoding=Windows-1251", "--table=Участки" }),
            folder.path());
        QCOMPARE(contentOf(folder.path(QStringLiteral("parcels.xml"))), single.out);
    }

    void crashCostsOneFile()
    {
        const Folder folder;
        const TempFiles sources;
        const QString large = writeLargeMif(sources);
        QProcess process;
        process.setWorkingDirectory(folder.path());
        startProgram(process, commandPath(),
            words({ "convert", "--encoding=Windows-1251", "--out-dir", ".", "parcels.mif" })
                + QStringList(large) + words({ "drawing.dxf" }));
        QVERIFY(process.waitForStarted());
        const QString id = QString::number(process.processId());
        const auto largeChild = [&id, &large] {
            for (const QString& child : childrenOf(id)) {
                QFile arguments(QStringLiteral("/proc/%1/cmdline").arg(child));
                if (!arguments.open(QIODevice::ReadOnly))
                    continue;
                // Until it runs its own program, every child shows the whole command line.
                const QByteArray line = arguments.readAll();
                if (line.contains(large.toUtf8()) && !line.contains("drawing.dxf"))
                    return child;
            }
            return QString();
        };
        QVERIFY(QTest::qWaitFor([&] { return !largeChild().isEmpty(); }, patience));
        sendSignal(largeChild(), SIGKILL);
        const CommandRun run = waitFor(process);
        QCOMPARE(run.status, 1);
        QCOMPARE(run.errorLines(),
            QStringList({ QStringLiteral("parcels.mif: записано в ./parcels.xml"),
                large + QStringLiteral(": обработка прервалась аварийно"),
                QStringLiteral("drawing.dxf: записано в ./drawing.xml"),
                QStringLiteral("Всего файлов: 3, записано: 2, с ошибками: 1") }));
        QCOMPARE(folder.added(), words({ "drawing.xml", "parcels.xml" }));
    }

    void progressOnATerminal()
    {
        const Folder folder;
        if (runShell(QStringLiteral("script -qec true /dev/null"), folder.path()).status != 0)
            QSKIP("no pseudo-terminal can be had here");
        const CommandRun run =
            runShell(QStringLiteral(
                         "script -qec '$CLI convert parcels.mif points.mif --out-dir .' /dev/null"),
                folder.path());
        QVERIFY(run.out.contains("[........................................] 0/2"));
        QVERIFY(run.out.contains("[########################################] 2/2"));
    }

    // Check

    void checkNothingFound()
    {
        const Folder folder;
        const CommandRun run =
            runCommand(words({ "check", "parcels.mif", "--encoding=Windows-1251" }), folder.path());
        QCOMPARE(run.err, QString());
        QCOMPARE(QString::fromUtf8(run.out).split(QLatin1Char('\n')),
            words({ "parcels.mif: прочитано объектов: 3, вершин: 13",
                "parcels.mif: PLINE: 1, прочитано: 1, пропущено: 0",
                "parcels.mif: POINT: 2, прочитано: 2, пропущено: 0",
                "parcels.mif: REGION: 2, прочитано: 2, пропущено: 0",
                "parcels.mif: кодировка: похоже на Windows-1251, выбрана Windows-1251, в "
                "заголовке указана WindowsCyrillic",
                "parcels.mif: замечаний нет", "" }));
        QCOMPARE(run.status, 0);
    }

    void checkObjects()
    {
        const Folder folder;
        folder.write(QStringLiteral("a.mif"),
            mifHeader()
                + "Point 0 0\nPoint 10 0\nRegion 1\n4\n0 0\n10 0\n10 10\n0 0\n"
                  "Region 1\n3\n0 0\n10 0\n0 0\nRegion 0\n");
        folder.write(QStringLiteral("a.mid"), "p\nP\nA\na\nB\n");
        const CommandRun run = runCommand(words({ "check", "a.mif" }), folder.path());
        QCOMPARE(run.status, 3);
        QStringList lines = QString::fromUtf8(run.out).split(QLatin1Char('\n'));
        QCOMPARE(lines.mid(4),
            words({ "a.mif: объект 1 «A»: точка «p» стоит в разных местах: (0.00; 0.00), "
                    "(10.00; 0.00)",
                "a.mif: объект 2 «a»: точка «p» стоит в разных местах: (0.00; 0.00), (10.00; 0.00)",
                "a.mif: обозначение «A» повторяется у объектов 1, 2",
                "a.mif: объект 2 «a»: в контуре 1 вершин: 2, а нужно не меньше 3",
                "a.mif: объект 3 «B»: нет ни одного контура", "a.mif: замечаний: 5", "" }));
    }

    void checkCauses_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("remedy");
        const auto row = [](const char* id, const char* name, const QByteArray& content,
                             const char* line, const char* remedy) {
            QTest::newRow(id) << QString::fromLatin1(name) << content << QString::fromLatin1(id)
                              << QString::fromLatin1(line) << QString::fromUtf8(remedy);
        };
        const QByteArray lines = mifHeader() + "Line 0 0 1 1\n";
        row("leading-comment", "a.dxf", "999\nprogram\n" + drawing(""), "1",
            "Исправленную копию пишет команда: importgeometry prepare a.dxf -o a-готов.dxf");
        row("missing-header", "a.dxf", drawing("").mid(headerSection().size()), "1",
            "Исправленную копию пишет команда: importgeometry prepare a.dxf -o a-готов.dxf");
        row("block-inserts", "a.dxf", drawing("0\nINSERT\n2\nP\n10\n0\n20\n0\n"), "",
            "Копию с разбитыми блоками пишет команда: importgeometry prepare a.dxf -o a-готов.dxf");
        row("mtext", "a.dxf",
            drawing("0\nMTEXT\n10\n0\n20\n0\n1\nA\n0\nLINE\n10\n0\n20\n0\n11\n1\n21\n1\n"), "",
            "Копию с надписями TEXT пишет команда: importgeometry prepare a.dxf -o a-готов.dxf");
        row("unsorted-texts", "a.dxf",
            drawing("0\nTEXT\n10\n5\n20\n0\n1\nA\n0\nTEXT\n10\n0\n20\n0\n1\nB\n"
                    "0\nLINE\n10\n0\n20\n0\n11\n1\n21\n1\n"),
            "",
            "Отключите поиск обозначений точек (--search-points off), укажите файл точек "
            "(--points) или сделайте копию командой: importgeometry prepare a.dxf -o a-готов.dxf");
        row("closed-flag", "a.dxf",
            drawing("0\nPOLYLINE\n70\n129\n0\nVERTEX\n10\n0\n20\n0\n0\nVERTEX\n10\n9\n20\n0\n"
                    "0\nSEQEND\n"),
            "12", "Исправленную копию пишет команда: importgeometry prepare a.dxf -o a-готов.dxf");
        row("bulges", "a.dxf", drawing("0\nLWPOLYLINE\n90\n2\n70\n0\n" + twoPoints + "42\n1\n"), "",
            "Копию, в которой дуги заменены хордами, пишет команда: importgeometry prepare a.dxf "
            "-o a-готов.dxf");
        row("trailing-blank-line", "a.dxf", drawing("") + "\n", "15",
            "Исправленную копию пишет команда: importgeometry prepare a.dxf -o a-готов.dxf");
        row("blank-line", "a.mif", mifHeader() + "Pline 2\n0 0\n\n1 1\n", "7",
            "Копию без таких строк пишет команда: importgeometry prepare a.mif -o a-готов.mif");
        row("delimiter", "a.mif", QByteArray(lines).replace("\",\"", "\"\t\""), "3",
            "Копию с запятой пишет команда: importgeometry prepare a.mif -o a-готов.mif");
        row("mid-missing", "nomid.mif", lines, "",
            "Положите файл MID рядом или импортируйте без него: --search-points off "
            "--search-objects off.");
        row("mid-other-case", "B.MIF", lines, "",
            "Переименуйте его так, как указано в сообщении об ошибке, или сделайте копию командой: "
            "importgeometry prepare B.MIF -o B-готов.mif");
        row("axes", "a.mif", mifHeader() + "Line 451234 2201234 451250 2201250\n", "",
            "Поменяйте местами номера столбцов X и Y (--columns) или сделайте копию командой: "
            "importgeometry prepare a.mif -o a-готов.mif --swap-xy");
        row("encoding", "a.dxf",
            drawing(
                "0\nTEXT\n10\n0\n20\n0\n1\n\xD3\xF7\xE0\xF1\xF2\xEE\xEA\n0\nLINE\n10\n0\n20\n0\n"
                "11\n1\n21\n1\n"),
            "", "Выберите кодировку Windows-1251 (--encoding Windows-1251 или --encoding auto).");
    }

    void checkCauses()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        QFETCH(QString, id);
        QFETCH(QString, line);
        QFETCH(QString, remedy);
        const Folder folder;
        folder.write(name, content);
        folder.write(QStringLiteral("a.mid"), "A\n");
        folder.write(QStringLiteral("B.MID"), "A\n");
        const CommandRun json = runCommand(
            words({ "check", "--json", "--encoding=UTF-8" }) + QStringList(name), folder.path());
        QCOMPARE(json.status, 3);
        const QJsonArray causes = reportOf(json).value(QLatin1String("causes")).toArray();
        QVERIFY(!causes.isEmpty());
        const auto found = std::find_if(causes.begin(), causes.end(),
            [&id](const QJsonValue& cause) { return idOf(cause) == id; });
        QVERIFY2(found != causes.end(), json.out.constData());
        const QJsonObject cause = found->toObject();
        QCOMPARE(cause.value(QLatin1String("remedy")).toString(), remedy);
        QCOMPARE(cause.value(QLatin1String("line")).toInt(), line.toInt());

        const CommandRun text =
            runCommand(words({ "check", "--encoding=UTF-8" }) + QStringList(name), folder.path());
        QCOMPARE(text.status, 3);
        const QString file = cause.value(QLatin1String("file")).toString();
        const QString place = line.isEmpty() ? file : file + QLatin1Char(':') + line;
        const QString out = QString::fromUtf8(text.out);
        QVERIFY2(
            out.contains(QStringLiteral("%1: причина: %2\n%1: что делать: %3\n")
                             .arg(place, cause.value(QLatin1String("cause")).toString(), remedy)),
            text.out.constData());
    }

    void axesFollowTheColumns()
    {
        const Folder folder;
        folder.write(QStringLiteral("a.mif"), mifHeader() + "Line 451234 2201234 451250 2201250\n");
        folder.write(QStringLiteral("a.mid"), "A\n");
        QCOMPARE(runCommand(words({ "check", "a.mif" }), folder.path()).status, 3);
        QCOMPARE(
            runCommand(words({ "check", "a.mif", "--columns=1,2,3" }), folder.path()).status, 0);
    }

    void messagesHaveTheirLines()
    {
        const Folder folder;
        const QJsonObject report =
            reportOf(runCommand(words({ "check", "broken.mif", "--json" }), folder.path()));
        const QJsonObject message =
            report.value(QLatin1String("messages")).toArray().first().toObject();
        QCOMPARE(message.value(QLatin1String("text")).toString(),
            QStringLiteral("Ошибка чтения области из строки: 22"));
        QCOMPARE(message.value(QLatin1String("line")).toInt(), 22);
        QCOMPARE(message.value(QLatin1String("file")).toString(), QStringLiteral("broken.mif"));
    }

    void lineOfARereadDrawing()
    {
        // The texts of the whole file are read before its objects, and the count runs on.
        const Folder folder;
        const QByteArray content = drawing("0\nLINE\n10\nx\n");
        folder.write(QStringLiteral("a.dxf"), content);
        const QJsonObject report = reportOf(runCommand(
            words({ "check", "a.dxf", "--json", "--search-points=off" }), folder.path()));
        const QJsonObject message =
            report.value(QLatin1String("messages")).toArray().first().toObject();
        QCOMPARE(message.value(QLatin1String("text")).toString(),
            QStringLiteral("Ошибка чтения DXF файла в строке: 32"));
        QCOMPARE(content.count('\n'), 18);
        QCOMPARE(message.value(QLatin1String("line")).toInt(), 14);
    }

    void placesInAFolderLikeAMessage()
    {
        const Folder folder;
        const QString name = QStringLiteral("строке: 7 x");
        QVERIFY(QDir(folder.path()).mkdir(name));
        folder.write(name + QStringLiteral("/a.mif"), "Version 300\n");
        const QJsonObject report = reportOf(
            runCommand(words({ "check", "--json" }) + QStringList(name + QStringLiteral("/a.mif")),
                folder.path()));
        const QJsonObject message =
            report.value(QLatin1String("messages")).toArray().first().toObject();
        QCOMPARE(message.value(QLatin1String("text")).toString(),
            QStringLiteral("Ошибка. Файл строке: 7 x/a.mif не соответствует формату MIF"));
        QVERIFY(!message.contains(QLatin1String("line")));
    }

    void lineOfAMidRow()
    {
        const Folder folder;
        folder.write(QStringLiteral("a.mif"), mifHeader() + "Line 0 0 1 1\nLine 0 0 1 1\n");
        folder.write(QStringLiteral("a.mid"), "A\n");
        const CommandRun run = runCommand(words({ "check", "a.mif" }), folder.path());
        QVERIFY(QString::fromUtf8(run.out).contains(
            QStringLiteral("a.mid:2: сообщение: Ошибка чтения данных объекта из строки: 2\n")));
    }

    void checkWithPoints()
    {
        const Folder folder;
        const QStringList arguments =
            words({ "check", "parcels.mif", "--encoding=Windows-1251", "--points" });
        const CommandRun run = runCommand(arguments + words({ "points.mif" }), folder.path());
        QCOMPARE(run.status, 0);
        const QString out = QString::fromUtf8(run.out);
        QVERIFY(
            out.contains(QStringLiteral("parcels.mif: POINT: 2, прочитано: 0, пропущено: 2\n")));
        QVERIFY(out.contains(QStringLiteral("points.mif: POINT: 3, прочитано: 3, пропущено: 0\n")));

        const CommandRun missing = runCommand(arguments + words({ "no.mif" }), folder.path());
        QCOMPARE(missing.status, 3);
        QVERIFY(
            QString::fromUtf8(missing.out)
                .endsWith(QStringLiteral("parcels.mif: сообщение: Ошибка открытия файла no.mif\n"
                                         "parcels.mif: замечаний: 1\n")));

        // The error is in the file of points, and so is its line.
        folder.write(QStringLiteral("bad.mif"), mifHeader() + "Point 0\n");
        folder.write(QStringLiteral("bad.mid"), "A\n");
        const CommandRun bad = runCommand(arguments + words({ "bad.mif" }), folder.path());
        QVERIFY(QString::fromUtf8(bad.out).contains(
            QStringLiteral("bad.mif:5: сообщение: Ошибка чтения координат точки из строки: 5\n")));
    }

    void checkJsonOfManyFiles()
    {
        const Folder folder;
        const CommandRun run =
            runCommand(words({ "check", "--json", "--jobs=2", "--encoding=Windows-1251",
                           "comment.dxf", "parcels.mif", "no.mif", "drawing.dxf" }),
                folder.path());
        QCOMPARE(run.status, 1);
        const QJsonArray reports = QJsonDocument::fromJson(run.out).array();
        QStringList files;
        QList<int> findings;
        for (const QJsonValue& report : reports) {
            files.append(report.toObject().value(QLatin1String("file")).toString());
            findings.append(report.toObject().value(QLatin1String("findings")).toInt());
        }
        QCOMPARE(files, words({ "comment.dxf", "parcels.mif", "no.mif", "drawing.dxf" }));
        QCOMPARE(findings.at(1), 0);
        QCOMPARE(findings.at(3), 0);
        QVERIFY(findings.at(0) > 0);
        const QJsonObject drawing = reports.at(3).toObject();
        QCOMPARE(drawing.value(QLatin1String("objects")).toInt(), 2);
        QCOMPARE(drawing.value(QLatin1String("vertices")).toInt(), 10);
        const QJsonObject contents =
            drawing.value(QLatin1String("contents")).toArray().first().toObject();
        QCOMPARE(contents.value(QLatin1String("likelyEncoding")).toString(),
            QStringLiteral("Windows-1251"));
        QCOMPARE(contents.value(QLatin1String("declaredEncoding")).toString(),
            QStringLiteral("ANSI_1251"));
        QCOMPARE(contents.value(QLatin1String("kinds")).toArray().first().toObject(),
            QJsonObject({ { QStringLiteral("kind"), QStringLiteral("LWPOLYLINE") },
                { QStringLiteral("count"), 2 }, { QStringLiteral("read"), 2 },
                { QStringLiteral("skipped"), 0 } }));
    }

    void checkTextOfManyFiles()
    {
        const Folder folder;
        const CommandRun run = runCommand(
            words({ "check", "parcels.mif", "drawing.dxf", "--encoding=UTF-8" }), folder.path());
        QCOMPARE(run.status, 3);
        QCOMPARE(run.errorLines(), words({ "Всего файлов: 2, с замечаниями: 2, не проверено: 0" }));
        const QString out = QString::fromUtf8(run.out);
        QVERIFY(out.startsWith(QStringLiteral("parcels.mif: прочитано объектов: 3")));
        QVERIFY(out.endsWith(QStringLiteral("drawing.dxf: замечаний: 1\n")));

        // A file that is not checked is none with findings.
        const CommandRun missing = runCommand(
            words({ "check", "parcels.mif", "no.mif", "--encoding=UTF-8" }), folder.path());
        QCOMPARE(missing.status, 1);
        QCOMPARE(missing.errorLines().last(),
            QStringLiteral("Всего файлов: 2, с замечаниями: 1, не проверено: 1"));
    }

    // Plan

    void planSvg()
    {
        const Folder folder;
        const CommandRun run = runCommand(words({ "plan", "parcels.mif", "points.mif", "-q", "-o",
                                              "a.svg", "--encoding=Windows-1251" }),
            folder.path());
        QCOMPARE(run.err, QString());
        QCOMPARE(run.status, 0);
        QXmlStreamReader reader(contentOf(folder.path(QStringLiteral("a.svg"))));
        QStringList texts;
        while (!reader.atEnd()) {
            if (reader.readNext() == QXmlStreamReader::StartElement
                && reader.name() == QLatin1String("text"))
                texts.append(reader.readElementText().trimmed());
        }
        QCOMPARE(reader.errorString(), QString());
        for (const char* text :
            { "Участок 10", "Участок 9", ":ЗУ1", "т1", "т2", "parcels.mif, points.mif" })
            QVERIFY2(texts.contains(QString::fromUtf8(text)), text);
    }

    void planPng()
    {
        const Folder folder;
        QCOMPARE(runCommand(words({ "plan", "parcels.mif", "-o", "a.png", "--size=800x600" }),
                     folder.path())
                     .status,
            0);
        const QImage image(folder.path(QStringLiteral("a.png")));
        QCOMPARE(image.size(), QSize(800, 600));
        QVERIFY(count(image, [](QRgb) { return true; }) == 800 * 600);
        QVERIFY(count(image, isRed) < 2000);
        QVERIFY(count(image, [](QRgb pixel) { return pixel != qRgb(255, 255, 255); }) > 10000);
    }

    void planShowsFindingsInRed()
    {
        const Folder folder;
        folder.write(QStringLiteral("a.mif"),
            mifHeader()
                + "Region 1\n4\n0 0\n10 0\n10 10\n0 0\nRegion 1\n4\n0 0\n10 0\n10 9\n0 0\n");
        folder.write(QStringLiteral("a.mid"), "A\nA\n");
        folder.write(QStringLiteral("b.mif"), contentOf(folder.path(QStringLiteral("a.mif"))));
        folder.write(QStringLiteral("b.mid"), "A\nB\n");
        int red[2] = { 0, 0 };
        int i = 0;
        for (const char* name : { "a", "b" }) {
            const QString file = QLatin1String(name);
            QCOMPARE(runCommand(QStringList({ QStringLiteral("plan"), file + QStringLiteral(".mif"),
                                    QStringLiteral("-o"), file + QStringLiteral(".png") }),
                         folder.path())
                         .status,
                0);
            red[i++] = count(QImage(folder.path(file + QStringLiteral(".png"))), isRed);
        }
        QCOMPARE(red[1], 0);
        QVERIFY2(red[0] > red[1] + 1000, qPrintable(QString::number(red[0])));
    }

    void planOfABrokenFile()
    {
        const Folder folder;
        const CommandRun run =
            runCommand(words({ "plan", "broken.mif", "-o", "a.png" }), folder.path());
        QCOMPARE(run.status, 1);
        QCOMPARE(run.errorLines(), words({ "broken.mif: Ошибка чтения области из строки: 22" }));
        QCOMPARE(folder.added(), QStringList());
        QCOMPARE(
            runCommand(words({ "plan", "broken.mif", "-o", "a.png", "--partial" }), folder.path())
                .status,
            1);
        QCOMPARE(folder.added(), words({ "a.png" }));
    }

    void withoutDisplay()
    {
        const Folder folder;
        const CommandRun run = runShell(
            QStringLiteral("unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM XDG_RUNTIME_DIR HOME; "
                           "$CLI plan -q parcels.mif -o a.png && $CLI check drawing.dxf "
                           "--encoding=Windows-1251 && $CLI convert -q parcels.mif -o a.xml"),
            folder.path());
        QCOMPARE(run.err, QString());
        QCOMPARE(run.status, 0);
        QCOMPARE(folder.added(), words({ "a.png", "a.xml" }));
    }

    void linksNoWidgets()
    {
        const CommandRun run = runShell(QStringLiteral("ldd $CLI"), QDir::currentPath());
        QCOMPARE(run.status, 0);
        QVERIFY(run.out.contains("libQt5Core"));
        QVERIFY(!run.out.contains("Widgets"));
    }

private:
    template <typename Predicate>
    static int count(const QImage& image, Predicate predicate)
    {
        int found = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                found += predicate(image.pixel(x, y)) ? 1 : 0;
        }
        return found;
    }

    static bool isRed(QRgb pixel)
    {
        return qRed(pixel) > 180 && qGreen(pixel) < 80 && qBlue(pixel) < 80;
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
