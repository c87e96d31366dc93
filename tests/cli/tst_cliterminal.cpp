#include "commandrun.h"
#include "samples.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <functional>

#include <sys/stat.h>

namespace {

constexpr int patience = 60000;

/// A named pipe that this process holds open at both ends, so that nobody waits at its opening.
class Pipe {
public:
    explicit Pipe(const QString& path)
        : m_file(path)
    {
        if (mkfifo(QFile::encodeName(path).constData(), S_IRUSR | S_IWUSR) != 0
            || !m_file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
            qFatal("no pipe can be made");
    }

    void write(const QByteArray& bytes) { m_file.write(bytes); }
    void close() { m_file.close(); }

private:
    QFile m_file;
};

/// So many lines fill every pipe with what becomes of them.
constexpr int manyLines = 20000;

QByteArray pairOfManyLines()
{
    QByteArray mif = mifHeader();
    for (int i = 0; i < manyLines; ++i)
        mif += "Line " + QByteArray::number(i) + " 0 1 1\n";
    return mif;
}

QByteArray drawingOfManyLines()
{
    QByteArray entities;
    for (int i = 0; i < manyLines; ++i)
        entities += "0\nLINE\n10\n" + QByteArray::number(i) + "\n20\n0\n11\n1\n21\n1\n";
    return drawing(entities);
}

} // namespace

/// What is told while a command runs. The tests keep it from ending for as long as they wait.
class TestCliTerminal : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<TempFiles>();
        if (runShell(QStringLiteral("script -qec true /dev/null"), path()).status != 0)
            QSKIP("no pseudo-terminal can be had here");
    }

    void reading_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::newRow("check") << QStringLiteral("check -");
        QTest::newRow("convert") << QStringLiteral("convert - -o a.xml");
        QTest::newRow("plan") << QStringLiteral("plan - -o a.svg");
        QTest::newRow("export") << QStringLiteral("export - -o a.csv");
        QTest::newRow("prepare") << QStringLiteral("prepare - -o a.dxf");
    }

    void reading()
    {
        QFETCH(QString, arguments);
        Pipe input(m_folder->path(QStringLiteral("in")));
        QProcess process;
        start(process, arguments + QStringLiteral(" --format dxf < in"));
        input.write(headerSection());
        const QByteArray shown = waitForText(process, "\xD0\x9C\xD0\x91");
        QVERIFY2(shown.contains("стандартный ввод: прочитано 0.0 МБ"), shown.constData());
        input.write(drawing("0\nLINE\n10\n0\n20\n0\n11\n5\n21\n5\n").mid(headerSection().size()));
        input.close();
        const CommandRun run = waitFor(process);
        // The line has gone when the command ends.
        QVERIFY2(run.out.contains("\r\033[K"), run.out.constData());
        QVERIFY2(run.status == 0 || run.status == 3, run.out.constData());
    }

    void writing_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::newRow("convert") << QStringLiteral(
            "convert a.mif --search-points off --search-objects off");
        QTest::newRow("plan") << QStringLiteral(
            "plan a.mif --to svg --search-points off --search-objects off");
        QTest::newRow("export") << QStringLiteral(
            "export a.mif --to geojson --search-points off --search-objects off");
        QTest::newRow("prepare") << QStringLiteral("prepare a.dxf");
        QTest::newRow("prepare repair") << QStringLiteral("prepare a.dxf --level repair");
    }

    void writing()
    {
        QFETCH(QString, arguments);
        m_folder->write(QStringLiteral("a.mif"), pairOfManyLines());
        m_folder->write(QStringLiteral("a.dxf"), drawingOfManyLines());
        const QString out = m_folder->path(QStringLiteral("out"));
        Pipe output(out);
        QProcess process;
        start(process, arguments + QStringLiteral(" -o out"));
        const QByteArray shown = waitForText(process, "записано объектов: ");
        const QByteArray size = arguments.contains(QLatin1String("dxf")) ? "0.6" : "0.3";
        QVERIFY2(
            shown.contains("прочитано: " + size + " МБ, записано объектов: "), shown.constData());
        QProcess reader;
        reader.setStandardOutputFile(QProcess::nullDevice());
        reader.start(QStringLiteral("cat"), { out });
        QVERIFY(reader.waitForStarted(patience));
        QCOMPARE(waitFor(process).status, 0);
        // Now nobody writes, and the reader ends.
        output.close();
        QVERIFY(reader.waitForFinished(patience));
    }

    /// No machine reads this file, which takes no room on the disk, before the test stops it: as a
    /// drawing it is refused at once, but all its bytes are looked at.
    void largeNamedFile()
    {
        constexpr qint64 size = Q_INT64_C(1) << 40;
        const QString name = m_folder->path(QStringLiteral("large.dxf"));
        m_folder->write(QStringLiteral("large.dxf"), "0\nSECTION\n2\nTABLES\n");
        QVERIFY2(QFile::resize(name, size), "no file may have holes here");
        QProcess process;
        start(process, QStringLiteral("check large.dxf"));
        static const QRegularExpression more(QStringLiteral(
            "large\\.dxf: прочитано (?!0\\.0)[0-9.]+ МБ из 1048576\\.0 МБ \\(0 %\\)"));
        const QByteArray shown = waitForShown(
            process, [](const QByteArray& text) { return QString::fromUtf8(text).contains(more); });
        QVERIFY(!shown.isEmpty());
        // As the key that interrupts, which the terminal turns into a signal.
        process.write("\x03");
        const CommandRun run = waitFor(process);
        QVERIFY2(run.out.contains("importgeometry: прервано"), run.out.constData());
        QVERIFY(run.status != 0);
    }

    /// The same of a file that is read to its end.
    void namedFileToItsEnd()
    {
        constexpr int size = 8 << 20;
        const QByteArray line = "0\nLINE\n10\n1\n20\n0\n11\n1\n21\n1\n";
        m_folder->write(QStringLiteral("a.dxf"), drawing(line.repeated(size / line.size())));
        QProcess process;
        startSlowed(process, QStringLiteral("check a.dxf"));
        static const QRegularExpression reads(
            QStringLiteral("a\\.dxf: прочитано (?!0\\.0)[0-9.]+ МБ из 8\\.0 МБ \\(\\d+ %\\)"));
        const QByteArray shown = waitForShown(process,
            [](const QByteArray& text) { return QString::fromUtf8(text).contains(reads); });
        QVERIFY(!shown.isEmpty());
        m_folder->write(QStringLiteral("faster"), {});
        const CommandRun run = waitFor(process);
        const QByteArray count = QByteArray::number(size / line.size());
        QVERIFY2(run.out.contains(count), run.out.constData());
        QCOMPARE(run.status, 0);
    }

    void convertingProgram_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QByteArray>("told");
        QTest::addColumn<QString>("shown");
        const QString converts = QStringLiteral("a\\.shp: переводит программа ogr2ogr");
        const QString elapsed = QStringLiteral(", прошло \\d+ с");
        const QString prepare = QStringLiteral("prepare a.shp -o b.mif");
        QTest::newRow("nothing told") << prepare << QByteArray() << converts + elapsed;
        QTest::newRow("start") << prepare << QByteArray("0.")
                               << converts + QStringLiteral(" \\(0 %\\)") + elapsed;
        QTest::newRow("share") << prepare << QByteArray("0...10...20..")
                               << converts + QStringLiteral(" \\(20 %\\)") + elapsed;
        QTest::newRow("convert") << QStringLiteral("convert a.shp --prepare -o b.xml")
                                 << QByteArray("0...10")
                                 << converts + QStringLiteral(" \\(10 %\\)") + elapsed;
    }

    void convertingProgram()
    {
        QFETCH(QString, command);
        QFETCH(QByteArray, told);
        QFETCH(QString, shown);
        installStandIns(told);
        Pipe gate(m_folder->path(QStringLiteral("gate")));
        QProcess process;
        start(process, command, m_folder->path(QStringLiteral("bin")));
        const QRegularExpression expected(shown);
        QVERIFY2(!waitForShown(process,
                     [&expected](const QByteArray& text) {
                         return QString::fromUtf8(text).contains(expected);
                     })
                      .isEmpty(),
            qUtf8Printable(shown));
        gate.write("\n");
        const CommandRun run = waitFor(process);
        QCOMPARE(run.status, 0);
        QVERIFY2(run.out.contains("\r\033[K"), run.out.constData());
        // What another program is at is told no longer than that.
        QVERIFY2(
            !run.out.mid(run.out.lastIndexOf('\033')).contains("переводит"), run.out.constData());
    }

    void quietConvertingProgram()
    {
        installStandIns("0...10");
        Pipe gate(m_folder->path(QStringLiteral("gate")));
        QProcess process;
        start(process, QStringLiteral("prepare a.shp -q -o b.mif"),
            m_folder->path(QStringLiteral("bin")));
        QTest::qWait(longerThanASecond);
        gate.write("\n");
        const CommandRun run = waitFor(process);
        QCOMPARE(run.out, QByteArray());
        QCOMPARE(run.status, 0);
    }

    /// Here it waits for somebody to take the result.
    void neitherReadingNorWriting()
    {
        m_folder->write(QStringLiteral("a.dxf"), drawingOfManyLines());
        const QString out = m_folder->path(QStringLiteral("out"));
        QCOMPARE(mkfifo(QFile::encodeName(out).constData(), S_IRUSR | S_IWUSR), 0);
        QProcess process;
        start(process, QStringLiteral("prepare a.dxf -o out"));
        static const QRegularExpression waits(
            QStringLiteral("прочитано: 0\\.6 МБ, прошло [1-9]\\d* с"));
        const QByteArray shown = waitForShown(process,
            [](const QByteArray& text) { return QString::fromUtf8(text).contains(waits); });
        QVERIFY(!shown.isEmpty());
        const CommandRun reader = runShell(QStringLiteral("cat out | tail -n 1"), path());
        QCOMPARE(reader.out, QByteArray("EOF\n"));
        QCOMPARE(waitFor(process).status, 0);
    }

    /// Nothing holds the command up while it looks through a drawing. It is let run for moments
    /// only, so that more than the second passes for which it waits, and every moment is told.
    void drawingBeforeItsEntities()
    {
        constexpr int size = 16 << 20;
        const QByteArray layer = "0\nLAYER\n2\na\n";
        m_folder->write(QStringLiteral("a.dxf"),
            headerSection() + "0\nSECTION\n2\nTABLES\n" + layer.repeated(size / layer.size())
                + "0\nENDSEC\n"
                + drawing("0\nLINE\n10\n0\n20\n0\n11\n5\n21\n5\n").mid(headerSection().size()));
        QProcess process;
        startSlowed(process, QStringLiteral("prepare a.dxf -o b.dxf"));
        static const QRegularExpression looked(
            QStringLiteral("a\\.dxf: просмотрено (?!0\\.0)[0-9.]+ МБ из 16\\.0 МБ \\(\\d+ %\\)"));
        const QByteArray shown = waitForShown(process,
            [](const QByteArray& text) { return QString::fromUtf8(text).contains(looked); });
        QVERIFY(!shown.isEmpty());
        m_folder->write(QStringLiteral("faster"), {});
        QCOMPARE(waitFor(process).status, 0);
        QVERIFY(contentOf(m_folder->path(QStringLiteral("b.dxf"))).contains("LINE"));
    }

    void nothingIntoAPipe()
    {
        Pipe input(m_folder->path(QStringLiteral("in")));
        QProcess process;
        process.setWorkingDirectory(path());
        process.setStandardInputFile(m_folder->path(QStringLiteral("in")));
        startProgram(process, commandPath(), words({ "convert", "-", "--format=dxf" }));
        input.write(drawing("0\nLINE\n10\n0\n20\n0\n11\n5\n21\n5\n"));
        QTest::qWait(longerThanASecond);
        input.close();
        const CommandRun run = waitFor(process);
        QCOMPARE(run.err, QString());
        QCOMPARE(run.status, 0);
    }

private:
    static constexpr int longerThanASecond = 1500; // ms

    QString path() const { return m_folder->path(QStringLiteral(".")); }

    /// Programs that stand for ogrinfo and for ogr2ogr, which says this and then waits until the
    /// pipe "gate" is written to.
    void installStandIns(const QByteArray& told) const
    {
        m_folder->write(QStringLiteral("a.shp"), "shape");
        install(QStringLiteral("ogrinfo"), "printf 'Layer name: a\\na: String (0.0)\\n'\n");
        install(QStringLiteral("ogr2ogr"),
            "printf '" + told
                + "'\nread line <gate\n"
                  "for last; do target=$before; before=$last; done\n"
                  "mkdir \"$target\"\n"
                  "printf 'Version 300\\nCharset \"Neutral\"\\nDelimiter \",\"\\nColumns 1\\n"
                  "  a Char(9)\\nData\\nLine 0 0 1 1\\n' >\"$target/objects.mif\"\n"
                  "echo '\"x\"' >\"$target/objects.mid\"\n");
    }

    void install(const QString& name, const QByteArray& body) const
    {
        QDir(path()).mkdir(QStringLiteral("bin"));
        const QString program =
            m_folder->write(QStringLiteral("bin/") + name, "#!/bin/sh\n" + body);
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    void start(QProcess& process, const QString& command, const QString& programs = {}) const
    {
        startInTerminal(process, commandPath() + QLatin1Char(' ') + command, programs);
    }

    /// Starts a command that runs for a hundredth of a second in each fifth of one, until there is
    /// a file "faster".
    void startSlowed(QProcess& process, const QString& command) const
    {
        startInTerminal(process,
            QStringLiteral("%1 %2 & while [ ! -e faster ]; do kill -STOP $!; sleep 0.2; "
                           "kill -CONT $!; sleep 0.01; done; wait $!")
                .arg(commandPath(), command));
    }

    void startInTerminal(
        QProcess& process, const QString& script, const QString& programs = {}) const
    {
        process.setWorkingDirectory(path());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        if (!programs.isEmpty()) {
            environment.insert(QStringLiteral("PATH"),
                programs + QLatin1Char(':') + environment.value(QStringLiteral("PATH")));
        }
        process.setProcessEnvironment(environment);
        startProgram(process, QStringLiteral("script"),
            { QStringLiteral("-qec"), script, QStringLiteral("/dev/null") });
    }

    /// What a terminal shows until the text is there.
    static QByteArray waitForText(QProcess& process, const QByteArray& text)
    {
        return waitForShown(
            process, [&text](const QByteArray& shown) { return shown.contains(text); });
    }

    /// What a terminal shows until it is what is waited for; nothing if it never is.
    static QByteArray waitForShown(
        QProcess& process, const std::function<bool(const QByteArray&)>& isThere)
    {
        QByteArray shown;
        const bool found = QTest::qWaitFor(
            [&] {
                shown += process.readAllStandardOutput();
                return isThere(shown) || process.state() == QProcess::NotRunning;
            },
            patience);
        return found && isThere(shown) ? shown : QByteArray();
    }

    std::unique_ptr<TempFiles> m_folder;
};

QTEST_GUILESS_MAIN(TestCliTerminal)
#include "tst_cliterminal.moc"
