#pragma once

#include "geometry/defpolygon.h"

#include <QAbstractTableModel>
#include <QBitArray>
#include <QVector>

/// The imported objects as a table of one column, the designations, which can be edited.
/// Designations that occur more than once are painted as duplicates. Rows are zero-based; the
/// vertical header counts from one.
class DefMapTableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit DefMapTableModel(QObject* parent = nullptr);
    ~DefMapTableModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Shows `map`, which stays the caller's and must not change its size without a new call;
    /// null for none.
    void setMap(QVector<DefPolygon>* map);
    /// Whether the designation in `row`, ignoring case, occurs more than once.
    bool isDuplicateDef(int row) const;

private:
    QVector<DefPolygon>* m_map = nullptr;
    mutable QBitArray m_duplicates; ///< a bit a row; empty until asked for after a change
};
