#include "geometry/nearestpoint.h"

#include <algorithm>
#include <limits>

namespace {

/// The nearest point met so far; a point at the same distance does not replace an earlier one.
struct Nearest {
    const QPointF& query;
    const DefPoint* best = nullptr;
    double bestDistance = std::numeric_limits<double>::max();

    void offer(const DefPoint& point)
    {
        const double distance = squaredDistance(point, query.x(), query.y());
        if (distance < bestDistance) {
            best = &point;
            bestDistance = distance;
        }
    }

    bool isBeyondReach(const DefPoint& point) const
    {
        const double dx = point.x - query.x();
        return dx * dx > bestDistance;
    }
};

} // namespace

const DefPoint* findNearestPoint(const QVector<DefPoint>& points, const QPointF& query)
{
    const auto begin = points.cbegin();
    const auto end = points.cend();
    const auto lower = std::lower_bound(
        begin, end, query.x(), [](const DefPoint& point, double x) { return point.x < x; });

    Nearest nearest{ query };
    if (lower != end)
        nearest.offer(*lower);
    if (lower != begin)
        nearest.offer(*(lower - 1));
    if (lower != end) {
        for (auto it = lower + 1; it != end && !nearest.isBeyondReach(*it); ++it)
            nearest.offer(*it);
    }
    if (lower != begin) {
        for (auto it = lower - 1; it != begin && !nearest.isBeyondReach(*(it - 1)); --it)
            nearest.offer(*(it - 1));
    }
    return nearest.best;
}
