// The floor of every reader that goes through QTextStream: the lines of the files, and no more.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

#include <cstdio>

namespace {

/// The number of lines of a file, or -1 when it cannot be read.
long long countLines(const QString& fileName, const QByteArray& encoding)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return -1;
    QTextStream in(&file);
    in.setCodec(encoding.constData());
    QString line;
    long long count = 0;
    while (in.readLineInto(&line))
        ++count;
    return count;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("files"), QStringLiteral("Files to read in turn."));
    const QCommandLineOption encoding(QStringLiteral("encoding"),
        QStringLiteral("encoding of the files"), QStringLiteral("name"),
        QStringLiteral("Windows-1251"));
    parser.addOption(encoding);
    parser.process(application);

    long long lines = 0;
    for (const QString& fileName : parser.positionalArguments()) {
        const long long count = countLines(fileName, parser.value(encoding).toLatin1());
        if (count < 0)
            return EXIT_FAILURE;
        lines += count;
    }
    std::printf("%lld lines\n", lines);
    return EXIT_SUCCESS;
}
