#include "commandrun.h"
#include "samples.h"
#include "support/tempfiles.h"

#include <QFile>
#include <QProcess>
#include <QTest>

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

/// Lines enough to fill every pipe with what becomes of them.
QByteArray manyLines()
{
    QByteArray mif = mifHeader();
    for (int i = 0; i < 20000; ++i)
        mif += "Line " + QByteArray::number(i) + " 0 1 1\n";
    return mif;
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
        QTest::newRow("convert") << QStringLiteral("convert a.mif");
        QTest::newRow("plan") << QStringLiteral("plan a.mif --to svg");
        QTest::newRow("export") << QStringLiteral("export a.mif --to geojson");
    }

    void writing()
    {
        QFETCH(QString, arguments);
        m_folder->write(QStringLiteral("a.mif"), manyLines());
        const QString out = m_folder->path(QStringLiteral("out"));
        Pipe output(out);
        QProcess process;
        start(process,
            arguments
                + QStringLiteral(" -o out --search-points off "
                                 "--search-objects off"));
        const QByteArray shown = waitForText(process, "записано объектов: ");
        QVERIFY2(shown.contains("прочитано: 0.3 МБ, записано объектов: "), shown.constData());
        QProcess reader;
        reader.setStandardOutputFile(QProcess::nullDevice());
        reader.start(QStringLiteral("cat"), { out });
        QVERIFY(reader.waitForStarted(patience));
        QCOMPARE(waitFor(process).status, 0);
        // Now nobody writes, and the reader ends.
        output.close();
        QVERIFY(reader.waitForFinished(patience));
    }

    void nothingIntoAPipe()
    {
        constexpr int longerThanASecond = 1500;
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
    QString path() const { return m_folder->path(QStringLiteral(".")); }

    void start(QProcess& process, const QString& command) const
    {
        process.setWorkingDirectory(path());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        process.setProcessEnvironment(environment);
        startProgram(process, QStringLiteral("script"),
            { QStringLiteral("-qec"), commandPath() + QLatin1Char(' ') + command,
                QStringLiteral("/dev/null") });
    }

    /// What a terminal shows until the text is there.
    static QByteArray waitForText(QProcess& process, const QByteArray& text)
    {
        QByteArray shown;
        const bool found = QTest::qWaitFor(
            [&] {
                shown += process.readAllStandardOutput();
                return shown.contains(text) || process.state() == QProcess::NotRunning;
            },
            patience);
        return found ? shown : QByteArray();
    }

    std::unique_ptr<TempFiles> m_folder;
};

QTEST_GUILESS_MAIN(TestCliTerminal)
#include "tst_cliterminal.moc"
