#pragma once

#include "geometry/defpoint.h"

#include <QString>
#include <QVector>

namespace literal {

/// The catalogue of named points as nothing but a sorted vector. Points with a coordinate that is
/// not a number are kept apart and never found.
class Catalogue {
public:
    bool isEmpty() const { return points.isEmpty() && undefinedPoints.isEmpty(); }
    /// Sorts the points whose coordinates are numbers, then keeps of each run the first of those
    /// within the tolerance.
    void arrange();
    /// The index of the nearest point if it is within the tolerance in both coordinates, else -1.
    int findCoincident(double x, double y) const;
    /// Inserts a point at its lower bound.
    void insert(const DefPoint& point);

    QVector<DefPoint> points;
    QVector<DefPoint> undefinedPoints; ///< those that arrange() and insert() kept apart
};

} // namespace literal
