#include "cataloguemodel.h"

#include "document.h"
#include "geometry/conflicts.h"
#include "theme.h"

#include <QGuiApplication>
#include <QLocale>
#include <QPalette>

#include <algorithm>

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
    m_starts.clear();
    m_conflicts.clear();
    m_columns = m_document.catalogueColumns();
    if (object >= 0) {
        const DefPolygon& polygon = m_document.objects().at(object);
        int row = 0;
        for (const QVector<DefPoint>& contour : polygon.contours) {
            m_starts.append(row);
            row += contour.size() + 1;
        }
        m_starts.append(row);
        m_conflicts = conflictingPoints(polygon);
    }
    endResetModel();
}

void CatalogueModel::setTitles(const QStringList& titles)
{
    m_titles = titles;
    emit headerDataChanged(Qt::Horizontal, 0, std::max(0, m_columns - 1));
}

CatalogueModel::Place CatalogueModel::placeOf(int row) const
{
    if (row < 0 || row >= rowCount())
        return {};
    const int contour = static_cast<int>(
        std::upper_bound(m_starts.cbegin(), m_starts.cend(), row) - m_starts.cbegin() - 1);
    const int vertex = row - m_starts.at(contour);
    if (vertex >= m_document.objects().at(m_object).contours.at(contour).size())
        return {};
    return { contour, vertex };
}

int CatalogueModel::rowOf(const Place& place) const
{
    return m_starts.value(place.contour) + place.vertex;
}

int CatalogueModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid() || m_starts.size() < 2)
        return 0;
    // No row stands behind the last contour.
    return m_starts.last() - 1;
}

int CatalogueModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_columns;
}

const DefPoint& CatalogueModel::pointAt(const Place& place) const
{
    return m_document.objects().at(m_object).contours.at(place.contour).at(place.vertex);
}

QString CatalogueModel::cell(int row, int column) const
{
    const Place place = placeOf(row);
    if (place.contour < 0)
        return {};
    const GeometryInfo& columns = m_document.table().columns;
    const DefPoint& point = pointAt(place);
    const auto number = [this](double value) {
        return QLocale().toString(value, 'f', m_document.table().decimals);
    };
    if (column == columns.nColNum)
        return point.def;
    if (column == columns.xColNum)
        return number(point.x);
    if (column == columns.yColNum)
        return number(point.y);
    return m_document.table().others.at(m_object).points.value(row - place.contour).value(column);
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
        return cell(index.row(), index.column());
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
    if (pointAt(place).def == value.toString())
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

QString CatalogueModel::asText(const QVector<int>& rows) const
{
    QString text;
    const auto addRow = [&](auto cellOf) {
        for (int column = 0; column < m_columns; ++column) {
            // A tab or a break within a text would move the cells behind it.
            text +=
                QString(cellOf(column)).replace(QLatin1Char('\t'), QLatin1Char(' ')).simplified();
            text += QLatin1Char(column + 1 < m_columns ? '\t' : '\n');
        }
    };
    addRow([this](int column) {
        return headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    });
    for (const int row : rows)
        addRow([this, row](int column) { return cell(row, column); });
    return text;
}

QString CatalogueModel::asHtml(const QVector<int>& rows) const
{
    QString html = QStringLiteral("<table border=\"1\">");
    const auto addRow = [&](const char* tag, auto cellOf) {
        html += QLatin1String("<tr>");
        for (int column = 0; column < m_columns; ++column) {
            html += QStringLiteral("<%1>%2</%1>")
                        .arg(QLatin1String(tag), QString(cellOf(column)).toHtmlEscaped());
        }
        html += QLatin1String("</tr>\n");
    };
    addRow("th", [this](int column) {
        return headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    });
    for (const int row : rows)
        addRow("td", [this, row](int column) { return cell(row, column); });
    return html + QLatin1String("</table>");
}
