#pragma once

#include "support/messagelog.h"

/// Records the messages that reach the status function while it lives.
class StatusLog : public MessageLog {
public:
    StatusLog();
    ~StatusLog();
};
