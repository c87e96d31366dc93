#include "models/defpolygontablemodel.h"

#include "catalogue/coordformat.h"
#include "geometry/conflicts.h"
#include "models/palette.h"

#include <QBrush>

DefPolygonTableModel::DefPolygonTableModel(QObject* parent)
    : QAbstractTableModel(parent)
{
}

DefPolygonTableModel::~DefPolygonTableModel() = default;

void DefPolygonTableModel::setCoordPrecision(double precision)
{
    ::setCoordPrecision(precision);
}

double DefPolygonTableModel::coordPrecision()
{
    return ::coordPrecision();
}

void DefPolygonTableModel::setPolygon(DefPolygon* polygon)
{
    beginResetModel();
    m_polygon = polygon;
    rebuildRows();
    endResetModel();
}

void DefPolygonTableModel::rebuildRows()
{
    m_rows.clear();
    m_conflicts.clear();
    if (m_polygon)
        visitCatalogueRows(*m_polygon, [this](const RowInfo& row) { m_rows.append(row); });
}

void DefPolygonTableModel::setNxyColNum(int n, int x, int y)
{
    m_columns.setNxyColNum(n, x, y);
}

void DefPolygonTableModel::setFieldNumValueMap(const FieldNumValueMap& fields)
{
    m_columns.setFieldNumValueMap(fields);
}

int DefPolygonTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int DefPolygonTableModel::columnCount(const QModelIndex&) const
{
    return m_columns.count();
}

QVariant DefPolygonTableModel::headerData(int section, Qt::Orientation, int role) const
{
    return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
}

const DefPoint* DefPolygonTableModel::pointAt(int row) const
{
    if (!m_polygon || row < 0 || row >= m_rows.size())
        return nullptr;
    const RowInfo& info = m_rows.at(row);
    return info.contourIndex < 0 ? nullptr
                                 : &m_polygon->contours.at(info.contourIndex).at(info.pointIndex);
}

QVariant DefPolygonTableModel::background(int row) const
{
    if (!pointAt(row))
        return QBrush(separatorColor);
    return isConflictingPoint(row) ? QVariant(QBrush(conflictColor)) : QVariant();
}

QVariant DefPolygonTableModel::data(const QModelIndex& index, int role) const
{
    const int row = index.row();
    if (!index.isValid() || !m_polygon || row >= m_rows.size())
        return QVariant();
    if (role == Qt::BackgroundRole)
        return background(row);
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return QVariant();

    const DefPoint* point = pointAt(row);
    if (!point || m_columns.content(index.column()) == CellContent::Nothing)
        return QVariant();
    return m_columns.text(*point, index.column(), role == Qt::DisplayRole);
}

QString DefPolygonTableModel::formatCoord(double value, bool userLocale) const
{
    return ::formatCoord(value, userLocale);
}

bool DefPolygonTableModel::isConflictingPoint(int row) const
{
    if (!pointAt(row))
        return false;
    if (m_conflicts.isEmpty())
        m_conflicts = conflictingPoints(*m_polygon);
    // The marks count vertices only: each contour before this one has a separator in between.
    return m_conflicts.testBit(row - m_rows.at(row).contourIndex);
}

Qt::ItemFlags DefPolygonTableModel::flags(const QModelIndex& index) const
{
    if (!index.isValid() || !pointAt(index.row()))
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    return m_columns.isDesignation(index.column()) ? flags | Qt::ItemIsEditable : flags;
}

bool DefPolygonTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || !m_columns.isDesignation(index.column())
        || !pointAt(index.row()))
        return false;
    const RowInfo& info = m_rows.at(index.row());
    const QString def = value.toString();
    QString& stored = m_polygon->contours[info.contourIndex][info.pointIndex].def;
    if (stored == def)
        return false;

    stored = def;
    m_conflicts.clear();
    emit dataChanged(index, index, { Qt::DisplayRole, Qt::EditRole });
    emit dataChanged(
        this->index(0, 0), this->index(rowCount() - 1, columnCount() - 1), { Qt::BackgroundRole });
    return true;
}
