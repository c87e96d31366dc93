#include "literal/literalcatalogue.h"

#include "literal/literalgeometry.h"

#include <algorithm>

namespace literal {

void Catalogue::arrange()
{
    QVector<DefPoint> sorted;
    for (const DefPoint& point : qAsConst(points))
        (isDefined(point) ? sorted : undefinedPoints).append(point);
    std::sort(sorted.begin(), sorted.end(), standsBefore);
    points.clear();
    for (const DefPoint& point : qAsConst(sorted)) {
        if (points.isEmpty() || !samePlace(points.last(), point))
            points.append(point);
    }
}

int Catalogue::findCoincident(double x, double y) const
{
    const int nearest = findNearestPoint(points, QPointF(x, y));
    return nearest >= 0 && samePlace(points[nearest], DefPoint{ QString(), x, y }) ? nearest : -1;
}

void Catalogue::insert(const DefPoint& point)
{
    if (!isDefined(point))
        undefinedPoints.append(point);
    else
        points.insert(std::lower_bound(points.begin(), points.end(), point, standsBefore), point);
}

} // namespace literal
