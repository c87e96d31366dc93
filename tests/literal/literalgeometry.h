#pragma once

#include "geometry/defpolygon.h"

#include <QBitArray>
#include <QPointF>
#include <QString>
#include <QVector>

/// The helpers over the records written in the plainest way, whatever they cost.
namespace literal {

/// Whether two places are the same within the tolerance in both coordinates.
bool samePlace(const DefPoint& a, const DefPoint& b);
/// The order of a catalogue: by x, then by y.
bool standsBefore(const DefPoint& a, const DefPoint& b);
void splitDef(const QString& def, QString& prefix, int& number);
void sortObjects(QVector<DefPolygon>& objects);
/// Whether both coordinates of a point are numbers.
bool isDefined(const DefPoint& point);
/// The points whose coordinates are numbers, in their order.
QVector<DefPoint> definedPoints(const QVector<DefPoint>& points);
/// Sorts the points whose coordinates are numbers; the others follow them.
void sortPoints(QVector<DefPoint>& points);
/// The index of the nearest point, or -1; all coordinates must be numbers.
int findNearestPoint(const QVector<DefPoint>& points, const QPointF& query);
QBitArray duplicateDefs(const QVector<DefPolygon>& objects);
QBitArray conflictingPoints(const DefPolygon& polygon);

} // namespace literal
