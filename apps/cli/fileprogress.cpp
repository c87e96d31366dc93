#include "fileprogress.h"

#include "console.h"
#include "outputfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>

#include <unistd.h>

namespace {

std::atomic<qint64> objectsWritten{ 0 };
std::atomic<qint64> inputBytes{ 0 };

/// How much of the file behind a descriptor of this process has been read.
std::optional<qint64> positionOf(const QString& descriptor)
{
    QFile info(QStringLiteral("/proc/self/fdinfo/") + descriptor);
    if (!info.open(QIODevice::ReadOnly))
        return {};
    return info.readLine().mid(static_cast<int>(sizeof "pos:" - 1)).trimmed().toLongLong();
}

QString sizeText(qint64 bytes)
{
    constexpr double mega = 1 << 20;
    return QString::number(static_cast<double>(bytes) / mega, 'f', 1) + QStringLiteral(" МБ");
}

} // namespace

FileProgress::FileProgress(bool quiet)
{
    if (!quiet && isatty(STDERR_FILENO) == 1)
        m_watcher = std::thread([this] { watch(); });
}

FileProgress::~FileProgress()
{
    if (!m_watcher.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_hasEnded = true;
    }
    m_ended.notify_one();
    m_watcher.join();
    showProgressLine({});
}

void FileProgress::startFiles(const QStringList& fileNames)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_paths.clear();
    for (const QString& name : fileNames) {
        const QFileInfo info(name);
        if (!info.isFile())
            continue;
        m_paths.append(info.canonicalFilePath());
        m_size += info.size();
    }
}

void FileProgress::countObject()
{
    objectsWritten.fetch_add(1, std::memory_order_relaxed);
}

void FileProgress::countInput(qint64 bytes)
{
    inputBytes.fetch_add(bytes, std::memory_order_relaxed);
}

void FileProgress::watch()
{
    using namespace std::chrono_literals;
    std::unique_lock<std::mutex> lock(m_mutex);
    auto pause = 1000ms;
    while (!m_ended.wait_for(lock, pause, [this] { return m_hasEnded; })) {
        const QString line = text();
        if (!line.isEmpty())
            showProgressLine(line);
        pause = 200ms;
    }
}

QString FileProgress::text() const
{
    const qint64 objects = objectsWritten;
    const qint64 written = OutputFile::bytesWritten();
    if (objects == 0 && written == 0)
        return readingText();
    QString line = QStringLiteral("прочитано: ") + sizeText(m_size);
    if (objects > 0)
        line += QStringLiteral(", записано объектов: %1").arg(objects);
    if (written > 0)
        line += QStringLiteral(", записано: ") + sizeText(written);
    return line;
}

QString FileProgress::readingText() const
{
    if (m_paths.isEmpty() && inputBytes > 0)
        return QStringLiteral("стандартный ввод: прочитано ") + sizeText(inputBytes);
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    QString file;
    // A file may be open twice: the slower reader counts.
    qint64 least = 0;
    for (const QString& descriptor : descriptors.entryList(QDir::Files | QDir::System)) {
        const QString path = QFile::symLinkTarget(descriptors.filePath(descriptor));
        const std::optional<qint64> position =
            m_paths.contains(path) ? positionOf(descriptor) : std::nullopt;
        if (!position || (!file.isEmpty() && (path != file || *position >= least)))
            continue;
        file = path;
        least = *position;
    }
    if (file.isEmpty())
        return {};
    const qint64 size = std::max<qint64>(QFileInfo(file).size(), 1);
    return QStringLiteral("%1: прочитано %2 из %3 (%4 %)")
        .arg(QFileInfo(file).fileName(), sizeText(least), sizeText(size))
        .arg(std::min<qint64>(least * 100 / size, 100));
}
