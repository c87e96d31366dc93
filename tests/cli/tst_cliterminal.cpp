#include "commandrun.h"
#include "samples.h"
#include "support/tempfiles.h"

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
