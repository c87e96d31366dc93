#pragma once

#include "geometry/defpoint.h"

#include <QPointF>
#include <QVector>

#include <limits>

/// The point of `points` that is nearest to `query`, or null when there is none.
///
/// `points` should be sorted by x. Of several points at the same smallest distance the one met
/// first wins: the first point whose x is not less than the query's, the one before it, then the
/// points after it in order, then those before it in reverse order. On a vector that is not sorted
/// the search still follows these steps, and finds what they meet.
///
/// The cost is that of walking all points whose x is within the smallest distance of the query's;
/// NearestIndex gives the same answers over sorted points at a cost that does not depend on their
/// layout.
const DefPoint* findNearestPoint(const QVector<DefPoint>& points, const QPointF& query);

/// The index of the first element for which `isBefore` does not hold, found by halving; `points`
/// is anything with size() and at().
template <typename Points, typename Predicate>
int partitionIndex(const Points& points, Predicate isBefore)
{
    int first = 0;
    for (int length = points.size(); length > 0;) {
        const int half = length / 2;
        if (isBefore(points.at(first + half))) {
            first += half + 1;
            length -= half + 1;
        } else {
            length = half;
        }
    }
    return first;
}

/// findNearestPoint over anything with size() and at().
template <typename Points>
const DefPoint* findNearestIn(const Points& points, const QPointF& query)
{
    const DefPoint* best = nullptr;
    double bestDistance = std::numeric_limits<double>::max();
    const auto offer = [&](int index) {
        const DefPoint& point = points.at(index);
        const double distance = squaredDistance(point, query.x(), query.y());
        if (distance < bestDistance) {
            best = &point;
            bestDistance = distance;
        }
    };
    const auto isBeyondReach = [&](int index) {
        const double dx = points.at(index).x - query.x();
        return dx * dx > bestDistance;
    };

    const int size = points.size();
    const int lower = partitionIndex(points, [&](const DefPoint& p) { return p.x < query.x(); });
    if (lower < size)
        offer(lower);
    if (lower > 0)
        offer(lower - 1);
    for (int i = lower + 1; i < size && !isBeyondReach(i); ++i)
        offer(i);
    for (int i = lower - 2; i >= 0 && !isBeyondReach(i); --i)
        offer(i);
    return best;
}
