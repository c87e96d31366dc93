#include "standardinput.h"

#include "console.h"

#include <QFile>
#include <QTemporaryFile>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString standardInput = QStringLiteral("/dev/stdin");

bool isRegularFile(int descriptor)
{
    struct stat status { };
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool copyAll(QIODevice& from, QIODevice& to)
{
    constexpr int blockSize = 1 << 20;
    QByteArray block(blockSize, Qt::Uninitialized);
    qint64 size = 0;
    while ((size = from.read(block.data(), blockSize)) > 0) {
        if (to.write(block.constData(), size) != size)
            return false;
    }
    return size == 0;
}

} // namespace

QString inputFileName(const QString& argument)
{
    return argument == QLatin1String("-") ? standardInput : argument;
}

void spoolStandardInput(const QString& fileName)
{
    if (fileName != standardInput || isRegularFile(STDIN_FILENO))
        return;
    QFile input;
    QTemporaryFile copy;
    // The copy has no name any more when this returns: its descriptor is all that is left.
    const bool done = input.open(STDIN_FILENO, QIODevice::ReadOnly | QIODevice::Unbuffered)
        && copy.open() && copyAll(input, copy) && copy.flush()
        && dup2(copy.handle(), STDIN_FILENO) == STDIN_FILENO;
    if (!done)
        throw Failure{ Failed, QStringLiteral("стандартный ввод: не удаётся прочитать") };
}
