#include "cataloguemodel.h"

#include "document.h"
#include "geometry/conflicts.h"
#include "theme.h"

#include <QGuiApplication>
#include <QPalette>

CatalogueModel::CatalogueModel(Document& document, QObject* parent)
    : QAbstractTableModel(parent)
    , m_document(document)
{
    // Without an object while there is none to be asked for, and with the columns of the new table.
    connect(&document, &Document::tableAboutToBeReplaced, this, [this] { reset(-1); });
    connect(&document, &Document::tableReplaced, this, [this] { reset(-1); });
    connect(&document, &Document::pointRenamed, this, &CatalogueModel::renamed);
}

void CatalogueModel::setObject(int object)
{
    if (object != m_object)
        reset(object);
}

void CatalogueModel::reset(int object)
{
    beginResetModel();
    m_object = object;
    m_rows = CatalogueRows();
    m_conflicts.clear();
    m_columns = m_document.catalogueColumns();
    if (object >= 0) {
        const DefPolygon& polygon = m_document.objects().at(object);
        m_rows = CatalogueRows(polygon);
        m_conflicts = conflictingPoints(polygon);
    }
    endResetModel();
}

void CatalogueModel::setTitles(const QStringList& titles)
{
    m_titles = titles;
    emit headerDataChanged(Qt::Horizontal, 0, std::max(0, m_columns - 1));
}

int CatalogueModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.count();
}

int CatalogueModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_columns;
}

QVariant CatalogueModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || m_object < 0)
        return {};
    const Place place = placeOf(index.row());
    if (place.contour < 0) {
        return role == Qt::BackgroundRole
            ? QVariant(separatorBackground(QGuiApplication::palette()))
            : QVariant();
    }
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return catalogueCell(m_document.table(), m_object, m_rows, index.row(), index.column());
    if (role == Qt::TextAlignmentRole && index.column() != m_document.table().columns.nColNum)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    // A row for each vertex, and one for each contour before.
    if (!m_conflicts.testBit(index.row() - place.contour))
        return {};
    if (role == Qt::BackgroundRole)
        return conflictBackground(QGuiApplication::palette());
    if (role == Qt::ToolTipRole || role == Qt::AccessibleDescriptionRole)
        return QStringLiteral("Точка с этим обозначением стоит в объекте и в другом месте");
    return {};
}

bool CatalogueModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    const Place place = placeOf(index.row());
    const auto& contours = m_document.objects().at(m_object).contours;
    if (contours.at(place.contour).at(place.vertex).def == value.toString())
        return false;
    m_document.renamePoint(m_object, place.contour, place.vertex, value.toString());
    return true;
}

QVariant CatalogueModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal && !m_titles.value(section).isEmpty())
        return m_titles.at(section);
    return section + 1;
}

Qt::ItemFlags CatalogueModel::flags(const QModelIndex& index) const
{
    if (!index.isValid() || placeOf(index.row()).contour < 0)
        return Qt::NoItemFlags;
    const Qt::ItemFlags usual = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    return index.column() == m_document.table().columns.nColNum ? usual | Qt::ItemIsEditable
                                                                : usual;
}

void CatalogueModel::renamed(int object, int contour, int vertex)
{
    if (object != m_object)
        return;
    m_conflicts = conflictingPoints(m_document.objects().at(object));
    const int row = rowOf({ contour, vertex });
    const QModelIndex changed = index(row, m_document.table().columns.nColNum);
    emit dataChanged(changed, changed);
    emit dataChanged(index(0, 0), index(rowCount() - 1, m_columns - 1), { Qt::BackgroundRole });
}

CatalogueText CatalogueModel::text() const
{
    QStringList titles;
    for (int column = 0; column < m_columns; ++column)
        titles.append(headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
    return CatalogueText(m_document.table(), m_object, titles);
}
