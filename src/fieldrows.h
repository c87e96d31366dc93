#pragma once

#include "catalogue/cataloguecolumns.h"

class QLayout;
class QLineEdit;
class QSpinBox;
class QWidget;

/// The most rows of extra fields in a form.
constexpr int maxFieldCount = 5;

/// The widgets of a row of an extra field; null where they are missing. Rows are zero-based.
struct FieldRow {
    QSpinBox* spin; ///< the one-based column
    QLineEdit* edit; ///< the text
    explicit operator bool() const { return spin && edit; }
};

/// Finds a row of the form by the names of its widgets.
FieldRow fieldRow(const QWidget& form, int row);

/// The fields that the form shows, up to the first row with a widget missing. Rows without a text
/// count for nothing; of rows with the same column the last one counts.
FieldNumValueMap shownFields(const QWidget& form);

/// Adds the widgets of a row to the form and its layout, behind those of the row before in the
/// layout and in the order of tabs, with the column after that row's. Returns false when that row
/// has no spin box.
bool addFieldRow(QWidget& form, QLayout& layout, int row);

/// Deletes those widgets of the row that are there.
void removeFieldRow(const QWidget& form, int row);
