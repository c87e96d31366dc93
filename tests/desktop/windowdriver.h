#pragma once

#include <QDialog>

#include <functional>

/// As soon as a modal dialog runs that is no mere progress, hands it to `drive`, in the event loop
/// of that dialog and after whatever else waits for it. Ends the program when none comes.
void whenDialogRuns(const std::function<void(QDialog&)>& drive);

/// What a user does in the plug-in's dialog with the file filled in: starts, and accepts.
void startAndAccept(QDialog& dialog);
