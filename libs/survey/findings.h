#pragma once

#include "importrun/importrun.h"

#include <QPointF>
#include <QVector>

/// Points of one object that bear one designation at different places.
struct PointConflict {
    int object; ///< zero-based
    QString def;
    QVector<QPointF> places;
};

/// Objects that bear one designation.
struct DuplicateDef {
    QString def;
    QVector<int> objects; ///< zero-based
};

/// An object without contours, or a contour with fewer different vertices than its kind needs.
struct IncompleteObject {
    int object; ///< zero-based
    int contour; ///< zero-based; -1 for an object without contours
    int vertices;
    int needed;
};

QVector<PointConflict> findPointConflicts(const QVector<DefPolygon>& objects);
QVector<DuplicateDef> findDuplicateDefs(const QVector<DefPolygon>& objects);
/// `shapes` are those of the objects.
QVector<IncompleteObject> findIncompleteObjects(
    const QVector<DefPolygon>& objects, const QVector<Shape>& shapes);

/// Which of a vertex's coordinates runs to the east.
enum class AxisOrder { Unknown, EastingFirst, NorthingFirst };

/// Tells the axes by the sizes of the coordinates, when nine of ten vertices agree.
///
/// In the plane systems of land surveying an easting bears the number of its zone before six
/// digits, a northing does not: eastings of 1 to 4 million stand beside northings of 100 thousand
/// to a million in the local systems, eastings of 10 to 33 million beside northings of 4 to 10
/// million in the national one. Six digits that stand before 4 to 10 million are an easting
/// without its zone; in the other order they may as well be a northing of a local system.
AxisOrder guessAxisOrder(const QVector<DefPolygon>& objects);
