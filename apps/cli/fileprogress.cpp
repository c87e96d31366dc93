#include "fileprogress.h"

#include "console.h"
#include "outputfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <optional>

#include <unistd.h>

namespace {

/// How much of the file behind a descriptor of this process has been read, in percent.
std::optional<int> percentRead(const QString& descriptor, qint64 size)
{
    QFile info(QStringLiteral("/proc/self/fdinfo/") + descriptor);
    if (size <= 0 || !info.open(QIODevice::ReadOnly))
        return {};
    const QByteArray position = info.readLine().mid(static_cast<int>(sizeof "pos:" - 1)).trimmed();
    return static_cast<int>(std::min<qint64>(position.toLongLong() * 100 / size, 100));
}

QString sizeText(qint64 bytes)
{
    constexpr double mega = 1 << 20;
    return QString::number(static_cast<double>(bytes) / mega, 'f', 1) + QStringLiteral(" МБ");
}

} // namespace

FileProgress::FileProgress(const QStringList& fileNames, bool quiet)
{
    if (quiet || isatty(STDERR_FILENO) != 1)
        return;
    for (const QString& name : fileNames)
        m_paths.append(QFileInfo(name).canonicalFilePath());
    m_paths.removeAll(QString());
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

void FileProgress::watch()
{
    using namespace std::chrono_literals;
    std::unique_lock<std::mutex> lock(m_mutex);
    auto pause = 1000ms;
    while (!m_ended.wait_for(lock, pause, [this] { return m_hasEnded; })) {
        show();
        pause = 200ms;
    }
}

void FileProgress::show() const
{
    const qint64 written = OutputFile::bytesWritten();
    if (written > 0) {
        showProgressLine(QStringLiteral("записано: ") + sizeText(written));
        return;
    }
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    for (const QString& descriptor : descriptors.entryList(QDir::Files | QDir::System)) {
        const QString path = QFile::symLinkTarget(descriptors.filePath(descriptor));
        const std::optional<int> percent =
            m_paths.contains(path) ? percentRead(descriptor, QFileInfo(path).size()) : std::nullopt;
        if (percent) {
            showProgressLine(QStringLiteral("%1: прочитано %2 % (%3)")
                                 .arg(QFileInfo(path).fileName())
                                 .arg(*percent)
                                 .arg(sizeText(QFileInfo(path).size())));
            return;
        }
    }
}
