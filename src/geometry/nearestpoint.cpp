#include "geometry/nearestpoint.h"

const DefPoint* findNearestPoint(const QVector<DefPoint>& points, const QPointF& query)
{
    return findNearestIn(points, query);
}
