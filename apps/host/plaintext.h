#pragma once

#include <QString>

class QLabel;
class QWidget;

// Names of files, and what stands in files, may look like HTML; widgets would take it for that.

/// Warns as QMessageBox does, with the text as it is.
void warn(QWidget* parent, const QString& title, const QString& text);
/// A label that shows its texts as they are.
QLabel* plainLabel(const QString& text = {});
/// What a tool tip must be told to show a text as it is.
QString plainToolTip(const QString& text);
