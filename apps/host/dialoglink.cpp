#include "dialoglink.h"

#include "pluginhost.h"
#include "survey/filesurvey.h"
#include "theme.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QDialog>
#include <QFileInfo>
#include <QMetaProperty>
#include <QTextCodec>
#include <QTimer>

#include <utility>

namespace {

void write(const QDialog& dialog, const char* name, const QVariant& value)
{
    auto* widget = dialog.findChild<QWidget*>(QLatin1String(name));
    // The user property is the one that a widget is for: a text, a number, a tick.
    if (widget)
        widget->metaObject()->userProperty().write(widget, value);
}

QVariant read(const QDialog& dialog, const char* name, const QVariant& absent)
{
    const auto* widget = dialog.findChild<QWidget*>(QLatin1String(name));
    return widget ? widget->metaObject()->userProperty().read(widget) : absent;
}

/// The dialog marks rows in light colours of its own, on which the letters of a dark theme cannot
/// be read.
void lightenTables(const QDialog& dialog)
{
    for (QAbstractItemView* table : dialog.findChildren<QAbstractItemView*>()) {
        QPalette palette = table->palette();
        if (!isDark(palette))
            continue;
        palette.setColor(QPalette::Base, Qt::white);
        palette.setColor(QPalette::Text, Qt::black);
        table->setPalette(palette);
    }
}

} // namespace

DialogLink::DialogLink(QString operation, ImportAnswer& answer)
    : m_operation(std::move(operation))
    , m_answer(answer)
{
    m_answer.options = ImportOptions::offered();
    // The call of the operation does not return before the dialog has ended.
    QTimer::singleShot(0, this, &DialogLink::fillIn);
}

void DialogLink::fillIn()
{
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog)
        return;
    connect(dialog, &QDialog::finished, this, [this, dialog] { readChoices(*dialog); });
    lightenTables(*dialog);
    if (const auto* start = dialog->findChild<QAbstractButton*>(QStringLiteral("startButton")))
        connect(start, &QAbstractButton::clicked, this, [this] { m_answer.isStarted = true; });
    if (m_answer.fileName.isEmpty())
        return;
    write(*dialog, "objectFileNameEdit", m_answer.fileName);
    const Format* const format = formatOfOperation(m_operation);
    const QByteArray encoding = format && QFileInfo(m_answer.fileName).isFile()
        ? likelyEncoding(*format, m_answer.fileName)
        : QByteArray();
    if (!encoding.isEmpty())
        write(*dialog, "encodingCombo", QString::fromLatin1(encoding));
}

void DialogLink::readChoices(const QDialog& dialog)
{
    ImportOptions& options = m_answer.options;
    options.objectFileName = read(dialog, "objectFileNameEdit", m_answer.fileName).toString();
    if (read(dialog, "usePointFileCheck", false).toBool())
        options.pointFileName = read(dialog, "pointFileNameEdit", QString()).toString();
    options.searchPointDefs =
        read(dialog, "searchPointDefsCheck", options.searchPointDefs).toBool();
    options.searchObjectDefs =
        read(dialog, "searchObjectDefsCheck", options.searchObjectDefs).toBool();
    const QByteArray name = read(dialog, "encodingCombo", QString()).toString().toLatin1();
    options.encoding = QTextCodec::codecForName(name) ? name : QTextCodec::codecForLocale()->name();
    m_answer.fileName = options.objectFileName;
}
