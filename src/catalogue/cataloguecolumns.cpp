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

bool CatalogueColumns::isFilled(int column) const
{
    return isDesignation(column) || isCoordinate(column) || m_fieldNumValueMap.contains(column);
}

bool CatalogueColumns::hasText(const DefPoint& point, int column) const
{
    if (isDesignation(column))
        return !point.def.isNull();
    return isCoordinate(column) || !m_fieldNumValueMap.value(column).isNull();
}

QString CatalogueColumns::text(const DefPoint& point, int column, bool userLocale) const
{
    if (isDesignation(column))
        return point.def;
    if (isCoordinate(column))
        return formatCoord(column == m_xColNum ? point.x : point.y, userLocale);
    return m_fieldNumValueMap.value(column);
}
