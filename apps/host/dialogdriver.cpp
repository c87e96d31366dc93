#include "dialogdriver.h"

#include "host.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QMetaProperty>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

DialogDriver::DialogDriver(const HostOptions& options, bool unattended)
    : m_options(options)
    , m_unattended(unattended)
{
    QTimer::singleShot(0, this, &DialogDriver::run);
}

void DialogDriver::run()
{
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog)
        return;
    fillIn(*dialog);
    if (m_unattended)
        processAndAccept(*dialog);
}

void DialogDriver::fillIn(QDialog& dialog) const
{
    for (const auto& [name, value] : m_options.widgetValues) {
        auto* widget = dialog.findChild<QWidget*>(name);
        // The user property is the one that a widget is for: a text, a number, a tick.
        if (!widget || !widget->metaObject()->userProperty().write(widget, value))
            say(QStringLiteral("В диалоге не задать %1=%2").arg(name, value));
    }
}

void DialogDriver::processAndAccept(QDialog& dialog) const
{
    takeScreenshot(dialog, QStringLiteral("before"));
    if (auto* start = dialog.findChild<QPushButton*>(QStringLiteral("startButton")))
        start->click();
    // The coordinates of a whole local system do not fit into columns of the usual width.
    if (auto* table = dialog.findChild<QTableView*>(QStringLiteral("tableView")))
        table->resizeColumnsToContents();
    takeScreenshot(dialog, QStringLiteral("after"));
    if (auto* box = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox")))
        box->button(QDialogButtonBox::Ok)->click();
    else
        dialog.reject();
}

void DialogDriver::takeScreenshot(QDialog& dialog, const QString& name) const
{
    if (m_options.screenshotDir.isEmpty())
        return;
    QDir().mkpath(m_options.screenshotDir);
    const QString path = QDir(m_options.screenshotDir).filePath(name + QStringLiteral(".png"));
    QApplication::processEvents();
    const bool saved = dialog.grab().save(path);
    say((saved ? QStringLiteral("Снимок: %1") : QStringLiteral("Снимок не записан: %1"))
            .arg(QDir::toNativeSeparators(path)));
}
