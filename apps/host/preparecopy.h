#pragma once

#include <QString>
#include <QStringList>

#include <atomic>

/// A copy of a file that is read whole.
struct PreparedCopy {
    QString fileName;
    QStringList changes; ///< what was changed, a line each
    QString error; ///< why there is no copy; empty when there is one
};

/// Writes a prepared copy of a drawing or a MIF/MID pair beside it, under a name that is free.
/// `visibleOnly`: without what stands on hidden layers. Nothing is left behind once `cancelled`.
PreparedCopy prepareCopy(
    const QString& fileName, bool visibleOnly, const std::atomic_bool& cancelled);

/// Writes a MIF/MID pair of a layer of a file of another format beside it, with the column as
/// designations; empty for none.
PreparedCopy prepareForeignCopy(const QString& fileName, const QString& layer,
    const QString& column, const std::atomic_bool& cancelled);
