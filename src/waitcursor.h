#pragma once

#include <QGuiApplication>

/// Shows the wait cursor as long as it lives.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY(WaitCursor)
};

/// Takes the wait cursor that stands away as long as it lives.
class WaitCursorPause {
public:
    WaitCursorPause() { QGuiApplication::restoreOverrideCursor(); }
    ~WaitCursorPause() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    Q_DISABLE_COPY(WaitCursorPause)
};
