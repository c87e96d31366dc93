#pragma once

#include <QStringList>

/// Records the messages that reach the status function while it lives; one at a time may live.
class StatusLog {
public:
    StatusLog();
    ~StatusLog();
    StatusLog(const StatusLog&) = delete;
    StatusLog& operator=(const StatusLog&) = delete;

    QStringList messages() const;
    /// The messages so far; the log then starts afresh.
    QStringList take();
};
