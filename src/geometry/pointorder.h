#pragma once

#include "geometry/defpoint.h"

#include <QVector>

/// Sorts points with the ordering of DefPoint; those with a coordinate that is not a number, which
/// have no place in it, come last. The order of points with equal coordinates is unspecified.
void sortPoints(QVector<DefPoint>& points);

/// Whether `points` stand in the ordering of DefPoint, those with a coordinate that is not
/// a number left aside.
bool arePointsSorted(const QVector<DefPoint>& points);

/// Removes the points with a coordinate that is not a number.
void removeNan(QVector<DefPoint>& points);

/// Keeps of each run of neighbouring points the first and drops those that coincide with it; the
/// designations are not compared. Gives the designations of the dropped ones, in no order: to
/// be freed when that suits the caller.
QVector<QString> mergeCoincident(QVector<DefPoint>& points);
