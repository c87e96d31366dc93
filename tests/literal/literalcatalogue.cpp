#include "literal/literalcatalogue.h"

#include "literal/literalgeometry.h"

#include <algorithm>

namespace literal {

void Catalogue::arrange()
{
    if (points.isEmpty())
        return;
    std::sort(points.begin(), points.end(), standsBefore);
    QVector<DefPoint> kept{ points.first() };
    for (int i = 1; i < points.size(); ++i) {
        if (!samePlace(kept.last(), points[i]))
            kept.append(points[i]);
    }
    points = kept;
}

int Catalogue::findCoincident(double x, double y) const
{
    const int nearest = findNearestPoint(points, QPointF(x, y));
    return nearest >= 0 && samePlace(points[nearest], DefPoint{ QString(), x, y }) ? nearest : -1;
}

void Catalogue::insert(const DefPoint& point)
{
    points.insert(std::lower_bound(points.begin(), points.end(), point, standsBefore), point);
}

} // namespace literal
