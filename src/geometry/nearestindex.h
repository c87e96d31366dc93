#pragma once

#include "geometry/defpoint.h"
#include "geometry/placetree.h"

#include <QPointF>
#include <QVector>

/// Finds nearest points among sorted points that do not change.
///
/// Of several points at the same smallest distance that one wins which a search would meet first
/// that starts at the query's x: the first point whose x is not less, the one before it, then the
/// points after them in order, then those before them in reverse order. A point with a coordinate
/// that is not a number is never found and takes no part in that order.
class NearestIndex {
public:
    NearestIndex() = default;
    /// `points` must be sorted with the ordering of DefPoint, as by sortPoints.
    explicit NearestIndex(const QVector<DefPoint>& points);

    /// The nearest point, or null when there is none at a finite squared distance less than the
    /// largest; the pointer is into points().
    const DefPoint* find(const QPointF& query) const;

    /// The points that can be found, in their order.
    const QVector<DefPoint>& points() const { return m_points; }

private:
    QVector<DefPoint> m_points;
    PlaceTree m_tree;
};
