#pragma once

#include "catalogue/cataloguecolumns.h"
#include "catalogue/cataloguerows.h"
#include "geometry/defpolygon.h"

#include <QAbstractTableModel>
#include <QBitArray>
#include <QVector>

/// The coordinate catalogue of one object as a table in the columns of the host's form.
///
/// One row per stored vertex and an empty separator row between contours. Designation, x and y
/// stand in the columns that the host gave, extra fields in theirs. Vertices whose designation
/// stands at another place too are painted as conflicting. Only designations can be edited.
/// Rows and columns are zero-based; the headers count from one.
class DefPolygonTableModel : public QAbstractTableModel {
    Q_OBJECT

public:
    explicit DefPolygonTableModel(QObject* parent = nullptr);
    ~DefPolygonTableModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(
        int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// The precision of all catalogues: see catalogue/coordformat.h.
    static void setCoordPrecision(double precision);
    static double coordPrecision();

    /// Shows `polygon`, which stays the caller's and must outlive its use here; null for none.
    void setPolygon(DefPolygon* polygon);
    /// Rebuilds the row table from the object shown.
    void rebuildRows();
    /// Sets the columns of designation, x and y. A table never loses columns; a negative column
    /// is never met. Emits no signal.
    void setNxyColNum(int n, int x, int y);
    /// Sets the extra fields: constant texts by column. Emits no signal.
    void setFieldNumValueMap(const FieldNumValueMap& fields);

    /// A coordinate with the decimals of coordPrecision(), in the user's locale or the C locale.
    QString formatCoord(double value, bool userLocale) const;
    /// Whether the designation in `row` stands at another place of the object too.
    bool isConflictingPoint(int row) const;

private:
    const DefPoint* pointAt(int row) const;
    QVariant background(int row) const;

    DefPolygon* m_polygon = nullptr;
    CatalogueColumns m_columns;
    QVector<RowInfo> m_rows;
    mutable QBitArray m_conflicts; ///< a bit a vertex; empty until asked for after a change
};
