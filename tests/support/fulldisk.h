#pragma once

#include <QtGlobal>

#include <csignal>

#include <sys/resource.h>

/// No file can be written to while it lives, as on a full disk; or none beyond so many bytes.
class FullDisk {
public:
    explicit FullDisk(rlim_t room = 0)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_limit);
        rlimit limit = m_limit;
        limit.rlim_cur = room;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_limit);
        std::signal(SIGXFSZ, m_handler);
    }
    Q_DISABLE_COPY(FullDisk)

private:
    rlimit m_limit{};
    void (*m_handler)(int);
};
