// The program importgeometry-host as it is started: with its window, and with a user inside of it.

#include "support/miftext.h"
#include "support/stricttest.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSettings>
#include <QTest>

namespace {

constexpr int patienceMs = 60000;

const QByteArray square = "Region 1\n  5\n0 0\n10 0\n10 10\n0 10\n0 0\n";

struct Outcome {
    int exitCode = -1;
    QString out;
    QString err;
};

} // namespace

class TestHostProgram : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void opensFiles();
    void goesOnWithSession();
    void worksAlone();
    void tellsHowItIsUsed();
    void tellsVersion();
    void refusesUnknownOption();
    void tellsUnknownElement();

private:
    /// Runs the program with settings of its own and a user who does these steps.
    Outcome run(const QStringList& arguments, const QString& steps = QString());
    Outcome runProgram(const QString& program, const QStringList& arguments, const QString& steps);

    std::unique_ptr<TempFiles> m_files;
};

void TestHostProgram::init()
{
    m_files = std::make_unique<TempFiles>();
    m_files->write(QStringLiteral("a.mid"), "\"50:1\"\n");
    m_files->write(QStringLiteral("a.mif"), mif(square));
}

Outcome TestHostProgram::runProgram(
    const QString& program, const QStringList& arguments, const QString& steps)
{
    QProcess host;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // There is a display, as far as the program can tell, so it shows its window.
    environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":none"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(USER_PLUGINS));
    environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("windowuser"));
    environment.insert(QStringLiteral("WINDOW_USER"), steps);
    host.setProcessEnvironment(environment);
    host.setWorkingDirectory(m_files->path(QString()));
    const QStringList always{ QStringLiteral("--settings"),
        m_files->path(QStringLiteral("settings")) };
    host.start(program, always + arguments);
    if (!host.waitForFinished(2 * patienceMs))
        qFatal("The program does not end");
    if (host.exitStatus() != QProcess::NormalExit)
        qFatal("The program crashes: %s", host.readAllStandardError().constData());
    return { host.exitCode(), QString::fromUtf8(host.readAllStandardOutput()),
        QString::fromUtf8(host.readAllStandardError()) };
}

Outcome TestHostProgram::run(const QStringList& arguments, const QString& steps)
{
    return runProgram(QStringLiteral(HOST_PATH), arguments, steps);
}

void TestHostProgram::opensFiles()
{
    const Outcome outcome = run({ QStringLiteral("--plugin"), QStringLiteral(PLUGIN_PATH),
                                    QStringLiteral("a.mif"), QStringLiteral("a.txt") },
        QStringLiteral("objects=1 told=1"));
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY2(
        outcome.out.startsWith(QStringLiteral("dialog: Импорт объектов с каталогами координат\n")),
        qPrintable(outcome.out));
    QVERIFY(outcome.out.contains(QStringLiteral("Файл не открыт: a.txt: открываются формы (xml)")));
    QVERIFY(outcome.out.contains(QStringLiteral("window: новая форма")));
    QVERIFY(outcome.out.contains(QStringLiteral(", objects: 1\n")));
    // It was not saved, and that was asked.
    QVERIFY(outcome.out.contains(QStringLiteral("Форма изменена: Сохранить изменения формы?\n")));
    QVERIFY(QFileInfo(m_files->path(QStringLiteral("settings"))).isDir());
}

void TestHostProgram::goesOnWithSession()
{
    const QString form = m_files->write(QStringLiteral("форма.xml"),
        "<FormTable><Row><Cell></Cell><Cell>1</Cell></Row>"
        "<Row><Cell></Cell><Cell>2</Cell></Row></FormTable>");
    const Outcome first = run({ form }, QStringLiteral("objects=2"));
    QCOMPARE(first.exitCode, 0);
    QVERIFY2(first.out.contains(QStringLiteral("window: форма.xml")), qPrintable(first.out));
    // Without a file it shows what was open last.
    const Outcome second = run({}, QStringLiteral("objects=2"));
    QCOMPARE(second.exitCode, 0);
    QVERIFY2(second.out.contains(QStringLiteral("window: форма.xml")), qPrintable(second.out));
    QVERIFY(second.out.endsWith(QStringLiteral(", objects: 2\n")));
}

void TestHostProgram::worksAlone()
{
    // A copy in a folder of its own has neither the plug-in nor the guide beside it.
    const QString program = m_files->path(QStringLiteral("host"));
    QVERIFY(QFile::copy(QStringLiteral(HOST_PATH), program));
    const QString plugin = m_files->path(QStringLiteral("нет.so"));
    const Outcome outcome =
        runProgram(program, { QStringLiteral("--plugin"), plugin }, QStringLiteral("help about"));
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY2(outcome.out.contains(QStringLiteral("Модуль импорта не загружен: ")),
        qPrintable(outcome.out));
    QVERIFY(outcome.out.contains(QStringLiteral("модуль указывает параметр --plugin.")));
    QVERIFY(outcome.out.contains(QStringLiteral("Руководство: Файл руководства не найден.\n")));
    QVERIFY(outcome.out.contains(QStringLiteral("<b>Каталоги координат</b> " VERSION "</p>")));
    QVERIFY(outcome.out.endsWith(QStringLiteral(", objects: 0\n")));
}

void TestHostProgram::tellsHowItIsUsed()
{
    const Outcome outcome = run({ QStringLiteral("--help") });
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY2(outcome.out.contains(QStringLiteral("Каталоги координат: импорт объектов")),
        qPrintable(outcome.out));
    for (const char* option : { "--plugin", "--operation", "--columns", "--settings", "[файл...]" })
        QVERIFY2(outcome.out.contains(QString::fromUtf8(option)), option);
    QVERIFY(!outcome.out.contains(QStringLiteral("window: ")));
}

void TestHostProgram::tellsVersion()
{
    const Outcome outcome = run({ QStringLiteral("--version") });
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(outcome.out.trimmed(), QStringLiteral("importgeometry-host " VERSION));
}

void TestHostProgram::refusesUnknownOption()
{
    const Outcome outcome = run({ QStringLiteral("--nonsense"), QStringLiteral("a.mif") });
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY2(outcome.err.contains(QStringLiteral("nonsense")), qPrintable(outcome.err));
    QCOMPARE(outcome.out, QString());
}

void TestHostProgram::tellsUnknownElement()
{
    // The others get their values, and the import goes on.
    const Outcome outcome =
        run({ QStringLiteral("--auto"), QStringLiteral("--plugin"), QStringLiteral(PLUGIN_PATH),
            QStringLiteral("--operation"), QStringLiteral("Объекты из MIF"),
            QStringLiteral("--file"), m_files->path(QStringLiteral("a.mif")),
            QStringLiteral("--set"), QStringLiteral("такогоНет=1"), QStringLiteral("--set"),
            QStringLiteral("pointPrefEdit=т") });
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY2(outcome.out.contains(QStringLiteral("В диалоге не задать такогоНет=1\n")),
        qPrintable(outcome.out));
    QVERIFY2(outcome.out.contains(QStringLiteral("<Cell>т1</Cell>")), qPrintable(outcome.out));
}

QTEST_GUILESS_MAIN(TestHostProgram)
#include "tst_hostprogram.moc"
