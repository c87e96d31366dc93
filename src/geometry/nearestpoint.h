#pragma once

#include "geometry/defpoint.h"

#include <QPointF>
#include <QVector>

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
