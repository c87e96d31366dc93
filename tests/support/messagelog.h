#pragma once

#include <QStringList>

#include <functional>

/// Records what its callback is told while it lives; one at a time may live.
class MessageLog {
public:
    MessageLog();
    ~MessageLog();
    MessageLog(const MessageLog&) = delete;
    MessageLog& operator=(const MessageLog&) = delete;

    /// The callback to hand to the program under test.
    static void receive(const QString& message);

    QStringList messages() const;
    /// The messages so far; the log then starts afresh.
    QStringList take();
    /// What to do after each further message.
    void then(const std::function<void()>& action);
};
