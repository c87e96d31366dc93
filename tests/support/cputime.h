#pragma once

#include <ctime>

/// Measures processor time: unlike the time of day it does not depend on what else is running.
class CpuTime {
public:
    double seconds() const { return static_cast<double>(std::clock() - m_start) / CLOCKS_PER_SEC; }

private:
    std::clock_t m_start = std::clock();
};
