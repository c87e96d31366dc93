#pragma once

#include <QDialog>
#include <QFileDialog>
#include <QMessageBox>
#include <QProgressDialog>
#include <QSemaphore>
#include <QVector>

#include <functional>
#include <memory>

using DriveDialog = std::function<void(QDialog&)>;

/// As soon as a modal dialog runs that is no mere progress, hands it to `drive`, in the event loop
/// of that dialog and after whatever else waits for it. Ends the program when none comes.
void whenDialogRuns(const DriveDialog& drive);
/// The same for dialogs that come one after the other, or one out of the other.
void whenDialogsRun(const QVector<DriveDialog>& drives);
/// As soon as a progress is shown, cancels it and tells what it said. Ends the program when none
/// comes.
void whenProgressRuns(const std::function<void(const QString&)>& tell);

/// What a user does in the plug-in's dialog with the file filled in: starts, and accepts.
void startAndAccept(QDialog& dialog);
/// Closes a dialog without a choice.
void cancel(QDialog& dialog);
/// The dialog as a file dialog; ends the program when it is another one.
QFileDialog& asFileDialog(QDialog& dialog);
/// Types the names into a file dialog and accepts it.
DriveDialog choose(const QStringList& fileNames);
/// Clicks a button of a message, and keeps its text if that is wanted.
DriveDialog answer(QMessageBox::StandardButton button, QString* text = nullptr);

/// While it lives, the thread for long work is busy: what is begun shows its progress until it is
/// cancelled.
class BusyThread {
public:
    explicit BusyThread(QWidget& window);
    ~BusyThread();
    Q_DISABLE_COPY(BusyThread)

private:
    std::shared_ptr<QSemaphore> m_end = std::make_shared<QSemaphore>();
};
