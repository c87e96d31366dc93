#pragma once

#include <future>
#include <system_error>
#include <utility>

/// Runs `work` in a thread of its own; where there is none to be had, when its result is asked for.
template <typename Work>
auto runBeside(Work work) -> std::future<decltype(work())>
{
    try {
        return std::async(std::launch::async, work);
    } catch (const std::system_error&) {
        return std::async(std::launch::deferred, std::move(work));
    }
}
