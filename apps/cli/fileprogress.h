#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QStringList>

#include <condition_variable>
#include <mutex>
#include <thread>

/// Shows on a terminal how far a command is, once it has taken longer than a second: how much of
/// the file that is open for reading has been read, what is done before anything can be written,
/// then how many objects and bytes have been written. Nothing is shown elsewhere.
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
    /// Says how many bytes of a drawing, of which all have been read, have been looked through.
    static void tellScanned(qint64 bytes, qint64 whole);
    /// Says that another program converts the file, and how far it is: per cent, or -1 when it does
    /// not tell.
    static void tellConverting(int percent = -1);
    /// Says that the other program has ended.
    static void tellConverted();

private:
    void watch();
    QString text() const;
    QString readingText() const;
    QString stepText() const;
    QString elapsedText() const;

    QStringList m_paths;
    QString m_shownName; ///< of the first file
    qint64 m_size = 0; ///< of all files that were named
    QElapsedTimer m_sinceStart; ///< of the files that are read now
    mutable std::mutex m_mutex;
    std::condition_variable m_ended;
    bool m_hasEnded = false;
    std::thread m_watcher;
};
