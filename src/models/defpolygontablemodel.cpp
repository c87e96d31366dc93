#include "models/defpolygontablemodel.h"

#include "geometry/conflicts.h"
#include "models/coordformat.h"
#include "models/palette.h"

#include <QBrush>
#include <QLocale>

#include <algorithm>
#include <limits>

double DefPolygonTableModel::s_coordPrecision = 0.01;

namespace {

/// The number of decimals that show `precision`; 0 for whole units and coarser.
int decimalsFor(double precision)
{
    int decimals = 0;
    if (precision == 0)
        return decimals;
    for (; precision < 1; precision *= 10)
        ++decimals;
    return decimals;
}

} // namespace

DefPolygonTableModel::DefPolygonTableModel(QObject* parent)
    : QAbstractTableModel(parent)
{
}

DefPolygonTableModel::~DefPolygonTableModel() = default;

void DefPolygonTableModel::setCoordPrecision(double precision)
{
    if (precision > 0)
        s_coordPrecision = precision;
}

double DefPolygonTableModel::coordPrecision()
{
    return s_coordPrecision;
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
    if (!m_polygon)
        return;
    const int contourCount = m_polygon->contours.size();
    for (int contour = 0; contour < contourCount; ++contour) {
        if (contour > 0)
            m_rows.append(RowInfo{ -1, -1 });
        const int pointCount = m_polygon->contours.at(contour).size();
        for (int point = 0; point < pointCount; ++point)
            m_rows.append(RowInfo{ contour, point });
    }
}

void DefPolygonTableModel::setNxyColNum(int n, int x, int y)
{
    m_nColNum = n;
    m_xColNum = x;
    m_yColNum = y;
    widenTo(std::max({ n, x, y }));
}

void DefPolygonTableModel::setFieldNumValueMap(const QMap<int, QString>& fields)
{
    m_fieldNumValueMap = fields;
    if (!fields.isEmpty())
        widenTo(fields.lastKey());
}

void DefPolygonTableModel::widenTo(int column)
{
    // The number of columns, one more than this, must still be an int.
    m_maxColNum = std::max(m_maxColNum, std::min(column, std::numeric_limits<int>::max() - 1));
}

int DefPolygonTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int DefPolygonTableModel::columnCount(const QModelIndex&) const
{
    return m_maxColNum + 1;
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

bool DefPolygonTableModel::hasValue(int row, int column) const
{
    const DefPoint* point = pointAt(row);
    if (!point)
        return false;
    if (column == m_nColNum)
        return !point->def.isNull();
    if (column == m_xColNum || column == m_yColNum)
        return true;
    return !m_fieldNumValueMap.value(column).isNull();
}

QString DefPolygonTableModel::cellText(const DefPoint& point, int column, bool userLocale) const
{
    if (column == m_nColNum)
        return point.def;
    if (column == m_xColNum)
        return formatCoord(point.x, userLocale);
    if (column == m_yColNum)
        return formatCoord(point.y, userLocale);
    return m_fieldNumValueMap.value(column);
}

QString DefPolygonTableModel::editText(int row, int column) const
{
    const DefPoint* point = pointAt(row);
    return point ? cellText(*point, column, false) : QString();
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
    const int column = index.column();
    const bool isPointColumn = column == m_nColNum || column == m_xColNum || column == m_yColNum;
    if (!point || (!isPointColumn && !m_fieldNumValueMap.contains(column)))
        return QVariant();
    return cellText(*point, column, role == Qt::DisplayRole);
}

QString DefPolygonTableModel::formatCoord(double value, bool userLocale) const
{
    static const QLocale uLocale;
    static int decimals = 0;
    if (decimals == 0)
        decimals = decimalsFor(s_coordPrecision);
    return userLocale ? uLocale.toString(value, 'f', decimals) : formatFixed(value, decimals);
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
    return index.column() == m_nColNum ? flags | Qt::ItemIsEditable : flags;
}

bool DefPolygonTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index.column() != m_nColNum
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
