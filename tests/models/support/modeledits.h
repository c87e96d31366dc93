#pragma once

#include <QAbstractItemModel>

// What both models of designations promise of an edit, for an object or a vertex alike.

/// Adds data rows: a "value" given to a cell that shows "a", and the text "stored" by it.
void addAcceptedDefs();
/// Gives the row's value to the first cell, which shows `def`, and compares what is stored.
void compareAcceptedDef(QAbstractItemModel& model, const QString& def);
/// Compares what the model makes of an index that it no longer has.
void compareStaleCell(QAbstractItemModel& model, const QModelIndex& stale);
