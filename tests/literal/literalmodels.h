#pragma once

#include "geometry/defpolygon.h"

#include <QAbstractTableModel>
#include <QMap>
#include <QVector>

namespace literal {

/// The catalogue of one object, every mark found by a scan.
class CatalogueModel : public QAbstractTableModel {
public:
    void setPolygon(DefPolygon* polygon);
    void setNxyColNum(int n, int x, int y);
    void setFieldNumValueMap(const QMap<int, QString>& fields);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    struct Row {
        int contour;
        int point;
    };

    const DefPoint* pointAt(int row) const;
    bool isConflictingPoint(int row) const;

    DefPolygon* m_polygon = nullptr;
    int m_nColNum = 0;
    int m_xColNum = 1;
    int m_yColNum = 2;
    int m_maxColNum = 2;
    QVector<Row> m_rows;
    QMap<int, QString> m_fields;
};

/// The list of objects, every mark found by a scan.
class ObjectModel : public QAbstractTableModel {
public:
    void setMap(QVector<DefPolygon>* map);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    bool isDuplicateDef(int row) const;

    QVector<DefPolygon>* m_map = nullptr;
};

} // namespace literal
