#pragma once

#include <csignal>

/// The signals that ask the program to end.
///
/// As a rule such a signal ends it on the spot, after a message. While something must be put in
/// order first, a Deferral is held: the signal is then only noted, and the holder ends its work
/// when requested() says so.
namespace Interrupt {

void install();

/// Whether a deferred signal has come.
bool requested();

/// A descriptor that becomes readable when a deferred signal has come.
int descriptor();

/// Ends the program by the deferred signal, if there was one.
void obey();

class Deferral {
public:
    Deferral();
    /// Leaves a signal that has come to obey().
    ~Deferral();
    Deferral(const Deferral&) = delete;
    Deferral& operator=(const Deferral&) = delete;
};

} // namespace Interrupt
