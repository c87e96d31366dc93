#pragma once

#include <QString>
#include <QStringList>

#include <condition_variable>
#include <mutex>
#include <thread>

/// Shows on a terminal how far a command is, once it has taken longer than a second: how much of
/// the file that is open for reading has been read, then how many objects and bytes have been
/// written. Nothing is shown elsewhere.
class FileProgress {
public:
    explicit FileProgress(bool quiet);
    ~FileProgress();
    Q_DISABLE_COPY(FileProgress)

    /// Says which files are read from now on; any that are not there do not matter.
    void startFiles(const QStringList& fileNames);

    /// Counts an object that has been written, or drawn.
    static void countObject();
    /// Counts bytes that have come from standard input.
    static void countInput(qint64 bytes);

private:
    void watch();
    QString text() const;
    QString readingText() const;

    QStringList m_paths;
    qint64 m_size = 0; ///< of all files that were named
    mutable std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_hasEnded = false;
    std::thread m_watcher;
};
