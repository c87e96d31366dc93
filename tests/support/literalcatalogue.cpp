#include "support/literalcatalogue.h"

#include "support/literalgeometry.h"

#include <algorithm>
#include <cmath>

namespace literal {

namespace {

bool within(const DefPoint& point, double x, double y)
{
    return std::abs(point.x - x) <= 0.01 && std::abs(point.y - y) <= 0.01;
}

bool before(const DefPoint& a, const DefPoint& b)
{
    return a.x < b.x || (a.x == b.x && a.y < b.y);
}

} // namespace

void Catalogue::arrange()
{
    if (points.isEmpty())
        return;
    std::sort(points.begin(), points.end(), before);
    QVector<DefPoint> kept{ points.first() };
    for (int i = 1; i < points.size(); ++i) {
        if (!within(kept.last(), points[i].x, points[i].y))
            kept.append(points[i]);
    }
    points = kept;
}

int Catalogue::findCoincident(double x, double y) const
{
    const int nearest = findNearestPoint(points, QPointF(x, y));
    return nearest >= 0 && within(points[nearest], x, y) ? nearest : -1;
}

void Catalogue::insert(const DefPoint& point)
{
    points.insert(std::lower_bound(points.begin(), points.end(), point, before), point);
}

} // namespace literal
