#pragma once

#include <QtGlobal>

#include <csignal>

#include <sys/resource.h>

/// No file can be written to while it lives, as on a full disk.
class FullDisk {
public:
    FullDisk()
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_limit);
        rlimit none = m_limit;
        none.rlim_cur = 0;
        setrlimit(RLIMIT_FSIZE, &none);
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
