#include "literal/literalmodels.h"

#include <QBrush>
#include <QLocale>

#include <algorithm>
#include <cmath>

namespace literal {

namespace {

const QColor lightRed(255, 220, 220);
const QColor lightGrey(240, 240, 240);

bool isSame(const QString& a, const QString& b)
{
    return QString::compare(a, b, Qt::CaseInsensitive) == 0;
}

} // namespace

void CatalogueModel::setPolygon(DefPolygon* polygon)
{
    beginResetModel();
    m_polygon = polygon;
    m_rows.clear();
    const int contours = polygon ? polygon->contours.size() : 0;
    for (int contour = 0; contour < contours; ++contour) {
        for (int point = 0; point < polygon->contours.at(contour).size(); ++point)
            m_rows.append({ contour, point });
        if (contour < contours - 1)
            m_rows.append({ -1, -1 });
    }
    endResetModel();
}

void CatalogueModel::setNxyColNum(int n, int x, int y)
{
    m_nColNum = n;
    m_xColNum = x;
    m_yColNum = y;
    m_maxColNum = std::max({ m_maxColNum, n, x, y });
}

void CatalogueModel::setFieldNumValueMap(const QMap<int, QString>& fields)
{
    m_fields = fields;
    if (!fields.isEmpty())
        m_maxColNum = std::max(m_maxColNum, fields.lastKey());
}

int CatalogueModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

int CatalogueModel::columnCount(const QModelIndex&) const
{
    return m_maxColNum + 1;
}

QVariant CatalogueModel::headerData(int section, Qt::Orientation, int role) const
{
    return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
}

const DefPoint* CatalogueModel::pointAt(int row) const
{
    const Row& place = m_rows.at(row);
    return place.contour < 0 ? nullptr : &m_polygon->contours.at(place.contour).at(place.point);
}

bool CatalogueModel::isConflictingPoint(int row) const
{
    const DefPoint& p = *pointAt(row);
    if (p.def.isEmpty())
        return false;
    for (int r = 0; r < m_rows.size(); ++r) {
        const DefPoint* q = r == row ? nullptr : pointAt(r);
        if (q && isSame(p.def, q->def)
            && !(std::abs(p.x - q->x) <= DefPoint::epsilon
                && std::abs(p.y - q->y) <= DefPoint::epsilon))
            return true;
    }
    return false;
}

QVariant CatalogueModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || !m_polygon)
        return QVariant();
    const DefPoint* point = pointAt(index.row());
    if (!point)
        return role == Qt::BackgroundRole ? QVariant(QBrush(lightGrey)) : QVariant();
    if (role == Qt::BackgroundRole)
        return isConflictingPoint(index.row()) ? QVariant(QBrush(lightRed)) : QVariant();
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return QVariant();

    const QLocale locale = role == Qt::DisplayRole ? QLocale() : QLocale::c();
    const int column = index.column();
    if (column == m_nColNum)
        return point->def;
    if (column == m_xColNum)
        return locale.toString(point->x, 'f', 2);
    if (column == m_yColNum)
        return locale.toString(point->y, 'f', 2);
    return m_fields.contains(column) ? QVariant(m_fields.value(column)) : QVariant();
}

Qt::ItemFlags CatalogueModel::flags(const QModelIndex& index) const
{
    if (!index.isValid() || !pointAt(index.row()))
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    return index.column() == m_nColNum ? flags | Qt::ItemIsEditable : flags;
}

bool CatalogueModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || !m_polygon || !pointAt(index.row())
        || index.column() != m_nColNum)
        return false;
    const Row& place = m_rows.at(index.row());
    QString& def = m_polygon->contours[place.contour][place.point].def;
    if (def == value.toString())
        return false;
    def = value.toString();
    emit dataChanged(index, index, { Qt::DisplayRole, Qt::EditRole });
    emit dataChanged(
        this->index(0, 0), this->index(rowCount() - 1, columnCount() - 1), { Qt::BackgroundRole });
    return true;
}

void ObjectModel::setMap(QVector<DefPolygon>* map)
{
    beginResetModel();
    m_map = map;
    endResetModel();
}

int ObjectModel::rowCount(const QModelIndex& parent) const
{
    return m_map && !parent.isValid() ? m_map->size() : 0;
}

int ObjectModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant ObjectModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QVariant();
    return orientation == Qt::Horizontal ? QVariant(QStringLiteral("N")) : QVariant(section + 1);
}

bool ObjectModel::isDuplicateDef(int row) const
{
    const QString& def = m_map->at(row).def;
    if (def.isEmpty())
        return false;
    return std::count_if(m_map->cbegin(), m_map->cend(), [&def](const DefPolygon& object) {
        return isSame(object.def, def);
    }) > 1;
}

QVariant ObjectModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || !m_map)
        return QVariant();
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return m_map->at(index.row()).def;
    if (role == Qt::BackgroundRole && isDuplicateDef(index.row()))
        return QBrush(lightRed);
    return QVariant();
}

Qt::ItemFlags ObjectModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsEnabled;
}

bool ObjectModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || !m_map)
        return false;
    QString& def = (*m_map)[index.row()].def;
    if (def == value.toString())
        return false;
    def = value.toString();
    emit dataChanged(index, index, { Qt::DisplayRole, Qt::EditRole });
    emit dataChanged(this->index(0, 0), this->index(rowCount() - 1, 0), { Qt::BackgroundRole });
    return true;
}

} // namespace literal
