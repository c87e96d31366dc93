#include "support/messagelog.h"

#include <utility>

namespace {

// The callback is a plain pointer and can carry no object with it.
QStringList recorded;
std::function<void()> afterwards;

} // namespace

MessageLog::MessageLog()
{
    recorded.clear();
}

MessageLog::~MessageLog()
{
    recorded.clear();
    afterwards = nullptr;
}

void MessageLog::receive(const QString& message)
{
    recorded.append(message);
    // The action may replace itself.
    const auto action = afterwards;
    if (action)
        action();
}

QStringList MessageLog::messages() const
{
    return recorded;
}

QStringList MessageLog::take()
{
    return std::exchange(recorded, {});
}

void MessageLog::then(const std::function<void()>& action)
{
    afterwards = action;
}
