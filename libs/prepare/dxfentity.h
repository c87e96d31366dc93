#pragma once

#include "prepare/pathvertices.h"

#include <string>
#include <variant>

namespace prep {

/// POINT.
struct PointShape {
    Place place;
};

/// LINE, LWPOLYLINE, POLYLINE.
struct PathShape {
    PathVertices vertices;
    bool closed = false;
    /// Whether it is told closed or open, and how many vertices it has, in the form that the
    /// readers of the import take.
    bool isTold = true;
};

/// ARC, CIRCLE, ELLIPSE: the points centre + first * cos t + second * sin t.
struct ConicShape {
    Place centre;
    Vec3 first;
    Vec3 second;
    double start = 0; ///< t at the start
    double sweep = 0; ///< how far t goes; negative for clockwise
    bool full = false;
};

/// SPLINE.
struct SplineShape {
    int degree = 0;
    bool closed = false;
    std::vector<double> knots;
    std::vector<double> weights; ///< none where all are equal
    std::vector<Vec3> controls;
    std::vector<Vec3> fits;
};

/// TEXT, MTEXT, ATTRIB, ATTDEF.
struct LabelShape {
    Place place; ///< the point that the justification refers to
    std::string text; ///< bytes as in the file
    double height = 1;
    double rotation = 0; ///< degrees
    Vec3 direction; ///< the direction of an MTEXT; zero where `rotation` counts
    int horizontal = 0; ///< justification as in code 72
    int vertical = 0; ///< as in code 73
};

/// INSERT.
struct InsertShape {
    std::string_view block;
    Place place;
    Vec3 scale{ 1, 1, 1 };
    double rotation = 0; ///< degrees
    int columns = 1;
    int rows = 1;
    double columnStep = 0;
    double rowStep = 0;
    size_t attributes = 0; ///< where the record stands that the first attribute follows
};

/// HATCH: a drawing may have more boundaries in one than memory holds, so they are read where they
/// are drawn.
struct HatchShape {
    size_t position = 0; ///< of its record
};

/// A piece of the boundary of a HATCH.
using HatchEdge = std::variant<PathShape, ConicShape, SplineShape>;

/// DIMENSION: the block that holds what is seen of it.
struct DimensionShape {
    std::string_view block;
};

using Shape = std::variant<PointShape, PathShape, ConicShape, SplineShape, LabelShape, InsertShape,
    HatchShape, DimensionShape>;

/// An entity of a drawing as far as it can become a contour, a point or a label.
struct Entity {
    std::string_view type; ///< for example LWPOLYLINE
    std::string_view layer = "0";
    /// Coordinates are those of the object's own system, which this direction defines. The default
    /// stands for those of the world, too.
    Vec3 extrusion{ 0, 0, 1 };
    bool invisible = false;
    Shape shape;
};

} // namespace prep
