#include "fileprogress.h"

#include "console.h"
#include "outputfile.h"
#include "standardinput.h"

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
std::atomic<qint64> scannedBytes{ 0 };
std::atomic<qint64> bytesToScan{ 0 };

constexpr int noPercentage = -1;
constexpr int noConversion = -2;
std::atomic<int> conversion{ noConversion }; ///< its percentage, or one of these

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

/// A part of a whole; a file may grow meanwhile, or be empty.
QString shareText(qint64 part, qint64 whole)
{
    return QStringLiteral("%1 из %2 (%3 %)")
        .arg(sizeText(part), sizeText(whole))
        .arg(std::min<qint64>(part * 100 / std::max<qint64>(whole, 1), 100));
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
    const QString first = fileNames.value(0);
    m_shownName = first == inputFileName(QStringLiteral("-")) ? QStringLiteral("стандартный ввод")
                                                              : QFileInfo(first).fileName();
    m_sinceStart.start();
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

void FileProgress::tellScanned(qint64 bytes, qint64 whole)
{
    scannedBytes.store(bytes, std::memory_order_relaxed);
    bytesToScan.store(whole, std::memory_order_relaxed);
}

void FileProgress::tellConverting(int percent)
{
    conversion = std::max(percent, noPercentage);
}

void FileProgress::tellConverted()
{
    conversion = noConversion;
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
    QString line = stepText();
    if (line.isEmpty())
        line = readingText();
    const bool isSilent = line.isEmpty();
    if (isSilent && m_size > 0)
        line = QStringLiteral("прочитано: ") + sizeText(m_size);
    if (objects == 0 && written == 0)
        return isSilent && m_size > 0 ? line + elapsedText() : line;
    if (objects > 0)
        line += QStringLiteral(", записано объектов: %1").arg(objects);
    if (written > 0)
        line += QStringLiteral(", записано: ") + sizeText(written);
    return line;
}

/// What is done to the file beside reading and writing; empty when it is nothing.
QString FileProgress::stepText() const
{
    const int percent = conversion;
    if (percent != noConversion) {
        QString line = m_shownName + QStringLiteral(": переводит программа ogr2ogr");
        if (percent != noPercentage)
            line += QStringLiteral(" (%1 %)").arg(percent);
        return line + elapsedText();
    }
    const qint64 whole = bytesToScan;
    const qint64 scanned = scannedBytes;
    if (scanned >= whole)
        return {};
    return QStringLiteral("%1: просмотрено %2").arg(m_shownName, shareText(scanned, whole));
}

QString FileProgress::elapsedText() const
{
    constexpr int msPerSecond = 1000;
    return QStringLiteral(", прошло %1 с").arg(m_sinceStart.elapsed() / msPerSecond);
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
    const QFileInfo info(file);
    return QStringLiteral("%1: прочитано %2").arg(info.fileName(), shareText(least, info.size()));
}
