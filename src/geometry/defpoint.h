#pragma once

#include <QString>

#include <cmath>

/// One named vertex of a coordinate catalogue; coordinates are in the file's units.
struct DefPoint {
    QString def; ///< designation; may be empty
    double x = 0; ///< first coordinate, as read from the file
    double y = 0; ///< second coordinate, as read from the file

    /// The one tolerance, in coordinate units, within which two points stand at the same place.
    static constexpr double epsilon = 0.01;
};
Q_DECLARE_TYPEINFO(DefPoint, Q_MOVABLE_TYPE);

/// Orders by x, then by y, exactly; the designation takes no part.
inline bool operator<(const DefPoint& a, const DefPoint& b)
{
    return a.x < b.x || (a.x == b.x && a.y < b.y);
}

/// Whether (x1, y1) and (x2, y2) differ by at most DefPoint::epsilon in each coordinate.
inline bool coincide(double x1, double y1, double x2, double y2)
{
    return std::abs(x1 - x2) <= DefPoint::epsilon && std::abs(y1 - y2) <= DefPoint::epsilon;
}

/// Whether two points stand at the same place, whatever their designations.
inline bool coincide(const DefPoint& a, const DefPoint& b)
{
    return coincide(a.x, a.y, b.x, b.y);
}

/// Squared Euclidean distance from `point` to (x, y).
inline double squaredDistance(const DefPoint& point, double x, double y)
{
    const double dx = point.x - x;
    const double dy = point.y - y;
    return dx * dx + dy * dy;
}

/// Whether a coordinate of `point` is not a number. Such points leave no order to rely on.
inline bool hasNan(const DefPoint& point)
{
    return std::isnan(point.x) || std::isnan(point.y);
}
