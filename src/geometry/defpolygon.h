#pragma once

#include "geometry/defpoint.h"

#include <QPointF>
#include <QVector>

/// One object: its designation and its contours in file order.
///
/// A contour is the ordered list of its vertices as read; a closed one repeats its first vertex
/// at the end.
struct DefPolygon {
    QString def; ///< designation; empty until the object is named
    QVector<QVector<DefPoint>> contours;

    /// The area-weighted centroid of the first contour, treated as closed. A contour without area
    /// gives the mean of its vertices, an object without vertices (0, 0).
    QPointF centroid() const;
};
Q_DECLARE_TYPEINFO(DefPolygon, Q_MOVABLE_TYPE);
