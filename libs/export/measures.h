#pragma once

#include "geometry/defpolygon.h"

#include <QByteArray>
#include <QVector>

/// A contour as a ring or a line: places that are numbers, a ring without its closing vertex.
using Places = QVector<QPointF>;

/// The rings of an area: each outer one with the holes that lie in it.
struct AreaPart {
    int outer; ///< index of the ring
    QVector<int> holes;
};

/// The shape of an object, ready to be measured and written.
struct ObjectShape {
    QVector<Places> contours; ///< without those that have too few places
    QVector<AreaPart> parts; ///< of an area; empty for lines
    bool isArea = false;
    double area = 0; ///< without the holes, in square units of the file; 0 for lines
    double perimeter = 0; ///< of all contours; the length of lines

    /// `enclosesArea`: the contours do. `swapped`: x and y change places.
    ObjectShape(const DefPolygon& object, bool enclosesArea, bool swapped);
};

/// An area or a length with two decimals; empty when the coordinates were too large for it.
QByteArray measureText(double measure);

/// Twice the area of a ring; positive when it runs counter-clockwise.
double signedTwiceArea(const Places& ring);
