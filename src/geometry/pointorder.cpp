#include "geometry/pointorder.h"

#include <algorithm>
#include <functional>
#include <utility>

void sortPoints(QVector<DefPoint>& points)
{
    auto end = points.end();
    if (std::any_of(points.cbegin(), points.cend(), hasNan))
        end = std::stable_partition(points.begin(), end, std::not_fn(hasNan));
    std::sort(points.begin(), end);
}

bool arePointsSorted(const QVector<DefPoint>& points)
{
    const DefPoint* previous = nullptr;
    for (const DefPoint& point : points) {
        if (hasNan(point))
            continue;
        if (previous && point < *previous)
            return false;
        previous = &point;
    }
    return true;
}

void removeNan(QVector<DefPoint>& points)
{
    // Points that are shared and sound stay shared.
    if (std::none_of(points.cbegin(), points.cend(), hasNan))
        return;
    points.erase(std::remove_if(points.begin(), points.end(), hasNan), points.end());
}

QVector<QString> mergeCoincident(QVector<DefPoint>& points)
{
    QVector<QString> dropped;
    if (points.isEmpty())
        return dropped;
    auto kept = points.begin();
    for (auto it = kept + 1; it != points.end(); ++it) {
        if (!coincide(*kept, *it) && ++kept != it)
            std::swap(*kept, *it);
    }
    dropped.reserve(static_cast<int>(points.end() - (kept + 1)));
    for (auto it = kept + 1; it != points.end(); ++it)
        dropped.append(std::move(it->def));
    points.erase(kept + 1, points.end());
    return dropped;
}
