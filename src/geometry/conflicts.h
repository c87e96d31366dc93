#pragma once

#include "geometry/defpolygon.h"

#include <QBitArray>
#include <QVector>

/// Marks the objects whose designation, ignoring case, occurs more than once; one bit an object.
/// Empty designations are never marked. The cost is linear in the number of objects.
QBitArray duplicateDefs(const QVector<DefPolygon>& objects);

/// Brings the marks of duplicateDefs() up to date after the object `renamed` lost the designation
/// `before`, without going through the other designations.
void updateDuplicateDefs(
    QBitArray& marks, const QVector<DefPolygon>& objects, int renamed, const QString& before);

/// Marks the vertices of `polygon` whose designation, ignoring case, another vertex of the object
/// bears at a place more than DefPoint::epsilon away in x or in y (a distance that is not a number
/// counts as more). One bit a vertex, counted through all contours in order. Empty designations
/// are never marked. The cost is that of sorting the vertices.
QBitArray conflictingPoints(const DefPolygon& polygon);
