#include "models/defmaptablemodel.h"

#include "geometry/conflicts.h"
#include "models/palette.h"

#include <QBrush>

#include <utility>

DefMapTableModel::DefMapTableModel(QObject* parent)
    : QAbstractTableModel(parent)
{
}

DefMapTableModel::~DefMapTableModel() = default;

void DefMapTableModel::setMap(QVector<DefPolygon>* map)
{
    beginResetModel();
    m_map = map;
    m_duplicates.clear();
    endResetModel();
}

int DefMapTableModel::rowCount(const QModelIndex& parent) const
{
    return m_map && !parent.isValid() ? m_map->size() : 0;
}

int DefMapTableModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant DefMapTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QVariant();
    return orientation == Qt::Horizontal ? QVariant(QStringLiteral("N")) : QVariant(section + 1);
}

QVariant DefMapTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return QVariant();
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return m_map->at(index.row()).def;
    if (role == Qt::BackgroundRole && index.column() == 0 && isDuplicateDef(index.row()))
        return QBrush(conflictColor);
    return QVariant();
}

bool DefMapTableModel::isDuplicateDef(int row) const
{
    if (row < 0 || row >= rowCount())
        return false;
    if (m_duplicates.size() != rowCount())
        m_duplicates = duplicateDefs(*m_map);
    return m_duplicates.testBit(row);
}

Qt::ItemFlags DefMapTableModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    return index.column() == 0 ? flags | Qt::ItemIsEditable : flags;
}

bool DefMapTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index.row() >= rowCount()
        || index.column() != 0)
        return false;
    const QString def = value.toString();
    QString& stored = (*m_map)[index.row()].def;
    if (stored == def)
        return false;

    const QString before = std::exchange(stored, def);
    if (m_duplicates.size() == rowCount())
        updateDuplicateDefs(m_duplicates, *m_map, index.row(), before);
    emit dataChanged(index, index, { Qt::DisplayRole, Qt::EditRole });
    emit dataChanged(this->index(0, 0), this->index(rowCount() - 1, 0), { Qt::BackgroundRole });
    return true;
}
