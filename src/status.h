#pragma once

#include "importgeometryinterface.h"

/// The host's message callback, shared by all parts of the plug-in; null until the first call.
extern StatusFunc statusFunc;

/// Makes `f` the callback of all later messages; null drops them.
void setStatusFunc(StatusFunc f);

/// Passes a message for the user to the host; does nothing when there is no callback.
/// An exception thrown by the callback ends here.
void showStatus(const QString& message) noexcept;

/// Tells the user of the exception being handled; to be called from a catch clause.
void showCurrentException() noexcept;

/// Runs `action` and turns whatever it throws into a message for the user, so that nothing is
/// thrown through a Qt slot or into the host.
template <typename Action>
void guarded(Action&& action) noexcept
{
    try {
        action();
    } catch (...) {
        showCurrentException();
    }
}
