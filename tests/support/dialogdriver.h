#pragma once

#include "support/tempfiles.h"

#include <QAbstractItemModel>
#include <QDialog>
#include <QStringList>

#include <functional>

/// An empty settings store, in a folder of its own, for the time of one test.
class OwnStore : public TempFiles {
public:
    OwnStore();
};

/// The widget of a dialog with the given object name; ends the program when there is none.
template <typename Widget>
Widget& widget(const QDialog& dialog, const char* name)
{
    auto* found = dialog.findChild<Widget*>(QLatin1String(name));
    if (!found)
        qFatal("No widget %s", name);
    return *found;
}

/// Clicks a button as the user does.
void click(const QDialog& dialog, const char* button);
/// Clicks OK (in a file dialog: Open) or Cancel.
void clickOk(const QDialog& dialog);
void clickCancel(const QDialog& dialog);
/// Clears an edit, a spin box or an editable combo box and types the text into it.
void type(const QDialog& dialog, const char* name, const QString& text);
/// Clicks the box unless it is in that state.
void setChecked(const QDialog& dialog, const char* box, bool checked);
/// Clicks the row of the object list.
void clickObject(const QDialog& dialog, int row);

/// The objects in the list; the view must have a model.
QStringList objectsOf(const QDialog& dialog);
/// The rows of the catalogue under the edit role, cells parted by "|", "-" for no value.
QStringList catalogueOf(const QDialog& dialog);

/// As soon as a modal dialog runs, hands it to `drive`; closes it should it still be open then.
void driveModal(const std::function<void(QDialog&)>& drive);
