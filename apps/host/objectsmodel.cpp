#include "objectsmodel.h"

#include "document.h"
#include "theme.h"

#include <QGuiApplication>
#include <QPalette>

ObjectsModel::ObjectsModel(Document& document, QObject* parent)
    : QAbstractTableModel(parent)
    , m_document(document)
{
    connect(&document, &Document::tableAboutToBeReplaced, this, [this] { beginResetModel(); });
    connect(&document, &Document::tableReplaced, this, [this] { endResetModel(); });
    connect(&document, &Document::objectRenamed, this, &ObjectsModel::renamed);
}

int ObjectsModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_document.objects().size();
}

int ObjectsModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ObjectsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_document.objects().size())
        return {};
    const bool isDuplicate = m_document.duplicates().testBit(index.row());
    if (role == Qt::BackgroundRole && isDuplicate)
        return conflictBackground(QGuiApplication::palette());
    if ((role == Qt::ToolTipRole || role == Qt::AccessibleDescriptionRole) && isDuplicate)
        return QStringLiteral("Обозначение повторяется");
    if (role == Qt::TextAlignmentRole && index.column() == Points)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    const DefPolygon& object = m_document.objects().at(index.row());
    if (index.column() == Designation)
        return object.def;
    int count = 0;
    for (const QVector<DefPoint>& contour : object.contours)
        count += contour.size();
    return count;
}

bool ObjectsModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index.column() != Designation
        || value.toString() == m_document.objects().at(index.row()).def)
        return false;
    m_document.renameObject(index.row(), value.toString());
    return true;
}

QVariant ObjectsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    return section == Designation ? QStringLiteral("Обозначение") : QStringLiteral("Точек");
}

Qt::ItemFlags ObjectsModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags usual = QAbstractTableModel::flags(index);
    return index.isValid() && index.column() == Designation ? usual | Qt::ItemIsEditable : usual;
}

int ObjectsModel::find(const QString& text, int from, bool backwards) const
{
    const int count = m_document.objects().size();
    for (int step = 1; step <= count; ++step) {
        const int row = ((backwards ? from - step : from + step) % count + count) % count;
        if (m_document.objects().at(row).def.contains(text, Qt::CaseInsensitive))
            return row;
    }
    return -1;
}

void ObjectsModel::renamed(int object)
{
    emit dataChanged(index(object, Designation), index(object, Designation));
    // The mark of any other object may have come or gone.
    emit dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1), { Qt::BackgroundRole });
}
