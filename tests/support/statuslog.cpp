#include "support/statuslog.h"

#include "status.h"

#include <utility>

namespace {

/// The status function is a plain pointer and can carry no object with it.
QStringList recorded;

void record(const QString& message)
{
    recorded.append(message);
}

} // namespace

StatusLog::StatusLog()
{
    recorded.clear();
    setStatusFunc(record);
}

StatusLog::~StatusLog()
{
    setStatusFunc(nullptr);
    recorded.clear();
}

QStringList StatusLog::messages() const
{
    return recorded;
}

QStringList StatusLog::take()
{
    return std::exchange(recorded, {});
}
