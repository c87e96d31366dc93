#pragma once

#include <QString>
#include <QStringList>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

/// Shows on a terminal how far the reading of files is, once that has taken longer than a second:
/// of the file that is open for reading, how much has been read. Nothing is shown elsewhere.
class FileProgress {
public:
    FileProgress(const QStringList& fileNames, bool quiet);
    ~FileProgress();
    Q_DISABLE_COPY(FileProgress)

private:
    void watch();
    void show() const;

    QStringList m_paths;
    std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_hasEnded = false;
    std::thread m_watcher;
};
