#include "interrupt.h"

#include <array>

#include <fcntl.h>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t deferrals = 0;
volatile std::sig_atomic_t pendingSignal = 0;
std::array<int, 2> wakeUp{ -1, -1 };

// Only calls that are allowed in a signal handler from here on.

[[noreturn]] void die(int signal)
{
    constexpr char message[] = "importgeometry: прервано\n";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, message, sizeof message - 1);
    std::signal(signal, SIG_DFL);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
    raise(signal);
    _exit(128 + signal);
}

void handle(int signal)
{
    if (deferrals == 0)
        die(signal);
    pendingSignal = signal;
    [[maybe_unused]] const ssize_t written = ::write(wakeUp[1], "", 1);
}

} // namespace

void Interrupt::install()
{
    if (pipe2(wakeUp.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    for (const int signal : { SIGINT, SIGTERM, SIGHUP }) {
        struct sigaction previous { };
        sigaction(signal, nullptr, &previous);
        // Whoever started the program with nohup or in the background wants the signal ignored.
        if (previous.sa_handler == SIG_IGN)
            continue;
        struct sigaction action { };
        action.sa_handler = handle;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
    // A closed pipe and a file beyond the size limit are errors of writing, not sudden deaths.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool Interrupt::requested()
{
    return pendingSignal != 0;
}

int Interrupt::descriptor()
{
    return wakeUp[0];
}

void Interrupt::obey()
{
    if (pendingSignal != 0)
        die(pendingSignal);
}

Interrupt::Deferral::Deferral()
{
    deferrals = deferrals + 1;
}

Interrupt::Deferral::~Deferral()
{
    deferrals = deferrals - 1;
}
