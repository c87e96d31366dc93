#include "outputfile.h"

#include "console.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

#include <atomic>
#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace {

constexpr int bufferSize = 1 << 17;

std::atomic<qint64> totalWritten{ 0 };

QString errorText(int error)
{
    switch (error) {
    case ENOSPC:
        return QStringLiteral("на устройстве не осталось места");
    case EDQUOT:
        return QStringLiteral("превышена дисковая квота");
    case EFBIG:
        return QStringLiteral("превышен предельный размер файла");
    case EPIPE:
        return QStringLiteral("читающая сторона закрыла канал");
    case ENOENT:
        return QStringLiteral("нет такой папки");
    case ENOTDIR:
        return QStringLiteral("часть пути не является папкой");
    case EISDIR:
        return QStringLiteral("это папка, а не файл");
    case EACCES:
    case EPERM:
        return QStringLiteral("нет прав на запись");
    case EROFS:
        return QStringLiteral("файловая система доступна только для чтения");
    default:
        return QString::fromLocal8Bit(std::strerror(error));
    }
}

/// Why no file can be made under this name, as far as its place in the folders tells; or 0.
int placeError(const QString& fileName)
{
    const QFileInfo target(fileName);
    if (target.isDir())
        return EISDIR;
    const QFileInfo folder(target.absolutePath());
    if (!folder.exists())
        return ENOENT;
    return folder.isDir() ? 0 : ENOTDIR;
}

[[noreturn]] void fail(const QString& fileName, const QString& what, int error)
{
    throw Failure{ Failed,
        QStringLiteral("%1: %2: %3").arg(OutputFile::shownName(fileName), what, errorText(error)) };
}

[[noreturn]] void failToOpen(const QString& fileName, int error)
{
    fail(fileName, QStringLiteral("не удаётся создать файл"), error);
}

std::unique_ptr<QFileDevice> openOutput(const QString& fileName, bool replaced)
{
    constexpr auto mode = QIODevice::WriteOnly | QIODevice::Unbuffered;
    if (replaced) {
        auto file = std::make_unique<QSaveFile>(fileName);
        return file->open(mode) ? std::move(file) : nullptr;
    }
    const bool isStandard = fileName == standardOutput;
    auto file = std::make_unique<QFile>(fileName);
    return (isStandard ? file->open(STDOUT_FILENO, mode) : file->open(mode)) ? std::move(file)
                                                                             : nullptr;
}

} // namespace

OutputFile::OutputFile(const QString& fileName)
    : m_fileName(fileName)
{
    const bool replaced = appearsAtEnd(fileName);
    // Opening a pipe takes as long as nobody reads it; a signal must end that.
    if (replaced)
        m_deferral.emplace();
    m_file = openOutput(fileName, replaced);
    if (!m_file) {
        const int error = placeError(fileName);
        failToOpen(fileName, error != 0 ? error : EACCES);
    }
    m_buffer.reserve(bufferSize);
    open(WriteOnly | Unbuffered);
}

void OutputFile::checkPlace(const QString& fileName)
{
    const int error = fileName == standardOutput ? 0 : placeError(fileName);
    if (error != 0)
        failToOpen(fileName, error);
}

OutputFile::~OutputFile() = default;

QString OutputFile::shownName(const QString& fileName)
{
    return fileName == standardOutput ? QStringLiteral("стандартный вывод")
                                      : QDir::toNativeSeparators(fileName);
}

bool OutputFile::appearsAtEnd(const QString& fileName)
{
    // A device or a named pipe must be written to, not be replaced by a file.
    const QFileInfo info(fileName);
    return fileName != standardOutput && (!info.exists() || info.isFile() || info.isDir());
}

qint64 OutputFile::bytesWritten()
{
    return totalWritten;
}

void OutputFile::commit()
{
    finish();
    appear();
}

void OutputFile::commitPair(OutputFile& first, OutputFile& second)
{
    first.finish();
    second.finish();
    // What the disk takes long for is done before the first of them appears. Trouble of a file
    // system that cannot do this is none, as in a commit.
    fsync(first.m_file->handle());
    fsync(second.m_file->handle());
    first.appear();
    second.appear();
}

void OutputFile::finish()
{
    flushBuffer();
    failAfterError();
}

void OutputFile::appear()
{
    auto* saved = qobject_cast<QSaveFile*>(m_file.get());
    errno = 0;
    if (saved ? !saved->commit() : m_file->error() != QFileDevice::NoError)
        m_error = errno != 0 ? errno : EIO;
    failAfterError();
}

void OutputFile::failAfterError() const
{
    // Whoever read the answer has had enough of it: nothing to tell.
    if (m_error == EPIPE && m_fileName == standardOutput)
        throw Failure{ Failed, QString() };
    if (m_error != 0)
        fail(m_fileName, QStringLiteral("ошибка записи"), m_error);
}

qint64 OutputFile::readData(char* data, qint64 maxSize)
{
    Q_UNUSED(data)
    Q_UNUSED(maxSize)
    return -1;
}

qint64 OutputFile::writeData(const char* data, qint64 size)
{
    if (m_buffer.size() + size > bufferSize)
        flushBuffer();
    if (size > bufferSize)
        writeThrough(data, size);
    else
        m_buffer.append(data, static_cast<int>(size));
    return m_error == 0 ? size : -1;
}

void OutputFile::flushBuffer()
{
    writeThrough(m_buffer.constData(), m_buffer.size());
    m_buffer.resize(0);
}

void OutputFile::writeThrough(const char* data, qint64 size)
{
    if (Interrupt::requested()) {
        m_file.reset();
        Interrupt::obey();
    }
    if (m_error == 0 && m_file->write(data, size) != size)
        m_error = errno != 0 ? errno : EIO;
    totalWritten += size;
}

QByteArray jsonText(const QJsonDocument& document, QJsonDocument::JsonFormat format)
{
    const QString text = QString::fromUtf8(document.toJson(format));
    QString escaped;
    for (const QChar c : text) {
        if (c != QLatin1Char('\n') && !c.isSurrogate() && isDeceptive(c.unicode()))
            escaped += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            escaped += c;
    }
    return escaped.toUtf8();
}

void writeJson(const QJsonArray& answers)
{
    OutputFile out(standardOutput);
    out.write(jsonText(QJsonDocument(answers), QJsonDocument::Indented));
    out.commit();
}
