#include "catalogue/cataloguecolumns.h"

#include "catalogue/coordformat.h"

#include <algorithm>
#include <limits>

void CatalogueColumns::setNxyColNum(int n, int x, int y)
{
    m_nColNum = n;
    m_xColNum = x;
    m_yColNum = y;
    widenTo(std::max({ n, x, y }));
}

void CatalogueColumns::setFieldNumValueMap(const FieldNumValueMap& fields)
{
    m_fieldNumValueMap = fields;
    if (!fields.isEmpty())
        widenTo(fields.lastKey());
}

void CatalogueColumns::widenTo(int column)
{
    // The number of columns, one more than this, must still be an int.
    m_maxColNum = std::max(m_maxColNum, std::min(column, std::numeric_limits<int>::max() - 1));
}

CellContent CatalogueColumns::content(int column) const
{
    if (column == m_nColNum)
        return CellContent::Designation;
    if (column == m_xColNum)
        return CellContent::X;
    if (column == m_yColNum)
        return CellContent::Y;
    return m_fieldNumValueMap.contains(column) ? CellContent::Field : CellContent::Nothing;
}

QVector<int> CatalogueColumns::filledColumns() const
{
    QVector<int> columns{ m_nColNum, m_xColNum, m_yColNum };
    columns += m_fieldNumValueMap.keys().toVector();
    std::sort(columns.begin(), columns.end());
    columns.erase(std::unique(columns.begin(), columns.end()), columns.end());
    const auto isMet = [this](int column) { return column >= 0 && column < count(); };
    const auto first = std::find_if(columns.begin(), columns.end(), isMet);
    const auto end = std::find_if_not(first, columns.end(), isMet);
    return QVector<int>(first, end);
}

QString CatalogueColumns::text(const DefPoint& point, int column, bool userLocale) const
{
    switch (content(column)) {
    case CellContent::Designation:
        return point.def;
    case CellContent::X:
        return formatCoord(point.x, userLocale);
    case CellContent::Y:
        return formatCoord(point.y, userLocale);
    case CellContent::Field:
        return field(column);
    case CellContent::Nothing:
        break;
    }
    return {};
}
