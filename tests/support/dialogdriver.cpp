#include "support/dialogdriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QTableView>
#include <QTest>
#include <QTimer>

OwnStore::OwnStore()
{
    QCoreApplication::setOrganizationName(QStringLiteral("TestOrganization"));
    QCoreApplication::setApplicationName(QStringLiteral("TestHost"));
    QSettings::setPath(
        QSettings::NativeFormat, QSettings::UserScope, path(QStringLiteral("store")));
}

static void clickButton(QAbstractButton* button)
{
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(8, button->height() / 2));
}

void click(const QDialog& dialog, const char* button)
{
    clickButton(&widget<QAbstractButton>(dialog, button));
}

static void clickStandard(const QDialog& dialog, QDialogButtonBox::StandardButtons either)
{
    const auto& box = widget<QDialogButtonBox>(dialog, "buttonBox");
    for (QAbstractButton* button : box.buttons()) {
        if (either & box.standardButton(button))
            clickButton(button);
    }
}

void clickOk(const QDialog& dialog)
{
    clickStandard(dialog, QDialogButtonBox::Ok | QDialogButtonBox::Open);
}

void clickCancel(const QDialog& dialog)
{
    clickStandard(dialog, QDialogButtonBox::Cancel);
}

void type(const QDialog& dialog, const char* name, const QString& text)
{
    auto& edit = widget<QWidget>(dialog, name);
    edit.setFocus();
    QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&edit, Qt::Key_Delete);
    // Qt Test's own keyClicks knows only Latin letters.
    for (const QChar letter : text) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, letter);
        QApplication::sendEvent(&edit, &press);
    }
}

void setChecked(const QDialog& dialog, const char* box, bool checked)
{
    if (widget<QAbstractButton>(dialog, box).isChecked() != checked)
        click(dialog, box);
}

void clickObject(const QDialog& dialog, int row)
{
    auto& view = widget<QListView>(dialog, "listView");
    const QPoint place = view.visualRect(view.model()->index(row, 0)).center();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, place);
}

static QString rowText(const QAbstractItemModel& model, int row)
{
    QStringList cells;
    for (int column = 0; column < model.columnCount(); ++column) {
        const QVariant value = model.data(model.index(row, column), Qt::EditRole);
        cells.append(value.isNull() ? QStringLiteral("-") : value.toString());
    }
    return cells.join(QLatin1Char('|'));
}

static QStringList rowTexts(const QAbstractItemModel& model)
{
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row)
        rows.append(rowText(model, row));
    return rows;
}

QStringList objectsOf(const QDialog& dialog)
{
    return rowTexts(*widget<QListView>(dialog, "listView").model());
}

QStringList catalogueOf(const QDialog& dialog)
{
    return rowTexts(*widget<QTableView>(dialog, "tableView").model());
}

void driveModal(const std::function<void(QDialog&)>& drive)
{
    QTimer::singleShot(0, [drive] {
        const QPointer<QDialog> dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        QVERIFY2(dialog, "No dialog runs");
        drive(*dialog);
        if (dialog && dialog->isVisible())
            dialog->reject();
    });
}
