#pragma once

#include "resultwriter.h"

#include <QString>
#include <QVector>

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>

/// The result of a conversion, written by a thread of its own to a file that appears whole or not
/// at all: objects are written while others are still read.
class ResultFile {
public:
    ResultFile(QString target, ResultOptions options);
    /// Unless the file was committed, no trace of it is left.
    ~ResultFile();
    Q_DISABLE_COPY(ResultFile)

    /// Whether a result may be written before it is known to be wanted: to a file that appears at
    /// the end, on a machine that has a processor for it.
    static bool isOfUse(const QString& target);

    /// Has the objects written, behind those taken before.
    void take(const QVector<DefPolygon>& objects);
    /// Waits until everything is written and lets the file appear. Fails as OutputFile does.
    void commit();

private:
    enum class End { Open, Committed, Dropped };

    void run();
    void write();
    void end(End how);

    const QString m_target;
    const ResultOptions m_options;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<QVector<DefPolygon>> m_waiting; ///< guarded, and so is the next
    End m_end = End::Open;
    std::exception_ptr m_failure; ///< of the thread, once that has ended
    std::thread m_thread;
};
