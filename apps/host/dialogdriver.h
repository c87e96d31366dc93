#pragma once

#include "hostoptions.h"

#include <QObject>

class QDialog;

/// Uses the plug-in's dialog from outside, by the object names of its widgets.
///
/// The plug-in runs its dialog modally, so the driver is set off before the call and gets its turn
/// from the dialog's own event loop.
class DialogDriver : public QObject {
public:
    DialogDriver(const HostOptions& options, bool unattended);

private:
    void run();
    void fillIn(QDialog& dialog) const;
    void processAndAccept(QDialog& dialog) const;
    void takeScreenshot(QDialog& dialog, const QString& name) const;

    const HostOptions& m_options;
    const bool m_unattended;
};
