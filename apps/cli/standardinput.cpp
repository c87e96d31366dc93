#include "standardinput.h"

#include "console.h"
#include "fileprogress.h"

#include <QTemporaryFile>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString standardInput = QStringLiteral("/dev/stdin");

bool isRegularFile(int descriptor)
{
    struct stat status { };
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// What standard input has by now; it is not waited for a block to fill.
qint64 readInput(QByteArray& block)
{
    ssize_t size = 0;
    do {
        size = read(STDIN_FILENO, block.data(), static_cast<size_t>(block.size()));
    } while (size < 0 && errno == EINTR);
    return size;
}

bool copyInput(QIODevice& to)
{
    constexpr int blockSize = 1 << 20;
    QByteArray block(blockSize, Qt::Uninitialized);
    qint64 size = 0;
    while ((size = readInput(block)) > 0) {
        if (to.write(block.constData(), size) != size)
            return false;
        FileProgress::countInput(size);
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
    QTemporaryFile copy;
    // The copy has no name any more when this returns: its descriptor is all that is left.
    const bool done = copy.open() && copyInput(copy) && copy.flush()
        && dup2(copy.handle(), STDIN_FILENO) == STDIN_FILENO;
    if (!done)
        throw Failure{ Failed, QStringLiteral("стандартный ввод: не удаётся прочитать") };
}
