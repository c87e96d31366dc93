#include "commandrun.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QTextCodec>

QStringList CommandRun::errorLines() const
{
    // What a program that counts its lines says where the test leaves no room for the counts.
    static const QRegularExpression counting(
        QStringLiteral("^LLVM Profile .*\n"), QRegularExpression::MultilineOption);
    return QString(err).remove(counting).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QStringList words(std::initializer_list<const char*> words)
{
    QStringList texts;
    for (const char* word : words)
        texts.append(QString::fromUtf8(word));
    return texts;
}

QString commandPath()
{
    return QStringLiteral(CLI_PATH);
}

void startProgram(QProcess& process, const QString& program, const QStringList& arguments)
{
    QTextCodec* const codec = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    process.start(program, arguments);
    QTextCodec::setCodecForLocale(codec);
}

CommandRun waitFor(QProcess& process)
{
    constexpr int patience = 120000;
    if (!process.waitForStarted(patience) || !process.waitForFinished(patience))
        qFatal("The command does not end: %s", qPrintable(process.errorString()));
    return { process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
        process.readAllStandardOutput(), QString::fromUtf8(process.readAllStandardError()) };
}

CommandRun runCommand(const QStringList& arguments, const QString& folder)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    startProgram(process, commandPath(), arguments);
    return waitFor(process);
}

CommandRun runShell(const QString& script, const QString& folder)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("CLI"), commandPath());
    process.setProcessEnvironment(environment);
    startProgram(process, QStringLiteral("bash"), { QStringLiteral("-c"), script });
    return waitFor(process);
}

void waitForOpening(const QProcess& process)
{
    const QString place = QStringLiteral("/proc/%1/wchan").arg(process.processId());
    const bool seen = QTest::qWaitFor(
        [&place] {
            QFile file(place);
            return file.open(QIODevice::ReadOnly) && file.readAll() == "wait_for_partner";
        },
        3000);
    Q_UNUSED(seen)
}

bool canOpenTerminal()
{
    return runShell(QStringLiteral("script -qec true /dev/null"), QDir::currentPath()).status == 0;
}

QString dataFile(const char* name)
{
    return QDir(QStringLiteral(CLI_DATA_DIR)).filePath(QLatin1String(name));
}

QByteArray contentOf(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s", qPrintable(fileName));
    return file.readAll();
}
