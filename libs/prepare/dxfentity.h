#pragma once

#include "prepare/space.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace prep {

/// A coordinate of a drawing. The digits are those of the file, for the writer.
struct Coordinate {
    double value = 0;
    std::string_view digits;
};

struct Place {
    Coordinate x;
    Coordinate y;
    double z = 0;

    Vec3 vec() const { return { x.value, y.value, z }; }
};

/// POINT.
struct PointShape {
    Place place;
};

/// A vertex and the bulge of the segment that it begins: the tangent of a quarter of the angle that
/// the arc spans, positive for an anticlockwise one.
struct PathVertex {
    Place place;
    double bulge = 0;
};

/// LINE, LWPOLYLINE, POLYLINE.
struct PathShape {
    std::vector<PathVertex> vertices;
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

struct Entity;

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
    std::vector<Entity> attributes;
};

/// HATCH: its boundaries, each a row of edges that follow each other.
struct HatchShape {
    using Edge = std::variant<PathShape, ConicShape, SplineShape>;
    using Boundary = std::vector<Edge>;
    std::vector<Boundary> boundaries;
};

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
