#include "support/statuslog.h"

#include "status.h"

StatusLog::StatusLog()
{
    setStatusFunc(&receive);
}

StatusLog::~StatusLog()
{
    setStatusFunc(nullptr);
}
