#pragma once

#include <QString>

#include <atomic>
#include <functional>

class QWidget;

/// Runs work that takes long in a thread of its own, with a window that shows it goes on and lets
/// the user cancel. False when the user did: the work then ends by itself, and nobody waits for it,
/// so it must own what it uses, and look at what it is given before it leaves anything behind.
using BackgroundWork = std::function<void(const std::atomic_bool& cancelled)>;
bool runWithProgress(QWidget* parent, const QString& label, const BackgroundWork& work);

/// Waits for the work that nobody waited for.
void finishBackgroundWork();
